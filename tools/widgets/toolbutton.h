#pragma once
// A tool button that also tells of a right click.

#include <QToolButton>

class CQToolButton : public QToolButton
{
	Q_OBJECT

public:
	explicit CQToolButton( QWidget *pParent = nullptr ) : QToolButton( pParent ) {}

signals:
	void rightClicked();

protected:
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
};
