#include "pulsedoc_lib/compiler/pulsepointanalysis.h"

#include <algorithm>
#include <deque>

#include "pulsedoc_lib/compiler/pulsesequencepoint.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/nodes/pulsedocflow.h"

namespace
{
constexpr size_t DUMP_MAX_BYTES = 1 << 20;

void AddUnique( std::vector<int> *pList, std::unordered_set<int> *pSet, int n )
{
	if ( pSet->insert( n ).second )
		pList->push_back( n );
}

// The intersection of two sorted lists.
std::vector<int> Intersect( const std::vector<int> &a, const std::vector<int> &b )
{
	std::vector<int> result;
	std::set_intersection( a.begin(), a.end(), b.begin(), b.end(), std::back_inserter( result ) );
	return result;
}
} // namespace

int CPulsePointAnalysis::FindIndex( const CPulseSequencePoint *pPoint ) const
{
	auto it = m_Index.find( pPoint );
	return it == m_Index.end() ? -1 : it->second;
}

const CPulsePointAnalysis::Record_t *CPulsePointAnalysis::Find( const CPulseSequencePoint *pPoint ) const
{
	int n = FindIndex( pPoint );
	return n < 0 ? nullptr : &m_Records[ size_t( n ) ];
}

int CPulsePointAnalysis::Visit( const CPulseSequencePoint *pPoint )
{
	auto [ it, bNew ] = m_Index.try_emplace( pPoint, int( m_Records.size() ) );
	if ( bNew )
	{
		Record_t &record = m_Records.emplace_back();
		record.m_pPoint = pPoint;
		record.m_bEntryFlag = pPoint->IsEntry();
	}
	return it->second;
}

void CPulsePointAnalysis::Run( CPulseDoc &doc, int nVerbosity )
{
	m_eState = STATE_ANALYSING;
	m_nVerbosity = nVerbosity;
	m_Log.Clear();
	m_Records.clear();
	m_Index.clear();
	m_Starts.clear();
	m_Order.clear();

	// 1. The start points: every node's own entry point.
	std::vector<CPulseDocNode *> nodes;
	doc.GatherNodes( &nodes );
	std::vector<const CPulseSequencePoint *> starts;
	for ( CPulseDocNode *pNode : nodes )
	{
		auto *pFlow = dynamic_cast<CPulseDoc_BaseFlow *>( pNode );
		if ( pFlow && pFlow->GetEntryPoint() )
			starts.push_back( pFlow->GetEntryPoint() );
	}
	BuildGraph( starts );
	FindReachingEntries();
	IterateDominators();
	FindCanonicalPoints();
	IterateReverseProperties();
	AssignChunkHeads();
	if ( m_nVerbosity >= 1 )
		m_Log += "\nComplete!  ----------\n";
	if ( m_nVerbosity >= 2 )
		Dump( &m_Log );
	m_eState = STATE_COMPLETE;
}

