#include "tools/toolscene/toolsceneparticlesystem.h"

#include "core/containers/utlvector.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/platform/platformtime.h"
#include "tools/toolscene/itoolsceneparticlelistener.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/toolscenemath.h"
#include "core/particles/particlesystemresource.h"

using namespace ToolSceneMath;

// Bounds widen for this long after the first look, then stand, so the camera settles.
static constexpr float BOUNDS_SETTLE_SECONDS = 3.0f;
// The node reports its box shrunk about its centre to this share.
static constexpr float BOUNDS_REPORT_SCALE = 0.8f;
static constexpr float NO_EFFECT_BOUNDS = 1000.0f;

CToolSceneParticleSystem::CToolSceneParticleSystem( CToolScene *pScene )
	: CToolSceneNode( pScene ), m_Property( pScene ? &pScene->GetParticleMgr() : nullptr, this )
{
}

CToolSceneParticleSystem::~CToolSceneParticleSystem()
{
	m_hEffect.Set( nullptr );
	m_Property.StopAll();
}

void CToolSceneParticleSystem::SetDefinition( const ParticleDefinitionPtr_t &pDefinition )
{
	m_hResource.Reset();
	m_pDefinition = pDefinition;
	ResetRunningBounds();
	Restart();
}

void CToolSceneParticleSystem::SetDefinitionResource( const CResourceHandle &hResource )
{
	if ( hResource == m_hResource && m_pDefinition )
		return;
	m_hResource = hResource;
	m_pDefinition = nullptr;
	ResetRunningBounds();
	TakeResourceDefinition();
	Restart();
}

void CToolSceneParticleSystem::TakeResourceDefinition()
{
	if ( !m_hResource )
		return;
	m_nResourceVersion = m_hResource->GetDataVersion();
	// A resource that doesn't hold a compiled system (yet) leaves the last good one running.
	if ( auto pData = m_hResource->GetDataAs<CParticleSystemResourceData>() )
	{
		if ( pData->GetDefinition() )
			m_pDefinition = pData->GetDefinition();
	}
}

IParticleCollection *CToolSceneParticleSystem::GetCollection() const
{
	return m_hEffect ? m_hEffect->m_pParticles : nullptr;
}

bool CToolSceneParticleSystem::IsEnded() const
{
	return !m_hEffect || m_hEffect->IsFinished();
}

void CToolSceneParticleSystem::Restart()
{
	if ( CNewParticleEffect *pOld = m_hEffect.Get() )
	{
		m_hEffect.Set( nullptr );
		if ( m_Property.FindEffect( pOld ) >= 0 )
			m_Property.StopParticlesImmediately( pOld );
		else
		{
			// Already let go by a stop: it goes with its particles all the same.
			pOld->StopEmission( false, true, false, false );
			pOld->m_bRemove = true;
		}
	}
	m_flFinishTime = -1.0;
	m_bForcedStopSent = false;
	if ( !m_pDefinition )
		return;
	CNewParticleEffect *pEffect = m_Property.Create( m_pDefinition, PATTACH_ABSORIGIN_FOLLOW );
	m_hEffect.Set( pEffect );
	if ( pEffect )
	{
		// The preview keeps a finished effect to look at; the restart rules replace it.
		pEffect->m_bDontRemove = true;
		if ( m_bApplyDefaultControlPoints )
			ApplyDefaultControlPoints();
		ApplyControlPointOverrides();
		pEffect->SetMaxDetailLevel( m_nDetailLevel );
		ApplyCameras();
	}
	++m_nRestartCount;
	if ( m_pListener )
		m_pListener->OnParticleSystemRestarted( this );
}

void CToolSceneParticleSystem::Stop( bool bPlayEndCap )
{
	if ( m_hEffect )
		m_hEffect->StopEmission( false, false, false, bPlayEndCap );
	m_bAutoRestart = false;
}

