#pragma once
// A generic expression: a text parsed once into a tree of CGenericExprPart, with a table
// of the variable names and one of the function names it uses, and evaluated many times
// against values that the caller looks up by those names.
//
//	CGenericExpr expr;
//	CUtlString error;
//	if ( !expr.Parse( "m_nType == 3 && m_bEnabled", &error ) )
//		Log_Warning( LOG_ZOL, "%s\n", error.Get() );
//
// Nothing throws: failures answer false (Parse) or GENERIC_EXPR_EVAL_FAILED (Evaluate)
// with a text.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

class CGenericExprPart;
class KeyValues3;

enum GenericExprParseOptions_t : uint32_t
{
	GENERIC_EXPR_ALLOW_DOLLAR_NAMES = 1u << 0, // variables may begin with "$"
};

// The generated parser recurses once per nesting level, and evaluation once per level of
// the tree: deeper texts are refused with a report instead of risking the stack.
constexpr int GENERIC_EXPR_MAX_NESTING = 256;

enum GenericExprEvalStatus_t : int
{
	GENERIC_EXPR_EVAL_OK = 0,
	GENERIC_EXPR_EVAL_FAILED = 1,
};

class CGenericExpr
{
public:
	CGenericExpr();
	~CGenericExpr();
	CGenericExpr( const CGenericExpr & ) = delete;
	CGenericExpr &operator=( const CGenericExpr & ) = delete;

	// Parses the whole text as one expression; a second parse first clears everything.
	// On failure there is no tree and the tables are empty, pError holds every report of
	// the run, one a line, and GetErrorOffset says where the first one points.
	bool Parse( const char *pText, CUtlString *pError = nullptr, uint32_t nOptions = 0 );
	void Clear();

	bool HasTree() const { return m_pRoot != nullptr; }
	const CGenericExprPart *GetRoot() const { return m_pRoot; }
	CGenericExprPart *GetRoot() { return m_pRoot; }
	// Hands the tree to the caller, who deletes it; the tables stay.
	CGenericExprPart *DetachRoot();
	uint32_t GetOptions() const { return m_nOptions; }
	// The byte offset in the text of the first report of the last parse; -1 after success.
	int GetErrorOffset() const { return m_nErrorOffset; }

	// Names in the order of their first use; a name used twice has one entry.
	int GetVariableCount() const { return m_Variables.Count(); }
	const char *GetVariableName( int nIndex ) const;
	int FindVariable( const char *pName ) const; // -1 when absent; case counts
	int GetFunctionCount() const { return m_Functions.Count(); }
	const char *GetFunctionName( int nIndex ) const;

	// Evaluates the tree with one value per variable index (ppValues[i] for variable i;
	// null, or an index at or past nValues, means not given). A name not given evaluates
	// to its own text when bUnknownAsString, else fails with "Unknown variable %s".
	int Evaluate( const KeyValues3 *const *ppValues, int nValues, KeyValues3 *pResult, CUtlString *pError, bool bUnknownAsString = true ) const;
	// The same with the values as members of a KV3 table, by variable name.
	int Evaluate( const KeyValues3 &values, KeyValues3 *pResult, CUtlString *pError, bool bUnknownAsString = true ) const;
	// The boolean form: the result's truth (GenericExprValueToBool). False with
	// "No expression!" when there is no tree, or with the evaluation's failure.
	bool EvaluateBool( const KeyValues3 &values, bool *pOut, CUtlString *pError ) const;

private:
	bool CollectSymbols( CGenericExprPart *pPart, CUtlString *pError );
	static int AddName( CUtlVector<CUtlString> *pTable, const char *pName );

	CGenericExprPart *m_pRoot = nullptr;
	CUtlVector<CUtlString> m_Variables;
	CUtlVector<CUtlString> m_Functions;
	uint32_t m_nOptions = 0;
	int m_nErrorOffset = -1;
};

// Evaluates one part of a tree (see CGenericExpr::Evaluate). Results are bool, int32,
// int64, double or string values, or a copy of a variable's or property's value.
int GenericExprEvaluate( const CGenericExprPart *pPart, const KeyValues3 *const *ppValues, int nValues, KeyValues3 *pResult, CUtlString *pError,
	bool bUnknownAsString = true );

// Parses and evaluates in one call, the values as members of a KV3 table by name.
bool GenericExprEvaluateBool( const char *pText, const KeyValues3 &values, bool *pOut, CUtlString *pError, uint32_t nOptions = 0 );

// The truth of a value: a bool as it is, a number when it isn't 0, a string when it reads
// as a number other than 0 or is "true" in any case; null, tables, arrays and blobs are false.
bool GenericExprValueToBool( const KeyValues3 &value );
// Equality as == sees it: strings by their bytes; an empty string equals the integer 0;
// values that read as numbers without loss by their numbers; anything else as KV3 values.
bool GenericExprValuesEqual( const KeyValues3 &a, const KeyValues3 &b );
// A value as text for "+": strings, bools ("true", "false") and numbers (shortest form);
// false for values that have no text.
bool GenericExprValueToText( const KeyValues3 &value, CUtlString *pOut );
