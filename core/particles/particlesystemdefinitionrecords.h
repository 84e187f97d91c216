#pragma once
// The records that a particle system definition holds besides its functions: children,
// variables (named values), and the control point configurations with their preview setup.

#include <cstdint>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/particles/particleattachment.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemaresourcetypes.h"
#include "core/text/utlstring.h"

// A control point identifier as files store it: an int is a number, a string a name.
KeyValues3 ParticleControlPointNumberKV3( int nControlPoint );

struct ParticleChildrenInfo_t
{
	SCHEMA_CLASS( ParticleChildrenInfo_t )
	SCHEMA_FIELD( CResourceName, m_ChildRef, {}, { "MPropertyFriendlyName", "child" } )
	// Seconds after the parent starts.
	SCHEMA_FIELD( float, m_flDelay, 0.0f, { "MPropertyFriendlyName", "delay" } )
	// Starts only when the parent is told to stop, to play its ending.
	SCHEMA_FIELD( bool, m_bEndCap, false, { "MPropertyFriendlyName", "end cap effect" } )
	SCHEMA_FIELD( bool, m_bDisableChild, false, { "MPropertyFriendlyName", "disable child" } )
};

// Where a variable's value comes from in one configuration.
struct ParticleNamedValueConfiguration_t
{
	SCHEMA_CLASS( ParticleNamedValueConfiguration_t )
	// Named lists the editor fills: the system's configurations, the attachment points of
	// the preview's entity, the domain values a variable may be bound to.
	SCHEMA_FIELD( CUtlString, m_ConfigName, {}, { "MPropertyFriendlyName", "Configuration Name" }, { "MPropertyAttributeChoiceName", "particle_variable_configuration" } )
	// In the form of the variable's value type.
	SCHEMA_FIELD( KeyValues3, m_ConfigValue, {}, { "MPropertyFriendlyName", "Value" } )
	// A binding expression; when set it wins over m_ConfigValue.
	SCHEMA_FIELD( CUtlString, m_BoundValuePath, {}, { "MPropertyFriendlyName", "Binding Expression" }, { "MPropertyAttributeSuggestionName", "particle_variable_domain" } )
	SCHEMA_FIELD( ParticleAttachment_t, m_iAttachType, PATTACH_WORLDORIGIN, { "MPropertyFriendlyName", "Attach Type" } )
	SCHEMA_FIELD( CUtlString, m_strEntityScope, "self", { "MPropertyFriendlyName", "Attach Entity Scope" } )
	SCHEMA_FIELD( CUtlString, m_strAttachmentName, {}, { "MPropertyFriendlyName", "Attach Location Name" }, { "MPropertyAttributeSuggestionName", "particle_variable_attachment" } )
};

// A variable of the definition, shared by name with parents and children.
struct ParticleNamedValueSource_t
{
	SCHEMA_CLASS( ParticleNamedValueSource_t )
	SCHEMA_FIELD( CUtlString, m_Name, {}, { "MPropertyFriendlyName", "Name" } )
	// Public variables may be set by whoever plays the effect.
	SCHEMA_FIELD( bool, m_IsPublic, false, { "MPropertyFriendlyName", "Public" } )
	// The value's full type, in the form of the variable value library.
	SCHEMA_FIELD( KeyValues3, m_ValueType, {}, { "MPropertyFriendlyName", "Variable Type" } )
	SCHEMA_FIELD( ParticleNamedValueConfiguration_t, m_DefaultConfig, {}, { "MPropertyFriendlyName", "Default Config" } )
	SCHEMA_FIELD( std::vector<ParticleNamedValueConfiguration_t>, m_NamedConfigs, {}, { "MPropertyFriendlyName", "Named Configs" } )
};

// How the preview drives one control point.
struct ParticleControlPointDriver_t
{
	SCHEMA_CLASS( ParticleControlPointDriver_t )
	SCHEMA_FIELD( KeyValues3, m_iControlPoint, ParticleControlPointNumberKV3( 0 ), { "MPropertyFriendlyName", "control point" } )
	SCHEMA_FIELD( ParticleAttachment_t, m_iAttachType, PATTACH_ABSORIGIN_FOLLOW, { "MPropertyFriendlyName", "attach type" } )
	SCHEMA_FIELD( CUtlString, m_attachmentName, {}, { "MPropertyFriendlyName", "attachment" } )
	SCHEMA_FIELD( Vector, m_vecOffset, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "offset" } )
	SCHEMA_FIELD( QAngle, m_angOffset, ( QAngle( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "angle offset" } )
	SCHEMA_FIELD( CUtlString, m_entityName, {}, { "MPropertyFriendlyName", "entity" } )
};

