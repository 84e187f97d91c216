#include "tools/widgets/color/colorswatch.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDrag>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>

#include "tools/widgets/color/colordialog.h"
#include "tools/widgets/color/colorpainting.h"
#include "tools/widgets/color/colortext.h"

namespace
{
const char *ModelSuffix( const QColor &color )
{
	switch ( ColorModelOf( color ) )
	{
	case QColor::Hsv: return " (hsv)";
	case QColor::Hsl: return " (Hsl)";
	default: return " (rgb)";
	}
}
} // namespace

CQColorSwatch::CQColorSwatch( QWidget *pParent ) : QWidget( pParent )
{
	setMinimumSize( 16, 16 );
	setMaximumSize( 512, 64 );
	setAcceptDrops( true );
	setMouseTracking( true );
	setFocusPolicy( Qt::StrongFocus );
	SetColor( Qt::white );
}

void CQColorSwatch::SetColorSet( const QVector<QColor> &colors )
{
	m_Colors = colors;
	m_CurrentColor = colors.isEmpty() ? QColor() : colors.first();
	UpdateToolTip();
	update();
}

void CQColorSwatch::SetColor( QColor color )
{
	SetColorSet( { color } );
}

void CQColorSwatch::SetAllowAlpha( bool bAllowAlpha )
{
	m_bAllowAlpha = bAllowAlpha;
	UpdateToolTip();
	update();
}

void CQColorSwatch::UpdateToolTip()
{
	QStringList names;
	for ( const QColor &color : m_Colors )
	{
		QString name = color.name() + QString::fromLatin1( ModelSuffix( color ) );
		if ( m_bAllowAlpha )
			name += QStringLiteral( ", alpha: %1" ).arg( color.alphaF() * 255.0, 0, 'f', 1 );
		names << name;
	}
	QString tip = names.join( QStringLiteral( ",\n" ) );
	if ( m_Colors.size() > 1 )
		tip = QStringLiteral( "%1 Colors:\n" ).arg( m_Colors.size() ) + tip;
	setToolTip( tip );
}

bool CQColorSwatch::ApplyUserColorSet( const QVector<QColor> &colors, bool bFinished )
{
	if ( colors.isEmpty() || colors == m_Colors )
		return false;
	SetColorSet( colors );
	emit currentColorChanged( m_CurrentColor );
	emit ColorEdited( m_CurrentColor, bFinished );
	return true;
}

QVector<QColor> CQColorSwatch::AcceptableColorSet( const QMimeData *pData ) const
{
	QVector<QColor> colors = ColorSetFromMimeData( pData );
	if ( colors.isEmpty() || colors == m_Colors )
		return {};
	if ( !m_bAllowAlpha )
	{
		for ( QColor &color : colors )
			color.setAlpha( 255 );
		if ( colors == m_Colors )
			return {};
	}
	return colors;
}

void CQColorSwatch::CopyColorSetToClipboard()
{
	if ( m_Colors.isEmpty() )
		return;
	auto *pData = new QMimeData;
	ColorSetToMimeData( m_Colors, pData );
	QApplication::clipboard()->setMimeData( pData );
}

void CQColorSwatch::PasteColorSetFromClipboard()
{
	ApplyUserColorSet( AcceptableColorSet( QApplication::clipboard()->mimeData() ), true );
}

void CQColorSwatch::dropDraggedColorSet()
{
	QVector<QColor> colors = m_DraggedColors;
	m_DraggedColors.clear();
	ApplyUserColorSet( colors, true );
}

void CQColorSwatch::DoEdit()
{
	if ( m_bEditing || !isEnabled() )
		return;
	m_bEditing = true;
	const QVector<QColor> before = m_Colors;
	const QColor start = m_CurrentColor.isValid() ? m_CurrentColor : QColor( Qt::white );
	const int nCount = qMax( 1, m_Colors.size() );
	bool bChanged = false;
	CQColorDialog dialog( start, this, m_DialogTitle, m_bAllowAlpha );
	// The swatch follows the picker while the user tries colours.
	connect( &dialog, &CQColorDialog::CurrentColorChanged, this, [ & ]( const QColor &color ) {
		bChanged |= ApplyUserColorSet( QVector<QColor>( nCount, color ), false );
	} );
	const bool bAccepted = dialog.exec() == QDialog::Accepted;
	m_bEditing = false;
	const QVector<QColor> after = bAccepted ? QVector<QColor>( nCount, dialog.GetColor() ) : before;
	if ( after != m_Colors )
	{
		ApplyUserColorSet( after, true );
	}
	else if ( bChanged )
	{
		// The run of changes ends where it already stands.
		emit currentColorChanged( m_CurrentColor );
		emit ColorEdited( m_CurrentColor, true );
	}
}

