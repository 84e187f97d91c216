// The run loop: one switch over the bound operations. Binding has checked every operand
// and typed every operator, so an operation reads its registers at fixed byte offsets
// and never tests a type or a bound. Operations that can move the cursor (returns, calls,
// leaps, invokes, anything that runs other cursors) go through ExecuteSlow, after which
// the loop takes up the frame afresh.

#include <atomic>
#include <cmath>
#include <mutex>
#include <cstring>

#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/cells/pulsefunctionbinding.h"
#include "pulse_runtime_lib/exec/pulseargpack.h"
#include "pulse_runtime_lib/exec/pulseexeccursor.h"
#include "pulse_runtime_lib/exec/pulsegraphinstance.h"
#include "pulse_runtime_lib/graph/pulsegraphdef.h"
#include "pulse_runtime_lib/system/ipulsesystem.h"
#include "pulse_runtime_lib/valuetypes/pulsearraydata.h"
#include "pulse_runtime_lib/valuetypes/pulsetypeservice.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluestorage.h"

using enum PulseInstructionCode_t;

namespace
{
// A register's address, computed into a register of its own. Folded into a base+index
// operand, a load that reads what the operation before stored waits for the store to
// retire; through a plain pointer the processor forwards the value at once, which halves
// the time of a chain of dependent operations.
inline unsigned char *RegAddress( unsigned char *pRegs, uint16_t nOffset )
{
	unsigned char *pAddress = pRegs + nOffset;
	asm( "" : "+r"( pAddress ) );
	return pAddress;
}

template <typename T> inline T &Reg( unsigned char *pRegs, uint16_t nOffset )
{
	return *reinterpret_cast<T *>( RegAddress( pRegs, nOffset ) );
}

inline float *Floats( unsigned char *pRegs, uint16_t nOffset )
{
	return reinterpret_cast<float *>( RegAddress( pRegs, nOffset ) );
}

template <int N> inline void VecNegate( float *pOut, const float *pA )
{
	for ( int i = 0; i < N; ++i )
		pOut[ i ] = -pA[ i ];
}
template <int N> inline void VecAdd( float *pOut, const float *pA, const float *pB )
{
	for ( int i = 0; i < N; ++i )
		pOut[ i ] = pA[ i ] + pB[ i ];
}
template <int N> inline void VecSub( float *pOut, const float *pA, const float *pB )
{
	for ( int i = 0; i < N; ++i )
		pOut[ i ] = pA[ i ] - pB[ i ];
}
template <int N> inline void VecScale( float *pOut, const float *pA, float flScale )
{
	for ( int i = 0; i < N; ++i )
		pOut[ i ] = pA[ i ] * flScale;
}
template <int N> inline float VecElement( const float *pA, int32_t nIndex )
{
	return pA[ nIndex < 0 ? 0 : nIndex > N - 1 ? N - 1 : nIndex ];
}

// The handler addresses of each interpreter, filled on its first run.
template <bool bTrace> void *s_DispatchTable[ PULSE_OP_COUNT ];

constexpr size_t MAX_STRING_LENGTH = 1 << 20;

// Integers wrap at 32 bits.
inline int32_t WrapAdd( int32_t a, int32_t b ) { return int32_t( uint32_t( a ) + uint32_t( b ) ); }
inline int32_t WrapSub( int32_t a, int32_t b ) { return int32_t( uint32_t( a ) - uint32_t( b ) ); }
inline int32_t WrapMul( int32_t a, int32_t b ) { return int32_t( uint32_t( a ) * uint32_t( b ) ); }

// Two handles are equal with the same bits, or when neither resolves: dead is dead.
bool HandlesEqual( const CPulseValueFullType &type, const void *pA, const void *pB, size_t nBytes )
{
	if ( memcmp( pA, pB, nBytes ) == 0 )
		return true;
	return !PulseValue_IsValid( type, pA ) && !PulseValue_IsValid( type, pB );
}
} // namespace

