#pragma once
// A compiled graph: the immutable, shareable program of one Pulse graph. It holds the
// chunks of instructions, the cells and the tables instructions index. All instances of
// a graph share one definition through counted references; what changes at run time
// lives in the instance or a cursor.
//
// A definition comes from KV3 (PulseGraphDef_LoadKV3) or a compiler, and runs only once
// it is bound and validated (PulseGraphDef_Bind): bound, it never changes again.

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "pulse_runtime_lib/cells/pulsecellbase.h"
#include "pulse_runtime_lib/graph/pulseboundcode.h"
#include "pulse_runtime_lib/graph/pulsegraphrecords.h"

class CSchemaClassInfo;
class CPulseCell_Inflow_Method;

struct CPulse_Chunk
{
	SCHEMA_CLASS( CPulse_Chunk )
	// The bound plans are owned: a chunk moves but doesn't copy.
	CPulse_Chunk() = default;
	CPulse_Chunk( CPulse_Chunk && ) = default;
	CPulse_Chunk &operator=( CPulse_Chunk && ) = default;
	CPulse_Chunk( const CPulse_Chunk & ) = delete;
	CPulse_Chunk &operator=( const CPulse_Chunk & ) = delete;

	SCHEMA_FIELD( std::vector<PGDInstruction_t>, m_Instructions, {} )
	SCHEMA_FIELD( std::vector<CPulse_RegisterInfo>, m_Registers, {} )
	// One per instruction, in the same order (or none at all).
	SCHEMA_FIELD( std::vector<CPulse_InstructionDebug>, m_InstructionDebugInfos, {} )

	// Filled by binding: byte place of each register, the register file's size and
	// alignment, the typed code of each instruction, and what the interpreter runs
	// (one more operation than instructions: the end of the chunk).
	std::vector<uint16_t> m_RegisterOffsets;
	uint32_t m_nRegisterBytes = 0;
	uint32_t m_nRegisterAlignment = 1;
	std::vector<PulseInstructionCode_t> m_BoundCodes;
	std::vector<PulseOp_t> m_Ops;
	std::vector<PulseOpData_t> m_OpData;
	std::vector<std::unique_ptr<PulseInvokePlan_t>> m_InvokePlans;
	std::vector<std::unique_ptr<PulseCallPlan_t>> m_CallPlans;
	// Every register at its default, as bytes: a new register file starts as a copy. No
	// default owns memory, so copying the bytes builds the values.
	std::vector<unsigned char> m_DefaultRegisters;
	// Registers whose values own memory (strings, arrays, ...): destroyed one by one.
	std::vector<uint16_t> m_OwningRegisters;

	int GetInstructionCount() const { return int( m_Instructions.size() ); }
	int GetRegisterCount() const { return int( m_Registers.size() ); }
	PulseDocNodeID_t GetFlowNodeID( int nInstruction ) const;
	// The code as bound (typed), or as stored before binding.
	PulseInstructionCode_t GetCode( int nInstruction ) const;
};

class IPulseGraphDef
{
public:
	virtual ~IPulseGraphDef() = default;

