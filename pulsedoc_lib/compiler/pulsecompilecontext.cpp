#include "pulsedoc_lib/compiler/pulsecompilecontext.h"

#include <cstdarg>
#include <cstdio>

#include "pulse_runtime_lib/graph/pulsegraphdefio.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/compiler/pulsepointanalysis.h"
#include "pulsedoc_lib/compiler/pulsesequencepoint.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulsedocconnections.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsedocroot.h"

using enum PulseInstructionCode_t;

namespace
{
// More value-node compiles than any graph a person writes needs: value nodes read by
// several inputs compile once per read, and chains of them multiply.
constexpr int MAX_VALUE_COMPILES = 200000;

std::string OutparamKey( const CPulseDocNode *pNode, const char *pName )
{
	return std::to_string( pNode->GetNodeID() ) + ":" + pName;
}
} // namespace

CPulseCompileContext::CPulseCompileContext( CPulseDoc *pDoc, CPulseDocMessages *pMessages, const PulseCompileOptions_t &options )
	: m_pDoc( pDoc ), m_pMessages( pMessages ), m_Options( options )
{
	m_Cells.SetToEmptyArray();
}

CPulseCompileContext::~CPulseCompileContext() = default;

void CPulseCompileContext::ReportError( const CPulseDocNode *pNode, const char *pFormat, ... )
{
	char buffer[ 2048 ];
	va_list args;
	va_start( args, pFormat );
	vsnprintf( buffer, sizeof( buffer ), pFormat, args );
	va_end( args );
	m_pMessages->Error( pNode, "%s", buffer );
}

void CPulseCompileContext::ReportWarning( const CPulseDocNode *pNode, const char *pFormat, ... )
{
	char buffer[ 2048 ];
	va_list args;
	va_start( args, pFormat );
	vsnprintf( buffer, sizeof( buffer ), pFormat, args );
	va_end( args );
	m_pMessages->Warning( pNode, "%s", buffer );
}

const PulsePointCompileRecord_t *CPulseCompileContext::FindRecord( const CPulseSequencePoint *pPoint ) const
{
	auto it = m_Records.find( pPoint );
	return it == m_Records.end() || !it->second.m_bCompiled ? nullptr : &it->second;
}

void CPulseCompileContext::EnqueueCompile( const CPulseSequencePoint *pPoint )
{
	if ( pPoint && !FindRecord( pPoint ) )
		m_Work.push_back( pPoint );
}

void CPulseCompileContext::QueueBranch( uint16_t nCondition, int nChunk, int nInstruction, const CPulseSequencePoint *pTarget )
{
	m_Branches.push_back( { nCondition, nChunk, nInstruction, pTarget } );
	EnqueueCompile( pTarget );
}

void CPulseCompileContext::QueueCall( int nChunk, int nInstruction, const CPulseSequencePoint *pTarget )
{
	m_Calls.push_back( { nChunk, nInstruction, pTarget } );
	EnqueueCompile( pTarget );
}

bool CPulseCompileContext::IsOutparamRead( const CPulseDocNode *pNode, const char *pOutparam ) const
{
	return m_ReadOutparams.count( OutparamKey( pNode, pOutparam ) ) > 0;
}

// Tables.

int CPulseCompileContext::AddCell( const CPulseDocNode *pNode )
{
	auto it = m_CellOfNode.find( pNode );
	if ( it != m_CellOfNode.end() )
		return it->second;
	KeyValues3 *pCell = m_Cells.ArrayAddToTail();
	pCell->SetToEmptyTable();
	m_CellNodes.push_back( pNode );
	int nCell = int( m_CellNodes.size() ) - 1;
	m_CellOfNode.emplace( pNode, nCell );
	return nCell;
}

int CPulseCompileContext::AddEntryCell( const CPulseDocNode *pNode, const KeyValues3 &cell )
{
	if ( m_CellOfNode.count( pNode ) )
		return -1;
	int nCell = AddCell( pNode );
	GetCellTable( nCell )->CopyFrom( cell );
	return nCell;
}

