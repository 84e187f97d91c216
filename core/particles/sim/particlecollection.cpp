#include "core/particles/sim/particlecollection.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

#include "core/logging/logonce.h"
#include "core/particles/particlemodelresource.h"
#include "core/particles/sim/particlesimmath.h"

namespace
{
const ParticleControlPoint_t s_UnsetControlPoint;
// Pre-simulation steps at a fixed rate, as a system would have run before it was seen.
constexpr double PRESIMULATION_RATE = 30.0;
// The most sub-steps one frame is split into, whatever its length.
constexpr int MAX_SUB_STEPS = 128;

uint32_t MixSeed( uint64_t nSeed, uint32_t nSalt )
{
	uint64_t h = nSeed * 0x9E3779B97F4A7C15ULL + nSalt;
	h ^= h >> 33;
	h *= 0xff51afd7ed558ccdULL;
	h ^= h >> 33;
	return uint32_t( h );
}
} // namespace

std::unique_ptr<IParticleCollection> CreateParticleCollection( const ParticleDefinitionPtr_t &pDefinition, uint64_t nSeed )
{
	if ( !pDefinition )
		return nullptr;
	return std::make_unique<CParticleCollection>( pDefinition, nullptr, nullptr, nSeed );
}

CParticleCollection::CParticleCollection( const ParticleDefinitionPtr_t &pDefinition, CParticleCollection *pParent, CParticleRandom *pRandom, uint64_t nSeed )
	: m_pDefinition( pDefinition ), m_pParent( pParent )
{
	if ( !pRandom )
	{
		m_pOwnedRandom = std::make_unique<CParticleRandom>( nSeed );
		pRandom = m_pOwnedRandom.get();
	}
	m_pRandom = pRandom;
	m_nRandomKey = MixSeed( nSeed, pParent ? uint32_t( pRandom->Next() ) : 0u );
	m_nDetailLevel = m_pDefinition->m_nMaxDetailLevel;
	m_pDefinition->m_nLiveCollections.fetch_add( 1, std::memory_order_relaxed );
	AllocateStreams();

	m_NamedValues.resize( size_t( m_pDefinition->m_NamedValues.Count() ) );
	for ( int nSlot = 0; nSlot < m_pDefinition->m_NamedValues.Count(); ++nSlot )
	{
		const ParticleNamedValueEntry_t &entry = m_pDefinition->m_NamedValues.Get( nSlot );
		m_NamedValues[ size_t( nSlot ) ].m_flValue = entry.m_flDefault;
		m_NamedValues[ size_t( nSlot ) ].m_vValue = entry.m_vDefault;
		// A model variable's default names its model; a missing one leaves the variable empty.
		if ( !entry.m_DefaultResource.IsEmpty() && entry.m_Type.IsEqual_CaseInsensitive( "PVAL_RESOURCE:tmsh" ) )
		{
			CUtlString error;
			m_NamedValues[ size_t( nSlot ) ].m_ModelName = entry.m_DefaultResource;
			m_NamedValues[ size_t( nSlot ) ].m_pModel = FindParticleModel( entry.m_DefaultResource.Get(), &error );
			if ( !m_NamedValues[ size_t( nSlot ) ].m_pModel )
				LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, entry.m_DefaultResource.Get(), "Model variable '%s': %s\n", entry.m_ID.m_pName ? entry.m_ID.m_pName : "", error.Get() );
		}
		m_NamedValues[ size_t( nSlot ) ].m_bDeclared = entry.m_bDeclared;
		// A variable shared with a system above starts at that system's value: the top
		// of the tree is what the game sets, and its declaration is the default.
		const ParticleNamedValue_t *pShared = pParent ? pParent->GetNamedValue( pParent->m_pDefinition->m_NamedValues.Find( entry.m_ID.m_nToken ) ) : nullptr;
		if ( pShared && pShared->m_bDeclared )
			m_NamedValues[ size_t( nSlot ) ] = *pShared;
	}
	m_EmitterStates.resize( m_pDefinition->GetFunctions( PARTICLE_FUNCTION_EMITTER ).size() );
	// A renderer the preview has no behaviour for is skipped: it draws nothing, so it
	// gives no draw data either.
	for ( const auto &pRenderer : m_pDefinition->GetFunctions( PARTICLE_FUNCTION_RENDERER ) )
	{
		if ( pRenderer->m_bHasBehaviour )
			m_Renderers.push_back( pRenderer.get() );
	}

	for ( const ParticleChildInfo_t &child : m_pDefinition->m_Children )
	{
		auto pChild = std::make_unique<CParticleCollection>( child.m_pDefinition, this, m_pRandom, nSeed + m_Children.size() + 1 );
		pChild->m_flFirstRunTime = child.m_flDelay;
		pChild->m_bIsEndCapChild = child.m_bEndCap;
		m_Children.push_back( std::move( pChild ) );
	}
	if ( m_pDefinition->m_nInitialParticles > 0 && !m_bIsEndCapChild )
		SpawnParticles( m_pDefinition->m_nInitialParticles );
}

