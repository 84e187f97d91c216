// The gizmo in the editor's preview, driven by real mouse and key events: a drag of an
// arrow moves the selected control point, the particles follow in the next frame, the
// drag is one undo step that Ctrl+Z takes back without marking the file modified, and a
// value typed into the view moves the point exactly.

#include <gtest/gtest.h>

#include <QMouseEvent>
#include <QTest>

#include <cmath>

#include "core/particles/sim/iparticlecollection.h"
#include "tests/gl/previewgltestsupport.h"
#include "tools/toolscene/toolscenegizmolibgizmo.h"
#include "tools/toolscene/toolsceneparticlesystem.h"
#include "tools/toolscene/toolsceneview.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "zoldoc_lib/zoldoc.h"

namespace
{
class GizmoDragGLTest : public ZolPreviewGLTest
{
protected:
	// The pixel of a world point in the view as drawn (logical pixels of the widget).
	QPoint PixelOf( const Vector &vPoint )
	{
		const ToolSceneView_t view = m_pScene->GetView();
		float flX = 0.0f, flY = 0.0f;
		EXPECT_TRUE( view.WorldToScreen( vPoint, &flX, &flY ) );
		const qreal flRatio = m_pScene->devicePixelRatioF();
		return QPoint( int( std::lround( flX / flRatio ) ), int( std::lround( flY / flRatio ) ) );
	}
	void MoveTo( const QPoint &pos, Qt::MouseButtons buttons )
	{
		QMouseEvent move( QEvent::MouseMove, pos, m_pScene->mapToGlobal( pos ), Qt::NoButton, buttons, Qt::NoModifier );
		QCoreApplication::sendEvent( m_pScene, &move );
	}
	IParticleCollection *Collection() { return m_pPreview->GetParticleSystem()->GetCollection(); }
};
} // namespace

TEST_F( GizmoDragGLTest, DraggingTheArrowMovesThePointTheParticlesFollowAndCtrlZPutsItBack )
{
	CZolSession *pSession = Open( "particles/samples/brazier.tfxs" );
	ASSERT_NE( pSession, nullptr );
	Frames( 20 );
	// A camera that stands still, looking at the flame from the side and above.
	m_pScene->GetCamera().SetPositionAndTarget( Vector( 260, -260, 160 ), Vector( 0, 0, 20 ) );
	const ParticleParamID_t point0 = ParticleParamID_t::ControlPoint( 0 );
	pSession->SetSelectedControlPoint( point0 );
	ASSERT_TRUE( m_pPreview->IsGizmoShown() );
	Frames( 1 );
	CBaseGizmoHelper *pHelper = m_pPreview->GetGizmo()->GetGizmo().GetHelper();
	ASSERT_EQ( pHelper->GetMode(), GIZMO_MODE_TRANSLATE );
	const float D = pHelper->GetDrawnLength( m_pScene->GetView() );
	const float flYaw = m_pScene->GetCamera().GetYaw();
	CUndoHistory *pUndo = pSession->GetDoc()->GetUndoHistory();
	const int nSteps = pUndo->GetStepCount();

	// Over the X arrow the handle lights up; press, drag 40 units along X, release.
	const QPoint start = PixelOf( Vector( 0.45f * D, 0, 0 ) );
	MoveTo( start, Qt::NoButton );
	EXPECT_EQ( pHelper->GetHoverPart(), GIZMO_PART_X );
	QTest::mousePress( m_pScene, Qt::LeftButton, Qt::NoModifier, start );
	ASSERT_TRUE( m_pPreview->GetGizmo()->GetGizmo().IsDragging() );
	for ( float flX : { 10.0f, 25.0f, 40.0f } )
	{
		MoveTo( PixelOf( Vector( 0.45f * D + flX, 0, 0 ) ), Qt::LeftButton );
		Frames( 1 );
	}
	QTest::mouseRelease( m_pScene, Qt::LeftButton, Qt::NoModifier, PixelOf( Vector( 0.45f * D + 40.0f, 0, 0 ) ) );
	Frames( 1 );

	const Vector vMoved = pSession->GetControlPointState()->GetPosition( point0 );
	EXPECT_NEAR( vMoved.x, 40.0f, 2.0f );
	EXPECT_NEAR( vMoved.y, 0.0f, 1e-3f );
	EXPECT_NEAR( vMoved.z, 0.0f, 1e-3f );
	EXPECT_EQ( m_pScene->GetCamera().GetYaw(), flYaw ) << "the drag is the gizmo's, not the camera's";
	// The running system has the point where the gizmo put it, and new flames rise there.
	ASSERT_NE( Collection(), nullptr );
	EXPECT_NEAR( Collection()->GetControlPointPosition( 0 ).x, vMoved.x, 1e-3f );
	Frames( 60 );
	const float flCentre = 0.5f * ( Collection()->GetBoundsMin().x + Collection()->GetBoundsMax().x );
	EXPECT_NEAR( flCentre, vMoved.x, 8.0f );
	// One step for the whole drag, and the file isn't modified.
	EXPECT_EQ( pUndo->GetStepCount(), nSteps + 1 );
	EXPECT_STREQ( pUndo->GetUndoName(), "Move Control Point #0" );
	EXPECT_FALSE( pSession->IsModified() );

	// Ctrl+Z in the view puts the point back, and the system with it.
	m_pScene->setFocus();
	QTest::keyClick( m_pScene, Qt::Key_Z, Qt::ControlModifier );
	EXPECT_NEAR( pSession->GetControlPointState()->GetPosition( point0 ).x, 0.0f, 1e-4f );
	Frames( 1 );
	EXPECT_NEAR( Collection()->GetControlPointPosition( 0 ).x, 0.0f, 1e-3f );
	EXPECT_FALSE( pSession->IsModified() );
	// And Ctrl+Y moves it again.
	QTest::keyClick( m_pScene, Qt::Key_Y, Qt::ControlModifier );
	EXPECT_NEAR( pSession->GetControlPointState()->GetPosition( point0 ).x, vMoved.x, 1e-4f );
}

