#pragma once
// A value type with its refinement: the subtype name of handle, resource and enum types,
// or the element type of an array. Arrays own their element type, so nesting has no limit
// here (the compiler refuses more than one dimension).

#include <cstdint>

#include "core/symbols/globalsymbol.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluetype.h"

class CUtlString;

class CPulseValueFullType
{
public:
	CPulseValueFullType() = default;
	// Any base type; an array starts with an invalid element type.
	explicit CPulseValueFullType( PulseValueType_t eBaseType );
	CPulseValueFullType( PulseValueType_t eBaseType, const char *pSubtype );
	static CPulseValueFullType MakeArray( const CPulseValueFullType &elementType );

	CPulseValueFullType( const CPulseValueFullType &other );
	CPulseValueFullType &operator=( const CPulseValueFullType &other );
	CPulseValueFullType( CPulseValueFullType &&other ) noexcept;
	CPulseValueFullType &operator=( CPulseValueFullType &&other ) noexcept;
	~CPulseValueFullType();

	PulseValueType_t GetBaseType() const { return m_eBaseType; }
	// Creates the element type (invalid) for PVAL_ARRAY and frees it for anything else.
	void SetBaseType( PulseValueType_t eBaseType );
	bool IsValid() const { return m_eBaseType != PVAL_VOID; }
	bool IsArray() const { return m_eBaseType == PVAL_ARRAY; }

	// Present exactly when the base type is PVAL_ARRAY.
	const CPulseValueFullType *GetElementType() const { return m_pElementType; }
	CPulseValueFullType *GetElementType() { return m_pElementType; }
	// Does nothing unless this is an array.
	void SetElementType( const CPulseValueFullType &elementType );

	CGlobalSymbol GetSubtype() const { return m_Subtype; }
	bool HasSubtype() const { return m_Subtype.IsValid(); }
	// Ignored (cleared) on types that don't use a subtype. Changing the base type clears it.
	void SetSubtype( CGlobalSymbol subtype );
	void SetSubtype( const char *pSubtype );

	// Back to the empty (invalid) type.
	void Clear();

	// "PVAL_EHANDLE:npc_guard", "PVAL_ARRAY:PVAL_VEC3". Replaces *pOut.
	void ToString( CUtlString *pOut ) const;
	CUtlString ToString() const;
	// Parses the text form. On failure the type is left invalid and the answer is false.
	bool FromString( const char *pText );
	static CPulseValueFullType Parse( const char *pText, bool *pOk = nullptr );
	// What tools show: the subtype alone when there is one, else the friendly name;
	// arrays read "Array:" and the element's display text.
	CUtlString GetDisplayText() const;

	bool operator==( const CPulseValueFullType &other ) const;
	bool operator!=( const CPulseValueFullType &other ) const { return !( *this == other ); }
	uint32_t GetHash() const;

private:
	PulseValueType_t m_eBaseType = PVAL_VOID;
	CPulseValueFullType *m_pElementType = nullptr;
	CGlobalSymbol m_Subtype;
};
static_assert( sizeof( CPulseValueFullType ) == 24 );
