#include "particleslib/particleproperty.h"

#include <atomic>

#include "core/console/convar.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/particles/sim/particlesimmath.h"
#include "core/platform/dbgassert.h"
#include "core/platform/fatalerror.h"
#include "core/text/strtools.h"
#include "core/threading/threadrecursivemutex.h"
#include "particleslib/iparticleslibhost.h"
#include "particleslib/particleconvars.h"
#include "particleslib/particleeffect.h"
#include "particleslib/particlemgr.h"

static constexpr const char *ERROR_PARTICLE_SYSTEM = "particles/error/error.tfxs";

// Each failing site reports once in the life of the process.
#define PARTICLE_PROPERTY_REPORT_ONCE( ... )                                          \
	do                                                                                \
	{                                                                                 \
		static std::atomic<bool> s_bReported{ false };                                \
		if ( !s_bReported.exchange( true ) )                                          \
			Assert_ConditionFailedFormat( __FILE__, __LINE__, "false", __VA_ARGS__ ); \
	} while ( 0 )

static const char *EffectName( const CNewParticleEffect *pEffect )
{
	return pEffect ? pEffect->GetName() : "";
}

// Types that follow their entity: an effect attached so to another entity than the
// property's owner can't join an aggregation.
static bool IsEntityFollowType( ParticleAttachment_t nType )
{
	switch ( nType )
	{
	case PATTACH_ABSORIGIN_FOLLOW:
	case PATTACH_EYES_FOLLOW:
	case PATTACH_OVERHEAD_FOLLOW:
	case PATTACH_ROOTBONE_FOLLOW:
	case PATTACH_RENDERORIGIN_FOLLOW:
	case PATTACH_CENTER_FOLLOW: return true;
	default: return false;
	}
}

CParticleProperty::~CParticleProperty()
{
	// Effects outlive their property in the manager's list; they just lose it.
	while ( !m_Effects.empty() )
		RemoveEntry( int( m_Effects.size() ) - 1 );
}

IParticleEntity *CParticleProperty::GetOwner() const
{
	return m_pOuter ? m_pOuter->GetParticlePropertyOwner() : nullptr;
}

int CParticleProperty::FindEffect( const CNewParticleEffect *pEffect ) const
{
	for ( size_t i = 0; i < m_Effects.size(); ++i )
	{
		if ( m_Effects[ i ].m_pEffect == pEffect )
			return int( i );
	}
	return -1;
}

void CParticleProperty::RemoveEntry( int nIndex )
{
	CNewParticleEffect *pEffect = m_Effects[ size_t( nIndex ) ].m_pEffect;
	m_Effects.erase( m_Effects.begin() + nIndex );
	if ( !pEffect )
		return;
	pEffect->m_pOwningParticleProperty = nullptr;
	pEffect->m_hOwner = nullptr;
	// Nobody looks at it any more: it goes once it has finished.
	pEffect->m_bDontRemove = false;
	pEffect->Release();
}

// ---------------------------------------------------------------------------------------
// Creation

CNewParticleEffect *CParticleProperty::Create( const ParticleDefinitionPtr_t &pDefinition, ParticleAttachment_t nAttachType, bool bFollow, int nAttachmentIndex )
{
	ParticleEffectCreateParams_t params;
	params.m_pDefinition = pDefinition;
	params.m_nAttachType = nAttachType;
	params.m_bFollow = bFollow;
	params.m_nAttachmentIndex = nAttachmentIndex;
	params.m_pName = pDefinition ? pDefinition->m_Name.Get() : "";
	return Create( params );
}

CNewParticleEffect *CParticleProperty::FindAggregationTarget( const ParticleEffectCreateParams_t &params, const ParticleDefinitionPtr_t &pDefinition )
{
	const ParticleManagerTraits_t &traits = pDefinition->m_ManagerTraits;
	const float flLimit = traits.m_flAggregateRadius * traits.m_flAggregateRadius + 0.1f;
	CNewParticleEffect *pBest = nullptr;
	float flBest = 0.0f;
	IParticleEntity *pOwner = GetOwner();
	for ( ParticleEffectEntry_t &entry : m_Effects )
	{
		CNewParticleEffect *pEffect = entry.m_pEffect;
		if ( !entry.m_bCanAggregate || !pEffect || !pEffect->m_pParticles )
			continue;
		IParticleCollection *pCollection = pEffect->m_pParticles;
		if ( pEffect->GetDefinition() != pDefinition || pCollection->GetParent() || IsParticleNoVector( pEffect->m_vecAggregationCenter ) ||
			 pEffect->m_nSplitScreenUser != params.m_nSplitScreenUser || pEffect->m_hOwner != pOwner )
			continue;
		if ( pCollection->GetAllocatedParticleCount() - pCollection->GetActiveParticleCount( false ) < traits.m_nAggregationMinAvailableParticles )
			continue;
		if ( traits.m_bScreenSpaceEffect )
			return pEffect;
		Vector d = ParticleMath::Sub( params.m_vAggregationPosition, pEffect->m_vecAggregationCenter );
		float flDistSq = ParticleMath::Dot( d, d );
		// The later one wins a tie.
		if ( flDistSq <= flLimit && ( !pBest || flDistSq <= flBest ) )
		{
			pBest = pEffect;
			flBest = flDistSq;
		}
	}
	return pBest;
}

