#pragma once
// The grip by which a row of a CQDraggableWidgetList is dragged. Pressing it closes the
// hand; moving past the start distance starts a drag with the data the row fills.

#include <QPixmap>
#include <QPoint>
#include <QWidget>

class IDraggableTargetItem;

class CQDragHandleWidget : public QWidget
{
	Q_OBJECT

public:
	// The item must outlive the handle (it is usually the row the handle sits in).
	explicit CQDragHandleWidget( IDraggableTargetItem *pItem, QWidget *pParent = nullptr );

	// The picture under the cursor while dragging; by default the tools' array item image.
	void SetDragPixmap( const QPixmap &pixmap ) { m_DragPixmap = pixmap; }
	bool IsPressed() const { return m_bPressed; }

protected:
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void paintEvent( QPaintEvent *pEvent ) override;

private:
	void StartDrag();

	IDraggableTargetItem *m_pItem;
	QPixmap m_DragPixmap;
	QPoint m_PressPos;
	bool m_bPressed = false;
	bool m_bDragStarted = false;
};
