#include "tools/toolscene/basegizmohelper.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "tools/toolscene/igizmolistener.h"
#include "tools/toolscene/gizmoconvars.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"

using namespace ToolSceneMath;

CBaseGizmoHelper::CBaseGizmoHelper( GizmoMode_t eMode, IGizmoOuter *pOuter ) : m_eMode( eMode ), m_pOuter( pOuter ) {}

CBaseGizmoHelper::~CBaseGizmoHelper() = default;

void CBaseGizmoHelper::SetListeners( IGizmoListener *pListener, const IGizmoSnapper *pSnapper )
{
	m_pListener = pListener;
	m_pSnapper = pSnapper;
}

void CBaseGizmoHelper::SetFrame( const GizmoFrame_t &frame )
{
	if ( m_bTyping )
		ClearTyped();
	m_bMoved = !( frame.m_vPosition == frame.m_vPivot );
	m_Frame = frame;
	m_Orientation = frame.m_nCoordinateSpace == 1 ? frame.m_WorldOrientation : frame.m_LocalOrientation;
	m_Orientation.SetOrigin( Vector() );
}

void CBaseGizmoHelper::SetPosition( const Vector &vPosition )
{
	if ( m_bTyping )
		return;
	m_Frame.m_vPosition = vPosition;
	m_bMoved = false;
}

void CBaseGizmoHelper::SetPivotOnly( const Vector &vPivot )
{
	if ( m_bTyping )
		return;
	m_Frame.m_vPivot = vPivot;
	m_bMoved = true;
}

Vector CBaseGizmoHelper::GetAxis( int i ) const
{
	return Normalized( m_Orientation.GetAxis( i ) );
}

void CBaseGizmoHelper::GetBoundsCorners( std::vector<Vector> *pCorners ) const
{
	const GizmoFrame_t &frame = m_Frame;
	const GizmoMatrix_t &orientation = m_Orientation;
	pCorners->clear();
	const bool bWorld = frame.m_nCoordinateSpace == 1;
	const Vector &vMin = bWorld ? frame.m_vBoundsMinWorld : frame.m_vBoundsMinLocal;
	const Vector &vMax = bWorld ? frame.m_vBoundsMaxWorld : frame.m_vBoundsMaxLocal;
	for ( int i = 0; i < 8; ++i )
	{
		Vector vLocal( ( i & 1 ) ? vMax.x : vMin.x, ( i & 2 ) ? vMax.y : vMin.y, ( i & 4 ) ? vMax.z : vMin.z );
		pCorners->push_back( bWorld ? vLocal : orientation.TransformPoint( vLocal ) );
	}
}

// The corner a step away from the one at the position; the first without one there.
static Vector StepBoundsVertex( const std::vector<Vector> &corners, const Vector &vPosition, int nStep )
{
	int nAt = -1;
	for ( int i = 0; i < int( corners.size() ); ++i )
	{
		if ( Length( Sub( corners[ size_t( i ) ], vPosition ) ) < 1e-3f )
			nAt = i;
	}
	const int nNext = nAt < 0 ? 0 : ( nAt + nStep + 8 ) % 8;
	return corners[ size_t( nNext ) ];
}

Vector CBaseGizmoHelper::GetNextBoundsVertex() const
{
	std::vector<Vector> corners;
	GetBoundsCorners( &corners );
	return StepBoundsVertex( corners, m_Frame.m_vPosition, 1 );
}

Vector CBaseGizmoHelper::GetPrevBoundsVertex() const
{
	std::vector<Vector> corners;
	GetBoundsCorners( &corners );
	return StepBoundsVertex( corners, m_Frame.m_vPosition, -1 );
}

void CBaseGizmoHelper::OnHide()
{
	m_nHoverPart = GIZMO_PART_NONE;
}

