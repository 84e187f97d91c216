#include "core/host/assetsystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/host/asset.h"
#include "core/host/filesystem.h"
#include "core/host/resourcesystem.h"
#include "core/text/strtools.h"
#include "tests/core/host/hosttestsupport.h"

namespace
{
std::vector<std::string> NamesOf( const CUtlVector<IAsset *> &assets )
{
	std::vector<std::string> names;
	for ( IAsset *pAsset : assets )
		names.push_back( pAsset->GetResourceName() );
	return names;
}

class ShippedContentTest : public ::testing::Test
{
protected:
	static CFileSystem *MakeFileSystem( CFileSystem *pFileSystem )
	{
		pFileSystem->SetupFromRoots( ShippedGameRoot().string().c_str(), ShippedContentRoot().string().c_str() );
		return pFileSystem;
	}

	CFileSystem m_FileSystem;
	CResourceSystem m_Resources;
	CAssetSystem m_Assets{ MakeFileSystem( &m_FileSystem ), &m_Resources };
};

// A definition whose children are the given resource names.
std::string DefinitionText( const std::vector<std::string> &children )
{
	std::string text = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n";
	text += "{\n\t_class = \"CParticleSystemDefinition\"\n\tm_Children = [\n";
	for ( const std::string &child : children )
		text += "\t\t{ m_ChildRef = resource:\"" + child + "\" },\n";
	text += "\t]\n}\n";
	return text;
}

class ScratchContentTest : public ::testing::Test
{
protected:
	void Start()
	{
		m_FileSystem.SetupFromRoots( m_Scratch.Game().string().c_str(), m_Scratch.Content().string().c_str() );
		m_pAssets = std::make_unique<CAssetSystem>( &m_FileSystem, &m_Resources );
	}

	CHostScratchDirectory m_Scratch;
	CFileSystem m_FileSystem;
	CResourceSystem m_Resources;
	std::unique_ptr<CAssetSystem> m_pAssets;
};
} // namespace

TEST_F( ShippedContentTest, IndexHoldsEveryFileOfAKnownType )
{
	std::vector<std::string> expected;
	for ( const auto &entry : std::filesystem::recursive_directory_iterator( ShippedContentRoot() ) )
	{
		std::string extension = entry.path().extension().string();
		if ( extension == ".tfxs" || extension == ".tmsh" || extension == ".timg" )
			expected.push_back( entry.path().lexically_relative( ShippedContentRoot() ).generic_string() );
	}
	ASSERT_FALSE( expected.empty() );

	CUtlVector<IAsset *> assets;
	m_Assets.GetAssets( &assets );
	ASSERT_EQ( assets.Count(), int( expected.size() ) );
	for ( const std::string &name : expected )
	{
		IAsset *pAsset = m_Assets.FindAssetByResourceName( name.c_str() );
		ASSERT_NE( pAsset, nullptr ) << name;
		EXPECT_EQ( pAsset->GetType(), ResourceTypeFromExtension( V_GetFileExtension( name.c_str() ) ) );
		EXPECT_TRUE( pAsset->FileExists() ) << name;
	}
	auto count = [ & ]( const char *pExtension ) {
		return int( std::count_if( expected.begin(), expected.end(), [ pExtension ]( const std::string &name ) { return name.ends_with( pExtension ); } ) );
	};
	CUtlVector<IAsset *> definitions, models, images;
	EXPECT_EQ( m_Assets.GetAssets( &definitions, RESOURCE_TYPE_PARTICLE_SYSTEM ), count( ".tfxs" ) );
	EXPECT_EQ( m_Assets.GetAssets( &models, RESOURCE_TYPE_MESH ), count( ".tmsh" ) );
	EXPECT_EQ( m_Assets.GetAssets( &images, RESOURCE_TYPE_IMAGE ), count( ".timg" ) );
	EXPECT_GT( count( ".timg" ), 0 ) << "the particle textures ship with the content";
}

TEST_F( ShippedContentTest, AssetTypesByExtension )
{
	const AssetTypeInfo_t *pType = m_Assets.FindAssetTypeForExtension( ".TFXS" );
	ASSERT_NE( pType, nullptr );
	EXPECT_EQ( pType->m_nType, MakeResourceType( "tfxs" ) );
	EXPECT_STREQ( ResourceTypeName( pType->m_nType ).Get(), "tfxs" );
	ASSERT_NE( m_Assets.FindAssetTypeForExtension( "tmsh" ), nullptr );
	ASSERT_NE( m_Assets.FindAssetTypeForExtension( "timg" ), nullptr );
	EXPECT_EQ( m_Assets.FindAssetTypeForExtension( "txt" ), nullptr );
	EXPECT_EQ( m_Assets.FindAssetTypeForExtension( "" ), nullptr );
}

