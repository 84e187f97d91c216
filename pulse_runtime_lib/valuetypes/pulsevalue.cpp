#include "pulse_runtime_lib/valuetypes/pulsevalue.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <charconv>

#include "core/text/strtools.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsearraydata.h"
#include "pulse_runtime_lib/valuetypes/pulseresource.h"
#include "pulse_runtime_lib/valuetypes/pulsetypeservice.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluestorage.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

namespace
{
struct StorageLayout_t
{
	uint8_t m_nSize;
	uint8_t m_nAlignment;
};

// Indexed by type number + 1, like the name table.
constexpr StorageLayout_t s_Layouts[] = {
	{ 0, 1 },   // PVAL_VOID
	{ 1, 1 },   // PVAL_BOOL
	{ 4, 4 },   // PVAL_INT
	{ 4, 4 },   // PVAL_FLOAT
	{ 8, 8 },   // PVAL_STRING
	{ 8, 4 },   // PVAL_VEC2
	{ 12, 4 },  // PVAL_VEC3
	{ 12, 4 },  // PVAL_QANGLE
	{ 12, 4 },  // PVAL_VEC3_WORLDSPACE
	{ 16, 4 },  // PVAL_VEC4
	{ 32, 16 }, // PVAL_TRANSFORM
	{ 32, 16 }, // PVAL_TRANSFORM_WORLDSPACE
	{ 4, 1 },   // PVAL_COLOR_RGB
	{ 4, 4 },   // PVAL_GAMETIME
	{ 4, 4 },   // PVAL_EHANDLE
	{ 8, 8 },   // PVAL_RESOURCE
	{ 224, 8 }, // PVAL_RESOURCE_NAME
	{ 20, 4 },  // PVAL_SNDEVT_GUID
	{ 16, 8 },  // PVAL_SNDEVT_NAME
	{ 8, 8 },   // PVAL_ENTITY_NAME
	{ 4, 4 },   // PVAL_OPAQUE_HANDLE
	{ 4, 4 },   // PVAL_TYPESAFE_INT
	{ 8, 8 },   // PVAL_MODEL_MATERIAL_GROUP
	{ 0, 1 },   // PVAL_CURSOR_FLOW
	{ 32, 16 }, // PVAL_VARIANT
	{ 0, 1 },   // PVAL_UNKNOWN
	{ 8, 8 },   // PVAL_SCHEMA_ENUM
	{ 8, 8 },   // PVAL_VISTARA_PANEL_HANDLE
	{ 4, 4 },   // PVAL_TEST_HANDLE
	{ 8, 8 },   // PVAL_ARRAY
	{ 8, 8 },   // PVAL_TYPESAFE_INT64
	{ 8, 8 },   // PVAL_PARTICLE_EHANDLE
	{ 0, 1 },   // PVAL_COUNT
};
static_assert( sizeof( s_Layouts ) / sizeof( s_Layouts[ 0 ] ) == PVAL_COUNT + 2 );
static_assert( sizeof( char * ) == 8, "value storage assumes 64-bit pointers" );
static_assert( sizeof( CGlobalSymbol ) == 8 );

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

char *DuplicateText( const char *pText )
{
	if ( !pText || !*pText )
		return nullptr;
	size_t nLength = strlen( pText );
	char *pCopy = new char[ nLength + 1 ];
	memcpy( pCopy, pText, nLength + 1 );
	return pCopy;
}

bool ComponentsNear( const float *pA, const float *pB, int nCount )
{
	for ( int i = 0; i < nCount; ++i )
	{
		// Written so that a NaN compares unequal.
		if ( !( std::fabs( pA[ i ] - pB[ i ] ) <= 0.001f ) )
			return false;
	}
	return true;
}

bool ComponentsExact( const float *pA, const float *pB, int nCount )
{
	for ( int i = 0; i < nCount; ++i )
	{
		if ( !( pA[ i ] == pB[ i ] ) )
			return false;
	}
	return true;
}

bool FloatsNear( float a, float b )
{
	float flScale = std::max( { 1.0f, std::fabs( a ), std::fabs( b ) } );
	return std::fabs( a - b ) <= 0.001f * flScale;
}

bool HandleIsLive( const CPulseValueFullType &type, const void *pValue )
{
	return CPulseScopeEnumeratingTypeService::Get().IsLive( type, pValue );
}
} // namespace

size_t PulseValueType_GetSize( PulseValueType_t eType )
{
	return PulseValueType_IsKnown( eType ) ? s_Layouts[ eType + 1 ].m_nSize : 0;
}

size_t PulseValueType_GetAlignment( PulseValueType_t eType )
{
	return PulseValueType_IsKnown( eType ) ? s_Layouts[ eType + 1 ].m_nAlignment : 1;
}

