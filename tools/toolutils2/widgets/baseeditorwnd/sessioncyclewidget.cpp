#include "tools/toolutils2/widgets/baseeditorwnd/sessioncyclewidget.h"

#include <algorithm>

#include <QCloseEvent>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

#include "core/text/pathtools.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/baseeditorapp/editorpathcheck.h"
#include "tools/toolutils2/baseeditorapp/sessioncycling.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"

static constexpr int POPUP_WIDTH = 400;
static constexpr int POPUP_HEIGHT = 300;
static constexpr int KEEP_ACTIVE_CHECK_MS = 100;
static constexpr int SELECTED_WEIGHT = 75;
static constexpr int UNSELECTED_WEIGHT = 50;

// Any id other than -1 makes KeepActive a modifier command, which the binding manager
// starts when the popup joins the focus chain with the key already down.
static constexpr int32_t KEEP_ACTIVE_MODIFIER_ID = 0;

static void BuildSessionCycleCommands( CBindTargetDescriptor<CQSessionCycleWidget> &descriptor )
{
	auto fnHold = []( CQSessionCycleWidget *pWidget ) { pWidget->SetKeepActiveHeld( true ); };
	auto fnLetGo = []( CQSessionCycleWidget *pWidget ) { pWidget->SetKeepActiveHeld( false ); };
	descriptor.AddCommand( "KeepActive" ).SetHandler( BIND_STAGE_PRESS, fnHold ).SetHandler( BIND_STAGE_RELEASE, fnLetGo ).SetHandler( BIND_STAGE_CANCELLED, fnLetGo ).SetModifierId( KEEP_ACTIVE_MODIFIER_ID );
	descriptor.AddClickCommand( "NextSession", []( CQSessionCycleWidget *pWidget ) { pWidget->SelectNextSession(); } );
	descriptor.AddClickCommand( "PreviousSession", []( CQSessionCycleWidget *pWidget ) { pWidget->SelectPreviousSession(); } );
}

// Made when the library loads, so the binding help knows it before any popup exists, and
// never destroyed: the lists it enters may be gone by the time this library unloads.
static const CBindTargetDescriptor<CQSessionCycleWidget> &s_SessionCycleDescriptor = *new CBindTargetDescriptor<CQSessionCycleWidget>( "SessionCycleWidget", "CQSessionCycleWidget", &BuildSessionCycleCommands );

const CBindTargetDescriptorBase *CQSessionCycleWidget::GetBindTargetDescriptor() const
{
	return &s_SessionCycleDescriptor;
}

static QString SessionButtonText( const CBaseEditorSession *pSession )
{
	char szBase[ EDITOR_MAX_PATH ];
	V_FileBase( pSession->GetFileName(), szBase, sizeof( szBase ) );
	QString text = QString::fromUtf8( szBase );
	if ( pSession->IsModified() )
		text += " *";
	return text;
}

CQSessionCycleWidget::CQSessionCycleWidget( CBaseEditorApp *pApp, int nSelected, QWidget *pCentreOn )
	: QFrame( pCentreOn, Qt::Tool | Qt::FramelessWindowHint ), m_pApp( pApp ), m_Sessions( pApp->GetSessions() ), m_pCentreOn( pCentreOn )
{
	setAttribute( Qt::WA_DeleteOnClose );
	setObjectName( "CQSessionCycleWidget" );
	setFrameShape( QFrame::Box );
	setFrameShadow( QFrame::Plain );
	setLineWidth( 1 );
	setFocusPolicy( Qt::StrongFocus );

	QVBoxLayout *pLayout = new QVBoxLayout( this );
	QLabel *pTitle = new QLabel( "Active Sessions:", this );
	QFont titleFont = pTitle->font();
	titleFont.setBold( true );
	pTitle->setFont( titleFont );
	pLayout->addWidget( pTitle );

	// Many sessions scroll rather than squeeze the buttons.
	QScrollArea *pScroll = new QScrollArea( this );
	pScroll->setFrameShape( QFrame::NoFrame );
	pScroll->setWidgetResizable( true );
	QWidget *pButtonPanel = new QWidget( pScroll );
	QVBoxLayout *pButtonLayout = new QVBoxLayout( pButtonPanel );
	pButtonLayout->setContentsMargins( 0, 0, 0, 0 );
	const QIcon documentIcon( "game:tools/images/common/document.png" );
	for ( int i = 0; i < int( m_Sessions.size() ); ++i )
	{
		QPushButton *pButton = new QPushButton( documentIcon, SessionButtonText( m_Sessions[ i ] ), pButtonPanel );
		pButton->setFocusPolicy( Qt::NoFocus );
		connect( pButton, &QPushButton::clicked, this, [ this, i ]() { CloseAndSetActiveSession( i ); } );
		pButtonLayout->addWidget( pButton );
		m_Buttons << pButton;
	}
	pButtonLayout->addStretch( 1 );
	pScroll->setWidget( pButtonPanel );
	pLayout->addWidget( pScroll, 1 );

	m_pFileNameLabel = new QLabel( this );
	m_pFileNameLabel->setTextInteractionFlags( Qt::NoTextInteraction );
	pLayout->addWidget( m_pFileNameLabel );

	m_pKeepActiveTimer = new QTimer( this );
	m_pKeepActiveTimer->setInterval( KEEP_ACTIVE_CHECK_MS );
	connect( m_pKeepActiveTimer, &QTimer::timeout, this, &CQSessionCycleWidget::CheckForKeepActive );

	m_fnIsKeepActiveHeld = [ this ]() { return m_bKeepActiveHeld; };

	resize( POPUP_WIDTH, POPUP_HEIGHT );
	SetSelectedIndex( nSelected );
}

