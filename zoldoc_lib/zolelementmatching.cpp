#include "zoldoc_lib/zolelementmatching.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <unordered_map>

#include "zoldoc_lib/zoldefinitiontree.h"
#include "zoldoc_lib/zolelementfields.h"
#include "core/kv3/keyvalues3.h"

namespace
{
bool MayPair( const ZolDefinitionElement_t &a, const ZolDefinitionElement_t &b )
{
	return a.m_Class == b.m_Class && a.m_Key == b.m_Key;
}

// The stored form as text, tables in member name order and numbers by value: elements that
// a file keeps as they were give the same text, so most pair without comparing fields.
void AppendFingerprint( const KeyValues3 &value, std::string *pOut )
{
	char number[ 32 ];
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL: pOut->append( value.GetBool() ? "T" : "F" ); break;
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT:
	case KV3_TYPE_DOUBLE:
		snprintf( number, sizeof( number ), "%.17g", value.GetType() == KV3_TYPE_UINT ? double( value.GetUInt64() ) : value.GetDouble() );
		pOut->append( number );
		break;
	case KV3_TYPE_STRING:
		pOut->push_back( '"' );
		pOut->append( value.GetString() );
		pOut->push_back( '"' );
		break;
	case KV3_TYPE_ARRAY:
		pOut->push_back( '[' );
		for ( int i = 0; i < value.GetArrayElementCount(); ++i )
		{
			AppendFingerprint( *value.GetArrayElement( i ), pOut );
			pOut->push_back( ',' );
		}
		pOut->push_back( ']' );
		break;
	case KV3_TYPE_TABLE:
	{
		std::vector<int> order( size_t( value.GetMemberCount() ) );
		for ( int i = 0; i < value.GetMemberCount(); ++i )
			order[ size_t( i ) ] = i;
		std::sort( order.begin(), order.end(), [ &value ]( int a, int b ) { return strcmp( value.GetMemberName( a ), value.GetMemberName( b ) ) < 0; } );
		pOut->push_back( '{' );
		for ( int i : order )
		{
			pOut->append( value.GetMemberName( i ) );
			pOut->push_back( '=' );
			AppendFingerprint( *value.GetMember( i ), pOut );
			pOut->push_back( ' ' );
		}
		pOut->push_back( '}' );
		break;
	}
	default: pOut->append( "~" ); break;
	}
}

std::string Fingerprint( const ZolDefinitionElement_t &element, const KeyValues3 &normalised )
{
	std::string text = element.m_Class.Get();
	text.push_back( '|' );
	text.append( element.m_Key.Get() );
	text.push_back( '|' );
	AppendFingerprint( normalised, &text );
	return text;
}

void NormaliseElements( int nSection, const std::vector<ZolDefinitionElement_t> &elements, std::vector<KeyValues3> *pOut )
{
	pOut->resize( elements.size() );
	for ( size_t i = 0; i < elements.size(); ++i )
		NormaliseElementTable( FindDefinitionElementClass( nSection, elements[ i ].m_Class.Get() ), elements[ i ].m_Table, &( *pOut )[ i ] );
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

	// Equal elements pair first, in order, so that of two equal functions the first stays
	// the first. Normalised once, an element's fields then compare without its class.
	std::vector<KeyValues3> normalA, normalB;
	NormaliseElements( nSection, a, &normalA );
	NormaliseElements( nSection, b, &normalB );
	std::unordered_map<std::string, std::deque<int>> equal;
	for ( int j = 0; j < int( b.size() ); ++j )
		equal[ Fingerprint( b[ size_t( j ) ], normalB[ size_t( j ) ] ) ].push_back( j );
	for ( int i = 0; i < int( a.size() ); ++i )
	{
		auto it = equal.find( Fingerprint( a[ size_t( i ) ], normalA[ size_t( i ) ] ) );
		if ( it == equal.end() || it->second.empty() )
			continue;
		pMatch->m_AToB[ size_t( i ) ] = it->second.front();
		pMatch->m_BToA[ size_t( it->second.front() ) ] = i;
		it->second.pop_front();
	}

	// The rest compare field by field.
	std::vector<Candidate_t> candidates;
	for ( int i = 0; i < int( a.size() ); ++i )
	{
		for ( int j = 0; j < int( b.size() ); ++j )
		{
			if ( pMatch->m_AToB[ size_t( i ) ] >= 0 || pMatch->m_BToA[ size_t( j ) ] >= 0 || !MayPair( a[ size_t( i ) ], b[ size_t( j ) ] ) )
				continue;
			Candidate_t candidate{ i, j, 0, 0 };
			CountEqualElementFields( nullptr, normalA[ size_t( i ) ], normalB[ size_t( j ) ], &candidate.m_nEqualFields, &candidate.m_nTotalFields );
			candidates.push_back( candidate );
		}
	}

	// Edited ones: most shared fields first, the nearest in position among equals.
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
