#pragma once
// A value that carries its own full type. Values that fit the 8-byte word (and its
// alignment) live in it; bigger ones live in a block the word points to.

#include <cstdint>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CUtlString;

class alignas( 16 ) CPulseVariant
{
public:
	CPulseVariant() { m_nWord = 0; }
	// The default value of the type.
	explicit CPulseVariant( const CPulseValueFullType &type );
	// A copy of a built value of the type.
	CPulseVariant( const CPulseValueFullType &type, const void *pValue );
	CPulseVariant( const CPulseVariant &other );
	CPulseVariant &operator=( const CPulseVariant &other );
	CPulseVariant( CPulseVariant &&other ) noexcept;
	CPulseVariant &operator=( CPulseVariant &&other ) noexcept;
	~CPulseVariant();

	const CPulseValueFullType &GetType() const { return m_Type; }
	bool IsEmpty() const { return !m_Type.IsValid(); }

	// Destroys the old value and builds the new type's default; the same type keeps the value.
	void SetType( const CPulseValueFullType &type );
	// Back to the empty variant.
	void Clear();

	// The storage of the current type; null when the type has none.
	void *GetValue();
	const void *GetValue() const;
	// Takes the type and a copy of the value.
	void SetValue( const CPulseValueFullType &type, const void *pValue );

	// Shorthands for the common scalar types; each sets the type too.
	void SetBool( bool bValue );
	void SetInt( int32_t nValue );
	void SetFloat( float flValue );
	void SetString( const char *pText );
	// Null when the variant doesn't hold exactly that base type.
	const bool *GetBool() const;
	const int32_t *GetInt() const;
	const float *GetFloat() const;
	const char *GetString() const;

	// Same value by PVAL_VARIANT equality: the shared type, or the second converted to the
	// first's type.
	bool operator==( const CPulseVariant &other ) const;
	bool operator!=( const CPulseVariant &other ) const { return !( *this == other ); }

private:
	bool IsInline() const;
	void ReleaseValue();

	union
	{
		uint64_t m_nWord;
		void *m_pBlock;
	};
	CPulseValueFullType m_Type;
};
static_assert( sizeof( CPulseVariant ) == 32 && alignof( CPulseVariant ) == 16 );
