#pragma once
// A gizmo in a tool scene: a node that draws it over the scene, finds its handles under
// the pointer, and runs its drags from the bind target "ToolSceneGizmo" (command "Drag":
// press grabs the handle under the pointer, each move drags, release ends). The owner
// places it (GetGizmo().SetMode) and listens to it.

#include "tools/toolscene/gizmo.h"
#include "tools/toolscene/gizmorenderdata.h"
#include "tools/toolscene/igizmolistener.h"
#include "tools/toolscene/itoolscenewindow.h"
#include "tools/toolscene/toolscenenode.h"
#include "tools/toolutils2/inputbind/bindtarget.h"

class CToolSceneGizmoLibGizmo final : public CToolSceneNode, public IGizmoOuter, public IBindTarget, public IToolScenePointerListener
{
public:
	explicit CToolSceneGizmoLibGizmo( CToolScene *pScene );
	~CToolSceneGizmoLibGizmo() override;

	CGizmo &GetGizmo() { return m_Gizmo; }
	const CGizmo &GetGizmo() const { return m_Gizmo; }
	// The window that shows the scene: its view and pointer drive the drags.
	void SetWindow( IToolSceneWindow *pWindow ) { m_pWindow = pWindow; }
	// Drags of a higher priority win over lower ones.
	int GetInteractionPriority() const { return -1000; }

	// The drag command's stages, with the window's pointer.
	void OnDragPress();
	void OnDragMove();
	void OnDragRelease();
	// The pointer's ray in the window; false without a window or pointer.
	bool GetPointerRay( ToolSceneView_t *pView, GizmoRay_t *pRay ) const;

	// CToolSceneNode
	void AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const override;

	// IGizmoOuter
	int GetOuterKind() const override { return 0; }
	void DecreaseSize() override;
	void IncreaseSize() override;
	int FindPart( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	void SetNodeFlags( uint32_t nFlags ) override { m_nNodeFlags = nFlags; }
	bool IsVisible() const override { return IsEffectivelyVisible(); }
	void Invalidate() override;

	// IBindTarget
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;

	// IToolScenePointerListener: the handle under the pointer lights up.
	void OnPointerMoved( float flX, float flY ) override;
	bool IsHoldingPointer() const override { return m_Gizmo.IsDragging(); }

private:
	CGizmo m_Gizmo;
	IToolSceneWindow *m_pWindow = nullptr;
	CGizmoHitList m_Hits;
	uint32_t m_nNodeFlags = 0;
};
