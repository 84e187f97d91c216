// Gizmo maths on a synthetic camera: which handle lies under a pixel, drags along axes
// and planes, snapping to a grid with an offset, rings turned past half a turn, the
// trackball, scaling within its limits, typed values good and bad, keyboard nudges, and
// the facade's mode changes.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/console/convar.h"
#include "tools/toolscene/gizmo.h"
#include "tools/toolscene/gizmoconvars.h"
#include "tools/toolscene/gizmoevents.h"
#include "tools/toolscene/gizmogridsnapper.h"
#include "tools/toolscene/gizmorenderdata.h"
#include "tools/toolscene/rotategizmohelper.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/toolscenegizmolibgizmo.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"

using namespace ToolSceneMath;

namespace
{
ToolSceneView_t MakeCamera( const Vector &vEye, const Vector &vTarget = Vector() )
{
	ToolSceneView_t view;
	view.m_nWidth = 800;
	view.m_nHeight = 600;
	view.LookAt( vEye, vTarget );
	view.Compute();
	return view;
}

// The ray through the pixel where a world point shows.
GizmoRay_t RayAt( const ToolSceneView_t &view, const Vector &vPoint )
{
	float flX = 0.0f, flY = 0.0f;
	EXPECT_TRUE( view.WorldToScreen( vPoint, &flX, &flY ) );
	return GizmoRayFromScreen( view, flX, flY );
}

GizmoRay_t RayAtPixel( const ToolSceneView_t &view, float flX, float flY )
{
	return GizmoRayFromScreen( view, flX, flY );
}

class CRecordingListener final : public IGizmoListener
{
public:
	void OnGizmoBegin( uint32_t nFlags ) override
	{
		++m_nBegins;
		m_nBeginFlags = nFlags;
	}
	void OnGizmoDrag( const ZolGizmoDrag &drag ) override
	{
		++m_nDrags;
		m_Last = drag;
	}
	void OnGizmoEnd( const ZolGizmoDrag &drag ) override
	{
		++m_nEnds;
		m_Last = drag;
	}
	void OnGizmoFinished() override { ++m_nFinished; }

	int m_nBegins = 0, m_nDrags = 0, m_nEnds = 0, m_nFinished = 0;
	uint32_t m_nBeginFlags = 0;
	ZolGizmoDrag m_Last;
};

// Remembers the texts of the gizmos' status events.
class CStatusRecorder
{
public:
	CStatusRecorder()
	{
		GizmoEventDispatcher().AddListener( this, &CStatusRecorder::OnLength );
		GizmoEventDispatcher().AddListener( this, &CStatusRecorder::OnAngle );
		GizmoEventDispatcher().AddListener( this, &CStatusRecorder::OnScale );
	}
	~CStatusRecorder() { GizmoEventDispatcher().RemoveListenersOf( this ); }
	void OnLength( const EventGizmoLengthChanged_t &event ) { m_Texts.push_back( event.m_Text ); }
	void OnAngle( const EventGizmoAngleChanged_t &event ) { m_Texts.push_back( event.m_Text ); }
	void OnScale( const EventGizmoScaleChanged_t &event ) { m_Texts.push_back( event.m_Text ); }
	std::vector<std::string> m_Texts;
};

class GizmoTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pNode = std::make_unique<CToolSceneGizmoLibGizmo>( &m_Scene );
		Gizmo().SetListeners( &m_Listener, &m_Snapper );
		Place( GIZMO_MODE_TRANSLATE, Vector() );
	}
	void TearDown() override { brakel_gizmo_axis_length.Revert(); }

	CGizmo &Gizmo() { return m_pNode->GetGizmo(); }
	void Place( GizmoMode_t eMode, const Vector &vPosition, const QAngle &angles = QAngle(), int nSpace = 1 )
	{
		GizmoFrame_t frame;
		frame.m_nCoordinateSpace = nSpace;
		frame.m_vPosition = frame.m_vPivot = vPosition;
		frame.m_LocalOrientation = GizmoMatrix_t::FromAngles( angles, Vector() );
		frame.m_vBoundsMinWorld = frame.m_vBoundsMinLocal = Vector( -10, -10, -10 );
		frame.m_vBoundsMaxWorld = frame.m_vBoundsMaxLocal = Vector( 10, 10, 10 );
		Gizmo().SetMode( eMode, frame );
	}
	int PartAt( const ToolSceneView_t &view, const Vector &vPoint ) { return m_pNode->FindPart( view, RayAt( view, vPoint ) ); }
	float Length_( const ToolSceneView_t &view ) { return Gizmo().GetHelper()->GetDrawnLength( view ); }
	// A drag from one world point's pixel to another's.
	void Drag( const ToolSceneView_t &view, const Vector &vFrom, const Vector &vTo )
	{
		Gizmo().OnHover( view, PartAt( view, vFrom ) );
		Gizmo().BeginDrag( &view, RayAt( view, vFrom ) );
		Gizmo().ContinueDrag( &view, RayAt( view, vTo ) );
	}

	CToolScene m_Scene;
	std::unique_ptr<CToolSceneGizmoLibGizmo> m_pNode;
	CRecordingListener m_Listener;
	CGizmoGridSnapper m_Snapper;
};
} // namespace

