#pragma once
// Bringing definitions up to the running behaviour version: one document, or a document
// and every enabled child below it. A child that an editor has open is upgraded in memory
// (its user saves it); a closed one is written at once, and only when its text changes.
// Each file is walked once however often the tree names it, so cycles end; a child that
// can't be resolved or read is passed over with a line in the report. A definition newer
// than the running version is refused: an upgrade never brings a file down.

#include <functional>
#include <unordered_set>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

class CZolDoc;
class CZolFileReport;
class IAsset;
class IZolDocumentProvider;

class CZolVersionUpgrade
{
public:
	CZolVersionUpgrade( IZolDocumentProvider *pDocuments, CZolFileReport *pReport );

	// Nothing is changed or written; the report says what would be.
	void SetDryRun( bool bDryRun ) { m_bDryRun = bDryRun; }
	bool IsDryRun() const { return m_bDryRun; }
	// Runs before a closed file is written (the editor opens it for edit in version control).
	void SetBeforeWrite( std::function<void( IAsset * )> fn ) { m_fnBeforeWrite = std::move( fn ); }

	// The lowest behaviour version of the document and of every enabled child below it,
	// each file once; open children count with their unsaved state. Children that can't be
	// resolved or read are passed over. The document's own asset may be null.
	int GetLowestVersion( const CZolDoc &doc, IAsset *pAsset );

	// An open document, in memory: one undo unit when it changes. False when it was at the
	// current version already, or is newer (an error line); a dry run works on a copy.
	bool UpgradeOpenDocument( CZolDoc *pDoc, IAsset *pAsset );
	// Every enabled child below the document, each file once (the document's own asset
	// counts as walked).
	void UpgradeChildren( const CZolDoc &doc, IAsset *pAsset );
	// One asset (its open document if an editor has it, else its file), and with
	// bRecursive every enabled child below it.
	void UpgradeAsset( IAsset *pAsset, bool bRecursive );

	// Files that changed (or would change, in a dry run): written, or upgraded in memory.
	int GetChangedCount() const { return m_nChanged; }
	int GetWrittenCount() const { return m_nWritten; }
	// Forgets which files were walked, for a new walk with the same report.
	void ResetWalk() { m_Walked.clear(); }

private:
	int LowestVersionBelow( const CZolDoc &doc, int nLowest );
	void UpgradeClosedFile( IAsset *pAsset, bool bRecursive );
	// Tells the report what the version change did to the file.
	void ReportUpgrade( const char *pFile, int nFrom, int nTo, const CUtlVector<CUtlString> &changes, const char *pHow );
	// False, with an error line, for a definition newer than the running version.
	bool CheckNotNewer( const char *pFile, int nVersion );

	IZolDocumentProvider *m_pDocuments;
	CZolFileReport *m_pReport;
	std::function<void( IAsset * )> m_fnBeforeWrite;
	std::unordered_set<IAsset *> m_Walked;
	bool m_bDryRun = false;
	int m_nChanged = 0;
	int m_nWritten = 0;
};