const char *PulseValue_GetString( const void *pValue )
{
	const char *pText = As<const char *>( pValue );
	return pText ? pText : "";
}

void PulseValue_SetString( void *pValue, const char *pText )
{
	// Copy before freeing: the new text may be the old one.
	char *pCopy = DuplicateText( pText );
	delete[] As<char *>( pValue );
	As<char *>( pValue ) = pCopy;
}

void PulseValue_Construct( const CPulseValueFullType &type, void *pValue )
{
	switch ( type.GetBaseType() )
	{
	case PVAL_EHANDLE:
	case PVAL_OPAQUE_HANDLE:
	case PVAL_TEST_HANDLE:
		As<uint32_t>( pValue ) = 0xFFFFFFFFu;
		break;
	case PVAL_VISTARA_PANEL_HANDLE:
		As<uint64_t>( pValue ) = PULSE_INVALID_VISTARA_PANEL_HANDLE;
		break;
	case PVAL_SNDEVT_GUID:
		new ( pValue ) PulseSoundEventGuid_t;
		break;
	case PVAL_SNDEVT_NAME:
		new ( pValue ) PulseSoundEventName_t;
		break;
	case PVAL_RESOURCE_NAME:
		new ( pValue ) CPulseResourceName;
		break;
	case PVAL_VARIANT:
		new ( pValue ) CPulseVariant;
		break;
	default:
		// Everything else defaults to all zero bits: false, 0, null pointers, zero vectors.
		memset( pValue, 0, PulseValue_GetSize( type ) );
		break;
	}
}

void PulseValue_CopyConstruct( const CPulseValueFullType &type, void *pValue, const void *pSource )
{
	switch ( type.GetBaseType() )
	{
	case PVAL_STRING:
	case PVAL_MODEL_MATERIAL_GROUP:
		As<char *>( pValue ) = DuplicateText( As<const char *>( pSource ) );
		break;
	case PVAL_RESOURCE:
		As<CPulseResourceBinding *>( pValue ) = As<CPulseResourceBinding *>( pSource );
		if ( CPulseResourceBinding *pBinding = As<CPulseResourceBinding *>( pValue ) )
			pBinding->AddRef();
		break;
	case PVAL_SNDEVT_NAME:
		new ( pValue ) PulseSoundEventName_t( As<PulseSoundEventName_t>( pSource ) );
		break;
	case PVAL_RESOURCE_NAME:
		new ( pValue ) CPulseResourceName( As<CPulseResourceName>( pSource ) );
		break;
	case PVAL_ARRAY:
		As<CPulseArrayData *>( pValue ) = nullptr;
		CPulseArrayData::Assign( &As<CPulseArrayData *>( pValue ), As<CPulseArrayData *>( pSource ), *type.GetElementType() );
		break;
	case PVAL_VARIANT:
		new ( pValue ) CPulseVariant( As<CPulseVariant>( pSource ) );
		break;
	default:
		memcpy( pValue, pSource, PulseValue_GetSize( type ) );
		break;
	}
}

void PulseValue_Destruct( const CPulseValueFullType &type, void *pValue )
{
	switch ( type.GetBaseType() )
	{
	case PVAL_STRING:
	case PVAL_MODEL_MATERIAL_GROUP:
		delete[] As<char *>( pValue );
		As<char *>( pValue ) = nullptr;
		break;
	case PVAL_RESOURCE:
		if ( CPulseResourceBinding *pBinding = As<CPulseResourceBinding *>( pValue ) )
			pBinding->Release();
		As<CPulseResourceBinding *>( pValue ) = nullptr;
		break;
	case PVAL_SNDEVT_NAME:
		As<PulseSoundEventName_t>( pValue ).~PulseSoundEventName_t();
		break;
	case PVAL_RESOURCE_NAME:
		As<CPulseResourceName>( pValue ).~CPulseResourceName();
		break;
	case PVAL_ARRAY:
		CPulseArrayData::Release( &As<CPulseArrayData *>( pValue ), *type.GetElementType() );
		break;
	case PVAL_VARIANT:
		As<CPulseVariant>( pValue ).~CPulseVariant();
		break;
	default:
		break;
	}
}

