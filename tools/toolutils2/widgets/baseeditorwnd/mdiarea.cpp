#include "tools/toolutils2/widgets/baseeditorwnd/mdiarea.h"

#include <QMdiSubWindow>
#include <QMenu>

CQMdiArea::CQMdiArea( QWidget *pParent ) : QMdiArea( pParent )
{
	setObjectName( "CQMdiArea" );
	setHorizontalScrollBarPolicy( Qt::ScrollBarAsNeeded );
	setVerticalScrollBarPolicy( Qt::ScrollBarAsNeeded );

	m_pWindowMenu = new QMenu( "&Window", this );
	m_pCloseAction = m_pWindowMenu->addAction( "Cl&ose", this, &QMdiArea::closeActiveSubWindow );
	m_pCloseAllAction = m_pWindowMenu->addAction( "Close &All", this, &QMdiArea::closeAllSubWindows );
	m_pWindowMenu->addSeparator();
	m_pTileAction = m_pWindowMenu->addAction( "&Tile", this, &QMdiArea::tileSubWindows );
	m_pCascadeAction = m_pWindowMenu->addAction( "&Cascade", this, &QMdiArea::cascadeSubWindows );
	m_pWindowMenu->addSeparator();
	m_pNextAction = m_pWindowMenu->addAction( "Ne&xt", this, &QMdiArea::activateNextSubWindow );
	m_pPreviousAction = m_pWindowMenu->addAction( "Pre&vious", this, &QMdiArea::activatePreviousSubWindow );
	connect( m_pWindowMenu, &QMenu::aboutToShow, this, &CQMdiArea::UpdateWindowMenu );
	UpdateWindowMenu();
}

void CQMdiArea::UpdateWindowMenu()
{
	for ( QAction *pAction : m_WindowActions )
	{
		m_pWindowMenu->removeAction( pAction );
		pAction->deleteLater();
	}
	m_WindowActions.clear();

	const QList<QMdiSubWindow *> windows = subWindowList();
	bool bHasActive = activeSubWindow() != nullptr;
	m_pCloseAction->setEnabled( bHasActive );
	m_pCloseAllAction->setEnabled( !windows.isEmpty() );
	m_pTileAction->setEnabled( !windows.isEmpty() );
	m_pCascadeAction->setEnabled( !windows.isEmpty() );
	m_pNextAction->setEnabled( windows.size() > 1 );
	m_pPreviousAction->setEnabled( windows.size() > 1 );
	if ( windows.isEmpty() )
		return;

	m_WindowActions << m_pWindowMenu->addSeparator();
	for ( int i = 0; i < windows.size(); ++i )
	{
		QMdiSubWindow *pWindow = windows[ i ];
		// The first nine get a digit to reach them by keyboard.
		QString text = i < 9 ? QString( "&%1 %2" ).arg( i + 1 ).arg( pWindow->windowTitle() ) : pWindow->windowTitle();
		QAction *pAction = m_pWindowMenu->addAction( text );
		pAction->setCheckable( true );
		pAction->setChecked( pWindow == activeSubWindow() );
		connect( pAction, &QAction::triggered, pWindow, [ this, pWindow ]() { setActiveSubWindow( pWindow ); } );
		m_WindowActions << pAction;
	}
}
