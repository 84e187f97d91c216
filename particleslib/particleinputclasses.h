#pragma once
// Registration of the particle inputs with the schema ("particles" scope) and of their
// default tests with the tool attribute registry, and what the document asks of inputs
// that it holds as KV3 tables.

class KeyValues3;
class CBufferString;
class CUtlString;
class CToolAttrHost;

// Registers every input class (with its enumerations, curve and gradient) and its KV3
// transfer in ParticleTypeScope(). Safe to call any number of times, from any thread.
void RegisterParticleInputClasses();

// Registers "CParticleFloatInputDefaultTestFunc", "CParticleVecInputDefaultTestFunc",
// "CParticleTransformInputDefaultTestFunc" and "CParticleModelInputDefaultTestFunc".
// A name registered before keeps its function. Answers whether all four are present.
bool RegisterParticleInputDefaultTests( CToolAttrHost *pHost );

// Whether two KV3 values mean the same input: equal KV3, or equivalent once loaded. A
// value that fails to load logs "LoadKV3ObjectInPlace error: %s\n" and answers false.
bool CParticleFloatInputDefaultTestFunc( const KeyValues3 *pValue, const KeyValues3 *pDefault );
bool CParticleVecInputDefaultTestFunc( const KeyValues3 *pValue, const KeyValues3 *pDefault );
bool CParticleTransformInputDefaultTestFunc( const KeyValues3 *pValue, const KeyValues3 *pDefault );
bool CParticleModelInputDefaultTestFunc( const KeyValues3 *pValue, const KeyValues3 *pDefault );

// The list text of an input stored as KV3, by its schema class (any float or vector input
// class). False, with *pError set, when the class is no displayable input or the value
// doesn't load; *pOut then holds the text of what did load. pszDomain may be "".
bool GetParticleInputDisplayString( const char *pszClassName, const KeyValues3 *pInput, const char *pszDomain, CBufferString *pOut, CUtlString *pError );

// The input's value in the one form a save gives it, whatever form it was written in (a
// bare number or its literal table, 30 or 30.0): loaded, then saved with the members at
// their default left out. False for a class that is no input, or a value that doesn't load.
bool SaveParticleInputCanonically( const char *pszClassName, const KeyValues3 *pValue, KeyValues3 *pOut );
