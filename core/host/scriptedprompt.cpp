#include "core/host/scriptedprompt.h"

#include <cstdarg>

#include "core/platform/dbgassert.h"
#include "core/text/strtools.h"

CScriptedPrompt::CScriptedPrompt() = default;
CScriptedPrompt::~CScriptedPrompt() = default;

void CScriptedPrompt::Queue( Expectation_t &&expectation )
{
	m_Pending.AddToTail( std::move( expectation ) );
}

void CScriptedPrompt::ExpectQuestion( PromptButton_t eAnswer, const char *pTitle )
{
	Expectation_t expectation;
	expectation.m_eKind = PROMPT_KIND_QUESTION;
	expectation.m_strTitle.Set( pTitle );
	expectation.m_eAnswer = eAnswer;
	Queue( std::move( expectation ) );
}

void CScriptedPrompt::ExpectMessage( const char *pTitle )
{
	Expectation_t expectation;
	expectation.m_eKind = PROMPT_KIND_MESSAGE;
	expectation.m_strTitle.Set( pTitle );
	expectation.m_eAnswer = PROMPT_BUTTON_OK;
	Queue( std::move( expectation ) );
}

void CScriptedPrompt::ExpectOpenFile( const char *pPath, const char *pTitle )
{
	Expectation_t expectation;
	expectation.m_eKind = PROMPT_KIND_OPEN_FILE;
	expectation.m_strTitle.Set( pTitle );
	expectation.m_Chosen.AddToTail( CUtlString( pPath ) );
	Queue( std::move( expectation ) );
}

void CScriptedPrompt::ExpectOpenFiles( const CUtlVector<CUtlString> &paths, const char *pTitle )
{
	Expectation_t expectation;
	expectation.m_eKind = PROMPT_KIND_OPEN_FILES;
	expectation.m_strTitle.Set( pTitle );
	expectation.m_Chosen.AddVectorToTail( paths );
	Queue( std::move( expectation ) );
}

void CScriptedPrompt::ExpectSaveFile( const char *pPath, const char *pTitle )
{
	Expectation_t expectation;
	expectation.m_eKind = PROMPT_KIND_SAVE_FILE;
	expectation.m_strTitle.Set( pTitle );
	expectation.m_Chosen.AddToTail( CUtlString( pPath ) );
	Queue( std::move( expectation ) );
}

void CScriptedPrompt::ExpectDirectory( const char *pPath, const char *pTitle )
{
	Expectation_t expectation;
	expectation.m_eKind = PROMPT_KIND_DIRECTORY;
	expectation.m_strTitle.Set( pTitle );
	expectation.m_Chosen.AddToTail( CUtlString( pPath ) );
	Queue( std::move( expectation ) );
}

void CScriptedPrompt::ExpectCancelledDialog( PromptKind_t eKind, const char *pTitle )
{
	Expectation_t expectation;
	expectation.m_eKind = eKind;
	expectation.m_strTitle.Set( pTitle );
	expectation.m_bCancel = true;
	Queue( std::move( expectation ) );
}

void CScriptedPrompt::ExpectPickItem( int nIndex, const char *pTitle )
{
	Expectation_t expectation;
	expectation.m_eKind = PROMPT_KIND_PICK_ITEM;
	expectation.m_strTitle.Set( pTitle );
	expectation.m_nPickIndex = nIndex;
	expectation.m_bCancel = nIndex < 0;
	Queue( std::move( expectation ) );
}

void CScriptedPrompt::ExpectPickColor( const Color &color, const char *pTitle )
{
	Expectation_t expectation;
	expectation.m_eKind = PROMPT_KIND_PICK_COLOR;
	expectation.m_strTitle.Set( pTitle );
	expectation.m_Color = color;
	Queue( std::move( expectation ) );
}

