#include "core/particles/controlpointusagekind.h"

namespace
{
constexpr uint32_t Modes( ControlPointEditMode_t a ) { return 1u << a; }
constexpr uint32_t Modes( ControlPointEditMode_t a, ControlPointEditMode_t b ) { return ( 1u << a ) | ( 1u << b ); }

// Value type numbers of the variable value library.
constexpr int32_t VARIABLE_NONE = -1;
constexpr int32_t VARIABLE_FLOAT = 2;
constexpr int32_t VARIABLE_VEC3 = 5;
constexpr int32_t VARIABLE_TRANSFORM = 9;
constexpr int32_t VARIABLE_PARTICLE_EHANDLE = 30;

// clang-format off
constexpr ControlPointUsageKindInfo_t s_Kinds[ CONTROL_POINT_USAGE_KIND_COUNT ] = {
	// kind                            name            defaults               gizmo                                    axis   edit modes                                                        fallback mode                  variable (whole, component)
	{ CONTROL_POINT_USAGE_GENERIC,     "generic",      { 0, 0, 0 },           CONTROL_POINT_GIZMO_TRANSLATE,           true,  Modes( CONTROL_POINT_EDIT_NONE ),                                 CONTROL_POINT_EDIT_NONE,       VARIABLE_NONE,             VARIABLE_NONE },
	{ CONTROL_POINT_USAGE_VECTOR,      "vector",       { 0, 0, 0 },           CONTROL_POINT_GIZMO_NONE,                false, Modes( CONTROL_POINT_EDIT_NONE ),                                 CONTROL_POINT_EDIT_NONE,       VARIABLE_VEC3,             VARIABLE_VEC3 },
	{ CONTROL_POINT_USAGE_POSITION,    "position",     { 0, 0, 0 },           CONTROL_POINT_GIZMO_TRANSLATE,           true,  Modes( CONTROL_POINT_EDIT_TRANSLATE ),                            CONTROL_POINT_EDIT_TRANSLATE,  VARIABLE_FLOAT,            VARIABLE_VEC3 },
	{ CONTROL_POINT_USAGE_ORIENTATION, "orientation",  { 0, 0, 0 },           CONTROL_POINT_GIZMO_ROTATE,              false, Modes( CONTROL_POINT_EDIT_ROTATE ),                               CONTROL_POINT_EDIT_ROTATE,     VARIABLE_NONE,             VARIABLE_NONE },
	{ CONTROL_POINT_USAGE_TRANSFORM,   "transform",    { 0, 0, 0 },           CONTROL_POINT_GIZMO_TRANSLATE_OR_ROTATE, true,  Modes( CONTROL_POINT_EDIT_TRANSLATE, CONTROL_POINT_EDIT_ROTATE ), CONTROL_POINT_EDIT_TRANSLATE,  VARIABLE_TRANSFORM,        VARIABLE_TRANSFORM },
	{ CONTROL_POINT_USAGE_DIRECTION,   "direction",    { 0, 0, 1 },           CONTROL_POINT_GIZMO_NONE,                false, Modes( CONTROL_POINT_EDIT_NONE ),                                 CONTROL_POINT_EDIT_NONE,       VARIABLE_NONE,             VARIABLE_NONE },
	{ CONTROL_POINT_USAGE_COLOR,       "color",        { 255, 255, 255 },     CONTROL_POINT_GIZMO_NONE,                false, Modes( CONTROL_POINT_EDIT_COLOR ),                                CONTROL_POINT_EDIT_COLOR,      VARIABLE_NONE,             VARIABLE_NONE },
	{ CONTROL_POINT_USAGE_SCALE,       "scale",        { 1, 1, 1 },           CONTROL_POINT_GIZMO_NONE,                false, Modes( CONTROL_POINT_EDIT_NONE ),                                 CONTROL_POINT_EDIT_NONE,       VARIABLE_NONE,             VARIABLE_NONE },
	{ CONTROL_POINT_USAGE_MULTIPLIER,  "multiplier",   { 1, 1, 1 },           CONTROL_POINT_GIZMO_NONE,                false, Modes( CONTROL_POINT_EDIT_NONE ),                                 CONTROL_POINT_EDIT_NONE,       VARIABLE_NONE,             VARIABLE_NONE },
	{ CONTROL_POINT_USAGE_DATA,        "data",         { 0, 0, 0 },           CONTROL_POINT_GIZMO_NONE,                false, Modes( CONTROL_POINT_EDIT_NONE ),                                 CONTROL_POINT_EDIT_NONE,       VARIABLE_NONE,             VARIABLE_NONE },
	{ CONTROL_POINT_USAGE_MODEL,       "model",        { 0, 0, 0 },           CONTROL_POINT_GIZMO_NONE,                false, Modes( CONTROL_POINT_EDIT_NONE ),                                 CONTROL_POINT_EDIT_NONE,       VARIABLE_NONE,             VARIABLE_NONE },
	{ CONTROL_POINT_USAGE_ENTITY,      "entity",       { 0, 0, 0 },           CONTROL_POINT_GIZMO_NONE,                false, Modes( CONTROL_POINT_EDIT_NONE ),                                 CONTROL_POINT_EDIT_NONE,       VARIABLE_PARTICLE_EHANDLE, VARIABLE_PARTICLE_EHANDLE },
};
// clang-format on

constexpr ControlPointUsageKindInfo_t s_Unknown = { CONTROL_POINT_USAGE_GENERIC, "unknown", { 0, 0, 0 }, CONTROL_POINT_GIZMO_NONE, false,
	Modes( CONTROL_POINT_EDIT_NONE ), CONTROL_POINT_EDIT_NONE, VARIABLE_NONE, VARIABLE_NONE };
} // namespace

const ControlPointUsageKindInfo_t &GetControlPointUsageKindInfo( int nKind )
{
	return nKind >= 0 && nKind < CONTROL_POINT_USAGE_KIND_COUNT ? s_Kinds[ nKind ] : s_Unknown;
}

bool DoesControlPointEditModeFit( int nKind, int nMode )
{
	return nMode >= 0 && nMode < 32 && ( GetControlPointUsageKindInfo( nKind ).m_nEditModes & ( 1u << nMode ) ) != 0;
}

ControlPointEditMode_t GetControlPointEditModeForUsage( int nKind )
{
	return GetControlPointUsageKindInfo( nKind ).m_eEditMode;
}

int32_t GetControlPointUsageVariableType( int nKind, int nComponent )
{
	const ControlPointUsageKindInfo_t &info = GetControlPointUsageKindInfo( nKind );
	return nComponent < 0 ? info.m_nVariableType : info.m_nVariableTypeOfComponent;
}
