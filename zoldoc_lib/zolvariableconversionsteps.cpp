#include "zoldoc_lib/zolvariableconversionsteps.h"

#include "core/host/iasset.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/logging/logging.h"
#include "core/text/strtools.h"
#include "particleslib/particlefloatinput.h"
#include "particleslib/particlemodelinput.h"
#include "particleslib/particletransforminput.h"
#include "particleslib/particlevecinput.h"
#include "tools/toolutils2/errors/errormessagelist.h"
#include "tools/toolutils2/fgd/gamedataclass.h"
#include "tools/toolutils2/fgd/gamedatavariable.h"
#include "zoldoc_lib/izoldocumentprovider.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolevents.h"
#include "zoldoc_lib/zolnamedvaluetypes.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariableconversion.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
// The real document of the step's asset, opened for editing; null when it can't be had.
CZolDoc *OpenRealDocument( CZolVariableConversionPlan &plan, IAsset *pAsset )
{
	CUtlString ignoredError;
	CZolDoc *pDoc = pAsset ? plan.GetDocumentProvider()->OpenDocument( pAsset, &ignoredError ) : nullptr;
	return pDoc && pDoc->GetRoot() ? pDoc : nullptr;
}

const CZolDoc *WorkingCopy( const CZolVariableConversionPlan &plan, IAsset *pAsset )
{
	const ZolConversionDocument_t *pRecord = plan.FindDocument( pAsset );
	return pRecord ? pRecord->m_pWorkingCopy.get() : nullptr;
}

// An input read from its field, with the transfer's limits; a missing field is the
// input's defaults, which read what they read as much as a written one. Reports are errors.
template <typename Input> bool LoadInput( Input *pInput, const KeyValues3 *pOld, const CZolNodeLinkContext *pContext, CErrorMessageList *pMessages )
{
	CUtlString error;
	KeyValues3 defaults;
	defaults.SetToEmptyTable();
	if ( LoadKV3ObjectInPlace( pInput, pOld ? pOld : &defaults, &error ) )
		return true;
	pMessages->Report( ERROR_SEVERITY_ERROR, pContext, "%s", error.Get() );
	return false;
}

// The input as a file keeps it: what differs from its class's defaults.
template <typename Input> void SaveInput( const Input &input, KeyValues3 *pNew )
{
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( true );
	SaveKV3Object( input, pNew, nullptr, &context );
}

// The road of every input's conversion: the field read into its input, passed over unless
// it reads the point the way eRead says, changed by fnConvert (false: the variable doesn't
// fit) and written back as a file keeps it.
template <typename Input, typename Type, typename Convert>
int ConvertInputRead( const KeyValues3 *pOld, KeyValues3 *pNew, CErrorMessageList *pMessages, int nControlPoint, Type eRead, Convert fnConvert )
{
	Input input;
	if ( !LoadInput( &input, pOld, nullptr, pMessages ) )
		return ZOL_STEP_FAILED;
	if ( input.m_nType != eRead || input.m_nControlPoint != nControlPoint )
		return ZOL_STEP_NOT_APPLICABLE;
	if ( !fnConvert( input ) )
		return ZOL_STEP_FAILED;
	SaveInput( input, pNew );
	return ZOL_STEP_DONE;
}

CUtlString ValueText( const KeyValues3 *pValue )
{
	CUtlString text;
	if ( pValue )
		SaveKV3ToString( pValue, &text, KV3_FORMAT_GENERIC, KV3_SAVE_NO_HEADER );
	else
		text = "(missing)";
	return text;
}
} // namespace

//-----------------------------------------------------------------------------
// The variable and the end
//-----------------------------------------------------------------------------

