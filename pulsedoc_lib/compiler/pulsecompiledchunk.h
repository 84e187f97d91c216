#pragma once
// A chunk under construction: its instructions with their debug records, its registers,
// the outputs whose registers the flow has seen, the variable reads of the open value
// scope, and the stack of value nodes being compiled. Every operation that can fail
// reports through the compile context and answers the invalid register
// (PULSE_INVALID_REGISTER); callers stop emitting for that step.

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "pulse_runtime_lib/graph/pulsegraphrecords.h"

class CPulseCompileContext;
class CPulseSequencePoint;
class CPulseDocNode;
class CBasePulsePort;
class CBasePulseOutparamPort;
class CPulseDoc_BaseValueDefinition;

class CCompiledChunk
{
public:
	CCompiledChunk( CPulseCompileContext *pContext, int nIndex );

	CPulseCompileContext *GetContext() const { return m_pContext; }
	int GetIndex() const { return m_nIndex; }
	int GetInstructionCount() const { return int( m_Instructions.size() ); }
	PGDInstruction_t &GetInstruction( int i ) { return m_Instructions[ size_t( i ) ]; }

	// Appends an instruction with all defaults and the code, with its debug record (the
	// flow node of the point's owner, the value node being compiled, the point's name).
	PGDInstruction_t &AppendInstruction( PulseInstructionCode_t eCode, const CPulseSequencePoint *pPoint, int *pIndex = nullptr );

	// Registers. A type no register can hold, or a chunk past what the offsets reach, is
	// reported (about pNode) and gives the invalid register.
	uint16_t AllocRegister( const CPulseValueFullType &type, const char *pName, const CPulseDocNode *pNode, int nWrittenBy = -1 );
	// Named "%d:%s" from the node id and the port name; an invalid type reports "Invalid
	// type for port '%s'", PVAL_UNKNOWN "Unspecified type for port '%s'".
	uint16_t AllocRegisterForPort( const CBasePulsePort *pPort, const CPulseValueFullType &type, int nWrittenBy = -1 );
	void SetRegisterWriter( uint16_t nRegister, int nInstruction );
	const CPulseValueFullType &GetRegisterType( uint16_t nRegister ) const;
	int GetRegisterCount() const { return int( m_Registers.size() ); }
	bool IsValidRegister( uint16_t nRegister ) const { return nRegister < m_Registers.size(); }
	// The register limit was reached (and reported): later failures follow from it.
	bool HasReachedLimit() const { return m_bReportedLimit; }

	// Outputs whose registers the flow has seen: scoped ones while the value scope that
	// made them is open, lasting ones for the chunk.
	void RecordOutparam( const CBasePulseOutparamPort *pPort, uint16_t nRegister );
	// Newest first, scoped before lasting.
	uint16_t FindOutparamRegister( const CBasePulseOutparamPort *pPort ) const;
	// The register of a connected output, read at pPoint by pReader's input pInparam: a
	// flow node's output must be written on every way to the reader; a value node is
	// compiled anew.
	uint16_t ReadOutput( const CPulseSequencePoint *pPoint, const CPulseDocNode *pSource, const CBasePulseOutparamPort *pOutparam, const CPulseDocNode *pReader,
						 const char *pInparam );

	// Each input of the node that belongs to the inflow (all, when null) into a register
	// of its type, stored by name in pMap (a KV3 table). False when any failed.
	bool CompileInparams( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, KeyValues3 *pMap, const char *pInflow = nullptr );
	// A register per output of the node that something reads (every output when bAll),
	// written by the instruction given (-1: at the start of the chunk).
	void CompileOutparams( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, KeyValues3 *pMap, int nWrittenBy, bool bAll = false );

	// A register of the wanted type: the same one when no conversion is due, else a new
	// one written by CONVERT_VALUE ("cast<%s>( %s )").
	uint16_t CastRegister( uint16_t nRegister, const CPulseSequencePoint *pPoint, const CPulseValueFullType &type, const CPulseDocNode *pNode );
	// CONVERT_VALUE when a conversion is due, else COPY.
	void MoveToRegister( const CPulseSequencePoint *pPoint, uint16_t nFrom, uint16_t nTo );

	// A literal as a constant of the type, read into a new register "%d:%s".
	uint16_t EmitLiteral( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, const char *pPortName, const CPulseValueFullType &type, const KeyValues3 &value );
	// A variable's value (shared with other reads in the open value scope) or a constant's.
	uint16_t EmitValueDefinitionRead( const CPulseSequencePoint *pPoint, const CPulseDoc_BaseValueDefinition *pDefinition, const CPulseDocNode *pReader );
	// An operator into a new register of the result type.
	uint16_t EmitOperator( const CPulseSequencePoint *pPoint, PulseInstructionCode_t eCode, uint16_t nLeft, uint16_t nRight, const CPulseValueFullType &result,
						   const char *pName, const CPulseDocNode *pNode );

