#include "particleslib/particleeffect.h"

#include <cmath>

#include "core/host/iscenesystem.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/threading/threadrecursivemutex.h"
#include "particleslib/iparticleslibhost.h"
#include "particleslib/particlecollectionbindinginstance.h"
#include "particleslib/particlematrix.h"
#include "particleslib/particlemgr.h"
#include "particleslib/particleproperty.h"

CThreadRecursiveMutex &ParticleEffectCreationMutex()
{
	static CThreadRecursiveMutex s_Mutex( 200 );
	return s_Mutex;
}

// ---------------------------------------------------------------------------------------
// Weak handles

void CParticleEffectHandle::Set( CNewParticleEffect *pEffect )
{
	if ( m_pEffect == pEffect )
		return;
	if ( m_pEffect )
	{
		if ( m_pPrevHandle )
			m_pPrevHandle->m_pNextHandle = m_pNextHandle;
		else
			m_pEffect->m_pFirstHandle = m_pNextHandle;
		if ( m_pNextHandle )
			m_pNextHandle->m_pPrevHandle = m_pPrevHandle;
	}
	m_pNextHandle = m_pPrevHandle = nullptr;
	m_pEffect = pEffect;
	if ( m_pEffect )
	{
		m_pNextHandle = m_pEffect->m_pFirstHandle;
		if ( m_pNextHandle )
			m_pNextHandle->m_pPrevHandle = this;
		m_pEffect->m_pFirstHandle = this;
	}
}

// ---------------------------------------------------------------------------------------
// Life

CNewParticleEffect::CNewParticleEffect( IParticleEntity *pOwner, const ParticleDefinitionPtr_t &pDefinition, CParticleMgr *pMgr, const char *pDebugName )
	: m_pDebugName( pDebugName ), m_bDontRemove( false ), m_bRemove( false ), m_bNeedsBBoxUpdate( false ), m_bIsFirstFrame( true ), m_bAutoUpdateBBox( false ),
	  m_bAllocated( true ), m_bSimulate( true ), m_bShouldPerformCullCheck( false ), m_bForceNoDraw( false ), m_bSuppressScreenSpaceEffect( false ),
	  m_bShouldSave( false ), m_bShouldSimulateDuringGamePaused( false ), m_bShouldCheckFoW( true ), m_bIsAsyncCreate( false ), m_bFreezeTransitionActive( false ),
	  m_bFreezeTargetState( false ), m_bCanFreeze( true ), m_hOwner( pOwner ), m_vecAggregationCenter( ParticleNoVector() ), m_pMgr( pMgr ), m_pDefinition( pDefinition )
{
	m_Commands.reserve( 64 );
	IParticleSystemMgr *pHostMgr = GetParticleSystemMgr();
	IParticlesLibHost *pLibHost = m_pMgr ? m_pMgr->GetLibHost() : nullptr;
	if ( pHostMgr && m_pDefinition )
		m_pParticles = pHostMgr->CreateParticleCollection( m_pDefinition, pLibHost ? pLibHost->GetOwnerCollectionSeed( pOwner ) : 0 );
	if ( m_pMgr )
		m_pMgr->AddEffect( this );
	if ( m_pParticles && pLibHost )
	{
		// The collection shows as an object of the owner's world, with the effect's bounds.
		m_pSceneWorld = pLibHost->GetOwnerSceneWorld( pOwner );
		if ( m_pSceneWorld )
			m_pSceneObject = m_pSceneWorld->CreateObject( GetName() );
	}
	if ( m_pDefinition && ParticleDefinitionNeedsBindingInstance( *m_pDefinition ) )
	{
		// The Pulse binding instance is made and attached here once bindings exist.
	}
}

