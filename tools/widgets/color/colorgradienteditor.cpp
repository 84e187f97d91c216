#include "tools/widgets/color/colorgradienteditor.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

#include "core/host/iprompt.h"
#include "tools/widgets/color/colorpainting.h"
#include "tools/widgets/color/colorswatch.h"
#include "tools/widgets/kv3clipboardtext.h"

namespace
{
enum EditorCursor_t
{
	CURSOR_BASE,
	CURSOR_ADD,
	CURSOR_MOVE,
};

// The base arrow with an overlay; Qt's own shapes where the images can't be found.
QCursor MakeEditorCursor( EditorCursor_t eCursor )
{
	QPixmap base( QStringLiteral( "game:tools/images/common/select_cursor_base.png" ) );
	if ( base.isNull() )
		return QCursor( eCursor == CURSOR_MOVE ? Qt::SizeHorCursor : eCursor == CURSOR_ADD ? Qt::CrossCursor : Qt::ArrowCursor );
	if ( eCursor != CURSOR_BASE )
	{
		QPixmap overlay( eCursor == CURSOR_ADD ? QStringLiteral( "game:tools/images/common/select_overlay_add.png" )
											   : QStringLiteral( "game:tools/images/common/select_overlay_leftright.png" ) );
		QPainter painter( &base );
		painter.drawPixmap( 0, 0, overlay );
	}
	return QCursor( base, 0, 0 );
}

const QCursor &EditorCursor( EditorCursor_t eCursor )
{
	static const QCursor s_Cursors[] = { MakeEditorCursor( CURSOR_BASE ), MakeEditorCursor( CURSOR_ADD ), MakeEditorCursor( CURSOR_MOVE ) };
	return s_Cursors[ eCursor ];
}
} // namespace

CQColorGradientEditor::CQColorGradientEditor( QWidget *pParent ) : QWidget( pParent ), m_Random( std::random_device{}() )
{
	setMouseTracking( true );
	setFocusPolicy( Qt::StrongFocus );

	m_pFooter = new QWidget( this );
	m_pFooter->setFixedHeight( FOOTER_HEIGHT );
	m_pFooter->installEventFilter( this );
	auto *pLayout = new QHBoxLayout( m_pFooter );
	pLayout->setContentsMargins( 0, 1, 0, 1 );
	pLayout->setSpacing( 4 );
	auto *pColorLabel = new QLabel( QStringLiteral( "Color:" ) );
	m_pSwatch = new CQColorSwatch;
	m_pSwatch->setFixedWidth( SWATCH_WIDTH );
	m_pSwatch->SetDialogTitle( QStringLiteral( "Gradient Stop Color" ) );
	auto *pPositionLabel = new QLabel( QStringLiteral( "Position:" ) );
	m_pPositionEdit = new QLineEdit;
	m_pPositionEdit->setMaximumWidth( 70 );
	m_pDeleteButton = new QToolButton;
	m_pDeleteButton->setIcon( QIcon( QStringLiteral( "game:tools/images/common/delete_light_sm.png" ) ) );
	m_pDeleteButton->setToolTip( QStringLiteral( "Delete Selected Stop" ) );
	m_pDeleteButton->setText( QStringLiteral( "Delete Selected Stop" ) );
	m_pDeleteButton->setAutoRaise( true );
	pLayout->addWidget( pColorLabel );
	pLayout->addWidget( m_pSwatch );
	pLayout->addSpacing( 8 );
	pLayout->addWidget( pPositionLabel );
	pLayout->addWidget( m_pPositionEdit );
	pLayout->addWidget( m_pDeleteButton );
	pLayout->addStretch( 1 );
	m_FooterControls = { m_pSwatch, m_pPositionEdit, m_pDeleteButton };

	connect( m_pSwatch, &CQColorSwatch::ColorEdited, this, &CQColorGradientEditor::OnSwatchColorEdited );
	connect( m_pPositionEdit, &QLineEdit::editingFinished, this, &CQColorGradientEditor::OnPositionEditingFinished );
	connect( m_pDeleteButton, &QToolButton::clicked, this, &CQColorGradientEditor::OnDeleteClicked );

	setCursor( EditorCursor( CURSOR_BASE ) );
	UpdateFooter();
}

CQColorGradientEditor::~CQColorGradientEditor()
{
	// The footer's edit tells its focus leaving as it goes; this editor is half gone by then.
	m_pPositionEdit->disconnect( this );
	m_pSwatch->disconnect( this );
}

