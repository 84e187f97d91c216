#include "core/host/filesystem.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <map>
#include <string>
#include <system_error>

#include "core/containers/utlbuffer.h"
#include "core/host/hostpaths.h"
#include "core/host/safefilewrite.h"
#include "core/logging/logging.h"
#include "core/platform/platformfile.h"
#include "core/text/strtools.h"

namespace fs = std::filesystem;

namespace
{
constexpr size_t MAX_PATH_LENGTH = 260;

void SetError( CUtlString *pError, const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );
void SetError( CUtlString *pError, const char *pFormat, ... )
{
	if ( !pError )
		return;
	char buffer[ 1024 ];
	va_list args;
	va_start( args, pFormat );
	V_vsnprintf( buffer, sizeof( buffer ), pFormat, args );
	va_end( args );
	pError->Set( buffer );
}

bool IsSamePathID( const CUtlString &a, const char *pPathID )
{
	return a.IsEqual_CaseInsensitive( pPathID );
}
} // namespace

CFileSystem::CFileSystem() = default;
CFileSystem::~CFileSystem() = default;

void CFileSystem::SetupFromRoots( const char *pGameRoot, const char *pContentRoot )
{
	for ( const char *pPathID : { PATH_ID_GAME, PATH_ID_GAMEROOT, PATH_ID_CONTENT, PATH_ID_CONTENTROOT } )
		RemoveSearchPaths( pPathID );
	AddSearchPath( pGameRoot, PATH_ID_GAME );
	AddSearchPath( pGameRoot, PATH_ID_GAMEROOT );
	AddSearchPath( pContentRoot, PATH_ID_CONTENT );
	AddSearchPath( pContentRoot, PATH_ID_CONTENTROOT );
}

void CFileSystem::AddSearchPath( const char *pPath, const char *pPathID, bool bAddToHead )
{
	if ( !pPath || !*pPath || !pPathID || !*pPathID )
		return;
	CUtlString path = Host_NormalizePath( pPath );
	if ( !V_IsAbsolutePath( path.Get() ) )
	{
		std::error_code error;
		path = Host_JoinPath( fs::current_path( error ).string().c_str(), path.Get() );
	}
	std::unique_lock lock( m_Mutex );
	for ( int i = 0; i < m_SearchPaths.Count(); ++i )
	{
		// The same directory twice under one id would only list files twice.
		if ( IsSamePathID( m_SearchPaths[ i ].m_strPathID, pPathID ) && V_PathsMatch( m_SearchPaths[ i ].m_strPath.Get(), path.Get() ) )
		{
			m_SearchPaths.Remove( i );
			break;
		}
	}
	SearchPath_t searchPath{ CUtlString( pPathID ), path };
	if ( bAddToHead )
		m_SearchPaths.AddToHead( searchPath );
	else
		m_SearchPaths.AddToTail( searchPath );
}

void CFileSystem::RemoveSearchPaths( const char *pPathID )
{
	std::unique_lock lock( m_Mutex );
	for ( int i = m_SearchPaths.Count() - 1; i >= 0; --i )
	{
		if ( IsSamePathID( m_SearchPaths[ i ].m_strPathID, pPathID ) )
			m_SearchPaths.Remove( i );
	}
}

CUtlVector<CUtlString> CFileSystem::SearchPathsOf( const char *pPathID ) const
{
	CUtlVector<CUtlString> paths;
	std::shared_lock lock( m_Mutex );
	for ( const SearchPath_t &searchPath : m_SearchPaths )
	{
		if ( pPathID && *pPathID && !IsSamePathID( searchPath.m_strPathID, pPathID ) )
			continue;
		bool bListed = false;
		for ( const CUtlString &path : paths )
			bListed = bListed || V_PathsMatch( path.Get(), searchPath.m_strPath.Get() );
		if ( !bListed )
			paths.AddToTail( searchPath.m_strPath );
	}
	return paths;
}

