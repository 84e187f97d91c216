#include <unistd.h>
#include "tests/zoldoc/zoldefinitionsamples.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/containers/utlbuffer.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/iparticlesystemmgr.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zoldoc.h"

ZolSampleFixture::ZolSampleFixture()
{
	SetParticleSystemMgr( HostParticleSystemMgr() );
	SetParticleGameRoot( ZOL_SOURCE_DIR "/content/game" );
	ResetParticleGameData();
	const ::testing::TestInfo *pInfo = ::testing::UnitTest::GetInstance()->current_test_info();
	std::string name = std::string( pInfo->test_suite_name() ) + "_" + pInfo->name();
	for ( char &c : name )
	{
		if ( c == '/' )
			c = '_';
	}
	m_Folder = ( std::filesystem::temp_directory_path() / ( "zol_samples_" + name + "_" + std::to_string( getpid() ) ) ).string();
	std::filesystem::remove_all( m_Folder );
	std::filesystem::create_directories( m_Folder );
}

ZolSampleFixture::~ZolSampleFixture()
{
	std::error_code error;
	std::filesystem::remove_all( m_Folder, error );
	SetParticleSystemMgr( nullptr );
	SetParticleGameRoot( "" );
	ResetParticleGameData();
}

std::string ZolSampleFixture::ReadSample( const char *pName )
{
	std::ifstream file( std::string( ZOL_SOURCE_DIR "/content/content/particles/samples/" ) + pName, std::ios::binary );
	std::stringstream text;
	text << file.rdbuf();
	EXPECT_FALSE( text.str().empty() ) << "no sample " << pName;
	return text.str();
}

std::string ZolSampleFixture::WriteText( const char *pFileName, const std::string &text )
{
	const std::string path = m_Folder + "/" + pFileName;
	std::ofstream( path, std::ios::binary ) << text;
	return path;
}

std::string ZolSampleFixture::WriteEdited( const char *pSample, const std::vector<SampleEdit_t> &edits, const char *pFileName )
{
	return WriteText( pFileName, ApplySampleEdits( ReadSample( pSample ), edits ) );
}

std::string ZolSampleFixture::SaveText( const CZolDoc &doc )
{
	CUtlBuffer buffer;
	CUtlString error;
	EXPECT_TRUE( doc.SaveToBuffer( &buffer, &error ) ) << error.Get();
	return std::string( reinterpret_cast<const char *>( buffer.Base() ), buffer.Size() );
}

std::string ZolSampleFixture::EditorText( const std::string &path )
{
	CZolDoc doc( false );
	CUtlString error;
	EXPECT_TRUE( doc.LoadFromFile( path.c_str(), "", &error ) ) << path << ": " << error.Get();
	return SaveText( doc );
}

std::string ApplySampleEdits( std::string text, const std::vector<SampleEdit_t> &edits )
{
	for ( const SampleEdit_t &edit : edits )
	{
		const size_t nAt = text.find( edit.first );
		if ( nAt == std::string::npos || text.find( edit.first, nAt + 1 ) != std::string::npos )
		{
			ADD_FAILURE() << "the edit's text doesn't stand exactly once: " << edit.first;
			continue;
		}
		text.replace( nAt, edit.first.size(), edit.second );
	}
	return text;
}
