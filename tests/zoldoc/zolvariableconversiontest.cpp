// Converting the reads of a control point into reads of a variable across a family: the
// type the uses unify to, the messages of each stage, what Apply does to the documents an
// editor has open (and that it writes nothing), the report with its links, and the tables
// behind it.

#include <gtest/gtest.h>

#include <string>

#include "core/host/iasset.h"
#include "core/particles/sim/controlpointusage.h"
#include "tests/zoldoc/zolmaintenancetestsupport.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnodelink.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariableconversion.h"
#include "zoldoc_lib/zolvariableconversionreport.h"
#include "zoldoc_lib/zolvariableconversionsteps.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
const std::string VEC_READ = "{ _class = \"C_INIT_InitVec\" m_InputValue = { m_nType = \"PVEC_TYPE_CP_VALUE\" m_nControlPoint = 3 } }";
const std::string TRANSFORM_READ = "{ _class = \"C_INIT_RingWave\" m_TransformInput = { m_nType = \"PT_TYPE_CONTROL_POINT\" m_nControlPoint = 3 } }";
const std::string FLOAT_READ = "{ _class = \"C_INIT_InitFloat\" m_InputValue = { m_nType = \"PF_TYPE_CONTROL_POINT_COMPONENT\" m_nControlPoint = 3 } }";
const std::string SPEED_READ = "{ _class = \"C_INIT_InitFloat\" m_InputValue = { m_nType = \"PF_TYPE_CONTROL_POINT_SPEED\" m_nControlPoint = 3 } }";
const std::string MODEL_READ = "{ _class = \"C_INIT_CreateOnModel\" m_modelInput = { m_nType = \"PM_TYPE_CONTROL_POINT\" m_nControlPoint = 3 } "
							   "m_transformInput = { m_nType = \"PT_TYPE_CONTROL_POINT\" m_nControlPoint = 0 } }";
const std::string WRITE = "{ _class = \"C_OP_SetSingleControlPointPosition\" m_nCP1 = 3 }";

std::string Initializers( const std::vector<std::string> &functions )
{
	std::string text = "\tm_Initializers = [\n";
	for ( const std::string &function : functions )
		text += "\t\t" + function + ",\n";
	return text + "\t]\n";
}

std::string Messages( const CErrorMessageList &list )
{
	std::string text;
	for ( const ErrorMessage_t &message : list.GetMessages() )
		text += std::to_string( message.m_nSeverity ) + " " + message.m_ContextValue.Get() + " " + message.m_Text.Get() + "\n";
	return text;
}

class ZolVariableConversion : public ZolMaintenanceFixture
{
protected:
	// The plan of control point 3 over parent p and child c.
	CZolVariableConversionPlan &Build()
	{
		m_pPlan = std::make_unique<CZolVariableConversionPlan>( &m_Editor, 3 );
		m_pPlan->AddDocument( Asset( "p" ) );
		m_pPlan->AddDocument( Asset( "c" ) );
		m_pPlan->BuildActionList();
		m_pPlan->DryRun();
		return *m_pPlan;
	}
	void WriteFamily( const std::string &parentBody, const std::string &childBody )
	{
		Write( "p", Definition( 12, parentBody + Children( { "c" } ) ) );
		Write( "c", Definition( 12, childBody ) );
		Start();
	}
	static const KeyValues3 *Field( CZolDoc *pDoc, int nType, int nIndex, const char *pField )
	{
		return pDoc->GetRoot()->GetNode( ParticleFunctionType_t( nType ), nIndex )->GetReadKV3()->FindMember( pField );
	}
	static std::string Text( const KeyValues3 *pValue )
	{
		return std::string( pValue ? pValue->GetMemberString( "m_nType" ) : "" ) + " " + ( pValue ? pValue->GetMemberString( "m_NamedValue" ) : "" ) +
			   ( pValue && pValue->GetMemberBool( "m_bFollowNamedValue", false ) ? " follow" : "" );
	}

	std::unique_ptr<CZolVariableConversionPlan> m_pPlan;
};
} // namespace

