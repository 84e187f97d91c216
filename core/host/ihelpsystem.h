#pragma once
// The host's help: entries of (key, title, text, further text) grouped in scopes, such
// as "particles" with a key "Element.C_OP_Decay" per function class.

constexpr const char *HELPSYSTEM_INTERFACE_VERSION = "HelpSystem_001";

class IHelpSystem
{
public:
	// Makes the scope known (again); nFlags are kept for the scope and not interpreted.
	virtual void OpenScope( const char *pScope, int nFlags ) = 0;
	// Adds or replaces the entry of a key in a scope (opening the scope if needed).
	virtual void AddEntry( const char *pScope, const char *pKey, const char *pTitle, const char *pText = nullptr, const char *pFurtherText = nullptr ) = 0;
	// The key's title in the scope ("" when none); a null scope searches every scope.
	// Keys and scopes compare ignoring case.
	virtual const char *GetTitle( const char *pScope, const char *pKey ) const = 0;
	// The key's text ("" when none).
	virtual const char *GetText( const char *pScope, const char *pKey ) const = 0;
	// Whether the word occurs, ignoring case, in the key's text or further text (the
	// title is the name that callers search themselves).
	virtual bool KeyTextContainsWord( const char *pScope, const char *pKey, const char *pWord ) const = 0;
	virtual bool HasScope( const char *pScope ) const = 0;

protected:
	~IHelpSystem() = default;
};

IHelpSystem *GetHelpSystem();
void SetHelpSystem( IHelpSystem *pHelpSystem );
