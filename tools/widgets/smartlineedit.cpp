#include "tools/widgets/smartlineedit.h"

#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QTimer>
#include <QToolTip>

#include <cmath>
#include <limits>

namespace
{
constexpr float SHIFT_STEP_FACTOR = 0.25f;
// A sweep of this many pixels covers the range between both limits.
constexpr double LIMITED_SWEEP_PIXELS = 150.0;
constexpr const char *WHITESPACE_WARNING_TEXT = "Warning: This text ends with whitespace";

bool EndsInWhitespace( const QString &text )
{
	if ( text.isEmpty() )
		return false;
	QChar last = text.back();
	return last == ' ' || last == '\t' || last == '\n' || last == '\r';
}
} // namespace

CQSmartLineEdit::CQSmartLineEdit( QWidget *pParent )
	: QLineEdit( pParent ), m_flMinimum( std::numeric_limits<float>::lowest() ), m_flMaximum( std::numeric_limits<float>::max() ),
	  m_nIntMinimum( std::numeric_limits<int>::min() ), m_nIntMaximum( std::numeric_limits<int>::max() )
{
	m_pWhitespaceWarning = new QLabel( QStringLiteral( "***" ), this );
	m_pWhitespaceWarning->setToolTip( WHITESPACE_WARNING_TEXT );
	m_pWhitespaceWarning->setAlignment( Qt::AlignCenter );
	m_pWhitespaceWarning->setAutoFillBackground( true );
	m_pWhitespaceWarning->setStyleSheet( QStringLiteral( "color: red;" ) );
	m_pWhitespaceWarning->setCursor( Qt::WhatsThisCursor );
	m_pWhitespaceWarning->installEventFilter( this );
	m_pWhitespaceWarning->hide();
	connect( this, &QLineEdit::textChanged, this, &CQSmartLineEdit::UpdateWhitespaceWarning );
}

void CQSmartLineEdit::SetWhitespaceWarning( bool bOn )
{
	m_bWhitespaceWarning = bOn;
	UpdateWhitespaceWarning();
}

void CQSmartLineEdit::SetMinimum( double flMinimum )
{
	m_bHasMinimum = true;
	m_flMinimum = flMinimum;
	m_nIntMinimum = int( std::max<double>( std::ceil( flMinimum ), std::numeric_limits<int>::min() ) );
}

void CQSmartLineEdit::SetMaximum( double flMaximum )
{
	m_bHasMaximum = true;
	m_flMaximum = flMaximum;
	m_nIntMaximum = int( std::min<double>( std::floor( flMaximum ), std::numeric_limits<int>::max() ) );
}

void CQSmartLineEdit::ClearLimits()
{
	m_bHasMinimum = m_bHasMaximum = false;
	m_flMinimum = std::numeric_limits<float>::lowest();
	m_flMaximum = std::numeric_limits<float>::max();
	m_nIntMinimum = std::numeric_limits<int>::min();
	m_nIntMaximum = std::numeric_limits<int>::max();
}

bool CQSmartLineEdit::IsWhitespaceWarningShown() const
{
	return !m_pWhitespaceWarning->isHidden();
}

double CQSmartLineEdit::GetNumber( bool *pOk ) const
{
	bool bOk = false;
	double flValue = text().trimmed().toDouble( &bOk );
	if ( !bOk || !std::isfinite( flValue ) )
	{
		bOk = false;
		flValue = 0.0;
	}
	if ( pOk )
		*pOk = bOk;
	return flValue;
}