int CPulseCompileContext::FindCell( const CPulseDocNode *pNode ) const
{
	auto it = m_CellOfNode.find( pNode );
	return it == m_CellOfNode.end() ? -1 : it->second;
}

KeyValues3 *CPulseCompileContext::GetCellTable( int nCell )
{
	return m_Cells.GetArrayElement( nCell );
}

int CPulseCompileContext::FindVar( PulseDocNodeID_t nDefinition, const CPulseDocNode *pReader )
{
	auto it = m_VarOfNode.find( nDefinition );
	if ( it == m_VarOfNode.end() )
	{
		ReportError( pReader, "Bad variable reference (%d)", nDefinition );
		return -1;
	}
	return it->second;
}

int CPulseCompileContext::AddConstant( const CPulseValueFullType &type, const KeyValues3 &value )
{
	for ( size_t i = 0; i < m_Constants.size(); ++i )
	{
		if ( m_Constants[ i ].m_Type == type && m_Constants[ i ].m_Value.IsEqual( value ) && m_Constants[ i ].m_Value.GetSubType() == value.GetSubType() )
			return int( i );
	}
	CPulse_Constant &constant = m_Constants.emplace_back();
	constant.m_Type = type;
	constant.m_Value.CopyFrom( value );
	return int( m_Constants.size() ) - 1;
}

bool CPulseCompileContext::SpendValueCompile( const CPulseDocNode *pNode )
{
	if ( ++m_nValueCompiles <= MAX_VALUE_COMPILES )
		return true;
	if ( !m_bReportedValueBudget )
		ReportError( pNode, "The graph asks for more than %d value computations; value nodes read by many inputs multiply", MAX_VALUE_COMPILES );
	m_bReportedValueBudget = true;
	return false;
}

bool CPulseCompileContext::ClaimEntryName( const char *pKind, const char *pName )
{
	return m_EntryNames.insert( std::string( pKind ) + ":" + pName ).second;
}

// Generation.

CCompiledChunk *CPulseCompileContext::ChunkForPoint( const CPulseSequencePoint *pPoint )
{
	const CPulseSequencePoint *pHead = m_pAnalysis->GetHead( pPoint );
	if ( !pHead )
		pHead = pPoint;
	auto it = m_ChunkOfHead.find( pHead );
	if ( it != m_ChunkOfHead.end() )
		return m_Chunks[ size_t( it->second ) ].get();
	int nChunk = int( m_Chunks.size() );
	m_Chunks.push_back( std::make_unique<CCompiledChunk>( this, nChunk ) );
	m_ChunkOfHead.emplace( pHead, nChunk );
	return m_Chunks.back().get();
}

void CPulseCompileContext::CompileLine( const CPulseSequencePoint *pStart )
{
	if ( FindRecord( pStart ) )
		return;
	// A head compiles first in its chunk, so a leap finds it at instruction 0.
	const CPulseSequencePoint *pHead = m_pAnalysis->GetHead( pStart );
	if ( pHead && pHead != pStart && !FindRecord( pHead ) )
	{
		m_Work.push_front( pStart );
		m_Work.push_front( pHead );
		return;
	}
	CCompiledChunk *pChunk = ChunkForPoint( pStart );
	const CPulseSequencePoint *pPoint = pStart;
	while ( pPoint )
	{
		PulsePointCompileRecord_t &record = m_Records[ pPoint ];
		record.m_bCompiled = true;
		record.m_nChunk = pChunk->GetIndex();
		record.m_nInstruction = pChunk->GetInstructionCount();
		PulseSequencePointProperties_t properties;
		pPoint->GetProperties( &properties );
		pPoint->Compile( pChunk );
		for ( const CPulseSequencePoint *pCalled : properties.m_CalledPoints )
			EnqueueCompile( pCalled );
		if ( properties.m_bNoFallThrough )
		{
			// Its exits are compiled in their turn; its own code went wherever it goes.
			for ( const CPulseSequencePoint *pNext : properties.m_NextPoints )
				EnqueueCompile( pNext );
			return;
		}
		if ( properties.m_NextPoints.empty() )
		{
			// The flow ends: the cursor goes back to its caller, or finishes.
			pChunk->AppendInstruction( RETURN_VOID, pPoint );
			return;
		}
		for ( size_t i = 1; i < properties.m_NextPoints.size(); ++i )
			EnqueueCompile( properties.m_NextPoints[ i ] );
		const CPulseSequencePoint *pNext = properties.m_NextPoints[ 0 ];
		if ( FindRecord( pNext ) || m_pAnalysis->GetHead( pNext ) != m_pAnalysis->GetHead( pPoint ) )
		{
			pChunk->EnqueueCompileUnconditionalBranch( pPoint, pNext );
			return;
		}
		pPoint = pNext;
	}
}

