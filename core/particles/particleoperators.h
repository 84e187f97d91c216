#pragma once
// Operators: functions that update living particles every simulation step.

#include <cstdint>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/color.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"
#include "core/particles/particlefunctionenums.h"
#include "core/particles/particleinputliterals.h"

// ---- Movement and life ----

class C_OP_BasicMovement : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_BasicMovement, CParticleFunctionOperator, { "MPropertyFriendlyName", "Movement Basic" }, { "MParticleExclusionGroup", -1 },
						  { "MParticleWrittenAttributes", 0x5 } )
	// Units per second squared; forces of the force generators add to it.
	SCHEMA_FIELD( Vector, m_Gravity, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "gravity" } )
	// 0 .. 1: share of the velocity lost per second.
	SCHEMA_FIELD( float, m_fDrag, 0.0f, { "MPropertyFriendlyName", "drag" } )
	// Newer behaviour runs the constraints more than once per step.
	SCHEMA_FIELD( int32_t, m_nMaxConstraintPasses, 3, { "MPropertyFriendlyName", "max constraint passes" }, { "MParticleMinVersion", 6 },
				  { "MParticleAdvancedField" } )
};

class C_OP_Decay : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_Decay, CParticleFunctionOperator, { "MPropertyFriendlyName", "Lifespan Decay" }, { "MParticleExclusionGroup", -1 } )
	// Ropes remove their dead particles from the end only, so the rope stays whole.
	SCHEMA_FIELD( bool, m_bRopeDecay, false, { "MPropertyFriendlyName", "rope decay" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( bool, m_bForcePreserveParticleOrder, false, { "MPropertyFriendlyName", "force preserve particle order" }, { "MParticleAdvancedField" } )
};

// ---- Fades ----

class C_OP_FadeInSimple : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_FadeInSimple, CParticleFunctionOperator, { "MPropertyFriendlyName", "Alpha Fade In Simple" } )
	// A share of the particle's life.
	SCHEMA_FIELD( float, m_flFadeInTime, 0.25f, { "MPropertyFriendlyName", "proportional fade in time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 7, { "MPropertyFriendlyName", "alpha field" }, { "MPropertyAttributeChoiceName", "particlefield_alpha" },
				  { "MParticleOutputField" } )
};

class C_OP_FadeOutSimple : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_FadeOutSimple, CParticleFunctionOperator, { "MPropertyFriendlyName", "Alpha Fade Out Simple" } )
	SCHEMA_FIELD( float, m_flFadeOutTime, 0.25f, { "MPropertyFriendlyName", "proportional fade out time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 7, { "MPropertyFriendlyName", "alpha field" }, { "MPropertyAttributeChoiceName", "particlefield_alpha" },
				  { "MParticleOutputField" } )
};