void CBaseGizmoHelper::Reset( bool bHard )
{
	m_nPart = GIZMO_PART_NONE;
	m_bDragging = false;
	m_Drag.Reset();
	ClearTyped();
	if ( bHard )
	{
		m_nHoverPart = GIZMO_PART_NONE;
		m_nLastPart = GIZMO_PART_NONE;
	}
}

void CBaseGizmoHelper::OnHover( const ToolSceneView_t &, int nPart )
{
	if ( m_bDragging || m_bHoverLocked || nPart == m_nHoverPart )
		return;
	m_nHoverPart = nPart;
	if ( m_pListener )
		m_pListener->OnGizmoPartChanged( nPart );
	if ( m_pOuter )
		m_pOuter->Invalidate();
}

// ---------------------------------------------------------------------------------------
// Drags

void CBaseGizmoHelper::FillStart()
{
	m_Drag.m_vStartPosition = m_Frame.m_vPosition;
	for ( int r = 0; r < 3; ++r )
		for ( int c = 0; c < 3; ++c )
			m_Drag.m_StartOrientation[ r ][ c ] = m_Orientation.m[ r ][ c ];
}

void CBaseGizmoHelper::BeginDrag( const ToolSceneView_t *pCamera, const GizmoRay_t &ray )
{
	if ( !pCamera || m_bDragging )
		return;
	int nPart = m_nHoverPart;
	if ( nPart == GIZMO_PART_NONE && m_pOuter )
		nPart = m_pOuter->FindPart( *pCamera, ray );
	if ( nPart == GIZMO_PART_NONE )
		return;
	ClearTyped();
	m_Drag.Reset();
	m_nPart = nPart;
	m_Drag.m_nPart = nPart;
	FillStart();
	if ( !StartDrag( *pCamera, ray ) )
	{
		m_nPart = GIZMO_PART_NONE;
		m_Drag.Reset();
		return;
	}
	m_nLastPart = nPart;
	if ( m_pListener )
		m_pListener->OnGizmoBegin( GetEndFlags() );
	m_bDragging = true;
	if ( m_pOuter )
		m_pOuter->Invalidate();
}

void CBaseGizmoHelper::ContinueDrag( const ToolSceneView_t *pCamera, const GizmoRay_t &ray )
{
	if ( !pCamera || !m_bDragging || m_nPart == GIZMO_PART_NONE )
		return;
	StepDrag( *pCamera, ray );
	if ( m_pListener )
		m_pListener->OnGizmoDrag( m_Drag );
	if ( m_pOuter )
		m_pOuter->Invalidate();
}

void CBaseGizmoHelper::EndDrag( const ToolSceneView_t *pCamera )
{
	if ( !pCamera )
		return;
	if ( !m_bDragging )
	{
		m_nPart = GIZMO_PART_NONE;
		return;
	}
	m_bDragging = false;
	FinishDrag( *pCamera );
	m_Drag.m_nFlags |= GetEndFlags();
	if ( m_pListener )
		m_pListener->OnGizmoEnd( m_Drag );
	m_Drag.Reset();
	m_nPart = GIZMO_PART_NONE;
	if ( m_pListener )
		m_pListener->OnGizmoFinished();
	if ( m_pOuter )
		m_pOuter->Invalidate();
}

Vector CBaseGizmoHelper::PlaneHit( const ToolSceneView_t &camera, const GizmoRay_t &ray, const Vector &vNormal, const Vector &vPoint )
{
	const float flDistance = Dot( vNormal, vPoint );
	const float flDenominator = Dot( vNormal, ray.m_vDirection );
	float t = std::fabs( flDenominator ) > 1e-8f ? ( flDistance - Dot( vNormal, ray.m_vOrigin ) ) / flDenominator : -1.0f;
	if ( t < 0.0f )
		t = 1.0f;
	Vector vHit = Add( ray.m_vOrigin, Scale( ray.m_vDirection, t ) );
	const Vector vFromEye = Sub( vHit, camera.m_vEye );
	const float flFromEye = Length( vFromEye );
	if ( flFromEye > camera.m_flFar )
		vHit = Add( camera.m_vEye, Scale( vFromEye, camera.m_flFar * 0.95f / flFromEye ) );
	return vHit;
}

