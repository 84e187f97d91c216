#include "pulse_runtime_lib/valuetypes/pulsevalueblock.h"

#include <algorithm>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"

bool CPulseValueBlockLayout::Build( const CPulseValueFullType *pTypes, int nCount, CUtlString *pError )
{
	m_Types.clear();
	m_Offsets.clear();
	m_nSize = 0;
	m_nAlignment = 1;

	size_t nOffset = 0;
	size_t nAlignment = 1;
	std::vector<uint16_t> offsets;
	offsets.reserve( size_t( std::max( nCount, 0 ) ) );
	for ( int i = 0; i < nCount; ++i )
	{
		size_t nTypeAlignment = PulseValue_GetAlignment( pTypes[ i ] );
		nOffset = ( nOffset + nTypeAlignment - 1 ) & ~( nTypeAlignment - 1 );
		if ( nOffset > UINT16_MAX )
		{
			if ( pError )
				pError->Format( "Value block too large: value %d would start at byte %zu (limit %u)", i, nOffset, unsigned( UINT16_MAX ) );
			return false;
		}
		offsets.push_back( uint16_t( nOffset ) );
		nOffset += PulseValue_GetSize( pTypes[ i ] );
		nAlignment = std::max( nAlignment, nTypeAlignment );
	}
	nOffset = ( nOffset + nAlignment - 1 ) & ~( nAlignment - 1 );
	if ( nOffset > UINT16_MAX + 1u )
	{
		if ( pError )
			pError->Format( "Value block too large: %zu bytes (limit %u)", nOffset, unsigned( UINT16_MAX ) + 1u );
		return false;
	}

	m_Types.assign( pTypes, pTypes + std::max( nCount, 0 ) );
	m_Offsets = std::move( offsets );
	m_nSize = nOffset;
	m_nAlignment = nAlignment;
	return true;
}

void CPulseValueBlockLayout::ConstructAll( void *pBlock ) const
{
	for ( int i = 0; i < GetCount(); ++i )
		PulseValue_Construct( m_Types[ size_t( i ) ], GetValue( pBlock, i ) );
}

void CPulseValueBlockLayout::DestructAll( void *pBlock ) const
{
	for ( int i = 0; i < GetCount(); ++i )
		PulseValue_Destruct( m_Types[ size_t( i ) ], GetValue( pBlock, i ) );
}

void CPulseValueBlockLayout::CopyAll( void *pTarget, const void *pSource ) const
{
	for ( int i = 0; i < GetCount(); ++i )
		PulseValue_Copy( m_Types[ size_t( i ) ], GetValue( pTarget, i ), GetValue( pSource, i ) );
}
