#include "tools/toolutils2/widgets/inputbind/bindablecommandaction.h"

#include <QApplication>

#include "tools/toolutils2/inputbind/bindablecommand.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"

CQBindableCommandAction::CQBindableCommandAction( IBindTarget *pTarget, const char *pCommandName, const char *pLabel, QObject *pParent, CommandTextMode_t eMode )
	: QAction( pParent ), m_pTarget( pTarget ), m_strCommand( pCommandName ), m_nCommandToken( BindToken( pCommandName ) ), m_strLabel( pLabel ), m_eMode( eMode )
{
	connect( this, &QAction::triggered, this, &CQBindableCommandAction::OnTriggered );
	CQInputBindManager::Get()->AddAction( this );
	RefreshText();
}

CQBindableCommandAction::~CQBindableCommandAction()
{
	CQInputBindManager::Get()->RemoveAction( this );
}

void CQBindableCommandAction::SetLabel( const char *pLabel )
{
	m_strLabel = pLabel;
	RefreshText();
}

void CQBindableCommandAction::RefreshText()
{
	m_strBinding = CQInputBindManager::Get()->GetBindingText( nullptr, m_pTarget, m_nCommandToken );
	QString strLabel = QString::fromUtf8( m_strLabel.Get() );
	// The key goes after a tab, where menus show shortcuts. It is no Qt shortcut: the
	// bind manager runs the key, and a shortcut would run the command a second time.
	QString strWithKey = m_strBinding.isEmpty() ? strLabel : strLabel + QStringLiteral( " [" ) + m_strBinding + QStringLiteral( "]" );
	switch ( m_eMode )
	{
	case COMMAND_TEXT_MODE_NONE:
		setText( strLabel );
		break;
	case COMMAND_TEXT_MODE_MENU:
		setText( m_strBinding.isEmpty() ? strLabel : strLabel + QLatin1Char( '\t' ) + m_strBinding );
		break;
	case COMMAND_TEXT_MODE_BUTTON:
		setText( strLabel );
		setToolTip( strWithKey );
		break;
	case COMMAND_TEXT_MODE_ICON:
		setText( strLabel );
		setIconText( QString() );
		setToolTip( strWithKey );
		break;
	}
}

void CQBindableCommandAction::OnTriggered()
{
	if ( !m_pTarget || !CQInputBindManager::Get()->InvokeCommand( m_pTarget, m_nCommandToken ) )
		QApplication::beep();
}
