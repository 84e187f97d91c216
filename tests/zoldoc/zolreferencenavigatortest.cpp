// The reference navigator's model over real definitions: which trees it builds, who writes
// and who reads each control point and variable, the glyphs of the swimlane chart, twins,
// switched-off children, cycles, the modifier walk and its limit, and one read per file.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "core/logging/logging.h"
#include "core/logging/logginglistener.h"
#include "tests/zoldoc/zolmaintenancetestsupport.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolmodifiertable.h"
#include "zoldoc_lib/zolreferencenavigator.h"

namespace
{
// Functions by what they do to a control point or variable.
std::string Writes( int nControlPoint )
{
	return "\tm_PreEmissionOperators = [ { _class = \"C_OP_SetSingleControlPointPosition\" m_nCP1 = " + std::to_string( nControlPoint ) + " } ]\n";
}
std::string Reads( int nControlPoint )
{
	return "\tm_Initializers = [ { _class = \"C_INIT_RingWave\" m_TransformInput = { m_nType = \"PT_TYPE_CONTROL_POINT\" m_nControlPoint = " +
		   std::to_string( nControlPoint ) + " } } ]\n";
}
std::string ReadsVariable( const char *pName )
{
	return std::string( "\tm_Initializers = [ { _class = \"C_INIT_InitFloat\" m_InputValue = { m_nType = \"PF_TYPE_NAMED_VALUE\" m_NamedValue = \"" ) + pName +
		   "\" } } ]\n";
}

// Catches the modifier walk's line.
class CGiveUpListener final : public ILoggingListener
{
public:
	CGiveUpListener() { LoggingSystem_AddListener( this ); }
	~CGiveUpListener() { LoggingSystem_RemoveListener( this ); }
	void Log( const LoggingContext_t &context, const char *pMessage ) override
	{
		if ( context.m_nChannel == LOG_GENERAL && context.m_eSeverity == LS_MESSAGE &&
			 !strcmp( pMessage, "CQZolReferenceNavigatorWidget: Giving up following modifiers due to possible infinite loop\n" ) )
			++m_nCount;
	}
	int m_nCount = 0;
};

class ZolReferenceNavigator : public ZolMaintenanceFixture
{
protected:
	void Refresh( const std::vector<std::string> &names )
	{
		CUtlVector<IAsset *> systems;
		for ( const std::string &name : names )
			systems.AddToTail( Asset( name ) );
		m_Navigator.Refresh( systems );
	}

	// "name:glyph" of each row for a key, one tree; rows without the key show '-'.
	std::string Column( const char *pKey, int nTree = 0 ) const
	{
		std::string text;
		for ( const ZolReferenceRow_t &row : m_Navigator.GetTrees()[ size_t( nTree ) ].m_Rows )
		{
			const ZolReferenceCell_t *pCell = row.FindCell( pKey );
			std::string name = row.m_pAsset ? std::string( row.m_Name.Get() ).substr( strlen( "particles/" ) ) : "top";
			name = name.substr( 0, name.find( ".tfxs" ) );
			text += name + ":" + ( pCell ? std::to_string( pCell->m_nGlyph ) : "-" );
			if ( pCell && pCell->m_bLineStart )
				text += "<";
			if ( pCell && pCell->m_bLineEnd )
				text += ">";
			text += " ";
		}
		return text;
	}

	std::string Keys() const
	{
		std::string text;
		for ( const CUtlString &key : m_Navigator.GetKeys() )
			text += std::string( key.Get() ) + " ";
		return text;
	}

	CZolReferenceNavigator m_Navigator{ &m_Editor };
};
} // namespace

TEST_F( ZolReferenceNavigator, AWriterChildDrawsItsLineDownToADeeperReader )
{
	Write( "root", Definition( 12, Children( { "writer" } ) ) );
	Write( "writer", Definition( 12, Writes( 3 ) + Children( { "middle" } ) ) );
	Write( "middle", Definition( 12, Children( { "reader" } ) ) );
	Write( "reader", Definition( 12, Reads( 3 ) ) );
	Start();
	// Asked from a child, the tree is the top-level system's.
	Refresh( { "middle" } );
	ASSERT_EQ( m_Navigator.GetTrees().size(), 1u );
	EXPECT_EQ( Column( "CP3" ), "top:0 root:0 writer:4< middle:2 reader:3> " );
	const ZolReferenceTree_t &tree = m_Navigator.GetTrees()[ 0 ];
	EXPECT_STREQ( tree.m_Rows[ 0 ].m_Name.Get(), "Outside World" );
	EXPECT_EQ( tree.m_Rows[ 4 ].FindCell( "CP3" )->m_nDepth, 1 ); // below one writer
	EXPECT_EQ( tree.m_Rows[ 3 ].FindCell( "CP3" )->m_nLastRow, 4 );
	EXPECT_TRUE( m_Navigator.GetReport().IsEmpty() );
}

