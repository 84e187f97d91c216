#include "core/kv3transfer/kv3transfertypes.h"

void KV3TransferReportNotATable( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue )
{
	pContext->ReportError( "Class data is a '%s', not a table\n", pValue->GetTypeAsString() );
}

void KV3TransferReportDepthLimit( CKV3TransferContextBase *pContext )
{
	pContext->ReportError( "Stack depth limit hit (%d)", pContext->GetDepth() );
}

void KV3TransferReportWrongKind( CKV3TransferLoadContext *pContext, const char *pszExpected, const KeyValues3 *pValue )
{
	pContext->ReportError( "Expected %s, not a '%s' (using the default)", pszExpected, pValue->GetTypeAsString() );
}

void KV3TransferReportUnknownClass( CKV3TransferLoadContext *pContext, const char *pszClassName, const char *pszBaseName )
{
	pContext->ReportError( "Unknown class '%s' for a '%s' (left empty)", pszClassName, pszBaseName );
}

void KV3TransferReadFloats( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue, float *pOut, int nCount )
{
	if ( !pValue || pValue->IsNull() )
		return;
	if ( !pValue->IsArray() )
	{
		pContext->ReportError( "Expected an array of %d numbers, not a '%s' (using the default)", nCount, pValue->GetTypeAsString() );
		return;
	}
	int nFound = pValue->GetArrayElementCount();
	if ( nFound < nCount )
		pContext->ReportError( "Expected %d numbers, found %d (the missing ones keep their defaults)", nCount, nFound );
	else if ( nFound > nCount )
		pContext->ReportError( "Expected %d numbers, found %d (the extra ones are ignored)", nCount, nFound );
	for ( int i = 0; i < nCount && i < nFound; ++i )
	{
		pContext->PushIndex( static_cast<uint32_t>( i ) );
		pOut[ i ] = KV3TransferReadFloat<float>( pContext, pValue->GetArrayElement( i ) );
		pContext->PopPath();
	}
}

void KV3TransferWriteFloats( KeyValues3 *pValue, const float *pValues, int nCount )
{
	pValue->SetToEmptyArray();
	for ( int i = 0; i < nCount; ++i )
		pValue->ArrayAddToTail()->SetFloat( pValues[ i ] );
}

const char *KV3TransferReadString( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue )
{
	if ( !pValue || pValue->IsNull() )
		return "";
	if ( !pValue->IsString() )
	{
		KV3TransferReportWrongKind( pContext, "a string", pValue );
		return "";
	}
	return pValue->GetString();
}

void KV3Transfer_t<Color>::Load( Color &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	if ( !pValue || pValue->IsNull() )
		return;
	if ( !pValue->IsArray() )
	{
		pContext->ReportError( "Expected a colour of 3 or 4 integers, not a '%s' (using the default)", pValue->GetTypeAsString() );
		return;
	}
	int nFound = pValue->GetArrayElementCount();
	if ( nFound < 3 || nFound > 4 )
	{
		pContext->ReportError( "Expected a colour of 3 or 4 integers, found %d (using the default)", nFound );
		return;
	}
	uint8_t channels[ 4 ] = { 0, 0, 0, 255 };
	for ( int i = 0; i < nFound; ++i )
	{
		pContext->PushIndex( static_cast<uint32_t>( i ) );
		channels[ i ] = KV3TransferReadInteger<uint8_t>( pContext, pValue->GetArrayElement( i ) );
		pContext->PopPath();
	}
	value = Color( channels[ 0 ], channels[ 1 ], channels[ 2 ], channels[ 3 ] );
}

void KV3Transfer_t<Color>::Save( const Color &value, KeyValues3 *pValue, CKV3TransferSaveContext * )
{
	pValue->SetToEmptyArray();
	for ( int i = 0; i < 4; ++i )
		pValue->ArrayAddToTail()->SetInt( value[ i ] );
}

void KV3TransferLoadResource( ResourceHandleBase_t &handle, const char *pszResourceType, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	handle.Clear();
	auto *pLoader = pContext->FindInterface<IKV3TransferInterface_ResourceLoad>( false );
	if ( !pLoader )
		return;
	if ( pValue && !pValue->IsString() && !pValue->IsNull() )
	{
		KV3TransferReportWrongKind( pContext, "a resource name", pValue );
		return;
	}
	if ( pLoader->LoadResource( pContext, pValue, pszResourceType, &handle ) == 0 )
		pContext->ReportError( "Invalid %s resource name '%s' (left empty)", pszResourceType, pValue ? pValue->GetString() : "" );
}

void KV3TransferSaveResource( const ResourceHandleBase_t &handle, const char *pszResourceType, KeyValues3 *pValue, CKV3TransferSaveContext *pContext )
{
	// Handles carry their name, so without a save interface the name is written as it is.
	if ( auto *pSaver = pContext->FindInterface<IKV3TransferInterface_ResourceSave>( true ) )
	{
		if ( pSaver->SaveResource( pContext, handle, pszResourceType, pValue ) == 0 )
			pContext->ReportError( "Failed to save %s resource '%s'", pszResourceType, handle.m_Name.Get() );
		return;
	}
	pValue->SetString( handle.m_Name.Get(), KV3_SUBTYPE_STRING_RESOURCE_NAME );
}
