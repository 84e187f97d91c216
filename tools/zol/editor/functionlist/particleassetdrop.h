#pragma once
// What a drop of assets onto the children of a particle system offers: the particle
// systems named by the dragged text. Other kinds of assets (models, images) are left out;
// a drag that names no particle system offers nothing.

#include "core/containers/utlvector.h"

class IAsset;
class QDragEnterEvent;
class QDragLeaveEvent;
class QDropEvent;
class QMimeData;
class QWidget;

bool GetDroppedParticleSystems( const QMimeData *pData, CUtlVector<IAsset *> *pAssets );

// A drag entering a widget that takes particle systems (when bCanTake): accepted, and the
// widget turns green, when the drag carries at least one.
void EnterParticleSystemDrag( QWidget *pWidget, QDragEnterEvent *pEvent, bool bCanTake );
void LeaveParticleSystemDrag( QWidget *pWidget, QDragLeaveEvent *pEvent );
// The particle systems of a drop; false, with the event ignored, when it has none.
bool TakeParticleSystemDrop( QWidget *pWidget, QDropEvent *pEvent, bool bCanTake, CUtlVector<IAsset *> *pAssets );
