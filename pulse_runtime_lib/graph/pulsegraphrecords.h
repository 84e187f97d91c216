#pragma once
// The records a compiled graph is made of: chunks of instructions with their registers,
// and the tables that instructions index (variables, constants, domain values, blackboard
// references, invoke bindings, call infos, outflow connections). Each is declared once;
// its KV3 form follows from the declaration, with defaults left out on save.
//
// Members after the declared fields are filled by binding (see pulsegraphbinder.h) and
// are never stored.

#include <cstdint>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/schema/schemaresourcetypes.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphtypes.h"
#include "pulse_runtime_lib/graph/pulseinstructioncode.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltypetransfer.h"

struct PulseFunctionBinding_t;
class CPulseCell_Base;

// The resource type of compiled graph definitions ("*.tpulsec" files).
struct InfoForResourceTypeIPulseGraphDef
{
	static constexpr const char *s_pszResourceType = "tpulsec";
};

enum class PulseVariableKeysSource_t : int32_t
{
	PRIVATE = 0,
	CPP = 1,
	TLVL = 2,
	TMSH = 3,
	XML = 4,
	COUNT = 5,
};
SCHEMA_ENUM_BEGIN( PulseVariableKeysSource_t )
	SCHEMA_ENUMERATOR( PRIVATE, { "MPropertyFriendlyName", "Private" } )
	SCHEMA_ENUMERATOR( CPP, { "MPropertyFriendlyName", "Code" } )
	SCHEMA_ENUMERATOR( TLVL, { "MPropertyFriendlyName", "Parent Map" } )
	SCHEMA_ENUMERATOR( TMSH, { "MPropertyFriendlyName", "Parent TMSH" } )
	SCHEMA_ENUMERATOR( XML, { "MPropertyFriendlyName", "Parent XML" } )
	SCHEMA_ENUMERATOR( COUNT )
SCHEMA_ENUM_END()

enum class PulseDomainValueType_t : int32_t
{
	INVALID = -1,
	ENTITY_NAME = 0,
	PANEL_ID = 1,
	COUNT = 2,
};
SCHEMA_ENUM_BEGIN( PulseDomainValueType_t )
	SCHEMA_ENUMERATOR( INVALID, { "MPropertyFriendlyName", "Invalid" } )
	SCHEMA_ENUMERATOR( ENTITY_NAME, { "MPropertyFriendlyName", "Parent Map Entity" } )
	SCHEMA_ENUMERATOR( PANEL_ID, { "MPropertyFriendlyName", "Parent XML Panel" } )
	SCHEMA_ENUMERATOR( COUNT )
SCHEMA_ENUM_END()

enum class PulseMethodCallMode_t : int32_t
{
	SYNC_WAIT_FOR_COMPLETION = 0,
	ASYNC_FIRE_AND_FORGET = 1,
};
SCHEMA_ENUM_BEGIN( PulseMethodCallMode_t )
	SCHEMA_ENUMERATOR( SYNC_WAIT_FOR_COMPLETION, { "MPropertyFriendlyName", "Wait For Completion" },
					   { "MPropertyDescription", "Synchronous - wait for the method to fully complete before returning" } )
	SCHEMA_ENUMERATOR( ASYNC_FIRE_AND_FORGET, { "MPropertyFriendlyName", "Fire And Forget" },
					   { "MPropertyDescription", "Asynchronous - returns and continues despite the called method yielding" } )
SCHEMA_ENUM_END()

// What a domain allows (bit flags).
enum PulseApiFeature_t : uint32_t
{
	AF_NONE = 0,
	AF_ENTITIES = 1,
	AF_VISTARA = 2,
	AF_PARTICLES = 8,
	AF_FAKE_ENTITIES = 16,
	AF_SELECTORS_WITHOUT_REQUIREMENTS = 32,
};

// One name -> register entry of a register map, as binding reads it from the KV3 table.
struct PulseRegisterMapEntry_t
{
	PulseSymbol_t m_Name;
	int m_nRegister;
	bool m_bMovable; // inputs only: the register dies with the call
};

// Where the arguments of a call sit.
struct PulseRegisterMap_t
{
	SCHEMA_CLASS( PulseRegisterMap_t )
	// Parameter name -> register number (any KV3 number or a decimal string).
	SCHEMA_FIELD( KeyValues3, m_Inparams, {} )
	// Parameters whose register dies with the call; the callee may take the value over.
	SCHEMA_FIELD( std::vector<PulseSymbol_t>, m_InparamsWhichCanBeMoved, {} )
	// Result name -> register number.
	SCHEMA_FIELD( KeyValues3, m_Outparams, {} )

	// The two tables as lists, in table order; filled by binding.
	std::vector<PulseRegisterMapEntry_t> m_BoundIn;
	std::vector<PulseRegisterMapEntry_t> m_BoundOut;