void CPulseCompileContext::ResolveBranches()
{
	for ( const BranchFixup_t &branch : m_Branches )
	{
		PGDInstruction_t &instruction = m_Chunks[ size_t( branch.m_nChunk ) ]->GetInstruction( branch.m_nInstruction );
		const PulsePointCompileRecord_t *pTarget = FindRecord( branch.m_pTarget );
		bool bConditional = branch.m_nCondition != PULSE_INVALID_REGISTER;
		if ( !pTarget )
		{
			// Reported where the target failed; a return keeps the chunk well formed.
			instruction.m_nCode = RETURN_VOID;
			continue;
		}
		if ( pTarget->m_nChunk == branch.m_nChunk )
		{
			instruction.m_nCode = bConditional ? JUMP_COND : JUMP;
			instruction.m_nDestInstruction = pTarget->m_nInstruction;
		}
		else
		{
			instruction.m_nCode = bConditional ? CHUNK_LEAP_COND : CHUNK_LEAP;
			instruction.m_nChunk = pTarget->m_nChunk;
			if ( pTarget->m_nInstruction != 0 )
				ReportError( branch.m_pTarget->GetOwner(), "Internal compiler error: a leap into chunk %d lands at I%d, not at its start", pTarget->m_nChunk,
							 pTarget->m_nInstruction );
		}
		if ( bConditional )
			instruction.m_nReg0 = PulseRuntimeRegisterIndex_t( branch.m_nCondition );
	}
}

void CPulseCompileContext::ResolveCalls()
{
	for ( const CallFixup_t &call : m_Calls )
	{
		PGDInstruction_t &instruction = m_Chunks[ size_t( call.m_nChunk ) ]->GetInstruction( call.m_nInstruction );
		const PulsePointCompileRecord_t *pTarget = FindRecord( call.m_pTarget );
		if ( !pTarget )
		{
			ReportError( call.m_pTarget ? call.m_pTarget->GetOwner() : nullptr, "Internal compiler error: a call's destination was never compiled" );
			continue;
		}
		instruction.m_nChunk = pTarget->m_nChunk;
		instruction.m_nDestInstruction = pTarget->m_nInstruction;
	}
}

void CPulseCompileContext::WriteCells()
{
	for ( size_t i = 0; i < m_CellNodes.size(); ++i )
	{
		KeyValues3 *pCell = GetCellTable( int( i ) );
		m_CellNodes[ i ]->WriteCellKeys( pCell, this );
		if ( !pCell->HasMember( "_class" ) )
		{
			ReportError( m_CellNodes[ i ], "Internal Error: %s wrote no cell", m_CellNodes[ i ]->DescribeForErrors().Get() );
			pCell->SetMemberString( "_class", "CPulseCell_BaseFlow" );
		}
		pCell->SetMemberInt( "m_nEditorNodeID", m_CellNodes[ i ]->GetNodeID() );
	}
}