CParticleCollection::~CParticleCollection()
{
	m_pDefinition->m_nLiveCollections.fetch_sub( 1, std::memory_order_relaxed );
}

void CParticleCollection::AllocateStreams()
{
	const CParticleRuntimeDefinition &def = *m_pDefinition;
	m_nCapacity = def.m_nMaxParticles;
	size_t nStreams = SCRATCH_ARRAYS;
	for ( int a = 0; a < PARTICLE_ATTRIBUTE_COUNT; ++a )
	{
		if ( def.m_nAttributeMask & ParticleAttributeBit( a ) )
			nStreams += size_t( GetParticleAttributeComponentCount( a ) );
		if ( def.m_nInitialAttributeMask & ParticleAttributeBit( a ) )
			nStreams += size_t( GetParticleAttributeComponentCount( a ) );
	}
	// Each array starts on a 64-byte line so that loops over it vectorise cleanly.
	size_t nStride = ( size_t( std::max( m_nCapacity, 1 ) ) + 15 ) & ~size_t( 15 );
	m_Storage.assign( nStreams * nStride + 16, 0.0f );
	float *pBase = m_Storage.data();
	while ( reinterpret_cast<uintptr_t>( pBase ) % 64 != 0 )
		++pBase;
	for ( int a = 0; a < PARTICLE_ATTRIBUTE_COUNT; ++a )
	{
		for ( int k = 0; k < GetParticleAttributeComponentCount( a ); ++k )
		{
			if ( def.m_nAttributeMask & ParticleAttributeBit( a ) )
			{
				m_pStreams[ a ][ k ] = pBase;
				pBase += nStride;
			}
			if ( def.m_nInitialAttributeMask & ParticleAttributeBit( a ) )
			{
				m_pInitialStreams[ a ][ k ] = pBase;
				pBase += nStride;
			}
		}
	}
	for ( int s = 0; s < SCRATCH_ARRAYS; ++s )
	{
		m_pScratch[ s ] = pBase;
		pBase += nStride;
	}
	m_KillFlags.assign( size_t( m_nCapacity ), 0 );
	if ( def.m_bHasForces )
	{
		for ( auto &force : m_Force )
			force.assign( size_t( m_nCapacity ), 0.0f );
	}
}

IParticleCollection *CParticleCollection::GetNextSibling() const
{
	if ( !m_pParent )
		return nullptr;
	const auto &siblings = m_pParent->m_Children;
	for ( size_t i = 0; i + 1 < siblings.size(); ++i )
	{
		if ( siblings[ i ].get() == this )
			return siblings[ i + 1 ].get();
	}
	return nullptr;
}

const ParticleControlPoint_t &CParticleCollection::GetControlPoint( int nPoint ) const
{
	return nPoint >= 0 && nPoint < MAX_PARTICLE_CONTROL_POINTS ? m_ControlPoints[ nPoint ] : s_UnsetControlPoint;
}

const float *CParticleCollection::InitialStream( int nAttribute, int nComponent ) const
{
	if ( !IsValidParticleAttribute( nAttribute ) )
		return nullptr;
	// An attribute nobody asked the initial value of has none; its current value stands in.
	return m_pInitialStreams[ nAttribute ][ nComponent ] ? m_pInitialStreams[ nAttribute ][ nComponent ] : m_pStreams[ nAttribute ][ nComponent ];
}

const ParticleNamedValue_t *CParticleCollection::GetNamedValue( int nSlot ) const
{
	return nSlot >= 0 && size_t( nSlot ) < m_NamedValues.size() ? &m_NamedValues[ size_t( nSlot ) ] : nullptr;
}

