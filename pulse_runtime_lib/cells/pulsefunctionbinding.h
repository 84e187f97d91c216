#pragma once
// The functions that CELL_INVOKE and LIBRARY_INVOKE call. Each has one static record:
// its full name ("Class::Method"), texts, inputs and outputs, flags and the call itself.
// Records register themselves at start-up; binding finds them by the invoke's function
// name against the cell's class (and its bases) or the libraries.

#include <cstdint>
#include <vector>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CBasePulseGraphInstance;
class CPulseExecCursor;
class CPulseCell_Base;
class PulseArgPack;

// Flag bits of a binding record.
constexpr uint64_t PULSE_FUNCTION_FLAG_LIBRARY = 0x101;           // a library function
constexpr uint64_t PULSE_FUNCTION_FLAG_FLOW = 0x400000000ull;     // may move the cursor (ContinueAt, ReturnFromChunk)
constexpr uint64_t PULSE_FUNCTION_FLAG_YIELDS = 0x800000000ull;   // may yield the cursor
constexpr uint64_t PULSE_FUNCTION_FLAG_EXTRA_ARGS = 0x1000000000ull; // takes arguments beyond its signature

// What a call hands to the function beside its arguments.
struct PulseCallContext_t
{
	CBasePulseGraphInstance *m_pInstance;
	CPulseExecCursor *m_pCursor;
	const CPulseCell_Base *m_pCell; // null for a library function
	void *const *m_pHostInterfaces; // the cursor's host table, 5 entries
	const void *m_pOpaque;
};

// 0 on success; -2 when the call needed a cell (or target) and had none; other codes are
// reported as failures. Either way the cursor goes on.
using PulseFunctionCall_t = int ( * )( const PulseCallContext_t &context, const PulseArgPack &in, PulseArgPack &out );
constexpr int PULSE_CALL_MISSING_TARGET = -2;

struct PulseFunctionParam_t
{
	const char *m_pName;
	CPulseValueFullType m_Type;
	const char *m_pDescription = "";
};

struct PulseFunctionBinding_t
{
	const char *m_pClassName;  // "CPulseCell_Step_DebugLog", "CPulseTestScriptLib"
	const char *m_pMethodName; // "Run"
	const char *m_pFriendlyName;
	const char *m_pDescription;
	std::vector<PulseFunctionParam_t> m_Inputs;
	std::vector<PulseFunctionParam_t> m_Outputs;
	uint64_t m_nFlags = 0;
	const char *m_pMetadataName = nullptr; // "MPulseCursorTerminates", ...
	uint32_t m_nRequiredHostMask = 0;
	PulseFunctionCall_t m_pfnCall = nullptr;

	bool IsLibrary() const { return ( m_nFlags & PULSE_FUNCTION_FLAG_LIBRARY ) == PULSE_FUNCTION_FLAG_LIBRARY; }
	// May move or stop the cursor: a chunk may end with such a call.
	bool MayLeaveFlow() const { return ( m_nFlags & ( PULSE_FUNCTION_FLAG_FLOW | PULSE_FUNCTION_FLAG_YIELDS ) ) != 0; }
	int FindInput( const char *pName ) const;
	int FindOutput( const char *pName ) const;
};

// Registers a record for the life of the process; records are usually static objects.
class CPulseFunctionRegistrar
{
public:
	explicit CPulseFunctionRegistrar( const PulseFunctionBinding_t *pBinding );
};

// The record of "Class::Method"; null when none is registered.
const PulseFunctionBinding_t *PulseFunctions_Find( const char *pClassName, const char *pMethodName );
// A library function by its full name, or by its method name alone when exactly one
// library has it.
const PulseFunctionBinding_t *PulseFunctions_FindLibrary( const char *pName );
// Every registered record, in registration order.
const std::vector<const PulseFunctionBinding_t *> &PulseFunctions_GetAll();
