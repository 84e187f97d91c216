#pragma once
// Lenient reading of KV3 values into the simulation's fields, as the definition file's
// loaders read them: numbers from bools, ints, doubles and numeric strings; enumerations by
// member name or number.

#include "core/mathlib/vector.h"

class KeyValues3;

namespace ParticleKV3
{
float ReadFloat( const KeyValues3 *pValue, float flDefault );
int ReadInt( const KeyValues3 *pValue, int nDefault );
bool ReadBool( const KeyValues3 *pValue, bool bDefault );
// Three numbers; anything else gives the default.
Vector ReadVector( const KeyValues3 *pValue, const Vector &vDefault );
// Three or four numbers 0 .. 255, written to pRGBA; false if it isn't a colour.
bool ReadColor( const KeyValues3 *pValue, int pRGBA[ 4 ] );
// pNames[ i ] names the value nFirst + i. A name, a number, or the default.
int ReadEnum( const KeyValues3 *pValue, const char *const *pNames, int nNames, int nFirst, int nDefault );
// A member of a table, or null.
const KeyValues3 *Member( const KeyValues3 *pTable, const char *pName );
} // namespace ParticleKV3
