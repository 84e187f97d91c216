// The particle compiler as the asset system uses it: shipped samples become definitions
// the preview can simulate, broken text is refused with a reason.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/containers/utlbuffer.h"
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
