#include "zoldoc_lib/zolreferencenavigator.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <unordered_set>

#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/logging/logging.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/text/strtools.h"
#include "zoldoc_lib/izoldocumentprovider.h"
#include "zoldoc_lib/zolchildreferences.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolmodifiertable.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
std::string LowerKey( const char *pText )
{
	std::string key( pText ? pText : "" );
	for ( char &c : key )
		c = char( std::tolower( static_cast<unsigned char>( c ) ) );
	return key;
}
} // namespace

const ZolReferenceCell_t *ZolReferenceRow_t::FindCell( const char *pKey ) const
{
	auto it = m_Cells.find( pKey ? pKey : "" );
	return it == m_Cells.end() ? nullptr : &it->second;
}

CZolReferenceNavigator::CZolReferenceNavigator( IZolDocumentProvider *pDocuments ) : m_pDocuments( pDocuments )
{
}

CZolReferenceNavigator::~CZolReferenceNavigator() = default;

CUtlString CZolReferenceNavigator::ControlPointKey( int nControlPoint )
{
	CUtlString key;
	key.Format( "CP%d", nControlPoint );
	return key;
}

//-----------------------------------------------------------------------------
// Refresh
//-----------------------------------------------------------------------------

void CZolReferenceNavigator::Refresh( const CUtlVector<IAsset *> &systems )
{
	m_Trees.clear();
	m_Keys.clear();
	m_ControlPoints.clear();
	m_Variables.clear();
	m_Report.Clear();
	m_nDiskReads = 0;
	m_FirstParent.clear();
	m_Loaded.clear();
	m_LoadFailed.clear();
	m_VariableSpelling.clear();
	m_RowsOfAsset.clear();

	BuildParentIndex();
	std::vector<IAsset *> roots;
	for ( IAsset *pAsset : systems )
	{
		IAsset *pRoot = pAsset ? FindRoot( pAsset ) : nullptr;
		if ( pRoot && std::find( roots.begin(), roots.end(), pRoot ) == roots.end() )
			roots.push_back( pRoot );
	}
	std::vector<IAsset *> viaModifier;
	FollowModifiers( roots, viaModifier );

	auto byName = []( IAsset *pA, IAsset *pB ) { return V_stricmp_fast( pA->GetResourceName(), pB->GetResourceName() ) < 0; };
	std::sort( roots.begin(), roots.end(), byName );
	std::sort( viaModifier.begin(), viaModifier.end(), byName );
	for ( IAsset *pRoot : roots )
		BuildTree( pRoot, false );
	for ( IAsset *pRoot : viaModifier )
		BuildTree( pRoot, true );

	LinkTwins();
	SortKeys();
	for ( ZolReferenceTree_t &tree : m_Trees )
		RunGlyphPasses( tree );
	// Documents read for this refresh go with it.
	m_Loaded.clear();
}

void CZolReferenceNavigator::BuildParentIndex()
{
	IAssetSystem *pAssets = GetAssetSystem();
	if ( !pAssets )
		return;
	// The first parent of an asset is the first system in name order that refers to it,
	// as the asset's own list of parents has it; one pass over all systems finds every one.
	CUtlVector<IAsset *> all;
	pAssets->GetAssets( &all, RESOURCE_TYPE_PARTICLE_SYSTEM );
	for ( IAsset *pParent : all )
	{
		CUtlVector<IAsset *> children;
		pParent->GetChildren( &children, false, RESOURCE_TYPE_PARTICLE_SYSTEM );
		for ( IAsset *pChild : children )
		{
			if ( pChild != pParent )
				m_FirstParent.emplace( pChild, pParent );
		}
	}
}

IAsset *CZolReferenceNavigator::FindRoot( IAsset *pAsset )
{
	// A loop of parents ends at the system where it comes round: the one asked about, when
	// it is part of the loop.
	std::unordered_set<IAsset *> seen{ pAsset };
	for ( ;; )
	{
		auto it = m_FirstParent.find( pAsset );
		if ( it == m_FirstParent.end() )
			return pAsset;
		if ( !seen.insert( it->second ).second )
			return it->second;
		pAsset = it->second;
	}
}

