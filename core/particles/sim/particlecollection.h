#pragma once
// The collection: particles of one system stored structure-of-arrays, one float array per
// attribute component, for the attributes the definition uses. A tree of collections
// shares one random source, owned by the root.

#include <cstdint>
#include <memory>
#include <vector>

#include "core/particles/particlemodel.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/particles/sim/particleattributestorage.h"
#include "core/particles/sim/particlerandom.h"
#include "core/particles/sim/particleruntimedefinition.h"

struct ParticleControlPoint_t
{
	Vector m_vPosition;
	Vector m_vPrevPosition;
	Vector m_vVelocity;
	Vector m_vForward{ 1.0f, 0.0f, 0.0f };
	Vector m_vRight{ 0.0f, -1.0f, 0.0f };
	Vector m_vUp{ 0.0f, 0.0f, 1.0f };
	float m_flChangeTime = 0.0f;
	bool m_bSet = false;
	bool m_bVelocitySet = false;
};

struct ParticleNamedValue_t
{
	float m_flValue = 0.0f;
	Vector m_vValue;
	Vector m_vForward{ 1.0f, 0.0f, 0.0f };
	Vector m_vRight{ 0.0f, -1.0f, 0.0f };
	Vector m_vUp{ 0.0f, 0.0f, 1.0f };
	// A model variable's model, and the name it was set by.
	CUtlString m_ModelName;
	ParticleModelPtr_t m_pModel;
	// Declared by this system or one above it: children sharing the name take it over.
	bool m_bDeclared = false;
};

class CParticleCollection final : public IParticleCollection
{
public:
	CParticleCollection( const ParticleDefinitionPtr_t &pDefinition, CParticleCollection *pParent, CParticleRandom *pRandom, uint64_t nSeed );
	~CParticleCollection() override;

	// IParticleCollection
	const CParticleRuntimeDefinition *GetDefinition() const override { return m_pDefinition.get(); }
	IParticleCollection *GetParent() const override { return m_pParent; }
	IParticleCollection *GetFirstChild() const override { return m_Children.empty() ? nullptr : m_Children.front().get(); }
	IParticleCollection *GetNextSibling() const override;
	bool IsValid() const override { return m_pDefinition != nullptr; }
	void SetControlPoint( int nPoint, const Vector &vPosition ) override;
	void SetControlPointOrientation( int nPoint, const Vector &vForward, const Vector &vRight, const Vector &vUp ) override;
	void SetControlPointVelocity( int nPoint, const Vector &vVelocity ) override;
	Vector GetControlPointPosition( int nPoint ) const override { return GetControlPoint( nPoint ).m_vPosition; }
	void GetControlPointOrientation( int nPoint, Vector *pForward, Vector *pRight, Vector *pUp ) const override;
	Vector GetControlPointVelocity( int nPoint ) const override;
	bool IsControlPointSet( int nPoint ) const override { return GetControlPoint( nPoint ).m_bSet; }
	bool SetControlPointModel( int nPoint, const char *pModelName ) override;
	const CParticleModel *GetControlPointModel( int nPoint ) const override;
	bool SetNamedValueFloat( const ParticleParamID_t &id, float flValue ) override;
	bool SetNamedValueVector( const ParticleParamID_t &id, const Vector &vValue ) override;
	bool SetNamedValueTransform( const ParticleParamID_t &id, const Vector &vOrigin, const Vector &vForward, const Vector &vRight, const Vector &vUp ) override;
	bool SetNamedValueModel( const ParticleParamID_t &id, const char *pModelName ) override;
	float GetNamedValueFloat( const ParticleParamID_t &id ) const override;
	Vector GetNamedValueVector( const ParticleParamID_t &id ) const override;
	void SetCameras( const ParticleCamera_t *pCameras, int nCount ) override;
	void ClearCameras() override;
	int GetCameraCount() const override { return int( m_Cameras.size() ); }
	void Restart( bool bAggregate, const Vector &vOldCenter ) override;
	void Simulate( float flDt ) override;
	void SimulateCulled( float flDt ) override;
	bool IsFinished() const override;
	bool WillNotEndOnStop() const override;
	void StopEmission( bool bInfiniteOnly, bool bRemoveAllParticles, bool bWakeOnStop, bool bPlayEndCap ) override;
	int GetActiveParticleCount( bool bIncludeChildren ) const override;
	int GetAllocatedParticleCount() const override { return m_nCapacity; }
	float GetCurrentTime() const override { return float( m_flCurTime ); }
	void SetCurrentTime( float flTime ) override { m_flCurTime = double( flTime ); }
	float GetFirstRunTime() const override { return m_flFirstRunTime; }
	int GetMaxDetailLevel() const override { return m_nDetailLevel; }
	void SetMaxDetailLevel( int nLevel ) override;
	bool RecalculateBounds() override;
	bool AreBoundsValid() const override { return m_bBoundsValid; }
	Vector GetBoundsMin() const override { return m_vBoundsMin; }
	Vector GetBoundsMax() const override { return m_vBoundsMax; }
	void SetBoundsMin( const Vector &v ) override { m_vBoundsMin = v; }
	void SetBoundsMax( const Vector &v ) override { m_vBoundsMax = v; }
	void SetMeasuring( bool bMeasure ) override;
	bool IsMeasuring() const override { return m_bMeasure; }
	void GetProfileStats( ParticleProfileStats_t *pStats ) const override { *pStats = m_Stats; }
	int GetRendererCount() const override;
	bool GetDrawData( int nRenderer, ParticleDrawData_t *pData ) const override;

