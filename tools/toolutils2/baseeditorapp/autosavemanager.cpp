#include "tools/toolutils2/baseeditorapp/autosavemanager.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include "core/host/hostpaths.h"
#include "core/host/iprompt.h"
#include "core/kv3/keyvalues3.h"
#include "core/logging/logonce.h"
#include "core/platform/platformmode.h"
#include "core/platform/platformtime.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/autosavenames.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/baseeditorapp/editorpathcheck.h"

namespace fs = std::filesystem;

namespace
{
// A refused autosave is tried again this much later.
constexpr double RETRY_SECONDS = 1.0;
constexpr int64_t BYTES_PER_MEGABYTE = int64_t( 1 ) << 20;
// Numbers have three digits and wrap from 1000 back to 1.
constexpr int MAX_AUTOSAVE_NUMBER = 999;
constexpr const char *DISABLED_TEXT = "The autosave feature will be disabled.";
// Test scripts run under the tools; what they open is never worth an autosave.
constexpr const char *UNIT_TEST_SCRIPT_DIRECTORY = "src/unittests/autotestscripts";

bool SameName( const char *pA, const char *pB, bool bExactCase )
{
	return bExactCase ? !V_strcmp( pA, pB ) : !V_stricmp_fast( pA, pB );
}

// The first "*.ext" of a filter such as "Particle System Definition (*.tfxs);;".
bool GetFilterExtension( const char *pFilter, CUtlString *pExtension )
{
	const char *pStar = pFilter ? strstr( pFilter, "*." ) : nullptr;
	if ( !pStar )
		return false;
	const char *pStart = pStar + 2;
	const char *pEnd = pStart;
	while ( *pEnd && *pEnd != ')' && *pEnd != ' ' && *pEnd != ';' && *pEnd != '*' )
		++pEnd;
	if ( pEnd == pStart )
		return false;
	pExtension->Set( pStart, size_t( pEnd - pStart ) );
	return true;
}

std::string DiskPathOf( const char *pPath )
{
	CUtlString strDisk;
	if ( !Host_FindOnDisk( pPath, &strDisk ) )
		strDisk = Host_DiskPath( pPath );
	return strDisk.Get();
}

// An autosave file below a directory, as the space limit sees it.
struct AutosaveSpace_t
{
	std::string m_Path;
	uintmax_t m_nSize = 0;
	fs::file_time_type m_Time;
};

// Every autosave file in the directory's subtree. Links are neither counted nor followed,
// and nothing but autosave files counts: the limit is about autosaves alone.
std::vector<AutosaveSpace_t> ListAutosaveSpace( const std::string &directory, uintmax_t *pTotal )
{
	std::vector<AutosaveSpace_t> files;
	*pTotal = 0;
	std::error_code error;
	for ( fs::recursive_directory_iterator it( directory, fs::directory_options::skip_permission_denied, error ), end; !error && it != end; it.increment( error ) )
	{
		std::error_code entryError;
		if ( !fs::is_regular_file( it->symlink_status( entryError ) ) || !IsAutosaveFileName( it->path().filename().c_str() ) )
			continue;
		AutosaveSpace_t file;
		file.m_Path = it->path().string();
		file.m_nSize = it->file_size( entryError );
		file.m_Time = it->last_write_time( entryError );
		if ( entryError )
			continue;
		*pTotal += file.m_nSize;
		files.push_back( file );
	}
	return files;
}

// A test file shows whether the directory takes new files. One that stood there before
// is left as it was; the one made here is removed again.
bool ProbeDirectory( const char *pDirectory, CUtlString *pError )
{
	std::string probe = DiskPathOf( pDirectory ) + "/test.txt";
	bool bMade = true;
	int fd = open( probe.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666 );
	if ( fd < 0 && errno == EEXIST )
	{
		bMade = false;
		fd = open( probe.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC );
	}
	if ( fd < 0 )
	{
		// The texts the file layer gives for a file that won't open.
		pError->Set( errno == EMFILE ? "A resource error occurred." : "The file could not be opened." );
		return false;
	}
	close( fd );
	if ( bMade )
		unlink( probe.c_str() );
	return true;
}
} // namespace

bool IsHeadlessEditorRun()
{
	return Plat_IsInTestMode() || Plat_IsInHeadlessMode();
}

// ---------------------------------------------------------------------------------------
// Lists

