#pragma once
// A widget that tells a click from a drag: a press that moves more than a few pixels
// (Manhattan distance) before its release is a drag, told as a start, moves and an end;
// anything else is a click. Subclasses fill in the four operations, which do nothing here.

#include <QPoint>
#include <QWidget>

class CQMouseDragWidget : public QWidget
{
	Q_OBJECT

public:
	static constexpr int DEFAULT_DRAG_THRESHOLD = 3;

	explicit CQMouseDragWidget( QWidget *pParent = nullptr );

	bool IsDragging() const { return m_bDragging; }
	// (-1,-1) while the mouse is outside.
	QPoint GetLastMousePos() const { return m_LastMousePos; }
	QPoint GetPressPos() const { return m_PressPos; }
	Qt::MouseButtons GetPressButtons() const { return m_PressButtons; }
	void SetDragThreshold( int nPixels ) { m_nDragThreshold = nPixels; }

protected:
	virtual void OnMouseClick( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pos );
	virtual void OnMouseDragStart( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pressPos );
	// delta is the previous position less the new one: opposite to the motion.
	virtual void OnMouseDrag( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pos, const QPoint &delta );
	virtual void OnMouseDragEnd( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pressPos, const QPoint &pos );

	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void leaveEvent( QEvent *pEvent ) override;

private:
	QPoint m_LastMousePos{ -1, -1 };
	QPoint m_PressPos{ -1, -1 };
	bool m_bDragging = false;
	Qt::MouseButtons m_PressButtons = Qt::NoButton;
	int m_nDragThreshold = DEFAULT_DRAG_THRESHOLD;
};