void CQSmartLineEdit::StartDrag( QMouseEvent *pEvent )
{
	pEvent->accept();
	m_bDragging = true;
	m_nStartX = pEvent->globalX();
	bool bCtrl = pEvent->modifiers() & Qt::ControlModifier;
	double flStart = GetNumber();
	if ( !bCtrl )
	{
		if ( m_bHasMinimum )
			flStart = std::max( flStart, m_nNumberKind == NUMBER_KIND_INTEGER ? double( m_nIntMinimum ) : m_flMinimum );
		if ( m_bHasMaximum )
			flStart = std::min( flStart, m_nNumberKind == NUMBER_KIND_INTEGER ? double( m_nIntMaximum ) : m_flMaximum );
	}
	m_flStartFloat = flStart;
	m_nStartInt = int( std::clamp<double>( std::rint( flStart ), std::numeric_limits<int>::min(), std::numeric_limits<int>::max() ) );

	double flMagnitude = std::fabs( m_nNumberKind == NUMBER_KIND_INTEGER ? double( m_nStartInt ) : m_flStartFloat );
	if ( m_bHasMinimum && m_bHasMaximum )
	{
		m_flStepPerPixel = float( ( m_flMaximum - m_flMinimum ) / LIMITED_SWEEP_PIXELS );
	}
	else if ( m_nNumberKind == NUMBER_KIND_FLOAT )
	{
		if ( flMagnitude == 0.0 )
		{
			m_flStepPerPixel = 0.1f;
		}
		else
		{
			m_flStepPerPixel = float( std::pow( 10.0, std::round( std::log10( flMagnitude ) ) - 1.0 ) / ( std::max( width(), 1 ) * 0.1 ) );
			if ( !m_bHasMinimum && m_flStepPerPixel < 0.01f )
				m_flStepPerPixel = 0.01f;
		}
	}
	else if ( flMagnitude > 10000.0 )
		m_flStepPerPixel = 100.0f;
	else if ( flMagnitude > 1000.0 )
		m_flStepPerPixel = 10.0f;
	else if ( flMagnitude > 100.0 )
		m_flStepPerPixel = 1.0f;
	else if ( flMagnitude > 10.0 )
		m_flStepPerPixel = 0.25f;
	// Small integers keep the step of the last drag.
	m_bShiftAtPress = pEvent->modifiers() & Qt::ShiftModifier;
	emit DragStarted();
}

void CQSmartLineEdit::StepDrag( QMouseEvent *pEvent )
{
	double flStep = m_flStepPerPixel;
	if ( m_bShiftAtPress )
		flStep *= SHIFT_STEP_FACTOR;
	if ( pEvent->modifiers() & Qt::ShiftModifier )
		flStep *= SHIFT_STEP_FACTOR;
	int nDelta = pEvent->globalX() - m_nStartX;
	// Both limits set: Ctrl lifts them; a single limit always holds.
	bool bLimited = !( m_bHasMinimum && m_bHasMaximum && ( pEvent->modifiers() & Qt::ControlModifier ) );

	QString newText;
	if ( m_nNumberKind == NUMBER_KIND_INTEGER )
	{
		double flValue = double( m_nStartInt ) + std::rint( nDelta * flStep );
		if ( flValue != double( m_nStartInt ) && bLimited )
		{
			if ( m_bHasMinimum )
				flValue = std::max( flValue, double( m_nIntMinimum ) );
			if ( m_bHasMaximum )
				flValue = std::min( flValue, double( m_nIntMaximum ) );
		}
		flValue = std::clamp<double>( flValue, std::numeric_limits<int>::min(), std::numeric_limits<int>::max() );
		newText = QString::number( int( flValue ), 10 );
	}
	else
	{
		double flValue = m_flStartFloat + nDelta * flStep;
		if ( flValue != m_flStartFloat && bLimited )
		{
			if ( m_bHasMinimum )
				flValue = std::max( flValue, m_flMinimum );
			if ( m_bHasMaximum )
				flValue = std::min( flValue, m_flMaximum );
		}
		newText = QString::number( flValue, 'g', 6 );
	}
	if ( newText == text() )
		return;

	// The selection stays as it was: all of it, or the same span.
	bool bAllSelected = hasSelectedText() && selectedText().size() == text().size();
	int nSelStart = selectionStart();
	int nSelLength = selectedText().size();
	setText( newText );
	if ( bAllSelected )
		selectAll();
	else if ( nSelStart >= 0 && nSelLength > 0 )
		setSelection( std::min( nSelStart, int( newText.size() ) ), std::min( nSelLength, int( newText.size() ) - std::min( nSelStart, int( newText.size() ) ) ) );
	emit textEdited( newText );
	emit DragStepped();
}

void CQSmartLineEdit::EndDrag()
{
	if ( !m_bDragging )
		return;
	m_bDragging = false;
	emit DragEnded();
}

void CQSmartLineEdit::mousePressEvent( QMouseEvent *pEvent )
{
	// The middle button drags a number; it never pastes.
	if ( pEvent->button() == Qt::MiddleButton )
	{
		if ( ( m_nNumberKind == NUMBER_KIND_INTEGER || m_nNumberKind == NUMBER_KIND_FLOAT ) && !isReadOnly() && isEnabled() )
			StartDrag( pEvent );
		else
			pEvent->accept();
		return;
	}
	QLineEdit::mousePressEvent( pEvent );
}

