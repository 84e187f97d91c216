// The live preview of the main window without drawing: which session it follows, the
// application's preview commands, its restart rules, its time fields, and how an edit,
// good or broken, reaches it.

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

#include <string>

#include "core/host/assetsystem.h"
#include "core/host/iasset.h"
#include "core/kv3/keyvalues3.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/particles/sim/particleruntimedefinition.h"
#include "tools/toolscene/toolscenegrid.h"
#include "tools/toolscene/toolsceneparticlesystem.h"
#include "tools/toolscene/widgets/qtoolscenewidget.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "zoldoc_lib/zoldoc.h"
#include "tools/toolscene/toolscenemodel.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zolpreviewtestsupport.h"

namespace
{
// The application's commands, as a key or a tool bar button runs them.
bool RunAppCommand( CZolApp *pApp, const char *pCommand )
{
	return CQInputBindManager::Get()->InvokeCommand( pApp, BindToken( pCommand ) );
}
} // namespace

TEST_F( ZolPreviewTest, WithoutASessionTheGridShowsAtRateOne )
{
	EXPECT_EQ( m_pPreview->GetSession(), nullptr );
	EXPECT_EQ( m_pPreview->GetGround()->GetGroundType(), TOOLSCENE_GROUND_GRID );
	EXPECT_FLOAT_EQ( m_pPreview->GetSimulationRate(), 1.0f );
	EXPECT_EQ( m_pPreview->GetParticleSystem()->GetEffect(), nullptr );
	EXPECT_TRUE( m_pPreview->GetSceneWidget()->GetMessage().isEmpty() );
	Frames( 3 );
	EXPECT_EQ( m_pPreview->GetSceneWidget()->GetOverlayText(), QString() );
}

TEST_F( ZolPreviewTest, ASessionWithoutAResourceShowsTheRedMessage )
{
	ASSERT_TRUE( m_pApp->NewSession() );
	ASSERT_NE( m_pPreview->GetSession(), nullptr );
	EXPECT_EQ( m_pPreview->GetSceneWidget()->GetMessage(), QString( CQParticlePreview::NO_RESOURCE_MESSAGE ) );
	EXPECT_EQ( m_pPreview->GetParticleSystem()->GetDefinition(), nullptr );
	Frames( 2 );
}

TEST_F( ZolPreviewTest, TheOpenSampleRunsAndTellsItsCounts )
{
	CZolSession *pSession = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	EXPECT_EQ( m_pPreview->GetSession(), pSession );
	EXPECT_TRUE( m_pPreview->GetSceneWidget()->GetMessage().isEmpty() );
	CToolSceneParticleSystem *pSystem = m_pPreview->GetParticleSystem();
	ASSERT_NE( pSystem->GetDefinition(), nullptr );
	EXPECT_STREQ( pSystem->GetDefinition()->m_Name.Get(), "particles/samples/fire.tfxs" );
	Frames( 30 );
	ASSERT_NE( pSystem->GetCollection(), nullptr );
	EXPECT_NEAR( pSystem->GetCollection()->GetCurrentTime(), 0.5f, 1e-3f );
	EXPECT_GT( pSystem->GetCollection()->GetActiveParticleCount( false ), 0 );
	EXPECT_TRUE( m_pPreview->GetSceneWidget()->GetOverlayText().startsWith( "Current System:   Active/Max/Allocated:" ) );
	EXPECT_GT( m_pPreview->GetPeakActiveCount(), 0 );
	// Paused, nothing moves.
	m_pPreview->GetPlayButton()->setChecked( false );
	Frames( 10 );
	EXPECT_NEAR( pSystem->GetCollection()->GetCurrentTime(), 0.5f, 1e-3f );
}

TEST_F( ZolPreviewTest, TheCountsFitANarrowView )
{
	ASSERT_NE( Open( "particles/samples/fire.tfxs" ), nullptr );
	Frames( 5 );
	CQToolSceneWidget *pScene = m_pPreview->GetSceneWidget();
	QLabel *pText = pScene->findChild<QLabel *>( "ToolSceneOverlayText" );
	ASSERT_NE( pText, nullptr );
	pScene->resize( 900, 500 );
	const int nWide = pScene->GetOverlayTextPixels();
	// The last column of counts stays inside the view however narrow it gets.
	pScene->resize( 300, 500 );
	EXPECT_LT( pScene->GetOverlayTextPixels(), nWide );
	EXPECT_LE( pText->sizeHint().width(), pScene->width() - 8 );
	pScene->resize( 900, 500 );
	EXPECT_EQ( pScene->GetOverlayTextPixels(), nWide );
}

