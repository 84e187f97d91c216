#include "zoldoc_lib/zolelementmatching.h"

#include <algorithm>
#include <cstdlib>

#include "zoldoc_lib/zoldefinitiontree.h"
#include "zoldoc_lib/zolelementfields.h"

namespace
{
bool MayPair( const ZolDefinitionElement_t &a, const ZolDefinitionElement_t &b )
{
	return a.m_Class == b.m_Class && a.m_Key == b.m_Key;
}

struct Candidate_t
{
	int m_nA;
	int m_nB;
	int m_nEqualFields;
	int m_nTotalFields;
};
} // namespace

void MatchDefinitionElements( int nSection, const std::vector<ZolDefinitionElement_t> &a, const std::vector<ZolDefinitionElement_t> &b,
							  ZolElementMatch_t *pMatch )
{
	pMatch->m_AToB.assign( a.size(), -1 );
	pMatch->m_BToA.assign( b.size(), -1 );

	std::vector<Candidate_t> candidates;
	for ( int i = 0; i < int( a.size() ); ++i )
	{
		for ( int j = 0; j < int( b.size() ); ++j )
		{
			if ( !MayPair( a[ size_t( i ) ], b[ size_t( j ) ] ) )
				continue;
			Candidate_t candidate{ i, j, 0, 0 };
			CountEqualElementFields( FindDefinitionElementClass( nSection, a[ size_t( i ) ].m_Class.Get() ), a[ size_t( i ) ].m_Table,
									 b[ size_t( j ) ].m_Table, &candidate.m_nEqualFields, &candidate.m_nTotalFields );
			candidates.push_back( candidate );
		}
	}

	// Whole matches first, in list order, so that of two equal functions the first stays the first.
	for ( const Candidate_t &candidate : candidates )
	{
		if ( candidate.m_nEqualFields != candidate.m_nTotalFields || pMatch->m_AToB[ size_t( candidate.m_nA ) ] >= 0 ||
			 pMatch->m_BToA[ size_t( candidate.m_nB ) ] >= 0 )
			continue;
		pMatch->m_AToB[ size_t( candidate.m_nA ) ] = candidate.m_nB;
		pMatch->m_BToA[ size_t( candidate.m_nB ) ] = candidate.m_nA;
	}

	// Then edited ones: most shared fields first, the nearest in position among equals.
	std::stable_sort( candidates.begin(), candidates.end(), []( const Candidate_t &x, const Candidate_t &y ) {
		if ( x.m_nEqualFields != y.m_nEqualFields )
			return x.m_nEqualFields > y.m_nEqualFields;
		return std::abs( x.m_nA - x.m_nB ) < std::abs( y.m_nA - y.m_nB );
	} );
	for ( const Candidate_t &candidate : candidates )
	{
		if ( pMatch->m_AToB[ size_t( candidate.m_nA ) ] >= 0 || pMatch->m_BToA[ size_t( candidate.m_nB ) ] >= 0 )
			continue;
		pMatch->m_AToB[ size_t( candidate.m_nA ) ] = candidate.m_nB;
		pMatch->m_BToA[ size_t( candidate.m_nB ) ] = candidate.m_nA;
	}
}

void FindMovedElements( const ZolElementMatch_t &match, std::vector<bool> *pMovedB )
{
	pMovedB->assign( match.m_BToA.size(), false );
	// The partners in the first list's order; those on a longest run that also rises in the
	// second list stayed, every other one moved.
	std::vector<int> partners;
	for ( int nB : match.m_AToB )
	{
		if ( nB >= 0 )
			partners.push_back( nB );
	}
	const size_t nCount = partners.size();
	std::vector<int> length( nCount, 1 ), previous( nCount, -1 );
	int nBest = -1;
	for ( size_t i = 0; i < nCount; ++i )
	{
		for ( size_t j = 0; j < i; ++j )
		{
			if ( partners[ j ] < partners[ i ] && length[ j ] + 1 > length[ i ] )
			{
				length[ i ] = length[ j ] + 1;
				previous[ i ] = int( j );
			}
		}
		if ( nBest < 0 || length[ i ] > length[ size_t( nBest ) ] )
			nBest = int( i );
	}
	std::vector<bool> stayed( nCount, false );
	for ( int i = nBest; i >= 0; i = previous[ size_t( i ) ] )
		stayed[ size_t( i ) ] = true;
	for ( size_t i = 0; i < nCount; ++i )
	{
		if ( !stayed[ i ] )
			( *pMovedB )[ size_t( partners[ i ] ) ] = true;
	}
}

bool ArePartnersInOrder( const ZolElementMatch_t &match )
{
	int nLast = -1;
	for ( int nB : match.m_AToB )
	{
		if ( nB < 0 )
			continue;
		if ( nB < nLast )
			return false;
		nLast = nB;
	}
	return true;
}