	// Calls of cells and library functions. Answer the instruction, or -1.
	int EmitCellInvoke( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, const char *pMethod, const char *pInflow = nullptr, bool bOutputs = true );
	int EmitLibraryInvoke( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, const char *pFunction, const char *pInflow = nullptr, bool bOutputs = true,
						   bool bAllOutputs = false );
	// A library call with given argument registers and one result.
	uint16_t WriteLibraryCall( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, const char *pFunction, const std::vector<uint16_t> &args );
	// An entry's prologue: its inputs, a NOP, and its outputs written at chunk start.
	void EmitEntryRegisters( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, KeyValues3 *pRegisterMap );
	// A method call; the destination is fixed up once the method is compiled.
	void EmitCall( const CPulseSequencePoint *pPoint, PulseDocNodeID_t nTarget, PulseInstructionCode_t eCode, const CPulseDocNode *pNode );
	// The same to a point of the graph, passing nothing (a loop body, a branch).
	void EmitCallToPoint( const CPulseSequencePoint *pPoint, const CPulseSequencePoint *pTarget, const char *pName, PulseInstructionCode_t eCode );

	// Branches, resolved after generation into jumps or leaps by where the target lands.
	void AppendBranch( const CPulseSequencePoint *pPoint, uint16_t nCondition, const CPulseSequencePoint *pTrue, const CPulseSequencePoint *pFalse );
	void AppendBranchOne( const CPulseSequencePoint *pPoint, uint16_t nCondition, const CPulseSequencePoint *pTarget );
	void EnqueueCompileUnconditionalBranch( const CPulseSequencePoint *pPoint, const CPulseSequencePoint *pTarget );

	// The value scope: nested opens share it; the outermost close detaches temporaries.
	void OpenValueScope( const CPulseSequencePoint *pPoint );
	void CloseValueScope();
	int GetValueScopeDepth() const { return m_Scope.m_nDepth; }
	void SetScopeMoveVariable( int nVar ) { m_Scope.m_nMoveVar = nVar; }
	void SetScopeEnd() { m_Scope.m_nEnd = GetInstructionCount(); }

	// The value nodes being compiled; the top fills m_nValueNodeID. False when the node is
	// already being compiled (a cycle) or the nesting is too deep, after a report.
	bool PushValueNode( const CPulseDocNode *pNode );
	void PopValueNode();

	// The variable reads of the open scope: code that runs only on one way (an arm of a
	// ternary) must not share reads with the other.
	using VarReads_t = std::unordered_map<PulseDocNodeID_t, uint16_t>;
	VarReads_t GetVarReads() const { return m_VarReads; }
	void SetVarReads( const VarReads_t &reads ) { m_VarReads = reads; }
	uint16_t FindVarRegister( PulseDocNodeID_t nDefinition ) const;
	void RememberVarRead( PulseDocNodeID_t nDefinition, uint16_t nRegister );

	// Sizes past what the runtime's offsets reach are reported once.
	void CheckLimits( const CPulseDocNode *pNode );

	std::vector<PGDInstruction_t> m_Instructions;
	std::vector<CPulse_InstructionDebug> m_DebugInfos;
	std::vector<CPulse_RegisterInfo> m_Registers;

private:
	struct ValueScope_t
	{
		const CPulseSequencePoint *m_pPoint = nullptr;
		int m_nDepth = 0;
		std::vector<uint16_t> m_Temporaries;
		std::unordered_set<uint16_t> m_TemporarySet;
		int m_nFirst = -1;
		int m_nEnd = -1;
		int m_nMoveVar = -1;
	};
	void DetachTemporaries();
	void GatherReadsAndWrites( const PGDInstruction_t &instruction, std::vector<int> *pReads, std::vector<int> *pWrites ) const;

	CPulseCompileContext *m_pContext;
	int m_nIndex;
	size_t m_nRegisterBytes = 0;
	bool m_bReportedLimit = false;
	ValueScope_t m_Scope;
	std::vector<std::pair<const CBasePulseOutparamPort *, uint16_t>> m_OutputsScoped;
	std::vector<std::pair<const CBasePulseOutparamPort *, uint16_t>> m_OutputsLasting;
	std::unordered_map<PulseDocNodeID_t, uint16_t> m_VarReads;
	std::vector<const CPulseDocNode *> m_ValueNodeStack;
};
