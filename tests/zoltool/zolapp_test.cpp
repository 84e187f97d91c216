// The application and its sessions on a small content tree: the host's needed services,
// start-up registrations, frames, directories, settings, the preview session, the driver
// filter of a save and the rules for children.

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "core/host/assetsystem.h"
#include "core/host/hostservices.h"
#include "core/host/iasset.h"
#include "core/host/ihelpsystem.h"
#include "core/host/interfaceregistry.h"
#include "core/host/ipropertyeditorsystem.h"
#include "core/host/scriptedprompt.h"
#include "core/host/toolsettingsstore.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/particles/controlpointusagekind.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/platform/platformmode.h"
#include "particleslib/particleinputclasses.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolattributeeditorfactories.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "tools/zol/editor/zolmoduleexports.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"
#include "tests/zoltool/zolapptestsupport.h"

namespace
{
namespace fs = std::filesystem;

// The control point numbers of the drivers of a definition's first configuration.
std::vector<int> DriverPoints( const KeyValues3 &definition )
{
	std::vector<int> points;
	const KeyValues3 *pConfigurations = definition.FindMember( "m_controlPointConfigurations" );
	if ( !pConfigurations || pConfigurations->GetArrayElementCount() == 0 )
		return points;
	const KeyValues3 *pDrivers = pConfigurations->GetArrayElement( 0 )->FindMember( "m_drivers" );
	for ( int i = 0; pDrivers && i < pDrivers->GetArrayElementCount(); ++i )
		points.push_back( pDrivers->GetArrayElement( i )->GetMemberInt( "m_iControlPoint", 0 ) ); // left out at its default
	return points;
}

struct CEventCounter
{
	void OnControlPointListChanged( const ZolEvent_ControlPointListChanged_t & ) { ++m_nListChanged; }
	void OnSelectionChanged( const ZolEvent_PreviewConfigSelectionChanged_t &event ) { m_pLastSelectionSession = event.m_pSession; }
	int m_nListChanged = 0;
	CZolSession *m_pLastSelectionSession = nullptr;
};

} // namespace

// ---------------------------------------------------------------------------------------
// Start

TEST_F( ZolAppTest, HostServicesAnswerEveryNeededInterfaceAndAMissingOneRefusesTheStart )
{
	CUtlString strError;
	EXPECT_TRUE( m_pApp->CheckNeededInterfaces( &Host_CreateInterface, &strError ) ) << strError.Get();
	int nNeeded = 0;
	for ( const char *const *ppName = m_pApp->GetNeededInterfaces(); *ppName; ++ppName )
		++nNeeded;
	EXPECT_EQ( nNeeded, 4 );

	m_Services.SetParticleSystemMgr( nullptr );
	EXPECT_FALSE( m_pApp->CheckNeededInterfaces( &Host_CreateInterface, &strError ) );
	EXPECT_NE( strstr( strError, "ParticleSystemMgr003" ), nullptr ) << strError.Get();
}

TEST_F( ZolAppTest, StartRegistersHelpForEachFunctionClassAndTheGraphEditorScope )
{
	Start();
	IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	ASSERT_NE( pMgr, nullptr );
	IHelpSystem *pHelp = GetHelpSystem();
	int nChecked = 0;
	for ( int nType = 0; nType <= 6; ++nType )
	{
		ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		if ( pMgr->GetFunctionCount( eType ) == 0 )
			continue;
		int nLast = pMgr->GetFunctionCount( eType ) - 1;
		CUtlString strKey;
		strKey.Format( "Element.%s", pMgr->GetFunctionSchemaClass( eType, nLast ) );
		EXPECT_STREQ( pHelp->GetTitle( "particles", strKey ), pMgr->GetFunctionFriendlyName( eType, nLast ) ) << strKey.Get();
		++nChecked;
	}
	EXPECT_GE( nChecked, 4 );
	EXPECT_TRUE( pHelp->HasScope( "pulse_editor" ) );
	// Choice lists are known by name once the tool runs.
	EXPECT_TRUE( ToolAttrHost()->FindChoiceProvider( "particlefield_scalar" ) );
	EXPECT_TRUE( ToolAttrHost()->FindChoiceProvider( "sound_channel" ) );
}

TEST( ZolAttributeEditorFactoriesDeathTest, RegisteringWithoutAPropertyEditorSystemStopsTheProcess )
{
	GTEST_FLAG_SET( death_test_style, "threadsafe" );
	EXPECT_DEATH(
		{
			SetPropertyEditorSystem( nullptr );
			RegisterZolAttributeEditorFactories();
		},
		"Cannot register an attribute editor factory before we're connected to the Property Editor System" );
}

// ---------------------------------------------------------------------------------------
// Frames and sessions

// The window test makes the binary's one QApplication, never destroyed; font
// configuration keeps a cache for the life of the process that it never frees.
extern "C" const char *__lsan_default_suppressions()
{
	return "leak:libfontconfig.so\n";
}

TEST_F( ZolAppTest, FrameWithoutSessionsStillRunsTheWindowFrame )
{
	EnsureTestQApplication();
	m_pApp->SetCreatesMainWindow( true );
	Start();
	ASSERT_NE( m_pApp->GetZolMainWindow(), nullptr );
	ASSERT_TRUE( m_pApp->GetSessions().empty() );
	int nFrames = m_pApp->GetZolMainWindow()->GetFrameCount();
	m_pApp->Frame();
	m_pApp->Frame();
	EXPECT_EQ( m_pApp->GetZolMainWindow()->GetFrameCount(), nFrames + 2 );
}

