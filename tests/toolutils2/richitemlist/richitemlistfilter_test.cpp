// The picker's filter without widgets: which choices a filter keeps, where its words hit,
// the order they are shown in and the best match, on a small list with help texts.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/host/helpsystem.h"
#include "tools/toolutils2/richitemlist/richitemlistfilter.h"

namespace
{
class RichItemListFilterTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pPrevious = GetHelpSystem();
		SetHelpSystem( &m_Help );
		m_Help.AddEntry( "particles", "Element.C_OP_Decay", "Lifespan Decay", "Kills particles when their lifetime runs out." );
		m_Help.AddEntry( "particles", "Element.C_OP_FadeOutSimple", "Alpha Fade Out Simple", "Fades particles out near the end of their life." );
		m_Filter.SetScope( "particles" );
		Add( "Lifespan Decay", "C_OP_Decay", "", "Element.C_OP_Decay", 0 );
		Add( "Alpha Fade Out Simple", "C_OP_FadeOutSimple", "", "Element.C_OP_FadeOutSimple", 0 );
		Add( "Random Lifetime", "C_INIT_RandomLifeTime", "Gives each particle a random lifetime.", "", 1 );
		Add( "Lifetime Random (Init Float)", "C_INIT_InitFloat", "Create an InitFloat that mimics the old 'lifetime random' operator", "", 1 );
		Add( "Render Sprites", "C_OP_RenderSprites", "Draws camera-facing quads.", "", 2 );
	}
	void TearDown() override { SetHelpSystem( m_pPrevious ); }

	void Add( const char *pName, const char *pSecond, const char *pDescription, const char *pKey, int nGroup )
	{
		RichItemListEntry_t &entry = m_Entries.Element( m_Entries.AddToTail() );
		entry.m_Name = pName;
		entry.m_SecondText = pSecond;
		entry.m_Description = pDescription;
		entry.m_HelpKey = pKey;
		entry.m_nGroup = nGroup;
	}

	// The names of the visible entries, in the order shown.
	std::vector<std::string> Visible( const char *pFilter )
	{
		m_Filter.Apply( pFilter, m_Entries, &m_Matches );
		CRichItemListFilter::GetDisplayOrder( m_Entries, m_Matches, &m_Order );
		std::vector<std::string> names;
		for ( int nEntry : m_Order )
		{
			if ( m_Matches[ nEntry ].m_bVisible )
				names.push_back( m_Entries[ nEntry ].m_Name.Get() );
		}
		return names;
	}

	const char *Best( const char *pFilter )
	{
		Visible( pFilter );
		int nBest = CRichItemListFilter::FindBestMatch( pFilter, m_Order, m_Entries, m_Matches );
		return nBest >= 0 ? m_Entries[ nBest ].m_Name.Get() : "";
	}

	CHelpSystem m_Help;
	IHelpSystem *m_pPrevious = nullptr;
	CRichItemListFilter m_Filter;
	CUtlVector<RichItemListEntry_t> m_Entries;
	CUtlVector<RichItemListMatch_t> m_Matches;
	CUtlVector<int> m_Order;
};

struct FilterCase_t
{
	const char *m_pFilter;
	std::vector<std::string> m_Visible;
	const char *m_pBest;
};

const FilterCase_t s_FilterCases[] = {
	// An empty filter, or only blanks, shows all in their order.
	{ "", { "Lifespan Decay", "Alpha Fade Out Simple", "Random Lifetime", "Lifetime Random (Init Float)", "Render Sprites" }, "" },
	{ "   ", { "Lifespan Decay", "Alpha Fade Out Simple", "Random Lifetime", "Lifetime Random (Init Float)", "Render Sprites" }, "" },
	// A name that starts with the filter comes first in its group and is the best match;
	// the decay's help text speaks of a lifetime too.
	{ "lifetime", { "Lifespan Decay", "Lifetime Random (Init Float)", "Random Lifetime" }, "Lifetime Random (Init Float)" },
	{ "random LIFE", { "Random Lifetime", "Lifetime Random (Init Float)" }, "Random Lifetime" },
	// Class names are the second text; only names make a best match.
	{ "initfloat", { "Lifetime Random (Init Float)" }, "" },
	{ "c_op_render", { "Render Sprites" }, "" },
	// Help texts are searched for choices with a help key, descriptions for the others.
	{ "runs out", { "Lifespan Decay" }, "" },
	{ "camera-facing", { "Render Sprites" }, "" },
	// Two words that each hit a different field of a choice hide it.
	{ "lifespan kills", {}, "" },
	{ "sprites C_OP_Decay", {}, "" },
	{ "zebra", {}, "" },
};

void PrintTo( const FilterCase_t &filterCase, std::ostream *pOut )
{
	*pOut << "\"" << filterCase.m_pFilter << "\"";
}

class RichItemListFilterCases : public RichItemListFilterTest, public ::testing::WithParamInterface<FilterCase_t>
{
};
} // namespace

TEST_P( RichItemListFilterCases, KeepsWhatAllWordsHitInOneFieldBestFirst )
{
	const FilterCase_t &filterCase = GetParam();
	EXPECT_EQ( Visible( filterCase.m_pFilter ), filterCase.m_Visible );
	EXPECT_STREQ( Best( filterCase.m_pFilter ), filterCase.m_pBest );
}

INSTANTIATE_TEST_SUITE_P( Filters, RichItemListFilterCases, ::testing::ValuesIn( s_FilterCases ) );

TEST_F( RichItemListFilterTest, HitsOnlyInTheHelpTextGetTheMarkerAndNoHighlight )
{
	m_Filter.Apply( "lifetime runs", m_Entries, &m_Matches );
	const RichItemListMatch_t &decay = m_Matches[ 0 ];
	EXPECT_TRUE( decay.m_bVisible );
	EXPECT_TRUE( decay.ShowsDescriptionMarker() );
	EXPECT_EQ( decay.m_NameHits.Count(), 0 );

	// A name hit is highlighted where each word stands, and shows no marker.
	m_Filter.Apply( "life time", m_Entries, &m_Matches );
	const RichItemListMatch_t &random = m_Matches[ 2 ];
	ASSERT_TRUE( random.m_bNameHit );
	EXPECT_FALSE( random.ShowsDescriptionMarker() );
	ASSERT_EQ( random.m_NameHits.Count(), 1 ); // "life" and "time" merge into "Lifetime"
	EXPECT_EQ( random.m_NameHits[ 0 ].m_nStart, 7 );
	EXPECT_EQ( random.m_NameHits[ 0 ].m_nLength, 8 );
}

TEST_F( RichItemListFilterTest, GroupWithNoVisibleChoiceIsHidden )
{
	m_Filter.Apply( "sprites", m_Entries, &m_Matches );
	EXPECT_FALSE( CRichItemListFilter::IsGroupVisible( 0, m_Entries, m_Matches ) );
	EXPECT_FALSE( CRichItemListFilter::IsGroupVisible( 1, m_Entries, m_Matches ) );
	EXPECT_TRUE( CRichItemListFilter::IsGroupVisible( 2, m_Entries, m_Matches ) );
}