	virtual PulseSymbol_t GetDomainIdentifier() const = 0;
	virtual CPulseValueFullType GetDomainSubType() const = 0;
	virtual PulseSymbol_t GetParentMapName() const = 0;
	// Each named blackboard resource once, in first-seen order, appended.
	virtual void EnumerateBlackboardResources( std::vector<PulseSymbol_t> *pList ) const = 0;
	virtual void GatherPublicInterface( std::vector<PulsePublicInterfaceRow_t> *pRows ) const = 0;
	virtual void GetDomainValuesOfType( PulseDomainValueType_t eType, std::vector<CGlobalSymbol> *pList ) const = 0;
	virtual const char *GetPublicOutputName( int nIndex ) const = 0;
	virtual void GetInstanceStateLayout( size_t *pSize, size_t *pAlignment ) const = 0;
	// The text form, through the console message call.
	virtual void DumpToConsole() const = 0;
	virtual int GetVarCount() const = 0;
	virtual int FindVarByEditorNodeID( PulseDocNodeID_t nID ) const = 0;
	virtual int FindVarByName( const char *pName ) const = 0;
	// Out of range: a shared null value, never null.
	virtual const KeyValues3 &GetVarDefaultValue( int i ) const = 0;
	virtual PulseVariableKeysSource_t GetVarKeysSource( int i ) const = 0;
	virtual const char *GetVarName( int i ) const = 0;
	virtual const char *GetVarDescription( int i ) const = 0;
	virtual PulseDocNodeID_t GetVarEditorNodeID( int i ) const = 0;
	virtual bool IsVarPublicBlackboard( int i ) const = 0;
	virtual bool IsVarObservable( int i ) const = 0;
	// Out of range: a shared invalid type.
	virtual const CPulseValueFullType &GetVarType( int i ) const = 0;
	// All cells whose class is or derives from the named class, in m_Cells order.
	virtual void GatherCellsOfClass( const char *pClassName, std::vector<const CPulseCell_Base *> *pList ) const = 0;
	virtual const CSchemaClassInfo *GetSchemaClass() const = 0;
	virtual const CPulseCell_Inflow_Method *FindMethodCell( const char *pName ) const = 0;
};

class CPulseGraphDef : public IPulseGraphDef
{
	SCHEMA_CLASS( CPulseGraphDef )
	CPulseGraphDef();
	~CPulseGraphDef() override;
	CPulseGraphDef( const CPulseGraphDef & ) = delete;
	CPulseGraphDef &operator=( const CPulseGraphDef & ) = delete;

	SCHEMA_FIELD( PulseSymbol_t, m_DomainIdentifier, {} )
	SCHEMA_FIELD( CPulseValueFullType, m_DomainSubType, {} )
	SCHEMA_FIELD( PulseSymbol_t, m_ParentMapName, {} )
	SCHEMA_FIELD( PulseSymbol_t, m_ParentXmlName, {} )
	SCHEMA_FIELD( std::vector<CPulse_Chunk>, m_Chunks, {} )
	SCHEMA_FIELD( std::vector<std::unique_ptr<CPulseCell_Base>>, m_Cells, {} )
	SCHEMA_FIELD( std::vector<CPulse_Variable>, m_Vars, {} )
	SCHEMA_FIELD( std::vector<CPulse_PublicOutput>, m_PublicOutputs, {} )
	SCHEMA_FIELD( std::vector<CPulse_InvokeBinding>, m_InvokeBindings, {} )
	SCHEMA_FIELD( std::vector<CPulse_CallInfo>, m_CallInfos, {} )
	SCHEMA_FIELD( std::vector<CPulse_Constant>, m_Constants, {} )
	SCHEMA_FIELD( std::vector<CPulse_DomainValue>, m_DomainValues, {} )
	SCHEMA_FIELD( std::vector<CPulse_BlackboardReference>, m_BlackboardReferences, {} )
	SCHEMA_FIELD( std::vector<CPulse_OutputConnection>, m_OutputConnections, {} )

	// IPulseGraphDef.
	PulseSymbol_t GetDomainIdentifier() const override { return m_DomainIdentifier; }
	CPulseValueFullType GetDomainSubType() const override { return m_DomainSubType; }
	PulseSymbol_t GetParentMapName() const override { return m_ParentMapName; }
	void EnumerateBlackboardResources( std::vector<PulseSymbol_t> *pList ) const override;
	void GatherPublicInterface( std::vector<PulsePublicInterfaceRow_t> *pRows ) const override;
	void GetDomainValuesOfType( PulseDomainValueType_t eType, std::vector<CGlobalSymbol> *pList ) const override;
	const char *GetPublicOutputName( int nIndex ) const override;
	void GetInstanceStateLayout( size_t *pSize, size_t *pAlignment ) const override;
	void DumpToConsole() const override;
	int GetVarCount() const override { return int( m_Vars.size() ); }
	int FindVarByEditorNodeID( PulseDocNodeID_t nID ) const override;
	int FindVarByName( const char *pName ) const override;
	const KeyValues3 &GetVarDefaultValue( int i ) const override;
	PulseVariableKeysSource_t GetVarKeysSource( int i ) const override;
	const char *GetVarName( int i ) const override;
	const char *GetVarDescription( int i ) const override;
	PulseDocNodeID_t GetVarEditorNodeID( int i ) const override;
	bool IsVarPublicBlackboard( int i ) const override;
	bool IsVarObservable( int i ) const override;
	const CPulseValueFullType &GetVarType( int i ) const override;
	void GatherCellsOfClass( const char *pClassName, std::vector<const CPulseCell_Base *> *pList ) const override;
	const CSchemaClassInfo *GetSchemaClass() const override;
	const CPulseCell_Inflow_Method *FindMethodCell( const char *pName ) const override;

