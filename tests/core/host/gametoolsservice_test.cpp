// The game tools service's modifier table: pairs of the asked kind as the game lists them,
// and nothing (never a failure) when the file is missing or broken.

#include <gtest/gtest.h>

#include <string>

#include "core/host/gametoolsservice.h"
#include "core/host/hostservices.h"
#include "core/host/interfaceregistry.h"
#include "tests/core/host/hosttestsupport.h"

namespace
{
std::string Pairs( IGameToolsService *pService, const char *pKind )
{
	CUtlVector<AssetModifierPair_t> pairs;
	pService->GetAssetModifiers( pKind, &pairs );
	std::string text;
	for ( const AssetModifierPair_t &pair : pairs )
		text += std::string( pair.m_Source.Get() ) + ">" + pair.m_Target.Get() + " ";
	return text;
}
} // namespace

TEST( GameToolsService, ModifiersOfOneKindInTheGamesOrder )
{
	CHostScratchDirectory scratch;
	CHostServices services;
	ASSERT_TRUE( services.Init( scratch.Game().c_str(), scratch.Content().c_str() ) );
	IGameToolsService *pService = Host_FindInterface<IGameToolsService>( GAMETOOLSSERVICE_INTERFACE_VERSION );
	ASSERT_NE( pService, nullptr );
	EXPECT_EQ( pService, GetGameToolsService() );
	EXPECT_EQ( Pairs( pService, "particle" ), "" );

	scratch.Write( "game/scripts/asset_modifiers.kv3", "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n"
													  "{ modifiers = [\n"
													  "  { type = \"particle\" source = \"particles/fire.tfxs\" target = \"particles/fire_blue.tfxs\" },\n"
													  "  { type = \"sound\" source = \"a\" target = \"b\" },\n"
													  "  { type = \"Particle\" source = \"particles/smoke.tfxs\" target = \"particles/error/null.tfxs\" },\n"
													  "  { type = \"particle\" source = \"\" target = \"particles/x.tfxs\" },\n"
													  "] }\n" );
	EXPECT_EQ( Pairs( pService, "particle" ), "particles/fire.tfxs>particles/fire_blue.tfxs particles/smoke.tfxs>particles/error/null.tfxs " );
	EXPECT_EQ( Pairs( pService, "sound" ), "a>b " );

	scratch.Write( "game/scripts/asset_modifiers.kv3", "{ not kv3" );
	EXPECT_EQ( Pairs( pService, "particle" ), "" );
}
