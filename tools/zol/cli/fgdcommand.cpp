// zol fgd check|dump: read FGD class description files as the editor does and report
// their errors as FILE:(line,col): message, or print the classes they describe.

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/fgdvalue.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/zol/cli/cliargs.h"
#include "tools/zol/cli/clicommand.h"

// The file the user named is shown as typed; files it includes keep their full path.
static void PrintErrors( const CGameData &gameData, const char *pszLoadedPath, const char *pszTypedPath )
{
	for ( const GameDataError_t &error : gameData.GetErrors() )
	{
		const char *pszFile = error.m_File == pszLoadedPath ? pszTypedPath : error.m_File.Get();
		if ( error.m_nLine > 0 )
			printf( "%s:(%d,%d): %s\n", pszFile, error.m_nLine, error.m_nColumn, error.m_Message.Get() );
		else
			printf( "%s: %s\n", pszFile, error.m_Message.Get() );
	}
}

static const char *ClassKindWord( int nKind )
{
	static const char *const s_Words[] = { "", "BaseClass", "Struct", "OverrideClass", "PointClass", "SolidClass", "NPCClass", "FilterClass",
		"MoveClass", "KeyframeClass", "PathClass", "PathNodeClass", "CableClass", "NavLinkClass", "ModelGameData", "ModelBreakCommand",
		"ModelAnimEvent", "Ledge", "LedgeDerived" };
	return nKind >= 0 && nKind < int( sizeof( s_Words ) / sizeof( s_Words[ 0 ] ) ) ? s_Words[ nKind ] : "";
}

static void DumpClass( const CGameDataClass &gameClass )
{
	printf( "@%s %s", ClassKindWord( gameClass.m_nClassType ), gameClass.GetName() );
	if ( !gameClass.m_Description.IsEmpty() )
		printf( " : \"%s\"", gameClass.m_Description.Get() );
	printf( "\n" );
	if ( !gameClass.m_Bases.IsEmpty() )
	{
		printf( "  bases:" );
		for ( const CGameDataClass *pBase : gameClass.m_Bases )
			printf( " %s", pBase->GetName() );
		printf( "\n" );
	}
	for ( const CGameDataVariable *pVar : gameClass.m_Variables )
	{
		CUtlString type, defaultText;
		pVar->m_FullType.ToString( &type );
		FormatFGDValue( pVar->m_DefaultKV3, pVar->GetType(), &defaultText );
		printf( "  %s (%s) = \"%s\"", pVar->m_Name.Get(), type.Get(), defaultText.Get() );
		if ( !pVar->m_LongName.IsEmpty() )
			printf( " : \"%s\"", pVar->m_LongName.Get() );
		printf( "\n" );
		if ( pVar->m_pItemSet )
		{
			for ( const GameDataItem_t &item : pVar->m_pItemSet->m_Items )
				printf( "    \"%s\" : \"%s\"%s\n", item.m_Value.Get(), item.m_FriendlyName.Get(), item.m_bDefault ? " (default)" : "" );
		}
	}
	for ( const CClassInput &input : gameClass.m_Inputs )
		printf( "  input %s(%s)\n", input.m_Name.Get(), input.m_Type.Get() );
	for ( const CClassOutput &output : gameClass.m_Outputs )
		printf( "  output %s(%s)\n", output.m_Name.Get(), output.m_Type.Get() );
}

static int RunFgd( int argc, char **argv )
{
	const char *pszUsage = "usage: zol fgd check [--game DIR] FILE...\n       zol fgd dump [--game DIR] FILE\n";
	if ( argc < 3 || ( strcmp( argv[ 1 ], "check" ) && strcmp( argv[ 1 ], "dump" ) ) )
	{
		fprintf( stderr, "%s", pszUsage );
		return 2;
	}
	bool bDump = !strcmp( argv[ 1 ], "dump" );
	if ( bDump && argc != 3 )
	{
		fprintf( stderr, "%s", pszUsage );
		return 2;
	}
	for ( int i = 2; i < argc; ++i )
	{
		if ( !*argv[ i ] || argv[ i ][ 0 ] == '-' )
		{
			fprintf( stderr, "zol fgd: %s\n%s", *argv[ i ] ? ( std::string( "unknown option " ) + argv[ i ] ).c_str() : "an empty file name", pszUsage );
			return 2;
		}
	}

	int nStatus = 0;
	for ( int i = 2; i < argc; ++i )
	{
		// Each file gets a set of its own, as the editor would load it alone; includes
		// resolve against the game root (--game, or the one the file lies in).
		CGameData gameData;
		std::string root = ZolCliGameRootFor( argv[ i ] );
		CFgdReader reader( &gameData, root.c_str() );
		std::error_code error;
		std::string loadedPath = std::filesystem::absolute( argv[ i ], error ).string();
		bool bLoaded = reader.LoadGameData( loadedPath.c_str() );
		PrintErrors( gameData, loadedPath.c_str(), argv[ i ] );
		if ( !bLoaded || !gameData.GetErrors().IsEmpty() )
			nStatus = 1;
		if ( bDump )
		{
			for ( int c = 0; c < gameData.GetClassCount(); ++c )
				DumpClass( *gameData.GetClass( c ) );
		}
	}
	return nStatus;
}

static CZolCliCommandRegistrar s_FgdCommand( { "fgd", "fgd check|dump [--game DIR] FILE...",
	"reports the errors of FGD class description files (check) or prints their classes (dump)", RunFgd } );
