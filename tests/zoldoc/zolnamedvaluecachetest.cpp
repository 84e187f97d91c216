// The variables of a particle system's family: the walk up and down the references of
// files on disk, open documents read from memory, closed files read once per stamp, loops
// and unreadable files, and what the context answers from it.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/host/assetsystem.h"
#include "core/host/filesystem.h"
#include "core/host/iasset.h"
#include "core/host/resourcesystem.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tests/core/host/hosttestsupport.h"
#include "tests/zoldoc/zoldoctestsupport.h"
#include "zoldoc_lib/zolnamedvaluecontext.h"
#include "zoldoc_lib/zolnamedvaluetypes.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariablenode.h"
#include "zoldoc_lib/zolworkingset.h"

namespace
{
const char *const HEADER = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n";

// A definition with children (resource names) and variables ("Name:PVAL_TYPE").
std::string Definition( const std::vector<std::string> &children, const std::vector<std::string> &variables )
{
	std::string text = std::string( HEADER ) + "{\n_class = \"CParticleSystemDefinition\"\n";
	if ( !children.empty() )
	{
		text += "m_Children = [\n";
		for ( const std::string &child : children )
			text += "{ m_ChildRef = resource:\"particles/" + child + ".tfxs\" },\n";
		text += "]\n";
	}
	if ( !variables.empty() )
	{
		text += "m_NamedValueLocals = [\n";
		for ( const std::string &variable : variables )
		{
			size_t nColon = variable.find( ':' );
			text += "{ m_Name = \"" + variable.substr( 0, nColon ) + "\" m_ValueType = \"" + variable.substr( nColon + 1 ) + "\" },\n";
		}
		text += "]\n";
	}
	return text + "}\n";
}

class CTestDocumentSource final : public IZolDocumentSource
{
public:
	IAsset *GetSourceAsset() const override { return m_pAsset; }
	const CZolDoc *GetSourceDocument() const override { return m_pDoc; }
	const CZolDoc *FindOpenDocument( IAsset *pAsset ) const override
	{
		auto it = m_Open.find( pAsset );
		return it == m_Open.end() ? nullptr : it->second;
	}

	IAsset *m_pAsset = nullptr;
	const CZolDoc *m_pDoc = nullptr;
	std::map<IAsset *, const CZolDoc *> m_Open;
};

class ZolNamedValueCache : public ZolDocFixture
{
protected:
	// Files under content/particles/, by short name.
	void Write( const char *pName, const std::string &text ) { m_Scratch.Write( std::string( "content/particles/" ) + pName + ".tfxs", text ); }

	void Start( const char *pSelf )
	{
		m_FileSystem.SetupFromRoots( m_Scratch.Game().string().c_str(), m_Scratch.Content().string().c_str() );
		m_pAssets = std::make_unique<CAssetSystem>( &m_FileSystem, &m_Resources );
		m_Source.m_pAsset = Asset( pSelf );
		ASSERT_NE( m_Source.m_pAsset, nullptr );
		CUtlString error;
		ASSERT_TRUE( m_Doc.LoadFromFile( m_Source.m_pAsset->GetAbsolutePath(), nullptr, &error ) ) << error.Get();
		m_Source.m_pDoc = &m_Doc;
	}

	IAsset *Asset( const char *pName ) { return m_pAssets->FindAssetByResourceName( ( std::string( "particles/" ) + pName + ".tfxs" ).c_str() ); }

	// "name parent/child" of every entry, by name.
	std::string Depths( CZolNamedValueCache &cache )
	{
		CUtlVector<IAsset *> assets;
		cache.GetDependencyAssets( &assets );
		std::set<std::string> lines;
		for ( IAsset *pAsset : assets )
		{
			const ZolAssetNamedValues_t *pEntry = cache.Find( pAsset );
			lines.insert( std::filesystem::path( pEntry->m_AssetName.Get() ).stem().string() + " " + std::to_string( pEntry->m_nParentDepth ) + "/" +
						  std::to_string( pEntry->m_nChildDepth ) + ( pEntry->m_bIsCurrentFile ? " self" : "" ) );
		}
		std::string text;
		for ( const std::string &line : lines )
			text += line + "\n";
		return text;
	}

	static std::string Names( const CUtlVector<ZolNamedValueRecord_t> &records )
	{
		std::string text;
		for ( const ZolNamedValueRecord_t &record : records )
			text += std::string( record.m_Name.Get() ) + "@" + std::filesystem::path( record.m_FileName.Get() ).stem().string() + " ";
		return text;
	}

