#pragma once
// A colour well: shows one colour (or a set of them, side by side), opens the colour
// picker on a click, and exchanges colours as text through the clipboard and drag and
// drop, so that colours travel between swatches, grids and other programs.

#include <QColor>
#include <QPoint>
#include <QVector>
#include <QWidget>

class QMenu;

class CQColorSwatch : public QWidget
{
	Q_OBJECT

public:
	explicit CQColorSwatch( QWidget *pParent = nullptr );

	// The set shown; the first colour is the current one. An empty set shows nothing.
	void SetColorSet( const QVector<QColor> &colors );
	const QVector<QColor> &GetColorSet() const { return m_Colors; }
	QColor GetColor() const { return m_CurrentColor; }

	void SetAllowAlpha( bool bAllowAlpha );
	bool GetAllowAlpha() const { return m_bAllowAlpha; }
	// The picker's title (the picker's own when empty).
	void SetDialogTitle( const QString &title ) { m_DialogTitle = title; }

	// True while the picker opened by DoEdit is up.
	bool IsEditing() const { return m_bEditing; }
	// The set that the drag over the swatch would drop.
	const QVector<QColor> &GetDraggedColorSet() const { return m_DraggedColors; }

	// The context menu as a right click shows it; the caller owns it.
	QMenu *CreateContextMenu( QWidget *pParent );

	QSize sizeHint() const override { return QSize( 40, 20 ); }

public slots:
	// Shows a colour (the whole set becomes this one colour). Tells nothing.
	void SetColor( QColor color );
	void CopyColorSetToClipboard();
	// Takes the clipboard's colours; nothing when they don't read.
	void PasteColorSetFromClipboard();
	// Takes the set of the drag that was last over the swatch.
	void dropDraggedColorSet();
	// Opens the colour picker on the current colour; every colour of the set becomes the
	// chosen one.
	void DoEdit();

signals:
	// The user changed the colour (picker, paste, drop).
	void currentColorChanged( QColor color );
	// Each step of a change: bFinished false while the picker is up and the user tries
	// colours, true when a change is over (the picker closed, a paste, a drop).
	void ColorEdited( QColor color, bool bFinished );

protected:
	void paintEvent( QPaintEvent *pEvent ) override;
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void contextMenuEvent( QContextMenuEvent *pEvent ) override;
	void dragEnterEvent( QDragEnterEvent *pEvent ) override;
	void dragMoveEvent( QDragMoveEvent *pEvent ) override;
	void dragLeaveEvent( QDragLeaveEvent *pEvent ) override;
	void dropEvent( QDropEvent *pEvent ) override;

private:
	// Takes a set from the user; false (and nothing told) when it is the set already shown.
	bool ApplyUserColorSet( const QVector<QColor> &colors, bool bFinished );
	// The colours that a drag or clipboard holds, or empty when the swatch refuses them.
	QVector<QColor> AcceptableColorSet( const class QMimeData *pData ) const;
	void UpdateToolTip();

	QVector<QColor> m_Colors;
	QColor m_CurrentColor;
	bool m_bAllowAlpha = false;
	QVector<QColor> m_DraggedColors;
	QString m_DialogTitle;
	bool m_bEditing = false;
	bool m_bPressed = false;
	QPoint m_PressPos;
};