QSize CQColorGradientEditor::sizeHint() const
{
	return QSize( 300, 80 );
}

QSize CQColorGradientEditor::minimumSizeHint() const
{
	return QSize( 200, TOP_MARGIN + 12 + HANDLE_HEIGHT + STRIP_GAP + FOOTER_HEIGHT );
}

void CQColorGradientEditor::SetGradient( const CColorGradient &gradient, bool bAlpha )
{
	m_Model.SetGradient( gradient, bAlpha );
	m_pSwatch->SetAllowAlpha( bAlpha );
	m_Model.SetBand( GetBand() );
	m_bStripDirty = true;
	m_bSwatchRunFirst = true;
	UpdateFooter();
	update();
}

void CQColorGradientEditor::SelectStop( int nStop )
{
	m_Model.SetSelectedStop( nStop );
	UpdateFooter();
	update();
}

QRect CQColorGradientEditor::GetStripRect() const
{
	int nHeight = height() - TOP_MARGIN - GetHandleHeight() - STRIP_GAP - FOOTER_HEIGHT;
	return QRect( SIDE_MARGIN, TOP_MARGIN, qMax( 1, width() - 2 * SIDE_MARGIN ), qMax( 4, nHeight ) );
}

ColorGradientBand_t CQColorGradientEditor::GetBand() const
{
	QRect strip = GetStripRect();
	ColorGradientBand_t band;
	band.m_nLeft = strip.left();
	band.m_nRight = strip.right();
	band.m_nTop = strip.top();
	band.m_nHandleTop = strip.bottom() + 1;
	band.m_nHandleWidth = HANDLE_WIDTH;
	band.m_nHandleHeight = GetHandleHeight();
	return band;
}

QPoint CQColorGradientEditor::GetStopHandleCentre( int nStop ) const
{
	ColorGradientBand_t band = GetBand();
	return QPoint( band.PixelOf( GetGradient().GetStopPosition( nStop ) ), band.m_nHandleTop + band.m_nHandleHeight / 2 );
}

const QPixmap &CQColorGradientEditor::GetStripPixmap()
{
	if ( !m_bStripDirty && m_StripPixmap.size() == GetStripRect().size() )
		return m_StripPixmap;
	QRect strip = GetStripRect();
	QImage image( strip.size(), QImage::Format_ARGB32 );
	const CColorGradient &gradient = GetGradient();
	const int nWidth = strip.width();
	auto *pFirst = reinterpret_cast<QRgb *>( image.scanLine( 0 ) );
	for ( int x = 0; x < nWidth; ++x )
	{
		Color c = gradient.Evaluate( float( x ) / float( nWidth ) );
		pFirst[ x ] = qRgba( c.r(), c.g(), c.b(), HasAlpha() ? c.a() : 255 );
	}
	for ( int y = 1; y < image.height(); ++y )
		memcpy( image.scanLine( y ), pFirst, size_t( nWidth ) * sizeof( QRgb ) );
	m_StripPixmap = QPixmap( strip.size() );
	m_StripPixmap.fill( Qt::transparent );
	QPainter painter( &m_StripPixmap );
	if ( HasAlpha() )
		PaintCheckerboard( painter, m_StripPixmap.rect(), 6 );
	painter.drawImage( 0, 0, image );
	m_bStripDirty = false;
	return m_StripPixmap;
}

//-----------------------------------------------------------------------------
// Changes
//-----------------------------------------------------------------------------

void CQColorGradientEditor::OnModelResult( CColorGradientEditModel::Result_t eResult )
{
	UpdateFooter();
	UpdateCursor();
	if ( eResult != CColorGradientEditModel::EDIT_NONE )
	{
		m_bStripDirty = true;
		emit GradientChanged( eResult == CColorGradientEditModel::EDIT_FINISHED );
	}
	update();
}

void CQColorGradientEditor::UpdateFooter()
{
	const int nStop = m_Model.GetSelectedStop();
	const bool bSelected = nStop >= 0;
	for ( QWidget *pControl : m_FooterControls )
		pControl->setEnabled( bSelected );
	if ( bSelected )
	{
		m_pSwatch->SetColor( ToQColor( GetGradient().GetStopColor( nStop ) ) );
		if ( !m_pPositionEdit->hasFocus() )
			m_pPositionEdit->setText( QString::number( GetGradient().GetStopPosition( nStop ) * 100.0f, 'f', 1 ) );
	}
	else
	{
		m_pPositionEdit->clear();
	}
}

