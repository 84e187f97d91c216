#pragma once
// The short text by which the function list shows a particle input's value.

class KeyValues3;
class CBufferString;
class CUtlString;

// The input is the member pszField of a function of class pszFunctionClass; its declared
// input class decides how it reads. False, with *pError set, when the input can't be
// loaded; *pOut then holds the text of what did load. pDomain is the named value domain, or "".
bool GetParticleInputDisplayString( const char *pszFunctionClass, const char *pszField, const KeyValues3 *pInput, const char *pDomain,
									CBufferString *pOut, CUtlString *pError );
