#include "zoldoc_lib/zolnamedvaluecontext.h"

#include <algorithm>

#include "core/text/strtools.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zolcontrolpointstate.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnamedvaluetypes.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
void AddChoice( CUtlVector<ToolAttrGenericChoice_t> *pChoices, const char *pValue, const char *pLabel )
{
	ToolAttrGenericChoice_t &choice = ( *pChoices )[ pChoices->AddToTail() ];
	choice.m_Value = pValue;
	choice.m_FriendlyName = pLabel;
}

bool RecordLess( const ZolNamedValueRecord_t &a, const ZolNamedValueRecord_t &b )
{
	int nName = V_stricmp_fast( a.m_Name, b.m_Name );
	if ( nName != 0 )
		return nName < 0;
	return V_stricmp_fast( a.m_FileName, b.m_FileName ) < 0;
}
} // namespace

void CZolNamedValueContext::GetDomainValues( const CPulseValueFullType &type, CUtlVector<ToolAttrGenericChoice_t> *pChoices )
{
	const CZolDoc *pDoc = m_Cache.GetSource() ? m_Cache.GetSource()->GetSourceDocument() : nullptr;
	if ( pDoc )
		GetZolDomainValues( *pDoc, type, pChoices );
	else
	{
		pChoices->RemoveAll();
		pChoices->AddToTail( ToolAttrGenericChoice_t() );
	}
}

void CZolNamedValueContext::GetAttachmentNames( const char *pEntity, CUtlVector<ToolAttrGenericChoice_t> *pChoices )
{
	pChoices->RemoveAll();
	if ( !m_pState )
		return;
	CUtlVector<CUtlString> names;
	m_pState->GetAttachmentNames( ZolAttachEntityFromName( pEntity ), &names );
	for ( const CUtlString &name : names )
		AddChoice( pChoices, name, name );
}

void CZolNamedValueContext::GetConfigurationNames( CUtlVector<ToolAttrGenericChoice_t> *pChoices )
{
	pChoices->RemoveAll();
	const CZolDoc *pDoc = m_Cache.GetSource() ? m_Cache.GetSource()->GetSourceDocument() : nullptr;
	const CZolRootNode *pRoot = pDoc ? pDoc->GetRoot() : nullptr;
	for ( int i = 0; pRoot && i < pRoot->GetConfigurationCount(); ++i )
		AddChoice( pChoices, pRoot->GetConfiguration( i )->GetName(), pRoot->GetConfiguration( i )->GetName() );
}

void CZolNamedValueContext::GetAllNamedValueInfo( CUtlVector<ZolNamedValueRecord_t> *pRecords )
{
	m_Cache.GetAllNamedValueInfo( pRecords );
	std::stable_sort( pRecords->begin(), pRecords->end(), RecordLess );
}

void CZolNamedValueContext::GetSharedVariables( const char *pName, CUtlVector<ZolNamedValueRecord_t> *pRecords )
{
	CUtlVector<ZolNamedValueRecord_t> all;
	GetAllNamedValueInfo( &all );
	pRecords->RemoveAll();
	for ( const ZolNamedValueRecord_t &record : all )
	{
		if ( record.m_Name.IsEqual_CaseInsensitive( pName ? pName : "" ) )
			pRecords->AddToTail( record );
	}
}

void CZolNamedValueContext::GetCompatibleVariables( const CPulseValueFullType &type, CUtlVector<ToolAttrGenericChoice_t> *pChoices )
{
	// Read from the document itself: a system without an asset has no family, but has
	// its own variables.
	pChoices->RemoveAll();
	const CZolDoc *pDoc = m_Cache.GetSource() ? m_Cache.GetSource()->GetSourceDocument() : nullptr;
	if ( !pDoc )
		return;
	ZolAssetNamedValues_t own;
	ExtractNamedValueInfo( *pDoc, &own );
	for ( const ZolVariableInfo_t &variable : own.m_Variables )
	{
		if ( !DoesZolVariableTypeFit( type.GetBaseType(), variable.m_Type.GetBaseType() ) )
			continue;
		AddChoice( pChoices, variable.m_Name, variable.m_Name );
		( *pChoices )[ pChoices->Count() - 1 ].m_Description = variable.m_Type.ToString();
	}
}
