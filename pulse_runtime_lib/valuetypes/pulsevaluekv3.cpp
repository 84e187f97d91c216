#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "core/text/strtools.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsearraydata.h"
#include "pulse_runtime_lib/valuetypes/pulseresource.h"
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

void AppendError( CUtlString *pError, const CUtlString &message )
{
	if ( !pError )
		return;
	if ( !pError->IsEmpty() && pError->Storage().back() != '\n' )
		pError->Append( '\n' );
	pError->Append( message.Get() );
}

bool ReportUnsupported( const KeyValues3 *pKV, CUtlString *pError )
{
	CUtlString message;
	message.Format( "Unsupported KV3 basic type '%s' (%d)!", pKV->GetTypeAsString(), int( pKV->GetType() ) );
	AppendError( pError, message );
	return false;
}

bool ReportLoss( const char *pSource, const char *pResult, CUtlString *pError )
{
	CUtlString message;
	message.Format( "Cast of %s loses value information (returning %s)\n", pSource, pResult );
	AppendError( pError, message );
	return false;
}

bool ReportWrongKind( const char *pExpected, const KeyValues3 *pKV, CUtlString *pError )
{
	CUtlString message;
	message.Format( "Expected %s, found KV3 '%s'", pExpected, pKV->GetTypeAsString() );
	AppendError( pError, message );
	return false;
}

CUtlString DoubleText( double flValue )
{
	CUtlString text;
	PulseValue_AppendFloatText( &text, flValue );
	return text;
}

CUtlString Int64Text( int64_t nValue )
{
	CUtlString text;
	text.Format( "%lld", static_cast<long long>( nValue ) );
	return text;
}

CUtlString UInt64Text( uint64_t nValue )
{
	CUtlString text;
	text.Format( "%llu", static_cast<unsigned long long>( nValue ) );
	return text;
}

// A whole string as a number; false when it isn't one entirely.
bool ParseNumberText( const char *pText, double *pValue )
{
	return V_StringToDouble( pText, pValue );
}

bool ReadInt32( const KeyValues3 *pKV, int32_t *pValue, CUtlString *pError )
{
	int64_t nWide = 0;
	bool bOk = PulseKV3_ReadInt64( pKV, &nWide, pError );
	*pValue = int32_t( nWide );
	if ( *pValue != nWide )
		return ReportLoss( Int64Text( nWide ).Get(), Int64Text( *pValue ).Get(), pError );
	return bOk;
}

bool ReadUInt32( const KeyValues3 *pKV, uint32_t *pValue, CUtlString *pError )
{
	// Handles are written unsigned but -1 is how people type "none".
	if ( pKV->GetType() == KV3_TYPE_INT && pKV->GetInt64() == -1 )
	{
		*pValue = 0xFFFFFFFFu;
		return true;
	}
	uint64_t nWide = 0;
	bool bOk = PulseKV3_ReadUInt64( pKV, &nWide, pError );
	*pValue = uint32_t( nWide );
	if ( *pValue != nWide )
		return ReportLoss( UInt64Text( nWide ).Get(), UInt64Text( *pValue ).Get(), pError );
	return bOk;
}

void SaveFloats( const float *pFloats, int nCount, KeyValues3 *pKV )
{
	pKV->SetToEmptyArray();
	for ( int i = 0; i < nCount; ++i )
		pKV->ArrayAddToTail()->SetFloat( pFloats[ i ] );
}

// Reads up to nCount numbers; missing ones stay 0. False when the count or a kind is off.
bool LoadFloats( const KeyValues3 *pKV, float *pFloats, int nCount, CUtlString *pError )
{
	for ( int i = 0; i < nCount; ++i )
		pFloats[ i ] = 0.0f;
	if ( pKV->IsNull() )
		return true;
	if ( !pKV->IsArray() )
		return ReportWrongKind( "an array of numbers", pKV, pError );
	bool bOk = true;
	int nFound = pKV->GetArrayElementCount();
	for ( int i = 0; i < nCount && i < nFound; ++i )
	{
		double flValue = 0.0;
		bOk &= PulseKV3_ReadDouble( pKV->GetArrayElement( i ), &flValue, pError );
		pFloats[ i ] = float( flValue );
	}
	if ( nFound != nCount )
	{
		CUtlString message;
		message.Format( "Expected %d numbers, found %d", nCount, nFound );
		AppendError( pError, message );
		bOk = false;
	}
	return bOk;
}

