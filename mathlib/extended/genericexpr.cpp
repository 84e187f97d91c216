#include "mathlib/extended/genericexpr.h"

#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "mathlib/extended/genericexprbuilderstate.h"
#include "mathlib/extended/genericexprpart.h"

extern "C" {
#include "generic_exprLexer.h"
#include "generic_exprParser.h"
}

namespace
{
// The name that setup reports give the text.
constexpr const char *STREAM_NAME = "expr";
// The token types of the grammar run from OPEN_PAREN to the last literal ('?').
constexpr ANTLR3_UINT32 FIRST_TOKEN_TYPE = OPEN_PAREN;
constexpr ANTLR3_UINT32 LAST_TOKEN_TYPE = 51;

// The name of a token type in reports, or null.
const char *TokenTypeName( ANTLR3_UINT32 nType, pANTLR3_UINT8 *pTokenNames )
{
	if ( nType == ANTLR3_TOKEN_EOF )
		return "EOF";
	if ( !pTokenNames || nType < FIRST_TOKEN_TYPE || nType > LAST_TOKEN_TYPE )
		return nullptr;
	return reinterpret_cast<const char *>( pTokenNames[ nType ] );
}

GenericExprBuilder_t *BuilderOf( pANTLR3_BASE_RECOGNIZER pRecognizer )
{
	return static_cast<GenericExprBuilder_t *>( pRecognizer->state->userp );
}

// "(Expecting EOF)", "(Expecting NAME)" or nothing.
CUtlString Expectation( pANTLR3_EXCEPTION pException, pANTLR3_UINT8 *pTokenNames )
{
	CUtlString text;
	if ( const char *pName = TokenTypeName( pException->expecting, pTokenNames ) )
		text.Format( "(Expecting %s)", pName );
	return text;
}

// The text of the token at fault, "<Unknown>" when it has none.
CUtlString TokenTextOf( pANTLR3_EXCEPTION pException )
{
	auto pToken = static_cast<pANTLR3_COMMON_TOKEN>( pException->token );
	pANTLR3_STRING pText = pToken ? pToken->getText( pToken ) : nullptr;
	if ( !pText || !pText->chars )
		return CUtlString( "<Unknown>" );
	return CUtlString( reinterpret_cast<const char *>( pText->chars ), pText->len );
}

const char *ExceptionMessage( pANTLR3_EXCEPTION pException )
{
	switch ( pException->type )
	{
	case ANTLR3_MISMATCHED_SET_EXCEPTION: return "Mismatched set";
	case ANTLR3_EARLY_EXIT_EXCEPTION: return "Early exit";
	default: break;
	}
	return pException->message ? static_cast<const char *>( pException->message ) : "";
}

void DisplayLexerError( pANTLR3_BASE_RECOGNIZER pRecognizer, pANTLR3_UINT8 * )
{
	GenericExprBuilder_t *pBuilder = BuilderOf( pRecognizer );
	++pBuilder->m_nLexerErrors;
	pANTLR3_EXCEPTION pException = pRecognizer->state->exception;
	if ( !pException )
	{
		pBuilder->Report( int( pBuilder->m_nLength ), "Recognition exception" );
		return;
	}
	int nOffset = pBuilder->OffsetOfMarker( pException->index );
	if ( pException->c == ANTLR3_CHARSTREAM_EOF )
		pBuilder->Report( nOffset, "Unexpected end of file" );
	else
		pBuilder->Report( nOffset, "Unexpected character '%c' (0x%02X)", static_cast<char>( pException->c ), static_cast<unsigned>( pException->c & 0xFF ) );
}

void DisplayParserError( pANTLR3_BASE_RECOGNIZER pRecognizer, pANTLR3_UINT8 *pTokenNames )
{
	GenericExprBuilder_t *pBuilder = BuilderOf( pRecognizer );
	++pBuilder->m_nParserErrors;
	pANTLR3_EXCEPTION pException = pRecognizer->state->exception;
	if ( !pException )
	{
		pBuilder->Report( int( pBuilder->m_nLength ), "Recognition exception" );
		return;
	}
	int nOffset = pBuilder->OffsetOfToken( static_cast<pANTLR3_COMMON_TOKEN>( pException->token ) );
	CUtlString expecting = Expectation( pException, pTokenNames );
	switch ( pException->type )
	{
	case ANTLR3_UNWANTED_TOKEN_EXCEPTION:
		pBuilder->Report( nOffset, "Unwanted token '%s' %s", TokenTextOf( pException ).Get(), expecting.Get() );
		break;
	case ANTLR3_MISSING_TOKEN_EXCEPTION:
	{
		const char *pName = TokenTypeName( pException->expecting, pTokenNames );
		pBuilder->Report( nOffset, "Missing token %s", pName ? pName : "<Unknown>" );
	}
		break;
	case ANTLR3_NO_VIABLE_ALT_EXCEPTION:
		pBuilder->Report( nOffset, "Unexpected token '%s' %s", TokenTextOf( pException ).Get(), expecting.Get() );
		break;
	default:
		pBuilder->Report( nOffset, "%s: %s %s", pException->name ? static_cast<const char *>( pException->name ) : "RecognitionException",
			ExceptionMessage( pException ), expecting.Get() );
		break;
	}
}

// The deepest run of open parentheses, refused before the recursive parser meets it.
bool CheckParenthesisDepth( pANTLR3_COMMON_TOKEN_STREAM pTokens, GenericExprBuilder_t *pBuilder )
{
	pANTLR3_VECTOR pAll = pTokens->getTokens( pTokens );
	int nDepth = 0;
	for ( ANTLR3_UINT32 i = 0; pAll && i < pAll->count; ++i )
	{
		auto pToken = static_cast<pANTLR3_COMMON_TOKEN>( pAll->get( pAll, i ) );
		ANTLR3_UINT32 nType = pToken->getType( pToken );
		if ( nType == OPEN_PAREN && ++nDepth > pBuilder->m_nDepthLimit )
		{
			pBuilder->Report( pBuilder->OffsetOfToken( pToken ), "Expression nested deeper than %d levels", pBuilder->m_nDepthLimit );
			pBuilder->m_bDepthReported = true;
			return false;
		}
		if ( nType == CLOSE_PAREN && nDepth > 0 )
			--nDepth;
	}
	return true;
}

// Runs the generated lexer and parser over the text; answers the root, or null.
CGenericExprPart *RunParser( const char *pText, size_t nLength, GenericExprBuilder_t *pBuilder )
{
	if ( nLength == 0 )
	{
		pBuilder->Report( 0, "No input data for '%s'. (Empty buffer.)", STREAM_NAME );
		return nullptr;
	}
	pANTLR3_INPUT_STREAM pInput = antlr3StringStreamNew( reinterpret_cast<pANTLR3_UINT8>( const_cast<char *>( pText ) ), ANTLR3_ENC_8BIT,
		static_cast<ANTLR3_UINT32>( nLength ), reinterpret_cast<pANTLR3_UINT8>( const_cast<char *>( STREAM_NAME ) ) );
	if ( !pInput )
	{
		pBuilder->Report( 0, "No input data for '%s'. (Empty buffer.)", STREAM_NAME );
		return nullptr;
	}
	CGenericExprPart *pRoot = nullptr;
	pgeneric_exprLexer pLexer = generic_exprLexerNew( pInput );
	if ( !pLexer )
	{
		pBuilder->Report( 0, "Failed to allocate a lexer for '%s'. (Out of memory?)", STREAM_NAME );
		pInput->close( pInput );
		return nullptr;
	}
	pLexer->pLexer->rec->state->userp = pBuilder;
	pLexer->pLexer->rec->displayRecognitionError = DisplayLexerError;

	pANTLR3_COMMON_TOKEN_STREAM pTokens = antlr3CommonTokenStreamSourceNew( ANTLR3_SIZE_HINT, TOKENSOURCE( pLexer ) );
	if ( !pTokens )
	{
		pBuilder->Report( 0, "Failed to allocate a token stream for '%s'. (Out of memory?)", STREAM_NAME );
	}
	else
	{
		pgeneric_exprParser pParser = generic_exprParserNew( pTokens );
		if ( !pParser )
		{
			pBuilder->Report( 0, "Failed to allocate a parser for '%s'. (Out of memory?)", STREAM_NAME );
		}
		else
		{
			pParser->pBuilder = pBuilder;
			pParser->pParser->rec->state->userp = pBuilder;
			pParser->pParser->rec->displayRecognitionError = DisplayParserError;
			if ( CheckParenthesisDepth( pTokens, pBuilder ) )
				pRoot = static_cast<CGenericExprPart *>( pParser->expr( pParser ) );
			pParser->free( pParser );
		}
		pTokens->free( pTokens );
	}
	pLexer->free( pLexer );
	pInput->close( pInput );

	if ( pBuilder->m_nLexerErrors )
		pBuilder->Report( int( nLength ), "Lexer encountered %d error(s)", pBuilder->m_nLexerErrors );
	if ( pBuilder->m_nParserErrors )
		pBuilder->Report( int( nLength ), "Parser encountered %d error(s)", pBuilder->m_nParserErrors );
	return pBuilder->Release( pRoot );
}
} // namespace

