#include "zoldoc_lib/zolfilereport.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <vector>

#include "core/text/strtools.h"

void CZolFileReport::Add( const char *pFile, ZolFindingSeverity_t eSeverity, const char *pFormat, ... )
{
	ZolFileFinding_t &finding = m_Findings.Element( m_Findings.AddToTail() );
	finding.m_File = pFile ? pFile : "";
	finding.m_eSeverity = eSeverity;
	va_list args;
	va_start( args, pFormat );
	finding.m_Text.FormatV( pFormat, args );
	va_end( args );
}

int CZolFileReport::GetCount( ZolFindingSeverity_t eSeverity ) const
{
	int nCount = 0;
	for ( const ZolFileFinding_t &finding : m_Findings )
		nCount += finding.m_eSeverity == eSeverity ? 1 : 0;
	return nCount;
}

void CZolFileReport::GetSortedLines( CUtlVector<CUtlString> *pLines ) const
{
	pLines->RemoveAll();
	std::vector<const ZolFileFinding_t *> order;
	for ( const ZolFileFinding_t &finding : m_Findings )
		order.push_back( &finding );
	std::stable_sort( order.begin(), order.end(), []( const ZolFileFinding_t *pA, const ZolFileFinding_t *pB ) { return strcmp( pA->m_File.Get(), pB->m_File.Get() ) < 0; } );
	for ( const ZolFileFinding_t *pFinding : order )
	{
		CUtlString line;
		const char *pWord = GetFindingSeverityWord( pFinding->m_eSeverity );
		line.Format( "%s: %s%s%s", pFinding->m_File.Get(), pWord, *pWord ? ": " : "", pFinding->m_Text.Get() );
		// A walk may meet one fault twice (a file reached by two parents): it is told once.
		bool bSeen = false;
		for ( int i = pLines->Count() - 1; i >= 0 && !bSeen; --i )
			bSeen = pLines->Element( i ) == line;
		if ( !bSeen )
			pLines->AddToTail( line );
	}
}

const char *GetFindingSeverityWord( ZolFindingSeverity_t eSeverity )
{
	switch ( eSeverity )
	{
	case ZOL_FINDING_WARNING: return "warning";
	case ZOL_FINDING_ERROR: return "error";
	default: return "";
	}
}