TEST_F( ZolAppTest, OtherSessionIsNoneForOneAndTheOtherForTwo )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	EXPECT_EQ( m_pApp->GetOtherSession( pFire ), nullptr );
	CZolSession *pSmoke = Open( "particles/samples/smoke.tfxs" );
	ASSERT_NE( pSmoke, nullptr );
	EXPECT_EQ( m_pApp->GetOtherSession( pFire ), pSmoke );
	EXPECT_EQ( m_pApp->GetOtherSession( pSmoke ), pFire );
}

TEST_F( ZolAppTest, LockedPreviewStaysWhileTheActiveSessionMoves )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	EXPECT_EQ( m_pApp->GetPreviewSession(), pFire );
	pFire->SetSelectedControlPoint( ParticleParamID_t::ControlPoint( 0 ) );

	m_pApp->SetPreviewSessionLocked( true );
	CZolSession *pSmoke = Open( "particles/samples/smoke.tfxs" );
	ASSERT_NE( pSmoke, nullptr );
	EXPECT_EQ( m_pApp->GetActiveSession(), pSmoke );
	EXPECT_EQ( m_pApp->GetPreviewSession(), pFire );
	EXPECT_EQ( pFire->GetSelectedControlPoint(), ParticleParamID_t::ControlPoint( 0 ) );
	EXPECT_TRUE( pSmoke->GetSelectedControlPoint().IsNone() );

	// Closing the locked preview session leaves no dangling preview.
	pFire->SetModified( false );
	ASSERT_TRUE( m_pApp->CloseSession( pFire ) );
	EXPECT_EQ( m_pApp->GetPreviewSession(), nullptr );
}

TEST_F( ZolAppTest, SelectedControlPointCarriesOverOnlyToASessionThatKnowsIt )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	ASSERT_FALSE( pFire->GetKnownControlPoints().empty() ) << "the compiled definition reports its control points";
	ParticleParamID_t known = pFire->GetKnownControlPoints().begin()->first;
	pFire->SetSelectedControlPoint( known );

	CZolSession *pSparks = Open( "particles/samples/sparks.tfxs" );
	ASSERT_NE( pSparks, nullptr );
	EXPECT_EQ( m_pApp->GetPreviewSession(), pSparks );
	if ( pSparks->IsKnownControlPoint( known ) )
		EXPECT_EQ( pSparks->GetSelectedControlPoint(), known );
	else
		EXPECT_TRUE( pSparks->GetSelectedControlPoint().IsNone() );

	// A point that the other session doesn't use is not carried.
	ParticleParamID_t unknown = ParticleParamID_t::ControlPoint( 61 );
	ASSERT_FALSE( pFire->IsKnownControlPoint( unknown ) );
	pSparks->SetSelectedControlPoint( unknown );
	m_pApp->SetActiveEditorSession( pFire, false, false );
	EXPECT_EQ( m_pApp->GetPreviewSession(), pFire );
	EXPECT_EQ( pFire->GetSelectedControlPoint(), known );
}

TEST_F( ZolAppTest, FrameTakesAChangedUsageOnceAndRebuildsTheKnownPoints )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	ASSERT_FALSE( pFire->GetKnownControlPoints().empty() );
	size_t nKnownBefore = pFire->GetKnownControlPoints().size();
	CEventCounter counter;
	pFire->GetEventDispatcher()->AddListener( &counter, &CEventCounter::OnControlPointListChanged );

	// Without functions nothing uses a control point.
	CZolDoc *pDoc = pFire->GetDoc();
	pDoc->BeginEdit( "Remove all", true );
	for ( int nType = 0; nType <= PARTICLE_FUNCTION_CHILDREN; ++nType )
	{
		ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		while ( pDoc->GetRoot()->GetNodeCount( eType ) > 0 )
			pDoc->RemoveElement( eType, pDoc->GetRoot()->GetNode( eType, 0 ) );
	}
	m_pApp->Frame(); // compiles
	m_pApp->Frame(); // sees the new usage
	m_pApp->Frame(); // nothing new
	EXPECT_EQ( counter.m_nListChanged, 1 );
	EXPECT_EQ( int( pFire->GetKnownControlPoints().size() ), pFire->GetDefinitionUsage().Count() );
	EXPECT_LT( pFire->GetKnownControlPoints().size(), nKnownBefore );
	pFire->GetEventDispatcher()->RemoveListenersOf( &counter );
}

TEST_F( ZolAppTest, KnownPointsGetAnEditModeThatFitsTheirUsage )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	// An unknown point has usage kind 0: only mode 0 fits.
	EXPECT_FALSE( pFire->SetControlPointEditMode( ParticleParamID_t::ControlPoint( 62 ), 1 ) );
	EXPECT_EQ( pFire->GetControlPointEditMode( ParticleParamID_t::ControlPoint( 62 ) ), 0 );
	for ( const auto &[ key, known ] : pFire->GetKnownControlPoints() )
		EXPECT_TRUE( DoesControlPointEditModeFit( known.m_nUsageKind, pFire->GetControlPointEditMode( key ) ) ) << key.m_nNumber;
}

// ---------------------------------------------------------------------------------------
// Directories and settings

