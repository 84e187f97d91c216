#pragma once
// Index types of a compiled graph and its interned names. Indexes are plain integers of
// the stated width (they store in KV3 as plain integers); -1, or 65535 for a register and
// a state offset, means none.

#include <cstdint>

#include "core/kv3transfer/kv3transfertypes.h"
#include "core/schema/schematypeof.h"
#include "core/symbols/globalsymbol.h"

using PulseRuntimeChunkIndex_t = int32_t;
using PulseRuntimeCallInfoIndex_t = int32_t;
using PulseRuntimeVarIndex_t = int32_t;
using PulseRuntimeOutputIndex_t = int32_t;
using PulseRuntimeCellIndex_t = int32_t;
using PulseRuntimeInvokeIndex_t = int32_t;
using PulseRuntimeEntrypointIndex_t = int32_t;
using PulseDocNodeID_t = int32_t;
using PulseCursorID_t = int32_t;
using PulseCursorYieldToken_t = int32_t;
using PulseGraphInstanceID_t = uint32_t;
using PulseRuntimeRegisterIndex_t = int16_t;
using PulseRuntimeConstantIndex_t = int16_t;
using PulseRuntimeDomainValueIndex_t = int16_t;
using PulseRuntimeBlackboardReferenceIndex_t = int16_t;
using PulseRuntimeStateOffset_t = uint16_t;

constexpr PulseRuntimeStateOffset_t PULSE_NO_STATE_OFFSET = 0xFFFF;
constexpr uint16_t PULSE_INVALID_REGISTER = 0xFFFF;
constexpr PulseGraphInstanceID_t PULSE_INVALID_INSTANCE_ID = 0;

// A case-sensitive interned name: equal text is the same symbol. Stored in KV3 as its text.
class PulseSymbol_t
{
public:
	PulseSymbol_t() = default;
	explicit PulseSymbol_t( const char *pText ) : m_Symbol( pText && *pText ? CGlobalSymbol( pText ) : CGlobalSymbol() ) {}
	explicit PulseSymbol_t( CGlobalSymbol symbol ) : m_Symbol( symbol ) {}

	const char *String() const { return m_Symbol.String(); }
	bool IsEmpty() const { return !m_Symbol.IsValid(); }
	uint32_t GetHash() const { return m_Symbol.GetHash(); }
	CGlobalSymbol GetSymbol() const { return m_Symbol; }

	bool operator==( const PulseSymbol_t &other ) const { return m_Symbol == other.m_Symbol; }
	bool operator!=( const PulseSymbol_t &other ) const { return !( m_Symbol == other.m_Symbol ); }

private:
	CGlobalSymbol m_Symbol;
};

template <> struct SchemaTypeOf_t<PulseSymbol_t>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetAtomicType( SCHEMA_ATOMIC_STRING ); }
};

template <> struct KV3Transfer_t<PulseSymbol_t>
{
	static void Load( PulseSymbol_t &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext ) { value = PulseSymbol_t( KV3TransferReadString( pContext, pValue ) ); }
	static void Save( const PulseSymbol_t &value, KeyValues3 *pValue, CKV3TransferSaveContext * ) { pValue->SetString( value.String() ); }
};

// Global symbols (sequence point names, node names) store the same way.
template <> struct SchemaTypeOf_t<CGlobalSymbol>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetAtomicType( SCHEMA_ATOMIC_STRING ); }
};

template <> struct KV3Transfer_t<CGlobalSymbol>
{
	static void Load( CGlobalSymbol &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		const char *pText = KV3TransferReadString( pContext, pValue );
		value = *pText ? CGlobalSymbol( pText ) : CGlobalSymbol();
	}
	static void Save( const CGlobalSymbol &value, KeyValues3 *pValue, CKV3TransferSaveContext * ) { pValue->SetString( value.String() ); }
};
