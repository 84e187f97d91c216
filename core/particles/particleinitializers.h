#pragma once
// Initializers: functions that set a particle's attributes once, when it is born.

#include <cstdint>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/color.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"
#include "core/particles/particlefunctionenums.h"
#include "core/particles/particleinputliterals.h"

// ---- Position (exclusion group 0: one of them places the particle) ----

class C_INIT_CreateWithinSphere : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_CreateWithinSphere, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Create Within Sphere" },
						  { "MParticleExclusionGroup", 0 }, { "MParticleWrittenAttributes", 0x5 } )
	SCHEMA_FIELD( float, m_fRadiusMin, 0.0f, { "MPropertyFriendlyName", "radius min" } )
	SCHEMA_FIELD( float, m_fRadiusMax, 0.0f, { "MPropertyFriendlyName", "radius max" } )
	// Outward speed, along the direction from the centre.
	SCHEMA_FIELD( float, m_fSpeedMin, 0.0f, { "MPropertyFriendlyName", "speed min" } )
	SCHEMA_FIELD( float, m_fSpeedMax, 0.0f, { "MPropertyFriendlyName", "speed max" } )
	// A zero component flattens the sphere along that axis.
	SCHEMA_FIELD( Vector, m_vecDistanceBias, ( Vector( 1.0f, 1.0f, 1.0f ) ), { "MPropertyFriendlyName", "distance bias" } )
	SCHEMA_FIELD( int32_t, m_nControlPointNumber, 0, { "MPropertyFriendlyName", "control point number" } )
	// Speed added in the control point's own axes.
	SCHEMA_FIELD( Vector, m_LocalCoordinateSystemSpeedMin, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "speed in local coordinate system min" },
				  { "MParticleAdvancedField" } )
	SCHEMA_FIELD( Vector, m_LocalCoordinateSystemSpeedMax, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "speed in local coordinate system max" },
				  { "MParticleAdvancedField" } )
};

class C_INIT_CreateWithinBox : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_CreateWithinBox, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Create Within Box" }, { "MParticleExclusionGroup", 0 },
						  { "MParticleWrittenAttributes", 0x5 } )
	SCHEMA_FIELD( Vector, m_vecMin, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "min" } )
	SCHEMA_FIELD( Vector, m_vecMax, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "max" } )
	SCHEMA_FIELD( int32_t, m_nControlPointNumber, 0, { "MPropertyFriendlyName", "control point number" } )
	// The box turns with the control point.
	SCHEMA_FIELD( bool, m_bLocalSpace, false, { "MPropertyFriendlyName", "use local space" } )
};

class C_INIT_RingWave : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RingWave, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Position Along Ring" }, { "MParticleExclusionGroup", 0 },
						  { "MParticleWrittenAttributes", 0x5 } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_TransformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "ring transform" } )
	// -1 places particles at random; a count spaces them evenly around the ring.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flParticlesPerOrbit, "CParticleCollectionFloatInput", ParticleFloatLiteral( -1.0f ),
							  { "MPropertyFriendlyName", "even distribution count" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flInitialRadius, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "initial radius" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flThickness, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "thickness" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flInitialSpeedMin, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "min initial speed" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flInitialSpeedMax, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "max initial speed" } )
	// Degrees that tilt the ring's plane.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flRoll, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "roll" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flPitch, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "pitch" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flYaw, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "yaw" } )
	SCHEMA_FIELD( bool, m_bEvenDistribution, false, { "MPropertyFriendlyName", "even distribution" } )
	// Keeps the outward speed in the ring's plane.
	SCHEMA_FIELD( bool, m_bXYVelocityOnly, true, { "MPropertyFriendlyName", "XY velocity only" } )
};

class C_INIT_CreateOnModel : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_CreateOnModel, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Create On Model" }, { "MParticleExclusionGroup", 0 },
						  { "MParticleWrittenAttributes", 0xC005 } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_modelInput, "CParticleModelInput", {}, { "MPropertyFriendlyName", "input model" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_transformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "input transform" }, { "MParticleInputOptional" } )
	// -1 lets the particle start anywhere on the hitbox surface; 1 forces it inside.
	SCHEMA_FIELD( int32_t, m_nForceInModel, 0, { "MPropertyFriendlyName", "force to be inside model" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_vecHitBoxScale, "CParticleCollectionVecInput", ParticleVecLiteral( Vector( 1.0f, 1.0f, 1.0f ) ),
							  { "MPropertyFriendlyName", "hitbox scale" } )
	SCHEMA_FIELD( CUtlString, m_HitboxSetName, "default", { "MPropertyFriendlyName", "hitbox set" } )
};

// ---- Other placement and velocity ----