TEST_F( ZolPreviewTest, RestartCommandStartsOverAndClearsThePeak )
{
	ASSERT_NE( Open( "particles/samples/fire.tfxs" ), nullptr );
	Frames( 20 );
	CToolSceneParticleSystem *pSystem = m_pPreview->GetParticleSystem();
	const int nRestarts = pSystem->GetRestartCount();
	ASSERT_TRUE( RunAppCommand( m_pApp, "RestartPreview" ) );
	EXPECT_EQ( pSystem->GetRestartCount(), nRestarts + 1 );
	EXPECT_EQ( m_pPreview->GetPeakActiveCount(), 0 );
	Frames( 1 );
	EXPECT_NEAR( pSystem->GetCollection()->GetCurrentTime(), 1.0f / 60.0f, 1e-4f );
	// Across all tools: the running effect restarts through its queue.
	Frames( 10 );
	ASSERT_TRUE( RunAppCommand( m_pApp, "RestartGlobal" ) );
	Frames( 1 );
	EXPECT_NEAR( pSystem->GetCollection()->GetCurrentTime(), 1.0f / 60.0f, 1e-4f );
}

TEST_F( ZolPreviewTest, StopSimEndsWithoutRestartUntilTheNextRebuild )
{
	ASSERT_NE( Open( "particles/samples/sparks.tfxs" ), nullptr );
	CToolSceneParticleSystem *pSystem = m_pPreview->GetParticleSystem();
	Frames( 5 );
	ASSERT_TRUE( RunAppCommand( m_pApp, "StopSim" ) );
	EXPECT_FALSE( pSystem->IsAutoRestart() );
	EXPECT_TRUE( m_pPreview->GetAutoRestartAction()->isChecked() ) << "the action keeps its check";
	const int nRestarts = pSystem->GetRestartCount();
	Frames( 120 );
	EXPECT_TRUE( pSystem->IsEnded() );
	EXPECT_EQ( pSystem->GetRestartCount(), nRestarts );
	m_pPreview->RebuildPreview( false );
	EXPECT_TRUE( pSystem->IsAutoRestart() );
	Frames( 1 );
	EXPECT_EQ( pSystem->GetRestartCount(), nRestarts + 1 );
	ASSERT_TRUE( RunAppCommand( m_pApp, "StopSimWithEndcap" ) );
	EXPECT_FALSE( pSystem->IsAutoRestart() );
}

TEST_F( ZolPreviewTest, UncheckingAutoRestartLeavesTheEffectAloneAndCheckingRestarts )
{
	ASSERT_NE( Open( "particles/samples/fire.tfxs" ), nullptr );
	CToolSceneParticleSystem *pSystem = m_pPreview->GetParticleSystem();
	Frames( 10 );
	CNewParticleEffect *pEffect = pSystem->GetEffect();
	const int nRestarts = pSystem->GetRestartCount();
	m_pPreview->GetAutoRestartAction()->setChecked( false );
	EXPECT_EQ( pSystem->GetEffect(), pEffect );
	EXPECT_FALSE( pSystem->IsAutoRestart() );
	m_pPreview->GetAutoRestartAction()->setChecked( true );
	EXPECT_EQ( pSystem->GetRestartCount(), nRestarts + 1 );
	EXPECT_TRUE( pSystem->IsAutoRestart() );
}

struct TimeFieldCase_t
{
	const char *m_pText;
	float m_flExpected;
	const char *m_pShown;
};

class ZolPreviewTimeFieldTest : public ZolPreviewTest, public ::testing::WithParamInterface<TimeFieldCase_t>
{
};

TEST_P( ZolPreviewTimeFieldTest, TimeFieldsGoToTheNodeWithoutARestart )
{
	const TimeFieldCase_t &c = GetParam();
	ASSERT_NE( Open( "particles/samples/fire.tfxs" ), nullptr );
	CToolSceneParticleSystem *pSystem = m_pPreview->GetParticleSystem();
	const int nRestarts = pSystem->GetRestartCount();
	for ( QLineEdit *pEdit : { m_pPreview->GetAutoRestartTimeEdit(), m_pPreview->GetForcedRestartTimeEdit() } )
	{
		pEdit->setText( "1.5" );
		emit pEdit->editingFinished();
		pEdit->setText( c.m_pText );
		emit pEdit->returnPressed();
		EXPECT_EQ( pEdit->text(), QString( c.m_pShown ) );
	}
	EXPECT_FLOAT_EQ( pSystem->GetAutoRestartTime(), c.m_flExpected );
	EXPECT_FLOAT_EQ( pSystem->GetForcedRestartTime(), c.m_flExpected );
	EXPECT_EQ( pSystem->GetRestartCount(), nRestarts );
	m_pPreview->GetForcedRestartEndcapCheckBox()->setChecked( false );
	EXPECT_FALSE( pSystem->GetForcedRestartEndcap() );
}

