// The preview controls in the Controls dock, driven with real events: configurations
// switched, renamed, added, removed and committed to the file; control point rows that
// follow the configuration, edit the session's state in undo steps and never write back
// on a refresh; orientation, driven and colour points; the model's lists; gravity and
// water.

#include <gtest/gtest.h>

#include <cstdlib>

#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QToolButton>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/particles/controlpointusagekind.h"
#include "tests/zoltool/zolpreviewtestsupport.h"
#include "tools/toolscene/particlesystemquery_toolscene.h"
#include "tools/toolscene/toolscenegizmolibgizmo.h"
#include "tools/toolscene/toolscenemodel.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "tools/widgets/animpreviewwidget.h"
#include "tools/widgets/assetpicker.h"
#include "tools/widgets/editboxvector3.h"
#include "tools/widgets/sliderlineeditfloat.h"
#include "tools/widgets/smartcombobox.h"
#include "tools/widgets/smartlineedit.h"
#include "tools/widgets/toolbutton.h"
#include "tools/widgets/captionedvectoredit.h"
#include "tools/zol/editor/previewcontrols/controlpointeditor.h"
#include "tools/zol/editor/previewcontrols/namedvalueeditor.h"
#include "tools/zol/editor/previewcontrols/particlepreviewcontrols.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolpersistedcontrolpoints.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
namespace fs = std::filesystem;
const ParticleParamID_t CP0 = ParticleParamID_t::ControlPoint( 0 );

// A system whose control point 2 is a whole frame: moved and turned.
const char *const TRANSFORM_SYSTEM = R"(--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---
{
	_class = "CParticleSystemDefinition"
	m_nBehaviorVersion = 12
	m_Emitters = [ { _class = "C_OP_ContinuousEmitter" } ]
	m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_nControlPointNumber = 2 m_LocalCoordinateSystemSpeedMin = [ 0.0, 0.0, 10.0 ] } ]
	m_Renderers = [ { _class = "C_OP_RenderSprites" } ]
}
)";

class PreviewControlsTest : public ZolPreviewTest
{
protected:
	void SetUp() override
	{
		CZolPersistedControlPoints::Get().Clear();
		ZolPreviewTest::SetUp();
		if ( HasFatalFailure() )
			return;
		m_pControls = m_pApp->GetZolMainWindow()->GetPreviewControls();
		ASSERT_NE( m_pControls, nullptr );
	}
	void TearDown() override
	{
		CZolPersistedControlPoints::Get().Clear();
		zol_preview_gravity.Revert();
		zol_preview_underwater.Revert();
		ZolPreviewTest::TearDown();
	}
	CZolSession *OpenAndCompile( const char *pPath )
	{
		CZolSession *pSession = Open( pPath );
		if ( pSession )
			Frames( 2 );
		return pSession;
	}
	// Types into a line edit as a user does, and presses Enter.
	static void Type( QLineEdit *pEdit, const QString &text )
	{
		pEdit->setFocus();
		pEdit->selectAll();
		QTest::keyClicks( pEdit, text );
		QTest::keyClick( pEdit, Qt::Key_Return );
	}
	CQParticlePreviewControls *m_pControls = nullptr;
};
} // namespace

