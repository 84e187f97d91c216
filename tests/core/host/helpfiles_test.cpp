// The help files: their texts answer for entries that the tools name without a text, and
// the shipped file says something for every function class the host offers.

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "core/host/helpsystem.h"
#include "core/particles/hostparticlesystemmgr.h"

namespace
{
std::string ReadShippedHelp()
{
	std::ifstream file( std::string( ZOL_SOURCE_DIR ) + "/content/game/tools/help/particles_help.txt" );
	return std::string( ( std::istreambuf_iterator<char>( file ) ), std::istreambuf_iterator<char>() );
}
} // namespace

TEST( HelpFiles, TextsAnswerForEntriesWithoutTextOfTheirOwn )
{
	CHelpSystem help;
	const char *pFile = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n"
						"{ m_Scope = \"particles\" m_Entries = [ { m_Key = \"Element.C_OP_Decay\" m_Text = \"Kills particles at the end of their life.\" }, { m_Text = \"no key\" } ] }\n";
	CUtlString strError;
	EXPECT_EQ( help.LoadTextsFromKV3Text( pFile, "test.txt", &strError ), 1 ) << strError.Get();

	// No entry, no text: the file only speaks for what a tool names.
	EXPECT_STREQ( help.GetText( "particles", "Element.C_OP_Decay" ), "" );
	help.AddEntry( "particles", "element.c_op_decay", "Lifespan Decay", "", "" );
	EXPECT_STREQ( help.GetText( "particles", "Element.C_OP_Decay" ), "Kills particles at the end of their life." );
	EXPECT_TRUE( help.KeyTextContainsWord( "particles", "Element.C_OP_Decay", "END OF" ) );
	EXPECT_FALSE( help.KeyTextContainsWord( "other", "Element.C_OP_Decay", "end" ) );
	// A text of the entry's own comes first.
	help.AddEntry( "particles", "Element.C_OP_Decay", "Lifespan Decay", "Its own words." );
	EXPECT_STREQ( help.GetText( "particles", "Element.C_OP_Decay" ), "Its own words." );
	EXPECT_FALSE( help.KeyTextContainsWord( "particles", "Element.C_OP_Decay", "kills" ) );

	EXPECT_EQ( help.LoadTextsFromKV3Text( "{ not kv3", "broken.txt", &strError ), 0 );
	EXPECT_NE( strstr( strError.Get(), "broken.txt" ), nullptr ) << strError.Get();
}

TEST( HelpFiles, ShippedFileDescribesEveryFunctionClass )
{
	CHelpSystem help;
	CUtlString strError;
	const std::string text = ReadShippedHelp();
	ASSERT_GT( help.LoadTextsFromKV3Text( text.c_str(), "particles_help.txt", &strError ), 0 ) << strError.Get();
	const IParticleSystemMgr *pMgr = HostParticleSystemMgr();
	int nClasses = 0;
	for ( int nType = 0; nType <= 6; ++nType )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		for ( int i = 0; i < pMgr->GetFunctionCount( eType ); ++i, ++nClasses )
		{
			CUtlString strKey;
			strKey.Format( "Element.%s", pMgr->GetFunctionSchemaClass( eType, i ) );
			help.AddEntry( "particles", strKey, pMgr->GetFunctionFriendlyName( eType, i ) );
			EXPECT_GT( strlen( help.GetText( "particles", strKey ) ), 20u ) << strKey.Get();
		}
	}
	EXPECT_GE( nClasses, 50 );
}
