#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/host/asset.h"
#include "core/host/assetsystem.h"
#include "core/host/filesystem.h"
#include "core/host/iassetcompiler.h"
#include "core/host/resourcesystem.h"
#include "tests/core/host/hosttestsupport.h"

namespace
{
// Compiled data of the test compiler: the source text.
class CTextResourceData final : public CResourceData
{
public:
	explicit CTextResourceData( std::string text ) : m_Text( std::move( text ) ) {}
	std::string m_Text;
};

// Refuses any source that holds "broken"; keeps the text of the others.
class CTextCompiler final : public IAssetCompiler
{
public:
	bool Compile( const CUtlBuffer &source, const char *pResourceName, std::unique_ptr<CResourceData> *pResult, CUtlString *pError ) override
	{
		++m_nCalls;
		std::string text( (const char *)source.Base(), source.TellPut() );
		if ( text.find( "broken" ) != std::string::npos )
		{
			pError->Format( "%s: the source is broken", pResourceName );
			return false;
		}
		*pResult = std::make_unique<CTextResourceData>( text );
		return true;
	}
	int m_nCalls = 0;
};

class CReloadRecorder final : public IResourceListener
{
public:
	void OnResourcesReloaded( const CUtlVector<ResourceChange_t> &changes ) override
	{
		m_Batches.push_back( {} );
		for ( const ResourceChange_t &change : changes )
			m_Batches.back().push_back( ResourceTypeName( change.m_nType ).Get() + std::string( " " ) + change.m_strName.Get() );
	}
	std::vector<std::vector<std::string>> m_Batches;
};

CUtlBuffer TextBuffer( const std::string &text )
{
	CUtlBuffer buffer;
	buffer.Put( text.data(), text.size() );
	return buffer;
}

std::string TextOf( IAsset *pAsset )
{
	auto pData = pAsset->GetResource()->GetDataAs<CTextResourceData>();
	return pData ? pData->m_Text : "<no data>";
}

class AssetCompileTest : public ::testing::Test
{
protected:
	AssetCompileTest()
	{
		m_Scratch.Write( "content/particles/fire.tfxs", "on disk" );
		m_FileSystem.SetupFromRoots( m_Scratch.Game().string().c_str(), m_Scratch.Content().string().c_str() );
		m_pAssets = std::make_unique<CAssetSystem>( &m_FileSystem, &m_Resources );
		m_pAssets->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, &m_Compiler );
		m_Resources.AddListener( &m_Recorder );
		m_pFire = m_pAssets->FindAssetByResourceName( "particles/fire.tfxs" );
	}
	~AssetCompileTest() { m_Resources.RemoveListener( &m_Recorder ); }

	CHostScratchDirectory m_Scratch;
	CFileSystem m_FileSystem;
	CResourceSystem m_Resources;
	std::unique_ptr<CAssetSystem> m_pAssets;
	CTextCompiler m_Compiler;
	CReloadRecorder m_Recorder;
	IAsset *m_pFire = nullptr;
};
} // namespace

TEST_F( AssetCompileTest, CompileFromBufferReplacesTheResourceContentAndTellsListeners )
{
	ASSERT_NE( m_pFire, nullptr );
	CResourceHandle handle = m_Resources.GetResource( "particles/fire.tfxs" );
	uint32_t nStampBefore = m_pFire->GetCompileStamp();

	CUtlString error;
	ASSERT_TRUE( m_pFire->CompileFromBuffer( TextBuffer( "edit one" ), &error ) ) << error.Get();
	EXPECT_EQ( TextOf( m_pFire ), "edit one" );
	EXPECT_TRUE( m_pFire->IsResident() );
	ASSERT_TRUE( m_pFire->CompileFromBuffer( TextBuffer( "edit two" ), &error ) );
	EXPECT_EQ( handle->GetDataAs<CTextResourceData>()->m_Text, "edit two" );
	EXPECT_EQ( m_pFire->GetCompileStamp(), nStampBefore + 2 );

	ASSERT_EQ( m_Recorder.m_Batches.size(), 2u );
	EXPECT_EQ( m_Recorder.m_Batches[ 1 ], std::vector<std::string>{ "tfxs particles/fire.tfxs" } );
	// The file stays as it was: the compile is from memory.
	EXPECT_EQ( m_Scratch.Read( "content/particles/fire.tfxs" ), "on disk" );
}