TEST_F( ZolAppTest, DirectoryWithAnAutosaveOfAnOpenSourceOpensNothing )
{
	Start();
	fs::path directory = m_Root / "content/particles/batch";
	fs::create_directories( directory );
	fs::copy_file( m_Root / "content/particles/samples/fire.tfxs", directory / "a.tfxs" );
	fs::copy_file( m_Root / "content/particles/samples/smoke.tfxs", directory / "b.tfxs" );
	fs::copy_file( m_Root / "content/particles/samples/smoke.tfxs", directory / "b001.tfxs_autosave" );
	CZolSession *pB = Open( "particles/batch/b.tfxs" );
	ASSERT_NE( pB, nullptr );

	m_pApp->OpenDirectory( MemoryPath( directory ) );
	EXPECT_EQ( m_pApp->GetSessions().size(), 1u ) << "not even a.tfxs, listed before the autosave";
	const CScriptedPrompt::Record_t *pRecord = m_Prompt.FindRecord( "Unable to open" );
	ASSERT_NE( pRecord, nullptr );
	EXPECT_NE( strstr( pRecord->m_strText, "b001.tfxs_autosave" ), nullptr ) << pRecord->m_strText.Get();

	// With the source closed the whole directory opens, the autosave as its source.
	ASSERT_TRUE( m_pApp->CloseSession( pB ) );
	m_pApp->OpenDirectory( MemoryPath( directory ) );
	EXPECT_EQ( m_pApp->GetSessions().size(), 2u );
	EXPECT_NE( m_pApp->FindSessionByFile( MemoryPath( directory / "a.tfxs" ) ), nullptr );
	EXPECT_NE( m_pApp->FindSessionByFile( MemoryPath( directory / "b.tfxs" ) ), nullptr );
}

TEST_F( ZolAppTest, AutosaveInTheAutosaveTreeNamesItsSourceInTheContentTree )
{
	Start();
	CUtlString strRoot;
	m_pApp->GetAutosaveManager().GetAutosaveRoot( &strRoot );
	EXPECT_EQ( strRoot.Get()[ 0 ], '\\' ) << strRoot.Get();
	EXPECT_STREQ( strRoot.Get() + strRoot.Length() - strlen( "_toolsautosave\\particles\\" ), "_toolsautosave\\particles\\" ) << strRoot.Get();
	CUtlString strAutosave;
	strAutosave.Format( "%sparticles\\samples\\fire004.tfxs_autosave", strRoot.Get() );
	CUtlString strSource;
	m_pApp->GetAutosaveManager().GetOriginalFileName( strAutosave, &strSource );
	EXPECT_STREQ( strSource, MemoryPath( m_Root / "content/particles/samples/fire.tfxs" ) );
}

TEST_F( ZolAppTest, SameDirectoryTwiceStandsOnceAtTheFrontWhateverItsCase )
{
	Start();
	fs::create_directories( m_Root / "content/empty_a" );
	fs::create_directories( m_Root / "content/empty_b" );
	CUtlString strA = MemoryPath( m_Root / "content/empty_a" );
	CUtlString strB = MemoryPath( m_Root / "content/empty_b" );
	CUtlString strUpperA = strA;
	strUpperA.Storage().back() = 'A';
	m_pApp->OpenDirectory( strA );
	m_pApp->OpenDirectory( strB );
	m_pApp->OpenDirectory( strUpperA );
	const std::vector<CUtlString> &recent = m_pApp->GetRecentDirectories();
	ASSERT_EQ( recent.size(), 2u );
	EXPECT_STREQ( recent[ 0 ], strUpperA );
	EXPECT_STREQ( recent[ 1 ], strB );
}

TEST_F( ZolAppTest, RestoredDirectoriesDropADeletedFolderAndRepeatsInOrder )
{
	Start();
	for ( const char *pName : { "d1", "d2", "gone" } )
		fs::create_directories( m_Root / "content" / pName );
	CUtlString strD1 = MemoryPath( m_Root / "content/d1" );
	CUtlString strD2 = MemoryPath( m_Root / "content/d2" );
	CUtlString strGone = MemoryPath( m_Root / "content/gone" );
	m_pApp->OpenDirectory( strD2 );
	m_pApp->OpenDirectory( strGone );
	m_pApp->OpenDirectory( strD1 );
	KeyValues3 settings;
	settings.SetToEmptyTable();
	m_pApp->SaveToolSettings( &settings );
	const KeyValues3 *pDirectories = settings.FindMember( "RecentDirectories" );
	ASSERT_NE( pDirectories, nullptr );
	EXPECT_STREQ( pDirectories->GetMemberString( "Directory 0" ), strD1 );
	EXPECT_STREQ( pDirectories->GetMemberString( "Directory 2" ), strD2 );

	// A repeat written by hand, and one folder deleted since.
	settings.FindMember( "RecentDirectories" )->SetMemberString( "Directory 3", strD2 );
	fs::remove_all( m_Root / "content/gone" );
	m_pApp->RestoreToolSettings( &settings );
	const std::vector<CUtlString> &recent = m_pApp->GetRecentDirectories();
	ASSERT_EQ( recent.size(), 2u );
	EXPECT_STREQ( recent[ 0 ], strD1 );
	EXPECT_STREQ( recent[ 1 ], strD2 );
}

// ---------------------------------------------------------------------------------------
// Saving and children