CGenericExpr::CGenericExpr() = default;

CGenericExpr::~CGenericExpr() { delete m_pRoot; }

void CGenericExpr::Clear()
{
	delete m_pRoot;
	m_pRoot = nullptr;
	m_Variables.RemoveAll();
	m_Functions.RemoveAll();
	m_nOptions = 0;
	m_nErrorOffset = -1;
}

CGenericExprPart *CGenericExpr::DetachRoot()
{
	CGenericExprPart *pRoot = m_pRoot;
	m_pRoot = nullptr;
	return pRoot;
}

bool CGenericExpr::Parse( const char *pText, CUtlString *pError, uint32_t nOptions )
{
	Clear();
	m_nOptions = nOptions;
	if ( pError )
		pError->Clear();

	const char *pSafeText = pText ? pText : "";
	size_t nLength = strlen( pSafeText );
	CGenericExprPart *pRoot = nullptr;
	CUtlString reports;
	{
		GenericExprBuilder_t builder( pSafeText, nLength, GENERIC_EXPR_MAX_NESTING );
		pRoot = RunParser( pSafeText, nLength, &builder );
		// Any report fails the parse, even when recovery still gave a tree.
		if ( !builder.m_Reports.IsEmpty() )
		{
			delete pRoot;
			pRoot = nullptr;
		}
		if ( !pRoot )
			builder.Report( int( nLength ), "No data" );
		for ( int i = 0; i < builder.m_Reports.Count(); ++i )
		{
			if ( i )
				reports.Append( '\n' );
			reports += builder.m_Reports[ i ];
		}
		m_nErrorOffset = builder.m_nFirstErrorOffset;
	}

	if ( pRoot && !CollectSymbols( pRoot, &reports ) )
	{
		delete pRoot;
		pRoot = nullptr;
		m_Variables.RemoveAll();
		m_Functions.RemoveAll();
	}
	if ( !pRoot )
	{
		if ( pError )
			*pError = reports;
		return false;
	}
	m_pRoot = pRoot;
	m_nErrorOffset = -1;
	return true;
}

