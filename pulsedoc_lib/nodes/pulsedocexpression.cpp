#include "pulsedoc_lib/nodes/pulsedocexpression.h"

#include <cstring>
#include <strings.h>

#include "mathlib/extended/genericexpr.h"
#include "mathlib/extended/genericexprpart.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsenodedescriptions.h"
#include "pulsedoc_lib/nodes/pulsedocexprparts.h"
#include "pulsedoc_lib/nodes/pulsedocgeneric.h"
#include "tools/toolutils2/fgd/gamedata.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Value_Expression, "ValueExpression", "Expression", "A value written as an expression: a + b * 2, $input > 3, ...",
							PULSE_NODE_CATEGORY_VALUE, false )

namespace
{
const CPulseValueFullType s_Any( PVAL_UNKNOWN );

CPulseDoc_Value_BaseExprOpBinary *MakeBinary( GenericExprBinaryOp_t eOp )
{
	switch ( eOp )
	{
	case BinMul: return new CPulseDoc_Value_ExprMul;
	case BinDiv: return new CPulseDoc_Value_ExprDiv;
	case BinMod: return new CPulseDoc_Value_ExprMod;
	case BinAdd: return new CPulseDoc_Value_ExprAdd;
	case BinSub: return new CPulseDoc_Value_ExprSub;
	case BinLt: return new CPulseDoc_Value_ExprLess;
	case BinGt: return new CPulseDoc_Value_ExprGreater;
	case BinLtE: return new CPulseDoc_Value_ExprLessEq;
	case BinGtE: return new CPulseDoc_Value_ExprGreaterEq;
	case BinEq: return new CPulseDoc_Value_ExprEqual;
	case BinNe: return new CPulseDoc_Value_ExprNotEqual;
	case BinLogAnd: return new CPulseDoc_Value_ExprAnd;
	case BinLogOr: return new CPulseDoc_Value_ExprOr;
	default: return nullptr;
	}
}

// "PVAL_INT, PVAL_STRING" or "(no args)".
CUtlString TypeList( const std::vector<CPulseValueFullType> &types )
{
	if ( types.empty() )
		return CUtlString( "(no args)" );
	CUtlString text;
	for ( size_t i = 0; i < types.size(); ++i )
	{
		const char *pName = PulseValueType_GetName( types[ i ].GetBaseType() );
		text.AppendFormat( "%s%s", i ? ", " : "", pName ? pName : "?" );
	}
	return text;
}
// The expression as messages quote it: a long text is cut, so the reason after it is
// never lost to the length limit of a message.
CUtlString QuotedForMessage( const CUtlString &text )
{
	constexpr size_t MAX_QUOTED = 200;
	if ( text.Length() <= MAX_QUOTED )
		return text;
	CUtlString quoted;
	quoted.Format( "%.*s...", int( MAX_QUOTED ), text.Get() );
	return quoted;
}
} // namespace

CPulseDoc_Value_Expression::CPulseDoc_Value_Expression()
	: m_Retval( this, "retval", s_Any, "Result" ), m_InternalInparam( this, "m_InternalInparam", s_Any )
{
	AddPort( &m_Retval );
}

CPulseDoc_Value_Expression::~CPulseDoc_Value_Expression() = default;

void CPulseDoc_Value_Expression::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_ExprText.Clear();
	reader.TakeString( "m_ExprText", &m_ExprText );
	// Said again by the build; what the file held is only what it was then.
	reader.Take( "m_BadParseExprString" );
	m_PortVariableData.SetToNull();
	if ( const KeyValues3 *pPorts = reader.TakeTable( "m_ExprPortVariables" ) )
		m_PortVariableData.CopyFrom( *pPorts );
	for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_PortVariables )
		RemovePort( pPort.get() );
	m_PortVariables.clear();
	m_Parts.clear();
	m_BadParseExprString.Clear();
}