int CFileSystem::GetSearchPaths( const char *pPathID, CUtlVector<CUtlString> *pPaths ) const
{
	CUtlVector<CUtlString> paths = SearchPathsOf( pPathID );
	if ( pPaths )
		pPaths->AddVectorToTail( paths );
	return paths.Count();
}

void CFileSystem::SetDirectoryUnmodifiable( const char *pPath, bool bUnmodifiable )
{
	if ( !pPath || !*pPath )
		return;
	CUtlString path = Host_NormalizePath( pPath );
	std::unique_lock lock( m_Mutex );
	for ( int i = m_UnmodifiableDirectories.Count() - 1; i >= 0; --i )
	{
		if ( V_PathsMatch( m_UnmodifiableDirectories[ i ].Get(), path.Get() ) )
			m_UnmodifiableDirectories.Remove( i );
	}
	if ( bUnmodifiable )
		m_UnmodifiableDirectories.AddToTail( path );
}

bool CFileSystem::IsInUnmodifiableDirectory( const char *pFullPath ) const
{
	std::shared_lock lock( m_Mutex );
	for ( const CUtlString &directory : m_UnmodifiableDirectories )
	{
		if ( V_PathsMatch( pFullPath, directory.Get() ) || Host_PathInside( pFullPath, directory.Get() ) )
			return true;
	}
	return false;
}

bool CFileSystem::IsPathUnmodifiable( const char *pPath, const char *pPathID ) const
{
	CUtlString fullPath;
	if ( !MakeWritePath( pPath, pPathID, &fullPath ) )
		return false;
	if ( IsInUnmodifiableDirectory( fullPath.Get() ) )
		return true;
	// The nearest directory that exists decides.
	std::error_code error;
	fs::path disk( Host_DiskPathForWrite( fullPath.Get() ).Get() );
	fs::path directory = fs::is_directory( disk, error ) ? disk : disk.parent_path();
	while ( !directory.empty() && !fs::exists( directory, error ) && directory != directory.parent_path() )
		directory = directory.parent_path();
	fs::perms permissions = fs::status( directory, error ).permissions();
	return !error && ( permissions & fs::perms::owner_write ) == fs::perms::none;
}

bool CFileSystem::Locate( const char *pFileName, const char *pPathID, CUtlString *pDiskPath ) const
{
	if ( !pFileName || !*pFileName )
		return false;
	if ( V_IsAbsolutePath( pFileName ) )
		return Host_FindOnDisk( pFileName, pDiskPath );
	for ( const CUtlString &searchPath : SearchPathsOf( pPathID ) )
	{
		if ( Host_FindOnDisk( Host_JoinPath( searchPath.Get(), pFileName ).Get(), pDiskPath ) )
			return true;
	}
	return false;
}

bool CFileSystem::ReadFile( const char *pFileName, const char *pPathID, CUtlBuffer *pBuffer, CUtlString *pError )
{
	CUtlString diskPath;
	if ( !Locate( pFileName, pPathID, &diskPath ) )
	{
		SetError( pError, "Unable to find file '%s' (path id '%s')", pFileName ? pFileName : "", pPathID ? pPathID : "" );
		return false;
	}
	pBuffer->Clear();
	CUtlString reason;
	if ( !Plat_ReadWholeFile( diskPath.Get(), pBuffer, &reason ) )
	{
		pBuffer->Clear();
		SetError( pError, "Unable to read '%s': %s", diskPath.Get(), reason.Get() );
		return false;
	}
	return true;
}

bool CFileSystem::MakeWritePath( const char *pFileName, const char *pPathID, CUtlString *pFullPath ) const
{
	if ( !pFileName || !*pFileName )
		return false;
	if ( V_IsAbsolutePath( pFileName ) )
	{
		*pFullPath = Host_NormalizePath( pFileName );
		return true;
	}
	CUtlVector<CUtlString> paths = SearchPathsOf( pPathID );
	if ( paths.IsEmpty() )
		return false;
	*pFullPath = Host_JoinPath( paths[ 0 ].Get(), pFileName );
	return true;
}

