#include "core/host/asset.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/host/assetreferences.h"
#include "core/host/assetsystem.h"
#include "core/host/hostpaths.h"
#include "core/host/iassetcompiler.h"
#include "core/host/ifilesystem.h"
#include "core/host/iresourcesystem.h"
#include "core/logging/logging.h"
#include "core/logging/logonce.h"
#include "core/platform/dbgassert.h"

CAsset::CAsset( CAssetSystem *pSystem, const char *pContentPath, const char *pAbsolutePath )
	: m_pSystem( pSystem ), m_strPath( Host_NormalizePath( pContentPath ) ), m_strAbsolutePath( Host_NormalizePath( pAbsolutePath ) )
{
	m_strResourceName = m_strPath;
	m_strResourceName.FixSlashes( '/' );
	m_nType = ResourceTypeFromExtension( m_strPath.GetExtension() );
	if ( m_pSystem && m_pSystem->GetResourceSystem() )
		m_pResource = m_pSystem->GetResourceSystem()->FindOrCreateBinding( m_strResourceName.Get() );
}

CAsset::~CAsset() = default;

void CAsset::Release()
{
	int nLeft = m_nRefCount.fetch_sub( 1, std::memory_order_acq_rel ) - 1;
	AssertMsg( nLeft >= 0, "Asset '%s' released more often than referenced", m_strPath.Get() );
}

bool CAsset::FileExists() const
{
	IFileSystem *pFileSystem = m_pSystem ? m_pSystem->GetFileSystem() : nullptr;
	return pFileSystem && !m_strAbsolutePath.IsEmpty() && pFileSystem->FileExists( m_strAbsolutePath.Get() );
}

int64_t CAsset::GetFileStamp() const
{
	IFileSystem *pFileSystem = m_pSystem ? m_pSystem->GetFileSystem() : nullptr;
	return ( pFileSystem && !m_strAbsolutePath.IsEmpty() ) ? pFileSystem->GetFileTime( m_strAbsolutePath.Get() ) : 0;
}

bool CAsset::IsResident() const
{
	return m_pResource && m_pResource->IsLoaded();
}

bool CAsset::Load( CUtlString *pError )
{
	IFileSystem *pFileSystem = m_pSystem ? m_pSystem->GetFileSystem() : nullptr;
	if ( !pFileSystem )
	{
		if ( pError )
			pError->Format( "The asset '%s' belongs to no asset system", m_strPath.Get() );
		return false;
	}
	int64_t nStamp = pFileSystem->GetFileTime( m_strAbsolutePath.Get() );
	CUtlBuffer source;
	if ( !pFileSystem->ReadFile( m_strAbsolutePath.Get(), nullptr, &source, pError ) )
		return false;
	if ( !Compile( source, false, pError ) )
		return false;
	m_nLoadedFileStamp = nStamp;
	return true;
}

bool CAsset::CompileFromBuffer( const CUtlBuffer &source, CUtlString *pError )
{
	return Compile( source, true, pError );
}

bool CAsset::Compile( const CUtlBuffer &source, bool bFromMemory, CUtlString *pError )
{
	if ( !m_pSystem || !m_pResource )
	{
		if ( pError )
			pError->Format( "The asset '%s' belongs to no asset system", m_strPath.Get() );
		return false;
	}
	IAssetCompiler *pCompiler = m_pSystem->FindCompiler( m_nType );
	std::unique_ptr<CResourceData> pData;
	CUtlString error;
	if ( !pCompiler->Compile( source, m_strResourceName.Get(), &pData, &error ) || !pData )
	{
		if ( error.IsEmpty() )
			error.Format( "Compiling '%s' produced no resource data", m_strResourceName.Get() );
		// The last good data stays in the resource; the preview keeps showing it.
		m_strLastCompileError = error;
		if ( pError )
			*pError = error;
		return false;
	}
	m_strLastCompileError.Clear();
	m_bEditedInMemory = bFromMemory;

	// While editing, the references of the source in memory are the current ones.
	CUtlVector<CUtlString> references;
	if ( CollectAssetReferences( m_nType, source, &references ) )
	{
		m_ReferenceNames = references;
		m_nReferencesStamp = bFromMemory ? -2 : GetFileStamp();
	}

	m_nCompileStamp.fetch_add( 1, std::memory_order_acq_rel );
	m_pSystem->GetResourceSystem()->ReplaceResourceData( m_pResource, std::shared_ptr<const CResourceData>( std::move( pData ) ) );
	m_pSystem->NotifyAssetChanged( ASSET_CHANGE_COMPILED, this );
	return true;
}