TEST_F( ZolReferenceNavigator, AReadBeforeAnyWriteComesFromTheOutsideWorld )
{
	Write( "root", Definition( 12, Reads( 2 ) + Children( { "writer" } ) ) );
	Write( "writer", Definition( 12, Writes( 2 ) ) );
	Start();
	Refresh( { "root" } );
	EXPECT_EQ( Column( "CP2" ), "top:1 root:3 writer:4<> " );
}

TEST_F( ZolReferenceNavigator, AFirstWriterLeavesTheTopRowEmpty )
{
	Write( "root", Definition( 12, Children( { "a", "b", "c" } ) ) );
	Write( "a", Definition( 12, Writes( 4 ) ) );
	Write( "b", Definition( 12, "" ) );
	Write( "c", Definition( 12, Reads( 4 ) ) );
	Start();
	Refresh( { "c" } );
	EXPECT_EQ( Column( "CP4" ), "top:0 root:0 a:4< b:2 c:3> " );
}

TEST_F( ZolReferenceNavigator, ASharedSystemShowsUnderEachParentAsTwins )
{
	Write( "root", Definition( 12, Children( { "left", "right" } ) ) );
	Write( "left", Definition( 12, Children( { "shared" } ) ) );
	Write( "right", Definition( 12, Children( { "shared" } ) ) );
	Write( "shared", Definition( 12, ReadsVariable( "heat" ) ) );
	Start();
	Refresh( { "root", "left", "shared" } );
	ASSERT_EQ( m_Navigator.GetTrees().size(), 1u );
	const ZolReferenceTree_t &tree = m_Navigator.GetTrees()[ 0 ];
	ASSERT_EQ( tree.m_Rows.size(), 6u );
	EXPECT_EQ( tree.m_Rows[ 3 ].m_pAsset, tree.m_Rows[ 5 ].m_pAsset );
	ASSERT_EQ( tree.m_Rows[ 3 ].m_Twins.size(), 1u );
	EXPECT_EQ( tree.m_Rows[ 3 ].m_Twins[ 0 ], std::make_pair( 0, 5 ) );
	EXPECT_TRUE( tree.m_Rows[ 1 ].m_Twins.empty() );
	// Each file is read once however often it shows.
	EXPECT_EQ( m_Navigator.GetDiskReadCount(), 4 );
	EXPECT_EQ( Column( "heat" ), "top:1 root:2 left:2 shared:3 right:2 shared:3> " );
}

TEST_F( ZolReferenceNavigator, ASwitchedOffChildIsStruckOutWithEverythingBelowIt )
{
	Write( "root", Definition( 12, Children( { "-off", "on" } ) ) );
	Write( "off", Definition( 12, Children( { "deep" } ) ) );
	Write( "on", Definition( 12, "" ) );
	Write( "deep", Definition( 12, "" ) );
	Start();
	Refresh( { "root" } );
	const ZolReferenceTree_t &tree = m_Navigator.GetTrees()[ 0 ];
	ASSERT_EQ( tree.m_Rows.size(), 5u );
	EXPECT_TRUE( tree.m_Rows[ 1 ].m_bEnabled );
	EXPECT_FALSE( tree.m_Rows[ 2 ].m_bEnabled ); // off
	EXPECT_FALSE( tree.m_Rows[ 3 ].m_bEnabled ); // deep, below it
	EXPECT_TRUE( tree.m_Rows[ 4 ].m_bEnabled );  // on
}

TEST_F( ZolReferenceNavigator, CyclesMissingChildrenAndBrokenFilesAreReportedNotFollowed )
{
	Write( "loop", Definition( 12, Children( { "back", "loop", "nowhere", "broken" } ) ) );
	Write( "back", Definition( 12, Children( { "loop" } ) ) );
	Write( "broken", "not a definition" );
	Start();
	Refresh( { "loop" } );
	ASSERT_EQ( m_Navigator.GetTrees().size(), 1u );
	EXPECT_EQ( m_Navigator.GetTrees()[ 0 ].m_Rows.size(), 3u ); // top, loop, back
	const CZolFileReport &report = m_Navigator.GetReport();
	CUtlVector<CUtlString> lines;
	report.GetSortedLines( &lines );
	std::string all;
	for ( const CUtlString &line : lines )
		all += std::string( line.Get() ) + "\n";
	ASSERT_EQ( lines.Count(), 4 ) << all;
	EXPECT_STREQ( lines[ 0 ].Get(), "particles/back.tfxs: warning: child 'particles/loop.tfxs' is its own ancestor (a cycle); it is not followed" );
	EXPECT_NE( strstr( lines[ 1 ].Get(), "particles/broken.tfxs: error: " ), nullptr ) << lines[ 1 ].Get();
	EXPECT_STREQ( lines[ 2 ].Get(), "particles/loop.tfxs: warning: child 'particles/loop.tfxs' is its own ancestor (a cycle); it is not followed" );
	EXPECT_STREQ( lines[ 3 ].Get(), "particles/loop.tfxs: warning: child 'particles/nowhere.tfxs' not found" );
}

