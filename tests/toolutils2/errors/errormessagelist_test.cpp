// The message list of tool operations: what it keeps of each message and its context,
// its counts by severity, and that every message reaches the next listener as well.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/toolutils2/errors/errormessagelist.h"

namespace
{
struct Place_t
{
	int m_nLine;
};
void ErrorContextValueText( const Place_t &place, CUtlString *pOut )
{
	pOut->Format( "line %d", place.m_nLine );
}

class CRecordingListener final : public IErrorListener
{
public:
	void OnErrorMessage( int nSeverity, const char *pText, const IBaseErrorContext *pContext ) override
	{
		CUtlString value;
		if ( pContext )
			pContext->GetValueText( &value );
		m_Heard.push_back( std::to_string( nSeverity ) + " " + pText + ( pContext ? std::string( " @" ) + value.Get() : "" ) );
	}
	std::vector<std::string> m_Heard;
};
} // namespace

TEST( ErrorMessageList, KeepsCountsAndPassesOnEveryMessage )
{
	CRecordingListener next;
	CErrorMessageList list( &next );
	{
		// The context may go before the list is read: the list keeps its own copy.
		CErrorContextValue<Place_t> context( "Place", Place_t{ 7 } );
		list.Report( ERROR_SEVERITY_ERROR, &context, "bad %s", "thing" );
	}
	list.Report( ERROR_SEVERITY_WARNING, nullptr, "odd" );
	list.Report( ERROR_SEVERITY_INFO, nullptr, "fine" );
	list.OnErrorMessage( 9, "unheard of", nullptr );

	EXPECT_EQ( list.GetErrorCount(), 1 );
	EXPECT_EQ( list.GetWarningCount(), 1 );
	EXPECT_EQ( list.GetOtherCount(), 2 );
	ASSERT_EQ( list.GetMessages().size(), 4u );
	const ErrorMessage_t &first = list.GetMessages()[ 0 ];
	EXPECT_STREQ( first.m_Text.Get(), "bad thing" );
	EXPECT_STREQ( first.m_ContextName.Get(), "Place" );
	EXPECT_STREQ( first.m_ContextValue.Get(), "line 7" );
	const auto *pKept = dynamic_cast<const CErrorContextValue<Place_t> *>( first.m_pContext.get() );
	ASSERT_NE( pKept, nullptr );
	EXPECT_EQ( pKept->GetValue().m_nLine, 7 );
	EXPECT_EQ( list.GetMessages()[ 1 ].m_pContext, nullptr );
	EXPECT_EQ( next.m_Heard, ( std::vector<std::string>{ "2 bad thing @line 7", "1 odd", "0 fine", "9 unheard of" } ) );

	list.Clear();
	EXPECT_TRUE( list.GetMessages().empty() );
	EXPECT_EQ( list.GetErrorCount() + list.GetWarningCount() + list.GetOtherCount(), 0 );
}
