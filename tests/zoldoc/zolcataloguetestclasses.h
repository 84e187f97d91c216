#pragma once
// Operator classes with version limits, replacements, exclusion groups and field limits,
// registered once in the particles scope, and a fixture whose manager lists them.

#include "tests/zoldoc/zoldoctestsupport.h"

// Registers the classes (once per process).
void RegisterCatalogueTestClasses();

struct ZolCatalogueFixture : ZolDocFixture
{
	ZolCatalogueFixture();

	// A document of that version (without going through the catalogue's own upgrade).
	void SetDocumentVersion( int nVersion );
	// Writes a definition file and returns its path; removed with the fixture.
	std::string WriteFile( const char *pName, const std::string &text );
	~ZolCatalogueFixture() override;

	std::vector<std::string> m_Files;
};

// The text of a definition file around the given root members.
std::string MakeDefinitionText( const std::string &members );
