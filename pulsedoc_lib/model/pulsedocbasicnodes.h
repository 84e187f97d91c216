#pragma once
// Nodes without flow or values of their own: the stand-in for a class this build doesn't
// know, block comments, and the definitions of the graph's variables and constants.

#include "pulse_runtime_lib/graph/pulsegraphrecords.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "pulsedoc_lib/model/pulsedocnode.h"

// Stands in for a node whose class this build doesn't know: it keeps its whole table and
// writes it back unchanged, and validation says what is missing.
class CPulseDoc_UnknownFallback : public CPulseDocNode
{
public:
	PULSE_DOC_NODE_TYPE()
	void SaveKV3( KeyValues3 *pTable ) const override;
	void LoadKV3( const KeyValues3 &table, CPulseDocLoadContext *pContext ) override;
	void Validate( CPulseDocMessages *pMessages ) const override;
	const char *GetMissingClassName() const;

private:
	KeyValues3 m_Table;
};

class CPulseDoc_BlockComment : public CPulseDocNode
{
public:
	PULSE_DOC_NODE_TYPE()
	CUtlString m_CommentText;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;
};

// A typed value as documents store it: { m_Type = "PVAL_INT" m_Value = 5 }.
struct CPulseEditableValue
{
	CPulseValueFullType m_Type;
	KeyValues3 m_Value;

	void Load( const KeyValues3 *pTable, CPulseDocKeyReader &reader, const char *pKey );
	void Save( KeyValues3 *pTable ) const;
};

// A variable or constant of the graph: its name is the node's name.
class CPulseDoc_BaseValueDefinition : public CPulseDocNode
{
public:
	CPulseEditableValue m_Value;
	CUtlString m_Description;

	const CPulseValueFullType &GetValueType() const { return m_Value.m_Type; }
	virtual bool IsConstant() const = 0;
	void Validate( CPulseDocMessages *pMessages ) const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;
};

class CPulseDoc_VariableDefinition : public CPulseDoc_BaseValueDefinition
{
public:
	PULSE_DOC_NODE_TYPE()
	PulseVariableKeysSource_t m_nKeysSource = PulseVariableKeysSource_t::PRIVATE;
	bool m_bIsPublicBlackboardVariable = false;
	// Writes tell the graph's listeners (SET_VAR_OBSERVABLE).
	bool m_bIsObservable = false;
	bool IsConstant() const override { return false; }

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;
};

class CPulseDoc_ConstantDefinition : public CPulseDoc_BaseValueDefinition
{
public:
	PULSE_DOC_NODE_TYPE()
	bool IsConstant() const override { return true; }
};