TEST_F( PreviewControlsTest, SwitchingTheConfigurationComboChangesTheRowsAndNotTheFile )
{
	CZolSession *pSession = OpenAndCompile( "particles/samples/brazier.tfxs" );
	ASSERT_NE( pSession, nullptr );
	ASSERT_EQ( m_pControls->GetSession(), pSession );
	QComboBox *pCombo = m_pControls->GetConfigurationCombo();
	ASSERT_EQ( pCombo->count(), 2 );
	EXPECT_EQ( pCombo->currentText(), "ground" );
	EXPECT_TRUE( pCombo->isEnabled() );
	CQControlPointEditor *pRow = m_pControls->FindControlPointEditor( 0 );
	ASSERT_NE( pRow, nullptr );
	EXPECT_EQ( pRow->title(), "Point #0" );
	EXPECT_EQ( pRow->GetAttachTypeCombo()->currentText(), "worldorigin" );
	const int nSteps = pSession->GetDoc()->GetUndoHistory()->GetStepCount();

	// The user picks "on crate" from the list.
	pCombo->setFocus();
	QTest::keyClick( pCombo, Qt::Key_Down );
	EXPECT_STREQ( pSession->GetCurrentConfigName(), "on crate" );
	pRow = m_pControls->FindControlPointEditor( 0 );
	ASSERT_NE( pRow, nullptr );
	EXPECT_EQ( pRow->GetAttachTypeCombo()->currentText(), "point_follow" );
	EXPECT_TRUE( pRow->GetAttachmentNameCombo()->isEnabled() ) << "the crate stands: its attachments are offered";
	EXPECT_EQ( pRow->GetAttachmentNameCombo()->currentText(), "lid" );
	EXPECT_EQ( m_pControls->GetModelPicker()->GetAssetName(), "models/crate.tmsh" );
	// The crate's skins show index and name; the stored value is the name alone.
	ASSERT_EQ( m_pControls->GetSkinCombo()->count(), 3 );
	EXPECT_EQ( m_pControls->GetSkinCombo()->itemText( 1 ), "1: \"charred\"" );
	EXPECT_EQ( m_pControls->GetSkinCombo()->itemData( 1 ).toString(), "charred" );
	EXPECT_EQ( m_pControls->GetBodyPartCombo()->itemText( 0 ), "lid" );
	EXPECT_EQ( m_pControls->GetAnimationWidget()->GetSequenceCombo()->count(), 3 );
	EXPECT_EQ( m_pControls->GetHitboxSetCombo()->currentText(), "default" );
	// Showing it wrote nothing.
	EXPECT_FALSE( pSession->IsModified() );
	EXPECT_EQ( pSession->GetDoc()->GetUndoHistory()->GetStepCount(), nSteps );

	QTest::keyClick( pCombo, Qt::Key_Up );
	EXPECT_STREQ( pSession->GetCurrentConfigName(), "ground" );
	EXPECT_EQ( m_pControls->FindControlPointEditor( 0 )->GetAttachTypeCombo()->currentText(), "worldorigin" );
	EXPECT_EQ( m_pControls->GetSkinCombo()->count(), 0 ) << "no model, no skins";
}

TEST_F( PreviewControlsTest, ATypedPositionIsOneUndoStepAndCommitThenSaveWritesTheDrivers )
{
	CZolSession *pSession = OpenAndCompile( "particles/samples/brazier.tfxs" );
	ASSERT_NE( pSession, nullptr );
	CQControlPointEditor *pRow = m_pControls->FindControlPointEditor( 0 );
	ASSERT_NE( pRow, nullptr );
	CUndoHistory *pUndo = pSession->GetDoc()->GetUndoHistory();
	const int nSteps = pUndo->GetStepCount();
	Type( pRow->GetValueEdit()->GetField( 2 ), "24" );
	EXPECT_FLOAT_EQ( pSession->GetControlPointState()->GetPosition( CP0 ).z, 24.0f );
	EXPECT_EQ( pUndo->GetStepCount(), nSteps + 1 );
	EXPECT_STREQ( pUndo->GetUndoName(), "Set Control Point #0" );
	EXPECT_FALSE( pSession->IsModified() ) << "the preview state is not the file";
	EXPECT_EQ( pSession->GetSelectedControlPoint(), CP0 ) << "editing a row selects its point";
	EXPECT_TRUE( pRow->IsHighlighted() );

	// Text that isn't a number is put back and moves nothing.
	Type( pRow->GetValueEdit()->GetField( 0 ), "abc" );
	EXPECT_EQ( pRow->GetValueEdit()->GetField( 0 )->text(), "0" );
	EXPECT_EQ( pUndo->GetStepCount(), nSteps + 1 );

	// Commit, then save: the configuration's driver carries the new offset.
	QTest::mouseClick( m_pControls->GetCommitButton(), Qt::LeftButton );
	EXPECT_STREQ( pUndo->GetUndoName(), "Commit Control Point And Preview State" );
	EXPECT_TRUE( pSession->IsModified() );
	ASSERT_TRUE( m_pApp->SaveSession( pSession ) );
	KeyValues3 saved;
	CUtlString strError;
	const std::string text = ReadText( m_Root / "content/particles/samples/brazier.tfxs" );
	ASSERT_TRUE( LoadKV3FromText( &saved, &strError, text.data(), text.size(), KV3_FORMAT_GENERIC ) ) << strError.Get();
	const KeyValues3 *pDriver = saved.FindMember( "m_controlPointConfigurations" )->GetArrayElement( 0 )->FindMember( "m_drivers" )->GetArrayElement( 0 );
	EXPECT_FLOAT_EQ( pDriver->FindMember( "m_vecOffset" )->GetArrayElement( 2 )->GetFloat(), 24.0f );

	// Undo of the typed value puts the point back; the row follows.
	pSession->GetDoc()->Undo();
	pSession->GetDoc()->Undo();
	EXPECT_FLOAT_EQ( pSession->GetControlPointState()->GetPosition( CP0 ).z, 0.0f );
	EXPECT_EQ( pRow->GetValueEdit()->GetField( 2 )->text(), "0" );
}

