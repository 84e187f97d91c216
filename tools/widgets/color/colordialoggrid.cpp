#include "tools/widgets/color/colordialoggrid.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QFileInfo>
#include <QIcon>
#include <QInputDialog>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

#include "core/host/iprompt.h"
#include "core/logging/logging.h"
#include "tools/widgets/color/colorpainting.h"
#include "tools/widgets/color/colortext.h"

namespace
{
const char *ICON_ADD = "game:tools/images/common/add_sm.png";
const char *ICON_ADD_HIGHLIGHT = "game:tools/images/common/add_sm_highlight.png";
} // namespace

CQColorDialog_ColorGrid::CQColorDialog_ColorGrid( bool bCustom, QWidget *pParent ) : QWidget( pParent ), m_bCustom( bCustom )
{
	setFixedWidth( WIDTH );
	setMouseTracking( true );
	Load();
}

CQColorDialog_ColorGrid::~CQColorDialog_ColorGrid()
{
	if ( !m_bChanged || m_bDisabled )
		return;
	if ( !m_bCustom )
	{
		QString text = QStringLiteral( "Save changes to \"%1\"?\n(%2)" ).arg( GetTitle(), m_AbsolutePath );
		if ( GetPrompt()->Ask( PROMPT_ICON_QUESTION, "Save color changes?", text.toUtf8().constData(), PROMPT_BUTTON_YES | PROMPT_BUTTON_NO, PROMPT_BUTTON_YES ) !=
			 PROMPT_BUTTON_YES )
			return;
	}
	Save();
}

void CQColorDialog_ColorGrid::Load()
{
	CUtlString error;
	bool bLoaded;
	if ( m_bCustom )
	{
		m_FileName = QString::fromUtf8( CUSTOM_COLORS_TOOL_FILE );
		m_bDisabled = !IsCustomColorGridAvailable();
		if ( m_bDisabled )
		{
			UpdateHeight();
			return;
		}
		bLoaded = LoadCustomColorGrid( &m_Data, &error );
		m_Data.m_strName = "Custom Colors";
	}
	else
	{
		m_FileName = QString::fromUtf8( SHARED_COLORS_FILE );
		m_PathID = QStringLiteral( "GAME" );
		m_AbsolutePath = QString::fromUtf8( GetSharedColorGridPath().Get() );
		bLoaded = LoadSharedColorGrid( &m_Data, &error );
	}
	if ( !bLoaded )
	{
		Log_Warning( LOG_GENERAL, "Failed to read colors: %s\n", error.Get() );
		m_Data = DefaultColorGrid();
	}
	UpdateHeight();
}

bool CQColorDialog_ColorGrid::Save()
{
	if ( m_bDisabled )
		return false;
	CUtlString error;
	bool bSaved = m_bCustom ? SaveCustomColorGrid( m_Data, &error ) : SaveSharedColorGrid( m_Data, &error );
	if ( !bSaved )
	{
		Log_Warning( LOG_GENERAL, "Failed to save colors: %s\n", error.Get() );
		return false;
	}
	m_bChanged = false;
	if ( !m_bCustom )
		m_AbsolutePath = QString::fromUtf8( GetSharedColorGridPath().Get() );
	return true;
}

QString CQColorDialog_ColorGrid::GetTitle() const
{
	if ( m_bDisabled )
		return QStringLiteral( "(Custom Colors Disabled)" );
	if ( m_bCustom )
		return QStringLiteral( "Custom Colors" );
	return m_Data.m_strName.IsEmpty() ? QStringLiteral( "Shared Colors" ) : QString::fromUtf8( m_Data.m_strName.Get() );
}

QColor CQColorDialog_ColorGrid::GetColorAt( int nIndex ) const
{
	if ( nIndex < 0 || nIndex >= GetCount() )
		return QColor();
	return ToQColor( m_Data.m_Entries[ size_t( nIndex ) ].m_Color );
}

FatColor_t CQColorDialog_ColorGrid::FatColorAt( int nIndex ) const
{
	const Color &color = m_Data.m_Entries[ size_t( nIndex ) ].m_Color;
	return FatColor_t::FromRGB( color.r(), color.g(), color.b(), 255 );
}