void CToolSceneParticleSystem::Update( float )
{
	// A recompile publishes new data on the same resource: run it from the start. A failed
	// compile publishes nothing, so the last good definition keeps running.
	if ( m_hResource && m_hResource->GetDataVersion() != m_nResourceVersion )
	{
		ParticleDefinitionPtr_t pPrevious = m_pDefinition;
		TakeResourceDefinition();
		if ( m_pDefinition != pPrevious )
			Restart();
	}
	UpdateRunningBounds();

	if ( m_hEffect && m_hEffect->m_pParticles && m_flForcedRestartTime > 0.0f )
	{
		// The collection's own age decides, whatever the scene's clock says.
		if ( m_hEffect->m_pParticles->GetCurrentTime() > m_flForcedRestartTime )
		{
			if ( !m_bForcedStopSent )
			{
				m_Property.StopEmission( nullptr, true, false, !m_bForcedRestartEndcap, m_bForcedRestartEndcap );
				m_bForcedStopSent = true;
			}
			if ( m_hEffect->IsFinished() )
				Restart();
			return;
		}
	}
	if ( m_bAutoRestart && m_pDefinition && IsEnded() )
	{
		if ( m_flFinishTime < 0.0 )
			m_flFinishTime = Plat_FloatTime();
		if ( m_flAutoRestartTime <= 0.0f || Plat_FloatTime() > m_flFinishTime + m_flAutoRestartTime )
			Restart();
	}
	if ( m_hEffect && m_hEffect->m_pParticles )
	{
		m_hEffect->SetMaxDetailLevel( m_nDetailLevel );
		ApplyCameras();
	}
}

void CToolSceneParticleSystem::ApplyCameras()
{
	IParticleCollection *pCollection = GetCollection();
	// The node's own cameras, else those of the view that shows the scene.
	const std::vector<ParticleCamera_t> &cameras = !m_Cameras.empty() || !m_pScene ? m_Cameras : m_pScene->GetParticleCameras();
	if ( !pCollection )
		return;
	if ( cameras.empty() )
	{
		if ( pCollection->GetCameraCount() > 0 )
			pCollection->ClearCameras();
	}
	else
		pCollection->SetCameras( cameras.data(), int( cameras.size() ) );
}

// ---------------------------------------------------------------------------------------
// Control points

