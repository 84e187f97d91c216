#pragma once
// How the asset maintenance walks (the version upgrade, the reference navigator, the
// conversion of a control point to a variable) reach documents. In the editor the open
// sessions answer, so unsaved edits count and changes land in the documents the user
// sees; a batch run keeps documents of its own and writes them when it is done.

#include "core/text/utlstring.h"

class CZolDoc;
class IAsset;

class IZolDocumentProvider
{
public:
	// The document of an editor that has the asset open, unsaved edits included; null when
	// none has.
	virtual CZolDoc *FindOpenDocument( IAsset *pAsset ) = 0;
	// Opens the asset for editing and answers its document; null, with the reason, when it
	// can't. Opening an asset twice answers the same document.
	virtual CZolDoc *OpenDocument( IAsset *pAsset, CUtlString *pError ) = 0;
	// How reports name the asset's file.
	virtual CUtlString GetDisplayName( IAsset *pAsset ) = 0;

protected:
	~IZolDocumentProvider() = default;
};
