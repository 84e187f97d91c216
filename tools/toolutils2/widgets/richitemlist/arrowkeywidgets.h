#pragma once
// A filter line and a tree that hand their up and down arrow keys to their owner, so one
// walk over the visible choices serves both: the list can be walked while typing.

#include <QLineEdit>
#include <QTreeWidget>

class CQLineEditWithArrowEvents : public QLineEdit
{
	Q_OBJECT

public:
	using QLineEdit::QLineEdit;

signals:
	void ArrowUp();
	void ArrowDown();

protected:
	void keyPressEvent( QKeyEvent *pEvent ) override;
};

class CQTreeWidgetWithArrowEvents : public QTreeWidget
{
	Q_OBJECT

public:
	using QTreeWidget::QTreeWidget;

signals:
	void ArrowUp();
	void ArrowDown();

protected:
	void keyPressEvent( QKeyEvent *pEvent ) override;
};
