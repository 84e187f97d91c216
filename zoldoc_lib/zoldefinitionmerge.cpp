#include "zoldoc_lib/zoldefinitionmerge.h"

#include <algorithm>

#include "core/kv3/keyvalues3.h"
#include "core/particles/particlefunctiontype.h"
#include "core/text/strtools.h"
#include "zoldoc_lib/zolcomparisonload.h"
#include "zoldoc_lib/zoldefinitiondiff.h"
#include "zoldoc_lib/zoldefinitiontree.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolelementfields.h"
#include "zoldoc_lib/zolelementmatching.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
constexpr const char *VERSION_KEY = "m_nBehaviorVersion";
constexpr int MAX_RECORD_DEPTH = 8;

enum MergeSide_t
{
	SIDE_BASE,
	SIDE_OURS,
	SIDE_THEIRS,
	SIDE_COUNT,
};

// Where conflicts of one element go, and what they name.
struct MergeScope_t
{
	int m_nSection;
	const ZolDefinitionElement_t *m_pElement; // null for base properties
	int m_nIndex;
	const char *m_pDomains[ SIDE_COUNT ];
	std::vector<ZolMergeConflict_t> *m_pConflicts;
};

ZolMergeConflict_t MakeConflict( ZolMergeConflictKind_t eKind, const MergeScope_t &scope )
{
	ZolMergeConflict_t conflict;
	conflict.m_eKind = eKind;
	conflict.m_nSection = scope.m_nSection;
	conflict.m_nIndex = scope.m_nIndex;
	if ( scope.m_pElement )
	{
		conflict.m_Element = scope.m_pElement->m_Name;
		conflict.m_Class = scope.m_pElement->m_Class;
	}
	return conflict;
}

void MergeFields( const MergeScope_t &scope, const CGameDataClass *pClass, const KeyValues3 *( &sides )[ SIDE_COUNT ], KeyValues3 *pOut,
				  const CUtlString &path, const CUtlString &labelPath, int nDepth );

