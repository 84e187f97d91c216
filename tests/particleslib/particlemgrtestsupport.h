#pragma once
// A fake lib host and owner for tests of the manager of live effects, and definitions
// compiled from text under a name.

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

#include "core/console/consoleregistry.h"
#include "core/console/convar.h"
#include "core/containers/utlbuffer.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/sim/particleruntimedefinition.h"
#include "core/particles/sim/particlesimmath.h"
#include "particleslib/iparticleslibhost.h"
#include "particleslib/particleentity.h"
#include "particleslib/particleproperty.h"

inline ParticleDefinitionPtr_t CompileNamedDefinition( const char *pName, const std::string &body )
{
	std::string text = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
					   "{ _class = \"CParticleSystemDefinition\"\n" +
					   body + "\n}\n";
	CUtlBuffer buffer( text.data(), text.size() );
	CUtlString error;
	ParticleDefinitionPtr_t pDefinition = CompileParticleDefinition( &buffer, pName, nullptr, &error );
	EXPECT_NE( pDefinition, nullptr ) << error.Get();
	return pDefinition;
}

// Particles that live a second, 20 a second for as long as it runs.
inline const char *ContinuousBody()
{
	return "m_Emitters = [ { _class = \"C_OP_ContinuousEmitter\" m_flEmitRate = 20.0 } ]\n"
		   "m_Initializers = [ { _class = \"C_INIT_RandomLifeTime\" m_fLifetimeMin = 1.0 m_fLifetimeMax = 1.0 } ]\n"
		   "m_Operators = [ { _class = \"C_OP_Decay\" } ]\n"
		   "m_Renderers = [ { _class = \"C_OP_RenderSprites\" } ]";
}

// Five particles at once that live a tenth of a second: the system ends soon.
inline const char *BurstBody()
{
	return "m_Emitters = [ { _class = \"C_OP_InstantaneousEmitter\" m_nParticlesToEmit = 5 } ]\n"
		   "m_Initializers = [ { _class = \"C_INIT_RandomLifeTime\" m_fLifetimeMin = 0.1 m_fLifetimeMax = 0.1 } ]\n"
		   "m_Operators = [ { _class = \"C_OP_Decay\" } ]\n"
		   "m_Renderers = [ { _class = \"C_OP_RenderSprites\" } ]";
}

class CFakeParticleEntity final : public IParticleEntity
{
public:
	explicit CFakeParticleEntity( const Vector &vOrigin = Vector() ) : m_vOrigin( vOrigin ) {}
	void GetParticleEntityFrame( Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) const override
	{
		*pOrigin = m_vOrigin;
		*pForward = Vector( 1, 0, 0 );
		*pRight = Vector( 0, -1, 0 );
		*pUp = Vector( 0, 0, 1 );
	}
	Vector m_vOrigin;
};

class CFakeLibHost final : public IParticlesLibHost
{
public:
	float GetGroupTime( int ) const override { return m_flTime; }
	int GetFrameNumber() const override { return m_nFrame; }
	void FrameBegin() override { ++m_nFrame; }
	void FrameEnd() override { ++m_nFrameEnds; }
	int GetHostManagerFrameValue( int ) const override { return 2; }
	bool GetHostManagerRenderFlag() const override { return true; }
	void ReportUnknownSystem( const char *pName ) override { m_UnknownSystems.push_back( pName ? pName : "" ); }
	bool GetAttachmentFrame( const ParticleControlPointRecord_t &record, Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) override
	{
		// Each effect asks for its control point 0 in its step: the order of steps. Steps
		// run on the pool's threads, so the record is kept under a lock.
		{
			std::lock_guard<std::mutex> lock( m_AttachmentMutex );
			m_AttachmentOrder.push_back( record.m_pEntity );
		}
		if ( !record.m_pEntity )
			return false;
		record.m_pEntity->GetParticleEntityFrame( pOrigin, pForward, pRight, pUp );
		*pOrigin = ParticleMath::Add( *pOrigin, record.m_matOffset.m_vOrigin );
		return true;
	}
	bool GetViews( std::vector<ParticleLibView_t> *pViews, std::vector<ParticleViewMatrix_t> *pMatrices ) override
	{
		*pViews = m_Views;
		*pMatrices = m_Matrices;
		return !m_Views.empty();
	}
	uint64_t GetOwnerCollectionSeed( IParticleEntity * ) override { return 7; }
	ISceneWorld *GetOwnerSceneWorld( IParticleEntity * ) override { return nullptr; }
	int CullEffects( int nCount, CNewParticleEffect *const *, uint8_t *pCulled ) override
	{
		for ( int i = 0; i < nCount; ++i )
			pCulled[ i ] = m_bCullAll ? 1 : 0;
		return PARTICLE_CULL_BYTES;
	}
	Vector GetOwnerPosition( IParticleEntity *pOwner ) override
	{
		Vector o, f, r, u;
		if ( pOwner )
			pOwner->GetParticleEntityFrame( &o, &f, &r, &u );
		return o;
	}
	bool IsSplitScreenUserValid( int ) const override { return false; }
	void OnFrameUpdateDone() override { ++m_nUpdatesDone; }
	void Shutdown() override { ++m_nShutdowns; }

	float m_flTime = 0.0f;
	int m_nFrame = 0;
	int m_nFrameEnds = 0;
	int m_nUpdatesDone = 0;
	int m_nShutdowns = 0;
	bool m_bCullAll = false;
	std::vector<std::string> m_UnknownSystems;
	std::vector<IParticleEntity *> m_AttachmentOrder;
	std::mutex m_AttachmentMutex;
	std::vector<ParticleLibView_t> m_Views;
	std::vector<ParticleViewMatrix_t> m_Matrices;
};

class CFakePropertyOuter final : public IParticlePropertyOuter
{
public:
	IParticleEntity *GetParticlePropertyOwner() override { return &m_Owner; }
	void OnParticleEffectCreated( const char *pName, CNewParticleEffect * ) override { m_Created.push_back( pName ); }
	void OnParticleEffectRemoved( CNewParticleEffect *, int nIndex ) override { m_RemovedIndices.push_back( nIndex ); }

	CFakeParticleEntity m_Owner;
	std::vector<std::string> m_Created;
	std::vector<int> m_RemovedIndices;
};

// Sets console variables for one test and puts them back after it.
class CScopedConVars
{
public:
	~CScopedConVars()
	{
		for ( auto it = m_Saved.rbegin(); it != m_Saved.rend(); ++it )
			it->first->SetValue( it->second.c_str() );
	}
	void Set( const char *pName, const char *pValue )
	{
		ConVar *pVar = ConsoleRegistry().FindVar( pName );
		ASSERT_NE( pVar, nullptr ) << pName;
		m_Saved.emplace_back( pVar, pVar->GetString() );
		pVar->SetValue( pValue );
	}

private:
	std::vector<std::pair<ConVar *, std::string>> m_Saved;
};
