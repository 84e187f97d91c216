#include "tools/toolscene/gizmorenderdata.h"

#include <algorithm>
#include <cmath>

#include "core/console/convar.h"
#include "tools/toolscene/basegizmohelper.h"
#include "tools/toolscene/gizmoconvars.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"

using namespace ToolSceneMath;

namespace
{
constexpr int RING_SEGMENTS = 48;
constexpr int CONE_SEGMENTS = 10;
// Lines are easier to grab than they are wide.
constexpr float MIN_HIT_HALF_WIDTH_PIXELS = 5.0f;
constexpr float PLANE_FILL_ALPHA = 0.35f;
const float s_Disabled[ 4 ] = { 128.0f / 255.0f, 128.0f / 255.0f, 128.0f / 255.0f, 128.0f / 255.0f };

float Cross2D( float ax, float ay, float bx, float by )
{
	return ax * by - ay * bx;
}

// Two unit vectors spanning the plane normal to an axis.
void PlaneBasis( const Vector &vAxis, Vector *pU, Vector *pV )
{
	Vector vHelper = std::fabs( vAxis.z ) < 0.9f ? Vector( 0, 0, 1 ) : Vector( 1, 0, 0 );
	*pU = Normalized( Cross( vAxis, vHelper ) );
	*pV = Cross( vAxis, *pU );
}
} // namespace

// ---------------------------------------------------------------------------------------
// Hit list

void CGizmoHitList::AddSegment( int nPart, const Vector &a, const Vector &b, float flHalfWidthPixels, float flBias )
{
	GizmoHitPrimitive_t primitive;
	primitive.m_nPart = nPart;
	primitive.m_Points[ 0 ] = a;
	primitive.m_Points[ 1 ] = b;
	primitive.m_flHalfWidthPixels = flHalfWidthPixels;
	primitive.m_flDistanceBias = flBias;
	m_Primitives.push_back( primitive );
}

void CGizmoHitList::AddTriangle( int nPart, const Vector &a, const Vector &b, const Vector &c, float flBias )
{
	GizmoHitPrimitive_t primitive;
	primitive.m_nPart = nPart;
	primitive.m_bTriangle = true;
	primitive.m_Points[ 0 ] = a;
	primitive.m_Points[ 1 ] = b;
	primitive.m_Points[ 2 ] = c;
	primitive.m_flDistanceBias = flBias;
	m_Primitives.push_back( primitive );
}

