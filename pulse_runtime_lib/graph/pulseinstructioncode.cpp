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
