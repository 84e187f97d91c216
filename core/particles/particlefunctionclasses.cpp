#include "core/particles/particlefunctionclasses.h"

#include "core/kv3transfer/kv3transferobject.h"
#include "core/particles/particleconstraints.h"
#include "core/particles/particleemitters.h"
#include "core/particles/particleforces.h"
#include "core/particles/particleinitializers.h"
#include "core/particles/particleoperators.h"
#include "core/particles/particlepreemission.h"
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

// The order here is the order of each list in the function picker.
void RegisterOnce()
{
	CSchemaSystemTypeScope *pScope = ParticleTypeScope();
	// Bases first, so they exist even for a family that has no concrete class yet.
	RegisterAll<CParticleFunction, CParticleFunctionEmitter, CParticleFunctionInitializer, CParticleFunctionOperator, CParticleFunctionPreEmission,
				CParticleFunctionForce, CParticleFunctionConstraint, CParticleFunctionRenderer>( pScope );
	RegisterAll<C_OP_SetSingleControlPointPosition>( pScope );
	RegisterAll<C_OP_ContinuousEmitter, C_OP_InstantaneousEmitter, C_OP_MaintainEmitter>( pScope );
	RegisterAll<C_INIT_CreateWithinSphere, C_INIT_CreateWithinBox, C_INIT_RingWave, C_INIT_CreateOnModel, C_INIT_PositionOffset, C_INIT_InitialVelocityNoise,
				C_INIT_VelocityRandom, C_INIT_RandomLifeTime, C_INIT_RandomRadius, C_INIT_RandomAlpha, C_INIT_RandomColor, C_INIT_RandomRotation, C_INIT_RandomYaw,
				C_INIT_RandomRotationSpeed, C_INIT_RandomTrailLength, C_INIT_InitFloat, C_INIT_InitVec, C_INIT_RemapTransformToVector,
				C_INIT_RemapInitialDirectionToTransformToVector, C_INIT_RemapInitialTransformDirectionToRotation, C_INIT_RemapTransformOrientationToRotations>( pScope );
	RegisterAll<C_OP_BasicMovement, C_OP_Decay, C_OP_FadeInSimple, C_OP_FadeOutSimple, C_OP_FadeAndKill, C_OP_AlphaDecay, C_OP_InterpolateRadius,
				C_OP_ColorInterpolate, C_OP_LerpScalar, C_OP_LerpVector, C_OP_SpinUpdate, C_OP_Spin, C_OP_SetFloat, C_OP_SetVec, C_OP_OscillateScalar,
				C_OP_OscillateVector, C_OP_NoiseLegacy, C_OP_NoiseSimplex, C_OP_Noise, C_OP_VectorNoise, C_OP_ClampScalar>( pScope );
	RegisterAll<C_OP_TurbulenceForce, C_OP_AttractToControlPoint, C_OP_TwistAroundAxis, C_OP_RandomForce>( pScope );
	RegisterAll<C_OP_PlanarConstraint, C_OP_ConstrainDistance, C_OP_CollideWithPlane>( pScope );
	RegisterAll<C_OP_RenderSprites, C_OP_RenderTrails, C_OP_RenderModels>( pScope );
}
} // namespace

void RegisterParticleFunctionClasses()
{
	// A function-local static runs the registration exactly once, even across threads.
	static const bool s_bRegistered = ( RegisterOnce(), true );
	(void)s_bRegistered;
}
