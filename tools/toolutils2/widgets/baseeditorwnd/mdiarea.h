#pragma once
// The multi-document area of an editor window, with the "&Window" menu that arranges,
// walks and picks its sub-windows.

#include <QMdiArea>

class QMenu;

class CQMdiArea : public QMdiArea
{
	Q_OBJECT

public:
	explicit CQMdiArea( QWidget *pParent = nullptr );

	// Owned by the area; the window puts it in its menu bar.
	QMenu *GetWindowMenu() const { return m_pWindowMenu; }

public slots:
	// Enables the commands that have something to act on and lists the sub-windows, the
	// active one checked.
	void UpdateWindowMenu();

private:
	QMenu *m_pWindowMenu = nullptr;
	QAction *m_pCloseAction = nullptr;
	QAction *m_pCloseAllAction = nullptr;
	QAction *m_pTileAction = nullptr;
	QAction *m_pCascadeAction = nullptr;
	QAction *m_pNextAction = nullptr;
	QAction *m_pPreviousAction = nullptr;
	QList<QAction *> m_WindowActions;
};