TEST_F( GizmoTest, EachHandleIsFoundUnderItsPictureAndNothingElsewhere )
{
	const ToolSceneView_t view = MakeCamera( Vector( 300, 200, 150 ) );
	const float D = Length_( view );
	ASSERT_GT( D, 0.0f );
	struct Case_t
	{
		Vector m_vPoint;
		int m_nPart;
	} cases[] = {
		{ Vector( 0.4f * D, 0, 0 ), GIZMO_PART_X },
		{ Vector( 0, 0.4f * D, 0 ), GIZMO_PART_Y },
		{ Vector( 0, 0, 0.4f * D ), GIZMO_PART_Z },
		{ Vector( 0.62f * D, 0.62f * D, 0 ), GIZMO_PART_XY },
		{ Vector( 0, 0.62f * D, 0.62f * D ), GIZMO_PART_YZ },
		{ Vector( 0.62f * D, 0, 0.62f * D ), GIZMO_PART_XZ },
		{ Vector(), GIZMO_PART_CENTER },
		{ Vector( -D, -D, 0 ), GIZMO_PART_NONE },
	};
	for ( const Case_t &c : cases )
		EXPECT_EQ( PartAt( view, c.m_vPoint ), c.m_nPart ) << c.m_vPoint.x << " " << c.m_vPoint.y << " " << c.m_vPoint.z;

	// The rotate gizmo: each ring, and the trackball inside them.
	Place( GIZMO_MODE_ROTATE, Vector() );
	EXPECT_EQ( PartAt( view, Vector( 0, D * std::cos( 0.7f ), D * std::sin( 0.7f ) ) ), GIZMO_PART_X );
	EXPECT_EQ( PartAt( view, Vector( D * std::cos( 0.7f ), 0, D * std::sin( 0.7f ) ) ), GIZMO_PART_Y );
	EXPECT_EQ( PartAt( view, Vector( D * std::cos( 0.7f ), D * std::sin( 0.7f ), 0 ) ), GIZMO_PART_Z );
	EXPECT_EQ( PartAt( view, Vector( 0.1f * D, -0.2f * D, 0.05f * D ) ), GIZMO_PART_TRACKBALL );
}

TEST_F( GizmoTest, TheGizmoKeepsItsSizeOnScreenAndTheSizeCommandsStopAtTheirLimits )
{
	float x0, y0, x1, y1;
	for ( float flDistance : { 100.0f, 1000.0f } )
	{
		const ToolSceneView_t view = MakeCamera( Vector( 0, -flDistance, 0 ) );
		const float D = Length_( view );
		ASSERT_TRUE( view.WorldToScreen( Vector(), &x0, &y0 ) );
		ASSERT_TRUE( view.WorldToScreen( Vector( D, 0, 0 ), &x1, &y1 ) );
		EXPECT_NEAR( std::fabs( x1 - x0 ), 80.0f, 0.5f ) << "at " << flDistance;
	}
	for ( int i = 0; i < 20; ++i )
		m_pNode->IncreaseSize();
	EXPECT_FLOAT_EQ( brakel_gizmo_axis_length.GetFloat(), 400.0f );
	for ( int i = 0; i < 20; ++i )
		m_pNode->DecreaseSize();
	EXPECT_FLOAT_EQ( brakel_gizmo_axis_length.GetFloat(), 10.0f );
	brakel_gizmo_axis_length.SetValue( 5000.0f );
	EXPECT_FLOAT_EQ( GizmoAxisLengthPixels(), 400.0f ) << "a length set by hand is held to the limit when drawn";
}

