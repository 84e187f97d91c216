#pragma once
// Renderers: functions that draw the particles of a system. Attribute index fields with
// "MParticleAttributeUsage" tell the editor what the renderer uses that attribute for.

#include <cstdint>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"
#include "core/particles/particlefunctionenums.h"
#include "core/particles/particleinputliterals.h"
#include "core/schema/schemaresourcetypes.h"

class C_OP_RenderSprites : public CParticleFunctionRenderer
{
	SCHEMA_DERIVED_CLASS( C_OP_RenderSprites, CParticleFunctionRenderer, { "MPropertyFriendlyName", "Render Sprites" } )
	// Kept by name: the editor must not load textures just to read a definition.
	SCHEMA_FIELD( CResourceName, m_hTexture, {}, { "MPropertyFriendlyName", "texture" } )
	SCHEMA_FIELD( float, m_flAddSelfAmount, 0.0f, { "MPropertyFriendlyName", "add self amount" } )
	SCHEMA_FIELD( ParticleOrientation_t, m_nOrientationType, PARTICLE_ORIENTATION_SCREEN_ALIGNED, { "MPropertyFriendlyName", "orientation type" } )
	SCHEMA_FIELD( bool, m_bAdditive, false, { "MPropertyFriendlyName", "additive" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flAlphaScale, "CParticleCollectionRendererFloatInput", ParticleFloatLiteral( 1.0f ), { "MPropertyFriendlyName", "alpha scale" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flOverbrightFactor, "CParticleCollectionRendererFloatInput", ParticleFloatLiteral( 1.0f ),
							  { "MPropertyFriendlyName", "overbright factor" } )
	// -1 draws each particle's own sequence.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_nSequenceOverride, "CParticleCollectionRendererFloatInput", ParticleFloatLiteral( -1.0f ),
							  { "MPropertyFriendlyName", "sequence id override" }, { "MParticleAdvancedField" } )
	// The alpha of the second texture layer comes from this attribute.
	SCHEMA_FIELD( int32_t, m_nAlpha2Field, 16, { "MPropertyFriendlyName", "second layer alpha field" }, { "MPropertyAttributeChoiceName", "particlefield_alpha" },
				  { "MParticleAttributeUsage", "Sprite Second Layer Alpha" } )
	// Screen-space clamps of the drawn size, in pixels.
	SCHEMA_FIELD( float, m_flMinSize, 0.0f, { "MPropertyFriendlyName", "minimum visual screen size" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( float, m_flMaxSize, 5000.0f, { "MPropertyFriendlyName", "maximum visual screen size" }, { "MParticleAdvancedField" } )
};

class C_OP_RenderTrails : public CParticleFunctionRenderer
{
	SCHEMA_DERIVED_CLASS( C_OP_RenderTrails, CParticleFunctionRenderer, { "MPropertyFriendlyName", "Render Trails" } )
	SCHEMA_FIELD( CResourceName, m_hTexture, {}, { "MPropertyFriendlyName", "texture" } )
	// World units.
	SCHEMA_FIELD( float, m_flMaxLength, 2000.0f, { "MPropertyFriendlyName", "max length" } )
	SCHEMA_FIELD( float, m_flMinLength, 0.0f, { "MPropertyFriendlyName", "min length" } )
	// Seconds over which a new trail grows to its length.
	SCHEMA_FIELD( float, m_flLengthFadeInTime, 0.0f, { "MPropertyFriendlyName", "length fade in time" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flRadiusScale, "CParticleCollectionRendererFloatInput", ParticleFloatLiteral( 1.0f ), { "MPropertyFriendlyName", "radius scale" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flTailAlphaScale, "CParticleCollectionRendererFloatInput", ParticleFloatLiteral( 1.0f ),
							  { "MPropertyFriendlyName", "tail alpha scale" } )
	SCHEMA_FIELD( int32_t, m_nLengthField, 10, { "MPropertyFriendlyName", "length field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleAttributeUsage", "Trail Length" } )
	// -1: no cropping; else the attribute crops the trail's texture from its tail.
	SCHEMA_FIELD( int32_t, m_nVertCropField, -1, { "MPropertyFriendlyName", "vertical texture crop field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleAttributeUsage", "Trail Texture Crop" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( bool, m_bIgnoreDT, false, { "MPropertyFriendlyName", "ignore delta time" }, { "MParticleAdvancedField" } )
};

// One model that the model renderer may draw, picked by weight.
struct ParticleModelChoice_t
{
	SCHEMA_CLASS( ParticleModelChoice_t )
	SCHEMA_FIELD( CResourceName, m_model, {}, { "MPropertyFriendlyName", "model" } )
	SCHEMA_FIELD( float, m_flRelativeProbabilityOfSpawn, 1.0f, { "MPropertyFriendlyName", "relative probability" } )
};

class C_OP_RenderModels : public CParticleFunctionRenderer
{
	SCHEMA_DERIVED_CLASS( C_OP_RenderModels, CParticleFunctionRenderer, { "MPropertyFriendlyName", "Render models" } )
	SCHEMA_FIELD( std::vector<ParticleModelChoice_t>, m_ModelList, {}, { "MPropertyFriendlyName", "models" }, { "MParticleRequireDefaultArrayEntry" } )
	// Takes the model from a control point's entity instead of the list.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_modelInput, "CParticleModelInput", {}, { "MPropertyFriendlyName", "input model" }, { "MParticleInputOptional" } )
	SCHEMA_FIELD( bool, m_bOrientZ, false, { "MPropertyFriendlyName", "orient model z to normal" } )
	SCHEMA_FIELD( bool, m_bAnimated, false, { "MPropertyFriendlyName", "animated" } )
	// Frames per second of the model's sequence.
	SCHEMA_FIELD( float, m_flAnimationRate, 30.0f, { "MPropertyFriendlyName", "animation rate" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_vecLocalOffset, "CPerParticleVecInput", ParticleVecLiteral( Vector( 0.0f, 0.0f, 0.0f ) ),
							  { "MPropertyFriendlyName", "local offset" }, { "MParticleAdvancedField" } )
	SCHEMA_FIELD( int32_t, m_nBodyGroupField, 18, { "MPropertyFriendlyName", "body group field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleAttributeUsage", "Model Body Group" } )
	SCHEMA_FIELD( int32_t, m_nSkinField, -1, { "MPropertyFriendlyName", "skin field" }, { "MPropertyAttributeChoiceName", "particlefield_scalar" },
				  { "MParticleAttributeUsage", "Model Skin" } )
	// -1: the model turns by roll and yaw only; else pitch, yaw and roll come from this vector.
	SCHEMA_FIELD( int32_t, m_nAnglesField, -1, { "MPropertyFriendlyName", "angles field" }, { "MPropertyAttributeChoiceName", "particlefield_vector" },
				  { "MParticleAttributeUsageComponents", "Model Pitch,Model Yaw,Model Roll" } )
};