	CHostScratchDirectory m_Scratch;
	CFileSystem m_FileSystem;
	CResourceSystem m_Resources;
	std::unique_ptr<CAssetSystem> m_pAssets;
	CTestDocumentSource m_Source;
};
} // namespace

TEST_F( ZolNamedValueCache, FamilyWalkGivesDepthsUpAndDownAndEndsLoops )
{
	// grand -> top -> { left, right } -> me -> { kid, back }; back -> left closes a loop
	// through me, and kid and loop refer to each other.
	Write( "grand", Definition( { "top" }, {} ) );
	Write( "top", Definition( { "left", "right" }, {} ) );
	Write( "left", Definition( { "me" }, {} ) );
	Write( "right", Definition( { "me" }, {} ) );
	Write( "me", Definition( { "kid", "back" }, {} ) );
	Write( "back", Definition( { "left" }, {} ) );
	Write( "kid", Definition( { "loop" }, {} ) );
	Write( "loop", Definition( { "kid" }, {} ) );
	Start( "me" );
	CZolNamedValueCache cache( &m_Source );
	cache.EnumerateDependencies();
	EXPECT_EQ( Depths( cache ), "back 2/0\n"
								"grand 3/0\n"
								"kid 0/1\n"
								"left 1/0\n"
								"loop 0/2\n"
								"me 0/0 self\n"
								"right 1/0\n"
								"top 2/0\n" )
		<< "top, reached by two paths, keeps its first depth; back, reached up through left and down from me, keeps the upward entry";
}

TEST_F( ZolNamedValueCache, ClosedFilesAreReadOncePerStampAndOpenOnesFromMemory )
{
	Write( "parent", Definition( { "me" }, { "Shared:PVAL_FLOAT" } ) );
	Write( "me", Definition( { "child" }, { "Own:PVAL_VEC3" } ) );
	Write( "child", Definition( {}, { "shared:PVAL_FLOAT", "Deep:PVAL_TRANSFORM" } ) );
	Start( "me" );
	CZolNamedValueCache cache( &m_Source );
	CUtlVector<ZolNamedValueRecord_t> records;
	cache.GetAllNamedValueInfo( &records );
	EXPECT_EQ( Names( records ), "Own@me Shared@parent shared@child Deep@child " );
	EXPECT_EQ( cache.GetDiskReadCount(), 2 );
	cache.Clear();
	cache.GetAllNamedValueInfo( &records );
	EXPECT_EQ( cache.GetDiskReadCount(), 2 ) << "unchanged files are not read again";

	// The parent opens and gains a variable that isn't saved: it counts at once.
	CZolDoc parent( false );
	CUtlString error;
	ASSERT_TRUE( parent.LoadFromFile( Asset( "parent" )->GetAbsolutePath(), nullptr, &error ) ) << error.Get();
	parent.AddVariable( "Unsaved", CPulseValueFullType( PVAL_FLOAT ) );
	m_Source.m_Open[ Asset( "parent" ) ] = &parent;
	cache.GetAllNamedValueInfo( &records );
	EXPECT_EQ( Names( records ), "Own@me Shared@parent Unsaved@parent shared@child Deep@child " );
	EXPECT_EQ( records[ 2 ].m_nParentDepth, 1 );

	// A closed file written anew is read again.
	Write( "child", Definition( {}, { "Other:PVAL_FLOAT" } ) );
	std::filesystem::last_write_time( m_Scratch.Content() / "particles/child.tfxs", std::filesystem::file_time_type::clock::now() + std::chrono::seconds( 5 ) );
	cache.GetAllNamedValueInfo( &records );
	EXPECT_EQ( cache.GetDiskReadCount(), 3 );
	EXPECT_EQ( Names( records ), "Own@me Shared@parent Unsaved@parent Other@child " );
}

TEST_F( ZolNamedValueCache, UnreadableFamilyFileAddsNothingAndIsNotReadAgain )
{
	Write( "me", Definition( { "broken", "fine" }, {} ) );
	Write( "broken", "this is no definition" );
	Write( "fine", Definition( {}, { "Size:PVAL_FLOAT" } ) );
	Start( "me" );
	CZolNamedValueCache cache( &m_Source );
	CUtlVector<ZolNamedValueRecord_t> records;
	cache.GetAllNamedValueInfo( &records );
	EXPECT_EQ( Names( records ), "Size@fine " );
	cache.GetAllNamedValueInfo( &records );
	EXPECT_EQ( cache.GetDiskReadCount(), 2 );
}

