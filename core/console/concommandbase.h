#pragma once
// What console variables and commands share: a name, help text and flags. Each
// registers itself in the process-wide registry when constructed (static objects
// included) and leaves it when destroyed.

enum ConCommandFlags_t : int
{
	FCVAR_NONE = 0,
	FCVAR_DEVELOPMENTONLY = 1 << 1, // not listed on customer machines
	FCVAR_HIDDEN = 1 << 4,          // never listed
	FCVAR_ARCHIVE = 1 << 7,         // the host saves the value with the tool settings
	FCVAR_READONLY = 1 << 14,       // console text can't change it; code can
};

class ConCommandBase
{
public:
	ConCommandBase( const ConCommandBase & ) = delete;
	ConCommandBase &operator=( const ConCommandBase & ) = delete;

	const char *GetName() const { return m_pName; }
	const char *GetHelpText() const { return m_pHelp; }
	int GetFlags() const { return m_nFlags; }
	bool IsFlagSet( int nFlag ) const { return ( m_nFlags & nFlag ) != 0; }
	virtual bool IsCommand() const = 0;
	// False when another variable or command had the name first.
	bool IsRegistered() const { return m_bRegistered; }

protected:
	// The texts must outlive the object (string literals, as a rule).
	ConCommandBase( const char *pName, const char *pHelp, int nFlags );
	virtual ~ConCommandBase() = default;
	// Subclasses call these from their constructor / destructor, when fully built.
	void Register();
	void Unregister();

private:
	const char *m_pName;
	const char *m_pHelp;
	int m_nFlags;
	bool m_bRegistered = false;
};