TEST_F( GizmoDragGLTest, AValueTypedIntoTheViewMovesThePointAndABadOneMovesNothing )
{
	CZolSession *pSession = Open( "particles/samples/brazier.tfxs" );
	ASSERT_NE( pSession, nullptr );
	Frames( 10 );
	m_pScene->GetCamera().SetPositionAndTarget( Vector( 260, -260, 160 ), Vector( 0, 0, 20 ) );
	const ParticleParamID_t point0 = ParticleParamID_t::ControlPoint( 0 );
	pSession->SetSelectedControlPoint( point0 );
	Frames( 1 );
	const float D = m_pPreview->GetGizmo()->GetGizmo().GetHelper()->GetDrawnLength( m_pScene->GetView() );
	// The pointer over the Z arrow picks the axis of the typed value.
	MoveTo( PixelOf( Vector( 0, 0, 0.45f * D ) ), Qt::NoButton );
	m_pScene->setFocus();
	QTest::keyClicks( m_pScene, "12.5" );
	EXPECT_TRUE( m_pScene->GetMessage().contains( "12.5" ) ) << m_pScene->GetMessage().toStdString();
	QTest::keyClick( m_pScene, Qt::Key_Return );
	EXPECT_FLOAT_EQ( pSession->GetControlPointState()->GetPosition( point0 ).z, 12.5f );
	EXPECT_TRUE( m_pScene->GetMessage().isEmpty() );

	QTest::keyClicks( m_pScene, "1-" );
	QTest::keyClick( m_pScene, Qt::Key_Return );
	EXPECT_FLOAT_EQ( pSession->GetControlPointState()->GetPosition( point0 ).z, 13.5f ) << "the '-' after a digit is not typed";
	// A value that doesn't read moves nothing and says so in the status bar.
	m_pPreview->GetGizmo()->GetGizmo().BeginTyping();
	EXPECT_FALSE( m_pPreview->GetGizmo()->GetGizmo().ApplyTyped( "abc" ) );
	EXPECT_FLOAT_EQ( pSession->GetControlPointState()->GetPosition( point0 ).z, 13.5f );
	EXPECT_STREQ( m_pApp->GetLastStatusMessage(), "<Bad value> : abc" );
}