std::string TimeFieldCaseName( const ::testing::TestParamInfo<TimeFieldCase_t> &info )
{
	static const char *const s_Names[] = { "Decimals", "Zero", "Largest", "AboveLargest", "Negative", "NotANumber" };
	return s_Names[ info.index ];
}

INSTANTIATE_TEST_SUITE_P( Texts, ZolPreviewTimeFieldTest,
	::testing::Values( TimeFieldCase_t{ "2.25", 2.25f, "2.25" }, TimeFieldCase_t{ "0", 0.0f, "0.00" }, TimeFieldCase_t{ "600", 600.0f, "600.00" },
		// Out of range or not a number: the last good value stays.
		TimeFieldCase_t{ "601", 1.5f, "1.50" }, TimeFieldCase_t{ "-1", 1.5f, "1.50" }, TimeFieldCase_t{ "soon", 1.5f, "1.50" } ), TimeFieldCaseName );

TEST_F( ZolPreviewTest, AnEditReachesThePreviewOnTheNextFrame )
{
	CZolSession *pSession = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	CToolSceneParticleSystem *pSystem = m_pPreview->GetParticleSystem();
	Frames( 5 );
	ParticleDefinitionPtr_t pBefore = pSystem->GetDefinition();
	const int nRestarts = pSystem->GetRestartCount();
	CZolDoc *pDoc = pSession->GetDoc();
	pDoc->BeginEdit( "Max particles", true );
	pDoc->GetRoot()->GetKV3ForModify()->SetMemberInt( "m_nMaxParticles", 7 );
	pDoc->NoteNodeModified( pDoc->GetRoot() );
	Frames( 1 );
	ASSERT_NE( pSystem->GetDefinition(), pBefore );
	EXPECT_EQ( pSystem->GetDefinition()->m_nMaxParticles, 7 );
	EXPECT_EQ( pSystem->GetRestartCount(), nRestarts + 1 );
	Frames( 30 );
	EXPECT_LE( pSystem->GetCollection()->GetActiveParticleCount( false ), 7 );
}

TEST_F( ZolPreviewTest, ABrokenEditKeepsTheLastGoodDefinitionRunningWithoutARestartLoop )
{
	CZolSession *pSession = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	CToolSceneParticleSystem *pSystem = m_pPreview->GetParticleSystem();
	Frames( 5 );
	ParticleDefinitionPtr_t pGood = pSystem->GetDefinition();
	// A child whose file is gone since the content was indexed: the compile refuses.
	IAsset *pSmoke = m_Services.GetAssetSystem()->FindAssetByContentPath( "particles/samples/smoke.tfxs" );
	ASSERT_NE( pSmoke, nullptr );
	std::filesystem::remove( m_Root / "content/particles/samples/smoke.tfxs" );
	const int nRestarts = pSystem->GetRestartCount();
	ASSERT_NE( pSession->GetDoc()->AddChild( pSmoke ), nullptr );
	Frames( 60 );
	EXPECT_EQ( pSystem->GetDefinition(), pGood );
	EXPECT_EQ( pSystem->GetRestartCount(), nRestarts );
	EXPECT_GT( pSystem->GetCollection()->GetActiveParticleCount( false ), 0 );
}

// A system whose particles nothing ends would run for ever after a stop: the view says so
// while that holds, and the warning goes with the edit that caused it.
TEST_F( ZolPreviewTest, TheViewWarnsWhileNothingEndsTheParticles )
{
	CZolSession *pSession = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	CQToolSceneWidget *pScene = m_pPreview->GetSceneWidget();
	Frames( 3 );
	EXPECT_FALSE( pScene->IsOverlayIndicatorVisible( m_pPreview->GetWillNotEndIndicator() ) );

	CBaseZolNode *pDecay = pSession->GetDoc()->GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 1 );
	ASSERT_NE( pDecay, nullptr );
	ASSERT_STREQ( pDecay->GetClassName(), "C_OP_Decay" );
	pSession->GetDoc()->SetElementEnabled( pDecay, false );
	Frames( 3 );
	EXPECT_TRUE( pScene->IsOverlayIndicatorVisible( m_pPreview->GetWillNotEndIndicator() ) );

	pSession->GetDoc()->SetElementEnabled( pSession->GetDoc()->GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 1 ), true );
	Frames( 3 );
	EXPECT_FALSE( pScene->IsOverlayIndicatorVisible( m_pPreview->GetWillNotEndIndicator() ) );
}

