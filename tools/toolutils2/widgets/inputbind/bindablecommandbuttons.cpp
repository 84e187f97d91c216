#include "tools/toolutils2/widgets/inputbind/bindablecommandbuttons.h"

#include "tools/toolutils2/widgets/inputbind/bindablecommandaction.h"

CQBindableCommandPushButton::CQBindableCommandPushButton( CQBindableCommandAction *pAction, QWidget *pParent ) : QPushButton( pParent ), m_pAction( pAction )
{
	connect( this, &QPushButton::clicked, m_pAction, &QAction::trigger );
	connect( m_pAction, &QAction::changed, this, &CQBindableCommandPushButton::OnActionChanged );
	OnActionChanged();
}

void CQBindableCommandPushButton::OnActionChanged()
{
	// A menu's shortcut column has no place on a button.
	QString strText = m_pAction->text();
	int nTab = strText.indexOf( QLatin1Char( '\t' ) );
	setText( nTab >= 0 ? strText.left( nTab ) : strText );
	setIcon( m_pAction->icon() );
	setToolTip( m_pAction->toolTip() );
	setEnabled( m_pAction->isEnabled() );
	setVisible( m_pAction->isVisible() );
}

CQBindableCommandToolButton::CQBindableCommandToolButton( CQBindableCommandAction *pAction, QWidget *pParent ) : QToolButton( pParent ), m_pAction( pAction )
{
	// The default action is triggered by a click and lends the button its state.
	setDefaultAction( m_pAction );
}
