#include "tools/widgets/assetthumbnail.h"

#include <QFileInfo>
#include <algorithm>
#include <QPainter>
#include <map>
#include <vector>

#include "core/host/iasset.h"

namespace
{
std::map<ResourceType_t, CQAssetThumbnail::Painter_t> &Painters()
{
	static std::map<ResourceType_t, CQAssetThumbnail::Painter_t> s_Painters;
	return s_Painters;
}

std::vector<CQAssetThumbnail *> &LiveThumbnails()
{
	static std::vector<CQAssetThumbnail *> s_Thumbnails;
	return s_Thumbnails;
}

// The picture of an asset that no painter draws: its type code over its name.
QImage PaintPlaceholder( IAsset *pAsset, const QSize &size, const QPalette &palette )
{
	QImage image( size, QImage::Format_ARGB32_Premultiplied );
	image.fill( Qt::transparent );
	QPainter painter( &image );
	painter.setRenderHint( QPainter::Antialiasing );
	QRectF frame( 0.5, 0.5, size.width() - 1.0, size.height() - 1.0 );
	painter.setPen( palette.color( QPalette::Mid ) );
	painter.setBrush( palette.color( QPalette::Base ).darker( 110 ) );
	painter.drawRoundedRect( frame, 4, 4 );
	if ( !pAsset )
		return image;
	QFont font = painter.font();
	font.setPixelSize( qMax( 8, size.height() / 5 ) );
	font.setBold( true );
	painter.setFont( font );
	painter.setPen( palette.color( QPalette::Text ) );
	painter.drawText( frame.adjusted( 2, 2, -2, -size.height() / 2.0 ), Qt::AlignCenter, QString::fromUtf8( ResourceTypeName( pAsset->GetType() ).Get() ) );
	font.setBold( false );
	font.setPixelSize( qMax( 7, size.height() / 7 ) );
	painter.setFont( font );
	const QString name = QFileInfo( QString::fromUtf8( pAsset->GetResourceName() ) ).completeBaseName();
	painter.drawText( frame.adjusted( 2, size.height() / 2.0, -2, -2 ), Qt::AlignCenter,
		painter.fontMetrics().elidedText( name, Qt::ElideRight, size.width() - 4 ) );
	return image;
}
} // namespace

void CQAssetThumbnail::RegisterPainter( ResourceType_t nType, Painter_t fnPainter )
{
	if ( fnPainter )
		Painters()[ nType ] = std::move( fnPainter );
	else
		Painters().erase( nType );
	for ( CQAssetThumbnail *pThumbnail : LiveThumbnails() )
		pThumbnail->Invalidate();
}

void CQAssetThumbnail::NotifyAssetChanged( IAsset *pAsset )
{
	for ( CQAssetThumbnail *pThumbnail : LiveThumbnails() )
	{
		if ( pThumbnail->m_pAsset == pAsset )
			pThumbnail->Invalidate();
	}
}

CQAssetThumbnail::CQAssetThumbnail( int nSize, QWidget *pParent ) : QWidget( pParent )
{
	setFixedSize( nSize, nSize );
	LiveThumbnails().push_back( this );
}

CQAssetThumbnail::~CQAssetThumbnail()
{
	std::vector<CQAssetThumbnail *> &live = LiveThumbnails();
	live.erase( std::remove( live.begin(), live.end(), this ), live.end() );
}

void CQAssetThumbnail::SetAsset( IAsset *pAsset )
{
	if ( pAsset == m_pAsset )
		return;
	m_pAsset = pAsset;
	setToolTip( pAsset ? QString::fromUtf8( pAsset->GetResourceName() ) : QString() );
	Invalidate();
}

void CQAssetThumbnail::Invalidate()
{
	m_bImageValid = false;
	update();
}

QImage CQAssetThumbnail::GetImage()
{
	const uint32_t nStamp = m_pAsset ? m_pAsset->GetCompileStamp() : 0;
	if ( m_bImageValid && nStamp == m_nImageStamp )
		return m_Image;
	m_Image = QImage();
	if ( m_pAsset )
	{
		auto it = Painters().find( m_pAsset->GetType() );
		if ( it != Painters().end() )
			m_Image = it->second( m_pAsset, size() );
	}
	if ( m_Image.isNull() )
		m_Image = PaintPlaceholder( m_pAsset, size(), palette() );
	m_nImageStamp = nStamp;
	m_bImageValid = true;
	return m_Image;
}

void CQAssetThumbnail::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	painter.drawImage( rect(), GetImage() );
}
