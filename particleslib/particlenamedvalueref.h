#pragma once
// A reference from an input to a variable (a named value) of its particle system: the
// name, its token, and the slot that binding gives it. In files it is the plain name.

#include <cstdint>

#include "core/kv3transfer/kv3transfertypes.h"
#include "core/schema/schematypeof.h"
#include "core/text/utlstring.h"

class CParticleNamedValueRef
{
public:
	CParticleNamedValueRef() = default;
	explicit CParticleNamedValueRef( const char *pszName ) { SetName( pszName ); }

	// The token is the MurmurHash2 of the lower-cased name; an empty name has token 0.
	void SetName( const char *pszName );
	const char *GetName() const { return m_Name.Get(); }
	uint32_t GetToken() const { return m_nToken; }
	bool IsEmpty() const { return m_nToken == 0 && m_Name.IsEmpty(); }

	// The place of the variable in the binding table; -1 until bound.
	int32_t GetSlot() const { return m_nSlot; }
	void SetSlot( int32_t nSlot ) { m_nSlot = nSlot; }

	// The slot is run-time state: it takes no part in equality.
	bool operator==( const CParticleNamedValueRef &other ) const { return m_nToken == other.m_nToken && m_Name == other.m_Name; }

	static uint32_t MakeToken( const char *pszName );

private:
	// The name comes first: the schema describes the reference as its name string.
	CUtlString m_Name;
	uint32_t m_nToken = 0;
	int32_t m_nSlot = -1;
};

// Editors and the class description see the reference as a string.
template <> struct SchemaTypeOf_t<CParticleNamedValueRef>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetAtomicType( SCHEMA_ATOMIC_STRING ); }
};

template <> struct KV3Transfer_t<CParticleNamedValueRef>
{
	static void Load( CParticleNamedValueRef &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext );
	static void Save( const CParticleNamedValueRef &value, KeyValues3 *pValue, CKV3TransferSaveContext *pContext );
};