CNewParticleEffect *CParticleProperty::Create( const ParticleEffectCreateParams_t &params )
{
	CThreadRecursiveMutexAutoLock lock( ParticleEffectCreationMutex() );
	IParticlesLibHost *pLibHost = m_pMgr ? m_pMgr->GetLibHost() : nullptr;
	IParticleEntity *pOwner = GetOwner();
	const char *pName = params.m_pName ? params.m_pName : "";

	ParticleDefinitionPtr_t pDefinition = params.m_pDefinition;
	if ( !pDefinition )
	{
		if ( pLibHost )
			pLibHost->ReportUnknownSystem( pName );
		IParticleSystemMgr *pHostMgr = GetParticleSystemMgr();
		pDefinition = pHostMgr ? pHostMgr->FindParticleSystemDefinition( ERROR_PARTICLE_SYSTEM ) : nullptr;
		if ( !pDefinition )
			Plat_FatalError( "Failed to create unknown particle system '%s', and failed to create error particle system \n", pName );
	}
	const ParticleManagerTraits_t &traits = pDefinition->m_ManagerTraits;
	if ( !*pName )
		pName = pDefinition->m_Name.Get();

	// A system too far from every view isn't made at all.
	if ( !traits.m_bScreenSpaceEffect && traits.m_flMaxDrawDistance > 0.0f && pLibHost )
	{
		std::vector<ParticleLibView_t> views;
		std::vector<ParticleViewMatrix_t> matrices;
		if ( pLibHost->GetViews( &views, &matrices ) && !views.empty() )
		{
			Vector vPosition = ParticleMath::Add( pLibHost->GetOwnerPosition( pOwner ), params.m_vOffset );
			const float flLimitSq = traits.m_flMaxDrawDistance * traits.m_flMaxDrawDistance;
			bool bSeen = false;
			for ( const ParticleLibView_t &view : views )
			{
				Vector d = ParticleMath::Sub( view.m_vEye, vPosition );
				bSeen = bSeen || ParticleMath::Dot( d, d ) <= flLimitSq;
			}
			if ( !bSeen )
				return nullptr;
		}
	}

	// Batching: a system of the same name restarts instead of a new one.
	int nBatchMode = cl_particle_batch_mode.GetInt();
	if ( ( nBatchMode == 2 || ( nBatchMode == 1 && traits.m_bShouldBatch ) ) && ( params.m_nAttachType == PATTACH_CUSTOMORIGIN || params.m_nAttachType == PATTACH_INVALID ) )
	{
		for ( ParticleEffectEntry_t &entry : m_Effects )
		{
			if ( entry.m_pEffect && !V_stricmp_fast( entry.m_pEffect->GetName(), pName ) )
			{
				entry.m_pEffect->Restart();
				return entry.m_pEffect;
			}
		}
	}

	bool bCanAggregate = false;
	if ( params.m_nAttachType != PATTACH_CUSTOMORIGIN_FOLLOW && params.m_nAttachType != PATTACH_POINT_FOLLOW )
	{
		bCanAggregate = cl_aggregate_particles.GetBool() && !IsParticleNoVector( params.m_vAggregationPosition ) && traits.m_flAggregateRadius > 0.0f &&
						( !traits.m_bScreenSpaceEffect || pOwner );
	}
	if ( bCanAggregate )
	{
		if ( CNewParticleEffect *pTarget = FindAggregationTarget( params, pDefinition ) )
		{
			Vector vOldCenter = pTarget->m_vecAggregationCenter;
			pTarget->QueueCommand( [ pTarget, vOldCenter ]() {
				if ( pTarget->m_pParticles )
					pTarget->m_pParticles->Restart( true, vOldCenter );
			} );
			pTarget->m_vecAggregationCenter = params.m_vAggregationPosition;
			if ( !traits.m_bScreenSpaceEffect && params.m_nAttachType != PATTACH_INVALID )
				AddControlPoint( pTarget, 0, params.m_nAttachType == PATTACH_WORLDORIGIN ? nullptr : pOwner, params.m_nAttachType, params.m_bFollow,
					params.m_nAttachmentIndex, params.m_vOffset, params.m_pOffsetMatrix );
			int nIndex = FindEffect( pTarget );
			if ( nIndex >= 0 )
				m_Effects[ size_t( nIndex ) ].m_bAggregated = true;
			if ( m_pOuter )
				m_pOuter->OnParticleEffectCreated( pName, pTarget );
			return pTarget;
		}
	}

	auto *pEffect = new CNewParticleEffect( pOwner, pDefinition, m_pMgr, pDefinition->m_Name.Get() );
	pEffect->m_bAllocated = true;
	if ( !pEffect->IsValid() )
	{
		if ( m_pMgr )
			m_pMgr->RemoveEffect( pEffect );
		delete pEffect;
		return nullptr;
	}
	ParticleEffectEntry_t &entry = m_Effects.emplace_back();
	entry.m_pEffect = pEffect;
	pEffect->AddRef();
	pEffect->m_pOwningParticleProperty = this;

	if ( params.m_nSplitScreenUser != pEffect->m_nSplitScreenUser )
		pEffect->SetDrawOnlyForSplitScreenUser( params.m_nSplitScreenUser );
	entry.m_bCanAggregate = bCanAggregate;
	if ( bCanAggregate )
		pEffect->m_vecAggregationCenter = params.m_vAggregationPosition;

	if ( traits.m_bScreenSpaceEffect )
	{
		pEffect->SetControlPoint( 0, Vector() );
		pEffect->SetControlPointOrientation( 0, Vector( 1.0f, 0.0f, 0.0f ), Vector( 0.0f, -1.0f, 0.0f ), Vector( 0.0f, 0.0f, 1.0f ) );
	}
	else
	{
		AddControlPoint( pEffect, 0, params.m_nAttachType == PATTACH_WORLDORIGIN ? nullptr : pOwner, params.m_nAttachType, params.m_bFollow, params.m_nAttachmentIndex,
			params.m_vOffset, params.m_pOffsetMatrix );
	}
	if ( m_pOuter )
		m_pOuter->OnParticleEffectCreated( pName, pEffect );
	return pEffect;
}