void CQSmartLineEdit::mouseMoveEvent( QMouseEvent *pEvent )
{
	if ( m_bDragging )
	{
		pEvent->accept();
		if ( pEvent->buttons() & Qt::MiddleButton )
			StepDrag( pEvent );
		else
			EndDrag();
		return;
	}
	QLineEdit::mouseMoveEvent( pEvent );
}

void CQSmartLineEdit::mouseReleaseEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() == Qt::MiddleButton )
	{
		pEvent->accept();
		EndDrag();
		return;
	}
	QLineEdit::mouseReleaseEvent( pEvent );
	if ( pEvent->button() != Qt::LeftButton || !m_bFirstClickAfterFocus )
		return;
	m_bFirstClickAfterFocus = false;
	// The first click into the field takes the whole text, the cursor at the end the
	// click was nearer to.
	if ( m_bSelectOnClick && !hasSelectedText() )
	{
		int nLength = text().size();
		if ( cursorPositionAt( pEvent->pos() ) == 0 )
			setSelection( nLength, -nLength );
		else
			setSelection( 0, nLength );
	}
}

bool CQSmartLineEdit::PassesHistoryKey( QKeyEvent *pEvent ) const
{
	return !isModified() && ( pEvent->matches( QKeySequence::Undo ) || pEvent->matches( QKeySequence::Redo ) );
}

bool CQSmartLineEdit::event( QEvent *pEvent )
{
	// Not taken as the field's own shortcut: the key goes on as a key press, which the
	// field then hands to its parents.
	if ( pEvent->type() == QEvent::ShortcutOverride && PassesHistoryKey( static_cast<QKeyEvent *>( pEvent ) ) )
	{
		pEvent->ignore();
		return false;
	}
	return QLineEdit::event( pEvent );
}

void CQSmartLineEdit::keyPressEvent( QKeyEvent *pEvent )
{
	if ( PassesHistoryKey( pEvent ) )
	{
		pEvent->ignore();
		return;
	}
	if ( m_bIgnoreBackQuote && pEvent->key() == Qt::Key_QuoteLeft )
	{
		pEvent->accept();
		return;
	}
	if ( pEvent->key() == Qt::Key_Escape )
	{
		if ( !pEvent->isAutoRepeat() )
			emit EditCancelled();
		if ( m_bEscapeStopsHere )
		{
			pEvent->accept();
			return;
		}
	}
	QLineEdit::keyPressEvent( pEvent );
}

void CQSmartLineEdit::keyReleaseEvent( QKeyEvent *pEvent )
{
	if ( m_bIgnoreBackQuote && pEvent->key() == Qt::Key_QuoteLeft )
	{
		pEvent->accept();
		return;
	}
	QLineEdit::keyReleaseEvent( pEvent );
}

void CQSmartLineEdit::focusInEvent( QFocusEvent *pEvent )
{
	QLineEdit::focusInEvent( pEvent );
	m_bFirstClickAfterFocus = pEvent->reason() == Qt::MouseFocusReason;
	emit FocusIn();
}

void CQSmartLineEdit::focusOutEvent( QFocusEvent *pEvent )
{
	QLineEdit::focusOutEvent( pEvent );
	m_bFirstClickAfterFocus = false;
	emit FocusOut();
}

void CQSmartLineEdit::resizeEvent( QResizeEvent *pEvent )
{
	QLineEdit::resizeEvent( pEvent );
	UpdateWhitespaceWarning();
}

void CQSmartLineEdit::UpdateWhitespaceWarning()
{
	if ( !m_bWhitespaceWarning || !EndsInWhitespace( text() ) )
	{
		m_pWhitespaceWarning->hide();
		return;
	}
	m_pWhitespaceWarning->setGeometry( width() - 33, 2, 32, height() - 3 );
	m_pWhitespaceWarning->show();
	m_pWhitespaceWarning->raise();
}

bool CQSmartLineEdit::eventFilter( QObject *pWatched, QEvent *pEvent )
{
	if ( pWatched == m_pWhitespaceWarning && pEvent->type() == QEvent::MouseButtonPress )
	{
		// After the click's own handling, or the tool tip would close at once.
		QTimer::singleShot( 0, this, &CQSmartLineEdit::OnWhitespaceWarningClickedDelayed );
		return true;
	}
	return QLineEdit::eventFilter( pWatched, pEvent );
}

void CQSmartLineEdit::OnWhitespaceWarningClickedDelayed()
{
	QPoint centre = m_pWhitespaceWarning->mapToGlobal( m_pWhitespaceWarning->rect().center() );
	QToolTip::showText( centre, WHITESPACE_WARNING_TEXT, m_pWhitespaceWarning );
}
