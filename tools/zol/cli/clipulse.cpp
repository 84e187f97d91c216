#include "tools/zol/cli/clipulse.h"

#include <cstdio>
#include <cstring>
#include <filesystem>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/platform/platformfile.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulsedoc_lib/compiler/pulsegraphcompiler.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsenodedescriptions.h"
#include "tools/zol/cli/cliargs.h"

namespace
{
void PrintMessages( const char *pPath, const std::vector<CUtlString> &messages )
{
	for ( const CUtlString &message : messages )
		fprintf( stderr, "%s: %s\n", pPath, message.Get() );
}
} // namespace

std::string ZolCliPulseResourceName( const char *pPath )
{
	std::filesystem::path absolute = std::filesystem::absolute( pPath ).lexically_normal();
	for ( std::filesystem::path dir = absolute.parent_path(); dir.has_relative_path(); dir = dir.parent_path() )
	{
		if ( dir.filename() == "content" )
			return absolute.lexically_relative( dir ).generic_string();
	}
	return pPath;
}

ZolCliPulseFileKind_t ZolCliPulseFileKind( const char *pPath, std::string *pContent )
{
	CUtlString reason;
	if ( !Plat_ReadWholeFile( pPath, pContent, &reason ) )
	{
		fprintf( stderr, "%s: %s\n", pPath, reason.Get() );
		return ZOL_PULSE_FILE_UNREADABLE;
	}
	// The root's class tells; text that isn't KV3 goes to the graph loader, which says why.
	KeyValues3 root;
	CUtlString error;
	if ( LoadKV3FromText( &root, &error, pContent->data(), pContent->size(), KV3_FORMAT_GENERIC, KV3_LOAD_ANY_FORMAT ) && root.IsTable() &&
		 strcmp( root.GetMemberString( "_class", "" ), "CPulseDoc_Root" ) == 0 )
		return ZOL_PULSE_FILE_DOCUMENT;
	return ZOL_PULSE_FILE_COMPILED;
}

bool ZolCliCompilePulseDocument( const char *pPath, const std::string &content, PulseDocCompileResult_t *pResult, int nVerbosity )
{
	CPulseNodeDescriptions descriptions;
	CUtlString report;
	std::string gameRoot = ZolCliGameRootFor( pPath );
	if ( !descriptions.LoadGameDescriptions( gameRoot.c_str(), &report ) )
		fprintf( stderr, "%s: warning: %s", pPath, report.Get() );
	CPulseDoc doc( &descriptions );
	CPulseDocMessages messages;
	bool bCompiled = doc.LoadText( content.data(), content.size(), &messages );
	if ( bCompiled )
	{
		PulseCompileOptions_t options;
		options.m_nVerbosity = nVerbosity;
		bCompiled = PulseDoc_Compile( &doc, &messages, pResult, options, ZolCliPulseResourceName( pPath ).c_str() );
	}
	if ( !pResult->m_Log.IsEmpty() )
		fputs( pResult->m_Log.Get(), stderr );
	for ( const PulseDocMessage_t &message : messages.GetMessages() )
		fprintf( stderr, "%s: %s\n", pPath, message.ToText().Get() );
	return bCompiled;
}

CPulseGraphDefHandle ZolCliLoadPulseGraph( const char *pPath, bool bBind )
{
	std::string content;
	switch ( ZolCliPulseFileKind( pPath, &content ) )
	{
	case ZOL_PULSE_FILE_UNREADABLE: return {};
	case ZOL_PULSE_FILE_DOCUMENT:
	{
		PulseDocCompileResult_t result;
		if ( !ZolCliCompilePulseDocument( pPath, content, &result ) )
			return {};
		return result.m_hDef;
	}
	case ZOL_PULSE_FILE_COMPILED: break;
	}
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadText( content.data(), content.size(), ZolCliPulseResourceName( pPath ).c_str(), &messages );
	if ( hDef && bBind && !PulseGraphDef_Bind( hDef.Get(), &messages ) )
		hDef = {};
	PrintMessages( pPath, messages.m_Errors );
	PrintMessages( pPath, messages.m_Warnings );
	return hDef;
}