// The records of an array member, each merged with its counterparts (by key, or by
// position): a record one side added, removed or edited follows that side; one that both
// sides edited merges member by member; one removed on one side and edited on the other
// stays as ours has it, and is a conflict.
void MergeRecords( const MergeScope_t &scope, const CGameDataClass *pClass, const char *pMember, const ZolRecordArrayField_t &records,
				   const KeyValues3 *( &arrays )[ SIDE_COUNT ], KeyValues3 *pOut, const CUtlString &path, const CUtlString &label, int nDepth )
{
	auto fnCount = []( const KeyValues3 *pArray ) { return pArray && pArray->IsArray() ? pArray->GetArrayElementCount() : 0; };
	// Every record once, by the first side that has it: ours, theirs, then the base.
	std::vector<const KeyValues3 *> keys;
	for ( int nSide : { SIDE_OURS, SIDE_THEIRS, SIDE_BASE } )
	{
		for ( int i = 0; i < fnCount( arrays[ nSide ] ); ++i )
		{
			const KeyValues3 *pRecord = arrays[ nSide ]->GetArrayElement( i );
			bool bKnown = false;
			for ( size_t k = 0; k < keys.size() && !bKnown; ++k )
				bKnown = records.m_pKey ? FindElementRecordByKey( arrays[ nSide ], records.m_pKey, *keys[ k ] ) == i : int( k ) == i;
			if ( !bKnown )
				keys.push_back( pRecord );
		}
	}

	KeyValues3 merged;
	merged.SetToEmptyArray();
	for ( size_t k = 0; k < keys.size(); ++k )
	{
		const KeyValues3 *sides[ SIDE_COUNT ];
		for ( int nSide = 0; nSide < SIDE_COUNT; ++nSide )
		{
			const int i = records.m_pKey ? FindElementRecordByKey( arrays[ nSide ], records.m_pKey, *keys[ k ] ) : int( k );
			sides[ nSide ] = i >= 0 && i < fnCount( arrays[ nSide ] ) ? arrays[ nSide ]->GetArrayElement( i ) : nullptr;
		}
		const CGameDataClass *pRecordClass = records.m_pElementClass;
		const KeyValues3 *pTaken = sides[ SIDE_OURS ];
		if ( AreElementRecordsEqual( pRecordClass, sides[ SIDE_BASE ], sides[ SIDE_OURS ] ) )
			pTaken = sides[ SIDE_THEIRS ];
		CUtlString recordPath, recordLabel;
		recordPath.Format( "%s.%d", path.Get(), int( merged.GetArrayElementCount() ) );
		GetElementRecordLabel( records, label.Get(), *keys[ k ], int( k ), &recordLabel );
		const bool bOneSideKept = AreElementRecordsEqual( pRecordClass, sides[ SIDE_BASE ], sides[ SIDE_OURS ] ) ||
								  AreElementRecordsEqual( pRecordClass, sides[ SIDE_BASE ], sides[ SIDE_THEIRS ] ) ||
								  AreElementRecordsEqual( pRecordClass, sides[ SIDE_OURS ], sides[ SIDE_THEIRS ] );
		if ( !bOneSideKept && sides[ SIDE_OURS ] && sides[ SIDE_THEIRS ] )
		{
			KeyValues3 *pRecord = merged.ArrayAddToTail();
			pRecord->CopyFrom( *sides[ SIDE_OURS ] );
			MergeFields( scope, pRecordClass, sides, pRecord, recordPath, recordLabel, nDepth + 1 );
			continue;
		}
		if ( !bOneSideKept )
		{
			// Removed on one side, edited on the other.
			ZolMergeConflict_t conflict = MakeConflict( ZOL_CONFLICT_FIELD, scope );
			conflict.m_Field = recordPath;
			conflict.m_Label = recordLabel;
			CUtlString *texts[ SIDE_COUNT ] = { &conflict.m_BaseText, &conflict.m_OursText, &conflict.m_TheirsText };
			for ( int nSide = 0; nSide < SIDE_COUNT; ++nSide )
			{
				texts[ nSide ]->Set( "none" );
				if ( sides[ nSide ] )
					FormatElementFieldItem( pClass, pMember, *sides[ nSide ], scope.m_pDomains[ nSide ], texts[ nSide ] );
			}
			scope.m_pConflicts->push_back( static_cast<ZolMergeConflict_t &&>( conflict ) );
		}
		if ( pTaken )
			merged.ArrayAddToTail()->CopyFrom( *pTaken );
	}
	*pOut = static_cast<KeyValues3 &&>( merged );
}

