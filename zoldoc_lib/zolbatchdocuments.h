#pragma once
// The documents of a batch run (the command line, tests): each asset's file is read on
// first use and the document kept, so every step of a run sees the others' changes;
// WriteChanged then writes back those whose text changed, through the safe write layer.

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

#include "zoldoc_lib/izoldocumentprovider.h"

class CUtlBuffer;
class CZolFileReport;

// Loads a definition that is to be written back: functions of classes this build doesn't
// know are kept as written, and a file that only loads leniently (parts dropped or read
// in another form) is refused with the loader's words, since writing it would lose them.
bool LoadDocumentForRewrite( const char *pPath, CZolDoc *pDoc, CUtlString *pError );

// Writes a definition's text over its file through the safe write layer, or with
// bCheckOnly only tells whether the write would be refused. The reason of a refusal
// leaves out the path, which the report names already.
bool WriteDefinitionText( const char *pAbsolutePath, const CUtlBuffer &text, bool bCheckOnly, CUtlString *pReason );
// Whether the file holds exactly these bytes.
bool DefinitionFileHolds( const char *pAbsolutePath, const CUtlBuffer &text );

class CZolBatchDocuments final : public IZolDocumentProvider
{
public:
	using DisplayNameFn_t = std::function<CUtlString( IAsset * )>;

	CZolBatchDocuments();
	~CZolBatchDocuments();

	// How reports name files; the asset's resource name until one is set.
	void SetDisplayNameFn( DisplayNameFn_t fn ) { m_fnDisplayName = std::move( fn ); }

	// IZolDocumentProvider: the documents opened so far count as open.
	CZolDoc *FindOpenDocument( IAsset *pAsset ) override;
	CZolDoc *OpenDocument( IAsset *pAsset, CUtlString *pError ) override;
	CUtlString GetDisplayName( IAsset *pAsset ) override;

	// Writes each opened document whose saved text differs from its file, in the order
	// they were opened; each write and each failure is a line of the report. Answers the
	// number of files written.
	int WriteChanged( CZolFileReport *pReport );

private:
	struct Entry_t
	{
		IAsset *m_pAsset;
		std::unique_ptr<CZolDoc> m_pDoc;
	};
	std::vector<Entry_t> m_Documents;
	DisplayNameFn_t m_fnDisplayName;
};
