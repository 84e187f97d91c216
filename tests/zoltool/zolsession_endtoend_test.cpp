// The editor module through the road a host takes: CreateInterface, connect, start, open a
// shipped sample, edit through the document, one frame, save, undo and reload.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "core/host/assetsystem.h"
#include "core/host/hostservices.h"
#include "core/host/iasset.h"
#include "core/host/interfaceregistry.h"
#include "core/host/scriptedprompt.h"
#include "core/host/toolsettingsstore.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "particleslib/particleinputclasses.h"
#include "core/platform/platformmode.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolmoduleexports.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
namespace fs = std::filesystem;

struct CNodesModifiedCounter
{
	void OnNodesModified( const ZolEvent_NodesModified_t &event )
	{
		++m_nCount;
		m_nLastNodeCount = event.m_nNodeCount;
	}
	int m_nCount = 0;
	int m_nLastNodeCount = 0;
};

std::string ReadText( const fs::path &path )
{
	std::ifstream in( path );
	std::stringstream text;
	text << in.rdbuf();
	return text.str();
}
} // namespace

TEST( ZolSessionEndToEnd, EditCompilesOnTheFrameSavesUndoesAndReloads )
{
	Plat_SetTestMode( true );
	fs::path root = fs::temp_directory_path() / ( "zol_endtoend_" + std::to_string( getpid() ) );
	fs::remove_all( root );
	fs::create_directories( root / "content" / "particles" );
	fs::copy( fs::path( ZOL_SOURCE_DIR ) / "content" / "game", root / "game", fs::copy_options::recursive );
	fs::copy_file( fs::path( ZOL_SOURCE_DIR ) / "content/content/particles/samples/fire.tfxs", root / "content/particles/fire.tfxs" );
	fs::create_directories( root / "settings" );
	GetToolSettingsStore().SetDirectory( ( root / "settings" ).c_str() );
	CHostServices services;
	CUtlString strError;
	ASSERT_TRUE( services.Init( ( root / "game" ).c_str(), ( root / "content" ).c_str(), &strError ) ) << strError.Get();
	RegisterParticleInputClasses();
	SetParticleSystemMgr( HostParticleSystemMgr() );
	CScriptedPrompt prompt;
	CScopedPrompt scopedPrompt( &prompt );

	int nCode = -1;
	auto *pApp = static_cast<CZolApp *>( static_cast<CBaseToolSystem2 *>( CreateInterface( "ToolSystem2_001", &nCode ) ) );
	ASSERT_NE( pApp, nullptr );
	EXPECT_EQ( nCode, 0 );
	EXPECT_EQ( CreateInterface( "toolsystem2_001", &nCode ), nullptr );
	EXPECT_EQ( nCode, 1 );
	pApp->SetCreatesMainWindow( false );
	ASSERT_TRUE( pApp->Connect( &Host_CreateInterface ) );
	ASSERT_TRUE( pApp->StartTool( 0 ) );

	CUtlString strPath( ( root / "content/particles/fire.tfxs" ).c_str() );
	strPath.FixSlashes( '\\' );
	auto *pSession = static_cast<CZolSession *>( pApp->OpenFile( strPath, true ) );
	ASSERT_NE( pSession, nullptr );
	CZolDoc *pDoc = pSession->GetDoc();
	ASSERT_NE( pDoc->GetRoot(), nullptr );
	EXPECT_FALSE( pSession->IsModified() );
	EXPECT_STREQ( pSession->GetCurrentConfigName(), "preview" );

	CNodesModifiedCounter counter;
	pApp->GetEventHub()->GetEventDispatcher()->AddListener( &counter, &CNodesModifiedCounter::OnNodesModified );
	int nCompilesBefore = pSession->GetCompileCount();

	pDoc->BeginEdit( "Max particles", true );
	pDoc->GetRoot()->GetKV3ForModify()->SetMemberInt( "m_nMaxParticles", 4321 );
	pDoc->NoteNodeModified( pDoc->GetRoot() );
	EXPECT_TRUE( pSession->IsModified() );
	EXPECT_TRUE( pSession->NeedsRecompile() );

	pApp->Frame();
	EXPECT_EQ( counter.m_nCount, 1 );
	EXPECT_EQ( counter.m_nLastNodeCount, 1 );
	EXPECT_EQ( pSession->GetCompileCount(), nCompilesBefore + 1 );
	EXPECT_NE( strstr( pSession->GetLastCompiledText(), "4321" ), nullptr );
	// The definition's asset took the edit from memory.
	IAsset *pAsset = services.GetAssetSystem()->FindAssetByAbsolutePath( strPath );
	ASSERT_NE( pAsset, nullptr );
	EXPECT_STREQ( pAsset->GetLastCompileError(), "" );
	EXPECT_EQ( services.GetAssetSystem()->FindCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM ), pApp->GetParticleCompiler() );
	uint32_t nCompileStamp = pAsset->GetCompileStamp();
	pApp->Frame();
	EXPECT_EQ( counter.m_nCount, 1 );
	EXPECT_EQ( pAsset->GetCompileStamp(), nCompileStamp );

	ASSERT_TRUE( pApp->SaveSession( pSession ) );
	EXPECT_FALSE( pSession->IsModified() );
	EXPECT_NE( ReadText( root / "content/particles/fire.tfxs" ).find( "4321" ), std::string::npos );

	pDoc->Undo();
	EXPECT_NE( pDoc->GetRoot()->GetKV3()->GetMemberInt( "m_nMaxParticles" ), 4321 );
	ASSERT_TRUE( pSession->Reload() );
	EXPECT_EQ( pSession->GetDoc()->GetRoot()->GetKV3()->GetMemberInt( "m_nMaxParticles" ), 4321 );
	EXPECT_FALSE( pSession->IsModified() );

	pApp->GetEventHub()->GetEventDispatcher()->RemoveListenersOf( &counter );
	EXPECT_TRUE( pApp->CloseAllSessions() );
	pApp->ShutdownTool();
	pApp->Disconnect();
	SetParticleSystemMgr( nullptr );
	GetToolSettingsStore().SetDirectory( "" );
	fs::remove_all( root );
	EXPECT_FALSE( prompt.HasFailures() );
}

TEST( ZolModuleExports, BinaryPropertiesAnswerTheFixedTable )
{
	BinaryPropertyValue_t value{};
	ASSERT_EQ( BinaryProperties_GetValue( 0, &value ), 1 );
	EXPECT_STREQ( value.m_pText, "Release" );
	ASSERT_EQ( BinaryProperties_GetValue( 6, &value ), 1 );
	EXPECT_EQ( value.m_nKind, 1 );
	EXPECT_EQ( value.m_nNumber, 2 );
	EXPECT_EQ( BinaryProperties_GetValue( 7, &value ), 0 );
	EXPECT_FALSE( InstallSchemaBindings( "SchemaSystem_002", nullptr ) );
	EXPECT_TRUE( InstallSchemaBindings( "SchemaSystem_001", nullptr ) );
	const char *pError = nullptr;
	EXPECT_NE( ExtractModuleMetadata( &pError ), nullptr );
}