void PulseValue_Copy( const CPulseValueFullType &type, void *pValue, const void *pSource )
{
	if ( pValue == pSource )
		return;
	switch ( type.GetBaseType() )
	{
	case PVAL_STRING:
	case PVAL_MODEL_MATERIAL_GROUP:
		PulseValue_SetString( pValue, As<const char *>( pSource ) );
		break;
	case PVAL_RESOURCE:
	{
		CPulseResourceBinding *pNew = As<CPulseResourceBinding *>( pSource );
		if ( pNew )
			pNew->AddRef();
		if ( CPulseResourceBinding *pOld = As<CPulseResourceBinding *>( pValue ) )
			pOld->Release();
		As<CPulseResourceBinding *>( pValue ) = pNew;
		break;
	}
	case PVAL_SNDEVT_NAME:
		As<PulseSoundEventName_t>( pValue ) = As<PulseSoundEventName_t>( pSource );
		break;
	case PVAL_RESOURCE_NAME:
		As<CPulseResourceName>( pValue ) = As<CPulseResourceName>( pSource );
		break;
	case PVAL_ARRAY:
		CPulseArrayData::Assign( &As<CPulseArrayData *>( pValue ), As<CPulseArrayData *>( pSource ), *type.GetElementType() );
		break;
	case PVAL_VARIANT:
		As<CPulseVariant>( pValue ) = As<CPulseVariant>( pSource );
		break;
	default:
		memmove( pValue, pSource, PulseValue_GetSize( type ) );
		break;
	}
}

bool PulseValue_IsEqual( const CPulseValueFullType &type, const void *pA, const void *pB )
{
	switch ( type.GetBaseType() )
	{
	case PVAL_BOOL:
		return memcmp( pA, pB, 1 ) == 0;
	case PVAL_INT:
	case PVAL_TYPESAFE_INT:
	case PVAL_COLOR_RGB:
	case PVAL_EHANDLE:
	case PVAL_OPAQUE_HANDLE:
	case PVAL_TEST_HANDLE:
		return memcmp( pA, pB, 4 ) == 0;
	case PVAL_FLOAT:
		return FloatsNear( As<float>( pA ), As<float>( pB ) );
	case PVAL_VEC2:
		return ComponentsNear( static_cast<const float *>( pA ), static_cast<const float *>( pB ), 2 );
	case PVAL_VEC3:
	case PVAL_VEC3_WORLDSPACE:
		return ComponentsNear( static_cast<const float *>( pA ), static_cast<const float *>( pB ), 3 );
	case PVAL_VEC4:
		return ComponentsNear( static_cast<const float *>( pA ), static_cast<const float *>( pB ), 4 );
	case PVAL_QANGLE:
		return ComponentsExact( static_cast<const float *>( pA ), static_cast<const float *>( pB ), 3 );
	case PVAL_GAMETIME:
		return ComponentsExact( static_cast<const float *>( pA ), static_cast<const float *>( pB ), 1 );
	case PVAL_TRANSFORM:
	case PVAL_TRANSFORM_WORLDSPACE:
		return ComponentsExact( static_cast<const float *>( pA ), static_cast<const float *>( pB ), 8 );
	case PVAL_STRING:
	case PVAL_MODEL_MATERIAL_GROUP:
		return V_stricmp_fast( PulseValue_GetString( pA ), PulseValue_GetString( pB ) ) == 0;
	case PVAL_RESOURCE:
	case PVAL_ENTITY_NAME:
	case PVAL_SCHEMA_ENUM:
	case PVAL_VISTARA_PANEL_HANDLE:
	case PVAL_TYPESAFE_INT64:
	case PVAL_PARTICLE_EHANDLE:
		return memcmp( pA, pB, 8 ) == 0;
	case PVAL_RESOURCE_NAME:
		return As<CPulseResourceName>( pA ).IsSameResource( As<CPulseResourceName>( pB ) );
	case PVAL_SNDEVT_GUID:
		return memcmp( pA, pB, sizeof( PulseSoundEventGuid_t ) ) == 0;
	case PVAL_SNDEVT_NAME:
		return As<PulseSoundEventName_t>( pA ).IsIdentical( As<PulseSoundEventName_t>( pB ) );
	case PVAL_VARIANT:
		return As<CPulseVariant>( pA ) == As<CPulseVariant>( pB );
	case PVAL_ARRAY:
		return CPulseArrayData::IsEqual( As<CPulseArrayData *>( pA ), As<CPulseArrayData *>( pB ), *type.GetElementType() );
	default:
		// Void, unknown and types without storage hold nothing to differ in.
		return true;
	}
}

bool PulseValue_IsValid( const CPulseValueFullType &type, const void *pValue )
{
	switch ( type.GetBaseType() )
	{
	case PVAL_EHANDLE:
	case PVAL_OPAQUE_HANDLE:
		return As<uint32_t>( pValue ) != 0xFFFFFFFFu && HandleIsLive( type, pValue );
	case PVAL_ENTITY_NAME:
		return As<CGlobalSymbol>( pValue ).IsValid();
	case PVAL_VISTARA_PANEL_HANDLE:
		return As<uint64_t>( pValue ) != PULSE_INVALID_VISTARA_PANEL_HANDLE && HandleIsLive( type, pValue );
	case PVAL_TEST_HANDLE:
		return HandleIsLive( type, pValue );
	default:
		return true;
	}
}

