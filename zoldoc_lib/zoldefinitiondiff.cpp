#include "zoldoc_lib/zoldefinitiondiff.h"

#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "zoldoc_lib/zolcomparisonload.h"
#include "zoldoc_lib/zoldefinitiontree.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolelementfields.h"
#include "zoldoc_lib/zolelementmatching.h"

namespace
{
constexpr const char *VERSION_KEY = "m_nBehaviorVersion";
// Records inside records are rare; a tree deeper than this compares whole.
constexpr int MAX_RECORD_DEPTH = 8;

void CopyValue( const KeyValues3 *pValue, KeyValues3 *pOut )
{
	if ( pValue )
		pOut->CopyFrom( *pValue );
	else
		pOut->SetToNull();
}

struct FieldWalk_t
{
	const char *m_pDomainA;
	const char *m_pDomainB;
	const char *m_pSkippedMember;
	std::vector<ZolFieldChange_t> *m_pChanges;
};

void CollectFieldChanges( const FieldWalk_t &walk, const CGameDataClass *pClass, const KeyValues3 *pA, const KeyValues3 *pB, const CUtlString &path,
						  const CUtlString &labelPath, int nDepth );

// A record of an array added or removed reads as the record against "none".
void AddRecordPresenceChange( const FieldWalk_t &walk, const CGameDataClass *pClass, const char *pMember, const KeyValues3 *pOld,
							  const KeyValues3 *pNew, const CUtlString &path, const CUtlString &label )
{
	ZolFieldChange_t change;
	change.m_Field = path;
	change.m_Label = label;
	change.m_OldText.Set( "none" );
	change.m_NewText.Set( "none" );
	if ( pOld )
		FormatElementFieldItem( pClass, pMember, *pOld, walk.m_pDomainA, &change.m_OldText );
	if ( pNew )
		FormatElementFieldItem( pClass, pMember, *pNew, walk.m_pDomainB, &change.m_NewText );
	CopyValue( pOld, &change.m_OldValue );
	CopyValue( pNew, &change.m_NewValue );
	walk.m_pChanges->push_back( static_cast<ZolFieldChange_t &&>( change ) );
}

// The records of two arrays: the new ones in order, matched by key or position, then those
// only the old array has.
void CollectRecordChanges( const FieldWalk_t &walk, const CGameDataClass *pClass, const char *pMember, const ZolRecordArrayField_t &records,
						   const KeyValues3 *pA, const KeyValues3 *pB, const CUtlString &path, const CUtlString &label, int nDepth )
{
	const int nCountA = pA->IsArray() ? pA->GetArrayElementCount() : 0;
	const int nCountB = pB->IsArray() ? pB->GetArrayElementCount() : 0;
	std::vector<bool> matchedA( size_t( nCountA ), false );
	for ( int j = 0; j < nCountB; ++j )
	{
		const KeyValues3 &recordB = *pB->GetArrayElement( j );
		const int i = records.m_pKey ? FindElementRecordByKey( pA, records.m_pKey, recordB ) : j;
		CUtlString recordPath, recordLabel;
		recordPath.Format( "%s.%d", path.Get(), j );
		GetElementRecordLabel( records, label.Get(), recordB, j, &recordLabel );
		if ( i < 0 )
		{
			AddRecordPresenceChange( walk, pClass, pMember, nullptr, &recordB, recordPath, recordLabel );
			continue;
		}
		matchedA[ size_t( i ) ] = true;
		CollectFieldChanges( walk, records.m_pElementClass, pA->GetArrayElement( i ), &recordB, recordPath, recordLabel, nDepth + 1 );
	}
	for ( int i = 0; i < nCountA; ++i )
	{
		if ( matchedA[ size_t( i ) ] )
			continue;
		CUtlString recordPath, recordLabel;
		recordPath.Format( "%s.%d", path.Get(), i );
		GetElementRecordLabel( records, label.Get(), *pA->GetArrayElement( i ), i, &recordLabel );
		AddRecordPresenceChange( walk, pClass, pMember, pA->GetArrayElement( i ), nullptr, recordPath, recordLabel );
	}
}

void CollectFieldChanges( const FieldWalk_t &walk, const CGameDataClass *pClass, const KeyValues3 *pA, const KeyValues3 *pB, const CUtlString &path,
						  const CUtlString &labelPath, int nDepth )
{
	std::vector<CUtlString> members;
	CollectElementMembers( { pA, pB }, &members );
	if ( members.empty() && pClass )
	{
		// Two records at their defaults, or one stored whole as null.
		for ( const CGameDataVariable *pVar : pClass->m_Variables )
			members.emplace_back( pVar->m_Name );
	}
	for ( const CUtlString &member : members )
	{
		if ( nDepth == 0 && walk.m_pSkippedMember && member == walk.m_pSkippedMember )
			continue;
		const KeyValues3 *pValueA = GetElementFieldValue( pClass, pA, member.Get() );
		const KeyValues3 *pValueB = GetElementFieldValue( pClass, pB, member.Get() );
		if ( AreElementFieldValuesEqual( pClass, member.Get(), pValueA, pValueB ) )
			continue;

		CUtlString label, memberPath, memberLabel;
		GetElementFieldLabel( pClass, member.Get(), &label );
		memberPath.Format( "%s%s%s", path.Get(), path.IsEmpty() ? "" : ".", member.Get() );
		memberLabel.Format( "%s%s%s", labelPath.Get(), labelPath.IsEmpty() ? "" : "/", label.Get() );

		const CGameDataClass *pRecordClass = nullptr;
		if ( nDepth < MAX_RECORD_DEPTH && IsElementRecordField( pClass, member.Get(), pValueA, pValueB, &pRecordClass ) )
		{
			CollectFieldChanges( walk, pRecordClass, pValueA, pValueB, memberPath, memberLabel, nDepth + 1 );
			continue;
		}
		ZolRecordArrayField_t records;
		if ( nDepth < MAX_RECORD_DEPTH && IsElementRecordArrayField( pClass, member.Get(), { pValueA, pValueB }, &records ) )
		{
			CollectRecordChanges( walk, pClass, member.Get(), records, pValueA, pValueB, memberPath, memberLabel, nDepth );
			continue;
		}

		ZolFieldChange_t change;
		FormatElementFieldValue( pClass, member.Get(), pValueA, walk.m_pDomainA, &change.m_OldText );
		FormatElementFieldValue( pClass, member.Get(), pValueB, walk.m_pDomainB, &change.m_NewText );
		// An input whose text stays (a random seed changed under "Random 30 - 50"), or that
		// has no text of its own (a transform), tells which of its members changed.
		const bool bTextTellsAll = change.m_OldText != change.m_NewText && IsElementInputShownWhole( pClass, member.Get() );
		if ( !bTextTellsAll && nDepth < MAX_RECORD_DEPTH && pValueA && pValueB && pValueA->IsTable() && pValueB->IsTable() )
		{
			const size_t nBefore = walk.m_pChanges->size();
			const CGameDataVariable *pVar = FindElementField( pClass, member.Get() );
			CollectFieldChanges( walk, pVar ? pVar->GetStructClass() : nullptr, pValueA, pValueB, memberPath, memberLabel, nDepth + 1 );
			if ( walk.m_pChanges->size() != nBefore )
				continue;
		}
		change.m_Field = memberPath;
		change.m_Label = memberLabel;
		CopyValue( pValueA, &change.m_OldValue );
		CopyValue( pValueB, &change.m_NewValue );
		walk.m_pChanges->push_back( static_cast<ZolFieldChange_t &&>( change ) );
	}
}

ZolDiffChange_t MakeElementChange( ZolDiffKind_t eKind, int nSection, const ZolDefinitionElement_t &element, int nOldIndex, int nNewIndex )
{
	ZolDiffChange_t change;
	change.m_eKind = eKind;
	change.m_nSection = nSection;
	change.m_Element = element.m_Name;
	change.m_Class = element.m_Class;
	change.m_nOldIndex = nOldIndex;
	change.m_nNewIndex = nNewIndex;
	return change;
}

void AddFieldChanges( ZolDiffChange_t prototype, std::vector<ZolFieldChange_t> &fields, std::vector<ZolDiffChange_t> *pChanges )
{
	for ( ZolFieldChange_t &field : fields )
	{
		ZolDiffChange_t change = prototype;
		change.m_eKind = ZOL_DIFF_CHANGED;
		static_cast<ZolFieldChange_t &>( change ) = static_cast<ZolFieldChange_t &&>( field );
		pChanges->push_back( static_cast<ZolDiffChange_t &&>( change ) );
	}
}

void DiffBaseProperties( const ZolDefinitionTree_t &a, const ZolDefinitionTree_t &b, std::vector<ZolDiffChange_t> *pChanges )
{
	ZolDiffChange_t prototype;
	prototype.m_nSection = ZOL_SECTION_BASE_PROPERTIES;
	const CGameDataClass *pRootClass = FindDefinitionElementClass( ZOL_SECTION_BASE_PROPERTIES, nullptr );
	// Both stand at one version in memory; the files' own versions tell whether one was upgraded.
	if ( a.m_nFileVersion != b.m_nFileVersion )
	{
		ZolDiffChange_t change = prototype;
		change.m_Field.Set( VERSION_KEY );
		GetElementFieldLabel( pRootClass, VERSION_KEY, &change.m_Label );
		change.m_OldText.Format( "%d", a.m_nFileVersion );
		change.m_NewText.Format( "%d", b.m_nFileVersion );
		change.m_OldValue.SetInt( a.m_nFileVersion );
		change.m_NewValue.SetInt( b.m_nFileVersion );
		pChanges->push_back( static_cast<ZolDiffChange_t &&>( change ) );
	}
	std::vector<ZolFieldChange_t> fields;
	FieldWalk_t walk{ a.m_Domain.Get(), b.m_Domain.Get(), VERSION_KEY, &fields };
	CollectFieldChanges( walk, pRootClass, &a.m_Root, &b.m_Root, CUtlString(), CUtlString(), 0 );
	AddFieldChanges( prototype, fields, pChanges );
}

void DiffSection( int nSection, const ZolDefinitionTree_t &a, const ZolDefinitionTree_t &b, std::vector<ZolDiffChange_t> *pChanges )
{
	const std::vector<ZolDefinitionElement_t> &listA = a.m_Sections[ nSection ];
	const std::vector<ZolDefinitionElement_t> &listB = b.m_Sections[ nSection ];
	ZolElementMatch_t match;
	MatchDefinitionElements( nSection, listA, listB, &match );
	std::vector<bool> moved;
	FindMovedElements( match, &moved );
	// Configurations have no order that means anything.
	const bool bOrderMatters = nSection != ZOL_SECTION_CONFIGURATIONS;
	const char *pDisableKey = GetDefinitionSectionDisableKey( nSection );

	for ( int i = 0; i < int( listA.size() ); ++i )
	{
		if ( match.m_AToB[ size_t( i ) ] < 0 )
		{
			ZolDiffChange_t change = MakeElementChange( ZOL_DIFF_REMOVED, nSection, listA[ size_t( i ) ], i, -1 );
			change.m_OldValue.CopyFrom( listA[ size_t( i ) ].m_Table );
			pChanges->push_back( static_cast<ZolDiffChange_t &&>( change ) );
		}
	}
	for ( int j = 0; j < int( listB.size() ); ++j )
	{
		const ZolDefinitionElement_t &elementB = listB[ size_t( j ) ];
		const int i = match.m_BToA[ size_t( j ) ];
		if ( i < 0 )
		{
			ZolDiffChange_t change = MakeElementChange( ZOL_DIFF_ADDED, nSection, elementB, -1, j );
			change.m_NewValue.CopyFrom( elementB.m_Table );
			pChanges->push_back( static_cast<ZolDiffChange_t &&>( change ) );
			continue;
		}
		const ZolDefinitionElement_t &elementA = listA[ size_t( i ) ];
		if ( bOrderMatters && moved[ size_t( j ) ] )
			pChanges->push_back( MakeElementChange( ZOL_DIFF_MOVED, nSection, elementB, i, j ) );
		if ( pDisableKey )
		{
			const bool bWasOn = !elementA.m_Table.GetMemberBool( pDisableKey, false );
			const bool bIsOn = !elementB.m_Table.GetMemberBool( pDisableKey, false );
			if ( bWasOn != bIsOn )
				pChanges->push_back( MakeElementChange( bIsOn ? ZOL_DIFF_ENABLED : ZOL_DIFF_DISABLED, nSection, elementB, i, j ) );
		}
		std::vector<ZolFieldChange_t> fields;
		DiffElementFields( nSection, elementB.m_Class.Get(), elementA.m_Table, elementB.m_Table, a.m_Domain.Get(), b.m_Domain.Get(), &fields );
		AddFieldChanges( MakeElementChange( ZOL_DIFF_CHANGED, nSection, elementB, i, j ), fields, pChanges );
	}
}
} // namespace

