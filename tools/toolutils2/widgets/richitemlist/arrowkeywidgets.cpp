#include "tools/toolutils2/widgets/richitemlist/arrowkeywidgets.h"

#include <QKeyEvent>

void CQLineEditWithArrowEvents::keyPressEvent( QKeyEvent *pEvent )
{
	if ( pEvent->key() == Qt::Key_Up || pEvent->key() == Qt::Key_Down )
	{
		if ( pEvent->key() == Qt::Key_Up )
			emit ArrowUp();
		else
			emit ArrowDown();
		pEvent->accept();
		return;
	}
	QLineEdit::keyPressEvent( pEvent );
}

void CQTreeWidgetWithArrowEvents::keyPressEvent( QKeyEvent *pEvent )
{
	if ( pEvent->key() == Qt::Key_Up || pEvent->key() == Qt::Key_Down )
	{
		if ( pEvent->key() == Qt::Key_Up )
			emit ArrowUp();
		else
			emit ArrowDown();
		pEvent->accept();
		return;
	}
	QTreeWidget::keyPressEvent( pEvent );
}