TEST_F( GizmoTest, AnAxisPointingAtTheCameraCannotBeGrabbedNorItsPlanes )
{
	const ToolSceneView_t view = MakeCamera( Vector( 500, 0, 0 ) );
	CTranslateGizmoRenderData renderData;
	CGizmoHitList hits;
	renderData.Build( *Gizmo().GetHelper(), view, true, nullptr, &hits );
	const uint64_t nActive = renderData.GetActiveParts();
	for ( int nPart : { GIZMO_PART_X, GIZMO_PART_XY, GIZMO_PART_XZ } )
		EXPECT_FALSE( nActive & GizmoPartBit( nPart ) ) << nPart;
	for ( int nPart : { GIZMO_PART_Y, GIZMO_PART_Z, GIZMO_PART_YZ, GIZMO_PART_CENTER } )
		EXPECT_TRUE( nActive & GizmoPartBit( nPart ) ) << nPart;
	for ( int i = 0; i < hits.GetCount(); ++i )
		EXPECT_NE( hits.Get( i ).m_nPart, GIZMO_PART_X );
	EXPECT_EQ( PartAt( view, Vector() ), GIZMO_PART_CENTER );
}

TEST_F( GizmoTest, DraggingAnAxisMovesAlongItOnlyAndAPlaneStaysInIt )
{
	const ToolSceneView_t view = MakeCamera( Vector( 300, 200, 150 ) );
	const float D = Length_( view );
	Drag( view, Vector( 0.4f * D, 0, 0 ), Vector( 0.4f * D + 25.0f, 0, 0 ) );
	ASSERT_EQ( m_Listener.m_nBegins, 1 );
	ASSERT_EQ( m_Listener.m_nDrags, 1 );
	EXPECT_EQ( m_Listener.m_Last.m_nPart, GIZMO_PART_X );
	EXPECT_NEAR( m_Listener.m_Last.m_vTranslation.x, 25.0f, 0.05f );
	// The pointer wandering off the axis moves along it all the same.
	Gizmo().ContinueDrag( &view, RayAt( view, Vector( 0.4f * D + 25.0f, 9.0f, -6.0f ) ) );
	EXPECT_NEAR( m_Listener.m_Last.m_vTranslation.y, 0.0f, 1e-4f );
	EXPECT_NEAR( m_Listener.m_Last.m_vTranslation.z, 0.0f, 1e-4f );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_Transform.GetOrigin().x, m_Listener.m_Last.m_vTranslation.x ) << "a translation's last column is the offset";
	Gizmo().EndDrag( &view );
	EXPECT_EQ( m_Listener.m_nEnds, 1 );
	EXPECT_EQ( m_Listener.m_nFinished, 1 );
	EXPECT_TRUE( m_Listener.m_Last.m_nFlags & GIZMO_DRAG_WORLD_SPACE );
	EXPECT_FALSE( Gizmo().IsDragging() );

	Drag( view, Vector( 0.62f * D, 0.62f * D, 0 ), Vector( 0.62f * D + 10.0f, 0.62f * D - 7.0f, 0 ) );
	EXPECT_EQ( m_Listener.m_Last.m_nPart, GIZMO_PART_XY );
	EXPECT_NEAR( m_Listener.m_Last.m_vTranslation.x, 10.0f, 0.5f );
	EXPECT_NEAR( m_Listener.m_Last.m_vTranslation.y, -7.0f, 0.5f );
	EXPECT_NEAR( m_Listener.m_Last.m_vTranslation.z, 0.0f, 1e-4f );
	Gizmo().EndDrag( &view );
}

TEST_F( GizmoTest, ANullCameraDoesNothingAndEmptySpaceStartsNoDrag )
{
	const ToolSceneView_t view = MakeCamera( Vector( 300, 200, 150 ) );
	Gizmo().BeginDrag( nullptr, RayAt( view, Vector() ) );
	Gizmo().BeginDrag( &view, RayAtPixel( view, 5.0f, 5.0f ) );
	EXPECT_FALSE( Gizmo().IsDragging() );
	Gizmo().ContinueDrag( &view, RayAt( view, Vector( 10, 0, 0 ) ) );
	Gizmo().EndDrag( &view );
	EXPECT_EQ( m_Listener.m_nBegins + m_Listener.m_nDrags + m_Listener.m_nEnds, 0 );
}

