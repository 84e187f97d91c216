#include "tools/zol/editor/assetmaintenance/zolsessiondocuments.h"

#include "core/host/iasset.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolsession.h"

CZolSession *CZolSessionDocuments::FindSession( IAsset *pAsset, bool bOpen )
{
	CZolApp *pApp = ZolApp();
	if ( !pApp || !pAsset )
		return nullptr;
	for ( CBaseEditorSession *pSession : pApp->GetSessions() )
	{
		CZolSession *pZolSession = static_cast<CZolSession *>( pSession );
		if ( pZolSession->GetAsset() == pAsset )
			return pZolSession;
	}
	return bOpen ? static_cast<CZolSession *>( pApp->OpenFile( pAsset->GetAbsolutePath(), true ) ) : nullptr;
}

CZolDoc *CZolSessionDocuments::FindOpenDocument( IAsset *pAsset )
{
	CZolSession *pSession = FindSession( pAsset, false );
	return pSession ? pSession->GetDoc() : nullptr;
}

CZolDoc *CZolSessionDocuments::OpenDocument( IAsset *pAsset, CUtlString *pError )
{
	CZolSession *pSession = FindSession( pAsset, true );
	if ( !pSession )
	{
		pError->Format( "'%s' could not be opened", pAsset ? pAsset->GetResourceName() : "" );
		return nullptr;
	}
	return pSession->GetDoc();
}

CUtlString CZolSessionDocuments::GetDisplayName( IAsset *pAsset )
{
	return CUtlString( pAsset ? pAsset->GetResourceName() : "" );
}
