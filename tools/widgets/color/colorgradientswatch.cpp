#include "tools/widgets/color/colorgradientswatch.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>

#include "core/host/iprompt.h"
#include "tools/widgets/color/colorgradienteditmodel.h"
#include "tools/widgets/color/colorgradienteditor.h"
#include "tools/widgets/color/colorpainting.h"

CQColorGradientSwatch::CQColorGradientSwatch( QWidget *pParent ) : QWidget( pParent ), m_Random( std::random_device{}() )
{
	setMinimumSize( 24, 12 );
	setCursor( Qt::PointingHandCursor );
	setToolTip( QStringLiteral( "Click to edit the gradient" ) );
}

void CQColorGradientSwatch::SetGradient( const CColorGradient &gradient, bool bAlpha )
{
	m_Gradient = gradient;
	m_bAlpha = bAlpha;
	if ( m_pEditor )
		m_pEditor->SetGradient( m_Gradient, m_bAlpha );
	update();
}

CQColorGradientEditor *CQColorGradientSwatch::OpenEditor()
{
	if ( m_pEditor )
	{
		m_pEditor->raise();
		m_pEditor->activateWindow();
		return m_pEditor;
	}
	auto *pEditor = new CQColorGradientEditor( this );
	pEditor->setWindowFlags( Qt::ToolTip );
	pEditor->setAttribute( Qt::WA_DeleteOnClose );
	pEditor->setWindowTitle( QStringLiteral( "Gradient" ) );
	pEditor->SetGradient( m_Gradient, m_bAlpha );
	pEditor->resize( qMax( 360, width() ), 90 );
	connect( pEditor, &CQColorGradientEditor::GradientChanged, this, &CQColorGradientSwatch::OnGradientEditorChanged );
	connect( pEditor, &CQColorGradientEditor::EscapeWithNoSelection, this, &CQColorGradientSwatch::OnGradientEditorEscape );
	m_pEditor = pEditor;

	// Centred on the swatch, then moved to lie inside its screen.
	QRect frame( QPoint( 0, 0 ), pEditor->size() );
	frame.moveCenter( mapToGlobal( rect().center() ) );
	if ( QScreen *pScreen = screen() )
	{
		QRect available = pScreen->availableGeometry();
		frame.moveLeft( qBound( available.left(), frame.left(), qMax( available.left(), available.right() - frame.width() + 1 ) ) );
		frame.moveTop( qBound( available.top(), frame.top(), qMax( available.top(), available.bottom() - frame.height() + 1 ) ) );
	}
	pEditor->move( frame.topLeft() );
	pEditor->show();
	pEditor->activateWindow();
	pEditor->setFocus( Qt::PopupFocusReason );
	return pEditor;
}

void CQColorGradientSwatch::OnGradientEditorChanged( bool bFinished )
{
	if ( !m_pEditor )
		return;
	m_Gradient = m_pEditor->GetGradient();
	update();
	emit GradientChanged( bFinished );
}

void CQColorGradientSwatch::OnGradientEditorEscape()
{
	if ( m_pEditor )
		m_pEditor->close();
}

void CQColorGradientSwatch::ApplyChange( const CColorGradient &gradient )
{
	m_Gradient = gradient;
	if ( m_pEditor )
		m_pEditor->SetGradient( m_Gradient, m_bAlpha );
	update();
	emit GradientChanged( true );
}

void CQColorGradientSwatch::ClearGradient()
{
	ApplyChange( CColorGradient() );
}

void CQColorGradientSwatch::ReverseGradient()
{
	CColorGradient reversed = m_Gradient;
	reversed.Reverse();
	ApplyChange( reversed );
}

void CQColorGradientSwatch::RandomizeGradient()
{
	CColorGradient randomized;
	RandomizeColorGradient( &randomized, m_bAlpha, m_Random );
	ApplyChange( randomized );
}

void CQColorGradientSwatch::CopyGradient()
{
	QString text, error;
	if ( !CQColorGradientEditor::GradientToText( m_Gradient, &text, &error ) )
	{
		GetPrompt()->Warning( "Failed to copy gradient", error.toUtf8().constData(), this );
		return;
	}
	QApplication::clipboard()->setText( text );
}

void CQColorGradientSwatch::PasteGradient()
{
	CColorGradient pasted;
	QString error;
	if ( !CQColorGradientEditor::GradientFromText( QApplication::clipboard()->text(), &pasted, &error ) )
	{
		GetPrompt()->Warning( "Failed to paste gradient", error.toUtf8().constData(), this );
		return;
	}
	ApplyChange( pasted );
}

QMenu *CQColorGradientSwatch::CreateContextMenu( QWidget *pParent )
{
	return CQColorGradientEditor::CreateGradientMenu(
		pParent, [ this ] { ClearGradient(); }, [ this ] { ReverseGradient(); }, [ this ] { RandomizeGradient(); }, [ this ] { CopyGradient(); },
		[ this ] { PasteGradient(); } );
}

void CQColorGradientSwatch::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	QRect inner = rect().adjusted( BORDER, BORDER, -BORDER, -BORDER );
	if ( m_bAlpha )
		PaintCheckerboard( painter, inner );
	const int nWidth = qMax( 1, inner.width() );
	for ( int x = 0; x < inner.width(); ++x )
	{
		Color c = m_Gradient.Evaluate( float( x ) / float( nWidth ) );
		painter.setPen( QColor( c.r(), c.g(), c.b(), m_bAlpha ? c.a() : 255 ) );
		painter.drawLine( inner.left() + x, inner.top(), inner.left() + x, inner.bottom() );
	}
	painter.setPen( QPen( isEnabled() ? QColor( 73, 73, 73 ) : QColor( 120, 120, 120 ), BORDER ) );
	painter.setBrush( Qt::NoBrush );
	painter.drawRect( rect().adjusted( 1, 1, -1, -1 ) );
}

void CQColorGradientSwatch::mousePressEvent( QMouseEvent *pEvent )
{
	m_bPressed = pEvent->button() == Qt::LeftButton;
}

void CQColorGradientSwatch::mouseReleaseEvent( QMouseEvent *pEvent )
{
	bool bClick = m_bPressed && pEvent->button() == Qt::LeftButton && rect().contains( pEvent->pos() );
	m_bPressed = false;
	if ( bClick && isEnabled() )
		OpenEditor();
}

void CQColorGradientSwatch::contextMenuEvent( QContextMenuEvent *pEvent )
{
	QMenu *pMenu = CreateContextMenu( this );
	pMenu->exec( pEvent->globalPos() );
	pMenu->deleteLater();
}