int CAutosaveManager::FindRecentFile( const char *pPath ) const
{
	// Two files may differ only in case: the exact spelling wins.
	int nFound = -1;
	for ( size_t i = 0; i < m_RecentFiles.size(); ++i )
	{
		const char *pName = m_RecentFiles[ i ].m_strFileName.Get();
		if ( !V_PathsMatch( pName, pPath ) )
			continue;
		CUtlString strPath( pPath );
		strPath.FixSlashes();
		if ( !V_strcmp( pName, strPath ) )
			return int( i );
		if ( nFound < 0 )
			nFound = int( i );
	}
	return nFound;
}

AutosaveFileEntry_t *CAutosaveManager::FindRecentEntry( const char *pPath )
{
	int nIndex = FindRecentFile( pPath );
	return nIndex < 0 ? nullptr : &m_RecentFiles[ size_t( nIndex ) ];
}

void CAutosaveManager::TrimRecentFiles()
{
	if ( int( m_RecentFiles.size() ) > m_nMaxRecentFiles )
		m_RecentFiles.resize( size_t( m_nMaxRecentFiles ) );
}

void CAutosaveManager::MarkSettingsDirty()
{
	if ( m_pApp )
		m_pApp->MarkSettingsDirty();
}

bool CAutosaveManager::IsKeptCandidate( const char *pPath ) const
{
	return std::any_of( m_KeptCandidates.begin(), m_KeptCandidates.end(), [ pPath ]( const CUtlString &strKept ) { return V_PathsMatch( strKept.Get(), pPath ); } );
}

void CAutosaveManager::NoteFileOpened( const char *pPath, bool bDisplayInList )
{
	if ( !pPath || !*pPath )
		return;
	AutosaveFileEntry_t entry;
	int nIndex = FindRecentFile( pPath );
	if ( nIndex >= 0 )
	{
		entry = m_RecentFiles[ size_t( nIndex ) ];
		m_RecentFiles.erase( m_RecentFiles.begin() + nIndex );
	}
	CUtlString strPath( pPath );
	strPath.FixSlashes();
	entry.m_strFileName = strPath;
	if ( !IsKeptCandidate( pPath ) )
		entry.m_bClosedCorrectly = false;
	// A file noted as shown stays shown; one that was only tracked may become shown.
	entry.m_bDisplayInList = entry.m_bDisplayInList || bDisplayInList;
	if ( nIndex < 0 )
		entry.m_bDisplayInList = bDisplayInList;
	m_RecentFiles.insert( m_RecentFiles.begin(), entry );
	TrimRecentFiles();
	MarkSettingsDirty();
}

void CAutosaveManager::NoteFileClosed( const char *pPath )
{
	RemoveNewFile( pPath );
	AutosaveFileEntry_t *pEntry = FindRecentEntry( pPath );
	if ( !pEntry || IsKeptCandidate( pPath ) )
		return;
	pEntry->m_bClosedCorrectly = true;
	pEntry->m_bAutosaved = false;
	MarkSettingsDirty();
}

void CAutosaveManager::NoteNewFile( const char *pName )
{
	if ( !pName || !*pName || IsNewFile( pName ) )
		return;
	m_NewFiles.emplace_back( pName );
	MarkSettingsDirty();
}

void CAutosaveManager::RemoveNewFile( const char *pName )
{
	if ( !pName || IsKeptCandidate( pName ) )
		return;
	for ( size_t i = 0; i < m_NewFiles.size(); ++i )
	{
		if ( V_PathsMatch( m_NewFiles[ i ].Get(), pName ) )
		{
			m_NewFiles.erase( m_NewFiles.begin() + long( i ) );
			MarkSettingsDirty();
			return;
		}
	}
}

bool CAutosaveManager::IsNewFile( const char *pName ) const
{
	for ( const CUtlString &strName : m_NewFiles )
	{
		if ( V_PathsMatch( strName.Get(), pName ) )
			return true;
	}
	return false;
}

void CAutosaveManager::ClearRecentFiles()
{
	m_RecentFiles.clear();
	MarkSettingsDirty();
}

