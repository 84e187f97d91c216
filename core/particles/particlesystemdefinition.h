#pragma once
// The root object of a "*.tfxs" file: a particle system's own properties, its nine lists
// and its control point configurations. Members not listed here are dropped when a file
// is read, so everything a definition may hold is declared on this class.

#include <cstdint>
#include <memory>
#include <vector>

#include "core/mathlib/color.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"
#include "core/particles/particlesystemdefinitionrecords.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemaresourcetypes.h"
#include "core/text/utlstring.h"

class CParticleSystemDefinition
{
	SCHEMA_CLASS( CParticleSystemDefinition, { "MPropertyFriendlyName", "Particle System" } )
	virtual ~CParticleSystemDefinition() = default;

	// A missing key reads as 0: files from before versions were recorded.
	SCHEMA_FIELD( int32_t, m_nBehaviorVersion, 0, { "MPropertyFriendlyName", "behavior version" }, { "MPropertyReadOnly" } )

	SCHEMA_FIELD( std::vector<std::unique_ptr<CParticleFunctionPreEmission>>, m_PreEmissionOperators, {}, { "MPropertyHideField" } )
	SCHEMA_FIELD( std::vector<std::unique_ptr<CParticleFunctionEmitter>>, m_Emitters, {}, { "MPropertyHideField" } )
	SCHEMA_FIELD( std::vector<std::unique_ptr<CParticleFunctionInitializer>>, m_Initializers, {}, { "MPropertyHideField" } )
	SCHEMA_FIELD( std::vector<std::unique_ptr<CParticleFunctionOperator>>, m_Operators, {}, { "MPropertyHideField" } )
	SCHEMA_FIELD( std::vector<std::unique_ptr<CParticleFunctionForce>>, m_ForceGenerators, {}, { "MPropertyHideField" } )
	SCHEMA_FIELD( std::vector<std::unique_ptr<CParticleFunctionConstraint>>, m_Constraints, {}, { "MPropertyHideField" } )
	SCHEMA_FIELD( std::vector<std::unique_ptr<CParticleFunctionRenderer>>, m_Renderers, {}, { "MPropertyHideField" } )
	SCHEMA_FIELD( std::vector<ParticleChildrenInfo_t>, m_Children, {}, { "MPropertyHideField" } )
	SCHEMA_FIELD( std::vector<ParticleNamedValueSource_t>, m_NamedValueLocals, {}, { "MPropertyHideField" } )
	SCHEMA_FIELD( std::vector<ParticleControlPointConfiguration_t>, m_controlPointConfigurations, {}, { "MPropertyHideField" } )

	// ---- Variables ----
	SCHEMA_FIELD( bool, m_bEnableNamedValues, false, { "MPropertyFriendlyName", "enable variables" }, { "MPropertyStartGroup", "Variables" } )
	// The binding domain whose values the variables may read; empty for none.
	SCHEMA_FIELD( CUtlString, m_NamedValueDomain, {}, { "MPropertyFriendlyName", "variable domain" }, { "MPropertyAttributeChoiceName", "particlefield_domain" } )

	// ---- Particle budget and defaults for attributes no initializer sets ----
	SCHEMA_FIELD( int32_t, m_nMaxParticles, 1000, { "MPropertyFriendlyName", "max particles" }, { "MPropertyStartGroup", "Base Properties" } )
	SCHEMA_FIELD( int32_t, m_nInitialParticles, 0, { "MPropertyFriendlyName", "initial particles" } )
	SCHEMA_FIELD( Color, m_ConstantColor, ( Color( 255, 255, 255, 255 ) ), { "MPropertyFriendlyName", "color" }, { "MPropertyColorPlusAlpha" } )
	SCHEMA_FIELD( float, m_flConstantRadius, 5.0f, { "MPropertyFriendlyName", "radius" } )
	SCHEMA_FIELD( float, m_flConstantRotation, 0.0f, { "MPropertyFriendlyName", "rotation" } )
	SCHEMA_FIELD( float, m_flConstantRotationSpeed, 0.0f, { "MPropertyFriendlyName", "rotation speed" } )
	SCHEMA_FIELD( float, m_flConstantLifespan, 1.0f, { "MPropertyFriendlyName", "lifetime" } )
	SCHEMA_FIELD( int32_t, m_nConstantSequenceNumber, 0, { "MPropertyFriendlyName", "sequence number" } )
	SCHEMA_FIELD( Vector, m_ConstantNormal, ( Vector( 0.0f, 0.0f, 1.0f ) ), { "MPropertyFriendlyName", "normal" } )

