#pragma once
// Initializers: functions that set a particle's attributes once, when it is born.

#include <cstdint>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"

class C_INIT_CreateWithinSphere : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_CreateWithinSphere, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Create Within Sphere" } )
	SCHEMA_FIELD( float, m_fRadiusMin, 0.0f, { "MPropertyFriendlyName", "radius min" } )
	SCHEMA_FIELD( float, m_fRadiusMax, 0.0f, { "MPropertyFriendlyName", "radius max" } )
	SCHEMA_FIELD( float, m_fSpeedMin, 0.0f, { "MPropertyFriendlyName", "speed min" } )
	SCHEMA_FIELD( float, m_fSpeedMax, 0.0f, { "MPropertyFriendlyName", "speed max" } )
	// A zero component flattens the sphere along that axis.
	SCHEMA_FIELD( Vector, m_vecDistanceBias, ( Vector( 1.0f, 1.0f, 1.0f ) ), { "MPropertyFriendlyName", "distance bias" } )
};

class C_INIT_InitFloat : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_InitFloat, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Init Float" } )
	// Attribute 3 is the radius, the most common target.
	SCHEMA_FIELD( int32_t, m_nOutputField, 3, { "MPropertyFriendlyName", "output field" } )
	SCHEMA_FIELD( KeyValues3, m_InputValue, {}, { "MPropertyFriendlyName", "value" } )
};

class C_INIT_InitVec : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_InitVec, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Init Vec" } )
	SCHEMA_FIELD( int32_t, m_nOutputField, 0, { "MPropertyFriendlyName", "output field" } )
	SCHEMA_FIELD( KeyValues3, m_InputValue, {}, { "MPropertyFriendlyName", "value" } )
};

class C_INIT_RandomRadius : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomRadius, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Radius" } )
	SCHEMA_FIELD( float, m_flRadiusMin, 1.0f, { "MPropertyFriendlyName", "radius min" } )
	SCHEMA_FIELD( float, m_flRadiusMax, 1.0f, { "MPropertyFriendlyName", "radius max" } )
};

class C_INIT_RandomLifeTime : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomLifeTime, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Lifetime" } )
	SCHEMA_FIELD( float, m_fLifetimeMin, 0.0f, { "MPropertyFriendlyName", "lifetime min" } )
	SCHEMA_FIELD( float, m_fLifetimeMax, 0.0f, { "MPropertyFriendlyName", "lifetime max" } )
};

class C_INIT_RandomRotation : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_RandomRotation, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Random Rotation" } )
};

class C_INIT_InitialVelocityNoise : public CParticleFunctionInitializer
{
	SCHEMA_DERIVED_CLASS( C_INIT_InitialVelocityNoise, CParticleFunctionInitializer, { "MPropertyFriendlyName", "Initial Velocity Noise" } )
	SCHEMA_FIELD( Vector, m_vecOutputMin, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "output minimum" } )
	SCHEMA_FIELD( Vector, m_vecOutputMax, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "output maximum" } )
};
