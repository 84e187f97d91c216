#include "core/particles/particlefunctionclasses.h"

#include "core/kv3transfer/kv3transferobject.h"
#include "core/particles/particleconstraints.h"
#include "core/particles/particleemitters.h"
#include "core/particles/particleforces.h"
#include "core/particles/particleinitializers.h"
#include "core/particles/particleoperators.h"
#include "core/particles/particlerenderers.h"
#include "core/schema/schemasystem.h"

CSchemaSystemTypeScope *ParticleTypeScope()
{
	return SchemaSystem()->FindOrCreateTypeScopeForModule( "particles" );
}

namespace
{
template <typename... Classes> void RegisterAll( CSchemaSystemTypeScope *pScope )
{
	( RegisterKV3TransferClass<Classes>( pScope ), ... );
}

void RegisterOnce()
{
	CSchemaSystemTypeScope *pScope = ParticleTypeScope();
	// Bases first, so they exist even for a family that has no concrete class yet.
	RegisterAll<CParticleFunction, CParticleFunctionEmitter, CParticleFunctionInitializer, CParticleFunctionOperator, CParticleFunctionForce,
				CParticleFunctionConstraint, CParticleFunctionRenderer>( pScope );
	RegisterAll<C_OP_ContinuousEmitter, C_OP_InstantaneousEmitter>( pScope );
	RegisterAll<C_INIT_CreateWithinSphere, C_INIT_InitFloat, C_INIT_InitVec, C_INIT_RandomRadius, C_INIT_RandomLifeTime, C_INIT_RandomRotation,
				C_INIT_InitialVelocityNoise>( pScope );
	RegisterAll<C_OP_BasicMovement, C_OP_Decay, C_OP_FadeInSimple, C_OP_FadeOutSimple, C_OP_InterpolateRadius, C_OP_ColorInterpolate, C_OP_SpinUpdate,
				C_OP_SetFloat, C_OP_SetVec>( pScope );
	RegisterAll<C_OP_TurbulenceForce>( pScope );
	RegisterAll<C_OP_PlanarConstraint>( pScope );
	RegisterAll<C_OP_RenderSprites, C_OP_RenderTrails>( pScope );
}
} // namespace

void RegisterParticleFunctionClasses()
{
	// A function-local static runs the registration exactly once, even across threads.
	static const bool s_bRegistered = ( RegisterOnce(), true );
	(void)s_bRegistered;
}