class C_OP_FadeAndKill : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_FadeAndKill, CParticleFunctionOperator, { "MPropertyFriendlyName", "Alpha Fade and Decay" }, { "MParticleWrittenAttributes", 0x80 } )
	// Times are shares of the particle's life; the particle dies at the end of the fade out.
	SCHEMA_FIELD( float, m_flStartFadeInTime, 0.0f, { "MPropertyFriendlyName", "start fade in time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( float, m_flEndFadeInTime, 0.5f, { "MPropertyFriendlyName", "end fade in time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( float, m_flStartFadeOutTime, 0.5f, { "MPropertyFriendlyName", "start fade out time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( float, m_flEndFadeOutTime, 1.0f, { "MPropertyFriendlyName", "end fade out time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( float, m_flStartAlpha, 1.0f, { "MPropertyFriendlyName", "start alpha" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( float, m_flEndAlpha, 0.0f, { "MPropertyFriendlyName", "end alpha" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( bool, m_bForcePreserveParticleOrder, false, { "MPropertyFriendlyName", "force preserve particle order" }, { "MParticleAdvancedField" } )
};

// Kept so that old files still open; the fades above do its work better.
class C_OP_AlphaDecay : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_AlphaDecay, CParticleFunctionOperator, { "MPropertyFriendlyName", "Alpha Decay" }, { "MObsoleteParticleFunction" } )
	// The particle dies once its alpha falls to this.
	SCHEMA_FIELD( float, m_flMinAlpha, 0.0f, { "MPropertyFriendlyName", "minimum alpha" } )
};

// ---- Interpolation over life ----

class C_OP_InterpolateRadius : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_InterpolateRadius, CParticleFunctionOperator, { "MPropertyFriendlyName", "Radius Scale" }, { "MParticleWrittenAttributes", 0x8 } )
	SCHEMA_FIELD( float, m_flStartScale, 1.0f, { "MPropertyFriendlyName", "radius start scale" } )
	SCHEMA_FIELD( float, m_flEndScale, 1.0f, { "MPropertyFriendlyName", "radius end scale" } )
	// Shares of the particle's life.
	SCHEMA_FIELD( float, m_flStartTime, 0.0f, { "MPropertyFriendlyName", "start time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( float, m_flEndTime, 1.0f, { "MPropertyFriendlyName", "end time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( bool, m_bEaseInAndOut, false, { "MPropertyFriendlyName", "ease in and out" } )
	// -1 .. 1: bends the interpolation towards its start or its end.
	SCHEMA_FIELD( float, m_flBias, 0.0f, { "MPropertyFriendlyName", "scale bias" }, { "MPropertyAttributeRange", "-1 1" }, { "MParticleMinVersion", 5 } )
};

class C_OP_ColorInterpolate : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_ColorInterpolate, CParticleFunctionOperator, { "MPropertyFriendlyName", "Color Fade" } )
	SCHEMA_FIELD( Color, m_ColorFade, ( Color( 255, 255, 255, 255 ) ), { "MPropertyFriendlyName", "color fade" } )
	SCHEMA_FIELD( float, m_flFadeStartTime, 0.0f, { "MPropertyFriendlyName", "fade start time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( float, m_flFadeEndTime, 1.0f, { "MPropertyFriendlyName", "fade end time" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 6, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleOutputField" } )
	// The old smoothstep fade; later versions ease through the colour's own curve.
	SCHEMA_FIELD( bool, m_bEaseInOut, false, { "MPropertyFriendlyName", "ease in and out" }, { "MParticleMaxVersion", 7 } )
};

class C_OP_LerpScalar : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_LerpScalar, CParticleFunctionOperator, { "MPropertyFriendlyName", "Lerp Initial Scalar" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 3, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flOutput, "CPerParticleFloatInput", ParticleFloatLiteral( 1.0f ), { "MPropertyFriendlyName", "value to lerp to" } )
	SCHEMA_FIELD( float, m_flStartTime, 0.0f, { "MPropertyFriendlyName", "start time" } )
	SCHEMA_FIELD( float, m_flEndTime, 1.0f, { "MPropertyFriendlyName", "end time" } )
};

class C_OP_LerpVector : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_LerpVector, CParticleFunctionOperator, { "MPropertyFriendlyName", "Lerp Initial Vector" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 6, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( Vector, m_vecOutput, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "value to lerp to" } )
	SCHEMA_FIELD( float, m_flStartTime, 0.0f, { "MPropertyFriendlyName", "start time" } )
	SCHEMA_FIELD( float, m_flEndTime, 1.0f, { "MPropertyFriendlyName", "end time" } )
	SCHEMA_FIELD( ParticleSetMethod_t, m_nSetMethod, PARTICLE_SET_REPLACE_VALUE, { "MPropertyFriendlyName", "set value method" } )
};

// ---- Rotation ----

class C_OP_SpinUpdate : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_SpinUpdate, CParticleFunctionOperator, { "MPropertyFriendlyName", "Rotation Basic" }, { "MParticleWrittenAttributes", 0x10 } )
};

class C_OP_Spin : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_Spin, CParticleFunctionOperator, { "MPropertyFriendlyName", "Rotation Spin Roll" }, { "MParticleWrittenAttributes", 0x10 } )
	// Degrees per second, slowing to the minimum by the stop time (a share of life; 0 never stops).
	SCHEMA_FIELD( int32_t, m_nSpinRateDegrees, 0, { "MPropertyFriendlyName", "spin rate degrees" } )
	SCHEMA_FIELD( int32_t, m_nSpinRateMinDegrees, 0, { "MPropertyFriendlyName", "spin rate min" } )
	SCHEMA_FIELD( float, m_fSpinRateStopTime, 0.0f, { "MPropertyFriendlyName", "spin stop time" } )
};

// ---- General setters ----

