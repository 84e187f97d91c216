#pragma once
// The parts of expressions as nodes: operators, the ternary conditional and properties,
// each with the result "retval". Their inputs take any type; the operator resolution (see
// pulseoperators.h) decides what each pair of operand types becomes. An expression node
// builds them from its text, and they can stand in a document on their own too.

#include "pulsedoc_lib/compiler/pulseoperators.h"
#include "pulsedoc_lib/nodes/pulsedocvalue.h"

// The type an input will hold, as far as it is known before compiling (PVAL_UNKNOWN when not).
CPulseValueFullType PulseDoc_GetInputValueType( const CBasePulseInparamPort &port );

class CPulseDoc_Value_BaseExprPart : public CPulseDoc_BaseValue
{
public:
	CPulseDoc_Value_BaseExprPart();
	// The part as expression text; sub-expressions that aren't atomic in parentheses.
	virtual void RenderText( CUtlString *pOut ) const = 0;
	virtual bool IsAtomic() const { return false; }
	CBasePulseOutparamPort &GetRetval() { return m_Retval; }

protected:
	CBasePulseOutparamPort m_Retval;
};

// An input as expression text (a part, a literal, a variable, a "$port").
void PulseDoc_RenderInputText( const CBasePulseInparamPort &port, CUtlString *pOut );

class CPulseDoc_Value_BaseExprOpBinary : public CPulseDoc_Value_BaseExprPart
{
public:
	CPulseDoc_Value_BaseExprOpBinary();
	virtual PulseExprOperator_t GetOperator() const = 0;
	CBasePulseInparamPort &GetFirst() { return m_FirstArg; }
	CBasePulseInparamPort &GetSecond() { return m_SecondArg; }
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;
	CPulseValueFullType GetResultType() const override;
	void RenderText( CUtlString *pOut ) const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

	CBasePulseInparamPort m_FirstArg;
	CBasePulseInparamPort m_SecondArg;
};

class CPulseDoc_Value_BaseExprOpUnary : public CPulseDoc_Value_BaseExprPart
{
public:
	CPulseDoc_Value_BaseExprOpUnary();
	virtual PulseExprOperator_t GetOperator() const = 0;
	CBasePulseInparamPort &GetArg() { return m_Arg; }
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;
	CPulseValueFullType GetResultType() const override;
	void RenderText( CUtlString *pOut ) const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

	CBasePulseInparamPort m_Arg;
};

#define PULSE_DOC_EXPR_OPERATOR( className, base, eOperator )                                                               \
	class className : public base                                                                                          \
	{                                                                                                                      \
	public:                                                                                                                \
		PULSE_DOC_NODE_TYPE()                                                                                              \
		PulseExprOperator_t GetOperator() const override { return eOperator; }                                             \
	};

PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprAdd, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_ADD )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprSub, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_SUB )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprMul, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_MUL )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprDiv, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_DIV )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprMod, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_MOD )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprLess, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_LT )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprLessEq, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_LTE )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprGreater, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_GT )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprGreaterEq, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_GTE )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprEqual, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_EQ )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprNotEqual, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_NE )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprAnd, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_AND )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprOr, CPulseDoc_Value_BaseExprOpBinary, PULSE_EXPR_OR )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprNegate, CPulseDoc_Value_BaseExprOpUnary, PULSE_EXPR_NEGATE )
PULSE_DOC_EXPR_OPERATOR( CPulseDoc_Value_ExprNot, CPulseDoc_Value_BaseExprOpUnary, PULSE_EXPR_NOT )
#undef PULSE_DOC_EXPR_OPERATOR

// A component of a vector or colour: "x", "y", "z", "w"; "r", "g", "b".
class CPulseDoc_Value_ExprGetProperty : public CPulseDoc_Value_BaseExprPart
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Value_ExprGetProperty();
	CUtlString m_PropertyName;
	CBasePulseInparamPort &GetObject() { return m_ObjectParam; }
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;
	CPulseValueFullType GetResultType() const override;
	void RenderText( CUtlString *pOut ) const override;
	bool IsAtomic() const override { return true; }
	// The component's index for a type, or -1 ("Unrecognized property").
	static int FindComponent( PulseValueType_t eType, const char *pName );

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_ObjectParam;
};

// CONDITION ? TRUE_VALUE : FALSE_VALUE; only the arm taken is computed.
class CPulseDoc_Value_ExprTernaryConditional : public CPulseDoc_Value_BaseExprPart
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Value_ExprTernaryConditional();
	CBasePulseInparamPort &GetCondition() { return m_Condition; }
	CBasePulseInparamPort &GetTrueVal() { return m_TrueVal; }
	CBasePulseInparamPort &GetFalseVal() { return m_FalseVal; }
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;
	CPulseValueFullType GetResultType() const override;
	void RenderText( CUtlString *pOut ) const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Condition;
	CBasePulseInparamPort m_TrueVal;
	CBasePulseInparamPort m_FalseVal;
};