int CGizmoHitList::FindPart( const ToolSceneView_t &view, const GizmoRay_t &ray, float *pDistance ) const
{
	float flX, flY;
	if ( !GizmoRayToScreen( view, ray, &flX, &flY ) )
		return GIZMO_PART_NONE;
	int nBest = GIZMO_PART_NONE;
	float flBest = 0.0f;
	for ( const GizmoHitPrimitive_t &primitive : m_Primitives )
	{
		float sx[ 3 ], sy[ 3 ];
		const int nPoints = primitive.m_bTriangle ? 3 : 2;
		bool bOnScreen = true;
		for ( int i = 0; i < nPoints; ++i )
			bOnScreen = bOnScreen && view.WorldToScreen( primitive.m_Points[ i ], &sx[ i ], &sy[ i ] );
		if ( !bOnScreen )
			continue;
		float flDistance = 0.0f;
		if ( primitive.m_bTriangle )
		{
			const float d0 = Cross2D( sx[ 1 ] - sx[ 0 ], sy[ 1 ] - sy[ 0 ], flX - sx[ 0 ], flY - sy[ 0 ] );
			const float d1 = Cross2D( sx[ 2 ] - sx[ 1 ], sy[ 2 ] - sy[ 1 ], flX - sx[ 1 ], flY - sy[ 1 ] );
			const float d2 = Cross2D( sx[ 0 ] - sx[ 2 ], sy[ 0 ] - sy[ 2 ], flX - sx[ 2 ], flY - sy[ 2 ] );
			const bool bNegative = d0 < 0.0f || d1 < 0.0f || d2 < 0.0f;
			const bool bPositive = d0 > 0.0f || d1 > 0.0f || d2 > 0.0f;
			if ( bNegative && bPositive )
				continue;
			const Vector vNormal = Normalized( Cross( Sub( primitive.m_Points[ 1 ], primitive.m_Points[ 0 ] ), Sub( primitive.m_Points[ 2 ], primitive.m_Points[ 0 ] ) ) );
			const float flDenominator = Dot( vNormal, ray.m_vDirection );
			flDistance = std::fabs( flDenominator ) > 1e-6f ? Dot( vNormal, Sub( primitive.m_Points[ 0 ], ray.m_vOrigin ) ) / flDenominator
															: Length( Sub( primitive.m_Points[ 0 ], ray.m_vOrigin ) );
		}
		else
		{
			const float flDx = sx[ 1 ] - sx[ 0 ], flDy = sy[ 1 ] - sy[ 0 ];
			const float flLengthSq = flDx * flDx + flDy * flDy;
			float t = flLengthSq > 1e-6f ? ( ( flX - sx[ 0 ] ) * flDx + ( flY - sy[ 0 ] ) * flDy ) / flLengthSq : 0.0f;
			t = std::clamp( t, 0.0f, 1.0f );
			const float flPx = sx[ 0 ] + flDx * t - flX, flPy = sy[ 0 ] + flDy * t - flY;
			if ( std::sqrt( flPx * flPx + flPy * flPy ) > primitive.m_flHalfWidthPixels )
				continue;
			flDistance = Length( Sub( Lerp( primitive.m_Points[ 0 ], primitive.m_Points[ 1 ], t ), ray.m_vOrigin ) );
		}
		flDistance += primitive.m_flDistanceBias;
		if ( nBest == GIZMO_PART_NONE || flDistance < flBest )
		{
			nBest = primitive.m_nPart;
			flBest = flDistance;
		}
	}
	if ( pDistance )
		*pDistance = flBest;
	return nBest;
}

// ---------------------------------------------------------------------------------------
// Drawing primitives

void CBaseGizmoRenderData::Build( const CBaseGizmoHelper &helper, const ToolSceneView_t &view, bool bEnabled, CToolSceneDrawList *pDrawList, CGizmoHitList *pHits )
{
	m_pView = &view;
	m_pDrawList = pDrawList;
	m_pHits = pHits;
	m_bEnabled = bEnabled;
	m_nHoverPart = helper.GetHoverPart();
	m_nDragPart = helper.GetDragPart();
	m_flWorldPerPixel = CBaseGizmoHelper::WorldLengthOfPixels( view, helper.GetPosition(), 1.0f );
	m_nActiveParts = ~uint64_t( 0 );
	if ( DropsEndOnAxes() )
		DropEndOnAxes( helper, view );
	// While dragging, only the dragged handle and the centre stay.
	if ( m_nDragPart != GIZMO_PART_NONE )
		m_nActiveParts &= GizmoPartBit( m_nDragPart ) | GizmoPartBit( GIZMO_PART_CENTER );
	BuildParts( helper, view, helper.GetDrawnLength( view ) );
	m_pView = nullptr;
	m_pDrawList = nullptr;
	m_pHits = nullptr;
}

void CBaseGizmoRenderData::DropEndOnAxes( const CBaseGizmoHelper &helper, const ToolSceneView_t &view )
{
	const Vector vView = GizmoIsOrthographic( view ) ? view.m_vForward : Normalized( Sub( helper.GetPosition(), view.m_vEye ) );
	// The planes that hold each axis: X in XY and XZ, Y in XY and YZ, Z in YZ and XZ.
	static const int s_Planes[ 3 ][ 2 ] = { { GIZMO_PART_XY, GIZMO_PART_XZ }, { GIZMO_PART_XY, GIZMO_PART_YZ }, { GIZMO_PART_YZ, GIZMO_PART_XZ } };
	for ( int i = 0; i < 3; ++i )
	{
		if ( std::fabs( Dot( helper.GetAxis( i ), vView ) ) > 0.999f )
			m_nActiveParts &= ~( GizmoPartBit( GIZMO_PART_X + i ) | GizmoPartBit( s_Planes[ i ][ 0 ] ) | GizmoPartBit( s_Planes[ i ][ 1 ] ) );
	}
}

