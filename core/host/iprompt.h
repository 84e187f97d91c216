#pragma once
// Every message box, question and file dialog of the tools goes through the current
// prompt. The windowed build installs one that shows real dialogs; tests install a
// scripted one, so that nothing ever waits for a user who isn't there. Without an
// installed prompt, a headless one logs and answers the default.

#include "core/containers/utlvector.h"
#include "core/mathlib/color.h"
#include "core/text/utlstring.h"

enum PromptIcon_t
{
	PROMPT_ICON_NONE,
	PROMPT_ICON_INFORMATION,
	PROMPT_ICON_WARNING,
	PROMPT_ICON_CRITICAL,
	PROMPT_ICON_QUESTION,
};

// Buttons of a question; a set of them is a bit mask. PROMPT_BUTTON_NONE is the answer
// of a box that was closed without a button.
enum PromptButton_t : unsigned
{
	PROMPT_BUTTON_NONE = 0,
	PROMPT_BUTTON_OK = 1u << 0,
	PROMPT_BUTTON_CANCEL = 1u << 1,
	PROMPT_BUTTON_YES = 1u << 2,
	PROMPT_BUTTON_NO = 1u << 3,
	PROMPT_BUTTON_YES_TO_ALL = 1u << 4,
	PROMPT_BUTTON_NO_TO_ALL = 1u << 5,
	PROMPT_BUTTON_SAVE = 1u << 6,
	PROMPT_BUTTON_DISCARD = 1u << 7,
	PROMPT_BUTTON_ABORT = 1u << 8,
	PROMPT_BUTTON_RETRY = 1u << 9,
	PROMPT_BUTTON_IGNORE = 1u << 10,
	PROMPT_BUTTON_CLOSE = 1u << 11,
};

// The readable name of one button ("Yes", "Cancel", ...), for logs and failures.
const char *PromptButtonName( PromptButton_t eButton );

enum PromptKind_t
{
	PROMPT_KIND_MESSAGE,     // a box with only "OK": nothing to decide
	PROMPT_KIND_QUESTION,    // a box with a choice of buttons
	PROMPT_KIND_OPEN_FILE,   // pick one existing file
	PROMPT_KIND_OPEN_FILES,  // pick any number of existing files
	PROMPT_KIND_SAVE_FILE,   // name a file to write
	PROMPT_KIND_DIRECTORY,   // pick an existing directory
	PROMPT_KIND_PICK_ITEM,   // pick one row of a list
	PROMPT_KIND_PICK_COLOR,  // pick a colour
};

const char *PromptKindName( PromptKind_t eKind );

// One message box or question. Texts may hold simple rich text ("<br>", "<pre>").
struct PromptQuestion_t
{
	PromptIcon_t m_eIcon = PROMPT_ICON_NONE;
	CUtlString m_strTitle;
	CUtlString m_strText;
	CUtlString m_strInformativeText;
	unsigned m_nButtons = PROMPT_BUTTON_OK;
	PromptButton_t m_eDefaultButton = PROMPT_BUTTON_NONE;
	// The window to centre on and block; a QWidget* in the windowed build, or null for
	// the active window.
	void *m_pParentWindow = nullptr;

	// A label that replaces a button's standard text ("Reload" for Yes, ...).
	void SetButtonLabel( PromptButton_t eButton, const char *pLabel );
	// The replaced label, or null when the button keeps its standard text.
	const char *GetButtonLabel( PromptButton_t eButton ) const;

	bool HasButton( PromptButton_t eButton ) const { return ( m_nButtons & eButton ) != 0; }

	struct ButtonLabel_t
	{
		PromptButton_t m_eButton;
		CUtlString m_strLabel;
	};
	CUtlVector<ButtonLabel_t> m_ButtonLabels;
};

// One file or directory dialog.
struct PromptFileRequest_t
{
	PromptKind_t m_eKind = PROMPT_KIND_OPEN_FILE;
	CUtlString m_strTitle;
	// The directory to start in, or a file name to start with (save dialogs).
	CUtlString m_strStartPath;
	// Qt-style filter text: "Particle System Definition (*.tfxs);;All Files (*)".
	CUtlString m_strFilter;
	void *m_pParentWindow = nullptr;
};

