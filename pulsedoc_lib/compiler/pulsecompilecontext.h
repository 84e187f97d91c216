#pragma once
// One compilation of a document: the work list of points, the compile record of each
// point, the chunks, the tables that end up in the definition (cells, variables,
// constants, invoke bindings, call infos), and the branches and calls to fix up once
// every point has its place.
//
// Generation: each start point begins a chunk; a point that falls through continues in
// its chunk, a point whose head (see the analysis) is another chunk's is reached by a
// leap; the work list drains; then branches become jumps (same chunk) or leaps, calls get
// their destinations, and every node with a cell writes it.

#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "pulse_runtime_lib/graph/pulsegraphrecords.h"

class CPulseDoc;
class CPulseDocNode;
class CPulseDocMessages;
class CPulsePointAnalysis;
class CPulseSequencePoint;
class CCompiledChunk;

struct PulseCompileOptions_t
{
	// 1: the analysis' summary lines and a line per branch; 2: every step and the graph.
	int m_nVerbosity = 0;
	// Every new register joins the value scope's temporaries (is detached after its last
	// read), not only arrays.
	bool m_bEveryRegisterIsTemporary = false;
};

struct PulsePointCompileRecord_t
{
	bool m_bCompiled = false;
	int m_nChunk = -1;
	int m_nInstruction = -1;
};

class CPulseCompileContext
{
public:
	CPulseCompileContext( CPulseDoc *pDoc, CPulseDocMessages *pMessages, const PulseCompileOptions_t &options );
	~CPulseCompileContext();

	// The whole generation; false when anything was reported as an error.
	bool Generate();
	// The definition's tables as the runtime's KV3 (after Generate).
	void BuildDefinitionKV3( KeyValues3 *pRoot ) const;

	CPulseDoc *GetDoc() const { return m_pDoc; }
	CPulseDocMessages *GetMessages() const { return m_pMessages; }
	const CPulsePointAnalysis &GetAnalysis() const { return *m_pAnalysis; }
	const PulseCompileOptions_t &GetOptions() const { return m_Options; }
	// Verbose lines of the generation.
	CUtlString &GetLog() { return m_Log; }

	void ReportError( const CPulseDocNode *pNode, const char *pFormat, ... ) __attribute__( ( format( printf, 3, 4 ) ) );
	void ReportWarning( const CPulseDocNode *pNode, const char *pFormat, ... ) __attribute__( ( format( printf, 3, 4 ) ) );

	const PulsePointCompileRecord_t *FindRecord( const CPulseSequencePoint *pPoint ) const;
	void EnqueueCompile( const CPulseSequencePoint *pPoint );
	void QueueBranch( uint16_t nCondition, int nChunk, int nInstruction, const CPulseSequencePoint *pTarget );
	void QueueCall( int nChunk, int nInstruction, const CPulseSequencePoint *pTarget );

	// Whether something reads this output of the node (a connection leaves it).
	bool IsOutparamRead( const CPulseDocNode *pNode, const char *pOutparam ) const;

	// The cell of a node: found, or a new table (written by the node after generation).
	int AddCell( const CPulseDocNode *pNode );
	// An entry's cell from its record; -1 for a second entry of the same node.
	int AddEntryCell( const CPulseDocNode *pNode, const KeyValues3 &cell );
	int FindCell( const CPulseDocNode *pNode ) const;
	KeyValues3 *GetCellTable( int nCell );

	// The variable of a definition node; -1 after "Bad variable reference".
	int FindVar( PulseDocNodeID_t nDefinition, const CPulseDocNode *pReader );
	// A constant of the type with the value: an equal one, or a new one.
	int AddConstant( const CPulseValueFullType &type, const KeyValues3 &value );
	int AddInvokeBinding() { m_InvokeBindings.emplace_back(); return int( m_InvokeBindings.size() ) - 1; }
	CPulse_InvokeBinding &GetInvokeBinding( int i ) { return m_InvokeBindings[ size_t( i ) ]; }
	const CPulse_InvokeBinding &GetInvokeBinding( int i ) const { return m_InvokeBindings[ size_t( i ) ]; }
	int AddCallInfo() { m_CallInfos.emplace_back(); return int( m_CallInfos.size() ) - 1; }
	CPulse_CallInfo &GetCallInfo( int i ) { return m_CallInfos[ size_t( i ) ]; }
	const CPulse_CallInfo &GetCallInfo( int i ) const { return m_CallInfos[ size_t( i ) ]; }

	// Counts one compile of a value node; false, after one report, once a graph has asked
	// for more than anyone would write (value nodes read by many inputs multiply).
	bool SpendValueCompile( const CPulseDocNode *pNode );
	// Entries by kind and name: false for the second of a name.
	bool ClaimEntryName( const char *pKind, const char *pName );

	CCompiledChunk *GetChunk( int i ) const { return m_Chunks[ size_t( i ) ].get(); }
	int GetChunkCount() const { return int( m_Chunks.size() ); }

private:
	CCompiledChunk *ChunkForPoint( const CPulseSequencePoint *pPoint );
	void CompileLine( const CPulseSequencePoint *pStart );
	void ResolveBranches();
	void ResolveCalls();
	void WriteCells();

	struct BranchFixup_t
	{
		uint16_t m_nCondition;
		int m_nChunk;
		int m_nInstruction;
		const CPulseSequencePoint *m_pTarget;
	};
	struct CallFixup_t
	{
		int m_nChunk;
		int m_nInstruction;
		const CPulseSequencePoint *m_pTarget;
	};

	CPulseDoc *m_pDoc;
	CPulseDocMessages *m_pMessages;
	PulseCompileOptions_t m_Options;
	const CPulsePointAnalysis *m_pAnalysis = nullptr;
	std::unique_ptr<CPulsePointAnalysis> m_pVerboseAnalysis;
	CUtlString m_Log;
	std::unordered_map<const CPulseSequencePoint *, PulsePointCompileRecord_t> m_Records;
	std::unordered_map<const CPulseSequencePoint *, int> m_ChunkOfHead;
	std::vector<std::unique_ptr<CCompiledChunk>> m_Chunks;
	std::deque<const CPulseSequencePoint *> m_Work;
	std::vector<BranchFixup_t> m_Branches;
	std::vector<CallFixup_t> m_Calls;

	KeyValues3 m_Cells;
	std::vector<const CPulseDocNode *> m_CellNodes;
	std::unordered_map<const CPulseDocNode *, int> m_CellOfNode;
	std::vector<CPulse_Variable> m_Vars;
	std::unordered_map<PulseDocNodeID_t, int> m_VarOfNode;
	std::vector<CPulse_Constant> m_Constants;
	std::vector<CPulse_InvokeBinding> m_InvokeBindings;
	std::vector<CPulse_CallInfo> m_CallInfos;
	std::unordered_set<std::string> m_ReadOutparams; // "id:name"
	std::unordered_set<std::string> m_EntryNames;
	int m_nValueCompiles = 0;
	bool m_bReportedValueBudget = false;
};