class C_INIT_PositionOffset : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_PositionOffset, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Position Modify Offset Random" },
						  { "MParticleWrittenAttributes", 0x5 } )
	SCHEMA_FIELD( Vector, m_OffsetMin, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "offset min" } )
	SCHEMA_FIELD( Vector, m_OffsetMax, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "offset max" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_TransformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "offset transform" } )
	SCHEMA_FIELD( bool, m_bLocalCoords, false, { "MPropertyFriendlyName", "offset in local space 0/1" } )
	// Scales the offset by the particle's radius.
	SCHEMA_FIELD( bool, m_bProportional, false, { "MPropertyFriendlyName", "offset proportional to radius 0/1" } )
};

class C_INIT_InitialVelocityNoise : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_InitialVelocityNoise, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Initial Velocity Noise" },
						  { "MParticleWrittenAttributes", 0x4 } )
	SCHEMA_FIELD( Vector, m_vecOutputMin, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "output minimum" } )
	SCHEMA_FIELD( Vector, m_vecOutputMax, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "output maximum" } )
	// Spatial frequency of the noise field.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flNoiseScale, "CPerParticleFloatInput", ParticleFloatLiteral( 1.0f ), { "MPropertyFriendlyName", "spatial noise coordinate scale" } )
	SCHEMA_FIELD( bool, m_bLocalSpace, false, { "MPropertyFriendlyName", "apply velocity in local space (0/1)" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_TransformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "input transform" }, { "MParticleInputOptional" } )
};

class C_INIT_VelocityRandom : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_VelocityRandom, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Velocity Random" }, { "MParticleWrittenAttributes", 0x4 } )
	SCHEMA_FIELD( int32_t, m_nControlPointNumber, 0, { "MPropertyFriendlyName", "control point number" } )
	// Speed in a random direction.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_fSpeedMin, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "random speed min" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_fSpeedMax, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "random speed max" } )
	// Velocity in the control point's axes.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_LocalCoordinateSystemSpeedMin, "CPerParticleVecInput", ParticleVecLiteral( Vector( 0.0f, 0.0f, 0.0f ) ),
							  { "MPropertyFriendlyName", "speed in local coordinate system min" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_LocalCoordinateSystemSpeedMax, "CPerParticleVecInput", ParticleVecLiteral( Vector( 0.0f, 0.0f, 0.0f ) ),
							  { "MPropertyFriendlyName", "speed in local coordinate system max" } )
};

// ---- Lifetime, size, colour ----

class C_INIT_RandomLifeTime : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomLifeTime, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Lifetime" }, { "MParticleWrittenAttributes", 0x2 } )
	SCHEMA_FIELD( float, m_fLifetimeMin, 0.0f, { "MPropertyFriendlyName", "lifetime min" } )
	SCHEMA_FIELD( float, m_fLifetimeMax, 0.0f, { "MPropertyFriendlyName", "lifetime max" } )
	// Above 1 favours short lives.
	SCHEMA_FIELD( float, m_fLifetimeRandExponent, 1.0f, { "MPropertyFriendlyName", "lifetime random exponent" }, { "MParticleAdvancedField" } )
};

class C_INIT_RandomRadius : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomRadius, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Radius" }, { "MParticleExclusionGroup", 1 },
						  { "MParticleWrittenAttributes", 0x8 } )
	SCHEMA_FIELD( float, m_flRadiusMin, 1.0f, { "MPropertyFriendlyName", "radius min" } )
	SCHEMA_FIELD( float, m_flRadiusMax, 1.0f, { "MPropertyFriendlyName", "radius max" } )
	SCHEMA_FIELD( float, m_flRadiusRandExponent, 1.0f, { "MPropertyFriendlyName", "radius random exponent" }, { "MParticleAdvancedField" } )
};

class C_INIT_RandomAlpha : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomAlpha, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Alpha" }, { "MParticleExclusionGroup", 2 } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 7, { "MPropertyFriendlyName", "alpha field" }, { "MPropertyAttributeChoiceName", "particlefield_alpha" },
				  { "MParticleOutputField" } )
	// 0 .. 255, as the colour picker shows alpha.
	SCHEMA_FIELD( int32_t, m_nAlphaMin, 255, { "MPropertyFriendlyName", "alpha min" } )
	SCHEMA_FIELD( int32_t, m_nAlphaMax, 255, { "MPropertyFriendlyName", "alpha max" } )
	SCHEMA_FIELD( float, m_flAlphaRandExponent, 1.0f, { "MPropertyFriendlyName", "alpha random exponent" }, { "MParticleAdvancedField" } )
};