TEST_F( ZolAppTest, DriverOfAControlPointNoFunctionUsesStaysOutOfTheFileAndTheCompile )
{
	Start();
	CZolSession *pSession = Open( "particles/samples/campfire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	ASSERT_NE( pSession->GetAsset(), nullptr );
	const int nUnused = 37;
	ASSERT_FALSE( pSession->IsKnownControlPoint( ParticleParamID_t::ControlPoint( nUnused ) ) );

	CZolDoc *pDoc = pSession->GetDoc();
	pDoc->BeginEdit( "Add driver", true );
	ZolControlPointConfiguration_t *pConfig = pDoc->GetRoot()->GetConfiguration( 0 );
	ASSERT_NE( pConfig, nullptr );
	KeyValues3 *pDrivers = pConfig->m_KV3.FindOrCreateMember( "m_drivers" );
	ASSERT_TRUE( pDrivers->IsArray() );
	int nDriversBefore = pDrivers->GetArrayElementCount();
	KeyValues3 *pDriver = pDrivers->ArrayAddToTail();
	pDriver->SetToEmptyTable();
	pDriver->SetMemberInt( "m_iControlPoint", nUnused );
	pDriver->SetMemberString( "m_entityName", "self" );
	m_pApp->Frame();

	KeyValues3 compiled;
	CUtlString strError;
	const CUtlString &strCompiled = pSession->GetLastCompiledText();
	ASSERT_TRUE( LoadKV3FromText( &compiled, &strError, strCompiled.Get(), strCompiled.Length(), KV3_FORMAT_TFXS ) ) << strError.Get();
	std::vector<int> compiledPoints = DriverPoints( compiled );
	EXPECT_EQ( std::count( compiledPoints.begin(), compiledPoints.end(), nUnused ), 0 );

	ASSERT_TRUE( m_pApp->SaveSession( pSession ) );
	std::string saved = ReadText( m_Root / "content/particles/samples/campfire.tfxs" );
	KeyValues3 file;
	ASSERT_TRUE( LoadKV3FromText( &file, &strError, saved.c_str(), saved.size(), KV3_FORMAT_TFXS ) ) << strError.Get();
	std::vector<int> savedPoints = DriverPoints( file );
	EXPECT_EQ( std::count( savedPoints.begin(), savedPoints.end(), nUnused ), 0 );
	// Drivers of points that the definition uses stay.
	for ( int nPoint : savedPoints )
		EXPECT_TRUE( pSession->IsKnownControlPoint( ParticleParamID_t::ControlPoint( nPoint ) ) ) << nPoint;
	int nKnownDriven = 0;
	for ( int i = 0; i < nDriversBefore; ++i )
		nKnownDriven += pSession->IsKnownControlPoint( ParticleParamID_t::ControlPoint( pDrivers->GetArrayElement( i )->GetMemberInt( "m_iControlPoint" ) ) ) ? 1 : 0;
	EXPECT_EQ( int( savedPoints.size() ), nKnownDriven );
	// The document itself keeps what the user wrote.
	EXPECT_EQ( pDoc->GetRoot()->GetConfiguration( 0 )->m_KV3.FindMember( "m_drivers" )->GetArrayElementCount(), nDriversBefore + 1 );
}

TEST_F( ZolAppTest, ChildMustNotBeAParentAndAnotherDirectoryAsksFirst )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	ASSERT_NE( pFire->GetAsset(), nullptr );
	IAsset *pCampfire = Asset( "particles/samples/campfire.tfxs" );
	IAsset *pHolder = Asset( "particles/other/holder.tfxs" );
	IAsset *pLonely = Asset( "particles/other/lonely.tfxs" );
	ASSERT_TRUE( pCampfire && pHolder && pLonely );

	// Same directory: no question; a parent and the system itself are refused.
	EXPECT_FALSE( pFire->CanBeChild( pCampfire ) );
	EXPECT_FALSE( pFire->CanBeChild( pFire->GetAsset() ) );
	EXPECT_EQ( m_Prompt.CountRecords( PROMPT_KIND_QUESTION ), 0 );
	int nRefusals = 0;
	for ( const CScriptedPrompt::Record_t &record : m_Prompt.GetRecords() )
	{
		if ( record.m_strTitle.IsEqual_CaseInsensitive( "Error choosing asset" ) )
		{
			EXPECT_STREQ( record.m_strText, "This asset is cannot be a child because it is already a parent!" );
			++nRefusals;
		}
	}
	EXPECT_EQ( nRefusals, 2 );
	EXPECT_TRUE( pFire->CanBeChild( Asset( "particles/samples/sparks.tfxs" ) ) );

	// Another directory: No refuses, Yes allows unless the child is a parent anyway.
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Parent/Child Directory Mismatch" );
	EXPECT_FALSE( pFire->CanBeChild( pLonely ) );
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_YES, "Parent/Child Directory Mismatch" );
	EXPECT_TRUE( pFire->CanBeChild( pLonely ) );
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_YES, "Parent/Child Directory Mismatch" );
	EXPECT_FALSE( pFire->CanBeChild( pHolder ) );
	const CScriptedPrompt::Record_t *pQuestion = m_Prompt.FindRecord( "Parent/Child Directory Mismatch" );
	ASSERT_NE( pQuestion, nullptr );
	EXPECT_NE( strstr( pQuestion->m_strText, "Child dir: particles\\other" ), nullptr ) << pQuestion->m_strText.Get();
	EXPECT_EQ( pQuestion->m_eDefaultButton, PROMPT_BUTTON_NO );
	EXPECT_EQ( m_Prompt.GetPendingCount(), 0 );
	EXPECT_FALSE( m_Prompt.HasFailures() );
	EXPECT_FALSE( pFire->IsModified() );
}

TEST_F( ZolAppTest, ChangedParticleResourcesReachTheAssetPreviewOthersDoNot )
{
	Start();
	std::vector<IAsset *> updated;
	m_pApp->SetAssetPreviewUpdater( [ & ]( IAsset *pAsset ) { updated.push_back( pAsset ); } );
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	updated.clear();
	ASSERT_TRUE( pFire->RecompileResource() );
	ASSERT_FALSE( updated.empty() );
	EXPECT_EQ( updated.back(), pFire->GetAsset() );

	updated.clear();
	CUtlVector<ResourceChange_t> changes;
	changes.AddToTail( { RESOURCE_TYPE_NONE, CUtlString( "particles/samples/fire.tfxs" ) } );
	changes.AddToTail( { RESOURCE_TYPE_PARTICLE_SYSTEM, CUtlString( "particles/samples/no_such.tfxs" ) } );
	m_pApp->OnResourcesReloaded( changes );
	EXPECT_TRUE( updated.empty() );
}