void CBaseGizmoRenderData::PartColor( int nPart, int nRole, float rgba[ 4 ] ) const
{
	if ( !m_bEnabled )
	{
		std::copy( s_Disabled, s_Disabled + 4, rgba );
		return;
	}
	GizmoGetColor( nPart != GIZMO_PART_NONE && ( nPart == m_nHoverPart || nPart == m_nDragPart ) ? GIZMO_COLOR_HIGHLIGHT : nRole, rgba );
}

float CBaseGizmoRenderData::LineWidth( int nPart ) const
{
	const float flWidth = brakel_gizmo_line_thickness.GetFloat();
	return nPart != GIZMO_PART_NONE && nPart == m_nHoverPart ? flWidth * brakel_gizmo_axis_scale.GetFloat() : flWidth;
}

void CBaseGizmoRenderData::Line( int nPart, const Vector &a, const Vector &b, const float rgba[ 4 ], float flWidthPixels )
{
	if ( m_pDrawList )
	{
		const Vector vSide = Normalized( Cross( Sub( b, a ), Sub( a, m_pView->m_vEye ) ) );
		const Vector vOffset = Scale( vSide, flWidthPixels * 0.5f * m_flWorldPerPixel );
		const Vector a0 = Sub( a, vOffset ), a1 = Add( a, vOffset ), b0 = Sub( b, vOffset ), b1 = Add( b, vOffset );
		m_pDrawList->AddOverlayTriangle( a0, a1, b1, rgba );
		m_pDrawList->AddOverlayTriangle( a0, b1, b0, rgba );
	}
	if ( m_pHits && nPart != GIZMO_PART_NONE )
		m_pHits->AddSegment( nPart, a, b, std::max( flWidthPixels * 0.5f, MIN_HIT_HALF_WIDTH_PIXELS ) );
}

void CBaseGizmoRenderData::Triangle( int nPart, const Vector &a, const Vector &b, const Vector &c, const float rgba[ 4 ], bool bHittable )
{
	if ( m_pDrawList )
		m_pDrawList->AddOverlayTriangle( a, b, c, rgba );
	if ( m_pHits && bHittable && nPart != GIZMO_PART_NONE )
		m_pHits->AddTriangle( nPart, a, b, c );
}

void CBaseGizmoRenderData::Quad( int nPart, const Vector &a, const Vector &b, const Vector &c, const Vector &d, const float rgba[ 4 ] )
{
	Triangle( nPart, a, b, c, rgba );
	Triangle( nPart, a, c, d, rgba );
}

void CBaseGizmoRenderData::Cone( int nPart, const Vector &vBase, const Vector &vTip, float flRadius, const float rgba[ 4 ] )
{
	Vector u, v;
	PlaneBasis( Normalized( Sub( vTip, vBase ) ), &u, &v );
	for ( int i = 0; i < CONE_SEGMENTS; ++i )
	{
		const float a0 = 2.0f * PI * float( i ) / CONE_SEGMENTS, a1 = 2.0f * PI * float( i + 1 ) / CONE_SEGMENTS;
		const Vector p0 = Add( vBase, Add( Scale( u, std::cos( a0 ) * flRadius ), Scale( v, std::sin( a0 ) * flRadius ) ) );
		const Vector p1 = Add( vBase, Add( Scale( u, std::cos( a1 ) * flRadius ), Scale( v, std::sin( a1 ) * flRadius ) ) );
		Triangle( nPart, p0, p1, vTip, rgba );
		Triangle( nPart, p0, p1, vBase, rgba, false );
	}
}

