#pragma once
// The base of every cell: an object of a compiled graph that holds what a node needs
// beyond plain instructions. Cells belong to the definition and never change; what moves
// lives in the instance's state block (per-instance state) or in a cursor's yield record
// (per-yield state), so one cell serves every instance of its graph.

#include <cstddef>

#include "core/kv3transfer/kv3transfertypes.h"
#include "pulse_runtime_lib/exec/pulsecursortypes.h"
#include "pulse_runtime_lib/graph/pulsegraphrecords.h"

class CPulseExecCursor;
class CSchemaClassInfo;

// One row of IPulseGraphDef::GatherPublicInterface.
struct PulsePublicInterfaceRow_t
{
	enum Kind_t
	{
		KIND_METHOD = 0,
		KIND_OUTPUT = 1,
		KIND_VARIABLE = 2,
		KIND_OUTPUT_CONNECTION = 3,
	};
	Kind_t m_eKind = KIND_METHOD;
	CUtlString m_Name;
	CUtlString m_Description;
	CPulseValueFullType m_Type; // a method's return type, a variable's type
	bool m_bPublic = false;
	std::vector<CPulseRuntimeMethodArg> m_Args;
	// Variables.
	KeyValues3 m_DefaultValue;
	PulseVariableKeysSource_t m_nKeysSource = PulseVariableKeysSource_t::PRIVATE;
	bool m_bPublicBlackboard = false;
	bool m_bObservable = false;
	PulseDocNodeID_t m_nEditorNodeID = -1;
	// Output connections: target entity, target input, parameter.
	CUtlString m_TargetEntity;
	CUtlString m_TargetInput;
	CUtlString m_Param;
};

class CPulseCell_Base
{
	SCHEMA_CLASS( CPulseCell_Base )
	virtual ~CPulseCell_Base() = default;
	SCHEMA_FIELD( PulseDocNodeID_t, m_nEditorNodeID, -1 )

	// The schema class of the real object; its name is the cell's class name.
	const CSchemaClassInfo *GetSchemaClass() const;
	const char *GetClassName() const;
	// What the dump shows after the class name.
	virtual void AppendDescription( CUtlString * ) const {}
	// Rows this cell adds to the graph's public interface.
	virtual void GatherPublicInterface( std::vector<PulsePublicInterfaceRow_t> * ) const {}

	// Per-instance state: size and alignment of the cell's part of the state block.
	virtual void GetInstanceStateLayout( size_t *pSize, size_t *pAlignment ) const
	{
		*pSize = 0;
		*pAlignment = 1;
	}
	virtual void ConstructInstanceState( void * ) const {}
	virtual void DestructInstanceState( void * ) const {}

	// A cancel asked of a cursor yielded here; by default the yield ends as canceled.
	virtual void OnCancelRequested( CPulseExecCursor *pCursor, PulseCursorCancelPriority_t ePriority ) const;
	// A cursor this cursor observes has finished.
	virtual void OnObservedResult( CPulseExecCursor *, PulseCursorID_t, PulseCursorExecResult_t ) const {}
	// A scheduled wake fired; by default the yield completes at the wake resume point.
	virtual void OnWake( CPulseExecCursor *pCursor ) const;
	// Where a cursor released from this cell goes on; null when the cell has no such point.
	virtual const CPulse_ResumePoint *GetResumePoint() const { return nullptr; }
	// Every way out of the cell, for binding to check and bind.
	virtual void GatherOutflows( std::vector<CPulse_OutflowConnection *> * ) {}

	// Per-yield state: exists only while a cursor is yielded here.
	virtual void *AllocYieldState() const { return nullptr; }
	virtual void FreeYieldState( void * ) const {}
	virtual bool SaveYieldState( CPulseExecCursor *, const void *, KeyValues3 * ) const { return true; }
	virtual bool LoadYieldState( CPulseExecCursor *, void *, const KeyValues3 * ) const { return true; }

	// A cell of a class this build doesn't know loads as a CPulseCell_Unknown.
	static std::unique_ptr<CPulseCell_Base> KV3CreateForUnknownClass( const char *pszClassName, const KeyValues3 *pTable, CKV3TransferLoadContext *pContext );
};

class CPulseCell_BaseFlow : public CPulseCell_Base
{
	SCHEMA_DERIVED_CLASS( CPulseCell_BaseFlow, CPulseCell_Base )
};

class CPulseCell_BaseRequirement : public CPulseCell_Base
{
	SCHEMA_DERIVED_CLASS( CPulseCell_BaseRequirement, CPulseCell_Base )
};

class CPulseCell_BaseValue : public CPulseCell_Base
{
	SCHEMA_DERIVED_CLASS( CPulseCell_BaseValue, CPulseCell_Base )
};

// Stands for a cell whose class this build doesn't know: keeps its keys, runs nothing.
class CPulseCell_Unknown : public CPulseCell_Base
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Unknown, CPulseCell_Base )
	SCHEMA_FIELD( KeyValues3, m_UnknownKeys, {} )
	void AppendDescription( CUtlString *pText ) const override;
};
