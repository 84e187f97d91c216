// What each usage kind means to the editor: one table, read by the preview's gizmo, the
// control point rows, the state's edit modes and the conversion to a variable.

#include <gtest/gtest.h>

#include "core/particles/controlpointusagekind.h"

namespace
{
struct KindCase_t
{
	int m_nKind;
	ControlPointGizmo_t m_eGizmo;
	ControlPointEditMode_t m_eFallback;
	uint32_t m_nFits; // bit per edit mode
	int m_nWhole;     // variable type of a use of the whole point
	int m_nComponent; // of one component
};

class ControlPointUsageKind : public ::testing::TestWithParam<KindCase_t>
{
};
} // namespace

TEST_P( ControlPointUsageKind, GizmoEditModesAndConversionFollowTheKind )
{
	const KindCase_t &c = GetParam();
	EXPECT_EQ( GetControlPointUsageKindInfo( c.m_nKind ).m_eGizmo, c.m_eGizmo );
	EXPECT_EQ( GetControlPointEditModeForUsage( c.m_nKind ), c.m_eFallback );
	for ( int nMode = CONTROL_POINT_EDIT_NONE; nMode <= CONTROL_POINT_EDIT_COLOR; ++nMode )
		EXPECT_EQ( DoesControlPointEditModeFit( c.m_nKind, nMode ), ( c.m_nFits >> nMode ) & 1 ) << "mode " << nMode;
	EXPECT_FALSE( DoesControlPointEditModeFit( c.m_nKind, -1 ) );
	EXPECT_EQ( GetControlPointUsageVariableType( c.m_nKind, -1 ), c.m_nWhole );
	EXPECT_EQ( GetControlPointUsageVariableType( c.m_nKind, 1 ), c.m_nComponent );
}

// Variable types by number: 2 float, 5 vector, 9 transform, 30 particle entity handle.
INSTANTIATE_TEST_SUITE_P( Kinds, ControlPointUsageKind,
	::testing::Values( KindCase_t{ CONTROL_POINT_USAGE_GENERIC, CONTROL_POINT_GIZMO_TRANSLATE, CONTROL_POINT_EDIT_NONE, 0b0001, -1, -1 },
		KindCase_t{ CONTROL_POINT_USAGE_VECTOR, CONTROL_POINT_GIZMO_NONE, CONTROL_POINT_EDIT_NONE, 0b0001, 5, 5 },
		KindCase_t{ CONTROL_POINT_USAGE_POSITION, CONTROL_POINT_GIZMO_TRANSLATE, CONTROL_POINT_EDIT_TRANSLATE, 0b0010, 2, 5 },
		KindCase_t{ CONTROL_POINT_USAGE_ORIENTATION, CONTROL_POINT_GIZMO_ROTATE, CONTROL_POINT_EDIT_ROTATE, 0b0100, -1, -1 },
		KindCase_t{ CONTROL_POINT_USAGE_TRANSFORM, CONTROL_POINT_GIZMO_TRANSLATE_OR_ROTATE, CONTROL_POINT_EDIT_TRANSLATE, 0b0110, 9, 9 },
		KindCase_t{ CONTROL_POINT_USAGE_COLOR, CONTROL_POINT_GIZMO_NONE, CONTROL_POINT_EDIT_COLOR, 0b1000, -1, -1 },
		KindCase_t{ CONTROL_POINT_USAGE_MODEL, CONTROL_POINT_GIZMO_NONE, CONTROL_POINT_EDIT_NONE, 0b0001, -1, -1 },
		KindCase_t{ CONTROL_POINT_USAGE_ENTITY, CONTROL_POINT_GIZMO_NONE, CONTROL_POINT_EDIT_NONE, 0b0001, 30, 30 },
		KindCase_t{ 99, CONTROL_POINT_GIZMO_NONE, CONTROL_POINT_EDIT_NONE, 0b0001, -1, -1 } ) );

TEST( ControlPointUsageKindDefaults, KindsStartPointsWhereTheirValuesMakeSense )
{
	EXPECT_EQ( GetControlPointUsageKindInfo( CONTROL_POINT_USAGE_DIRECTION ).m_flDefaults[ 2 ], 1.0f );
	EXPECT_EQ( GetControlPointUsageKindInfo( CONTROL_POINT_USAGE_COLOR ).m_flDefaults[ 0 ], 255.0f );
	EXPECT_EQ( GetControlPointUsageKindInfo( CONTROL_POINT_USAGE_SCALE ).m_flDefaults[ 1 ], 1.0f );
	EXPECT_EQ( GetControlPointUsageKindInfo( CONTROL_POINT_USAGE_POSITION ).m_flDefaults[ 0 ], 0.0f );
	// Edit modes and the scene's gizmo modes number differently; a colour has no gizmo.
	EXPECT_EQ( GetSceneGizmoModeForEditMode( CONTROL_POINT_EDIT_TRANSLATE ), SCENE_GIZMO_TRANSLATE );
	EXPECT_EQ( GetSceneGizmoModeForEditMode( CONTROL_POINT_EDIT_ROTATE ), SCENE_GIZMO_ROTATE );
	EXPECT_EQ( GetSceneGizmoModeForEditMode( CONTROL_POINT_EDIT_COLOR ), SCENE_GIZMO_NONE );
}
