#pragma once
// How the preview edits a control point (the mode stored per point), and the mode numbers
// of the scene's gizmo. They are different numberings: edit mode 1 (translate) runs the
// gizmo in its mode 0, and the colour mode runs no gizmo at all.

#include <cstdint>

enum ControlPointEditMode_t : int32_t
{
	CONTROL_POINT_EDIT_NONE = 0,
	CONTROL_POINT_EDIT_TRANSLATE = 1,
	CONTROL_POINT_EDIT_ROTATE = 2,
	CONTROL_POINT_EDIT_COLOR = 3, // the position holds red, green and blue; a colour dialog edits it
};

// The helper the scene's gizmo selects by its mode.
enum SceneGizmoMode_t : int32_t
{
	SCENE_GIZMO_NONE = -1,
	SCENE_GIZMO_TRANSLATE = 0,
	SCENE_GIZMO_PIVOT_TRANSLATE = 1,
	SCENE_GIZMO_ROTATE = 2,
	SCENE_GIZMO_SCALE = 3,
	SCENE_GIZMO_BOX_SCALE = 4,
};

// The gizmo that edits a point in a mode: rotate for rotation, none for a colour, the
// translate gizmo otherwise.
inline SceneGizmoMode_t GetSceneGizmoModeForEditMode( int nEditMode )
{
	switch ( nEditMode )
	{
	case CONTROL_POINT_EDIT_ROTATE: return SCENE_GIZMO_ROTATE;
	case CONTROL_POINT_EDIT_COLOR: return SCENE_GIZMO_NONE;
	default: return SCENE_GIZMO_TRANSLATE;
	}
}