TEST_F( ZolVariableConversion, VectorAndTransformReadsBecomeOneTransformVariable )
{
	WriteFamily( Initializers( { VEC_READ } ), Initializers( { TRANSFORM_READ } ) );
	const std::string parentFile = Read( "p" );
	CZolDoc *pParent = Open( "p" ); // the parent is open in the editor, the child not
	CZolVariableConversionPlan &plan = Build();
	EXPECT_EQ( plan.GetVariableType(), CPulseValueFullType( PVAL_TRANSFORM ) );
	EXPECT_EQ( Messages( plan.GetBuildMessages() ), "" );
	EXPECT_EQ( plan.GetStepCount(), 6 );
	EXPECT_EQ( Messages( plan.GetDryRunMessages() ), "0 particles/p.tfxs:9:-1 Variable 'Placeholder' of type 'PVAL_TRANSFORM' will be added.\n"
													 "0 particles/p.tfxs:2:0 'value' (m_InputValue) will be converted.\n"
													 "0 particles/c.tfxs:9:-1 Variable 'Placeholder' of type 'PVAL_TRANSFORM' will be added.\n"
													 "0 particles/c.tfxs:2:0 'ring transform' (m_TransformInput) will be converted.\n" );
	// A dry run changes no document.
	EXPECT_FALSE( pParent->GetUndoHistory()->CanUndo() );
	EXPECT_EQ( m_Editor.GetOpenCount(), 1 );

	plan.SetVariableName( "Wind" );
	plan.DryRun();
	ASSERT_TRUE( plan.Apply() );
	EXPECT_FALSE( plan.Apply() );
	EXPECT_EQ( plan.GetModifyMessages().GetErrorCount(), 0 ) << Messages( plan.GetModifyMessages() );
	// Both documents are open in the editor now, each with its own undo unit; no file changed.
	EXPECT_EQ( m_Editor.GetOpenCount(), 2 );
	CZolDoc *pChild = m_Editor.FindOpenDocument( Asset( "c" ) );
	ASSERT_NE( pChild, nullptr );
	for ( CZolDoc *pDoc : { pParent, pChild } )
	{
		const CZolRootNode *pRoot = pDoc->GetRoot();
		ASSERT_EQ( pRoot->GetNodeCount( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ), 1 );
		const CZolVariableNode *pVariable = pRoot->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 )->AsVariableNode();
		EXPECT_STREQ( pVariable->GetName(), "Wind" );
		EXPECT_EQ( pVariable->GetValueType(), CPulseValueFullType( PVAL_TRANSFORM ) );
		EXPECT_TRUE( pRoot->GetReadKV3()->GetMemberBool( "m_bEnableNamedValues" ) );
		EXPECT_STREQ( pDoc->GetUndoHistory()->GetUndoName(), "Add Variable Wind and convert usage." );
	}
	EXPECT_EQ( Text( Field( pParent, 2, 0, "m_InputValue" ) ), "PVEC_TYPE_NAMED_VALUE Wind follow" );
	EXPECT_EQ( Text( Field( pChild, 2, 0, "m_TransformInput" ) ), "PT_TYPE_NAMED_VALUE Wind follow" );
	EXPECT_EQ( Read( "p" ), parentFile );
	bool bError = true;
	EXPECT_STREQ( GetZolConversionStatusText( plan, &bError ), "" );
	EXPECT_FALSE( bError );
}

TEST_F( ZolVariableConversion, AnAddedFloatReadCannotBeUnifiedAndTheTypeStands )
{
	WriteFamily( Initializers( { VEC_READ, FLOAT_READ } ), Initializers( { TRANSFORM_READ } ) );
	CZolVariableConversionPlan &plan = Build();
	EXPECT_EQ( plan.GetVariableType(), CPulseValueFullType( PVAL_TRANSFORM ) );
	EXPECT_EQ( Messages( plan.GetBuildMessages() ),
		"2 particles/p.tfxs:2:1 Access type cannot be unified! CP index 3 is type PVAL_FLOAT, prior type was PVAL_VEC3\n" );
	EXPECT_NE( Messages( plan.GetDryRunMessages() ).find( "2 particles/p.tfxs:2:1 Failed to convert field 'm_InputValue'." ), std::string::npos )
		<< Messages( plan.GetDryRunMessages() );
	bool bError = false;
	EXPECT_STREQ( GetZolConversionStatusText( plan, &bError ), "Errors reported, proceed with caution" );
	EXPECT_TRUE( bError );
}

TEST_F( ZolVariableConversion, AWriteOnlyUseIsNotConverted )
{
	WriteFamily( "\tm_PreEmissionOperators = [ " + WRITE + " ]\n", "" );
	CZolVariableConversionPlan &plan = Build();
	EXPECT_EQ( Messages( plan.GetBuildMessages() ), "2 particles/p.tfxs:0:0 Don't know how to convert a write yet\n" );
	EXPECT_EQ( plan.GetStepCount(), 0 );
	EXPECT_FALSE( plan.GetVariableType().IsValid() );
}

