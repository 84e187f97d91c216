// zol expr: parses and evaluates one generic expression, as property metadata and
// breakpoints do, or prints its tree.
//   zol expr [--var NAME=VALUE]... [--allow-dollar] TEXT
//   zol expr --describe [--allow-dollar] TEXT

#include <cstdio>
#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "mathlib/extended/genericexpr.h"
#include "mathlib/extended/genericexprpart.h"
#include "tools/zol/cli/clicommand.h"

static const char *const EXPR_USAGE =
	"usage: zol expr [--var NAME=VALUE]... [--allow-dollar] TEXT\n"
	"       zol expr --describe [--allow-dollar] TEXT\n"
	"VALUE is a KV3 value: 3, 2.5, true, \"text\"\n";

// The kind as a user reads it: bool, int32, int64, double, string, ...
static const char *ResultKindName( const KeyValues3 &value )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_INT: return value.GetSubType() == KV3_SUBTYPE_INT64 ? "int64" : "int32";
	case KV3_TYPE_UINT: return value.GetSubType() == KV3_SUBTYPE_UINT64 ? "uint64" : "uint32";
	default: return value.GetTypeAsString();
	}
}

static void PrintResult( const KeyValues3 &value )
{
	CUtlString text;
	if ( value.IsString() )
	{
		printf( "string \"%s\"\n", value.GetString() );
		return;
	}
	if ( GenericExprValueToText( value, &text ) )
	{
		printf( "%s %s\n", ResultKindName( value ), text.Get() );
		return;
	}
	// Tables and arrays (a variable's or property's value) in KV3 text.
	SaveKV3ToString( &value, &text, KV3_FORMAT_GENERIC, KV3_SAVE_NO_HEADER );
	printf( "%s %s\n", ResultKindName( value ), text.Get() );
}

// NAME=VALUE with VALUE in KV3 text.
static bool AddVariable( const char *pArgument, KeyValues3 *pValues )
{
	const char *pEquals = strchr( pArgument, '=' );
	if ( !pEquals || pEquals == pArgument )
	{
		fprintf( stderr, "zol expr: --var wants NAME=VALUE, not '%s'\n", pArgument );
		return false;
	}
	CUtlString name( pArgument, pEquals - pArgument );
	KeyValues3 value;
	CUtlString error;
	const char *pValueText = pEquals + 1;
	if ( !LoadKV3FromText( &value, &error, pValueText, strlen( pValueText ), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) )
	{
		fprintf( stderr, "zol expr: the value of %s is no KV3 value (%s): %s\n", name.Get(), error.Get(), pValueText );
		return false;
	}
	pValues->FindOrCreateMember( CKV3MemberName( name.Get() ) )->CopyFrom( value );
	return true;
}

static int RunExpr( int argc, char **argv )
{
	KeyValues3 values;
	values.SetToEmptyTable();
	bool bDescribe = false;
	uint32_t nOptions = 0;
	const char *pText = nullptr;
	for ( int i = 1; i < argc; ++i )
	{
		if ( !strcmp( argv[ i ], "--var" ) && i + 1 < argc )
		{
			if ( !AddVariable( argv[ ++i ], &values ) )
				return 2;
		}
		else if ( !strcmp( argv[ i ], "--allow-dollar" ) )
			nOptions |= GENERIC_EXPR_ALLOW_DOLLAR_NAMES;
		else if ( !strcmp( argv[ i ], "--describe" ) )
			bDescribe = true;
		else if ( !pText && ( argv[ i ][ 0 ] != '-' || !strcmp( argv[ i ], "--" ) ) )
			pText = !strcmp( argv[ i ], "--" ) && i + 1 < argc ? argv[ ++i ] : argv[ i ];
		else
		{
			fputs( EXPR_USAGE, stderr );
			return 2;
		}
	}
	if ( !pText )
	{
		fputs( EXPR_USAGE, stderr );
		return 2;
	}

	CGenericExpr expr;
	CUtlString error;
	if ( !expr.Parse( pText, &error, nOptions ) )
	{
		fprintf( stderr, "%s\n", error.Get() );
		if ( expr.GetErrorOffset() >= 0 )
			fprintf( stderr, "(at offset %d: %.20s)\n", expr.GetErrorOffset(), pText + expr.GetErrorOffset() );
		return 1;
	}
	if ( bDescribe )
	{
		CUtlString tree;
		GenericExprDescribeTree( expr.GetRoot(), &tree );
		fputs( tree.Get(), stdout );
		return 0;
	}
	KeyValues3 result;
	if ( expr.Evaluate( values, &result, &error ) != GENERIC_EXPR_EVAL_OK )
	{
		fprintf( stderr, "%s\n", error.Get() );
		return 1;
	}
	PrintResult( result );
	return 0;
}

static CZolCliCommandRegistrar s_ExprCommand( { "expr", "expr [--var NAME=VALUE]... [--allow-dollar] [--describe] TEXT",
	"evaluates a generic expression (as property metadata does) and prints its kind and value, or its tree", RunExpr } );
