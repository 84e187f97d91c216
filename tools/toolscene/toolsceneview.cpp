#include "tools/toolscene/toolsceneview.h"

#include <cmath>

using namespace ToolSceneMath;

void ToolSceneView_t::LookAt( const Vector &vEye, const Vector &vTarget )
{
	m_vEye = vEye;
	Vector vDir = Sub( vTarget, vEye );
	if ( Length( vDir ) < 1e-4f )
		vDir = Vector( 1.0f, 0.0f, 0.0f );
	AngleVectors( VectorAngles( vDir ), &m_vForward, &m_vRight, &m_vUp );
}

void ToolSceneView_t::Compute()
{
	m_View = ViewMatrix( m_vEye, m_vForward, m_vRight, m_vUp );
	m_Projection = PerspectiveMatrix( m_flFovY, GetAspect(), m_flNear, m_flFar );
	m_ViewProjection = m_Projection * m_View;
}

float ToolSceneView_t::GetHorizontalFov() const
{
	return RadToDeg( 2.0f * std::atan( std::tan( DegToRad( m_flFovY ) * 0.5f ) * GetAspect() ) );
}

bool ToolSceneView_t::WorldToScreen( const Vector &vPoint, float *pX, float *pY ) const
{
	float clip[ 4 ];
	m_ViewProjection.Transform( vPoint, clip );
	if ( !( clip[ 3 ] > 1e-6f ) )
		return false;
	*pX = ( clip[ 0 ] / clip[ 3 ] * 0.5f + 0.5f ) * float( m_nWidth );
	*pY = ( 0.5f - clip[ 1 ] / clip[ 3 ] * 0.5f ) * float( m_nHeight );
	return true;
}

ParticleCamera_t ToolSceneView_t::GetParticleCamera() const
{
	ParticleCamera_t camera;
	camera.m_vPosition = m_vEye;
	camera.m_vForward = m_vForward;
	camera.m_flFovDegrees = GetHorizontalFov();
	return camera;
}