void CPulseDoc_Value_Expression::SaveOwnKeys( KeyValues3 *pTable ) const
{
	pTable->SetMemberString( "m_ExprText", m_ExprText.Get() );
	if ( !m_BadParseExprString.IsEmpty() )
		pTable->SetMemberString( "m_BadParseExprString", m_BadParseExprString.Get() );
	KeyValues3 ports;
	ports.CopyFrom( m_PortVariableData );
	for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_PortVariables )
	{
		if ( !ports.IsTable() )
			ports.SetToEmptyTable();
		pPort->SaveKV3( ports.FindOrCreateMember( pPort->GetName() ) );
	}
	if ( ports.IsTable() && ports.GetMemberCount() > 0 )
		pTable->FindOrCreateMember( "m_ExprPortVariables" )->CopyFrom( ports );
}

void CPulseDoc_Value_Expression::OnDocumentLoaded( CPulseDocMessages * )
{
	Build();
}

CBasePulseInparamPort *CPulseDoc_Value_Expression::FindOrAddPortVariable( const char *pName )
{
	for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_PortVariables )
	{
		if ( strcmp( pPort->GetName(), pName ) == 0 )
			return pPort.get();
	}
	auto pPort = std::make_unique<CBasePulseInparamPort>( this, pName, s_Any );
	CPulseDocLoadContext context;
	CPulseDocMessages ignored;
	context.m_pDoc = m_pDoc;
	context.m_pMessages = &ignored;
	const KeyValues3 *pData = m_PortVariableData.IsTable() ? m_PortVariableData.FindMember( pName ) : nullptr;
	pPort->LoadKV3( pData, &context );
	if ( pData )
		m_PortVariableData.RemoveMember( pName );
	AddPort( pPort.get() );
	m_PortVariables.push_back( std::move( pPort ) );
	return m_PortVariables.back().get();
}

bool CPulseDoc_Value_Expression::Build()
{
	m_Parts.clear();
	m_BadParseExprString.Clear();
	m_InternalInparam.SetLiteral( KeyValues3() );
	m_InternalInparam.SetDeclaredType( s_Any );
	// Port variables the new text no longer names keep their data for the save.
	for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_PortVariables )
	{
		if ( !m_PortVariableData.IsTable() )
			m_PortVariableData.SetToEmptyTable();
		pPort->SaveKV3( m_PortVariableData.FindOrCreateMember( pPort->GetName() ) );
		RemovePort( pPort.get() );
	}
	m_PortVariables.clear();
	if ( m_ExprText.IsEmpty() )
	{
		m_BadParseExprString.Set( "No expression!" );
		return false;
	}
	CGenericExpr expr;
	CUtlString error;
	if ( !expr.Parse( m_ExprText.Get(), &error, GENERIC_EXPR_ALLOW_DOLLAR_NAMES ) || !expr.HasTree() )
	{
		// The parser's first report, where it points.
		size_t nLineEnd = error.Storage().find( '\n' );
		if ( nLineEnd != std::string::npos )
			error.Storage().resize( nLineEnd );
		if ( error.IsEmpty() )
			m_BadParseExprString.Set( "No expression!" );
		else if ( expr.GetErrorOffset() >= 0 )
			m_BadParseExprString.Format( "%s (at character %d)", error.Get(), expr.GetErrorOffset() + 1 );
		else
			m_BadParseExprString = error;
		return false;
	}
	// Names first: each is an input of this node ("$name") or a variable of the graph.
	for ( int i = 0; i < expr.GetVariableCount(); ++i )
	{
		const char *pName = expr.GetVariableName( i );
		if ( pName[ 0 ] == '$' )
			FindOrAddPortVariable( pName );
		else if ( !m_pDoc || !m_pDoc->FindValueDefinitionByName( pName ) )
		{
			m_BadParseExprString.Format( "No graph variable named '%s'", pName );
			return false;
		}
	}
	return BuildInto( expr.GetRoot(), &m_InternalInparam );
}