// pOut holds ours; each member takes the side that changed it, records merge member by
// member, and a member both sides changed differently stays ours and is a conflict.
void MergeFields( const MergeScope_t &scope, const CGameDataClass *pClass, const KeyValues3 *( &sides )[ SIDE_COUNT ], KeyValues3 *pOut,
				  const CUtlString &path, const CUtlString &labelPath, int nDepth )
{
	if ( !pOut->IsTable() )
		pOut->SetToEmptyTable();
	std::vector<CUtlString> members;
	CollectElementMembers( { sides[ SIDE_OURS ], sides[ SIDE_THEIRS ], sides[ SIDE_BASE ] }, &members );
	for ( const CUtlString &member : members )
	{
		const char *pMember = member.Get();
		if ( nDepth == 0 && scope.m_nSection == ZOL_SECTION_BASE_PROPERTIES && member == VERSION_KEY )
			continue;
		const KeyValues3 *values[ SIDE_COUNT ];
		for ( int nSide = 0; nSide < SIDE_COUNT; ++nSide )
			values[ nSide ] = GetElementFieldValue( pClass, sides[ nSide ], pMember );
		const bool bOursKept = AreElementFieldValuesEqual( pClass, pMember, values[ SIDE_BASE ], values[ SIDE_OURS ] );
		const bool bTheirsKept = AreElementFieldValuesEqual( pClass, pMember, values[ SIDE_BASE ], values[ SIDE_THEIRS ] );
		if ( bTheirsKept || AreElementFieldValuesEqual( pClass, pMember, values[ SIDE_OURS ], values[ SIDE_THEIRS ] ) )
			continue;
		if ( bOursKept )
		{
			const KeyValues3 *pStored = sides[ SIDE_THEIRS ] && sides[ SIDE_THEIRS ]->IsTable() ? sides[ SIDE_THEIRS ]->FindMember( pMember ) : nullptr;
			if ( pStored )
				pOut->FindOrCreateMember( pMember )->CopyFrom( *pStored );
			else
				pOut->RemoveMember( pMember ); // absent on their side: the default
			continue;
		}

		CUtlString label, memberPath, memberLabel;
		GetElementFieldLabel( pClass, pMember, &label );
		memberPath.Format( "%s%s%s", path.Get(), path.IsEmpty() ? "" : ".", pMember );
		memberLabel.Format( "%s%s%s", labelPath.Get(), labelPath.IsEmpty() ? "" : "/", label.Get() );
		const CGameDataClass *pRecordClass = nullptr;
		if ( nDepth < MAX_RECORD_DEPTH && IsElementRecordField( pClass, pMember, values[ SIDE_OURS ], values[ SIDE_THEIRS ], &pRecordClass ) )
		{
			bool bCreated = false;
			KeyValues3 *pOutMember = pOut->FindOrCreateMember( pMember, &bCreated );
			if ( bCreated && values[ SIDE_OURS ] )
				pOutMember->CopyFrom( *values[ SIDE_OURS ] );
			MergeFields( scope, pRecordClass, values, pOutMember, memberPath, memberLabel, nDepth + 1 );
			continue;
		}
		ZolRecordArrayField_t records;
		if ( nDepth < MAX_RECORD_DEPTH &&
			 IsElementRecordArrayField( pClass, pMember, { values[ SIDE_BASE ], values[ SIDE_OURS ], values[ SIDE_THEIRS ] }, &records ) )
		{
			MergeRecords( scope, pClass, pMember, records, values, pOut->FindOrCreateMember( pMember ), memberPath, memberLabel, nDepth );
			continue;
		}

		ZolMergeConflict_t conflict = MakeConflict( ZOL_CONFLICT_FIELD, scope );
		conflict.m_Field = memberPath;
		conflict.m_Label = memberLabel;
		FormatElementFieldValue( pClass, pMember, values[ SIDE_BASE ], scope.m_pDomains[ SIDE_BASE ], &conflict.m_BaseText );
		FormatElementFieldValue( pClass, pMember, values[ SIDE_OURS ], scope.m_pDomains[ SIDE_OURS ], &conflict.m_OursText );
		FormatElementFieldValue( pClass, pMember, values[ SIDE_THEIRS ], scope.m_pDomains[ SIDE_THEIRS ], &conflict.m_TheirsText );
		scope.m_pConflicts->push_back( static_cast<ZolMergeConflict_t &&>( conflict ) );
	}
}

bool AreElementsEqual( int nSection, const ZolDefinitionElement_t &a, const ZolDefinitionElement_t &b )
{
	int nEqual = 0, nTotal = 0;
	CountEqualElementFields( FindDefinitionElementClass( nSection, a.m_Class.Get() ), a.m_Table, b.m_Table, &nEqual, &nTotal );
	return a.m_Class == b.m_Class && nEqual == nTotal;
}

// "Label: old -> new; ..." for what one element's edits were.
void DescribeEdits( int nSection, const ZolDefinitionElement_t &before, const ZolDefinitionElement_t &after, const char *pDomainBefore,
					const char *pDomainAfter, CUtlString *pOut )
{
	std::vector<ZolFieldChange_t> fields;
	DiffElementFields( nSection, after.m_Class.Get(), before.m_Table, after.m_Table, pDomainBefore, pDomainAfter, &fields );
	const char *pDisableKey = GetDefinitionSectionDisableKey( nSection );
	if ( pDisableKey && before.m_Table.GetMemberBool( pDisableKey ) != after.m_Table.GetMemberBool( pDisableKey ) )
		pOut->Append( after.m_Table.GetMemberBool( pDisableKey ) ? "disabled" : "enabled" );
	for ( const ZolFieldChange_t &field : fields )
		pOut->AppendFormat( "%s%s: %s -> %s", pOut->IsEmpty() ? "" : "; ", field.m_Label.Get(), field.m_OldText.Get(), field.m_NewText.Get() );
}

// One element of the merged list: where it came from on each side, and what it holds.
struct MergedItem_t
{
	int m_nSideIndex[ SIDE_COUNT ] = { -1, -1, -1 };
	bool m_bIncluded = true;
	bool m_bPlacedFromPrimary = false;
	ZolDefinitionElement_t m_Element;
};

