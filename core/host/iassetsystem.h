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

enum AssetChangeKind_t
{
	ASSET_CHANGE_ADDED,        // a new asset was indexed or added for a new file
	ASSET_CHANGE_COMPILED,     // its resource was compiled (from memory or from its file)
	ASSET_CHANGE_FILE_CHANGED, // its file changed on disk and was reloaded
};

// One record of a batch of changes, with the asset's two change stamps after it.
struct AssetChange_t
{
	AssetChangeKind_t m_eKind = ASSET_CHANGE_COMPILED;
	IAsset *m_pAsset = nullptr;
	int64_t m_nFileStamp = 0;
	uint32_t m_nCompileStamp = 0;
};

// Told of changed assets in batches, on the thread that changed them (the main thread).
class IAssetChangeListener
{
public:
	virtual void OnAssetsChanged( const CUtlVector<AssetChange_t> &changes ) = 0;

protected:
	~IAssetChangeListener() = default;
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

	virtual void AddChangeListener( IAssetChangeListener *pListener ) = 0;
	virtual void RemoveChangeListener( IAssetChangeListener *pListener ) = 0;

	// A tool opened the file: its asset (if it has one) moves to the front of the list of
	// recently opened assets, which keeps the newest 50.
	virtual void NoteFileOpened( const char *pPath ) = 0;
	virtual int GetRecentlyOpenedAssets( CUtlVector<IAsset *> *pAssets ) const = 0;

	// The compiler of a type (null removes it); the asset system doesn't own it.
	virtual void RegisterCompiler( ResourceType_t nType, IAssetCompiler *pCompiler ) = 0;
	// The registered compiler, or the plain one that keeps the source.
	virtual IAssetCompiler *FindCompiler( ResourceType_t nType ) const = 0;

protected:
	~IAssetSystem() = default;
};

IAssetSystem *GetAssetSystem();
void SetAssetSystem( IAssetSystem *pAssetSystem );