TEST_F( GizmoTest, GridSnapPutsTheMoveOnTheOffsetGridAndRecordsWhatItTookOff )
{
	m_Snapper.SetGridSnap( true );
	m_Snapper.SetGridSize( 10.0f );
	m_Snapper.SetGridOffset( Vector( 3, 0, 0 ) );
	Vector vSnapped;
	ASSERT_EQ( m_Snapper.SnapPoint( Vector( 17.2f, -4.9f, 5.1f ), &vSnapped ), 1 );
	EXPECT_FLOAT_EQ( vSnapped.x, 13.0f );
	EXPECT_FLOAT_EQ( vSnapped.y, 0.0f );
	EXPECT_FLOAT_EQ( vSnapped.z, 10.0f );

	const ToolSceneView_t view = MakeCamera( Vector( 300, 200, 150 ) );
	const float D = Length_( view );
	Drag( view, Vector( 0.4f * D, 0, 0 ), Vector( 0.4f * D + 17.2f, 0, 0 ) );
	// From 0, 17.2 along X lands on the grid line at 13 (3 + 10); y and z stay.
	EXPECT_NEAR( m_Listener.m_Last.m_vTranslation.x, 13.0f, 1e-3f );
	EXPECT_NEAR( m_Listener.m_Last.m_vTranslation.y, 0.0f, 1e-4f );
	EXPECT_NEAR( m_Listener.m_Last.m_vSnapOffset.x, 4.2f, 0.3f );
	Gizmo().EndDrag( &view );

	// Without the grid the same drag is exact and records no snap.
	m_Snapper.SetGridSnap( false );
	Drag( view, Vector( 0.4f * D, 0, 0 ), Vector( 0.4f * D + 17.2f, 0, 0 ) );
	EXPECT_NEAR( m_Listener.m_Last.m_vTranslation.x, 17.2f, 0.3f );
	EXPECT_EQ( m_Listener.m_Last.m_vSnapOffset, Vector() );
	Gizmo().EndDrag( &view );
}

TEST_F( GizmoTest, RingAnglesUnwrapPastHalfATurnWithoutAJump )
{
	// Unwrapping alone, a quarter turn at a time, both ways from a start of 10 degrees.
	float a = 0.0f;
	for ( float r : { 100.0f, 190.0f, 280.0f, 5.0f, 95.0f } )
		a = CRotateGizmoHelper::UnwrapAngle( r, 10.0f, a );
	EXPECT_FLOAT_EQ( a, 85.0f ) << "a whole turn and a quarter, within one turn";
	a = 0.0f;
	for ( float r : { 300.0f, 200.0f, 150.0f } )
		a = CRotateGizmoHelper::UnwrapAngle( r, 10.0f, a );
	EXPECT_FLOAT_EQ( a, -220.0f );

	// A real drag round the Z ring seen from above: the angle grows past 180 to 270.
	Place( GIZMO_MODE_ROTATE, Vector() );
	const ToolSceneView_t view = MakeCamera( Vector( 1, 0, 500 ) );
	const float D = Length_( view );
	auto ringPoint = [ D ]( float flDegrees ) { return Vector( D * std::cos( DegToRad( flDegrees ) ), D * std::sin( DegToRad( flDegrees ) ), 0 ); };
	Gizmo().OnHover( view, PartAt( view, ringPoint( 30 ) ) );
	Gizmo().BeginDrag( &view, RayAt( view, ringPoint( 30 ) ) );
	ASSERT_TRUE( Gizmo().IsDragging() );
	ASSERT_EQ( Gizmo().GetHelper()->GetDragPart(), GIZMO_PART_Z );
	std::vector<float> angles;
	for ( float flDegrees : { 90.0f, 150.0f, 205.0f, 215.0f, 270.0f, 300.0f } )
	{
		Gizmo().ContinueDrag( &view, RayAt( view, ringPoint( flDegrees ) ) );
		angles.push_back( m_Listener.m_Last.m_flAngle );
	}
	EXPECT_NEAR( angles[ 3 ], 185.0f, 0.5f ) << "not -175";
	EXPECT_NEAR( angles.back(), 270.0f, 0.5f );
	for ( size_t i = 1; i < angles.size(); ++i )
		EXPECT_GT( angles[ i ], angles[ i - 1 ] );
	// The record turns the X axis round Z by the angle: 270 degrees.
	const Vector vTurned = m_Listener.m_Last.m_Transform.TransformVector( Vector( 1, 0, 0 ) );
	EXPECT_NEAR( vTurned.x, 0.0f, 1e-3f );
	EXPECT_NEAR( vTurned.y, -1.0f, 1e-3f );
	Gizmo().EndDrag( &view );
	EXPECT_TRUE( m_Listener.m_Last.m_nFlags & GIZMO_DRAG_ROTATION );
}