TEST_F( ShippedContentTest, FindsOneAssetByContentPathResourceNameAndAbsolutePath )
{
	IAsset *pByContentPath = m_Assets.FindAssetByContentPath( "particles\\samples\\fire.tfxs" );
	ASSERT_NE( pByContentPath, nullptr );
	EXPECT_STREQ( pByContentPath->GetPath(), "particles\\samples\\fire.tfxs" );
	EXPECT_STREQ( pByContentPath->GetResourceName(), "particles/samples/fire.tfxs" );

	EXPECT_EQ( m_Assets.FindAssetByResourceName( "PARTICLES/Samples/Fire.TFXS" ), pByContentPath );
	EXPECT_EQ( m_Assets.FindAssetByResourceName( "particles\\samples/fire.tfxs" ), pByContentPath );

	std::string absolute = ( ShippedContentRoot() / "particles" / "samples" / "fire.tfxs" ).string();
	EXPECT_EQ( m_Assets.FindAssetByAbsolutePath( absolute.c_str() ), pByContentPath );
	EXPECT_TRUE( V_PathsMatch( pByContentPath->GetAbsolutePath(), absolute.c_str() ) );

	EXPECT_EQ( m_Assets.FindAssetByResourceName( "particles/samples/none.tfxs" ), nullptr );
	std::string outside = ( ShippedGameRoot() / "gameinfo.gi" ).string();
	EXPECT_EQ( m_Assets.FindAssetByAbsolutePath( outside.c_str() ), nullptr );
}

TEST_F( ShippedContentTest, CampfireChildrenAndParentsComeFromItsChildRefs )
{
	IAsset *pCampfire = m_Assets.FindAssetByResourceName( "particles/samples/campfire.tfxs" );
	ASSERT_NE( pCampfire, nullptr );

	CUtlVector<IAsset *> children;
	ASSERT_EQ( pCampfire->GetChildren( &children ), 3 );
	EXPECT_EQ( NamesOf( children ), ( std::vector<std::string>{ "particles/samples/fire.tfxs", "particles/samples/smoke.tfxs", "particles/samples/sparks.tfxs" } ) );

	for ( IAsset *pChild : children )
	{
		CUtlVector<IAsset *> parents;
		ASSERT_EQ( pChild->GetParents( &parents ), 1 ) << pChild->GetPath();
		EXPECT_EQ( parents[ 0 ], pCampfire );
	}
	CUtlVector<IAsset *> noParents;
	EXPECT_EQ( pCampfire->GetParents( &noParents, true ), 0 );
}