// ---------------------------------------------------------------------------------------
// Control points

void CParticleProperty::UpdateRecord( ParticleEffectEntry_t &entry, ParticleControlPointRecord_t &record, IParticleEntity *pEntity, ParticleAttachment_t nAttachType,
	bool bFollow, int nAttachmentIndex, const Vector &vOffset, const ParticleFrame_t *pMatrix, const Vector &vEntityOffset )
{
	if ( record.m_pEntity != pEntity )
		record.m_bEntityChanged = true;
	record.m_pEntity = pEntity;
	record.m_nAttachType = nAttachType;
	record.m_bFollow = bFollow;
	record.m_nAttachmentIndex = nAttachmentIndex;
	record.m_vecEntityOffset = vEntityOffset;
	record.m_matOffset = pMatrix ? *pMatrix : ParticleFrame_t::Translation( vOffset );
	if ( nAttachType == PATTACH_CUSTOMORIGIN_FOLLOW || nAttachType == PATTACH_POINT_FOLLOW || ( IsEntityFollowType( nAttachType ) && pEntity != GetOwner() ) )
		entry.m_bCanAggregate = false;
}

void CParticleProperty::AddControlPoint( CNewParticleEffect *pEffect, int nPoint, IParticleEntity *pEntity, ParticleAttachment_t nAttachType, bool bFollow,
	int nAttachmentIndex, const Vector &vOffset, const ParticleFrame_t *pMatrix, const Vector &vEntityOffset )
{
	if ( nPoint < 0 || nPoint >= PARTICLE_PROPERTY_MAX_CONTROL_POINTS )
	{
		PARTICLE_PROPERTY_REPORT_ONCE( "%s: Out of range control point %d in %s", "CParticleProperty::AddControlPoint", nPoint, EffectName( pEffect ) );
		return;
	}
	int nEntry = FindEffect( pEffect );
	if ( nEntry < 0 )
	{
		PARTICLE_PROPERTY_REPORT_ONCE( "%s: Out of range effect index %d (count = %d) when setting control point for %s", "CParticleProperty::AddControlPoint", nEntry,
			GetEffectCount(), EffectName( pEffect ) );
		return;
	}
	ParticleEffectEntry_t &entry = m_Effects[ size_t( nEntry ) ];
	int nRecord = -1;
	for ( size_t i = 0; i < entry.m_ControlPoints.size(); ++i )
	{
		if ( entry.m_ControlPoints[ i ].m_nControlPoint == nPoint )
			nRecord = int( i );
	}
	if ( nRecord < 0 )
	{
		if ( int( entry.m_ControlPoints.size() ) >= PARTICLE_PROPERTY_MAX_CONTROL_POINTS )
		{
			PARTICLE_PROPERTY_REPORT_ONCE( "%s: Overflowed control point array for point %d in %s", "CParticleProperty::AddControlPoint", nPoint, EffectName( pEffect ) );
			return;
		}
		nRecord = int( entry.m_ControlPoints.size() );
		entry.m_ControlPoints.emplace_back().m_nControlPoint = int16_t( nPoint );
	}
	UpdateRecord( entry, entry.m_ControlPoints[ size_t( nRecord ) ], pEntity, nAttachType, bFollow, nAttachmentIndex, vOffset, pMatrix, vEntityOffset );
	ApplyRecords( nEntry, nRecord, true );
}