TEST_F( ZolVariableConversion, ANameThatOneFileHasFailsThereOnly )
{
	WriteFamily( Initializers( { VEC_READ } ),
		Initializers( { TRANSFORM_READ } ) + "\tm_NamedValueLocals = [ { m_Name = \"wind\" m_ValueType = \"PVAL_FLOAT\" } ]\n" );
	CZolVariableConversionPlan &plan = Build();
	plan.SetVariableName( "Wind" );
	plan.DryRun();
	EXPECT_EQ( plan.GetDryRunMessages().GetErrorCount(), 1 );
	EXPECT_NE( Messages( plan.GetDryRunMessages() ).find( "2 particles/c.tfxs:9:-1 Variable 'Wind' already exists." ), std::string::npos );
	plan.Apply();
	// The child's variable step failed; its input and the parent still converted.
	EXPECT_EQ( Messages( plan.GetModifyMessages() ), "0 particles/p.tfxs:9:-1 Added variable 'Wind' of type 'PVAL_TRANSFORM'.\n"
													 "0 particles/p.tfxs:2:0 'value' (m_InputValue) converted successfully.\n"
													 "2 particles/c.tfxs:9:-1 Variable 'Wind' already exists.\n"
													 "0 particles/c.tfxs:2:0 'ring transform' (m_TransformInput) converted successfully.\n" );
	CZolDoc *pChild = m_Editor.FindOpenDocument( Asset( "c" ) );
	ASSERT_NE( pChild, nullptr );
	EXPECT_EQ( pChild->GetRoot()->GetNodeCount( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ), 1 );
	EXPECT_EQ( Text( Field( pChild, 2, 0, "m_TransformInput" ) ), "PT_TYPE_NAMED_VALUE Wind follow" );
	bool bError = false;
	EXPECT_STREQ( GetZolConversionStatusText( plan, &bError ), "Errors reported! Check results carefully." );
}

TEST_F( ZolVariableConversion, APointNothingReadsHasNoStepsAndApplyDoesNothing )
{
	WriteFamily( Initializers( { TRANSFORM_READ } ), "" );
	m_pPlan = std::make_unique<CZolVariableConversionPlan>( &m_Editor, 7 );
	m_pPlan->AddDocument( Asset( "p" ) );
	m_pPlan->BuildActionList();
	m_pPlan->DryRun();
	EXPECT_EQ( m_pPlan->GetStepCount(), 0 );
	EXPECT_FALSE( m_pPlan->GetVariableType().IsValid() );
	EXPECT_EQ( std::string( BuildZolConversionReportHtml( *m_pPlan ).Get() ), "<b>Build Action List:</b> <br>(no messages)<br><br><b>Dry Run:</b> <br>(no messages)" );
	m_pPlan->Apply();
	EXPECT_EQ( m_Editor.GetOpenCount(), 0 );
	EXPECT_NE( std::string( BuildZolConversionReportHtml( *m_pPlan ).Get() ).find( "<b>Modify Documents:</b> <br>(no messages)" ), std::string::npos );
}

