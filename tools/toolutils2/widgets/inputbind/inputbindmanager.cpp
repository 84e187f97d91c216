#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>
#include <algorithm>

#include "core/host/ihelpsystem.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/widgets/inputbind/bindablecommandaction.h"
#include "tools/toolutils2/widgets/inputbind/bindablewidgetinfo.h"
#include "tools/toolutils2/widgets/inputbind/globalhotkeycommands.h"
#include "tools/toolutils2/widgets/inputbind/qtinputcodes.h"

static constexpr const char *GLOBAL_KEY_BINDINGS_FILE = "tools/keybindings/global_key_bindings.txt";

CQInputBindManager *CQInputBindManager::Get()
{
	// Made once and kept for the life of the process: widgets and actions of any tool
	// may still talk to it while the process winds down.
	static CQInputBindManager *s_pManager = []() {
		CQInputBindManager *pManager = new CQInputBindManager();
		pManager->LoadBindings( GLOBAL_KEY_BINDINGS_FILE );
		return pManager;
	}();
	return s_pManager;
}

CQInputBindManager::CQInputBindManager() : m_Engine( this )
{
	if ( qApp )
		connect( qApp, &QApplication::focusChanged, this, &CQInputBindManager::OnFocusChanged );
	ToolFrame_AddListener( this );
	BindTarget_AddDestructionListener( this );
	m_pGlobalInfo = new CQBindableWidgetInfo( this, this );
	m_pGlobalInfo->GetTargets().SetName( "GlobalTopLevel" );
	m_pGlobalHotkeys = new CGlobalHotkeyCommands();
	m_pGlobalInfo->GetTargets().AddTarget( m_pGlobalHotkeys );
	m_Engine.MarkDirty();
}

CQInputBindManager::~CQInputBindManager()
{
	ToolFrame_RemoveListener( this );
	BindTarget_RemoveDestructionListener( this );
	delete m_pGlobalHotkeys;
}

bool CQInputBindManager::LoadBindings( const char *pPath )
{
	return m_Engine.LoadBindings( pPath, "GAME" );
}

bool CQInputBindManager::LoadBindingsOnce( const char *pPath )
{
	for ( const CUtlString &strLoaded : m_Engine.GetBindingList().GetLoadedFiles() )
	{
		if ( strLoaded.IsEqual_CaseInsensitive( pPath ) )
			return true;
	}
	return LoadBindings( pPath );
}

void CQInputBindManager::RegisterTarget( QWidget *pWidget, IBindTarget *pTarget )
{
	if ( !pWidget || !pTarget )
		return;
	CQBindableWidgetInfo *pInfo = CQBindableWidgetInfo::FromObject( pWidget );
	if ( !pInfo )
	{
		pInfo = new CQBindableWidgetInfo( pWidget, this );
		pWidget->installEventFilter( this );
		pWidget->setFocusPolicy( Qt::FocusPolicy( pWidget->focusPolicy() | Qt::TabFocus ) );
		pWidget->setMouseTracking( true );
	}
	if ( pInfo->GetTargets().AddTarget( pTarget ) )
		m_Engine.MarkDirty();
}

void CQInputBindManager::UnregisterTarget( IBindTarget *pTarget )
{
	m_Engine.UnregisterTarget( pTarget );
	for ( CQBindableWidgetInfo *pInfo : m_Infos )
		pInfo->GetTargets().RemoveTarget( pTarget );
	m_Engine.MarkDirty();
}

void CQInputBindManager::OnBindTargetDestroyed( IBindTarget *pTarget )
{
	for ( CQBindableWidgetInfo *pInfo : m_Infos )
		pInfo->GetTargets().RemoveTarget( pTarget );
}

void CQInputBindManager::AddWidgetInfo( CQBindableWidgetInfo *pInfo )
{
	m_Infos.push_back( pInfo );
}

void CQInputBindManager::RemoveWidgetInfo( CQBindableWidgetInfo *pInfo, void *pOwner )
{
	m_Infos.erase( std::remove( m_Infos.begin(), m_Infos.end(), pInfo ), m_Infos.end() );
	if ( pInfo == m_pGlobalInfo )
		m_pGlobalInfo = nullptr;
	// The widget is going: its gestures end without stages, its targets leave the chain.
	m_Engine.ForgetWidget( pOwner );
}

QString CQInputBindManager::GetBindingText( QWidget *, IBindTarget *pTarget, uint32_t nCommandToken ) const
{
	CUtlString strText;
	m_Engine.GetBindingText( pTarget, nCommandToken, &strText );
	return QString::fromUtf8( strText.Get() );
}