bool CFileSystem::WriteFile( const char *pFileName, const char *pPathID, const CUtlBuffer &buffer, CUtlString *pError )
{
	CUtlString fullPath;
	if ( !MakeWritePath( pFileName, pPathID, &fullPath ) )
	{
		SetError( pError, "Cannot write '%s': the path id '%s' has no directory", pFileName ? pFileName : "", pPathID ? pPathID : "" );
		return false;
	}
	if ( !IsPathValid( fullPath.Get() ) )
	{
		SetError( pError, "Cannot write '%s': not a valid path", fullPath.Get() );
		return false;
	}
	if ( IsInUnmodifiableDirectory( fullPath.Get() ) )
	{
		SetError( pError, "Cannot write '%s': it lies in a directory marked as not to be modified", fullPath.Get() );
		return false;
	}
	// An existing file is found whatever the case of its name, as a read finds it.
	return SafeWriteFile( Host_DiskPathForWrite( fullPath.Get() ).Get(), buffer, pError );
}

bool CFileSystem::CreateDirHierarchy( const char *pPath, const char *pPathID )
{
	CUtlString fullPath;
	if ( !MakeWritePath( pPath, pPathID, &fullPath ) )
		return false;
	fs::path disk( Host_DiskPathForWrite( fullPath.Get() ).Get() );
	std::error_code error;
	fs::create_directories( disk, error );
	return fs::is_directory( disk, error );
}

bool CFileSystem::RemoveFile( const char *pFileName, const char *pPathID )
{
	CUtlString diskPath;
	if ( !Locate( pFileName, pPathID, &diskPath ) )
		return false;
	std::error_code error;
	if ( fs::is_directory( diskPath.Get(), error ) )
		return false;
	return fs::remove( diskPath.Get(), error );
}

bool CFileSystem::FileExists( const char *pFileName, const char *pPathID ) const
{
	CUtlString diskPath;
	return Locate( pFileName, pPathID, &diskPath );
}

bool CFileSystem::IsDirectory( const char *pPath, const char *pPathID ) const
{
	CUtlString diskPath;
	std::error_code error;
	return Locate( pPath, pPathID, &diskPath ) && fs::is_directory( diskPath.Get(), error );
}

bool CFileSystem::IsFileWritable( const char *pFileName, const char *pPathID ) const
{
	CUtlString diskPath;
	if ( !Locate( pFileName, pPathID, &diskPath ) )
		return false;
	// The owner's write bit, not access(): a privileged process may write anything, but a
	// file marked read only (not checked out) must still count as such.
	std::error_code error;
	fs::perms permissions = fs::status( diskPath.Get(), error ).permissions();
	return !error && ( permissions & fs::perms::owner_write ) != fs::perms::none;
}

int64_t CFileSystem::GetFileTime( const char *pFileName, const char *pPathID ) const
{
	CUtlString diskPath;
	if ( !Locate( pFileName, pPathID, &diskPath ) )
		return 0;
	struct stat info;
	if ( stat( diskPath.Get(), &info ) != 0 )
		return 0;
	return int64_t( info.st_mtim.tv_sec ) * 1000000000 + int64_t( info.st_mtim.tv_nsec );
}

