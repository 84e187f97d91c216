#include "zoldoc_lib/zolvariableconversion.h"

#include "core/host/iasset.h"
#include "core/particles/sim/controlpointusage.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/gamedataclass.h"
#include "tools/toolutils2/fgd/gamedatavariable.h"
#include "zoldoc_lib/izoldocumentprovider.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariableconversionsteps.h"

namespace
{
using StepFactory_t = CConvertFunctionNodeKeysBase *( * )( const ZolNodeLink_t &, const char * );

template <typename Step> CConvertFunctionNodeKeysBase *MakeStep( const ZolNodeLink_t &link, const char *pField )
{
	return new Step( link, pField );
}

// The input editors whose fields a conversion knows, by the editor's name in the class
// description.
struct ConvertibleInput_t
{
	const char *m_pEditor;
	StepFactory_t m_pfnMake;
};
constexpr ConvertibleInput_t s_ConvertibleInputs[] = {
	{ "CollectionFloatInput()", &MakeStep<CConvertCPRead_FloatInput> },
	{ "PerParticleFloatInput()", &MakeStep<CConvertCPRead_FloatInput> },
	{ "CollectionVecInput()", &MakeStep<CConvertCPRead_VecInput> },
	{ "PerParticleVecInput()", &MakeStep<CConvertCPRead_VecInput> },
	{ "TransformInput()", &MakeStep<CConvertCPRead_TransformInput> },
	{ "ModelInput()", &MakeStep<CConvertCPRead_ModelInput> },
};

StepFactory_t FindStepFactory( const CGameDataVariable &variable )
{
	if ( variable.GetType() != GDTYPE_KV3 )
		return nullptr;
	for ( const ConvertibleInput_t &input : s_ConvertibleInputs )
	{
		if ( !V_stricmp_fast( variable.m_FullType.m_Param.Get(), input.m_pEditor ) )
			return input.m_pfnMake;
	}
	return nullptr;
}

CUtlString TypeText( const CPulseValueFullType &type )
{
	return type.ToString();
}
} // namespace

ZolConversionDocument_t::ZolConversionDocument_t() = default;
ZolConversionDocument_t::~ZolConversionDocument_t() = default;

CPulseValueFullType GetConversionTypeOfUsage( const HostControlPointUsage_t &usage )
{
	switch ( usage.m_eSource )
	{
	case PARTICLE_USAGE_FLOAT_INPUT: return CPulseValueFullType( PVAL_FLOAT );
	case PARTICLE_USAGE_VEC_INPUT: return CPulseValueFullType( PVAL_VEC3 );
	case PARTICLE_USAGE_TRANSFORM_INPUT: return CPulseValueFullType( PVAL_TRANSFORM );
	case PARTICLE_USAGE_MODEL_INPUT: return CPulseValueFullType( PVAL_RESOURCE, "tmsh" );
	case PARTICLE_USAGE_RAW: break;
	}
	const int nType = GetControlPointUsageVariableType( usage.m_nUsageKind, usage.m_nComponent );
	return nType < 0 ? CPulseValueFullType() : CPulseValueFullType( PulseValueType_t( nType ) );
}

CPulseValueFullType UnifyConversionTypes( const CPulseValueFullType &a, const CPulseValueFullType &b )
{
	if ( a == b )
		return a;
	auto rank = []( const CPulseValueFullType &type ) {
		switch ( type.GetBaseType() )
		{
		case PVAL_VEC3: return 1;
		case PVAL_TRANSFORM: return 2;
		case PVAL_PARTICLE_EHANDLE: return 3;
		default: return 0;
		}
	};
	const int nA = rank( a );
	const int nB = rank( b );
	if ( !nA || !nB )
		return CPulseValueFullType();
	return nA > nB ? a : b;
}

CZolVariableConversionPlan::CZolVariableConversionPlan( IZolDocumentProvider *pDocuments, int nControlPoint )
	: m_pDocuments( pDocuments ), m_nControlPoint( nControlPoint )
{
}

CZolVariableConversionPlan::~CZolVariableConversionPlan() = default;

