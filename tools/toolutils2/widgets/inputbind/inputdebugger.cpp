#include "tools/toolutils2/widgets/inputbind/inputdebugger.h"

#include <QApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/inputbind/bindtargetset.h"
#include "tools/toolutils2/widgets/inputbind/bindablewidgetinfo.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/toolutils2/widgets/inputbind/inputkeystatevisualizer.h"

// Lines kept in the trace; older ones scroll away.
static constexpr int MAX_TRACE_LINES = 5000;

static const char *EventKindSuffix( int nKind )
{
	switch ( nKind )
	{
	case INPUT_EVENT_PRESS:
		return " PRESS";
	case INPUT_EVENT_REPEAT:
		return " REPEAT";
	case INPUT_EVENT_DOUBLE_CLICK:
		return " DOUBLE_CLICK";
	case INPUT_EVENT_RELEASE:
		return " RELEASE";
	default:
		return " ?";
	}
}

static QPlainTextEdit *MakeTextView( QWidget *pParent )
{
	auto *pView = new QPlainTextEdit( pParent );
	pView->setReadOnly( true );
	pView->setLineWrapMode( QPlainTextEdit::NoWrap );
	pView->setFont( QFont( "Monospace" ) );
	return pView;
}

CQInputDebugger::CQInputDebugger( CQInputBindManager *pManager, const QString &strToolName, QWidget *pParent ) : QWidget( pParent ), m_pManager( pManager )
{
	setWindowTitle( QStringLiteral( "Input Debugger [%1]" ).arg( strToolName ) );
	auto *pLayout = new QVBoxLayout( this );
	auto *pSplitter = new QSplitter( Qt::Horizontal, this );

	auto *pTraceBox = new QGroupBox( "Trace", pSplitter );
	auto *pTraceLayout = new QVBoxLayout( pTraceBox );
	m_pTrace = MakeTextView( pTraceBox );
	m_pTrace->setMaximumBlockCount( MAX_TRACE_LINES );
	pTraceLayout->addWidget( m_pTrace, 1 );
	auto *pClear = new QPushButton( "Clear", pTraceBox );
	connect( pClear, &QPushButton::clicked, this, &CQInputDebugger::ClearTrace );
	auto *pButtons = new QHBoxLayout();
	pButtons->addStretch( 1 );
	pButtons->addWidget( pClear );
	pTraceLayout->addLayout( pButtons );

	auto *pRight = new QWidget( pSplitter );
	auto *pRightLayout = new QVBoxLayout( pRight );
	pRightLayout->setContentsMargins( 0, 0, 0, 0 );
	auto *pChainBox = new QGroupBox( "Focus Chain", pRight );
	auto *pChainLayout = new QVBoxLayout( pChainBox );
	m_pChain = MakeTextView( pChainBox );
	pChainLayout->addWidget( m_pChain );
	pRightLayout->addWidget( pChainBox, 1 );
	auto *pKeyBox = new QGroupBox( "Key State", pRight );
	auto *pKeyLayout = new QVBoxLayout( pKeyBox );
	m_pKeyState = new CQInputKeyStateVisualizer( pManager ? &pManager->GetEngine() : nullptr, pKeyBox );
	pKeyLayout->addWidget( m_pKeyState );
	pRightLayout->addWidget( pKeyBox );

	pSplitter->addWidget( pTraceBox );
	pSplitter->addWidget( pRight );
	pSplitter->setStretchFactor( 0, 1 );
	pSplitter->setStretchFactor( 1, 1 );
	pSplitter->setSizes( { 520, 580 } );
	pLayout->addWidget( pSplitter, 1 );
	resize( 1100, 640 );
	// The chain changes with the focus even when no key is pressed.
	m_FocusConnection = connect( qApp, &QApplication::focusChanged, this, [ this ]() {
		if ( isVisible() )
			RefreshState();
	} );
}

