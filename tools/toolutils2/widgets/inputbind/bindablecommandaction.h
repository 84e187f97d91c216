#pragma once
// A menu or tool bar action that runs a bindable command through the input bind
// manager, so a click does what the key does, and whose text shows the key.

#include <QAction>

#include "core/text/utlstring.h"

class IBindTarget;

enum CommandTextMode_t
{
	COMMAND_TEXT_MODE_NONE,   // the label alone
	COMMAND_TEXT_MODE_MENU,   // the label, and the key in the menu's shortcut column
	COMMAND_TEXT_MODE_BUTTON, // the label; the key in the tool tip
	COMMAND_TEXT_MODE_ICON,   // no text; label and key in the tool tip
};

class CQBindableCommandAction final : public QAction
{
	Q_OBJECT

public:
	CQBindableCommandAction( IBindTarget *pTarget, const char *pCommandName, const char *pLabel, QObject *pParent, CommandTextMode_t eMode = COMMAND_TEXT_MODE_MENU );
	~CQBindableCommandAction() override;

	IBindTarget *GetTarget() const { return m_pTarget; }
	uint32_t GetCommandToken() const { return m_nCommandToken; }
	const char *GetCommandName() const { return m_strCommand.Get(); }
	const char *GetLabel() const { return m_strLabel.Get(); }
	void SetLabel( const char *pLabel );
	// The sequence bound to the command when the texts were last refreshed.
	const QString &GetBindingText() const { return m_strBinding; }

	// Follows the bindings: the manager calls this after each load.
	void RefreshText();

private slots:
	void OnTriggered();

private:
	IBindTarget *m_pTarget;
	CUtlString m_strCommand;
	uint32_t m_nCommandToken;
	CUtlString m_strLabel;
	CommandTextMode_t m_eMode;
	QString m_strBinding;
};
