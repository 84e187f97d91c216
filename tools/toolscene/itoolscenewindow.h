#pragma once
// What a tool scene's window offers the things that act in it (a gizmo): the view as it
// is drawn, the pointer's pixel in it, and a request to draw again. And what the window
// asks of them: the pointer as it moves, and whether one holds the mouse (then the
// camera leaves the drag alone).

struct ToolSceneView_t;

class IToolSceneWindow
{
public:
	virtual ToolSceneView_t GetSceneView() const = 0;
	// Pixels of the picture, x right and y down; false when the pointer was never seen.
	virtual bool GetPointerPosition( float *pX, float *pY ) const = 0;
	virtual void RequestRedraw() = 0;

protected:
	~IToolSceneWindow() = default;
};

class IToolScenePointerListener
{
public:
	// The pointer moved to a pixel of the picture while no camera drag ran.
	virtual void OnPointerMoved( float flX, float flY ) = 0;
	// True while a drag of the listener's runs: the camera must not start one.
	virtual bool IsHoldingPointer() const = 0;

protected:
	~IToolScenePointerListener() = default;
};