void DiffElementFields( int nSection, const char *pClass, const KeyValues3 &a, const KeyValues3 &b, const char *pDomainA, const char *pDomainB,
						std::vector<ZolFieldChange_t> *pChanges )
{
	FieldWalk_t walk{ pDomainA, pDomainB, GetDefinitionSectionDisableKey( nSection ), pChanges };
	CollectFieldChanges( walk, FindDefinitionElementClass( nSection, pClass ), &a, &b, CUtlString(), CUtlString(), 0 );
}

void DiffDefinitionTrees( const ZolDefinitionTree_t &a, const ZolDefinitionTree_t &b, std::vector<ZolDiffChange_t> *pChanges )
{
	pChanges->clear();
	DiffBaseProperties( a, b, pChanges );
	for ( int nSection = 0; nSection < ZOL_SECTION_ELEMENT_COUNT; ++nSection )
		DiffSection( nSection, a, b, pChanges );
}

const char *GetDiffKindWord( ZolDiffKind_t eKind )
{
	switch ( eKind )
	{
	case ZOL_DIFF_ADDED: return "added";
	case ZOL_DIFF_REMOVED: return "removed";
	case ZOL_DIFF_MOVED: return "moved";
	case ZOL_DIFF_ENABLED: return "enabled";
	case ZOL_DIFF_DISABLED: return "disabled";
	case ZOL_DIFF_CHANGED: return "changed";
	}
	return "";
}