TEST_F( GizmoTest, ARingSeenEdgeOnTurnsByThePointersMoveAcrossIt )
{
	Place( GIZMO_MODE_ROTATE, Vector() );
	// From the side the Z ring is a line: the drag reads the move across the axis.
	const ToolSceneView_t view = MakeCamera( Vector( 0, -500, 0 ) );
	const float D = Length_( view );
	float flX, flY;
	ASSERT_TRUE( view.WorldToScreen( Vector( D, 0, 0 ), &flX, &flY ) );
	Gizmo().OnHover( view, m_pNode->FindPart( view, RayAtPixel( view, flX, flY ) ) );
	ASSERT_EQ( Gizmo().GetHelper()->GetHoverPart(), GIZMO_PART_Z );
	Gizmo().BeginDrag( &view, RayAtPixel( view, flX, flY ) );
	ASSERT_TRUE( static_cast<CRotateGizmoHelper *>( Gizmo().GetHelper() )->IsEdgeOn() );
	Gizmo().ContinueDrag( &view, RayAtPixel( view, flX - 40.0f, flY ) );
	EXPECT_NEAR( std::fabs( m_Listener.m_Last.m_flAngle ), 20.0f, 0.01f ) << "half a degree a pixel";
	Gizmo().EndDrag( &view );
}

TEST_F( GizmoTest, TheTrackballTurnsAboutTheAxisSquareToTheDrag )
{
	Place( GIZMO_MODE_ROTATE, Vector() );
	const ToolSceneView_t view = MakeCamera( Vector( 0, -500, 0 ) );
	const float D = Length_( view );
	// Clear of the rings: the X ring shows as the vertical line, the Z ring as the level one.
	Drag( view, Vector( 0.2f * D, 0, 0.3f * D ), Vector( 0.5f * D, 0, 0.3f * D ) );
	ASSERT_EQ( m_Listener.m_Last.m_nPart, GIZMO_PART_TRACKBALL );
	EXPECT_GT( m_Listener.m_Last.m_flAngle, 10.0f );
	// Dragging sideways in front turns about the vertical.
	const Vector vTurned = m_Listener.m_Last.m_Transform.TransformVector( Vector( 0, 0, 1 ) );
	EXPECT_NEAR( vTurned.z, 1.0f, 0.05f );
	Gizmo().EndDrag( &view );
}

TEST_F( GizmoTest, UniformScaleStopsAtItsLimitsAndAxisScaleFollowsTheDistance )
{
	Place( GIZMO_MODE_SCALE, Vector() );
	const ToolSceneView_t view = MakeCamera( Vector( 300, 200, 150 ) );
	const float D = Length_( view );
	float flX, flY;
	ASSERT_TRUE( view.WorldToScreen( Vector(), &flX, &flY ) );
	Gizmo().OnHover( view, m_pNode->FindPart( view, RayAtPixel( view, flX, flY ) ) );
	Gizmo().BeginDrag( &view, RayAtPixel( view, flX, flY ) );
	ASSERT_EQ( Gizmo().GetHelper()->GetDragPart(), GIZMO_PART_UNIFORM );
	Gizmo().ContinueDrag( &view, RayAtPixel( view, flX + 50.0f, flY ) );
	EXPECT_NEAR( m_Listener.m_Last.m_vScale.x, 1.5f, 1e-4f );
	Gizmo().ContinueDrag( &view, RayAtPixel( view, flX - 5000.0f, flY ) );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vScale.x, 0.001f ) << "never 0 nor below";
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vScale.z, 0.001f );
	Gizmo().EndDrag( &view );

	// Along X: twice as far from the pivot is twice the size, Y and Z stay.
	Drag( view, Vector( 0.3f * D, 0, 0 ), Vector( 0.6f * D, 0, 0 ) );
	ASSERT_EQ( m_Listener.m_Last.m_nPart, GIZMO_PART_X );
	EXPECT_NEAR( m_Listener.m_Last.m_vScale.x, 2.0f, 0.02f );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vScale.y, 1.0f );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vScale.z, 1.0f );
	Gizmo().EndDrag( &view );
}

