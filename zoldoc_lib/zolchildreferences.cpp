#include "zoldoc_lib/zolchildreferences.h"

#include "core/host/hostpaths.h"
#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/text/pathtools.h"
#include "zoldoc_lib/zolchildnode.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"

void GetChildReferences( const CZolDoc &doc, bool bIncludeDisabled, CUtlVector<ZolChildReference_t> *pChildren )
{
	pChildren->RemoveAll();
	const CZolRootNode *pRoot = doc.GetRoot();
	if ( !pRoot )
		return;
	for ( int i = 0; i < pRoot->GetNodeCount( PARTICLE_FUNCTION_CHILDREN ); ++i )
	{
		CBaseZolNode *pNode = pRoot->GetNode( PARTICLE_FUNCTION_CHILDREN, i );
		CZolChildNode *pChild = pNode->AsChildNode();
		const char *pRef = pChild ? pChild->GetChildRef() : "";
		if ( !pRef || !*pRef || ( !bIncludeDisabled && !pChild->IsEnabled() ) )
			continue;
		ZolChildReference_t &reference = pChildren->Element( pChildren->AddToTail() );
		reference.m_Ref = pRef;
		reference.m_bEnabled = pChild->IsEnabled();
		reference.m_nIndex = i;
	}
}

IAsset *FindChildAsset( const char *pRef )
{
	IAssetSystem *pAssets = GetAssetSystem();
	if ( !pAssets || !pRef || !*pRef )
		return nullptr;
	CUtlString path = Host_NormalizePath( pRef );
	IAsset *pAsset = V_IsAbsolutePath( path.Get() ) ? pAssets->FindAssetByAbsolutePath( path.Get() ) : pAssets->FindAssetByResourceName( path.Get() );
	if ( !pAsset || pAsset->GetType() != RESOURCE_TYPE_PARTICLE_SYSTEM || !pAsset->FileExists() )
		return nullptr;
	return pAsset;
}
