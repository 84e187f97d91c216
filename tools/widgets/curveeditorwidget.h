#pragma once
// Edits a CPiecewiseCurve in place, on a grid: keys move with the mouse (crossing one
// neighbour at a time), Shift-click or a Shift-drag adds one, Delete removes the selected
// one, tangent handles of the selected key set its slopes where its mode lets them, and a
// key's menu sets tangent modes. The right button or an empty drag pans, the wheel zooms
// around the pointer, F resets the view. Copy and paste carry the curve as KV3 text.
//
// The widget's curve is the only copy: handles are rebuilt from it after every change,
// and each finished change is told once by OnCurveUpdated (a drag at its end, not per
// move). Panning and zooming change only the view and tell nothing.

#include <QVector>

#include <vector>

#include "core/mathlib/piecewisecurve.h"
#include "tools/widgets/curvehandle.h"
#include "tools/widgets/mousedragwidget.h"

class QMenu;

class CQCurveEditorWidget : public CQMouseDragWidget
{
	Q_OBJECT

public:
	// How the widget looks and what it allows; set by the owner after construction.
	struct Options_t
	{
		float m_flKeyHandleRadius = 8.0f;
		// A key's hit radius is this plus 2, a tangent handle's this minus 1.
		float m_flHitRadiusBase = 8.0f;
		float m_flCurveLineWidth = 3.0f;
		int m_nLeftMargin = 80;
		int m_nRightMargin = 80;
		int m_nTopMargin = 20;
		int m_nBottomMargin = 20;
		bool m_bShowXLabels = true;
		bool m_bShowYLabels = true;
		bool m_bPanZoomX = true;
		bool m_bPanZoomY = true;
		bool m_bDrawDomainRect = true;
		bool m_bClampDrawingToDomain = false;
		bool m_bCanAddRemoveKeys = true;
		bool m_bTangentMenus = true;
		bool m_bSnap = false;
		bool m_bEditPointItem = false;
		bool m_bSetAllTangentMenus = false;
		float m_flInitialZoomX = 1.0f;
		float m_flInitialZoomY = 1.0f;
	};

	// The options of a curve standing in a property row: narrow margins (top and bottom
	// nVerticalMargin), small handles, tangent menus and point edits.
	static Options_t RowOptions( int nVerticalMargin );

	static constexpr float MIN_ZOOM = 0.1f;
	static constexpr float MAX_ZOOM = 10.0f;
	static constexpr double MIN_VISIBLE_RANGE = 0.01;

	explicit CQCurveEditorWidget( QWidget *pParent = nullptr );

	Options_t &GetOptions() { return m_Options; }
	void SetOptions( const Options_t &options );

	// Copies a curve in; one without keys starts as the editor's default curve. mirrored:
	// the curve is shown and edited flipped within its domain's y range, and GetCurve
	// flips it back. Ignored while the widget tells its own change.
	void SetCurve( const CPiecewiseCurve &curve, bool bMirrored, bool bEditable );
	CPiecewiseCurve GetCurve() const;
	const CPiecewiseCurve &GetShownCurve() const { return m_Curve; }
	bool IsEditable() const { return m_bEditable; }

	// The view.
	QPointF CurveToScreen( double x, double y ) const;
	QPointF ScreenToCurve( const QPointF &pos ) const;
	double GetZoomX() const { return m_flZoomX; }
	double GetZoomY() const { return m_flZoomY; }
	double GetPanX() const { return m_flPanX; }
	double GetPanY() const { return m_flPanY; }
	float GetTangentHandleLength() const { return m_flTangentHandleLength; }
	void ResetView();

	const std::vector<ZolCurveHandle> &GetHandles() const { return m_Handles; }
	int GetSelectedHandle() const { return m_nSelectedHandle; }
	// Selects the handle of a key (side -1) or tangent, as a click would; false if none.
	bool SelectHandle( int nKey, int nSide );
	bool IsShowingAddPreview() const { return m_bShowAddPreview; }
	bool IsPanning() const { return m_bPanning; }

	void SetMarkers( const QVector<float> &vertical, const QVector<float> &horizontal );