TEST_F( ZolAppTest, SaveAsBindsTheNewFileAndAnAutosaveLeavesTheBindingAlone )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	IAsset *pOld = pFire->GetAsset();
	ASSERT_NE( pOld, nullptr );

	CUtlString strAutosave = MemoryPath( m_Root / "content/particles/samples/fire001.tfxs_autosave" );
	CUtlString strOriginal( pFire->GetFileName() );
	ASSERT_TRUE( pFire->SaveToFile( strOriginal, strAutosave, true ) );
	EXPECT_EQ( pFire->GetAsset(), pOld );
	EXPECT_STREQ( pFire->GetFileName(), strOriginal );

	CUtlString strNew = MemoryPath( m_Root / "content/particles/samples/fire_copy.tfxs" );
	m_Prompt.ExpectSaveFile( strNew );
	ASSERT_TRUE( m_pApp->SaveSessionAs( pFire ) );
	ASSERT_NE( pFire->GetAsset(), nullptr );
	EXPECT_STREQ( pFire->GetAsset()->GetPath(), "particles\\samples\\fire_copy.tfxs" );
	EXPECT_TRUE( fs::exists( m_Root / "content/particles/samples/fire_copy.tfxs" ) );
}

TEST_F( ZolAppTest, AutosaveOpensAsItsSourceAndSavingAnAutosaveChangesNothing )
{
	Start();
	CUtlString strRoot;
	m_pApp->GetAutosaveManager().GetAutosaveRoot( &strRoot );
	CUtlString strAutosave;
	strAutosave.Format( "%sparticles\\samples\\fire004.tfxs_autosave", strRoot.Get() );
	CUtlString strDiskAutosave( strAutosave );
	strDiskAutosave.FixSlashes( '/' );
	WriteText( strDiskAutosave.Get(), ReadText( m_Root / "content/particles/samples/fire.tfxs" ) );

	CZolSession *pSession = static_cast<CZolSession *>( m_pApp->OpenFile( strAutosave, true ) );
	ASSERT_NE( pSession, nullptr );
	CUtlString strSource = MemoryPath( m_Root / "content/particles/samples/fire.tfxs" );
	EXPECT_STREQ( pSession->GetFileName(), strSource ) << "a later save replaces the source";
	ASSERT_NE( pSession->GetAsset(), nullptr );
	EXPECT_STREQ( pSession->GetAsset()->GetPath(), "particles\\samples\\fire.tfxs" );

	// An autosave of the edited session leaves name, asset and modified mark alone.
	pSession->GetDoc()->BeginEdit( "Edit", true );
	ASSERT_TRUE( pSession->IsModified() );
	IAsset *pAsset = pSession->GetAsset();
	CUtlString strNext;
	strNext.Format( "%sparticles\\samples\\fire005.tfxs_autosave", strRoot.Get() );
	ASSERT_TRUE( pSession->SaveToFile( strSource, strNext, true ) );
	EXPECT_STREQ( pSession->GetFileName(), strSource );
	EXPECT_EQ( pSession->GetAsset(), pAsset );
	EXPECT_TRUE( pSession->IsModified() );
	CUtlString strDiskNext( strNext );
	strDiskNext.FixSlashes( '/' );
	EXPECT_TRUE( fs::exists( strDiskNext.Get() ) );
}

TEST_F( ZolAppTest, ScreenSpaceOverlayIsAllowedOnlyByTheGameInformation )
{
	Start();
	EXPECT_FALSE( m_pApp->IsScreenSpaceOverlayAllowed() );
	m_pApp->ShutdownTool();
	m_pApp->Disconnect();
	m_bStarted = false;

	std::string gameInfo = ReadText( m_Root / "game/gameinfo.gi" );
	size_t nLast = gameInfo.rfind( '}' );
	ASSERT_NE( nLast, std::string::npos );
	gameInfo.insert( nLast, "\tParticles\n\t{\n\t\tZOL_AllowScreenSpaceOverlay 1\n\t}\n" );
	WriteText( m_Root / "game/gameinfo.gi", gameInfo );
	CUtlString strError;
	ASSERT_TRUE( m_Services.Init( ( m_Root / "game" ).c_str(), ( m_Root / "content" ).c_str(), &strError ) ) << strError.Get();
	m_Services.SetParticleSystemMgr( HostParticleSystemMgr() );
	Start();
	EXPECT_TRUE( m_pApp->IsScreenSpaceOverlayAllowed() );
}

TEST_F( ZolAppTest, AttributeChoicesNeedAContextOfKV3DataWithAClass )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	const ToolAttrChoiceProviderFn_t &fnProvider = ToolAttrHost()->FindChoiceProvider( "particlefield" );
	ASSERT_TRUE( fnProvider );
	HToolAttrTableInstance handle = pFire->GetDoc()->GetRoot()->GetTableInstance();
	CUtlVector<ToolAttrGenericChoice_t> nodeChoices;
	fnProvider( handle, nullptr, &nodeChoices );
	ASSERT_GT( nodeChoices.Count(), 0 );

	handle.m_nTypeTag = 0x505a0621u;
	CUtlVector<ToolAttrGenericChoice_t> dataChoices;
	fnProvider( handle, nullptr, &dataChoices );
	EXPECT_EQ( dataChoices.Count(), nodeChoices.Count() );

	handle.m_nTypeTag = ToolAttrTypeTag( "CSomethingElse" );
	CUtlVector<ToolAttrGenericChoice_t> otherChoices;
	fnProvider( handle, nullptr, &otherChoices );
	EXPECT_EQ( otherChoices.Count(), 0 );
}

