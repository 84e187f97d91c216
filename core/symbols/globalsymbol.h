#pragma once
// A name interned in the process-wide case-sensitive table. Equal text gives the same
// pointer, so comparing two symbols is comparing two pointers. The empty name is the
// null symbol. Cheap to copy; safe to make on any thread.

#include <cstdint>

class CGlobalSymbol
{
public:
	constexpr CGlobalSymbol() = default;
	explicit CGlobalSymbol( const char *pString );

	// The symbol if the text was ever interned, else the null symbol; adds nothing.
	static CGlobalSymbol Find( const char *pString );

	const char *String() const { return m_pString ? m_pString : ""; }
	bool IsValid() const { return m_pString != nullptr; }
	// FNV-1a of the text; 0 for the null symbol.
	uint32_t GetHash() const;

	bool operator==( const CGlobalSymbol &other ) const { return m_pString == other.m_pString; }

private:
	const char *m_pString = nullptr;
};
