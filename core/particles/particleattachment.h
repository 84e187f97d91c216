#pragma once
// How a control point follows what it is attached to. The values are stored in files and
// in the preview state, by name.

#include <cstdint>

#include "core/schema/schemadeclare.h"

enum ParticleAttachment_t : int32_t
{
	PATTACH_INVALID = -1,
	PATTACH_ABSORIGIN = 0,
	PATTACH_ABSORIGIN_FOLLOW = 1,
	PATTACH_CUSTOMORIGIN = 2,
	PATTACH_CUSTOMORIGIN_FOLLOW = 3,
	PATTACH_POINT = 4,
	PATTACH_POINT_FOLLOW = 5,
	PATTACH_EYES_FOLLOW = 6,
	PATTACH_OVERHEAD_FOLLOW = 7,
	PATTACH_WORLDORIGIN = 8,
	PATTACH_ROOTBONE_FOLLOW = 9,
	PATTACH_RENDERORIGIN_FOLLOW = 10,
	PATTACH_MAIN_VIEW = 11,
	PATTACH_WATERWAKE = 12,
	PATTACH_CENTER_FOLLOW = 13,
	PATTACH_CUSTOM_GAME_STATE_1 = 14,
	PATTACH_HEALTHBAR = 15,
	MAX_PATTACH_TYPES,
};
SCHEMA_ENUM_BEGIN( ParticleAttachment_t )
	SCHEMA_ENUMERATOR( PATTACH_INVALID, { "MPropertySuppressEnumerator" } )
	SCHEMA_ENUMERATOR( PATTACH_ABSORIGIN, { "MPropertyFriendlyName", "Entity Origin" } )
	SCHEMA_ENUMERATOR( PATTACH_ABSORIGIN_FOLLOW, { "MPropertyFriendlyName", "Entity Origin Follow" } )
	SCHEMA_ENUMERATOR( PATTACH_CUSTOMORIGIN, { "MPropertyFriendlyName", "Custom Origin" } )
	SCHEMA_ENUMERATOR( PATTACH_CUSTOMORIGIN_FOLLOW, { "MPropertyFriendlyName", "Custom Origin Follow" } )
	SCHEMA_ENUMERATOR( PATTACH_POINT, { "MPropertyFriendlyName", "Attachment Point" } )
	SCHEMA_ENUMERATOR( PATTACH_POINT_FOLLOW, { "MPropertyFriendlyName", "Attachment Point Follow" } )
	SCHEMA_ENUMERATOR( PATTACH_EYES_FOLLOW, { "MPropertyFriendlyName", "Eyes Follow" } )
	SCHEMA_ENUMERATOR( PATTACH_OVERHEAD_FOLLOW, { "MPropertyFriendlyName", "Overhead Follow" } )
	SCHEMA_ENUMERATOR( PATTACH_WORLDORIGIN, { "MPropertyFriendlyName", "World Origin" } )
	SCHEMA_ENUMERATOR( PATTACH_ROOTBONE_FOLLOW, { "MPropertyFriendlyName", "Root Bone Follow" } )
	SCHEMA_ENUMERATOR( PATTACH_RENDERORIGIN_FOLLOW, { "MPropertyFriendlyName", "Render Origin Follow" } )
	SCHEMA_ENUMERATOR( PATTACH_MAIN_VIEW, { "MPropertyFriendlyName", "Main View" } )
	SCHEMA_ENUMERATOR( PATTACH_WATERWAKE, { "MPropertyFriendlyName", "Water Wake" } )
	SCHEMA_ENUMERATOR( PATTACH_CENTER_FOLLOW, { "MPropertyFriendlyName", "Center Follow" } )
	SCHEMA_ENUMERATOR( PATTACH_CUSTOM_GAME_STATE_1, { "MPropertyFriendlyName", "Custom Game State 1" } )
	SCHEMA_ENUMERATOR( PATTACH_HEALTHBAR, { "MPropertyFriendlyName", "Health Bar" } )
	SCHEMA_ENUMERATOR( MAX_PATTACH_TYPES, { "MPropertySuppressEnumerator" } )
SCHEMA_ENUM_END()
