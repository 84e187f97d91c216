#include "tools/toolutils2/richitemlist/richitemlistfilter.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "core/host/ihelpsystem.h"
#include "core/text/strtools.h"

namespace
{
bool IsBlank( char c )
{
	return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// Every place of the word in the text, ignoring case.
void FindAll( const char *pText, const char *pWord, CUtlVector<RichItemListTextHit_t> *pHits )
{
	const int nLength = int( strlen( pWord ) );
	if ( nLength == 0 )
		return;
	for ( const char *pAt = V_stristr_fast( pText, pWord ); pAt; pAt = V_stristr_fast( pAt + 1, pWord ) )
		pHits->AddToTail( { int( pAt - pText ), nLength } );
}

void MergeHits( CUtlVector<RichItemListTextHit_t> *pHits )
{
	std::sort( pHits->begin(), pHits->end(), []( const RichItemListTextHit_t &a, const RichItemListTextHit_t &b ) { return a.m_nStart < b.m_nStart; } );
	CUtlVector<RichItemListTextHit_t> merged;
	for ( const RichItemListTextHit_t &hit : *pHits )
	{
		if ( merged.Count() > 0 )
		{
			RichItemListTextHit_t &last = merged.Tail();
			if ( hit.m_nStart <= last.m_nStart + last.m_nLength )
			{
				last.m_nLength = std::max( last.m_nLength, hit.m_nStart + hit.m_nLength - last.m_nStart );
				continue;
			}
		}
		merged.AddToTail( hit );
	}
	*pHits = merged;
}

CUtlString Trimmed( const char *pText )
{
	CUtlString text( pText ? pText : "" );
	text.TrimWhitespace();
	return text;
}
} // namespace

void CRichItemListFilter::SplitWords( const char *pFilter, CUtlVector<CUtlString> *pWords )
{
	pWords->RemoveAll();
	if ( !pFilter )
		return;
	const char *pAt = pFilter;
	while ( *pAt )
	{
		while ( *pAt && IsBlank( *pAt ) )
			++pAt;
		const char *pStart = pAt;
		while ( *pAt && !IsBlank( *pAt ) )
			++pAt;
		if ( pAt > pStart )
			pWords->AddToTail( CUtlString( pStart, size_t( pAt - pStart ) ) );
	}
}

bool CRichItemListFilter::DescriptionContains( const RichItemListEntry_t &entry, const char *pWord ) const
{
	if ( !entry.m_HelpKey.IsEmpty() )
	{
		const IHelpSystem *pHelp = GetHelpSystem();
		return pHelp && pHelp->KeyTextContainsWord( m_Scope.IsEmpty() ? nullptr : m_Scope.Get(), entry.m_HelpKey, pWord );
	}
	return V_stristr_fast( entry.m_Description.Get(), pWord ) != nullptr;
}

void CRichItemListFilter::Apply( const char *pFilter, const CUtlVector<RichItemListEntry_t> &entries, CUtlVector<RichItemListMatch_t> *pMatches ) const
{
	CUtlVector<CUtlString> words;
	SplitWords( pFilter, &words );
	const CUtlString whole = Trimmed( pFilter );

	pMatches->RemoveAll();
	pMatches->EnsureCapacity( entries.Count() );
	for ( const RichItemListEntry_t &entry : entries )
	{
		RichItemListMatch_t &match = pMatches->Element( pMatches->AddToTail() );
		if ( words.Count() == 0 )
			continue;
		bool bName = true;
		bool bSecond = true;
		bool bDescription = true;
		for ( const CUtlString &word : words )
		{
			bName = bName && V_stristr_fast( entry.m_Name.Get(), word ) != nullptr;
			bSecond = bSecond && V_stristr_fast( entry.m_SecondText.Get(), word ) != nullptr;
			// The help service is the slow one: asked only while it can still matter.
			bDescription = bDescription && DescriptionContains( entry, word );
			if ( !bName && !bSecond && !bDescription )
				break;
		}
		match.m_bVisible = bName || bSecond || bDescription;
		match.m_bNameHit = bName;
		match.m_bSecondTextHit = bSecond;
		match.m_bDescriptionHit = bDescription;
		for ( const CUtlString &word : words )
		{
			if ( bName )
				FindAll( entry.m_Name.Get(), word, &match.m_NameHits );
			if ( bSecond )
				FindAll( entry.m_SecondText.Get(), word, &match.m_SecondTextHits );
		}
		MergeHits( &match.m_NameHits );
		MergeHits( &match.m_SecondTextHits );
		if ( !match.m_bVisible )
			match.m_eRank = RICH_ITEM_RANK_HIDDEN;
		else if ( bName && !V_strnicmp_fast( entry.m_Name.Get(), whole.Get(), size_t( whole.Length() ) ) )
			match.m_eRank = RICH_ITEM_RANK_NAME_PREFIX;
		else if ( bName )
			match.m_eRank = RICH_ITEM_RANK_NAME;
		else if ( bSecond )
			match.m_eRank = RICH_ITEM_RANK_SECOND_TEXT;
		else
			match.m_eRank = RICH_ITEM_RANK_DESCRIPTION;
	}
}

void CRichItemListFilter::GetDisplayOrder( const CUtlVector<RichItemListEntry_t> &entries, const CUtlVector<RichItemListMatch_t> &matches, CUtlVector<int> *pOrder )
{
	pOrder->RemoveAll();
	for ( int i = 0; i < entries.Count(); ++i )
		pOrder->AddToTail( i );
	auto rank = [ & ]( int i ) { return i < matches.Count() ? int( matches[ i ].m_eRank ) : int( RICH_ITEM_RANK_NAME ); };
	std::stable_sort( pOrder->begin(), pOrder->end(), [ & ]( int a, int b ) {
		if ( entries[ a ].m_nGroup != entries[ b ].m_nGroup )
			return entries[ a ].m_nGroup < entries[ b ].m_nGroup;
		return rank( a ) < rank( b );
	} );
}

bool CRichItemListFilter::IsGroupVisible( int nGroup, const CUtlVector<RichItemListEntry_t> &entries, const CUtlVector<RichItemListMatch_t> &matches )
{
	for ( int i = 0; i < entries.Count() && i < matches.Count(); ++i )
	{
		if ( entries[ i ].m_nGroup == nGroup && matches[ i ].m_bVisible )
			return true;
	}
	return false;
}

int CRichItemListFilter::FindBestMatch( const char *pFilter, const CUtlVector<int> &order, const CUtlVector<RichItemListEntry_t> &entries,
	const CUtlVector<RichItemListMatch_t> &matches )
{
	const CUtlString whole = Trimmed( pFilter );
	if ( whole.IsEmpty() )
		return -1;
	int nFirstNameHit = -1;
	for ( int nEntry : order )
	{
		if ( nEntry < 0 || nEntry >= entries.Count() || nEntry >= matches.Count() || !matches[ nEntry ].m_bVisible )
			continue;
		if ( !V_strnicmp_fast( entries[ nEntry ].m_Name.Get(), whole.Get(), size_t( whole.Length() ) ) )
			return nEntry;
		if ( nFirstNameHit < 0 && matches[ nEntry ].m_bNameHit )
			nFirstNameHit = nEntry;
	}
	return nFirstNameHit;
}