	// ---- Bounds and culling ----
	// Grown by the particles; this is the box before any exist.
	SCHEMA_FIELD( Vector, m_BoundingBoxMin, ( Vector( -10.0f, -10.0f, -10.0f ) ), { "MPropertyFriendlyName", "bounding box min" },
				  { "MPropertyStartGroup", "Bounds and Culling" } )
	SCHEMA_FIELD( Vector, m_BoundingBoxMax, ( Vector( 10.0f, 10.0f, 10.0f ) ), { "MPropertyFriendlyName", "bounding box max" } )
	SCHEMA_FIELD( float, m_flDepthSortBias, 0.0f, { "MPropertyFriendlyName", "depth sort bias" } )
	SCHEMA_FIELD( bool, m_bShouldSort, true, { "MPropertyFriendlyName", "sort particles" } )
	SCHEMA_FIELD( bool, m_bScreenSpaceEffect, false, { "MPropertyFriendlyName", "screen space effect" } )
	// 0: never culled by screen area.
	SCHEMA_FIELD( float, m_flCullRadius, 0.0f, { "MPropertyFriendlyName", "cull radius" } )
	SCHEMA_FIELD( float, m_flCullFillCost, 1.0f, { "MPropertyFriendlyName", "cull cost" } )
	SCHEMA_FIELD( int32_t, m_nCullControlPoint, 0, { "MPropertyFriendlyName", "cull control point" } )
	// Played instead when the screen budget is spent; -1 allows any number of them.
	SCHEMA_FIELD( CResourceName, m_hFallback, {}, { "MPropertyFriendlyName", "fallback replacement definition" } )
	SCHEMA_FIELD( int32_t, m_nFallbackMaxCount, -1, { "MPropertyFriendlyName", "fallback max count" } )
	SCHEMA_FIELD( float, m_flMaxDrawDistance, 100000.0f, { "MPropertyFriendlyName", "maximum draw distance" } )

	// ---- Simulation ----
	SCHEMA_FIELD( float, m_flPreSimulationTime, 0.0f, { "MPropertyFriendlyName", "pre simulation time" }, { "MPropertyStartGroup", "Simulation" } )
	SCHEMA_FIELD( float, m_flStopSimulationAfterTime, 1000000000.0f, { "MPropertyFriendlyName", "freeze simulation after time" } )
	SCHEMA_FIELD( float, m_flMaximumTimeStep, 0.1f, { "MPropertyFriendlyName", "maximum time step" } )
	SCHEMA_FIELD( float, m_flMaxRecreationTime, 0.0f, { "MPropertyFriendlyName", "maximum recreation time" } )
	// Effects of one definition whose control points lie within this radius merge into one.
	SCHEMA_FIELD( float, m_flAggregateRadius, 0.0f, { "MPropertyFriendlyName", "aggregation radius" } )
	SCHEMA_FIELD( int32_t, m_nAggregationMinAvailableParticles, 0, { "MPropertyFriendlyName", "minimum free particles to aggregate" } )
	SCHEMA_FIELD( bool, m_bShouldBatch, false, { "MPropertyFriendlyName", "batch particle systems" } )
	SCHEMA_FIELD( int32_t, m_nSnapshotControlPoint, 0, { "MPropertyFriendlyName", "snapshot control point" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( int32_t, m_nGroupID, 0, { "MPropertyFriendlyName", "group id" }, { "MParticleAdvancedField" } )
};