void CAsset::EndEditing()
{
	if ( !m_bEditedInMemory )
		return;
	m_bEditedInMemory = false;
	m_nReferencesStamp = -1;
	if ( FileExists() )
	{
		CUtlString error;
		if ( !Load( &error ) )
			Log_Warning( LOG_GENERAL, "Unable to reload '%s' after editing: %s\n", m_strPath.Get(), error.Get() );
	}
	else if ( m_pResource && m_pSystem )
	{
		m_pSystem->GetResourceSystem()->ReplaceResourceData( m_pResource, nullptr );
	}
}

void CAsset::NoteReloadedFromFile( int64_t nFileStamp )
{
	m_nLoadedFileStamp = nFileStamp;
	m_nReferencesStamp = -1;
	m_strLastCompileError.Clear();
	m_nCompileStamp.fetch_add( 1, std::memory_order_acq_rel );
}

const CUtlVector<CUtlString> &CAsset::GetReferenceNames()
{
	if ( m_nReferencesStamp == -2 || !m_pSystem )
		return m_ReferenceNames;
	int64_t nStamp = GetFileStamp();
	if ( nStamp == m_nReferencesStamp )
		return m_ReferenceNames;
	m_ReferenceNames.RemoveAll();
	m_nReferencesStamp = nStamp;
	CUtlBuffer source;
	if ( nStamp != 0 && m_pSystem->GetFileSystem()->ReadFile( m_strAbsolutePath.Get(), nullptr, &source ) )
	{
		CUtlString error;
		if ( !CollectAssetReferences( m_nType, source, &m_ReferenceNames, &error ) )
			LoggingSystem_LogOnceByKey( LOG_GENERAL, LS_WARNING, m_strPath.Get(), "Unable to read the references of '%s': %s\n", m_strPath.Get(), error.Get() );
	}
	return m_ReferenceNames;
}

void CAsset::DirectChildren( CUtlVector<IAsset *> *pChildren, ResourceType_t nType )
{
	CUtlVector<CUtlString> names = GetReferenceNames();
	for ( const CUtlString &name : names )
	{
		IAsset *pChild = m_pSystem->FindAssetByResourceName( name.Get() );
		if ( pChild && ( nType == RESOURCE_TYPE_NONE || pChild->GetType() == nType ) && !pChildren->HasElement( pChild ) )
			pChildren->AddToTail( pChild );
	}
}

int CAsset::GetChildren( CUtlVector<IAsset *> *pChildren, bool bRecursive, ResourceType_t nType )
{
	if ( !m_pSystem || !pChildren )
		return 0;
	int nBefore = pChildren->Count();
	CUtlVector<IAsset *> pending;
	DirectChildren( &pending, nType );
	std::unordered_set<IAsset *> seen{ this };
	for ( IAsset *pListed : *pChildren )
		seen.insert( pListed );
	while ( !pending.IsEmpty() )
	{
		IAsset *pChild = pending[ 0 ];
		pending.Remove( 0 );
		if ( !seen.insert( pChild ).second )
			continue;
		pChildren->AddToTail( pChild );
		if ( bRecursive )
			static_cast<CAsset *>( pChild )->DirectChildren( &pending, nType );
	}
	return pChildren->Count() - nBefore;
}

int CAsset::GetParents( CUtlVector<IAsset *> *pParents, bool bRecursive, ResourceType_t nType )
{
	if ( !m_pSystem || !pParents )
		return 0;
	// Each asset's references are read (or checked against the file) once per query.
	CUtlVector<IAsset *> all;
	m_pSystem->GetAssets( &all, nType );
	std::vector<std::pair<IAsset *, std::vector<std::string>>> references;
	references.reserve( size_t( all.Count() ) );
	for ( IAsset *pCandidate : all )
	{
		std::vector<std::string> keys;
		for ( const CUtlString &name : static_cast<CAsset *>( pCandidate )->GetReferenceNames() )
			keys.push_back( ResourceNameKey( name.Get() ).Storage() );
		if ( !keys.empty() )
			references.emplace_back( pCandidate, std::move( keys ) );
	}

	int nBefore = pParents->Count();
	std::unordered_set<IAsset *> seen{ this };
	for ( IAsset *pListed : *pParents )
		seen.insert( pListed );
	CUtlVector<IAsset *> frontier;
	frontier.AddToTail( this );
	while ( !frontier.IsEmpty() )
	{
		IAsset *pTarget = frontier[ 0 ];
		frontier.Remove( 0 );
		std::string targetKey = ResourceNameKey( pTarget->GetResourceName() ).Storage();
		for ( const auto &entry : references )
		{
			if ( seen.count( entry.first ) || std::find( entry.second.begin(), entry.second.end(), targetKey ) == entry.second.end() )
				continue;
			seen.insert( entry.first );
			pParents->AddToTail( entry.first );
			if ( bRecursive )
				frontier.AddToTail( entry.first );
		}
	}
	return pParents->Count() - nBefore;
}
