#pragma once
// A running particle system: one collection per system of a tree, children below it.
// The manager of live effects drives it through this interface.

#include <cstdint>
#include <memory>

#include "core/mathlib/vector.h"
#include "core/particles/particleparamid.h"
#include "core/particles/sim/particlecamera.h"
#include "core/particles/sim/particledrawdata.h"
#include "core/particles/sim/particleprofilestats.h"

class CParticleModel;
class CParticleRuntimeDefinition;

constexpr int MAX_PARTICLE_CONTROL_POINTS = 64;

class IParticleCollection
{
public:
	virtual ~IParticleCollection() = default;

	virtual const CParticleRuntimeDefinition *GetDefinition() const = 0;
	virtual IParticleCollection *GetParent() const = 0;
	virtual IParticleCollection *GetFirstChild() const = 0;
	virtual IParticleCollection *GetNextSibling() const = 0;
	virtual bool IsValid() const = 0;

	// Control points 0 .. 63; others are ignored (setters) or read as unset (getters).
	// Setting one sets it in every child too.
	virtual void SetControlPoint( int nPoint, const Vector &vPosition ) = 0;
	virtual void SetControlPointOrientation( int nPoint, const Vector &vForward, const Vector &vRight, const Vector &vUp ) = 0;
	virtual void SetControlPointVelocity( int nPoint, const Vector &vVelocity ) = 0;
	virtual Vector GetControlPointPosition( int nPoint ) const = 0;
	virtual void GetControlPointOrientation( int nPoint, Vector *pForward, Vector *pRight, Vector *pUp ) const = 0;
	virtual Vector GetControlPointVelocity( int nPoint ) const = 0;
	virtual bool IsControlPointSet( int nPoint ) const = 0;
	// The model a control point carries, by resource name ("models/crate.tmsh"); an empty
	// name takes it off. False, with the reason logged once, when the model can't be had:
	// the point then carries none.
	virtual bool SetControlPointModel( int nPoint, const char *pModelName ) = 0;
	virtual const CParticleModel *GetControlPointModel( int nPoint ) const = 0;

	// Named values by identifier; false when no system of the tree knows the name.
	virtual bool SetNamedValueFloat( const ParticleParamID_t &id, float flValue ) = 0;
	virtual bool SetNamedValueVector( const ParticleParamID_t &id, const Vector &vValue ) = 0;
	virtual bool SetNamedValueTransform( const ParticleParamID_t &id, const Vector &vOrigin, const Vector &vForward, const Vector &vRight, const Vector &vUp ) = 0;
	// A model variable (PVAL_RESOURCE:tmsh) takes a model by resource name, as above.
	virtual bool SetNamedValueModel( const ParticleParamID_t &id, const char *pModelName ) = 0;
	virtual float GetNamedValueFloat( const ParticleParamID_t &id ) const = 0;
	virtual Vector GetNamedValueVector( const ParticleParamID_t &id ) const = 0;

	// The cameras of the view, for camera-driven inputs; children see the same. Without
	// any, those inputs take their no-camera fallback.
	virtual void SetCameras( const ParticleCamera_t *pCameras, int nCount ) = 0;
	virtual void ClearCameras() = 0;
	virtual int GetCameraCount() const = 0;

	// Starts over: time 0, emission on, particles kept. An aggregation keeps its old centre.
	virtual void Restart( bool bAggregate = false, const Vector &vOldCenter = Vector() ) = 0;
	virtual void Simulate( float flDt ) = 0;
	// The step of a culled system: time and emission advance, nothing moves.
	virtual void SimulateCulled( float flDt ) = 0;
	virtual bool IsFinished() const = 0;
	// True when stopping emission would not end the tree: some system of it emits
	// particles and has nothing that ever ends their lives.
	virtual bool WillNotEndOnStop() const = 0;
	virtual void StopEmission( bool bInfiniteOnly, bool bRemoveAllParticles, bool bWakeOnStop, bool bPlayEndCap ) = 0;

	virtual int GetActiveParticleCount( bool bIncludeChildren = false ) const = 0;
	virtual int GetAllocatedParticleCount() const = 0;
	virtual float GetCurrentTime() const = 0;
	virtual void SetCurrentTime( float flTime ) = 0;
	// The time at which the system first steps (a child's delay).
	virtual float GetFirstRunTime() const = 0;

	virtual int GetMaxDetailLevel() const = 0;
	virtual void SetMaxDetailLevel( int nLevel ) = 0;

	// Bounds of the particles of this system and its children, grown by their radii.
	virtual bool RecalculateBounds() = 0;
	virtual bool AreBoundsValid() const = 0;
	virtual Vector GetBoundsMin() const = 0;
	virtual Vector GetBoundsMax() const = 0;
	virtual void SetBoundsMin( const Vector &v ) = 0;
	virtual void SetBoundsMax( const Vector &v ) = 0;

	// Profiling: measured only while enabled.
	virtual void SetMeasuring( bool bMeasure ) = 0;
	virtual bool IsMeasuring() const = 0;
	virtual void GetProfileStats( ParticleProfileStats_t *pStats ) const = 0;

	// One entry per enabled renderer of this system (children have their own).
	virtual int GetRendererCount() const = 0;
	virtual bool GetDrawData( int nRenderer, ParticleDrawData_t *pData ) const = 0;
};

// Makes a collection tree; each tree has its own random source seeded by nSeed.
std::unique_ptr<IParticleCollection> CreateParticleCollection( const std::shared_ptr<const CParticleRuntimeDefinition> &pDefinition, uint64_t nSeed = 0 );