CNewParticleEffect::~CNewParticleEffect()
{
	CThreadRecursiveMutexAutoLock lock( ParticleEffectCreationMutex() );
	m_bAllocated = false;
	if ( m_pMgr )
		m_pMgr->RemoveEffect( this );
	if ( m_pOwningParticleProperty )
		m_pOwningParticleProperty->OnParticleSystemDeleted( this );
	if ( m_pSceneObject )
		m_pSceneWorld->DestroyObject( m_pSceneObject );
	if ( m_pParticles )
	{
		if ( IParticleSystemMgr *pHostMgr = GetParticleSystemMgr() )
			pHostMgr->DestroyParticleCollection( m_pParticles );
		m_pParticles = nullptr;
	}
	m_Commands.clear();
	while ( m_pFirstHandle )
		m_pFirstHandle->Set( nullptr );
}

bool CNewParticleEffect::IsValid() const
{
	return m_pParticles && m_pParticles->IsValid();
}

const char *CNewParticleEffect::GetName() const
{
	return m_pDefinition ? m_pDefinition->m_Name.Get() : "";
}

void CNewParticleEffect::NotifyRemove()
{
	if ( m_bAllocated )
		delete this;
}

int CNewParticleEffect::Release()
{
	int nCount = --m_RefCount;
	if ( nCount <= 0 )
	{
		m_RefCount = 0;
		if ( m_bAllocated && IsFinished() )
			m_bRemove = true;
	}
	return nCount;
}

// ---------------------------------------------------------------------------------------
// Step

void CNewParticleEffect::Update( float )
{
	if ( !m_bRemove && m_pOwningParticleProperty )
		m_pOwningParticleProperty->OnParticleSystemUpdated( this );
}

void CNewParticleEffect::RunQueuedCommands()
{
	// A command may queue more; those wait for the next step.
	std::vector<std::function<void()>> commands;
	commands.swap( m_Commands );
	for ( std::function<void()> &fnCommand : commands )
		fnCommand();
	commands.clear();
	if ( m_Commands.empty() )
		m_Commands.swap( commands );
}

void CNewParticleEffect::Restart()
{
	QueueCommand( [ this ]() {
		if ( m_pParticles )
			m_pParticles->Restart( false, Vector() );
	} );
}

void CNewParticleEffect::StopEmission( bool bInfiniteOnly, bool bRemoveAllParticles, bool bWakeOnStop, bool bPlayEndCap )
{
	QueueCommand( [ this, bInfiniteOnly, bRemoveAllParticles, bWakeOnStop, bPlayEndCap ]() {
		if ( m_pParticles )
			m_pParticles->StopEmission( bInfiniteOnly, bRemoveAllParticles, bWakeOnStop, bPlayEndCap );
	} );
}

bool CNewParticleEffect::HasStarted() const
{
	return m_pParticles && m_pParticles->GetCurrentTime() >= m_pParticles->GetFirstRunTime();
}

bool CNewParticleEffect::IsFinished() const
{
	return !m_pParticles || m_pParticles->IsFinished();
}

static int CountTree( const IParticleCollection *pCollection )
{
	int nCount = 0;
	for ( ; pCollection; pCollection = pCollection->GetNextSibling() )
		nCount += 1 + CountTree( pCollection->GetFirstChild() );
	return nCount;
}

int CNewParticleEffect::CountCollections() const
{
	return m_pParticles ? 1 + CountTree( m_pParticles->GetFirstChild() ) : 0;
}

int CNewParticleEffect::GetGroup() const
{
	return m_pDefinition ? m_pDefinition->m_ManagerTraits.m_nGroupID : 0;
}

bool CNewParticleEffect::RecalculateBounds()
{
	if ( !m_pParticles )
		return false;
	m_pParticles->RecalculateBounds();
	if ( m_pParticles->AreBoundsValid() )
		return true;
	m_pParticles->SetBoundsMin( m_vSortOrigin );
	m_pParticles->SetBoundsMax( m_vSortOrigin );
	return false;
}

static bool DiffersOrNaN( float a, float b )
{
	return !( a == b );
}

