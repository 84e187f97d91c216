#pragma once
// A growable array with int indexes. Elements may be any movable type (strings, trees,
// owning handles): they are constructed, moved and destroyed properly. Memory comes
// from UtlVectorMemory_Alloc, so running out stops the process instead of failing here.
//
// CUtlVectorFixedGrowable (utlvectorfixedgrowable.h) keeps its first N elements inside
// the object and is usable wherever a CUtlVector<T>& is expected.
//
// SetExternalMemory lends the vector storage that someone else owns (a scratch pool):
// the vector constructs and destroys its elements there but never frees it, and moves
// to its own heap block if it has to grow past it.

#include "core/containers/utlvectormemory.h"
#include "core/platform/dbgassert.h"
#include "core/platform/memalloc.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <new>
#include <type_traits>
#include <utility>

template <typename T>
class CUtlVector
{
	static_assert( alignof( T ) <= alignof( std::max_align_t ), "over-aligned elements need their own allocator" );

public:
	using ElemType_t = T;
	using iterator = T *;
	using const_iterator = const T *;

	CUtlVector() = default;
	explicit CUtlVector( int nGrowSize, int nInitialCapacity = 0 ) : m_nGrowSize( nGrowSize > 0 ? nGrowSize : 0 )
	{
		if ( nInitialCapacity > 0 )
			EnsureCapacity( nInitialCapacity );
	}
	CUtlVector( std::initializer_list<T> init )
	{
		EnsureCapacity( int( init.size() ) );
		for ( const T &element : init )
			new ( m_pElements + m_nCount++ ) T( element );
	}
	CUtlVector( const CUtlVector &other ) { CopyFrom( other ); }
	CUtlVector( CUtlVector &&other ) noexcept { MoveFrom( other ); }
	CUtlVector &operator=( const CUtlVector &other )
	{
		if ( this != &other )
			CopyFrom( other );
		return *this;
	}
	CUtlVector &operator=( CUtlVector &&other ) noexcept
	{
		if ( this != &other )
			MoveFrom( other );
		return *this;
	}
	~CUtlVector() { Purge(); }

	// Size and access.
	int Count() const { return m_nCount; }
	bool IsEmpty() const { return m_nCount == 0; }
	int NumAllocated() const { return m_nAllocated; }
	bool IsValidIndex( int i ) const { return i >= 0 && i < m_nCount; }
	static constexpr int InvalidIndex() { return -1; }

	T &operator[]( int i ) { DbgAssert( IsValidIndex( i ) ); return m_pElements[ i ]; }
	const T &operator[]( int i ) const { DbgAssert( IsValidIndex( i ) ); return m_pElements[ i ]; }
	T &Element( int i ) { return ( *this )[ i ]; }
	const T &Element( int i ) const { return ( *this )[ i ]; }
	T &Head() { return ( *this )[ 0 ]; }
	const T &Head() const { return ( *this )[ 0 ]; }
	T &Tail() { return ( *this )[ m_nCount - 1 ]; }
	const T &Tail() const { return ( *this )[ m_nCount - 1 ]; }
	T *Base() { return m_pElements; }
	const T *Base() const { return m_pElements; }

	iterator begin() { return m_pElements; }
	iterator end() { return m_pElements + m_nCount; }
	const_iterator begin() const { return m_pElements; }
	const_iterator end() const { return m_pElements + m_nCount; }

	// Adding. Each answers the index of the new element; elements at and after an
	// insertion point move up by one. A source element may be one of this vector's own.
	int AddToTail() { return InsertBefore( m_nCount ); }
	int AddToTail( const T &src ) { return InsertBefore( m_nCount, src ); }
	int AddToTail( T &&src ) { return InsertBefore( m_nCount, std::move( src ) ); }
	int AddToHead() { return InsertBefore( 0 ); }
	int AddToHead( const T &src ) { return InsertBefore( 0, src ); }
	int AddToHead( T &&src ) { return InsertBefore( 0, std::move( src ) ); }
	int InsertAfter( int i, const T &src ) { return InsertBefore( i + 1, src ); }
	int InsertAfter( int i, T &&src ) { return InsertBefore( i + 1, std::move( src ) ); }

	int InsertBefore( int i ) // a default-constructed element
	{
		if ( !CheckInsertIndex( i ) )
			return InvalidIndex();
		OpenGap( i, 1 );
		new ( m_pElements + i ) T();
		return i;
	}
	int InsertBefore( int i, const T &src )
	{
		if ( !CheckInsertIndex( i ) )
			return InvalidIndex();
		if ( IsInBuffer( &src ) )
		{
			T copy( src );
			return InsertBefore( i, std::move( copy ) );
		}
		OpenGap( i, 1 );
		new ( m_pElements + i ) T( src );
		return i;
	}
	int InsertBefore( int i, T &&src )
	{
		if ( !CheckInsertIndex( i ) )
			return InvalidIndex();
		if ( IsInBuffer( &src ) )
		{
			T moved( std::move( src ) );
			return InsertBefore( i, std::move( moved ) );
		}
		OpenGap( i, 1 );
		new ( m_pElements + i ) T( std::move( src ) );
		return i;
	}