int CGenericExpr::AddName( CUtlVector<CUtlString> *pTable, const char *pName )
{
	for ( int i = 0; i < pTable->Count(); ++i )
	{
		if ( ( *pTable )[ i ] == pName )
			return i;
	}
	return pTable->AddToTail( CUtlString( pName ) );
}

bool CGenericExpr::CollectSymbols( CGenericExprPart *pPart, CUtlString *pError )
{
	if ( !pPart )
		return true;
	switch ( pPart->GetKind() )
	{
	case GENERIC_EXPR_VARIABLE_REFERENCE:
	{
		auto *pVariable = static_cast<CGenericExpr_VariableReference *>( pPart );
		if ( !( m_nOptions & GENERIC_EXPR_ALLOW_DOLLAR_NAMES ) && pVariable->m_Name.Get()[ 0 ] == '$' )
		{
			pError->Format( "Disallowed variable name: %s", pVariable->m_Name.Get() );
			m_nErrorOffset = pVariable->m_nSourceOffset;
			return false;
		}
		pVariable->m_nSymbolIndex = AddName( &m_Variables, pVariable->m_Name.Get() );
		return true;
	}
	case GENERIC_EXPR_FUNCTION_CALL:
	{
		auto *pCall = static_cast<CGenericExpr_FunctionCall *>( pPart );
		pCall->m_nSymbolIndex = AddName( &m_Functions, pCall->m_Name.Get() );
		break;
	}
	default: break;
	}
	// Operands, sides, ternary parts, arguments and a property's object; a property's own
	// name is no variable.
	for ( int i = 0; i < pPart->GetChildCount(); ++i )
	{
		if ( !CollectSymbols( *pPart->GetChildSlot( i ), pError ) )
			return false;
	}
	return true;
}