void CPulsePointAnalysis::BuildGraph( const std::vector<const CPulseSequencePoint *> &starts )
{
	// 2. A depth-first walk from each start, asking each point where it leads.
	std::vector<int> stack;
	std::vector<bool> asked;
	for ( const CPulseSequencePoint *pStart : starts )
	{
		int nStart = Visit( pStart );
		if ( std::find( m_Starts.begin(), m_Starts.end(), nStart ) == m_Starts.end() )
			m_Starts.push_back( nStart );
		stack.push_back( nStart );
	}
	while ( !stack.empty() )
	{
		int n = stack.back();
		stack.pop_back();
		if ( asked.size() <= size_t( n ) )
			asked.resize( size_t( n ) + 1, false );
		if ( asked[ size_t( n ) ] )
			continue;
		asked[ size_t( n ) ] = true;
		PulseSequencePointProperties_t properties;
		m_Records[ size_t( n ) ].m_pPoint->GetProperties( &properties );
		{
			Record_t &record = m_Records[ size_t( n ) ];
			record.m_nEntryKind = record.m_bEntryFlag ? std::max( properties.m_nEntryKind, int( PulseSequencePointProperties_t::ENTRY_GRAPH ) ) : properties.m_nEntryKind;
			record.m_bYields = properties.m_bYields;
			record.m_bNoFallThrough = properties.m_bNoFallThrough;
		}
		auto link = [ & ]( const CPulseSequencePoint *pNext, bool bCalled ) {
			int nNext = Visit( pNext );
			Record_t &record = m_Records[ size_t( n ) ];
			( bCalled ? record.m_CalledPoints : record.m_Next ).push_back( nNext );
			AddUnique( &record.m_Afters, &record.m_AfterSet, nNext );
			Record_t &next = m_Records[ size_t( nNext ) ];
			AddUnique( &next.m_Befores, &next.m_BeforeSet, n );
			if ( nNext >= int( asked.size() ) || !asked[ size_t( nNext ) ] )
				stack.push_back( nNext );
		};
		for ( const CPulseSequencePoint *pNext : properties.m_NextPoints )
			link( pNext, false );
		for ( const CPulseSequencePoint *pCalled : properties.m_CalledPoints )
			link( pCalled, true );
	}

	// Reverse post-order from the starts, for the dominator rounds.
	std::vector<int> state( m_Records.size(), 0 ); // 0 new, 1 open, 2 done
	std::vector<int> post;
	for ( int nStart : m_Starts )
	{
		std::vector<std::pair<int, size_t>> walk;
		if ( state[ size_t( nStart ) ] )
			continue;
		walk.emplace_back( nStart, 0 );
		state[ size_t( nStart ) ] = 1;
		while ( !walk.empty() )
		{
			auto &[ n, nChild ] = walk.back();
			const std::vector<int> &afters = m_Records[ size_t( n ) ].m_Afters;
			if ( nChild < afters.size() )
			{
				int nNext = afters[ nChild++ ];
				if ( !state[ size_t( nNext ) ] )
				{
					state[ size_t( nNext ) ] = 1;
					walk.emplace_back( nNext, 0 );
				}
				continue;
			}
			state[ size_t( n ) ] = 2;
			post.push_back( n );
			walk.pop_back();
		}
	}
	m_Order.assign( post.rbegin(), post.rend() );
}

void CPulsePointAnalysis::FindReachingEntries()
{
	// 3, 4. Which entries reach each point without passing another entry.
	for ( size_t e = 0; e < m_Records.size(); ++e )
	{
		if ( m_Records[ e ].m_nEntryKind == 0 )
			continue;
		int nEntry = int( e );
		AddUnique( &m_Records[ e ].m_ReachingEntries, &m_Records[ e ].m_ReachingEntrySet, nEntry );
		std::vector<int> stack( m_Records[ e ].m_Afters.begin(), m_Records[ e ].m_Afters.end() );
		while ( !stack.empty() )
		{
			int n = stack.back();
			stack.pop_back();
			Record_t &record = m_Records[ size_t( n ) ];
			if ( ( record.m_nEntryKind != 0 && n != nEntry ) || record.m_ReachingEntrySet.count( nEntry ) )
				continue;
			AddUnique( &record.m_ReachingEntries, &record.m_ReachingEntrySet, nEntry );
			stack.insert( stack.end(), record.m_Afters.begin(), record.m_Afters.end() );
		}
	}
}

void CPulsePointAnalysis::IterateDominators()
{
	// 5. Entries dominate themselves; everything else starts universal.
	for ( size_t i = 0; i < m_Records.size(); ++i )
	{
		Record_t &record = m_Records[ i ];
		record.m_bUniversal = !record.m_bEntryFlag;
		record.m_Dominators.clear();
		if ( record.m_bEntryFlag )
			record.m_Dominators.push_back( int( i ) );
	}
	// 6. Rounds until nothing changes.
	if ( m_nVerbosity >= 2 )
		m_Log += "Dominator Iteration ----------\n";
	int nRound = 0;
	bool bChanged = true;
	while ( bChanged && nRound < MAX_ITERATIONS )
	{
		bChanged = false;
		++nRound;
		for ( int n : m_Order )
		{
			Record_t &record = m_Records[ size_t( n ) ];
			if ( record.m_bEntryFlag )
				continue;
			bool bUniversal = true;
			std::vector<int> dominators;
			for ( int nBefore : record.m_Befores )
			{
				const Record_t &before = m_Records[ size_t( nBefore ) ];
				if ( before.m_bUniversal )
					continue;
				dominators = bUniversal ? before.m_Dominators : Intersect( dominators, before.m_Dominators );
				bUniversal = false;
			}
			if ( !bUniversal )
			{
				auto it = std::lower_bound( dominators.begin(), dominators.end(), n );
				if ( it == dominators.end() || *it != n )
					dominators.insert( it, n );
			}
			if ( bUniversal != record.m_bUniversal || dominators != record.m_Dominators )
			{
				record.m_bUniversal = bUniversal;
				record.m_Dominators = std::move( dominators );
				bChanged = true;
				if ( m_nVerbosity >= 2 )
				{
					m_Log.AppendFormat( "Update %s\n", record.m_pPoint->Describe().Get() );
					m_Log += "  Dominators:\n";
					for ( int nDominator : record.m_Dominators )
						m_Log.AppendFormat( "      %s\n", m_Records[ size_t( nDominator ) ].m_pPoint->Describe().Get() );
				}
			}
		}
	}
	if ( m_nVerbosity >= 1 )
		m_Log.AppendFormat( "Dominators Completed after %d iterations\n", nRound );
}