TEST( ZolModuleExports, MetadataIsBuiltOnceAndNamesTheModule )
{
	const char *pError = nullptr;
	KeyValues3 *pFirst = ExtractModuleMetadata( &pError );
	ASSERT_NE( pFirst, nullptr );
	EXPECT_STREQ( pFirst->GetMemberString( "module" ), "zol" );
	EXPECT_EQ( ExtractModuleMetadata( &pError ), pFirst );
	EXPECT_EQ( pError, nullptr );
}

TEST_F( ZolAppTest, NewConfigurationDrivesEveryPointTheDefinitionLeavesFree )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	const CParticleDefinitionUsage &usage = pFire->GetDefinitionUsage();
	ASSERT_GT( usage.Count(), 0 );
	CUtlVector<ParticleParamID_t> keys;
	usage.GetKeys( &keys );
	std::vector<int> expected;
	for ( const ParticleParamID_t &key : keys )
	{
		if ( !key.IsNamed() && !usage.IsDriven( key ) )
			expected.push_back( key.m_nNumber );
	}
	std::sort( expected.begin(), expected.end() );

	CUndoHistory *pHistory = pFire->GetDoc()->GetUndoHistory();
	int nSteps = pHistory->GetStepCount();
	const char *pExisting = pFire->GetDoc()->GetRoot()->GetConfiguration( 0 )->GetName();
	CUtlString strOtherCase( pExisting );
	for ( char &c : strOtherCase.Storage() )
		c = char( toupper( (unsigned char)c ) );
	EXPECT_EQ( pFire->AddConfiguration( strOtherCase ), nullptr );
	EXPECT_EQ( pHistory->GetStepCount(), nSteps );

	ZolControlPointConfiguration_t *pConfig = pFire->AddConfiguration( "close up" );
	ASSERT_NE( pConfig, nullptr );
	EXPECT_EQ( pHistory->GetStepCount(), nSteps + 1 );
	EXPECT_STREQ( pFire->GetCurrentConfigName(), "close up" );
	const KeyValues3 *pDrivers = pConfig->m_KV3.FindMember( "m_drivers" );
	ASSERT_NE( pDrivers, nullptr );
	std::vector<int> driven;
	for ( int i = 0; i < pDrivers->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pDriver = pDrivers->GetArrayElement( i );
		int nPoint = pDriver->GetMemberInt( "m_iControlPoint", 0 );
		driven.push_back( nPoint );
		Vector vecOffset;
		if ( usage.GetDefaultOffset( ParticleParamID_t::ControlPoint( nPoint ), &vecOffset ) )
		{
			EXPECT_STREQ( pDriver->GetMemberString( "m_entityName" ), "self" );
			EXPECT_STREQ( pDriver->GetMemberString( "m_iAttachType" ), "PATTACH_WORLDORIGIN" );
			ASSERT_NE( pDriver->FindMember( "m_vecOffset" ), nullptr );
			EXPECT_FLOAT_EQ( float( pDriver->FindMember( "m_vecOffset" )->GetArrayElement( 2 )->GetDouble() ), vecOffset.z );
		}
	}
	EXPECT_EQ( driven, expected );
}

TEST_F( ZolAppTest, FileOutsideTheContentTreeEditsAndSavesWithoutAnAssetKeepingItsDrivers )
{
	Start();
	fs::create_directories( m_Root / "elsewhere" );
	std::string campfire = ReadText( m_Root / "content/particles/samples/campfire.tfxs" );
	WriteText( m_Root / "elsewhere/loose.tfxs", campfire );
	CZolSession *pSession = static_cast<CZolSession *>( m_pApp->OpenFile( MemoryPath( m_Root / "elsewhere/loose.tfxs" ), true ) );
	ASSERT_NE( pSession, nullptr );
	EXPECT_EQ( pSession->GetAsset(), nullptr );
	EXPECT_EQ( m_Prompt.FindRecord( "File opened with errors" ), nullptr ) << "outside the content tree is not an error";
	EXPECT_TRUE( pSession->GetKnownControlPoints().empty() );

	CZolDoc *pDoc = pSession->GetDoc();
	KeyValues3 before;
	ASSERT_TRUE( pDoc->BuildSaveTree( &before ) );
	pDoc->BeginEdit( "Max particles", true );
	pDoc->GetRoot()->GetKV3ForModify()->SetMemberInt( "m_nMaxParticles", 77 );
	m_pApp->Frame();
	ASSERT_TRUE( m_pApp->SaveSession( pSession ) );
	std::string saved = ReadText( m_Root / "elsewhere/loose.tfxs" );
	KeyValues3 file;
	CUtlString strError;
	ASSERT_TRUE( LoadKV3FromText( &file, &strError, saved.c_str(), saved.size(), KV3_FORMAT_TFXS ) ) << strError.Get();
	EXPECT_EQ( file.GetMemberInt( "m_nMaxParticles" ), 77 );
	// Nothing compiled tells which points are used, so no driver is dropped.
	EXPECT_EQ( DriverPoints( file ), DriverPoints( before ) );
	EXPECT_FALSE( DriverPoints( file ).empty() );
}

// ---------------------------------------------------------------------------------------
// Commands: the ones the menus and keys run, in the order users see them, and the shipped
// key binding files naming only commands that exist.