	// The menus a right click shows, made for the key (-1: the general menu alone). The
	// caller owns them; tests look into them without showing them.
	QMenu *CreateKeyMenu( int nKey );
	QMenu *CreateGeneralMenu( QWidget *pParent );
	// Whether the clipboard holds a curve that Paste would take.
	static bool ClipboardHoldsCurve();
	// The KV3 text of a curve as Copy writes it; false with the reason when it can't be made.
	static bool CurveToText( const CPiecewiseCurve &curve, QString *pText, QString *pError );
	// A curve from KV3 text, as Paste reads it; false with the reason.
	static bool CurveFromText( const QString &text, CPiecewiseCurve *pCurve, QString *pError );

signals:
	void OnCurveUpdated();

public slots:
	void SetBothTangents( int nPoint, int nMode );
	void SetIncomingTangent( int nPoint, int nMode );
	void SetOutgoingTangent( int nPoint, int nMode );
	void SetAllTangents( int nMode, bool bIncoming, bool bOutgoing );
	void ModalPointEdit( int nPoint, QPoint p );
	void CopyCurveToClipboard();
	void PasteCurveFromClipboard();

protected:
	void OnMouseClick( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pos ) override;
	void OnMouseDragStart( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pressPos ) override;
	void OnMouseDrag( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pos, const QPoint &delta ) override;
	void OnMouseDragEnd( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pressPos, const QPoint &pos ) override;

	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void keyPressEvent( QKeyEvent *pEvent ) override;
	void keyReleaseEvent( QKeyEvent *pEvent ) override;
	void wheelEvent( QWheelEvent *pEvent ) override;
	void paintEvent( QPaintEvent *pEvent ) override;
	void resizeEvent( QResizeEvent *pEvent ) override;

private:
	// The curve becomes the widget's (flipped when mirrored; the default one when it has
	// no keys), and its domain the view's.
	void TakeCurve( const CPiecewiseCurve &curve );
	void UpdateTransform();
	void RebuildHandles();
	// The nearest handle within its radius (earlier on a tie), marking it hovered; -1.
	int HitTest( const QPointF &pos );
	// The first active handle within its radius, in order; -1.
	int PressTest( const QPointF &pos ) const;
	QPointF Snap( const QPointF &curvePos, Qt::KeyboardModifiers modifiers ) const;
	// Moves the selected key or tangent to the pointer; false without a selection.
	bool MoveSelectedHandle( Qt::KeyboardModifiers modifiers, const QPoint &pos );
	void MoveKey( Qt::KeyboardModifiers modifiers, int nKey, const QPointF &pixelPos );
	void MoveTangent( const ZolCurveHandle &handle, const QPointF &pixelPos );
	void AnnounceChange();
	// Sets both modes of a key, and tells the change; false for a key or mode out of range.
	bool SetKeyModes( int nPoint, int nIncoming, int nOutgoing );
	void ShowContextMenu( int nKey, const QPoint &globalPos );
	void PaintGrid( QPainter &painter );
	void PaintCurve( QPainter &painter );
	void PaintHandles( QPainter &painter );

	CPiecewiseCurve m_Curve;
	std::vector<ZolCurveHandle> m_Handles;
	std::vector<int> m_GuideLine;
	int m_nSelectedHandle = -1;
	bool m_bShowAddPreview = false;
	QPointF m_vPreview;
	bool m_bPanning = false;
	bool m_bEditable = true;
	bool m_bMirrored = false;
	bool m_bAnnouncing = false;
	QPointF m_vViewMin{ 0.0, 0.0 };
	QPointF m_vViewMax{ 1.0, 1.0 };
	double m_flZoomX = 1.0;
	double m_flZoomY = 1.0;
	double m_flPanX = 0.0;
	double m_flPanY = 0.0;
	// screen = origin + curve * scale, per axis.
	double m_flScaleX = 1.0;
	double m_flScaleY = -1.0;
	double m_flOriginX = 0.0;
	double m_flOriginY = 0.0;
	QRectF m_PlotRect;
	float m_flTangentHandleLength = 100.0f;
	QVector<float> m_VerticalMarkers;
	QVector<float> m_HorizontalMarkers;
	Options_t m_Options;
};