QRect CQColorDialog_ColorGrid::GetCellRect( int nIndex ) const
{
	return QRect( FIRST_X + ( nIndex % COLUMNS ) * STEP_X, FIRST_Y + ( nIndex / COLUMNS ) * STEP_Y, CELL_WIDTH, CELL_HEIGHT );
}

int CQColorDialog_ColorGrid::CellAt( const QPoint &pos ) const
{
	for ( int i = 0; i < GetCount(); ++i )
	{
		if ( GetCellRect( i ).contains( pos ) )
			return i;
	}
	return -1;
}

QRect CQColorDialog_ColorGrid::GetAddButtonRect() const
{
	return QRect( WIDTH - ADD_BUTTON_WIDTH - 2, 1, ADD_BUTTON_WIDTH, 14 );
}

void CQColorDialog_ColorGrid::UpdateHeight()
{
	setFixedHeight( HeightForCount( GetCount() ) );
	update();
}

void CQColorDialog_ColorGrid::MarkChanged()
{
	m_bChanged = true;
	UpdateHeight();
}

void CQColorDialog_ColorGrid::AddCurrentColor()
{
	if ( m_bDisabled )
		return;
	m_Data.m_Entries.push_back( { FromQColor( m_CurrentColor ), CUtlString( "Custom Color" ) } );
	m_Data.m_Entries.back().m_Color[ 3 ] = 255;
	MarkChanged();
}

void CQColorDialog_ColorGrid::RemoveColor( int nIndex )
{
	if ( nIndex < 0 || nIndex >= GetCount() )
		return;
	m_Data.m_Entries.erase( m_Data.m_Entries.begin() + nIndex );
	MarkChanged();
}

void CQColorDialog_ColorGrid::RenameColor( int nIndex, const QString &name )
{
	if ( nIndex < 0 || nIndex >= GetCount() )
		return;
	m_Data.m_Entries[ size_t( nIndex ) ].m_strName = name.toUtf8().constData();
	MarkChanged();
}

void CQColorDialog_ColorGrid::OverwriteColor( int nIndex, const QColor &color )
{
	if ( nIndex < 0 || nIndex >= GetCount() || !color.isValid() )
		return;
	Color value = FromQColor( color );
	value[ 3 ] = 255;
	m_Data.m_Entries[ size_t( nIndex ) ].m_Color = value;
	MarkChanged();
}

void CQColorDialog_ColorGrid::CopyColor( int nIndex ) const
{
	QColor color = GetColorAt( nIndex );
	if ( !color.isValid() )
		return;
	auto *pData = new QMimeData;
	pData->setText( ColorToText( color ) );
	pData->setColorData( color );
	QApplication::clipboard()->setMimeData( pData );
}

bool CQColorDialog_ColorGrid::PasteColor( int nIndex )
{
	QVector<QColor> colors = ColorSetFromMimeData( QApplication::clipboard()->mimeData() );
	if ( colors.isEmpty() )
		return false;
	OverwriteColor( nIndex, colors.first() );
	return true;
}

void CQColorDialog_ColorGrid::RenameWithDialog( int nIndex )
{
	bool bOk = false;
	QString name = QInputDialog::getText( this, QStringLiteral( "Rename Color" ), QStringLiteral( "Name:" ), QLineEdit::Normal,
										  QString::fromUtf8( m_Data.m_Entries[ size_t( nIndex ) ].m_strName.Get() ), &bOk );
	if ( bOk )
		RenameColor( nIndex, name.trimmed() );
}

void CQColorDialog_ColorGrid::NavigateToFile()
{
	if ( m_AbsolutePath.isEmpty() )
		return;
	QDesktopServices::openUrl( QUrl::fromLocalFile( QFileInfo( m_AbsolutePath ).absolutePath() ) );
}