void FormatDiffChange( const ZolDiffChange_t &change, CUtlString *pOut )
{
	if ( change.m_nSection == ZOL_SECTION_BASE_PROPERTIES )
		pOut->Format( "%s:", GetDefinitionSectionTitle( change.m_nSection ) );
	else
		pOut->Format( "%s #%d %s:", GetDefinitionSectionTitle( change.m_nSection ),
					  1 + ( change.m_nNewIndex >= 0 ? change.m_nNewIndex : change.m_nOldIndex ), change.m_Element.Get() );
	switch ( change.m_eKind )
	{
	case ZOL_DIFF_MOVED: pOut->AppendFormat( " moved from #%d", change.m_nOldIndex + 1 ); break;
	case ZOL_DIFF_CHANGED:
		pOut->AppendFormat( " %s: %s -> %s", change.m_Label.Get(), change.m_OldText.Get(), change.m_NewText.Get() );
		break;
	default: pOut->AppendFormat( " %s", GetDiffKindWord( change.m_eKind ) ); break;
	}
}

int GetDefinitionComparisonVersion( int nVersionA, int nVersionB )
{
	return nVersionA == nVersionB ? nVersionA : CZolDoc::GetCurrentBehaviorVersion();
}

bool DiffDefinitionFiles( const char *pPathA, const char *pPathB, std::vector<ZolDiffChange_t> *pChanges, CUtlString *pError )
{
	CZolDoc docA( false ), docB( false );
	const char *paths[] = { pPathA, pPathB };
	CZolDoc *docs[] = { &docA, &docB };
	int versions[ 2 ] = {};
	if ( !LoadDefinitionsToCompare( paths, 2, docs, versions, pError ) )
		return false;
	ZolDefinitionTree_t treeA, treeB;
	for ( int i = 0; i < 2; ++i )
		BringDefinitionToVersion( docs[ i ], GetDefinitionComparisonVersion( versions[ 0 ], versions[ 1 ] ) );
	BuildDefinitionTree( docA, versions[ 0 ], &treeA );
	BuildDefinitionTree( docB, versions[ 1 ], &treeB );
	DiffDefinitionTrees( treeA, treeB, pChanges );
	return true;
}
