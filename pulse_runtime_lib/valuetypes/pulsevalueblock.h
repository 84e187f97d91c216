#pragma once
// The layout of a block of values from a list of types: register files, variable blocks,
// call argument packs. Offsets are 16-bit because compiled chunks store them so; a list
// whose block would not fit is refused.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CUtlString;

class CPulseValueBlockLayout
{
public:
	// Places each value at its type's alignment, in order. False with a message when the
	// block would exceed 65535 bytes; the layout is then empty.
	bool Build( const CPulseValueFullType *pTypes, int nCount, CUtlString *pError );

	int GetCount() const { return int( m_Types.size() ); }
	const CPulseValueFullType &GetType( int nIndex ) const { return m_Types[ size_t( nIndex ) ]; }
	uint16_t GetOffset( int nIndex ) const { return m_Offsets[ size_t( nIndex ) ]; }
	size_t GetSize() const { return m_nSize; }
	size_t GetAlignment() const { return m_nAlignment; }

	// pBlock must be GetSize() bytes at GetAlignment(). Builds every value's default.
	void ConstructAll( void *pBlock ) const;
	void DestructAll( void *pBlock ) const;
	// Both blocks built with this layout; every value of the target is replaced.
	void CopyAll( void *pTarget, const void *pSource ) const;

	void *GetValue( void *pBlock, int nIndex ) const { return static_cast<unsigned char *>( pBlock ) + GetOffset( nIndex ); }
	const void *GetValue( const void *pBlock, int nIndex ) const { return static_cast<const unsigned char *>( pBlock ) + GetOffset( nIndex ); }

private:
	std::vector<CPulseValueFullType> m_Types;
	std::vector<uint16_t> m_Offsets;
	size_t m_nSize = 0;
	size_t m_nAlignment = 1;
};
