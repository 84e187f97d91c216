#pragma once
// A Pulse full type as a schema field: its KV3 form is its text ("PVAL_FLOAT",
// "PVAL_RESOURCE:tmsh", "PVAL_ARRAY:PVAL_VEC3"), and the class description shows it as a
// string, so property editors and FGD classes see that text.

#include "core/kv3transfer/kv3transfertypes.h"
#include "core/schema/schematypeof.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

template <> struct SchemaTypeOf_t<CPulseValueFullType>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetAtomicType( SCHEMA_ATOMIC_STRING ); }
};

// The empty string and null are the invalid type; text that names no type is reported and
// leaves the type invalid.
template <> struct KV3Transfer_t<CPulseValueFullType>
{
	static void Load( CPulseValueFullType &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext );
	static void Save( const CPulseValueFullType &value, KeyValues3 *pValue, CKV3TransferSaveContext *pContext );
};
