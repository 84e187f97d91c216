#pragma once
// What a particle function may ask of the world it runs in: traces, models, gravity,
// water. The place that shows the particles answers (a tool scene answers from its
// ground, models and the preview's settings).

#include <cstdint>

#include "core/mathlib/color.h"
#include "core/mathlib/vector.h"

class IParticleEntity;

// Entities by the words definitions use for them.
class IParticleEHandleHelper
{
public:
	// "self", "parent", "self_with_wearables"; null for a word that names nothing.
	virtual IParticleEntity *GetEntityByName( const char *pWord, IParticleEntity *pSelf ) = 0;

protected:
	~IParticleEHandleHelper() = default;
};

struct ParticleTraceResult_t
{
	float m_flFraction = 1.0f; // 1: nothing hit
	Vector m_vEnd;
	Vector m_vNormal;
	bool m_bStartSolid = false;
};

class IParticleSystemQuery : public IParticleEHandleHelper
{
public:
	virtual bool IsEditor() const = 0;
	virtual void GetLightingAtPoint( const Vector &vPoint, Color *pColor ) = 0;
	// A segment against the world's geometry.
	virtual void TraceLine( const Vector &vStart, const Vector &vEnd, ParticleTraceResult_t *pResult ) = 0;
	// nCount random points on the hitboxes of a set of an entity's model, in world space.
	virtual bool GetRandomPointsOnHitboxes( IParticleEntity *pEntity, const char *pHitboxSet, int nCount, bool bInside, Vector *pPoints ) = 0;
	virtual bool GetModelBounds( IParticleEntity *pEntity, Vector *pMin, Vector *pMax ) = 0;
	// A box moving from vStart to vEnd against the ground plane; true when it hits.
	virtual bool CollideWithGround( const Vector &vStart, const Vector &vEnd, const Vector &vMins, const Vector &vMaxs, ParticleTraceResult_t *pResult ) = 0;
	virtual Vector GetUpVector() const = 0;
	// -1 when activities aren't supported or the name is unknown.
	virtual int GetActivityByName( const char *pName ) const = 0;
	virtual int GetControllingPlayer( IParticleEntity *pEntity ) const = 0;
	virtual void GetGravity( const Vector *pPoints, int nCount, Vector *pGravity ) = 0;
	// Whether the box of a particle's motion is in water.
	virtual bool IsInWater( const Vector &vMins, const Vector &vMaxs ) = 0;
	virtual void FrameBegin() = 0;
	virtual void FrameEnd() = 0;

protected:
	~IParticleSystemQuery() = default;
};