	// Reads both tables into the lists; false with a message for a register number that
	// can't be one.
	bool Bind( CUtlString *pError );
	// The text of the dump: " in {...} out {...}".
	void AppendText( CUtlString *pText ) const;
};

struct CPulse_RegisterInfo
{
	SCHEMA_CLASS( CPulse_RegisterInfo )
	SCHEMA_FIELD( PulseRuntimeRegisterIndex_t, m_nReg, -1 )
	SCHEMA_FIELD( CPulseValueFullType, m_Type, {} )
	// What the value is; also the key under which a saved cursor keeps the register.
	SCHEMA_FIELD( CUtlString, m_OriginName, {} )
	// -1 when the register holds a value from the start of the chunk.
	SCHEMA_FIELD( int32_t, m_nWrittenByInstruction, -1 )
	SCHEMA_FIELD( int32_t, m_nLastReadByInstruction, -1 )

	// Live at instruction I: written before I and, if a last read is known, not read after it.
	bool IsLiveAt( int nInstruction ) const
	{
		return nInstruction > m_nWrittenByInstruction && ( m_nLastReadByInstruction < 0 || nInstruction <= m_nLastReadByInstruction );
	}
};

struct CPulse_InstructionDebug
{
	SCHEMA_CLASS( CPulse_InstructionDebug )
	SCHEMA_FIELD( PulseDocNodeID_t, m_nFlowNodeID, -1 )
	SCHEMA_FIELD( PulseDocNodeID_t, m_nValueNodeID, -1 )
	SCHEMA_FIELD( CGlobalSymbol, m_SequencePointName, {} )
};

struct PGDInstruction_t
{
	SCHEMA_CLASS( PGDInstruction_t )
	SCHEMA_FIELD( PulseInstructionCode_t, m_nCode, PulseInstructionCode_t::INVALID )
	SCHEMA_FIELD( PulseRuntimeVarIndex_t, m_nVar, -1 )
	SCHEMA_FIELD( PulseRuntimeRegisterIndex_t, m_nReg0, -1 )
	SCHEMA_FIELD( PulseRuntimeRegisterIndex_t, m_nReg1, -1 )
	SCHEMA_FIELD( PulseRuntimeRegisterIndex_t, m_nReg2, -1 )
	SCHEMA_FIELD( PulseRuntimeInvokeIndex_t, m_nInvokeBindingIndex, -1 )
	SCHEMA_FIELD( PulseRuntimeChunkIndex_t, m_nChunk, -1 )
	SCHEMA_FIELD( int32_t, m_nDestInstruction, 0 )
	SCHEMA_FIELD( PulseRuntimeCallInfoIndex_t, m_nCallInfoIndex, -1 )
	SCHEMA_FIELD( PulseRuntimeConstantIndex_t, m_nConstIdx, -1 )
	SCHEMA_FIELD( PulseRuntimeDomainValueIndex_t, m_nDomainValueIdx, -1 )
	SCHEMA_FIELD( PulseRuntimeBlackboardReferenceIndex_t, m_nBlackboardReferenceIdx, -1 )

	// The code is always written, even INVALID: a saved instruction says what it is.
	int KV3IsMemberAtDefault( const char *pszMember, const PGDInstruction_t & ) const;
};

struct CPulse_Variable
{
	SCHEMA_CLASS( CPulse_Variable )
	SCHEMA_FIELD( PulseSymbol_t, m_Name, {} )
	SCHEMA_FIELD( CUtlString, m_Description, {} )
	SCHEMA_FIELD( CPulseValueFullType, m_Type, {} )
	// The initial value in its KV3 form.
	SCHEMA_FIELD( KeyValues3, m_DefaultValue, {} )
	SCHEMA_FIELD( PulseVariableKeysSource_t, m_nKeysSource, PulseVariableKeysSource_t::PRIVATE )
	SCHEMA_FIELD( bool, m_bIsPublicBlackboardVariable, false )
	SCHEMA_FIELD( bool, m_bIsObservable, false )
	SCHEMA_FIELD( PulseDocNodeID_t, m_nEditorNodeID, -1 )

	// Byte place in an instance's state block.
	PulseRuntimeStateOffset_t m_nStateOffset = PULSE_NO_STATE_OFFSET;
};

struct CPulse_Constant
{
	SCHEMA_CLASS( CPulse_Constant )
	SCHEMA_FIELD( CPulseValueFullType, m_Type, {} )
	SCHEMA_FIELD( KeyValues3, m_Value, {} )

	// Byte place in the definition's constant buffer; none for a type without storage.
	PulseRuntimeStateOffset_t m_nStorageOffset = PULSE_NO_STATE_OFFSET;
};

