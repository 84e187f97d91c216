#include "tools/toolscene/toolscenegrid.h"

#include <algorithm>

#include "tools/toolscene/toolscenedrawlist.h"

void CToolSceneGrid::SetSpacing( float flSpacing, int nHalfCount )
{
	m_flSpacing = std::max( flSpacing, 0.01f );
	m_nHalfCount = std::clamp( nHalfCount, 1, 1000 );
}

void CToolSceneGrid::AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t & ) const
{
	const float flExtent = m_flSpacing * float( m_nHalfCount );
	const Vector vOrigin = GetOrigin();
	if ( m_eType == TOOLSCENE_GROUND_PLANE )
	{
		// Two triangles, flat grey: a backdrop, so particles that dip below it stay visible.
		static const float s_Ground[ 4 ] = { 0.28f, 0.28f, 0.3f, 1.0f };
		static const ParticleModelPtr_t s_pPlane =
			CToolSceneDrawList::MakeBuiltInModel( "{ m_Vertices = [ [ -1, -1, 0 ], [ 1, -1, 0 ], [ 1, 1, 0 ], [ -1, 1, 0 ] ] m_Triangles = [ 0, 1, 2, 0, 2, 3 ] }", "ground plane" );
		drawList.AddModel( s_pPlane, vOrigin, Vector( 1, 0, 0 ), Vector( 0, -1, 0 ), Vector( 0, 0, 1 ), flExtent, s_Ground, true );
		return;
	}
	if ( m_eType != TOOLSCENE_GROUND_GRID )
		return;
	static const float s_Minor[ 4 ] = { 0.33f, 0.33f, 0.36f, 1.0f };
	static const float s_Major[ 4 ] = { 0.45f, 0.45f, 0.5f, 1.0f };
	static const float s_XAxis[ 4 ] = { 0.75f, 0.25f, 0.25f, 1.0f };
	static const float s_YAxis[ 4 ] = { 0.25f, 0.7f, 0.25f, 1.0f };
	for ( int i = -m_nHalfCount; i <= m_nHalfCount; ++i )
	{
		float f = float( i ) * m_flSpacing;
		const float *pColorX = i == 0 ? s_XAxis : ( i % 4 == 0 ? s_Major : s_Minor );
		const float *pColorY = i == 0 ? s_YAxis : ( i % 4 == 0 ? s_Major : s_Minor );
		// Lines along x (at y = f) and along y (at x = f); the ones through the origin are the axes.
		drawList.AddBackdropLine( Vector( vOrigin.x - flExtent, vOrigin.y + f, vOrigin.z ), Vector( vOrigin.x + flExtent, vOrigin.y + f, vOrigin.z ), pColorX );
		drawList.AddBackdropLine( Vector( vOrigin.x + f, vOrigin.y - flExtent, vOrigin.z ), Vector( vOrigin.x + f, vOrigin.y + flExtent, vOrigin.z ), pColorY );
	}
}
