#pragma once
// Values to and from KV3. Each type has one KV3 form (numbers, strings, arrays of
// floats, a [type text, value] pair for variants). Loading is lenient the way authored
// data needs: any KV3 number kind loads into any number, a numeric string parses, null
// gives the default. What had to be guessed or dropped is reported, one line each.

#include <cstdint>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class KeyValues3;
class CUtlString;

// Where the host keeps its own forms of game times, entity handles and world-space
// values (time bases, entity serials, level offsets). The defaults write the plain forms.
class CPulseValueKV3Hooks
{
public:
	virtual ~CPulseValueKV3Hooks() = default;

	virtual void SaveGameTime( float flTime, KeyValues3 *pKV ) const;
	virtual bool LoadGameTime( const KeyValues3 *pKV, float *pTime, CUtlString *pError ) const;
	// Called for valid handles only; an invalid handle is always written as null.
	virtual void SaveEHandle( uint32_t nHandle, KeyValues3 *pKV ) const;
	virtual bool LoadEHandle( const KeyValues3 *pKV, uint32_t *pHandle, CUtlString *pError ) const;
	// World vectors (3 floats) and world transforms (8 floats).
	virtual void SaveWorldspace( const float *pFloats, int nCount, KeyValues3 *pKV ) const;
	virtual bool LoadWorldspace( const KeyValues3 *pKV, float *pFloats, int nCount, CUtlString *pError ) const;
};

// Writes the value's KV3 form into pKV, replacing what it held.
void PulseValue_SaveKV3( const CPulseValueFullType &type, const void *pValue, KeyValues3 *pKV, const CPulseValueKV3Hooks *pHooks = nullptr );

// Replaces a built value with the one in pKV. Always leaves a built value; answers false
// when something was lost (bad kind, wrong count, unknown name), with the reasons
// appended to pError (one per line) when it is given.
bool PulseValue_LoadKV3( const CPulseValueFullType &type, void *pValue, const KeyValues3 *pKV, CUtlString *pError, const CPulseValueKV3Hooks *pHooks = nullptr );

// Reads a KV3 value as a number the way value loading does: bool, int, uint, double and
// numeric strings are accepted. Other kinds read 0 and report.
bool PulseKV3_ReadDouble( const KeyValues3 *pKV, double *pValue, CUtlString *pError );
bool PulseKV3_ReadInt64( const KeyValues3 *pKV, int64_t *pValue, CUtlString *pError );
bool PulseKV3_ReadUInt64( const KeyValues3 *pKV, uint64_t *pValue, CUtlString *pError );