class C_OP_SetFloat : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_SetFloat, CParticleFunctionOperator, { "MPropertyFriendlyName", "Set Float" } )
	SCHEMA_FIELD( int32_t, m_nOutputField, 3, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_InputValue, "CPerParticleFloatInput", {}, { "MPropertyFriendlyName", "value" } )
	SCHEMA_FIELD( ParticleSetMethod_t, m_nSetMethod, PARTICLE_SET_REPLACE_VALUE, { "MPropertyFriendlyName", "set value method" } )
	// Share of the way from the current value to the input per step.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_Lerp, "CPerParticleFloatInput", ParticleFloatLiteral( 1.0f ), { "MPropertyFriendlyName", "interpolation" },
							  { "MParticleAdvancedField" } )
};

class C_OP_SetVec : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_SetVec, CParticleFunctionOperator, { "MPropertyFriendlyName", "Set Vec" } )
	SCHEMA_FIELD( int32_t, m_nOutputField, 6, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_InputValue, "CPerParticleVecInput", {}, { "MPropertyFriendlyName", "value" } )
	SCHEMA_FIELD( ParticleSetMethod_t, m_nSetMethod, PARTICLE_SET_REPLACE_VALUE, { "MPropertyFriendlyName", "set value method" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_Lerp, "CPerParticleFloatInput", ParticleFloatLiteral( 1.0f ), { "MPropertyFriendlyName", "interpolation" },
							  { "MParticleAdvancedField" } )
	SCHEMA_FIELD( bool, m_bNormalizedOutput, false, { "MPropertyFriendlyName", "normalize" } )
};

// ---- Oscillation and noise ----

