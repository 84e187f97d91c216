#pragma once
// What a gizmo talks to. The listener hears the steps of a drag as deltas from its start
// and moves its own copy of what the gizmo stands on; the snapper (supplied by the owner)
// rounds positions, lengths and angles; the outer owns the gizmo in a scene.

#include <cstdint>

#include "core/mathlib/vector.h"

struct ZolGizmoDrag;
struct GizmoRay_t;
struct ToolSceneView_t;

class IGizmoListener
{
public:
	virtual void OnGizmoBegin( uint32_t nFlags ) = 0;
	virtual void OnGizmoDrag( const ZolGizmoDrag &drag ) = 0;
	virtual void OnGizmoEnd( const ZolGizmoDrag &drag ) = 0;
	virtual void OnGizmoReserved() {}
	// A pivot move was abandoned.
	virtual void OnGizmoCancelled() {}
	virtual void OnGizmoPartChanged( int ) {}
	// After the end of a drag, once the record is reset.
	virtual void OnGizmoFinished() {}

protected:
	~IGizmoListener() = default;
};

class IGizmoSnapper
{
public:
	virtual float GetGridSize() const = 0;
	virtual bool IsGridSnapOn() const = 0;
	virtual bool IsAngleSnapOn() const = 0;
	virtual float SnapDistance( float flValue ) const = 0;
	// 1 when the point was snapped (pOut then holds it), 0 when it stands as it was.
	virtual int SnapPoint( const Vector &vPoint, Vector *pOut ) const = 0;
	virtual void Reserved() const {}
	virtual float SnapAngle( float flDegrees ) const = 0;

protected:
	~IGizmoSnapper() = default;
};

class IGizmoOuter
{
public:
	virtual int GetOuterKind() const = 0;
	virtual void DecreaseSize() = 0;
	virtual void IncreaseSize() = 0;
	// The part under the ray, or -1.
	virtual int FindPart( const ToolSceneView_t &camera, const GizmoRay_t &ray ) = 0;
	virtual void SetNodeFlags( uint32_t nFlags ) = 0;
	virtual bool IsVisible() const = 0;
	// Something the gizmo shows changed: draw again.
	virtual void Invalidate() = 0;

protected:
	~IGizmoOuter() = default;
};
