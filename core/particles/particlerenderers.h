#pragma once
// Renderers: functions that draw the particles of a system.

#include "core/particles/particlefunction.h"
#include "core/schema/schemaresourcetypes.h"

class C_OP_RenderSprites : public CParticleFunctionRenderer
{
	SCHEMA_DERIVED_CLASS( C_OP_RenderSprites, CParticleFunctionRenderer, { "MPropertyFriendlyName", "Render Sprites" } )
	// Kept by name: the editor must not load textures just to read a definition.
	SCHEMA_FIELD( CResourceName, m_hTexture, {}, { "MPropertyFriendlyName", "texture" } )
	SCHEMA_FIELD( float, m_flAddSelfAmount, 0.0f, { "MPropertyFriendlyName", "add self amount" } )
};

class C_OP_RenderTrails : public CParticleFunctionRenderer
{
	SCHEMA_DERIVED_CLASS( C_OP_RenderTrails, CParticleFunctionRenderer, { "MPropertyFriendlyName", "Render Trails" } )
	SCHEMA_FIELD( CResourceName, m_hTexture, {}, { "MPropertyFriendlyName", "texture" } )
	SCHEMA_FIELD( float, m_flMaxLength, 2000.0f, { "MPropertyFriendlyName", "max length" } )
	SCHEMA_FIELD( float, m_flLengthFadeInTime, 0.0f, { "MPropertyFriendlyName", "length fade in time" } )
};
