#pragma once
// What changed between two definitions, in the artist's terms: functions, children,
// variables and configurations added, removed, moved, switched on or off, fields changed
// with their old and new values, and the system's own properties.

#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"

struct ZolDefinitionTree_t;

enum ZolDiffKind_t : int
{
	ZOL_DIFF_ADDED,
	ZOL_DIFF_REMOVED,
	ZOL_DIFF_MOVED,
	ZOL_DIFF_ENABLED,
	ZOL_DIFF_DISABLED,
	ZOL_DIFF_CHANGED,
};

// A changed field: its member path ("m_DefaultConfig.m_ConfigValue"), its label ("Default
// Config/Value"), and both values as text and as stored (null when absent).
struct ZolFieldChange_t
{
	CUtlString m_Field;
	CUtlString m_Label;
	CUtlString m_OldText;
	CUtlString m_NewText;
	KeyValues3 m_OldValue;
	KeyValues3 m_NewValue;
};

// One change; the field members tell a changed field. An added or removed element carries
// its table as the new or old value.
struct ZolDiffChange_t : ZolFieldChange_t
{
	ZolDiffKind_t m_eKind = ZOL_DIFF_CHANGED;
	// A list type, ZOL_SECTION_CONFIGURATIONS or ZOL_SECTION_BASE_PROPERTIES.
	int m_nSection = 0;
	// The element's name and class; empty for base properties.
	CUtlString m_Element;
	CUtlString m_Class;
	// Positions from 0 in the old and the new definition; -1 where the element has none.
	int m_nOldIndex = -1;
	int m_nNewIndex = -1;
};

// Base properties first, then the sections in list order: in each, removed elements, then
// the new definition's elements in order with what happened to each.
void DiffDefinitionTrees( const ZolDefinitionTree_t &a, const ZolDefinitionTree_t &b, std::vector<ZolDiffChange_t> *pChanges );

// "Emitters #1 Continuous Emitter: Rate: 40 -> Random 30 - 50", "Operators #2 Radius Scale:
// moved from #5", "Base Properties: Max Particles: 200 -> 150".
void FormatDiffChange( const ZolDiffChange_t &change, CUtlString *pOut );
const char *GetDiffKindWord( ZolDiffKind_t eKind );

// Each changed field between two element tables, records taken apart: how an element's
// edits read.
void DiffElementFields( int nSection, const char *pClass, const KeyValues3 &a, const KeyValues3 &b, const char *pDomainA, const char *pDomainB,
						std::vector<ZolFieldChange_t> *pChanges );

// The version two files compare at: their own when they share one, so that an edit to a
// field a later version drops still shows; else the running one, so that an upgrade by
// itself shows only as the version.
int GetDefinitionComparisonVersion( int nVersionA, int nVersionB );

// Loads both files as the editor does, keeping unknown functions, brings them to their
// comparison version in memory and diffs them. False, with the reason, when either
// doesn't load or their root classes differ.
bool DiffDefinitionFiles( const char *pPathA, const char *pPathB, std::vector<ZolDiffChange_t> *pChanges, CUtlString *pError );
