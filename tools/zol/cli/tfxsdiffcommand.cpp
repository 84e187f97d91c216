// zol tfxs diff: what changed between two particle system definitions, in the artist's
// terms, as lines or as JSON; with one file, the definition listed in the same terms, for
// version control to compare (a text conversion).

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/particles/particlefunctiontype.h"
#include "core/text/utlstring.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/clijson.h"
#include "tools/zol/cli/clitfxs.h"
#include "zoldoc_lib/zoldefinitiondiff.h"
#include "zoldoc_lib/zoldefinitionlisting.h"
#include "zoldoc_lib/zoldefinitiontree.h"
#include "zoldoc_lib/zolfileio.h"

namespace
{
void AppendJsonValue( std::string *pOut, const KeyValues3 &value )
{
	char number[ 64 ];
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL: pOut->append( value.GetBool() ? "true" : "false" ); break;
	case KV3_TYPE_INT: pOut->append( std::to_string( value.GetInt64() ) ); break;
	case KV3_TYPE_UINT: pOut->append( std::to_string( value.GetUInt64() ) ); break;
	case KV3_TYPE_DOUBLE:
	{
		// The shortest text that reads back as the same number; JSON has no NaN.
		const double flValue = value.GetDouble();
		if ( !std::isfinite( flValue ) )
		{
			pOut->append( "null" );
			break;
		}
		auto result = std::to_chars( number, number + sizeof( number ), flValue );
		pOut->append( number, result.ptr );
		break;
	}
	case KV3_TYPE_STRING: AppendJsonString( pOut, value.GetString() ); break;
	case KV3_TYPE_ARRAY:
		pOut->push_back( '[' );
		for ( int i = 0; i < value.GetArrayElementCount(); ++i )
		{
			if ( i )
				pOut->append( ", " );
			AppendJsonValue( pOut, *value.GetArrayElement( i ) );
		}
		pOut->push_back( ']' );
		break;
	case KV3_TYPE_TABLE:
		pOut->push_back( '{' );
		for ( int i = 0; i < value.GetMemberCount(); ++i )
		{
			if ( i )
				pOut->append( ", " );
			AppendJsonString( pOut, value.GetMemberName( i ) );
			pOut->append( ": " );
			AppendJsonValue( pOut, *value.GetMember( i ) );
		}
		pOut->push_back( '}' );
		break;
	default: pOut->append( "null" ); break;
	}
}

void AppendJsonMember( std::string *pOut, const char *pName, const char *pText )
{
	pOut->append( ", " );
	AppendJsonString( pOut, pName );
	pOut->append( ": " );
	AppendJsonString( pOut, pText );
}

void AppendJsonPosition( std::string *pOut, const char *pName, int nIndex )
{
	pOut->append( ", " );
	AppendJsonString( pOut, pName );
	pOut->append( nIndex >= 0 ? ": " + std::to_string( nIndex + 1 ) : ": null" );
}

// One change as a JSON object: the same facts the line gives, and the stored values.
void AppendJsonChange( std::string *pOut, const ZolDiffChange_t &change )
{
	CUtlString line;
	FormatDiffChange( change, &line );
	pOut->append( "{\"kind\": " );
	AppendJsonString( pOut, GetDiffKindWord( change.m_eKind ) );
	AppendJsonMember( pOut, "section", GetDefinitionSectionTitle( change.m_nSection ) );
	AppendJsonMember( pOut, "list", change.m_nSection == ZOL_SECTION_CONFIGURATIONS ? "m_controlPointConfigurations" : GetParticleFunctionListKey( change.m_nSection ) );
	AppendJsonMember( pOut, "element", change.m_Element.Get() );
	AppendJsonMember( pOut, "class", change.m_Class.Get() );
	AppendJsonPosition( pOut, "oldPosition", change.m_nOldIndex );
	AppendJsonPosition( pOut, "newPosition", change.m_nNewIndex );
	AppendJsonMember( pOut, "field", change.m_Field.Get() );
	AppendJsonMember( pOut, "label", change.m_Label.Get() );
	AppendJsonMember( pOut, "old", change.m_OldText.Get() );
	AppendJsonMember( pOut, "new", change.m_NewText.Get() );
	pOut->append( ", \"oldValue\": " );
	AppendJsonValue( pOut, change.m_OldValue );
	pOut->append( ", \"newValue\": " );
	AppendJsonValue( pOut, change.m_NewValue );
	AppendJsonMember( pOut, "text", line.Get() );
	pOut->push_back( '}' );
}

