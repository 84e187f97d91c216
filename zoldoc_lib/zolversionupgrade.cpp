#include "zoldoc_lib/zolversionupgrade.h"

#include <cstring>
#include <memory>

#include "core/containers/utlbuffer.h"
#include "core/host/iasset.h"
#include "zoldoc_lib/izoldocumentprovider.h"
#include "zoldoc_lib/zolbatchdocuments.h"
#include "zoldoc_lib/zolchildreferences.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolfilereport.h"

CZolVersionUpgrade::CZolVersionUpgrade( IZolDocumentProvider *pDocuments, CZolFileReport *pReport ) : m_pDocuments( pDocuments ), m_pReport( pReport )
{
}

int CZolVersionUpgrade::GetLowestVersion( const CZolDoc &doc, IAsset *pAsset )
{
	std::unordered_set<IAsset *> walked;
	if ( pAsset )
		walked.insert( pAsset );
	std::swap( walked, m_Walked );
	int nLowest = LowestVersionBelow( doc, doc.GetBehaviorVersion() );
	std::swap( walked, m_Walked );
	return nLowest;
}

int CZolVersionUpgrade::LowestVersionBelow( const CZolDoc &doc, int nLowest )
{
	if ( doc.GetBehaviorVersion() < nLowest )
		nLowest = doc.GetBehaviorVersion();
	CUtlVector<ZolChildReference_t> children;
	GetChildReferences( doc, false, &children );
	for ( const ZolChildReference_t &child : children )
	{
		IAsset *pChild = FindChildAsset( child.m_Ref.Get() );
		if ( !pChild || !m_Walked.insert( pChild ).second )
			continue;
		if ( const CZolDoc *pOpen = m_pDocuments->FindOpenDocument( pChild ) )
		{
			nLowest = LowestVersionBelow( *pOpen, nLowest );
			continue;
		}
		CZolDoc closed( false );
		closed.SetKeepsUnknownFunctions( true );
		if ( closed.LoadFromFile( pChild->GetAbsolutePath(), "", nullptr ) )
			nLowest = LowestVersionBelow( closed, nLowest );
	}
	return nLowest;
}

bool CZolVersionUpgrade::CheckNotNewer( const char *pFile, int nVersion )
{
	const int nCurrent = CZolDoc::GetCurrentBehaviorVersion();
	if ( nVersion <= nCurrent )
		return true;
	m_pReport->Add( pFile, ZOL_FINDING_ERROR, "behavior version %d is newer than this editor's %d; an upgrade never brings a file down, so it is left as it is",
		nVersion, nCurrent );
	return false;
}

void CZolVersionUpgrade::ReportUpgrade( const char *pFile, int nFrom, int nTo, const CUtlVector<CUtlString> &changes, const char *pHow )
{
	m_pReport->Add( pFile, ZOL_FINDING_INFO, "%s from behavior version %d to %d", pHow, nFrom, nTo );
	for ( const CUtlString &change : changes )
		m_pReport->Add( pFile, ZOL_FINDING_INFO, "%s", change.Get() );
}

bool CZolVersionUpgrade::UpgradeOpenDocument( CZolDoc *pDoc, IAsset *pAsset )
{
	if ( pAsset )
		m_Walked.insert( pAsset );
	if ( !pDoc->GetRoot() )
		return false;
	const CUtlString name = m_pDocuments->GetDisplayName( pAsset );
	const int nFrom = pDoc->GetBehaviorVersion();
	if ( !CheckNotNewer( name.Get(), nFrom ) || pDoc->IsCurrentBehaviorVersion() )
		return false;
	CUtlVector<CUtlString> changes;
	if ( m_bDryRun )
	{
		// A snapshot of the document takes the change; the document stays as the user has it.
		std::unique_ptr<CZolDoc> pCopy( static_cast<CZolDoc *>( pDoc->CreateUndoState() ) );
		pCopy->UpdateToCurrentVersion( &changes );
	}
	else
	{
		pDoc->UpdateToCurrentVersion( &changes );
	}
	ReportUpgrade( name.Get(), nFrom, CZolDoc::GetCurrentBehaviorVersion(), changes, m_bDryRun ? "would upgrade in memory" : "upgraded in memory (unsaved)" );
	++m_nChanged;
	return true;
}

void CZolVersionUpgrade::UpgradeChildren( const CZolDoc &doc, IAsset *pAsset )
{
	if ( pAsset )
		m_Walked.insert( pAsset );
	CUtlVector<ZolChildReference_t> children;
	GetChildReferences( doc, false, &children );
	for ( const ZolChildReference_t &child : children )
	{
		IAsset *pChild = FindChildAsset( child.m_Ref.Get() );
		if ( !pChild )
		{
			const CUtlString name = m_pDocuments->GetDisplayName( pAsset );
			m_pReport->Add( name.Get(), ZOL_FINDING_WARNING, "child '%s' not found; it is passed over", child.m_Ref.Get() );
			continue;
		}
		UpgradeAsset( pChild, true );
	}
}

void CZolVersionUpgrade::UpgradeAsset( IAsset *pAsset, bool bRecursive )
{
	if ( !pAsset || !m_Walked.insert( pAsset ).second )
		return;
	if ( CZolDoc *pOpen = m_pDocuments->FindOpenDocument( pAsset ) )
	{
		UpgradeOpenDocument( pOpen, pAsset );
		if ( bRecursive )
			UpgradeChildren( *pOpen, pAsset );
		return;
	}
	UpgradeClosedFile( pAsset, bRecursive );
}

void CZolVersionUpgrade::UpgradeClosedFile( IAsset *pAsset, bool bRecursive )
{
	const CUtlString name = m_pDocuments->GetDisplayName( pAsset );
	CZolDoc doc( false );
	CUtlString error;
	if ( !LoadDocumentForRewrite( pAsset->GetAbsolutePath(), &doc, &error ) )
	{
		m_pReport->Add( name.Get(), ZOL_FINDING_ERROR, "%s", error.Get() );
		// A file that loads leniently still has children worth walking; one that doesn't
		// load has none to offer.
		if ( bRecursive && doc.GetRoot() )
			UpgradeChildren( doc, pAsset );
		return;
	}
	const int nFrom = doc.GetBehaviorVersion();
	if ( CheckNotNewer( name.Get(), nFrom ) && !doc.IsCurrentBehaviorVersion() )
	{
		CUtlVector<CUtlString> changes;
		doc.UpdateToCurrentVersion( &changes );
		CUtlBuffer text;
		const char *pPath = pAsset->GetAbsolutePath();
		if ( !doc.SaveToBuffer( &text, &error ) )
		{
			m_pReport->Add( name.Get(), ZOL_FINDING_ERROR, "not upgraded: %s", error.Get() );
		}
		else if ( DefinitionFileHolds( pPath, text ) )
		{
			// Nothing to write: the file already says what the upgrade would.
		}
		else
		{
			if ( !m_bDryRun && m_fnBeforeWrite )
				m_fnBeforeWrite( pAsset );
			if ( WriteDefinitionText( pPath, text, m_bDryRun, &error ) )
			{
				ReportUpgrade( name.Get(), nFrom, CZolDoc::GetCurrentBehaviorVersion(), changes, m_bDryRun ? "would upgrade" : "upgraded" );
				++m_nChanged;
				m_nWritten += m_bDryRun ? 0 : 1;
			}
			else
			{
				m_pReport->Add( name.Get(), ZOL_FINDING_ERROR, "%s: %s", m_bDryRun ? "can't be upgraded" : "not upgraded", error.Get() );
			}
		}
	}
	if ( bRecursive )
		UpgradeChildren( doc, pAsset );
}