QMenu *CQColorSwatch::CreateContextMenu( QWidget *pParent )
{
	auto *pMenu = new QMenu( pParent );
	const int nCount = m_Colors.size();
	QAction *pCopy = pMenu->addAction( nCount > 1 ? QStringLiteral( "&Copy (%1)" ).arg( nCount ) : QStringLiteral( "&Copy" ), this, &CQColorSwatch::CopyColorSetToClipboard );
	pCopy->setEnabled( nCount > 0 );
	const QVector<QColor> clipboard = AcceptableColorSet( QApplication::clipboard()->mimeData() );
	QAction *pPaste =
		pMenu->addAction( clipboard.size() > 1 ? QStringLiteral( "&Paste (%1)" ).arg( clipboard.size() ) : QStringLiteral( "&Paste" ), this, &CQColorSwatch::PasteColorSetFromClipboard );
	pPaste->setEnabled( !clipboard.isEmpty() );
	QString edit = nCount > 1 ? QStringLiteral( "&Edit &Colors (%1)" ).arg( nCount ) : QStringLiteral( "&Edit &Color" );
	QAction *pEdit = pMenu->addAction( edit, this, &CQColorSwatch::DoEdit );
	pEdit->setEnabled( isEnabled() );
	return pMenu;
}

//-----------------------------------------------------------------------------
// Events
//-----------------------------------------------------------------------------

void CQColorSwatch::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	QRect inner = rect().adjusted( 1, 1, -1, -1 );
	if ( m_Colors.isEmpty() )
	{
		painter.fillRect( inner, palette().window() );
	}
	else
	{
		// One slice per colour, side by side.
		const int nCount = m_Colors.size();
		for ( int i = 0; i < nCount; ++i )
		{
			int x0 = inner.left() + inner.width() * i / nCount;
			int x1 = inner.left() + inner.width() * ( i + 1 ) / nCount;
			QColor color = m_Colors[ i ];
			if ( !m_bAllowAlpha )
				color.setAlpha( 255 );
			PaintColorOverCheckerboard( painter, QRect( x0, inner.top(), x1 - x0, inner.height() ), color );
		}
	}
	if ( !isEnabled() )
		painter.fillRect( inner, QColor( 64, 64, 64, 128 ) );
	painter.setPen( hasFocus() ? palette().highlight().color() : QColor( 73, 73, 73 ) );
	painter.drawRect( rect().adjusted( 0, 0, -1, -1 ) );
}

void CQColorSwatch::mousePressEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() == Qt::LeftButton )
	{
		m_bPressed = true;
		m_PressPos = pEvent->pos();
	}
	QWidget::mousePressEvent( pEvent );
}

void CQColorSwatch::mouseMoveEvent( QMouseEvent *pEvent )
{
	if ( !m_bPressed || !( pEvent->buttons() & Qt::LeftButton ) || m_Colors.isEmpty() )
		return;
	if ( ( pEvent->pos() - m_PressPos ).manhattanLength() < QApplication::startDragDistance() )
		return;
	m_bPressed = false;
	auto *pDrag = new QDrag( this );
	auto *pData = new QMimeData;
	ColorSetToMimeData( m_Colors, pData );
	pDrag->setMimeData( pData );
	QPixmap pixmap( 24, 16 );
	pixmap.fill( m_CurrentColor );
	pDrag->setPixmap( pixmap );
	pDrag->exec( Qt::CopyAction );
}

void CQColorSwatch::mouseReleaseEvent( QMouseEvent *pEvent )
{
	bool bClick = m_bPressed && pEvent->button() == Qt::LeftButton && rect().contains( pEvent->pos() );
	m_bPressed = false;
	if ( bClick )
		DoEdit();
}

void CQColorSwatch::contextMenuEvent( QContextMenuEvent *pEvent )
{
	QMenu *pMenu = CreateContextMenu( this );
	pMenu->exec( pEvent->globalPos() );
	pMenu->deleteLater();
}

void CQColorSwatch::dragEnterEvent( QDragEnterEvent *pEvent )
{
	m_DraggedColors = isEnabled() ? AcceptableColorSet( pEvent->mimeData() ) : QVector<QColor>();
	if ( m_DraggedColors.isEmpty() )
	{
		pEvent->ignore();
		return;
	}
	pEvent->setDropAction( Qt::CopyAction );
	pEvent->accept();
}

void CQColorSwatch::dragMoveEvent( QDragMoveEvent *pEvent )
{
	if ( m_DraggedColors.isEmpty() )
		pEvent->ignore();
	else
		pEvent->acceptProposedAction();
}

void CQColorSwatch::dragLeaveEvent( QDragLeaveEvent * )
{
	m_DraggedColors.clear();
}

void CQColorSwatch::dropEvent( QDropEvent *pEvent )
{
	if ( m_DraggedColors.isEmpty() )
	{
		pEvent->ignore();
		return;
	}
	pEvent->setDropAction( Qt::CopyAction );
	pEvent->accept();
	if ( ( pEvent->mouseButtons() & Qt::RightButton ) && m_DraggedColors.size() > 1 )
	{
		// A set dragged with the right button is pasted only when asked to.
		QMenu menu( this );
		menu.addAction( QStringLiteral( "&Paste (%1)" ).arg( m_DraggedColors.size() ), this, &CQColorSwatch::dropDraggedColorSet );
		menu.addAction( QStringLiteral( "&Cancel" ) );
		menu.exec( mapToGlobal( pEvent->pos() ) );
		m_DraggedColors.clear();
		return;
	}
	dropDraggedColorSet();
}
