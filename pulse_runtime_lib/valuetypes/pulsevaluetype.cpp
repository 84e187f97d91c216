#include "pulse_runtime_lib/valuetypes/pulsevaluetype.h"

#include <cstring>

namespace
{
struct PulseValueTypeInfo_t
{
	const char *m_pName;
	const char *m_pFriendlyName;
	bool m_bSuppressed;
	bool m_bUsesSubtype;
};

// Indexed by type number + 1, so PVAL_VOID (-1) is the first row.
constexpr PulseValueTypeInfo_t s_TypeInfos[] = {
	{ "PVAL_VOID", "Void", false, false },
	{ "PVAL_BOOL", "Boolean", false, false },
	{ "PVAL_INT", "Integer", false, false },
	{ "PVAL_FLOAT", "Float", false, false },
	{ "PVAL_STRING", "String", false, false },
	{ "PVAL_VEC2", "Vector2D", false, false },
	{ "PVAL_VEC3", "Vector", false, false },
	{ "PVAL_QANGLE", "Angle", false, false },
	{ "PVAL_VEC3_WORLDSPACE", "World Vector", false, false },
	{ "PVAL_VEC4", "Vector4D", false, false },
	{ "PVAL_TRANSFORM", "Transform", false, false },
	{ "PVAL_TRANSFORM_WORLDSPACE", "World Transform", false, false },
	{ "PVAL_COLOR_RGB", "Color", false, false },
	{ "PVAL_GAMETIME", "Game Time", false, false },
	{ "PVAL_EHANDLE", "Entity Handle", false, true },
	{ "PVAL_RESOURCE", "Resource", false, true },
	{ "PVAL_RESOURCE_NAME", "Resource Name", false, true },
	{ "PVAL_SNDEVT_GUID", "SoundEvent Instance Handle", false, false },
	{ "PVAL_SNDEVT_NAME", "SoundEvent", false, true },
	{ "PVAL_ENTITY_NAME", "Entity Name", false, true },
	{ "PVAL_OPAQUE_HANDLE", "Opaque Handle", false, true },
	{ "PVAL_TYPESAFE_INT", "Typesafe Int", false, true },
	{ "PVAL_MODEL_MATERIAL_GROUP", "Material Group", false, false },
	{ "PVAL_CURSOR_FLOW", nullptr, false, false },
	{ "PVAL_VARIANT", "Variant", true, false },
	{ "PVAL_UNKNOWN", "Unknown", true, false },
	{ "PVAL_SCHEMA_ENUM", "Schema Enum", false, true },
	{ "PVAL_VISTARA_PANEL_HANDLE", "Vistara Panel Handle", false, true },
	{ "PVAL_TEST_HANDLE", "Test Handle", false, true },
	{ "PVAL_ARRAY", "Array", false, false },
	{ "PVAL_TYPESAFE_INT64", "Typesafe Int64", false, true },
	{ "PVAL_PARTICLE_EHANDLE", "Particle Object", true, false },
	{ "PVAL_COUNT", nullptr, true, false },
};
static_assert( sizeof( s_TypeInfos ) / sizeof( s_TypeInfos[ 0 ] ) == PVAL_COUNT + 2 );

const PulseValueTypeInfo_t *FindInfo( PulseValueType_t eType )
{
	if ( !PulseValueType_IsKnown( eType ) )
		return nullptr;
	return &s_TypeInfos[ eType + 1 ];
}
} // namespace

bool PulseValueType_IsKnown( PulseValueType_t eType )
{
	return eType >= PVAL_VOID && eType <= PVAL_COUNT;
}

const char *PulseValueType_GetName( PulseValueType_t eType )
{
	const PulseValueTypeInfo_t *pInfo = FindInfo( eType );
	return pInfo ? pInfo->m_pName : nullptr;
}

const char *PulseValueType_GetFriendlyName( PulseValueType_t eType )
{
	const PulseValueTypeInfo_t *pInfo = FindInfo( eType );
	return pInfo ? pInfo->m_pFriendlyName : nullptr;
}

bool PulseValueType_FromName( const char *pName, PulseValueType_t *pType )
{
	if ( !pName )
		return false;
	if ( strcmp( pName, "PVAL_INVALID" ) == 0 )
	{
		*pType = PVAL_VOID;
		return true;
	}
	if ( strcmp( pName, "PVAL_ANY" ) == 0 )
	{
		*pType = PVAL_UNKNOWN;
		return true;
	}
	for ( int i = PVAL_VOID; i <= PVAL_COUNT; ++i )
	{
		if ( strcmp( pName, s_TypeInfos[ i + 1 ].m_pName ) == 0 )
		{
			*pType = PulseValueType_t( i );
			return true;
		}
	}
	return false;
}

bool PulseValueType_IsSuppressedInPickers( PulseValueType_t eType )
{
	const PulseValueTypeInfo_t *pInfo = FindInfo( eType );
	return !pInfo || pInfo->m_bSuppressed;
}

bool PulseValueType_UsesSubtype( PulseValueType_t eType )
{
	const PulseValueTypeInfo_t *pInfo = FindInfo( eType );
	return pInfo && pInfo->m_bUsesSubtype;
}