void PulseValue_AppendFloatText( CUtlString *pText, double flValue )
{
	// to_chars is "%f" without the C locale's say in the decimal point.
	char buffer[ 512 ];
	std::to_chars_result result = std::to_chars( buffer, buffer + sizeof( buffer ), flValue, std::chars_format::fixed, 6 );
	if ( result.ec != std::errc() )
	{
		pText->Append( "0" );
		return;
	}
	size_t nLength = size_t( result.ptr - buffer );
	if ( memchr( buffer, '.', nLength ) )
	{
		while ( nLength > 0 && buffer[ nLength - 1 ] == '0' )
			--nLength;
		if ( nLength > 0 && buffer[ nLength - 1 ] == '.' )
			--nLength;
	}
	pText->Append( buffer, nLength );
}

void PulseValue_ToText( const CPulseValueFullType &type, const void *pValue, CUtlString *pText )
{
	pText->Clear();
	// Types with a string conversion print what a graph would print.
	CPulseValueFullType stringType( PVAL_STRING );
	if ( type.GetBaseType() != PVAL_ARRAY && type.GetBaseType() != PVAL_VARIANT )
	{
		char *pConverted = nullptr;
		if ( PulseValue_Convert( type, pValue, stringType, &pConverted ) )
		{
			pText->Set( pConverted ? pConverted : "" );
			delete[] pConverted;
			return;
		}
	}

	switch ( type.GetBaseType() )
	{
	case PVAL_STRING:
	case PVAL_MODEL_MATERIAL_GROUP:
		pText->Set( PulseValue_GetString( pValue ) );
		break;
	case PVAL_TRANSFORM:
	case PVAL_TRANSFORM_WORLDSPACE:
		for ( int i = 0; i < 8; ++i )
		{
			if ( i )
				pText->Append( ' ' );
			PulseValue_AppendFloatText( pText, static_cast<const float *>( pValue )[ i ] );
		}
		break;
	case PVAL_EHANDLE:
	case PVAL_OPAQUE_HANDLE:
		pText->Format( "%u", As<uint32_t>( pValue ) );
		break;
	case PVAL_TYPESAFE_INT:
		pText->Format( "%d", As<int32_t>( pValue ) );
		break;
	case PVAL_RESOURCE:
		if ( const CPulseResourceBinding *pBinding = As<CPulseResourceBinding *>( pValue ) )
			pText->Set( pBinding->GetName() );
		break;
	case PVAL_RESOURCE_NAME:
		pText->Set( As<CPulseResourceName>( pValue ).Get() );
		break;
	case PVAL_SNDEVT_GUID:
	{
		const uint32_t *pWords = As<PulseSoundEventGuid_t>( pValue ).m_nWords;
		pText->Format( "%u %d %u %u %u", pWords[ 0 ], int32_t( pWords[ 1 ] ), pWords[ 2 ], pWords[ 3 ], pWords[ 4 ] );
		break;
	}
	case PVAL_SNDEVT_NAME:
		pText->Set( As<PulseSoundEventName_t>( pValue ).Get() );
		break;
	case PVAL_TYPESAFE_INT64:
		pText->Format( "%lld", static_cast<long long>( As<int64_t>( pValue ) ) );
		break;
	case PVAL_VISTARA_PANEL_HANDLE:
	case PVAL_PARTICLE_EHANDLE:
		pText->Format( "%llu", static_cast<unsigned long long>( As<uint64_t>( pValue ) ) );
		break;
	case PVAL_VARIANT:
	{
		const CPulseVariant &variant = As<CPulseVariant>( pValue );
		if ( const void *pInner = variant.GetValue() )
			PulseValue_ToText( variant.GetType(), pInner, pText );
		break;
	}
	case PVAL_ARRAY:
	{
		const CPulseValueFullType &elementType = *type.GetElementType();
		const CPulseArrayData *pArray = As<CPulseArrayData *>( pValue );
		int nCount = CPulseArrayData::GetCount( pArray );
		if ( nCount == 0 )
		{
			pText->Set( "[]" );
			break;
		}
		pText->Set( "[" );
		CUtlString element;
		for ( int i = 0; i < nCount; ++i )
		{
			PulseValue_ToText( elementType, CPulseArrayData::GetElement( pArray, elementType, i ), &element );
			pText->Append( i ? ", " : " " );
			pText->Append( element.Get() );
		}
		pText->Append( " ]" );
		break;
	}
	default:
		break;
	}
}
