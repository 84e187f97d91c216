#include "tools/widgets/toolbutton.h"

#include <QMouseEvent>

void CQToolButton::mousePressEvent( QMouseEvent *pEvent )
{
	// Taken, so that the release comes here too.
	if ( pEvent->button() == Qt::RightButton )
	{
		pEvent->accept();
		return;
	}
	QToolButton::mousePressEvent( pEvent );
}

void CQToolButton::mouseReleaseEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() == Qt::RightButton && rect().contains( pEvent->pos() ) )
	{
		emit rightClicked();
		pEvent->accept();
		return;
	}
	QToolButton::mouseReleaseEvent( pEvent );
}