enum ParticlePreviewGroundType_t : int32_t
{
	ZOL_GROUND_NONE = 0,
	ZOL_GROUND_GRID = 1,
	ZOL_GROUND_PLANE = 2,
};
SCHEMA_ENUM_BEGIN( ParticlePreviewGroundType_t )
	SCHEMA_ENUMERATOR( ZOL_GROUND_NONE, { "MPropertyFriendlyName", "None" } )
	SCHEMA_ENUMERATOR( ZOL_GROUND_GRID, { "MPropertyFriendlyName", "Grid" } )
	SCHEMA_ENUMERATOR( ZOL_GROUND_PLANE, { "MPropertyFriendlyName", "Plane" } )
SCHEMA_ENUM_END()

struct ParticlePreviewBodyGroup_t
{
	SCHEMA_CLASS( ParticlePreviewBodyGroup_t )
	SCHEMA_FIELD( CUtlString, m_bodyGroupName, {}, { "MPropertyFriendlyName", "body group" } )
	SCHEMA_FIELD( int32_t, m_nValue, 0, { "MPropertyFriendlyName", "value" } )
};

// What the preview shows around the effect: model, animation, ground, debug drawing.
struct ParticlePreviewState_t
{
	SCHEMA_CLASS( ParticlePreviewState_t )
	SCHEMA_FIELD( CUtlString, m_previewModel, {}, { "MPropertyFriendlyName", "preview model" } )
	SCHEMA_FIELD( uint32_t, m_nModSpecificData, 0u, { "MPropertyFriendlyName", "mod specific data" } )
	SCHEMA_FIELD( ParticlePreviewGroundType_t, m_groundType, ZOL_GROUND_GRID, { "MPropertyFriendlyName", "ground type" } )
	SCHEMA_FIELD( CUtlString, m_sequenceName, {}, { "MPropertyFriendlyName", "sequence" } )
	SCHEMA_FIELD( int32_t, m_nFireParticleOnSequenceFrame, 0, { "MPropertyFriendlyName", "fire on sequence frame" } )
	SCHEMA_FIELD( CUtlString, m_hitboxSetName, {}, { "MPropertyFriendlyName", "hitbox set" } )
	SCHEMA_FIELD( CUtlString, m_materialGroupName, {}, { "MPropertyFriendlyName", "material group" } )
	SCHEMA_FIELD( std::vector<ParticlePreviewBodyGroup_t>, m_vecBodyGroups, {}, { "MPropertyFriendlyName", "body groups" } )
	SCHEMA_FIELD( float, m_flPlaybackSpeed, 1.0f, { "MPropertyFriendlyName", "playback speed" } )
	SCHEMA_FIELD( float, m_flParticleSimulationRate, 1.0f, { "MPropertyFriendlyName", "particle simulation rate" } )
	SCHEMA_FIELD( bool, m_bShouldDrawHitboxes, false, { "MPropertyFriendlyName", "draw hitboxes" } )
	SCHEMA_FIELD( bool, m_bShouldDrawAttachments, false, { "MPropertyFriendlyName", "draw attachments" } )
	SCHEMA_FIELD( bool, m_bShouldDrawAttachmentNames, false, { "MPropertyFriendlyName", "draw attachment names" } )
	SCHEMA_FIELD( bool, m_bShouldDrawControlPointAxes, false, { "MPropertyFriendlyName", "draw control point axes" } )
	SCHEMA_FIELD( bool, m_bAnimationNonLooping, false, { "MPropertyFriendlyName", "animation non looping" } )
	SCHEMA_FIELD( bool, m_bSequenceNameIsAnimClipPath, false, { "MPropertyFriendlyName", "sequence name is an animation clip path" } )
	SCHEMA_FIELD( Vector, m_vecPreviewGravity, ( Vector( 0.0f, 0.0f, -800.0f ) ), { "MPropertyFriendlyName", "preview gravity" } )
};

struct ParticleControlPointConfiguration_t
{
	SCHEMA_CLASS( ParticleControlPointConfiguration_t )
	// Unique within a definition, ignoring case.
	SCHEMA_FIELD( CUtlString, m_name, {}, { "MPropertyFriendlyName", "name" } )
	SCHEMA_FIELD( std::vector<ParticleControlPointDriver_t>, m_drivers, {}, { "MPropertyFriendlyName", "drivers" } )
	SCHEMA_FIELD( ParticlePreviewState_t, m_previewState, {}, { "MPropertyFriendlyName", "preview state" } )
};