TEST_F( PreviewControlsTest, ConfigurationsAreAddedRenamedAndRemovedAndAClashingNameChangesNothing )
{
	CZolSession *pSession = OpenAndCompile( "particles/samples/brazier.tfxs" );
	ASSERT_NE( pSession, nullptr );
	QComboBox *pCombo = m_pControls->GetConfigurationCombo();
	EXPECT_TRUE( m_pControls->GetRemoveConfigButton()->isEnabled() );

	// Renaming to the other configuration's name (any case) is ignored.
	Type( pCombo->lineEdit(), "On Crate" );
	EXPECT_STREQ( pSession->GetCurrentConfigName(), "ground" );
	EXPECT_NE( pSession->GetDoc()->GetRoot()->FindConfiguration( "ground" ), nullptr );
	EXPECT_FALSE( pSession->IsModified() );

	Type( pCombo->lineEdit(), "on the floor" );
	EXPECT_STREQ( pSession->GetCurrentConfigName(), "on the floor" );
	EXPECT_EQ( pSession->GetDoc()->GetRoot()->FindConfiguration( "ground" ), nullptr );
	EXPECT_STREQ( pSession->GetDoc()->GetUndoHistory()->GetUndoName(), "Set Control Point Configuration Name 'on the floor'" );
	EXPECT_EQ( pCombo->itemText( 0 ), "on the floor" );

	// "preview", then "game", then "Config 5" (four stood before it).
	const char *const expected[] = { "preview", "game", "Config 5" };
	for ( const char *pName : expected )
	{
		QTest::mouseClick( m_pControls->GetAddConfigButton(), Qt::LeftButton );
		EXPECT_STREQ( pSession->GetCurrentConfigName(), pName );
	}
	EXPECT_EQ( pCombo->count(), 5 );

	while ( pSession->GetDoc()->GetRoot()->GetConfigurationCount() > 1 )
		QTest::mouseClick( m_pControls->GetRemoveConfigButton(), Qt::LeftButton );
	EXPECT_FALSE( m_pControls->GetRemoveConfigButton()->isEnabled() ) << "the last configuration stays";
	EXPECT_EQ( pCombo->count(), 1 );

	// Locked on its session, the panel offers no configuration commands.
	m_pControls->GetLockPreviewSystemButton()->click();
	EXPECT_TRUE( m_pApp->IsPreviewSessionLocked() );
	for ( QWidget *pWidget : std::initializer_list<QWidget *>{ pCombo, m_pControls->GetAddConfigButton(), m_pControls->GetRemoveConfigButton(),
			  m_pControls->GetCommitButton(), m_pControls->GetResetButton(), m_pControls->GetCopyButton(), m_pControls->GetPasteButton() } )
		EXPECT_FALSE( pWidget->isEnabled() ) << pWidget->objectName().toStdString();
	m_pControls->GetLockPreviewSystemButton()->click();
	EXPECT_FALSE( m_pApp->IsPreviewSessionLocked() );
	EXPECT_TRUE( m_pControls->GetAddConfigButton()->isEnabled() );
}

