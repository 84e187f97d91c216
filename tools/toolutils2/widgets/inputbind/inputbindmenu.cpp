#include "tools/toolutils2/widgets/inputbind/inputbindmenu.h"

#include <QApplication>
#include <QDesktopServices>
#include <QUrl>
#include <QWidgetAction>

#include "core/host/ifilesystem.h"
#include "core/host/iprompt.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/inputbind/bindtargetset.h"
#include "tools/toolutils2/widgets/inputbind/bindablewidgetinfo.h"
#include "tools/toolutils2/widgets/inputbind/inputbindcommandlist.h"
#include "tools/toolutils2/widgets/inputbind/inputbindeditor.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"

static CQInputBindMenu::UrlOpener_t &UrlOpener()
{
	static CQInputBindMenu::UrlOpener_t s_Opener;
	return s_Opener;
}

// Messages centre on the tool's window, not on the menu that is closing.
static QWidget *OwnerWindow( const QMenu *pMenu )
{
	return pMenu->parentWidget() ? pMenu->parentWidget()->window() : nullptr;
}

CQInputBindMenu::CQInputBindMenu( const QString &strTitle, QWidget *pParent ) : QMenu( strTitle, pParent )
{
	setIcon( QIcon( "game:tools/images/common/bind_command_list.png" ) );
	m_pHelpUrlAction = addAction( "Visit Developer Help URL", this, &CQInputBindMenu::VisitDeveloperHelp );
	m_pKeyBindingsAction = addAction( "Show Key Bindings", this, &CQInputBindMenu::ShowKeyBindings );
	m_pAboutAction = addAction( "About...", this, &CQInputBindMenu::ShowAbout );
	addSeparator();
	m_pCommandMenu = addMenu( icon(), "Command Filter" );
	m_pCommandList = new CQInputBindCommandList( m_pCommandMenu );
	auto *pListAction = new QWidgetAction( m_pCommandMenu );
	pListAction->setDefaultWidget( m_pCommandList );
	m_pCommandMenu->addAction( pListAction );
	connect( m_pCommandMenu, &QMenu::aboutToShow, this, &CQInputBindMenu::OnCommandMenuAboutToShow );
	connect( m_pCommandList, &CQInputBindCommandList::CommandChosen, this, &CQInputBindMenu::OnCommandChosen );
}

CQInputBindMenu::UrlOpener_t CQInputBindMenu::SetUrlOpener( UrlOpener_t opener )
{
	UrlOpener_t previous = std::move( UrlOpener() );
	UrlOpener() = std::move( opener );
	return previous;
}

QStringList CQInputBindMenu::CurrentHelpContexts()
{
	QStringList contexts;
	auto add = [ &contexts ]( const char *pContext ) {
		const QString strContext = QString::fromUtf8( pContext ? pContext : "" );
		if ( !strContext.isEmpty() && !contexts.contains( strContext, Qt::CaseInsensitive ) )
			contexts.append( strContext );
	};
	std::vector<const CBindTargetSet *> sets;
	for ( QWidget *pWidget = QApplication::focusWidget(); pWidget; pWidget = pWidget->parentWidget() )
	{
		if ( const CQBindableWidgetInfo *pInfo = CQBindableWidgetInfo::FromObject( pWidget ) )
			sets.push_back( &pInfo->GetTargets() );
	}
	for ( const CBindTargetSet *pSet : sets )
		add( pSet->GetHelpContext() );
	for ( const CBindTargetSet *pSet : sets )
	{
		for ( const IBindTarget *pTarget : pSet->GetTargets() )
		{
			if ( const CBindTargetDescriptorBase *pDescriptor = pTarget->GetBindTargetDescriptor() )
				add( pDescriptor->GetTargetName() );
		}
	}
	return contexts;
}

QString CQInputBindMenu::HelpFileOfContext( const QString &strContext )
{
	return QStringLiteral( "tools/help/%1_help.txt" ).arg( strContext.toLower() );
}

void CQInputBindMenu::VisitDeveloperHelp()
{
	IFileSystem *pFileSystem = GetFileSystem();
	const QStringList contexts = CurrentHelpContexts();
	for ( const QString &strContext : contexts )
	{
		CUtlString strFullPath;
		const QByteArray relative = HelpFileOfContext( strContext ).toUtf8();
		if ( !pFileSystem || !pFileSystem->FileExists( relative.constData(), "GAME" ) || !pFileSystem->RelativePathToFullPath( relative.constData(), "GAME", &strFullPath ) )
			continue;
		// The file system answers paths with its own separators.
		const QUrl url = QUrl::fromLocalFile( QString::fromUtf8( strFullPath.Get() ).replace( QLatin1Char( '\\' ), QLatin1Char( '/' ) ) );
		const bool bOpened = UrlOpener() ? UrlOpener()( url ) : QDesktopServices::openUrl( url );
		if ( !bOpened )
		{
			const QByteArray text = QStringLiteral( "The developer help of \"%1\" could not be opened:\n%2" ).arg( strContext, url.toLocalFile() ).toUtf8();
			GetPrompt()->Warning( "Developer Help", text.constData(), OwnerWindow( this ) );
		}
		return;
	}
	const QString strWhere = contexts.isEmpty() ? QStringLiteral( "the focused part of the tool" ) : QStringLiteral( "\"%1\"" ).arg( contexts.join( "\", \"" ) );
	const QByteArray text = QStringLiteral( "There is no developer help for %1." ).arg( strWhere ).toUtf8();
	GetPrompt()->Information( "Developer Help", text.constData(), OwnerWindow( this ) );
}

void CQInputBindMenu::ShowKeyBindings()
{
	if ( !m_pInputBindEditor )
	{
		// A window of its own, owned by the tool's window so it goes with it.
		m_pInputBindEditor = new CQInputBindEditor( &CQInputBindManager::Get()->GetEngine().GetBindingList(), OwnerWindow( this ) );
		m_pInputBindEditor->setWindowFlag( Qt::Window );
	}
	m_pInputBindEditor->Refresh();
	m_pInputBindEditor->show();
	m_pInputBindEditor->raise();
}

void CQInputBindMenu::ShowAbout()
{
	QString strText = m_strAboutText;
	if ( strText.isEmpty() )
		strText = QStringLiteral( "%1 %2" ).arg( QApplication::applicationName(), QApplication::applicationVersion() ).trimmed();
	const QByteArray title = QStringLiteral( "About %1" ).arg( QApplication::applicationName() ).toUtf8();
	GetPrompt()->Information( title.constData(), strText.toUtf8().constData(), OwnerWindow( this ) );
}

void CQInputBindMenu::OnCommandMenuAboutToShow()
{
	m_pCommandList->Refresh();
	m_pCommandList->setFocus( Qt::PopupFocusReason );
}

void CQInputBindMenu::OnCommandChosen()
{
	// Closed before the command runs: it may open a dialog of its own.
	m_pCommandMenu->hide();
	hide();
}