const char *ReadText( const KeyValues3 *pKV, bool *pOk, CUtlString *pError )
{
	if ( pKV->IsString() )
		return pKV->GetString();
	if ( !pKV->IsNull() )
		*pOk = ReportWrongKind( "a string", pKV, pError );
	return "";
}

const CPulseValueKV3Hooks &DefaultHooks()
{
	static const CPulseValueKV3Hooks s_Hooks;
	return s_Hooks;
}
} // namespace

bool PulseKV3_ReadDouble( const KeyValues3 *pKV, double *pValue, CUtlString *pError )
{
	*pValue = 0.0;
	switch ( pKV->GetType() )
	{
	case KV3_TYPE_NULL:
		return true;
	case KV3_TYPE_BOOL:
		*pValue = pKV->GetBool() ? 1.0 : 0.0;
		return true;
	case KV3_TYPE_INT:
		*pValue = double( pKV->GetInt64() );
		return true;
	case KV3_TYPE_UINT:
		*pValue = double( pKV->GetUInt64() );
		return true;
	case KV3_TYPE_DOUBLE:
		*pValue = pKV->GetDouble();
		return true;
	case KV3_TYPE_STRING:
		if ( ParseNumberText( pKV->GetString(), pValue ) )
			return true;
		*pValue = V_atod( pKV->GetString() );
		return ReportLoss( pKV->GetString(), DoubleText( *pValue ).Get(), pError );
	default:
		return ReportUnsupported( pKV, pError );
	}
}

bool PulseKV3_ReadInt64( const KeyValues3 *pKV, int64_t *pValue, CUtlString *pError )
{
	*pValue = 0;
	switch ( pKV->GetType() )
	{
	case KV3_TYPE_INT:
		*pValue = pKV->GetInt64();
		return true;
	case KV3_TYPE_UINT:
	{
		uint64_t nValue = pKV->GetUInt64();
		*pValue = int64_t( nValue );
		if ( nValue > uint64_t( INT64_MAX ) )
			return ReportLoss( UInt64Text( nValue ).Get(), Int64Text( *pValue ).Get(), pError );
		return true;
	}
	case KV3_TYPE_STRING:
	{
		// Integers parse exactly; anything else goes through the double rule below.
		if ( V_StringToInt64( pKV->GetString(), pValue ) )
			return true;
		[[fallthrough]];
	}
	default:
	{
		double flValue = 0.0;
		bool bOk = PulseKV3_ReadDouble( pKV, &flValue, pError );
		if ( std::isnan( flValue ) || flValue < -9223372036854775808.0 || flValue >= 9223372036854775808.0 )
		{
			*pValue = 0;
			return ReportLoss( DoubleText( flValue ).Get(), "0", pError );
		}
		*pValue = int64_t( flValue );
		if ( double( *pValue ) != flValue )
			return ReportLoss( DoubleText( flValue ).Get(), Int64Text( *pValue ).Get(), pError );
		return bOk;
	}
	}
}

bool PulseKV3_ReadUInt64( const KeyValues3 *pKV, uint64_t *pValue, CUtlString *pError )
{
	*pValue = 0;
	if ( pKV->GetType() == KV3_TYPE_UINT )
	{
		*pValue = pKV->GetUInt64();
		return true;
	}
	if ( pKV->GetType() == KV3_TYPE_STRING )
	{
		const char *pText = pKV->GetString();
		char *pEnd = nullptr;
		errno = 0;
		unsigned long long nValue = strtoull( pText, &pEnd, 10 );
		if ( pEnd != pText && *pEnd == '\0' && errno == 0 && *pText != '-' )
		{
			*pValue = nValue;
			return true;
		}
	}
	int64_t nSigned = 0;
	bool bOk = PulseKV3_ReadInt64( pKV, &nSigned, pError );
	*pValue = uint64_t( nSigned );
	if ( nSigned < 0 )
		return ReportLoss( Int64Text( nSigned ).Get(), UInt64Text( *pValue ).Get(), pError );
	return bOk;
}