	// What functions and inputs use while stepping.
	int Count() const { return m_nActive; }
	int Capacity() const { return m_nCapacity; }
	bool HasAttribute( int nAttribute ) const { return IsValidParticleAttribute( nAttribute ) && m_pStreams[ nAttribute ][ 0 ] != nullptr; }
	// The array of one component of an attribute; null for an attribute the definition doesn't use.
	float *Stream( int nAttribute, int nComponent = 0 ) { return IsValidParticleAttribute( nAttribute ) ? m_pStreams[ nAttribute ][ nComponent ] : nullptr; }
	const float *Stream( int nAttribute, int nComponent = 0 ) const { return IsValidParticleAttribute( nAttribute ) ? m_pStreams[ nAttribute ][ nComponent ] : nullptr; }
	const float *InitialStream( int nAttribute, int nComponent = 0 ) const;
	const ParticleControlPoint_t &GetControlPoint( int nPoint ) const;
	const ParticleNamedValue_t *GetNamedValue( int nSlot ) const;
	const std::vector<ParticleCamera_t> &GetCameras() const { return m_Cameras; }
	// The camera nearest a point, or null without cameras.
	const ParticleCamera_t *FindClosestCamera( const Vector &vPoint ) const;
	float GetTime() const { return float( m_flCurTime ); }
	// The time as it is kept: summed in double precision, so it doesn't drift over a long run.
	double GetTimeExact() const { return m_flCurTime; }
	float GetEndCapTime() const { return float( m_flEndCapTime ); }
	bool IsInEndCap() const { return m_bInEndCap; }
	// The time over which a particle's previous position lies behind it: velocity is
	// (pos - prev) / this. After a step it is the step's length, but never below
	// MIN_MOTION_DT, so that a very short step (a child starting a hair after its parent's
	// frame) keeps velocities that a float can still tell apart far from the origin.
	float GetPreviousDt() const { return m_flPreviousDt; }
	static constexpr float MIN_MOTION_DT = 1.0e-3f;
	static float MotionDt( float flStepDt ) { return flStepDt > MIN_MOTION_DT ? flStepDt : MIN_MOTION_DT; }
	// Particles left out of the last bounds because their position or radius isn't finite.
	int GetNonFiniteParticleCount() const { return m_nNonFinite; }
	int GetDetailLevel() const { return m_nDetailLevel; }
	CParticleRandom &Random() const { return *m_pRandom; }
	uint32_t GetRandomKey() const { return m_nRandomKey; }
	void KillParticle( int nIndex );
	// Force accumulators, zeroed each step when the definition has force generators.
	float *Force( int nComponent ) { return m_Force[ nComponent ].data(); }
	bool IsEmissionStopped() const { return m_bEmissionStopped; }
	// Whether the collection has stepped yet (a child waits out its delay first).
	bool HasStarted() const { return m_bStarted; }
	// Scratch arrays as long as the capacity, for a function's per-particle input values.
	static constexpr int SCRATCH_ARRAYS = 6;
	float *Scratch( int nIndex ) const { return m_pScratch[ nIndex ]; }
	// Sets a control point from a function while stepping (pre-emission operators); children follow.
	void WriteControlPoint( int nPoint, const Vector &vPosition, const Vector *pForward = nullptr, const Vector *pRight = nullptr, const Vector *pUp = nullptr );

private:
	void AllocateStreams();
	void SpawnParticles( int nCount );
	void RemoveKilledParticles();
	void RunStep( float flDt, bool bMove );
	int CountToEmit( float flDt );
	void StartEndCap();
	void SetControlPointModelData( int nPoint, const ParticleModelPtr_t &pModel );
	void SetNamedValueModelData( uint32_t nToken, const char *pName, const ParticleModelPtr_t &pModel, bool *pFound );
	CParticleCollection *RootCollection();

	ParticleDefinitionPtr_t m_pDefinition;
	CParticleCollection *m_pParent = nullptr;
	std::vector<std::unique_ptr<CParticleCollection>> m_Children;
	std::unique_ptr<CParticleRandom> m_pOwnedRandom;
	CParticleRandom *m_pRandom = nullptr;
	uint32_t m_nRandomKey = 0;

	int m_nActive = 0;
	int m_nCapacity = 0;
	uint32_t m_nNextParticleID = 0;
	std::vector<float> m_Storage;
	float *m_pStreams[ PARTICLE_ATTRIBUTE_COUNT ][ 3 ] = {};
	float *m_pInitialStreams[ PARTICLE_ATTRIBUTE_COUNT ][ 3 ] = {};
	float *m_pScratch[ SCRATCH_ARRAYS ] = {};
	std::vector<uint8_t> m_KillFlags;
	int m_nKilled = 0;
	std::vector<float> m_Force[ 3 ];

	ParticleControlPoint_t m_ControlPoints[ MAX_PARTICLE_CONTROL_POINTS ];
	std::vector<ParticleNamedValue_t> m_NamedValues;
	ParticleModelPtr_t m_ControlPointModels[ MAX_PARTICLE_CONTROL_POINTS ];
	std::vector<ParticleCamera_t> m_Cameras;
	std::vector<ParticleEmitterState_t> m_EmitterStates;

	double m_flCurTime = 0.0;
	float m_flFirstRunTime = 0.0f;   // a child waits for its delay
	float m_flPreviousDt = 1.0f / 60.0f;
	double m_flEndCapTime = 0.0;
	bool m_bEmissionStopped = false;
	bool m_bInEndCap = false;
	bool m_bIsEndCapChild = false;
	bool m_bStarted = false;
	int m_nDetailLevel = 3;

	Vector m_vBoundsMin, m_vBoundsMax;
	bool m_bBoundsValid = false;
	int m_nNonFinite = 0;
	bool m_bMeasure = false;
	ParticleProfileStats_t m_Stats;
	float m_flLastTotalUS = 0.0f;
	std::vector<const CParticleSimFunction *> m_Renderers;
};
