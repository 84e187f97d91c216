#pragma once
// A small tool on the editor framework for its tests: sessions of plain text files, an
// application whose answers a test sets, and a fixture with a scratch game and content
// tree, the host's file system and the scripted prompt.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

#include "core/host/filesystem.h"
#include "core/host/scriptedprompt.h"
#include "core/host/toolsettingsstore.h"
#include "core/platform/platformmode.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"

class CTestApp;

// A session whose document is the text of its file; Open answers what the test asks for.
class CTestSession final : public CSimpleBaseEditorSession
{
public:
	explicit CTestSession( CBaseEditorApp *pApp ) : CSimpleBaseEditorSession( pApp ) {}

	bool New( const char *pName ) override;
	int Open( const char *pPath, CUtlString *pError ) override;
	bool Reload() override { return true; }
	bool SaveToFile( const char *, const char *pTargetPath, bool ) override
	{
		CUtlString strDisk( pTargetPath );
		strDisk.FixSlashes( '/' );
		std::ofstream out( strDisk.Get() );
		out << m_strText.Get();
		return bool( out );
	}
	IBaseEditorWindow *GetWindow() const override { return nullptr; }
	// An edit: new text and the modified mark.
	void Edit( const char *pText )
	{
		m_strText = pText;
		SetModified( true );
	}
	const char *GetText() const { return m_strText.Get(); }

private:
	CUtlString m_strText = "saved";
};

class CTestApp final : public CBaseEditorApp
{
public:
	CBaseEditorSession *CreateSession() override { return new CTestSession( this ); }
	void DestroySession( CBaseEditorSession *pSession ) override
	{
		++m_nDestroyed;
		delete pSession;
	}
	IBaseEditorWindow *GetMainWindow() override { return nullptr; }
	bool CanAutosaveNow() override { return m_bAllowAutosave && CBaseEditorApp::CanAutosaveNow(); }
	void UseDefaultDirectory( const char *pDirectory ) { SetDefaultDirectory( pDirectory ); }
	void UseToolName( const char *pName ) { SetToolName( pName ); }
	void UseSaveFilter( const char *pFilter ) { SetSaveFilter( pFilter ); }
	// The untitled names of this tool carry no extension, as a tool's may.
	bool m_bNewNamesWithoutExtension = false;

	int m_nOpenResult = EDITOR_OPEN_LOADED;
	int m_nDestroyed = 0;
	bool m_bAllowAutosave = true;
	// A file that, while it opens, asks to open another one.
	CUtlString m_strNestedOpen;
	CBaseEditorSession *m_pNestedResult = reinterpret_cast<CBaseEditorSession *>( 1 );
};

inline bool CTestSession::New( const char *pName )
{
	CUtlString strName;
	strName.Format( static_cast<CTestApp *>( m_pApp )->m_bNewNamesWithoutExtension ? "%s" : "%s.txt", pName );
	StoreFileName( strName );
	m_strText = "untitled";
	return true;
}

inline int CTestSession::Open( const char *pPath, CUtlString *pError )
{
	CTestApp *pApp = static_cast<CTestApp *>( m_pApp );
	if ( !pApp->m_strNestedOpen.IsEmpty() )
		pApp->m_pNestedResult = pApp->OpenFile( pApp->m_strNestedOpen, true );
	if ( pApp->m_nOpenResult == EDITOR_OPEN_FAILED )
		*pError = "bad data on line 3";
	CUtlString strDisk( pPath );
	strDisk.FixSlashes( '/' );
	std::ifstream in( strDisk.Get() );
	m_strText = std::string( std::istreambuf_iterator<char>( in ), std::istreambuf_iterator<char>() ).c_str();
	return pApp->m_nOpenResult;
}

class BaseEditorAppTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		Plat_SetTestMode( true );
		m_Root = std::filesystem::temp_directory_path() / ( "zol_baseeditorapp_" + std::to_string( ::getpid() ) + "_" + ::testing::UnitTest::GetInstance()->current_test_info()->name() );
		std::filesystem::remove_all( m_Root );
		std::filesystem::create_directories( m_Root / "game" );
		std::filesystem::create_directories( m_Root / "content" / "particles" );
		m_FileSystem.SetupFromRoots( ( m_Root / "game" ).c_str(), ( m_Root / "content" ).c_str() );
		SetFileSystem( &m_FileSystem );
		m_App.UseDefaultDirectory( Native( m_Root / "content" / "particles" ) );
	}

	void TearDown() override
	{
		m_App.CloseAllSessions();
		SetFileSystem( nullptr );
		GetToolSettingsStore().SetDirectory( "" );
		std::filesystem::remove_all( m_Root );
		EXPECT_FALSE( m_Prompt.HasFailures() );
	}

	static CUtlString Native( const std::filesystem::path &path )
	{
		CUtlString str( path.string().c_str() );
		str.FixSlashes( '\\' );
		return str;
	}

	CUtlString MakeFile( const char *pRelative, const char *pText = "data" )
	{
		std::filesystem::path path = m_Root / "content" / pRelative;
		std::filesystem::create_directories( path.parent_path() );
		std::ofstream( path ) << pText;
		return Native( path );
	}

	std::filesystem::path m_Root;
	CFileSystem m_FileSystem;
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
	CTestApp m_App;
};
