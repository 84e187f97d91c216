#pragma once
// Nodes that choose where flow goes: a condition, an integer switch, a sequence of
// branches run one after another, and the end of a method with its return value.

#include <memory>
#include <vector>

#include "pulsedoc_lib/nodes/pulsedocflow.h"

class CPulseDoc_Outflow_If : public CPulseDoc_BaseOutflow
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Outflow_If();
	bool m_bNotCondition = false;
	CUtlString GetTitle() const override;
	void CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Condition;
	CPulseOutflowPort m_IsTrue;
	CPulseOutflowPort m_IsFalse;
};

// Compares an integer with each case in order; the first equal case's exit is taken,
// else "Default". Cases are written as a list of integers; their exits are "Case: N".
class CPulseDoc_Outflow_IntSwitch : public CPulseDoc_BaseOutflow
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Outflow_IntSwitch();
	CUtlString GetTitle() const override;
	void CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void Validate( CPulseDocMessages *pMessages ) const override;
	// The exits follow the cases.
	void RebuildPorts();

	KeyValues3 m_Cases;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_SwitchValue;
	CPulseOutflowPort m_DefaultCaseOutflow;
	std::vector<std::unique_ptr<CPulseOutflowPort>> m_CaseOutflows;
};

// "Sequential Branch": runs each exit to its end, in order, then the flow ends. Not parallel.
class CPulseDoc_Outflow_Simultaneous : public CPulseDoc_BaseOutflow
{
public:
	PULSE_DOC_NODE_TYPE()
	int m_nNumExits = 2;
	void CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void RebuildPorts();

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	std::vector<std::unique_ptr<CPulseOutflowPort>> m_Exits;
};

// Ends the method it is reached from, giving back its value.
class CPulseDoc_Outflow_Return : public CPulseDoc_BaseOutflow
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Outflow_Return();
	CUtlString GetTitle() const override;
	void CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	// The methods whose flow reaches this node.
	void GatherMethods( std::vector<const class CPulseDoc_Inflow_Method *> *pMethods, bool *pOtherEntry ) const;

	CBasePulseInparamPort m_ReturnValue;
};
