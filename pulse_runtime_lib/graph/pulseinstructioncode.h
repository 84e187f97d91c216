#pragma once
// The instruction set, in one table: every code with the operand fields it reads and, for
// the typed forms, the generic code it was bound from. Codes below LAST_SERIALIZED_CODE
// are what compilers emit and files hold; binding turns the generic operators into their
// typed forms once, so the interpreter never looks at a type.

#include <cstdint>

#include "core/schema/schemadeclare.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluetype.h"

// Operand fields an instruction reads.
enum PulseOperand_t : uint16_t
{
	PULSE_OPERAND_NONE = 0,
	PULSE_OPERAND_REG0 = 1 << 0,
	PULSE_OPERAND_REG1 = 1 << 1,
	PULSE_OPERAND_REG2 = 1 << 2,
	PULSE_OPERAND_VAR = 1 << 3,
	PULSE_OPERAND_CONST = 1 << 4,
	PULSE_OPERAND_DOMAIN_VALUE = 1 << 5,
	PULSE_OPERAND_BLACKBOARD = 1 << 6,
	PULSE_OPERAND_CHUNK = 1 << 7,
	PULSE_OPERAND_DEST = 1 << 8,
	PULSE_OPERAND_CALL_INFO = 1 << 9,
	PULSE_OPERAND_INVOKE = 1 << 10,
	// Reg1 is printed but optional (SET_VAR_ARRAY_ELEMENT_1D).
	PULSE_OPERAND_REG1_OPTIONAL = 1 << 11,
};

#define PULSE_R0 PULSE_OPERAND_REG0
#define PULSE_R01 ( PULSE_OPERAND_REG0 | PULSE_OPERAND_REG1 )
#define PULSE_R012 ( PULSE_OPERAND_REG0 | PULSE_OPERAND_REG1 | PULSE_OPERAND_REG2 )