bool CPulseCompileContext::Generate()
{
	int nErrorsBefore = m_pMessages->GetErrorCount();
	if ( m_Options.m_nVerbosity > 0 )
	{
		m_pVerboseAnalysis = std::make_unique<CPulsePointAnalysis>();
		m_pVerboseAnalysis->Run( *m_pDoc, m_Options.m_nVerbosity );
		m_Log += m_pVerboseAnalysis->GetLog();
		m_pAnalysis = m_pVerboseAnalysis.get();
	}
	else
	{
		m_pAnalysis = &m_pDoc->GetAnalysis();
	}

	// Variables, in document order; which outputs something reads.
	std::vector<CPulseDocNode *> nodes;
	m_pDoc->GatherNodes( &nodes );
	for ( const CPulseDocNode *pNode : nodes )
	{
		if ( auto *pVariable = dynamic_cast<const CPulseDoc_VariableDefinition *>( pNode ) )
		{
			m_VarOfNode.emplace( pVariable->GetNodeID(), int( m_Vars.size() ) );
			CPulse_Variable &var = m_Vars.emplace_back();
			var.m_Name = PulseSymbol_t( pVariable->GetName() );
			var.m_Description = pVariable->m_Description;
			var.m_Type = pVariable->GetValueType();
			var.m_DefaultValue.CopyFrom( pVariable->m_Value.m_Value );
			var.m_nKeysSource = pVariable->m_nKeysSource;
			var.m_bIsPublicBlackboardVariable = pVariable->m_bIsPublicBlackboardVariable;
			var.m_bIsObservable = pVariable->m_bIsObservable;
			var.m_nEditorNodeID = pVariable->GetNodeID();
		}
		else if ( auto *pConnection = dynamic_cast<const CPulseDoc_Connection_Inparam *>( pNode ) )
		{
			if ( const CPulseDocNode *pSource = pConnection->FindSourceNode() )
				m_ReadOutparams.insert( OutparamKey( pSource, pConnection->m_SourceOutparamName.Get() ) );
		}
	}

	for ( int nStart : m_pAnalysis->GetStarts() )
		EnqueueCompile( m_pAnalysis->Get( nStart ).m_pPoint );
	while ( !m_Work.empty() )
	{
		const CPulseSequencePoint *pPoint = m_Work.front();
		m_Work.pop_front();
		CompileLine( pPoint );
	}
	ResolveBranches();
	ResolveCalls();
	for ( const std::unique_ptr<CCompiledChunk> &pChunk : m_Chunks )
		pChunk->CheckLimits( nullptr );
	WriteCells();
	return m_pMessages->GetErrorCount() == nErrorsBefore;
}

void CPulseCompileContext::BuildDefinitionKV3( KeyValues3 *pRoot ) const
{
	CPulseGraphDef def;
	const CPulseDoc_Root *pRootNode = m_pDoc->GetRoot();
	def.m_DomainIdentifier = pRootNode->m_DomainIdentifier;
	def.m_DomainSubType = pRootNode->m_DomainSubType;
	def.m_ParentMapName = PulseSymbol_t( pRootNode->m_ParentMapName.Get() );
	def.m_ParentXmlName = PulseSymbol_t( pRootNode->m_ParentXmlName.Get() );
	for ( const std::unique_ptr<CCompiledChunk> &pChunk : m_Chunks )
	{
		CPulse_Chunk &chunk = def.m_Chunks.emplace_back();
		chunk.m_Instructions = pChunk->m_Instructions;
		chunk.m_Registers = pChunk->m_Registers;
		chunk.m_InstructionDebugInfos = pChunk->m_DebugInfos;
	}
	def.m_Vars = m_Vars;
	def.m_InvokeBindings = m_InvokeBindings;
	def.m_CallInfos = m_CallInfos;
	def.m_Constants = m_Constants;
	CUtlString error;
	PulseGraphDef_SaveKV3( def, pRoot, &error );
	if ( m_Cells.GetArrayElementCount() > 0 )
		pRoot->FindOrCreateMember( "m_Cells" )->CopyFrom( m_Cells );
}