TEST_F( ZolAppTest, DescriptorListsTheCommandsInMenuOrder )
{
	Start();
	const CBindTargetDescriptorBase *pDescriptor = m_pApp->GetBindTargetDescriptor();
	ASSERT_NE( pDescriptor, nullptr );
	EXPECT_STREQ( pDescriptor->GetTargetName(), "ZolApp" );
	EXPECT_STREQ( pDescriptor->GetClassName(), "CZolApp" );
	const std::vector<std::string> expected = { "FileNew", "FileOpen", "FileSave", "FileSaveAs", "FileClose", "FileReload", "ClearRecentFiles",
		"VersionControlAdd", "VersionControlCheckIn", "VersionControlCheckOut", "VersionControlCheckInAll", "VersionControlStatus",
		"ActivateNextEditorSession", "ActivatePreviousEditorSession", "NextSession", "PreviousSession", "FileOpenDir", "FileSaveAll",
		"FileCloseAll", "ResetLayout", "RestartPreview", "RestartGlobal", "StopSim", "StopSimWithEndcap" };
	std::vector<std::string> names;
	for ( int i = 0; i < pDescriptor->GetCommandCount(); ++i )
		names.push_back( pDescriptor->GetCommand( i )->GetName() );
	EXPECT_EQ( names, expected );
}

TEST_F( ZolAppTest, ShippedBindingsNameOnlyCommandsThatExist )
{
	Start();
	CInputBindEngine &engine = CQInputBindManager::Get()->GetEngine();
	bool bZolFileLoaded = false;
	for ( const CUtlString &strFile : engine.GetBindingList().GetLoadedFiles() )
		bZolFileLoaded |= strFile.IsEqual_CaseInsensitive( "tools/keybindings/zol_key_bindings.txt" );
	EXPECT_TRUE( bZolFileLoaded );
	int nZolBindings = 0;
	for ( const InputBinding_t &binding : engine.GetBindingList().GetBindings() )
	{
		// Bindings of test targets loaded by other tests of this process don't count.
		if ( binding.m_strContext != "ZolApp" && binding.m_strContext != "ZolSession" && binding.m_strContext != "SessionCycleWidget" && binding.m_strContext != "GlobalHotkeys" &&
			 binding.m_strContext != "RichItemListPicker" )
			continue;
		const CBindTargetDescriptorBase *pDescriptor = CBindTargetDescriptorBase::FindKnownDescriptor( binding.m_nContextToken );
		ASSERT_NE( pDescriptor, nullptr ) << binding.m_strContext.Get();
		EXPECT_NE( pDescriptor->FindCommand( binding.m_nCommandToken ), nullptr ) << binding.m_strContext.Get() << "." << binding.m_strCommand.Get();
		EXPECT_FALSE( binding.m_Sequence.empty() ) << binding.m_strCommand.Get();
		nZolBindings += binding.m_strContext == "ZolApp";
	}
	EXPECT_GE( nZolBindings, 10 );
}

TEST_F( ZolAppTest, CommandsRunTheFrameworkOperations )
{
	Start();
	CQInputBindManager *pManager = CQInputBindManager::Get();
	ASSERT_TRUE( pManager->InvokeCommand( m_pApp, BindToken( "FileNew" ) ) );
	ASSERT_TRUE( pManager->InvokeCommand( m_pApp, BindToken( "FileNew" ) ) );
	ASSERT_EQ( m_pApp->GetSessions().size(), 2u );
	CBaseEditorSession *pSecond = m_pApp->GetActiveSession();
	EXPECT_EQ( pSecond, m_pApp->GetSessions()[ 1 ] );

	// Back through the history, then closing the active one leaves the other.
	ASSERT_TRUE( pManager->InvokeCommand( m_pApp, BindToken( "ActivatePreviousEditorSession" ) ) );
	EXPECT_EQ( m_pApp->GetActiveSession(), m_pApp->GetSessions()[ 0 ] );
	ASSERT_TRUE( pManager->InvokeCommand( m_pApp, BindToken( "FileClose" ) ) );
	ASSERT_EQ( m_pApp->GetSessions().size(), 1u );
	EXPECT_EQ( m_pApp->GetActiveSession(), pSecond );
	EXPECT_FALSE( pManager->InvokeCommand( m_pApp, BindToken( "NoSuchCommand" ) ) );
}

TEST_F( ZolAppTest, SessionCommandsActOnTheSelectionAndChangeNothingWithoutOne )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	CZolDoc *pDoc = pFire->GetDoc();
	CQInputBindManager *pManager = CQInputBindManager::Get();
	const ParticleFunctionType_t eOperators = PARTICLE_FUNCTION_OPERATOR;
	int nOperators = pDoc->GetRoot()->GetNodeCount( eOperators );
	ASSERT_GE( nOperators, 2 );

	// Only the root selected: delete and toggle have nothing to act on, cut only copies.
	pDoc->SelectBaseProperties();
	pFire->SetModified( false );
	ASSERT_TRUE( pManager->InvokeCommand( pFire, BindToken( "Delete" ) ) );
	ASSERT_TRUE( pManager->InvokeCommand( pFire, BindToken( "Toggle" ) ) );
	ASSERT_TRUE( pManager->InvokeCommand( pFire, BindToken( "Cut" ) ) );
	EXPECT_EQ( pDoc->GetRoot()->GetNodeCount( eOperators ), nOperators );
	CUtlString strClipboard;
	m_pApp->GetClipboardText( &strClipboard );
	EXPECT_NE( strstr( strClipboard, "System_Definition" ), nullptr );

	// A function selected: toggle disables it, delete removes it, undo brings both back.
	CBaseZolNode *pNode = pDoc->GetRoot()->GetNode( eOperators, 1 );
	ASSERT_TRUE( pNode->IsEnabled() );
	pDoc->SelectElement( pNode, false );
	ASSERT_TRUE( pManager->InvokeCommand( pFire, BindToken( "Toggle" ) ) );
	EXPECT_FALSE( pDoc->GetRoot()->GetNode( eOperators, 1 )->IsEnabled() );
	ASSERT_TRUE( pManager->InvokeCommand( pFire, BindToken( "Delete" ) ) );
	EXPECT_EQ( pDoc->GetRoot()->GetNodeCount( eOperators ), nOperators - 1 );
	EXPECT_TRUE( pFire->IsModified() );
	ASSERT_TRUE( pManager->InvokeCommand( pFire, BindToken( "Undo" ) ) );
	EXPECT_EQ( pDoc->GetRoot()->GetNodeCount( eOperators ), nOperators );
	ASSERT_TRUE( pManager->InvokeCommand( pFire, BindToken( "Undo" ) ) );
	EXPECT_TRUE( pDoc->GetRoot()->GetNode( eOperators, 1 )->IsEnabled() );
	ASSERT_TRUE( pManager->InvokeCommand( pFire, BindToken( "Redo" ) ) );
	EXPECT_FALSE( pDoc->GetRoot()->GetNode( eOperators, 1 )->IsEnabled() );
}

