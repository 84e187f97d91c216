// Assets named by the text of a drag: each line a resource name, content path, absolute
// path or file URL; unknown lines and repeats are left out.

#include <gtest/gtest.h>

#include "core/host/assetdragtext.h"
#include "core/host/hostservices.h"
#include "core/host/iassetsystem.h"
#include "tests/core/host/hosttestsupport.h"

TEST( AssetDragText, EveryWayOfNamingAnAssetFindsItOnce )
{
	CHostScratchDirectory scratch;
	scratch.Write( "content/particles/my fx/spark.tfxs", "" );
	scratch.Write( "content/particles/smoke.tfxs", "" );
	scratch.Write( "content/models/crate.tmsh", "" );
	CHostServices services;
	CUtlString strError;
	ASSERT_TRUE( services.Init( scratch.Game().c_str(), scratch.Content().c_str(), &strError ) ) << strError.Get();
	IAssetSystem *pAssets = GetAssetSystem();
	IAsset *pSpark = pAssets->FindAssetByResourceName( "particles/my fx/spark.tfxs" );
	IAsset *pSmoke = pAssets->FindAssetByResourceName( "particles/smoke.tfxs" );
	IAsset *pCrate = pAssets->FindAssetByResourceName( "models/crate.tmsh" );
	ASSERT_TRUE( pSpark && pSmoke && pCrate );

	const std::string absolute = ( scratch.Content() / "particles/smoke.tfxs" ).string();
	const std::string text = "particles/my fx/spark.tfxs\r\n"
							 "  models\\crate.tmsh  \n"
							 "\n"
							 "particles/nothing_here.tfxs\n"
							 "file://" + ( scratch.Content() / "particles/my%20fx/spark.tfxs" ).string() + "\n" + absolute;
	CUtlVector<IAsset *> found;
	EXPECT_EQ( DecodeAssetsFromText( pAssets, text.c_str(), &found ), 3 );
	ASSERT_EQ( found.Count(), 3 );
	EXPECT_EQ( found[ 0 ], pSpark );
	EXPECT_EQ( found[ 1 ], pCrate );
	EXPECT_EQ( found[ 2 ], pSmoke );

	EXPECT_EQ( DecodeAssetsFromText( pAssets, "", &found ), 0 );
	EXPECT_EQ( DecodeAssetsFromText( nullptr, "particles/smoke.tfxs", &found ), 0 );
}
