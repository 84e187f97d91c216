#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"

#include <cctype>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/text/strtools.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsearraydata.h"
#include "pulse_runtime_lib/valuetypes/pulsetypeservice.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluestorage.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

namespace
{
template <typename T>
T &As( void *pValue )
{
	return *static_cast<T *>( pValue );
}

template <typename T>
const T &As( const void *pValue )
{
	return *static_cast<const T *>( pValue );
}

CPulseScopeEnumeratingTypeService &Service()
{
	return CPulseScopeEnumeratingTypeService::Get();
}

// "true", "yes", "on" or a non-zero number read as true; everything else as false.
bool StringToBool( const char *pText )
{
	while ( isspace( static_cast<unsigned char>( *pText ) ) )
		++pText;
	if ( !V_stricmp_fast( pText, "true" ) || !V_stricmp_fast( pText, "yes" ) || !V_stricmp_fast( pText, "on" ) )
		return true;
	return V_atod( pText ) != 0.0;
}

int32_t TruncateToInt( float flValue )
{
	// Out of range or NaN would be undefined; saturate instead.
	if ( std::isnan( flValue ) )
		return 0;
	if ( flValue >= 2147483648.0f )
		return INT32_MAX;
	if ( flValue <= -2147483648.0f )
		return INT32_MIN;
	return int32_t( flValue );
}

void FloatsToText( const float *pValues, int nCount, CUtlString *pText )
{
	for ( int i = 0; i < nCount; ++i )
	{
		if ( i )
			pText->Append( ' ' );
		PulseValue_AppendFloatText( pText, pValues[ i ] );
	}
}

bool IsHandleWithInstanceRule( PulseValueType_t eType )
{
	return eType == PVAL_EHANDLE || eType == PVAL_VISTARA_PANEL_HANDLE || eType == PVAL_TEST_HANDLE;
}

uint64_t InvalidHandleValue( PulseValueType_t eType )
{
	return eType == PVAL_VISTARA_PANEL_HANDLE ? PULSE_INVALID_VISTARA_PANEL_HANDLE : 0xFFFFFFFFu;
}

// Handle to the same handle kind: a target without subtype takes any value; one with a
// subtype takes the value only when the object is an instance of it right now.
void ConvertHandle( const CPulseValueFullType &from, const void *pSource, const CPulseValueFullType &to, void *pTarget )
{
	size_t nSize = PulseValue_GetSize( to );
	if ( !to.HasSubtype() || to.GetSubtype() == from.GetSubtype() || Service().IsInstanceOf( from, pSource, to ) )
	{
		memcpy( pTarget, pSource, nSize );
		return;
	}
	uint64_t nInvalid = InvalidHandleValue( to.GetBaseType() );
	memcpy( pTarget, &nInvalid, nSize );
}

// The text of a value for the *-to-string rules; false when the type has no such rule.
bool ValueToString( const CPulseValueFullType &from, const void *pSource, CUtlString *pText )
{
	switch ( from.GetBaseType() )
	{
	case PVAL_BOOL:
		pText->Set( As<bool>( pSource ) ? "true" : "false" );
		return true;
	case PVAL_INT:
		pText->Format( "%d", As<int32_t>( pSource ) );
		return true;
	case PVAL_FLOAT:
	case PVAL_GAMETIME:
		PulseValue_AppendFloatText( pText, As<float>( pSource ) );
		return true;
	case PVAL_STRING:
		pText->Set( PulseValue_GetString( pSource ) );
		return true;
	case PVAL_VEC2:
		FloatsToText( static_cast<const float *>( pSource ), 2, pText );
		return true;
	case PVAL_VEC3:
	case PVAL_QANGLE:
	case PVAL_VEC3_WORLDSPACE:
		FloatsToText( static_cast<const float *>( pSource ), 3, pText );
		return true;
	case PVAL_VEC4:
		FloatsToText( static_cast<const float *>( pSource ), 4, pText );
		return true;
	case PVAL_COLOR_RGB:
	{
		const Color &color = As<Color>( pSource );
		pText->Format( "%u %u %u", unsigned( color.r() ), unsigned( color.g() ), unsigned( color.b() ) );
		return true;
	}
	case PVAL_ENTITY_NAME:
		pText->Set( As<CGlobalSymbol>( pSource ).String() );
		return true;
	case PVAL_SCHEMA_ENUM:
	{
		int64_t nValue = As<int64_t>( pSource );
		IPulseTypeQueriesForScope *pQueries = Service().GetCurrentQueries();
		if ( !pQueries || !pQueries->GetEnumeratorName( from.GetSubtype(), nValue, pText ) )
			pText->Format( "%lld", static_cast<long long>( nValue ) );
		return true;
	}
	case PVAL_TEST_HANDLE:
		pText->Format( "%u", As<uint32_t>( pSource ) );
		return true;
	case PVAL_ARRAY:
	{
		const CPulseValueFullType &elementType = *from.GetElementType();
		const CPulseArrayData *pArray = As<CPulseArrayData *>( pSource );
		int nCount = CPulseArrayData::GetCount( pArray );
		if ( nCount == 0 )
		{
			pText->Set( "[]" );
			return true;
		}
		pText->Set( "[" );
		CUtlString element;
		for ( int i = 0; i < nCount; ++i )
		{
			element.Clear();
			if ( !ValueToString( elementType, CPulseArrayData::GetElement( pArray, elementType, i ), &element ) )
				return false;
			pText->Append( i ? ", " : " " );
			pText->Append( element.Get() );
		}
		pText->Append( " ]" );
		return true;
	}
	default:
		return false;
	}
}

bool HasStringRule( const CPulseValueFullType &from )
{
	switch ( from.GetBaseType() )
	{
	case PVAL_BOOL:
	case PVAL_INT:
	case PVAL_FLOAT:
	case PVAL_GAMETIME:
	case PVAL_VEC2:
	case PVAL_VEC3:
	case PVAL_QANGLE:
	case PVAL_VEC3_WORLDSPACE:
	case PVAL_VEC4:
	case PVAL_COLOR_RGB:
	case PVAL_ENTITY_NAME:
	case PVAL_SCHEMA_ENUM:
	case PVAL_TEST_HANDLE:
		return true;
	case PVAL_ARRAY:
		return PulseValue_CanConvert( *from.GetElementType(), CPulseValueFullType( PVAL_STRING ) );
	default:
		return false;
	}
}

// Whether the conversion table has a rule for the pair (the last column's conditions
// included).
bool HasTableRule( const CPulseValueFullType &from, const CPulseValueFullType &to )
{
	PulseValueType_t eFrom = from.GetBaseType();
	PulseValueType_t eTo = to.GetBaseType();
	if ( eTo == PVAL_STRING && HasStringRule( from ) )
		return true;
	switch ( eFrom )
	{
	case PVAL_BOOL:
		return eTo == PVAL_INT || eTo == PVAL_FLOAT;
	case PVAL_INT:
		return eTo == PVAL_BOOL || eTo == PVAL_FLOAT;
	case PVAL_FLOAT:
		return eTo == PVAL_BOOL || eTo == PVAL_INT;
	case PVAL_STRING:
		return eTo == PVAL_BOOL || eTo == PVAL_INT || eTo == PVAL_FLOAT;
	case PVAL_ENTITY_NAME:
		return eTo == PVAL_ENTITY_NAME && !to.HasSubtype();
	case PVAL_EHANDLE:
	case PVAL_VISTARA_PANEL_HANDLE:
	case PVAL_TEST_HANDLE:
		if ( eTo == PVAL_BOOL )
			return true;
		if ( ( eFrom == PVAL_EHANDLE && eTo == PVAL_TEST_HANDLE ) || ( eFrom == PVAL_TEST_HANDLE && eTo == PVAL_EHANDLE ) )
			return true;
		if ( eTo == eFrom )
			return !to.HasSubtype() || Service().IsObjectTypeCompatible( from, to );
		return false;
	case PVAL_OPAQUE_HANDLE:
		return eTo == PVAL_BOOL;
	case PVAL_ARRAY:
		return eTo == PVAL_ARRAY && PulseValue_CanConvert( *from.GetElementType(), *to.GetElementType() );
	default:
		return false;
	}
}

bool ConvertArray( const CPulseValueFullType &from, const void *pSource, const CPulseValueFullType &to, void *pTarget )
{
	const CPulseValueFullType &fromElement = *from.GetElementType();
	const CPulseValueFullType &toElement = *to.GetElementType();
	const CPulseArrayData *pSourceArray = As<CPulseArrayData *>( pSource );
	int nCount = CPulseArrayData::GetCount( pSourceArray );

	CPulseArrayData *pConverted = nullptr;
	if ( pSourceArray )
	{
		CPulseArrayData::SetCount( &pConverted, toElement, nCount );
		for ( int i = 0; i < nCount; ++i )
		{
			void *pElement = CPulseArrayData::GetElementForWrite( &pConverted, toElement, i );
			if ( !PulseValue_Convert( fromElement, CPulseArrayData::GetElement( pSourceArray, fromElement, i ), toElement, pElement ) )
			{
				CPulseArrayData::Release( &pConverted, toElement );
				return false;
			}
		}
	}
	CPulseArrayData::Release( &As<CPulseArrayData *>( pTarget ), toElement );
	As<CPulseArrayData *>( pTarget ) = pConverted;
	return true;
}
} // namespace