void CPulsePointAnalysis::FindCanonicalPoints()
{
	// 7. The one entry that reaches a point and dominates itself alone, else the point.
	for ( size_t i = 0; i < m_Records.size(); ++i )
	{
		Record_t &record = m_Records[ i ];
		int nCanonical = -1, nCount = 0;
		for ( int nEntry : record.m_ReachingEntries )
		{
			const Record_t &entry = m_Records[ size_t( nEntry ) ];
			if ( !entry.m_bUniversal && entry.m_Dominators.size() == 1 && entry.m_Dominators[ 0 ] == nEntry )
			{
				nCanonical = nEntry;
				++nCount;
			}
		}
		record.m_nCanonical = nCount == 1 ? nCanonical : int( i );
		m_Records[ size_t( record.m_nCanonical ) ].m_bIsCanonical = true;
		if ( m_nVerbosity >= 2 )
			m_Log.AppendFormat( "Canonical point for %s = %s\n", record.m_pPoint->Describe().Get(), m_Records[ size_t( record.m_nCanonical ) ].m_pPoint->Describe().Get() );
	}
}

void CPulsePointAnalysis::IterateReverseProperties()
{
	// 8. A point that yields, or calls something that can, makes its entries able to.
	if ( m_nVerbosity >= 2 )
		m_Log += "Reverse Properties Iteration ----------\n";
	int nRound = 0;
	bool bChanged = true;
	auto mark = [ & ]( int n ) {
		if ( !m_Records[ size_t( n ) ].m_bCanYield )
		{
			m_Records[ size_t( n ) ].m_bCanYield = true;
			bChanged = true;
		}
	};
	while ( bChanged && nRound < MAX_ITERATIONS )
	{
		bChanged = false;
		++nRound;
		for ( size_t i = 0; i < m_Records.size(); ++i )
		{
			const Record_t &record = m_Records[ i ];
			bool bYields = record.m_bYields;
			for ( int nCalled : record.m_CalledPoints )
				bYields = bYields || m_Records[ size_t( nCalled ) ].m_bCanYield;
			if ( !bYields )
				continue;
			if ( record.m_nCanonical != int( i ) )
				mark( record.m_nCanonical );
			for ( int nEntry : std::vector<int>( record.m_ReachingEntries ) )
				mark( nEntry );
		}
	}
	if ( m_nVerbosity >= 1 )
		m_Log.AppendFormat( "Reverse Properties Completed after %d iterations\n", nRound );
}

