#include "core/host/assetsystem.h"

#include <algorithm>
#include <atomic>

#include "core/containers/utlbuffer.h"
#include "core/host/asset.h"
#include "core/host/hostpaths.h"
#include "core/host/ifilesystem.h"
#include "core/host/iresourcesystem.h"
#include "core/logging/logging.h"
#include "core/logging/logonce.h"
#include "core/text/strtools.h"

namespace
{
constexpr AssetTypeInfo_t s_AssetTypes[] = {
	{ RESOURCE_TYPE_PARTICLE_SYSTEM, "tfxs", "Particle System Definition" },
	{ RESOURCE_TYPE_MESH, "tmsh", "Mesh" },
	{ RESOURCE_TYPE_IMAGE, "timg", "Image" },
};
} // namespace

CAssetSystem::CAssetSystem( IFileSystem *pFileSystem, IResourceSystem *pResourceSystem )
	: m_pFileSystem( pFileSystem ), m_pResourceSystem( pResourceSystem )
{
	Rescan();
}

CAssetSystem::~CAssetSystem() = default;

const AssetTypeInfo_t *CAssetSystem::FindAssetTypeForExtension( const char *pExtension ) const
{
	return FindAssetType( ResourceTypeFromExtension( pExtension ) );
}

const AssetTypeInfo_t *CAssetSystem::FindAssetType( ResourceType_t nType ) const
{
	for ( const AssetTypeInfo_t &type : s_AssetTypes )
	{
		if ( type.m_nType == nType && nType != RESOURCE_TYPE_NONE )
			return &type;
	}
	return nullptr;
}

CAsset *CAssetSystem::FindOrAdd( const char *pContentPath, bool bCreate, bool *pAdded )
{
	if ( pAdded )
		*pAdded = false;
	CUtlString key = ResourceNameKey( pContentPath );
	if ( key.IsEmpty() )
		return nullptr;
	std::lock_guard lock( m_Mutex );
	auto it = m_Assets.find( key.Storage() );
	if ( it != m_Assets.end() )
		return it->second.get();
	if ( !bCreate || !FindAssetTypeForExtension( key.GetExtension() ) )
		return nullptr;
	// The leafiest content directory that has the file, or the first one for a new file.
	CUtlString absolutePath;
	if ( !m_pFileSystem->RelativePathToFullPath( pContentPath, PATH_ID_CONTENT, &absolutePath ) &&
		 !m_pFileSystem->MakeWritePath( pContentPath, PATH_ID_CONTENT, &absolutePath ) )
		return nullptr;
	auto pAsset = std::make_unique<CAsset>( this, pContentPath, absolutePath.Get() );
	CAsset *pResult = pAsset.get();
	m_Assets.emplace( key.Storage(), std::move( pAsset ) );
	if ( pAdded )
		*pAdded = true;
	return pResult;
}

IAsset *CAssetSystem::FindAssetByContentPath( const char *pContentPath )
{
	return FindOrAdd( pContentPath, false );
}

IAsset *CAssetSystem::FindAssetByResourceName( const char *pResourceName )
{
	return FindOrAdd( pResourceName, false );
}

IAsset *CAssetSystem::FindAssetByAbsolutePath( const char *pAbsolutePath )
{
	CUtlString relative;
	if ( !m_pFileSystem->FullPathToRelativePath( pAbsolutePath, PATH_ID_CONTENT, &relative ) )
		return nullptr;
	return FindOrAdd( relative.Get(), false );
}

IAsset *CAssetSystem::AddAssetForNewFile( const char *pPath )
{
	CUtlString relative( pPath );
	if ( pPath && V_IsAbsolutePath( pPath ) && !m_pFileSystem->FullPathToRelativePath( pPath, PATH_ID_CONTENT, &relative ) )
	{
		Log_Warning( LOG_GENERAL, "Unable to add an asset for '%s': the file is not under a content directory\n", pPath );
		return nullptr;
	}
	bool bAdded = false;
	IAsset *pAsset = FindOrAdd( relative.Get(), true, &bAdded );
	if ( !pAsset )
		Log_Warning( LOG_GENERAL, "Unable to add an asset for '%s': no asset type has that extension\n", pPath ? pPath : "" );
	if ( bAdded )
		NotifyAssetChanged( ASSET_CHANGE_ADDED, pAsset );
	return pAsset;
}

