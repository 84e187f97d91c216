#pragma once
// The widget that shows a tool scene through a camera. Its owner ticks it once a frame:
// the tick advances the scene's clock (unless simulation is off), keeps the camera on the
// scene while it follows, and asks for a paint. Left drag orbits, middle drag (or Shift
// with left) pans, right drag and the wheel zoom. Overlay indicators (an icon and a text),
// an information text and a message line sit over the picture.

#include <QOpenGLWidget>
#include <QPoint>

#include <functional>
#include <vector>

#include "tools/toolscene/bindablecamera.h"
#include "tools/toolscene/itoolscenewindow.h"
#include "tools/toolscene/toolsceneclock.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/widgets/toolscenerenderer.h"
#include "tools/toolutils2/inputbind/bindtarget.h"

class CToolScene;
class CToolSceneCamera;
class QLabel;
class QVBoxLayout;

class CQToolSceneWidget : public QOpenGLWidget, public IBindTarget, public IToolSceneWindow
{
	Q_OBJECT

public:
	// The scene isn't owned; it must outlive the widget.
	explicit CQToolSceneWidget( CToolScene *pScene, QWidget *pParent = nullptr );
	~CQToolSceneWidget() override;

	CToolScene *GetScene() const { return m_pScene; }
	CBindableCamera &GetCamera() { return m_Camera; }

	// The frame's work: camera, clock, the scene's step at this rate, framing, paint.
	void Tick( float flRate );
	void ResetCamera( bool bClearOffset, bool bFollowScene );
	void SetSimulating( bool bSimulating ) { m_bSimulating = bSimulating; }
	bool IsSimulating() const { return m_bSimulating; }
	// Painting at the next tick; holding keeps painting every tick.
	void RequestPaint() { m_bPaintRequested = true; }
	void HoldPaint( bool bHold ) { m_nPaintHoldCount += bHold ? 1 : -1; }

	// The view as it is drawn now.
	ToolSceneView_t GetView() const;
	// The draw list of the last paint.
	const CToolSceneDrawList &GetDrawList() const { return m_DrawList; }
	// False when no OpenGL 3.3 context could be had: the scene still runs, nothing shows.
	bool HasRenderContext() const { return m_Renderer.IsInitialized(); }
	// The indicator that says so once a paint found no context; -1 before.
	int GetNoContextIndicator() const { return m_nNoContextIndicator; }
	int GetPaintCount() const { return m_nPaintCount; }

	// Overlays: indicators (answers an id), the information text, a coloured message.
	int AddOverlayIndicator( const char *pText, const char *pIconPath );
	void SetOverlayIndicatorVisible( int nIndicator, bool bVisible );
	bool IsOverlayIndicatorVisible( int nIndicator ) const;
	void ClearOverlayIndicators();
	void SetOverlayText( const QString &text );
	QString GetOverlayText() const;
	void SetMessage( const QString &text, const QColor &color );
	QString GetMessage() const;

	// What acts in the scene with the pointer (a gizmo): it hears the pointer's moves, and
	// while it holds the pointer the camera starts no drag. Not owned; null for none.
	void SetPointerListener( IToolScenePointerListener *pListener ) { m_pPointerListener = pListener; }
	// Keys typed while the view has focus go here first (a gizmo's typed value); true
	// when it took the key.
	using KeyHandlerFn_t = std::function<bool( QKeyEvent * )>;
	void SetKeyHandler( KeyHandlerFn_t fn ) { m_fnKeyHandler = std::move( fn ); }

	// IToolSceneWindow
	ToolSceneView_t GetSceneView() const override;
	bool GetPointerPosition( float *pX, float *pY ) const override;
	void RequestRedraw() override;

	// IBindTarget: context "ToolSceneWidget".
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;
	void DebugToolScene();
	// The information text's size in pixels: smaller than natural when the view is too
	// narrow for its widest line.
	int GetOverlayTextPixels() const { return m_nOverlayTextPixels; }

protected:
	void initializeGL() override;
	void paintGL() override;
	void paintEvent( QPaintEvent *pEvent ) override;
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void wheelEvent( QWheelEvent *pEvent ) override;
	void keyPressEvent( QKeyEvent *pEvent ) override;
	void resizeEvent( QResizeEvent *pEvent ) override;

private slots:
	void OnAboutToDestroyContext();

private:
	void FitOverlayText();

	enum DragMode_t
	{
		DRAG_NONE,
		DRAG_ORBIT,
		DRAG_PAN,
		DRAG_ZOOM,
	};

	CToolScene *m_pScene;
	CToolSceneCamera *m_pCameraNode = nullptr;
	CBindableCamera m_Camera;
	CToolSceneClock m_Clock;
	CToolSceneRenderer m_Renderer;
	CToolSceneDrawList m_DrawList;
	bool m_bSimulating = true;
	bool m_bPaintPending = true;
	bool m_bPaintRequested = false;
	int m_nPaintHoldCount = 0;
	int m_nPaintCount = 0;
	DragMode_t m_eDrag = DRAG_NONE;
	QPoint m_LastMousePos;
	IToolScenePointerListener *m_pPointerListener = nullptr;
	KeyHandlerFn_t m_fnKeyHandler;

	QVBoxLayout *m_pIndicatorLayout = nullptr;
	int m_nNoContextIndicator = -1;
	std::vector<QWidget *> m_Indicators;
	QLabel *m_pOverlayText = nullptr;
	int m_nOverlayTextPixels = 0;
	QLabel *m_pMessage = nullptr;
};
