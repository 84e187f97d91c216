#pragma once
// Binding and validation: what turns a definition as stored into one that runs. Before
// anything of a definition runs it is checked whole: only stored codes, every operand
// present and in range, registers below the count, jumps inside their chunk, no path
// running off the end of a chunk, calls that reach method cells, arguments that fit
// their functions, sizes that fit 16-bit offsets. Binding then turns each generic
// operator into its typed form from its registers' types, resolves invokes and calls,
// lays out registers, variables, constants and cell state, and builds the operations
// the interpreter runs. A definition that fails is refused with a message per fault
// naming the chunk and instruction ("C0:I3 (ADD): ..."), and nothing of it runs.

#include "pulse_runtime_lib/graph/pulsegraphdefio.h"

// True when the definition is (now) bound; false with the faults in pMessages. A bound
// definition answers true at once. Messages are appended.
bool PulseGraphDef_Bind( CPulseGraphDef *pDef, PulseGraphMessages_t *pMessages );

// The whole check of a compiler's output in one call: loads the KV3 form and binds it.
// True when it would run; pMessages gets every error and warning, one per entry.
bool PulseGraphDef_Validate( const KeyValues3 &root, std::vector<CUtlString> *pMessages );

// Types a value can have in a register, a variable or a constant: known, with storage,
// and for an array an element type that is one too.
bool PulseGraphDef_IsStorableType( const CPulseValueFullType &type );
