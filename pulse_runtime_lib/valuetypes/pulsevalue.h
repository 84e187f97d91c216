#pragma once
// Operations on raw value storage, driven by the full type held beside it. Storage goes
// unbuilt -> built (Construct or CopyConstruct) -> destroyed (Destruct); every other
// operation needs built storage of the given type.
//
// Storage by type (see pulsevaluestorage.h for the structured ones):
//   bool; int32_t for PVAL_INT, PVAL_TYPESAFE_INT; float for PVAL_FLOAT, PVAL_GAMETIME;
//   uint32_t handles for PVAL_EHANDLE, PVAL_OPAQUE_HANDLE, PVAL_TEST_HANDLE;
//   char * (owned, null reads as "") for PVAL_STRING, PVAL_MODEL_MATERIAL_GROUP;
//   CPulseResourceBinding * for PVAL_RESOURCE; CGlobalSymbol for PVAL_ENTITY_NAME;
//   int64_t for PVAL_SCHEMA_ENUM, PVAL_TYPESAFE_INT64; uint64_t for
//   PVAL_VISTARA_PANEL_HANDLE, PVAL_PARTICLE_EHANDLE; CPulseArrayData * for PVAL_ARRAY;
//   CPulseVariant for PVAL_VARIANT.

#include <cstddef>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CUtlString;

// Size and alignment of the in-place storage. Types without storage (void, cursor flow,
// unknown, numbers outside the enumeration) have size 0 and alignment 1.
size_t PulseValueType_GetSize( PulseValueType_t eType );
size_t PulseValueType_GetAlignment( PulseValueType_t eType );
inline size_t PulseValue_GetSize( const CPulseValueFullType &type ) { return PulseValueType_GetSize( type.GetBaseType() ); }
inline size_t PulseValue_GetAlignment( const CPulseValueFullType &type ) { return PulseValueType_GetAlignment( type.GetBaseType() ); }

// Builds the type's default value in unbuilt storage.
void PulseValue_Construct( const CPulseValueFullType &type, void *pValue );
// Builds a copy of a built value in unbuilt storage.
void PulseValue_CopyConstruct( const CPulseValueFullType &type, void *pValue, const void *pSource );
// Frees what the value owns: text, resource references, array references.
void PulseValue_Destruct( const CPulseValueFullType &type, void *pValue );
// Replaces one built value with another of the same type.
void PulseValue_Copy( const CPulseValueFullType &type, void *pValue, const void *pSource );

// Value equality by the rules of each type (tolerances for floats and vectors, case-free
// strings, shared or element-wise equal arrays).
bool PulseValue_IsEqual( const CPulseValueFullType &type, const void *pA, const void *pB );

// Whether a domain value refers to something: handles must resolve through the type
// service, entity names must be set. Every other type is always valid.
bool PulseValue_IsValid( const CPulseValueFullType &type, const void *pValue );

// The value as people read it (debugger, logs). Uses the string conversion where the type
// has one, so text matches what a graph would print.
void PulseValue_ToText( const CPulseValueFullType &type, const void *pValue, CUtlString *pText );

// Owned text of PVAL_STRING and PVAL_MODEL_MATERIAL_GROUP storage.
const char *PulseValue_GetString( const void *pValue ); // never null
void PulseValue_SetString( void *pValue, const char *pText );

// "%f" without the zeros that add nothing ("1.500000" -> "1.5", "2.000000" -> "2").
void PulseValue_AppendFloatText( CUtlString *pText, double flValue );
