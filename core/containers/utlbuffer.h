#pragma once
// A byte buffer with independent read (get) and write (put) positions. It either owns
// growable memory or reads caller memory without copying it.

#include <cstddef>
#include <cstdint>
#include <algorithm>
#include <cstring>
#include <vector>

class CUtlBuffer
{
public:
	enum BufferFlags_t : unsigned
	{
		READ_ONLY = 0x1,  // over caller memory: no writes
		TEXT_BUFFER = 0x2, // holds text; kept for callers that mark it
	};

	CUtlBuffer() = default;
	// Reads nSize bytes of caller memory without copying; the memory must outlive the buffer.
	CUtlBuffer( const void *pMemory, size_t nSize, unsigned nFlags = READ_ONLY );
	CUtlBuffer( const CUtlBuffer & ) = delete;
	CUtlBuffer &operator=( const CUtlBuffer & ) = delete;
	CUtlBuffer( CUtlBuffer && ) noexcept;
	CUtlBuffer &operator=( CUtlBuffer && ) noexcept;

	const uint8_t *Base() const { return m_pExternal ? m_pExternal : m_Storage.data(); }
	uint8_t *Base() { return m_pExternal ? nullptr : m_Storage.data(); }
	const char *String() const; // the whole contents as text (owned buffers are kept NUL-terminated)

	bool IsReadOnly() const { return m_pExternal != nullptr; }
	bool IsText() const { return ( m_nFlags & TEXT_BUFFER ) != 0; }

	// Bytes written so far (the put position's end).
	size_t TellPut() const { return m_nPut; }
	size_t TellMaxPut() const { return m_nPut; }
	size_t Size() const { return m_nPut; }
	size_t TellGet() const { return m_nGet; }
	void SeekGet( size_t nOffset ) { m_nGet = nOffset > m_nPut ? m_nPut : nOffset; }
	size_t GetBytesRemaining() const { return m_nPut - m_nGet; }
	const uint8_t *PeekGet() const { return Base() + m_nGet; }
	bool IsValid() const { return true; }

	void Put( const void *pData, size_t nSize );
	void PutChar( char c ) { Put( &c, 1 ); }
	void PutString( const char *pString ) { if ( pString ) Put( pString, strlen( pString ) ); }
	void Printf( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );

	// Copies up to nSize bytes from the get position; returns the count read.
	size_t Get( void *pData, size_t nSize );

	void EnsureCapacity( size_t nSize );
	void Clear(); // empties the buffer and resets both positions
	void Purge();

private:
	std::vector<uint8_t> m_Storage; // always one byte past m_nPut, holding NUL
	const uint8_t *m_pExternal = nullptr;
	size_t m_nPut = 0;
	size_t m_nGet = 0;
	unsigned m_nFlags = 0;
};