void CZolReferenceNavigator::FollowModifiers( std::vector<IAsset *> &roots, std::vector<IAsset *> &viaModifier )
{
	IAssetSystem *pAssets = GetAssetSystem();
	if ( !m_pModifiers || m_pModifiers->IsEmpty() || !pAssets )
		return;
	std::vector<IAsset *> frontier = roots;
	for ( int nRound = 0; !frontier.empty(); ++nRound )
	{
		if ( nRound + 1 >= MODIFIER_ROUND_LIMIT )
		{
			Log_Msg( LOG_GENERAL, "CQZolReferenceNavigatorWidget: Giving up following modifiers due to possible infinite loop\n" );
			return;
		}
		std::vector<IAsset *> collected;
		std::unordered_set<IAsset *> seen;
		for ( IAsset *pFrom : frontier )
		{
			CUtlVector<IAsset *> tree;
			tree.AddToTail( pFrom );
			pFrom->GetChildren( &tree, true, RESOURCE_TYPE_PARTICLE_SYSTEM );
			for ( IAsset *pMember : tree )
			{
				const std::vector<CUtlString> *pTargets = m_pModifiers->Find( pMember->GetResourceName() );
				if ( !pTargets )
					continue;
				for ( const CUtlString &target : *pTargets )
				{
					IAsset *pTarget = pAssets->FindAssetByResourceName( target.Get() );
					if ( pTarget && pTarget->GetType() == RESOURCE_TYPE_PARTICLE_SYSTEM && seen.insert( pTarget ).second )
						collected.push_back( pTarget );
				}
			}
		}
		frontier.clear();
		for ( IAsset *pCollected : collected )
		{
			IAsset *pRoot = FindRoot( pCollected );
			if ( std::find( roots.begin(), roots.end(), pRoot ) != roots.end() || std::find( viaModifier.begin(), viaModifier.end(), pRoot ) != viaModifier.end() )
				continue;
			viaModifier.push_back( pRoot );
			frontier.push_back( pRoot );
		}
	}
}

//-----------------------------------------------------------------------------
// Rows
//-----------------------------------------------------------------------------

const CZolDoc *CZolReferenceNavigator::GetDocument( IAsset *pAsset )
{
	if ( const CZolDoc *pOpen = m_pDocuments->FindOpenDocument( pAsset ) )
		return pOpen;
	auto it = m_Loaded.find( pAsset );
	if ( it != m_Loaded.end() )
		return it->second.get();
	if ( m_LoadFailed.count( pAsset ) )
		return nullptr;
	auto pDoc = std::make_unique<CZolDoc>( false );
	CUtlString error;
	++m_nDiskReads;
	if ( !pDoc->LoadFromFile( pAsset->GetAbsolutePath(), "", &error ) )
	{
		m_LoadFailed.emplace( pAsset, true );
		m_Report.Add( m_pDocuments->GetDisplayName( pAsset ).Get(), ZOL_FINDING_ERROR, "%s", error.Get() );
		return nullptr;
	}
	return m_Loaded.emplace( pAsset, std::move( pDoc ) ).first->second.get();
}

void CZolReferenceNavigator::BuildTree( IAsset *pRoot, bool bViaModifier )
{
	// The root's own variables give the names their spelling.
	if ( const CZolDoc *pDoc = GetDocument( pRoot ) )
	{
		for ( int i = 0; i < pDoc->GetRoot()->GetNodeCount( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ); ++i )
		{
			CZolVariableNode *pVariable = pDoc->GetRoot()->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, i )->AsVariableNode();
			if ( pVariable && *pVariable->GetName() )
				m_VariableSpelling.emplace( LowerKey( pVariable->GetName() ), CUtlString( pVariable->GetName() ) );
		}
	}
	ZolReferenceTree_t &tree = m_Trees.emplace_back();
	tree.m_bViaModifier = bViaModifier;
	ZolReferenceRow_t &top = tree.m_Rows.emplace_back();
	top.m_Name = TOP_ROW_TEXT;
	if ( bViaModifier )
		top.m_Name.Append( VIA_MODIFIER_SUFFIX );
	top.m_bViaModifier = bViaModifier;
	std::vector<IAsset *> path;
	BuildRow( tree, 0, pRoot, bViaModifier, true, path );
}

