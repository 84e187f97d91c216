#pragma once
// The prompt layer with real Qt dialogs: message boxes for messages and questions, file
// dialogs for picking files and directories. Installed by the windowed host.

#include "core/host/iprompt.h"

class QWidget;

class CQtPrompt final : public IPrompt
{
public:
	// Dialogs without a parent of their own centre on this window (or the active one).
	void SetDefaultParent( QWidget *pParent ) { m_pDefaultParent = pParent; }

	void ShowMessage( const PromptQuestion_t &message ) override;
	PromptButton_t Ask( const PromptQuestion_t &question ) override;
	bool RunFileDialog( const PromptFileRequest_t &request, CUtlVector<CUtlString> *pChosen ) override;
	bool PickItem( const PromptPickRequest_t &request, int *pChosen ) override;
	bool PickColor( const char *pTitle, const Color &initial, Color *pChosen, void *pParentWindow = nullptr ) override;
	void Beep() override;
	using IPrompt::Ask;
	using IPrompt::ShowMessage;

private:
	QWidget *GetParent( void *pParentWindow ) const;

	QWidget *m_pDefaultParent = nullptr;
};
