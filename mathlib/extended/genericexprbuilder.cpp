#include "mathlib/extended/genericexprbuilderstate.h"

#include <algorithm>
#include <cstdarg>

#include "core/text/strtools.h"
#include "mathlib/extended/genericexprpart.h"
#include "mathlib/extended/genericexprstringvalue.h"

static_assert( GENERIC_EXPR_UN_NOT == UnNot && GENERIC_EXPR_UN_NEGATE == UnNegate );
static_assert( GENERIC_EXPR_BIN_MUL == BinMul && GENERIC_EXPR_BIN_LOG_OR == BinLogOr && GENERIC_EXPR_BIN_EQ == BinEq );

GenericExprBuilder_s::GenericExprBuilder_s( const char *pText, size_t nLength, int nDepthLimit ) : m_pText( pText ), m_nLength( nLength ), m_nDepthLimit( nDepthLimit ) {}

GenericExprBuilder_s::~GenericExprBuilder_s()
{
	// Only parts that no other part holds are left here; each frees its own children.
	for ( auto &[ pPart, nDepth ] : m_Held )
		delete pPart;
}

void GenericExprBuilder_s::Report( int nOffset, const char *pFormat, ... )
{
	CUtlString line;
	va_list args;
	va_start( args, pFormat );
	char buffer[ 512 ];
	V_vsnprintf( buffer, sizeof( buffer ), pFormat, args );
	va_end( args );
	line.Set( buffer );
	// An empty expectation leaves a blank at the end of some forms.
	while ( line.Length() && line[ line.Length() - 1 ] == ' ' )
		line.Storage().pop_back();
	m_Reports.AddToTail( line );
	if ( m_nFirstErrorOffset < 0 )
		m_nFirstErrorOffset = std::clamp( nOffset, 0, int( m_nLength ) );
}

int GenericExprBuilder_s::OffsetOfMarker( ANTLR3_MARKER nMarker ) const
{
	// The 8-bit string stream marks positions by address.
	auto nBase = static_cast<ANTLR3_MARKER>( reinterpret_cast<uintptr_t>( m_pText ) );
	if ( nMarker < nBase || nMarker > nBase + static_cast<ANTLR3_MARKER>( m_nLength ) )
		return int( m_nLength );
	return int( nMarker - nBase );
}

int GenericExprBuilder_s::OffsetOfToken( pANTLR3_COMMON_TOKEN pToken ) const
{
	if ( !pToken || pToken->getType( pToken ) == ANTLR3_TOKEN_EOF )
		return int( m_nLength );
	return OffsetOfMarker( pToken->getStartIndex( pToken ) );
}

CGenericExprPart *GenericExprBuilder_s::Hold( CGenericExprPart *pPart, int nDepth )
{
	if ( nDepth > m_nDepthLimit )
	{
		if ( !m_bDepthReported )
			Report( pPart->m_nSourceOffset, "Expression nested deeper than %d levels", m_nDepthLimit );
		m_bDepthReported = true;
		delete pPart;
		return nullptr;
	}
	m_Held.emplace( pPart, nDepth );
	return pPart;
}

int GenericExprBuilder_s::Take( CGenericExprPart *pPart )
{
	auto it = m_Held.find( pPart );
	if ( it == m_Held.end() )
		return 0;
	int nDepth = it->second;
	m_Held.erase( it );
	return nDepth;
}

int GenericExprBuilder_s::DepthOf( const CGenericExprPart *pPart ) const
{
	auto it = m_Held.find( const_cast<CGenericExprPart *>( pPart ) );
	return it == m_Held.end() ? 0 : it->second;
}

CGenericExprPart *GenericExprBuilder_s::Release( CGenericExprPart *pRoot )
{
	if ( !pRoot || !m_Held.count( pRoot ) )
		return nullptr;
	Take( pRoot );
	return pRoot;
}

// ---------------------------------------------------------------------------------------

static CGenericExprPart *Part( GenericExprNode_t pNode ) { return static_cast<CGenericExprPart *>( pNode ); }

static CUtlString TokenText( pANTLR3_COMMON_TOKEN pToken )
{
	pANTLR3_STRING pText = pToken ? pToken->getText( pToken ) : nullptr;
	if ( !pText || !pText->chars )
		return CUtlString();
	return CUtlString( reinterpret_cast<const char *>( pText->chars ), pText->len );
}

static GenericExprNode_t HoldLeaf( GenericExprBuilder_t *pBuilder, CGenericExprPart *pPart, pANTLR3_COMMON_TOKEN pToken )
{
	pPart->m_nSourceOffset = pBuilder->OffsetOfToken( pToken );
	return pBuilder->Hold( pPart, 1 );
}

extern "C" GenericExprNode_t GenericExprBuilder_Unary( GenericExprBuilder_t *pBuilder, int nOp, GenericExprNode_t pOperand )
{
	if ( !pOperand )
		return nullptr;
	int nDepth = pBuilder->Take( Part( pOperand ) );
	auto *pPart = new CGenericExpr_Unary( static_cast<GenericExprUnaryOp_t>( nOp ), Part( pOperand ) );
	pPart->m_nSourceOffset = std::max( 0, Part( pOperand )->m_nSourceOffset - 1 );
	return pBuilder->Hold( pPart, nDepth + 1 );
}