	// Appends nCount default-constructed elements (or copies of pSource[0..nCount)
	// when given); answers the index of the first.
	int AddMultipleToTail( int nCount, const T *pSource = nullptr )
	{
		if ( nCount <= 0 )
			return m_nCount;
		Assert( !IsInBuffer( pSource ) );
		int nFirst = m_nCount;
		EnsureCapacity( m_nCount + nCount );
		for ( int i = 0; i < nCount; ++i )
		{
			if ( pSource )
				new ( m_pElements + nFirst + i ) T( pSource[ i ] );
			else
				new ( m_pElements + nFirst + i ) T();
		}
		m_nCount += nCount;
		return nFirst;
	}
	void AddVectorToTail( const CUtlVector &other )
	{
		if ( &other == this )
		{
			CUtlVector copy( other );
			AddVectorToTail( copy );
			return;
		}
		AddMultipleToTail( other.Count(), other.Base() );
	}

	// Finding; compares with operator==.
	int Find( const T &value ) const
	{
		for ( int i = 0; i < m_nCount; ++i )
		{
			if ( m_pElements[ i ] == value )
				return i;
		}
		return InvalidIndex();
	}
	bool HasElement( const T &value ) const { return Find( value ) != InvalidIndex(); }

	// Removing. Remove keeps the order; FastRemove moves the last element into the gap.
	void Remove( int i ) { RemoveMultiple( i, 1 ); }
	void FastRemove( int i )
	{
		if ( !IsValidIndex( i ) )
		{
			Assert( IsValidIndex( i ) );
			return;
		}
		if ( i != m_nCount - 1 )
			m_pElements[ i ] = std::move( m_pElements[ m_nCount - 1 ] );
		m_pElements[ --m_nCount ].~T();
	}
	void RemoveMultiple( int i, int nCount )
	{
		if ( nCount <= 0 )
			return;
		if ( i < 0 || nCount > m_nCount - i )
		{
			Assert( i >= 0 && nCount <= m_nCount - i );
			return;
		}
		std::move( m_pElements + i + nCount, m_pElements + m_nCount, m_pElements + i );
		DestroyTail( m_nCount - nCount );
	}
	void RemoveMultipleFromTail( int nCount ) { RemoveMultiple( m_nCount - nCount, nCount ); }
	bool FindAndRemove( const T &value )
	{
		int i = Find( value );
		if ( i == InvalidIndex() )
			return false;
		Remove( i );
		return true;
	}
	bool FindAndFastRemove( const T &value )
	{
		int i = Find( value );
		if ( i == InvalidIndex() )
			return false;
		FastRemove( i );
		return true;
	}
	// Destroys every element and keeps the memory.
	void RemoveAll() { DestroyTail( 0 ); }
	// Destroys every element and frees the memory (memory lent from outside is only let go).
	void Purge()
	{
		DestroyTail( 0 );
		if ( OwnsHeapMemory() )
			g_pMemAlloc->Free( m_pElements );
		m_pElements = m_pInline;
		m_nAllocated = m_nInlineCount;
		m_bExternalMemory = false;
	}
	// Purges, then keeps its elements in pMemory, room for nCapacity of them, which must
	// stay valid (and unused by others) until the vector is purged, destroyed or grows out of it.
	void SetExternalMemory( T *pMemory, int nCapacity )
	{
		Purge();
		if ( !pMemory || nCapacity <= 0 )
			return;
		Assert( reinterpret_cast<uintptr_t>( pMemory ) % alignof( T ) == 0 );
		m_pElements = pMemory;
		m_nAllocated = nCapacity;
		m_bExternalMemory = true;
	}
	bool IsExternallyAllocated() const { return m_bExternalMemory; }
	// For vectors of owning pointers: deletes each, then purges.
	void PurgeAndDeleteElements() requires std::is_pointer_v<T>
	{
		for ( int i = 0; i < m_nCount; ++i )
			delete m_pElements[ i ];
		Purge();
	}

	// Capacity and size.
	void EnsureCapacity( int nCapacity ) { Grow( nCapacity, true ); }
	void SetGrowSize( int nGrowSize ) { m_nGrowSize = nGrowSize > 0 ? nGrowSize : 0; }
	// Grows with default-constructed elements or destroys the excess.
	void SetCount( int nCount )
	{
		if ( nCount < 0 )
			nCount = 0;
		if ( nCount < m_nCount )
		{
			DestroyTail( nCount );
			return;
		}
		AddMultipleToTail( nCount - m_nCount );
	}

	// Sorts with a comparison of pointers answering <0, 0, >0; equal elements keep their order.
	template <typename Compare>
	void Sort( Compare &&fnCompare )
	{
		std::stable_sort( begin(), end(), [ & ]( const T &a, const T &b ) { return fnCompare( &a, &b ) < 0; } );
	}
	// Sorts with a less-than predicate on elements.
	template <typename Less>
	void SortPredicate( Less &&fnLess )
	{
		std::stable_sort( begin(), end(), fnLess );
	}

