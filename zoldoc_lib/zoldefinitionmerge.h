#pragma once
// Three-way merge of definitions on their document trees. Changes that don't overlap
// combine: a function added on each side, one field changed on one side and another on
// the other, a reorder on one side and an edit on the other. A true conflict (one field
// changed to two values, an element removed on one side and edited on the other, two
// lists reordered differently) keeps ours and is reported with both values.

#include <vector>

#include "core/text/utlstring.h"

class CZolDoc;
struct ZolDefinitionTree_t;

enum ZolMergeConflictKind_t : int
{
	// One field changed to different values on the two sides.
	ZOL_CONFLICT_FIELD,
	// Removed on one side, edited on the other.
	ZOL_CONFLICT_REMOVED_BY_OURS,
	ZOL_CONFLICT_REMOVED_BY_THEIRS,
	// A child, variable or configuration of one key added on both sides, differently.
	ZOL_CONFLICT_ADDED_BOTH,
	// The same list reordered differently on both sides.
	ZOL_CONFLICT_ORDER,
};

struct ZolMergeConflict_t
{
	ZolMergeConflictKind_t m_eKind = ZOL_CONFLICT_FIELD;
	// A list type, ZOL_SECTION_CONFIGURATIONS or ZOL_SECTION_BASE_PROPERTIES.
	int m_nSection = 0;
	CUtlString m_Element;
	CUtlString m_Class;
	// The element's position from 0, in ours where it stands there, else in the base; -1
	// for base properties and orders.
	int m_nIndex = -1;
	// A field conflict: member path, label, the three values as text. A removal against an
	// edit: the edits of the side that kept the element, as "Label: old -> new; ...". Two
	// additions: how ours and theirs differ.
	CUtlString m_Field;
	CUtlString m_Label;
	CUtlString m_BaseText;
	CUtlString m_OursText;
	CUtlString m_TheirsText;
};

// The version to merge at: the side that changed it wins; ours when both did, differently.
int MergeBehaviorVersions( int nBase, int nOurs, int nTheirs );

// The trees must stand at one behaviour version (see BringDefinitionToVersion); their file
// versions decide the merged one, and a version changed on both sides is a conflict.
void MergeDefinitionTrees( const ZolDefinitionTree_t &base, const ZolDefinitionTree_t &ours, const ZolDefinitionTree_t &theirs,
						   ZolDefinitionTree_t *pMerged, std::vector<ZolMergeConflict_t> *pConflicts );

// "Operators #4 Alpha Fade Out Simple: Fade Out Time: ours 0.4, theirs 0.7 (was 0.5); kept ours".
void FormatMergeConflict( const ZolMergeConflict_t &conflict, CUtlString *pOut );

// Loads the three files as the editor does (unknown functions kept), brings them in memory
// to the merged behaviour version, merges them and loads the result into pMerged, ready to
// be saved as the editor saves. False, with the reason, when a file doesn't load or the
// root classes differ; conflicts don't make it fail.
bool MergeDefinitionFiles( const char *pBasePath, const char *pOursPath, const char *pTheirsPath, CZolDoc *pMerged,
						   std::vector<ZolMergeConflict_t> *pConflicts, CUtlString *pError );
