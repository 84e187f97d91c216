#pragma once
// The base of the gizmo helpers. A helper owns the maths of one kind of manipulation: it is
// placed by a frame, tells which handle is under the pointer, turns the pointer's rays
// during a drag into a delta from the drag's start (ZolGizmoDrag) for its listener, and
// takes typed values and keyboard nudges. It never moves anything itself: the listener
// applies the delta to its own copy of the start, and the owner places the helper anew.

#include <string>
#include <vector>

#include "tools/toolscene/gizmotypes.h"

class CBaseGizmoRenderData;
class IGizmoListener;
class IGizmoOuter;
class IGizmoSnapper;
struct ToolSceneView_t;

// Where a gizmo stands. Coordinate space 1 is world: the world orientation and bounds
// serve then, the local ones otherwise.
struct GizmoFrame_t
{
	int m_nBoundsMode = 0;
	int m_nCoordinateSpace = 0;
	Vector m_vPivot;
	Vector m_vPosition;
	Vector m_vBoundsMinWorld, m_vBoundsMaxWorld;
	Vector m_vBoundsMinLocal, m_vBoundsMaxLocal;
	GizmoMatrix_t m_WorldOrientation;
	GizmoMatrix_t m_LocalOrientation;
};

// Status text of a typed value that doesn't read.
constexpr const char *GIZMO_BAD_VALUE_PREFIX = "<Bad value> : ";

class CBaseGizmoHelper
{
public:
	CBaseGizmoHelper( GizmoMode_t eMode, IGizmoOuter *pOuter );
	virtual ~CBaseGizmoHelper();
	CBaseGizmoHelper( const CBaseGizmoHelper & ) = delete;
	CBaseGizmoHelper &operator=( const CBaseGizmoHelper & ) = delete;

	GizmoMode_t GetMode() const { return m_eMode; }
	void SetListeners( IGizmoListener *pListener, const IGizmoSnapper *pSnapper );
	IGizmoListener *GetListener() const { return m_pListener; }
	const IGizmoSnapper *GetSnapper() const { return m_pSnapper; }

	// Ends a running typed input first; notes a pivot apart from the position.
	void SetFrame( const GizmoFrame_t &frame );
	const GizmoFrame_t &GetFrame() const { return m_Frame; }
	Vector GetPosition() const { return m_Frame.m_vPosition; }
	Vector GetPivot() const { return m_Frame.m_vPivot; }
	// Ignored while typed input runs.
	void SetPosition( const Vector &vPosition );
	void SetPivotOnly( const Vector &vPivot );
	bool HasMoved() const { return m_bMoved; }
	// The orientation in force: the world one in coordinate space 1, else the local one.
	const GizmoMatrix_t &GetOrientation() const { return m_Orientation; }
	Vector GetAxis( int i ) const;
	bool IsWorldSpace() const { return m_Frame.m_nCoordinateSpace == 1; }
	// Corners of the bounds in force, cycled from the one at the position.
	Vector GetNextBoundsVertex() const;
	Vector GetPrevBoundsVertex() const;
	// The eight corners of the bounds in force, in world space.
	void GetBoundsCorners( std::vector<Vector> *pCorners ) const;

	virtual void OnShow() {}
	virtual void OnHide();
	// Forgets a drag and typed text; with bHard the hover too.
	virtual void Reset( bool bHard );

	// The part under the pointer; nothing changes while dragging or with hover locked.
	void OnHover( const ToolSceneView_t &camera, int nPart );
	int GetHoverPart() const { return m_nHoverPart; }
	void SetHoverLocked( bool bLocked ) { m_bHoverLocked = bLocked; }

	void BeginDrag( const ToolSceneView_t *pCamera, const GizmoRay_t &ray );
	void ContinueDrag( const ToolSceneView_t *pCamera, const GizmoRay_t &ray );
	void EndDrag( const ToolSceneView_t *pCamera );
	bool IsDragging() const { return m_nPart != GIZMO_PART_NONE; }
	int GetDragPart() const { return m_nPart; }
	const ZolGizmoDrag &GetDrag() const { return m_Drag; }