void CPulseValueKV3Hooks::SaveGameTime( float flTime, KeyValues3 *pKV ) const
{
	pKV->SetDouble( flTime );
}

bool CPulseValueKV3Hooks::LoadGameTime( const KeyValues3 *pKV, float *pTime, CUtlString *pError ) const
{
	double flValue = 0.0;
	bool bOk = PulseKV3_ReadDouble( pKV, &flValue, pError );
	*pTime = float( flValue );
	return bOk;
}

void CPulseValueKV3Hooks::SaveEHandle( uint32_t nHandle, KeyValues3 *pKV ) const
{
	pKV->SetUInt( nHandle );
}

bool CPulseValueKV3Hooks::LoadEHandle( const KeyValues3 *pKV, uint32_t *pHandle, CUtlString *pError ) const
{
	return ReadUInt32( pKV, pHandle, pError );
}

void CPulseValueKV3Hooks::SaveWorldspace( const float *pFloats, int nCount, KeyValues3 *pKV ) const
{
	SaveFloats( pFloats, nCount, pKV );
}

bool CPulseValueKV3Hooks::LoadWorldspace( const KeyValues3 *pKV, float *pFloats, int nCount, CUtlString *pError ) const
{
	return LoadFloats( pKV, pFloats, nCount, pError );
}

