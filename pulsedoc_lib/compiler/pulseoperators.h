#pragma once
// Which operand types an expression operator takes and what it emits: the resolution
// table (searched in order, the first row with the operator and both types decides; a
// code of NOP forbids the pair), else the common type of the operands. The greater forms
// (GT, GTE) are LT and LTE with the operands swapped.

#include "pulse_runtime_lib/graph/pulseinstructioncode.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluetype.h"

// The operators of expressions; the comparison and logic ones beside the instruction codes.
enum PulseExprOperator_t : int
{
	PULSE_EXPR_ADD,
	PULSE_EXPR_SUB,
	PULSE_EXPR_MUL,
	PULSE_EXPR_DIV,
	PULSE_EXPR_MOD,
	PULSE_EXPR_LT,
	PULSE_EXPR_LTE,
	PULSE_EXPR_GT,
	PULSE_EXPR_GTE,
	PULSE_EXPR_EQ,
	PULSE_EXPR_NE,
	PULSE_EXPR_AND,
	PULSE_EXPR_OR,
	PULSE_EXPR_NEGATE,
	PULSE_EXPR_NOT,
};

struct PulseOperatorChoice_t
{
	PulseInstructionCode_t m_eCode = PulseInstructionCode_t::NOP;
	// The types the operands as written are converted to (the right PVAL_VOID for a unary operator).
	PulseValueType_t m_eCastLeft = PVAL_VOID;
	PulseValueType_t m_eCastRight = PVAL_VOID;
	PulseValueType_t m_eResult = PVAL_VOID;
	// The instruction takes the written right operand first (Reg1).
	bool m_bSwap = false;
};

// The common type of two operands: equal types, else string, float, int in that order
// when both convert to it; PVAL_VOID when there is none.
PulseValueType_t PulseOperator_CommonType( PulseValueType_t eLeft, PulseValueType_t eRight );
// False when the operator doesn't take the pair (a forbidden row, no common type, or no
// typed form in the runtime for what it would emit).
bool PulseOperator_Resolve( PulseExprOperator_t eOperator, PulseValueType_t eLeft, PulseValueType_t eRight, PulseOperatorChoice_t *pChoice );
// "+", "<=", "!" ...
const char *PulseOperator_GetSymbol( PulseExprOperator_t eOperator );
