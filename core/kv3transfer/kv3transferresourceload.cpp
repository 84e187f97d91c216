#include "core/kv3transfer/kv3transferresourceload.h"

#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"

bool CKV3Transfer_EmptyResourceLoadInterface::ParseResourceName( const char *pszText, CUtlString *pName )
{
	CUtlString name( pszText );
	name.FixSlashes( '/' );
	const std::string &text = name.Storage();
	if ( text.find_first_not_of( " \t" ) == std::string::npos )
		return false;
	for ( char c : text )
	{
		if ( static_cast<unsigned char>( c ) < 0x20 || c == '"' || c == ':' )
			return false;
	}
	if ( text[ 0 ] == '/' || text == ".." || text.starts_with( "../" ) || text.find( "/../" ) != std::string::npos )
		return false;
	*pName = name;
	return true;
}

int CKV3Transfer_EmptyResourceLoadInterface::LoadResource( CKV3TransferLoadContext *, const KeyValues3 *pValue, const char *pszResourceType, ResourceHandleBase_t *pHandle )
{
	const char *pszText = pValue ? pValue->GetString( "" ) : "";
	if ( !*pszText )
	{
		pHandle->Clear();
		return 1;
	}
	CUtlString name;
	if ( !ParseResourceName( pszText, &name ) )
		return 0;
	pHandle->m_Name = name;
	pHandle->m_pBinding = m_fnLookup ? m_fnLookup( name.Get(), pszResourceType ) : nullptr;
	return 1;
}

int CKV3Transfer_AssertAlreadyLoadedResourceLoadInterface::LoadResource( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue, const char *pszResourceType, ResourceHandleBase_t *pHandle )
{
	int nResult = CKV3Transfer_EmptyResourceLoadInterface::LoadResource( pContext, pValue, pszResourceType, pHandle );
	if ( nResult == 1 && !pHandle->m_Name.IsEmpty() && !pHandle->IsValid() )
	{
		pContext->ReportError( "Resource '%s' (%s) is not loaded", pHandle->m_Name.Get(), pszResourceType );
		return 0;
	}
	return nResult;
}