float CBaseGizmoHelper::WorldLengthOfPixels( const ToolSceneView_t &camera, const Vector &vCentre, float flPixels )
{
	// A centre behind the view plane is reflected to the front: the gizmo keeps a size.
	float flDepth = std::fabs( Dot( Sub( vCentre, camera.m_vEye ), camera.m_vForward ) );
	flDepth = std::max( flDepth, camera.m_flNear );
	const float flWorldPerPixel = 2.0f * flDepth * std::tan( DegToRad( camera.m_flFovY ) * 0.5f ) / float( std::max( camera.m_nHeight, 1 ) );
	return flPixels * flWorldPerPixel;
}

float CBaseGizmoHelper::GetDrawnLength( const ToolSceneView_t &camera ) const
{
	return WorldLengthOfPixels( camera, m_Frame.m_vPosition, GizmoAxisLengthPixels() );
}

Vector CBaseGizmoHelper::ChooseDragPlaneNormal( const ToolSceneView_t &camera, const GizmoRay_t &ray, int nPart ) const
{
	if ( GizmoIsAxisPart( nPart ) )
	{
		const int nAxis = GizmoAxisIndex( nPart );
		const Vector vA = GetAxis( ( nAxis + 1 ) % 3 ), vB = GetAxis( ( nAxis + 2 ) % 3 );
		return std::fabs( Dot( vA, ray.m_vDirection ) ) >= std::fabs( Dot( vB, ray.m_vDirection ) ) ? vA : vB;
	}
	if ( GizmoIsPlanePart( nPart ) && GizmoPlaneNormalAxis( nPart ) >= 0 )
		return GetAxis( GizmoPlaneNormalAxis( nPart ) );
	if ( GizmoIsOrthographic( camera ) )
		return Scale( camera.m_vForward, -1.0f );
	// The gizmo's axis that faces the camera best, turned towards it.
	const Vector vToCamera = Normalized( Sub( camera.m_vEye, m_Frame.m_vPosition ) );
	Vector vBest = GetAxis( 0 );
	float flBest = -1.0f;
	for ( int i = 0; i < 3; ++i )
	{
		const float flDot = Dot( GetAxis( i ), vToCamera );
		if ( std::fabs( flDot ) > flBest )
		{
			flBest = std::fabs( flDot );
			vBest = flDot < 0.0f ? Scale( GetAxis( i ), -1.0f ) : GetAxis( i );
		}
	}
	return vBest;
}

// The signed axis of the orientation closest to a direction.
static Vector ClosestSignedAxis( const GizmoMatrix_t &orientation, const Vector &vDirection, int nSkipAxis )
{
	Vector vBest;
	float flBest = -2.0f;
	for ( int i = 0; i < 3; ++i )
	{
		if ( i == nSkipAxis )
			continue;
		const Vector vAxis = Normalized( orientation.GetAxis( i ) );
		for ( float flSign : { 1.0f, -1.0f } )
		{
			const float flDot = Dot( Scale( vAxis, flSign ), vDirection );
			if ( flDot > flBest )
			{
				flBest = flDot;
				vBest = Scale( vAxis, flSign );
			}
		}
	}
	return vBest;
}

