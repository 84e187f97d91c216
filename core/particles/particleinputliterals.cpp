#include "core/particles/particleinputliterals.h"

KeyValues3 ParticleFloatLiteral( float flValue )
{
	KeyValues3 input;
	input.SetToEmptyTable();
	input.SetMemberString( "m_nType", "PF_TYPE_LITERAL" );
	input.SetMemberFloat( "m_flLiteralValue", flValue );
	return input;
}

KeyValues3 ParticleVecLiteral( const Vector &vValue )
{
	KeyValues3 input;
	input.SetToEmptyTable();
	input.SetMemberString( "m_nType", "PVEC_TYPE_LITERAL" );
	KeyValues3 *pVector = input.SetMemberEmptyArray( "m_vLiteralValue" );
	for ( int i = 0; i < 3; ++i )
		pVector->ArrayAddToTail()->SetFloat( vValue[ i ] );
	return input;
}
