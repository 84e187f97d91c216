#pragma once
// The common root of every particle function and the base of each definition list. A
// definition's lists hold owning pointers to these bases, so a file's "_class" picks the
// concrete class within the list's own family.

#include "core/schema/schemadeclare.h"

class CParticleFunction
{
	SCHEMA_CLASS( CParticleFunction )
	virtual ~CParticleFunction() = default;
	// Disabled functions stay in the file but take no part in the simulation.
	SCHEMA_FIELD( bool, m_bDisableOperator, false, { "MPropertyFriendlyName", "Disable Operator" } )
};

class CParticleFunctionEmitter : public CParticleFunction
{
	SCHEMA_DERIVED_CLASS( CParticleFunctionEmitter, CParticleFunction )
};

class CParticleFunctionInitializer : public CParticleFunction
{
	SCHEMA_DERIVED_CLASS( CParticleFunctionInitializer, CParticleFunction )
};

class CParticleFunctionOperator : public CParticleFunction
{
	SCHEMA_DERIVED_CLASS( CParticleFunctionOperator, CParticleFunction )
};

class CParticleFunctionForce : public CParticleFunction
{
	SCHEMA_DERIVED_CLASS( CParticleFunctionForce, CParticleFunction )
};

class CParticleFunctionConstraint : public CParticleFunction
{
	SCHEMA_DERIVED_CLASS( CParticleFunctionConstraint, CParticleFunction )
};

class CParticleFunctionRenderer : public CParticleFunction
{
	SCHEMA_DERIVED_CLASS( CParticleFunctionRenderer, CParticleFunction )
};