TEST_F( ZolAppTest, AddChildPicksAFileAndRefusesAParentOrAFileOutsideTheContent )
{
	Start();
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	CZolDoc *pDoc = pFire->GetDoc();
	int nChildren = pDoc->GetRoot()->GetNodeCount( PARTICLE_FUNCTION_CHILDREN );
	CQInputBindManager *pManager = CQInputBindManager::Get();

	m_Prompt.ExpectOpenFile( MemoryPath( m_Root / "content/particles/samples/sparks.tfxs" ), "Add a child particle system" );
	ASSERT_TRUE( pManager->InvokeCommand( pFire, BindToken( "AddChild" ) ) );
	EXPECT_EQ( pDoc->GetRoot()->GetNodeCount( PARTICLE_FUNCTION_CHILDREN ), nChildren + 1 );

	// Campfire holds fire already: refused, as is a file the content tree doesn't hold.
	m_Prompt.ExpectOpenFile( MemoryPath( m_Root / "content/particles/samples/campfire.tfxs" ) );
	EXPECT_EQ( pFire->BrowseAndAddChild(), nullptr );
	WriteText( m_Root / "elsewhere.tfxs", ReadText( m_Root / "content/particles/samples/sparks.tfxs" ) );
	m_Prompt.ExpectOpenFile( MemoryPath( m_Root / "elsewhere.tfxs" ) );
	EXPECT_EQ( pFire->BrowseAndAddChild(), nullptr );
	m_Prompt.ExpectCancelledDialog( PROMPT_KIND_OPEN_FILE );
	EXPECT_EQ( pFire->BrowseAndAddChild(), nullptr );
	EXPECT_EQ( pDoc->GetRoot()->GetNodeCount( PARTICLE_FUNCTION_CHILDREN ), nChildren + 1 );
	EXPECT_EQ( m_Prompt.CountRecords( PROMPT_KIND_MESSAGE ), 2 );
	EXPECT_EQ( m_Prompt.GetPendingCount(), 0 );
	EXPECT_FALSE( m_Prompt.HasFailures() );
}

TEST_F( ZolAppTest, EditMenuRunsTheShownSessionsCommandsAndShowsTheirKeys )
{
	EnsureTestQApplication();
	m_pApp->SetCreatesMainWindow( true );
	Start();
	CQZolMainWnd *pWindow = m_pApp->GetZolMainWindow();
	ASSERT_NE( pWindow, nullptr );
	pWindow->UpdateEditMenu();
	QAction *pCut = pWindow->GetEditAction( CQZolMainWnd::EDIT_CUT );
	ASSERT_NE( pCut, nullptr );
	EXPECT_FALSE( pCut->isEnabled() );
	EXPECT_EQ( pWindow->GetEditAction( CQZolMainWnd::EDIT_UNDO )->text(), QStringLiteral( "Cannot Undo" ) );

	CZolSession *pSparks = Open( "particles/samples/sparks.tfxs" );
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_TRUE( pSparks && pFire );
	ASSERT_EQ( m_pApp->GetActiveSession(), pFire );
	pWindow->UpdateEditMenu();
	EXPECT_TRUE( pCut->isEnabled() );
	EXPECT_TRUE( pCut->text().endsWith( QStringLiteral( "\tCtrl+X" ) ) ) << pCut->text().toStdString();

	// The menu cuts from the shown session only.
	const ParticleFunctionType_t eOperators = PARTICLE_FUNCTION_OPERATOR;
	int nFire = pFire->GetDoc()->GetRoot()->GetNodeCount( eOperators );
	int nSparks = pSparks->GetDoc()->GetRoot()->GetNodeCount( eOperators );
	pFire->GetDoc()->SelectElement( pFire->GetDoc()->GetRoot()->GetNode( eOperators, 0 ), false );
	pCut->trigger();
	EXPECT_EQ( pFire->GetDoc()->GetRoot()->GetNodeCount( eOperators ), nFire - 1 );
	EXPECT_EQ( pSparks->GetDoc()->GetRoot()->GetNodeCount( eOperators ), nSparks );
	pWindow->UpdateEditMenu();
	QAction *pUndo = pWindow->GetEditAction( CQZolMainWnd::EDIT_UNDO );
	EXPECT_TRUE( pUndo->text().startsWith( QStringLiteral( "Undo Cut" ) ) ) << pUndo->text().toStdString();
	pUndo->trigger();
	EXPECT_EQ( pFire->GetDoc()->GetRoot()->GetNodeCount( eOperators ), nFire );

	// Closing the shown session leaves the proxy on the other one, never on a dead one.
	pFire->SetModified( false );
	ASSERT_TRUE( m_pApp->CloseSession( pFire ) );
	ASSERT_EQ( m_pApp->GetActiveSession(), pSparks );
	EXPECT_EQ( pWindow->GetSessionCommandTarget()->GetBindTargetOwner(), static_cast<IBindTarget *>( pSparks ) );
}