void CZolReferenceNavigator::BuildRow( ZolReferenceTree_t &tree, int nParent, IAsset *pAsset, bool bViaModifier, bool bEnabled, std::vector<IAsset *> &path )
{
	const CZolDoc *pDoc = GetDocument( pAsset );
	if ( !pDoc || !pDoc->GetRoot() )
		return;
	const int nRow = int( tree.m_Rows.size() );
	{
		ZolReferenceRow_t &row = tree.m_Rows.emplace_back();
		row.m_pAsset = pAsset;
		row.m_Name = m_pDocuments->GetDisplayName( pAsset );
		row.m_bOpen = m_pDocuments->FindOpenDocument( pAsset ) != nullptr;
		row.m_bViaModifier = bViaModifier;
		row.m_bEnabled = bEnabled;
		row.m_nRow = nRow;
		row.m_nParent = nParent;
		row.m_nLevel = tree.m_Rows[ nParent ].m_nLevel + 1;
		GatherUsage( *pDoc, row );
	}
	tree.m_Rows[ nParent ].m_Children.push_back( nRow );
	m_RowsOfAsset[ pAsset ].emplace_back( int( m_Trees.size() ) - 1, nRow );

	path.push_back( pAsset );
	CUtlVector<ZolChildReference_t> children;
	GetChildReferences( *pDoc, true, &children );
	for ( const ZolChildReference_t &child : children )
	{
		IAsset *pChild = FindChildAsset( child.m_Ref.Get() );
		const CUtlString name = m_pDocuments->GetDisplayName( pAsset );
		if ( !pChild )
		{
			m_Report.Add( name.Get(), ZOL_FINDING_WARNING, "child '%s' not found", child.m_Ref.Get() );
			continue;
		}
		if ( std::find( path.begin(), path.end(), pChild ) != path.end() )
		{
			m_Report.Add( name.Get(), ZOL_FINDING_WARNING, "child '%s' is its own ancestor (a cycle); it is not followed", child.m_Ref.Get() );
			continue;
		}
		BuildRow( tree, nRow, pChild, bViaModifier, bEnabled && child.m_bEnabled, path );
	}
	path.pop_back();
}

void CZolReferenceNavigator::GatherUsage( const CZolDoc &doc, ZolReferenceRow_t &row )
{
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	if ( !pMgr )
		return;
	CUtlVector<HostControlPointUsage_t> usage;
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		for ( int i = 0; i < doc.GetRoot()->GetNodeCount( eType ); ++i )
		{
			const CBaseZolNode *pNode = doc.GetRoot()->GetNode( eType, i );
			if ( !pNode->IsEnabled() )
				continue;
			pMgr->GetFunctionControlPointUsage( pNode->GetReadKV3(), &usage );
			for ( const HostControlPointUsage_t &use : usage )
			{
				if ( use.m_ID.m_nNumber >= 0 )
				{
					ZolReferenceCell_t &cell = row.m_Cells[ ControlPointKey( use.m_ID.m_nNumber ).Get() ];
					cell.m_bRead |= ( use.m_nAccess & CONTROL_POINT_ACCESS_READ ) != 0;
					cell.m_bWritten |= ( use.m_nAccess & CONTROL_POINT_ACCESS_WRITE ) != 0;
					cell.m_bWrittenSpecial |= ( use.m_nAccess & CONTROL_POINT_ACCESS_WRITE_SPECIAL ) != 0;
					if ( std::find( m_ControlPoints.begin(), m_ControlPoints.end(), use.m_ID.m_nNumber ) == m_ControlPoints.end() )
						m_ControlPoints.push_back( use.m_ID.m_nNumber );
				}
				else if ( use.m_ID.IsNamed() && use.m_ID.m_pName && *use.m_ID.m_pName )
				{
					const CUtlString &name = m_VariableSpelling.emplace( LowerKey( use.m_ID.m_pName ), CUtlString( use.m_ID.m_pName ) ).first->second;
					row.m_Cells[ name.Get() ].m_bRead = true;
					if ( std::find( m_Variables.begin(), m_Variables.end(), name ) == m_Variables.end() )
						m_Variables.push_back( name );
				}
			}
		}
	}
}

void CZolReferenceNavigator::LinkTwins()
{
	for ( const auto &[ pAsset, rows ] : m_RowsOfAsset )
	{
		for ( const auto &[ nTree, nRow ] : rows )
		{
			std::vector<std::pair<int, int>> &twins = m_Trees[ size_t( nTree ) ].m_Rows[ size_t( nRow ) ].m_Twins;
			for ( const auto &other : rows )
			{
				if ( other != std::make_pair( nTree, nRow ) )
					twins.push_back( other );
			}
		}
	}
}

