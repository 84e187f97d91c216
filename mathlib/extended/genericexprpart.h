#pragma once
// The tree of a parsed generic expression. A part owns its children; a function call owns
// its arguments. Consumers that rewrite a tree (the graph compiler turns expressions into
// nodes) swap children through GetChildSlot.

#include <cstdint>
#include <vector>

#include "core/text/utlstring.h"

enum GenericExprPartKind_t : int32_t
{
	GENERIC_EXPR_UNARY = 0,
	GENERIC_EXPR_BINARY = 1,
	GENERIC_EXPR_TERNARY_CONDITIONAL = 2,
	GENERIC_EXPR_STRING_LITERAL = 3,
	GENERIC_EXPR_FLOAT_LITERAL = 4,
	GENERIC_EXPR_INT_LITERAL = 5,
	GENERIC_EXPR_BOOL_LITERAL = 6,
	GENERIC_EXPR_VARIABLE_REFERENCE = 7,
	GENERIC_EXPR_PROPERTY = 8,
	GENERIC_EXPR_FUNCTION_CALL = 9,
};

enum GenericExprUnaryOp_t : int32_t
{
	UnInvalid = 0,
	UnNot = 1,
	UnNegate = 2,
};

enum GenericExprBinaryOp_t : int32_t
{
	BinInvalid = 0,
	BinMul = 1,
	BinDiv = 2,
	BinMod = 3,
	BinAdd = 4,
	BinSub = 5,
	BinLt = 6,
	BinGt = 7,
	BinLtE = 8,
	BinGtE = 9,
	BinEq = 10,
	BinNe = 11,
	BinLogAnd = 12,
	BinLogOr = 13,
};

// "UnNot", "BinAdd", ...; "UnInvalid" / "BinInvalid" for values out of range.
const char *GenericExprUnaryOpName( GenericExprUnaryOp_t eOp );
const char *GenericExprBinaryOpName( GenericExprBinaryOp_t eOp );

class CGenericExprPart
{
public:
	explicit CGenericExprPart( GenericExprPartKind_t eKind ) : m_nKind( eKind ) {}
	CGenericExprPart( const CGenericExprPart & ) = delete;
	CGenericExprPart &operator=( const CGenericExprPart & ) = delete;
	virtual ~CGenericExprPart() = default;

	// This part's own text ("BinAdd", "Int( 3 )", "Var( m_nType )"), not its children's.
	virtual void Describe( CUtlString *pOut ) const = 0;
	// Same kind, same fields, equal children in the same order. Source offsets don't count.
	virtual bool Equals( const CGenericExprPart *pOther ) const = 0;
	virtual int GetChildCount() const { return 0; }
	// The address of the child pointer at nIndex, or null out of range.
	virtual CGenericExprPart **GetChildSlot( int nIndex ) { ( void )nIndex; return nullptr; }

	GenericExprPartKind_t GetKind() const { return static_cast<GenericExprPartKind_t>( m_nKind ); }
	// The child at nIndex, or null.
	const CGenericExprPart *GetChild( int nIndex ) const
	{
		CGenericExprPart *const *ppSlot = const_cast<CGenericExprPart *>( this )->GetChildSlot( nIndex );
		return ppSlot ? *ppSlot : nullptr;
	}

	// Where the part's text starts in the parsed text, in bytes; -1 for a part made in code.
	int32_t m_nSourceOffset = -1;

protected:
	// Compares the children of two parts of the same kind.
	bool ChildrenEqual( const CGenericExprPart *pOther ) const;

private:
	int32_t m_nKind;
};

class CGenericExpr_Unary final : public CGenericExprPart
{
public:
	CGenericExpr_Unary( GenericExprUnaryOp_t eOp, CGenericExprPart *pOperand ) : CGenericExprPart( GENERIC_EXPR_UNARY ), m_eOp( eOp ), m_pOperand( pOperand ) {}
	~CGenericExpr_Unary() override { delete m_pOperand; }
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;
	int GetChildCount() const override { return 1; }
	CGenericExprPart **GetChildSlot( int nIndex ) override { return nIndex == 0 ? &m_pOperand : nullptr; }

	GenericExprUnaryOp_t m_eOp;
	CGenericExprPart *m_pOperand;
};

class CGenericExpr_Binary final : public CGenericExprPart
{
public:
	CGenericExpr_Binary( GenericExprBinaryOp_t eOp, CGenericExprPart *pLeft, CGenericExprPart *pRight )
		: CGenericExprPart( GENERIC_EXPR_BINARY ), m_eOp( eOp ), m_pLeft( pLeft ), m_pRight( pRight ) {}
	~CGenericExpr_Binary() override;
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;
	int GetChildCount() const override { return 2; }
	CGenericExprPart **GetChildSlot( int nIndex ) override;

