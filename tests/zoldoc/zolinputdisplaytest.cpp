// The function list shows a setter's input through the input class its field declares.

#include <gtest/gtest.h>

#include "core/kv3/keyvalues3.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/text/bufferstring.h"
#include "core/text/utlstring.h"
#include "zoldoc_lib/particleinputdisplay.h"

namespace
{
KeyValues3 Vec3( float x, float y, float z )
{
	KeyValues3 value;
	value.SetToEmptyArray();
	value.ArrayAddToTail()->SetDouble( x );
	value.ArrayAddToTail()->SetDouble( y );
	value.ArrayAddToTail()->SetDouble( z );
	return value;
}
} // namespace

TEST( ZolInputDisplay, ReadsTheInputAsItsFieldDeclaresIt )
{
	RegisterParticleFunctionClasses();
	CBufferString text;
	CUtlString error;

	// A vector written in its short form is a vector input's literal, not an unknown table.
	KeyValues3 vec = Vec3( 1.0f, 2.0f, 3.0f );
	EXPECT_TRUE( GetParticleInputDisplayString( "C_INIT_InitVec", "m_InputValue", &vec, "", &text, &error ) ) << error.Get();
	EXPECT_STREQ( text.Get(), "(1,2,3)" );

	KeyValues3 number;
	number.SetDouble( 2.5 );
	EXPECT_TRUE( GetParticleInputDisplayString( "C_OP_SetFloat", "m_InputValue", &number, "", &text, &error ) ) << error.Get();
	EXPECT_STREQ( text.Get(), "2.5" );

	// The table form reads as the input it describes, not as its raw type name.
	KeyValues3 random;
	random.SetToEmptyTable();
	random.SetMemberString( "m_nType", "PF_TYPE_RANDOM_UNIFORM" );
	random.SetMemberDouble( "m_flRandomMin", 0.0 );
	random.SetMemberDouble( "m_flRandomMax", 1.0 );
	EXPECT_TRUE( GetParticleInputDisplayString( "C_INIT_InitFloat", "m_InputValue", &random, "", &text, &error ) ) << error.Get();
	EXPECT_STREQ( text.Get(), "Random 0 - 1" );

	// An empty input shows nothing and is no error.
	EXPECT_TRUE( GetParticleInputDisplayString( "C_INIT_InitFloat", "m_InputValue", nullptr, "", &text, &error ) );
	EXPECT_STREQ( text.Get(), "" );
}