bool CScriptedPrompt::PickColor( const char *pTitle, const Color &initial, Color *pChosen, void * )
{
	Record_t record;
	record.m_eKind = PROMPT_KIND_PICK_COLOR;
	record.m_strTitle.Set( pTitle );
	record.m_InitialColor = initial;
	Expectation_t expectation;
	bool bPicked = false;
	if ( TakeExpectation( PROMPT_KIND_PICK_COLOR, pTitle, &expectation ) )
	{
		bPicked = !expectation.m_bCancel;
		if ( bPicked && pChosen )
			*pChosen = expectation.m_Color;
	}
	else
		record.m_bExpected = false;
	m_Records.AddToTail( std::move( record ) );
	return bPicked;
}

bool CScriptedPrompt::PickItem( const PromptPickRequest_t &request, int *pChosen )
{
	Record_t record;
	record.m_eKind = PROMPT_KIND_PICK_ITEM;
	record.m_strTitle = request.m_strTitle;
	for ( const PromptPickRequest_t::Item_t &item : request.m_Items )
		record.m_Items.AddToTail( item.m_strName );
	Expectation_t expectation;
	if ( TakeExpectation( PROMPT_KIND_PICK_ITEM, request.m_strTitle.Get(), &expectation ) )
	{
		if ( expectation.m_nPickIndex >= request.m_Items.Count() )
		{
			Fail( "Item picker \"%s\" was answered with row %d of %d", request.m_strTitle.Get(), expectation.m_nPickIndex, request.m_Items.Count() );
			record.m_bExpected = false;
		}
		else
			record.m_nPicked = expectation.m_nPickIndex;
	}
	else
		record.m_bExpected = false;
	if ( pChosen )
		*pChosen = record.m_nPicked;
	bool bPicked = record.m_nPicked >= 0;
	m_Records.AddToTail( std::move( record ) );
	return bPicked;
}

void CScriptedPrompt::Fail( const char *pFormat, ... )
{
	CUtlString text;
	va_list args;
	va_start( args, pFormat );
	char buffer[ 2048 ];
	V_vsnprintf( buffer, sizeof( buffer ), pFormat, args );
	va_end( args );
	text.Set( buffer );
	m_Failures.AddToTail( text );
	if ( m_fnFailureHandler )
		m_fnFailureHandler( text.Get() );
	else
		Assert_ConditionFailed( __FILE__, __LINE__, "scripted prompt", text.Get() );
}

bool CScriptedPrompt::TakeExpectation( PromptKind_t eKind, const char *pTitle, Expectation_t *pOut )
{
	if ( m_Pending.IsEmpty() )
	{
		Fail( "Unexpected %s \"%s\": no answer was queued", PromptKindName( eKind ), pTitle );
		return false;
	}
	Expectation_t &front = m_Pending[ 0 ];
	if ( front.m_eKind != eKind )
	{
		Fail( "Unexpected %s \"%s\": the next queued answer is for a %s", PromptKindName( eKind ), pTitle, PromptKindName( front.m_eKind ) );
		return false;
	}
	if ( !front.m_strTitle.IsEmpty() && !front.m_strTitle.IsEqual_CaseInsensitive( pTitle ) )
	{
		Fail( "Unexpected %s \"%s\": the next queued answer is for \"%s\"", PromptKindName( eKind ), pTitle, front.m_strTitle.Get() );
		return false;
	}
	*pOut = std::move( front );
	m_Pending.Remove( 0 );
	return true;
}

namespace
{
CScriptedPrompt::Record_t RecordOf( PromptKind_t eKind, const PromptQuestion_t &question )
{
	CScriptedPrompt::Record_t record;
	record.m_eKind = eKind;
	record.m_eIcon = question.m_eIcon;
	record.m_strTitle = question.m_strTitle;
	record.m_strText = question.m_strText;
	record.m_strInformativeText = question.m_strInformativeText;
	record.m_nButtons = question.m_nButtons;
	record.m_eDefaultButton = question.m_eDefaultButton;
	return record;
}

// What an unplanned question gets: the answer that changes the least.
PromptButton_t HarmlessAnswer( const PromptQuestion_t &question )
{
	for ( PromptButton_t eButton : { PROMPT_BUTTON_CANCEL, PROMPT_BUTTON_NO, PROMPT_BUTTON_ABORT, PROMPT_BUTTON_CLOSE } )
	{
		if ( question.HasButton( eButton ) )
			return eButton;
	}
	return question.m_eDefaultButton;
}
} // namespace