void CPulsePointAnalysis::AssignChunkHeads()
{
	// A chunk starts at each start, and wherever flows of two chunks meet: a leap enters
	// a chunk at its first instruction, so such a point must begin one of its own.
	std::vector<bool> head( m_Records.size(), false );
	for ( int nStart : m_Starts )
		head[ size_t( nStart ) ] = true;
	std::vector<int> label;
	for ( size_t nRound = 0; nRound <= m_Records.size(); ++nRound )
	{
		label.assign( m_Records.size(), -1 );
		std::deque<int> queue;
		for ( size_t i = 0; i < m_Records.size(); ++i )
		{
			if ( head[ i ] )
			{
				label[ i ] = int( i );
				queue.push_back( int( i ) );
			}
		}
		bool bNewHead = false;
		while ( !queue.empty() )
		{
			int n = queue.front();
			queue.pop_front();
			for ( int nAfter : m_Records[ size_t( n ) ].m_Afters )
			{
				if ( head[ size_t( nAfter ) ] )
					continue;
				if ( label[ size_t( nAfter ) ] == -1 )
				{
					label[ size_t( nAfter ) ] = label[ size_t( n ) ];
					queue.push_back( nAfter );
				}
				else if ( label[ size_t( nAfter ) ] != label[ size_t( n ) ] )
				{
					head[ size_t( nAfter ) ] = true;
					bNewHead = true;
				}
			}
		}
		if ( !bNewHead )
			break;
	}
	for ( size_t i = 0; i < m_Records.size(); ++i )
		m_Records[ i ].m_nHead = label[ i ];
}

bool CPulsePointAnalysis::GetCanYield( const CPulseSequencePoint *pPoint ) const
{
	const Record_t *pRecord = IsComplete() ? Find( pPoint ) : nullptr;
	return pRecord && pRecord->m_bCanYield;
}

bool CPulsePointAnalysis::Dominates( const CPulseSequencePoint *pDominator, const CPulseSequencePoint *pPoint ) const
{
	const Record_t *pRecord = Find( pPoint );
	int nDominator = FindIndex( pDominator );
	if ( !pRecord || nDominator < 0 )
		return false;
	return pRecord->m_bUniversal || std::binary_search( pRecord->m_Dominators.begin(), pRecord->m_Dominators.end(), nDominator );
}

void CPulsePointAnalysis::GatherOriginatingEntries( const CPulseSequencePoint *pPoint, std::vector<const CPulseSequencePoint *> *pEntries ) const
{
	if ( const Record_t *pRecord = Find( pPoint ) )
	{
		for ( int nEntry : pRecord->m_ReachingEntries )
		{
			if ( m_Records[ size_t( nEntry ) ].m_bEntryFlag )
				pEntries->push_back( m_Records[ size_t( nEntry ) ].m_pPoint );
		}
	}
}

const CPulseSequencePoint *CPulsePointAnalysis::GetHead( const CPulseSequencePoint *pPoint ) const
{
	const Record_t *pRecord = Find( pPoint );
	return pRecord && pRecord->m_nHead >= 0 ? m_Records[ size_t( pRecord->m_nHead ) ].m_pPoint : nullptr;
}

void CPulsePointAnalysis::DumpFrom( int nIndex, bool bAfters, int nDepth, std::vector<bool> *pOnPath, CUtlString *pText ) const
{
	// Paths multiply at every merge: the dump stops at a length anyone would read.
	if ( pText->Length() > DUMP_MAX_BYTES )
		return;
	const Record_t &record = m_Records[ size_t( nIndex ) ];
	for ( int i = 0; i < nDepth; ++i )
		pText->Append( "  " );
	pText->AppendFormat( " %s\n", record.m_pPoint->Describe().Get() );
	if ( record.m_bYields )
		pText->Append( " < YIELD >\n" );
	if ( ( *pOnPath )[ size_t( nIndex ) ] )
	{
		pText->Append( " RECURSED!!\n" );
		return;
	}
	( *pOnPath )[ size_t( nIndex ) ] = true;
	for ( int nNext : bAfters ? record.m_Afters : record.m_Befores )
		DumpFrom( nNext, bAfters, nDepth + 1, pOnPath, pText );
	( *pOnPath )[ size_t( nIndex ) ] = false;
}

void CPulsePointAnalysis::Dump( CUtlString *pText ) const
{
	pText->Append( "-----------------------\n" );
	pText->Append( "+ m_PointAnalysis\n" );
	std::vector<bool> onPath( m_Records.size(), false );
	pText->Append( "AFTERS:\n" );
	for ( int nStart : m_Starts )
		DumpFrom( nStart, true, 0, &onPath, pText );
	pText->Append( "BEFORES:\n" );
	for ( size_t i = 0; i < m_Records.size(); ++i )
	{
		if ( m_Records[ i ].m_Afters.empty() )
			DumpFrom( int( i ), false, 0, &onPath, pText );
	}
}