void CBaseGizmoHelper::ChooseNudgeAxes( const ToolSceneView_t &camera, Vector *pRight, Vector *pUp ) const
{
	*pRight = ClosestSignedAxis( m_Orientation, camera.m_vRight, -1 );
	*pUp = ClosestSignedAxis( m_Orientation, camera.m_vUp, -1 );
	const Vector vThird = GetAxis( 2 );
	if ( !GizmoIsOrthographic( camera ) && std::fabs( Dot( camera.m_vForward, vThird ) ) > 0.2f )
	{
		// Looking onto the plane of the first two axes: both steps stay in it, "up" being
		// the in-plane axis that leads away from the eye, as it does on the screen.
		*pRight = ClosestSignedAxis( m_Orientation, camera.m_vRight, 2 );
		const int nRightAxis = std::fabs( Dot( *pRight, GetAxis( 0 ) ) ) > 0.5f ? 0 : 1;
		Vector vUpAxis = GetAxis( 1 - nRightAxis );
		Vector vScreenUp = camera.m_vUp;
		if ( std::fabs( Dot( vUpAxis, camera.m_vUp ) ) < 1e-3f )
			vScreenUp = camera.m_vForward;
		*pUp = Dot( vUpAxis, vScreenUp ) < 0.0f ? Scale( vUpAxis, -1.0f ) : vUpAxis;
		if ( Dot( *pRight, camera.m_vRight ) < 0.0f )
			*pRight = Scale( *pRight, -1.0f );
	}
}

void CBaseGizmoHelper::Nudge( const ToolSceneView_t &, int ) {}

void CBaseGizmoHelper::RunOneStep( uint32_t nFlags )
{
	m_Drag.m_nFlags |= nFlags | GetEndFlags();
	if ( m_pListener )
	{
		m_pListener->OnGizmoBegin( m_Drag.m_nFlags );
		m_pListener->OnGizmoEnd( m_Drag );
	}
	m_Drag.Reset();
	if ( m_pListener )
		m_pListener->OnGizmoFinished();
	if ( m_pOuter )
		m_pOuter->Invalidate();
}

// ---------------------------------------------------------------------------------------
// Typed input

void CBaseGizmoHelper::BeginTyping()
{
	int nPart = m_nHoverPart != GIZMO_PART_NONE ? m_nHoverPart : m_nLastPart;
	if ( nPart == GIZMO_PART_NONE )
		nPart = GIZMO_PART_X;
	m_bTyping = true;
	m_nTypedPart = nPart;
	m_TypedText.clear();
}

void CBaseGizmoHelper::TypeCharacter( char c )
{
	if ( !m_bTyping || !std::isprint( static_cast<unsigned char>( c ) ) )
		return;
	if ( c == '-' && ( !m_TypedText.empty() || !AllowsNegativeTyped() ) )
		return;
	m_TypedText.push_back( c );
}

bool CBaseGizmoHelper::ApplyTyped( const char *pText )
{
	const std::string text = pText ? pText : m_TypedText;
	if ( m_nTypedPart == GIZMO_PART_NONE )
		m_nTypedPart = GizmoIsAxisPart( m_nLastPart ) ? m_nLastPart : GIZMO_PART_X;
	m_Drag.Reset();
	m_Drag.m_nPart = m_nTypedPart;
	FillStart();
	const bool bApplied = ApplyTypedText( text );
	if ( bApplied )
	{
		// The next value goes to the same handle unless the pointer picks another.
		m_nLastPart = m_Drag.m_nPart;
		RunOneStep( GIZMO_DRAG_TYPED );
	}
	else
	{
		m_Drag.Reset();
		PublishStatus( GIZMO_BAD_VALUE_PREFIX + text );
	}
	ClearTyped();
	return bApplied;
}

void CBaseGizmoHelper::ClearTyped()
{
	m_bTyping = false;
	m_TypedText.clear();
	m_nTypedPart = GIZMO_PART_NONE;
}

bool CBaseGizmoHelper::IsSnapping() const
{
	return m_pSnapper && m_pSnapper->IsGridSnapOn();
}

float CBaseGizmoHelper::GetSnapSize() const
{
	return m_pSnapper ? m_pSnapper->GetGridSize() : 0.0f;
}

void CBaseGizmoHelper::AxisMarks( int nPart, GizmoMode_t eMode, float axes[ 3 ] )
{
	const uint32_t nMask = GizmoPartAxisMask( nPart, eMode );
	for ( int i = 0; i < 3; ++i )
		axes[ i ] = ( nMask & ( 1u << i ) ) ? 1.0f : 0.0f;
}