TEST_F( ZolPreviewTest, HideGizmoClearsTheSelectedControlPoint )
{
	CZolSession *pSession = Open( "particles/samples/campfire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	pSession->SetSelectedControlPoint( ParticleParamID_t::ControlPoint( 0 ) );
	ASSERT_TRUE( CQInputBindManager::Get()->InvokeCommand( m_pPreview, BindToken( "HideGizmo" ) ) );
	EXPECT_TRUE( pSession->GetSelectedControlPoint().IsNone() );
}

TEST_F( ZolPreviewTest, TheMostRecentSessionIsPreviewedAndClosingItEmptiesThePreview )
{
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	CZolSession *pSmoke = Open( "particles/samples/smoke.tfxs" );
	ASSERT_TRUE( pFire && pSmoke );
	EXPECT_EQ( m_pPreview->GetSession(), pSmoke );
	EXPECT_STREQ( m_pPreview->GetParticleSystem()->GetDefinition()->m_Name.Get(), "particles/samples/smoke.tfxs" );
	EXPECT_TRUE( m_pApp->CloseAllSessions() );
	EXPECT_EQ( m_pPreview->GetSession(), nullptr );
	EXPECT_EQ( m_pPreview->GetParticleSystem()->GetDefinition(), nullptr );
	Frames( 2 );
}

// Without a display the offscreen platform has no OpenGL: the view says so and the system
// runs all the same.
class ZolPreviewNoContextTest : public ZolPreviewTest
{
protected:
	void SetUp() override
	{
		unsetenv( "DISPLAY" );
		ZolPreviewTest::SetUp();
	}
};

TEST_F( ZolPreviewNoContextTest, TheViewSaysItCantDrawAndTheSystemRuns )
{
	ASSERT_NE( Open( "particles/samples/fire.tfxs" ), nullptr );
	m_pApp->GetZolMainWindow()->show();
	QCoreApplication::processEvents();
	m_pPreview->GetSceneWidget()->repaint();
	Frames( 30 );
	EXPECT_FALSE( m_pPreview->GetSceneWidget()->HasRenderContext() );
	EXPECT_EQ( m_pPreview->GetSceneWidget()->GetPaintCount(), 0 );
	CQToolSceneWidget *pScene = m_pPreview->GetSceneWidget();
	EXPECT_TRUE( pScene->IsOverlayIndicatorVisible( pScene->GetNoContextIndicator() ) ) << "the warning over the view";
	ASSERT_NE( m_pPreview->GetParticleSystem()->GetCollection(), nullptr );
	EXPECT_GT( m_pPreview->GetParticleSystem()->GetCollection()->GetActiveParticleCount( false ), 0 );
}

TEST_F( ZolPreviewTest, AConfigurationAttachesControlPointsToThePreviewModel )
{
	CZolSession *pSession = Open( "particles/samples/brazier.tfxs" );
	ASSERT_NE( pSession, nullptr );
	CZolRootNode *pRoot = pSession->GetDoc()->GetRoot();
	// "on crate": point 0 on the lid of the crate, 32 units up.
	pSession->SelectConfiguration( pRoot->FindConfiguration( "on crate" ) );
	Frames( 2 );
	ASSERT_NE( m_pPreview->GetPreviewModel()->GetModel(), nullptr );
	EXPECT_STREQ( m_pPreview->GetPreviewModel()->GetModelName(), "models/crate.tmsh" );
	IParticleCollection *pCollection = m_pPreview->GetParticleSystem()->GetCollection();
	ASSERT_NE( pCollection, nullptr );
	EXPECT_EQ( pCollection->GetControlPointPosition( 0 ), Vector( 0, 0, 32 ) );
	EXPECT_EQ( m_pPreview->GetGround()->GetGroundType(), TOOLSCENE_GROUND_PLANE );
	// The point stays on the lid across a restart.
	m_pPreview->RestartPreview();
	Frames( 1 );
	EXPECT_EQ( m_pPreview->GetParticleSystem()->GetCollection()->GetControlPointPosition( 0 ), Vector( 0, 0, 32 ) );
	// "ground": back at the origin, and no model.
	pSession->SelectConfiguration( pRoot->FindConfiguration( "ground" ) );
	Frames( 1 );
	EXPECT_EQ( m_pPreview->GetParticleSystem()->GetCollection()->GetControlPointPosition( 0 ), Vector( 0, 0, 0 ) );
	EXPECT_EQ( m_pPreview->GetPreviewModel()->GetModel(), nullptr );
}
