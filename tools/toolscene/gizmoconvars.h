#pragma once
// The console variables of the gizmos, registered at start.

class ConVar;

extern ConVar brakel_gizmo_axis_length;
extern ConVar brakel_gizmo_axis_scale;
extern ConVar brakel_gizmo_line_thickness;
extern ConVar brakel_gizmo_2dscale;
extern ConVar brakel_gizmo_rot_inflate;
extern ConVar brakel_gizmo_compute_matrix;
extern ConVar gizmo_rot_max_dist;
extern ConVar toolscene_gizmo_algorithm;

constexpr float GIZMO_MIN_AXIS_LENGTH = 10.0f;
constexpr float GIZMO_MAX_AXIS_LENGTH = 400.0f;
constexpr float GIZMO_MIN_SCALE = 0.001f;
constexpr float GIZMO_MAX_SCALE = 10000.0f;

// The axis length in pixels as drawn: the variable, held to [10, 400].
float GizmoAxisLengthPixels();
// The size commands: larger multiplies by 1.4 up to 400, smaller by 0.6 down to 10.
void GizmoIncreaseAxisLength();
void GizmoDecreaseAxisLength();