	void Swap( CUtlVector &other )
	{
		if ( this == &other )
			return;
		CUtlVector temp( std::move( other ) );
		other = std::move( *this );
		*this = std::move( temp );
	}

	bool operator==( const CUtlVector &other ) const
	{
		return m_nCount == other.m_nCount && std::equal( begin(), end(), other.begin() );
	}

protected:
	// For subclasses that lend the vector storage inside themselves; called from their
	// constructor's body, while the vector is still empty.
	void InitInlineStorage( T *pInline, int nInlineCount )
	{
		Assert( !m_pElements && m_nCount == 0 );
		m_pElements = m_pInline = pInline;
		m_nAllocated = m_nInlineCount = nInlineCount;
	}

	void CopyFrom( const CUtlVector &other )
	{
		RemoveAll();
		AddMultipleToTail( other.Count(), other.Base() );
	}

	void MoveFrom( CUtlVector &other )
	{
		if ( other.m_pElements != other.m_pInline )
		{
			// Heap (or lent) storage changes hands as it is.
			Purge();
			m_pElements = std::exchange( other.m_pElements, other.m_pInline );
			m_nCount = std::exchange( other.m_nCount, 0 );
			m_nAllocated = std::exchange( other.m_nAllocated, other.m_nInlineCount );
			m_bExternalMemory = std::exchange( other.m_bExternalMemory, false );
			return;
		}
		// Elements stored inside the other object must move one by one.
		RemoveAll();
		EnsureCapacity( other.m_nCount );
		for ( int i = 0; i < other.m_nCount; ++i )
			new ( m_pElements + i ) T( std::move( other.m_pElements[ i ] ) );
		m_nCount = other.m_nCount;
		other.RemoveAll();
	}

private:
	bool OwnsHeapMemory() const { return m_pElements && m_pElements != m_pInline && !m_bExternalMemory; }

	bool IsInBuffer( const T *p ) const
	{
		// Compared as addresses: pointers into unrelated objects are not ordered.
		auto nAddress = reinterpret_cast<uintptr_t>( p );
		return p && nAddress >= reinterpret_cast<uintptr_t>( m_pElements ) && nAddress < reinterpret_cast<uintptr_t>( m_pElements + m_nCount );
	}

	bool CheckInsertIndex( int i ) const
	{
		bool bValid = i >= 0 && i <= m_nCount;
		Assert( bValid );
		return bValid;
	}

	void Grow( int nCapacity, bool bExact )
	{
		if ( nCapacity <= m_nAllocated )
			return;
		size_t nNewAllocated = bExact && !m_nGrowSize
			? size_t( nCapacity )
			: UtlVectorMemory_CalcNewAllocationCount( size_t( m_nAllocated ), size_t( m_nGrowSize ), size_t( nCapacity ), sizeof( T ) );
		if ( nNewAllocated > size_t( INT_MAX ) )
			UtlVectorMemory_FailedAllocation( nNewAllocated, sizeof( T ) );
		const bool bHeap = OwnsHeapMemory();
		if constexpr ( std::is_trivially_copyable_v<T> )
		{
			m_pElements = static_cast<T *>( UtlVectorMemory_Alloc( m_pElements, bHeap, nNewAllocated * sizeof( T ), size_t( m_nCount ) * sizeof( T ) ) );
		}
		else
		{
			T *pNew = static_cast<T *>( UtlVectorMemory_Alloc( nullptr, false, nNewAllocated * sizeof( T ), 0 ) );
			for ( int i = 0; i < m_nCount; ++i )
			{
				new ( pNew + i ) T( std::move( m_pElements[ i ] ) );
				m_pElements[ i ].~T();
			}
			if ( bHeap )
				g_pMemAlloc->Free( m_pElements );
			m_pElements = pNew;
		}
		m_nAllocated = int( nNewAllocated );
		m_bExternalMemory = false;
	}

	// Makes room for nGap elements at i: afterwards [i, i + nGap) is raw memory.
	void OpenGap( int i, int nGap )
	{
		Grow( m_nCount + nGap, false );
		int nOldCount = m_nCount;
		// The last nGap elements move into fresh slots; the rest shift by assignment.
		for ( int j = nOldCount - 1; j >= i; --j )
		{
			if ( j + nGap >= nOldCount )
				new ( m_pElements + j + nGap ) T( std::move( m_pElements[ j ] ) );
			else
				m_pElements[ j + nGap ] = std::move( m_pElements[ j ] );
		}
		// The slots of the gap that held elements are destroyed, so callers construct.
		for ( int j = i; j < i + nGap && j < nOldCount; ++j )
			m_pElements[ j ].~T();
		m_nCount += nGap;
	}

	void DestroyTail( int nNewCount )
	{
		for ( int i = nNewCount; i < m_nCount; ++i )
			m_pElements[ i ].~T();
		if ( nNewCount < m_nCount )
			m_nCount = nNewCount;
	}

	T *m_pElements = nullptr;
	int m_nCount = 0;
	int m_nAllocated = 0;
	int m_nGrowSize = 0;
	T *m_pInline = nullptr;
	int m_nInlineCount = 0;
	bool m_bExternalMemory = false; // m_pElements is lent from outside: never freed here
};
