#include "mathlib/extended/genericexprpart.h"

#include <cstring>

const char *GenericExprUnaryOpName( GenericExprUnaryOp_t eOp )
{
	switch ( eOp )
	{
	case UnNot: return "UnNot";
	case UnNegate: return "UnNegate";
	case UnInvalid: break;
	}
	return "UnInvalid";
}

const char *GenericExprBinaryOpName( GenericExprBinaryOp_t eOp )
{
	static const char *const s_Names[] = { "BinInvalid", "BinMul", "BinDiv", "BinMod", "BinAdd", "BinSub", "BinLt", "BinGt",
		"BinLtE", "BinGtE", "BinEq", "BinNe", "BinLogAnd", "BinLogOr" };
	if ( eOp < 0 || eOp >= int( sizeof( s_Names ) / sizeof( s_Names[ 0 ] ) ) )
		return s_Names[ 0 ];
	return s_Names[ eOp ];
}

bool CGenericExprPart::ChildrenEqual( const CGenericExprPart *pOther ) const
{
	int nCount = GetChildCount();
	if ( nCount != pOther->GetChildCount() )
		return false;
	for ( int i = 0; i < nCount; ++i )
	{
		const CGenericExprPart *pMine = GetChild( i );
		const CGenericExprPart *pTheirs = pOther->GetChild( i );
		if ( !pMine || !pTheirs )
		{
			if ( pMine != pTheirs )
				return false;
			continue;
		}
		if ( !pMine->Equals( pTheirs ) )
			return false;
	}
	return true;
}

// ---------------------------------------------------------------------------------------

void CGenericExpr_Unary::Describe( CUtlString *pOut ) const { pOut->Set( GenericExprUnaryOpName( m_eOp ) ); }

bool CGenericExpr_Unary::Equals( const CGenericExprPart *pOther ) const
{
	return pOther && pOther->GetKind() == GetKind() && static_cast<const CGenericExpr_Unary *>( pOther )->m_eOp == m_eOp && ChildrenEqual( pOther );
}

CGenericExpr_Binary::~CGenericExpr_Binary()
{
	delete m_pLeft;
	delete m_pRight;
}

void CGenericExpr_Binary::Describe( CUtlString *pOut ) const { pOut->Set( GenericExprBinaryOpName( m_eOp ) ); }

bool CGenericExpr_Binary::Equals( const CGenericExprPart *pOther ) const
{
	return pOther && pOther->GetKind() == GetKind() && static_cast<const CGenericExpr_Binary *>( pOther )->m_eOp == m_eOp && ChildrenEqual( pOther );
}

CGenericExprPart **CGenericExpr_Binary::GetChildSlot( int nIndex )
{
	if ( nIndex == 0 )
		return &m_pLeft;
	return nIndex == 1 ? &m_pRight : nullptr;
}

CGenericExpr_TernaryConditional::~CGenericExpr_TernaryConditional()
{
	delete m_pCondition;
	delete m_pTrue;
	delete m_pFalse;
}

void CGenericExpr_TernaryConditional::Describe( CUtlString *pOut ) const { pOut->Set( "TernaryConditional" ); }

bool CGenericExpr_TernaryConditional::Equals( const CGenericExprPart *pOther ) const
{
	return pOther && pOther->GetKind() == GetKind() && ChildrenEqual( pOther );
}

CGenericExprPart **CGenericExpr_TernaryConditional::GetChildSlot( int nIndex )
{
	switch ( nIndex )
	{
	case 0: return &m_pCondition;
	case 1: return &m_pTrue;
	case 2: return &m_pFalse;
	}
	return nullptr;
}

void CGenericExpr_StringLiteral::Describe( CUtlString *pOut ) const { pOut->Format( "String( %s )", m_Text.Get() ); }

bool CGenericExpr_StringLiteral::Equals( const CGenericExprPart *pOther ) const
{
	if ( !pOther || pOther->GetKind() != GetKind() )
		return false;
	auto *pString = static_cast<const CGenericExpr_StringLiteral *>( pOther );
	return pString->m_Text == m_Text && pString->m_bDoubleQuoted == m_bDoubleQuoted;
}