void CBaseGizmoRenderData::Ring( int nPart, const Vector &vCentre, const Vector &vAxis, float flRadius, const float rgba[ 4 ], float flWidthPixels, float flHitPixels )
{
	Vector u, v;
	PlaneBasis( vAxis, &u, &v );
	Vector vPrevious = Add( vCentre, Scale( u, flRadius ) );
	for ( int i = 1; i <= RING_SEGMENTS; ++i )
	{
		const float a = 2.0f * PI * float( i ) / RING_SEGMENTS;
		const Vector vPoint = Add( vCentre, Add( Scale( u, std::cos( a ) * flRadius ), Scale( v, std::sin( a ) * flRadius ) ) );
		Line( GIZMO_PART_NONE, vPrevious, vPoint, rgba, flWidthPixels );
		if ( m_pHits && nPart != GIZMO_PART_NONE )
			m_pHits->AddSegment( nPart, vPrevious, vPoint, flHitPixels );
		vPrevious = vPoint;
	}
}

void CBaseGizmoRenderData::ScreenSquare( int nPart, const Vector &vCentre, float flHalfPixels, const float rgba[ 4 ], float flBias )
{
	const Vector vRight = Scale( m_pView->m_vRight, flHalfPixels * m_flWorldPerPixel );
	const Vector vUp = Scale( m_pView->m_vUp, flHalfPixels * m_flWorldPerPixel );
	const Vector a = Sub( Sub( vCentre, vRight ), vUp ), b = Sub( Add( vCentre, vRight ), vUp );
	const Vector c = Add( Add( vCentre, vRight ), vUp ), d = Add( Sub( vCentre, vRight ), vUp );
	if ( m_pDrawList )
	{
		m_pDrawList->AddOverlayTriangle( a, b, c, rgba );
		m_pDrawList->AddOverlayTriangle( a, c, d, rgba );
	}
	if ( m_pHits && nPart != GIZMO_PART_NONE )
	{
		m_pHits->AddTriangle( nPart, a, b, c, flBias );
		m_pHits->AddTriangle( nPart, a, c, d, flBias );
	}
}

// ---------------------------------------------------------------------------------------
// Translate: arrows along the axes, squares in the planes, a square at the centre

void CTranslateGizmoRenderData::BuildParts( const CBaseGizmoHelper &helper, const ToolSceneView_t &, float flLength )
{
	const Vector p = helper.GetPosition();
	float rgba[ 4 ];
	static const int s_PlaneAxes[ 3 ][ 2 ] = { { 0, 1 }, { 1, 2 }, { 0, 2 } };
	for ( int i = 0; i < 3; ++i )
	{
		const int nPart = GIZMO_PART_XY + i;
		if ( !IsPartActive( nPart ) )
			continue;
		const Vector a = helper.GetAxis( s_PlaneAxes[ i ][ 0 ] ), b = helper.GetAxis( s_PlaneAxes[ i ][ 1 ] );
		const Vector c0 = Add( p, Add( Scale( a, 0.5f * flLength ), Scale( b, 0.5f * flLength ) ) );
		const Vector c1 = Add( p, Add( Scale( a, 0.75f * flLength ), Scale( b, 0.5f * flLength ) ) );
		const Vector c2 = Add( p, Add( Scale( a, 0.75f * flLength ), Scale( b, 0.75f * flLength ) ) );
		const Vector c3 = Add( p, Add( Scale( a, 0.5f * flLength ), Scale( b, 0.75f * flLength ) ) );
		PartColor( nPart, GIZMO_COLOR_PLANE_FILL, rgba );
		rgba[ 3 ] *= PLANE_FILL_ALPHA;
		Quad( nPart, c0, c1, c2, c3, rgba );
		PartColor( nPart, GIZMO_COLOR_PLANE_EDGE, rgba );
		const float flEdge = LineWidth( GIZMO_PART_NONE ) * 0.5f;
		Line( GIZMO_PART_NONE, c0, c1, rgba, flEdge );
		Line( GIZMO_PART_NONE, c1, c2, rgba, flEdge );
		Line( GIZMO_PART_NONE, c2, c3, rgba, flEdge );
		Line( GIZMO_PART_NONE, c3, c0, rgba, flEdge );
	}
	const float flHead = 0.25f * flLength;
	for ( int i = 0; i < 3; ++i )
	{
		const int nPart = GIZMO_PART_X + i;
		if ( !IsPartActive( nPart ) )
			continue;
		PartColor( nPart, GIZMO_COLOR_X + i, rgba );
		const Vector vBase = Add( p, Scale( helper.GetAxis( i ), flLength - flHead ) );
		Line( nPart, p, vBase, rgba, LineWidth( nPart ) );
		Cone( nPart, vBase, Add( p, Scale( helper.GetAxis( i ), flLength ) ), 0.4f * flHead, rgba );
	}
	if ( IsPartActive( GIZMO_PART_CENTER ) )
	{
		PartColor( GIZMO_PART_CENTER, GIZMO_COLOR_CENTRE, rgba );
		// Over the axes' ends where they meet: the centre wins there.
		ScreenSquare( GIZMO_PART_CENTER, p, 5.0f, rgba, -10.0f * m_flWorldPerPixel );
	}
}

