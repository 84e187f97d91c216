#pragma once
// What a drop of assets onto the children of a particle system offers: the particle
// systems named by the dragged text. Other kinds of assets (models, images) are left out;
// a drag that names no particle system offers nothing.

#include "core/containers/utlvector.h"

class IAsset;
class QMimeData;
class QWidget;

bool GetDroppedParticleSystems( const QMimeData *pData, CUtlVector<IAsset *> *pAssets );

// The green of a widget under a drag it would take.
void ShowAssetDropHighlight( QWidget *pWidget, bool bShow );