bool CPulseDoc_Value_Expression::BuildInto( const CGenericExprPart *pPart, CBasePulseInparamPort *pTarget )
{
	auto adopt = [ this, pTarget ]( CPulseDoc_Value_BaseExprPart *pNode ) {
		pNode->AttachAsPart( this );
		m_Parts.emplace_back( pNode );
		pTarget->SetInternalSource( pNode, &pNode->GetRetval() );
		return pNode;
	};
	auto literal = [ pTarget ]( PulseValueType_t eType, const KeyValues3 &value ) {
		pTarget->SetLiteral( value );
		if ( pTarget->GetTypeOfKind( CBasePulseInparamPort::TYPE_DECLARED ).GetBaseType() == PVAL_UNKNOWN )
			pTarget->SetDeclaredType( CPulseValueFullType( eType ) );
		return true;
	};
	KeyValues3 value;
	switch ( pPart->GetKind() )
	{
	case GENERIC_EXPR_UNARY:
	{
		auto *pUnary = static_cast<const CGenericExpr_Unary *>( pPart );
		CPulseDoc_Value_BaseExprOpUnary *pNode = nullptr;
		if ( pUnary->m_eOp == UnNegate )
			pNode = new CPulseDoc_Value_ExprNegate;
		else if ( pUnary->m_eOp == UnNot )
			pNode = new CPulseDoc_Value_ExprNot;
		else
		{
			m_BadParseExprString.Format( "Visit_Unary Internal Error: %d", int( pUnary->m_eOp ) );
			return false;
		}
		adopt( pNode );
		return BuildInto( pUnary->m_pOperand, &pNode->GetArg() );
	}
	case GENERIC_EXPR_BINARY:
	{
		auto *pBinary = static_cast<const CGenericExpr_Binary *>( pPart );
		CPulseDoc_Value_BaseExprOpBinary *pNode = MakeBinary( pBinary->m_eOp );
		if ( !pNode )
		{
			m_BadParseExprString.Format( "Visit_Binary Internal Error: %d", int( pBinary->m_eOp ) );
			return false;
		}
		adopt( pNode );
		return BuildInto( pBinary->m_pLeft, &pNode->GetFirst() ) && BuildInto( pBinary->m_pRight, &pNode->GetSecond() );
	}
	case GENERIC_EXPR_TERNARY_CONDITIONAL:
	{
		auto *pTernary = static_cast<const CGenericExpr_TernaryConditional *>( pPart );
		auto *pNode = new CPulseDoc_Value_ExprTernaryConditional;
		adopt( pNode );
		if ( !BuildInto( pTernary->m_pCondition, &pNode->GetCondition() ) )
			return false;
		CPulseValueFullType condition = PulseDoc_GetInputValueType( pNode->GetCondition() );
		if ( condition.GetBaseType() != PVAL_UNKNOWN && condition.GetBaseType() != PVAL_BOOL &&
			 !PulseValue_CanConvert( condition, CPulseValueFullType( PVAL_BOOL ) ) )
		{
			m_BadParseExprString.Set( "Expected bool-convertible condition for ternary ?: expression" );
			return false;
		}
		return BuildInto( pTernary->m_pTrue, &pNode->GetTrueVal() ) && BuildInto( pTernary->m_pFalse, &pNode->GetFalseVal() );
	}
	case GENERIC_EXPR_STRING_LITERAL:
		value.SetString( static_cast<const CGenericExpr_StringLiteral *>( pPart )->m_Text.Get() );
		return literal( PVAL_STRING, value );
	case GENERIC_EXPR_FLOAT_LITERAL:
		value.SetDouble( static_cast<const CGenericExpr_FloatLiteral *>( pPart )->m_flValue );
		return literal( PVAL_FLOAT, value );
	case GENERIC_EXPR_INT_LITERAL:
		value.SetInt( static_cast<const CGenericExpr_IntLiteral *>( pPart )->m_nValue );
		return literal( PVAL_INT, value );
	case GENERIC_EXPR_BOOL_LITERAL:
		value.SetBool( static_cast<const CGenericExpr_BoolLiteral *>( pPart )->m_bValue );
		return literal( PVAL_BOOL, value );
	case GENERIC_EXPR_VARIABLE_REFERENCE:
	{
		const char *pName = static_cast<const CGenericExpr_VariableReference *>( pPart )->m_Name.Get();
		if ( pName[ 0 ] == '$' )
		{
			pTarget->SetMirroredPort( FindOrAddPortVariable( pName ) );
			return true;
		}
		const CPulseDoc_BaseValueDefinition *pDefinition = m_pDoc ? m_pDoc->FindValueDefinitionByName( pName ) : nullptr;
		if ( !pDefinition )
		{
			m_BadParseExprString.Format( "No graph variable named '%s'", pName );
			return false;
		}
		if ( pDefinition->GetNodeID() < 0 )
		{
			m_BadParseExprString.Format( "Graph variable '%s' has no node id to refer to", pName );
			return false;
		}
		pTarget->SetVarReference( pDefinition->GetNodeID() );
		return true;
	}
	case GENERIC_EXPR_PROPERTY:
	{
		auto *pProperty = static_cast<const CGenericExpr_Property *>( pPart );
		auto *pNode = new CPulseDoc_Value_ExprGetProperty;
		adopt( pNode );
		pNode->m_PropertyName = pProperty->m_Name;
		if ( !BuildInto( pProperty->m_pObject, &pNode->GetObject() ) )
			return false;
		PulseValueType_t eObject = PulseDoc_GetInputValueType( pNode->GetObject() ).GetBaseType();
		if ( eObject != PVAL_UNKNOWN && CPulseDoc_Value_ExprGetProperty::FindComponent( eObject, pProperty->m_Name.Get() ) < 0 )
		{
			m_BadParseExprString.Format( "Unrecognized property '%s'", pProperty->m_Name.Get() );
			return false;
		}
		return true;
	}
	case GENERIC_EXPR_FUNCTION_CALL: return BuildFunctionCall( static_cast<const CGenericExpr_FunctionCall *>( pPart ), pTarget );
	}
	m_BadParseExprString.Format( "Unknown part of kind %d", int( pPart->GetKind() ) );
	return false;
}

