#pragma once
// The common root of every particle function and the base of each definition list. A
// definition's lists hold owning pointers to these bases, so a file's "_class" picks the
// concrete class within the list's own family.
//
// Class metadata that the particle manager reads (declared once, with the class):
//	"MPropertyFriendlyName"        the name shown in lists and pickers
//	"MParticleExclusionGroup"      int: -1 one per list, 0 .. 5 one setter of a thing; absent: no limit
//	"MParticleWrittenAttributes"   int: mask of attributes the function always writes
//	"MObsoleteParticleFunction", "MParticleMinVersion", "MParticleMaxVersion", "MParticleReplacementOp"
// Field metadata:
//	"MParticleOutputField"         the int field names an attribute that the function writes
//	"MParticleAttributeUsage"      text: a renderer uses the attribute named by the int field for this
//	"MParticleAttributeUsageComponents"  "x,y,z" texts: the same, per component of a vector attribute

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

// Pre-emission operators run once per step before the emitters, usually on control points.
class CParticleFunctionPreEmission : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( CParticleFunctionPreEmission, CParticleFunctionOperator )
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