CQInputDebugger::~CQInputDebugger()
{
	// Closing the window moves the focus: no refresh of a half destroyed debugger.
	disconnect( m_FocusConnection );
	StopListening();
}

void CQInputDebugger::StopListening()
{
	if ( m_pManager && m_pManager->GetEngine().GetTraceListener() == this )
		m_pManager->GetEngine().SetTraceListener( nullptr );
}

void CQInputDebugger::showEvent( QShowEvent *pEvent )
{
	QWidget::showEvent( pEvent );
	if ( m_pManager )
		m_pManager->GetEngine().SetTraceListener( this );
	RefreshState();
}

void CQInputDebugger::hideEvent( QHideEvent *pEvent )
{
	QWidget::hideEvent( pEvent );
	StopListening();
}

QStringList CQInputDebugger::DescribeFocusChain( CQInputBindManager *pManager )
{
	QStringList lines;
	auto describe = [ &lines ]( const QString &strWidget, const CBindTargetSet &targets ) {
		for ( IBindTarget *pTarget : targets.GetTargets() )
		{
			const CBindTargetDescriptorBase *pDescriptor = pTarget->GetBindTargetDescriptor();
			lines.append( QStringLiteral( "%1 [W = %2, C = %3, Instance = %4, Mode = %5]" )
							  .arg( QString::fromUtf8( pDescriptor ? pDescriptor->GetTargetName() : "?" ), strWidget,
								  QString::fromUtf8( pDescriptor ? pDescriptor->GetClassName() : "?" ) )
							  .arg( pTarget->GetBindInstanceId() )
							  .arg( QStringLiteral( "0x%1" ).arg( pTarget->GetActiveModifiers(), 0, 16 ) ) );
		}
	};
	QWidget *pFocus = QApplication::focusWidget();
	if ( !pFocus )
		lines.append( QStringLiteral( "[NoWidget]" ) );
	for ( QWidget *pWidget = pFocus; pWidget; pWidget = pWidget->parentWidget() )
	{
		const CQBindableWidgetInfo *pInfo = CQBindableWidgetInfo::FromObject( pWidget );
		if ( !pInfo )
			continue;
		QString strWidget = QString::fromUtf8( pWidget->metaObject()->className() );
		if ( !pWidget->objectName().isEmpty() )
			strWidget += QStringLiteral( " \"%1\"" ).arg( pWidget->objectName() );
		describe( strWidget, pInfo->GetTargets() );
	}
	if ( const CQBindableWidgetInfo *pGlobal = pManager ? pManager->GetGlobalInfo() : nullptr )
		describe( QString::fromUtf8( pGlobal->GetTargets().GetName() ), pGlobal->GetTargets() );
	return lines;
}

QStringList CQInputDebugger::GetTraceLines() const
{
	return m_pTrace->toPlainText().split( QLatin1Char( '\n' ), Qt::SkipEmptyParts );
}

void CQInputDebugger::OnInputCode( InputCode_t nCode, int nKind )
{
	m_pTrace->appendPlainText( QString::fromUtf8( InputCodeName( nCode ) ) + QString::fromUtf8( EventKindSuffix( nKind ) ) );
	// The key state changed with the event: drawn once the event is handled.
	if ( !m_bRefreshQueued )
	{
		m_bRefreshQueued = true;
		QTimer::singleShot( 0, this, &CQInputDebugger::RefreshState );
	}
}

void CQInputDebugger::OnTraceLine( const char *pLine )
{
	m_pTrace->appendPlainText( QStringLiteral( "    " ) + QString::fromUtf8( pLine ) );
}

void CQInputDebugger::ClearTrace()
{
	m_pTrace->clear();
}

void CQInputDebugger::RefreshState()
{
	m_bRefreshQueued = false;
	const QString strChain = DescribeFocusChain( m_pManager ).join( QLatin1Char( '\n' ) );
	if ( m_pChain->toPlainText() != strChain )
		m_pChain->setPlainText( strChain );
	m_pKeyState->update();
}