void CParticleCollection::WriteControlPoint( int nPoint, const Vector &vPosition, const Vector *pForward, const Vector *pRight, const Vector *pUp )
{
	if ( nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return;
	ParticleControlPoint_t &cp = m_ControlPoints[ nPoint ];
	if ( !( cp.m_vPosition == vPosition ) || !cp.m_bSet )
		cp.m_flChangeTime = m_flCurTime;
	cp.m_vPosition = vPosition;
	if ( pForward && pRight && pUp )
	{
		cp.m_vForward = *pForward;
		cp.m_vRight = *pRight;
		cp.m_vUp = *pUp;
	}
	cp.m_bSet = true;
	for ( auto &pChild : m_Children )
		pChild->WriteControlPoint( nPoint, vPosition, pForward, pRight, pUp );
}

void CParticleCollection::SetControlPoint( int nPoint, const Vector &vPosition )
{
	WriteControlPoint( nPoint, vPosition );
}

void CParticleCollection::SetControlPointOrientation( int nPoint, const Vector &vForward, const Vector &vRight, const Vector &vUp )
{
	if ( nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return;
	WriteControlPoint( nPoint, m_ControlPoints[ nPoint ].m_vPosition, &vForward, &vRight, &vUp );
}

void CParticleCollection::SetControlPointVelocity( int nPoint, const Vector &vVelocity )
{
	if ( nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return;
	m_ControlPoints[ nPoint ].m_vVelocity = vVelocity;
	m_ControlPoints[ nPoint ].m_bVelocitySet = true;
	for ( auto &pChild : m_Children )
		pChild->SetControlPointVelocity( nPoint, vVelocity );
}

void CParticleCollection::GetControlPointOrientation( int nPoint, Vector *pForward, Vector *pRight, Vector *pUp ) const
{
	const ParticleControlPoint_t &cp = GetControlPoint( nPoint );
	if ( pForward )
		*pForward = cp.m_vForward;
	if ( pRight )
		*pRight = cp.m_vRight;
	if ( pUp )
		*pUp = cp.m_vUp;
}

Vector CParticleCollection::GetControlPointVelocity( int nPoint ) const
{
	const ParticleControlPoint_t &cp = GetControlPoint( nPoint );
	if ( cp.m_bVelocitySet )
		return cp.m_vVelocity;
	// Unless given, a point's velocity is how far it moved over the last step.
	return m_flPreviousDt > 0.0f ? ParticleMath::Scale( ParticleMath::Sub( cp.m_vPosition, cp.m_vPrevPosition ), 1.0f / m_flPreviousDt ) : Vector();
}

bool CParticleCollection::SetNamedValueFloat( const ParticleParamID_t &id, float flValue )
{
	bool bFound = false;
	int nSlot = m_pDefinition->m_NamedValues.Find( id.m_nToken );
	if ( nSlot >= 0 )
	{
		m_NamedValues[ size_t( nSlot ) ].m_flValue = flValue;
		m_NamedValues[ size_t( nSlot ) ].m_vValue = Vector( flValue, flValue, flValue );
		bFound = true;
	}
	for ( auto &pChild : m_Children )
		bFound |= pChild->SetNamedValueFloat( id, flValue );
	return bFound;
}

bool CParticleCollection::SetNamedValueVector( const ParticleParamID_t &id, const Vector &vValue )
{
	bool bFound = false;
	int nSlot = m_pDefinition->m_NamedValues.Find( id.m_nToken );
	if ( nSlot >= 0 )
	{
		m_NamedValues[ size_t( nSlot ) ].m_vValue = vValue;
		m_NamedValues[ size_t( nSlot ) ].m_flValue = vValue.x;
		bFound = true;
	}
	for ( auto &pChild : m_Children )
		bFound |= pChild->SetNamedValueVector( id, vValue );
	return bFound;
}

bool CParticleCollection::SetNamedValueTransform( const ParticleParamID_t &id, const Vector &vOrigin, const Vector &vForward, const Vector &vRight, const Vector &vUp )
{
	bool bFound = false;
	int nSlot = m_pDefinition->m_NamedValues.Find( id.m_nToken );
	if ( nSlot >= 0 )
	{
		ParticleNamedValue_t &value = m_NamedValues[ size_t( nSlot ) ];
		value.m_vValue = vOrigin;
		value.m_vForward = vForward;
		value.m_vRight = vRight;
		value.m_vUp = vUp;
		bFound = true;
	}
	for ( auto &pChild : m_Children )
		bFound |= pChild->SetNamedValueTransform( id, vOrigin, vForward, vRight, vUp );
	return bFound;
}

bool CParticleCollection::SetControlPointModel( int nPoint, const char *pModelName )
{
	if ( nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return false;
	ParticleModelPtr_t pModel;
	bool bOk = true;
	if ( pModelName && *pModelName )
	{
		CUtlString error;
		pModel = FindParticleModel( pModelName, &error );
		if ( !pModel )
		{
			LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, pModelName, "Control point %d model: %s\n", nPoint, error.Get() );
			bOk = false;
		}
	}
	SetControlPointModelData( nPoint, pModel );
	return bOk;
}

void CParticleCollection::SetControlPointModelData( int nPoint, const ParticleModelPtr_t &pModel )
{
	m_ControlPointModels[ nPoint ] = pModel;
	for ( auto &pChild : m_Children )
		pChild->SetControlPointModelData( nPoint, pModel );
}

const CParticleModel *CParticleCollection::GetControlPointModel( int nPoint ) const
{
	return nPoint >= 0 && nPoint < MAX_PARTICLE_CONTROL_POINTS ? m_ControlPointModels[ nPoint ].get() : nullptr;
}

bool CParticleCollection::SetNamedValueModel( const ParticleParamID_t &id, const char *pModelName )
{
	ParticleModelPtr_t pModel;
	if ( pModelName && *pModelName )
	{
		CUtlString error;
		pModel = FindParticleModel( pModelName, &error );
		if ( !pModel )
			LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, pModelName, "Model variable '%s': %s\n", id.m_pName ? id.m_pName : "", error.Get() );
	}
	bool bFound = false;
	SetNamedValueModelData( id.m_nToken, pModelName, pModel, &bFound );
	return bFound && ( pModel || !pModelName || !*pModelName );
}

void CParticleCollection::SetNamedValueModelData( uint32_t nToken, const char *pName, const ParticleModelPtr_t &pModel, bool *pFound )
{
	int nSlot = m_pDefinition->m_NamedValues.Find( nToken );
	if ( nSlot >= 0 )
	{
		m_NamedValues[ size_t( nSlot ) ].m_ModelName = pName ? pName : "";
		m_NamedValues[ size_t( nSlot ) ].m_pModel = pModel;
		*pFound = true;
	}
	for ( auto &pChild : m_Children )
		pChild->SetNamedValueModelData( nToken, pName, pModel, pFound );
}

void CParticleCollection::SetCameras( const ParticleCamera_t *pCameras, int nCount )
{
	// The cameras may be our own (a parent passing its list on): build the new list aside.
	std::vector<ParticleCamera_t> cameras;
	for ( int i = 0; pCameras && i < nCount; ++i )
	{
		ParticleCamera_t camera = pCameras[ i ];
		// A camera without a direction looks down +x, so facing measures stay defined.
		camera.m_vForward = ParticleMath::Normalized( camera.m_vForward );
		if ( ParticleMath::Dot( camera.m_vForward, camera.m_vForward ) == 0.0f )
			camera.m_vForward = Vector( 1.0f, 0.0f, 0.0f );
		cameras.push_back( camera );
	}
	m_Cameras = std::move( cameras );
	for ( auto &pChild : m_Children )
		pChild->SetCameras( m_Cameras.data(), int( m_Cameras.size() ) );
}

void CParticleCollection::ClearCameras()
{
	SetCameras( nullptr, 0 );
}

const ParticleCamera_t *CParticleCollection::FindClosestCamera( const Vector &vPoint ) const
{
	const ParticleCamera_t *pClosest = nullptr;
	float flBest = 0.0f;
	for ( const ParticleCamera_t &camera : m_Cameras )
	{
		Vector d = ParticleMath::Sub( camera.m_vPosition, vPoint );
		float flDistSq = ParticleMath::Dot( d, d );
		if ( !pClosest || flDistSq < flBest )
		{
			pClosest = &camera;
			flBest = flDistSq;
		}
	}
	return pClosest;
}

float CParticleCollection::GetNamedValueFloat( const ParticleParamID_t &id ) const
{
	const ParticleNamedValue_t *pValue = GetNamedValue( m_pDefinition->m_NamedValues.Find( id.m_nToken ) );
	return pValue ? pValue->m_flValue : 0.0f;
}

Vector CParticleCollection::GetNamedValueVector( const ParticleParamID_t &id ) const
{
	const ParticleNamedValue_t *pValue = GetNamedValue( m_pDefinition->m_NamedValues.Find( id.m_nToken ) );
	return pValue ? pValue->m_vValue : Vector();
}

void CParticleCollection::SetMaxDetailLevel( int nLevel )
{
	m_nDetailLevel = std::clamp( std::min( nLevel, m_pDefinition->m_nMaxDetailLevel ), 0, 3 );
	for ( auto &pChild : m_Children )
		pChild->SetMaxDetailLevel( nLevel );
}

void CParticleCollection::SetMeasuring( bool bMeasure )
{
	m_bMeasure = bMeasure;
	for ( auto &pChild : m_Children )
		pChild->SetMeasuring( bMeasure );
}

void CParticleCollection::KillParticle( int nIndex )
{
	if ( nIndex < 0 || nIndex >= m_nActive || m_KillFlags[ size_t( nIndex ) ] )
		return;
	m_KillFlags[ size_t( nIndex ) ] = 1;
	++m_nKilled;
}

void CParticleCollection::SpawnParticles( int nCount )
{
	nCount = std::min( nCount, m_nCapacity - m_nActive );
	if ( nCount <= 0 )
		return;
	const CParticleRuntimeDefinition &def = *m_pDefinition;
	int nStart = m_nActive;
	m_nActive += nCount;
	// Every stored attribute starts at the system's constants or the attribute default.
	for ( int a = 0; a < PARTICLE_ATTRIBUTE_COUNT; ++a )
	{
		for ( int k = 0; k < 3 && m_pStreams[ a ][ k ]; ++k )
		{
			float flValue = GetParticleAttributeDefault( a, k );
			switch ( a )
			{
			case PARTICLE_ATTRIBUTE_POSITION:
			case PARTICLE_ATTRIBUTE_PREVIOUS_POSITION:
				flValue = m_ControlPoints[ 0 ].m_vPosition[ k ];
				break;
			case PARTICLE_ATTRIBUTE_COLOR:
				flValue = def.m_ConstantColor[ k ];
				break;
			case PARTICLE_ATTRIBUTE_ALPHA:
				flValue = def.m_flConstantAlpha;
				break;
			case PARTICLE_ATTRIBUTE_RADIUS:
				flValue = def.m_flConstantRadius;
				break;
			case PARTICLE_ATTRIBUTE_LIFE_DURATION:
				flValue = def.m_flConstantLifespan;
				break;
			case PARTICLE_ATTRIBUTE_ROLL:
				flValue = def.m_flConstantRotation;
				break;
			case PARTICLE_ATTRIBUTE_ROLL_SPEED:
				flValue = def.m_flConstantRotationSpeed;
				break;
			case PARTICLE_ATTRIBUTE_SEQUENCE_NUMBER:
				flValue = float( def.m_nConstantSequenceNumber );
				break;
			case PARTICLE_ATTRIBUTE_CREATION_TIME:
				flValue = m_flCurTime;
				break;
			default:
				break;
			}
			std::fill( m_pStreams[ a ][ k ] + nStart, m_pStreams[ a ][ k ] + nStart + nCount, flValue );
		}
	}
	float *pID = m_pStreams[ PARTICLE_ATTRIBUTE_PARTICLE_ID ][ 0 ];
	for ( int i = nStart; i < m_nActive; ++i )
		pID[ i ] = float( m_nNextParticleID++ & 0xFFFFFF );
	std::fill( m_KillFlags.begin() + nStart, m_KillFlags.begin() + m_nActive, uint8_t( 0 ) );

	for ( const auto &pInitializer : def.GetFunctions( PARTICLE_FUNCTION_INITIALIZER ) )
		pInitializer->InitNewParticles( *this, nStart, nCount );

	for ( int a = 0; a < PARTICLE_ATTRIBUTE_COUNT; ++a )
	{
		for ( int k = 0; k < 3; ++k )
		{
			if ( m_pInitialStreams[ a ][ k ] && m_pStreams[ a ][ k ] )
				std::copy( m_pStreams[ a ][ k ] + nStart, m_pStreams[ a ][ k ] + m_nActive, m_pInitialStreams[ a ][ k ] + nStart );
		}
	}
}

void CParticleCollection::RemoveKilledParticles()
{
	if ( m_nKilled == 0 )
		return;
	// Swap the last living particle into each hole: order isn't kept, the arrays stay dense.
	int n = m_nActive;
	for ( int i = 0; i < n; )
	{
		if ( !m_KillFlags[ size_t( i ) ] )
		{
			++i;
			continue;
		}
		--n;
		if ( i != n )
		{
			for ( int a = 0; a < PARTICLE_ATTRIBUTE_COUNT; ++a )
			{
				for ( int k = 0; k < 3; ++k )
				{
					if ( m_pStreams[ a ][ k ] )
						m_pStreams[ a ][ k ][ i ] = m_pStreams[ a ][ k ][ n ];
					if ( m_pInitialStreams[ a ][ k ] )
						m_pInitialStreams[ a ][ k ][ i ] = m_pInitialStreams[ a ][ k ][ n ];
				}
			}
			m_KillFlags[ size_t( i ) ] = m_KillFlags[ size_t( n ) ];
		}
		m_KillFlags[ size_t( n ) ] = 0;
	}
	m_nActive = n;
	m_nKilled = 0;
}

int CParticleCollection::CountToEmit( float flDt )
{
	// Emitters may ask for far more than there is room for; the sum is kept wide and cut
	// to the room, so no count of theirs can overflow it.
	const auto &emitters = m_pDefinition->GetFunctions( PARTICLE_FUNCTION_EMITTER );
	int64_t nTotal = 0;
	for ( size_t e = 0; e < emitters.size(); ++e )
		nTotal += std::max( 0, emitters[ e ]->Emit( *this, m_EmitterStates[ e ], m_flCurTime, flDt ) );
	return int( std::min<int64_t>( nTotal, int64_t( m_nCapacity - m_nActive ) ) );
}

void CParticleCollection::RunStep( float flDt, bool bMove )
{
	const CParticleRuntimeDefinition &def = *m_pDefinition;
	m_flCurTime += double( flDt );
	for ( const auto &pOperator : def.GetFunctions( PARTICLE_FUNCTION_PRE_EMISSION_OPERATOR ) )
		pOperator->Operate( *this, flDt );

	// Lives that are over end before emission, so that an emitter keeping a count refills
	// the places they free within the same step instead of a step later.
	for ( const auto &pOperator : def.GetFunctions( PARTICLE_FUNCTION_OPERATOR ) )
		pOperator->KillExpired( *this );
	RemoveKilledParticles();

	if ( !m_bEmissionStopped && m_flCurTime <= double( def.m_flStopSimulationAfterTime ) )
		SpawnParticles( CountToEmit( flDt ) );
	if ( !bMove )
	{
		// A culled step: particles age and die, nothing else.
		for ( const auto &pOperator : def.GetFunctions( PARTICLE_FUNCTION_OPERATOR ) )
		{
			if ( pOperator->m_bRunsWhenCulled )
				pOperator->Operate( *this, flDt );
		}
		RemoveKilledParticles();
		return;
	}
	if ( def.m_bHasForces )
	{
		for ( auto &force : m_Force )
			std::fill( force.begin(), force.begin() + m_nActive, 0.0f );
		for ( const auto &pForce : def.GetFunctions( PARTICLE_FUNCTION_FORCE_GENERATOR ) )
			pForce->Operate( *this, flDt );
	}
	for ( const auto &pOperator : def.GetFunctions( PARTICLE_FUNCTION_OPERATOR ) )
		pOperator->Operate( *this, flDt );
	for ( const auto &pConstraint : def.GetFunctions( PARTICLE_FUNCTION_CONSTRAINT ) )
		pConstraint->Operate( *this, flDt );
	RemoveKilledParticles();
}

void CParticleCollection::Simulate( float flDt )
{
	auto tStart = std::chrono::steady_clock::now();
	// A step that is no time at all (negative, NaN, infinite) steps nothing.
	if ( !( flDt > 0.0f ) || !std::isfinite( flDt ) )
		flDt = 0.0f;

	// A child waits out its delay; an end-cap child waits for the end cap.
	float flStepDt = flDt;
	bool bRuns = true;
	if ( m_bIsEndCapChild && !m_bInEndCap )
		bRuns = false;
	else if ( m_pParent && m_flFirstRunTime > 0.0f )
	{
		double flParentTime = m_pParent->m_flCurTime - ( m_bIsEndCapChild ? m_pParent->m_flEndCapTime : 0.0 );
		if ( flParentTime < double( m_flFirstRunTime ) )
			bRuns = false;
		else if ( !m_bStarted )
			flStepDt = float( std::min( double( flDt ), flParentTime - double( m_flFirstRunTime ) ) );
	}
	if ( bRuns )
	{
		if ( !m_bStarted && m_pDefinition->m_flPreSimulationTime > 0.0f )
		{
			// Bounded however the definition was made: the compile cuts it with a warning.
			m_bStarted = true;
			const double flPreSeconds = std::min( double( m_pDefinition->m_flPreSimulationTime ), double( PARTICLE_MAX_PRESIMULATION_SECONDS ) );
			int nPreSteps = int( std::ceil( flPreSeconds * PRESIMULATION_RATE - 1e-4 ) );
			for ( int i = 0; i < nPreSteps; ++i )
				Simulate( float( 1.0 / PRESIMULATION_RATE ) );
		}
		m_bStarted = true;
		// Long frames are split into equal sub-steps no longer than the maximum time step;
		// their number is bounded, so that no frame length can stall the step.
		const float flMaxStep = m_pDefinition->m_flMaximumTimeStep;
		int nSubSteps = 1;
		if ( flStepDt > flMaxStep )
			nSubSteps = int( std::min( std::ceil( double( flStepDt ) / double( flMaxStep ) - 1e-6 ), double( MAX_SUB_STEPS ) ) );
		nSubSteps = std::max( nSubSteps, 1 );
		const float flSub = nSubSteps == 1 ? flStepDt : float( double( flStepDt ) / nSubSteps );
		for ( int i = 0; i < nSubSteps; ++i )
		{
			for ( ParticleControlPoint_t &cp : m_ControlPoints )
				cp.m_vPrevPosition = cp.m_vPosition;
			RunStep( flSub, true );
			if ( flSub > 0.0f )
				m_flPreviousDt = MotionDt( flSub );
		}
	}
	for ( auto &pChild : m_Children )
		pChild->Simulate( flDt );
	RecalculateBounds();

	if ( m_bMeasure )
	{
		// The profiler wants each system's own time: the children's totals come off.
		m_flLastTotalUS = float( std::chrono::duration<double, std::micro>( std::chrono::steady_clock::now() - tStart ).count() );
		float flOwn = m_flLastTotalUS;
		for ( auto &pChild : m_Children )
			flOwn -= pChild->m_flLastTotalUS;
		m_Stats.m_flSimulationUS = std::max( 0.0f, flOwn );
		m_Stats.m_nCount = m_nActive;
		m_Stats.m_nAllocated = m_nCapacity;
	}
}

void CParticleCollection::SimulateCulled( float flDt )
{
	if ( !( flDt > 0.0f ) || !std::isfinite( flDt ) )
		flDt = 0.0f;
	if ( !( m_bIsEndCapChild && !m_bInEndCap ) && ( !m_pParent || m_pParent->m_flCurTime >= double( m_flFirstRunTime ) ) )
	{
		m_bStarted = true;
		RunStep( flDt, false );
	}
	for ( auto &pChild : m_Children )
		pChild->SimulateCulled( flDt );
}

bool CParticleCollection::WillNotEndOnStop() const
{
	if ( !m_pDefinition->GetFunctions( PARTICLE_FUNCTION_EMITTER ).empty() )
	{
		bool bEndsLives = false;
		for ( int nList = 0; nList < PARTICLE_FUNCTION_CLASS_LIST_COUNT && !bEndsLives; ++nList )
		{
			for ( const auto &pFunction : m_pDefinition->GetFunctions( ParticleFunctionType_t( nList ) ) )
				bEndsLives = bEndsLives || pFunction->m_bEndsLives;
		}
		if ( !bEndsLives )
			return true;
	}
	for ( const auto &pChild : m_Children )
	{
		if ( pChild->WillNotEndOnStop() )
			return true;
	}
	return false;
}

bool CParticleCollection::IsFinished() const
{
	if ( m_nActive > 0 )
		return false;
	if ( !m_bEmissionStopped )
	{
		// An end-cap child that never started has nothing to do.
		if ( m_bIsEndCapChild && !m_bInEndCap && m_pParent && m_pParent->IsEmissionStopped() )
			return true;
		const auto &emitters = m_pDefinition->GetFunctions( PARTICLE_FUNCTION_EMITTER );
		for ( size_t e = 0; e < emitters.size(); ++e )
		{
			if ( !emitters[ e ]->IsEmissionFinished( m_EmitterStates[ e ], m_flCurTime ) )
				return false;
		}
		if ( m_pParent && !m_bStarted && !m_bIsEndCapChild )
			return false; // still waiting out its delay
	}
	for ( const auto &pChild : m_Children )
	{
		if ( !pChild->IsFinished() )
			return false;
	}
	return true;
}

void CParticleCollection::StartEndCap()
{
	m_bInEndCap = true;
	m_flEndCapTime = m_flCurTime;
}

void CParticleCollection::StopEmission( bool bInfiniteOnly, bool bRemoveAllParticles, bool bWakeOnStop, bool bPlayEndCap )
{
	bool bInfinite = false;
	const auto &emitters = m_pDefinition->GetFunctions( PARTICLE_FUNCTION_EMITTER );
	for ( size_t e = 0; e < emitters.size(); ++e )
		bInfinite |= !emitters[ e ]->IsEmissionFinished( m_EmitterStates[ e ], 1e30 );
	if ( !bInfiniteOnly || bInfinite )
		m_bEmissionStopped = true;
	if ( bRemoveAllParticles )
	{
		m_nActive = 0;
		m_nKilled = 0;
	}
	for ( auto &pChild : m_Children )
	{
		if ( pChild->m_bIsEndCapChild )
		{
			if ( bPlayEndCap && !bRemoveAllParticles )
			{
				pChild->StartEndCap();
				pChild->m_flFirstRunTime = 0.0f;
			}
			continue;
		}
		pChild->StopEmission( bInfiniteOnly, bRemoveAllParticles, bWakeOnStop, bPlayEndCap );
	}
	if ( bPlayEndCap && !bRemoveAllParticles )
		StartEndCap();
}

void CParticleCollection::Restart( bool bAggregate, const Vector & )
{
	m_flCurTime = 0.0f;
	m_bEmissionStopped = false;
	m_bInEndCap = false;
	m_flEndCapTime = 0.0f;
	m_bStarted = false;
	if ( !bAggregate )
	{
		for ( ParticleEmitterState_t &state : m_EmitterStates )
			state = ParticleEmitterState_t();
	}
	else
	{
		// An aggregation emits its instantaneous burst again on top of what lives.
		for ( ParticleEmitterState_t &state : m_EmitterStates )
			state.m_bEmittedOnce = false;
	}
	for ( size_t c = 0; c < m_Children.size(); ++c )
	{
		m_Children[ c ]->Restart( bAggregate, Vector() );
		m_Children[ c ]->m_flFirstRunTime = m_pDefinition->m_Children[ c ].m_flDelay;
	}
}

int CParticleCollection::GetActiveParticleCount( bool bIncludeChildren ) const
{
	int nCount = m_nActive;
	if ( bIncludeChildren )
	{
		for ( const auto &pChild : m_Children )
			nCount += pChild->GetActiveParticleCount( true );
	}
	return nCount;
}

bool CParticleCollection::RecalculateBounds()
{
	// A particle whose extent isn't finite (a NaN or infinite position or radius) has no
	// place in the bounds; it is counted instead, so that it never passes unseen.
	constexpr float INF = std::numeric_limits<float>::infinity();
	Vector vMin( INF, INF, INF ), vMax( -INF, -INF, -INF );
	bool bAny = false;
	m_nNonFinite = 0;
	if ( m_nActive > 0 )
	{
		const float *pRadius = m_pStreams[ PARTICLE_ATTRIBUTE_RADIUS ][ 0 ];
		const float *pPos[ 3 ] = { m_pStreams[ PARTICLE_ATTRIBUTE_POSITION ][ 0 ], m_pStreams[ PARTICLE_ATTRIBUTE_POSITION ][ 1 ], m_pStreams[ PARTICLE_ATTRIBUTE_POSITION ][ 2 ] };
		for ( int i = 0; i < m_nActive; ++i )
		{
			// A negative radius covers nothing beyond the particle's own point.
			float flRadius = pRadius[ i ] > 0.0f ? pRadius[ i ] : 0.0f;
			float flLo[ 3 ], flHi[ 3 ];
			bool bFinite = std::isfinite( pRadius[ i ] );
			for ( int k = 0; k < 3; ++k )
			{
				flLo[ k ] = pPos[ k ][ i ] - flRadius;
				flHi[ k ] = pPos[ k ][ i ] + flRadius;
				bFinite = bFinite && std::isfinite( flLo[ k ] ) && std::isfinite( flHi[ k ] );
			}
			if ( !bFinite )
			{
				++m_nNonFinite;
				continue;
			}
			for ( int k = 0; k < 3; ++k )
			{
				vMin[ k ] = std::min( vMin[ k ], flLo[ k ] );
				vMax[ k ] = std::max( vMax[ k ], flHi[ k ] );
			}
			bAny = true;
		}
	}
	for ( const auto &pChild : m_Children )
	{
		if ( !pChild->m_bBoundsValid )
			continue;
		for ( int k = 0; k < 3; ++k )
		{
			vMin[ k ] = std::min( vMin[ k ], pChild->m_vBoundsMin[ k ] );
			vMax[ k ] = std::max( vMax[ k ], pChild->m_vBoundsMax[ k ] );
		}
		bAny = true;
	}
	m_bBoundsValid = bAny;
	if ( bAny )
	{
		m_vBoundsMin = vMin;
		m_vBoundsMax = vMax;
	}
	return bAny;
}

int CParticleCollection::GetRendererCount() const
{
	return int( m_Renderers.size() );
}

bool CParticleCollection::GetDrawData( int nRenderer, ParticleDrawData_t *pData ) const
{
	if ( nRenderer < 0 || size_t( nRenderer ) >= m_Renderers.size() || !pData )
		return false;
	*pData = ParticleDrawData_t();
	pData->m_pClassName = m_Renderers[ size_t( nRenderer ) ]->GetClassName();
	m_Renderers[ size_t( nRenderer ) ]->FillDrawData( *this, pData );
	return true;
}