void CQColorGradientEditor::UpdateCursor()
{
	if ( m_Model.IsDragging() && m_Model.HasDragMoved() )
		setCursor( Qt::ClosedHandCursor );
	else if ( m_Model.GetStopUnderMouse() >= 0 )
		setCursor( EditorCursor( CURSOR_MOVE ) );
	else if ( m_Model.IsMouseInBand() )
		setCursor( EditorCursor( CURSOR_ADD ) );
	else
		setCursor( EditorCursor( CURSOR_BASE ) );
}

void CQColorGradientEditor::OnSwatchColorEdited( const QColor &color, bool bFinished )
{
	Color value = FromQColor( color );
	if ( !HasAlpha() )
		value[ 3 ] = 255;
	auto eResult = m_Model.SetSelectedStopColor( value, m_bSwatchRunFirst );
	// The swatch's end of an edit closes the run: the next colour is a new step.
	m_bSwatchRunFirst = bFinished;
	if ( eResult == CColorGradientEditModel::EDIT_NONE )
		return;
	m_bStripDirty = true;
	update();
	emit GradientChanged( bFinished );
}

void CQColorGradientEditor::ClearGradient()
{
	OnModelResult( m_Model.Clear() );
}

void CQColorGradientEditor::ReverseGradient()
{
	OnModelResult( m_Model.Reverse() );
}

void CQColorGradientEditor::RandomizeGradient()
{
	OnModelResult( m_Model.Randomize( m_Random ) );
}

void CQColorGradientEditor::OnPositionEditingFinished()
{
	if ( m_Model.GetSelectedStop() < 0 )
		return;
	bool bOk = false;
	float flPercent = m_pPositionEdit->text().trimmed().remove( QLatin1Char( '%' ) ).toFloat( &bOk );
	auto eResult = bOk ? m_Model.MoveSelectedStop( flPercent / 100.0f ) : CColorGradientEditModel::EDIT_NONE;
	// The edit shows the position the stop really has (clamped, or unchanged on bad text).
	m_pPositionEdit->setText( QString::number( GetGradient().GetStopPosition( m_Model.GetSelectedStop() ) * 100.0f, 'f', 1 ) );
	OnModelResult( eResult );
}

void CQColorGradientEditor::OnDeleteClicked()
{
	OnModelResult( m_Model.DeleteSelectedStop() );
}

void CQColorGradientEditor::Undo()
{
	if ( !m_Model.Undo() )
	{
		GetPrompt()->Beep();
		return;
	}
	OnModelResult( CColorGradientEditModel::EDIT_FINISHED );
}

void CQColorGradientEditor::Redo()
{
	if ( !m_Model.Redo() )
	{
		GetPrompt()->Beep();
		return;
	}
	OnModelResult( CColorGradientEditModel::EDIT_FINISHED );
}

//-----------------------------------------------------------------------------
// Clipboard and menu
//-----------------------------------------------------------------------------

bool CQColorGradientEditor::GradientToText( const CColorGradient &gradient, QString *pText, QString *pError )
{
	return ObjectToClipboardText( gradient, pText, pError );
}

bool CQColorGradientEditor::GradientFromText( const QString &text, CColorGradient *pGradient, QString *pError )
{
	return ObjectFromClipboardText( text, "m_Stops", "gradient", pGradient, pError );
}

bool CQColorGradientEditor::ClipboardHoldsGradient()
{
	CColorGradient gradient;
	QString error;
	return GradientFromText( QApplication::clipboard()->text(), &gradient, &error );
}

void CQColorGradientEditor::CopyGradient()
{
	QString text, error;
	if ( !GradientToText( GetGradient(), &text, &error ) )
	{
		GetPrompt()->Warning( "Failed to copy gradient", error.toUtf8().constData(), this );
		return;
	}
	QApplication::clipboard()->setText( text );
}

void CQColorGradientEditor::PasteGradient()
{
	CColorGradient pasted;
	QString error;
	if ( !GradientFromText( QApplication::clipboard()->text(), &pasted, &error ) )
	{
		GetPrompt()->Warning( "Failed to paste gradient", error.toUtf8().constData(), this );
		return;
	}
	OnModelResult( m_Model.Replace( pasted ) );
}