QString CQInputBindManager::GetCommandText( QWidget *pWidget, IBindTarget *pTarget, uint32_t nCommandToken, const char *pLabel ) const
{
	const CBindTargetDescriptorBase *pDescriptor = pTarget ? pTarget->GetBindTargetDescriptor() : nullptr;
	const CBindableCommand *pCommand = pDescriptor ? pDescriptor->FindCommand( nCommandToken ) : nullptr;
	if ( pCommand )
	{
		if ( IHelpSystem *pHelp = GetHelpSystem() )
		{
			CUtlString strHelpId;
			strHelpId.Format( "Command.%s.%s", pDescriptor->GetTargetName(), pCommand->GetName() );
			const char *pText = pHelp->GetText( nullptr, strHelpId );
			if ( pText && *pText )
				return QString::fromUtf8( pText );
		}
	}
	QString strText = QString::fromUtf8( pLabel ? pLabel : "" );
	QString strBinding = GetBindingText( pWidget, pTarget, nCommandToken );
	if ( !strBinding.isEmpty() )
		strText += QStringLiteral( " [" ) + strBinding + QStringLiteral( "]" );
	return strText;
}

void CQInputBindManager::ForceRescanOfActiveKeys()
{
	m_Engine.ForceRescanOfActiveKeys();
}

bool CQInputBindManager::InvokeCommand( IBindTarget *pTarget, uint32_t nCommandToken )
{
	return m_Engine.InvokeCommand( pTarget, nCommandToken );
}

void CQInputBindManager::AddAction( CQBindableCommandAction *pAction )
{
	if ( std::find( m_Actions.begin(), m_Actions.end(), pAction ) == m_Actions.end() )
		m_Actions.push_back( pAction );
}

void CQInputBindManager::RemoveAction( CQBindableCommandAction *pAction )
{
	m_Actions.erase( std::remove( m_Actions.begin(), m_Actions.end(), pAction ), m_Actions.end() );
}

// ---------------------------------------------------------------------------------------
// Events

bool CQInputBindManager::AcceptsEventFor( QWidget *pWidget ) const
{
	if ( QWidget *pModal = QApplication::activeModalWidget() )
		return pModal == pWidget || pModal->isAncestorOf( pWidget );
	if ( QWidget *pPopup = QApplication::activePopupWidget() )
		return pPopup == pWidget || pPopup->isAncestorOf( pWidget );
	if ( QWidget *pFocus = QApplication::focusWidget() )
		return pFocus->window() == pWidget->window();
	if ( QWidget *pActive = QApplication::activeWindow() )
		return pActive == pWidget->window();
	return true;
}

// The first bindable widget that sees the event, for an event that a child ignored and
// Qt hands on to the parents.
static QWidget *FirstBindableFrom( QWidget *pWidget, QWidget *pStop )
{
	for ( ; pWidget && pWidget != pStop; pWidget = pWidget->parentWidget() )
	{
		if ( CQBindableWidgetInfo::FromObject( pWidget ) )
			return pWidget;
	}
	return pStop;
}

bool CQInputBindManager::IsFirstBindableReceiver( QWidget *pWidget, QEvent *pEvent ) const
{
	switch ( pEvent->type() )
	{
	case QEvent::KeyPress:
	case QEvent::KeyRelease:
	{
		QWidget *pFocus = QApplication::focusWidget();
		if ( !pFocus || !pWidget->isAncestorOf( pFocus ) )
			return true;
		return FirstBindableFrom( pFocus, pWidget ) == pWidget;
	}
	case QEvent::MouseButtonPress:
	case QEvent::MouseButtonDblClick:
	case QEvent::MouseButtonRelease:
	case QEvent::Wheel:
	{
		// Positions are remapped to each receiver: the deepest widget there came first.
		QPoint pos = pEvent->type() == QEvent::Wheel ? static_cast<QWheelEvent *>( pEvent )->position().toPoint() : static_cast<QMouseEvent *>( pEvent )->pos();
		QWidget *pChild = pWidget->childAt( pos );
		return !pChild || FirstBindableFrom( pChild, pWidget ) == pWidget;
	}
	default:
		return true;
	}
}

void CQInputBindManager::OnChainEvent()
{
	// Rebuilds at once unless input is being handled; then before the next input.
	m_Engine.MarkDirty();
}

void CQInputBindManager::OnFocusChanged( QWidget *, QWidget * )
{
	OnChainEvent();
}