	GenericExprBinaryOp_t m_eOp;
	CGenericExprPart *m_pLeft;
	CGenericExprPart *m_pRight;
};

class CGenericExpr_TernaryConditional final : public CGenericExprPart
{
public:
	CGenericExpr_TernaryConditional( CGenericExprPart *pCondition, CGenericExprPart *pTrue, CGenericExprPart *pFalse )
		: CGenericExprPart( GENERIC_EXPR_TERNARY_CONDITIONAL ), m_pCondition( pCondition ), m_pTrue( pTrue ), m_pFalse( pFalse ) {}
	~CGenericExpr_TernaryConditional() override;
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;
	int GetChildCount() const override { return 3; }
	CGenericExprPart **GetChildSlot( int nIndex ) override;

	CGenericExprPart *m_pCondition;
	CGenericExprPart *m_pTrue;
	CGenericExprPart *m_pFalse;
};

class CGenericExpr_StringLiteral final : public CGenericExprPart
{
public:
	CGenericExpr_StringLiteral( const char *pText, bool bDoubleQuoted ) : CGenericExprPart( GENERIC_EXPR_STRING_LITERAL ), m_Text( pText ), m_bDoubleQuoted( bDoubleQuoted ) {}
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;

	CUtlString m_Text;
	bool m_bDoubleQuoted;
};

class CGenericExpr_FloatLiteral final : public CGenericExprPart
{
public:
	explicit CGenericExpr_FloatLiteral( double flValue ) : CGenericExprPart( GENERIC_EXPR_FLOAT_LITERAL ), m_flValue( flValue ) {}
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;

	double m_flValue;
};

class CGenericExpr_IntLiteral final : public CGenericExprPart
{
public:
	explicit CGenericExpr_IntLiteral( int32_t nValue ) : CGenericExprPart( GENERIC_EXPR_INT_LITERAL ), m_nValue( nValue ) {}
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;

	int32_t m_nValue;
};

class CGenericExpr_BoolLiteral final : public CGenericExprPart
{
public:
	explicit CGenericExpr_BoolLiteral( bool bValue ) : CGenericExprPart( GENERIC_EXPR_BOOL_LITERAL ), m_bValue( bValue ) {}
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;

	bool m_bValue;
};

class CGenericExpr_VariableReference final : public CGenericExprPart
{
public:
	explicit CGenericExpr_VariableReference( const char *pName ) : CGenericExprPart( GENERIC_EXPR_VARIABLE_REFERENCE ), m_Name( pName ) {}
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;

	CUtlString m_Name;
	int32_t m_nSymbolIndex = -1; // into the expression's variable table
};

class CGenericExpr_Property final : public CGenericExprPart
{
public:
	CGenericExpr_Property( CGenericExprPart *pObject, const char *pName ) : CGenericExprPart( GENERIC_EXPR_PROPERTY ), m_pObject( pObject ), m_Name( pName ) {}
	~CGenericExpr_Property() override { delete m_pObject; }
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;
	int GetChildCount() const override { return 1; }
	CGenericExprPart **GetChildSlot( int nIndex ) override { return nIndex == 0 ? &m_pObject : nullptr; }

	CGenericExprPart *m_pObject;
	CUtlString m_Name;
};

class CGenericExpr_FunctionCall final : public CGenericExprPart
{
public:
	explicit CGenericExpr_FunctionCall( const char *pName ) : CGenericExprPart( GENERIC_EXPR_FUNCTION_CALL ), m_Name( pName ) {}
	~CGenericExpr_FunctionCall() override;
	void Describe( CUtlString *pOut ) const override;
	bool Equals( const CGenericExprPart *pOther ) const override;
	int GetChildCount() const override { return GetArgumentCount(); }
	CGenericExprPart **GetChildSlot( int nIndex ) override;
	virtual int GetArgumentCount() const { return static_cast<int>( m_Arguments.size() ); }
	virtual CGenericExprPart *GetArgument( int nIndex ) const;

	// Takes ownership.
	void AddArgument( CGenericExprPart *pArgument ) { m_Arguments.push_back( pArgument ); }

	CUtlString m_Name;
	std::vector<CGenericExprPart *> m_Arguments;
	int32_t m_nSymbolIndex = -1; // into the expression's function table
};

// Writes the tree, one part a line in Describe's form, children indented by two blanks.
void GenericExprDescribeTree( const CGenericExprPart *pRoot, CUtlString *pOut );
