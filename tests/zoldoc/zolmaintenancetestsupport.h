#pragma once
// A scratch content tree under the host's own services and particle classes, for the asset
// maintenance tests (upgrade, reference navigator, conversion): definitions are written as
// text, found as assets, and "opened in the editor" as documents that the walks must use
// instead of the files.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "core/host/hostservices.h"
#include "tests/core/host/hosttestsupport.h"
#include "zoldoc_lib/izoldocumentprovider.h"

class CZolDoc;
class IAsset;

// Documents as an editor holds them: "open" ones are kept (with histories) and answer for
// their asset; opening a closed asset opens it, as the application opens a session.
class CTestEditorDocuments final : public IZolDocumentProvider
{
public:
	CTestEditorDocuments();
	~CTestEditorDocuments();
	CZolDoc *FindOpenDocument( IAsset *pAsset ) override;
	CZolDoc *OpenDocument( IAsset *pAsset, CUtlString *pError ) override;
	CUtlString GetDisplayName( IAsset *pAsset ) override;
	int GetOpenCount() const { return int( m_Open.size() ); }

private:
	std::map<IAsset *, std::unique_ptr<CZolDoc>> m_Open;
};

struct ZolMaintenanceFixture : ::testing::Test
{
	ZolMaintenanceFixture();
	~ZolMaintenanceFixture() override;

	// A definition at a behaviour version: the body goes inside the root table.
	static std::string Definition( int nVersion, const std::string &body );
	// "m_Children = [ ... ]" of resource names below particles/ ("a/b" for particles/a/b.tfxs);
	// a leading '-' writes the child switched off.
	static std::string Children( const std::vector<std::string> &children );
	// content/particles/<name>.tfxs
	void Write( const std::string &name, const std::string &text );
	std::string Read( const std::string &name ) const;
	std::filesystem::path PathOf( const std::string &name ) const;
	// Starts the host's services once the files stand.
	void Start();
	IAsset *Asset( const std::string &name ) const;
	// The asset opened as an editor opens it.
	CZolDoc *Open( const std::string &name );

	CHostScratchDirectory m_Scratch;
	CHostServices m_Services;
	CTestEditorDocuments m_Editor;
};