void CGenericExpr_FloatLiteral::Describe( CUtlString *pOut ) const { pOut->Format( "Float( %f )", m_flValue ); }

bool CGenericExpr_FloatLiteral::Equals( const CGenericExprPart *pOther ) const
{
	return pOther && pOther->GetKind() == GetKind() && static_cast<const CGenericExpr_FloatLiteral *>( pOther )->m_flValue == m_flValue;
}

void CGenericExpr_IntLiteral::Describe( CUtlString *pOut ) const { pOut->Format( "Int( %d )", m_nValue ); }

bool CGenericExpr_IntLiteral::Equals( const CGenericExprPart *pOther ) const
{
	return pOther && pOther->GetKind() == GetKind() && static_cast<const CGenericExpr_IntLiteral *>( pOther )->m_nValue == m_nValue;
}

void CGenericExpr_BoolLiteral::Describe( CUtlString *pOut ) const { pOut->Format( "Bool( %s )", m_bValue ? "true" : "false" ); }

bool CGenericExpr_BoolLiteral::Equals( const CGenericExprPart *pOther ) const
{
	return pOther && pOther->GetKind() == GetKind() && static_cast<const CGenericExpr_BoolLiteral *>( pOther )->m_bValue == m_bValue;
}

void CGenericExpr_VariableReference::Describe( CUtlString *pOut ) const { pOut->Format( "Var( %s )", m_Name.Get() ); }

bool CGenericExpr_VariableReference::Equals( const CGenericExprPart *pOther ) const
{
	return pOther && pOther->GetKind() == GetKind() && static_cast<const CGenericExpr_VariableReference *>( pOther )->m_Name == m_Name;
}

void CGenericExpr_Property::Describe( CUtlString *pOut ) const { pOut->Format( "Prop( %s )", m_Name.Get() ); }

bool CGenericExpr_Property::Equals( const CGenericExprPart *pOther ) const
{
	return pOther && pOther->GetKind() == GetKind() && static_cast<const CGenericExpr_Property *>( pOther )->m_Name == m_Name && ChildrenEqual( pOther );
}

CGenericExpr_FunctionCall::~CGenericExpr_FunctionCall()
{
	for ( CGenericExprPart *pArgument : m_Arguments )
		delete pArgument;
}

void CGenericExpr_FunctionCall::Describe( CUtlString *pOut ) const { pOut->Format( "Func( %s )", m_Name.Get() ); }

bool CGenericExpr_FunctionCall::Equals( const CGenericExprPart *pOther ) const
{
	return pOther && pOther->GetKind() == GetKind() && static_cast<const CGenericExpr_FunctionCall *>( pOther )->m_Name == m_Name && ChildrenEqual( pOther );
}

CGenericExprPart **CGenericExpr_FunctionCall::GetChildSlot( int nIndex )
{
	if ( nIndex < 0 || nIndex >= GetArgumentCount() )
		return nullptr;
	return &m_Arguments[ nIndex ];
}

CGenericExprPart *CGenericExpr_FunctionCall::GetArgument( int nIndex ) const
{
	if ( nIndex < 0 || nIndex >= GetArgumentCount() )
		return nullptr;
	return m_Arguments[ nIndex ];
}

// ---------------------------------------------------------------------------------------

static void DescribeTree( const CGenericExprPart *pPart, int nIndent, CUtlString *pOut )
{
	for ( int i = 0; i < nIndent; ++i )
		pOut->Append( "  " );
	if ( !pPart )
	{
		pOut->Append( "(null)\n" );
		return;
	}
	CUtlString line;
	pPart->Describe( &line );
	pOut->Append( line.Get() );
	pOut->Append( '\n' );
	for ( int i = 0; i < pPart->GetChildCount(); ++i )
		DescribeTree( pPart->GetChild( i ), nIndent + 1, pOut );
}

void GenericExprDescribeTree( const CGenericExprPart *pRoot, CUtlString *pOut )
{
	pOut->Clear();
	DescribeTree( pRoot, 0, pOut );
}
