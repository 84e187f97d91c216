#pragma once
// A symbol table that many threads may use at once. Text pointers it answers stay
// valid until RemoveAll, so they may be kept and compared after the call.

#include "core/symbols/utlsymboltable.h"

#include <shared_mutex>

class CUtlSymbolTableMT
{
public:
	explicit CUtlSymbolTableMT( bool bCaseInsensitive = false ) : m_Table( bCaseInsensitive ) {}

	CUtlSymbol AddString( const char *pString );
	CUtlSymbol Find( const char *pString ) const;
	const char *String( CUtlSymbol symbol ) const;
	uint32_t GetHash( CUtlSymbol symbol ) const;
	int GetNumStrings() const;
	bool IsCaseInsensitive() const { return m_Table.IsCaseInsensitive(); }
	void RemoveAll();

private:
	mutable std::shared_mutex m_Mutex;
	CUtlSymbolTable m_Table;
};

// The process's shared tables. Never destroyed, so their text outlives every static;
// never call RemoveAll on them (CGlobalSymbol keeps their pointers).
CUtlSymbolTableMT &GlobalSymbolTable();              // ignores case
CUtlSymbolTableMT &GlobalSymbolTableCaseSensitive(); // exact text
