#pragma once
// A small picture of an asset, as asset lists and rows show them. What an asset looks
// like is told by a painter registered for its type (a particle editor registers one that
// runs the system for a moment); without one the thumbnail shows the type and the name.
// Pictures are kept per asset and compile stamp, so a changed asset is drawn anew.

#include <QImage>
#include <QWidget>
#include <functional>

#include "core/host/resourcetype.h"

class IAsset;

class CQAssetThumbnail : public QWidget
{
	Q_OBJECT

public:
	// Draws the asset into an image of the size; a null image when it can't.
	using Painter_t = std::function<QImage( IAsset *pAsset, const QSize &size )>;
	static void RegisterPainter( ResourceType_t nType, Painter_t fnPainter );
	// The asset changed (it compiled): every thumbnail of it draws again.
	static void NotifyAssetChanged( IAsset *pAsset );

	explicit CQAssetThumbnail( int nSize, QWidget *pParent = nullptr );
	~CQAssetThumbnail() override;

	void SetAsset( IAsset *pAsset );
	IAsset *GetAsset() const { return m_pAsset; }
	// The picture as it is drawn now; for tests.
	QImage GetImage();

protected:
	void paintEvent( QPaintEvent *pEvent ) override;

private:
	void Invalidate();

	IAsset *m_pAsset = nullptr;
	QImage m_Image;
	uint32_t m_nImageStamp = 0;
	bool m_bImageValid = false;
};
