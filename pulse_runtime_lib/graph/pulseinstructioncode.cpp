#include "pulse_runtime_lib/graph/pulseinstructioncode.h"

namespace
{
struct InstructionInfo_t
{
	const char *m_pName;
	uint16_t m_nOperands;
	PulseInstructionCode_t m_eGeneric;
};

constexpr InstructionInfo_t s_Instructions[] = {
#define PULSE_X_INFO( name, operands, generic ) { #name, uint16_t( operands ), PulseInstructionCode_t::generic },
	PULSE_INSTRUCTION_TABLE( PULSE_X_INFO )
#undef PULSE_X_INFO
};
static_assert( sizeof( s_Instructions ) / sizeof( s_Instructions[ 0 ] ) == PULSE_INSTRUCTION_CODE_COUNT );

bool IsKnown( int nCode ) { return nCode >= 0 && nCode < PULSE_INSTRUCTION_CODE_COUNT; }

using enum PulseInstructionCode_t;

// The typed form of a generic operator for its operand types. Unary forms leave the
// second operand PVAL_VOID.
struct TypedForm_t
{
	PulseInstructionCode_t m_eGeneric;
	PulseValueType_t m_eLeft;
	PulseValueType_t m_eRight;
	PulseInstructionCode_t m_eTyped;
	PulseValueType_t m_eResult;
};

constexpr TypedForm_t s_TypedForms[] = {
	{ NEGATE, PVAL_INT, PVAL_VOID, NEGATE_INT, PVAL_INT },
	{ NEGATE, PVAL_FLOAT, PVAL_VOID, NEGATE_FLOAT, PVAL_FLOAT },
	{ NEGATE, PVAL_VEC2, PVAL_VOID, NEGATE_VEC2, PVAL_VEC2 },
	{ NEGATE, PVAL_VEC3, PVAL_VOID, NEGATE_VEC3, PVAL_VEC3 },
	{ NEGATE, PVAL_VEC4, PVAL_VOID, NEGATE_VEC4, PVAL_VEC4 },
	{ ADD, PVAL_INT, PVAL_INT, ADD_INT, PVAL_INT },
	{ ADD, PVAL_FLOAT, PVAL_FLOAT, ADD_FLOAT, PVAL_FLOAT },
	{ ADD, PVAL_STRING, PVAL_STRING, ADD_STRING, PVAL_STRING },
	{ ADD, PVAL_VEC2, PVAL_VEC2, ADD_VEC2, PVAL_VEC2 },
	{ ADD, PVAL_VEC3, PVAL_VEC3, ADD_VEC3, PVAL_VEC3 },
	{ ADD, PVAL_VEC3_WORLDSPACE, PVAL_VEC3, ADD_VEC3WS_VEC3, PVAL_VEC3_WORLDSPACE },
	{ ADD, PVAL_VEC3, PVAL_VEC3_WORLDSPACE, ADD_VEC3_VEC3WS, PVAL_VEC3_WORLDSPACE },
	{ ADD, PVAL_VEC4, PVAL_VEC4, ADD_VEC4, PVAL_VEC4 },
	{ ADD, PVAL_GAMETIME, PVAL_FLOAT, ADD_GAMETIME_FLOAT, PVAL_GAMETIME },
	{ ADD, PVAL_FLOAT, PVAL_GAMETIME, ADD_FLOAT_GAMETIME, PVAL_GAMETIME },
	{ SUB, PVAL_INT, PVAL_INT, SUB_INT, PVAL_INT },
	{ SUB, PVAL_FLOAT, PVAL_FLOAT, SUB_FLOAT, PVAL_FLOAT },
	{ SUB, PVAL_VEC2, PVAL_VEC2, SUB_VEC2, PVAL_VEC2 },
	{ SUB, PVAL_VEC3, PVAL_VEC3, SUB_VEC3, PVAL_VEC3 },
	{ SUB, PVAL_VEC3_WORLDSPACE, PVAL_VEC3, SUB_VEC3WS_VEC3, PVAL_VEC3_WORLDSPACE },
	{ SUB, PVAL_VEC3_WORLDSPACE, PVAL_VEC3_WORLDSPACE, SUB_VEC3WS_VEC3WS, PVAL_VEC3 },
	{ SUB, PVAL_VEC4, PVAL_VEC4, SUB_VEC4, PVAL_VEC4 },
	{ SUB, PVAL_GAMETIME, PVAL_FLOAT, SUB_GAMETIME_FLOAT, PVAL_GAMETIME },
	{ SUB, PVAL_GAMETIME, PVAL_GAMETIME, SUB_GAMETIME, PVAL_FLOAT },
	{ MUL, PVAL_INT, PVAL_INT, MUL_INT, PVAL_INT },
	{ MUL, PVAL_FLOAT, PVAL_FLOAT, MUL_FLOAT, PVAL_FLOAT },
	{ DIV, PVAL_FLOAT, PVAL_FLOAT, DIV_FLOAT, PVAL_FLOAT },
	{ MOD, PVAL_INT, PVAL_INT, MOD_INT, PVAL_INT },
	{ MOD, PVAL_FLOAT, PVAL_FLOAT, MOD_FLOAT, PVAL_FLOAT },
	{ LT, PVAL_INT, PVAL_INT, LT_INT, PVAL_BOOL },
	{ LT, PVAL_FLOAT, PVAL_FLOAT, LT_FLOAT, PVAL_BOOL },
	{ LT, PVAL_GAMETIME, PVAL_GAMETIME, LT_GAMETIME, PVAL_BOOL },
	{ LTE, PVAL_INT, PVAL_INT, LTE_INT, PVAL_BOOL },
	{ LTE, PVAL_FLOAT, PVAL_FLOAT, LTE_FLOAT, PVAL_BOOL },
	{ LTE, PVAL_GAMETIME, PVAL_GAMETIME, LTE_GAMETIME, PVAL_BOOL },
#define PULSE_EQ_NE( type, suffix ) { EQ, type, type, EQ_##suffix, PVAL_BOOL }, { NE, type, type, NE_##suffix, PVAL_BOOL },
	PULSE_EQ_NE( PVAL_BOOL, BOOL ) PULSE_EQ_NE( PVAL_INT, INT ) PULSE_EQ_NE( PVAL_FLOAT, FLOAT ) PULSE_EQ_NE( PVAL_VEC2, VEC2 )
	PULSE_EQ_NE( PVAL_VEC3, VEC3 ) PULSE_EQ_NE( PVAL_VEC3_WORLDSPACE, VEC3WS ) PULSE_EQ_NE( PVAL_VEC4, VEC4 ) PULSE_EQ_NE( PVAL_STRING, STRING )
	PULSE_EQ_NE( PVAL_ENTITY_NAME, ENTITY_NAME ) PULSE_EQ_NE( PVAL_SCHEMA_ENUM, SCHEMA_ENUM ) PULSE_EQ_NE( PVAL_EHANDLE, EHANDLE )
	PULSE_EQ_NE( PVAL_VISTARA_PANEL_HANDLE, PANEL_HANDLE ) PULSE_EQ_NE( PVAL_OPAQUE_HANDLE, OPAQUE_HANDLE ) PULSE_EQ_NE( PVAL_TEST_HANDLE, TEST_HANDLE )
	PULSE_EQ_NE( PVAL_COLOR_RGB, COLOR_RGB ) PULSE_EQ_NE( PVAL_ARRAY, ARRAY ) PULSE_EQ_NE( PVAL_GAMETIME, GAMETIME )
#undef PULSE_EQ_NE
	{ SCALE, PVAL_VEC3, PVAL_FLOAT, SCALE_VEC3, PVAL_VEC3 },
	{ SCALE, PVAL_VEC2, PVAL_FLOAT, SCALE_VEC2, PVAL_VEC2 },
	{ SCALE, PVAL_VEC4, PVAL_FLOAT, SCALE_VEC4, PVAL_VEC4 },
	{ SCALE_INV, PVAL_VEC3, PVAL_FLOAT, SCALE_INV_VEC3, PVAL_VEC3 },
	{ SCALE_INV, PVAL_VEC2, PVAL_FLOAT, SCALE_INV_VEC2, PVAL_VEC2 },
	{ SCALE_INV, PVAL_VEC4, PVAL_FLOAT, SCALE_INV_VEC4, PVAL_VEC4 },
	{ ELEMENT_ACCESS, PVAL_VEC2, PVAL_INT, ELEMENT_ACCESS_VEC2, PVAL_FLOAT },
	{ ELEMENT_ACCESS, PVAL_VEC3, PVAL_INT, ELEMENT_ACCESS_VEC3, PVAL_FLOAT },
	{ ELEMENT_ACCESS, PVAL_VEC3_WORLDSPACE, PVAL_INT, ELEMENT_ACCESS_VEC3WS, PVAL_FLOAT },
	{ ELEMENT_ACCESS, PVAL_VEC4, PVAL_INT, ELEMENT_ACCESS_VEC4, PVAL_FLOAT },
	{ ELEMENT_ACCESS, PVAL_COLOR_RGB, PVAL_INT, ELEMENT_ACCESS_COLOR_RGB, PVAL_INT },
};
} // namespace

const char *PulseInstructionCode_GetName( int nCode )
{
	return IsKnown( nCode ) ? s_Instructions[ nCode ].m_pName : nullptr;
}

uint16_t PulseInstructionCode_GetOperands( int nCode )
{
	return IsKnown( nCode ) ? s_Instructions[ nCode ].m_nOperands : uint16_t( PULSE_OPERAND_NONE );
}

PulseInstructionCode_t PulseInstructionCode_GetGeneric( PulseInstructionCode_t eCode )
{
	return IsKnown( int( eCode ) ) ? s_Instructions[ int( eCode ) ].m_eGeneric : eCode;
}

bool PulseInstructionCode_FindTypedForm( PulseInstructionCode_t eGeneric, PulseValueType_t eLeft, PulseValueType_t eRight, PulseInstructionCode_t *pTyped,
										 PulseValueType_t *pResult )
{
	for ( const TypedForm_t &form : s_TypedForms )
	{
		if ( form.m_eGeneric == eGeneric && form.m_eLeft == eLeft && form.m_eRight == eRight )
		{
			*pTyped = form.m_eTyped;
			*pResult = form.m_eResult;
			return true;
		}
	}
	return false;
}