bool CQInputBindManager::eventFilter( QObject *pWatched, QEvent *pEvent )
{
	QWidget *pWidget = qobject_cast<QWidget *>( pWatched );
	if ( !pWidget || !CQBindableWidgetInfo::FromObject( pWidget ) )
		return false;

	switch ( pEvent->type() )
	{
	case QEvent::FocusIn:
	case QEvent::FocusOut:
	case QEvent::WindowActivate:
	case QEvent::WindowDeactivate:
	case QEvent::ActivationChange:
	case QEvent::WindowBlocked:
	case QEvent::WindowUnblocked:
		OnChainEvent();
		return false;
	case QEvent::Hide:
		// A captured widget that hides gives the mouse back.
		if ( m_Engine.GetCaptureDepth() > 0 )
			m_Engine.ForgetWidget( pWidget );
		return false;
	default:
		break;
	}

	// Drags measure the pointer where its events put it: the cursor itself may lag behind
	// or not move at all (events sent by tests, remote displays).
	switch ( pEvent->type() )
	{
	case QEvent::MouseButtonPress:
	case QEvent::MouseButtonDblClick:
	case QEvent::MouseButtonRelease:
	case QEvent::MouseMove:
		m_LastEventGlobalPos = static_cast<QMouseEvent *>( pEvent )->globalPos();
		m_bHasLastEventPos = true;
		break;
	default:
		break;
	}

	if ( !AcceptsEventFor( pWidget ) || !IsFirstBindableReceiver( pWidget, pEvent ) )
		return false;

	switch ( pEvent->type() )
	{
	case QEvent::MouseButtonPress:
	{
		InputCode_t nCode = InputCodeFromQtButton( static_cast<QMouseEvent *>( pEvent )->button() );
		if ( nCode == INPUT_CODE_NONE )
			break;
		m_PhysicalKeyState[ nCode ] = true;
		m_Engine.SetKeyState( nCode, true );
		m_LastCursorPos = m_LastEventGlobalPos;
		m_bHasLastCursorPos = true;
		m_Engine.HandleInputCode( nCode, INPUT_EVENT_PRESS, INPUT_EVENT_TRACK_ACTIVE | INPUT_EVENT_FROM_WIDGET );
		break;
	}
	case QEvent::MouseButtonDblClick:
	{
		InputCode_t nCode = InputCodeDoubleClickOf( InputCodeFromQtButton( static_cast<QMouseEvent *>( pEvent )->button() ) );
		if ( nCode != INPUT_CODE_NONE )
			m_Engine.HandleInputCode( nCode, INPUT_EVENT_DOUBLE_CLICK, INPUT_EVENT_TRACK_ACTIVE | INPUT_EVENT_FROM_WIDGET );
		break;
	}
	case QEvent::MouseButtonRelease:
	{
		InputCode_t nCode = InputCodeFromQtButton( static_cast<QMouseEvent *>( pEvent )->button() );
		if ( nCode == INPUT_CODE_NONE )
			break;
		m_PhysicalKeyState[ nCode ] = false;
		m_Engine.SetKeyState( nCode, false );
		m_Engine.HandleInputCode( nCode, INPUT_EVENT_RELEASE, INPUT_EVENT_TRACK_ACTIVE | INPUT_EVENT_FROM_WIDGET );
		// A gesture begun by a double click ends with the button's release.
		m_Engine.HandleInputCode( InputCodeDoubleClickOf( nCode ), INPUT_EVENT_RELEASE, INPUT_EVENT_FROM_WIDGET );
		break;
	}
	case QEvent::MouseMove:
		m_bMouseMoved = true;
		break;
	case QEvent::KeyPress:
	{
		QKeyEvent *pKey = static_cast<QKeyEvent *>( pEvent );
		InputCode_t nCode = InputCodeFromQtKey( pKey->key(), pKey->modifiers() );
		if ( nCode == INPUT_CODE_NONE )
			break;
		m_PhysicalKeyState[ nCode ] = true;
		m_Engine.SetKeyState( nCode, true );
		m_Engine.HandleInputCode( nCode, pKey->isAutoRepeat() ? INPUT_EVENT_REPEAT : INPUT_EVENT_PRESS, INPUT_EVENT_TRACK_ACTIVE | INPUT_EVENT_FROM_WIDGET );
		break;
	}
	case QEvent::KeyRelease:
	{
		QKeyEvent *pKey = static_cast<QKeyEvent *>( pEvent );
		if ( pKey->isAutoRepeat() )
			break;
		InputCode_t nCode = InputCodeFromQtKey( pKey->key(), pKey->modifiers() );
		if ( nCode == INPUT_CODE_NONE )
			break;
		m_PhysicalKeyState[ nCode ] = false;
		m_Engine.SetKeyState( nCode, false );
		m_Engine.HandleInputCode( nCode, INPUT_EVENT_RELEASE, INPUT_EVENT_TRACK_ACTIVE | INPUT_EVENT_FROM_WIDGET );
		break;
	}
	case QEvent::Wheel:
	{
		QPoint delta = static_cast<QWheelEvent *>( pEvent )->angleDelta();
		InputCode_t nCode = InputCodeFromWheelDelta( delta.x(), delta.y() );
		if ( nCode == INPUT_CODE_NONE )
			break;
		m_Engine.HandleInputCode( nCode, INPUT_EVENT_PRESS, INPUT_EVENT_TRACK_ACTIVE );
		m_Engine.HandleInputCode( nCode, INPUT_EVENT_RELEASE, INPUT_EVENT_TRACK_ACTIVE | INPUT_EVENT_FROM_WIDGET );
		break;
	}
	default:
		break;
	}
	return false;
}