class CSectionMerge
{
public:
	CSectionMerge( int nSection, const ZolDefinitionTree_t *( &trees )[ SIDE_COUNT ], std::vector<ZolMergeConflict_t> *pConflicts )
		: m_nSection( nSection ), m_Trees( trees ), m_pConflicts( pConflicts )
	{
	}

	void Run( std::vector<ZolDefinitionElement_t> *pOut )
	{
		MatchDefinitionElements( m_nSection, List( SIDE_BASE ), List( SIDE_OURS ), &m_Match[ SIDE_OURS ] );
		MatchDefinitionElements( m_nSection, List( SIDE_BASE ), List( SIDE_THEIRS ), &m_Match[ SIDE_THEIRS ] );
		MergeBaseElements();
		AddNewElements();
		Order( pOut );
	}

private:
	const std::vector<ZolDefinitionElement_t> &List( int nSide ) const { return m_Trees[ nSide ]->m_Sections[ m_nSection ]; }
	const ZolDefinitionElement_t &Element( int nSide, int nIndex ) const { return List( nSide )[ size_t( nIndex ) ]; }
	const char *Domain( int nSide ) const { return m_Trees[ nSide ]->m_Domain.Get(); }

	MergeScope_t Scope( const ZolDefinitionElement_t *pElement, int nIndex ) const
	{
		return { m_nSection, pElement, nIndex, { Domain( SIDE_BASE ), Domain( SIDE_OURS ), Domain( SIDE_THEIRS ) }, m_pConflicts };
	}

	void MergeBaseElements()
	{
		for ( int i = 0; i < int( List( SIDE_BASE ).size() ); ++i )
		{
			MergedItem_t item;
			item.m_nSideIndex[ SIDE_BASE ] = i;
			const int nOurs = item.m_nSideIndex[ SIDE_OURS ] = m_Match[ SIDE_OURS ].m_AToB[ size_t( i ) ];
			const int nTheirs = item.m_nSideIndex[ SIDE_THEIRS ] = m_Match[ SIDE_THEIRS ].m_AToB[ size_t( i ) ];
			const ZolDefinitionElement_t &base = Element( SIDE_BASE, i );
			if ( nOurs >= 0 && nTheirs >= 0 )
			{
				const ZolDefinitionElement_t &ours = Element( SIDE_OURS, nOurs );
				item.m_Element = ours;
				const KeyValues3 *sides[ SIDE_COUNT ] = { &base.m_Table, &ours.m_Table, &Element( SIDE_THEIRS, nTheirs ).m_Table };
				MergeFields( Scope( &ours, nOurs ), FindDefinitionElementClass( m_nSection, ours.m_Class.Get() ), sides, &item.m_Element.m_Table,
							 CUtlString(), CUtlString(), 0 );
			}
			else if ( nOurs >= 0 || nTheirs >= 0 )
			{
				// Removed on one side: gone, unless the other side edited it; then ours decides.
				const int nKeptSide = nOurs >= 0 ? SIDE_OURS : SIDE_THEIRS;
				const ZolDefinitionElement_t &kept = Element( nKeptSide, item.m_nSideIndex[ nKeptSide ] );
				if ( AreElementsEqual( m_nSection, base, kept ) )
				{
					item.m_bIncluded = false;
				}
				else
				{
					ZolMergeConflict_t conflict = MakeConflict( nKeptSide == SIDE_OURS ? ZOL_CONFLICT_REMOVED_BY_THEIRS : ZOL_CONFLICT_REMOVED_BY_OURS,
																nKeptSide == SIDE_OURS ? Scope( &kept, nOurs ) : Scope( &base, i ) );
					DescribeEdits( m_nSection, base, kept, Domain( SIDE_BASE ), Domain( nKeptSide ),
								   nKeptSide == SIDE_OURS ? &conflict.m_OursText : &conflict.m_TheirsText );
					m_pConflicts->push_back( static_cast<ZolMergeConflict_t &&>( conflict ) );
					item.m_bIncluded = nKeptSide == SIDE_OURS;
					item.m_Element = kept;
				}
			}
			else
			{
				item.m_bIncluded = false;
			}
			m_Items.push_back( static_cast<MergedItem_t &&>( item ) );
		}
	}

