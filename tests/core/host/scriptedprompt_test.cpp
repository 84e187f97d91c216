#include "core/host/scriptedprompt.h"

#include <gtest/gtest.h>

#include "core/platform/dbgassert.h"

#include <string>
#include <vector>

namespace
{
// Collects failures instead of asserting, so the tests can look at them.
class ScriptedPromptTest : public ::testing::Test
{
protected:
	ScriptedPromptTest() : m_Scope( &m_Prompt )
	{
		m_Prompt.SetFailureHandler( [this]( const char *pFailure ) { m_Failures.push_back( pFailure ); } );
	}

	CScriptedPrompt m_Prompt;
	CScopedPrompt m_Scope;
	std::vector<std::string> m_Failures;
};

PromptQuestion_t SaveChangesQuestion()
{
	PromptQuestion_t question;
	question.m_eIcon = PROMPT_ICON_QUESTION;
	question.m_strTitle = "Save changes?";
	question.m_strText = "<br>The file:<pre>\"a.tfxs\"</pre>has unsaved changes. Save them?";
	question.m_nButtons = PROMPT_BUTTON_YES | PROMPT_BUTTON_NO | PROMPT_BUTTON_CANCEL;
	question.m_eDefaultButton = PROMPT_BUTTON_YES;
	return question;
}
} // namespace

TEST_F( ScriptedPromptTest, CurrentPromptIsTheInstalledOneAndComesBackAfterTheScope )
{
	IPrompt *pOuter = GetPrompt();
	{
		CScriptedPrompt inner;
		CScopedPrompt scope( &inner );
		EXPECT_EQ( GetPrompt(), &inner );
	}
	EXPECT_EQ( GetPrompt(), pOuter );
	EXPECT_EQ( pOuter, &m_Prompt );
}

TEST_F( ScriptedPromptTest, QueuedAnswersAreGivenInOrderAndRecorded )
{
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Save changes?" );
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_CANCEL );

	EXPECT_EQ( GetPrompt()->Ask( SaveChangesQuestion() ), PROMPT_BUTTON_NO );
	EXPECT_EQ( GetPrompt()->Ask( SaveChangesQuestion() ), PROMPT_BUTTON_CANCEL );

	ASSERT_EQ( m_Prompt.GetRecords().Count(), 2 );
	const CScriptedPrompt::Record_t &first = m_Prompt.GetRecords()[ 0 ];
	EXPECT_EQ( first.m_eKind, PROMPT_KIND_QUESTION );
	EXPECT_STREQ( first.m_strTitle.Get(), "Save changes?" );
	EXPECT_NE( std::string( first.m_strText.Get() ).find( "has unsaved changes" ), std::string::npos );
	EXPECT_EQ( first.m_eDefaultButton, PROMPT_BUTTON_YES );
	EXPECT_TRUE( first.m_bExpected );
	EXPECT_EQ( m_Prompt.GetPendingCount(), 0 );
	EXPECT_TRUE( m_Failures.empty() );
}

TEST_F( ScriptedPromptTest, UnexpectedQuestionFailsAndGetsTheHarmlessAnswer )
{
	PromptButton_t eAnswer = GetPrompt()->Ask( SaveChangesQuestion() );

	EXPECT_EQ( eAnswer, PROMPT_BUTTON_CANCEL );
	ASSERT_EQ( m_Failures.size(), 1u );
	EXPECT_NE( m_Failures[ 0 ].find( "Save changes?" ), std::string::npos );
	EXPECT_TRUE( m_Prompt.HasFailures() );
	ASSERT_EQ( m_Prompt.GetRecords().Count(), 1 );
	EXPECT_FALSE( m_Prompt.GetRecords()[ 0 ].m_bExpected );
}

TEST_F( ScriptedPromptTest, AnswerForAnotherTitleIsAFailureAndStaysQueued )
{
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_YES, "Reload?" );

	EXPECT_EQ( GetPrompt()->Ask( PROMPT_ICON_QUESTION, "Open File", "Open anyway?", PROMPT_BUTTON_YES | PROMPT_BUTTON_NO, PROMPT_BUTTON_YES ), PROMPT_BUTTON_NO );

	ASSERT_EQ( m_Failures.size(), 1u );
	EXPECT_NE( m_Failures[ 0 ].find( "Reload?" ), std::string::npos );
	EXPECT_EQ( m_Prompt.GetPendingCount(), 1 );
}

TEST_F( ScriptedPromptTest, AnswerThatTheQuestionDoesNotOfferFails )
{
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_SAVE );

	EXPECT_EQ( GetPrompt()->Ask( SaveChangesQuestion() ), PROMPT_BUTTON_CANCEL );
	EXPECT_EQ( m_Failures.size(), 1u );
}

