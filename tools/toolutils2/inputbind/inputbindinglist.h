#pragma once
// The key bindings read from binding files: which input sequence runs which command of
// which context. A file is KV3 text:
//
//   m_InputMacros = [ { m_Name = "...", m_Input = "Ctrl+S" }, ... ]
//   m_Bindings    = [ { m_Input = "Ctrl+S" or a macro name, m_Context = "...", m_Command = "..." }, ... ]
//
// An input text is codes joined by "+": the last one triggers, the others must be held.
// Bindings are only ever added; the first of two equal ones stays.

#include <cstdint>
#include <vector>

#include "core/text/utlstring.h"
#include "tools/toolutils2/inputbind/inputcodes.h"

class KeyValues3;

struct InputBinding_t
{
	std::vector<InputCode_t> m_Sequence;
	CUtlString m_strContext;
	uint32_t m_nContextToken = 0;
	CUtlString m_strCommand;
	uint32_t m_nCommandToken = 0;
};

enum BindingLoadResult_t
{
	BINDING_LOAD_OK,
	BINDING_LOAD_CANNOT_READ,  // the file is missing or can't be read
	BINDING_LOAD_CANNOT_PARSE, // the text is not KV3, or not a binding table
};

class CInputBindingList
{
public:
	// Reads the file through the host's file system under the path id, and adds its
	// bindings. On failure the list is unchanged and pError says why.
	BindingLoadResult_t LoadFromFile( const char *pPath, const char *pPathID, CUtlString *pError );
	BindingLoadResult_t LoadFromText( const char *pText, size_t nLength, const char *pSourceName, CUtlString *pError );
	// Adds the bindings of an already parsed table; false when it isn't a binding table.
	bool AddFromKV3( const KeyValues3 &root, CUtlString *pError );

	const std::vector<InputBinding_t> &GetBindings() const { return m_Bindings; }
	// Names of the files loaded, in order.
	const std::vector<CUtlString> &GetLoadedFiles() const { return m_LoadedFiles; }
	// The first binding of the context and command; null when there is none.
	const InputBinding_t *FindBinding( uint32_t nContextToken, uint32_t nCommandToken ) const;

	// Splits an input text at "+", trims each part and looks it up. False when a part
	// is not an input code name; an empty text gives an empty sequence.
	static bool ParseSequence( const char *pText, std::vector<InputCode_t> *pSequence );
	// Codes joined by "+", as the table names them ("Ctrl+Shift+S").
	static void FormatSequence( const std::vector<InputCode_t> &sequence, CUtlString *pText );

private:
	std::vector<InputBinding_t> m_Bindings;
	std::vector<CUtlString> m_LoadedFiles;
};