	// Additions of ours, then of theirs; an addition of theirs that ours made too is one.
	void AddNewElements()
	{
		const size_t nFirstOursAddition = m_Items.size();
		for ( int j = 0; j < int( List( SIDE_OURS ).size() ); ++j )
		{
			if ( m_Match[ SIDE_OURS ].m_BToA[ size_t( j ) ] >= 0 )
				continue;
			MergedItem_t item;
			item.m_nSideIndex[ SIDE_OURS ] = j;
			item.m_Element = Element( SIDE_OURS, j );
			m_Items.push_back( static_cast<MergedItem_t &&>( item ) );
		}
		const size_t nOursAdditionsEnd = m_Items.size();
		for ( int j = 0; j < int( List( SIDE_THEIRS ).size() ); ++j )
		{
			if ( m_Match[ SIDE_THEIRS ].m_BToA[ size_t( j ) ] >= 0 )
				continue;
			const ZolDefinitionElement_t &theirs = Element( SIDE_THEIRS, j );
			MergedItem_t *pTwin = nullptr;
			for ( size_t k = nFirstOursAddition; k < nOursAdditionsEnd && !pTwin; ++k )
			{
				MergedItem_t &candidate = m_Items[ k ];
				if ( candidate.m_nSideIndex[ SIDE_THEIRS ] >= 0 || candidate.m_Element.m_Class != theirs.m_Class )
					continue;
				const bool bKeyed = !theirs.m_Key.IsEmpty();
				if ( bKeyed ? candidate.m_Element.m_Key == theirs.m_Key : AreElementsEqual( m_nSection, candidate.m_Element, theirs ) )
					pTwin = &candidate;
			}
			if ( !pTwin )
			{
				MergedItem_t item;
				item.m_nSideIndex[ SIDE_THEIRS ] = j;
				item.m_Element = theirs;
				m_Items.push_back( static_cast<MergedItem_t &&>( item ) );
				continue;
			}
			pTwin->m_nSideIndex[ SIDE_THEIRS ] = j;
			if ( !AreElementsEqual( m_nSection, pTwin->m_Element, theirs ) )
			{
				ZolMergeConflict_t conflict = MakeConflict( ZOL_CONFLICT_ADDED_BOTH, Scope( &pTwin->m_Element, pTwin->m_nSideIndex[ SIDE_OURS ] ) );
				DescribeEdits( m_nSection, pTwin->m_Element, theirs, Domain( SIDE_OURS ), Domain( SIDE_THEIRS ), &conflict.m_TheirsText );
				m_pConflicts->push_back( static_cast<ZolMergeConflict_t &&>( conflict ) );
			}
		}
	}

	int FindItem( int nSide, int nIndex ) const
	{
		for ( size_t k = 0; k < m_Items.size(); ++k )
		{
			if ( m_Items[ k ].m_nSideIndex[ nSide ] == nIndex )
				return int( k );
		}
		return -1;
	}

	// The base elements both sides kept, in the side's order.
	std::vector<int> CommonOrder( int nSide ) const
	{
		std::vector<int> order;
		for ( int j = 0; j < int( List( nSide ).size() ); ++j )
		{
			const int nBase = m_Match[ nSide ].m_BToA[ size_t( j ) ];
			const int nOther = nSide == SIDE_OURS ? SIDE_THEIRS : SIDE_OURS;
			if ( nBase >= 0 && m_Match[ nOther ].m_AToB[ size_t( nBase ) ] >= 0 )
				order.push_back( nBase );
		}
		return order;
	}