void CToolSceneParticleSystem::SetControlPoint( int nPoint, const Vector &vPosition )
{
	if ( nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return;
	m_ControlPoints[ nPoint ].m_bPosition = true;
	m_ControlPoints[ nPoint ].m_vPosition = vPosition;
	ApplyControlPointOverrides();
}

void CToolSceneParticleSystem::SetControlPointOrientation( int nPoint, const Vector &vForward, const Vector &vRight, const Vector &vUp )
{
	if ( nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return;
	ControlPointOverride_t &point = m_ControlPoints[ nPoint ];
	point.m_bOrientation = true;
	point.m_vForward = vForward;
	point.m_vRight = vRight;
	point.m_vUp = vUp;
	ApplyControlPointOverrides();
}

void CToolSceneParticleSystem::SetControlPointAttachment( int nPoint, IParticleEntity *pEntity, ParticleAttachment_t nAttachType, int nAttachment, const Vector &vOffset,
	const QAngle &angOffset )
{
	if ( nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return;
	ControlPointOverride_t &point = m_ControlPoints[ nPoint ];
	point = ControlPointOverride_t();
	point.m_pEntity = pEntity;
	point.m_nAttachType = nAttachType;
	point.m_nAttachment = nAttachment;
	point.m_vOffset = vOffset;
	point.m_angOffset = angOffset;
	ApplyControlPointOverrides();
}

void CToolSceneParticleSystem::ClearControlPoint( int nPoint )
{
	if ( nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return;
	const bool bWasSet = m_ControlPoints[ nPoint ].m_pEntity || m_ControlPoints[ nPoint ].m_bPosition || m_ControlPoints[ nPoint ].m_bOrientation;
	m_ControlPoints[ nPoint ] = ControlPointOverride_t();
	if ( bWasSet && nPoint == 0 && m_hEffect )
		m_Property.AddControlPoint( m_hEffect.Get(), 0, this, PATTACH_ABSORIGIN_FOLLOW );
}

void CToolSceneParticleSystem::ClearControlPoints()
{
	for ( int nPoint = 0; nPoint < MAX_PARTICLE_CONTROL_POINTS; ++nPoint )
		ClearControlPoint( nPoint );
}

void CToolSceneParticleSystem::ApplyControlPointOverrides()
{
	if ( !m_hEffect )
		return;
	for ( int nPoint = 0; nPoint < MAX_PARTICLE_CONTROL_POINTS; ++nPoint )
	{
		const ControlPointOverride_t &point = m_ControlPoints[ nPoint ];
		if ( point.m_pEntity )
		{
			ParticleFrame_t offset = ParticleFrame_t::Translation( point.m_vOffset );
			AngleVectors( point.m_angOffset, &offset.m_vForward, &offset.m_vRight, &offset.m_vUp );
			m_Property.AddControlPoint( m_hEffect.Get(), nPoint, point.m_pEntity, point.m_nAttachType, false, point.m_nAttachment, point.m_vOffset, &offset );
			continue;
		}
		if ( !point.m_bPosition && !point.m_bOrientation )
			continue;
		// A point placed here no longer follows the node.
		m_Property.RemoveControlPoint( m_hEffect.Get(), nPoint );
		if ( point.m_bOrientation )
			m_hEffect->SetControlPointOrientation( nPoint, point.m_vForward, point.m_vRight, point.m_vUp );
		if ( point.m_bPosition )
			m_hEffect->SetControlPoint( nPoint, LocalToWorld( point.m_vPosition ) );
	}
}

void CToolSceneParticleSystem::ApplyDefaultControlPoints()
{
	if ( !m_hEffect || !m_pDefinition )
		return;
	const CParticleDefinitionUsage &usage = m_pDefinition->m_Usage;
	CUtlVector<ParticleParamID_t> keys;
	usage.GetKeys( &keys );
	for ( const ParticleParamID_t &key : keys )
	{
		Vector vOffset;
		if ( key.IsNamed() || key.IsNone() || key.m_nNumber == 0 || usage.IsDriven( key ) || !usage.GetDefaultOffset( key, &vOffset ) )
			continue;
		m_hEffect->SetControlPoint( key.m_nNumber, LocalToWorld( vOffset ) );
	}
}

void CToolSceneParticleSystem::SetCameras( const std::vector<ParticleCamera_t> &cameras )
{
	m_Cameras = cameras;
	ApplyCameras();
}

// ---------------------------------------------------------------------------------------
// Property

void CToolSceneParticleSystem::OnParticleEffectCreated( const char *, CNewParticleEffect * )
{
}

void CToolSceneParticleSystem::OnParticleEffectRemoved( CNewParticleEffect *pEffect, int )
{
	if ( pEffect == m_hEffect.Get() )
		m_hEffect.Set( nullptr );
}

// ---------------------------------------------------------------------------------------
// Bounds and drawing

void CToolSceneParticleSystem::ResetRunningBounds()
{
	m_flFirstBoundsTime = -1.0f;
	m_bHaveRunningBounds = false;
}

void CToolSceneParticleSystem::UpdateRunningBounds()
{
	IParticleCollection *pCollection = GetCollection();
	if ( !pCollection )
		return;
	const float flNow = m_pScene ? m_pScene->GetTime() : 0.0f;
	if ( m_flFirstBoundsTime < 0.0f )
		m_flFirstBoundsTime = flNow;
	if ( flNow - m_flFirstBoundsTime > BOUNDS_SETTLE_SECONDS || !pCollection->AreBoundsValid() )
		return;
	Vector vMin = pCollection->GetBoundsMin(), vMax = pCollection->GetBoundsMax();
	if ( !IsFiniteVector( vMin ) || !IsFiniteVector( vMax ) )
		return;
	float flDiagonal = Length( Sub( vMax, vMin ) );
	if ( !m_bHaveRunningBounds || flDiagonal > Length( Sub( m_vBoundsMax, m_vBoundsMin ) ) )
	{
		m_vBoundsMin = vMin;
		m_vBoundsMax = vMax;
		m_bHaveRunningBounds = true;
	}
}

bool CToolSceneParticleSystem::GetBounds( Vector *pMin, Vector *pMax ) const
{
	// Nothing to run, nothing to frame.
	if ( !m_pDefinition )
		return false;
	if ( !m_hEffect )
	{
		*pMin = Vector( -NO_EFFECT_BOUNDS, -NO_EFFECT_BOUNDS, -NO_EFFECT_BOUNDS );
		*pMax = Vector( NO_EFFECT_BOUNDS, NO_EFFECT_BOUNDS, NO_EFFECT_BOUNDS );
		return true;
	}
	if ( !m_bHaveRunningBounds )
		return false;
	Vector vCenter = Scale( Add( m_vBoundsMin, m_vBoundsMax ), 0.5f );
	Vector vHalf = Scale( Sub( m_vBoundsMax, m_vBoundsMin ), 0.5f * BOUNDS_REPORT_SCALE );
	*pMin = Sub( vCenter, vHalf );
	*pMax = Add( vCenter, vHalf );
	return true;
}

void CToolSceneParticleSystem::AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const
{
	IParticleCollection *pCollection = GetCollection();
	if ( !pCollection )
		return;
	drawList.AddParticles( *pCollection, view );
	if ( !m_bDrawControlPoints )
		return;
	for ( int nPoint = 0; nPoint < MAX_PARTICLE_CONTROL_POINTS; ++nPoint )
	{
		if ( pCollection->IsControlPointSet( nPoint ) )
			drawList.AddControlPointMarker( pCollection->GetControlPointPosition( nPoint ), 6.0f );
	}
}
