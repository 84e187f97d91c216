#pragma once
// A prompt for tests: answers come from a queue that the test fills beforehand, and
// every box and dialog is recorded with its title and text. A question or dialog that
// no queued answer is meant for is a failure: it is recorded, reported through the
// failure handler (by default a failed assertion, which tests turn into a test
// failure) and answered as harmlessly as possible (Cancel, else No, else the default;
// dialogs are cancelled), so the run goes on instead of blocking.
//
// Message boxes with only "OK" need no answer; they are recorded and acknowledged.
// A queued message expectation (ExpectMessage) makes the next one checked as well.

#include <functional>

#include "core/host/iprompt.h"

class CScriptedPrompt final : public IPrompt
{
public:
	struct Record_t
	{
		PromptKind_t m_eKind = PROMPT_KIND_MESSAGE;
		PromptIcon_t m_eIcon = PROMPT_ICON_NONE;
		CUtlString m_strTitle;
		CUtlString m_strText;
		CUtlString m_strInformativeText;
		unsigned m_nButtons = 0;
		PromptButton_t m_eDefaultButton = PROMPT_BUTTON_NONE;
		CUtlString m_strStartPath; // dialogs
		CUtlString m_strFilter;    // file dialogs
		PromptButton_t m_eAnswer = PROMPT_BUTTON_NONE; // questions and messages
		CUtlVector<CUtlString> m_Chosen;               // dialogs; empty when cancelled
		CUtlVector<CUtlString> m_Items;                // item pickers: the names offered
		int m_nPicked = -1;                            // item pickers: the row chosen, -1 cancelled
		Color m_InitialColor;                          // colour dialogs: the colour it started at
		bool m_bExpected = true; // false when no queued answer was meant for it
	};

	using FailureHandlerFn_t = std::function<void( const char *pFailure )>;

	CScriptedPrompt();
	~CScriptedPrompt();

	// Queueing. A non-null pTitle must equal the title of the prompt that takes the
	// answer (ignoring case); a mismatch is a failure.
	void ExpectQuestion( PromptButton_t eAnswer, const char *pTitle = nullptr );
	void ExpectMessage( const char *pTitle = nullptr );
	void ExpectOpenFile( const char *pPath, const char *pTitle = nullptr );
	void ExpectOpenFiles( const CUtlVector<CUtlString> &paths, const char *pTitle = nullptr );
	void ExpectSaveFile( const char *pPath, const char *pTitle = nullptr );
	void ExpectDirectory( const char *pPath, const char *pTitle = nullptr );
	// A dialog of that kind that the user cancels.
	void ExpectCancelledDialog( PromptKind_t eKind, const char *pTitle = nullptr );
	// An item picker answered with the row at nIndex (-1: cancelled).
	void ExpectPickItem( int nIndex, const char *pTitle = nullptr );
	// A colour dialog answered with a colour; ExpectCancelledDialog( PROMPT_KIND_PICK_COLOR )
	// for one the user cancels.
	void ExpectPickColor( const Color &color, const char *pTitle = nullptr );

	// IPrompt
	void ShowMessage( const PromptQuestion_t &message ) override;
	PromptButton_t Ask( const PromptQuestion_t &question ) override;
	bool RunFileDialog( const PromptFileRequest_t &request, CUtlVector<CUtlString> *pChosen ) override;
	bool PickItem( const PromptPickRequest_t &request, int *pChosen ) override;
	bool PickColor( const char *pTitle, const Color &initial, Color *pChosen, void *pParentWindow = nullptr ) override;
	void Beep() override { ++m_nBeeps; }
	using IPrompt::Ask;
	using IPrompt::ShowMessage;

	const CUtlVector<Record_t> &GetRecords() const { return m_Records; }
	int CountRecords( PromptKind_t eKind ) const;
	// The last record of that title (ignoring case), or null.
	const Record_t *FindRecord( const char *pTitle ) const;
	// Queued answers that nothing took yet.
	int GetPendingCount() const { return m_Pending.Count(); }
	// Texts of everything that went wrong: unexpected prompts, mismatched titles or
	// kinds, answers that were not among the buttons offered.
	// Beeps so far; they need no answer.
	int GetBeepCount() const { return m_nBeeps; }
	const CUtlVector<CUtlString> &GetFailures() const { return m_Failures; }
	bool HasFailures() const { return !m_Failures.IsEmpty(); }
	// Forgets records, failures and queued answers.
	void Reset();

	// Replaces how failures are reported (null restores the failed assertion).
	void SetFailureHandler( FailureHandlerFn_t fnHandler ) { m_fnFailureHandler = std::move( fnHandler ); }

private:
	struct Expectation_t
	{
		PromptKind_t m_eKind = PROMPT_KIND_QUESTION;
		CUtlString m_strTitle; // empty: any title
		PromptButton_t m_eAnswer = PROMPT_BUTTON_NONE;
		CUtlVector<CUtlString> m_Chosen;
		bool m_bCancel = false;
		int m_nPickIndex = -1;
		Color m_Color;
	};

	void Queue( Expectation_t &&expectation );
	// Takes the front expectation if it fits the prompt; records a failure otherwise.
	bool TakeExpectation( PromptKind_t eKind, const char *pTitle, Expectation_t *pOut );
	void Fail( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );

	CUtlVector<Expectation_t> m_Pending;
	CUtlVector<Record_t> m_Records;
	CUtlVector<CUtlString> m_Failures;
	int m_nBeeps = 0;
	FailureHandlerFn_t m_fnFailureHandler;
};