void CAutosaveManager::ReadSettings( const KeyValues3 *pRecentFiles, const KeyValues3 *pNewFiles )
{
	m_RecentFiles.clear();
	m_NewFiles.clear();
	m_KeptCandidates.clear();
	m_bKeepingRecovery = false;
	char szKey[ 64 ];
	if ( pRecentFiles && pRecentFiles->IsTable() )
	{
		for ( int i = 0; i < pRecentFiles->GetMemberCount(); ++i )
		{
			V_snprintf( szKey, sizeof( szKey ), "Filename %i", i );
			const KeyValues3 *pName = pRecentFiles->FindMember( szKey );
			if ( !pName || !pName->IsString() || !*pName->GetString() )
				continue;
			const char *pPath = pName->GetString();
			if ( FindRecentFile( pPath ) >= 0 || ( m_fnFileExists && !m_fnFileExists( pPath ) ) )
				continue;
			AutosaveFileEntry_t entry;
			entry.m_strFileName = pPath;
			entry.m_strFileName.FixSlashes();
			V_snprintf( szKey, sizeof( szKey ), "ClosedCorrectly %i", i );
			entry.m_bClosedCorrectly = pRecentFiles->GetMemberBool( szKey, true );
			V_snprintf( szKey, sizeof( szKey ), "Autosaved %i", i );
			entry.m_bAutosaved = pRecentFiles->GetMemberBool( szKey, false );
			V_snprintf( szKey, sizeof( szKey ), "DisplayInList %i", i );
			entry.m_bDisplayInList = pRecentFiles->GetMemberBool( szKey, true );
			// The mark holds only while an autosave newer than the file is still there.
			CUtlString strLatest;
			if ( entry.m_bAutosaved && m_pApp && !FindLatestAutosave( entry.m_strFileName, &strLatest ) )
				entry.m_bAutosaved = false;
			m_RecentFiles.push_back( entry );
		}
		TrimRecentFiles();
	}
	if ( pNewFiles && pNewFiles->IsTable() )
	{
		for ( int i = 0; i < pNewFiles->GetMemberCount(); ++i )
		{
			V_snprintf( szKey, sizeof( szKey ), "NewFilename %i", i );
			const char *pName = pNewFiles->GetMemberString( szKey, "" );
			if ( *pName && !IsNewFile( pName ) )
				m_NewFiles.emplace_back( pName );
		}
	}
}

void CAutosaveManager::WriteSettings( KeyValues3 *pRecentFiles, KeyValues3 *pNewFiles ) const
{
	char szKey[ 64 ];
	pRecentFiles->SetToEmptyTable();
	for ( size_t i = 0; i < m_RecentFiles.size(); ++i )
	{
		const AutosaveFileEntry_t &entry = m_RecentFiles[ i ];
		V_snprintf( szKey, sizeof( szKey ), "Filename %i", int( i ) );
		pRecentFiles->SetMemberString( szKey, entry.m_strFileName.Get() );
		V_snprintf( szKey, sizeof( szKey ), "ClosedCorrectly %i", int( i ) );
		pRecentFiles->SetMemberBool( szKey, entry.m_bClosedCorrectly );
		V_snprintf( szKey, sizeof( szKey ), "Autosaved %i", int( i ) );
		pRecentFiles->SetMemberBool( szKey, entry.m_bAutosaved );
		V_snprintf( szKey, sizeof( szKey ), "DisplayInList %i", int( i ) );
		pRecentFiles->SetMemberBool( szKey, entry.m_bDisplayInList );
	}
	pNewFiles->SetToEmptyTable();
	for ( size_t i = 0; i < m_NewFiles.size(); ++i )
	{
		V_snprintf( szKey, sizeof( szKey ), "NewFilename %i", int( i ) );
		pNewFiles->SetMemberString( szKey, m_NewFiles[ i ].Get() );
	}
}

// ---------------------------------------------------------------------------------------
// Names and directories

void CAutosaveManager::GetAutosaveRoot( CUtlString *pRoot ) const
{
	pRoot->Clear();
	CUtlString strContentRoot;
	EditorFiles::GetRoot( "CONTENTROOT", &strContentRoot );
	strContentRoot.FixSlashes( '\\' );
	while ( strContentRoot.Length() > 1 && strContentRoot.Get()[ strContentRoot.Length() - 1 ] == '\\' )
		strContentRoot.Set( strContentRoot.Get(), strContentRoot.Length() - 1 );
	if ( strContentRoot.IsEmpty() )
		return;
	pRoot->Format( "%s_toolsautosave\\", strContentRoot.Get() );
	if ( m_pApp && *m_pApp->GetToolName() )
		pRoot->AppendFormat( "%s\\", m_pApp->GetToolName() );
}

