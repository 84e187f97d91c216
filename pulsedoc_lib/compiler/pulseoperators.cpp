#include "pulsedoc_lib/compiler/pulseoperators.h"

#include <utility>

#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

using enum PulseInstructionCode_t;

namespace
{
constexpr PulseValueType_t SAME = PVAL_COUNT; // the operand keeps its type

struct OperatorRow_t
{
	PulseInstructionCode_t m_eOperator;
	PulseValueType_t m_eLeft;
	PulseValueType_t m_eRight;
	PulseInstructionCode_t m_eCode; // NOP forbids the pair
	PulseValueType_t m_eCastLeft;
	PulseValueType_t m_eCastRight;
	PulseValueType_t m_eResult;
	bool m_bSwap;
};

#define PULSE_FORBID( op, type ) { op, type, type, NOP, SAME, SAME, PVAL_VOID, false }
constexpr OperatorRow_t s_Rows[] = {
	{ ADD, PVAL_VEC3_WORLDSPACE, PVAL_VEC3, ADD, SAME, SAME, PVAL_VEC3_WORLDSPACE, false },
	{ ADD, PVAL_VEC3, PVAL_VEC3_WORLDSPACE, ADD, SAME, SAME, PVAL_VEC3_WORLDSPACE, false },
	{ ADD, PVAL_FLOAT, PVAL_GAMETIME, ADD, SAME, SAME, PVAL_GAMETIME, false },
	{ ADD, PVAL_GAMETIME, PVAL_FLOAT, ADD, SAME, SAME, PVAL_GAMETIME, false },
	{ ADD, PVAL_INT, PVAL_GAMETIME, ADD, PVAL_FLOAT, SAME, PVAL_GAMETIME, false },
	{ ADD, PVAL_GAMETIME, PVAL_INT, ADD, SAME, PVAL_FLOAT, PVAL_GAMETIME, false },
	PULSE_FORBID( ADD, PVAL_GAMETIME ),
	PULSE_FORBID( ADD, PVAL_VEC3_WORLDSPACE ),
	{ SUB, PVAL_GAMETIME, PVAL_GAMETIME, SUB, SAME, SAME, PVAL_FLOAT, false },
	{ SUB, PVAL_GAMETIME, PVAL_FLOAT, SUB, SAME, SAME, PVAL_GAMETIME, false },
	{ SUB, PVAL_VEC3_WORLDSPACE, PVAL_VEC3_WORLDSPACE, SUB, SAME, SAME, PVAL_VEC3, false },
	{ SUB, PVAL_VEC3_WORLDSPACE, PVAL_VEC3, SUB, SAME, SAME, PVAL_VEC3_WORLDSPACE, false },
	{ SUB, PVAL_GAMETIME, PVAL_INT, SUB, SAME, PVAL_FLOAT, PVAL_GAMETIME, false },
	{ SUB, PVAL_FLOAT, PVAL_GAMETIME, NOP, SAME, SAME, PVAL_VOID, false },
	{ SUB, PVAL_INT, PVAL_GAMETIME, NOP, SAME, SAME, PVAL_VOID, false },
	{ MUL, PVAL_VEC2, PVAL_FLOAT, SCALE, SAME, SAME, PVAL_VEC2, false },
	{ MUL, PVAL_VEC3, PVAL_FLOAT, SCALE, SAME, SAME, PVAL_VEC3, false },
	{ MUL, PVAL_VEC4, PVAL_FLOAT, SCALE, SAME, SAME, PVAL_VEC4, false },
	{ MUL, PVAL_FLOAT, PVAL_VEC2, SCALE, SAME, SAME, PVAL_VEC2, true },
	{ MUL, PVAL_FLOAT, PVAL_VEC3, SCALE, SAME, SAME, PVAL_VEC3, true },
	{ MUL, PVAL_FLOAT, PVAL_VEC4, SCALE, SAME, SAME, PVAL_VEC4, true },
	{ MUL, PVAL_VEC3, PVAL_INT, SCALE, SAME, PVAL_FLOAT, PVAL_VEC3, false },
	{ MUL, PVAL_INT, PVAL_VEC3, SCALE, PVAL_FLOAT, SAME, PVAL_VEC3, true },
	PULSE_FORBID( MUL, PVAL_VEC3_WORLDSPACE ),
	PULSE_FORBID( MUL, PVAL_VEC2 ),
	PULSE_FORBID( MUL, PVAL_VEC3 ),
	PULSE_FORBID( MUL, PVAL_VEC4 ),
	PULSE_FORBID( MUL, PVAL_GAMETIME ),
	{ DIV, PVAL_INT, PVAL_INT, DIV, PVAL_FLOAT, PVAL_FLOAT, PVAL_FLOAT, false },
	{ DIV, PVAL_VEC2, PVAL_FLOAT, SCALE_INV, SAME, SAME, PVAL_VEC2, false },
	{ DIV, PVAL_VEC3, PVAL_FLOAT, SCALE_INV, SAME, SAME, PVAL_VEC3, false },
	{ DIV, PVAL_VEC4, PVAL_FLOAT, SCALE_INV, SAME, SAME, PVAL_VEC4, false },
	{ DIV, PVAL_VEC3, PVAL_INT, SCALE_INV, SAME, PVAL_FLOAT, PVAL_VEC3, false },
	PULSE_FORBID( DIV, PVAL_VEC2 ),
	PULSE_FORBID( DIV, PVAL_VEC3 ),
	PULSE_FORBID( DIV, PVAL_VEC4 ),
	PULSE_FORBID( DIV, PVAL_VEC3_WORLDSPACE ),
	PULSE_FORBID( DIV, PVAL_GAMETIME ),
	PULSE_FORBID( MOD, PVAL_VEC2 ),
	PULSE_FORBID( MOD, PVAL_VEC3 ),
	PULSE_FORBID( MOD, PVAL_VEC4 ),
	PULSE_FORBID( MOD, PVAL_VEC3_WORLDSPACE ),
	PULSE_FORBID( MOD, PVAL_GAMETIME ),
};
#undef PULSE_FORBID
static_assert( sizeof( s_Rows ) / sizeof( s_Rows[ 0 ] ) == 43 );

bool Converts( PulseValueType_t eFrom, PulseValueType_t eTo )
{
	return eFrom == eTo || PulseValue_CanConvert( CPulseValueFullType( eFrom ), CPulseValueFullType( eTo ) );
}

PulseInstructionCode_t CodeOf( PulseExprOperator_t eOperator, bool *pSwap )
{
	*pSwap = false;
	switch ( eOperator )
	{
	case PULSE_EXPR_ADD: return ADD;
	case PULSE_EXPR_SUB: return SUB;
	case PULSE_EXPR_MUL: return MUL;
	case PULSE_EXPR_DIV: return DIV;
	case PULSE_EXPR_MOD: return MOD;
	case PULSE_EXPR_LT: return LT;
	case PULSE_EXPR_LTE: return LTE;
	case PULSE_EXPR_GT: *pSwap = true; return LT;
	case PULSE_EXPR_GTE: *pSwap = true; return LTE;
	case PULSE_EXPR_EQ: return EQ;
	case PULSE_EXPR_NE: return NE;
	case PULSE_EXPR_AND: return AND;
	case PULSE_EXPR_OR: return OR;
	case PULSE_EXPR_NEGATE: return NEGATE;
	case PULSE_EXPR_NOT: return NOT;
	}
	return NOP;
}
} // namespace

