// zol catalogue: the function classes an artist may add to each list of a new definition,
// with friendly name, exclusion group and version limits, as the function picker offers them.

#include <cstdio>
#include <filesystem>
#include <string>

#include "core/keyvalues/keyvalues.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/schema/schemaclassinfo.h"
#include "tools/zol/cli/cliargs.h"
#include "tools/zol/cli/clicommand.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"
#include "zoldoc_lib/zolfunctionoffers.h"

// The class's limit of that key as text; "" when it has none.
static std::string VersionLimit( const CSchemaClassInfo *pClass, const char *pKey )
{
	const SchemaMetadataEntry_t *pEntry = pClass ? pClass->FindMetadata( pKey ) : nullptr;
	return pEntry && pEntry->m_eType == SCHEMA_METADATA_INT && pEntry->m_nValue >= 0 ? std::to_string( pEntry->m_nValue ) : std::string();
}

// "min..max", either side empty when open; "any" without limits.
static std::string FormatVersionLimits( const CSchemaClassInfo *pClass )
{
	std::string min = VersionLimit( pClass, "MParticleMinVersion" );
	std::string max = VersionLimit( pClass, "MParticleMaxVersion" );
	return min.empty() && max.empty() ? std::string( "any" ) : min + ".." + max;
}

// The "game" of the game information below the working directory, else "".
static std::string ReadGameName( const std::string &gameRoot )
{
	KeyValues gameInfo;
	if ( gameRoot.empty() || !gameInfo.LoadFromFile( ( std::filesystem::path( gameRoot ) / "gameinfo.gi" ).string().c_str() ) )
		return std::string();
	const KeyValues *pGame = gameInfo.FindKey( "game" );
	return pGame ? pGame->GetString() : "";
}

static int RunCatalogue( int argc, char **argv )
{
	if ( argc > 1 )
	{
		fprintf( stderr, "zol catalogue: unexpected argument \"%s\"\nusage: zol catalogue [--game DIR]\n", argv[ 1 ] );
		return 2;
	}
	std::string gameRoot = ZolCliGameRootFor( nullptr );
	SetParticleSystemMgr( HostParticleSystemMgr() );
	SetParticleGameRoot( gameRoot.c_str() );
	const std::string gameName = ReadGameName( gameRoot );
	const int nVersion = GetParticleSystemMgr()->GetCurrentBehaviorVersion();

	printf( "behaviour version %d\n", nVersion );
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		CUtlVector<ZolFunctionOffer_t> offers;
		GetParticleFunctionOffers( nullptr, eType, nVersion, gameName.c_str(), &offers );
		printf( "%s\n", GetParticleFunctionListKey( nType ) );
		for ( const ZolFunctionOffer_t &offer : offers )
		{
			if ( offer.m_pPreset )
			{
				printf( "  preset %-40s \"%s\"\n", offer.m_ClassName.Get(), offer.m_FriendlyName.Get() );
				continue;
			}
			printf( "  %-47s \"%s\" group=%s versions=%s\n", offer.m_ClassName.Get(), offer.m_FriendlyName.Get(),
				GetParticleExclusionGroupWord( offer.m_nExclusionGroup ), FormatVersionLimits( FindParticleFunctionSchemaClass( eType, offer.m_ClassName.Get() ) ).c_str() );
		}
	}
	return 0;
}

static CZolCliCommandRegistrar s_CatalogueCommand( { "catalogue", "catalogue [--game DIR]",
	"lists the function classes an artist may add to each list at the current behaviour version", RunCatalogue } );
