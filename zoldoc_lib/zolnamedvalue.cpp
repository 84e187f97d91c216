#include "zoldoc_lib/zolnamedvalue.h"

#include <cmath>

#include "core/kv3/keyvalues3.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluestorage.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

namespace
{
constexpr float DEG_TO_RAD = 3.14159265358979f / 180.0f;

bool IsResourceType( const CPulseValueFullType &type )
{
	return type.GetBaseType() == PVAL_RESOURCE || type.GetBaseType() == PVAL_RESOURCE_NAME;
}

// The type a bare KV3 value most likely held.
CPulseValueFullType GuessType( const KeyValues3 &value )
{
	if ( value.IsNumber() || value.GetType() == KV3_TYPE_BOOL )
		return CPulseValueFullType( PVAL_FLOAT );
	if ( value.IsArray() && value.GetArrayElementCount() == 3 )
		return CPulseValueFullType( PVAL_VEC3 );
	if ( value.IsArray() && value.GetArrayElementCount() == 8 )
		return CPulseValueFullType( PVAL_TRANSFORM );
	if ( value.IsString() )
		return CPulseValueFullType( PVAL_STRING );
	return CPulseValueFullType();
}

void ReadFloats( const KeyValues3 &value, float *pOut, int nCount )
{
	for ( int i = 0; i < nCount; ++i )
		pOut[ i ] = value.IsArray() && i < value.GetArrayElementCount() ? value.GetArrayElement( i )->GetFloat() : 0.0f;
}

void WriteFloats( KeyValues3 *pOut, const float *pValues, int nCount )
{
	pOut->SetToEmptyArray();
	for ( int i = 0; i < nCount; ++i )
		pOut->ArrayAddToTail()->SetDouble( pValues[ i ] );
}
} // namespace

void ZolNamedValue_GetDefault( const CPulseValueFullType &type, KeyValues3 *pOut )
{
	pOut->SetToNull();
	if ( IsResourceType( type ) )
	{
		pOut->SetString( "", KV3_SUBTYPE_STRING_RESOURCE_NAME );
		return;
	}
	if ( !type.IsValid() || PulseValue_GetSize( type ) == 0 )
		return;
	CPulseVariant value( type );
	PulseValue_SaveKV3( type, value.GetValue(), pOut );
	// A default transform has no rotation, not an empty quaternion.
	if ( type.GetBaseType() == PVAL_TRANSFORM && pOut->GetArrayElementCount() == 8 )
		pOut->GetArrayElement( 7 )->SetDouble( 1.0 );
}

void ZolNamedValue_Convert( const CPulseValueFullType &type, const KeyValues3 &in, KeyValues3 *pOut )
{
	if ( IsResourceType( type ) )
	{
		pOut->SetString( in.IsString() ? in.GetString() : "", KV3_SUBTYPE_STRING_RESOURCE_NAME );
		return;
	}
	if ( !type.IsValid() || PulseValue_GetSize( type ) == 0 )
	{
		pOut->SetToNull();
		return;
	}
	CPulseVariant value( type );
	bool bRead = !in.IsNull() && PulseValue_LoadKV3( type, value.GetValue(), &in, nullptr );
	CPulseValueFullType guessed = GuessType( in );
	if ( !bRead && guessed.IsValid() && guessed != type )
	{
		value = CPulseVariant( type );
		CPulseVariant source( guessed );
		if ( PulseValue_LoadKV3( guessed, source.GetValue(), &in, nullptr ) )
			bRead = PulseValue_Convert( guessed, source.GetValue(), type, value.GetValue() );
		// A number spreads over every component of a vector, and a vector's first
		// component stands for it as a number: what artists mean by a size that grew axes.
		if ( !bRead && guessed.GetBaseType() == PVAL_FLOAT && type.GetBaseType() == PVAL_VEC3 )
		{
			float flValue = in.GetFloat();
			*static_cast<Vector *>( value.GetValue() ) = Vector( flValue, flValue, flValue );
			bRead = true;
		}
		else if ( !bRead && guessed.GetBaseType() == PVAL_VEC3 && type.GetBaseType() == PVAL_FLOAT )
		{
			*static_cast<float *>( value.GetValue() ) = in.GetArrayElement( 0 )->GetFloat();
			bRead = true;
		}
	}
	if ( !bRead )
	{
		ZolNamedValue_GetDefault( type, pOut );
		return;
	}
	PulseValue_SaveKV3( type, value.GetValue(), pOut );
}