// One modal list to pick a row from, each row a name with a description.
struct PromptPickRequest_t
{
	struct Item_t
	{
		CUtlString m_strName;
		CUtlString m_strDescription;
	};
	CUtlString m_strTitle;
	CUtlVector<Item_t> m_Items;
	void *m_pParentWindow = nullptr;
};

class IPrompt
{
public:
	// A box with only "OK". Returns when the user has dismissed it.
	virtual void ShowMessage( const PromptQuestion_t &message ) = 0;
	// A question; answers the button chosen, PROMPT_BUTTON_NONE when closed without one.
	virtual PromptButton_t Ask( const PromptQuestion_t &question ) = 0;
	// A file or directory dialog. Fills pChosen with the chosen paths as the dialog gives
	// them (callers normalise) and answers true; false, with pChosen empty, on cancel.
	virtual bool RunFileDialog( const PromptFileRequest_t &request, CUtlVector<CUtlString> *pChosen ) = 0;
	// A list to pick one row from: true with the row's index, false when cancelled. The
	// base answers as a batch run does: cancelled, and logged.
	virtual bool PickItem( const PromptPickRequest_t &request, int *pChosen );
	// A colour dialog starting at a colour: true with the colour chosen, false when
	// cancelled. The base answers as a batch run does: cancelled, and logged.
	virtual bool PickColor( const char *pTitle, const Color &initial, Color *pChosen, void *pParentWindow = nullptr );
	// The short sound of a refused command; the base (a batch run) makes none.
	virtual void Beep() {}

	// Shorthands over the three operations above.
	void ShowMessage( PromptIcon_t eIcon, const char *pTitle, const char *pText, void *pParentWindow = nullptr );
	void Warning( const char *pTitle, const char *pText, void *pParentWindow = nullptr ) { ShowMessage( PROMPT_ICON_WARNING, pTitle, pText, pParentWindow ); }
	void Critical( const char *pTitle, const char *pText, void *pParentWindow = nullptr ) { ShowMessage( PROMPT_ICON_CRITICAL, pTitle, pText, pParentWindow ); }
	void Information( const char *pTitle, const char *pText, void *pParentWindow = nullptr ) { ShowMessage( PROMPT_ICON_INFORMATION, pTitle, pText, pParentWindow ); }
	PromptButton_t Ask( PromptIcon_t eIcon, const char *pTitle, const char *pText, unsigned nButtons, PromptButton_t eDefault, void *pParentWindow = nullptr );

	bool GetOpenFileName( const char *pTitle, const char *pStartDir, const char *pFilter, CUtlString *pChosen, void *pParentWindow = nullptr );
	bool GetOpenFileNames( const char *pTitle, const char *pStartDir, const char *pFilter, CUtlVector<CUtlString> *pChosen, void *pParentWindow = nullptr );
	bool GetSaveFileName( const char *pTitle, const char *pStartPath, const char *pFilter, CUtlString *pChosen, void *pParentWindow = nullptr );
	bool GetExistingDirectory( const char *pTitle, const char *pStartDir, CUtlString *pChosen, void *pParentWindow = nullptr );

protected:
	~IPrompt() = default;
};

// The current prompt; never null (the headless one when none is installed).
IPrompt *GetPrompt();
// Installs a prompt (null goes back to the headless one); answers the previous one.
// The prompt must outlive its installation.
IPrompt *SetPrompt( IPrompt *pPrompt );

// Installs a prompt for the life of a scope and puts the previous one back after.
class CScopedPrompt
{
public:
	explicit CScopedPrompt( IPrompt *pPrompt ) : m_pPrevious( SetPrompt( pPrompt ) ) {}
	~CScopedPrompt() { SetPrompt( m_pPrevious ); }
	CScopedPrompt( const CScopedPrompt & ) = delete;
	CScopedPrompt &operator=( const CScopedPrompt & ) = delete;

private:
	IPrompt *m_pPrevious;
};
