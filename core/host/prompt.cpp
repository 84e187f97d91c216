#include "core/host/iprompt.h"

#include <atomic>

#include "core/logging/logging.h"

const char *PromptButtonName( PromptButton_t eButton )
{
	switch ( eButton )
	{
	case PROMPT_BUTTON_NONE: return "(none)";
	case PROMPT_BUTTON_OK: return "OK";
	case PROMPT_BUTTON_CANCEL: return "Cancel";
	case PROMPT_BUTTON_YES: return "Yes";
	case PROMPT_BUTTON_NO: return "No";
	case PROMPT_BUTTON_YES_TO_ALL: return "Yes to All";
	case PROMPT_BUTTON_NO_TO_ALL: return "No to All";
	case PROMPT_BUTTON_SAVE: return "Save";
	case PROMPT_BUTTON_DISCARD: return "Discard";
	case PROMPT_BUTTON_ABORT: return "Abort";
	case PROMPT_BUTTON_RETRY: return "Retry";
	case PROMPT_BUTTON_IGNORE: return "Ignore";
	case PROMPT_BUTTON_CLOSE: return "Close";
	}
	return "(several)";
}

const char *PromptKindName( PromptKind_t eKind )
{
	switch ( eKind )
	{
	case PROMPT_KIND_MESSAGE: return "message box";
	case PROMPT_KIND_QUESTION: return "question";
	case PROMPT_KIND_OPEN_FILE: return "open file dialog";
	case PROMPT_KIND_OPEN_FILES: return "open files dialog";
	case PROMPT_KIND_SAVE_FILE: return "save file dialog";
	case PROMPT_KIND_DIRECTORY: return "directory dialog";
	case PROMPT_KIND_PICK_ITEM: return "item picker";
	case PROMPT_KIND_PICK_COLOR: return "colour dialog";
	}
	return "prompt";
}

void PromptQuestion_t::SetButtonLabel( PromptButton_t eButton, const char *pLabel )
{
	for ( ButtonLabel_t &label : m_ButtonLabels )
	{
		if ( label.m_eButton == eButton )
		{
			label.m_strLabel.Set( pLabel );
			return;
		}
	}
	m_ButtonLabels.AddToTail( ButtonLabel_t{ eButton, CUtlString( pLabel ) } );
}

const char *PromptQuestion_t::GetButtonLabel( PromptButton_t eButton ) const
{
	for ( const ButtonLabel_t &label : m_ButtonLabels )
	{
		if ( label.m_eButton == eButton )
			return label.m_strLabel.Get();
	}
	return nullptr;
}

void IPrompt::ShowMessage( PromptIcon_t eIcon, const char *pTitle, const char *pText, void *pParentWindow )
{
	PromptQuestion_t message;
	message.m_eIcon = eIcon;
	message.m_strTitle.Set( pTitle );
	message.m_strText.Set( pText );
	message.m_nButtons = PROMPT_BUTTON_OK;
	message.m_eDefaultButton = PROMPT_BUTTON_OK;
	message.m_pParentWindow = pParentWindow;
	ShowMessage( message );
}

PromptButton_t IPrompt::Ask( PromptIcon_t eIcon, const char *pTitle, const char *pText, unsigned nButtons, PromptButton_t eDefault, void *pParentWindow )
{
	PromptQuestion_t question;
	question.m_eIcon = eIcon;
	question.m_strTitle.Set( pTitle );
	question.m_strText.Set( pText );
	question.m_nButtons = nButtons;
	question.m_eDefaultButton = eDefault;
	question.m_pParentWindow = pParentWindow;
	return Ask( question );
}

bool IPrompt::PickItem( const PromptPickRequest_t &request, int *pChosen )
{
	Log_Msg( LOG_GENERAL, "%s \"%s\" cancelled without a user interface\n", PromptKindName( PROMPT_KIND_PICK_ITEM ), request.m_strTitle.Get() );
	if ( pChosen )
		*pChosen = -1;
	return false;
}

bool IPrompt::PickColor( const char *pTitle, const Color &, Color *, void * )
{
	Log_Msg( LOG_GENERAL, "%s \"%s\" cancelled without a user interface\n", PromptKindName( PROMPT_KIND_PICK_COLOR ), pTitle ? pTitle : "" );
	return false;
}

