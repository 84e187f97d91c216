#pragma once
// What every gizmo shares: the modes, the ids of the handles (parts), the 3-by-4 frames a
// gizmo is placed and dragged with, the record a drag reports, a ray from the view, and the
// colour table. Plain data and maths, no drawing and no Qt.

#include <cstdint>

#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"

struct ToolSceneView_t;

enum GizmoMode_t : int
{
	GIZMO_MODE_TRANSLATE = 0,
	GIZMO_MODE_PIVOT_TRANSLATE = 1,
	GIZMO_MODE_ROTATE = 2,
	GIZMO_MODE_SCALE = 3,
	GIZMO_MODE_BOX_SCALE = 4,
	GIZMO_MODE_COUNT = 5,
};

// Handles. Translate: 0 free move in the view plane; 3-5 along X, Y, Z; 6-8 in the planes
// XY, YZ, XZ. Rotate: 2 free rotation; 3-5 about X, Y, Z. Scale: 1 uniform; 3-5 along an
// axis; 6-8 in a plane. Box scale: 9-11 the faces on the positive side of X, Y, Z, 12-14
// those on the negative side.
enum GizmoPart_t : int
{
	GIZMO_PART_NONE = -1,
	GIZMO_PART_CENTER = 0,
	GIZMO_PART_UNIFORM = 1,
	GIZMO_PART_TRACKBALL = 2,
	GIZMO_PART_X = 3,
	GIZMO_PART_Y = 4,
	GIZMO_PART_Z = 5,
	GIZMO_PART_XY = 6,
	GIZMO_PART_YZ = 7,
	GIZMO_PART_XZ = 8,
	GIZMO_PART_BOX_MAX_X = 9,
	GIZMO_PART_BOX_MIN_X = 12,
	GIZMO_PART_LAST = 20,
};

inline bool GizmoIsAxisPart( int nPart ) { return ( nPart >= 3 && nPart <= 5 ) || ( nPart >= 9 && nPart <= 11 ); }
inline bool GizmoIsPlanePart( int nPart ) { return ( nPart >= 6 && nPart <= 8 ) || ( nPart >= 12 && nPart <= 20 ); }
inline int GizmoAxisIndex( int nPart ) { return nPart % 3; }
// The normal axis of a plane part: XY is Z, YZ is X, XZ is Y.
int GizmoPlaneNormalAxis( int nPart );
// Bits 1, 2, 4 for X, Y, Z: which coordinates a part moves.
uint32_t GizmoPartAxisMask( int nPart, GizmoMode_t eMode );
inline uint64_t GizmoPartBit( int nPart ) { return nPart >= 0 && nPart < 64 ? uint64_t( 1 ) << nPart : 0; }

// Rows of a 3-by-4 matrix: a point p maps to M * (p, 1). Columns 0-2 are the axes.
struct GizmoMatrix_t
{
	float m[ 3 ][ 4 ] = { { 1, 0, 0, 0 }, { 0, 1, 0, 0 }, { 0, 0, 1, 0 } };

	static GizmoMatrix_t Identity() { return GizmoMatrix_t(); }
	static GizmoMatrix_t FromAxes( const Vector &vX, const Vector &vY, const Vector &vZ, const Vector &vOrigin );
	// The frame of angles (forward is X, left is Y, up is Z) at an origin.
	static GizmoMatrix_t FromAngles( const QAngle &angles, const Vector &vOrigin );
	static GizmoMatrix_t Translation( const Vector &vOffset );
	// A turn of flDegrees about a unit axis through a point.
	static GizmoMatrix_t Rotation( const Vector &vAxis, float flDegrees, const Vector &vCentre );
	// A scale along the three axes of a frame, about a point.
	static GizmoMatrix_t ScaleInFrame( const GizmoMatrix_t &frame, const Vector &vScale, const Vector &vCentre );

	Vector GetAxis( int i ) const { return Vector( m[ 0 ][ i ], m[ 1 ][ i ], m[ 2 ][ i ] ); }
	Vector GetOrigin() const { return Vector( m[ 0 ][ 3 ], m[ 1 ][ 3 ], m[ 2 ][ 3 ] ); }
	void SetAxis( int i, const Vector &v );
	void SetOrigin( const Vector &v );
	Vector TransformPoint( const Vector &p ) const;
	Vector TransformVector( const Vector &v ) const;
	GizmoMatrix_t operator*( const GizmoMatrix_t &b ) const;
	// The angles of the matrix's axes (pitch, yaw, roll).
	QAngle ToAngles() const;
	bool IsIdentity( float flTolerance = 1e-6f ) const;
};

enum GizmoDragFlags_t : uint32_t
{
	GIZMO_DRAG_WORLD_SPACE = 8,
	GIZMO_DRAG_BOX_SCALE = 16,
	GIZMO_DRAG_ROTATION = 64,
	GIZMO_DRAG_TYPED = 512,
};

// What a listener hears of a drag: the delta from the drag's start.
struct ZolGizmoDrag
{
	int m_nPart = GIZMO_PART_NONE;
	GizmoMatrix_t m_Transform;   // for a translation the last column is the offset
	float m_flAngle = 0.0f;      // degrees of the current rotation
	Vector m_vStartPosition;
	float m_StartOrientation[ 3 ][ 3 ] = { { 1, 0, 0 }, { 0, 1, 0 }, { 0, 0, 1 } };
	Vector m_vTranslation;
	Vector m_vRotation;          // degrees about the gizmo's X, Y and Z
	Vector m_vScale{ 1.0f, 1.0f, 1.0f };
	Vector m_vScaleCentre;
	Vector m_vSnapOffset;
	uint32_t m_nFlags = 0;

	void Reset();
};

// A line from the eye through a pixel.
struct GizmoRay_t
{
	Vector m_vOrigin;
	Vector m_vDirection;
};
GizmoRay_t GizmoRayFromScreen( const ToolSceneView_t &view, float flX, float flY );
// The pixel a ray passes through; false when it leaves the view backwards.
bool GizmoRayToScreen( const ToolSceneView_t &view, const GizmoRay_t &ray, float *pX, float *pY );
// A view of field of view -1 is orthographic.
bool GizmoIsOrthographic( const ToolSceneView_t &view );

// A typed value: one number ("12.5", "-3") or, where two are asked for, two numbers with
// any one character between them ("2x3"). The whole text must read; blanks around it are
// allowed. False for anything else ("abc", "1-").
bool GizmoParseTypedValue( const char *pText, float *pValue );
bool GizmoParseTypedPair( const char *pText, float *pFirst, float *pSecond, bool *pHasSecond );

// The colour of a role, 0-255 each; an index out of the table gives white.
enum GizmoColorRole_t : int
{
	GIZMO_COLOR_X = 0,
	GIZMO_COLOR_Y = 1,
	GIZMO_COLOR_Z = 2,
	GIZMO_COLOR_HIGHLIGHT = 3,
	GIZMO_COLOR_TRACKBALL = 7,
	GIZMO_COLOR_CENTRE = 9,
	GIZMO_COLOR_PLANE_FILL = 15,
	GIZMO_COLOR_PLANE_EDGE = 16,
	GIZMO_COLOR_COUNT = 21,
};
void GizmoGetColor( int nIndex, uint8_t rgba[ 4 ] );
// The same as floats 0-1.
void GizmoGetColor( int nIndex, float rgba[ 4 ] );