	// The text of DumpToConsole, for callers that print it themselves.
	void Dump( CUtlString *pText ) const;

	// Lookups of the run loop; null for an index out of range (the chunk: for -1).
	const CPulse_Chunk *GetChunk( int i ) const;
	const CPulseCell_Base *GetCell( int i ) const;
	const CPulseCell_Base *FindCellByEditorNodeID( PulseDocNodeID_t nID ) const;
	const CPulse_CallInfo *GetCallInfo( int i ) const;
	const CPulse_InvokeBinding *GetInvokeBinding( int i ) const;
	const CPulse_Constant *GetConstant( int i ) const;
	const CPulse_DomainValue *GetDomainValue( int i ) const;
	const CPulse_BlackboardReference *GetBlackboardReference( int i ) const;
	// Entries by their names (exact case); null when there is none.
	const CPulseCell_Base *FindEventHandlerCell( const char *pName ) const;
	const CPulseCell_Base *FindGraphHookCell( const char *pName ) const;

	// The stored value of a constant with storage; null without.
	const void *GetConstantStorage( int i ) const;
	// Cells with per-instance state, with their byte places in the state block.
	struct StatefulCell_t
	{
		const CPulseCell_Base *m_pCell;
		PulseRuntimeStateOffset_t m_nOffset;
	};
	const std::vector<StatefulCell_t> &GetStatefulCells() const { return m_StatefulCells; }

	bool IsBound() const { return m_bBound; }
	// Where the definition came from ("pulse/samples/hello.tpulsec"): reports name it.
	const char *GetResourceName() const { return m_ResourceName.Get(); }
	void SetResourceName( const char *pName ) { m_ResourceName.Set( pName ); }

	// Counted references; a definition frees itself with the last one.
	void AddRef() const { m_nRefCount.fetch_add( 1, std::memory_order_relaxed ); }
	void Release() const;

private:
	friend class CPulseGraphBinder;

	CUtlString m_ResourceName;
	bool m_bBound = false;
	size_t m_nStateSize = 0;
	size_t m_nStateAlignment = 1;
	std::vector<StatefulCell_t> m_StatefulCells;
	// Constants with inline storage, built by type at binding and destroyed with the definition.
	unsigned char *m_pConstantBuffer = nullptr;
	mutable std::atomic<int32_t> m_nRefCount { 0 };
};

// A counted reference to a definition.
class CPulseGraphDefHandle
{
public:
	CPulseGraphDefHandle() = default;
	explicit CPulseGraphDefHandle( CPulseGraphDef *pDef ) : m_pDef( pDef )
	{
		if ( m_pDef )
			m_pDef->AddRef();
	}
	CPulseGraphDefHandle( const CPulseGraphDefHandle &other ) : CPulseGraphDefHandle( other.m_pDef ) {}
	CPulseGraphDefHandle( CPulseGraphDefHandle &&other ) noexcept : m_pDef( other.m_pDef ) { other.m_pDef = nullptr; }
	CPulseGraphDefHandle &operator=( CPulseGraphDefHandle other ) noexcept
	{
		std::swap( m_pDef, other.m_pDef );
		return *this;
	}
	~CPulseGraphDefHandle()
	{
		if ( m_pDef )
			m_pDef->Release();
	}

	CPulseGraphDef *Get() const { return m_pDef; }
	CPulseGraphDef *operator->() const { return m_pDef; }
	CPulseGraphDef &operator*() const { return *m_pDef; }
	explicit operator bool() const { return m_pDef != nullptr; }

private:
	CPulseGraphDef *m_pDef = nullptr;
};
