#pragma once
// Loading definition files to compare or merge them: each as the editor loads it (class
// scrub, defaults, sanitising for its own version), except that functions whose class the
// catalogue doesn't know are kept as written, and then brought in memory to one behaviour
// version, so that an upgrade by itself shows no change. Nothing is written back.

class CUtlString;
class CZolDoc;

// Loads each file into its document (best made without histories). False, with the reason
// in pError, when a file doesn't load ("FILE: why", the editor's own words) or when the
// root classes of two files differ. pFileVersions receives each file's own version.
bool LoadDefinitionsToCompare( const char *const *ppPaths, int nCount, CZolDoc *const *ppDocs, int *pFileVersions, CUtlString *pError );

// Sanitises a loaded document for the version, keeping unknown functions, and records the
// version in it; the attribute labels follow.
void BringDefinitionToVersion( CZolDoc *pDoc, int nVersion );
