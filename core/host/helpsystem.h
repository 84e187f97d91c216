#pragma once
// The plain help store: entries in memory.

#include <mutex>
#include <string>
#include <unordered_map>

#include "core/host/ihelpsystem.h"
#include "core/text/utlstring.h"

class CHelpSystem final : public IHelpSystem
{
public:
	void OpenScope( const char *pScope, int nFlags ) override;
	void AddEntry( const char *pScope, const char *pKey, const char *pTitle, const char *pText = nullptr, const char *pFurtherText = nullptr ) override;
	const char *GetTitle( const char *pScope, const char *pKey ) const override;
	const char *GetText( const char *pScope, const char *pKey ) const override;
	bool KeyTextContainsWord( const char *pScope, const char *pKey, const char *pWord ) const override;
	bool HasScope( const char *pScope ) const override;

	// The flags a scope was opened with, or -1 for an unknown scope.
	int GetScopeFlags( const char *pScope ) const;
	int GetEntryCount( const char *pScope ) const;

private:
	struct Entry_t
	{
		CUtlString m_strTitle;
		CUtlString m_strText;
		CUtlString m_strFurtherText;
	};
	struct Scope_t
	{
		int m_nFlags = 0;
		std::unordered_map<std::string, Entry_t> m_Entries; // by lower-cased key
	};

	const Entry_t *FindEntry( const char *pScope, const char *pKey ) const;

	mutable std::mutex m_Mutex;
	std::unordered_map<std::string, Scope_t> m_Scopes; // by lower-cased name
};
