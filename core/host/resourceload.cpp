#include "core/host/resourceload.h"

#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/host/iresourcesystem.h"

CResourceBinding *FindLoadedResource( const char *pResourceName, const char *pKind, CUtlString *pError )
{
	if ( !pResourceName || !*pResourceName )
	{
		pError->Format( "no %s named", pKind );
		return nullptr;
	}
	IResourceSystem *pResources = GetResourceSystem();
	if ( !pResources )
	{
		pError->Format( "%s: no resource system to load a %s from", pResourceName, pKind );
		return nullptr;
	}
	CResourceBinding *pBinding = pResources->FindOrCreateBinding( pResourceName );
	if ( !pBinding )
	{
		pError->Format( "%s: not a resource name", pResourceName );
		return nullptr;
	}
	if ( pBinding->IsLoaded() )
		return pBinding;
	IAssetSystem *pAssets = GetAssetSystem();
	IAsset *pAsset = pAssets ? pAssets->FindAssetByResourceName( pResourceName ) : nullptr;
	CUtlString loadError;
	if ( !pAsset || !pAsset->Load( &loadError ) || !pBinding->IsLoaded() )
	{
		if ( !loadError.IsEmpty() )
			*pError = loadError;
		else
			pError->Format( "%s: no such %s", pResourceName, pKind );
		return nullptr;
	}
	return pBinding;
}