TEST_F( ZolReferenceNavigator, OpenSystemsShowTheirUnsavedEdits )
{
	Write( "root", Definition( 12, Children( { "kid" } ) ) );
	Write( "kid", Definition( 12, "" ) );
	Start();
	CZolDoc *pKid = Open( "kid" );
	pKid->AddFunction( "", "C_OP_SetSingleControlPointPosition", PARTICLE_FUNCTION_PRE_EMISSION_OPERATOR );
	Refresh( { "kid" } );
	EXPECT_EQ( Column( "CP1" ), "top:0 root:0 kid:4<> " );
	EXPECT_TRUE( m_Navigator.GetTrees()[ 0 ].m_Rows[ 2 ].m_bOpen );
	EXPECT_FALSE( m_Navigator.GetTrees()[ 0 ].m_Rows[ 1 ].m_bOpen );
	EXPECT_EQ( m_Navigator.GetDiskReadCount(), 1 );
}

TEST_F( ZolReferenceNavigator, KeysAreControlPointsInOrderThenVariablesIgnoringCase )
{
	Write( "root", Definition( 12, Reads( 10 ) + Children( { "a", "b" } ) + "\tm_NamedValueLocals = [ { m_Name = \"Zeta\" m_ValueType = \"PVAL_FLOAT\" } ]\n" ) );
	Write( "a", Definition( 12, Writes( 2 ) + ReadsVariable( "zeta" ) ) );
	Write( "b", Definition( 12, ReadsVariable( "alpha" ) ) );
	Start();
	Refresh( { "root" } );
	// The root's declaration spells the shared name.
	EXPECT_EQ( Keys(), "CP2 CP10 alpha Zeta " );
}

TEST_F( ZolReferenceNavigator, ModifiersAreFollowedForThreeRoundsThenGivenUp )
{
	for ( const char *pName : { "m1", "m2", "m3", "m4", "m5" } )
		Write( pName, Definition( 12, "" ) );
	Write( "holder", Definition( 12, Children( { "m1" } ) ) );
	Start();
	CZolModifierTable modifiers;
	modifiers.AddPair( "particles/m1.tfxs", "particles/m2.tfxs" );
	modifiers.AddPair( "particles/M2.tfxs", "particles/m3.tfxs" );
	modifiers.AddPair( "particles/m3.tfxs", "particles/m4.tfxs" );
	modifiers.AddPair( "particles/m4.tfxs", "particles/m5.tfxs" );
	modifiers.AddPair( "particles/m5.tfxs", "particles/error/null.tfxs" );
	EXPECT_EQ( modifiers.Find( "particles/error/NULL.tfxs" ), nullptr );
	m_Navigator.SetModifierTable( &modifiers );
	CGiveUpListener listener;
	Refresh( { "m1" } );
	EXPECT_EQ( listener.m_nCount, 1 );
	// m1's tree is its holder's; three rounds reach m2, m3 and m4, and m5 is left out.
	std::string trees;
	for ( const ZolReferenceTree_t &tree : m_Navigator.GetTrees() )
		trees += std::string( tree.m_Rows[ 0 ].m_Name.Get() ) + "|" + tree.m_Rows[ 1 ].m_Name.Get() + "\n";
	EXPECT_EQ( trees, "Outside World|particles/holder.tfxs\n"
					  "Outside World (via Modifier)|particles/m2.tfxs\n"
					  "Outside World (via Modifier)|particles/m3.tfxs\n"
					  "Outside World (via Modifier)|particles/m4.tfxs\n" );
	EXPECT_TRUE( m_Navigator.GetTrees()[ 1 ].m_Rows[ 1 ].m_bViaModifier );

	// Without the long chain the walk ends by itself, and says nothing.
	CZolModifierTable shortTable;
	shortTable.AddPair( "particles/m1.tfxs", "particles/m2.tfxs" );
	m_Navigator.SetModifierTable( &shortTable );
	Refresh( { "m1" } );
	EXPECT_EQ( listener.m_nCount, 1 );
	EXPECT_EQ( m_Navigator.GetTrees().size(), 2u );
}
