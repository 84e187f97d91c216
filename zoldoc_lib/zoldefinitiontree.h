#pragma once
// A definition as diff and merge see it: the system's own properties, and ten sections of
// elements (the nine lists, then the control point configurations). Each element is its
// table with its class, the name the function list shows for it and, for children,
// variables and configurations, the key that says which one it is. Built from a loaded
// document; assembled back into the tree a document loads, to be saved as the editor saves.

#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"

class CGameDataClass;
class CZolDoc;

enum ZolDefinitionSection_t : int
{
	// 0 .. 8 are the lists, by ParticleFunctionType_t.
	ZOL_SECTION_CONFIGURATIONS = 9,
	ZOL_SECTION_ELEMENT_COUNT = 10,
	// The root's own members, which are no element.
	ZOL_SECTION_BASE_PROPERTIES = 10,
};

struct ZolDefinitionElement_t
{
	KeyValues3 m_Table;
	// The function's "_class", or the record class of the section.
	CUtlString m_Class;
	// "Continuous Emitter", "Lifetime (Init Float)", a child's path, a variable's name.
	CUtlString m_Name;
	// Lower-cased child path, variable name or configuration name; empty for functions,
	// which are told apart by class and content.
	CUtlString m_Key;
};

struct ZolDefinitionTree_t
{
	// The root's members other than its lists and configurations, "_class" included.
	KeyValues3 m_Root;
	std::vector<ZolDefinitionElement_t> m_Sections[ ZOL_SECTION_ELEMENT_COUNT ];
	// The behaviour version the file was written at, before any upgrade in memory.
	int m_nFileVersion = 0;
	// The named value domain that input texts translate names through, or "".
	CUtlString m_Domain;
};

void BuildDefinitionTree( const CZolDoc &doc, int nFileVersion, ZolDefinitionTree_t *pTree );
// The whole definition as one table, the form CZolRootNode::LoadRootFromKV3 reads.
void AssembleDefinitionTree( const ZolDefinitionTree_t &tree, KeyValues3 *pOut );

// "Emitters", "Children", "Configurations", "Base Properties".
const char *GetDefinitionSectionTitle( int nSection );
// The key that switches an element off ("m_bDisableOperator", "m_bDisableChild"), or null.
const char *GetDefinitionSectionDisableKey( int nSection );
// The member that names an element of the section ("m_ChildRef", "m_Name", "m_name"), or null.
const char *GetDefinitionSectionKeyMember( int nSection );
// The class description of an element of the section, or of the root; null when unknown.
const CGameDataClass *FindDefinitionElementClass( int nSection, const char *pClass );