bool CPulseDoc_Value_Expression::BuildFunctionCall( const CGenericExpr_FunctionCall *pCall, CBasePulseInparamPort *pTarget )
{
	// The arguments first, into holders, for their types.
	std::vector<std::unique_ptr<CBasePulseInparamPort>> holders;
	std::vector<CPulseValueFullType> types;
	for ( int i = 0; i < pCall->GetArgumentCount(); ++i )
	{
		holders.push_back( std::make_unique<CBasePulseInparamPort>( this, "arg", s_Any ) );
		if ( !BuildInto( pCall->GetArgument( i ), holders.back().get() ) )
			return false;
		types.push_back( PulseDoc_GetInputValueType( *holders.back() ) );
	}
	// Overload resolution: library functions of the name with one result; the lowest
	// score wins, the earlier on a tie.
	const CPulseNodeDescriptions &descriptions = m_pDoc ? m_pDoc->GetDescriptions() : CPulseNodeDescriptions::GetRuntimeDescriptions();
	const CGameData &data = descriptions.GetGameData();
	const PulseGenericShape_t *pBest = nullptr;
	int nBestScore = 0;
	bool bNamed = false;
	for ( int nClass = 0; nClass < data.GetClassCount(); ++nClass )
	{
		const char *pClassName = data.GetClass( nClass )->GetName();
		const char *pSeparator = strstr( pClassName, "::" );
		const char *pMethod = pSeparator ? pSeparator + 2 : pClassName;
		if ( strcasecmp( pMethod, pCall->m_Name.Get() ) != 0 && strcasecmp( pClassName, pCall->m_Name.Get() ) != 0 )
			continue;
		const PulseGenericShape_t *pShape = descriptions.FindShape( pClassName );
		if ( !pShape || !pShape->m_bLibraryMethod || pShape->m_Outparams.size() != 1 )
			continue;
		bNamed = true;
		if ( pShape->m_Inparams.size() != types.size() )
			continue;
		int nScore = 0;
		bool bFits = true;
		for ( size_t i = 0; i < types.size() && bFits; ++i )
		{
			const CPulseValueFullType &argument = types[ i ], &parameter = pShape->m_Inparams[ i ].m_Type;
			if ( argument == parameter || argument.GetBaseType() == PVAL_UNKNOWN )
				continue;
			if ( !PulseValue_CanConvert( argument, parameter ) )
				bFits = false;
			else if ( argument.GetBaseType() == PVAL_STRING || parameter.GetBaseType() == PVAL_STRING )
				nScore += 100;
			else if ( argument.GetBaseType() == PVAL_FLOAT || parameter.GetBaseType() == PVAL_FLOAT )
				nScore += 10;
			else
				nScore += 1;
		}
		if ( bFits && ( !pBest || nScore < nBestScore ) )
		{
			pBest = pShape;
			nBestScore = nScore;
		}
	}
	if ( !bNamed )
	{
		m_BadParseExprString.Format( "Unrecognized function '%s'", pCall->m_Name.Get() );
		return false;
	}
	if ( !pBest )
	{
		m_BadParseExprString.Format( "No version of '%s' accepts provided argument types %s", pCall->m_Name.Get(), TypeList( types ).Get() );
		return false;
	}
	auto *pNode = new CPulseDoc_Value_Generic;
	pNode->AttachAsPart( this );
	pNode->SetName( pCall->m_Name.Get() );
	pNode->SetFunction( pBest->m_ClassName.Get(), descriptions );
	m_Parts.emplace_back( pNode );
	std::vector<CBasePulsePort *> ports;
	pNode->GetPorts( &ports );
	size_t nArg = 0;
	CBasePulseOutparamPort *pResult = nullptr;
	for ( CBasePulsePort *pPort : ports )
	{
		if ( pPort->AsInparam() && nArg < holders.size() )
			pPort->AsInparam()->CopySourceFrom( *holders[ nArg++ ] );
		else if ( pPort->AsOutparam() && !pResult )
			pResult = pPort->AsOutparam();
	}
	pTarget->SetInternalSource( pNode, pResult );
	return true;
}