void PulseValue_SaveKV3( const CPulseValueFullType &type, const void *pValue, KeyValues3 *pKV, const CPulseValueKV3Hooks *pHooks )
{
	const CPulseValueKV3Hooks &hooks = pHooks ? *pHooks : DefaultHooks();
	switch ( type.GetBaseType() )
	{
	case PVAL_BOOL:
		pKV->SetBool( As<bool>( pValue ) );
		break;
	case PVAL_INT:
	case PVAL_TYPESAFE_INT:
		pKV->SetInt( As<int32_t>( pValue ) );
		break;
	case PVAL_FLOAT:
		pKV->SetDouble( As<float>( pValue ) );
		break;
	case PVAL_STRING:
	case PVAL_MODEL_MATERIAL_GROUP:
		pKV->SetString( PulseValue_GetString( pValue ) );
		break;
	case PVAL_VEC2:
		SaveFloats( static_cast<const float *>( pValue ), 2, pKV );
		break;
	case PVAL_VEC3:
	case PVAL_QANGLE:
		SaveFloats( static_cast<const float *>( pValue ), 3, pKV );
		break;
	case PVAL_VEC3_WORLDSPACE:
		hooks.SaveWorldspace( static_cast<const float *>( pValue ), 3, pKV );
		break;
	case PVAL_VEC4:
		SaveFloats( static_cast<const float *>( pValue ), 4, pKV );
		break;
	case PVAL_TRANSFORM:
		SaveFloats( static_cast<const float *>( pValue ), 8, pKV );
		break;
	case PVAL_TRANSFORM_WORLDSPACE:
		hooks.SaveWorldspace( static_cast<const float *>( pValue ), 8, pKV );
		break;
	case PVAL_COLOR_RGB:
	{
		// Colours are arrays of byte components, alpha included: equality compares it.
		const Color &color = As<Color>( pValue );
		pKV->SetToEmptyArray();
		for ( int i = 0; i < 4; ++i )
			pKV->ArrayAddToTail()->SetInt( color[ i ] );
		break;
	}
	case PVAL_GAMETIME:
		hooks.SaveGameTime( As<float>( pValue ), pKV );
		break;
	case PVAL_EHANDLE:
		if ( As<uint32_t>( pValue ) == PULSE_INVALID_EHANDLE )
			pKV->SetToNull();
		else
			hooks.SaveEHandle( As<uint32_t>( pValue ), pKV );
		break;
	case PVAL_RESOURCE:
	{
		const CPulseResourceBinding *pBinding = As<CPulseResourceBinding *>( pValue );
		pKV->SetString( pBinding ? pBinding->GetName() : "", KV3_SUBTYPE_STRING_RESOURCE_NAME );
		break;
	}
	case PVAL_RESOURCE_NAME:
		pKV->SetString( As<CPulseResourceName>( pValue ).Get(), KV3_SUBTYPE_STRING_RESOURCE_NAME );
		break;
	case PVAL_SNDEVT_GUID:
	{
		uint64_t nFirst;
		memcpy( &nFirst, pValue, sizeof( nFirst ) );
		pKV->SetUInt64( nFirst );
		break;
	}
	case PVAL_SNDEVT_NAME:
		pKV->SetString( As<PulseSoundEventName_t>( pValue ).Get(), KV3_SUBTYPE_STRING_SOUNDEVENT );
		break;
	case PVAL_ENTITY_NAME:
		pKV->SetString( As<CGlobalSymbol>( pValue ).String() );
		break;
	case PVAL_OPAQUE_HANDLE:
	case PVAL_TEST_HANDLE:
		pKV->SetUInt( As<uint32_t>( pValue ) );
		break;
	case PVAL_SCHEMA_ENUM:
	{
		// By name, so saved data survives renumbering; a number when no name is known.
		int64_t nValue = As<int64_t>( pValue );
		CUtlString name;
		IPulseTypeQueriesForScope *pQueries = CPulseScopeEnumeratingTypeService::Get().GetCurrentQueries();
		if ( pQueries && pQueries->GetEnumeratorName( type.GetSubtype(), nValue, &name ) )
			pKV->SetString( name.Get() );
		else
			pKV->SetInt64( nValue );
		break;
	}
	case PVAL_VISTARA_PANEL_HANDLE:
	case PVAL_PARTICLE_EHANDLE:
		pKV->SetUInt64( As<uint64_t>( pValue ) );
		break;
	case PVAL_TYPESAFE_INT64:
		pKV->SetInt64( As<int64_t>( pValue ) );
		break;
	case PVAL_ARRAY:
	{
		const CPulseValueFullType &elementType = *type.GetElementType();
		const CPulseArrayData *pArray = As<CPulseArrayData *>( pValue );
		int nCount = CPulseArrayData::GetCount( pArray );
		pKV->SetToEmptyArray();
		pKV->ArrayReserve( nCount );
		for ( int i = 0; i < nCount; ++i )
			PulseValue_SaveKV3( elementType, CPulseArrayData::GetElement( pArray, elementType, i ), pKV->ArrayAddToTail(), pHooks );
		break;
	}
	case PVAL_VARIANT:
	{
		const CPulseVariant &variant = As<CPulseVariant>( pValue );
		if ( variant.IsEmpty() )
		{
			pKV->SetToNull();
			break;
		}
		pKV->SetToEmptyArray();
		pKV->ArrayAddToTail()->SetString( variant.GetType().ToString().Get() );
		KeyValues3 *pInner = pKV->ArrayAddToTail();
		if ( const void *pInnerValue = variant.GetValue() )
			PulseValue_SaveKV3( variant.GetType(), pInnerValue, pInner, pHooks );
		break;
	}
	default:
		pKV->SetToNull();
		break;
	}
}