template <bool bTrace> void CPulseExecCursor::Interpret( int *pCount )
{
	// Threaded dispatch: each operation jumps straight to the next one's handler through
	// this table; codes without a handler here go to ExecuteSlow.
	auto &s_Dispatch = s_DispatchTable<bTrace>;
	static std::atomic<bool> s_bDispatchReady { false };
	if ( !s_bDispatchReady.load( std::memory_order_acquire ) )
	{
		static std::mutex s_Mutex;
		std::lock_guard<std::mutex> lock( s_Mutex );
		for ( void *&pHandler : s_Dispatch )
			pHandler = &&op_slow;
#define PULSE_FAST_OP( name ) s_Dispatch[ int( name ) ] = &&op_##name;
		PULSE_FAST_OP( INVALID )
		PULSE_FAST_OP( NOP )
		PULSE_FAST_OP( LAST_SERIALIZED_CODE )
		PULSE_FAST_OP( JUMP )
		PULSE_FAST_OP( JUMP_COND )
		PULSE_FAST_OP( PULSE_OP_COPY_BYTES )
		PULSE_FAST_OP( PULSE_OP_LOAD_BYTES )
		PULSE_FAST_OP( PULSE_OP_GET_VAR_BYTES )
		PULSE_FAST_OP( PULSE_OP_SET_VAR_BYTES )
		PULSE_FAST_OP( COPY )
		PULSE_FAST_OP( PULSE_OP_COPY_MISMATCH )
		PULSE_FAST_OP( GET_CONST )
		PULSE_FAST_OP( GET_CONST_INLINE_STORAGE )
		PULSE_FAST_OP( NOT )
		PULSE_FAST_OP( AND )
		PULSE_FAST_OP( OR )
		PULSE_FAST_OP( NEGATE_INT )
		PULSE_FAST_OP( NEGATE_FLOAT )
		PULSE_FAST_OP( NEGATE_VEC2 )
		PULSE_FAST_OP( NEGATE_VEC3 )
		PULSE_FAST_OP( NEGATE_VEC4 )
		PULSE_FAST_OP( ADD_INT )
		PULSE_FAST_OP( ADD_FLOAT )
		PULSE_FAST_OP( ADD_GAMETIME_FLOAT )
		PULSE_FAST_OP( ADD_FLOAT_GAMETIME )
		PULSE_FAST_OP( ADD_STRING )
		PULSE_FAST_OP( ADD_VEC2 )
		PULSE_FAST_OP( ADD_VEC3 )
		PULSE_FAST_OP( ADD_VEC3WS_VEC3 )
		PULSE_FAST_OP( ADD_VEC3_VEC3WS )
		PULSE_FAST_OP( ADD_VEC4 )
		PULSE_FAST_OP( SUB_INT )
		PULSE_FAST_OP( SUB_FLOAT )
		PULSE_FAST_OP( SUB_GAMETIME_FLOAT )
		PULSE_FAST_OP( SUB_GAMETIME )
		PULSE_FAST_OP( SUB_VEC2 )
		PULSE_FAST_OP( SUB_VEC3 )
		PULSE_FAST_OP( SUB_VEC3WS_VEC3 )
		PULSE_FAST_OP( SUB_VEC3WS_VEC3WS )
		PULSE_FAST_OP( SUB_VEC4 )
		PULSE_FAST_OP( MUL_INT )
		PULSE_FAST_OP( MUL_FLOAT )
		PULSE_FAST_OP( DIV_FLOAT )
		PULSE_FAST_OP( MOD_INT )
		PULSE_FAST_OP( MOD_FLOAT )
		PULSE_FAST_OP( LT_INT )
		PULSE_FAST_OP( LT_FLOAT )
		PULSE_FAST_OP( LT_GAMETIME )
		PULSE_FAST_OP( LTE_INT )
		PULSE_FAST_OP( LTE_FLOAT )
		PULSE_FAST_OP( LTE_GAMETIME )
		PULSE_FAST_OP( EQ_BOOL )
		PULSE_FAST_OP( NE_BOOL )
		PULSE_FAST_OP( EQ_INT )
		PULSE_FAST_OP( NE_INT )
		PULSE_FAST_OP( EQ_COLOR_RGB )
		PULSE_FAST_OP( NE_COLOR_RGB )
		PULSE_FAST_OP( EQ_ENTITY_NAME )
		PULSE_FAST_OP( NE_ENTITY_NAME )
		PULSE_FAST_OP( EQ_EHANDLE )
		PULSE_FAST_OP( EQ_OPAQUE_HANDLE )
		PULSE_FAST_OP( EQ_TEST_HANDLE )
		PULSE_FAST_OP( NE_EHANDLE )
		PULSE_FAST_OP( NE_OPAQUE_HANDLE )
		PULSE_FAST_OP( NE_TEST_HANDLE )
		PULSE_FAST_OP( EQ_PANEL_HANDLE )
		PULSE_FAST_OP( NE_PANEL_HANDLE )
		PULSE_FAST_OP( EQ_FLOAT )
		PULSE_FAST_OP( EQ_VEC2 )
		PULSE_FAST_OP( EQ_VEC3 )
		PULSE_FAST_OP( EQ_VEC3WS )
		PULSE_FAST_OP( EQ_VEC4 )
		PULSE_FAST_OP( EQ_STRING )
		PULSE_FAST_OP( EQ_SCHEMA_ENUM )
		PULSE_FAST_OP( EQ_ARRAY )
		PULSE_FAST_OP( EQ_GAMETIME )
		PULSE_FAST_OP( NE_FLOAT )
		PULSE_FAST_OP( NE_VEC2 )
		PULSE_FAST_OP( NE_VEC3 )
		PULSE_FAST_OP( NE_VEC3WS )
		PULSE_FAST_OP( NE_VEC4 )
		PULSE_FAST_OP( NE_STRING )
		PULSE_FAST_OP( NE_SCHEMA_ENUM )
		PULSE_FAST_OP( NE_ARRAY )
		PULSE_FAST_OP( NE_GAMETIME )
		PULSE_FAST_OP( SCALE_VEC2 )
		PULSE_FAST_OP( SCALE_VEC3 )
		PULSE_FAST_OP( SCALE_VEC4 )
		PULSE_FAST_OP( SCALE_INV_VEC2 )
		PULSE_FAST_OP( SCALE_INV_VEC3 )
		PULSE_FAST_OP( SCALE_INV_VEC4 )
		PULSE_FAST_OP( ELEMENT_ACCESS_VEC2 )
		PULSE_FAST_OP( ELEMENT_ACCESS_VEC3 )
		PULSE_FAST_OP( ELEMENT_ACCESS_VEC3WS )
		PULSE_FAST_OP( ELEMENT_ACCESS_VEC4 )
		PULSE_FAST_OP( ELEMENT_ACCESS_COLOR_RGB )
#undef PULSE_FAST_OP
		s_bDispatchReady.store( true, std::memory_order_release );
	}

	IPulseSystem *pSystem = m_pInstance->GetSystem();
	const CPulse_Chunk *pChunk;
	const PulseOp_t *pOps;
	const PulseOpData_t *pOpData;
	unsigned char *pRegs;
	const PulseOp_t *pOp;
	int nCount = *pCount;
	// The float the last float operation wrote, and its register: a float operation
	// that reads that register takes the value from here instead of waiting for the
	// store before it to reach memory. Registers are still always written, and every
	// other operation forgets the value, so it is never stale. Forgetting clears the
	// value too: it is then dead across every call, and the compiler keeps it in a
	// register instead of on the stack.
	constexpr uint32_t NO_FLOAT = 0xffffffff;
	float flLast = 0.0f;
	uint32_t nLastFloat = NO_FLOAT;

#define PULSE_DISPATCH()                                                       \
	do                                                                         \
	{                                                                          \
		if ( ++nCount > MAX_INSTRUCTIONS_PER_RUN )                             \
			goto op_limit;                                                     \
		if constexpr ( bTrace )                                                \
			pSystem->TraceInstruction( this, pOp->m_nCode, pChunk->GetFlowNodeID( int( pOp - pOps ) ) ); \
		goto *s_Dispatch[ pOp->m_nCode ];                                      \
	} while ( 0 )
#define PULSE_NEXT()           \
	do                         \
	{                          \
		nLastFloat = NO_FLOAT; \
		flLast = 0.0f;         \
		++pOp;                 \
		PULSE_DISPATCH();      \
	} while ( 0 )
#define PULSE_FLOAT_IN( nOffset ) ( __builtin_expect( ( nOffset ) == nLastFloat, 1 ) ? flLast : Reg<float>( pRegs, nOffset ) )
#define PULSE_FLOAT_OUT( flValue )                \
	do                                            \
	{                                             \
		flLast = ( flValue );                     \
		nLastFloat = pOp->m_nReg0;                \
		Reg<float>( pRegs, pOp->m_nReg0 ) = flLast; \
		++pOp;                                    \
		PULSE_DISPATCH();                         \
	} while ( 0 )

op_reload:
	// A new frame, or the same one moved: take it up afresh.
	pChunk = m_Active.m_pChunk;
	pOps = pChunk->m_Ops.data();
	pOpData = pChunk->m_OpData.data();
	pRegs = m_Active.m_Registers.Data();
	pOp = pOps + m_Active.m_nInstruction;
	nLastFloat = NO_FLOAT;
	flLast = 0.0f;
	PULSE_DISPATCH();

	op_INVALID:
	op_NOP:
	op_LAST_SERIALIZED_CODE: PULSE_NEXT();
	op_JUMP: pOp = pOps + pOp->m_nReg1; PULSE_DISPATCH();
	op_JUMP_COND: pOp = Reg<bool>( pRegs, pOp->m_nReg0 ) ? pOps + pOp->m_nReg1 : pOp + 1; PULSE_DISPATCH();

	op_PULSE_OP_COPY_BYTES: memcpy( pRegs + pOp->m_nReg0, pRegs + pOp->m_nReg1, pOp->m_nReg2 ); PULSE_NEXT();
	op_PULSE_OP_LOAD_BYTES: memcpy( pRegs + pOp->m_nReg0, pOpData[ pOp - pOps ].m_pData, pOp->m_nReg1 ); PULSE_NEXT();
	op_PULSE_OP_GET_VAR_BYTES: memcpy( pRegs + pOp->m_nReg0, m_pInstance->GetStateBlock() + pOp->m_nReg2, pOp->m_nReg1 ); PULSE_NEXT();
	op_PULSE_OP_SET_VAR_BYTES:
			memcpy( m_pInstance->GetStateBlock() + pOp->m_nReg2, pRegs + pOp->m_nReg0, pOp->m_nReg1 );
			m_pInstance->SetVariableDetached( pOpData[ pOp - pOps ].m_nC, false );
			PULSE_NEXT();
	op_COPY: PulseValue_Copy( *pOpData[ pOp - pOps ].m_pType, pRegs + pOp->m_nReg0, pRegs + pOp->m_nReg1 ); PULSE_NEXT();
	op_PULSE_OP_COPY_MISMATCH: m_Active.SetDetached( pOpData[ pOp - pOps ].m_nRegIndex0, false ); PULSE_NEXT();
	op_GET_CONST:
	op_GET_CONST_INLINE_STORAGE:
			if ( pOpData[ pOp - pOps ].m_pData )
				PulseValue_Copy( *pOpData[ pOp - pOps ].m_pType, pRegs + pOp->m_nReg0, pOpData[ pOp - pOps ].m_pData );
			PULSE_NEXT();

	op_NOT: Reg<bool>( pRegs, pOp->m_nReg0 ) = !Reg<bool>( pRegs, pOp->m_nReg1 ); PULSE_NEXT();
	op_AND: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<bool>( pRegs, pOp->m_nReg1 ) && Reg<bool>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();
	op_OR: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<bool>( pRegs, pOp->m_nReg1 ) || Reg<bool>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();

	op_NEGATE_INT: Reg<int32_t>( pRegs, pOp->m_nReg0 ) = WrapSub( 0, Reg<int32_t>( pRegs, pOp->m_nReg1 ) ); PULSE_NEXT();
	op_NEGATE_FLOAT: PULSE_FLOAT_OUT( -PULSE_FLOAT_IN( pOp->m_nReg1 ) );
	op_NEGATE_VEC2: VecNegate<2>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ) ); PULSE_NEXT();
	op_NEGATE_VEC3: VecNegate<3>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ) ); PULSE_NEXT();
	op_NEGATE_VEC4: VecNegate<4>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ) ); PULSE_NEXT();

	op_ADD_INT: Reg<int32_t>( pRegs, pOp->m_nReg0 ) = WrapAdd( Reg<int32_t>( pRegs, pOp->m_nReg1 ), Reg<int32_t>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_ADD_FLOAT:
	op_ADD_GAMETIME_FLOAT:
	op_ADD_FLOAT_GAMETIME: PULSE_FLOAT_OUT( PULSE_FLOAT_IN( pOp->m_nReg1 ) + PULSE_FLOAT_IN( pOp->m_nReg2 ) );
	op_ADD_STRING:
		{
			const char *pLeft = PulseValue_GetString( pRegs + pOp->m_nReg1 ), *pRight = PulseValue_GetString( pRegs + pOp->m_nReg2 );
			size_t nLength = strlen( pLeft ) + strlen( pRight );
			// A loop that doubles a text would eat all memory long before the run limit.
			if ( nLength > MAX_STRING_LENGTH )
			{
				m_Active.m_nInstruction = int( pOp - pOps );
				Warning( "Text of %zu characters is too long (at most %zu); the result is empty", nLength, MAX_STRING_LENGTH );
				PulseValue_SetString( pRegs + pOp->m_nReg0, "" );
			}
			else
			{
				CUtlString text( pLeft );
				text += pRight;
				PulseValue_SetString( pRegs + pOp->m_nReg0, text.Get() );
			}
			PULSE_NEXT();
		}
	op_ADD_VEC2: VecAdd<2>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), Floats( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_ADD_VEC3:
	op_ADD_VEC3WS_VEC3:
	op_ADD_VEC3_VEC3WS: VecAdd<3>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), Floats( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_ADD_VEC4: VecAdd<4>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), Floats( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();

	op_SUB_INT: Reg<int32_t>( pRegs, pOp->m_nReg0 ) = WrapSub( Reg<int32_t>( pRegs, pOp->m_nReg1 ), Reg<int32_t>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_SUB_FLOAT:
	op_SUB_GAMETIME_FLOAT:
	op_SUB_GAMETIME: PULSE_FLOAT_OUT( PULSE_FLOAT_IN( pOp->m_nReg1 ) - PULSE_FLOAT_IN( pOp->m_nReg2 ) );
	op_SUB_VEC2: VecSub<2>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), Floats( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_SUB_VEC3:
	op_SUB_VEC3WS_VEC3:
	op_SUB_VEC3WS_VEC3WS: VecSub<3>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), Floats( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_SUB_VEC4: VecSub<4>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), Floats( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();

	op_MUL_INT: Reg<int32_t>( pRegs, pOp->m_nReg0 ) = WrapMul( Reg<int32_t>( pRegs, pOp->m_nReg1 ), Reg<int32_t>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_MUL_FLOAT: PULSE_FLOAT_OUT( PULSE_FLOAT_IN( pOp->m_nReg1 ) * PULSE_FLOAT_IN( pOp->m_nReg2 ) );
	op_DIV_FLOAT:
		{
			float flDividend = PULSE_FLOAT_IN( pOp->m_nReg1 ), flDivisor = PULSE_FLOAT_IN( pOp->m_nReg2 );
			if ( flDivisor == 0.0f )
			{
				m_Active.m_nInstruction = int( pOp - pOps );
				Warning( "Divide by zero!" );
			}
			PULSE_FLOAT_OUT( flDividend / flDivisor );
		}
	op_MOD_INT:
		{
			// A zero divisor, and the one quotient that doesn't fit, give 0.
			int32_t a = Reg<int32_t>( pRegs, pOp->m_nReg1 ), b = Reg<int32_t>( pRegs, pOp->m_nReg2 );
			if ( b == 0 )
			{
				m_Active.m_nInstruction = int( pOp - pOps );
				Warning( "Divide by zero!" );
				Reg<int32_t>( pRegs, pOp->m_nReg0 ) = 0;
			}
			else
			{
				Reg<int32_t>( pRegs, pOp->m_nReg0 ) = b == -1 ? 0 : a % b;
			}
			PULSE_NEXT();
		}
	op_MOD_FLOAT:
		{
			float flDividend = PULSE_FLOAT_IN( pOp->m_nReg1 ), flDivisor = PULSE_FLOAT_IN( pOp->m_nReg2 );
			if ( flDivisor == 0.0f )
			{
				m_Active.m_nInstruction = int( pOp - pOps );
				Warning( "Divide by zero!" );
			}
			PULSE_FLOAT_OUT( std::fmod( flDividend, flDivisor ) );
		}

	op_LT_INT: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<int32_t>( pRegs, pOp->m_nReg1 ) < Reg<int32_t>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();
	op_LT_FLOAT:
	op_LT_GAMETIME: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<float>( pRegs, pOp->m_nReg1 ) < Reg<float>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();
	op_LTE_INT: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<int32_t>( pRegs, pOp->m_nReg1 ) <= Reg<int32_t>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();
	op_LTE_FLOAT:
	op_LTE_GAMETIME: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<float>( pRegs, pOp->m_nReg1 ) <= Reg<float>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();

	op_EQ_BOOL: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<bool>( pRegs, pOp->m_nReg1 ) == Reg<bool>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();
	op_NE_BOOL: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<bool>( pRegs, pOp->m_nReg1 ) != Reg<bool>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();
	op_EQ_INT: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<int32_t>( pRegs, pOp->m_nReg1 ) == Reg<int32_t>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();
	op_NE_INT: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<int32_t>( pRegs, pOp->m_nReg1 ) != Reg<int32_t>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();
		// A colour is four bytes at any alignment: all four compare, alpha too.
	op_EQ_COLOR_RGB: Reg<bool>( pRegs, pOp->m_nReg0 ) = memcmp( pRegs + pOp->m_nReg1, pRegs + pOp->m_nReg2, 4 ) == 0; PULSE_NEXT();
	op_NE_COLOR_RGB: Reg<bool>( pRegs, pOp->m_nReg0 ) = memcmp( pRegs + pOp->m_nReg1, pRegs + pOp->m_nReg2, 4 ) != 0; PULSE_NEXT();
	op_EQ_ENTITY_NAME: Reg<bool>( pRegs, pOp->m_nReg0 ) = Reg<CGlobalSymbol>( pRegs, pOp->m_nReg1 ) == Reg<CGlobalSymbol>( pRegs, pOp->m_nReg2 ); PULSE_NEXT();
	op_NE_ENTITY_NAME: Reg<bool>( pRegs, pOp->m_nReg0 ) = !( Reg<CGlobalSymbol>( pRegs, pOp->m_nReg1 ) == Reg<CGlobalSymbol>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_EQ_EHANDLE:
	op_EQ_OPAQUE_HANDLE:
	op_EQ_TEST_HANDLE: Reg<bool>( pRegs, pOp->m_nReg0 ) = HandlesEqual( *pOpData[ pOp - pOps ].m_pType, pRegs + pOp->m_nReg1, pRegs + pOp->m_nReg2, 4 ); PULSE_NEXT();
	op_NE_EHANDLE:
	op_NE_OPAQUE_HANDLE:
	op_NE_TEST_HANDLE: Reg<bool>( pRegs, pOp->m_nReg0 ) = !HandlesEqual( *pOpData[ pOp - pOps ].m_pType, pRegs + pOp->m_nReg1, pRegs + pOp->m_nReg2, 4 ); PULSE_NEXT();
	op_EQ_PANEL_HANDLE: Reg<bool>( pRegs, pOp->m_nReg0 ) = HandlesEqual( *pOpData[ pOp - pOps ].m_pType, pRegs + pOp->m_nReg1, pRegs + pOp->m_nReg2, 8 ); PULSE_NEXT();
	op_NE_PANEL_HANDLE: Reg<bool>( pRegs, pOp->m_nReg0 ) = !HandlesEqual( *pOpData[ pOp - pOps ].m_pType, pRegs + pOp->m_nReg1, pRegs + pOp->m_nReg2, 8 ); PULSE_NEXT();
	op_EQ_FLOAT:
	op_EQ_VEC2:
	op_EQ_VEC3:
	op_EQ_VEC3WS:
	op_EQ_VEC4:
	op_EQ_STRING:
	op_EQ_SCHEMA_ENUM:
	op_EQ_ARRAY:
	op_EQ_GAMETIME: Reg<bool>( pRegs, pOp->m_nReg0 ) = PulseValue_IsEqual( *pOpData[ pOp - pOps ].m_pType, pRegs + pOp->m_nReg1, pRegs + pOp->m_nReg2 ); PULSE_NEXT();
	op_NE_FLOAT:
	op_NE_VEC2:
	op_NE_VEC3:
	op_NE_VEC3WS:
	op_NE_VEC4:
	op_NE_STRING:
	op_NE_SCHEMA_ENUM:
	op_NE_ARRAY:
	op_NE_GAMETIME: Reg<bool>( pRegs, pOp->m_nReg0 ) = !PulseValue_IsEqual( *pOpData[ pOp - pOps ].m_pType, pRegs + pOp->m_nReg1, pRegs + pOp->m_nReg2 ); PULSE_NEXT();

	op_SCALE_VEC2: VecScale<2>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), Reg<float>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_SCALE_VEC3: VecScale<3>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), Reg<float>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_SCALE_VEC4: VecScale<4>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), Reg<float>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_SCALE_INV_VEC2: VecScale<2>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), 1.0f / Reg<float>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_SCALE_INV_VEC3: VecScale<3>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), 1.0f / Reg<float>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_SCALE_INV_VEC4: VecScale<4>( Floats( pRegs, pOp->m_nReg0 ), Floats( pRegs, pOp->m_nReg1 ), 1.0f / Reg<float>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();

	op_ELEMENT_ACCESS_VEC2: Reg<float>( pRegs, pOp->m_nReg0 ) = VecElement<2>( Floats( pRegs, pOp->m_nReg1 ), Reg<int32_t>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_ELEMENT_ACCESS_VEC3:
	op_ELEMENT_ACCESS_VEC3WS: Reg<float>( pRegs, pOp->m_nReg0 ) = VecElement<3>( Floats( pRegs, pOp->m_nReg1 ), Reg<int32_t>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_ELEMENT_ACCESS_VEC4: Reg<float>( pRegs, pOp->m_nReg0 ) = VecElement<4>( Floats( pRegs, pOp->m_nReg1 ), Reg<int32_t>( pRegs, pOp->m_nReg2 ) ); PULSE_NEXT();
	op_ELEMENT_ACCESS_COLOR_RGB:
		{
			int32_t nIndex = Reg<int32_t>( pRegs, pOp->m_nReg2 );
			Reg<int32_t>( pRegs, pOp->m_nReg0 ) = Reg<Color>( pRegs, pOp->m_nReg1 )[ nIndex < 0 ? 0 : nIndex > 2 ? 2 : nIndex ];
			PULSE_NEXT();
		}


op_slow:
	// Everything else may move the cursor or run other cursors.
	m_Active.m_nInstruction = int( pOp - pOps );
	*pCount = nCount;
	m_nFlags |= FLAG_STEP_ON;
	ExecuteSlow( *pOp, pOpData[ pOp - pOps ] );
	if ( m_eState != STATE_IDLE )
		return;
	if ( m_nFlags & FLAG_STEP_ON )
		++m_Active.m_nInstruction;
	// Poison comes only from runs that started inside this operation.
	if ( m_pInstance->IsPoisoned() )
	{
		Terminate( PulseCursorExecResult_t::Failed );
		return;
	}
	goto op_reload;

op_limit:
	m_Active.m_nInstruction = int( pOp - pOps );
	*pCount = nCount;
	m_pInstance->OnInfiniteLoop( nCount );
	Terminate( PulseCursorExecResult_t::Failed );
#undef PULSE_FLOAT_OUT
#undef PULSE_FLOAT_IN
#undef PULSE_NEXT
#undef PULSE_DISPATCH
}

template void CPulseExecCursor::Interpret<true>( int * );
template void CPulseExecCursor::Interpret<false>( int * );

void CPulseExecCursor::ExecuteSlow( const PulseOp_t &op, const PulseOpData_t &data )
{
	switch ( op.m_nCode )
	{
	case int( IMMEDIATE_HALT ):
	case PULSE_OP_END_OF_CHUNK:
		Error( "The preceding flow should have branched away from this!" );
		Terminate( PulseCursorExecResult_t::Failed );
		return;
	case int( RETURN_VOID ): ReturnFromChunk(); return;
	case int( RETURN_VALUE ):
		m_Active.m_ReturnSlot.SetValue( *data.m_pType, m_Active.m_Registers.Data() + op.m_nReg0 );
		ReturnFromChunk();
		return;
	case int( CHUNK_LEAP ): JumpOrLeap( data.m_nA, 0, nullptr ); return;
	case int( CHUNK_LEAP_COND ):
		if ( Reg<bool>( m_Active.m_Registers.Data(), op.m_nReg0 ) )
			JumpOrLeap( data.m_nA, 0, nullptr );
		return;
	case int( PULSE_CALL_SYNC ): JumpOrLeap( data.m_nA, data.m_nB, static_cast<const PulseCallPlan_t *>( data.m_pData ) ); return;
	case int( PULSE_CALL_ASYNC_FIRE ): CallAsync( data ); return;
	case int( CELL_INVOKE ):
	{
		auto *pPlan = static_cast<const PulseInvokePlan_t *>( data.m_pData );
		if ( !pPlan->m_pCell )
		{
			Terminate( PulseCursorExecResult_t::Failed );
			return;
		}
		Invoke( *pPlan );
		return;
	}
	case int( LIBRARY_INVOKE ): Invoke( *static_cast<const PulseInvokePlan_t *>( data.m_pData ) ); return;
	case int( SET_VAR ): SetVar( op, data, false ); return;
	case int( SET_VAR_OBSERVABLE ): SetVar( op, data, true ); return;
	case int( GET_VAR ): CopyVarToRegister( op, data, false ); return;
	case int( GET_VAR_DETACH ): CopyVarToRegister( op, data, true ); return;
	case int( SET_VAR_ARRAY_ELEMENT_1D ): SetVarArrayElement( op, data ); return;
	case int( DETACH_REGISTER ):
	{
		void *pRegister = m_Active.m_Registers.Data() + op.m_nReg0;
		m_Active.SetDetached( data.m_nRegIndex0, true );
		PulseValue_Destruct( *data.m_pType, pRegister );
		PulseValue_Construct( *data.m_pType, pRegister );
		return;
	}
	case int( GET_ARRAY_ELEMENT ):
	{
		unsigned char *pRegs = m_Active.m_Registers.Data();
		CPulseArrayData *pArray = Reg<CPulseArrayData *>( pRegs, op.m_nReg1 );
		int32_t nIndex = Reg<int32_t>( pRegs, op.m_nReg2 );
		const CPulseValueFullType &elementType = *data.m_pType->GetElementType();
		if ( const void *pElement = CPulseArrayData::GetElement( pArray, elementType, nIndex ) )
			PulseValue_Copy( elementType, pRegs + op.m_nReg0, pElement );
		else
			Warning( "Bad array index %d (array has %d elements)", nIndex, CPulseArrayData::GetCount( pArray ) );
		return;
	}
	case int( GET_DOMAIN_VALUE ):
		PulseValue_Copy( *data.m_pType, m_Active.m_Registers.Data() + op.m_nReg0, m_pInstance->GetDomainValue( data.m_nA ) );
		return;
	case int( CONVERT_VALUE ):
	case int( REINTERPRET_INSTANCE ):
	{
		const PGDInstruction_t &instruction = m_Active.m_pChunk->m_Instructions[ size_t( m_Active.m_nInstruction ) ];
		const CPulseValueFullType &from = m_Active.m_pChunk->m_Registers[ size_t( instruction.m_nReg1 ) ].m_Type;
		unsigned char *pRegs = m_Active.m_Registers.Data();
		m_Active.SetDetached( data.m_nRegIndex0, false );
		if ( op.m_nCode == int( CONVERT_VALUE ) )
		{
			if ( !PulseValue_Convert( from, pRegs + op.m_nReg1, *data.m_pType, pRegs + op.m_nReg0 ) )
				Error( "INTERNAL ERROR: Cannot convert or reinterpret from %s to %s", from.ToString().Get(), data.m_pType->ToString().Get() );
		}
		else if ( PulseValue_CanReinterpret( from, pRegs + op.m_nReg1, *data.m_pType ) )
		{
			PulseValue_Copy( *data.m_pType, pRegs + op.m_nReg0, pRegs + op.m_nReg1 );
		}
		else
		{
			CPulseValueFullType actual = CPulseScopeEnumeratingTypeService::Get().GetActualType( from, pRegs + op.m_nReg1 );
			Warning( "Cannot reinterpret instance (actual: %s) from (original) %s to (desired) %s", actual.ToString().Get(), from.ToString().Get(), data.m_pType->ToString().Get() );
		}
		return;
	}
	case int( GET_BLACKBOARD_REFERENCE ): RunBlackboardInstruction( op, data, false ); return;
	case int( SET_BLACKBOARD_REFERENCE ): RunBlackboardInstruction( op, data, true ); return;
	default: return;
	}
}

void CPulseExecCursor::Invoke( const PulseInvokePlan_t &plan )
{
	const PulseFunctionBinding_t &function = *plan.m_pFunction;
	const char *pName = plan.m_pBinding->m_FuncName.String();
	if ( !( m_nFlags & FLAG_HOST_TABLE ) )
		BuildHostTable();
	if ( plan.m_pBinding->m_nRequiredHostMask & ~m_nHostMask )
	{
		Warning( "Could not execute '%s' because this graph domain does not support the required IPulseHost", pName );
		return;
	}
	unsigned char *pRegs = m_Active.m_Registers.Data();
	PulseArgPack in, out;
	for ( const PulseInvokeArg_t &arg : plan.m_In )
	{
		switch ( arg.m_eMode )
		{
		case PulseInvokeArg_t::MODE_REFERENCE: in.AddRef( arg.m_Name, arg.m_pRegType, pRegs + arg.m_nRegOffset ); break;
		case PulseInvokeArg_t::MODE_VARIANT:
		case PulseInvokeArg_t::MODE_CONVERT:
			if ( !in.AddConverted( arg.m_Name, *arg.m_pParamType, *arg.m_pRegType, pRegs + arg.m_nRegOffset ) )
				Error( "INTERNAL ERROR: Cannot convert or reinterpret from %s to %s", arg.m_pRegType->ToString().Get(), arg.m_pParamType->ToString().Get() );
			break;
		case PulseInvokeArg_t::MODE_DEFAULT: in.AddCopy( arg.m_Name, *arg.m_pParamType, nullptr ); break;
		}
	}
	for ( const PulseInvokeArg_t &arg : plan.m_Out )
	{
		if ( arg.m_eMode == PulseInvokeArg_t::MODE_REFERENCE )
			out.AddRef( arg.m_Name, arg.m_pRegType, pRegs + arg.m_nRegOffset );
		else
			out.AddCopy( arg.m_Name, *arg.m_pParamType, nullptr );
	}

	m_nFlags = ( m_nFlags | FLAG_IN_INVOKE ) & ~FLAG_MOVED_IN_INVOKE;
	PulseCallContext_t context { m_pInstance, this, plan.m_pCell, m_HostTable, plan.m_pBinding->m_pOpaque };
	int nResult = function.m_pfnCall( context, in, out );
	m_nFlags &= ~FLAG_IN_INVOKE;
	if ( nResult != 0 )
	{
		if ( nResult == PULSE_CALL_MISSING_TARGET )
			Warning( "Did not execute '%s' because the 'Target' object was missing", pName );
		else
			Warning( "Invoke '%s' failed with code %d", pName, nResult );
		return;
	}
	if ( m_nFlags & FLAG_MOVED_IN_INVOKE )
	{
		// Control moved inside the call: its results have no place to go.
		m_nFlags &= ~FLAG_MOVED_IN_INVOKE;
		return;
	}
	pRegs = m_Active.m_Registers.Data();
	for ( size_t i = 0; i < plan.m_Out.size(); ++i )
	{
		const PulseInvokeArg_t &arg = plan.m_Out[ i ];
		if ( arg.m_eMode != PulseInvokeArg_t::MODE_CONVERT || !arg.m_pRegType )
			continue;
		if ( !PulseValue_Convert( *arg.m_pParamType, out.GetValue( int( i ) ), *arg.m_pRegType, pRegs + arg.m_nRegOffset ) )
			Error( "INTERNAL ERROR: Cannot convert or reinterpret from %s to %s", arg.m_pParamType->ToString().Get(), arg.m_pRegType->ToString().Get() );
	}
}

void CPulseExecCursor::CallAsync( const PulseOpData_t &data )
{
	auto *pPlan = static_cast<const PulseCallPlan_t *>( data.m_pData );
	// A call to a point of the graph has no target cell and passes nothing.
	auto *pTarget = dynamic_cast<const CPulseCell_Inflow_BaseEntrypoint *>( pPlan->m_pTarget );
	if ( !pTarget && pPlan->m_pTarget )
		return;
	PulseArgPack args;
	for ( const PulseRegisterMapEntry_t &entry : pPlan->m_pCallInfo->m_RegisterMap.m_BoundIn )
		args.AddCopy( entry.m_Name, m_Active.m_pChunk->m_Registers[ size_t( entry.m_nRegister ) ].m_Type, m_Active.Register( entry.m_nRegister ) );
	CPulseExecCursor *pChild = m_pInstance->CreateCursor( this );
	if ( !pChild )
		return;
	CopyInheritedTags( pChild );
	RunStart_t start;
	start.m_pArgs = &args;
	start.m_pRegisterMap = pTarget ? &pTarget->m_RegisterMap : nullptr;
	pChild->Run( data.m_nA, data.m_nB, &start );
	m_pInstance->EndCursorRun( pChild );
}

void CPulseExecCursor::CopyVarToRegister( const PulseOp_t &op, const PulseOpData_t &data, bool bDetach )
{
	void *pVar = m_pInstance->GetStateBlock() + data.m_nB;
	PulseValue_Copy( *data.m_pType, m_Active.m_Registers.Data() + op.m_nReg0, pVar );
	m_Active.SetDetached( data.m_nRegIndex0, false );
	if ( bDetach )
	{
		PulseValue_Destruct( *data.m_pType, pVar );
		PulseValue_Construct( *data.m_pType, pVar );
		m_pInstance->SetVariableDetached( data.m_nA, true );
	}
}

void CPulseExecCursor::SetVar( const PulseOp_t &op, const PulseOpData_t &data, bool bObservable )
{
	void *pVar = m_pInstance->GetStateBlock() + data.m_nB;
	const void *pRegister = m_Active.m_Registers.Data() + op.m_nReg0;
	if ( !bObservable )
	{
		PulseValue_Copy( *data.m_pType, pVar, pRegister );
		m_pInstance->SetVariableDetached( data.m_nA, false );
		return;
	}
	CPulseVariant oldValue( *data.m_pType, pVar );
	PulseValue_Copy( *data.m_pType, pVar, pRegister );
	m_pInstance->SetVariableDetached( data.m_nA, false );
	CPulseVariant newValue( *data.m_pType, pVar );
	m_pInstance->GetSystem()->OnObservableChanged( GetNow(), m_pInstance, data.m_nA, oldValue, newValue );
}

void CPulseExecCursor::SetVarArrayElement( const PulseOp_t &op, const PulseOpData_t &data )
{
	unsigned char *pRegs = m_Active.m_Registers.Data();
	auto **ppArray = reinterpret_cast<CPulseArrayData **>( m_pInstance->GetStateBlock() + data.m_nB );
	int32_t nIndex = Reg<int32_t>( pRegs, op.m_nReg2 );
	const CPulseValueFullType &elementType = *data.m_pType->GetElementType();
	int nCount = CPulseArrayData::GetCount( *ppArray );
	if ( nIndex < 0 || nIndex >= nCount )
	{
		Warning( "Bad array index %d (array has %d elements)", nIndex, nCount );
		return;
	}
	CPulseVariant oldValue;
	bool bObservable = m_pInstance->GetDefinition()->IsVarObservable( data.m_nA );
	if ( bObservable )
		oldValue.SetValue( *data.m_pType, ppArray );
	PulseValue_Copy( elementType, CPulseArrayData::GetElementForWrite( ppArray, elementType, nIndex ), pRegs + op.m_nReg0 );
	m_pInstance->SetVariableDetached( data.m_nA, false );
	if ( bObservable )
		m_pInstance->GetSystem()->OnObservableChanged( GetNow(), m_pInstance, data.m_nA, oldValue, CPulseVariant( *data.m_pType, ppArray ) );
}

void CPulseExecCursor::RunBlackboardInstruction( const PulseOp_t &op, const PulseOpData_t &data, bool bWrite )
{
	const char *pWhere = bWrite ? "PInstruction_t<42>::Run" : "PInstruction_t<41>::Run";
	const CPulse_BlackboardReference &reference = *m_pInstance->GetDefinition()->GetBlackboardReference( data.m_nA );
	CBasePulseGraphInstance *pTarget = m_pInstance->FindBlackboardInstance( reference.m_BlackboardResource.String() );
	if ( !pTarget || !pTarget->GetDefinition() )
	{
		Warning( "%s - Could not find blackboard instance for %s", pWhere, reference.m_BlackboardResource.String() );
		return;
	}
	const CPulseGraphDef *pTargetDef = pTarget->GetDefinition();
	int nVar = pTargetDef->FindVarByEditorNodeID( reference.m_nNodeID );
	if ( nVar < 0 )
		nVar = pTargetDef->FindVarByName( reference.m_NodeName.String() );
	if ( nVar < 0 )
	{
		Warning( "%s - Could not find blackboard reference %s: %u (%s)", pWhere, reference.m_BlackboardResource.String(), unsigned( reference.m_nNodeID ),
				 reference.m_NodeName.String() );
		return;
	}
	const CPulseValueFullType &varType = pTargetDef->GetVarType( nVar );
	void *pRegister = m_Active.m_Registers.Data() + op.m_nReg0;
	const CPulseValueFullType &regType = *data.m_pType;
	const CPulseValueFullType &from = bWrite ? regType : varType, &to = bWrite ? varType : regType;
	const void *pSource = bWrite ? pRegister : pTarget->GetVariableStorage( nVar );
	if ( !( from == to ) && !PulseValue_CanReinterpret( from, pSource, to ) )
	{
		Warning( "%s - Blackboard reference %s: %u (%s) type mismatches", pWhere, reference.m_BlackboardResource.String(), unsigned( reference.m_nNodeID ),
				 reference.m_NodeName.String() );
		return;
	}
	if ( !bWrite )
	{
		PulseValue_Copy( regType, pRegister, pSource );
		m_Active.SetDetached( data.m_nRegIndex0, false );
		return;
	}
	CPulseVariant oldValue( varType, pTarget->GetVariableStorage( nVar ) );
	PulseValue_Copy( varType, pTarget->GetVariableStorage( nVar ), pRegister );
	if ( pTargetDef->IsVarObservable( nVar ) )
		pTarget->OnVariableChanged( nVar, oldValue, CPulseVariant( varType, pTarget->GetVariableStorage( nVar ) ) );
}
