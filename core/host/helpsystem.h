#pragma once
// The plain help store: entries in memory. The tools name their entries (titles); what
// the entries say comes from the help files under the game's "tools/help/", which the
// host reads at start and which answer for every entry that carries no text of its own.

#include <mutex>
#include <string>
#include <unordered_map>

#include "core/host/ihelpsystem.h"
#include "core/text/utlstring.h"

class IFileSystem;

class CHelpSystem final : public IHelpSystem
{
public:
	void OpenScope( const char *pScope, int nFlags ) override;
	void AddEntry( const char *pScope, const char *pKey, const char *pTitle, const char *pText = nullptr, const char *pFurtherText = nullptr ) override;
	const char *GetTitle( const char *pScope, const char *pKey ) const override;
	const char *GetText( const char *pScope, const char *pKey ) const override;
	bool KeyTextContainsWord( const char *pScope, const char *pKey, const char *pWord ) const override;
	bool HasScope( const char *pScope ) const override;

	// Reads every "tools/help/*.txt" of the "GAME" search paths: KV3 tables of m_Scope and
	// m_Entries, each { m_Key, m_Text }. Answers the texts read; a file that can't be read
	// adds its reason to pErrors (one line each) and the others are read still.
	int LoadTextFiles( IFileSystem *pFileSystem, CUtlString *pErrors );
	// The same for one file's text.
	int LoadTextsFromKV3Text( const char *pText, const char *pSourceName, CUtlString *pError );

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
	// The help file's text of a key: the scope's, or any scope's for a null scope.
	const CUtlString *FindFileText( const char *pScope, const char *pKey ) const;

	mutable std::mutex m_Mutex;
	std::unordered_map<std::string, Scope_t> m_Scopes; // by lower-cased name
	// Texts of the help files: scope, then key, both lower-cased.
	std::unordered_map<std::string, std::unordered_map<std::string, CUtlString>> m_FileTexts;
};
