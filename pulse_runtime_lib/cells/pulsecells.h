#pragma once
// The cells this runtime runs: entry points (methods, events, hooks, output handlers,
// observable listeners), the two yielding inflows (yield and wait) and the debug log step.

#include "pulse_runtime_lib/cells/pulsecellbase.h"

// The start of a flow that enters from outside: its chunk and where its arguments go.
class CPulseCell_Inflow_BaseEntrypoint : public CPulseCell_BaseFlow
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Inflow_BaseEntrypoint, CPulseCell_BaseFlow )
	SCHEMA_FIELD( PulseRuntimeChunkIndex_t, m_EntryChunk, -1 )
	SCHEMA_FIELD( PulseRegisterMap_t, m_RegisterMap, {} )
};

class CPulseCell_Inflow_Method : public CPulseCell_Inflow_BaseEntrypoint
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Inflow_Method, CPulseCell_Inflow_BaseEntrypoint )
	SCHEMA_FIELD( PulseSymbol_t, m_MethodName, {} )
	SCHEMA_FIELD( CUtlString, m_Description, {} )
	SCHEMA_FIELD( bool, m_bIsPublic, false )
	SCHEMA_FIELD( CPulseValueFullType, m_ReturnType, {} )
	SCHEMA_FIELD( std::vector<CPulseRuntimeMethodArg>, m_Args, {} )
	void AppendDescription( CUtlString *pText ) const override;
	void GatherPublicInterface( std::vector<PulsePublicInterfaceRow_t> *pRows ) const override;
};

class CPulseCell_Inflow_EventHandler : public CPulseCell_Inflow_BaseEntrypoint
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Inflow_EventHandler, CPulseCell_Inflow_BaseEntrypoint )
	SCHEMA_FIELD( PulseSymbol_t, m_EventName, {} )
	void AppendDescription( CUtlString *pText ) const override;
};

class CPulseCell_Inflow_GraphHook : public CPulseCell_Inflow_BaseEntrypoint
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Inflow_GraphHook, CPulseCell_Inflow_BaseEntrypoint )
	SCHEMA_FIELD( PulseSymbol_t, m_HookName, {} )
	void AppendDescription( CUtlString *pText ) const override;
};

class CPulseCell_Inflow_EntOutputHandler : public CPulseCell_Inflow_BaseEntrypoint
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Inflow_EntOutputHandler, CPulseCell_Inflow_BaseEntrypoint )
	SCHEMA_FIELD( PulseSymbol_t, m_SourceEntity, {} )
	SCHEMA_FIELD( PulseSymbol_t, m_SourceOutput, {} )
	SCHEMA_FIELD( CPulseValueFullType, m_ExpectedParamType, {} )
	void AppendDescription( CUtlString *pText ) const override;
};

// Runs when an observed variable changes, with "previous_value" and "current_value".
class CPulseCell_Inflow_ObservableVariableListener : public CPulseCell_Inflow_BaseEntrypoint
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Inflow_ObservableVariableListener, CPulseCell_Inflow_BaseEntrypoint )
	SCHEMA_FIELD( PulseRuntimeBlackboardReferenceIndex_t, m_nBlackboardReference, -1 )
	SCHEMA_FIELD( bool, m_bSelfReference, false )
};

class CPulseCell_BaseYieldingInflow : public CPulseCell_BaseFlow
{
	SCHEMA_DERIVED_CLASS( CPulseCell_BaseYieldingInflow, CPulseCell_BaseFlow )
};

// Pause parks the cursor here; Resume releases every cursor parked here at
// m_UnyieldResume, Abort cancels them.
class CPulseCell_Inflow_Yield : public CPulseCell_BaseYieldingInflow
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Inflow_Yield, CPulseCell_BaseYieldingInflow )
	SCHEMA_FIELD( CPulse_ResumePoint, m_UnyieldResume, {} )
	const CPulse_ResumePoint *GetResumePoint() const override { return &m_UnyieldResume; }
	void AppendDescription( CUtlString *pText ) const override;
	void GatherOutflows( std::vector<CPulse_OutflowConnection *> *pList ) override { pList->push_back( &m_UnyieldResume ); }
};

// Wait parks the cursor for a duration and goes on at m_WakeResume; ImmediateWake
// releases every waiting cursor at once, Abort cancels them.
class CPulseCell_Inflow_Wait : public CPulseCell_BaseYieldingInflow
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Inflow_Wait, CPulseCell_BaseYieldingInflow )
	SCHEMA_FIELD( CPulse_ResumePoint, m_WakeResume, {} )
	const CPulse_ResumePoint *GetResumePoint() const override { return &m_WakeResume; }
	void AppendDescription( CUtlString *pText ) const override;
	void GatherOutflows( std::vector<CPulse_OutflowConnection *> *pList ) override { pList->push_back( &m_WakeResume ); }
	// The yield state is the wake time, so a reload can schedule the wake again.
	void *AllocYieldState() const override;
	void FreeYieldState( void *pState ) const override;
	bool SaveYieldState( CPulseExecCursor *pCursor, const void *pState, KeyValues3 *pKV ) const override;
	bool LoadYieldState( CPulseExecCursor *pCursor, void *pState, const KeyValues3 *pKV ) const override;
};

// Writes its text to the graph's log.
class CPulseCell_Step_DebugLog : public CPulseCell_BaseFlow
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Step_DebugLog, CPulseCell_BaseFlow )
};

// Registers every cell and record class of the runtime in the "pulse" type scope, once.
// Loading a definition calls it; code that looks classes up before that may call it too.
void PulseRuntime_RegisterClasses();
// The scope they are registered in (registering them first).
class CSchemaSystemTypeScope;
CSchemaSystemTypeScope *PulseRuntime_GetTypeScope();