void CScriptedPrompt::ShowMessage( const PromptQuestion_t &message )
{
	Record_t record = RecordOf( PROMPT_KIND_MESSAGE, message );
	record.m_eAnswer = PROMPT_BUTTON_OK;
	// Only a queued message expectation at the front is checked; other messages just
	// get acknowledged, as a user would.
	if ( !m_Pending.IsEmpty() && m_Pending[ 0 ].m_eKind == PROMPT_KIND_MESSAGE )
	{
		Expectation_t expectation;
		record.m_bExpected = TakeExpectation( PROMPT_KIND_MESSAGE, message.m_strTitle.Get(), &expectation );
	}
	m_Records.AddToTail( std::move( record ) );
}

PromptButton_t CScriptedPrompt::Ask( const PromptQuestion_t &question )
{
	Record_t record = RecordOf( PROMPT_KIND_QUESTION, question );
	Expectation_t expectation;
	if ( TakeExpectation( PROMPT_KIND_QUESTION, question.m_strTitle.Get(), &expectation ) )
	{
		record.m_eAnswer = expectation.m_eAnswer;
		if ( expectation.m_eAnswer != PROMPT_BUTTON_NONE && !question.HasButton( expectation.m_eAnswer ) )
		{
			Fail( "Question \"%s\" was answered %s, which it does not offer", question.m_strTitle.Get(), PromptButtonName( expectation.m_eAnswer ) );
			record.m_bExpected = false;
			record.m_eAnswer = HarmlessAnswer( question );
		}
	}
	else
	{
		record.m_bExpected = false;
		record.m_eAnswer = HarmlessAnswer( question );
	}
	PromptButton_t eAnswer = record.m_eAnswer;
	m_Records.AddToTail( std::move( record ) );
	return eAnswer;
}

bool CScriptedPrompt::RunFileDialog( const PromptFileRequest_t &request, CUtlVector<CUtlString> *pChosen )
{
	Record_t record;
	record.m_eKind = request.m_eKind;
	record.m_strTitle = request.m_strTitle;
	record.m_strStartPath = request.m_strStartPath;
	record.m_strFilter = request.m_strFilter;
	Expectation_t expectation;
	if ( TakeExpectation( request.m_eKind, request.m_strTitle.Get(), &expectation ) )
	{
		if ( !expectation.m_bCancel )
			record.m_Chosen.AddVectorToTail( expectation.m_Chosen );
	}
	else
	{
		record.m_bExpected = false;
	}
	if ( pChosen )
	{
		pChosen->RemoveAll();
		pChosen->AddVectorToTail( record.m_Chosen );
	}
	bool bChosen = !record.m_Chosen.IsEmpty();
	m_Records.AddToTail( std::move( record ) );
	return bChosen;
}

int CScriptedPrompt::CountRecords( PromptKind_t eKind ) const
{
	int nCount = 0;
	for ( const Record_t &record : m_Records )
		nCount += record.m_eKind == eKind ? 1 : 0;
	return nCount;
}

const CScriptedPrompt::Record_t *CScriptedPrompt::FindRecord( const char *pTitle ) const
{
	for ( int i = m_Records.Count() - 1; i >= 0; --i )
	{
		if ( m_Records[ i ].m_strTitle.IsEqual_CaseInsensitive( pTitle ) )
			return &m_Records[ i ];
	}
	return nullptr;
}

void CScriptedPrompt::Reset()
{
	m_nBeeps = 0;
	m_Pending.RemoveAll();
	m_Records.RemoveAll();
	m_Failures.RemoveAll();
}
