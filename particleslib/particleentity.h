#pragma once
// Whatever an effect is owned by or a control point follows: a node of a tool scene, a
// model. The lib host knows what its entities are; the manager only asks where they are.

#include "core/mathlib/vector.h"

class IParticleEntity
{
public:
	virtual ~IParticleEntity() = default;

	// World frame of the entity's origin.
	virtual void GetParticleEntityFrame( Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) const = 0;
};