QMenu *CQColorGradientEditor::CreateGradientMenu( QWidget *pParent, std::function<void()> fnClear, std::function<void()> fnReverse,
												  std::function<void()> fnRandomize, std::function<void()> fnCopy, std::function<void()> fnPaste )
{
	auto *pMenu = new QMenu( pParent );
	pMenu->addAction( QStringLiteral( "Clear" ), pParent, std::move( fnClear ) );
	pMenu->addAction( QStringLiteral( "Reverse" ), pParent, std::move( fnReverse ) );
	pMenu->addAction( QStringLiteral( "Randomize" ), pParent, std::move( fnRandomize ) );
	pMenu->addSeparator();
	pMenu->addAction( QStringLiteral( "Copy Gradient" ), pParent, std::move( fnCopy ) );
	QAction *pPaste = pMenu->addAction( QStringLiteral( "Paste Gradient" ), pParent, std::move( fnPaste ) );
	pPaste->setObjectName( QStringLiteral( "PasteGradient" ) );
	// A trial load decides, each time the menu opens.
	QObject::connect( pMenu, &QMenu::aboutToShow, pMenu, [ pPaste ] { pPaste->setEnabled( ClipboardHoldsGradient() ); } );
	pPaste->setEnabled( ClipboardHoldsGradient() );
	return pMenu;
}

QMenu *CQColorGradientEditor::CreateContextMenu( QWidget *pParent )
{
	QMenu *pMenu = CreateGradientMenu(
		pParent, [ this ] { ClearGradient(); }, [ this ] { ReverseGradient(); }, [ this ] { RandomizeGradient(); }, [ this ] { CopyGradient(); },
		[ this ] { PasteGradient(); } );
	connect( pMenu, &QMenu::aboutToShow, this, &CQColorGradientEditor::OnMenuAboutToShow );
	return pMenu;
}

void CQColorGradientEditor::OnMenuAboutToShow()
{
	// A drag can't outlive the menu that interrupts it.
	if ( m_Model.IsDragging() )
		OnModelResult( m_Model.LeftRelease() );
}

void CQColorGradientEditor::OnFooterMouseEvent()
{
	// The mouse over the footer is nowhere on the band.
	if ( m_Model.IsDragging() )
		return;
	m_Model.MouseMove( -10000, -10000 );
	UpdateCursor();
	update();
}

//-----------------------------------------------------------------------------
// Events
//-----------------------------------------------------------------------------

void CQColorGradientEditor::resizeEvent( QResizeEvent *pEvent )
{
	QWidget::resizeEvent( pEvent );
	m_pFooter->setGeometry( SIDE_MARGIN, height() - FOOTER_HEIGHT, width() - 2 * SIDE_MARGIN, FOOTER_HEIGHT );
	m_Model.SetBand( GetBand() );
	m_bStripDirty = true;
}

void CQColorGradientEditor::mousePressEvent( QMouseEvent *pEvent )
{
	setFocus( Qt::MouseFocusReason );
	m_Model.SetBand( GetBand() );
	if ( pEvent->button() == Qt::LeftButton )
		OnModelResult( m_Model.LeftPress( pEvent->pos().x(), pEvent->pos().y() ) );
	else if ( pEvent->button() == Qt::MiddleButton )
		OnModelResult( m_Model.MiddlePress( pEvent->pos().x(), pEvent->pos().y() ) );
	else
		QWidget::mousePressEvent( pEvent );
}

void CQColorGradientEditor::mouseMoveEvent( QMouseEvent *pEvent )
{
	OnModelResult( m_Model.MouseMove( pEvent->pos().x(), pEvent->pos().y() ) );
}

void CQColorGradientEditor::mouseReleaseEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() == Qt::LeftButton )
		OnModelResult( m_Model.LeftRelease() );
}

void CQColorGradientEditor::mouseDoubleClickEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() != Qt::LeftButton )
		return;
	int nStop = HitTestColorGradientStops( GetGradient(), GetBand(), pEvent->pos().x(), pEvent->pos().y() );
	if ( nStop < 0 )
		return;
	// The first click of the pair started a drag; the picker takes over.
	m_Model.LeftRelease();
	SelectStop( nStop );
	m_pSwatch->DoEdit();
}

void CQColorGradientEditor::leaveEvent( QEvent * )
{
	OnModelResult( m_Model.Leave() );
}