TEST_F( PreviewControlsTest, ATransformPointEditsItsAnglesInOrientationModeAndKeepsItsPosition )
{
	WriteText( m_Root / "content/particles/samples/frame.tfxs", TRANSFORM_SYSTEM );
	m_Services.GetAssetSystem()->Rescan();
	CZolSession *pSession = OpenAndCompile( "particles/samples/frame.tfxs" );
	ASSERT_NE( pSession, nullptr );
	const ParticleParamID_t cp2 = ParticleParamID_t::ControlPoint( 2 );
	CQControlPointEditor *pRow = m_pControls->FindControlPointEditor( 2 );
	ASSERT_NE( pRow, nullptr );
	ASSERT_NE( pRow->GetIconButton()->menu(), nullptr ) << "a transform offers position and orientation";
	Type( pRow->GetValueEdit()->GetField( 0 ), "15" );
	EXPECT_FLOAT_EQ( pSession->GetControlPointState()->GetPosition( cp2 ).x, 15.0f );

	pRow->GetIconButton()->menu()->actions()[ 1 ]->trigger();
	EXPECT_EQ( pSession->GetControlPointEditMode( cp2 ), CONTROL_POINT_EDIT_ROTATE );
	pRow = m_pControls->FindControlPointEditor( 2 );
	EXPECT_EQ( pRow->GetValueEdit()->GetText(), "0 0 0" ) << "the angles show";
	Type( pRow->GetValueEdit()->GetField( 1 ), "90" );
	EXPECT_FLOAT_EQ( pSession->GetControlPointState()->GetAngles( cp2 ).y, 90.0f );
	EXPECT_FLOAT_EQ( pSession->GetControlPointState()->GetPosition( cp2 ).x, 15.0f ) << "the position stays";
	// The gizmo follows: it turns this point now.
	EXPECT_TRUE( m_pPreview->IsGizmoShown() );
	EXPECT_EQ( m_pPreview->GetGizmo()->GetGizmo().GetMode(), GIZMO_MODE_ROTATE );
}

TEST_F( PreviewControlsTest, ADrivenPointCantBeEditedAndAColourPointOpensItsDialog )
{
	CZolSession *pSession = OpenAndCompile( "particles/samples/campfire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	// The campfire sets control point 1 itself.
	CQControlPointEditor *pDriven = m_pControls->FindControlPointEditor( 1 );
	ASSERT_NE( pDriven, nullptr );
	EXPECT_TRUE( pDriven->IsDriven() );
	EXPECT_FALSE( pDriven->GetValueEdit()->isEnabled() );
	EXPECT_FALSE( pDriven->GetExpandButton()->isEnabled() );
	// And its variable has a row of its own, a float on a slider.
	ASSERT_EQ( m_pControls->GetNamedValueEditors().size(), 1u );
	CQNamedValueEditor *pHeight = m_pControls->GetNamedValueEditors()[ 0 ];
	EXPECT_EQ( pHeight->title(), "FireHeight" );
	ASSERT_NE( pHeight->GetFloatEdit(), nullptr );
	EXPECT_DOUBLE_EQ( pHeight->GetFloatEdit()->GetValue(), 48.0 );
	Type( pHeight->GetFloatEdit()->GetLineEdit(), "30" );
	KeyValues3 value;
	ASSERT_TRUE( pSession->GetControlPointState()->GetValue( ParticleParamID_t::Named( "FireHeight" ), &value ) );
	EXPECT_DOUBLE_EQ( value.GetDouble(), 30.0 );
	EXPECT_FALSE( pSession->IsModified() );

	// A point used as a colour: its row's icon is the colour, and selecting it asks for one.
	CParticleDefinitionUsage usage = pSession->GetDefinitionUsage();
	usage.Add( PARTICLE_FUNCTION_OPERATOR, 0, HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( 5 ), CONTROL_POINT_USAGE_COLOR, CONTROL_POINT_ACCESS_READ ) );
	pSession->GetControlPointState()->RebuildKnownControlPoints( usage );
	m_pControls->RebuildRows();
	CQControlPointEditor *pColor = m_pControls->FindControlPointEditor( 5 );
	ASSERT_NE( pColor, nullptr );
	m_Prompt.ExpectPickColor( Color( 10, 200, 30 ), "Point #5" );
	QTest::mouseClick( pColor->GetIconButton(), Qt::LeftButton );
	ASSERT_NE( m_Prompt.FindRecord( "Point #5" ), nullptr );
	EXPECT_EQ( m_Prompt.FindRecord( "Point #5" )->m_InitialColor, Color( 255, 255, 255 ) ) << "the kind's default: white";
	const Vector vColor = pSession->GetControlPointState()->GetPosition( ParticleParamID_t::ControlPoint( 5 ) );
	EXPECT_FLOAT_EQ( vColor.x, 10.0f );
	EXPECT_FLOAT_EQ( vColor.y, 200.0f );
	EXPECT_FLOAT_EQ( vColor.z, 30.0f );
	// A cancelled dialog changes nothing.
	QTest::mouseClick( pColor->GetIconButton(), Qt::LeftButton ); // let go
	m_Prompt.ExpectCancelledDialog( PROMPT_KIND_PICK_COLOR, "Point #5" );
	QTest::mouseClick( m_pControls->FindControlPointEditor( 5 )->GetIconButton(), Qt::LeftButton );
	EXPECT_FLOAT_EQ( pSession->GetControlPointState()->GetPosition( ParticleParamID_t::ControlPoint( 5 ) ).y, 200.0f );
	EXPECT_EQ( m_Prompt.GetPendingCount(), 0 );
}

