#pragma once
// The plain asset system over a file system and a resource system.

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "core/host/iassetsystem.h"
#include "core/host/sourceassetcompiler.h"

class CAsset;
class IFileSystem;
class IResourceSystem;

class CAssetSystem final : public IAssetSystem
{
public:
	CAssetSystem( IFileSystem *pFileSystem, IResourceSystem *pResourceSystem );
	~CAssetSystem();

	const AssetTypeInfo_t *FindAssetTypeForExtension( const char *pExtension ) const override;
	const AssetTypeInfo_t *FindAssetType( ResourceType_t nType ) const override;

	IAsset *FindAssetByContentPath( const char *pContentPath ) override;
	IAsset *FindAssetByResourceName( const char *pResourceName ) override;
	IAsset *FindAssetByAbsolutePath( const char *pAbsolutePath ) override;
	IAsset *AddAssetForNewFile( const char *pPath ) override;

	int GetAssets( CUtlVector<IAsset *> *pAssets, ResourceType_t nType = RESOURCE_TYPE_NONE ) override;
	int Rescan() override;
	int ReloadChangedFiles() override;

	void AddChangeListener( IAssetChangeListener *pListener ) override;
	void RemoveChangeListener( IAssetChangeListener *pListener ) override;
	void NoteFileOpened( const char *pPath ) override;
	int GetRecentlyOpenedAssets( CUtlVector<IAsset *> *pAssets ) const override;

	void RegisterCompiler( ResourceType_t nType, IAssetCompiler *pCompiler ) override;
	IAssetCompiler *FindCompiler( ResourceType_t nType ) const override;

	IFileSystem *GetFileSystem() const { return m_pFileSystem; }
	IResourceSystem *GetResourceSystem() const { return m_pResourceSystem; }
	// Tells the change listeners of one asset's change.
	void NotifyAssetChanged( AssetChangeKind_t eKind, IAsset *pAsset );
	void NotifyAssetsChanged( const CUtlVector<AssetChange_t> &changes );

private:
	// The asset of a content-relative name, made when bCreate; null for unknown types.
	CAsset *FindOrAdd( const char *pContentPath, bool bCreate, bool *pAdded = nullptr );

	IFileSystem *m_pFileSystem;
	IResourceSystem *m_pResourceSystem;
	mutable std::recursive_mutex m_Mutex;
	std::unordered_map<std::string, std::unique_ptr<CAsset>> m_Assets; // by resource name key
	std::unordered_map<ResourceType_t, IAssetCompiler *> m_Compilers;
	std::mutex m_ListenerMutex;
	CUtlVector<IAssetChangeListener *> m_ChangeListeners;
	CUtlVector<IAsset *> m_RecentlyOpened; // newest first
	CSourceAssetCompiler m_ParticleSourceCompiler{ RESOURCE_TYPE_PARTICLE_SYSTEM };
	CSourceAssetCompiler m_BinarySourceCompiler{ RESOURCE_TYPE_NONE };
};
