#pragma once
// The list of the undo history panel. Rows are reported on a mouse press rather than
// through item clicks, because the redo rows are disabled items and must still answer.

#include <QTableWidget>

class CQUndoListWidget : public QTableWidget
{
	Q_OBJECT

public:
	explicit CQUndoListWidget( QWidget *pParent = nullptr );

signals:
	void RowClicked( int nRow );
	void RowDoubleClicked( int nRow );

protected:
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseDoubleClickEvent( QMouseEvent *pEvent ) override;
};