int CFileSystem::FindFiles( const char *pPattern, const char *pPathID, unsigned nFlags, CUtlVector<CUtlString> *pResults ) const
{
	if ( !pPattern || !*pPattern || !pResults )
		return 0;
	if ( !( nFlags & ( FILE_FIND_FILES | FILE_FIND_DIRECTORIES ) ) )
		nFlags |= FILE_FIND_FILES;
	CUtlString pattern = Host_NormalizePath( pPattern );
	CUtlString directory = pattern.DirName();
	CUtlString namePattern( pattern.UnqualifiedFilename() );
	if ( namePattern.IsEmpty() )
		return 0;

	CUtlVector<CUtlString> baseDirectories;
	if ( V_IsAbsolutePath( pattern.Get() ) )
	{
		baseDirectories.AddToTail( directory );
	}
	else
	{
		for ( const CUtlString &searchPath : SearchPathsOf( pPathID ) )
			baseDirectories.AddToTail( Host_JoinPath( searchPath.Get(), directory.Get() ) );
	}

	struct Found_t
	{
		std::string m_Key; // lower-cased relative name, for duplicates along search paths
		CUtlString m_Path;
	};
	std::vector<Found_t> found;
	// A relative name met again along a later search path is hidden by the first; two
	// names of one directory that differ only in case are two files, and both count.
	std::map<std::string, int> seen;
	for ( int nBase = 0; nBase < baseDirectories.Count(); ++nBase )
	{
		const CUtlString &baseDirectory = baseDirectories[ nBase ];
		CUtlString diskBase;
		std::error_code error;
		if ( !Host_FindOnDisk( baseDirectory.Get(), &diskBase ) || !fs::is_directory( diskBase.Get(), error ) )
			continue;
		auto consider = [&]( const fs::directory_entry &entry ) {
			std::error_code entryError;
			bool bDirectory = entry.is_directory( entryError );
			if ( bDirectory ? !( nFlags & FILE_FIND_DIRECTORIES ) : !( nFlags & FILE_FIND_FILES ) )
				return;
			if ( !Host_WildcardMatch( namePattern.Get(), entry.path().filename().string().c_str() ) )
				return;
			std::string relative = entry.path().lexically_relative( diskBase.Get() ).generic_string();
			std::string key = relative;
			V_strlower_fast( key.data() );
			auto [ itSeen, bNew ] = seen.emplace( key, nBase );
			if ( !bNew && itSeen->second != nBase )
				return;
			found.push_back( { key, Host_NormalizePath( entry.path().string().c_str() ) } );
		};
		if ( nFlags & FILE_FIND_RECURSIVE )
		{
			for ( fs::recursive_directory_iterator it( diskBase.Get(), fs::directory_options::skip_permission_denied, error ), end; !error && it != end; it.increment( error ) )
				consider( *it );
		}
		else
		{
			for ( fs::directory_iterator it( diskBase.Get(), fs::directory_options::skip_permission_denied, error ), end; !error && it != end; it.increment( error ) )
				consider( *it );
		}
	}
	std::sort( found.begin(), found.end(), []( const Found_t &a, const Found_t &b ) { return a.m_Key < b.m_Key; } );
	for ( Found_t &entry : found )
		pResults->AddToTail( entry.m_Path );
	return int( found.size() );
}

bool CFileSystem::RelativePathToFullPath( const char *pFileName, const char *pPathID, CUtlString *pFullPath ) const
{
	CUtlString diskPath;
	if ( !Locate( pFileName, pPathID, &diskPath ) )
		return false;
	if ( pFullPath )
		*pFullPath = Host_NormalizePath( diskPath.Get() );
	return true;
}

bool CFileSystem::FullPathToRelativePath( const char *pFullPath, const char *pPathID, CUtlString *pRelativePath ) const
{
	if ( !pFullPath || !V_IsAbsolutePath( pFullPath ) )
		return false;
	CUtlString fullPath = Host_NormalizePath( pFullPath );
	for ( const CUtlString &searchPath : SearchPathsOf( pPathID ) )
	{
		if ( const char *pRest = Host_PathInside( fullPath.Get(), searchPath.Get() ) )
		{
			if ( pRelativePath )
				pRelativePath->Set( pRest );
			return true;
		}
	}
	return false;
}

bool CFileSystem::IsPathValid( const char *pPath ) const
{
	if ( !pPath || !*pPath )
		return false;
	size_t nLength = V_strlen( pPath );
	if ( nLength >= MAX_PATH_LENGTH )
		return false;
	for ( size_t i = 0; i < nLength; ++i )
	{
		unsigned char c = (unsigned char)pPath[ i ];
		if ( c < 32 || strchr( "<>\"|?*", c ) )
			return false;
		// A drive letter's colon is the only one a path may hold.
		if ( c == ':' && i != 1 )
			return false;
	}
	return true;
}