TEST_F( GizmoTest, TypedValuesMoveTurnAndScaleAndBadOnesReportAndMoveNothing )
{
	CStatusRecorder status;
	// Text that doesn't read as a number: the status says so, nothing moves.
	for ( const char *pBad : { "abc", "1-", "", "2..5", "1 2" } )
	{
		Gizmo().BeginTyping();
		EXPECT_FALSE( Gizmo().ApplyTyped( pBad ) ) << pBad;
		ASSERT_FALSE( status.m_Texts.empty() );
		EXPECT_EQ( status.m_Texts.back(), std::string( "<Bad value> : " ) + pBad );
	}
	EXPECT_EQ( m_Listener.m_nBegins + m_Listener.m_nEnds, 0 );

	// Typed by keys: a '-' after a digit is ignored.
	const ToolSceneView_t view = MakeCamera( Vector( 300, 200, 150 ) );
	Gizmo().OnHover( view, GIZMO_PART_Y );
	Gizmo().BeginTyping();
	for ( char c : std::string( "-12-.5" ) )
		Gizmo().TypeCharacter( c );
	EXPECT_EQ( Gizmo().GetHelper()->GetTypedText(), "-12.5" );
	EXPECT_TRUE( Gizmo().ApplyTyped( nullptr ) );
	EXPECT_EQ( m_Listener.m_nEnds, 1 );
	EXPECT_TRUE( m_Listener.m_Last.m_nFlags & GIZMO_DRAG_TYPED );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vTranslation.y, -12.5f );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vTranslation.x, 0.0f );
	EXPECT_TRUE( Gizmo().GetHelper()->GetTypedText().empty() );

	// Scale: out of range is clamped; two values scale a plane's two axes; no negatives.
	Place( GIZMO_MODE_SCALE, Vector() );
	Gizmo().BeginTyping();
	Gizmo().TypeCharacter( '-' );
	EXPECT_EQ( Gizmo().GetHelper()->GetTypedText(), "" );
	EXPECT_TRUE( Gizmo().ApplyTyped( "0" ) );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vScale.x, 0.001f );
	Gizmo().BeginTyping();
	EXPECT_TRUE( Gizmo().ApplyTyped( "1e9" ) );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vScale.x, 10000.0f );
	Gizmo().OnHover( view, GIZMO_PART_XY );
	Gizmo().BeginTyping();
	EXPECT_TRUE( Gizmo().ApplyTyped( "2x3" ) );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vScale.x, 2.0f );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vScale.y, 3.0f );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vScale.z, 1.0f );

	// Rotate: degrees about the typed axis.
	Place( GIZMO_MODE_ROTATE, Vector() );
	Gizmo().OnHover( view, GIZMO_PART_Z );
	Gizmo().BeginTyping();
	EXPECT_TRUE( Gizmo().ApplyTyped( "90" ) );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vRotation.z, 90.0f );
	EXPECT_NEAR( m_Listener.m_Last.m_Transform.TransformVector( Vector( 1, 0, 0 ) ).y, 1.0f, 1e-5f );
}

