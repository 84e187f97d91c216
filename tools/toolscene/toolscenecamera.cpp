#include "tools/toolscene/toolscenecamera.h"

#include <algorithm>

void CToolSceneCamera::LookAt( const Vector &vEye, const Vector &vTarget )
{
	Vector vDir = ToolSceneMath::Sub( vTarget, vEye );
	SetOrigin( vEye );
	SetAngles( ToolSceneMath::VectorAngles( ToolSceneMath::Length( vDir ) > 1e-4f ? vDir : Vector( 1.0f, 0.0f, 0.0f ) ) );
}

ToolSceneView_t CToolSceneCamera::GetView( int nWidth, int nHeight ) const
{
	ToolSceneView_t view;
	GetWorldFrame( &view.m_vEye, &view.m_vForward, &view.m_vRight, &view.m_vUp );
	view.m_flFovY = m_flFovY;
	view.m_nWidth = std::max( nWidth, 1 );
	view.m_nHeight = std::max( nHeight, 1 );
	view.Compute();
	return view;
}