TEST_F( ZolVariableConversion, AFloatReadDoesNotFitAVectorVariable )
{
	WriteFamily( Initializers( { FLOAT_READ } ), "" );
	CZolVariableConversionPlan &plan = Build();
	EXPECT_EQ( plan.GetVariableType(), CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_EQ( plan.GetDryRunMessages().GetErrorCount(), 0 );
	plan.SetVariableType( CPulseValueFullType( PVAL_VEC3 ) );
	plan.DryRun();
	EXPECT_EQ( Messages( plan.GetDryRunMessages() ), "0 particles/p.tfxs:9:-1 Variable 'Placeholder' of type 'PVAL_VEC3' will be added.\n"
													 "2 particles/p.tfxs:2:0 Failed to convert field 'm_InputValue'.\n" );
}

TEST_F( ZolVariableConversion, AReadThroughAnotherInputTypeNeedsARawConversion )
{
	WriteFamily( Initializers( { SPEED_READ } ), "" );
	CZolVariableConversionPlan &plan = Build();
	EXPECT_EQ( Messages( plan.GetBuildMessages() ), "2 particles/p.tfxs:2:0 Didn't find convert-able inputs, but function reported a CP read? This probably "
													"requires a raw CP conversion of 'C_INIT_InitFloat' in code.\n" );
	EXPECT_EQ( plan.GetStepCount(), 0 );
}

TEST_F( ZolVariableConversion, AModelInputBecomesAModelVariable )
{
	WriteFamily( Initializers( { MODEL_READ } ), "" );
	CZolVariableConversionPlan &plan = Build();
	EXPECT_EQ( plan.GetVariableType().ToString(), CUtlString( "PVAL_RESOURCE:tmsh" ) );
	plan.Apply();
	CZolDoc *pParent = m_Editor.FindOpenDocument( Asset( "p" ) );
	ASSERT_NE( pParent, nullptr );
	EXPECT_EQ( Text( Field( pParent, 2, 0, "m_modelInput" ) ), "PM_TYPE_NAMED_VALUE_MODEL Placeholder" );
	// The model's transform reads another point and stays.
	EXPECT_EQ( Text( Field( pParent, 2, 0, "m_transformInput" ) ), "PT_TYPE_CONTROL_POINT " );
}

TEST_F( ZolVariableConversion, TheReportLinksEachMessageToItsNode )
{
	WriteFamily( Initializers( { VEC_READ } ), "\tm_PreEmissionOperators = [ " + WRITE + " ]\n" );
	CZolVariableConversionPlan &plan = Build();
	const std::string html = BuildZolConversionReportHtml( plan ).Get();
	EXPECT_NE( html.find( "<b>Build Action List:</b> <br><font color='red'>Error <a href='#particles/c.tfxs:0:0' title='particles/c.tfxs:0:0'>"
						  "c:Set Single Control Point Position</a></font>: Don&#39;t know how to convert a write yet<br>" ),
		std::string::npos )
		<< html;
	EXPECT_NE( html.find( "<font color='white'>Info <a href='#particles/p.tfxs:9:-1' title='particles/p.tfxs:9:-1'>p</a></font>: Variable &#39;Placeholder&#39;" ),
		std::string::npos )
		<< html;
	ZolNodeLink_t link;
	ASSERT_TRUE( ParseZolNodeLink( "particles/c.tfxs:0:0", &link ) );
	EXPECT_EQ( link.m_pAsset, Asset( "c" ) );
	EXPECT_EQ( link.m_nType, 0 );
	EXPECT_EQ( link.m_nIndex, 0 );
	EXPECT_FALSE( ParseZolNodeLink( "particles/c.tfxs:0", &link ) );
	EXPECT_FALSE( ParseZolNodeLink( "particles/none.tfxs:0:0", &link ) );
	EXPECT_FALSE( ParseZolNodeLink( "particles/c.tfxs:x:0", &link ) );
}

struct UnifyCase_t
{
	PulseValueType_t m_eA;
	PulseValueType_t m_eB;
	PulseValueType_t m_eResult; // PVAL_VOID: doesn't unify
};

class ZolConversionUnification : public ::testing::TestWithParam<UnifyCase_t>
{
};

TEST_P( ZolConversionUnification, TypesWidenOrRefuse )
{
	const UnifyCase_t &c = GetParam();
	const CPulseValueFullType a( c.m_eA ), b( c.m_eB );
	EXPECT_EQ( UnifyConversionTypes( a, b ).GetBaseType(), c.m_eResult );
	EXPECT_EQ( UnifyConversionTypes( b, a ).GetBaseType(), c.m_eResult );
}

INSTANTIATE_TEST_SUITE_P( Table, ZolConversionUnification,
	::testing::Values( UnifyCase_t{ PVAL_VEC3, PVAL_VEC3, PVAL_VEC3 }, UnifyCase_t{ PVAL_VEC3, PVAL_TRANSFORM, PVAL_TRANSFORM },
		UnifyCase_t{ PVAL_VEC3, PVAL_PARTICLE_EHANDLE, PVAL_PARTICLE_EHANDLE }, UnifyCase_t{ PVAL_TRANSFORM, PVAL_PARTICLE_EHANDLE, PVAL_PARTICLE_EHANDLE },
		UnifyCase_t{ PVAL_FLOAT, PVAL_FLOAT, PVAL_FLOAT }, UnifyCase_t{ PVAL_FLOAT, PVAL_VEC3, PVAL_VOID },
		UnifyCase_t{ PVAL_FLOAT, PVAL_TRANSFORM, PVAL_VOID }, UnifyCase_t{ PVAL_RESOURCE, PVAL_VEC3, PVAL_VOID } ) );

TEST( ZolConversionUsageType, InputsGiveTheirClassRawUsesTheirKind )
{
	HostControlPointUsage_t usage = HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( 1 ), CONTROL_POINT_USAGE_POSITION, CONTROL_POINT_ACCESS_READ );
	EXPECT_EQ( GetConversionTypeOfUsage( usage ).GetBaseType(), PVAL_FLOAT );
	usage.m_nComponent = 1;
	EXPECT_EQ( GetConversionTypeOfUsage( usage ).GetBaseType(), PVAL_VEC3 );
	usage.m_nUsageKind = CONTROL_POINT_USAGE_COLOR;
	EXPECT_FALSE( GetConversionTypeOfUsage( usage ).IsValid() );
	// The same kind reported by an input: the input's class decides.
	usage.m_eSource = PARTICLE_USAGE_TRANSFORM_INPUT;
	EXPECT_EQ( GetConversionTypeOfUsage( usage ).GetBaseType(), PVAL_TRANSFORM );
	usage.m_eSource = PARTICLE_USAGE_MODEL_INPUT;
	EXPECT_EQ( GetConversionTypeOfUsage( usage ).ToString(), CUtlString( "PVAL_RESOURCE:tmsh" ) );
}