TEST_F( ZolNamedValueCache, ContextSharesByNameIgnoringCaseAndOffersOwnVariablesByType )
{
	Write( "parent", Definition( { "me" }, { "GLOW:PVAL_VEC3", "Speed:PVAL_FLOAT" } ) );
	Write( "me", Definition( {}, { "glow:PVAL_FLOAT", "Where:PVAL_TRANSFORM", "Who:PVAL_PARTICLE_EHANDLE" } ) );
	Start( "me" );
	CZolNamedValueContext context( &m_Source, nullptr );
	CUtlVector<ZolNamedValueRecord_t> shared;
	context.GetSharedVariables( "Glow", &shared );
	ASSERT_EQ( shared.Count(), 2 );
	EXPECT_EQ( Names( shared ), "glow@me GLOW@parent " );
	EXPECT_TRUE( shared[ 0 ].m_bThisFile );

	// A vector request fits vectors, transforms and entity handles of this file only.
	CUtlVector<ToolAttrGenericChoice_t> choices;
	context.GetCompatibleVariables( CPulseValueFullType( PVAL_VEC3 ), &choices );
	ASSERT_EQ( choices.Count(), 2 );
	EXPECT_STREQ( choices[ 0 ].m_Value, "Where" );
	EXPECT_STREQ( choices[ 1 ].m_Value, "Who" );

	// Without an asset there is no family.
	m_Source.m_pAsset = nullptr;
	context.ClearNamedValueCache();
	context.GetSharedVariables( "Glow", &shared );
	EXPECT_EQ( shared.Count(), 0 );
	context.GetCompatibleVariables( CPulseValueFullType( PVAL_FLOAT ), &choices );
	EXPECT_EQ( choices.Count(), 1 ) << "the file's own variables still count";
}

struct TypeFit_t
{
	int m_nRequested;
	int m_nVariable;
	bool m_bFits;
};

class ZolVariableTypeFit : public ::testing::TestWithParam<TypeFit_t>
{
};

TEST_P( ZolVariableTypeFit, FollowsTheTable )
{
	EXPECT_EQ( DoesZolVariableTypeFit( GetParam().m_nRequested, GetParam().m_nVariable ), GetParam().m_bFits );
}

INSTANTIATE_TEST_SUITE_P( Table, ZolVariableTypeFit,
	::testing::Values( TypeFit_t{ PVAL_VOID, PVAL_STRING, true }, TypeFit_t{ PVAL_BOOL, PVAL_VOID, true }, TypeFit_t{ PVAL_FLOAT, PVAL_FLOAT, true },
		TypeFit_t{ PVAL_VEC3, PVAL_FLOAT, false }, TypeFit_t{ PVAL_TRANSFORM, PVAL_VEC3, true }, TypeFit_t{ PVAL_VEC3, PVAL_TRANSFORM, true },
		TypeFit_t{ PVAL_FLOAT, PVAL_TRANSFORM, false }, TypeFit_t{ PVAL_TRANSFORM, PVAL_PARTICLE_EHANDLE, true },
		TypeFit_t{ PVAL_EHANDLE, PVAL_PARTICLE_EHANDLE, true }, TypeFit_t{ PVAL_PARTICLE_EHANDLE, PVAL_VEC3, false },
		TypeFit_t{ PVAL_STRING, PVAL_STRING, false } ) );

TEST( ZolWorkingSet, ListsOpenAssetsNewestFirstOnce )
{
	CTestAsset a( "particles\\a.tfxs" ), b( "particles\\b.tfxs" );
	CZolWorkingSet set;
	EXPECT_STREQ( set.GetName(), "Zol working set" );
	EXPECT_TRUE( set.Add( &a ) );
	EXPECT_TRUE( set.Add( &b ) );
	EXPECT_FALSE( set.Add( &a ) );
	CUtlVector<IAsset *> assets;
	set.AppendTo( &assets );
	ASSERT_EQ( assets.Count(), 2 );
	EXPECT_EQ( assets[ 0 ], &b );
	EXPECT_TRUE( set.Remove( &b ) );
	EXPECT_FALSE( set.Remove( &b ) );
	EXPECT_FALSE( set.Rename( "mine" ) ) << "a procedural set keeps its name";
	EXPECT_EQ( set.GetCount(), 1 );
}