TEST_F( ScriptedPromptTest, MessagesAreAcknowledgedWithoutAnswersButCheckedWhenExpected )
{
	GetPrompt()->Warning( "Unable to open", "The source file of the autosave 'a' is already open." );
	EXPECT_TRUE( m_Failures.empty() );
	ASSERT_NE( m_Prompt.FindRecord( "unable to open" ), nullptr );
	EXPECT_EQ( m_Prompt.FindRecord( "unable to open" )->m_eIcon, PROMPT_ICON_WARNING );

	m_Prompt.ExpectMessage( "Error opening file" );
	GetPrompt()->Warning( "Cannot Reload", "Cannot reload - The file does not exist." );
	EXPECT_EQ( m_Failures.size(), 1u );
	EXPECT_EQ( m_Prompt.CountRecords( PROMPT_KIND_MESSAGE ), 2 );
}

TEST_F( ScriptedPromptTest, FileDialogsGiveTheQueuedPathsOrCancel )
{
	m_Prompt.ExpectOpenFile( "c:/content/particles/a.tfxs", "Open" );
	m_Prompt.ExpectCancelledDialog( PROMPT_KIND_SAVE_FILE, "Save Session" );
	m_Prompt.ExpectOpenFiles( { CUtlString( "a.tfxs" ), CUtlString( "b.tfxs" ) } );
	m_Prompt.ExpectDirectory( "c:/content/particles", "Open All In Directory" );

	CUtlString chosen;
	EXPECT_TRUE( GetPrompt()->GetOpenFileName( "Open", "c:/content", "Particle System Definition (*.tfxs)", &chosen ) );
	EXPECT_STREQ( chosen.Get(), "c:/content/particles/a.tfxs" );

	EXPECT_FALSE( GetPrompt()->GetSaveFileName( "Save Session", "c:/content/untitled", "", &chosen ) );
	EXPECT_TRUE( chosen.IsEmpty() );

	CUtlVector<CUtlString> many;
	EXPECT_TRUE( GetPrompt()->GetOpenFileNames( "Open", "", "", &many ) );
	EXPECT_EQ( many.Count(), 2 );

	EXPECT_TRUE( GetPrompt()->GetExistingDirectory( "Open All In Directory", "", &chosen ) );
	EXPECT_STREQ( chosen.Get(), "c:/content/particles" );

	EXPECT_TRUE( m_Failures.empty() );
	ASSERT_NE( m_Prompt.FindRecord( "Open" ), nullptr );
	EXPECT_STREQ( m_Prompt.GetRecords()[ 0 ].m_strFilter.Get(), "Particle System Definition (*.tfxs)" );
}

TEST_F( ScriptedPromptTest, DialogOfTheWrongKindIsCancelledAndFails )
{
	m_Prompt.ExpectOpenFile( "a.tfxs" );

	CUtlString chosen;
	EXPECT_FALSE( GetPrompt()->GetSaveFileName( "Save Session", "", "", &chosen ) );
	EXPECT_EQ( m_Failures.size(), 1u );
	EXPECT_EQ( m_Prompt.GetPendingCount(), 1 );
}

TEST( HeadlessPrompt, AnswersTheDefaultAndCancelsDialogs )
{
	CScopedPrompt scope( nullptr );
	IPrompt *pPrompt = GetPrompt();
	ASSERT_NE( pPrompt, nullptr );
	EXPECT_EQ( pPrompt->Ask( PROMPT_ICON_QUESTION, "Reload?", "Reload this file?", PROMPT_BUTTON_YES | PROMPT_BUTTON_NO, PROMPT_BUTTON_NO ), PROMPT_BUTTON_NO );
	CUtlString chosen( "stale" );
	EXPECT_FALSE( pPrompt->GetOpenFileName( "Open", "", "", &chosen ) );
	EXPECT_TRUE( chosen.IsEmpty() );
}

namespace
{
int g_nAssertsSeen = 0;
bool CountAssert( const char *, int, const char *, const char * )
{
	++g_nAssertsSeen;
	return false;
}
} // namespace

TEST( ScriptedPrompt, WithoutAHandlerAnUnexpectedQuestionIsAFailedAssertion )
{
	CScriptedPrompt prompt;
	CScopedPrompt scope( &prompt );
	g_nAssertsSeen = 0;
	AssertHandlerFn_t fnPrevious = SetAssertHandler( CountAssert );
	PromptButton_t eAnswer = GetPrompt()->Ask( PROMPT_ICON_WARNING, "Warning!", "Discard?", PROMPT_BUTTON_YES | PROMPT_BUTTON_NO, PROMPT_BUTTON_YES );
	SetAssertHandler( fnPrevious );

	EXPECT_EQ( eAnswer, PROMPT_BUTTON_NO );
	EXPECT_EQ( g_nAssertsSeen, 1 );
	EXPECT_EQ( prompt.GetFailures().Count(), 1 );
}
