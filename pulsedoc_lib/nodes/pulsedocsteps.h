#pragma once
// Steps: a debug log line, a variable set, a method call.

#include <memory>
#include <vector>

#include "pulse_runtime_lib/graph/pulsegraphrecords.h"
#include "pulsedoc_lib/nodes/pulsedocflow.h"

// Writes its text to the graph's log (the cell CPulseCell_Step_DebugLog).
class CPulseDoc_Step_DebugLog : public CPulseDoc_BaseStep
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Step_DebugLog();
	void CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void WriteCellKeys( KeyValues3 *pCell, CPulseCompileContext *pContext ) const override;
	CUtlString GetTitle() const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Text;
};

// Sets a variable (or one element of an array variable) to a value.
class CPulseDoc_Step_SetVar : public CPulseDoc_BaseStep
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Step_SetVar();

	PulseDocNodeID_t m_VarDefID = -1;
	int m_nArrayIndexDimension = 0;
	bool m_bDoNotNotifyListeners = false;

	void OnDocumentLoaded( CPulseDocMessages *pMessages ) override;
	void CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void Validate( CPulseDocMessages *pMessages ) const override;
	CUtlString GetTitle() const override;
	// The value port takes the variable's type.
	void UpdateValueType();

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Value;
	std::vector<std::unique_ptr<CBasePulseInparamPort>> m_ArrayIndexPorts;
	KeyValues3 m_BlackboardReference;
};

// Calls a method of this graph: waits for it (mode 0) or starts it on a cursor of its own
// and goes on (mode 1, for a method that can yield). Its inputs are the method's
// arguments; "retval" is what the method gives back.
class CPulseDoc_Step_CallMethod : public CPulseDoc_BaseStep
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Step_CallMethod();

	PulseMethodCallMode_t m_nCallMode = PulseMethodCallMode_t::SYNC_WAIT_FOR_COMPLETION;
	PulseDocNodeID_t m_MethodNodeID = -1;

	void OnDocumentLoaded( CPulseDocMessages *pMessages ) override;
	void CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void Validate( CPulseDocMessages *pMessages ) const override;
	CUtlString GetTitle() const override;
	// The ports follow the method: one input per argument, "retval" for its result.
	void RebuildPorts();

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	const class CPulseDoc_Inflow_Method *FindMethod() const;

	std::vector<std::unique_ptr<CBasePulseInparamPort>> m_ArgPorts;
	std::unique_ptr<CBasePulseOutparamPort> m_pRetval;
	// The argument ports' data as read, until the method is known.
	KeyValues3 m_ArgData;
};
