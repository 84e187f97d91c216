#pragma once
// The closed set of Pulse value types. PVAL_VOID doubles as "no type": a full type whose
// base is PVAL_VOID is invalid. The numbers are stored in compiled graphs and
// documents, so they never change; new types go before PVAL_COUNT only with a format bump.

#include <cstdint>

enum PulseValueType_t : int32_t
{
	PVAL_VOID = -1,
	PVAL_BOOL = 0,
	PVAL_INT = 1,
	PVAL_FLOAT = 2,
	PVAL_STRING = 3,
	PVAL_VEC2 = 4,
	PVAL_VEC3 = 5,
	PVAL_QANGLE = 6,
	PVAL_VEC3_WORLDSPACE = 7,
	PVAL_VEC4 = 8,
	PVAL_TRANSFORM = 9,
	PVAL_TRANSFORM_WORLDSPACE = 10,
	PVAL_COLOR_RGB = 11,
	PVAL_GAMETIME = 12,
	PVAL_EHANDLE = 13,
	PVAL_RESOURCE = 14,
	PVAL_RESOURCE_NAME = 15,
	PVAL_SNDEVT_GUID = 16,
	PVAL_SNDEVT_NAME = 17,
	PVAL_ENTITY_NAME = 18,
	PVAL_OPAQUE_HANDLE = 19,
	PVAL_TYPESAFE_INT = 20,
	PVAL_MODEL_MATERIAL_GROUP = 21,
	PVAL_CURSOR_FLOW = 22,
	PVAL_VARIANT = 23,
	PVAL_UNKNOWN = 24,
	PVAL_SCHEMA_ENUM = 25,
	PVAL_VISTARA_PANEL_HANDLE = 26,
	PVAL_TEST_HANDLE = 27,
	PVAL_ARRAY = 28,
	PVAL_TYPESAFE_INT64 = 29,
	PVAL_PARTICLE_EHANDLE = 30,
	PVAL_COUNT = 31,
};

// True for PVAL_VOID .. PVAL_COUNT: the numbers that have an enumerator.
bool PulseValueType_IsKnown( PulseValueType_t eType );

// The enumerator's name ("PVAL_VEC3"); null for a number outside the enumeration.
const char *PulseValueType_GetName( PulseValueType_t eType );
// The name users see ("Vector"); null for PVAL_CURSOR_FLOW, PVAL_COUNT and unknown numbers.
const char *PulseValueType_GetFriendlyName( PulseValueType_t eType );
// Looks an enumerator name up, exactly as written; "PVAL_INVALID" and "PVAL_ANY" are the
// two aliases older text uses. False when the name is unknown.
bool PulseValueType_FromName( const char *pName, PulseValueType_t *pType );

// Types that type pickers don't offer (internal or not authorable).
bool PulseValueType_IsSuppressedInPickers( PulseValueType_t eType );
// Types whose full type may carry a subtype name (entity class, resource type, enum name...).
bool PulseValueType_UsesSubtype( PulseValueType_t eType );
