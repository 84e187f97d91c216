#pragma once
// The host's asset system: an index of the files under the content root whose
// extension names an asset type.

#include "core/host/iasset.h"

class IAssetCompiler;

constexpr const char *ASSETSYSTEM_INTERFACE_VERSION = "AssetSystem_001";

struct AssetTypeInfo_t
{
	ResourceType_t m_nType;
	const char *m_pExtension;   // "tfxs"
	const char *m_pDescription; // "Particle System Definition"
};

class IAssetSystem
{
public:
	// The type of an extension ("tfxs" or ".tfxs", any case), or null.
	virtual const AssetTypeInfo_t *FindAssetTypeForExtension( const char *pExtension ) const = 0;
	virtual const AssetTypeInfo_t *FindAssetType( ResourceType_t nType ) const = 0;

	// Lookups, ignoring case and slash kind. Null when no such asset is indexed.
	// The content path and the resource name are the same name relative to the content
	// root; an absolute path must lie under one of the content search paths.
	virtual IAsset *FindAssetByContentPath( const char *pContentPath ) = 0;
	virtual IAsset *FindAssetByResourceName( const char *pResourceName ) = 0;
	virtual IAsset *FindAssetByAbsolutePath( const char *pAbsolutePath ) = 0;
	// The asset of a file that may not exist yet (content-relative or absolute under the
	// content root); the known asset when there is one. Null, with a log line, for a
	// path outside the content root or of no asset type.
	virtual IAsset *AddAssetForNewFile( const char *pPath ) = 0;

	// All indexed assets (of one type, unless RESOURCE_TYPE_NONE), in name order.
	virtual int GetAssets( CUtlVector<IAsset *> *pAssets, ResourceType_t nType = RESOURCE_TYPE_NONE ) = 0;
	// Indexes files that appeared since the last scan; answers how many were added.
	virtual int Rescan() = 0;
	// Recompiles resident assets whose file changed on disk (and which aren't being
	// edited in memory), telling resource listeners in one batch; answers the count.
	virtual int ReloadChangedFiles() = 0;

	// The compiler of a type (null removes it); the asset system doesn't own it.
	virtual void RegisterCompiler( ResourceType_t nType, IAssetCompiler *pCompiler ) = 0;
	// The registered compiler, or the plain one that keeps the source.
	virtual IAssetCompiler *FindCompiler( ResourceType_t nType ) const = 0;

protected:
	~IAssetSystem() = default;
};

IAssetSystem *GetAssetSystem();
void SetAssetSystem( IAssetSystem *pAssetSystem );