void CParticleProperty::SetControlPoint( int nEffectIndex, int nPoint, IParticleEntity *pEntity, ParticleAttachment_t nAttachType, const Vector &vOffset )
{
	if ( nEffectIndex < 0 || nEffectIndex >= GetEffectCount() )
	{
		PARTICLE_PROPERTY_REPORT_ONCE( "%s: Out of range effect index %d (count = %d) when setting control point", "CParticleProperty::SetControlPoint", nEffectIndex,
			GetEffectCount() );
		return;
	}
	SetControlPoint( m_Effects[ size_t( nEffectIndex ) ].m_pEffect, nPoint, pEntity, nAttachType, vOffset );
}

void CParticleProperty::SetControlPoint( CNewParticleEffect *pEffect, int nPoint, IParticleEntity *pEntity, ParticleAttachment_t nAttachType, const Vector &vOffset )
{
	int nEntry = FindEffect( pEffect );
	if ( nEntry < 0 )
	{
		PARTICLE_PROPERTY_REPORT_ONCE( "%s: Out of range effect index %d (count = %d) when setting control point for %s", "CParticleProperty::SetControlPoint", nEntry,
			GetEffectCount(), EffectName( pEffect ) );
		return;
	}
	if ( nPoint < 0 || nPoint >= PARTICLE_PROPERTY_MAX_CONTROL_POINTS )
	{
		PARTICLE_PROPERTY_REPORT_ONCE( "%s: Out of range control point %d in %s", "CParticleProperty::SetControlPoint", nPoint, EffectName( pEffect ) );
		return;
	}
	// AddControlPoint updates a record that exists and adds one while there is room.
	AddControlPoint( pEffect, nPoint, pEntity, nAttachType, false, 0, vOffset );
}

void CParticleProperty::ApplyRecord( CNewParticleEffect *pEffect, ParticleControlPointRecord_t &record, bool bInitial )
{
	if ( record.m_nAttachType == PATTACH_WORLDORIGIN )
	{
		if ( !bInitial )
			return;
		const ParticleFrame_t &m = record.m_matOffset;
		pEffect->SetControlPointOrientation( record.m_nControlPoint, m.m_vForward, m.m_vRight, m.m_vUp );
		pEffect->SetControlPoint( record.m_nControlPoint, m.m_vOrigin );
		pEffect->m_vSortOrigin = m.m_vOrigin;
		record.m_pEntity = nullptr;
		return;
	}
	if ( record.m_bEntityChanged )
	{
		pEffect->SetControlPointEntity( record.m_nControlPoint, record.m_pEntity );
		record.m_bEntityChanged = false;
	}
	if ( !record.m_pEntity || record.m_nAttachType == PATTACH_CUSTOMORIGIN )
		return;
	IParticlesLibHost *pLibHost = m_pMgr ? m_pMgr->GetLibHost() : nullptr;
	Vector vOrigin, vForward, vRight, vUp;
	if ( !pLibHost || !pLibHost->GetAttachmentFrame( record, &vOrigin, &vForward, &vRight, &vUp ) )
		return;
	pEffect->SetControlPointOrientation( record.m_nControlPoint, vForward, vRight, vUp );
	pEffect->SetControlPoint( record.m_nControlPoint, vOrigin );
	pEffect->m_vSortOrigin = vOrigin;
	if ( !IsParticleNoVector( record.m_vecEntityOffset ) )
		record.m_vecEntityOffset = vOrigin;
}