class C_INIT_RandomColor : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomColor, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Color" }, { "MParticleExclusionGroup", 3 } )
	SCHEMA_FIELD( Color, m_ColorMin, ( Color( 255, 255, 255, 255 ) ), { "MPropertyFriendlyName", "color1" } )
	SCHEMA_FIELD( Color, m_ColorMax, ( Color( 255, 255, 255, 255 ) ), { "MPropertyFriendlyName", "color2" } )
	// A share of the light colour at the control point, blended in by m_flTintPerc.
	SCHEMA_FIELD( Color, m_TintMin, ( Color( 0, 0, 0, 0 ) ), { "MPropertyFriendlyName", "tint clamp min" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( Color, m_TintMax, ( Color( 255, 255, 255, 255 ) ), { "MPropertyFriendlyName", "tint clamp max" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( float, m_flTintPerc, 0.0f, { "MPropertyFriendlyName", "tint percentage" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 6, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleOutputField" } )
};

// ---- Rotation (group 4) and yaw (group 5) ----

class C_INIT_RandomRotation : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomRotation, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Rotation" }, { "MParticleExclusionGroup", 4 } )
	// Degrees: a fixed part plus a random part between min and max.
	SCHEMA_FIELD( float, m_flDegrees, 0.0f, { "MPropertyFriendlyName", "rotation offset" } )
	SCHEMA_FIELD( float, m_flDegreesMin, 0.0f, { "MPropertyFriendlyName", "rotation initial min" } )
	SCHEMA_FIELD( float, m_flDegreesMax, 360.0f, { "MPropertyFriendlyName", "rotation initial max" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 4, { "MPropertyFriendlyName", "rotation field" }, { "MPropertyAttributeChoiceName", "particlefield_rotation" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( float, m_flRotationRandExponent, 1.0f, { "MPropertyFriendlyName", "rotation random exponent" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( bool, m_bRandomlyFlipDirection, true, { "MPropertyFriendlyName", "randomly flip direction" } )
};

class C_INIT_RandomYaw : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomYaw, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Yaw" }, { "MParticleExclusionGroup", 5 } )
	SCHEMA_FIELD( float, m_flDegrees, 0.0f, { "MPropertyFriendlyName", "yaw offset" } )
	SCHEMA_FIELD( float, m_flDegreesMin, 0.0f, { "MPropertyFriendlyName", "yaw initial min" } )
	SCHEMA_FIELD( float, m_flDegreesMax, 360.0f, { "MPropertyFriendlyName", "yaw initial max" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 12, { "MPropertyFriendlyName", "yaw field" }, { "MPropertyAttributeChoiceName", "particlefield_rotation" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( float, m_flRotationRandExponent, 1.0f, { "MPropertyFriendlyName", "yaw random exponent" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( bool, m_bRandomlyFlipDirection, true, { "MPropertyFriendlyName", "randomly flip direction" } )
};

class C_INIT_RandomRotationSpeed : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomRotationSpeed, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Rotation Speed" } )
	// Degrees per second.
	SCHEMA_FIELD( float, m_flDegrees, 0.0f, { "MPropertyFriendlyName", "rotation speed offset" } )
	SCHEMA_FIELD( float, m_flDegreesMin, 0.0f, { "MPropertyFriendlyName", "rotation speed min" } )
	SCHEMA_FIELD( float, m_flDegreesMax, 360.0f, { "MPropertyFriendlyName", "rotation speed max" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 5, { "MPropertyFriendlyName", "rotation speed field" }, { "MPropertyAttributeChoiceName", "particlefield_rotation" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( bool, m_bRandomlyFlipDirection, true, { "MPropertyFriendlyName", "randomly flip direction" } )
};

class C_INIT_RandomTrailLength : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomTrailLength, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Trail Length" },
						  { "MParticleWrittenAttributes", 0x400 } )
	// Seconds of travel that the trail covers.
	SCHEMA_FIELD( float, m_flMinLength, 0.1f, { "MPropertyFriendlyName", "length min" } )
	SCHEMA_FIELD( float, m_flMaxLength, 0.1f, { "MPropertyFriendlyName", "length max" } )
	SCHEMA_FIELD( float, m_flLengthRandExponent, 1.0f, { "MPropertyFriendlyName", "length random exponent" }, { "MParticleAdvancedField" } )
};

// ---- General setters ----

class C_INIT_InitFloat : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_InitFloat, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Init Float" } )
	// Attribute 3 is the radius, the most common target.
	SCHEMA_FIELD( int32_t, m_nOutputField, 3, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_InputValue, "CPerParticleFloatInput", {}, { "MPropertyFriendlyName", "value" } )
	SCHEMA_FIELD( ParticleSetMethod_t, m_nSetMethod, PARTICLE_SET_REPLACE_VALUE, { "MPropertyFriendlyName", "set value method" } )
	// Blend between the attribute's value (0) and the input (1).
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_InputStrength, "CPerParticleFloatInput", ParticleFloatLiteral( 1.0f ), { "MPropertyFriendlyName", "strength" },
							  { "MParticleAdvancedField" } )
};

class C_INIT_InitVec : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_InitVec, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Init Vec" } )
	SCHEMA_FIELD( int32_t, m_nOutputField, 0, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_InputValue, "CPerParticleVecInput", {}, { "MPropertyFriendlyName", "value" } )
	SCHEMA_FIELD( ParticleSetMethod_t, m_nSetMethod, PARTICLE_SET_REPLACE_VALUE, { "MPropertyFriendlyName", "set value method" } )
	SCHEMA_FIELD( bool, m_bNormalizedOutput, false, { "MPropertyFriendlyName", "normalize" } )
	// Writing the position also writes the previous position, so the particle starts at rest.
	SCHEMA_FIELD( bool, m_bWritePreviousPosition, true, { "MPropertyFriendlyName", "set previous position" }, { "MParticleAdvancedField" } )
};

// ---- Remaps of control point transforms ----

class C_INIT_RemapTransformToVector : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RemapTransformToVector, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Remap Transform to Vector" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 0, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleOutputField" } )
	// The transform's position is mapped from the input range to the output range.
	SCHEMA_FIELD( Vector, m_vInputMin, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "input minimum" } )
	SCHEMA_FIELD( Vector, m_vInputMax, ( Vector( 1.0f, 1.0f, 1.0f ) ), { "MPropertyFriendlyName", "input maximum" } )
	SCHEMA_FIELD( Vector, m_vOutputMin, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "output minimum" } )
	SCHEMA_FIELD( Vector, m_vOutputMax, ( Vector( 1.0f, 1.0f, 1.0f ) ), { "MPropertyFriendlyName", "output maximum" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_TransformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "input transform" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_LocalSpaceTransform, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "local space transform" },
							  { "MParticleInputOptional" } )
	SCHEMA_FIELD( ParticleSetMethod_t, m_nSetMethod, PARTICLE_SET_REPLACE_VALUE, { "MPropertyFriendlyName", "output value method" } )
	SCHEMA_FIELD( bool, m_bOffset, false, { "MPropertyFriendlyName", "offset position" } )
	SCHEMA_FIELD( bool, m_bAccelerate, false, { "MPropertyFriendlyName", "accelerate position" } )
};

class C_INIT_RemapInitialDirectionToTransformToVector : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RemapInitialDirectionToTransformToVector, CParticleFunctionInitializer,
						  { "MPropertyFriendlyName", "Remap Initial Direction to Transform to Vector" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_TransformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "transform" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 21, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( float, m_flScale, 1.0f, { "MPropertyFriendlyName", "scale factor" } )
	// Degrees turned about m_vecOffsetAxis before writing.
	SCHEMA_FIELD( float, m_flOffsetRot, 0.0f, { "MPropertyFriendlyName", "offset rotation" } )
	SCHEMA_FIELD( Vector, m_vecOffsetAxis, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "offset axis" } )
	SCHEMA_FIELD( bool, m_bNormalize, false, { "MPropertyFriendlyName", "normalize" } )
};

class C_INIT_RemapInitialTransformDirectionToRotation : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RemapInitialTransformDirectionToRotation, CParticleFunctionInitializer,
						  { "MPropertyFriendlyName", "Remap Initial Transform Direction to Rotation" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_TransformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "transform" } )
	SCHEMA_FIELD( int32_t, m_nFieldOutput, 12, { "MPropertyFriendlyName", "output field" }, { "MPropertyAttributeChoiceName", "particlefield_rotation" },
				  { "MParticleOutputField" } )
	SCHEMA_FIELD( float, m_flOffsetRot, 0.0f, { "MPropertyFriendlyName", "offset rotation" } )
	// 0 .. 2: which axis of the transform gives the direction.
	SCHEMA_FIELD( int32_t, m_nComponent, 0, { "MPropertyFriendlyName", "component" }, { "MPropertyAttributeChoiceName", "vector_component" } )
};

class C_INIT_RemapTransformOrientationToRotations : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RemapTransformOrientationToRotations, CParticleFunctionInitializer,
						  { "MPropertyFriendlyName", "Remap Transform Orientation to Rotations" }, { "MParticleWrittenAttributes", 0x101010 } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_TransformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "transform" } )
	// Degrees added to pitch, yaw and roll.
	SCHEMA_FIELD( Vector, m_vecRotation, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "rotation offset" } )
	SCHEMA_FIELD( bool, m_bUseQuat, false, { "MPropertyFriendlyName", "use quaternion" } )
	SCHEMA_FIELD( bool, m_bWriteNormal, false, { "MPropertyFriendlyName", "write orientation to normal" } )
};
