#pragma once
// Who writes and who reads each control point and variable across trees of particle
// systems: the model behind the reference navigator, and behind "zol refs".
//
// For each system asked about, the tree of its top-level system (found through the first
// parent of the same type) is built, every system of it one row in depth-first order under
// a top row that stands for the game ("Outside World"). Systems that the game's modifier
// table can put in a tree's place are followed too, for three rounds at most. Each row has
// a cell per key ("CP3", or a variable's name) that says whether the system reads or writes
// it; the glyph passes then work out, per key, the line of the swimlane chart from the first
// user (the game, or the first writer) down to the last.
//
// Each system is read once per refresh: the open document of an editor when there is one,
// with its unsaved edits, else its file. A child reference that names no system, a file
// that doesn't load and a system that is its own ancestor give no row and a line in the
// report instead.

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "zoldoc_lib/zolfilereport.h"

class CZolDoc;
class CZolModifierTable;
class IAsset;
class IZolDocumentProvider;

// The glyphs of a cell, as the chart draws them.
enum ZolReferenceGlyph_t : int
{
	ZOL_GLYPH_NONE = 0,
	ZOL_GLYPH_OUTSIDE_WORLD = 1, // the top row: the value comes from the game
	ZOL_GLYPH_LINE = 2,          // the line passes this row
	ZOL_GLYPH_READ = 3,
	ZOL_GLYPH_WRITE = 4,
	ZOL_GLYPH_READ_WRITE = 5,
	ZOL_GLYPH_WRITE_SPECIAL = 6,
};

struct ZolReferenceCell_t
{
	// The access flags of every use of the key by the row's system, or-ed.
	bool m_bRead = false;
	bool m_bWritten = false;
	bool m_bWrittenSpecial = false;
	int m_nDepth = 0;    // writers above the row's children
	int m_nLastRow = -1; // the last user of the key up to the end of the row's subtree
	int m_nGlyph = ZOL_GLYPH_NONE;
	bool m_bLineStart = false;
	bool m_bLineEnd = false;
};

struct ZolReferenceRow_t
{
	IAsset *m_pAsset = nullptr; // null for the top row
	CUtlString m_Name;          // the system's name, or the top row's text
	bool m_bOpen = false;       // an editor has the system open
	bool m_bViaModifier = false;
	bool m_bEnabled = true;     // every child reference down to this row is switched on
	int m_nRow = 0;             // the row's number and index in its tree: depth-first, the top row 0
	int m_nParent = -1;
	int m_nLevel = 0;           // nesting below the top row
	std::vector<int> m_Children;
	std::unordered_map<std::string, ZolReferenceCell_t> m_Cells;
	// The other rows of the same system in all trees, as (tree, row).
	std::vector<std::pair<int, int>> m_Twins;

	const ZolReferenceCell_t *FindCell( const char *pKey ) const;
};

struct ZolReferenceTree_t
{
	bool m_bViaModifier = false;
	std::vector<ZolReferenceRow_t> m_Rows;
};

class CZolReferenceNavigator
{
public:
	static constexpr const char *TOP_ROW_TEXT = "Outside World";
	static constexpr const char *VIA_MODIFIER_SUFFIX = " (via Modifier)";
	// The modifier walk stops before this round.
	static constexpr int MODIFIER_ROUND_LIMIT = 4;

	explicit CZolReferenceNavigator( IZolDocumentProvider *pDocuments );
	~CZolReferenceNavigator();

	// Followed by the modifier walk; null (the start) follows none. Not owned.
	void SetModifierTable( const CZolModifierTable *pTable ) { m_pModifiers = pTable; }

	// Builds everything anew for the trees of these systems.
	void Refresh( const CUtlVector<IAsset *> &systems );

	const std::vector<ZolReferenceTree_t> &GetTrees() const { return m_Trees; }
	// The key columns: control points in rising order, then variables sorted ignoring case.
	const std::vector<CUtlString> &GetKeys() const { return m_Keys; }
	const std::vector<int> &GetControlPoints() const { return m_ControlPoints; }
	const std::vector<CUtlString> &GetVariables() const { return m_Variables; }
	// Missing children, cycles and files that don't load, from the last refresh.
	const CZolFileReport &GetReport() const { return m_Report; }
	// Files read from disk by the last refresh.
	int GetDiskReadCount() const { return m_nDiskReads; }

	// The top-level system above an asset: up through the first parent of the same type
	// until one has none (a loop of parents ends where it comes round, so a system in a
	// loop is its own top).
	IAsset *FindRoot( IAsset *pAsset );

	// "CP3" for a control point.
	static CUtlString ControlPointKey( int nControlPoint );

private:
	void BuildParentIndex();
	void FollowModifiers( std::vector<IAsset *> &roots, std::vector<IAsset *> &viaModifier );
	void BuildTree( IAsset *pRoot, bool bViaModifier );
	void BuildRow( ZolReferenceTree_t &tree, int nParent, IAsset *pAsset, bool bViaModifier, bool bEnabled, std::vector<IAsset *> &path );
	const CZolDoc *GetDocument( IAsset *pAsset );
	void GatherUsage( const CZolDoc &doc, ZolReferenceRow_t &row );
	void RunGlyphPasses( ZolReferenceTree_t &tree );
	void LinkTwins();
	void SortKeys();

	IZolDocumentProvider *m_pDocuments;
	const CZolModifierTable *m_pModifiers = nullptr;
	std::vector<ZolReferenceTree_t> m_Trees;
	std::vector<CUtlString> m_Keys;
	std::vector<int> m_ControlPoints;
	std::vector<CUtlString> m_Variables;
	CZolFileReport m_Report;
	int m_nDiskReads = 0;

	// The gather's state, for one refresh.
	std::unordered_map<IAsset *, IAsset *> m_FirstParent;
	std::unordered_map<IAsset *, std::unique_ptr<CZolDoc>> m_Loaded;
	std::unordered_map<IAsset *, bool> m_LoadFailed;
	std::unordered_map<std::string, CUtlString> m_VariableSpelling; // lower-cased name -> the name as first met
	std::unordered_map<IAsset *, std::vector<std::pair<int, int>>> m_RowsOfAsset;
};
