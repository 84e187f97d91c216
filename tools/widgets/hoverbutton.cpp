#include "tools/widgets/hoverbutton.h"

CQHoverButton::CQHoverButton( const QString &text, QWidget *pParent ) : QPushButton( text, pParent )
{
}

void CQHoverButton::enterEvent( QEvent *pEvent )
{
	QPushButton::enterEvent( pEvent );
	emit MouseEnter();
}

void CQHoverButton::leaveEvent( QEvent *pEvent )
{
	QPushButton::leaveEvent( pEvent );
	emit MouseLeave();
}