void CQColorGradientEditor::keyPressEvent( QKeyEvent *pEvent )
{
	const Qt::KeyboardModifiers modifiers = pEvent->modifiers() & ( Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier );
	switch ( pEvent->key() )
	{
	case Qt::Key_Backspace:
	case Qt::Key_Delete:
		OnDeleteClicked();
		return;
	case Qt::Key_Escape:
		if ( m_Model.ClearSelection() )
		{
			UpdateFooter();
			update();
		}
		else
		{
			emit EscapeWithNoSelection();
		}
		return;
	case Qt::Key_Z:
		if ( modifiers == Qt::ControlModifier )
			return Undo();
		if ( modifiers == ( Qt::ControlModifier | Qt::ShiftModifier ) )
			return Redo();
		break;
	case Qt::Key_Y:
		if ( modifiers == Qt::ControlModifier )
			return Redo();
		break;
	default: break;
	}
	QWidget::keyPressEvent( pEvent );
}

void CQColorGradientEditor::contextMenuEvent( QContextMenuEvent *pEvent )
{
	QMenu *pMenu = CreateContextMenu( this );
	pMenu->exec( pEvent->globalPos() );
	pMenu->deleteLater();
}

bool CQColorGradientEditor::eventFilter( QObject *pObject, QEvent *pEvent )
{
	if ( pObject == m_pFooter && pEvent->type() == QEvent::Enter )
		OnFooterMouseEvent();
	return QWidget::eventFilter( pObject, pEvent );
}

void CQColorGradientEditor::PaintHandle( QPainter &painter, int nStop )
{
	const ColorGradientBand_t band = GetBand();
	const int x = band.PixelOf( GetGradient().GetStopPosition( nStop ) );
	const int nTop = band.m_nHandleTop;
	const int nLeft = x - HANDLE_WIDTH / 2;
	const bool bSelected = nStop == m_Model.GetSelectedStop();
	const bool bHovered = nStop == m_Model.GetStopUnderMouse();
	Color color = GetGradient().GetStopColor( nStop );

	// A little house: the roof points at the stop's place on the strip.
	QPainterPath path;
	path.moveTo( x + 0.5, nTop );
	path.lineTo( nLeft + HANDLE_WIDTH, nTop + 4 );
	path.lineTo( nLeft + HANDLE_WIDTH, nTop + HANDLE_HEIGHT );
	path.lineTo( nLeft, nTop + HANDLE_HEIGHT );
	path.lineTo( nLeft, nTop + 4 );
	path.closeSubpath();
	painter.setRenderHint( QPainter::Antialiasing, true );
	painter.setBrush( QColor( color.r(), color.g(), color.b() ) );
	QColor outline = bSelected ? QColor( 255, 170, 40 ) : bHovered ? QColor( 230, 230, 230 ) : QColor( 40, 40, 40 );
	painter.setPen( QPen( outline, bSelected ? 2.0 : 1.0 ) );
	painter.drawPath( path );
	painter.setRenderHint( QPainter::Antialiasing, false );
	if ( HasAlpha() )
	{
		// The stop's alpha as grey below the handle.
		QRect alphaRect( nLeft, nTop + HANDLE_HEIGHT + 1, HANDLE_WIDTH, HANDLE_ALPHA_EXTRA - 1 );
		painter.fillRect( alphaRect, QColor( color.a(), color.a(), color.a() ) );
		painter.setPen( outline );
		painter.setBrush( Qt::NoBrush );
		painter.drawRect( alphaRect.adjusted( 0, 0, -1, -1 ) );
	}
}

void CQColorGradientEditor::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	QRect strip = GetStripRect();
	painter.drawPixmap( strip.topLeft(), GetStripPixmap() );
	painter.setPen( hasFocus() ? palette().highlight().color() : QColor( 73, 73, 73 ) );
	painter.setBrush( Qt::NoBrush );
	painter.drawRect( strip.adjusted( -1, -1, 0, 0 ) );
	// The selected stop last, so it is drawn over its neighbours.
	for ( int i = 0; i < GetGradient().GetStopCount(); ++i )
	{
		if ( i != m_Model.GetSelectedStop() )
			PaintHandle( painter, i );
	}
	if ( m_Model.GetSelectedStop() >= 0 )
		PaintHandle( painter, m_Model.GetSelectedStop() );
	// Where a click would add a stop.
	if ( m_Model.IsMouseInBand() && m_Model.GetStopUnderMouse() < 0 && !m_Model.IsDragging() )
	{
		int x = GetBand().PixelOf( m_Model.GetPositionUnderMouse() );
		painter.setPen( QPen( QColor( 255, 255, 255, 160 ), 1, Qt::DashLine ) );
		painter.drawLine( x, strip.top(), x, strip.bottom() );
	}
}
