#include "core/symbols/utlsymboltablemt.h"

#include <mutex>

CUtlSymbol CUtlSymbolTableMT::AddString( const char *pString )
{
	{
		// Most names are already in: look with the shared lock first.
		std::shared_lock<std::shared_mutex> lock( m_Mutex );
		CUtlSymbol symbol = m_Table.Find( pString );
		if ( symbol.IsValid() )
			return symbol;
	}
	std::unique_lock<std::shared_mutex> lock( m_Mutex );
	return m_Table.AddString( pString );
}

CUtlSymbol CUtlSymbolTableMT::Find( const char *pString ) const
{
	std::shared_lock<std::shared_mutex> lock( m_Mutex );
	return m_Table.Find( pString );
}

const char *CUtlSymbolTableMT::String( CUtlSymbol symbol ) const
{
	std::shared_lock<std::shared_mutex> lock( m_Mutex );
	return m_Table.String( symbol );
}

uint32_t CUtlSymbolTableMT::GetHash( CUtlSymbol symbol ) const
{
	std::shared_lock<std::shared_mutex> lock( m_Mutex );
	return m_Table.GetHash( symbol );
}

int CUtlSymbolTableMT::GetNumStrings() const
{
	std::shared_lock<std::shared_mutex> lock( m_Mutex );
	return m_Table.GetNumStrings();
}

void CUtlSymbolTableMT::RemoveAll()
{
	std::unique_lock<std::shared_mutex> lock( m_Mutex );
	m_Table.RemoveAll();
}

CUtlSymbolTableMT &GlobalSymbolTable()
{
	static CUtlSymbolTableMT *s_pTable = new CUtlSymbolTableMT( true );
	return *s_pTable;
}

CUtlSymbolTableMT &GlobalSymbolTableCaseSensitive()
{
	static CUtlSymbolTableMT *s_pTable = new CUtlSymbolTableMT( false );
	return *s_pTable;
}