class C_OP_OscillateScalar : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_OscillateScalar, CParticleFunctionOperator, { "MPropertyFriendlyName", "Oscillate Scalar" } )
	// Change per second at the wave's peak, and waves per second.
	SCHEMA_FIELD( float, m_RateMin, 0.0f, { "MPropertyFriendlyName", "oscillation rate min" } )
	SCHEMA_FIELD( float, m_RateMax, 0.0f, { "MPropertyFriendlyName", "oscillation rate max" } )
	SCHEMA_FIELD( float, m_FrequencyMin, 1.0f, { "MPropertyFriendlyName", "oscillation frequency min" } )
	SCHEMA_FIELD( float, m_FrequencyMax, 1.0f, { "MPropertyFriendlyName", "oscillation frequency max" } )
	SCHEMA_FIELD( int32_t, m_nField, 7, { "MPropertyFriendlyName", "oscillation field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleOutputField" } )
	// Frequencies count per life rather than per second.
	SCHEMA_FIELD( bool, m_bProportional, true, { "MPropertyFriendlyName", "proportional 0/1" } )
	SCHEMA_FIELD( float, m_flOscMult, 2.0f, { "MPropertyFriendlyName", "oscillation multiplier" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( float, m_flOscAdd, 0.5f, { "MPropertyFriendlyName", "oscillation start phase" }, { "MParticleAdvancedField" } )
};

class C_OP_OscillateVector : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_OscillateVector, CParticleFunctionOperator, { "MPropertyFriendlyName", "Oscillate Vector" } )
	SCHEMA_FIELD( Vector, m_RateMin, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "oscillation rate min" } )
	SCHEMA_FIELD( Vector, m_RateMax, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "oscillation rate max" } )
	SCHEMA_FIELD( Vector, m_FrequencyMin, ( Vector( 1.0f, 1.0f, 1.0f ) ), { "MPropertyFriendlyName", "oscillation frequency min" } )
	SCHEMA_FIELD( Vector, m_FrequencyMax, ( Vector( 1.0f, 1.0f, 1.0f ) ), { "MPropertyFriendlyName", "oscillation frequency max" } )
	SCHEMA_FIELD( int32_t, m_nField, 0, { "MPropertyFriendlyName", "oscillation field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( bool, m_bProportional, true, { "MPropertyFriendlyName", "proportional 0/1" } )
	SCHEMA_FIELD( float, m_flOscMult, 2.0f, { "MPropertyFriendlyName", "oscillation multiplier" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( float, m_flOscAdd, 0.5f, { "MPropertyFriendlyName", "oscillation start phase" }, { "MParticleAdvancedField" } )
};

// The scalar noise changed its generator twice; old files keep their look until upgraded:
// C_OP_NoiseLegacy (up to version 3) -> C_OP_NoiseSimplex (up to version 8) -> C_OP_Noise.
class C_OP_NoiseLegacy : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_NoiseLegacy, CParticleFunctionOperator, { "MPropertyFriendlyName", "Noise Scalar (value noise)" }, { "MParticleMaxVersion", 3 },
						  { "MParticleReplacementOp", "C_OP_NoiseSimplex" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 3, { "MPropertyFriendlyName", "noise output field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( float, m_flOutputMin, 0.0f, { "MPropertyFriendlyName", "noise output min" } )
	SCHEMA_FIELD( float, m_flOutputMax, 1.0f, { "MPropertyFriendlyName", "noise output max" } )
	SCHEMA_FIELD( float, m_fl4NoiseScale, 0.001f, { "MPropertyFriendlyName", "noise coordinate scale" } )
	SCHEMA_FIELD( bool, m_bAdditive, false, { "MPropertyFriendlyName", "additive" } )
};

class C_OP_NoiseSimplex : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_NoiseSimplex, CParticleFunctionOperator, { "MPropertyFriendlyName", "Noise Scalar (simplex noise)" }, { "MParticleMaxVersion", 8 },
						  { "MParticleReplacementOp", "C_OP_Noise" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 3, { "MPropertyFriendlyName", "noise output field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( float, m_flOutputMin, 0.0f, { "MPropertyFriendlyName", "noise output min" } )
	SCHEMA_FIELD( float, m_flOutputMax, 1.0f, { "MPropertyFriendlyName", "noise output max" } )
	SCHEMA_FIELD( float, m_fl4NoiseScale, 0.001f, { "MPropertyFriendlyName", "noise coordinate scale" } )
	SCHEMA_FIELD( bool, m_bAdditive, false, { "MPropertyFriendlyName", "additive" } )
};

class C_OP_Noise : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_Noise, CParticleFunctionOperator, { "MPropertyFriendlyName", "Noise Scalar" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 3, { "MPropertyFriendlyName", "noise output field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( float, m_flOutputMin, 0.0f, { "MPropertyFriendlyName", "noise output min" } )
	SCHEMA_FIELD( float, m_flOutputMax, 1.0f, { "MPropertyFriendlyName", "noise output max" } )
	SCHEMA_FIELD( float, m_fl4NoiseScale, 0.001f, { "MPropertyFriendlyName", "noise coordinate scale" } )
	SCHEMA_FIELD( bool, m_bAdditive, false, { "MPropertyFriendlyName", "additive" } )
	// How fast the noise field itself changes over time.
	SCHEMA_FIELD( float, m_flNoiseAnimationTimeScale, 0.0f, { "MPropertyFriendlyName", "noise animation time scale" }, { "MParticleMinVersion", 9 } )
};

class C_OP_VectorNoise : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_VectorNoise, CParticleFunctionOperator, { "MPropertyFriendlyName", "Noise Vector" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 0, { "MPropertyFriendlyName", "noise output field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( Vector, m_vecOutputMin, ( Vector( -1.0f, -1.0f, -1.0f ) ), { "MPropertyFriendlyName", "noise output min" } )
	SCHEMA_FIELD( Vector, m_vecOutputMax, ( Vector( 1.0f, 1.0f, 1.0f ) ), { "MPropertyFriendlyName", "noise output max" } )
	SCHEMA_FIELD( float, m_fl4NoiseScale, 0.001f, { "MPropertyFriendlyName", "noise coordinate scale" } )
	SCHEMA_FIELD( bool, m_bAdditive, true, { "MPropertyFriendlyName", "additive" } )
	// With the position as output, also moves the previous position so no velocity results.
	SCHEMA_FIELD( bool, m_bOffset, false, { "MPropertyFriendlyName", "offset instead of accelerate" } )
};

class C_OP_ClampScalar : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_ClampScalar, CParticleFunctionOperator, { "MPropertyFriendlyName", "Clamp Scalar" }, { "MParticleMinVersion", 10 } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 3, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flOutputMin, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "output min" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flOutputMax, "CPerParticleFloatInput", ParticleFloatLiteral( 1.0f ), { "MPropertyFriendlyName", "output max" } )
};