extern "C" GenericExprNode_t GenericExprBuilder_Binary( GenericExprBuilder_t *pBuilder, int nOp, GenericExprNode_t pLeft, GenericExprNode_t pRight )
{
	if ( !pLeft || !pRight )
		return nullptr;
	int nDepth = std::max( pBuilder->Take( Part( pLeft ) ), pBuilder->Take( Part( pRight ) ) );
	auto *pPart = new CGenericExpr_Binary( static_cast<GenericExprBinaryOp_t>( nOp ), Part( pLeft ), Part( pRight ) );
	pPart->m_nSourceOffset = Part( pLeft )->m_nSourceOffset;
	return pBuilder->Hold( pPart, nDepth + 1 );
}

extern "C" GenericExprNode_t GenericExprBuilder_Ternary( GenericExprBuilder_t *pBuilder, GenericExprNode_t pCondition, GenericExprNode_t pTrue, GenericExprNode_t pFalse )
{
	if ( !pCondition || !pTrue || !pFalse )
		return nullptr;
	int nDepth = std::max( { pBuilder->Take( Part( pCondition ) ), pBuilder->Take( Part( pTrue ) ), pBuilder->Take( Part( pFalse ) ) } );
	auto *pPart = new CGenericExpr_TernaryConditional( Part( pCondition ), Part( pTrue ), Part( pFalse ) );
	pPart->m_nSourceOffset = Part( pCondition )->m_nSourceOffset;
	return pBuilder->Hold( pPart, nDepth + 1 );
}

extern "C" GenericExprNode_t GenericExprBuilder_Property( GenericExprBuilder_t *pBuilder, GenericExprNode_t pObject, pANTLR3_COMMON_TOKEN pName )
{
	if ( !pObject || !pName )
		return nullptr;
	int nDepth = pBuilder->Take( Part( pObject ) );
	auto *pPart = new CGenericExpr_Property( Part( pObject ), TokenText( pName ).Get() );
	pPart->m_nSourceOffset = Part( pObject )->m_nSourceOffset;
	return pBuilder->Hold( pPart, nDepth + 1 );
}

extern "C" GenericExprNode_t GenericExprBuilder_FunctionCall( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pName )
{
	return HoldLeaf( pBuilder, new CGenericExpr_FunctionCall( TokenText( pName ).Get() ), pName );
}

extern "C" void GenericExprBuilder_AddArgument( GenericExprBuilder_t *pBuilder, GenericExprNode_t pCall, GenericExprNode_t pArgument )
{
	if ( !pCall || !pArgument )
		return;
	auto *pFunction = static_cast<CGenericExpr_FunctionCall *>( Part( pCall ) );
	int nArgumentDepth = pBuilder->DepthOf( Part( pArgument ) );
	if ( nArgumentDepth + 1 > pBuilder->m_nDepthLimit )
	{
		// The argument stays held and is freed with the builder; the report fails the parse.
		if ( !pBuilder->m_bDepthReported )
			pBuilder->Report( Part( pArgument )->m_nSourceOffset, "Expression nested deeper than %d levels", pBuilder->m_nDepthLimit );
		pBuilder->m_bDepthReported = true;
		return;
	}
	pBuilder->Take( Part( pArgument ) );
	pFunction->AddArgument( Part( pArgument ) );
	auto it = pBuilder->m_Held.find( pFunction );
	if ( it != pBuilder->m_Held.end() )
		it->second = std::max( it->second, nArgumentDepth + 1 );
}

extern "C" GenericExprNode_t GenericExprBuilder_Variable( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pName )
{
	return HoldLeaf( pBuilder, new CGenericExpr_VariableReference( TokenText( pName ).Get() ), pName );
}

extern "C" GenericExprNode_t GenericExprBuilder_Bool( GenericExprBuilder_t *pBuilder, int bValue )
{
	auto *pPart = new CGenericExpr_BoolLiteral( bValue != 0 );
	return pBuilder->Hold( pPart, 1 );
}

extern "C" GenericExprNode_t GenericExprBuilder_Int( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pToken )
{
	return HoldLeaf( pBuilder, new CGenericExpr_IntLiteral( V_atoi( TokenText( pToken ).Get() ) ), pToken );
}

extern "C" GenericExprNode_t GenericExprBuilder_Float( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pToken )
{
	// Read at full precision: the literal is a 64-bit float.
	return HoldLeaf( pBuilder, new CGenericExpr_FloatLiteral( V_atod( TokenText( pToken ).Get() ) ), pToken );
}

extern "C" GenericExprNode_t GenericExprBuilder_String( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pToken, int bDoubleQuoted )
{
	CUtlString value;
	GenericExprStringTokenValue( TokenText( pToken ).Get(), &value );
	return HoldLeaf( pBuilder, new CGenericExpr_StringLiteral( value.Get(), bDoubleQuoted != 0 ), pToken );
}