TEST_F( AssetCompileTest, FailedCompileKeepsTheLastGoodResource )
{
	ASSERT_TRUE( m_pFire->CompileFromBuffer( TextBuffer( "good" ) ) );
	auto pGood = m_pFire->GetResource()->GetData();
	uint32_t nStamp = m_pFire->GetCompileStamp();
	size_t nBatches = m_Recorder.m_Batches.size();

	CUtlString error;
	EXPECT_FALSE( m_pFire->CompileFromBuffer( TextBuffer( "broken" ), &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "the source is broken" ), std::string::npos );
	EXPECT_STREQ( m_pFire->GetLastCompileError(), error.Get() );
	EXPECT_EQ( m_pFire->GetResource()->GetData(), pGood );
	EXPECT_EQ( TextOf( m_pFire ), "good" );
	EXPECT_EQ( m_pFire->GetCompileStamp(), nStamp );
	EXPECT_EQ( m_Recorder.m_Batches.size(), nBatches );

	ASSERT_TRUE( m_pFire->CompileFromBuffer( TextBuffer( "fixed" ) ) );
	EXPECT_STREQ( m_pFire->GetLastCompileError(), "" );
}

TEST_F( AssetCompileTest, LoadCompilesTheFileAndEndEditingGoesBackToIt )
{
	ASSERT_TRUE( m_pFire->Load() );
	EXPECT_EQ( TextOf( m_pFire ), "on disk" );
	ASSERT_TRUE( m_pFire->CompileFromBuffer( TextBuffer( "in memory" ) ) );
	m_pFire->EndEditing();
	EXPECT_EQ( TextOf( m_pFire ), "on disk" );

	// A new file that was never saved has nothing to go back to.
	IAsset *pNew = m_pAssets->AddAssetForNewFile( "particles/new.tfxs" );
	ASSERT_TRUE( pNew->CompileFromBuffer( TextBuffer( "unsaved" ) ) );
	pNew->EndEditing();
	EXPECT_FALSE( pNew->IsResident() );
	CUtlString error;
	EXPECT_FALSE( pNew->Load( &error ) );
	EXPECT_FALSE( error.IsEmpty() );
}

TEST_F( AssetCompileTest, ChangedFilesReloadInOneBatchUnlessEditedInMemory )
{
	m_Scratch.Write( "content/particles/smoke.tfxs", "smoke on disk" );
	m_pAssets->Rescan();
	IAsset *pSmoke = m_pAssets->FindAssetByResourceName( "particles/smoke.tfxs" );
	ASSERT_TRUE( m_pFire->Load() );
	ASSERT_TRUE( pSmoke->Load() );
	ASSERT_TRUE( m_pFire->CompileFromBuffer( TextBuffer( "fire edited" ) ) );
	EXPECT_EQ( m_pAssets->ReloadChangedFiles(), 0 );

	m_Recorder.m_Batches.clear();
	auto touch = [this]( const char *pRelative, const char *pText ) {
		m_Scratch.Write( pRelative, pText );
		std::filesystem::path path = m_Scratch.Root() / pRelative;
		std::filesystem::last_write_time( path, std::filesystem::last_write_time( path ) + std::chrono::seconds( 10 ) );
	};
	touch( "content/particles/smoke.tfxs", "smoke changed" );
	touch( "content/particles/fire.tfxs", "fire changed" );
	EXPECT_EQ( m_pAssets->ReloadChangedFiles(), 1 );
	EXPECT_EQ( TextOf( pSmoke ), "smoke changed" );
	EXPECT_EQ( TextOf( m_pFire ), "fire edited" );
	ASSERT_EQ( m_Recorder.m_Batches.size(), 1u );
	EXPECT_EQ( m_Recorder.m_Batches[ 0 ], std::vector<std::string>{ "tfxs particles/smoke.tfxs" } );
}

TEST_F( AssetCompileTest, ChildrenFollowTheSourceBeingEdited )
{
	m_pAssets->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, nullptr );
	m_Scratch.Write( "content/particles/smoke.tfxs", "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n{ }\n" );
	m_pAssets->Rescan();
	IAsset *pSmoke = m_pAssets->FindAssetByResourceName( "particles/smoke.tfxs" );
	ASSERT_NE( pSmoke, nullptr );

	const char *pEdited = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
						  "{ m_Children = [ { m_ChildRef = resource:\"particles/smoke.tfxs\" } ] }\n";
	CUtlString error;
	ASSERT_TRUE( m_pFire->CompileFromBuffer( TextBuffer( pEdited ), &error ) ) << error.Get();
	CUtlVector<IAsset *> children;
	ASSERT_EQ( m_pFire->GetChildren( &children ), 1 );
	EXPECT_EQ( children[ 0 ], pSmoke );
	CUtlVector<IAsset *> parents;
	ASSERT_EQ( pSmoke->GetParents( &parents ), 1 );
	EXPECT_EQ( parents[ 0 ], m_pFire );

	// Without a compiler of its own, a definition with a syntax error fails with its position.
	EXPECT_FALSE( m_pFire->CompileFromBuffer( TextBuffer( "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n{ m_Children = [ \n" ), &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "particles/fire.tfxs" ), std::string::npos );
	children.RemoveAll();
	EXPECT_EQ( m_pFire->GetChildren( &children ), 1 );
}

