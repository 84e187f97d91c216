// How the property panel's rows come from the domain: the properties its targets share,
// grouped and sorted, with tables, array elements, map entries and the parts of KV3
// values nested below them. Only models are made here; the widgets follow them.

#include "tools/toolutils2/widgets/propertyeditor/propertypanel.h"

#include <algorithm>

#include "core/host/ipropertyeditorsystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/text/friendlyname.h"
#include "tools/toolutils2/propertyeditor/propertyattributeeditorfactory.h"
#include "tools/toolutils2/toolattr_propertydomain/ipropertyeditdomain.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorcurve.h"
#include "tools/toolutils2/widgets/propertyeditor/kv3valuepath.h"

namespace
{
// Arrays and tables this small show their rows at first.
constexpr int EXPANDED_ARRAY_LIMIT = 8;
constexpr int EXPANDED_TABLE_LIMIT = 6;

QString FriendlyPartName( const char *pName )
{
	CUtlString friendly;
	if ( V_TryAndMakeFriendlyNameFromCppName( pName, &friendly ) && !friendly.IsEmpty() )
		return QString::fromUtf8( friendly.Get() );
	return QString::fromUtf8( pName );
}
} // namespace

// "Name( argument )" into its name and argument.
void CQPropertyPanel::ParseEditorSpec( const CUtlString &editor, QString *pName, QString *pArgument )
{
	QString text = QString::fromUtf8( editor.Get() ).trimmed();
	int nOpen = text.indexOf( '(' );
	*pName = ( nOpen < 0 ? text : text.left( nOpen ) ).trimmed();
	pArgument->clear();
	if ( nOpen >= 0 )
	{
		int nClose = text.lastIndexOf( ')' );
		*pArgument = text.mid( nOpen + 1, ( nClose > nOpen ? nClose : text.size() ) - nOpen - 1 ).trimmed();
	}
}

CPropertyAttributeEditorFactoryBase *CQPropertyPanel::FindFactory( const QString &name )
{
	IPropertyEditorSystem *pSystem = GetPropertyEditorSystem();
	if ( name.isEmpty() || !pSystem )
		return nullptr;
	return dynamic_cast<CPropertyAttributeEditorFactoryBase *>( pSystem->FindAttributeEditorFactory( name.toUtf8().constData() ) );
}

void CQPropertyPanel::BuildModel( RowList_t *pRows )
{
	pRows->clear();
	if ( !m_pDomain || m_Targets.IsEmpty() )
		return;
	for ( const ZolPropertyTarget &target : m_Targets )
	{
		if ( m_pDomain->IsTargetInvalid( target ) )
			return;
	}
	RowList_t rows;
	AddPropertyRows( m_Targets, nullptr, QString(), 0, &rows );

	// Grouped properties go under a heading, placed where the group's first one stood.
	QHash<QString, PropertyPanelRow_t *> groups;
	for ( std::unique_ptr<PropertyPanelRow_t> &pRow : rows )
	{
		QString group = QString::fromUtf8( pRow->m_Info.m_Group.Get() );
		if ( group.isEmpty() )
		{
			pRows->push_back( std::move( pRow ) );
			continue;
		}
		PropertyPanelRow_t *&pGroup = groups[ group ];
		if ( !pGroup )
		{
			auto pNew = std::make_unique<PropertyPanelRow_t>();
			pNew->m_eKind = PropertyPanelRow_t::KIND_GROUP;
			pNew->m_Key = QStringLiteral( "@" ) + group;
			pNew->m_Label = group;
			pGroup = pNew.get();
			pRows->push_back( std::move( pNew ) );
		}
		pRow->m_pParent = pGroup;
		pGroup->m_Children.push_back( std::move( pRow ) );
	}
}

