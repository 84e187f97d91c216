#include "zoldoc_lib/zolfunctionnode.h"

#include "core/logging/logging.h"
#include "core/text/bufferstring.h"
#include "core/text/strtools.h"
#include "zoldoc_lib/particleinputdisplay.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
// Functions whose whole purpose is to set one attribute to one input.
bool IsSetterClass( const char *pClass )
{
	static const char *const s_SetterClasses[] = { "C_INIT_InitFloat", "C_OP_SetFloat", "C_INIT_InitVec", "C_OP_SetVec" };
	for ( const char *pSetter : s_SetterClasses )
	{
		if ( !V_strcmp( pClass, pSetter ) )
			return true;
	}
	return false;
}
} // namespace

const char *CZolFunctionNode::GetClassName() const
{
	return m_KV3.GetMemberString( "_class", "" );
}

void CZolFunctionNode::GetDisplayStrings( CBufferString *pName, CBufferString *pValue, CBufferString *pHint ) const
{
	if ( IsSetterClass( GetClassName() ) )
	{
		GetSetterDisplayStrings( pName, pValue );
	}
	else
	{
		pName->Set( GetParticleFunctionFriendlyName( GetClassName() ) );
		pValue->Clear();
	}
	pHint->Set( "Edit node" );
}

void CZolFunctionNode::GetSetterDisplayStrings( CBufferString *pName, CBufferString *pValue ) const
{
	const char *pLabel = m_pDoc ? m_pDoc->GetAttributeLabel( m_KV3.GetMemberInt( "m_nOutputField" ) ) : "";
	pName->Set( pLabel );

	// Named values only resolve against a domain when the system has them switched on.
	const char *pDomain = "";
	const CZolRootNode *pRoot = m_pDoc ? m_pDoc->GetRoot() : nullptr;
	if ( pRoot && pRoot->GetReadKV3()->GetMemberBool( "m_bEnableNamedValues" ) )
		pDomain = pRoot->GetReadKV3()->GetMemberString( "m_NamedValueDomain" );

	CBufferString inputText;
	CUtlString error;
	if ( !GetParticleInputDisplayString( m_KV3.GetMemberString( "_class" ), "m_InputValue", m_KV3.FindMember( "m_InputValue" ), pDomain, &inputText,
										 &error ) )
		Log_Warning( LOG_ZOL, "LoadKV3ObjectInPlace error: %s\n", error.Get() );
	pValue->Format( "= %s", inputText.Get() );
}