// ---------------------------------------------------------------------------------------
// Rotate: a ring about each axis, the trackball inside

void CRotateGizmoRenderData::BuildParts( const CBaseGizmoHelper &helper, const ToolSceneView_t &view, float flLength )
{
	const Vector p = helper.GetPosition();
	float rgba[ 4 ];
	const float flHit = brakel_gizmo_rot_inflate.GetFloat();
	if ( IsPartActive( GIZMO_PART_TRACKBALL ) )
	{
		PartColor( GIZMO_PART_TRACKBALL, GIZMO_COLOR_TRACKBALL, rgba );
		const Vector vFacing = Normalized( Sub( view.m_vEye, p ) );
		Ring( GIZMO_PART_NONE, p, vFacing, flLength, rgba, LineWidth( GIZMO_PART_TRACKBALL ) * 0.5f, 0.0f );
		// The disc inside the rings: grabbed only where no ring is, since its hits count
		// from behind the rings' sphere.
		if ( m_pHits )
		{
			Vector u, v;
			PlaneBasis( vFacing, &u, &v );
			for ( int i = 0; i < RING_SEGMENTS; ++i )
			{
				const float a0 = 2.0f * PI * float( i ) / RING_SEGMENTS, a1 = 2.0f * PI * float( i + 1 ) / RING_SEGMENTS;
				m_pHits->AddTriangle( GIZMO_PART_TRACKBALL, p, Add( p, Add( Scale( u, std::cos( a0 ) * flLength ), Scale( v, std::sin( a0 ) * flLength ) ) ),
					Add( p, Add( Scale( u, std::cos( a1 ) * flLength ), Scale( v, std::sin( a1 ) * flLength ) ) ), flLength );
			}
		}
	}
	for ( int i = 0; i < 3; ++i )
	{
		const int nPart = GIZMO_PART_X + i;
		if ( !IsPartActive( nPart ) )
			continue;
		PartColor( nPart, GIZMO_COLOR_X + i, rgba );
		Ring( nPart, p, helper.GetAxis( i ), flLength, rgba, LineWidth( nPart ), flHit );
	}
}

// ---------------------------------------------------------------------------------------
// Scale: axes ending in squares, triangles between them, the uniform square at the centre