bool PulseValue_CanConvert( const CPulseValueFullType &from, const CPulseValueFullType &to )
{
	if ( from.GetBaseType() == PVAL_UNKNOWN || to.GetBaseType() == PVAL_UNKNOWN )
		return true;
	if ( to.GetBaseType() == PVAL_VARIANT )
		return true;
	if ( from == to )
		return true;
	if ( from.IsArray() && to.IsArray() && to.GetElementType()->GetBaseType() == PVAL_UNKNOWN )
		return true;
	if ( HasTableRule( from, to ) )
		return true;
	return Service().IsObjectTypeCompatible( from, to );
}

bool PulseValue_Convert( const CPulseValueFullType &from, const void *pSource, const CPulseValueFullType &to, void *pTarget )
{
	PulseValueType_t eFrom = from.GetBaseType();
	PulseValueType_t eTo = to.GetBaseType();

	if ( from == to )
	{
		if ( PulseValue_GetSize( to ) == 0 )
			return false;
		PulseValue_Copy( to, pTarget, pSource );
		return true;
	}
	if ( eTo == PVAL_VARIANT )
	{
		As<CPulseVariant>( pTarget ).SetValue( from, pSource );
		return true;
	}
	if ( eFrom == PVAL_VARIANT )
	{
		const CPulseVariant &variant = As<CPulseVariant>( pSource );
		if ( variant.IsEmpty() )
			return false;
		return PulseValue_Convert( variant.GetType(), variant.GetValue(), to, pTarget );
	}
	if ( PulseValue_GetSize( from ) == 0 || PulseValue_GetSize( to ) == 0 )
		return false;

	if ( eTo == PVAL_STRING && HasStringRule( from ) )
	{
		CUtlString text;
		if ( !ValueToString( from, pSource, &text ) )
			return false;
		PulseValue_SetString( pTarget, text.Get() );
		return true;
	}

	switch ( eFrom )
	{
	case PVAL_BOOL:
		if ( eTo == PVAL_INT )
			As<int32_t>( pTarget ) = As<bool>( pSource ) ? 1 : 0;
		else if ( eTo == PVAL_FLOAT )
			As<float>( pTarget ) = As<bool>( pSource ) ? 1.0f : 0.0f;
		else
			break;
		return true;
	case PVAL_INT:
		if ( eTo == PVAL_BOOL )
			As<bool>( pTarget ) = As<int32_t>( pSource ) != 0;
		else if ( eTo == PVAL_FLOAT )
			As<float>( pTarget ) = float( As<int32_t>( pSource ) );
		else
			break;
		return true;
	case PVAL_FLOAT:
		if ( eTo == PVAL_BOOL )
			As<bool>( pTarget ) = As<float>( pSource ) != 0.0f;
		else if ( eTo == PVAL_INT )
			As<int32_t>( pTarget ) = TruncateToInt( As<float>( pSource ) );
		else
			break;
		return true;
	case PVAL_STRING:
	{
		const char *pText = PulseValue_GetString( pSource );
		if ( eTo == PVAL_BOOL )
			As<bool>( pTarget ) = StringToBool( pText );
		else if ( eTo == PVAL_INT )
			As<int32_t>( pTarget ) = V_atoi( pText );
		else if ( eTo == PVAL_FLOAT )
			As<float>( pTarget ) = V_atof( pText );
		else
			break;
		return true;
	}
	case PVAL_ENTITY_NAME:
		if ( eTo != PVAL_ENTITY_NAME || to.HasSubtype() )
			break;
		As<CGlobalSymbol>( pTarget ) = As<CGlobalSymbol>( pSource );
		return true;
	default:
		break;
	}

	if ( IsHandleWithInstanceRule( eFrom ) )
	{
		if ( eTo == PVAL_BOOL )
		{
			// A test handle has no invalid value of its own: only liveness counts.
			bool bSet = true;
			if ( eFrom == PVAL_EHANDLE )
				bSet = As<uint32_t>( pSource ) != PULSE_INVALID_EHANDLE;
			else if ( eFrom == PVAL_VISTARA_PANEL_HANDLE )
				bSet = As<uint64_t>( pSource ) != PULSE_INVALID_VISTARA_PANEL_HANDLE;
			As<bool>( pTarget ) = bSet && Service().IsLive( from, pSource );
			return true;
		}
		if ( ( eFrom == PVAL_EHANDLE && eTo == PVAL_TEST_HANDLE ) || ( eFrom == PVAL_TEST_HANDLE && eTo == PVAL_EHANDLE ) )
		{
			As<uint32_t>( pTarget ) = As<uint32_t>( pSource );
			return true;
		}
		if ( eTo == eFrom )
		{
			ConvertHandle( from, pSource, to, pTarget );
			return true;
		}
		return false;
	}
	if ( eFrom == PVAL_OPAQUE_HANDLE && eTo == PVAL_BOOL )
	{
		As<bool>( pTarget ) = As<uint32_t>( pSource ) != PULSE_INVALID_OPAQUE_HANDLE && Service().IsLive( from, pSource );
		return true;
	}
	if ( eFrom == PVAL_ARRAY && eTo == PVAL_ARRAY )
	{
		// An array of unknown can't hold the elements: it would not know how to free them.
		const CPulseValueFullType &toElement = *to.GetElementType();
		if ( toElement.GetBaseType() == PVAL_UNKNOWN || !PulseValue_CanConvert( *from.GetElementType(), toElement ) )
			return false;
		return ConvertArray( from, pSource, to, pTarget );
	}
	// Object types the service calls compatible share the storage of their base type.
	if ( eFrom == eTo && Service().IsObjectTypeCompatible( from, to ) )
	{
		PulseValue_Copy( to, pTarget, pSource );
		return true;
	}
	return false;
}

bool PulseValue_CanReinterpret( const CPulseValueFullType &from, const void *pValue, const CPulseValueFullType &to )
{
	if ( from.GetBaseType() != to.GetBaseType() )
		return false;
	if ( from.IsArray() )
	{
		// Arrays never carry a subtype; the rule applies to their elements.
		const CPulseValueFullType &toElement = *to.GetElementType();
		return toElement.GetBaseType() == PVAL_UNKNOWN || PulseValue_CanReinterpret( *from.GetElementType(), nullptr, toElement );
	}
	if ( from == to || !to.HasSubtype() )
		return true;
	return pValue && IsHandleWithInstanceRule( from.GetBaseType() ) && Service().IsInstanceOf( from, pValue, to );
}
