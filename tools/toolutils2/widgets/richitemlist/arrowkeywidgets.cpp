#include "tools/toolutils2/widgets/richitemlist/arrowkeywidgets.h"

#include <QKeyEvent>

namespace
{
// Up and down go to the widget's owner as signals; true when the key was one of them.
template <typename Widget>
bool SendArrowKey( Widget *pWidget, QKeyEvent *pEvent )
{
	if ( pEvent->key() == Qt::Key_Up )
		emit pWidget->ArrowUp();
	else if ( pEvent->key() == Qt::Key_Down )
		emit pWidget->ArrowDown();
	else
		return false;
	pEvent->accept();
	return true;
}
} // namespace

void CQLineEditWithArrowEvents::keyPressEvent( QKeyEvent *pEvent )
{
	if ( !SendArrowKey( this, pEvent ) )
		QLineEdit::keyPressEvent( pEvent );
}

void CQTreeWidgetWithArrowEvents::keyPressEvent( QKeyEvent *pEvent )
{
	if ( !SendArrowKey( this, pEvent ) )
		QTreeWidget::keyPressEvent( pEvent );
}
