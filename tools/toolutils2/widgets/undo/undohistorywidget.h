#pragma once
// The undo history panel: undo and redo buttons over the list of steps, done steps
// oldest first, then the steps that can be redone, the next one first. Clicking a row
// undoes or redoes until that row's step is the last one done.

#include <QWidget>

#include "tools/toolutils2/undo/undolistener.h"

class CQUndoListWidget;
class CUndoHistory;
class QAction;
class QToolBar;

class CQUndoHistoryWidget : public QWidget, public IUndoListener
{
	Q_OBJECT

public:
	explicit CQUndoHistoryWidget( QWidget *pParent = nullptr );
	~CQUndoHistoryWidget() override;

	// Either history of a pair, or null. The widget listens to it until it is given
	// another, so the owner clears it before destroying the histories.
	void SetUndoHistory( CUndoHistory *pHistory );
	CUndoHistory *GetUndoHistory() const { return m_pHistory; }

	CQUndoListWidget *GetListWidget() const { return m_pList; }
	QAction *GetUndoAction() const { return m_pUndoAction; }
	QAction *GetRedoAction() const { return m_pRedoAction; }

	// Menu labels: "Undo <name>" or "Cannot Undo" for the undo side, likewise for redo.
	static QString GetUndoActionText( const CUndoHistory *pUndoHistory );
	static QString GetRedoActionText( const CUndoHistory *pRedoHistory );

	void OnUndoEvent( UndoEvent_t eEvent ) override;

public slots:
	void PerformSingleUndo();
	void PerformSingleRedo();
	void UndoOrRedoByRow( int nRow );

private:
	CUndoHistory *GetPrimaryHistory() const;
	CUndoHistory *GetRedoHistory() const;
	void RebuildList();

	QToolBar *m_pToolBar;
	QAction *m_pUndoAction;
	QAction *m_pRedoAction;
	CQUndoListWidget *m_pList;
	CUndoHistory *m_pHistory = nullptr;
	bool m_bSuppressRebuild = false;
};