void CAutosaveManager::GetOriginalFileName( const char *pAutosavePath, CUtlString *pOut ) const
{
	CUtlString strRoot;
	GetAutosaveRoot( &strRoot );
	CUtlString strContentRoot;
	EditorFiles::GetRoot( "CONTENTROOT", &strContentRoot );
	GetAutosaveOriginalName( pAutosavePath, strRoot, strContentRoot, pOut );
}

void CAutosaveManager::DisableAutosaves( const char *pTitle, const char *pText )
{
	GetPrompt()->Warning( pTitle, pText );
	if ( !m_pApp )
		return;
	CEditorSettings settings = m_pApp->GetEditorSettings();
	settings.m_bAutosavesEnabled = false;
	m_pApp->ChangeEditorSettings( settings );
}

bool CAutosaveManager::CheckAutosaveDirectory( const char *pDirectory )
{
	CUtlString strRoot;
	GetAutosaveRoot( &strRoot );
	if ( strRoot.IsEmpty() )
	{
		DisableAutosaves( "No autosave directory found", "The autosave feature will be disabled" );
		return false;
	}
	// On this platform an absolute path starts at the root, not with a drive letter.
	if ( !V_IsAbsolutePath( strRoot ) )
	{
		DisableAutosaves( "Bad autosave dir", "The current autosave directory does not have an absolute path.\nThe autosave feature will be disabled." );
		return false;
	}
	if ( !EditorFiles::IsDirectory( pDirectory ) && !EditorFiles::CreateDirectoryChain( pDirectory ) )
	{
		DisableAutosaves( "Unable to create autosave directory", "The autosave directory does not exist and could not be created.\nThe autosave feature will be disabled." );
		return false;
	}
	CUtlString strError;
	if ( !ProbeDirectory( pDirectory, &strError ) )
	{
		CUtlString strText;
		strText.Format( "There is a problem with the autosave directory: %s\n%s", strError.Get(), DISABLED_TEXT );
		DisableAutosaves( "Directory error", strText );
		return false;
	}
	return true;
}

bool CAutosaveManager::HasCaseTwin( const char *pPath ) const
{
	CUtlString strPath( pPath );
	strPath.FixSlashes();
	const char *pName = V_UnqualifiedFileName( strPath );
	std::vector<CUtlString> names;
	EditorFiles::ListDirectory( strPath.DirName(), &names );
	for ( const CUtlString &strName : names )
	{
		if ( V_strcmp( strName, pName ) && !V_stricmp_fast( strName, pName ) )
		{
			LoggingSystem_LogOnceByKey( LOG_GENERAL, LS_WARNING, strPath, "'%s' and '%s' differ only in case: their autosaves are told apart by the exact spelling of the name\n", strPath.Get(), strName.Get() );
			return true;
		}
	}
	return false;
}

std::vector<CAutosaveManager::AutosaveFile_t> CAutosaveManager::ListAutosavesOf( const char *pDirectory, const char *pPath, const char *pExtension ) const
{
	char szBase[ EDITOR_MAX_PATH ];
	V_FileBase( pPath, szBase, sizeof( szBase ) );
	bool bExactCase = HasCaseTwin( pPath );
	CUtlString strAutosaveExtension;
	if ( pExtension )
		strAutosaveExtension.Format( "%s_autosave", pExtension );

	CUtlString strPattern;
	strPattern.Format( "%s*.*_autosave", pDirectory );
	std::vector<CUtlString> paths;
	EditorFiles::FindFiles( strPattern, &paths );
	std::vector<AutosaveFile_t> files;
	for ( const CUtlString &strFile : paths )
	{
		if ( !SameName( GetAutosaveOriginalBaseName( strFile ), szBase, bExactCase ) )
			continue;
		const char *pFileExtension = V_GetFileExtension( strFile );
		if ( pExtension && ( !pFileExtension || !SameName( pFileExtension, strAutosaveExtension, bExactCase ) ) )
			continue;
		AutosaveFile_t file;
		file.m_nNumber = GetAutosaveNumber( strFile );
		if ( file.m_nNumber < 0 )
			continue;
		file.m_strPath = strFile;
		file.m_nTime = EditorFiles::GetModificationTime( strFile );
		files.push_back( file );
	}
	return files;
}

