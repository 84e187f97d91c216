#include "zoldoc_lib/zoldefinitionlisting.h"

#include <vector>

#include "core/text/utlstring.h"
#include "zoldoc_lib/zolcomparisonload.h"
#include "zoldoc_lib/zoldefinitiondiff.h"
#include "zoldoc_lib/zoldefinitiontree.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolelementfields.h"

namespace
{
constexpr const char *VERSION_KEY = "m_nBehaviorVersion";

// The fields of a table that differ from their defaults, as "indent Label: value" lines.
void ListFields( int nSection, const char *pClass, const KeyValues3 &table, const char *pDomain, const char *pIndent, CUtlString *pOut )
{
	KeyValues3 defaults;
	defaults.SetToEmptyTable();
	std::vector<ZolFieldChange_t> fields;
	DiffElementFields( nSection, pClass, defaults, table, pDomain, pDomain, &fields );
	// The version stands first, as the file has it; an element's name stands in its heading.
	const char *pSkipped = nSection == ZOL_SECTION_BASE_PROPERTIES ? VERSION_KEY : GetDefinitionSectionKeyMember( nSection );
	const CGameDataClass *pElementClass = FindDefinitionElementClass( nSection, pClass );
	for ( const ZolFieldChange_t &field : fields )
	{
		if ( pSkipped && field.m_Field == pSkipped )
			continue;
		// Records of an array (a configuration's drivers) stand one a line.
		const KeyValues3 &value = field.m_NewValue;
		if ( !value.IsArray() || !value.GetArrayElementCount() || !value.GetArrayElement( 0 )->IsTable() )
		{
			pOut->AppendFormat( "%s%s: %s\n", pIndent, field.m_Label.Get(), field.m_NewText.Get() );
			continue;
		}
		for ( int i = 0; i < value.GetArrayElementCount(); ++i )
		{
			CUtlString item;
			FormatElementFieldItem( pElementClass, field.m_Field.Get(), *value.GetArrayElement( i ), pDomain, &item );
			pOut->AppendFormat( "%s%s #%d: %s\n", pIndent, field.m_Label.Get(), i + 1, item.Get() );
		}
	}
}
} // namespace

void ListDefinitionTree( const ZolDefinitionTree_t &tree, CUtlString *pOut )
{
	pOut->Clear();
	CUtlString versionLabel;
	GetElementFieldLabel( FindDefinitionElementClass( ZOL_SECTION_BASE_PROPERTIES, nullptr ), VERSION_KEY, &versionLabel );
	pOut->AppendFormat( "%s\n  %s: %d\n", GetDefinitionSectionTitle( ZOL_SECTION_BASE_PROPERTIES ), versionLabel.Get(), tree.m_nFileVersion );
	ListFields( ZOL_SECTION_BASE_PROPERTIES, nullptr, tree.m_Root, tree.m_Domain.Get(), "  ", pOut );

	for ( int nSection = 0; nSection < ZOL_SECTION_ELEMENT_COUNT; ++nSection )
	{
		if ( tree.m_Sections[ nSection ].empty() )
			continue;
		pOut->AppendFormat( "%s\n", GetDefinitionSectionTitle( nSection ) );
		const char *pDisableKey = GetDefinitionSectionDisableKey( nSection );
		for ( const ZolDefinitionElement_t &element : tree.m_Sections[ nSection ] )
		{
			const bool bDisabled = pDisableKey && element.m_Table.GetMemberBool( pDisableKey );
			pOut->AppendFormat( "  %s%s\n", element.m_Name.Get(), bDisabled ? " (disabled)" : "" );
			ListFields( nSection, element.m_Class.Get(), element.m_Table, tree.m_Domain.Get(), "    ", pOut );
		}
	}
}

bool ListDefinitionFile( const char *pPath, CUtlString *pOut, CUtlString *pError )
{
	CZolDoc doc( false );
	CZolDoc *docs[] = { &doc };
	int nFileVersion = 0;
	if ( !LoadDefinitionsToCompare( &pPath, 1, docs, &nFileVersion, pError ) )
		return false;
	ZolDefinitionTree_t tree;
	BuildDefinitionTree( doc, nFileVersion, &tree );
	ListDefinitionTree( tree, pOut );
	return true;
}