bool ZolNamedValue_ToTransform( const CPulseValueFullType &type, const KeyValues3 &value, Vector *pPosition, QAngle *pAngles )
{
	KeyValues3 converted;
	ZolNamedValue_Convert( type, value, &converted );
	*pAngles = QAngle();
	switch ( type.GetBaseType() )
	{
	case PVAL_FLOAT:
		*pPosition = Vector( converted.GetFloat(), 0.0f, 0.0f );
		return true;
	case PVAL_VEC3:
		ReadFloats( converted, &pPosition->x, 3 );
		return true;
	case PVAL_TRANSFORM:
	{
		float values[ 8 ];
		ReadFloats( converted, values, 8 );
		*pPosition = Vector( values[ 0 ], values[ 1 ], values[ 2 ] );
		*pAngles = ZolQuaternionToAngles( values + 4 );
		return true;
	}
	default:
		return false;
	}
}

bool ZolNamedValue_FromTransform( const CPulseValueFullType &type, const Vector &vPosition, const QAngle &angles, KeyValues3 *pOut )
{
	switch ( type.GetBaseType() )
	{
	case PVAL_FLOAT:
		pOut->SetDouble( vPosition.x );
		return true;
	case PVAL_VEC3:
		WriteFloats( pOut, &vPosition.x, 3 );
		return true;
	case PVAL_TRANSFORM:
	{
		float values[ 8 ] = { vPosition.x, vPosition.y, vPosition.z, 0.0f };
		ZolAnglesToQuaternion( angles, values + 4 );
		WriteFloats( pOut, values, 8 );
		return true;
	}
	default:
		return false;
	}
}

void ZolAnglesToQuaternion( const QAngle &angles, float *pQuaternion )
{
	float sp = std::sin( angles.x * DEG_TO_RAD * 0.5f ), cp = std::cos( angles.x * DEG_TO_RAD * 0.5f );
	float sy = std::sin( angles.y * DEG_TO_RAD * 0.5f ), cy = std::cos( angles.y * DEG_TO_RAD * 0.5f );
	float sr = std::sin( angles.z * DEG_TO_RAD * 0.5f ), cr = std::cos( angles.z * DEG_TO_RAD * 0.5f );
	pQuaternion[ 0 ] = sr * cp * cy - cr * sp * sy;
	pQuaternion[ 1 ] = cr * sp * cy + sr * cp * sy;
	pQuaternion[ 2 ] = cr * cp * sy - sr * sp * cy;
	pQuaternion[ 3 ] = cr * cp * cy + sr * sp * sy;
}

QAngle ZolQuaternionToAngles( const float *q )
{
	float flLength = std::sqrt( q[ 0 ] * q[ 0 ] + q[ 1 ] * q[ 1 ] + q[ 2 ] * q[ 2 ] + q[ 3 ] * q[ 3 ] );
	if ( flLength < 1e-6f )
		return QAngle();
	float x = q[ 0 ] / flLength, y = q[ 1 ] / flLength, z = q[ 2 ] / flLength, w = q[ 3 ] / flLength;
	float flSinPitch = std::fmax( -1.0f, std::fmin( 1.0f, 2.0f * ( w * y - z * x ) ) );
	float flPitch = std::asin( flSinPitch );
	float flYaw = std::atan2( 2.0f * ( w * z + x * y ), 1.0f - 2.0f * ( y * y + z * z ) );
	float flRoll = std::atan2( 2.0f * ( w * x + y * z ), 1.0f - 2.0f * ( x * x + y * y ) );
	return QAngle( flPitch / DEG_TO_RAD, flYaw / DEG_TO_RAD, flRoll / DEG_TO_RAD );
}
