#include "zoldoc_lib/zolnamedvaluecache.h"

#include <algorithm>

#include "core/console/convar.h"
#include "core/host/iasset.h"
#include "core/logging/logging.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariablenode.h"

static ConVar zol_named_value_cache_debug( "zol_named_value_cache_debug", "0", FCVAR_NONE, "Logs how the variables of a particle system's family are found." );

#define NAMED_VALUE_DEBUG( ... )                    \
	do                                              \
	{                                               \
		if ( zol_named_value_cache_debug.GetBool() ) \
			Log_Msg( LOG_GENERAL, __VA_ARGS__ );    \
	} while ( 0 )

void ExtractNamedValueInfo( const CZolDoc &doc, ZolAssetNamedValues_t *pEntry )
{
	pEntry->m_Variables.RemoveAll();
	const CZolRootNode *pRoot = doc.GetRoot();
	if ( !pRoot )
		return;
	for ( int i = 0; i < pRoot->GetNodeCount( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ); ++i )
	{
		CZolVariableNode *pVariable = pRoot->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, i )->AsVariableNode();
		if ( !pVariable || !pVariable->GetValueType().IsValid() )
			continue;
		ZolVariableInfo_t &info = pEntry->m_Variables[ pEntry->m_Variables.AddToTail() ];
		info.m_Name = pVariable->GetName();
		info.m_bIsPublic = pVariable->GetReadKV3()->GetMemberBool( "m_IsPublic", false );
		info.m_Type = pVariable->GetValueType();
	}
}

void CZolNamedValueCache::SetSource( IZolDocumentSource *pSource )
{
	m_pSource = pSource;
	Clear();
}

void CZolNamedValueCache::Clear()
{
	m_Entries.clear();
	m_Order.clear();
}

const ZolAssetNamedValues_t *CZolNamedValueCache::Find( IAsset *pAsset ) const
{
	auto it = m_Entries.find( pAsset );
	return it == m_Entries.end() ? nullptr : &it->second;
}

ZolAssetNamedValues_t &CZolNamedValueCache::AddEntry( IAsset *pAsset )
{
	auto [ it, bAdded ] = m_Entries.try_emplace( pAsset );
	if ( bAdded )
	{
		it->second.m_AssetName = pAsset->GetResourceName();
		m_Order.push_back( pAsset );
	}
	return it->second;
}

void CZolNamedValueCache::Walk( IAsset *pFrom, int nDepth, bool bUp, std::vector<IAsset *> *pPath )
{
	// A loop of references on disk ends where the walk meets its own path; depth bounds
	// whatever else files may hold.
	if ( nDepth > MAX_FAMILY_DEPTH )
		return;
	pPath->push_back( pFrom );
	CUtlVector<IAsset *> next;
	if ( bUp )
		pFrom->GetParents( &next, false, pFrom->GetType() );
	else
		pFrom->GetChildren( &next, false, pFrom->GetType() );
	for ( IAsset *pNext : next )
	{
		if ( !pNext || pNext->GetType() != pFrom->GetType() || std::find( pPath->begin(), pPath->end(), pNext ) != pPath->end() )
			continue;
		bool bKnown = m_Entries.count( pNext ) != 0;
		// Down the walk skips what either walk reached; up it goes on through a second
		// path, keeping the first entry.
		if ( bKnown && !bUp )
			continue;
		if ( !bKnown )
		{
			NAMED_VALUE_DEBUG( bUp ? "     $$ appending parent '%s'\n" : "     $$ appending child '%s'\n", pNext->GetResourceName() );
			ZolAssetNamedValues_t &entry = AddEntry( pNext );
			( bUp ? entry.m_nParentDepth : entry.m_nChildDepth ) = nDepth;
		}
		Walk( pNext, nDepth + 1, bUp, pPath );
	}
	pPath->pop_back();
}

void CZolNamedValueCache::EnumerateDependencies()
{
	Clear();
	IAsset *pAsset = m_pSource ? m_pSource->GetSourceAsset() : nullptr;
	if ( !pAsset )
		return;
	NAMED_VALUE_DEBUG( "Beginning EnumerateDependencies() at '%s'\n", pAsset->GetResourceName() );
	AddEntry( pAsset ).m_bIsCurrentFile = true;
	std::vector<IAsset *> path;
	Walk( pAsset, 1, true, &path );
	Walk( pAsset, 1, false, &path );
}

void CZolNamedValueCache::ReadEntry( IAsset *pAsset, ZolAssetNamedValues_t *pEntry )
{
	const CZolDoc *pOpen = m_pSource->FindOpenDocument( pAsset );
	if ( !pOpen && pAsset == m_pSource->GetSourceAsset() )
		pOpen = m_pSource->GetSourceDocument();
	if ( pOpen )
	{
		NAMED_VALUE_DEBUG( "     reading '%s' from memory\n", pAsset->GetResourceName() );
		ExtractNamedValueInfo( *pOpen, pEntry );
		return;
	}
	ZolAssetNamedValues_t &disk = m_DiskReads[ pAsset ];
	int64_t nStamp = pAsset->GetFileStamp();
	if ( disk.m_nAssetStamp != nStamp )
	{
		NAMED_VALUE_DEBUG( "     reading '%s' from disk\n", pAsset->GetResourceName() );
		disk.m_nAssetStamp = nStamp;
		disk.m_Variables.RemoveAll();
		++m_nDiskReads;
		// A file that can't be read contributes nothing, and says nothing: it is read
		// again only once it changed.
		CZolDoc doc( false );
		CUtlString error;
		if ( doc.LoadFromFile( pAsset->GetAbsolutePath(), nullptr, &error ) )
			ExtractNamedValueInfo( doc, &disk );
	}
	pEntry->m_nAssetStamp = disk.m_nAssetStamp;
	pEntry->m_Variables = disk.m_Variables;
}

void CZolNamedValueCache::GetAllNamedValueInfo( CUtlVector<ZolNamedValueRecord_t> *pRecords )
{
	pRecords->RemoveAll();
	NAMED_VALUE_DEBUG( "Beginning GetAllNamedValueInfo()\n" );
	if ( !m_pSource )
		return;
	if ( IsEmpty() )
		EnumerateDependencies();
	for ( IAsset *pAsset : m_Order )
	{
		ZolAssetNamedValues_t &entry = m_Entries[ pAsset ];
		ReadEntry( pAsset, &entry );
		for ( const ZolVariableInfo_t &variable : entry.m_Variables )
		{
			ZolNamedValueRecord_t &record = ( *pRecords )[ pRecords->AddToTail() ];
			record.m_Name = variable.m_Name;
			record.m_Type = variable.m_Type;
			record.m_bIsPublic = variable.m_bIsPublic;
			record.m_FileName = entry.m_AssetName;
			record.m_bThisFile = entry.m_bIsCurrentFile;
			record.m_nParentDepth = entry.m_nParentDepth;
			record.m_nChildDepth = entry.m_nChildDepth;
		}
	}
}

void CZolNamedValueCache::GetDependencyAssets( CUtlVector<IAsset *> *pAssets )
{
	pAssets->RemoveAll();
	if ( IsEmpty() )
		EnumerateDependencies();
	for ( IAsset *pAsset : m_Order )
		pAssets->AddToTail( pAsset );
}
