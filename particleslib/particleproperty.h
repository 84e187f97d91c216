#pragma once
// An owner's view of its effects: it creates them through the manager, holds for each the
// control points that follow something, and keeps those up to date every step.

#include <cstdint>
#include <vector>

#include "core/mathlib/vector.h"
#include "core/particles/particleattachment.h"
#include "core/particles/sim/particleruntimedefinition.h"
#include "particleslib/particlematrix.h"

class CNewParticleEffect;
class CParticleMgr;
class IParticleEntity;

// The owner of a property, as the property shows it to the host.
class IParticlePropertyOuter
{
public:
	virtual IParticleEntity *GetParticlePropertyOwner() = 0;
	virtual void OnParticleEffectCreated( const char *pName, CNewParticleEffect *pEffect ) = 0;
	virtual void OnParticleEffectRemoved( CNewParticleEffect *pEffect, int nIndex ) = 0;

protected:
	~IParticlePropertyOuter() = default;
};

// One control point that follows something.
struct ParticleControlPointRecord_t
{
	int16_t m_nControlPoint = 0;
	bool m_bEntityChanged = false;
	ParticleAttachment_t m_nAttachType = PATTACH_ABSORIGIN_FOLLOW;
	bool m_bFollow = false;
	int m_nAttachmentIndex = 0;
	Vector m_vecEntityOffset = ParticleNoVector();
	ParticleFrame_t m_matOffset;
	IParticleEntity *m_pEntity = nullptr;
};

struct ParticleEffectEntry_t
{
	std::vector<ParticleControlPointRecord_t> m_ControlPoints;
	CNewParticleEffect *m_pEffect = nullptr; // counted
	bool m_bCanAggregate = true;
	bool m_bAggregated = false;
};

struct ParticleEffectCreateParams_t
{
	ParticleDefinitionPtr_t m_pDefinition;
	ParticleAttachment_t m_nAttachType = PATTACH_ABSORIGIN_FOLLOW;
	bool m_bFollow = false;
	int m_nAttachmentIndex = 0;
	Vector m_vOffset;
	const ParticleFrame_t *m_pOffsetMatrix = nullptr;
	int m_nSplitScreenUser = -1;
	Vector m_vAggregationPosition = ParticleNoVector();
	const char *m_pName = nullptr; // the system's name, for the report of a missing one
};

constexpr int PARTICLE_PROPERTY_MAX_CONTROL_POINTS = 64;

class CParticleProperty
{
public:
	CParticleProperty( CParticleMgr *pMgr, IParticlePropertyOuter *pOuter ) : m_pMgr( pMgr ), m_pOuter( pOuter ) {}
	~CParticleProperty();
	CParticleProperty( const CParticleProperty & ) = delete;
	CParticleProperty &operator=( const CParticleProperty & ) = delete;

	// A new effect (or an aggregated or batched one); null when the view cull refused it or
	// the collection couldn't be made. A missing definition runs the error system instead.
	CNewParticleEffect *Create( const ParticleDefinitionPtr_t &pDefinition, ParticleAttachment_t nAttachType, bool bFollow = false, int nAttachmentIndex = 0 );
	CNewParticleEffect *Create( const ParticleEffectCreateParams_t &params );

	void AddControlPoint( CNewParticleEffect *pEffect, int nPoint, IParticleEntity *pEntity, ParticleAttachment_t nAttachType, bool bFollow = false, int nAttachmentIndex = 0,
		const Vector &vOffset = Vector(), const ParticleFrame_t *pMatrix = nullptr, const Vector &vEntityOffset = ParticleNoVector() );
	void SetControlPoint( int nEffectIndex, int nPoint, IParticleEntity *pEntity, ParticleAttachment_t nAttachType, const Vector &vOffset = Vector() );
	void SetControlPoint( CNewParticleEffect *pEffect, int nPoint, IParticleEntity *pEntity, ParticleAttachment_t nAttachType, const Vector &vOffset = Vector() );
	void RemoveControlPoint( CNewParticleEffect *pEffect, int nPoint );

	void StopEmission( CNewParticleEffect *pEffect, bool bWakeOnStop = false, bool bDestroyIfNotStarted = false, bool bRemoveAllParticles = false, bool bPlayEndCap = false );
	void StopParticlesImmediately( CNewParticleEffect *pEffect );
	void StopAll();

	// From the effect: its step, its end, its replacement.
	void OnParticleSystemUpdated( CNewParticleEffect *pEffect );
	void OnParticleSystemDeleted( CNewParticleEffect *pEffect );
	void ReplaceEffect( CNewParticleEffect *pOld, CNewParticleEffect *pNew );

	int GetEffectCount() const { return int( m_Effects.size() ); }
	CNewParticleEffect *GetEffect( int nIndex ) const { return m_Effects[ size_t( nIndex ) ].m_pEffect; }
	// The entry's index, or -1.
	int FindEffect( const CNewParticleEffect *pEffect ) const;
	const ParticleEffectEntry_t &GetEntry( int nIndex ) const { return m_Effects[ size_t( nIndex ) ]; }
	CParticleMgr *GetManager() const { return m_pMgr; }
	IParticleEntity *GetOwner() const;

private:
	CNewParticleEffect *FindAggregationTarget( const ParticleEffectCreateParams_t &params, const ParticleDefinitionPtr_t &pDefinition );
	void ApplyRecords( int nEntry, int nRecord, bool bInitial );
	void ApplyRecord( CNewParticleEffect *pEffect, ParticleControlPointRecord_t &record, bool bInitial );
	void UpdateRecord( ParticleEffectEntry_t &entry, ParticleControlPointRecord_t &record, IParticleEntity *pEntity, ParticleAttachment_t nAttachType, bool bFollow,
		int nAttachmentIndex, const Vector &vOffset, const ParticleFrame_t *pMatrix, const Vector &vEntityOffset );
	// Drops an entry, its effect losing owner and property.
	void RemoveEntry( int nIndex );

	CParticleMgr *m_pMgr;
	IParticlePropertyOuter *m_pOuter;
	std::vector<ParticleEffectEntry_t> m_Effects;
};
