#pragma once
// The short text by which the function list shows a particle input's value.

class KeyValues3;
class CBufferString;
class CUtlString;

// False, with *pError set, when the input can't be loaded; *pOut then holds the text of
// the input's default. pDomain is the named value domain, or "".
bool GetParticleInputDisplayString( const KeyValues3 *pInput, const char *pDomain, CBufferString *pOut, CUtlString *pError );