CQSessionCycleWidget::~CQSessionCycleWidget() = default;

void CQSessionCycleWidget::Popup()
{
	resize( POPUP_WIDTH, POPUP_HEIGHT );
	if ( m_pCentreOn )
	{
		QPoint centre = m_pCentreOn->frameGeometry().center();
		move( centre.x() - POPUP_WIDTH / 2, centre.y() - POPUP_HEIGHT / 2 );
	}
	// Registered before it takes focus, so the focus change starts KeepActive for a key
	// that is already down.
	CQInputBindManager::Get()->RegisterTarget( this, this );
	show();
	raise();
	activateWindow();
	setFocus( Qt::PopupFocusReason );
	m_pKeepActiveTimer->start();
}

void CQSessionCycleWidget::SetSelectedIndex( int nIndex )
{
	m_nSelected = nIndex >= 0 && nIndex < int( m_Sessions.size() ) ? nIndex : -1;
	UpdateSelection();
}

void CQSessionCycleWidget::SelectNextSession()
{
	SetSelectedIndex( StepSessionCycle( m_nSelected, int( m_Sessions.size() ), true ) );
}

void CQSessionCycleWidget::SelectPreviousSession()
{
	SetSelectedIndex( StepSessionCycle( m_nSelected, int( m_Sessions.size() ), false ) );
}

CBaseEditorSession *CQSessionCycleWidget::GetSelectedSession() const
{
	if ( m_nSelected < 0 )
		return nullptr;
	CBaseEditorSession *pSession = m_Sessions[ m_nSelected ];
	const std::vector<CBaseEditorSession *> &current = m_pApp->GetSessions();
	return std::find( current.begin(), current.end(), pSession ) != current.end() ? pSession : nullptr;
}

void CQSessionCycleWidget::UpdateSelection()
{
	for ( int i = 0; i < m_Buttons.size(); ++i )
	{
		QFont font = m_Buttons[ i ]->font();
		font.setWeight( i == m_nSelected ? SELECTED_WEIGHT : UNSELECTED_WEIGHT );
		m_Buttons[ i ]->setFont( font );
	}
	CBaseEditorSession *pSession = GetSelectedSession();
	m_pFileNameLabel->setText( pSession ? QString::fromUtf8( pSession->GetFileName() ) : QString( "(No Active Session)" ) );
}

void CQSessionCycleWidget::CheckForKeepActive()
{
	if ( m_fnIsKeepActiveHeld && m_fnIsKeepActiveHeld() )
		return;
	m_pKeepActiveTimer->stop();
	close();
}

void CQSessionCycleWidget::CloseAndSetActiveSession( int nIndex )
{
	SetSelectedIndex( nIndex );
	close();
}

bool CQSessionCycleWidget::event( QEvent *pEvent )
{
	if ( pEvent->type() == QEvent::WindowDeactivate )
	{
		bool bResult = QFrame::event( pEvent );
		// Clicking elsewhere ends the cycling as if the key had been let go.
		close();
		return bResult;
	}
	return QFrame::event( pEvent );
}

void CQSessionCycleWidget::closeEvent( QCloseEvent *pEvent )
{
	QFrame::closeEvent( pEvent );
	if ( m_bClosed )
		return;
	m_bClosed = true;
	m_pKeepActiveTimer->stop();
	CQInputBindManager::Get()->UnregisterTarget( this );
	if ( CBaseEditorSession *pSession = GetSelectedSession() )
		m_pApp->SetActiveEditorSession( pSession, false, true );
}