QMenu *CQColorDialog_ColorGrid::CreateCellMenu( int nIndex, QWidget *pParent )
{
	auto *pMenu = new QMenu( pParent );
	pMenu->addAction( QStringLiteral( "Pick" ), this, [ this, nIndex ] { emit OnColorPicked( FatColorAt( nIndex ) ); } );
	pMenu->addAction( QStringLiteral( "Copy" ), this, [ this, nIndex ] { CopyColor( nIndex ); } );
	QAction *pPaste = pMenu->addAction( QStringLiteral( "Paste (Overwrite)" ), this, [ this, nIndex ] { PasteColor( nIndex ); } );
	pPaste->setEnabled( !ColorSetFromMimeData( QApplication::clipboard()->mimeData() ).isEmpty() );
	pMenu->addAction( QStringLiteral( "Overwrite With Current" ), this, [ this, nIndex ] { OverwriteColor( nIndex, m_CurrentColor ); } );
	pMenu->addAction( QStringLiteral( "Rename" ), this, [ this, nIndex ] { RenameWithDialog( nIndex ); } );
	pMenu->addAction( QStringLiteral( "Remove" ), this, [ this, nIndex ] { RemoveColor( nIndex ); } );
	QAction *pNavigate = pMenu->addAction( QStringLiteral( "Navigate To File" ), this, &CQColorDialog_ColorGrid::NavigateToFile );
	pNavigate->setEnabled( !m_AbsolutePath.isEmpty() );
	return pMenu;
}

//-----------------------------------------------------------------------------
// Events
//-----------------------------------------------------------------------------

void CQColorDialog_ColorGrid::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	QFont font = painter.font();
	font.setPixelSize( 10 );
	painter.setFont( font );
	painter.setPen( palette().windowText().color() );
	QString title = GetTitle();
	if ( m_bAddHovered )
		title += QStringLiteral( ": Add" );
	painter.drawText( QRect( FIRST_X, 2, WIDTH - FIRST_X - ADD_BUTTON_WIDTH - 4, 14 ), Qt::AlignLeft | Qt::AlignVCenter, title );
	if ( m_bDisabled )
		return;
	QIcon( QString::fromLatin1( m_bAddHovered ? ICON_ADD_HIGHLIGHT : ICON_ADD ) ).paint( &painter, GetAddButtonRect() );
	for ( int i = 0; i < GetCount(); ++i )
	{
		QRect cell = GetCellRect( i );
		painter.fillRect( cell, GetColorAt( i ) );
		painter.setPen( QColor( 73, 73, 73 ) );
		painter.drawRect( cell.adjusted( 0, 0, -1, -1 ) );
	}
}

void CQColorDialog_ColorGrid::mousePressEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() != Qt::LeftButton || m_bDisabled )
		return;
	if ( GetAddButtonRect().contains( pEvent->pos() ) )
	{
		AddCurrentColor();
		return;
	}
	int nCell = CellAt( pEvent->pos() );
	if ( nCell >= 0 )
		emit OnColorPicked( FatColorAt( nCell ) );
}

void CQColorDialog_ColorGrid::mouseDoubleClickEvent( QMouseEvent *pEvent )
{
	int nCell = pEvent->button() == Qt::LeftButton ? CellAt( pEvent->pos() ) : -1;
	if ( nCell >= 0 )
		emit OnColorAccepted( FatColorAt( nCell ) );
}

void CQColorDialog_ColorGrid::mouseMoveEvent( QMouseEvent *pEvent )
{
	bool bHovered = !m_bDisabled && GetAddButtonRect().contains( pEvent->pos() );
	if ( bHovered != m_bAddHovered )
	{
		m_bAddHovered = bHovered;
		update();
	}
	int nCell = CellAt( pEvent->pos() );
	setToolTip( nCell >= 0 ? QString::fromUtf8( m_Data.m_Entries[ size_t( nCell ) ].m_strName.Get() ) : QString() );
}

void CQColorDialog_ColorGrid::leaveEvent( QEvent * )
{
	if ( m_bAddHovered )
	{
		m_bAddHovered = false;
		update();
	}
}

void CQColorDialog_ColorGrid::contextMenuEvent( QContextMenuEvent *pEvent )
{
	int nCell = CellAt( pEvent->pos() );
	if ( nCell < 0 )
		return;
	QMenu *pMenu = CreateCellMenu( nCell, this );
	pMenu->exec( pEvent->globalPos() );
	pMenu->deleteLater();
}