void CZolReferenceNavigator::SortKeys()
{
	std::sort( m_ControlPoints.begin(), m_ControlPoints.end() );
	std::sort( m_Variables.begin(), m_Variables.end(), []( const CUtlString &a, const CUtlString &b ) {
		int nOrder = V_stricmp_fast( a.Get(), b.Get() );
		return nOrder != 0 ? nOrder < 0 : strcmp( a.Get(), b.Get() ) < 0;
	} );
	for ( int nControlPoint : m_ControlPoints )
		m_Keys.push_back( ControlPointKey( nControlPoint ) );
	m_Keys.insert( m_Keys.end(), m_Variables.begin(), m_Variables.end() );
}

//-----------------------------------------------------------------------------
// Glyphs
//-----------------------------------------------------------------------------

void CZolReferenceNavigator::RunGlyphPasses( ZolReferenceTree_t &tree )
{
	std::vector<ZolReferenceRow_t> &rows = tree.m_Rows;
	// Every key that the tree uses gets a cell in the top row.
	for ( size_t i = 1; i < rows.size(); ++i )
	{
		for ( const auto &entry : rows[ i ].m_Cells )
			rows[ 0 ].m_Cells.emplace( entry.first, ZolReferenceCell_t() );
	}
	std::vector<std::string> keys;
	for ( const auto &entry : rows[ 0 ].m_Cells )
		keys.push_back( entry.first );

	for ( const std::string &key : keys )
	{
		bool bWriter = false;
		int nFirst = -1;
		int nLast = -1;
		auto writes = []( const ZolReferenceCell_t &cell ) { return cell.m_bWritten || cell.m_bWrittenSpecial; };

		// 1: first and last users, and the writers above each row.
		std::function<void( int, int )> walk = [ & ]( int nRow, int nDepth ) {
			ZolReferenceCell_t &cell = rows[ size_t( nRow ) ].m_Cells[ key ];
			int nBelow = nDepth;
			if ( writes( cell ) )
			{
				nBelow = nDepth + ( nRow == 0 ? 0 : 1 );
				if ( nFirst < 0 )
				{
					bWriter = true;
					nFirst = nRow;
				}
				nLast = nRow;
			}
			else if ( cell.m_bRead )
			{
				if ( nFirst < 0 )
					nFirst = nRow;
				nLast = nRow;
			}
			cell.m_nDepth = nBelow;
			for ( int nChild : rows[ size_t( nRow ) ].m_Children )
				walk( nChild, nBelow );
			cell.m_nLastRow = nLast;
		};
		const ZolReferenceCell_t &topCell = rows[ 0 ].m_Cells[ key ];
		walk( 0, writes( topCell ) ? 1 : 0 );

		// 2: the glyph of each row.
		for ( ZolReferenceRow_t &row : rows )
		{
			ZolReferenceCell_t &cell = row.m_Cells[ key ];
			const int r = row.m_nRow;
			if ( cell.m_bWrittenSpecial )
			{
				cell.m_nGlyph = ZOL_GLYPH_WRITE_SPECIAL;
				cell.m_bLineStart = true;
			}
			else if ( cell.m_bWritten )
			{
				cell.m_nGlyph = cell.m_bRead ? ZOL_GLYPH_READ_WRITE : ZOL_GLYPH_WRITE;
				cell.m_bLineStart = true;
			}
			else if ( cell.m_bRead )
				cell.m_nGlyph = ZOL_GLYPH_READ;
			else if ( r != 0 && r <= nLast && ( r >= nFirst || !bWriter ) )
				cell.m_nGlyph = ZOL_GLYPH_LINE;
			else if ( r == 0 && !bWriter )
				cell.m_nGlyph = ZOL_GLYPH_OUTSIDE_WORLD;
			else
				cell = ZolReferenceCell_t();
		}

		// 3: where the line starts and ends.
		if ( bWriter && nFirst >= 0 )
			rows[ size_t( nFirst ) ].m_Cells[ key ].m_bLineStart = true;
		if ( nLast >= 0 )
			rows[ size_t( nLast ) ].m_Cells[ key ].m_bLineEnd = true;
	}
}
