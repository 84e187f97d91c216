#include "tools/zol/cli/climaintenance.h"

#include <filesystem>
#include <string>

#include "core/host/assetsystem.h"
#include "core/host/hostpaths.h"
#include "core/host/iasset.h"
#include "core/host/resourcetype.h"
#include "tools/zol/cli/cliargs.h"
#include "tools/zol/cli/clitfxs.h"
#include "zoldoc_lib/zolfilereport.h"

namespace fs = std::filesystem;

CZolCliMaintenanceHost::CZolCliMaintenanceHost()
{
	m_Documents.SetDisplayNameFn( [ this ]( IAsset *pAsset ) { return GetDisplayName( pAsset ); } );
}

CZolCliMaintenanceHost::~CZolCliMaintenanceHost() = default;

bool CZolCliMaintenanceHost::Start( const char *pFirstFile )
{
	std::error_code error;
	std::string contentRoot;
	if ( pFirstFile )
	{
		contentRoot = ZolCliContentRootFor( pFirstFile );
	}
	else if ( !ZolCliRoots().m_ContentRoot.empty() )
	{
		contentRoot = ZolCliRoots().m_ContentRoot;
	}
	else
	{
		// Without a file the working folder decides: a content root holds "particles", and
		// inside a "particles" folder the root is the folder above it.
		const fs::path here = fs::current_path( error );
		contentRoot = fs::is_directory( here / "particles", error ) ? here.string() : ZolCliContentRootFor( ( here / "file.tfxs" ).string().c_str() );
	}
	std::string gameRoot = ZolCliGameRootFor( pFirstFile );
	if ( contentRoot.empty() || !fs::is_directory( contentRoot, error ) )
	{
		fprintf( stderr, "zol: no content root was found; name one with --content DIR\n" );
		return false;
	}
	// Without a game folder the content root stands in: only the particle classes and the
	// class descriptions come from there, and they have defaults.
	if ( gameRoot.empty() )
		gameRoot = contentRoot;
	CUtlString ignoredGameInfo;
	if ( !m_Services.Init( gameRoot.c_str(), contentRoot.c_str(), &ignoredGameInfo ) )
	{
		fprintf( stderr, "zol: %s\n", ignoredGameInfo.Get() );
		return false;
	}
	m_ContentRoot = fs::absolute( contentRoot, error ).lexically_normal().generic_string().c_str();
	ConnectParticleHostForDefinition( pFirstFile );
	return true;
}

IAsset *CZolCliMaintenanceHost::FindFileAsset( const char *pFile, CZolFileReport *pReport )
{
	std::error_code error;
	if ( !fs::exists( pFile, error ) )
	{
		pReport->Add( pFile, ZOL_FINDING_ERROR, "no such file" );
		return nullptr;
	}
	const std::string absolute = fs::absolute( pFile, error ).lexically_normal().string();
	IAsset *pAsset = m_Services.GetAssetSystem()->FindAssetByAbsolutePath( Host_NormalizePath( absolute.c_str() ).Get() );
	if ( !pAsset || pAsset->GetType() != RESOURCE_TYPE_PARTICLE_SYSTEM )
	{
		pReport->Add( pFile, ZOL_FINDING_ERROR, "not a particle system definition (*.tfxs) inside the content root %s; name its root with --content DIR",
			m_ContentRoot.Get() );
		return nullptr;
	}
	return pAsset;
}

void CZolCliMaintenanceHost::GetAllAssets( CUtlVector<IAsset *> *pAssets )
{
	m_Services.GetAssetSystem()->GetAssets( pAssets, RESOURCE_TYPE_PARTICLE_SYSTEM );
}

bool CZolCliMaintenanceHost::StartFor( const CUtlVector<const char *> &files, bool bAll, CUtlVector<IAsset *> *pAssets, CZolFileReport *pReport )
{
	if ( !Start( files.IsEmpty() ? nullptr : files[ 0 ] ) )
		return false;
	if ( bAll )
		GetAllAssets( pAssets );
	for ( const char *pFile : files )
	{
		if ( IAsset *pAsset = FindFileAsset( pFile, pReport ) )
			pAssets->AddToTail( pAsset );
	}
	return true;
}

CUtlString CZolCliMaintenanceHost::GetDisplayName( IAsset *pAsset ) const
{
	if ( !pAsset )
		return CUtlString();
	std::error_code error;
	const fs::path file = fs::path( Host_DiskPath( pAsset->GetAbsolutePath() ).Get() ).lexically_normal();
	const fs::path relative = file.lexically_relative( fs::current_path( error ) );
	const std::string text = relative.generic_string();
	if ( !text.empty() && text.compare( 0, 2, ".." ) != 0 )
		return CUtlString( text.c_str() );
	return CUtlString( file.generic_string().c_str() );
}

void PrintMaintenanceReport( const CZolFileReport &report, FILE *pOut )
{
	CUtlVector<CUtlString> lines;
	report.GetSortedLines( &lines );
	for ( const CUtlString &line : lines )
		fprintf( pOut, "%s\n", line.Get() );
}

bool IsMaintenanceFileArgument( const char *pArg )
{
	return pArg && *pArg && pArg[ 0 ] != '-';
}

CUtlString DescribeBadMaintenanceArgument( const char *pArg )
{
	CUtlString why;
	if ( pArg && *pArg )
		why.Format( "unknown option %s", pArg );
	else
		why.Set( "an empty file name" );
	return why;
}