namespace
{
bool RunSingle( IPrompt *pPrompt, PromptKind_t eKind, const char *pTitle, const char *pStart, const char *pFilter, CUtlString *pChosen, void *pParentWindow )
{
	PromptFileRequest_t request;
	request.m_eKind = eKind;
	request.m_strTitle.Set( pTitle );
	request.m_strStartPath.Set( pStart );
	request.m_strFilter.Set( pFilter );
	request.m_pParentWindow = pParentWindow;
	CUtlVector<CUtlString> chosen;
	bool bChosen = pPrompt->RunFileDialog( request, &chosen ) && !chosen.IsEmpty() && !chosen[ 0 ].IsEmpty();
	if ( pChosen )
		pChosen->Set( bChosen ? chosen[ 0 ].Get() : "" );
	return bChosen;
}
} // namespace

bool IPrompt::GetOpenFileName( const char *pTitle, const char *pStartDir, const char *pFilter, CUtlString *pChosen, void *pParentWindow )
{
	return RunSingle( this, PROMPT_KIND_OPEN_FILE, pTitle, pStartDir, pFilter, pChosen, pParentWindow );
}

bool IPrompt::GetOpenFileNames( const char *pTitle, const char *pStartDir, const char *pFilter, CUtlVector<CUtlString> *pChosen, void *pParentWindow )
{
	PromptFileRequest_t request;
	request.m_eKind = PROMPT_KIND_OPEN_FILES;
	request.m_strTitle.Set( pTitle );
	request.m_strStartPath.Set( pStartDir );
	request.m_strFilter.Set( pFilter );
	request.m_pParentWindow = pParentWindow;
	CUtlVector<CUtlString> chosen;
	bool bChosen = RunFileDialog( request, &chosen ) && !chosen.IsEmpty();
	if ( pChosen )
	{
		pChosen->RemoveAll();
		if ( bChosen )
			pChosen->AddVectorToTail( chosen );
	}
	return bChosen;
}

bool IPrompt::GetSaveFileName( const char *pTitle, const char *pStartPath, const char *pFilter, CUtlString *pChosen, void *pParentWindow )
{
	return RunSingle( this, PROMPT_KIND_SAVE_FILE, pTitle, pStartPath, pFilter, pChosen, pParentWindow );
}

bool IPrompt::GetExistingDirectory( const char *pTitle, const char *pStartDir, CUtlString *pChosen, void *pParentWindow )
{
	return RunSingle( this, PROMPT_KIND_DIRECTORY, pTitle, pStartDir, nullptr, pChosen, pParentWindow );
}

namespace
{
// Without a user interface: messages go to the log, questions take their default
// button and dialogs are cancelled, so a batch run never waits.
class CHeadlessPrompt final : public IPrompt
{
public:
	void ShowMessage( const PromptQuestion_t &message ) override
	{
		LoggingSeverity_t eSeverity = ( message.m_eIcon == PROMPT_ICON_WARNING || message.m_eIcon == PROMPT_ICON_CRITICAL ) ? LS_WARNING : LS_MESSAGE;
		LoggingSystem_Log( LOG_GENERAL, eSeverity, "%s: %s\n", message.m_strTitle.Get(), message.m_strText.Get() );
	}

	PromptButton_t Ask( const PromptQuestion_t &question ) override
	{
		PromptButton_t eAnswer = question.m_eDefaultButton;
		Log_Msg( LOG_GENERAL, "%s: %s (answered %s without a user interface)\n", question.m_strTitle.Get(), question.m_strText.Get(), PromptButtonName( eAnswer ) );
		return eAnswer;
	}

	bool RunFileDialog( const PromptFileRequest_t &request, CUtlVector<CUtlString> *pChosen ) override
	{
		Log_Msg( LOG_GENERAL, "%s \"%s\" cancelled without a user interface\n", PromptKindName( request.m_eKind ), request.m_strTitle.Get() );
		if ( pChosen )
			pChosen->RemoveAll();
		return false;
	}
};

CHeadlessPrompt g_HeadlessPrompt;
std::atomic<IPrompt *> g_pCurrentPrompt{ nullptr };
} // namespace

IPrompt *GetPrompt()
{
	IPrompt *pPrompt = g_pCurrentPrompt.load( std::memory_order_acquire );
	return pPrompt ? pPrompt : &g_HeadlessPrompt;
}

IPrompt *SetPrompt( IPrompt *pPrompt )
{
	IPrompt *pPrevious = g_pCurrentPrompt.exchange( pPrompt == &g_HeadlessPrompt ? nullptr : pPrompt, std::memory_order_acq_rel );
	return pPrevious ? pPrevious : &g_HeadlessPrompt;
}
