#pragma once
// Interned strings: each distinct string is stored once and named by a CUtlSymbol.
// Ids are dense and given in order of first addition (0, 1, 2, ...), so a table also
// serves as an ordered set of names. A case-insensitive table treats "Foo" and "foo"
// as one symbol and keeps the spelling that came first.
//
// Strings keep their address until RemoveAll. Not thread-safe; see CUtlSymbolTableMT.

#include "core/symbols/utlsymbol.h"

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>

class CUtlSymbolTable
{
public:
	explicit CUtlSymbolTable( bool bCaseInsensitive = false );
	CUtlSymbolTable( const CUtlSymbolTable &other );
	CUtlSymbolTable &operator=( const CUtlSymbolTable &other );

	// The symbol of the string, adding it when new. A null string reads as "".
	CUtlSymbol AddString( const char *pString );
	CUtlSymbol AddString( std::string_view string );
	// The symbol of the string, or an invalid symbol when it was never added.
	CUtlSymbol Find( const char *pString ) const;
	CUtlSymbol Find( std::string_view string ) const;
	bool HasElement( const char *pString ) const { return Find( pString ).IsValid(); }

	// The text of a symbol; "" for an invalid or foreign one.
	const char *String( CUtlSymbol symbol ) const;
	// FNV-1a of the text (of its lower-case form in a case-insensitive table); 0 for an invalid symbol.
	uint32_t GetHash( CUtlSymbol symbol ) const;

	int GetNumStrings() const { return int( m_Strings.size() ); }
	bool IsCaseInsensitive() const { return m_bCaseInsensitive; }
	// Forgets every string; earlier symbols and text pointers become invalid.
	void RemoveAll();

private:
	struct Entry_t
	{
		std::string m_strText;
		uint32_t m_nHash;
	};
	struct KeyHash_t
	{
		bool m_bCaseInsensitive;
		size_t operator()( std::string_view key ) const;
	};
	struct KeyEqual_t
	{
		bool m_bCaseInsensitive;
		bool operator()( std::string_view a, std::string_view b ) const;
	};

	void Rebuild();

	bool m_bCaseInsensitive;
	std::deque<Entry_t> m_Strings; // a deque keeps each string at its address
	std::unordered_map<std::string_view, UtlSymId_t, KeyHash_t, KeyEqual_t> m_Lookup;
};
