#pragma once
// The variables of a particle system's family: the system itself, every system above it
// (parents, grandparents, ...) and every system below it. Open documents are read from
// memory, so unsaved variables count; closed files are read from disk, and again only
// when their file stamp changed.

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CZolDoc;
class IAsset;

// What a family member declares.
struct ZolVariableInfo_t
{
	CUtlString m_Name;
	bool m_bIsPublic = false;
	CPulseValueFullType m_Type;
};

struct ZolAssetNamedValues_t
{
	CUtlString m_AssetName;
	int64_t m_nAssetStamp = -1;  // the file stamp at the last read from disk
	bool m_bIsCurrentFile = false;
	int m_nParentDepth = 0;      // steps up from the session's asset; 0 when the upward walk didn't come here
	int m_nChildDepth = 0;       // steps down; 0 when the downward walk didn't come here
	CUtlVector<ZolVariableInfo_t> m_Variables;
};

// One variable of one family member, as queries answer.
struct ZolNamedValueRecord_t
{
	CUtlString m_Name;
	CPulseValueFullType m_Type;
	bool m_bIsPublic = false;
	CUtlString m_FileName;
	bool m_bThisFile = false;
	int m_nParentDepth = 0;
	int m_nChildDepth = 0;
};

// Where the family is read from: the session's asset and document, and the documents of
// the application's other open sessions.
class IZolDocumentSource
{
public:
	virtual ~IZolDocumentSource() = default;
	// Null for a system without an asset (it then has no family).
	virtual IAsset *GetSourceAsset() const = 0;
	virtual const CZolDoc *GetSourceDocument() const = 0;
	// The document of an open session of the asset; null when none is open.
	virtual const CZolDoc *FindOpenDocument( IAsset *pAsset ) const = 0;
};

// The entry's variables become those of the document's list 8 that have a valid type.
void ExtractNamedValueInfo( const CZolDoc &doc, ZolAssetNamedValues_t *pEntry );

class CZolNamedValueCache
{
public:
	// A family walk goes no deeper than this, whatever loops the files on disk hold.
	static constexpr int MAX_FAMILY_DEPTH = 32;

	explicit CZolNamedValueCache( IZolDocumentSource *pSource = nullptr ) : m_pSource( pSource ) {}

	// A new session starts with an empty cache.
	void SetSource( IZolDocumentSource *pSource );
	IZolDocumentSource *GetSource() const { return m_pSource; }
	// Forgets the family; what was read from disk is kept by stamp.
	void Clear();
	bool IsEmpty() const { return m_Order.empty(); }

	// Finds the family anew: the session's asset, then up through parents and down through
	// children of the same asset type.
	void EnumerateDependencies();
	// Every variable of the family; enumerates first when the cache is empty.
	void GetAllNamedValueInfo( CUtlVector<ZolNamedValueRecord_t> *pRecords );
	// The family's assets, the session's first.
	void GetDependencyAssets( CUtlVector<IAsset *> *pAssets );
	const ZolAssetNamedValues_t *Find( IAsset *pAsset ) const;
	// How many family files were read from disk since the cache was made.
	int GetDiskReadCount() const { return m_nDiskReads; }

private:
	ZolAssetNamedValues_t &AddEntry( IAsset *pAsset );
	void Walk( IAsset *pFrom, int nDepth, bool bUp, std::vector<IAsset *> *pPath );
	void ReadEntry( IAsset *pAsset, ZolAssetNamedValues_t *pEntry );

	IZolDocumentSource *m_pSource;
	std::unordered_map<IAsset *, ZolAssetNamedValues_t> m_Entries;
	std::vector<IAsset *> m_Order;
	// Closed files as last read from disk, by asset: kept across Clear.
	std::unordered_map<IAsset *, ZolAssetNamedValues_t> m_DiskReads;
	int m_nDiskReads = 0;
};
