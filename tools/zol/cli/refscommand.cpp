// zol refs: the reference navigator's chart as text or JSON: for the trees of the named
// systems (or of all systems), one row per system and one column per control point and
// variable, saying who writes and who reads each, and where its line runs from the game
// or the first writer down to the last reader. Missing children, cycles and files that
// don't load follow as "FILE: message" lines.

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "core/host/igametoolsservice.h"
#include "core/text/strtools.h"
#include "tools/zol/cli/cliargs.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/clijson.h"
#include "tools/zol/cli/climaintenance.h"
#include "zoldoc_lib/zolfilereport.h"
#include "zoldoc_lib/zolmodifiertable.h"
#include "zoldoc_lib/zolreferencenavigator.h"

namespace
{
constexpr const char *USAGE = "usage: zol refs FILE...|--all [--json] [--cp N|--name NAME]\n";

int Usage( const char *pWhy )
{
	fprintf( stderr, "zol refs: %s\n%s", pWhy, USAGE );
	return 2;
}

// One character per glyph: the chart's picture in text.
char GlyphChar( int nGlyph )
{
	static const char s_Chars[] = { ' ', 'o', '|', 'R', 'W', 'X', 'S' };
	return nGlyph >= 0 && nGlyph < int( sizeof( s_Chars ) ) ? s_Chars[ nGlyph ] : '?';
}

const char *GlyphName( int nGlyph )
{
	static const char *const s_Names[] = { "none", "outside world", "line", "read", "write", "read and write", "special write" };
	return nGlyph >= 0 && nGlyph < 7 ? s_Names[ nGlyph ] : "unknown";
}

// The keys the tree uses, in column order.
std::vector<CUtlString> TreeKeys( const ZolReferenceTree_t &tree, const std::vector<CUtlString> &keys )
{
	std::vector<CUtlString> used;
	for ( const CUtlString &key : keys )
	{
		if ( tree.m_Rows[ 0 ].FindCell( key.Get() ) )
			used.push_back( key );
	}
	return used;
}

void PrintTree( const ZolReferenceTree_t &tree, const std::vector<CUtlString> &keys )
{
	size_t nNameWidth = strlen( "system" );
	for ( const ZolReferenceRow_t &row : tree.m_Rows )
	{
		std::string name = std::string( size_t( row.m_nLevel ) * 2, ' ' ) + row.m_Name.Get();
		nNameWidth = std::max( nNameWidth, name.size() );
	}
	printf( "%s\n", tree.m_Rows.size() > 1 ? tree.m_Rows[ 1 ].m_Name.Get() : tree.m_Rows[ 0 ].m_Name.Get() );
	std::string header = "  row  system" + std::string( nNameWidth - strlen( "system" ), ' ' );
	for ( const CUtlString &key : keys )
		header += std::string( "  " ) + key.Get();
	printf( "%s\n", header.c_str() );
	for ( const ZolReferenceRow_t &row : tree.m_Rows )
	{
		std::string name = std::string( size_t( row.m_nLevel ) * 2, ' ' ) + row.m_Name.Get();
		char head[ 32 ];
		snprintf( head, sizeof( head ), "  %3d  ", row.m_nRow );
		std::string line = head + name + std::string( nNameWidth - name.size(), ' ' );
		for ( const CUtlString &key : keys )
		{
			// The glyph stands under the middle of the key's name.
			const ZolReferenceCell_t *pCell = row.FindCell( key.Get() );
			const size_t nBefore = ( key.Length() - 1 ) / 2;
			line += "  " + std::string( nBefore, ' ' ) + GlyphChar( pCell ? pCell->m_nGlyph : 0 ) + std::string( key.Length() - nBefore - 1, ' ' );
		}
		if ( row.m_bOpen )
			line += " (open)";
		if ( !row.m_bEnabled )
			line += " (disabled)";
		if ( !row.m_Twins.empty() )
			line += " (also in " + std::to_string( row.m_Twins.size() ) + " other row" + ( row.m_Twins.size() > 1 ? "s)" : ")" );
		line.erase( line.find_last_not_of( ' ' ) + 1 );
		printf( "%s\n", line.c_str() );
	}
}

void AppendJsonCell( std::string *pOut, const ZolReferenceCell_t &cell )
{
	auto flag = []( bool b ) { return b ? "true" : "false"; };
	char text[ 512 ];
	snprintf( text, sizeof( text ),
		"{\"read\": %s, \"written\": %s, \"writtenSpecial\": %s, \"glyph\": %d, \"glyphName\": \"%s\", \"depth\": %d, \"lastRow\": %d, "
		"\"lineStart\": %s, \"lineEnd\": %s}",
		flag( cell.m_bRead ), flag( cell.m_bWritten ), flag( cell.m_bWrittenSpecial ), cell.m_nGlyph, GlyphName( cell.m_nGlyph ), cell.m_nDepth,
		cell.m_nLastRow, flag( cell.m_bLineStart ), flag( cell.m_bLineEnd ) );
	pOut->append( text );
}

std::string BuildJson( const CZolReferenceNavigator &navigator, const std::vector<const ZolReferenceTree_t *> &trees, const std::vector<CUtlString> &keys )
{
	std::string json = "{\"keys\": [";
	for ( size_t i = 0; i < keys.size(); ++i )
	{
		json += i ? ", " : "";
		AppendJsonString( &json, keys[ i ].Get() );
	}
	json += "], \"trees\": [";
	for ( size_t nTree = 0; nTree < trees.size(); ++nTree )
	{
		const ZolReferenceTree_t &tree = *trees[ nTree ];
		json += nTree ? ", " : "";
		json += std::string( "{\"viaModifier\": " ) + ( tree.m_bViaModifier ? "true" : "false" ) + ", \"rows\": [";
		for ( size_t nRow = 0; nRow < tree.m_Rows.size(); ++nRow )
		{
			const ZolReferenceRow_t &row = tree.m_Rows[ nRow ];
			json += nRow ? ", " : "";
			json += "{\"row\": " + std::to_string( row.m_nRow ) + ", \"parent\": " + std::to_string( row.m_nParent ) + ", \"level\": " +
					std::to_string( row.m_nLevel ) + ", \"system\": ";
			if ( row.m_pAsset )
				AppendJsonString( &json, row.m_Name.Get() );
			else
				json += "null";
			json += ", \"name\": ";
			AppendJsonString( &json, row.m_Name.Get() );
			json += std::string( ", \"open\": " ) + ( row.m_bOpen ? "true" : "false" ) + ", \"enabled\": " + ( row.m_bEnabled ? "true" : "false" ) +
					", \"twins\": " + std::to_string( row.m_Twins.size() ) + ", \"cells\": {";
			bool bFirstCell = true;
			for ( const CUtlString &key : keys )
			{
				const ZolReferenceCell_t *pCell = row.FindCell( key.Get() );
				if ( !pCell || pCell->m_nGlyph == ZOL_GLYPH_NONE )
					continue;
				json += bFirstCell ? "" : ", ";
				bFirstCell = false;
				AppendJsonString( &json, key.Get() );
				json += ": ";
				AppendJsonCell( &json, *pCell );
			}
			json += "}}";
		}
		json += "]}";
	}
	json += "], \"findings\": [";
	bool bFirst = true;
	for ( const ZolFileFinding_t &finding : navigator.GetReport().GetFindings() )
	{
		json += bFirst ? "{\"file\": " : ", {\"file\": ";
		bFirst = false;
		AppendJsonString( &json, finding.m_File.Get() );
		json += ", \"severity\": ";
		AppendJsonString( &json, *GetFindingSeverityWord( finding.m_eSeverity ) ? GetFindingSeverityWord( finding.m_eSeverity ) : "info" );
		json += ", \"message\": ";
		AppendJsonString( &json, finding.m_Text.Get() );
		json += "}";
	}
	json += "]}\n";
	return json;
}

int RunRefs( int argc, char **argv )
{
	bool bAll = false, bJson = false;
	const char *pName = nullptr;
	long long nControlPoint = -1;
	CUtlVector<const char *> files;
	for ( int i = 1; i < argc; ++i )
	{
		const char *pArg = argv[ i ];
		if ( !strcmp( pArg, "--all" ) )
			bAll = true;
		else if ( !strcmp( pArg, "--json" ) )
			bJson = true;
		else if ( !strcmp( pArg, "--cp" ) )
		{
			if ( i + 1 >= argc || !ZolCliParseInt( argv[ i + 1 ], 0, 63, &nControlPoint ) )
				return Usage( "--cp needs a control point number from 0 to 63" );
			++i;
		}
		else if ( !strcmp( pArg, "--name" ) )
		{
			if ( i + 1 >= argc || !*argv[ i + 1 ] )
				return Usage( "--name needs a variable's name" );
			pName = argv[ ++i ];
		}
		else if ( IsMaintenanceFileArgument( pArg ) )
			files.AddToTail( pArg );
		else
			return Usage( DescribeBadMaintenanceArgument( pArg ).Get() );
	}
	if ( bAll == !files.IsEmpty() )
		return Usage( bAll ? "--all and files exclude each other" : "no file given" );
	if ( pName && nControlPoint >= 0 )
		return Usage( "--cp and --name exclude each other" );

	CZolCliMaintenanceHost host;
	CZolFileReport namedReport;
	CUtlVector<IAsset *> systems;
	if ( !host.StartFor( files, bAll, &systems, &namedReport ) )
		return 2;
	CZolModifierTable modifiers;
	modifiers.Reload( GetGameToolsService() );
	CZolReferenceNavigator navigator( &host.GetDocuments() );
	navigator.SetModifierTable( &modifiers );
	navigator.Refresh( systems );

	// The columns asked for: one key, or all.
	std::vector<CUtlString> keys;
	for ( const CUtlString &key : navigator.GetKeys() )
	{
		const bool bWanted = pName ? !V_stricmp_fast( key.Get(), pName ) : nControlPoint < 0 || key == CZolReferenceNavigator::ControlPointKey( int( nControlPoint ) );
		if ( bWanted )
			keys.push_back( key );
	}
	std::vector<const ZolReferenceTree_t *> trees;
	for ( const ZolReferenceTree_t &tree : navigator.GetTrees() )
	{
		if ( ( !pName && nControlPoint < 0 ) || !TreeKeys( tree, keys ).empty() )
			trees.push_back( &tree );
	}

	CZolFileReport report;
	for ( const CZolFileReport *pSource : { static_cast<const CZolFileReport *>( &namedReport ), &navigator.GetReport() } )
	{
		for ( const ZolFileFinding_t &finding : pSource->GetFindings() )
			report.Add( finding.m_File.Get(), finding.m_eSeverity, "%s", finding.m_Text.Get() );
	}
	if ( bJson )
	{
		fputs( BuildJson( navigator, trees, keys ).c_str(), stdout );
	}
	else
	{
		for ( size_t i = 0; i < trees.size(); ++i )
		{
			if ( i )
				printf( "\n" );
			PrintTree( *trees[ i ], TreeKeys( *trees[ i ], keys ) );
		}
		if ( !trees.empty() )
			printf( "\n(o the game sets it, | its line passes, R reads, W writes, X reads and writes, S writes it specially)\n" );
		if ( !report.IsEmpty() )
			printf( "\n" );
		PrintMaintenanceReport( report, stdout );
	}
	return report.HasErrors() ? 1 : 0;
}

CZolCliCommandRegistrar s_Refs( { "refs", "refs FILE...|--all [--json] [--cp N|--name NAME]",
	"who writes and reads each control point and variable across the trees of systems, missing children and cycles", RunRefs } );
} // namespace