int CCreateUndoForDocumentAndAddVariable::Run( bool bCommit, CZolVariableConversionPlan &plan, CErrorMessageList *pMessages )
{
	const CZolNodeLinkContext context = MakeZolNodeLinkContext( m_Link );
	const char *pName = plan.GetVariableName().Get();
	const CUtlString typeText = plan.GetVariableType().ToString();
	if ( !*pName )
	{
		pMessages->Report( ERROR_SEVERITY_ERROR, &context, "Variable name is empty." );
		return ZOL_STEP_FAILED;
	}
	const CZolDoc *pCopy = WorkingCopy( plan, m_Link.m_pAsset );
	const CZolRootNode *pCopyRoot = pCopy ? pCopy->GetRoot() : nullptr;
	for ( int i = 0; pCopyRoot && i < pCopyRoot->GetNodeCount( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ); ++i )
	{
		const CZolVariableNode *pVariable = pCopyRoot->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, i )->AsVariableNode();
		if ( pVariable && !V_stricmp_fast( pVariable->GetName(), pName ) )
		{
			pMessages->Report( ERROR_SEVERITY_ERROR, &context, "Variable '%s' already exists.", pName );
			return ZOL_STEP_FAILED;
		}
	}
	if ( !bCommit )
	{
		pMessages->Report( ERROR_SEVERITY_INFO, &context, "Variable '%s' of type '%s' will be added.", pName, typeText.Get() );
		return ZOL_STEP_DONE;
	}
	CZolDoc *pDoc = OpenRealDocument( plan, m_Link.m_pAsset );
	if ( !pDoc )
	{
		pMessages->Report( ERROR_SEVERITY_ERROR, &context, "Failed to open document to add variable!" );
		return ZOL_STEP_FAILED;
	}
	// The unit stays open for the conversions of this document; its next edit closes it.
	CUtlString description;
	description.Format( "Add Variable %s and convert usage.", pName );
	pDoc->BeginEdit( description.Get(), true );
	CZolVariableNode *pVariable = pDoc->GetRoot()->AddVariableNode();
	pVariable->SetName( pName );
	pVariable->SetValueType( plan.GetVariableType() );
	KeyValues3 *pRootTable = pDoc->GetRoot()->GetKV3ForModify();
	if ( !pRootTable->GetMemberBool( "m_bEnableNamedValues", false ) )
		pRootTable->SetMemberBool( "m_bEnableNamedValues", true );
	pMessages->Report( ERROR_SEVERITY_INFO, &context, "Added variable '%s' of type '%s'.", pName, typeText.Get() );
	return ZOL_STEP_DONE;
}

int CCompleteModifications::Run( bool bCommit, CZolVariableConversionPlan &plan, CErrorMessageList * )
{
	if ( !bCommit )
		return ZOL_STEP_DONE;
	CZolDoc *pDoc = OpenRealDocument( plan, m_Link.m_pAsset );
	if ( !pDoc )
		return ZOL_STEP_NOT_APPLICABLE;
	pDoc->RebuildAttributeLabels();
	pDoc->SendEvent( ZolEvent_FunctionListChanged_t() );
	return ZOL_STEP_DONE;
}

//-----------------------------------------------------------------------------
// Input fields
//-----------------------------------------------------------------------------

int CConvertFunctionNodeKeysBase::Run( bool bCommit, CZolVariableConversionPlan &plan, CErrorMessageList *pMessages )
{
	const CZolNodeLinkContext context = MakeZolNodeLinkContext( m_Link );
	const CZolDoc *pCopy = WorkingCopy( plan, m_Link.m_pAsset );
	const CBaseZolNode *pCopyNode = pCopy ? pCopy->ResolveElementRef( { m_Link.m_nType, m_Link.m_nIndex } ) : nullptr;
	if ( !pCopyNode )
		return ZOL_STEP_NOT_APPLICABLE;
	const CGameDataClass *pClass = pCopyNode->GetFGDClass();
	const CGameDataVariable *pFieldVariable = pClass ? pClass->FindVariable( m_Field.Get() ) : nullptr;
	const char *pFriendly = pFieldVariable ? pFieldVariable->m_LongName.Get() : "";
	const KeyValues3 *pOld = pCopyNode->GetReadKV3()->FindMember( m_Field.Get() );
	KeyValues3 newValue;
	const int nResult = ConvertKeys( plan.GetControlPoint(), plan.GetVariableName().Get(), plan.GetVariableType(), pOld, &newValue, pMessages );
	if ( nResult == ZOL_STEP_FAILED )
	{
		pMessages->Report( ERROR_SEVERITY_ERROR, &context, "Failed to convert field '%s'.", m_Field.Get() );
		return ZOL_STEP_FAILED;
	}
	if ( nResult == ZOL_STEP_NOT_APPLICABLE )
		return ZOL_STEP_NOT_APPLICABLE;
	if ( !bCommit )
	{
		pMessages->Report( ERROR_SEVERITY_INFO, &context, "'%s' (%s) will be converted.", pFriendly, m_Field.Get() );
		return ZOL_STEP_DONE;
	}
	CZolDoc *pDoc = OpenRealDocument( plan, m_Link.m_pAsset );
	CBaseZolNode *pNode = pDoc ? pDoc->ResolveElementRef( { m_Link.m_nType, m_Link.m_nIndex } ) : nullptr;
	if ( !pNode )
	{
		pMessages->Report( ERROR_SEVERITY_ERROR, &context, "Failed to open document to modify node" );
		return ZOL_STEP_FAILED;
	}
	if ( V_strcmp( pNode->GetClassName(), pCopyNode->GetClassName() ) )
	{
		pMessages->Report( ERROR_SEVERITY_ERROR, &context, "INTERNAL ERROR. Failed to correlate temporary node with real node" );
		return ZOL_STEP_FAILED;
	}
	KeyValues3 *pMember = pNode->GetKV3ForModify()->FindOrCreateMember( m_Field.Get() );
	const CUtlString before = ValueText( pMember );
	*pMember = static_cast<KeyValues3 &&>( newValue );
	CUtlString linkText;
	ErrorContextValueText( m_Link, &linkText );
	Log_Msg( LOG_GENERAL, "====\nLink: %s\nBefore: %s\nAfter: %s\n", linkText.Get(), before.Get(), ValueText( pMember ).Get() );
	pMessages->Report( ERROR_SEVERITY_INFO, &context, "'%s' (%s) converted successfully.", pFriendly, m_Field.Get() );
	return ZOL_STEP_DONE;
}