bool CPulseDoc_Value_Expression::SetExpressionText( const char *pText )
{
	m_ExprText.Set( pText );
	if ( !Build() )
		return false;
	// Canonical text: the parts written back, which must read as the same parts.
	CUtlString rendered = RenderText();
	m_ExprText = rendered;
	if ( !Build() )
	{
		m_ExprText.Set( pText );
		Build();
		return false;
	}
	return true;
}

CUtlString CPulseDoc_Value_Expression::RenderText() const
{
	if ( !m_BadParseExprString.IsEmpty() )
		return m_ExprText;
	CUtlString text;
	PulseDoc_RenderInputText( m_InternalInparam, &text );
	// The root needs no parentheses of its own.
	if ( text.Length() >= 4 && text.Storage().compare( 0, 2, "( " ) == 0 && text.Storage().compare( text.Length() - 2, 2, " )" ) == 0 &&
		 dynamic_cast<const CPulseDoc_Value_BaseExprPart *>( m_InternalInparam.GetInternalSourceNode() ) )
		text.Set( text.Get() + 2, text.Length() - 4 );
	return text;
}

CUtlString CPulseDoc_Value_Expression::GetTitle() const
{
	CUtlString title;
	title.Format( "Expression: %s", m_ExprText.Get() );
	return title;
}

void CPulseDoc_Value_Expression::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDoc_BaseValue::Validate( pMessages );
	if ( !m_BadParseExprString.IsEmpty() )
		pMessages->Error( this, "Expression '%s': %s", QuotedForMessage( m_ExprText ).Get(), m_BadParseExprString.Get() );
}

CPulseValueFullType CPulseDoc_Value_Expression::GetResultType() const
{
	return PulseDoc_GetInputValueType( m_InternalInparam );
}

void CPulseDoc_Value_Expression::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	if ( !m_BadParseExprString.IsEmpty() )
	{
		pChunk->GetContext()->ReportError( this, "Expression '%s': %s", QuotedForMessage( m_ExprText ).Get(), m_BadParseExprString.Get() );
		return;
	}
	uint16_t nRegister = m_InternalInparam.CompileToRegister( pPoint, pChunk );
	if ( nRegister != PULSE_INVALID_REGISTER )
		pChunk->RecordOutparam( &m_Retval, nRegister );
}