TEST_F( PreviewControlsTest, TheModelsListsSetTheStateAndGravityAndWaterReachTheParticles )
{
	CZolSession *pSession = OpenAndCompile( "particles/samples/brazier.tfxs" );
	ASSERT_NE( pSession, nullptr );
	// The model typed into the picker.
	QComboBox *pModels = m_pControls->GetModelPicker()->GetCombo();
	pModels->setFocus();
	pModels->lineEdit()->selectAll();
	QTest::keyClicks( pModels, "models/crate.tmsh" );
	QTest::keyClick( pModels, Qt::Key_Return );
	EXPECT_STREQ( pSession->GetPreviewState().m_previewModel.Get(), "models/crate.tmsh" );
	EXPECT_STREQ( pSession->GetPreviewState().m_materialGroupName.Get(), "default" ) << "a model's first skin";
	EXPECT_STREQ( m_pPreview->GetPreviewModel()->GetModelName(), "models/crate.tmsh" );
	// A name that isn't a model is refused.
	pModels->lineEdit()->selectAll();
	QTest::keyClicks( pModels, "particles/samples/fire.tfxs" );
	QTest::keyClick( pModels, Qt::Key_Return );
	EXPECT_STREQ( pSession->GetPreviewState().m_previewModel.Get(), "models/crate.tmsh" );
	EXPECT_EQ( m_pControls->GetModelPicker()->GetAssetName(), "models/crate.tmsh" );

	CQSmartComboBox *pSkins = m_pControls->GetSkinCombo();
	pSkins->setFocus();
	QTest::keyClick( pSkins, Qt::Key_Down );
	EXPECT_STREQ( pSession->GetPreviewState().m_materialGroupName.Get(), "charred" );
	float color[ 4 ];
	m_pPreview->GetPreviewModel()->GetColor( color );
	EXPECT_NEAR( color[ 0 ], 70.0f / 255.0f, 1e-4f );

	// The lid off: body part "lid" to choice 1, "open".
	Type( m_pControls->GetBodyPartValueEdit(), "1" );
	EXPECT_EQ( pSession->GetBodyGroup( "lid" ), 1 );
	EXPECT_EQ( m_pPreview->GetPreviewModel()->GetShownModel()->GetTriangleCount(), 10 );

	CQSmartComboBox *pGround = m_pControls->GetGroundCombo();
	pGround->setFocus();
	QTest::keyClick( pGround, Qt::Key_Up );
	EXPECT_EQ( pSession->GetPreviewState().m_groundType, ZOL_GROUND_GRID );
	Type( m_pControls->GetSimulationRateEdit(), "0.5" );
	EXPECT_FLOAT_EQ( pSession->GetPreviewState().m_flParticleSimulationRate, 0.5f );
	Frames( 1 );
	EXPECT_FLOAT_EQ( m_pPreview->GetSimulationRate(), 0.5f );

	Type( m_pControls->GetGravityEdit()->GetField( 2 ), "-100" );
	EXPECT_STREQ( zol_preview_gravity.GetString(), "0 0 -100" );
	EXPECT_FLOAT_EQ( pSession->GetPreviewState().m_vecPreviewGravity.z, -100.0f );
	m_pControls->GetWaterCheckBox()->click();
	EXPECT_TRUE( zol_preview_underwater.GetBool() );
	EXPECT_FALSE( pSession->IsModified() ) << "all of it is preview state";

	// A non-looping sequence fires the system on its frame.
	m_pControls->GetAnimationWidget()->GetLoopButton()->click();
	EXPECT_TRUE( pSession->GetPreviewState().m_bAnimationNonLooping );
	EXPECT_TRUE( m_pControls->GetFrameEdit()->isEnabled() );
	Type( m_pControls->GetFrameEdit(), "12" );
	EXPECT_EQ( pSession->GetPreviewState().m_nFireParticleOnSequenceFrame, 12 );
}

