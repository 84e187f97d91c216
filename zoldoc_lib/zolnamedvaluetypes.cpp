#include "zoldoc_lib/zolnamedvaluetypes.h"

#include "core/kv3/keyvalues3.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tools/toolutils2/fgd/gamedataclass.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"

bool DoesZolVariableTypeFit( int nRequestedType, int nVariableType )
{
	if ( nRequestedType == PVAL_VOID )
		return true;
	switch ( nVariableType )
	{
	case PVAL_VOID: return nRequestedType >= 0 && nRequestedType < PVAL_COUNT;
	case PVAL_FLOAT: return nRequestedType == PVAL_FLOAT;
	case PVAL_VEC3:
	case PVAL_TRANSFORM: return nRequestedType == PVAL_VEC3 || nRequestedType == PVAL_TRANSFORM;
	case PVAL_EHANDLE:
	case PVAL_PARTICLE_EHANDLE:
		return nRequestedType == PVAL_EHANDLE || nRequestedType == PVAL_PARTICLE_EHANDLE || nRequestedType == PVAL_TRANSFORM || nRequestedType == PVAL_VEC3;
	default: return false;
	}
}

void GetZolDomainValues( const CZolDoc &doc, const CPulseValueFullType &type, CUtlVector<ToolAttrGenericChoice_t> *pChoices )
{
	pChoices->RemoveAll();
	pChoices->AddToTail( ToolAttrGenericChoice_t() );
	const CZolRootNode *pRoot = doc.GetRoot();
	const char *pDomain = pRoot ? pRoot->GetReadKV3()->GetMemberString( "m_NamedValueDomain" ) : "";
	const CGameDataClass *pClass = *pDomain ? FindParticleGameDataClass( pDomain ) : nullptr;
	const KeyValues3 *pDeclarations = pClass && pClass->m_MetaData.IsTable() ? pClass->m_MetaData.FindMember( "MParticleNamedValueDeclaration" ) : nullptr;
	for ( int i = 0; pDeclarations && pDeclarations->IsArray() && i < pDeclarations->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pDeclaration = pDeclarations->GetArrayElement( i );
		if ( !pDeclaration->IsTable() || !DoesZolVariableTypeFit( type.GetBaseType(), pDeclaration->GetMemberInt( "PulseType", PVAL_VOID ) ) )
			continue;
		ToolAttrGenericChoice_t &choice = ( *pChoices )[ pChoices->AddToTail() ];
		choice.m_Value = pDeclaration->GetMemberString( "InternalPath" );
		choice.m_FriendlyName = pDeclaration->GetMemberString( "UIPath" );
		choice.m_Description = pDeclaration->GetMemberString( "Description" );
	}
}