int CAutosaveManager::ChooseAutosaveNumber( const char *pDirectory, const char *pPath ) const
{
	int nMax = std::clamp( m_pApp->GetEditorSettings().m_nMaxSavesPerMap, 1, MAX_AUTOSAVE_NUMBER );
	int nCount = 0;
	int nExpected = 1;
	int nLastGap = 0;
	const AutosaveFile_t *pOldest = nullptr;
	std::vector<AutosaveFile_t> files = ListAutosavesOf( pDirectory, pPath, nullptr );
	for ( const AutosaveFile_t &file : files )
	{
		// Numbers above the limit (left from a higher one) are neither counted nor reused.
		if ( file.m_nNumber > nMax )
			continue;
		++nCount;
		if ( file.m_nNumber != nExpected )
			nLastGap = nExpected;
		nExpected = file.m_nNumber + 1 > MAX_AUTOSAVE_NUMBER ? 1 : file.m_nNumber + 1;
		if ( !pOldest || file.m_nTime < pOldest->m_nTime )
			pOldest = &file;
	}
	int nNumber;
	if ( nCount < nMax )
		nNumber = nExpected <= nMax && nExpected > nLastGap ? nExpected : nLastGap;
	else
		nNumber = pOldest->m_nNumber;
	return nNumber < 1 ? 1 : nNumber;
}

bool CAutosaveManager::MakeAutosaveName( const char *pPath, const char *pExtension, CUtlString *pName )
{
	CUtlString strRoot;
	GetAutosaveRoot( &strRoot );
	CUtlString strContentRoot;
	EditorFiles::GetRoot( "CONTENTROOT", &strContentRoot );
	CUtlString strDirectory;
	GetAutosaveDirectoryOf( pPath, strRoot, strContentRoot, &strDirectory );
	if ( !CheckAutosaveDirectory( strDirectory ) )
		return false;
	char szBase[ EDITOR_MAX_PATH ];
	V_FileBase( pPath, szBase, sizeof( szBase ) );
	MakeAutosaveFileName( strDirectory, szBase, ChooseAutosaveNumber( strDirectory, pPath ), pExtension, pName );
	return true;
}

bool CAutosaveManager::GetAutosaveExtension( const CBaseEditorSession *pSession, const char *pPath, CUtlString *pExtension ) const
{
	if ( const char *pOwn = V_GetFileExtension( pPath ) )
	{
		pExtension->Set( pOwn );
		return !pExtension->IsEmpty();
	}
	// A document not saved yet takes the extension it will be saved under.
	if ( pSession && !pSession->IsNewFile() )
		return false;
	CUtlString strFilter;
	if ( pSession )
		pSession->GetSaveFilter( &strFilter );
	if ( strFilter.IsEmpty() && m_pApp )
		strFilter = m_pApp->GetSaveFilter();
	return GetFilterExtension( strFilter, pExtension );
}

bool CAutosaveManager::FindLatestAutosave( const char *pPath, CUtlString *pResult )
{
	pResult->Clear();
	if ( !m_pApp || !m_pApp->GetEditorSettings().m_bAutosavesEnabled || !pPath || !*pPath )
		return false;
	CUtlString strRoot;
	GetAutosaveRoot( &strRoot );
	CUtlString strExtension;
	if ( strRoot.IsEmpty() || !V_IsAbsolutePath( strRoot ) || !GetAutosaveExtension( nullptr, pPath, &strExtension ) )
		return false;
	CUtlString strContentRoot;
	EditorFiles::GetRoot( "CONTENTROOT", &strContentRoot );
	CUtlString strDirectory;
	GetAutosaveDirectoryOf( pPath, strRoot, strContentRoot, &strDirectory );

	const AutosaveFile_t *pNewest = nullptr;
	std::vector<AutosaveFile_t> files = ListAutosavesOf( strDirectory, pPath, strExtension );
	for ( const AutosaveFile_t &file : files )
	{
		if ( !pNewest || file.m_nTime > pNewest->m_nTime )
			pNewest = &file;
	}
	bool bOriginalExists = EditorFiles::Exists( pPath );
	if ( !pNewest )
	{
		if ( !bOriginalExists )
			return true;
		pResult->Set( pPath );
		return false;
	}
	if ( bOriginalExists && EditorFiles::GetModificationTime( pPath ) > pNewest->m_nTime )
	{
		pResult->Set( pPath );
		return false;
	}
	*pResult = pNewest->m_strPath;
	return true;
}

