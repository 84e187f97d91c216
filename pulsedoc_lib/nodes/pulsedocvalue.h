#pragma once
// The base of nodes that only give values: no flow, compiled anew into the chunk of each
// input that reads them.

#include "pulsedoc_lib/model/pulsedocnode.h"
#include "pulsedoc_lib/model/pulseports.h"

class CPulseDoc_BaseValue : public CPulseDocNode
{
public:
	// Emits the node's instructions and records the register of each output it gives
	// (CCompiledChunk::RecordOutparam); on failure, after a report, records nothing.
	virtual void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const = 0;
	// The type of an output as far as it is known before compiling (for ports that read it).
	virtual CPulseValueFullType GetResultType() const;
};
