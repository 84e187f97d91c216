#pragma once
// Conversions between value types, and the test that lets a value be read as another
// type without conversion (REINTERPRET_INSTANCE).

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

// Whether the compiler may offer a conversion: either side unknown, a conversion rule for
// the pair, the same full type, an array to an array of unknown, anything to a variant,
// or object types the type service calls compatible.
bool PulseValue_CanConvert( const CPulseValueFullType &from, const CPulseValueFullType &to );

// Converts a built value into built storage of the target type. Answers false, leaving
// the target untouched, when no rule applies; the caller reports that. A variant source
// converts from the type it holds.
bool PulseValue_Convert( const CPulseValueFullType &from, const void *pSource, const CPulseValueFullType &to, void *pTarget );

// Same base type, and either the same subtype and element chain, or a target without a
// subtype, or a handle the type service says is an instance of the target right now.
bool PulseValue_CanReinterpret( const CPulseValueFullType &from, const void *pValue, const CPulseValueFullType &to );
