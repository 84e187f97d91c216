#include "core/symbols/globalsymbol.h"

#include "core/symbols/utlsymboltablemt.h"
#include "core/text/stringhash.h"

#include <cstring>

CGlobalSymbol::CGlobalSymbol( const char *pString )
{
	if ( pString && *pString )
	{
		CUtlSymbolTableMT &table = GlobalSymbolTableCaseSensitive();
		m_pString = table.String( table.AddString( pString ) );
	}
}

CGlobalSymbol CGlobalSymbol::Find( const char *pString )
{
	CGlobalSymbol symbol;
	if ( pString && *pString )
	{
		CUtlSymbolTableMT &table = GlobalSymbolTableCaseSensitive();
		CUtlSymbol found = table.Find( pString );
		if ( found.IsValid() )
			symbol.m_pString = table.String( found );
	}
	return symbol;
}

uint32_t CGlobalSymbol::GetHash() const
{
	return m_pString ? HashStringFNV1a( m_pString, strlen( m_pString ) ) : 0;
}
