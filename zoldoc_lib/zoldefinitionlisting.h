#pragma once
// A definition as plain lines in the artist's terms, for version control to compare line
// by line (a text conversion): the system's own properties, then each section with its
// elements, and under each element the fields that differ from their defaults, one a line.
// No positions are written, so a moved function moves its lines and nothing else.

class CUtlString;
struct ZolDefinitionTree_t;

void ListDefinitionTree( const ZolDefinitionTree_t &tree, CUtlString *pOut );

// Loads the file as the editor does (unknown functions kept) and lists it at its own version:
// a listing tells what the file holds. False, with "FILE: why", when it doesn't load.
bool ListDefinitionFile( const char *pPath, CUtlString *pOut, CUtlString *pError );