void CQPropertyPanel::AddPropertyRows( const CUtlVector<ZolPropertyTarget> &tables, PropertyPanelRow_t *pParent, const QString &keyPrefix, int nDepth,
	RowList_t *pOut )
{
	// Each table's properties with their records; a row needs its property in all of them.
	struct Property_t
	{
		ZolPropertyTarget m_Target;
		ZolPropertyRowInfo m_Info;
	};
	std::vector<std::vector<Property_t>> perTable( tables.Count() );
	for ( int t = 0; t < tables.Count(); ++t )
	{
		CUtlVector<ZolPropertyTarget> properties;
		m_pDomain->GetProperties( tables[ t ], &properties );
		for ( const ZolPropertyTarget &property : properties )
		{
			Property_t entry{ property, {} };
			if ( m_pDomain->GetPropertyInfo( property, &entry.m_Info ) && !entry.m_Info.m_bSuppressed && !entry.m_Info.m_bHidden )
				perTable[ t ].push_back( std::move( entry ) );
		}
	}
	for ( const Property_t &first : perTable[ 0 ] )
	{
		auto pRow = std::make_unique<PropertyPanelRow_t>();
		pRow->m_Targets.AddToTail( PropEdSpecificAttr_t{ first.m_Target, {} } );
		bool bShared = true;
		for ( int t = 1; t < tables.Count() && bShared; ++t )
		{
			auto it = std::find_if( perTable[ t ].begin(), perTable[ t ].end(), [ & ]( const Property_t &other ) {
				return other.m_Info.m_Name == first.m_Info.m_Name && other.m_Info.m_nType == first.m_Info.m_nType;
			} );
			bShared = it != perTable[ t ].end();
			if ( bShared )
			{
				pRow->m_Targets.AddToTail( PropEdSpecificAttr_t{ it->m_Target, {} } );
				// Read-only anywhere is read-only for all.
				pRow->m_Info.m_bReadOnly = pRow->m_Info.m_bReadOnly || it->m_Info.m_bReadOnly;
			}
		}
		if ( !bShared )
			continue;
		bool bReadOnly = pRow->m_Info.m_bReadOnly;
		pRow->m_Info = first.m_Info;
		pRow->m_Info.m_bReadOnly = pRow->m_Info.m_bReadOnly || bReadOnly;
		pRow->m_eKind = pParent && pParent->m_bIsArray ? PropertyPanelRow_t::KIND_ELEMENT : PropertyPanelRow_t::KIND_PROPERTY;
		pRow->m_Key = keyPrefix + QString::fromUtf8( first.m_Info.m_Name.Get() );
		pRow->m_Label = QString::fromUtf8( first.m_Info.m_FriendlyName.IsEmpty() ? first.m_Info.m_Name.Get() : first.m_Info.m_FriendlyName.Get() );
		pRow->m_nDepth = nDepth;
		pRow->m_pParent = pParent;
		FillChildren( pRow.get() );
		pOut->push_back( std::move( pRow ) );
	}
	SortRows( pOut );
}

