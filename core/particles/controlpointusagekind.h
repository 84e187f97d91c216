#pragma once
// What a function says it needs of a control point, and what each kind means to the
// editor: the values a point starts with, whether the preview's gizmo moves or turns it,
// which edit modes its row offers, and the variable type it becomes when converted.
// The numbers travel in usage records between the runtime and the editor.

#include <cstdint>

#include "core/particles/controlpointeditmode.h"

enum ControlPointUsageKind_t : int32_t
{
	CONTROL_POINT_USAGE_GENERIC = 0,     // used, nothing said of how
	CONTROL_POINT_USAGE_VECTOR = 1,      // three numbers of data
	CONTROL_POINT_USAGE_POSITION = 2,    // a position is enough
	CONTROL_POINT_USAGE_ORIENTATION = 3, // only the orientation
	CONTROL_POINT_USAGE_TRANSFORM = 4,   // position and orientation
	CONTROL_POINT_USAGE_DIRECTION = 5,   // a direction, up by default
	CONTROL_POINT_USAGE_COLOR = 6,       // red, green, blue from 0 to 255
	CONTROL_POINT_USAGE_SCALE = 7,       // a scale per axis
	CONTROL_POINT_USAGE_MULTIPLIER = 8,  // three factors
	CONTROL_POINT_USAGE_DATA = 9,        // numbers that no editor shapes
	CONTROL_POINT_USAGE_MODEL = 10,      // a model at the control point
	CONTROL_POINT_USAGE_ENTITY = 11,     // an entity handle
	CONTROL_POINT_USAGE_KIND_COUNT,
};

// What the preview's gizmo does with a control point of a kind.
enum ControlPointGizmo_t : int32_t
{
	CONTROL_POINT_GIZMO_NONE = 0,
	CONTROL_POINT_GIZMO_TRANSLATE = 1,
	CONTROL_POINT_GIZMO_ROTATE = 2,
	CONTROL_POINT_GIZMO_TRANSLATE_OR_ROTATE = 3, // rotate on request
};

struct ControlPointUsageKindInfo_t
{
	ControlPointUsageKind_t m_eKind;
	const char *m_pName;
	float m_flDefaults[ 3 ];            // the values a point of this kind starts with
	ControlPointGizmo_t m_eGizmo;
	bool m_bShowsAxis;                  // the preview draws its axes
	uint32_t m_nEditModes;              // bit per ControlPointEditMode_t that fits
	ControlPointEditMode_t m_eEditMode; // the mode a point falls back to
	// The value type (PulseValueType_t number, -1 for none) of a variable that takes the
	// place of the point; a position read as one number converts to a float.
	int32_t m_nVariableType;
	int32_t m_nVariableTypeOfComponent;
};

// The record of a kind; a number outside the table reads as the generic kind's values
// with neither gizmo, axis nor conversion.
const ControlPointUsageKindInfo_t &GetControlPointUsageKindInfo( int nKind );

// Whether an edit mode fits the kind, and the mode to take when the current one doesn't.
bool DoesControlPointEditModeFit( int nKind, int nMode );
ControlPointEditMode_t GetControlPointEditModeForUsage( int nKind );
// The variable type for a conversion of a use of the whole point (component -1) or of
// one component; -1 when the kind doesn't convert.
int32_t GetControlPointUsageVariableType( int nKind, int nComponent );
