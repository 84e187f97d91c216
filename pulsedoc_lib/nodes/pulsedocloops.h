#pragma once
// Loops. Every loop has an inflow "Start", exits "Loop" and "Completed", and a header
// point. Start sets the loop up and falls into the header; the header tests the condition
// and branches to Loop or Completed; Loop runs the body as a call into the same chunk (so
// the body reads the loop's registers, its index among them), then steps the loop and
// jumps back to the header. A yield in the body keeps the loop's frame on the cursor.

#include "pulsedoc_lib/nodes/pulsedocflow.h"

class CPulseDoc_Outflow_BaseLoop : public CPulseDoc_BaseFlow
{
public:
	CPulseDoc_Outflow_BaseLoop();

	// The four steps a loop is made of; the registers they share live in the node during
	// a compile.
	virtual void InitLoop( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) = 0;
	virtual uint16_t CompileLoopCondition( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) = 0;
	virtual void CompileLoopBodyStart( const CPulseSequencePoint *, CCompiledChunk * ) {}
	virtual void CompileLoopIncrement( const CPulseSequencePoint *, CCompiledChunk * ) {}

	const CPulseSequencePoint *GetOutparamSourcePoint( const CBasePulseOutparamPort *pOutparam ) const override;

protected:
	// ADD into an existing register (the index steps in place).
	void EmitStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk, uint16_t nIndex, uint16_t nStep );

	CPulseSequencePoint m_LoopHeader;
	CPulseInflowPort m_Inflow_Start;
	CPulseOutflowPort m_Outflow_Completed;
	CPulseOutflowPort m_Outflow_Loop;
};

class CPulseDoc_Outflow_LoopWhile : public CPulseDoc_Outflow_BaseLoop
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Outflow_LoopWhile();
	void InitLoop( const CPulseSequencePoint *, CCompiledChunk * ) override {}
	uint16_t CompileLoopCondition( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Condition;
};

class CPulseDoc_Outflow_LoopIntegerRange : public CPulseDoc_Outflow_BaseLoop
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Outflow_LoopIntegerRange();
	bool m_bRangeIncludesEndpoint = false;
	CUtlString GetTitle() const override;
	void InitLoop( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	uint16_t CompileLoopCondition( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void CompileLoopBodyStart( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void CompileLoopIncrement( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Start;
	CBasePulseInparamPort m_Stop;
	CBasePulseInparamPort m_Step;
	CBasePulseOutparamPort m_Value;
	uint16_t m_nIndex = PULSE_INVALID_REGISTER, m_nStop = PULSE_INVALID_REGISTER, m_nStep = PULSE_INVALID_REGISTER;
	uint16_t m_nStepAboveZero = PULSE_INVALID_REGISTER, m_nStepBelowZero = PULSE_INVALID_REGISTER;
};

class CPulseDoc_Outflow_LoopFloatRange : public CPulseDoc_Outflow_BaseLoop
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Outflow_LoopFloatRange();
	CUtlString GetTitle() const override;
	void InitLoop( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	uint16_t CompileLoopCondition( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void CompileLoopBodyStart( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void CompileLoopIncrement( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CBasePulseInparamPort m_Start;
	CBasePulseInparamPort m_Stop;
	CBasePulseInparamPort m_Count;
	CBasePulseOutparamPort m_Value;
	CBasePulseOutparamPort m_StepSize;
	uint16_t m_nIndex = PULSE_INVALID_REGISTER, m_nIncrement = PULSE_INVALID_REGISTER, m_nCount = PULSE_INVALID_REGISTER;
	uint16_t m_nStartValue = PULSE_INVALID_REGISTER, m_nDelta = PULSE_INVALID_REGISTER;
};