struct CPulse_DomainValue
{
	SCHEMA_CLASS( CPulse_DomainValue )
	SCHEMA_FIELD( PulseDomainValueType_t, m_nType, PulseDomainValueType_t::INVALID )
	// The name to resolve.
	SCHEMA_FIELD( CGlobalSymbol, m_Value, {} )
	SCHEMA_FIELD( CPulseValueFullType, m_RequiredRuntimeType, {} )

	// Byte place of the cached value in an instance's state block.
	PulseRuntimeStateOffset_t m_nStateOffset = PULSE_NO_STATE_OFFSET;
};

struct CPulse_BlackboardReference
{
	SCHEMA_CLASS( CPulse_BlackboardReference )
	SCHEMA_FIELD( CStrongHandle<InfoForResourceTypeIPulseGraphDef>, m_hBlackboardResource, {} )
	// The resource name of the other graph.
	SCHEMA_FIELD( PulseSymbol_t, m_BlackboardResource, {} )
	// The variable's editor node in that graph, and its name.
	SCHEMA_FIELD( PulseDocNodeID_t, m_nNodeID, -1 )
	SCHEMA_FIELD( CGlobalSymbol, m_NodeName, {} )
};

struct CPulseRuntimeMethodArg
{
	SCHEMA_CLASS( CPulseRuntimeMethodArg )
	SCHEMA_FIELD( CUtlString, m_Name, {} )
	SCHEMA_FIELD( CUtlString, m_Description, {} )
	SCHEMA_FIELD( CPulseValueFullType, m_Type, {} )
};

struct CPulse_PublicOutput
{
	SCHEMA_CLASS( CPulse_PublicOutput )
	SCHEMA_FIELD( PulseSymbol_t, m_Name, {} )
	SCHEMA_FIELD( CUtlString, m_Description, {} )
	SCHEMA_FIELD( std::vector<CPulseRuntimeMethodArg>, m_Args, {} )
};

// The authored wiring from an output to an entity input.
struct CPulse_OutputConnection
{
	SCHEMA_CLASS( CPulse_OutputConnection )
	SCHEMA_FIELD( PulseSymbol_t, m_SourceOutput, {} )
	SCHEMA_FIELD( PulseSymbol_t, m_TargetEntity, {} )
	SCHEMA_FIELD( PulseSymbol_t, m_TargetInput, {} )
	SCHEMA_FIELD( PulseSymbol_t, m_Param, {} )
};

struct CPulse_InvokeBinding
{
	SCHEMA_CLASS( CPulse_InvokeBinding )
	SCHEMA_FIELD( PulseRegisterMap_t, m_RegisterMap, {} )
	SCHEMA_FIELD( PulseSymbol_t, m_FuncName, {} )
	// -1 for a library call.
	SCHEMA_FIELD( PulseRuntimeCellIndex_t, m_nCellIndex, -1 )
	SCHEMA_FIELD( PulseRuntimeChunkIndex_t, m_nSrcChunk, -1 )
	SCHEMA_FIELD( int32_t, m_nSrcInstruction, -1 )

	// What ResolveBinding found.
	const PulseFunctionBinding_t *m_pFunction = nullptr;
	uint32_t m_nRequiredHostMask = 0;
	const void *m_pOpaque = nullptr;
};

struct CPulse_CallInfo
{
	SCHEMA_CLASS( CPulse_CallInfo )
	SCHEMA_FIELD( PulseSymbol_t, m_PortName, {} )
	// The calling node.
	SCHEMA_FIELD( PulseDocNodeID_t, m_nEditorNodeID, -1 )
	SCHEMA_FIELD( PulseRegisterMap_t, m_RegisterMap, {} )
	// The node of the called method's inflow cell.
	SCHEMA_FIELD( PulseDocNodeID_t, m_CallMethodID, -1 )
	SCHEMA_FIELD( PulseRuntimeChunkIndex_t, m_nSrcChunk, -1 )
	SCHEMA_FIELD( int32_t, m_nSrcInstruction, -1 )
};

// A way out of a cell; unconnected when chunk or instruction is -1.
struct CPulse_OutflowConnection
{
	SCHEMA_CLASS( CPulse_OutflowConnection )
	SCHEMA_FIELD( PulseSymbol_t, m_SourceOutflowName, {} )
	SCHEMA_FIELD( PulseRuntimeChunkIndex_t, m_nDestChunk, -1 )
	SCHEMA_FIELD( int32_t, m_nInstruction, -1 )
	SCHEMA_FIELD( PulseRegisterMap_t, m_OutflowRegisterMap, {} )

	bool IsConnected() const { return m_nDestChunk >= 0 && m_nInstruction >= 0; }
	// "Terminate()" or "JumpOrLeap( C%d:I%d )".
	void AppendText( CUtlString *pText ) const;
};

// The same record where a yielded cursor comes back.
struct CPulse_ResumePoint : CPulse_OutflowConnection
{
	SCHEMA_DERIVED_CLASS( CPulse_ResumePoint, CPulse_OutflowConnection )
};
