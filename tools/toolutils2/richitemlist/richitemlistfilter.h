#pragma once
// The filter of a list of choices that a user picks from by typing: which choices a filter
// text keeps, where its words hit, and which choice fits best. No widgets here: the picker
// dialog shows what this decides, and tests and batch code ask it directly.
//
// A filter is split into words at blanks. A choice stays when all words hit one and the
// same field: its name, its second text, or its description (for a choice with a help key
// the help service's text of that key). A word can't rescue the others in another field.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

struct RichItemListEntry_t
{
	CUtlString m_Name;
	CUtlString m_SecondText;
	// Searched when the choice has no help key.
	CUtlString m_Description;
	CUtlString m_HelpKey;
	// -1 for none; groups are shown in the order of their numbers.
	int m_nGroup = -1;
};

// Bytes of a field where a word was found.
struct RichItemListTextHit_t
{
	int m_nStart = 0;
	int m_nLength = 0;
};

enum RichItemListRank_t
{
	RICH_ITEM_RANK_NAME_PREFIX = 0, // the name starts with the whole filter
	RICH_ITEM_RANK_NAME = 1,        // every word is in the name
	RICH_ITEM_RANK_SECOND_TEXT = 2, // every word is in the second text
	RICH_ITEM_RANK_DESCRIPTION = 3, // every word is in the description only
	RICH_ITEM_RANK_HIDDEN = 4,
};

struct RichItemListMatch_t
{
	bool m_bVisible = true;
	bool m_bNameHit = false;
	bool m_bSecondTextHit = false;
	bool m_bDescriptionHit = false;
	RichItemListRank_t m_eRank = RICH_ITEM_RANK_NAME;
	// Hits to highlight: merged, in order. Only a field that all words hit has any.
	CUtlVector<RichItemListTextHit_t> m_NameHits;
	CUtlVector<RichItemListTextHit_t> m_SecondTextHits;

	// Shown only because its description matched: the list marks it.
	bool ShowsDescriptionMarker() const { return m_bVisible && m_bDescriptionHit && !m_bNameHit && !m_bSecondTextHit; }
};

class CRichItemListFilter
{
public:
	// The help scope that help keys are looked up in.
	void SetScope( const char *pScope ) { m_Scope.Set( pScope ); }
	const char *GetScope() const { return m_Scope.Get(); }

	// Applies the filter to every entry; an empty filter keeps them all, unmarked.
	void Apply( const char *pFilter, const CUtlVector<RichItemListEntry_t> &entries, CUtlVector<RichItemListMatch_t> *pMatches ) const;

	// The entries in the order they are shown: by group (none first), within a group best
	// rank first and otherwise as they were added. Hidden entries come too, last in their group.
	static void GetDisplayOrder( const CUtlVector<RichItemListEntry_t> &entries, const CUtlVector<RichItemListMatch_t> &matches, CUtlVector<int> *pOrder );
	// Whether any entry of the group is visible.
	static bool IsGroupVisible( int nGroup, const CUtlVector<RichItemListEntry_t> &entries, const CUtlVector<RichItemListMatch_t> &matches );
	// The entry to make current, in display order: the first whose name starts with the
	// trimmed filter, else the first with a name hit; -1 when none (or the filter is empty).
	static int FindBestMatch( const char *pFilter, const CUtlVector<int> &order, const CUtlVector<RichItemListEntry_t> &entries,
		const CUtlVector<RichItemListMatch_t> &matches );

	// The filter's words: split at blanks, empty parts dropped.
	static void SplitWords( const char *pFilter, CUtlVector<CUtlString> *pWords );

private:
	bool DescriptionContains( const RichItemListEntry_t &entry, const char *pWord ) const;

	CUtlString m_Scope;
};
