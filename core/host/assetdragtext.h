#pragma once
// Assets named by text, as a drag from an asset list or the clipboard carries them: one
// name per line, each a resource name, a content path, an absolute path or a file URL.

#include "core/containers/utlvector.h"

class IAsset;
class IAssetSystem;

// Appends the assets that the lines name, each once, in line order; lines that name no
// asset are skipped. Answers the count added.
int DecodeAssetsFromText( IAssetSystem *pAssetSystem, const char *pText, CUtlVector<IAsset *> *pAssets );