int CAssetSystem::GetAssets( CUtlVector<IAsset *> *pAssets, ResourceType_t nType )
{
	std::vector<CAsset *> assets;
	{
		std::lock_guard lock( m_Mutex );
		for ( const auto &entry : m_Assets )
		{
			if ( nType == RESOURCE_TYPE_NONE || entry.second->GetType() == nType )
				assets.push_back( entry.second.get() );
		}
	}
	std::sort( assets.begin(), assets.end(), []( const CAsset *pA, const CAsset *pB ) {
		return V_stricmp_fast( pA->GetResourceName(), pB->GetResourceName() ) < 0;
	} );
	for ( CAsset *pAsset : assets )
		pAssets->AddToTail( pAsset );
	return int( assets.size() );
}

int CAssetSystem::Rescan()
{
	if ( !m_pFileSystem )
		return 0;
	CUtlVector<AssetChange_t> added;
	for ( const AssetTypeInfo_t &type : s_AssetTypes )
	{
		CUtlString pattern;
		pattern.Format( "*.%s", type.m_pExtension );
		CUtlVector<CUtlString> files;
		m_pFileSystem->FindFiles( pattern.Get(), PATH_ID_CONTENT, FILE_FIND_FILES | FILE_FIND_RECURSIVE, &files );
		for ( const CUtlString &file : files )
		{
			CUtlString relative;
			if ( !m_pFileSystem->FullPathToRelativePath( file.Get(), PATH_ID_CONTENT, &relative ) )
				continue;
			bool bAdded = false;
			CAsset *pAsset = FindOrAdd( relative.Get(), true, &bAdded );
			if ( bAdded )
				added.AddToTail( AssetChange_t{ ASSET_CHANGE_ADDED, pAsset, pAsset->GetFileStamp(), pAsset->GetCompileStamp() } );
		}
	}
	NotifyAssetsChanged( added );
	return added.Count();
}

int CAssetSystem::ReloadChangedFiles()
{
	CUtlVector<IAsset *> assets;
	GetAssets( &assets );
	CUtlVector<ResourceChange_t> changes;
	CUtlVector<AssetChange_t> assetChanges;
	for ( IAsset *pInterface : assets )
	{
		CAsset *pAsset = static_cast<CAsset *>( pInterface );
		if ( !pAsset->IsResident() || pAsset->IsEditedInMemory() )
			continue;
		int64_t nStamp = pAsset->GetFileStamp();
		if ( nStamp == 0 || nStamp == pAsset->GetLoadedFileStamp() )
			continue;
		// Compiled without telling anyone, so that the listeners hear of all at once.
		IAssetCompiler *pCompiler = FindCompiler( pAsset->GetType() );
		CUtlBuffer source;
		std::unique_ptr<CResourceData> pData;
		CUtlString error;
		if ( !m_pFileSystem->ReadFile( pAsset->GetAbsolutePath(), nullptr, &source, &error ) ||
			 !pCompiler->Compile( source, pAsset->GetResourceName(), &pData, &error ) || !pData )
		{
			LoggingSystem_LogOnceByKey( LOG_GENERAL, LS_WARNING, pAsset->GetPath(), "Unable to reload '%s': %s\n", pAsset->GetPath(), error.Get() );
			continue;
		}
		pAsset->GetResource()->SetData( std::shared_ptr<const CResourceData>( std::move( pData ) ) );
		pAsset->NoteReloadedFromFile( nStamp );
		changes.AddToTail( ResourceChange_t{ pAsset->GetType(), CUtlString( pAsset->GetResourceName() ) } );
		assetChanges.AddToTail( AssetChange_t{ ASSET_CHANGE_FILE_CHANGED, pAsset, nStamp, pAsset->GetCompileStamp() } );
	}
	m_pResourceSystem->NotifyResourcesReloaded( changes );
	NotifyAssetsChanged( assetChanges );
	return changes.Count();
}