void CParticleProperty::ApplyRecords( int nEntry, int nRecord, bool bInitial )
{
	ParticleEffectEntry_t &entry = m_Effects[ size_t( nEntry ) ];
	if ( !entry.m_pEffect )
		return;
	if ( nRecord >= 0 )
	{
		ApplyRecord( entry.m_pEffect, entry.m_ControlPoints[ size_t( nRecord ) ], bInitial );
		return;
	}
	for ( ParticleControlPointRecord_t &record : entry.m_ControlPoints )
		ApplyRecord( entry.m_pEffect, record, bInitial );
}

void CParticleProperty::OnParticleSystemUpdated( CNewParticleEffect *pEffect )
{
	int nEntry = FindEffect( pEffect );
	if ( nEntry >= 0 )
		ApplyRecords( nEntry, -1, false );
}

void CParticleProperty::RemoveControlPoint( CNewParticleEffect *pEffect, int nPoint )
{
	int nEntry = FindEffect( pEffect );
	if ( nEntry < 0 )
		return;
	std::vector<ParticleControlPointRecord_t> &records = m_Effects[ size_t( nEntry ) ].m_ControlPoints;
	for ( size_t i = records.size(); i-- > 0; )
	{
		if ( records[ i ].m_nControlPoint != nPoint )
			continue;
		records[ i ].m_nAttachType = PATTACH_WORLDORIGIN;
		records[ i ].m_pEntity = nullptr;
		records[ i ].m_matOffset = ParticleFrame_t::Identity();
		ApplyRecord( pEffect, records[ i ], true );
		records.erase( records.begin() + std::ptrdiff_t( i ) );
	}
}

// ---------------------------------------------------------------------------------------
// Stopping and replacing

void CParticleProperty::StopEmission( CNewParticleEffect *pEffect, bool bWakeOnStop, bool bDestroyIfNotStarted, bool bRemoveAllParticles, bool bPlayEndCap )
{
	if ( pEffect )
	{
		if ( FindEffect( pEffect ) >= 0 )
			pEffect->StopEmission( false, bRemoveAllParticles, bWakeOnStop, bPlayEndCap );
		return;
	}
	for ( int i = GetEffectCount() - 1; i >= 0; --i )
	{
		CNewParticleEffect *pEach = m_Effects[ size_t( i ) ].m_pEffect;
		if ( !pEach )
			continue;
		bool bDestroy = bRemoveAllParticles || ( bDestroyIfNotStarted && pEach->HasStarted() );
		pEach->StopEmission( false, bDestroy, bWakeOnStop && !bDestroy, bPlayEndCap && !bDestroy );
		if ( bDestroy )
			RemoveEntry( i );
	}
}

void CParticleProperty::StopParticlesImmediately( CNewParticleEffect *pEffect )
{
	for ( int i = GetEffectCount() - 1; i >= 0; --i )
	{
		CNewParticleEffect *pEach = m_Effects[ size_t( i ) ].m_pEffect;
		if ( !pEach || ( pEffect && pEach != pEffect ) )
			continue;
		RemoveEntry( i );
		pEach->StopEmission( false, true, false, false );
		pEach->m_bRemove = true;
	}
}

void CParticleProperty::StopAll()
{
	for ( int i = GetEffectCount() - 1; i >= 0; --i )
	{
		CNewParticleEffect *pEach = m_Effects[ size_t( i ) ].m_pEffect;
		if ( !pEach )
			continue;
		if ( pEach->HasStarted() )
		{
			pEach->StopEmission( false, true, false, false );
			RemoveEntry( i );
		}
		else
			pEach->StopEmission( false, false, false, true );
	}
	while ( !m_Effects.empty() )
		RemoveEntry( GetEffectCount() - 1 );
}

void CParticleProperty::OnParticleSystemDeleted( CNewParticleEffect *pEffect )
{
	int nEntry = FindEffect( pEffect );
	if ( nEntry < 0 )
		return;
	// The effect is going: its reference goes with it, not through Release.
	m_Effects.erase( m_Effects.begin() + nEntry );
	pEffect->m_pOwningParticleProperty = nullptr;
	if ( m_pOuter )
		m_pOuter->OnParticleEffectRemoved( pEffect, nEntry );
}

void CParticleProperty::ReplaceEffect( CNewParticleEffect *pOld, CNewParticleEffect *pNew )
{
	int nEntry = FindEffect( pOld );
	if ( nEntry < 0 || !pNew )
		return;
	ParticleEffectEntry_t &entry = m_Effects[ size_t( nEntry ) ];
	pNew->AddRef();
	entry.m_pEffect = pNew;
	pNew->m_pOwningParticleProperty = this;
	ApplyRecords( nEntry, -1, true );
	pOld->m_pOwningParticleProperty = nullptr;
	pOld->Release();
}
