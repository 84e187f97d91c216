#pragma once
// Owning text. A null pointer reads as the empty string everywhere.

#include <cstdarg>
#include <cstddef>
#include <string>
#include <string_view>

class CUtlString
{
public:
	CUtlString() = default;
	CUtlString( const char *pString ) { Set( pString ); }
	CUtlString( const char *pString, size_t nLength ) : m_Storage( pString ? pString : "", pString ? nLength : 0 ) {}
	CUtlString( std::string_view view ) : m_Storage( view ) {}

	const char *Get() const { return m_Storage.c_str(); }
	const char *String() const { return m_Storage.c_str(); }
	operator const char *() const { return m_Storage.c_str(); }
	std::string_view View() const { return m_Storage; }

	size_t Length() const { return m_Storage.size(); }
	bool IsEmpty() const { return m_Storage.empty(); }

	// Out of line: inlined into callers that pass short literals, g++ 12 reports a false
	// -Wrestrict overlap inside std::string::assign.
	void Set( const char *pString );
	void Set( const char *pString, size_t nLength );
	void Append( const char *pString ) { if ( pString ) m_Storage.append( pString ); }
	void Append( const char *pString, size_t nLength ) { if ( pString ) m_Storage.append( pString, nLength ); }
	void Append( char c ) { m_Storage.push_back( c ); }

	// printf-style formatting; replaces the contents.
	int Format( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );
	// As Format, for callers that take their own variable arguments.
	int FormatV( const char *pFormat, va_list args ) __attribute__( ( format( printf, 2, 0 ) ) );
	int AppendFormat( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );

	void Purge() { std::string().swap( m_Storage ); }
	void Clear() { m_Storage.clear(); }

	// Turns every slash of either kind into cSeparator.
	void FixSlashes( char cSeparator = '\\' );
	// The directory part of a path, without the trailing separator ("a/b/c.txt" -> "a/b").
	CUtlString DirName() const;
	// Removes the file name and its separator from the path, in place.
	void StripFilename();
	// Removes the extension ("a/b.c" -> "a/b"), in place.
	void StripExtension();
	void ToLower();
	void ToUpper();

	// ASCII case-insensitive comparison; null reads as "".
	bool IsEqual_CaseInsensitive( const char *pOther ) const;
	// The extension of the file name without its dot, or "".
	const char *GetExtension() const;
	// The part after the last separator of either kind.
	const char *UnqualifiedFilename() const;
	void Replace( char cFrom, char cTo );
	// Replaces every occurrence of pMatch; answers whether anything changed.
	bool Replace( const char *pMatch, const char *pReplace, bool bCaseSensitive = true );
	// Removes blanks at both ends.
	void TrimWhitespace();

	bool operator==( const CUtlString &other ) const { return m_Storage == other.m_Storage; }
	bool operator==( const char *pOther ) const { return m_Storage == ( pOther ? pOther : "" ); }
	bool operator<( const CUtlString &other ) const { return m_Storage < other.m_Storage; }
	CUtlString &operator=( const char *pString ) { Set( pString ); return *this; }
	CUtlString &operator+=( const char *pString ) { Append( pString ); return *this; }
	CUtlString &operator+=( const CUtlString &other ) { m_Storage += other.m_Storage; return *this; }
	CUtlString &operator+=( char c ) { m_Storage.push_back( c ); return *this; }
	char operator[]( size_t i ) const { return m_Storage[ i ]; }

	std::string &Storage() { return m_Storage; }
	const std::string &Storage() const { return m_Storage; }

private:
	std::string m_Storage;
};