void CAssetSystem::AddChangeListener( IAssetChangeListener *pListener )
{
	std::lock_guard lock( m_ListenerMutex );
	if ( pListener && !m_ChangeListeners.HasElement( pListener ) )
		m_ChangeListeners.AddToTail( pListener );
}

void CAssetSystem::RemoveChangeListener( IAssetChangeListener *pListener )
{
	std::lock_guard lock( m_ListenerMutex );
	int nIndex = m_ChangeListeners.Find( pListener );
	if ( nIndex >= 0 )
		m_ChangeListeners.Remove( nIndex );
}

void CAssetSystem::NotifyAssetChanged( AssetChangeKind_t eKind, IAsset *pAsset )
{
	CUtlVector<AssetChange_t> changes;
	changes.AddToTail( AssetChange_t{ eKind, pAsset, pAsset->GetFileStamp(), pAsset->GetCompileStamp() } );
	NotifyAssetsChanged( changes );
}

void CAssetSystem::NotifyAssetsChanged( const CUtlVector<AssetChange_t> &changes )
{
	if ( changes.IsEmpty() )
		return;
	CUtlVector<IAssetChangeListener *> listeners;
	{
		std::lock_guard lock( m_ListenerMutex );
		listeners = m_ChangeListeners;
	}
	for ( IAssetChangeListener *pListener : listeners )
	{
		bool bStillListening;
		{
			std::lock_guard lock( m_ListenerMutex );
			bStillListening = m_ChangeListeners.HasElement( pListener );
		}
		if ( bStillListening )
			pListener->OnAssetsChanged( changes );
	}
}

void CAssetSystem::NoteFileOpened( const char *pPath )
{
	IAsset *pAsset = ( pPath && V_IsAbsolutePath( pPath ) ) ? FindAssetByAbsolutePath( pPath ) : FindAssetByContentPath( pPath );
	if ( !pAsset )
		return;
	std::lock_guard lock( m_Mutex );
	int nIndex = m_RecentlyOpened.Find( pAsset );
	if ( nIndex >= 0 )
		m_RecentlyOpened.Remove( nIndex );
	m_RecentlyOpened.AddToHead( pAsset );
	constexpr int MAX_RECENTLY_OPENED = 50;
	while ( m_RecentlyOpened.Count() > MAX_RECENTLY_OPENED )
		m_RecentlyOpened.Remove( m_RecentlyOpened.Count() - 1 );
}

int CAssetSystem::GetRecentlyOpenedAssets( CUtlVector<IAsset *> *pAssets ) const
{
	std::lock_guard lock( m_Mutex );
	pAssets->AddVectorToTail( m_RecentlyOpened );
	return m_RecentlyOpened.Count();
}

void CAssetSystem::RegisterCompiler( ResourceType_t nType, IAssetCompiler *pCompiler )
{
	std::lock_guard lock( m_Mutex );
	if ( pCompiler )
		m_Compilers[ nType ] = pCompiler;
	else
		m_Compilers.erase( nType );
}

IAssetCompiler *CAssetSystem::FindCompiler( ResourceType_t nType ) const
{
	std::lock_guard lock( m_Mutex );
	auto it = m_Compilers.find( nType );
	if ( it != m_Compilers.end() )
		return it->second;
	if ( nType == RESOURCE_TYPE_PARTICLE_SYSTEM )
		return const_cast<CSourceAssetCompiler *>( &m_ParticleSourceCompiler );
	return const_cast<CSourceAssetCompiler *>( &m_BinarySourceCompiler );
}

namespace
{
std::atomic<IAssetSystem *> g_pAssetSystem{ nullptr };
}

IAssetSystem *GetAssetSystem()
{
	return g_pAssetSystem.load( std::memory_order_acquire );
}

void SetAssetSystem( IAssetSystem *pAssetSystem )
{
	g_pAssetSystem.store( pAssetSystem, std::memory_order_release );
}
