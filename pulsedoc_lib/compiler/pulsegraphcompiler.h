#pragma once
// A document into the runtime's graph definition, in one call: the document is validated,
// generated (see pulsecompilecontext.h) and the result is checked by the runtime's own
// validator, so what this answers true for runs. Every problem is reported to the
// messages with the node it is about.

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphdef.h"
#include "pulsedoc_lib/compiler/pulsecompilecontext.h"

class CPulseDoc;
class CPulseDocMessages;

struct PulseDocCompileResult_t
{
	// Generation found no error (the definition exists).
	bool m_bGenerated = false;
	// The runtime validated and bound the definition. Generated but not valid is a
	// compiler fault, reported as an internal error.
	bool m_bValid = false;
	// The definition as the runtime saves it ("*.tpulsec" KV3).
	KeyValues3 m_Definition;
	// Bound, ready to run.
	CPulseGraphDefHandle m_hDef;
	// Lines of a verbose compile.
	CUtlString m_Log;
};

bool PulseDoc_Compile( CPulseDoc *pDoc, CPulseDocMessages *pMessages, PulseDocCompileResult_t *pResult, const PulseCompileOptions_t &options = {},
					   const char *pResourceName = "" );
