#pragma once
// Text that lives in the object itself while it is short, for building names and paths
// on the stack without touching the heap. Longer text moves to the heap.

#include <cstdarg>
#include <cstddef>

class CBufferString
{
public:
	static constexpr size_t INLINE_CAPACITY = 96; // characters, terminator included

	CBufferString() = default;
	CBufferString( const char *pString ) { Set( pString ); }
	CBufferString( const CBufferString &other ) { Set( other.Get(), other.Length() ); }
	CBufferString( CBufferString &&other ) noexcept;
	CBufferString &operator=( const CBufferString &other );
	CBufferString &operator=( CBufferString &&other ) noexcept;
	CBufferString &operator=( const char *pString ) { Set( pString ); return *this; }
	~CBufferString() { Purge(); }

	const char *Get() const { return m_pString; }
	size_t Length() const { return m_nLength; }
	bool IsEmpty() const { return m_nLength == 0; }
	// True while the text still fits the storage inside the object.
	bool IsInline() const { return m_pString == m_Inline; }

	void Set( const char *pString );
	void Set( const char *pString, size_t nLength );
	void Append( const char *pString );
	void Append( const char *pString, size_t nLength );
	void Append( char c ) { Append( &c, 1 ); }

	// printf-style; Format replaces the text, AppendFormat adds to it. Both answer the new length.
	size_t Format( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );
	size_t AppendFormat( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );
	size_t AppendFormatV( const char *pFormat, va_list args );

	// Removes the file name's extension and its dot ("a/b.c" -> "a/b"); answers the text.
	const char *StripExtension();
	// Removes separators at the end.
	const char *StripTrailingSlash();
	// ASCII case changes, in place.
	const char *ToLowerFast();
	const char *ToUpperFast();
	// Turns every slash of either kind into cSeparator.
	const char *FixSlashes( char cSeparator = '\\' );
	void Replace( char cFrom, char cTo );
	// Keeps the first nLength characters (no change when already shorter).
	void Truncate( size_t nLength );

	bool IsEqual( const char *pOther ) const;
	bool IsEqual_FastCaseInsensitive( const char *pOther ) const;

	void Clear() { Truncate( 0 ); }
	// Frees heap storage and empties the text.
	void Purge();

private:
	void EnsureCapacity( size_t nCapacity ); // nCapacity includes the terminator

	char m_Inline[ INLINE_CAPACITY ] = {};
	char *m_pString = m_Inline;
	size_t m_nLength = 0;
	size_t m_nCapacity = INLINE_CAPACITY;
};
