#include "core/particles/sim/particlekv3read.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "core/kv3/keyvalues3.h"

namespace ParticleKV3
{
const KeyValues3 *Member( const KeyValues3 *pTable, const char *pName )
{
	return pTable && pTable->IsTable() ? pTable->FindMember( CKV3MemberName( pName ) ) : nullptr;
}

float ReadFloat( const KeyValues3 *pValue, float flDefault )
{
	if ( !pValue )
		return flDefault;
	switch ( pValue->GetType() )
	{
	case KV3_TYPE_BOOL:
		return pValue->GetBool() ? 1.0f : 0.0f;
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT:
	case KV3_TYPE_DOUBLE:
		return float( pValue->GetDouble() );
	case KV3_TYPE_STRING:
		return strtof( pValue->GetString(), nullptr );
	default:
		return flDefault;
	}
}

namespace
{
// Numbers beyond an int are cut to its range (NaN is 0), never converted out of range.
int ClampToInt( double flValue )
{
	if ( !( flValue == flValue ) )
		return 0;
	if ( flValue <= double( INT_MIN ) )
		return INT_MIN;
	if ( flValue >= double( INT_MAX ) )
		return INT_MAX;
	return int( flValue );
}

int ClampToInt( long long nValue )
{
	return nValue < INT_MIN ? INT_MIN : nValue > INT_MAX ? INT_MAX : int( nValue );
}
} // namespace

int ReadInt( const KeyValues3 *pValue, int nDefault )
{
	if ( !pValue )
		return nDefault;
	switch ( pValue->GetType() )
	{
	case KV3_TYPE_BOOL:
		return pValue->GetBool() ? 1 : 0;
	case KV3_TYPE_INT:
		return ClampToInt( static_cast<long long>( pValue->GetInt64() ) );
	case KV3_TYPE_UINT:
		return ClampToInt( pValue->GetDouble() );
	case KV3_TYPE_DOUBLE:
		return ClampToInt( pValue->GetDouble() );
	case KV3_TYPE_STRING:
		return ClampToInt( strtoll( pValue->GetString(), nullptr, 10 ) );
	default:
		return nDefault;
	}
}

bool ReadBool( const KeyValues3 *pValue, bool bDefault )
{
	if ( !pValue )
		return bDefault;
	if ( pValue->GetType() == KV3_TYPE_BOOL )
		return pValue->GetBool();
	if ( pValue->IsNumber() )
		return pValue->GetDouble() != 0.0;
	if ( pValue->IsString() )
		return strcasecmp( pValue->GetString(), "true" ) == 0 || atoi( pValue->GetString() ) != 0;
	return bDefault;
}

Vector ReadVector( const KeyValues3 *pValue, const Vector &vDefault )
{
	if ( !pValue || !pValue->IsArray() || pValue->GetArrayElementCount() < 3 )
		return vDefault;
	Vector v;
	for ( int i = 0; i < 3; ++i )
		v[ i ] = ReadFloat( pValue->GetArrayElement( i ), vDefault[ i ] );
	return v;
}

bool ReadColor( const KeyValues3 *pValue, int pRGBA[ 4 ] )
{
	if ( !pValue || !pValue->IsArray() || pValue->GetArrayElementCount() < 3 )
		return false;
	for ( int i = 0; i < 4; ++i )
		pRGBA[ i ] = i < pValue->GetArrayElementCount() ? ReadInt( pValue->GetArrayElement( i ), 255 ) : 255;
	return true;
}

int ReadEnum( const KeyValues3 *pValue, const char *const *pNames, int nNames, int nFirst, int nDefault )
{
	if ( !pValue )
		return nDefault;
	if ( pValue->IsString() )
	{
		const char *pText = pValue->GetString();
		for ( int i = 0; i < nNames; ++i )
		{
			if ( pNames[ i ] && strcmp( pNames[ i ], pText ) == 0 )
				return nFirst + i;
		}
		char *pEnd = nullptr;
		long long nValue = strtoll( pText, &pEnd, 10 );
		return pEnd != pText ? ClampToInt( nValue ) : nDefault;
	}
	if ( pValue->IsNull() )
		return 0;
	return ReadInt( pValue, nDefault );
}
} // namespace ParticleKV3
