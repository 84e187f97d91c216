#pragma once
// The shipped sample definitions, edited in copies the way an artist edits them by hand,
// with the host's particle classes connected: the ground for diff and merge tests.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

class CZolDoc;

// A text replacement; the text to find must stand exactly once in the file.
using SampleEdit_t = std::pair<std::string, std::string>;

struct ZolSampleFixture : ::testing::Test
{
	ZolSampleFixture();
	~ZolSampleFixture() override;

	static std::string ReadSample( const char *pName );
	// The sample with the edits made, written to a file of the scratch folder; its path.
	std::string WriteEdited( const char *pSample, const std::vector<SampleEdit_t> &edits, const char *pFileName );
	std::string WriteText( const char *pFileName, const std::string &text );
	// What the editor saves for a file: loaded, then saved to text.
	static std::string EditorText( const std::string &path );
	static std::string SaveText( const CZolDoc &doc );

	std::string m_Folder;
};

// The edits made one after the other; a find that doesn't stand exactly once fails the test.
std::string ApplySampleEdits( std::string text, const std::vector<SampleEdit_t> &edits );
