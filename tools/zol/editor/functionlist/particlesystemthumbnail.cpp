#include "tools/zol/editor/functionlist/particlesystemthumbnail.h"

#include <QPainter>
#include <QRadialGradient>
#include <algorithm>
#include <vector>

#include "core/host/iasset.h"
#include "core/host/resourcebinding.h"
#include "core/particles/sim/iparticlecollection.h"
#include "tools/widgets/assetthumbnail.h"
#include "tools/zol/editor/particleassetcompiler.h"

namespace
{
constexpr float STEP_SECONDS = 1.0f / 30.0f;
constexpr float MAX_SECONDS = 2.0f;

struct Dot_t
{
	float m_flX;
	float m_flY;
	float m_flRadius;
	QColor m_Color;
};

// Side view: x to the right, z up.
void CollectDots( const IParticleCollection *pCollection, std::vector<Dot_t> *pDots )
{
	for ( int nRenderer = 0; nRenderer < pCollection->GetRendererCount(); ++nRenderer )
	{
		ParticleDrawData_t data;
		if ( !pCollection->GetDrawData( nRenderer, &data ) || !data.m_pPosition[ 0 ] || !data.m_pPosition[ 2 ] )
			continue;
		for ( int i = 0; i < data.m_nCount; ++i )
		{
			const float flRadius = data.m_pRadius ? std::max( data.m_pRadius[ i ], 0.0f ) : 1.0f;
			float flColor[ 3 ] = { 1.0f, 1.0f, 1.0f };
			for ( int c = 0; c < 3; ++c )
			{
				if ( data.m_pColor[ c ] )
					flColor[ c ] = std::clamp( data.m_pColor[ c ][ i ], 0.0f, 1.0f );
			}
			const float flAlpha = std::clamp( ( data.m_pAlpha ? data.m_pAlpha[ i ] : 1.0f ) * data.m_flAlphaScale, 0.0f, 1.0f );
			pDots->push_back( { data.m_pPosition[ 0 ][ i ], data.m_pPosition[ 2 ][ i ], flRadius, QColor::fromRgbF( flColor[ 0 ], flColor[ 1 ], flColor[ 2 ], flAlpha ) } );
		}
	}
	for ( const IParticleCollection *pChild = pCollection->GetFirstChild(); pChild; pChild = pChild->GetNextSibling() )
		CollectDots( pChild, pDots );
}
} // namespace

QImage PaintParticleSystemThumbnail( IAsset *pAsset, const QSize &size )
{
	if ( !pAsset )
		return QImage();
	if ( !pAsset->IsResident() )
		pAsset->Load();
	CResourceBinding *pBinding = pAsset->GetResource();
	std::shared_ptr<const CParticleSystemResourceData> pData = pBinding ? pBinding->GetDataAs<CParticleSystemResourceData>() : nullptr;
	if ( !pData || !pData->GetDefinition() )
		return QImage();

	// The same seed each time: a thumbnail doesn't flicker between refreshes. The picture
	// is the last moment that still has most of the particles of the fullest moment so
	// far, so that a burst shows spread out rather than as one point at its start.
	std::unique_ptr<IParticleCollection> pCollection = CreateParticleCollection( pData->GetDefinition(), 1 );
	pCollection->SetControlPoint( 0, Vector( 0, 0, 0 ) );
	std::vector<Dot_t> dots;
	int nPeak = 0;
	for ( float flTime = 0.0f; flTime < MAX_SECONDS; flTime += STEP_SECONDS )
	{
		pCollection->Simulate( STEP_SECONDS );
		const int nCount = pCollection->GetActiveParticleCount( true );
		nPeak = std::max( nPeak, nCount );
		if ( nCount > 0 && nCount * 10 >= nPeak * 7 )
		{
			dots.clear();
			CollectDots( pCollection.get(), &dots );
		}
	}

	QImage image( size, QImage::Format_ARGB32_Premultiplied );
	image.fill( Qt::transparent );
	QPainter painter( &image );
	painter.setRenderHint( QPainter::Antialiasing );
	painter.setPen( QColor( 70, 74, 80 ) );
	painter.setBrush( QColor( 24, 25, 28 ) );
	painter.drawRoundedRect( QRectF( 0.5, 0.5, size.width() - 1.0, size.height() - 1.0 ), 4, 4 );
	if ( dots.empty() )
		return image;

	// Fit what is there into the frame, the same scale both ways.
	float flMinX = dots[ 0 ].m_flX, flMaxX = flMinX, flMinY = dots[ 0 ].m_flY, flMaxY = flMinY;
	for ( const Dot_t &dot : dots )
	{
		flMinX = std::min( flMinX, dot.m_flX - dot.m_flRadius );
		flMaxX = std::max( flMaxX, dot.m_flX + dot.m_flRadius );
		flMinY = std::min( flMinY, dot.m_flY - dot.m_flRadius );
		flMaxY = std::max( flMaxY, dot.m_flY + dot.m_flRadius );
	}
	const float flMargin = 4.0f;
	const float flExtent = std::max( { flMaxX - flMinX, flMaxY - flMinY, 1.0f } );
	const float flScale = ( std::min( size.width(), size.height() ) - 2.0f * flMargin ) / flExtent;
	const float flCenterX = ( flMinX + flMaxX ) * 0.5f;
	const float flCenterY = ( flMinY + flMaxY ) * 0.5f;

	painter.setClipRect( QRect( 1, 1, size.width() - 2, size.height() - 2 ) );
	painter.setCompositionMode( QPainter::CompositionMode_Plus );
	painter.setPen( Qt::NoPen );
	for ( const Dot_t &dot : dots )
	{
		const QPointF center( size.width() * 0.5 + ( dot.m_flX - flCenterX ) * flScale, size.height() * 0.5 - ( dot.m_flY - flCenterY ) * flScale );
		const qreal flRadius = std::max( 1.2, double( dot.m_flRadius * flScale ) );
		QRadialGradient glow( center, flRadius );
		QColor inner = dot.m_Color;
		inner.setAlphaF( dot.m_Color.alphaF() * 0.8 );
		QColor outer = dot.m_Color;
		outer.setAlphaF( 0.0 );
		glow.setColorAt( 0.0, inner );
		glow.setColorAt( 1.0, outer );
		painter.setBrush( glow );
		painter.drawEllipse( center, flRadius, flRadius );
	}
	return image;
}

void RegisterParticleSystemThumbnails()
{
	CQAssetThumbnail::RegisterPainter( RESOURCE_TYPE_PARTICLE_SYSTEM, &PaintParticleSystemThumbnail );
}