void CQPropertyPanel::FillChildren( PropertyPanelRow_t *pRow )
{
	if ( pRow->m_nDepth >= MAX_ROW_DEPTH || pRow->m_Targets.IsEmpty() )
		return;
	const PropEdSpecificAttr_t &first = pRow->m_Targets[ 0 ];
	const ZolPropertyRowInfo &info = pRow->m_Info;

	// Arrays: a row per element, when the targets agree on the count.
	if ( !info.m_ArrayDimensions.IsEmpty() )
	{
		pRow->m_bIsArray = true;
		pRow->m_bArrayResizable = !info.m_ArrayDimensions[ 0 ] && !info.m_bReadOnly;
		int nCount = m_pDomain->GetArrayCount( first.m_Property, first.m_Path );
		for ( const PropEdSpecificAttr_t &target : pRow->m_Targets )
		{
			if ( m_pDomain->GetArrayCount( target.m_Property, target.m_Path ) != nCount )
				nCount = -1;
		}
		pRow->m_nArrayCount = nCount;
		pRow->m_bDefaultExpanded = nCount <= EXPANDED_ARRAY_LIMIT;
		for ( int i = 0; i < nCount; ++i )
		{
			PropertyPanelRow_t *pElement = AddNestedRow( pRow, PropertyPanelRow_t::KIND_ELEMENT, QStringLiteral( "[%1]" ).arg( i ),
				[ & ]( const PropEdSpecificAttr_t &target, ZolPropertyTarget *pOut ) { return m_pDomain->GetArrayElementProperty( target.m_Property, target.m_Path, i, pOut ); } );
			if ( !pElement )
				continue;
			pElement->m_nElementIndex = i;
			// An element that is a table is named after it as well.
			ZolPropertyTarget nested;
			CUtlString name;
			if ( m_pDomain->GetElementTarget( pElement->m_Targets[ 0 ].m_Property, {}, &nested ) && m_pDomain->GetTargetDisplayName( nested, &name ) &&
				!name.IsEmpty() )
				pElement->m_Label += QStringLiteral( " " ) + QString::fromUtf8( name.Get() );
		}
		return;
	}

	// Maps: a row per key that every target has.
	CUtlVector<CUtlString> keys;
	if ( info.m_nType == ZOL_PROPERTY_TYPE_MAP && m_pDomain->GetMapKeys( first.m_Property, first.m_Path, &keys ) )
	{
		pRow->m_bIsMap = true;
		for ( const CUtlString &key : keys )
		{
			QString mapKey = QString::fromUtf8( key.Get() );
			PropertyPanelRow_t *pEntry = AddNestedRow( pRow, PropertyPanelRow_t::KIND_MAP_ENTRY, QStringLiteral( "{%1}" ).arg( mapKey ),
				[ & ]( const PropEdSpecificAttr_t &target, ZolPropertyTarget *pOut ) {
					CUtlVector<CUtlString> ownKeys;
					m_pDomain->GetMapKeys( target.m_Property, target.m_Path, &ownKeys );
					return ownKeys.HasElement( key ) && m_pDomain->GetMapElementProperty( target.m_Property, target.m_Path, key.Get(), pOut );
				} );
			if ( !pEntry )
				continue;
			pEntry->m_MapKey = mapKey;
			pEntry->m_Label = mapKey;
		}
		return;
	}

	// Tables: the fields they share.
	CUtlVector<ZolPropertyTarget> nested;
	for ( const PropEdSpecificAttr_t &target : pRow->m_Targets )
	{
		ZolPropertyTarget table;
		if ( !m_pDomain->GetElementTarget( target.m_Property, target.m_Path, &table ) )
			break;
		nested.AddToTail( table );
	}
	if ( nested.Count() == pRow->m_Targets.Count() )
	{
		AddPropertyRows( nested, pRow, pRow->m_Key + '/', pRow->m_nDepth + 1, &pRow->m_Children );
		if ( info.m_bReadOnly )
			ForEachRow( pRow->m_Children, []( PropertyPanelRow_t *pChild ) { pChild->m_Info.m_bReadOnly = true; } );
		pRow->m_bDefaultExpanded = info.m_bAutoExpand || int( pRow->m_Children.size() ) <= EXPANDED_TABLE_LIMIT;
		return;
	}

	// A KV3 value that no factory edits shows its parts.
	QString editorName, argument;
	ParseEditorSpec( info.m_EditorSpec, &editorName, &argument );
	if ( m_pDomain->IsKV3Property( first.m_Property, first.m_Path ) && !FindFactory( editorName ) )
	{
		KeyValues3 value;
		bool bDiffer = false;
		if ( ReadCommonKV3( pRow->m_Targets, &value, &bDiffer ) )
			AddKV3PartRows( pRow, value );
	}
}

