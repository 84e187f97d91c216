#pragma once
// Up to 16 call arguments, each a name, a full type and a pointer to the value. A value
// may sit in a register of the caller (passed by pointer, no copy) or in a variant the
// pack owns (a conversion, a default, a value built by the callee).

#include <cstdint>
#include <new>

#include "pulse_runtime_lib/graph/pulsegraphtypes.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

class PulseArgPack
{
public:
	static constexpr int MAX_ARGS = 16;

	PulseArgPack() = default;
	PulseArgPack( const PulseArgPack & ) = delete;
	PulseArgPack &operator=( const PulseArgPack & ) = delete;
	~PulseArgPack() { Clear(); }

	int Count() const { return m_nCount; }
	bool IsFull() const { return m_nCount >= MAX_ARGS; }
	PulseSymbol_t GetName( int i ) const { return m_Slots[ i ].m_Name; }
	const CPulseValueFullType &GetType( int i ) const { return *m_Slots[ i ].m_pType; }
	void *GetValue( int i ) const { return m_Slots[ i ].m_pValue; }
	// -1 when no argument has the name.
	int Find( PulseSymbol_t name ) const;

	// Typed reads of a slot whose type the caller knows (the function's signature).
	template <typename T> T &Get( int i ) const { return *static_cast<T *>( m_Slots[ i ].m_pValue ); }
	// PVAL_STRING text, never null.
	const char *GetString( int i ) const;

	// A value the pack points at without owning it; false when full. The type must
	// outlive the pack.
	bool AddRef( PulseSymbol_t name, const CPulseValueFullType *pType, void *pValue );
	// A copy of the value (or the type's default for null) that the pack owns; null when full.
	void *AddCopy( PulseSymbol_t name, const CPulseValueFullType &type, const void *pValue );
	// The value converted to the type, owned; false when full or there is no conversion
	// (the slot then holds the type's default).
	bool AddConverted( PulseSymbol_t name, const CPulseValueFullType &type, const CPulseValueFullType &fromType, const void *pValue );

	void Clear();

private:
	struct Slot_t
	{
		PulseSymbol_t m_Name;
		const CPulseValueFullType *m_pType;
		void *m_pValue;
		int8_t m_nOwned; // index into m_Owned, -1 for a borrowed value
	};
	CPulseVariant *Owned( int i ) { return std::launder( reinterpret_cast<CPulseVariant *>( m_OwnedStorage + i * sizeof( CPulseVariant ) ) ); }

	Slot_t m_Slots[ MAX_ARGS ];
	int m_nCount = 0;
	int m_nOwnedCount = 0;
	alignas( CPulseVariant ) unsigned char m_OwnedStorage[ MAX_ARGS * sizeof( CPulseVariant ) ];
};
