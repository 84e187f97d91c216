#include "tools/toolscene/toolsceneparticlerun.h"

#include <cmath>

#include "core/particles/sim/iparticlecollection.h"

#include "tools/toolscene/bindablecamera.h"
#include "tools/toolscene/toolscenegrid.h"
#include "tools/toolscene/toolsceneparticlesystem.h"

CToolSceneParticleRun::CToolSceneParticleRun( const ParticleDefinitionPtr_t &pDefinition, uint64_t nSeed )
{
	m_pGround = std::make_unique<CToolSceneGrid>( &m_Scene );
	m_pSystem = std::make_unique<CToolSceneParticleSystem>( &m_Scene );
	m_pSystem->SetSeed( nSeed );
	// A headless run shows one run of the system: it ends when the system ends.
	m_pSystem->SetAutoRestart( false );
	m_pSystem->SetDefinition( pDefinition );
}

CToolSceneParticleRun::~CToolSceneParticleRun()
{
	m_pSystem.reset();
	m_pGround.reset();
}

void CToolSceneParticleRun::SetControlPoint( int nPoint, const Vector &vPosition )
{
	m_pSystem->SetControlPoint( nPoint, vPosition );
}

void CToolSceneParticleRun::PinControlPoints()
{
	IParticleCollection *pCollection = GetCollection();
	if ( !pCollection )
		return;
	for ( int nPoint = 0; nPoint < MAX_PARTICLE_CONTROL_POINTS; ++nPoint )
	{
		if ( !pCollection->IsControlPointSet( nPoint ) )
			continue;
		Vector vForward, vRight, vUp;
		pCollection->GetControlPointOrientation( nPoint, &vForward, &vRight, &vUp );
		Vector vPosition = pCollection->GetControlPointPosition( nPoint );
		m_pSystem->SetControlPointOrientation( nPoint, vForward, vRight, vUp );
		m_pSystem->SetControlPoint( nPoint, vPosition );
	}
}

void CToolSceneParticleRun::SetCameras( const std::vector<ParticleCamera_t> &cameras )
{
	m_Scene.SetParticleCameras( cameras );
	m_pSystem->SetCameras( cameras );
}

void CToolSceneParticleRun::Frame( float flDt )
{
	m_Scene.Update( flDt, 1.0f );
	++m_nFrames;
}

void CToolSceneParticleRun::RunFor( double flSeconds, int nFps )
{
	const float flDt = 1.0f / float( nFps );
	const long long nFrames = std::llround( flSeconds * nFps );
	for ( long long i = 0; i < nFrames; ++i )
		Frame( flDt );
}

IParticleCollection *CToolSceneParticleRun::GetCollection() const
{
	return m_pSystem->GetCollection();
}

ToolSceneView_t CToolSceneParticleRun::GetFramingView( int nWidth, int nHeight ) const
{
	CBindableCamera camera;
	Vector vMin, vMax;
	bool bHave = m_Scene.GetBounds( &vMin, &vMax );
	camera.FollowBounds( bHave, vMin, vMax );
	return camera.GetView( nWidth, nHeight );
}