void CZolVariableConversionPlan::AddDocument( IAsset *pAsset )
{
	if ( !pAsset || FindDocument( pAsset ) )
		return;
	auto pRecord = std::make_unique<ZolConversionDocument_t>();
	pRecord->m_pAsset = pAsset;
	pRecord->m_AssetPath = pAsset->GetResourceName();
	m_Documents.push_back( std::move( pRecord ) );
}

ZolConversionDocument_t *CZolVariableConversionPlan::FindDocument( IAsset *pAsset ) const
{
	for ( const std::unique_ptr<ZolConversionDocument_t> &pRecord : m_Documents )
	{
		if ( pRecord->m_pAsset == pAsset )
			return pRecord.get();
	}
	return nullptr;
}

int CZolVariableConversionPlan::GetStepCount() const
{
	int nCount = 0;
	for ( const std::unique_ptr<ZolConversionDocument_t> &pRecord : m_Documents )
		nCount += int( pRecord->m_Steps.size() );
	return nCount;
}

//-----------------------------------------------------------------------------
// Stage one
//-----------------------------------------------------------------------------

void CZolVariableConversionPlan::BuildActionList()
{
	m_BuildMessages.Clear();
	for ( std::unique_ptr<ZolConversionDocument_t> &pRecord : m_Documents )
	{
		pRecord->m_Steps.clear();
		pRecord->m_pOpenDocument = m_pDocuments->FindOpenDocument( pRecord->m_pAsset );
	}
	for ( std::unique_ptr<ZolConversionDocument_t> &pRecord : m_Documents )
	{
		pRecord->m_pWorkingCopy = std::make_unique<CZolDoc>( false );
		if ( pRecord->m_pOpenDocument )
		{
			// A snapshot of the open document: its unsaved edits are what converts.
			pRecord->m_pWorkingCopy.reset( static_cast<CZolDoc *>( pRecord->m_pOpenDocument->CreateUndoState() ) );
			continue;
		}
		pRecord->m_pWorkingCopy->SetKeepsUnknownFunctions( true );
		CUtlString error;
		if ( !pRecord->m_pWorkingCopy->LoadFromFile( pRecord->m_pAsset->GetAbsolutePath(), "", &error ) )
		{
			const CZolNodeLinkContext context = MakeZolNodeLinkContext( { pRecord->m_pAsset, 9, -1 } );
			m_BuildMessages.Report( ERROR_SEVERITY_ERROR, &context, "File load error on '%s': %s", pRecord->m_AssetPath.Get(), error.Get() );
		}
	}
	m_VariableType.Clear();
	for ( std::unique_ptr<ZolConversionDocument_t> &pRecord : m_Documents )
		BuildDocument( *pRecord );
	for ( std::unique_ptr<ZolConversionDocument_t> &pRecord : m_Documents )
	{
		if ( pRecord->m_Steps.empty() )
			continue;
		const ZolNodeLink_t link{ pRecord->m_pAsset, 9, -1 };
		pRecord->m_Steps.insert( pRecord->m_Steps.begin(), std::make_unique<CCreateUndoForDocumentAndAddVariable>( link ) );
		pRecord->m_Steps.push_back( std::make_unique<CCompleteModifications>( link ) );
	}
}