bool PulseValue_LoadKV3( const CPulseValueFullType &type, void *pValue, const KeyValues3 *pKV, CUtlString *pError, const CPulseValueKV3Hooks *pHooks )
{
	const CPulseValueKV3Hooks &hooks = pHooks ? *pHooks : DefaultHooks();
	if ( PulseValue_GetSize( type ) == 0 )
		return true;

	bool bOk = true;
	switch ( type.GetBaseType() )
	{
	case PVAL_BOOL:
	{
		if ( pKV->GetType() == KV3_TYPE_BOOL )
		{
			As<bool>( pValue ) = pKV->GetBool();
			break;
		}
		double flValue = 0.0;
		bOk = PulseKV3_ReadDouble( pKV, &flValue, pError );
		As<bool>( pValue ) = flValue != 0.0;
		break;
	}
	case PVAL_INT:
	case PVAL_TYPESAFE_INT:
		bOk = ReadInt32( pKV, &As<int32_t>( pValue ), pError );
		break;
	case PVAL_FLOAT:
	{
		double flValue = 0.0;
		bOk = PulseKV3_ReadDouble( pKV, &flValue, pError );
		As<float>( pValue ) = float( flValue );
		break;
	}
	case PVAL_STRING:
	case PVAL_MODEL_MATERIAL_GROUP:
		PulseValue_SetString( pValue, ReadText( pKV, &bOk, pError ) );
		break;
	case PVAL_VEC2:
		bOk = LoadFloats( pKV, static_cast<float *>( pValue ), 2, pError );
		break;
	case PVAL_VEC3:
	case PVAL_QANGLE:
		bOk = LoadFloats( pKV, static_cast<float *>( pValue ), 3, pError );
		break;
	case PVAL_VEC3_WORLDSPACE:
		bOk = hooks.LoadWorldspace( pKV, static_cast<float *>( pValue ), 3, pError );
		break;
	case PVAL_VEC4:
		bOk = LoadFloats( pKV, static_cast<float *>( pValue ), 4, pError );
		break;
	case PVAL_TRANSFORM:
		bOk = LoadFloats( pKV, static_cast<float *>( pValue ), 8, pError );
		break;
	case PVAL_TRANSFORM_WORLDSPACE:
		bOk = hooks.LoadWorldspace( pKV, static_cast<float *>( pValue ), 8, pError );
		break;
	case PVAL_COLOR_RGB:
	{
		Color &color = As<Color>( pValue );
		color = Color( 0, 0, 0, 0 );
		if ( pKV->IsNull() )
			break;
		int nCount = pKV->GetArrayElementCount();
		if ( !pKV->IsArray() || ( nCount != 3 && nCount != 4 ) )
		{
			bOk = ReportWrongKind( "an array of 3 or 4 colour components", pKV, pError );
			break;
		}
		// Three components mean an opaque colour.
		color[ 3 ] = 255;
		for ( int i = 0; i < nCount; ++i )
		{
			int32_t nComponent = 0;
			bOk &= ReadInt32( pKV->GetArrayElement( i ), &nComponent, pError );
			color[ i ] = uint8_t( nComponent < 0 ? 0 : nComponent > 255 ? 255 : nComponent );
			if ( nComponent < 0 || nComponent > 255 )
				bOk = ReportLoss( Int64Text( nComponent ).Get(), Int64Text( color[ i ] ).Get(), pError );
		}
		break;
	}
	case PVAL_GAMETIME:
		bOk = hooks.LoadGameTime( pKV, &As<float>( pValue ), pError );
		break;
	case PVAL_EHANDLE:
		if ( pKV->IsNull() )
			As<uint32_t>( pValue ) = PULSE_INVALID_EHANDLE;
		else
			bOk = hooks.LoadEHandle( pKV, &As<uint32_t>( pValue ), pError );
		break;
	case PVAL_RESOURCE:
	{
		const char *pName = ReadText( pKV, &bOk, pError );
		CPulseResourceBinding *pBinding = PulseResource_Resolve( pName, type.GetSubtype() );
		PulseValue_Destruct( type, pValue );
		As<CPulseResourceBinding *>( pValue ) = pBinding;
		if ( *pName && !pBinding )
		{
			CUtlString message;
			message.Format( "Unknown resource '%s'", pName );
			AppendError( pError, message );
			bOk = false;
		}
		break;
	}
	case PVAL_RESOURCE_NAME:
		As<CPulseResourceName>( pValue ).Set( ReadText( pKV, &bOk, pError ) );
		break;
	case PVAL_SNDEVT_GUID:
	{
		PulseSoundEventGuid_t &guid = As<PulseSoundEventGuid_t>( pValue );
		guid = PulseSoundEventGuid_t();
		if ( pKV->IsNull() )
			break;
		uint64_t nFirst = 0;
		bOk = PulseKV3_ReadUInt64( pKV, &nFirst, pError );
		memcpy( guid.m_nWords, &nFirst, sizeof( nFirst ) );
		guid.m_nWords[ 2 ] = guid.m_nWords[ 3 ] = guid.m_nWords[ 4 ] = 0;
		break;
	}
	case PVAL_SNDEVT_NAME:
		As<PulseSoundEventName_t>( pValue ).Set( ReadText( pKV, &bOk, pError ) );
		break;
	case PVAL_ENTITY_NAME:
		As<CGlobalSymbol>( pValue ) = CGlobalSymbol( ReadText( pKV, &bOk, pError ) );
		break;
	case PVAL_OPAQUE_HANDLE:
	case PVAL_TEST_HANDLE:
		if ( pKV->IsNull() )
			As<uint32_t>( pValue ) = 0xFFFFFFFFu;
		else
			bOk = ReadUInt32( pKV, &As<uint32_t>( pValue ), pError );
		break;
	case PVAL_SCHEMA_ENUM:
	{
		int64_t &nValue = As<int64_t>( pValue );
		nValue = 0;
		if ( pKV->IsString() )
		{
			const char *pText = pKV->GetString();
			IPulseTypeQueriesForScope *pQueries = CPulseScopeEnumeratingTypeService::Get().GetCurrentQueries();
			CUtlString enumError;
			double flNumber = 0.0;
			if ( !*pText )
				break;
			if ( pQueries && pQueries->FindEnumeratorValue( type.GetSubtype(), pText, &nValue, &enumError ) )
				break;
			if ( ParseNumberText( pText, &flNumber ) )
			{
				bOk = PulseKV3_ReadInt64( pKV, &nValue, pError );
				break;
			}
			if ( enumError.IsEmpty() )
				enumError.Format( "Unknown enumerator '%s' of %s", pText, type.GetSubtype().String() );
			AppendError( pError, enumError );
			bOk = false;
			break;
		}
		bOk = PulseKV3_ReadInt64( pKV, &nValue, pError );
		break;
	}
	case PVAL_VISTARA_PANEL_HANDLE:
		if ( pKV->IsNull() )
			As<uint64_t>( pValue ) = PULSE_INVALID_VISTARA_PANEL_HANDLE;
		else
			bOk = PulseKV3_ReadUInt64( pKV, &As<uint64_t>( pValue ), pError );
		break;
	case PVAL_PARTICLE_EHANDLE:
		bOk = PulseKV3_ReadUInt64( pKV, &As<uint64_t>( pValue ), pError );
		break;
	case PVAL_TYPESAFE_INT64:
		bOk = PulseKV3_ReadInt64( pKV, &As<int64_t>( pValue ), pError );
		break;
	case PVAL_ARRAY:
	{
		const CPulseValueFullType &elementType = *type.GetElementType();
		CPulseArrayData *pLoaded = nullptr;
		// No elements is the null array, the one empty array value.
		if ( pKV->IsArray() && pKV->GetArrayElementCount() > 0 )
		{
			int nCount = pKV->GetArrayElementCount();
			CPulseArrayData::SetCount( &pLoaded, elementType, nCount );
			for ( int i = 0; i < nCount; ++i )
			{
				void *pElement = CPulseArrayData::GetElementForWrite( &pLoaded, elementType, i );
				bOk &= PulseValue_LoadKV3( elementType, pElement, pKV->GetArrayElement( i ), pError, pHooks );
			}
		}
		else if ( !pKV->IsNull() && !pKV->IsArray() )
		{
			bOk = ReportWrongKind( "an array", pKV, pError );
		}
		CPulseArrayData::Release( &As<CPulseArrayData *>( pValue ), elementType );
		As<CPulseArrayData *>( pValue ) = pLoaded;
		break;
	}
	case PVAL_VARIANT:
	{
		CPulseVariant &variant = As<CPulseVariant>( pValue );
		variant.Clear();
		if ( pKV->IsNull() )
			break;
		if ( !pKV->IsArray() || pKV->GetArrayElementCount() != 2 || !pKV->GetArrayElement( 0 )->IsString() )
		{
			bOk = ReportWrongKind( "a [type, value] pair", pKV, pError );
			break;
		}
		CPulseValueFullType innerType;
		if ( !innerType.FromString( pKV->GetArrayElement( 0 )->GetString() ) )
		{
			CUtlString message;
			message.Format( "Unknown value type '%s'", pKV->GetArrayElement( 0 )->GetString() );
			AppendError( pError, message );
			bOk = false;
			break;
		}
		variant.SetType( innerType );
		if ( void *pInner = variant.GetValue() )
			bOk = PulseValue_LoadKV3( innerType, pInner, pKV->GetArrayElement( 1 ), pError, pHooks );
		break;
	}
	default:
		break;
	}
	return bOk;
}