TEST_F( PreviewControlsTest, WithoutASessionOnlyTheWaterSwitchActs )
{
	ASSERT_EQ( m_pControls->GetSession(), nullptr );
	EXPECT_FALSE( m_pControls->GetConfigurationCombo()->isEnabled() );
	EXPECT_FALSE( m_pControls->GetAddConfigButton()->isEnabled() );
	EXPECT_TRUE( m_pControls->GetControlPointEditors().empty() );
	m_pControls->GetWaterCheckBox()->click();
	EXPECT_TRUE( zol_preview_underwater.GetBool() );
	m_pControls->OnAddConfiguration();
	m_pControls->OnSavePreviewState();
	m_pControls->OnGroundComboChanged();
}

namespace
{
// A narrow Controls dock stacks each row's second label and field under the first instead
// of scrolling sideways; with room again the rows are side by side.
TEST_F( PreviewControlsTest, ANarrowDockStacksThePreviewSettingsInTwoColumns )
{
	ASSERT_NE( OpenAndCompile( "particles/samples/campfire.tfxs" ), nullptr );
	QWidget *pViewport = m_pControls->parentWidget();
	ASSERT_NE( pViewport, nullptr );
	CQZolMainWnd *pWindow = m_pApp->GetZolMainWindow();
	pWindow->resize( 1900, 1000 );
	pWindow->show();
	QDockWidget *pDock = pWindow->GetControlsDock();
	ASSERT_NE( pDock, nullptr );
	auto fnDockWidth = [ & ]( int nWidth ) {
		pWindow->resizeDocks( { pDock }, { nWidth }, Qt::Horizontal );
		QApplication::processEvents();
	};
	auto fnSameRow = [ & ]( QWidget *pA, QWidget *pB ) { return std::abs( pA->mapTo( m_pControls, QPoint() ).y() - pB->mapTo( m_pControls, QPoint() ).y() ) < 8; };

	fnDockWidth( 700 );
	EXPECT_FALSE( m_pControls->IsPreviewGridNarrow() );
	EXPECT_TRUE( fnSameRow( m_pControls->GetItemCombo(), m_pControls->GetDisplaySetCheckBox() ) );
	EXPECT_TRUE( fnSameRow( m_pControls->GetSimulationRateEdit(), m_pControls->GetGroundCombo() ) );

	fnDockWidth( 400 );
	EXPECT_TRUE( m_pControls->IsPreviewGridNarrow() );
	EXPECT_FALSE( fnSameRow( m_pControls->GetSimulationRateEdit(), m_pControls->GetGroundCombo() ) );
	EXPECT_GT( m_pControls->GetGroundCombo()->mapTo( m_pControls, QPoint() ).y(), m_pControls->GetSimulationRateEdit()->mapTo( m_pControls, QPoint() ).y() );
	EXPECT_LE( m_pControls->width(), pViewport->width() ) << "no sideways scrolling";

	fnDockWidth( 700 );
	EXPECT_FALSE( m_pControls->IsPreviewGridNarrow() );
	EXPECT_TRUE( fnSameRow( m_pControls->GetSimulationRateEdit(), m_pControls->GetGroundCombo() ) );
}
} // namespace