PulseValueType_t PulseOperator_CommonType( PulseValueType_t eLeft, PulseValueType_t eRight )
{
	if ( eLeft == eRight )
		return eLeft;
	for ( PulseValueType_t eCommon : { PVAL_STRING, PVAL_FLOAT, PVAL_INT } )
	{
		if ( ( eLeft == eCommon || eRight == eCommon ) && Converts( eLeft, eCommon ) && Converts( eRight, eCommon ) )
			return eCommon;
	}
	return PVAL_VOID;
}

bool PulseOperator_Resolve( PulseExprOperator_t eOperator, PulseValueType_t eLeft, PulseValueType_t eRight, PulseOperatorChoice_t *pChoice )
{
	bool bSwapOperands = false;
	PulseInstructionCode_t eGeneric = CodeOf( eOperator, &bSwapOperands );
	*pChoice = PulseOperatorChoice_t();
	if ( eLeft == PVAL_UNKNOWN || ( eRight == PVAL_UNKNOWN && eGeneric != NEGATE && eGeneric != NOT ) )
		return false;

	// Logic takes and gives bools.
	if ( eGeneric == NOT || eGeneric == AND || eGeneric == OR )
	{
		bool bUnary = eGeneric == NOT;
		if ( !Converts( eLeft, PVAL_BOOL ) || ( !bUnary && !Converts( eRight, PVAL_BOOL ) ) )
			return false;
		pChoice->m_eCode = eGeneric;
		pChoice->m_eCastLeft = PVAL_BOOL;
		pChoice->m_eCastRight = bUnary ? PVAL_VOID : PVAL_BOOL;
		pChoice->m_eResult = PVAL_BOOL;
		return true;
	}
	if ( eGeneric == NEGATE )
	{
		PulseInstructionCode_t eTyped;
		PulseValueType_t eResult;
		if ( !PulseInstructionCode_FindTypedForm( NEGATE, eLeft, PVAL_VOID, &eTyped, &eResult ) )
			return false;
		pChoice->m_eCode = NEGATE;
		pChoice->m_eCastLeft = eLeft;
		pChoice->m_eResult = eResult;
		return true;
	}

	// The operands as the instruction takes them (the greater forms swap them).
	PulseValueType_t eFirst = bSwapOperands ? eRight : eLeft, eSecond = bSwapOperands ? eLeft : eRight;
	bool bFound = false;
	for ( const OperatorRow_t &row : s_Rows )
	{
		if ( row.m_eOperator != eGeneric || row.m_eLeft != eFirst || row.m_eRight != eSecond )
			continue;
		if ( row.m_eCode == NOP )
			return false;
		pChoice->m_eCode = row.m_eCode;
		pChoice->m_eCastLeft = row.m_eCastLeft == SAME ? eFirst : row.m_eCastLeft;
		pChoice->m_eCastRight = row.m_eCastRight == SAME ? eSecond : row.m_eCastRight;
		pChoice->m_eResult = row.m_eResult;
		pChoice->m_bSwap = row.m_bSwap;
		bFound = true;
		break;
	}
	if ( !bFound )
	{
		PulseValueType_t eCommon = PulseOperator_CommonType( eFirst, eSecond );
		if ( eCommon == PVAL_VOID )
			return false;
		pChoice->m_eCode = eGeneric;
		pChoice->m_eCastLeft = pChoice->m_eCastRight = eCommon;
		pChoice->m_eResult = eCommon;
	}
	// What the instruction takes, in its order.
	PulseValueType_t eInstructionLeft = pChoice->m_bSwap ? pChoice->m_eCastRight : pChoice->m_eCastLeft;
	PulseValueType_t eInstructionRight = pChoice->m_bSwap ? pChoice->m_eCastLeft : pChoice->m_eCastRight;
	// The choice speaks of the operands as written.
	pChoice->m_bSwap = pChoice->m_bSwap != bSwapOperands;
	if ( bSwapOperands )
		std::swap( pChoice->m_eCastLeft, pChoice->m_eCastRight );
	// The result follows the runtime's typed form: comparisons give bools. No typed form
	// means the runtime would refuse the instruction, so the operator is refused here.
	PulseInstructionCode_t eTyped;
	PulseValueType_t eResult;
	if ( !PulseInstructionCode_FindTypedForm( pChoice->m_eCode, eInstructionLeft, eInstructionRight, &eTyped, &eResult ) )
		return false;
	pChoice->m_eResult = eResult;
	return true;
}

const char *PulseOperator_GetSymbol( PulseExprOperator_t eOperator )
{
	static const char *const s_Symbols[] = { "+", "-", "*", "/", "%", "<", "<=", ">", ">=", "==", "!=", "&&", "||", "-", "!" };
	return eOperator >= 0 && eOperator <= PULSE_EXPR_NOT ? s_Symbols[ eOperator ] : "?";
}
