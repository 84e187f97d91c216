#pragma once
// A small handle to a string interned in a symbol table: the index of its first
// addition. Handles are only meaningful together with the table that made them.

#include <cstdint>

using UtlSymId_t = uint32_t;
constexpr UtlSymId_t UTL_INVAL_SYMBOL = ~UtlSymId_t( 0 );

class CUtlSymbol
{
public:
	constexpr CUtlSymbol() = default;
	constexpr explicit CUtlSymbol( UtlSymId_t nId ) : m_nId( nId ) {}

	constexpr UtlSymId_t GetId() const { return m_nId; }
	constexpr bool IsValid() const { return m_nId != UTL_INVAL_SYMBOL; }
	constexpr bool operator==( const CUtlSymbol &other ) const = default;

private:
	UtlSymId_t m_nId = UTL_INVAL_SYMBOL;
};