// ---------------------------------------------------------------------------------------
// Timer and saving

void CAutosaveManager::StartTimer()
{
	int nMinutes = m_pApp ? std::max( 1, m_pApp->GetEditorSettings().m_nTimeBetweenSaves ) : 15;
	m_flNextAutosaveTime = Plat_FloatTime() + nMinutes * 60.0;
	m_bTimerStarted = true;
}

void CAutosaveManager::Tick()
{
	if ( !m_pApp || !m_pApp->SupportsAutosave() || !m_pApp->GetEditorSettings().m_bAutosavesEnabled )
		return;
	if ( !m_bTimerStarted )
	{
		StartTimer();
		return;
	}
	double flNow = Plat_FloatTime();
	if ( flNow <= m_flNextAutosaveTime )
		return;
	if ( !m_pApp->CanAutosaveNow() )
	{
		m_flNextAutosaveTime = flNow + RETRY_SECONDS;
		return;
	}
	AutosaveAll( false );
	StartTimer();
}

void CAutosaveManager::AutosaveAll( bool bForce )
{
	if ( !m_pApp )
		return;
	if ( !m_pApp->GetEditorSettings().m_bAutosavesEnabled )
		return;
	bool bSavedAny = false;
	std::vector<CBaseEditorSession *> sessions = m_pApp->GetSessions();
	for ( CBaseEditorSession *pSession : sessions )
	{
		if ( !bForce && !( pSession->NeedsAutosave() && pSession->IsModified() ) )
			continue;
		if ( !pSession->CanEverAutosave() )
			continue;
		CUtlString strPath( pSession->GetFileName() );
		CUtlString strForwardPath( strPath );
		strForwardPath.FixSlashes( '/' );
		CUtlString strExtension;
		if ( strPath.IsEmpty() || V_stristr_fast( strForwardPath, UNIT_TEST_SCRIPT_DIRECTORY ) || !GetAutosaveExtension( pSession, strPath, &strExtension ) )
			continue;
		CUtlString strAutosave;
		if ( !MakeAutosaveName( strPath, strExtension, &strAutosave ) )
			break;
		if ( !pSession->SaveToFile( strPath, strAutosave, true ) )
		{
			Log_Warning( LOG_GENERAL, "The autosave of '%s' to '%s' failed; the next autosave tries again.\n", strPath.Get(), strAutosave.Get() );
			continue;
		}
		bSavedAny = true;
		if ( AutosaveFileEntry_t *pEntry = FindRecentEntry( strPath ) )
			pEntry->m_bAutosaved = true;
		else
			NoteNewFile( strPath );
		pSession->SetNeedsAutosave( false );
		KeepWithinSpace( strAutosave.DirName(), strAutosave );
	}
	// What the recovery needs must be on disk before the next crash can come.
	if ( bSavedAny )
		m_pApp->StoreSettingsNow();
}

void CAutosaveManager::KeepWithinSpace( const char *pDirectory, const char *pJustWritten )
{
	uintmax_t nLimit = uintmax_t( std::max( 0, m_pApp->GetEditorSettings().m_nMaxAutosaveSpace ) ) * BYTES_PER_MEGABYTE;
	uintmax_t nTotal = 0;
	std::vector<AutosaveSpace_t> files = ListAutosaveSpace( DiskPathOf( pDirectory ), &nTotal );
	if ( nTotal <= nLimit )
		return;
	std::string justWritten = DiskPathOf( pJustWritten );
	std::sort( files.begin(), files.end(), []( const AutosaveSpace_t &a, const AutosaveSpace_t &b ) { return a.m_Time < b.m_Time; } );
	for ( const AutosaveSpace_t &file : files )
	{
		if ( nTotal <= nLimit )
			break;
		if ( file.m_Path == justWritten )
			continue;
		Log_Msg( LOG_GENERAL, "Deleting autosave file: %s\n", file.m_Path.c_str() );
		std::error_code error;
		// A file that won't go leaves the size over the limit; the next oldest follows.
		if ( fs::remove( file.m_Path, error ) )
			nTotal -= file.m_nSize;
	}
}

// ---------------------------------------------------------------------------------------
// Recovery

