#include "tools/toolscene/gizmoconvars.h"

#include <algorithm>

#include "core/console/convar.h"

ConVar brakel_gizmo_axis_length( "brakel_gizmo_axis_length", "80.0", FCVAR_NONE, "Length of a gizmo's axes on screen, in pixels." );
ConVar brakel_gizmo_axis_scale( "brakel_gizmo_axis_scale", "1.5", FCVAR_NONE, "How much thicker the handle under the pointer draws." );
ConVar brakel_gizmo_line_thickness( "brakel_gizmo_line_thickness", "3.0", FCVAR_NONE, "Width of a gizmo's lines, in pixels." );
ConVar brakel_gizmo_2dscale( "brakel_gizmo_2dscale", "3.0", FCVAR_NONE, "Size of the box scale gizmo's handles." );
ConVar brakel_gizmo_rot_inflate( "brakel_gizmo_rot_inflate", "6.0", FCVAR_NONE, "Width of the hit ring of rotation circles, in pixels." );
ConVar brakel_gizmo_compute_matrix( "brakel_gizmo_compute_matrix", "1", FCVAR_NONE, "The box scale gizmo computes its delta matrix; off leaves the identity." );
ConVar gizmo_rot_max_dist( "gizmo_rot_max_dist", "8.0", FCVAR_NONE, "Unused." );
ConVar toolscene_gizmo_algorithm( "toolscene_gizmo_algorithm", "1", FCVAR_NONE, "Which construction of the box scale gizmo's delta matrix is used (0 or 1)." );

float GizmoAxisLengthPixels()
{
	return std::clamp( brakel_gizmo_axis_length.GetFloat(), GIZMO_MIN_AXIS_LENGTH, GIZMO_MAX_AXIS_LENGTH );
}

void GizmoIncreaseAxisLength()
{
	brakel_gizmo_axis_length.SetValue( std::min( brakel_gizmo_axis_length.GetFloat() * 1.4f, GIZMO_MAX_AXIS_LENGTH ) );
}

void GizmoDecreaseAxisLength()
{
	brakel_gizmo_axis_length.SetValue( std::max( brakel_gizmo_axis_length.GetFloat() * 0.6f, GIZMO_MIN_AXIS_LENGTH ) );
}
