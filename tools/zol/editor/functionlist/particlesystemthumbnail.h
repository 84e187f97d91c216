#pragma once
// The thumbnail of a particle system asset: its compiled form runs headless for a moment
// and its particles are drawn from the side, additively, as small glows.

#include <QImage>

class IAsset;

// Runs the asset's system and draws it; a null image when it has no compiled form.
QImage PaintParticleSystemThumbnail( IAsset *pAsset, const QSize &size );

// Makes asset thumbnails of particle systems use the picture above.
void RegisterParticleSystemThumbnails();