TEST_F( ShippedContentTest, ResourceOfAnAssetIsTheBindingOfItsName )
{
	IAsset *pFire = m_Assets.FindAssetByResourceName( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	CResourceHandle handle = m_Resources.GetResource( "Particles\\Samples\\FIRE.tfxs" );
	EXPECT_EQ( handle.Get(), pFire->GetResource() );
	EXPECT_EQ( handle->GetType(), RESOURCE_TYPE_PARTICLE_SYSTEM );

	EXPECT_FALSE( pFire->IsResident() );
	CUtlString error;
	ASSERT_TRUE( pFire->Load( &error ) ) << error.Get();
	EXPECT_TRUE( pFire->IsResident() );
	auto pData = handle->GetDataAs<CKV3ResourceData>();
	ASSERT_NE( pData, nullptr );
	EXPECT_STREQ( pData->GetKV3().GetMemberString( "_class" ), "CParticleSystemDefinition" );
}

TEST_F( ScratchContentTest, ParentsAndChildrenRecursiveStopAtCycles )
{
	m_Scratch.Write( "content/particles/a.tfxs", DefinitionText( { "particles/b.tfxs" } ) );
	m_Scratch.Write( "content/particles/b.tfxs", DefinitionText( { "particles/c.tfxs", "particles/missing.tfxs" } ) );
	m_Scratch.Write( "content/particles/c.tfxs", DefinitionText( { "PARTICLES\\\\A.TFXS" } ) );
	m_Scratch.Write( "content/particles/d.tfxs", DefinitionText( { "particles/c.tfxs" } ) );
	Start();

	IAsset *pC = m_pAssets->FindAssetByResourceName( "particles/c.tfxs" );
	ASSERT_NE( pC, nullptr );
	CUtlVector<IAsset *> direct;
	EXPECT_EQ( pC->GetParents( &direct ), 2 );
	CUtlVector<IAsset *> all;
	EXPECT_EQ( pC->GetParents( &all, true ), 3 ); // b, d, then a (the cycle back to c ends)
	EXPECT_FALSE( all.HasElement( pC ) );

	IAsset *pB = m_pAssets->FindAssetByResourceName( "particles/b.tfxs" );
	CUtlVector<IAsset *> children;
	EXPECT_EQ( pB->GetChildren( &children ), 1 ); // the missing one is left out
	CUtlVector<IAsset *> descendants;
	EXPECT_EQ( pB->GetChildren( &descendants, true ), 2 ); // c, a
}

TEST_F( ScratchContentTest, OtherExtensionsAreNotAssets )
{
	m_Scratch.Write( "content/particles/a.tfxs", DefinitionText( {} ) );
	m_Scratch.Write( "content/particles/a.tfxs_autosave", DefinitionText( {} ) );
	m_Scratch.Write( "content/models/m.tmsh", "mesh" );
	m_Scratch.Write( "content/readme.txt", "text" );
	Start();

	CUtlVector<IAsset *> assets;
	EXPECT_EQ( m_pAssets->GetAssets( &assets ), 2 );
	EXPECT_EQ( m_pAssets->AddAssetForNewFile( "particles/new.txt" ), nullptr );
}

TEST_F( ScratchContentTest, NewFileAssetAndRescan )
{
	Start();
	IAsset *pNew = m_pAssets->AddAssetForNewFile( "particles/new.tfxs" );
	ASSERT_NE( pNew, nullptr );
	EXPECT_FALSE( pNew->FileExists() );
	EXPECT_EQ( m_pAssets->AddAssetForNewFile( "PARTICLES/NEW.TFXS" ), pNew );
	EXPECT_TRUE( V_PathsMatch( pNew->GetAbsolutePath(), ( m_Scratch.Content() / "particles" / "new.tfxs" ).string().c_str() ) );

	std::string absolute = ( m_Scratch.Content() / "particles" / "other.tfxs" ).string();
	IAsset *pOther = m_pAssets->AddAssetForNewFile( absolute.c_str() );
	ASSERT_NE( pOther, nullptr );
	EXPECT_STREQ( pOther->GetPath(), "particles\\other.tfxs" );
	EXPECT_EQ( m_pAssets->AddAssetForNewFile( ( m_Scratch.Root() / "elsewhere.tfxs" ).string().c_str() ), nullptr );

	m_Scratch.Write( "content/particles/late.tfxs", DefinitionText( {} ) );
	EXPECT_EQ( m_pAssets->FindAssetByResourceName( "particles/late.tfxs" ), nullptr );
	EXPECT_EQ( m_pAssets->Rescan(), 1 );
	EXPECT_NE( m_pAssets->FindAssetByResourceName( "particles/late.tfxs" ), nullptr );
	EXPECT_EQ( m_pAssets->Rescan(), 0 );
}

TEST_F( ScratchContentTest, ModSearchPathOverridesTheBaseFile )
{
	m_Scratch.Write( "content/particles/a.tfxs", DefinitionText( {} ) );
	m_Scratch.Write( "mod/particles/a.tfxs", DefinitionText( {} ) );
	m_FileSystem.SetupFromRoots( m_Scratch.Game().string().c_str(), m_Scratch.Content().string().c_str() );
	m_FileSystem.AddSearchPath( ( m_Scratch.Root() / "mod" ).string().c_str(), "CONTENT", true );
	m_pAssets = std::make_unique<CAssetSystem>( &m_FileSystem, &m_Resources );

	IAsset *pAsset = m_pAssets->FindAssetByResourceName( "particles/a.tfxs" );
	ASSERT_NE( pAsset, nullptr );
	EXPECT_TRUE( V_PathsMatch( pAsset->GetAbsolutePath(), ( m_Scratch.Root() / "mod" / "particles" / "a.tfxs" ).string().c_str() ) );
	// The overridden base file still finds the asset, whose own path then differs.
	EXPECT_EQ( m_pAssets->FindAssetByAbsolutePath( ( m_Scratch.Content() / "particles" / "a.tfxs" ).string().c_str() ), pAsset );
}

TEST_F( ScratchContentTest, WalksCanStayAmongOneType )
{
	m_Scratch.Write( "content/particles/a.tfxs", DefinitionText( { "models/m.tmsh", "particles/b.tfxs" } ) );
	m_Scratch.Write( "content/particles/b.tfxs", DefinitionText( {} ) );
	m_Scratch.Write( "content/models/m.tmsh", "mesh" );
	Start();

	IAsset *pA = m_pAssets->FindAssetByResourceName( "particles/a.tfxs" );
	CUtlVector<IAsset *> all;
	EXPECT_EQ( NamesOf( ( pA->GetChildren( &all ), all ) ), ( std::vector<std::string>{ "models/m.tmsh", "particles/b.tfxs" } ) );
	CUtlVector<IAsset *> systems;
	EXPECT_EQ( NamesOf( ( pA->GetChildren( &systems, true, RESOURCE_TYPE_PARTICLE_SYSTEM ), systems ) ), std::vector<std::string>{ "particles/b.tfxs" } );

	IAsset *pMesh = m_pAssets->FindAssetByResourceName( "models/m.tmsh" );
	CUtlVector<IAsset *> parents;
	EXPECT_EQ( pMesh->GetParents( &parents, false, RESOURCE_TYPE_PARTICLE_SYSTEM ), 1 );
	EXPECT_EQ( pMesh->GetParents( &parents, false, RESOURCE_TYPE_MESH ), 0 );
}
