#pragma once
// What binding makes of a chunk for the interpreter: one compact operation per
// instruction with its registers as byte offsets into the register file and its table
// entries as pointers, plus a halt after the last instruction, so the run loop never
// checks a bound or a type at run time. Validation guarantees every offset and pointer.

#include <cstdint>
#include <vector>

#include "pulse_runtime_lib/graph/pulsegraphtypes.h"
#include "pulse_runtime_lib/graph/pulseinstructioncode.h"

class CPulseValueFullType;
class CPulseCell_Base;
struct CPulse_CallInfo;
struct CPulse_InvokeBinding;
struct PulseFunctionBinding_t;

// Operations the interpreter has beyond the instruction set: copies of values that are
// plain bytes, chosen at binding so the common moves cost a memcpy.
enum PulseInternalOp_t : int16_t
{
	PULSE_OP_COPY_BYTES = PULSE_INSTRUCTION_CODE_COUNT, // Reg0 := Reg1, m_nReg2 bytes
	PULSE_OP_LOAD_BYTES,                                 // Reg0 := m_pData, m_nReg1 bytes (constants)
	PULSE_OP_GET_VAR_BYTES,                              // Reg0 := variable at state offset m_nReg2, m_nReg1 bytes
	PULSE_OP_SET_VAR_BYTES,                              // variable m_nC at state offset m_nReg2 := Reg0, m_nReg1 bytes
	PULSE_OP_COPY_MISMATCH,                              // COPY between different types: nothing moves
	PULSE_OP_END_OF_CHUNK,                               // after the last instruction: the flow ran off the end
	PULSE_OP_COUNT,
};

// What the run loop reads for every instruction: 8 bytes, so code stays dense in the
// cache. The operations that move bytes or jump keep their numbers in the register
// fields (a jump's destination, a size, a state offset: all below 65536).
struct PulseOp_t
{
	int16_t m_nCode;   // PulseInstructionCode_t or PulseInternalOp_t
	uint16_t m_nReg0;  // byte offsets of the operand registers
	uint16_t m_nReg1;
	uint16_t m_nReg2;
};
static_assert( sizeof( PulseOp_t ) == 8 );

// What the other operations need beside it, in a parallel array.
struct PulseOpData_t
{
	int32_t m_nA = 0;                           // chunk, variable, constant, domain value or blackboard index
	int32_t m_nB = 0;                           // destination instruction of a call, state offset
	const void *m_pData = nullptr;              // constant storage, invoke plan, call plan
	const CPulseValueFullType *m_pType = nullptr; // the type the operation moves, when it needs one
	int32_t m_nC = 0;                           // variable index of a byte-wise variable write
	uint16_t m_nRegIndex0 = 0;                  // register number of Reg0 (detach bits)
};

// One argument of an invoke, placed at binding.
struct PulseInvokeArg_t
{
	enum Mode_t : uint8_t
	{
		MODE_REFERENCE, // the register has the parameter's type: passed by pointer
		MODE_VARIANT,   // the parameter is a variant: a new one of the register's type
		MODE_CONVERT,   // converted into a pack-owned value of the parameter's type
		MODE_DEFAULT,   // no register: the parameter's default
	};
	PulseSymbol_t m_Name;
	Mode_t m_eMode = MODE_DEFAULT;
	uint16_t m_nRegOffset = 0;
	const CPulseValueFullType *m_pRegType = nullptr;   // null for MODE_DEFAULT (inputs) or an unmapped output
	const CPulseValueFullType *m_pParamType = nullptr;
};

// A CELL_INVOKE or LIBRARY_INVOKE as the interpreter runs it: inputs and outputs in the
// function's signature order.
struct PulseInvokePlan_t
{
	const CPulse_InvokeBinding *m_pBinding = nullptr;
	const PulseFunctionBinding_t *m_pFunction = nullptr;
	const CPulseCell_Base *m_pCell = nullptr;
	int m_nCellIndex = -1;
	std::vector<PulseInvokeArg_t> m_In;
	std::vector<PulseInvokeArg_t> m_Out;
};

// A graph method call as the interpreter runs it.
struct PulseCallPlan_t
{
	const CPulse_CallInfo *m_pCallInfo = nullptr;
	const CPulseCell_Base *m_pTarget = nullptr; // the method's inflow cell
};