	// Typed input: a value typed for a handle (the one under the pointer, else the last
	// one dragged) replaces a drag.
	void BeginTyping();
	bool IsTyping() const { return m_bTyping; }
	int GetTypedPart() const { return m_nTypedPart; }
	// Adds to the text while typing; a '-' only at the start, and only where values may be negative.
	void TypeCharacter( char c );
	void SetTypedText( const char *pText ) { m_TypedText = pText ? pText : ""; }
	const std::string &GetTypedText() const { return m_TypedText; }
	// Applies the text as one step; false (with the status text "<Bad value> : " and the
	// text) when it doesn't read. The typed text is cleared either way.
	bool ApplyTyped( const char *pText );
	void ClearTyped();

	// A one-step drag from the keyboard: 0 and 1 along the screen's right and left, 2
	// and 3 up and down. Helpers without one do nothing.
	virtual void Nudge( const ToolSceneView_t &camera, int nDirection );

	bool IsSnapping() const;
	float GetSnapSize() const;

	// The drawn length of the axes in world units at the gizmo's depth.
	float GetDrawnLength( const ToolSceneView_t &camera ) const;
	virtual CBaseGizmoRenderData *GetRenderData() = 0;

	// Geometry shared by the helpers, public for the tests.
	// The ray's hit on a plane through vPoint: t 1.0 for a hit behind, pulled back to 0.95 ×
	// the far distance when beyond it.
	static Vector PlaneHit( const ToolSceneView_t &camera, const GizmoRay_t &ray, const Vector &vNormal, const Vector &vPoint );
	// World units per flPixels at the depth of vCentre.
	static float WorldLengthOfPixels( const ToolSceneView_t &camera, const Vector &vCentre, float flPixels );

protected:
	// The helper's own parts of a drag. Start answers false to refuse the drag.
	virtual bool StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) = 0;
	virtual void StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) = 0;
	virtual void FinishDrag( const ToolSceneView_t & ) {}
	virtual uint32_t GetEndFlags() const { return 0; }
	// Fills the record from a typed text; false when it doesn't read.
	virtual bool ApplyTypedText( const std::string &text ) = 0;
	virtual bool AllowsNegativeTyped() const { return true; }
	// The status event of the helper, with a text.
	virtual void PublishStatus( const std::string &text ) const = 0;

	// The normal of the plane a translation or scale drags on: an axis part's other axis
	// that faces the camera more, a plane part's third axis, the free part's facing axis.
	Vector ChooseDragPlaneNormal( const ToolSceneView_t &camera, const GizmoRay_t &ray, int nPart ) const;
	// The six signed axes that best match the screen's right and up.
	void ChooseNudgeAxes( const ToolSceneView_t &camera, Vector *pRight, Vector *pUp ) const;
	// Begin, a one-step record, end, reset: a keyboard step or typed value.
	void RunOneStep( uint32_t nFlags );
	void FillStart();
	// The axis marks of a part for the status events.
	static void AxisMarks( int nPart, GizmoMode_t eMode, float axes[ 3 ] );

	GizmoMode_t m_eMode;
	IGizmoOuter *m_pOuter;
	IGizmoListener *m_pListener = nullptr;
	const IGizmoSnapper *m_pSnapper = nullptr;
	GizmoFrame_t m_Frame;
	GizmoMatrix_t m_Orientation;
	bool m_bMoved = false;
	int m_nHoverPart = GIZMO_PART_NONE;
	bool m_bHoverLocked = false;
	int m_nPart = GIZMO_PART_NONE;
	bool m_bDragging = false;
	int m_nLastPart = GIZMO_PART_NONE;
	ZolGizmoDrag m_Drag;
	bool m_bTyping = false;
	int m_nTypedPart = GIZMO_PART_NONE;
	std::string m_TypedText;
};
