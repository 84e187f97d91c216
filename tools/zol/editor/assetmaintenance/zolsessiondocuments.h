#pragma once
// The editor's answer to the asset maintenance walks: the documents of its open sessions,
// unsaved edits included, and a session opened for an asset when a walk must change it
// (as Apply of a conversion does).

#include "zoldoc_lib/izoldocumentprovider.h"

class CZolSession;

class CZolSessionDocuments final : public IZolDocumentProvider
{
public:
	CZolDoc *FindOpenDocument( IAsset *pAsset ) override;
	// Opens the asset in an editor session when none has it.
	CZolDoc *OpenDocument( IAsset *pAsset, CUtlString *pError ) override;
	CUtlString GetDisplayName( IAsset *pAsset ) override;

	// The session of an asset, opening one when bOpen; null when there is none.
	static CZolSession *FindSession( IAsset *pAsset, bool bOpen );
};