	// The order of the side that reordered (ours when both did, which is a conflict unless
	// they agree); the other side's elements go in after the element they followed there.
	void Order( std::vector<ZolDefinitionElement_t> *pOut )
	{
		const bool bOursReordered = !ArePartnersInOrder( m_Match[ SIDE_OURS ] );
		const bool bTheirsReordered = !ArePartnersInOrder( m_Match[ SIDE_THEIRS ] );
		if ( bOursReordered && bTheirsReordered && m_nSection != ZOL_SECTION_CONFIGURATIONS && CommonOrder( SIDE_OURS ) != CommonOrder( SIDE_THEIRS ) )
			m_pConflicts->push_back( MakeConflict( ZOL_CONFLICT_ORDER, Scope( nullptr, -1 ) ) );
		const int nPrimary = bOursReordered || !bTheirsReordered ? SIDE_OURS : SIDE_THEIRS;
		const int nSecondary = nPrimary == SIDE_OURS ? SIDE_THEIRS : SIDE_OURS;

		std::vector<int> sequence;
		for ( int j = 0; j < int( List( nPrimary ).size() ); ++j )
		{
			const int k = FindItem( nPrimary, j );
			if ( k >= 0 && m_Items[ size_t( k ) ].m_bIncluded )
			{
				m_Items[ size_t( k ) ].m_bPlacedFromPrimary = m_Items[ size_t( k ) ].m_nSideIndex[ SIDE_BASE ] < 0;
				sequence.push_back( k );
			}
		}
		int nAnchor = -1;
		for ( int j = 0; j < int( List( nSecondary ).size() ); ++j )
		{
			const int k = FindItem( nSecondary, j );
			if ( k < 0 )
				continue;
			auto it = std::find( sequence.begin(), sequence.end(), k );
			if ( it != sequence.end() )
			{
				nAnchor = int( it - sequence.begin() );
				continue;
			}
			if ( !m_Items[ size_t( k ) ].m_bIncluded )
				continue;
			int nAt = nAnchor + 1;
			while ( nAt < int( sequence.size() ) && m_Items[ size_t( sequence[ size_t( nAt ) ] ) ].m_bPlacedFromPrimary )
				++nAt;
			sequence.insert( sequence.begin() + nAt, k );
			nAnchor = nAt;
		}

		pOut->clear();
		for ( int k : sequence )
			pOut->push_back( m_Items[ size_t( k ) ].m_Element );
	}

	int m_nSection;
	const ZolDefinitionTree_t *( &m_Trees )[ SIDE_COUNT ];
	std::vector<ZolMergeConflict_t> *m_pConflicts;
	ZolElementMatch_t m_Match[ SIDE_COUNT ];
	std::vector<MergedItem_t> m_Items;
};
} // namespace

int MergeBehaviorVersions( int nBase, int nOurs, int nTheirs )
{
	return nOurs == nBase ? nTheirs : nOurs;
}

void MergeDefinitionTrees( const ZolDefinitionTree_t &base, const ZolDefinitionTree_t &ours, const ZolDefinitionTree_t &theirs,
						   ZolDefinitionTree_t *pMerged, std::vector<ZolMergeConflict_t> *pConflicts )
{
	pConflicts->clear();
	*pMerged = ZolDefinitionTree_t();
	const ZolDefinitionTree_t *trees[ SIDE_COUNT ] = { &base, &ours, &theirs };

	const MergeScope_t rootScope{ ZOL_SECTION_BASE_PROPERTIES, nullptr, -1, { base.m_Domain.Get(), ours.m_Domain.Get(), theirs.m_Domain.Get() }, pConflicts };
	pMerged->m_nFileVersion = MergeBehaviorVersions( base.m_nFileVersion, ours.m_nFileVersion, theirs.m_nFileVersion );
	if ( ours.m_nFileVersion != base.m_nFileVersion && theirs.m_nFileVersion != base.m_nFileVersion && ours.m_nFileVersion != theirs.m_nFileVersion )
	{
		ZolMergeConflict_t conflict = MakeConflict( ZOL_CONFLICT_FIELD, rootScope );
		conflict.m_Field.Set( VERSION_KEY );
		GetElementFieldLabel( FindDefinitionElementClass( ZOL_SECTION_BASE_PROPERTIES, nullptr ), VERSION_KEY, &conflict.m_Label );
		conflict.m_BaseText.Format( "%d", base.m_nFileVersion );
		conflict.m_OursText.Format( "%d", ours.m_nFileVersion );
		conflict.m_TheirsText.Format( "%d", theirs.m_nFileVersion );
		pConflicts->push_back( static_cast<ZolMergeConflict_t &&>( conflict ) );
	}
	pMerged->m_Root.CopyFrom( ours.m_Root );
	const KeyValues3 *roots[ SIDE_COUNT ] = { &base.m_Root, &ours.m_Root, &theirs.m_Root };
	MergeFields( rootScope, FindDefinitionElementClass( ZOL_SECTION_BASE_PROPERTIES, nullptr ), roots, &pMerged->m_Root, CUtlString(), CUtlString(), 0 );
	if ( pMerged->m_Root.GetMemberBool( "m_bEnableNamedValues" ) )
		pMerged->m_Domain.Set( pMerged->m_Root.GetMemberString( "m_NamedValueDomain", "" ) );

	for ( int nSection = 0; nSection < ZOL_SECTION_ELEMENT_COUNT; ++nSection )
		CSectionMerge( nSection, trees, pConflicts ).Run( &pMerged->m_Sections[ nSection ] );
}