bool CQInputBindManager::GetPointerPosition( const QWidget *pWidget, QPoint *pPos ) const
{
	if ( !pWidget || !m_bHasLastEventPos )
		return false;
	*pPos = pWidget->mapFromGlobal( m_LastEventGlobalPos );
	return true;
}

// ---------------------------------------------------------------------------------------
// Frames

void CQInputBindManager::OnToolFrame()
{
	float flDeltaX = 0.0f;
	float flDeltaY = 0.0f;
	if ( m_bMouseMoved )
	{
		m_bMouseMoved = false;
		QPoint pos = m_bHasLastEventPos ? m_LastEventGlobalPos : QCursor::pos();
		if ( m_bHasLastCursorPos )
		{
			flDeltaX = float( pos.x() - m_LastCursorPos.x() );
			flDeltaY = float( pos.y() - m_LastCursorPos.y() );
		}
		m_LastCursorPos = pos;
		m_bHasLastCursorPos = true;
	}
	m_Engine.UpdateActiveBindings();
	m_Engine.RunMouseFrame( flDeltaX, flDeltaY );
	m_Engine.RunPostFrame();
}

// ---------------------------------------------------------------------------------------
// IInputBindEngineHost

void CQInputBindManager::BuildFocusChain( std::vector<BindChainLink_t> *pChain )
{
	for ( QWidget *pWidget = QApplication::focusWidget(); pWidget; pWidget = pWidget->parentWidget() )
	{
		if ( CQBindableWidgetInfo *pInfo = CQBindableWidgetInfo::FromObject( pWidget ) )
			pChain->push_back( { pWidget, &pInfo->GetTargets(), pWidget->isVisible() } );
	}
	if ( m_pGlobalInfo )
		pChain->push_back( { m_pGlobalInfo, &m_pGlobalInfo->GetTargets(), true } );
}

bool CQInputBindManager::IsCodePhysicallyDown( InputCode_t nCode )
{
	// Qt offers no query of a key's state: what the events last said is the state.
	return nCode < INPUT_CODE_COUNT && m_PhysicalKeyState[ nCode ];
}

void CQInputBindManager::OnMouseCaptureStart( void *pWidget, uint32_t nFlags )
{
	m_CaptureCursorPos = QCursor::pos();
	m_pCapturedWidget = nullptr;
	for ( CQBindableWidgetInfo *pInfo : m_Infos )
	{
		if ( pInfo->parent() == pWidget )
			m_pCapturedWidget = qobject_cast<QWidget *>( pInfo->parent() );
	}
	if ( nFlags & BIND_FLAG_HIDE_CURSOR )
	{
		QApplication::setOverrideCursor( Qt::BlankCursor );
		m_bOverrideCursorSet = true;
	}
}

void CQInputBindManager::OnMouseCaptureStop( void *, uint32_t nFlags )
{
	if ( m_bOverrideCursorSet )
	{
		QApplication::restoreOverrideCursor();
		m_bOverrideCursorSet = false;
	}
	if ( nFlags & BIND_FLAG_CAPTURE_MODE_2 )
	{
		QCursor::setPos( m_CaptureCursorPos );
		m_LastCursorPos = m_CaptureCursorPos;
	}
	m_pCapturedWidget = nullptr;
}

void CQInputBindManager::PinCapturedCursor()
{
	QCursor::setPos( m_CaptureCursorPos );
	m_LastCursorPos = m_CaptureCursorPos;
}

void CQInputBindManager::OnBindingsChanged()
{
	std::vector<CQBindableCommandAction *> actions = m_Actions;
	for ( CQBindableCommandAction *pAction : actions )
		pAction->RefreshText();
}
