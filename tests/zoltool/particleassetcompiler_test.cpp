// The particle compiler as the asset system uses it: shipped samples become definitions
// the preview can simulate, broken text is refused with a reason.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/containers/utlbuffer.h"
#include "core/host/filesystem.h"
#include "particleslib/particleinputclasses.h"
#include "tools/zol/editor/particleassetcompiler.h"

namespace
{
CUtlBuffer ReadSample( const char *pName )
{
	std::ifstream in( std::filesystem::path( ZOL_SOURCE_DIR ) / "content/content/particles/samples" / pName, std::ios::binary );
	std::stringstream text;
	text << in.rdbuf();
	CUtlBuffer buffer;
	buffer.PutString( text.str().c_str() );
	return buffer;
}
} // namespace

TEST( ParticleAssetCompiler, ShippedSampleCompilesIntoADefinition )
{
	RegisterParticleInputClasses();
	CUtlBuffer source = ReadSample( "fire.tfxs" );
	ASSERT_GT( source.TellPut(), 0u );
	CParticleAssetCompiler compiler;
	std::unique_ptr<CResourceData> pData;
	CUtlString strError;
	ASSERT_TRUE( compiler.Compile( source, "particles/samples/fire.tfxs", &pData, &strError ) ) << strError.Get();
	auto *pParticleData = dynamic_cast<CParticleSystemResourceData *>( pData.get() );
	ASSERT_NE( pParticleData, nullptr );
	EXPECT_NE( pParticleData->GetDefinition(), nullptr );
}

TEST( ParticleAssetCompiler, BrokenTextIsRefusedWithAReason )
{
	RegisterParticleInputClasses();
	CUtlBuffer source;
	source.PutString( "<!-- kv3 encoding:text:version{e21c7f3c-8a33-41c5-9977-a76d3a32aa0d} format:tfxs63:version{00000000-0000-0000-0000-000000000000} -->\n{ m_nMaxParticles = " );
	CParticleAssetCompiler compiler;
	std::unique_ptr<CResourceData> pData;
	CUtlString strError;
	EXPECT_FALSE( compiler.Compile( source, "particles/broken.tfxs", &pData, &strError ) );
	EXPECT_EQ( pData, nullptr );
	EXPECT_FALSE( strError.IsEmpty() );
}

// The preview's compile finds children on the content and game search paths, and nowhere else.
TEST( ParticleAssetCompiler, ChildrenResolveInsideTheSearchPathsOnly )
{
	RegisterParticleInputClasses();
	CFileSystem fileSystem;
	fileSystem.SetupFromRoots( ZOL_SOURCE_DIR "/content/game", ZOL_SOURCE_DIR "/content/content" );
	SetFileSystem( &fileSystem );
	CParticleAssetCompiler compiler;
	std::unique_ptr<CResourceData> pData;
	CUtlString strError;
	ASSERT_TRUE( compiler.Compile( ReadSample( "campfire.tfxs" ), "particles/samples/campfire.tfxs", &pData, &strError ) ) << strError.Get();
	EXPECT_EQ( static_cast<CParticleSystemResourceData *>( pData.get() )->GetDefinition()->m_Children.size(), 3u );

	for ( const char *pRef : { "/dev/zero", "../../../../etc/passwd" } )
	{
		CUtlBuffer source;
		source.PutString( ( std::string( "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
										 "{ _class = \"CParticleSystemDefinition\" m_Children = [ { m_ChildRef = \"" ) +
							  pRef + "\" } ] }\n" )
								.c_str() );
		EXPECT_FALSE( compiler.Compile( source, "particles/hostile.tfxs", &pData, &strError ) ) << pRef;
		EXPECT_NE( strstr( strError.Get(), "outside the content and game roots" ), nullptr ) << strError.Get();
	}
	SetFileSystem( nullptr );
}
