#include "tools/widgets/smartcombobox.h"

#include <QWheelEvent>

CQSmartComboBox::CQSmartComboBox( QWidget *pParent ) : QComboBox( pParent )
{
	setFocusPolicy( Qt::StrongFocus );
}

void CQSmartComboBox::wheelEvent( QWheelEvent *pEvent )
{
	if ( !hasFocus() )
	{
		pEvent->ignore();
		return;
	}
	QComboBox::wheelEvent( pEvent );
}
