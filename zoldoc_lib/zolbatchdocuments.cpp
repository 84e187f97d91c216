#include "zoldoc_lib/zolbatchdocuments.h"

#include <cstring>

#include "core/containers/utlbuffer.h"
#include "core/host/hostpaths.h"
#include "core/host/iasset.h"
#include "core/host/safefilewrite.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolfileio.h"
#include "zoldoc_lib/zolfilereport.h"

bool LoadDocumentForRewrite( const char *pPath, CZolDoc *pDoc, CUtlString *pError )
{
	pDoc->SetKeepsUnknownFunctions( true );
	if ( !pDoc->LoadFromFile( pPath, "", pError ) )
		return false;
	const CUtlString &warnings = pDoc->GetLoadWarnings();
	if ( warnings.IsEmpty() )
		return true;
	// The first line says enough; the rest are of the same kind.
	const char *pText = warnings.Get();
	const char *pEnd = strchr( pText, '\n' );
	CUtlString first( pText, pEnd ? size_t( pEnd - pText ) : strlen( pText ) );
	pError->Format( "%s; the file is left as it is, since writing it would lose that", first.Get() );
	return false;
}

bool WriteDefinitionText( const char *pAbsolutePath, const CUtlBuffer &text, bool bCheckOnly, CUtlString *pReason )
{
	const CUtlString path = Host_DiskPath( pAbsolutePath );
	CUtlString error;
	const bool bOk = bCheckOnly ? SafeWriteCheck( path.Get(), &error ) : ZolWriteWholeFile( path.Get(), text, &error );
	if ( bOk )
		return true;
	CUtlString prefix;
	prefix.Format( "Cannot write '%s': ", path.Get() );
	const bool bNamed = !strncmp( error.Get(), prefix.Get(), prefix.Length() );
	pReason->Set( error.Get() + ( bNamed ? prefix.Length() : 0 ) );
	return false;
}

bool DefinitionFileHolds( const char *pAbsolutePath, const CUtlBuffer &text )
{
	CUtlBuffer onDisk;
	return ZolReadWholeFile( pAbsolutePath, "", &onDisk ) && onDisk.Size() == text.Size() && !memcmp( onDisk.Base(), text.Base(), text.Size() );
}

CZolBatchDocuments::CZolBatchDocuments() = default;
CZolBatchDocuments::~CZolBatchDocuments() = default;

CZolDoc *CZolBatchDocuments::FindOpenDocument( IAsset *pAsset )
{
	for ( Entry_t &entry : m_Documents )
	{
		if ( entry.m_pAsset == pAsset )
			return entry.m_pDoc.get();
	}
	return nullptr;
}

CZolDoc *CZolBatchDocuments::OpenDocument( IAsset *pAsset, CUtlString *pError )
{
	if ( CZolDoc *pOpen = FindOpenDocument( pAsset ) )
		return pOpen;
	if ( !pAsset )
	{
		pError->Set( "no such file" );
		return nullptr;
	}
	auto pDoc = std::make_unique<CZolDoc>( false );
	if ( !LoadDocumentForRewrite( pAsset->GetAbsolutePath(), pDoc.get(), pError ) )
		return nullptr;
	m_Documents.push_back( { pAsset, std::move( pDoc ) } );
	return m_Documents.back().m_pDoc.get();
}

CUtlString CZolBatchDocuments::GetDisplayName( IAsset *pAsset )
{
	if ( m_fnDisplayName )
		return m_fnDisplayName( pAsset );
	return CUtlString( pAsset ? pAsset->GetResourceName() : "" );
}

int CZolBatchDocuments::WriteChanged( CZolFileReport *pReport )
{
	int nWritten = 0;
	for ( Entry_t &entry : m_Documents )
	{
		const CUtlString name = GetDisplayName( entry.m_pAsset );
		CUtlBuffer text;
		CUtlString error;
		if ( !entry.m_pDoc->SaveToBuffer( &text, &error ) )
		{
			pReport->Add( name.Get(), ZOL_FINDING_ERROR, "not written: %s", error.Get() );
			continue;
		}
		if ( DefinitionFileHolds( entry.m_pAsset->GetAbsolutePath(), text ) )
			continue;
		if ( !WriteDefinitionText( entry.m_pAsset->GetAbsolutePath(), text, false, &error ) )
		{
			pReport->Add( name.Get(), ZOL_FINDING_ERROR, "not written: %s", error.Get() );
			continue;
		}
		pReport->Add( name.Get(), ZOL_FINDING_INFO, "written" );
		++nWritten;
	}
	return nWritten;
}