int RunTfxsDiff( int argc, char **argv )
{
	const char *pUsage = "usage: zol tfxs diff OLD NEW [--json]\n       zol tfxs diff [--textconv] FILE\n";
	std::vector<const char *> files;
	bool bJson = false;
	bool bTextConversion = false;
	for ( int i = 2; i < argc; ++i )
	{
		if ( !strcmp( argv[ i ], "--json" ) )
			bJson = true;
		else if ( !strcmp( argv[ i ], "--textconv" ) )
			bTextConversion = true;
		else if ( argv[ i ][ 0 ] == '-' && argv[ i ][ 1 ] )
			return fprintf( stderr, "zol tfxs diff: unknown option \"%s\"\n%s", argv[ i ], pUsage ), 2;
		else
			files.push_back( argv[ i ] );
	}
	if ( files.empty() || files.size() > 2 || ( files.size() == 1 && bJson ) || ( files.size() == 2 && bTextConversion ) )
		return fprintf( stderr, "%s", pUsage ), 2;
	ConnectParticleHostForDefinition( files[ 0 ] );

	CUtlString error;
	if ( files.size() == 1 )
	{
		CUtlString listing;
		if ( ListDefinitionFile( files[ 0 ], &listing, &error ) )
		{
			fwrite( listing.Get(), 1, listing.Length(), stdout );
			return 0;
		}
		fprintf( stderr, "%s\n", error.Get() );
		// Version control gives up on the whole diff when a conversion fails; a file that
		// doesn't load (a half-resolved merge, say) shows as its own text instead.
		CUtlBuffer text;
		if ( !bTextConversion || !ZolReadWholeFile( files[ 0 ], "", &text ) )
			return 2;
		fwrite( text.Base(), 1, text.Size(), stdout );
		return 0;
	}

	std::vector<ZolDiffChange_t> changes;
	if ( !DiffDefinitionFiles( files[ 0 ], files[ 1 ], &changes, &error ) )
		return fprintf( stderr, "%s\n", error.Get() ), 2;
	if ( bJson )
	{
		std::string json = "{\"old\": ";
		AppendJsonString( &json, files[ 0 ] );
		json.append( ", \"new\": " );
		AppendJsonString( &json, files[ 1 ] );
		json.append( changes.empty() ? ", \"equal\": true" : ", \"equal\": false" );
		json.append( ", \"changes\": [" );
		for ( size_t i = 0; i < changes.size(); ++i )
		{
			json.append( i ? ",\n  " : "\n  " );
			AppendJsonChange( &json, changes[ i ] );
		}
		json.append( changes.empty() ? "]}\n" : "\n]}\n" );
		fwrite( json.data(), 1, json.size(), stdout );
	}
	else
	{
		for ( const ZolDiffChange_t &change : changes )
		{
			CUtlString line;
			FormatDiffChange( change, &line );
			printf( "%s\n", line.Get() );
		}
	}
	return changes.empty() ? 0 : 1;
}
} // namespace

static CZolCliSubcommandRegistrar s_TfxsDiff( "tfxs", "diff", "tfxs diff OLD NEW [--json]",
	"what changed between two definitions, in the artist's terms (exit 1 when they differ)", RunTfxsDiff );
static CZolCliSubcommandRegistrar s_TfxsList( "tfxs", "diff", "tfxs diff [--textconv] FILE",
	"lists one definition in the same terms, for version control to compare line by line", RunTfxsDiff );