void CScaleGizmoRenderData::BuildParts( const CBaseGizmoHelper &helper, const ToolSceneView_t &, float flLength )
{
	const Vector p = helper.GetPosition();
	float rgba[ 4 ];
	static const int s_PlaneAxes[ 3 ][ 2 ] = { { 0, 1 }, { 1, 2 }, { 0, 2 } };
	for ( int i = 0; i < 3; ++i )
	{
		const int nPart = GIZMO_PART_XY + i;
		if ( !IsPartActive( nPart ) )
			continue;
		const Vector a = helper.GetAxis( s_PlaneAxes[ i ][ 0 ] ), b = helper.GetAxis( s_PlaneAxes[ i ][ 1 ] );
		PartColor( nPart, GIZMO_COLOR_PLANE_FILL, rgba );
		rgba[ 3 ] *= PLANE_FILL_ALPHA;
		Quad( nPart, Add( p, Scale( a, 0.5f * flLength ) ), Add( p, Scale( a, 0.75f * flLength ) ), Add( p, Scale( b, 0.75f * flLength ) ), Add( p, Scale( b, 0.5f * flLength ) ), rgba );
	}
	for ( int i = 0; i < 3; ++i )
	{
		const int nPart = GIZMO_PART_X + i;
		if ( !IsPartActive( nPart ) )
			continue;
		PartColor( nPart, GIZMO_COLOR_X + i, rgba );
		const Vector vEnd = Add( p, Scale( helper.GetAxis( i ), flLength ) );
		Line( nPart, p, vEnd, rgba, LineWidth( nPart ) );
		ScreenSquare( nPart, vEnd, 4.0f, rgba );
	}
	if ( IsPartActive( GIZMO_PART_UNIFORM ) )
	{
		PartColor( GIZMO_PART_UNIFORM, GIZMO_COLOR_CENTRE, rgba );
		ScreenSquare( GIZMO_PART_UNIFORM, p, 6.0f, rgba, -10.0f * m_flWorldPerPixel );
	}
}

// ---------------------------------------------------------------------------------------
// Box scale: the box's edges and a handle on each face

void CBoxScaleGizmoRenderData::BuildParts( const CBaseGizmoHelper &helper, const ToolSceneView_t &, float )
{
	const GizmoFrame_t &frame = helper.GetFrame();
	const bool bWorld = helper.IsWorldSpace();
	const Vector vMin = bWorld ? frame.m_vBoundsMinWorld : frame.m_vBoundsMinLocal;
	const Vector vMax = bWorld ? frame.m_vBoundsMaxWorld : frame.m_vBoundsMaxLocal;
	const GizmoMatrix_t &orientation = helper.GetOrientation();
	auto corner = [ & ]( int i ) {
		const Vector vLocal( ( i & 1 ) ? vMax.x : vMin.x, ( i & 2 ) ? vMax.y : vMin.y, ( i & 4 ) ? vMax.z : vMin.z );
		return bWorld ? vLocal : orientation.TransformPoint( vLocal );
	};
	float rgba[ 4 ];
	PartColor( GIZMO_PART_NONE, GIZMO_COLOR_TRACKBALL, rgba );
	for ( int i = 0; i < 8; ++i )
		for ( int nBit : { 1, 2, 4 } )
		{
			if ( !( i & nBit ) )
				Line( GIZMO_PART_NONE, corner( i ), corner( i | nBit ), rgba, LineWidth( GIZMO_PART_NONE ) * 0.5f );
		}
	const float flHandle = brakel_gizmo_2dscale.GetFloat() * 2.0f;
	for ( int nAxis = 0; nAxis < 3; ++nAxis )
	{
		for ( int nSide = 0; nSide < 2; ++nSide )
		{
			const int nPart = ( nSide == 0 ? GIZMO_PART_BOX_MAX_X : GIZMO_PART_BOX_MIN_X ) + nAxis;
			if ( m_nDragPart != GIZMO_PART_NONE && m_nDragPart != nPart )
				continue;
			Vector vLocal = Scale( Add( vMin, vMax ), 0.5f );
			vLocal[ nAxis ] = nSide == 0 ? vMax[ nAxis ] : vMin[ nAxis ];
			PartColor( nPart, GIZMO_COLOR_X + nAxis, rgba );
			ScreenSquare( nPart, bWorld ? vLocal : orientation.TransformPoint( vLocal ), flHandle, rgba );
		}
	}
}