void CNewParticleEffect::DetectChanges()
{
	// Only what is drawn has bounds that anyone watches.
	if ( !m_pParticles || m_pParticles->GetRendererCount() == 0 )
		return;
	if ( !m_pParticles->AreBoundsValid() )
	{
		m_LastMin = ParticleNoVector();
		m_LastMax = Vector( -PARTICLE_NO_VECTOR_COMPONENT, -PARTICLE_NO_VECTOR_COMPONENT, -PARTICLE_NO_VECTOR_COMPONENT );
		return;
	}
	Vector vMin = m_pParticles->GetBoundsMin(), vMax = m_pParticles->GetBoundsMax();
	bool bChanged = false;
	for ( int i = 0; i < 3; ++i )
		bChanged = bChanged || DiffersOrNaN( vMin[ i ], m_LastMin[ i ] ) || DiffersOrNaN( vMax[ i ], m_LastMax[ i ] );
	if ( bChanged )
	{
		m_LastMin = vMin;
		m_LastMax = vMax;
		if ( m_pSceneObject )
			m_pSceneObject->SetBounds( vMin, vMax );
	}
}

// ---------------------------------------------------------------------------------------
// Control points

void CNewParticleEffect::SetControlPoint( int nPoint, const Vector &vPosition )
{
	if ( m_pParticles )
		m_pParticles->SetControlPoint( nPoint, vPosition );
	if ( nPoint == 0 )
		m_vSortOrigin = vPosition;
}

void CNewParticleEffect::SetControlPointOrientation( int nPoint, const Vector &vForward, const Vector &vRight, const Vector &vUp )
{
	if ( m_pParticles )
		m_pParticles->SetControlPointOrientation( nPoint, vForward, vRight, vUp );
}

void CNewParticleEffect::SetControlPointEntity( int, IParticleEntity * )
{
	// The runtime's collections take positions, not entities: the property's records say
	// what each point follows and apply it every step.
}

void CNewParticleEffect::SetDrawOnlyForSplitScreenUser( int nUser )
{
	if ( nUser == m_nSplitScreenUser )
		return;
	m_nSplitScreenUser = nUser;
}

void CNewParticleEffect::SetMaxDetailLevel( int nLevel )
{
	if ( m_pParticles )
		m_pParticles->SetMaxDetailLevel( nLevel );
}

// ---------------------------------------------------------------------------------------
// Replacement

void CNewParticleEffect::MoveHandlesTo( CNewParticleEffect *pOther )
{
	while ( m_pFirstHandle )
		m_pFirstHandle->Set( pOther );
}

CNewParticleEffect *CNewParticleEffect::ReplaceWith( const ParticleDefinitionPtr_t &pDefinition )
{
	StopEmission( false, true, true, false );
	if ( !pDefinition )
		return nullptr;
	CThreadRecursiveMutexAutoLock lock( ParticleEffectCreationMutex() );
	auto *pNew = new CNewParticleEffect( m_hOwner, pDefinition, m_pMgr, pDefinition->m_Name.Get() );
	pNew->m_bAllocated = true;
	if ( m_pParticles && pNew->m_pParticles )
	{
		for ( int nPoint = 0; nPoint < MAX_PARTICLE_CONTROL_POINTS; ++nPoint )
		{
			if ( !m_pParticles->IsControlPointSet( nPoint ) )
				continue;
			Vector vForward, vRight, vUp;
			m_pParticles->GetControlPointOrientation( nPoint, &vForward, &vRight, &vUp );
			pNew->SetControlPoint( nPoint, m_pParticles->GetControlPointPosition( nPoint ) );
			pNew->SetControlPointOrientation( nPoint, vForward, vRight, vUp );
		}
	}
	if ( m_pOwningParticleProperty )
		m_pOwningParticleProperty->ReplaceEffect( this, pNew );
	MoveHandlesTo( pNew );
	m_bRemove = true;
	return pNew;
}
