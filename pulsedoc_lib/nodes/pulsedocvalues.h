#pragma once
// Plain value nodes: a variable's or constant's value, a copy, a conversion, an element
// of an array.

#include "pulsedoc_lib/nodes/pulsedocvalue.h"

class CPulseDoc_Value_VarOrConstReference : public CPulseDoc_BaseValue
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Value_VarOrConstReference();
	PulseDocNodeID_t m_SourceID = -1;

	void OnDocumentLoaded( CPulseDocMessages *pMessages ) override;
	CUtlString GetTitle() const override;
	void Validate( CPulseDocMessages *pMessages ) const override;
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;
	CPulseValueFullType GetResultType() const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseOutparamPort m_Value;
	KeyValues3 m_BlackboardReference;
};

class CPulseDoc_Value_Copy : public CPulseDoc_BaseValue
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Value_Copy();
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;
	CPulseValueFullType GetResultType() const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Arg;
	CBasePulseOutparamPort m_Retval;
};

// Converts its source to a chosen type (m_TargetType).
class CPulseDoc_Cast : public CPulseDoc_BaseValue
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Cast();
	CPulseValueFullType m_TargetType;
	CUtlString GetTitle() const override;
	void Validate( CPulseDocMessages *pMessages ) const override;
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Source;
	CBasePulseOutparamPort m_Retval;
};

class CPulseDoc_Value_ArrayElement : public CPulseDoc_BaseValue
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Value_ArrayElement();
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Array;
	CBasePulseInparamPort m_Index;
	CBasePulseOutparamPort m_Element;
};