TEST_F( GizmoTest, NudgesStepOneUnitOrAGridAndTurnFortyFiveDegrees )
{
	// Looking along +Y: the screen's right is +X, its up is +Z.
	const ToolSceneView_t view = MakeCamera( Vector( 0, -500, 0 ) );
	Gizmo().Nudge( view, 0, GIZMO_MODE_TRANSLATE );
	EXPECT_EQ( m_Listener.m_nBegins, 1 );
	EXPECT_EQ( m_Listener.m_nEnds, 1 );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vTranslation.x, 1.0f );
	Gizmo().Nudge( view, 3, GIZMO_MODE_TRANSLATE );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vTranslation.z, -1.0f );
	m_Snapper.SetGridSnap( true );
	m_Snapper.SetGridSize( 16.0f );
	Gizmo().Nudge( view, 2, GIZMO_MODE_TRANSLATE );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vTranslation.z, 16.0f );

	// A rotate step from the translate gizmo: 45 degrees about the screen's right (X),
	// the position kept.
	Place( GIZMO_MODE_TRANSLATE, Vector( 5, 6, 7 ) );
	Gizmo().Nudge( view, 0, GIZMO_MODE_ROTATE );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_flAngle, 45.0f );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vRotation.x, 45.0f );
	const Vector vKept = m_Listener.m_Last.m_Transform.TransformPoint( Vector( 5, 6, 7 ) );
	EXPECT_NEAR( vKept.x, 5.0f, 1e-4f );
	EXPECT_NEAR( vKept.y, 6.0f, 1e-4f );
	EXPECT_NEAR( vKept.z, 7.0f, 1e-4f );
	EXPECT_EQ( Gizmo().GetMode(), GIZMO_MODE_TRANSLATE ) << "the step doesn't change the mode";
	Gizmo().Nudge( view, 2, GIZMO_MODE_ROTATE );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_flAngle, -45.0f );
	// A scale step from another mode does nothing.
	const int nEnds = m_Listener.m_nEnds;
	Gizmo().Nudge( view, 0, GIZMO_MODE_SCALE );
	EXPECT_EQ( m_Listener.m_nEnds, nEnds );

	// Looking down onto the XY plane, up on the screen leads along +X or +Y, never Z.
	const ToolSceneView_t above = MakeCamera( Vector( -300, 1, 400 ) );
	Gizmo().Nudge( above, 2, GIZMO_MODE_TRANSLATE );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vTranslation.z, 0.0f );
	EXPECT_FLOAT_EQ( m_Listener.m_Last.m_vTranslation.x, 16.0f ) << "away from the eye";
}

TEST_F( GizmoTest, ChangingModeEndsARunningDragAndABadModeKeepsTheHelper )
{
	const ToolSceneView_t view = MakeCamera( Vector( 300, 200, 150 ) );
	const float D = Length_( view );
	Drag( view, Vector( 0.4f * D, 0, 0 ), Vector( 0.4f * D + 5.0f, 0, 0 ) );
	ASSERT_TRUE( Gizmo().IsDragging() );
	GizmoFrame_t frame = Gizmo().GetHelper()->GetFrame();
	Gizmo().SetMode( GIZMO_MODE_ROTATE, frame );
	EXPECT_EQ( m_Listener.m_nEnds, 1 );
	EXPECT_EQ( m_Listener.m_nFinished, 1 );
	EXPECT_FALSE( Gizmo().IsDragging() );
	CBaseGizmoHelper *pRotate = Gizmo().GetHelper();
	Gizmo().SetMode( 7, frame );
	EXPECT_EQ( Gizmo().GetHelper(), pRotate );
	EXPECT_EQ( Gizmo().GetMode(), GIZMO_MODE_ROTATE );
}

TEST_F( GizmoTest, BoxScaleStretchesAFaceAboutTheOppositeOne )
{
	Place( GIZMO_MODE_BOX_SCALE, Vector() );
	const ToolSceneView_t view = MakeCamera( Vector( 300, 200, 150 ) );
	// The +X face handle sits at (10, 0, 0); dragging it to 30 makes the box 40 wide.
	Drag( view, Vector( 10, 0, 0 ), Vector( 30, 0, 0 ) );
	ASSERT_EQ( m_Listener.m_Last.m_nPart, GIZMO_PART_BOX_MAX_X );
	EXPECT_NEAR( m_Listener.m_Last.m_vScale.x, 2.0f, 0.02f );
	const Vector vFace = m_Listener.m_Last.m_Transform.TransformPoint( Vector( 10, 0, 0 ) );
	const Vector vOpposite = m_Listener.m_Last.m_Transform.TransformPoint( Vector( -10, 0, 0 ) );
	EXPECT_NEAR( vFace.x, 30.0f, 0.3f );
	EXPECT_NEAR( vOpposite.x, -10.0f, 1e-3f );
	// Both constructions of the matrix agree.
	toolscene_gizmo_algorithm.SetValue( 0 );
	Gizmo().ContinueDrag( &view, RayAt( view, Vector( 30, 0, 0 ) ) );
	EXPECT_NEAR( m_Listener.m_Last.m_Transform.TransformPoint( Vector( 10, 0, 0 ) ).x, 30.0f, 0.3f );
	toolscene_gizmo_algorithm.Revert();
	Gizmo().EndDrag( &view );
	EXPECT_TRUE( m_Listener.m_Last.m_nFlags & GIZMO_DRAG_BOX_SCALE );
}
