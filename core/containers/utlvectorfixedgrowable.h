#pragma once
// A vector that holds its first N elements inside the object and moves to the heap only
// when it grows past them: for short lists built every frame.

#include "core/containers/utlvector.h"

template <typename T, int N>
class CUtlVectorFixedGrowable : public CUtlVector<T>
{
	static_assert( N > 0, "inline storage needs at least one element" );

public:
	CUtlVectorFixedGrowable() { this->InitInlineStorage( InlineStorage(), N ); }
	CUtlVectorFixedGrowable( std::initializer_list<T> init )
	{
		this->InitInlineStorage( InlineStorage(), N );
		for ( const T &element : init )
			this->AddToTail( element );
	}
	CUtlVectorFixedGrowable( const CUtlVectorFixedGrowable &other ) : CUtlVector<T>()
	{
		this->InitInlineStorage( InlineStorage(), N );
		this->CopyFrom( other );
	}
	CUtlVectorFixedGrowable( const CUtlVector<T> &other )
	{
		this->InitInlineStorage( InlineStorage(), N );
		this->CopyFrom( other );
	}
	CUtlVectorFixedGrowable( CUtlVectorFixedGrowable &&other ) noexcept
	{
		this->InitInlineStorage( InlineStorage(), N );
		this->MoveFrom( other );
	}
	CUtlVectorFixedGrowable( CUtlVector<T> &&other ) noexcept
	{
		this->InitInlineStorage( InlineStorage(), N );
		this->MoveFrom( other );
	}
	CUtlVectorFixedGrowable &operator=( const CUtlVectorFixedGrowable &other )
	{
		CUtlVector<T>::operator=( other );
		return *this;
	}
	CUtlVectorFixedGrowable &operator=( CUtlVectorFixedGrowable &&other ) noexcept
	{
		CUtlVector<T>::operator=( std::move( other ) );
		return *this;
	}
	using CUtlVector<T>::operator=;
	// Elements in the inline storage must go before the storage does.
	~CUtlVectorFixedGrowable() { this->Purge(); }

	static constexpr int InlineCount() { return N; }
	// True while the elements are stored inside the object.
	bool IsInline() const { return this->Base() == reinterpret_cast<const T *>( m_InlineStorage ); }

private:
	T *InlineStorage() { return reinterpret_cast<T *>( m_InlineStorage ); }

	alignas( T ) unsigned char m_InlineStorage[ sizeof( T ) * N ];
};

// The name some callers use for the same container.
template <typename T, int N>
using CUtlVectorFixedGrowableCompat = CUtlVectorFixedGrowable<T, N>;
