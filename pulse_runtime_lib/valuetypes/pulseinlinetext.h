#pragma once
// Owned text that lives in place when it fits (with its NUL) in N bytes and on the heap
// otherwise. The sound event and resource name value types embed it, so its layout is
// part of their storage size: 8 bytes of length and flags, then N bytes.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

template <size_t N>
class CPulseInlineText
{
	static_assert( N >= sizeof( char * ) && N % sizeof( char * ) == 0 );

public:
	CPulseInlineText() { m_Inline[ 0 ] = '\0'; }
	explicit CPulseInlineText( const char *pText ) : CPulseInlineText() { Set( pText ); }
	CPulseInlineText( const CPulseInlineText &other ) : CPulseInlineText() { Set( other.Get(), other.m_nLength ); }
	CPulseInlineText &operator=( const CPulseInlineText &other )
	{
		if ( this != &other )
			Set( other.Get(), other.m_nLength );
		return *this;
	}
	~CPulseInlineText() { Purge(); }

	const char *Get() const { return IsOnHeap() ? m_pHeap : m_Inline; }
	size_t Length() const { return m_nLength; }
	bool IsEmpty() const { return m_nLength == 0; }
	bool IsOnHeap() const { return ( m_nFlags & FLAG_HEAP ) != 0; }

	void Set( const char *pText ) { Set( pText, pText ? strlen( pText ) : 0 ); }
	void Set( const char *pText, size_t nLength )
	{
		if ( !pText )
			nLength = 0;
		// Build the new text before freeing the old: pText may point into it.
		if ( nLength < N )
		{
			char buffer[ N ];
			memcpy( buffer, pText ? pText : "", nLength );
			buffer[ nLength ] = '\0';
			Purge();
			memcpy( m_Inline, buffer, nLength + 1 );
		}
		else
		{
			char *pHeap = new char[ nLength + 1 ];
			memcpy( pHeap, pText, nLength );
			pHeap[ nLength ] = '\0';
			Purge();
			m_pHeap = pHeap;
			m_nFlags |= FLAG_HEAP;
		}
		m_nLength = uint32_t( nLength );
	}

	// Frees any heap copy and leaves the empty text.
	void Purge()
	{
		if ( IsOnHeap() )
			delete[] m_pHeap;
		m_nFlags = 0;
		m_nLength = 0;
		m_Inline[ 0 ] = '\0';
	}

	bool IsIdentical( const CPulseInlineText &other ) const
	{
		return m_nLength == other.m_nLength && memcmp( Get(), other.Get(), m_nLength ) == 0;
	}

private:
	enum : uint32_t
	{
		FLAG_HEAP = 0x1,
	};

	uint32_t m_nLength = 0;
	uint32_t m_nFlags = 0;
	union
	{
		char m_Inline[ N ];
		char *m_pHeap;
	};
};