int CConvertCPRead_FloatInput::ConvertKeys( int nControlPoint, const char *pVariable, const CPulseValueFullType &type, const KeyValues3 *pOld, KeyValues3 *pNew,
	CErrorMessageList *pMessages )
{
	return ConvertInputRead<CParticleFloatInput>( pOld, pNew, pMessages, nControlPoint, PF_TYPE_CONTROL_POINT_COMPONENT, [ & ]( CParticleFloatInput &input ) {
		if ( !DoesZolVariableTypeFit( PVAL_FLOAT, type.GetBaseType() ) )
			return false;
		input.m_nType = PF_TYPE_NAMED_VALUE;
		input.m_NamedValue.SetName( pVariable );
		return true;
	} );
}

int CConvertCPRead_VecInput::ConvertKeys( int nControlPoint, const char *pVariable, const CPulseValueFullType &type, const KeyValues3 *pOld, KeyValues3 *pNew,
	CErrorMessageList *pMessages )
{
	return ConvertInputRead<CParticleVecInput>( pOld, pNew, pMessages, nControlPoint, PVEC_TYPE_CP_VALUE, [ & ]( CParticleVecInput &input ) {
		if ( !DoesZolVariableTypeFit( PVAL_VEC3, type.GetBaseType() ) )
			return false;
		input.m_nType = PVEC_TYPE_NAMED_VALUE;
		input.m_NamedValue.SetName( pVariable );
		input.m_bFollowNamedValue = true;
		return true;
	} );
}

int CConvertCPRead_TransformInput::ConvertKeys( int nControlPoint, const char *pVariable, const CPulseValueFullType &type, const KeyValues3 *pOld, KeyValues3 *pNew,
	CErrorMessageList *pMessages )
{
	return ConvertInputRead<CParticleTransformInput>( pOld, pNew, pMessages, nControlPoint, PT_TYPE_CONTROL_POINT, [ & ]( CParticleTransformInput &input ) {
		if ( !DoesZolVariableTypeFit( PVAL_TRANSFORM, type.GetBaseType() ) )
			return false;
		input.m_nType = PT_TYPE_NAMED_VALUE;
		input.m_NamedValue.SetName( pVariable );
		input.m_bFollowNamedValue = true;
		return true;
	} );
}

int CConvertCPRead_ModelInput::ConvertKeys( int nControlPoint, const char *pVariable, const CPulseValueFullType &type, const KeyValues3 *pOld, KeyValues3 *pNew,
	CErrorMessageList *pMessages )
{
	return ConvertInputRead<CParticleModelInput>( pOld, pNew, pMessages, nControlPoint, PM_TYPE_CONTROL_POINT, [ & ]( CParticleModelInput &input ) {
		if ( type.GetBaseType() == PVAL_PARTICLE_EHANDLE )
			input.m_nType = PM_TYPE_NAMED_VALUE_EHANDLE;
		else if ( type.GetBaseType() == PVAL_RESOURCE || !type.IsValid() )
			input.m_nType = PM_TYPE_NAMED_VALUE_MODEL;
		else
		{
			pMessages->Report( ERROR_SEVERITY_ERROR, nullptr, "model input '%s' unrecognized variable type '%s'", m_Field.Get(), type.ToString().Get() );
			return false;
		}
		input.m_NamedValue.SetName( pVariable );
		return true;
	} );
}