const char *CGenericExpr::GetVariableName( int nIndex ) const
{
	return nIndex >= 0 && nIndex < m_Variables.Count() ? m_Variables[ nIndex ].Get() : "";
}

int CGenericExpr::FindVariable( const char *pName ) const
{
	for ( int i = 0; i < m_Variables.Count(); ++i )
	{
		if ( m_Variables[ i ] == pName )
			return i;
	}
	return -1;
}

const char *CGenericExpr::GetFunctionName( int nIndex ) const
{
	return nIndex >= 0 && nIndex < m_Functions.Count() ? m_Functions[ nIndex ].Get() : "";
}

int CGenericExpr::Evaluate( const KeyValues3 *const *ppValues, int nValues, KeyValues3 *pResult, CUtlString *pError, bool bUnknownAsString ) const
{
	if ( !m_pRoot )
	{
		if ( pError )
			pError->Set( "No expression!" );
		return GENERIC_EXPR_EVAL_FAILED;
	}
	return GenericExprEvaluate( m_pRoot, ppValues, nValues, pResult, pError, bUnknownAsString );
}

int CGenericExpr::Evaluate( const KeyValues3 &values, KeyValues3 *pResult, CUtlString *pError, bool bUnknownAsString ) const
{
	// Small tables stay on the stack: metadata expressions name a handful of fields.
	constexpr int STACK_VALUES = 16;
	const KeyValues3 *pStackValues[ STACK_VALUES ];
	CUtlVector<const KeyValues3 *> heapValues;
	const KeyValues3 **ppValues = pStackValues;
	int nCount = m_Variables.Count();
	if ( nCount > STACK_VALUES )
	{
		heapValues.SetCount( nCount );
		ppValues = heapValues.Base();
	}
	for ( int i = 0; i < nCount; ++i )
		ppValues[ i ] = values.FindMember( CKV3MemberName( m_Variables[ i ].Get() ) );
	return Evaluate( ppValues, nCount, pResult, pError, bUnknownAsString );
}

bool CGenericExpr::EvaluateBool( const KeyValues3 &values, bool *pOut, CUtlString *pError ) const
{
	KeyValues3 result;
	if ( Evaluate( values, &result, pError ) != GENERIC_EXPR_EVAL_OK )
		return false;
	if ( pOut )
		*pOut = GenericExprValueToBool( result );
	return true;
}

bool GenericExprEvaluateBool( const char *pText, const KeyValues3 &values, bool *pOut, CUtlString *pError, uint32_t nOptions )
{
	CGenericExpr expr;
	CUtlString parseError;
	if ( !expr.Parse( pText, &parseError, nOptions ) )
	{
		if ( pError )
			pError->Set( "No expression!" );
		return false;
	}
	return expr.EvaluateBool( values, pOut, pError );
}