// X( name, operands, generic code of a typed form )
#define PULSE_INSTRUCTION_TABLE( X )                                                                                   \
	X( INVALID, PULSE_OPERAND_NONE, INVALID )                                                                          \
	X( IMMEDIATE_HALT, PULSE_OPERAND_NONE, IMMEDIATE_HALT )                                                            \
	X( RETURN_VOID, PULSE_OPERAND_NONE, RETURN_VOID )                                                                  \
	X( RETURN_VALUE, PULSE_R0, RETURN_VALUE )                                                                          \
	X( NOP, PULSE_OPERAND_NONE, NOP )                                                                                  \
	X( JUMP, PULSE_OPERAND_DEST, JUMP )                                                                                \
	X( JUMP_COND, PULSE_R0 | PULSE_OPERAND_DEST, JUMP_COND )                                                           \
	X( CHUNK_LEAP, PULSE_OPERAND_CHUNK, CHUNK_LEAP )                                                                   \
	X( CHUNK_LEAP_COND, PULSE_R0 | PULSE_OPERAND_CHUNK, CHUNK_LEAP_COND )                                              \
	X( PULSE_CALL_SYNC, PULSE_OPERAND_CHUNK | PULSE_OPERAND_DEST | PULSE_OPERAND_CALL_INFO, PULSE_CALL_SYNC )           \
	X( PULSE_CALL_ASYNC_FIRE, PULSE_OPERAND_CHUNK | PULSE_OPERAND_DEST | PULSE_OPERAND_CALL_INFO, PULSE_CALL_ASYNC_FIRE ) \
	X( CELL_INVOKE, PULSE_OPERAND_INVOKE, CELL_INVOKE )                                                                \
	X( LIBRARY_INVOKE, PULSE_OPERAND_INVOKE, LIBRARY_INVOKE )                                                          \
	X( SET_VAR, PULSE_OPERAND_VAR | PULSE_R0, SET_VAR )                                                                \
	X( GET_VAR, PULSE_R0 | PULSE_OPERAND_VAR, GET_VAR )                                                                \
	X( GET_VAR_DETACH, PULSE_R0 | PULSE_OPERAND_VAR, GET_VAR_DETACH )                                                  \
	X( DETACH_REGISTER, PULSE_R0, DETACH_REGISTER )                                                                    \
	X( SET_VAR_ARRAY_ELEMENT_1D, PULSE_OPERAND_VAR | PULSE_R0 | PULSE_OPERAND_REG1_OPTIONAL | PULSE_OPERAND_REG2, SET_VAR_ARRAY_ELEMENT_1D ) \
	X( SET_VAR_OBSERVABLE, PULSE_OPERAND_VAR | PULSE_R0, SET_VAR_OBSERVABLE )                                          \
	X( GET_CONST, PULSE_R0 | PULSE_OPERAND_CONST, GET_CONST )                                                          \
	X( GET_ARRAY_ELEMENT, PULSE_R012, GET_ARRAY_ELEMENT )                                                              \
	X( GET_DOMAIN_VALUE, PULSE_R0 | PULSE_OPERAND_DOMAIN_VALUE, GET_DOMAIN_VALUE )                                     \
	X( COPY, PULSE_R01, COPY )                                                                                         \
	X( NOT, PULSE_R01, NOT )                                                                                           \
	X( NEGATE, PULSE_R01, NEGATE )                                                                                     \
	X( ADD, PULSE_R012, ADD )                                                                                          \
	X( SUB, PULSE_R012, SUB )                                                                                          \
	X( MUL, PULSE_R012, MUL )                                                                                          \
	X( DIV, PULSE_R012, DIV )                                                                                          \
	X( MOD, PULSE_R012, MOD )                                                                                          \
	X( LT, PULSE_R012, LT )                                                                                            \
	X( LTE, PULSE_R012, LTE )                                                                                          \
	X( EQ, PULSE_R012, EQ )                                                                                            \
	X( NE, PULSE_R012, NE )                                                                                            \
	X( AND, PULSE_R012, AND )                                                                                          \
	X( OR, PULSE_R012, OR )                                                                                            \
	X( SCALE, PULSE_R012, SCALE )                                                                                      \
	X( SCALE_INV, PULSE_R012, SCALE_INV )                                                                              \
	X( ELEMENT_ACCESS, PULSE_R012, ELEMENT_ACCESS )                                                                    \
	X( CONVERT_VALUE, PULSE_R01, CONVERT_VALUE )                                                                       \
	X( REINTERPRET_INSTANCE, PULSE_R01, REINTERPRET_INSTANCE )                                                         \
	X( GET_BLACKBOARD_REFERENCE, PULSE_R0 | PULSE_OPERAND_BLACKBOARD, GET_BLACKBOARD_REFERENCE )                        \
	X( SET_BLACKBOARD_REFERENCE, PULSE_R0 | PULSE_OPERAND_BLACKBOARD, SET_BLACKBOARD_REFERENCE )                        \
	X( LAST_SERIALIZED_CODE, PULSE_OPERAND_NONE, LAST_SERIALIZED_CODE )                                                \
	X( NEGATE_INT, PULSE_R01, NEGATE )                                                                                 \
	X( NEGATE_FLOAT, PULSE_R01, NEGATE )                                                                               \
	X( NEGATE_VEC2, PULSE_R01, NEGATE )                                                                                \
	X( NEGATE_VEC3, PULSE_R01, NEGATE )                                                                                \
	X( NEGATE_VEC4, PULSE_R01, NEGATE )                                                                                \
	X( ADD_INT, PULSE_R012, ADD )                                                                                      \
	X( ADD_FLOAT, PULSE_R012, ADD )                                                                                    \
	X( ADD_STRING, PULSE_R012, ADD )                                                                                   \
	X( ADD_VEC2, PULSE_R012, ADD )                                                                                     \
	X( ADD_VEC3, PULSE_R012, ADD )                                                                                     \
	X( ADD_VEC3WS_VEC3, PULSE_R012, ADD )                                                                              \
	X( ADD_VEC3_VEC3WS, PULSE_R012, ADD )                                                                              \
	X( ADD_VEC4, PULSE_R012, ADD )                                                                                     \
	X( ADD_GAMETIME_FLOAT, PULSE_R012, ADD )                                                                           \
	X( ADD_FLOAT_GAMETIME, PULSE_R012, ADD )                                                                           \
	X( SUB_INT, PULSE_R012, SUB )                                                                                      \
	X( SUB_FLOAT, PULSE_R012, SUB )                                                                                    \
	X( SUB_VEC2, PULSE_R012, SUB )                                                                                     \
	X( SUB_VEC3, PULSE_R012, SUB )                                                                                     \
	X( SUB_VEC3WS_VEC3, PULSE_R012, SUB )                                                                              \
	X( SUB_VEC3WS_VEC3WS, PULSE_R012, SUB )                                                                            \
	X( SUB_VEC4, PULSE_R012, SUB )                                                                                     \
	X( SUB_GAMETIME_FLOAT, PULSE_R012, SUB )                                                                           \
	X( SUB_GAMETIME, PULSE_R012, SUB )                                                                                 \
	X( MUL_INT, PULSE_R012, MUL )                                                                                      \
	X( MUL_FLOAT, PULSE_R012, MUL )                                                                                    \
	X( DIV_FLOAT, PULSE_R012, DIV )                                                                                    \
	X( MOD_INT, PULSE_R012, MOD )                                                                                      \
	X( MOD_FLOAT, PULSE_R012, MOD )                                                                                    \
	X( LT_INT, PULSE_R012, LT )                                                                                        \
	X( LT_FLOAT, PULSE_R012, LT )                                                                                      \
	X( LT_GAMETIME, PULSE_R012, LT )                                                                                   \
	X( LTE_INT, PULSE_R012, LTE )                                                                                      \
	X( LTE_FLOAT, PULSE_R012, LTE )                                                                                    \
	X( LTE_GAMETIME, PULSE_R012, LTE )                                                                                 \
	X( EQ_BOOL, PULSE_R012, EQ )                                                                                       \
	X( EQ_INT, PULSE_R012, EQ )                                                                                        \
	X( EQ_FLOAT, PULSE_R012, EQ )                                                                                      \
	X( EQ_VEC2, PULSE_R012, EQ )                                                                                       \
	X( EQ_VEC3, PULSE_R012, EQ )                                                                                       \
	X( EQ_VEC3WS, PULSE_R012, EQ )                                                                                     \
	X( EQ_VEC4, PULSE_R012, EQ )                                                                                       \
	X( EQ_STRING, PULSE_R012, EQ )                                                                                     \
	X( EQ_ENTITY_NAME, PULSE_R012, EQ )                                                                                \
	X( EQ_SCHEMA_ENUM, PULSE_R012, EQ )                                                                                \
	X( EQ_EHANDLE, PULSE_R012, EQ )                                                                                    \
	X( EQ_PANEL_HANDLE, PULSE_R012, EQ )                                                                               \
	X( EQ_OPAQUE_HANDLE, PULSE_R012, EQ )                                                                              \
	X( EQ_TEST_HANDLE, PULSE_R012, EQ )                                                                                \
	X( EQ_COLOR_RGB, PULSE_R012, EQ )                                                                                  \
	X( EQ_ARRAY, PULSE_R012, EQ )                                                                                      \
	X( EQ_GAMETIME, PULSE_R012, EQ )                                                                                   \
	X( NE_BOOL, PULSE_R012, NE )                                                                                       \
	X( NE_INT, PULSE_R012, NE )                                                                                        \
	X( NE_FLOAT, PULSE_R012, NE )                                                                                      \
	X( NE_VEC2, PULSE_R012, NE )                                                                                       \
	X( NE_VEC3, PULSE_R012, NE )                                                                                       \
	X( NE_VEC3WS, PULSE_R012, NE )                                                                                     \
	X( NE_VEC4, PULSE_R012, NE )                                                                                       \
	X( NE_STRING, PULSE_R012, NE )                                                                                     \
	X( NE_ENTITY_NAME, PULSE_R012, NE )                                                                                \
	X( NE_SCHEMA_ENUM, PULSE_R012, NE )                                                                                \
	X( NE_EHANDLE, PULSE_R012, NE )                                                                                    \
	X( NE_PANEL_HANDLE, PULSE_R012, NE )                                                                               \
	X( NE_OPAQUE_HANDLE, PULSE_R012, NE )                                                                              \
	X( NE_TEST_HANDLE, PULSE_R012, NE )                                                                                \
	X( NE_COLOR_RGB, PULSE_R012, NE )                                                                                  \
	X( NE_ARRAY, PULSE_R012, NE )                                                                                      \
	X( NE_GAMETIME, PULSE_R012, NE )                                                                                   \
	X( SCALE_VEC3, PULSE_R012, SCALE )                                                                                 \
	X( SCALE_VEC2, PULSE_R012, SCALE )                                                                                 \
	X( SCALE_VEC4, PULSE_R012, SCALE )                                                                                 \
	X( SCALE_INV_VEC3, PULSE_R012, SCALE_INV )                                                                         \
	X( SCALE_INV_VEC2, PULSE_R012, SCALE_INV )                                                                         \
	X( SCALE_INV_VEC4, PULSE_R012, SCALE_INV )                                                                         \
	X( ELEMENT_ACCESS_VEC2, PULSE_R012, ELEMENT_ACCESS )                                                               \
	X( ELEMENT_ACCESS_VEC3, PULSE_R012, ELEMENT_ACCESS )                                                               \
	X( ELEMENT_ACCESS_VEC3WS, PULSE_R012, ELEMENT_ACCESS )                                                             \
	X( ELEMENT_ACCESS_VEC4, PULSE_R012, ELEMENT_ACCESS )                                                               \
	X( ELEMENT_ACCESS_COLOR_RGB, PULSE_R012, ELEMENT_ACCESS )                                                           \
	X( GET_CONST_INLINE_STORAGE, PULSE_R0 | PULSE_OPERAND_CONST, GET_CONST )