PropertyPanelRow_t *CQPropertyPanel::AddNestedRow( PropertyPanelRow_t *pRow, int eKind, const QString &step, const NestedTargetFn_t &fnTarget )
{
	auto pChild = std::make_unique<PropertyPanelRow_t>();
	for ( const PropEdSpecificAttr_t &target : pRow->m_Targets )
	{
		ZolPropertyTarget element;
		if ( !fnTarget( target, &element ) )
			return nullptr;
		pChild->m_Targets.AddToTail( PropEdSpecificAttr_t{ element, {} } );
	}
	if ( !m_pDomain->GetPropertyInfo( pChild->m_Targets[ 0 ].m_Property, &pChild->m_Info ) )
		return nullptr;
	pChild->m_eKind = PropertyPanelRow_t::Kind_t( eKind );
	pChild->m_Info.m_bReadOnly = pChild->m_Info.m_bReadOnly || pRow->m_Info.m_bReadOnly;
	pChild->m_Key = pRow->m_Key + '/' + step;
	pChild->m_Label = step;
	pChild->m_nDepth = pRow->m_nDepth + 1;
	pChild->m_pParent = pRow;
	PropertyPanelRow_t *pAdded = pChild.get();
	pRow->m_Children.push_back( std::move( pChild ) );
	FillChildren( pAdded );
	return pAdded;
}

void CQPropertyPanel::AddKV3PartRows( PropertyPanelRow_t *pRow, const KeyValues3 &value )
{
	if ( pRow->m_nDepth >= MAX_ROW_DEPTH )
		return;
	auto addPart = [ & ]( const QString &step, const QString &label, const KeyValues3 &part ) {
		auto pPart = std::make_unique<PropertyPanelRow_t>();
		pPart->m_eKind = PropertyPanelRow_t::KIND_KV3_PART;
		pPart->m_Targets = pRow->m_Targets;
		pPart->m_KV3Path = pRow->m_KV3Path;
		pPart->m_KV3Path.append( step );
		pPart->m_nKV3Type = part.GetType();
		pPart->m_bKV3Curve = CQAttributeEditor_Curve::IsCurveValue( part );
		pPart->m_Key = pRow->m_Key + '/' + step;
		pPart->m_Label = label;
		pPart->m_Info.m_Name = step.toUtf8().constData();
		pPart->m_Info.m_FriendlyName = label.toUtf8().constData();
		pPart->m_Info.m_bReadOnly = pRow->m_Info.m_bReadOnly;
		pPart->m_nDepth = pRow->m_nDepth + 1;
		pPart->m_pParent = pRow;
		if ( ( part.IsTable() || part.IsArray() ) && !pPart->m_bKV3Curve )
			AddKV3PartRows( pPart.get(), part );
		pRow->m_Children.push_back( std::move( pPart ) );
	};
	if ( value.IsTable() )
	{
		for ( int i = 0; i < value.GetMemberCount(); ++i )
			addPart( QString::fromUtf8( value.GetMemberName( i ) ), FriendlyPartName( value.GetMemberName( i ) ), *value.GetMember( i ) );
	}
	else if ( value.IsArray() )
	{
		for ( int i = 0; i < value.GetArrayElementCount(); ++i )
			addPart( KV3ElementStep( i ), KV3ElementStep( i ), *value.GetArrayElement( i ) );
	}
}

void CQPropertyPanel::SortRows( RowList_t *pRows )
{
	std::stable_sort( pRows->begin(), pRows->end(), []( const std::unique_ptr<PropertyPanelRow_t> &a, const std::unique_ptr<PropertyPanelRow_t> &b ) {
		return a->m_Info.m_nSortPriority > b->m_Info.m_nSortPriority;
	} );
}

bool CQPropertyPanel::SameStructure( const RowList_t &a, const RowList_t &b )
{
	if ( a.size() != b.size() )
		return false;
	for ( size_t i = 0; i < a.size(); ++i )
	{
		if ( a[ i ]->GetStructureKey() != b[ i ]->GetStructureKey() || !SameStructure( a[ i ]->m_Children, b[ i ]->m_Children ) )
			return false;
	}
	return true;
}
