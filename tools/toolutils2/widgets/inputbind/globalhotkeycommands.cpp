#include "tools/toolutils2/widgets/inputbind/globalhotkeycommands.h"

#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QWidgetAction>
#include <QWidget>

#include "core/logging/logging.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/inputbind/inputbindengine.h"
#include "tools/toolutils2/widgets/inputbind/inputbindcommandlist.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/toolutils2/widgets/inputbind/inputdebugger.h"

// Commands whose tools (console, widget debugger, help popups) don't exist in this editor
// yet are declared so bindings resolve, and do nothing.
static void BuildGlobalHotkeys( CBindTargetDescriptor<CGlobalHotkeyCommands> &d )
{
	auto noOp = []( CGlobalHotkeyCommands * ) {};
	d.AddClickCommand( "ShowConsole", noOp );
	d.AddClickCommand( "SwitchToEngineWindow", noOp );
	d.AddClickCommand( "ShowAllCommandsPopup", []( CGlobalHotkeyCommands *p ) { p->ShowAllCommandsPopup(); } );
	d.AddClickCommand( "DebugWidgetUnderMouse", []( CGlobalHotkeyCommands *p ) { p->DebugWidgetUnderMouse(); } );
	d.AddClickCommand( "DebugWidgetWithFocus", []( CGlobalHotkeyCommands *p ) { p->DebugWidgetWithFocus(); } );
	d.AddClickCommand( "DebugWidgetActiveWindow", []( CGlobalHotkeyCommands *p ) { p->DebugWidgetActiveWindow(); } );
	d.AddClickCommand( "ShowInputDebugger", []( CGlobalHotkeyCommands *p ) { p->ShowInputDebugger(); } );
	d.AddClickCommand( "ShowWidgetDebugger", noOp );
	d.AddClickCommand( "ShowFullHelpForBindableCommandUnderMouse", noOp );
	d.AddClickCommand( "FocusChainDebug_More", noOp );
	d.AddClickCommand( "FocusChainDebug_Less", noOp );
	d.AddClickCommand( "FocusChainDebug_Forward", noOp );
	d.AddClickCommand( "FocusChainDebug_Back", noOp );
	d.AddClickCommand( "FocusChainDebug_Toggle", noOp );
	d.AddClickCommand( "DummyNoOp", noOp );
}

static CBindTargetDescriptor<CGlobalHotkeyCommands> s_GlobalHotkeysDescriptor( "GlobalHotkeys", "CGlobalHotkeyCommands", &BuildGlobalHotkeys );

const CBindTargetDescriptorBase *CGlobalHotkeyCommands::GetBindTargetDescriptor() const
{
	return &s_GlobalHotkeysDescriptor;
}

// Logs a widget and its parents, so a user can tell which widget has what.
static void LogWidgetChain( const char *pWhat, const QWidget *pWidget )
{
	Log_Msg( LOG_INPUTBIND(), "%s:\n", pWhat );
	if ( !pWidget )
		Log_Msg( LOG_INPUTBIND(), "  [NoWidget]\n" );
	for ( ; pWidget; pWidget = pWidget->parentWidget() )
		Log_Msg( LOG_INPUTBIND(), "  %s \"%s\"\n", pWidget->metaObject()->className(), pWidget->objectName().toUtf8().constData() );
}

void CGlobalHotkeyCommands::DebugWidgetUnderMouse()
{
	LogWidgetChain( "Widget under mouse", QApplication::widgetAt( QCursor::pos() ) );
}

void CGlobalHotkeyCommands::DebugWidgetWithFocus()
{
	LogWidgetChain( "Widget with focus", QApplication::focusWidget() );
}

void CGlobalHotkeyCommands::DebugWidgetActiveWindow()
{
	LogWidgetChain( "Active window", QApplication::activeWindow() );
}

void CGlobalHotkeyCommands::ShowInputDebugger()
{
	CQInputDebugger *pDebugger = nullptr;
	for ( QWidget *pWidget : QApplication::topLevelWidgets() )
	{
		if ( ( pDebugger = qobject_cast<CQInputDebugger *>( pWidget ) ) != nullptr )
			break;
	}
	if ( !pDebugger )
	{
		// Owned by the window it was asked from, so it goes with it; alone, it goes when closed.
		QWidget *pOwner = QApplication::activeWindow();
		pDebugger = new CQInputDebugger( CQInputBindManager::Get(), QApplication::applicationName(), pOwner );
		pDebugger->setWindowFlag( Qt::Window );
		if ( !pOwner )
			pDebugger->setAttribute( Qt::WA_DeleteOnClose );
	}
	pDebugger->show();
	pDebugger->raise();
}

void CGlobalHotkeyCommands::ShowAllCommandsPopup()
{
	auto *pPopup = new QMenu( QApplication::activeWindow() );
	// Gone once dismissed, however that happens (a command, Escape, a click outside).
	QObject::connect( pPopup, &QMenu::aboutToHide, pPopup, &QObject::deleteLater );
	pPopup->setObjectName( "AllCommandsPopup" );
	auto *pList = new CQInputBindCommandList( pPopup );
	// Read before the popup takes the focus, so it lists the commands of where the key was.
	pList->Refresh();
	auto *pAction = new QWidgetAction( pPopup );
	pAction->setDefaultWidget( pList );
	pPopup->addAction( pAction );
	QObject::connect( pList, &CQInputBindCommandList::CommandChosen, pPopup, &QMenu::hide );
	pPopup->popup( QCursor::pos() );
	pList->setFocus( Qt::PopupFocusReason );
}
