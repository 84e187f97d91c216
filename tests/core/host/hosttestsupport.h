#pragma once
// A scratch directory for one test, with a game and a content root below it.

#include <unistd.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "core/host/filesystem.h"

class CHostScratchDirectory
{
public:
	CHostScratchDirectory()
	{
		const ::testing::TestInfo *pInfo = ::testing::UnitTest::GetInstance()->current_test_info();
		std::string name = std::string( "zol_host_" ) + pInfo->test_suite_name() + "_" + pInfo->name() + "_" + std::to_string( getpid() );
		m_Root = std::filesystem::temp_directory_path() / name;
		std::filesystem::remove_all( m_Root );
		std::filesystem::create_directories( m_Root / "game" );
		std::filesystem::create_directories( m_Root / "content" );
	}
	~CHostScratchDirectory()
	{
		std::error_code error;
		std::filesystem::permissions( m_Root, std::filesystem::perms::all, error );
		std::filesystem::remove_all( m_Root, error );
	}

	const std::filesystem::path &Root() const { return m_Root; }
	std::filesystem::path Game() const { return m_Root / "game"; }
	std::filesystem::path Content() const { return m_Root / "content"; }

	// Writes a file below the root, making its directories.
	void Write( const std::string &relative, const std::string &text ) const
	{
		std::filesystem::path path = m_Root / relative;
		std::filesystem::create_directories( path.parent_path() );
		std::ofstream( path, std::ios::binary ) << text;
	}

	std::string Read( const std::string &relative ) const
	{
		std::ifstream file( m_Root / relative, std::ios::binary );
		std::stringstream text;
		text << file.rdbuf();
		return text.str();
	}

private:
	std::filesystem::path m_Root;
};

// The shipped content of the repository.
inline std::filesystem::path ShippedContentRoot()
{
	return std::filesystem::path( ZOL_SOURCE_DIR ) / "content" / "content";
}

inline std::filesystem::path ShippedGameRoot()
{
	return std::filesystem::path( ZOL_SOURCE_DIR ) / "content" / "game";
}