void CZolVariableConversionPlan::BuildDocument( ZolConversionDocument_t &record )
{
	const CZolDoc *pDoc = record.m_pWorkingCopy.get();
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	if ( !pDoc || !pDoc->GetRoot() || !pMgr )
		return;
	CUtlVector<HostControlPointUsage_t> usage;
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		for ( int i = 0; i < pDoc->GetRoot()->GetNodeCount( eType ); ++i )
		{
			const CBaseZolNode *pNode = pDoc->GetRoot()->GetNode( eType, i );
			const CZolNodeLinkContext context = MakeZolNodeLinkContext( { record.m_pAsset, nType, i } );
			pMgr->GetFunctionControlPointUsage( pNode->GetReadKV3(), &usage );
			bool bRead = false;
			bool bWrite = false;
			for ( const HostControlPointUsage_t &use : usage )
			{
				if ( use.m_ID.m_nToken != 0 || use.m_ID.m_nNumber != m_nControlPoint )
					continue;
				const bool bUseWrites = ( use.m_nAccess & ( CONTROL_POINT_ACCESS_WRITE | CONTROL_POINT_ACCESS_WRITE_SPECIAL ) ) != 0;
				bRead |= ( use.m_nAccess & CONTROL_POINT_ACCESS_READ ) != 0;
				bWrite |= bUseWrites;
				// A write isn't converted, so it asks for no type.
				if ( bUseWrites && !( use.m_nAccess & CONTROL_POINT_ACCESS_READ ) )
					continue;
				const CPulseValueFullType type = GetConversionTypeOfUsage( use );
				if ( !type.IsValid() )
				{
					m_BuildMessages.Report( ERROR_SEVERITY_ERROR, &context, "Unknown access type for CP index %d, type %d", m_nControlPoint, use.m_nUsageKind );
					continue;
				}
				if ( !m_VariableType.IsValid() )
				{
					m_VariableType = type;
					continue;
				}
				const CPulseValueFullType unified = UnifyConversionTypes( type, m_VariableType );
				if ( !unified.IsValid() )
					m_BuildMessages.Report( ERROR_SEVERITY_ERROR, &context, "Access type cannot be unified! CP index %d is type %s, prior type was %s", m_nControlPoint,
						TypeText( type ).Get(), TypeText( m_VariableType ).Get() );
				else
					m_VariableType = unified;
			}
			if ( bWrite )
				m_BuildMessages.Report( ERROR_SEVERITY_ERROR, &context, "Don't know how to convert a write yet" );
			if ( bRead )
				FindSteps( record, nType, i );
		}
	}
}

void CZolVariableConversionPlan::FindSteps( ZolConversionDocument_t &record, int nType, int nIndex )
{
	const CBaseZolNode *pNode = record.m_pWorkingCopy->GetRoot()->GetNode( ParticleFunctionType_t( nType ), nIndex );
	const CGameDataClass *pClass = pNode->GetFGDClass();
	const ZolNodeLink_t link{ record.m_pAsset, nType, nIndex };
	bool bFound = false;
	for ( int i = 0; pClass && i < pClass->m_Variables.Count(); ++i )
	{
		const CGameDataVariable *pVariable = pClass->m_Variables[ i ];
		StepFactory_t pfnMake = FindStepFactory( *pVariable );
		if ( !pfnMake )
			continue;
		std::unique_ptr<CDocumentModifyStepBase> pStep( pfnMake( link, pVariable->m_Name.Get() ) );
		// A trial against the working copy: a field that doesn't read the point drops out;
		// one that fails stays, and says why in the dry run.
		CErrorMessageList trial;
		if ( pStep->Run( false, *this, &trial ) == ZOL_STEP_NOT_APPLICABLE )
			continue;
		record.m_Steps.push_back( std::move( pStep ) );
		bFound = true;
	}
	if ( !bFound )
	{
		const CZolNodeLinkContext context = MakeZolNodeLinkContext( link );
		m_BuildMessages.Report( ERROR_SEVERITY_ERROR, &context,
			"Didn't find convert-able inputs, but function reported a CP read? This probably requires a raw CP conversion of '%s' in code.", pNode->GetClassName() );
	}
}

//-----------------------------------------------------------------------------
// Stages two and three
//-----------------------------------------------------------------------------

void CZolVariableConversionPlan::RunSteps( bool bCommit, CErrorMessageList *pMessages )
{
	for ( std::unique_ptr<ZolConversionDocument_t> &pRecord : m_Documents )
	{
		for ( std::unique_ptr<CDocumentModifyStepBase> &pStep : pRecord->m_Steps )
			pStep->Run( bCommit, *this, pMessages );
	}
}

void CZolVariableConversionPlan::DryRun()
{
	m_DryRunMessages.Clear();
	RunSteps( false, &m_DryRunMessages );
}

bool CZolVariableConversionPlan::Apply()
{
	if ( m_bApplied )
		return false;
	m_bApplied = true;
	RunSteps( true, &m_ModifyMessages );
	return true;
}