void FormatMergeConflict( const ZolMergeConflict_t &conflict, CUtlString *pOut )
{
	const char *pSection = GetDefinitionSectionTitle( conflict.m_nSection );
	if ( conflict.m_nSection == ZOL_SECTION_BASE_PROPERTIES || conflict.m_eKind == ZOL_CONFLICT_ORDER )
		pOut->Format( "%s:", pSection );
	else
		pOut->Format( "%s #%d %s:", pSection, conflict.m_nIndex + 1, conflict.m_Element.Get() );
	switch ( conflict.m_eKind )
	{
	case ZOL_CONFLICT_FIELD:
		pOut->AppendFormat( " %s: ours %s, theirs %s (was %s); kept ours", conflict.m_Label.Get(), conflict.m_OursText.Get(), conflict.m_TheirsText.Get(),
							conflict.m_BaseText.Get() );
		break;
	case ZOL_CONFLICT_REMOVED_BY_OURS:
		pOut->AppendFormat( " removed by ours, changed by theirs (%s); kept it removed", conflict.m_TheirsText.Get() );
		break;
	case ZOL_CONFLICT_REMOVED_BY_THEIRS:
		pOut->AppendFormat( " removed by theirs, changed by ours (%s); kept ours", conflict.m_OursText.Get() );
		break;
	case ZOL_CONFLICT_ADDED_BOTH:
		pOut->AppendFormat( " added on both sides, differently (theirs: %s); kept ours", conflict.m_TheirsText.Get() );
		break;
	case ZOL_CONFLICT_ORDER: pOut->Append( " reordered differently on both sides; kept the order of ours" ); break;
	}
}

bool MergeDefinitionFiles( const char *pBasePath, const char *pOursPath, const char *pTheirsPath, CZolDoc *pMerged,
						   std::vector<ZolMergeConflict_t> *pConflicts, CUtlString *pError )
{
	pConflicts->clear();
	CZolDoc base( false ), ours( false ), theirs( false );
	const char *paths[ SIDE_COUNT ] = { pBasePath, pOursPath, pTheirsPath };
	CZolDoc *docs[ SIDE_COUNT ] = { &base, &ours, &theirs };
	int versions[ SIDE_COUNT ] = {};
	if ( !LoadDefinitionsToCompare( paths, SIDE_COUNT, docs, versions, pError ) )
		return false;

	// A merge doesn't upgrade a file by itself: it stands at the version the sides agree on.
	const int nVersion = MergeBehaviorVersions( versions[ SIDE_BASE ], versions[ SIDE_OURS ], versions[ SIDE_THEIRS ] );
	ZolDefinitionTree_t trees[ SIDE_COUNT ];
	for ( int nSide = 0; nSide < SIDE_COUNT; ++nSide )
	{
		BringDefinitionToVersion( docs[ nSide ], nVersion );
		BuildDefinitionTree( *docs[ nSide ], versions[ nSide ], &trees[ nSide ] );
	}
	ZolDefinitionTree_t merged;
	MergeDefinitionTrees( trees[ SIDE_BASE ], trees[ SIDE_OURS ], trees[ SIDE_THEIRS ], &merged, pConflicts );

	KeyValues3 tree;
	AssembleDefinitionTree( merged, &tree );
	pMerged->SetKeepsUnknownFunctions( true );
	pMerged->Reset();
	pMerged->GetRoot()->LoadRootFromKV3( &tree );
	pMerged->RebuildAttributeLabels();
	return true;
}