void CAutosaveManager::CheckForRecovery()
{
	m_bKeepingRecovery = false;
	m_KeptCandidates.clear();
	if ( !m_pApp )
		return;
	const CEditorSettings &settings = m_pApp->GetEditorSettings();
	if ( !settings.m_bLoadAutosaveOnCrash || !m_pApp->SupportsAutosave() || settings.m_bClosedCorrectly )
		return;
	std::vector<CUtlString> entries;
	for ( const AutosaveFileEntry_t &entry : m_RecentFiles )
	{
		if ( !entry.m_bClosedCorrectly && entry.m_bAutosaved )
			entries.push_back( entry.m_strFileName );
	}
	std::vector<CUtlString> newFiles = m_NewFiles;
	if ( entries.empty() && newFiles.empty() )
		return;

	if ( IsHeadlessEditorRun() )
	{
		// Nobody is there to answer: the crash record stays for the next interactive start.
		Log_Msg( LOG_GENERAL, "%s did not shut down correctly the last time; %d file(s) can be recovered at the next interactive start.\n", m_pApp->GetApplicationName(), int( entries.size() + newFiles.size() ) );
		m_bKeepingRecovery = true;
		m_KeptCandidates = entries;
		m_KeptCandidates.insert( m_KeptCandidates.end(), newFiles.begin(), newFiles.end() );
		return;
	}

	char szText[ 1024 ];
	V_snprintf( szText, sizeof( szText ),
		"%s did not shut down correctly the last time it was used.\nMore recent autosaves exist of the files you were working on.\nWould you like to recover the last saved versions of the files that were open?\n",
		m_pApp->GetApplicationName() );
	PromptQuestion_t question;
	question.m_eIcon = PROMPT_ICON_QUESTION;
	question.m_strTitle = "Recover Files?";
	question.m_strText = szText;
	question.m_nButtons = PROMPT_BUTTON_YES | PROMPT_BUTTON_NO;
	question.m_eDefaultButton = PROMPT_BUTTON_YES;
	if ( GetPrompt()->Ask( question ) == PROMPT_BUTTON_YES )
	{
		RecoverFiles( entries, newFiles );
		return;
	}
	for ( const CUtlString &strPath : entries )
	{
		if ( AutosaveFileEntry_t *pEntry = FindRecentEntry( strPath ) )
		{
			pEntry->m_bClosedCorrectly = true;
			pEntry->m_bAutosaved = false;
		}
	}
	for ( const CUtlString &strName : newFiles )
		RemoveNewFile( strName );
	MarkSettingsDirty();
}

void CAutosaveManager::RecoverFiles( const std::vector<CUtlString> &entries, const std::vector<CUtlString> &newFiles )
{
	for ( const CUtlString &strPath : entries )
	{
		CUtlString strOpen( strPath );
		CUtlString strLatest;
		if ( FindLatestAutosave( strPath, &strLatest ) && !strLatest.IsEmpty() )
			strOpen = strLatest;
		// A file that won't open stays closed; the others go on.
		CBaseEditorSession *pSession = m_pApp->OpenFile( strOpen, false );
		if ( !pSession )
			continue;
		if ( IsAutosaveFileName( strOpen ) )
		{
			CUtlString strOriginal;
			GetOriginalFileName( strOpen, &strOriginal );
			pSession->SetFileName( strOriginal );
			pSession->SetModified( true );
		}
		if ( AutosaveFileEntry_t *pEntry = FindRecentEntry( strPath ) )
			pEntry->m_bAutosaved = true;
		else
			NoteNewFile( strPath );
	}
	for ( const CUtlString &strName : newFiles )
	{
		CUtlString strLatest;
		FindLatestAutosave( strName, &strLatest );
		if ( !IsAutosaveFileName( strLatest ) )
		{
			Log_Warning( LOG_GENERAL, "The unsaved document '%s' has no autosave left to recover.\n", strName.Get() );
			RemoveNewFile( strName );
			continue;
		}
		CBaseEditorSession *pSession = m_pApp->OpenFile( strLatest, false );
		if ( !pSession )
			continue;
		// Still a document that was never saved: a save asks where it goes.
		pSession->SetFileName( strName );
		pSession->SetNewFile( true );
		pSession->UpdateFileStatus();
		pSession->SetModified( true );
	}
	MarkSettingsDirty();
}