TEST_F( AssetCompileTest, AssetReferencesCountFromManyThreads )
{
	std::vector<std::thread> threads;
	for ( int t = 0; t < 4; ++t )
	{
		threads.emplace_back( [this] {
			for ( int i = 0; i < 5000; ++i )
			{
				m_pFire->AddRef();
				m_pFire->Release();
				m_pFire->AddRef();
			}
		} );
	}
	for ( std::thread &thread : threads )
		thread.join();
	EXPECT_EQ( m_pFire->GetRefCount(), 4 * 5000 );
}

namespace
{
class CAssetChangeRecorder final : public IAssetChangeListener
{
public:
	void OnAssetsChanged( const CUtlVector<AssetChange_t> &changes ) override
	{
		m_Batches.push_back( {} );
		for ( const AssetChange_t &change : changes )
			m_Batches.back().push_back( change );
	}
	std::vector<std::vector<AssetChange_t>> m_Batches;
};
} // namespace

TEST_F( AssetCompileTest, ChangeRecordsCarryKindAndBothStamps )
{
	CAssetChangeRecorder recorder;
	m_pAssets->AddChangeListener( &recorder );

	ASSERT_TRUE( m_pFire->CompileFromBuffer( TextBuffer( "one" ) ) );
	ASSERT_EQ( recorder.m_Batches.size(), 1u );
	const AssetChange_t &compiled = recorder.m_Batches[ 0 ][ 0 ];
	EXPECT_EQ( compiled.m_eKind, ASSET_CHANGE_COMPILED );
	EXPECT_EQ( compiled.m_pAsset, m_pFire );
	EXPECT_EQ( compiled.m_nCompileStamp, m_pFire->GetCompileStamp() );
	EXPECT_EQ( compiled.m_nFileStamp, m_pFire->GetFileStamp() );

	m_Scratch.Write( "content/particles/a.tfxs", "a" );
	m_Scratch.Write( "content/particles/b.tfxs", "b" );
	EXPECT_EQ( m_pAssets->Rescan(), 2 );
	ASSERT_EQ( recorder.m_Batches.size(), 2u );
	EXPECT_EQ( recorder.m_Batches[ 1 ].size(), 2u );
	EXPECT_EQ( recorder.m_Batches[ 1 ][ 0 ].m_eKind, ASSET_CHANGE_ADDED );

	IAsset *pNew = m_pAssets->AddAssetForNewFile( "particles/c.tfxs" );
	EXPECT_EQ( m_pAssets->AddAssetForNewFile( "particles/c.tfxs" ), pNew );
	ASSERT_EQ( recorder.m_Batches.size(), 3u );
	EXPECT_EQ( recorder.m_Batches[ 2 ][ 0 ].m_pAsset, pNew );

	m_pAssets->RemoveChangeListener( &recorder );
	ASSERT_TRUE( m_pFire->CompileFromBuffer( TextBuffer( "two" ) ) );
	EXPECT_EQ( recorder.m_Batches.size(), 3u );
}

TEST_F( AssetCompileTest, RecentlyOpenedAssetsNewestFirst )
{
	m_Scratch.Write( "content/particles/smoke.tfxs", "smoke" );
	m_pAssets->Rescan();
	m_pAssets->NoteFileOpened( ( m_Scratch.Content() / "particles" / "fire.tfxs" ).string().c_str() );
	m_pAssets->NoteFileOpened( "particles\\smoke.tfxs" );
	m_pAssets->NoteFileOpened( "PARTICLES/FIRE.TFXS" );
	m_pAssets->NoteFileOpened( "particles/not_an_asset.txt" );

	CUtlVector<IAsset *> recent;
	ASSERT_EQ( m_pAssets->GetRecentlyOpenedAssets( &recent ), 2 );
	EXPECT_EQ( recent[ 0 ], m_pFire );
	EXPECT_STREQ( recent[ 1 ]->GetResourceName(), "particles/smoke.tfxs" );
}