// Scoped so that short names (ADD, NOT, INVALID) stay out of the global namespace; code
// that works with many of them says `using enum PulseInstructionCode_t`.
enum class PulseInstructionCode_t : int16_t
{
#define PULSE_X_ENUM( name, operands, generic ) name,
	PULSE_INSTRUCTION_TABLE( PULSE_X_ENUM )
#undef PULSE_X_ENUM
	CODE_COUNT
};
static_assert( int( PulseInstructionCode_t::LAST_SERIALIZED_CODE ) == 43 && int( PulseInstructionCode_t::GET_CONST_INLINE_STORAGE ) == 124 &&
			   int( PulseInstructionCode_t::CODE_COUNT ) == 125 );
constexpr int PULSE_INSTRUCTION_CODE_COUNT = 125;
constexpr int PULSE_LAST_SERIALIZED_CODE = 43;

SCHEMA_ENUM_BEGIN( PulseInstructionCode_t )
#define PULSE_X_DESC( name, operands, generic ) SCHEMA_ENUMERATOR( name )
	PULSE_INSTRUCTION_TABLE( PULSE_X_DESC )
#undef PULSE_X_DESC
SCHEMA_ENUM_END()

// The enumerator's name; null for a number outside the set.
const char *PulseInstructionCode_GetName( int nCode );
// The operand fields the code reads (PulseOperand_t bits); none for unknown numbers.
uint16_t PulseInstructionCode_GetOperands( int nCode );
// The generic code a typed form was bound from; the code itself for the others.
PulseInstructionCode_t PulseInstructionCode_GetGeneric( PulseInstructionCode_t eCode );
// A code that compilers emit and files may hold.
inline bool PulseInstructionCode_IsStored( int nCode ) { return nCode >= 0 && nCode < PULSE_LAST_SERIALIZED_CODE; }
// The typed form binding makes of a generic operator (NEGATE, ADD .. NE, SCALE,
// SCALE_INV, ELEMENT_ACCESS) for its operands' base types, with the result's type; a
// unary operator passes PVAL_VOID on the right. False when there is none: binding refuses
// such an instruction, so compilers refuse it first.
bool PulseInstructionCode_FindTypedForm( PulseInstructionCode_t eGeneric, PulseValueType_t eLeft, PulseValueType_t eRight, PulseInstructionCode_t *pTyped,
										 PulseValueType_t *pResult );
