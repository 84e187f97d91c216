#pragma once
// An expression: text in the generic expression language, turned into part nodes. Plain
// names are the graph's variables and constants; names with "$" are inputs of this node
// ("$amount"), which connections feed like any other input. A text that doesn't parse,
// or names what isn't there, keeps its text and says why; the graph doesn't compile
// while it stands.

#include <memory>
#include <vector>

#include "pulsedoc_lib/nodes/pulsedocvalue.h"

class CGenericExprPart;
class CPulseNodeDescriptions;

class CPulseDoc_Value_Expression : public CPulseDoc_BaseValue
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Value_Expression();
	~CPulseDoc_Value_Expression() override;

	const char *GetExprText() const { return m_ExprText.Get(); }
	// The reason the text doesn't make parts, or empty.
	const char *GetBadParseExprString() const { return m_BadParseExprString.Get(); }
	// A user writes a new text: parsed, made into parts, and stored in its canonical form
	// (the parts written back as text). False, with the reason kept, when it doesn't make
	// parts; the text stays as written.
	bool SetExpressionText( const char *pText );
	// The parts written back as text ("a + ( b * 2 )").
	CUtlString RenderText() const;

	void OnDocumentLoaded( CPulseDocMessages *pMessages ) override;
	CUtlString GetTitle() const override;
	void Validate( CPulseDocMessages *pMessages ) const override;
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;
	CPulseValueFullType GetResultType() const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	// Parses the text and builds the parts; false with m_BadParseExprString set.
	bool Build();
	CBasePulseInparamPort *FindOrAddPortVariable( const char *pName );
	// Builds a tree node into the input (a literal, a reference, or a part feeding it).
	bool BuildInto( const CGenericExprPart *pPart, CBasePulseInparamPort *pTarget );
	bool BuildFunctionCall( const class CGenericExpr_FunctionCall *pCall, CBasePulseInparamPort *pTarget );

	CUtlString m_ExprText;
	CUtlString m_BadParseExprString;
	CBasePulseOutparamPort m_Retval;
	// What the root of the text gives: a part, a literal, a reference.
	CBasePulseInparamPort m_InternalInparam;
	// The "$name" inputs, and the stored data of each until it is built.
	std::vector<std::unique_ptr<CBasePulseInparamPort>> m_PortVariables;
	KeyValues3 m_PortVariableData;
	std::vector<std::unique_ptr<CPulseDocNode>> m_Parts;
};
