#include "tools/toolutils2/fgd/fgdreader.h"

#include <cstdio>
#include <filesystem>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/logging/logging.h"
#include "core/platform/platformfile.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/fgdtokenizer.h"
#include "tools/toolutils2/fgd/fgdvalue.h"
#include "tools/toolutils2/fgd/gamedata.h"

namespace
{
struct ClassKeyword_t
{
	const char *m_pszWord;
	int m_nKind;
	const char *m_pszTag;
};

constexpr ClassKeyword_t s_ClassKeywords[] = {
	{ "baseclass", GDCLASS_BASE, nullptr },
	{ "struct", GDCLASS_STRUCT, nullptr },
	{ "overrideclass", GDCLASS_OVERRIDE, nullptr },
	{ "pointclass", GDCLASS_POINT, "point" },
	{ "solidclass", GDCLASS_SOLID, "solid" },
	{ "npcclass", GDCLASS_NPC, "npc" },
	{ "filterclass", GDCLASS_FILTER, "filter" },
	{ "moveclass", GDCLASS_MOVE, "move" },
	{ "keyframeclass", GDCLASS_KEYFRAME, "keyframe" },
	{ "pathclass", GDCLASS_PATH, "path" },
	{ "pathnodeclass", GDCLASS_PATHNODE, "pathnode" },
	{ "cableclass", GDCLASS_CABLE, "cable" },
	{ "navlinkclass", GDCLASS_NAVLINK, "navlink" },
	{ "modelgamedata", GDCLASS_MODELGAMEDATA, nullptr },
	{ "modelbreakcommand", GDCLASS_MODELBREAKCOMMAND, nullptr },
	{ "modelanimevent", GDCLASS_MODELANIMEVENT, nullptr },
	{ "ledge", GDCLASS_LEDGE, nullptr },
	{ "ledgederived", GDCLASS_LEDGEDERIVED, nullptr },
};

constexpr const char *s_BracketMetaKeys[] = { "group", "important", "randomizable", "scale_world", "scale_bone_relative", "readonly",
	"report", "min", "max", "hidden", "associated_key" };

constexpr const char *s_InputOutputTypes[] = { "void", "integer", "int", "float", "string", "bool", "boolean", "vector", "ehandle",
	"color255", "target_destination", "variant", "script", "cpp" };

// One file's parse. Classes go into the set as they end; errors carry the file's name.
class CFgdFileParser
{
public:
	CFgdFileParser( CFgdReader *pReader, CGameData *pGameData, const char *pszFileName, const char *pText, size_t nLength, const char *pszHelpContext )
		: m_pReader( pReader ), m_pGameData( pGameData ), m_FileName( pszFileName ), m_Tokens( pText, nLength ), m_HelpContext( pszHelpContext )
	{
	}

	bool Parse();

private:
	void Error( const FgdToken_t &token, const char *pszMessage );
	bool Expect( char c, const char *pszMessage );
	bool ExpectWord( FgdToken_t *pOut, const char *pszMessage );
	bool ReadNumber( double *pOut );
	bool ReadDescription( CUtlString *pOut, const char *pszFirstMessage );
	bool ReadKV3Block( KeyValues3 *pOut, CUtlString *pError );

	bool ParseSection( const FgdToken_t &word );
	bool ParseClass( int nKind, const char *pszTag, CGameDataClass **ppClass, CUtlString *pName );
	bool ParseClassHeader( CGameDataClass *pClass );
	bool ParseMembers( CGameDataClass *pClass );
	bool ParseInputOutput( CGameDataClass *pClass, bool bInput );
	bool ParseVariable( CGameDataClass *pClass, const FgdToken_t &nameToken );
	bool ParseBracketMetadata( CGameDataVariable *pVar );
	bool ParseItems( CGameDataVariable *pVar );
	bool FinishClass( CGameDataClass *pClass, const FgdToken_t &classToken );
	void FindNameOfFailedClass( CUtlString *pName );
	bool HasMatchingBrace();
	void CheckDefaults();
	void CheckTagsAgainstVisGroups();

	CFgdReader *m_pReader;
	CGameData *m_pGameData;
	CUtlString m_FileName;
	CFgdTokenizer m_Tokens;
	CUtlString m_HelpContext;
	bool m_bFileFailed = false;
	CUtlVector<CGameDataVariable *> m_FileVariables;
};

void CFgdFileParser::Error( const FgdToken_t &token, const char *pszMessage )
{
	GameDataError_t error;
	error.m_File = m_FileName;
	error.m_nLine = token.m_nLine;
	error.m_nColumn = token.m_nColumn;
	error.m_Message = pszMessage;
	while ( error.m_Message.Length() && error.m_Message[ error.m_Message.Length() - 1 ] == '\n' )
		error.m_Message.Storage().pop_back();
	CUtlString position, near;
	position.Format( "(%d,%d)", token.m_nLine, token.m_nColumn );
	if ( token.m_eType != FGDTOKEN_EOF && token.m_eType != FGDTOKEN_ERROR )
		near.Format( " near '%s' -", token.m_Text.Get() );
	error.m_Text.Format( "%s%s: FGD Parse error: %s %s\n", m_FileName.Get(), position.Get(), error.m_Message.Get(), near.Get() );
	m_pGameData->AddError( error );
}

bool CFgdFileParser::Expect( char c, const char *pszMessage )
{
	FgdToken_t token = m_Tokens.Next();
	if ( token.Is( c ) )
		return true;
	Error( token, token.m_eType == FGDTOKEN_ERROR ? token.m_Text.Get() : pszMessage );
	return false;
}

bool CFgdFileParser::ExpectWord( FgdToken_t *pOut, const char *pszMessage )
{
	*pOut = m_Tokens.Next();
	if ( pOut->m_eType == FGDTOKEN_WORD )
		return true;
	Error( *pOut, pOut->m_eType == FGDTOKEN_ERROR ? pOut->m_Text.Get() : pszMessage );
	return false;
}

bool CFgdFileParser::ReadNumber( double *pOut )
{
	const FgdToken_t &token = m_Tokens.Peek();
	if ( token.m_eType != FGDTOKEN_WORD || !V_StringToDouble( token.m_Text, pOut ) )
		return false;
	m_Tokens.Next();
	return true;
}

// Several literals joined by '+' make one text.
bool CFgdFileParser::ReadDescription( CUtlString *pOut, const char *pszFirstMessage )
{
	FgdToken_t token = m_Tokens.Next();
	if ( token.m_eType != FGDTOKEN_STRING )
	{
		Error( token, token.m_eType == FGDTOKEN_ERROR ? token.m_Text.Get() : pszFirstMessage );
		return false;
	}
	pOut->Set( token.m_Text );
	while ( m_Tokens.Peek().m_eType == FGDTOKEN_WORD && m_Tokens.Peek().m_Text == "+" )
	{
		m_Tokens.Next();
		token = m_Tokens.Next();
		if ( token.m_eType != FGDTOKEN_STRING )
		{
			Error( token, "Expected a string literal for description" );
			return false;
		}
		pOut->Append( token.m_Text );
	}
	return true;
}

bool CFgdFileParser::ReadKV3Block( KeyValues3 *pOut, CUtlString *pError )
{
	size_t nOffset = m_Tokens.GetOffsetOfNextToken();
	CUtlBuffer buffer( m_Tokens.GetText(), m_Tokens.GetLength() );
	buffer.SeekGet( nOffset );
	if ( !LoadKV3( pOut, pError, &buffer, KV3_FORMAT_GENERIC, m_FileName, KV3_LOAD_FRAGMENT ) )
		return false;
	if ( !pOut->IsTable() )
	{
		pError->Set( "expected a table" );
		return false;
	}
	m_Tokens.SeekTo( buffer.TellGet() );
	return true;
}

bool CFgdFileParser::Parse()
{
	for ( ;; )
	{
		FgdToken_t token = m_Tokens.Next();
		if ( token.m_eType == FGDTOKEN_EOF )
			break;
		if ( !token.Is( '@' ) )
		{
			Error( token, token.m_eType == FGDTOKEN_ERROR ? token.m_Text.Get() : "Expected '@'" );
			return false;
		}
		FgdToken_t word;
		if ( !ExpectWord( &word, "Expected identifier after '@'" ) )
			return false;
		if ( !ParseSection( word ) )
			return false;
	}
	CheckTagsAgainstVisGroups();
	CheckDefaults();
	return !m_bFileFailed;
}

bool CFgdFileParser::ParseSection( const FgdToken_t &word )
{
	for ( const ClassKeyword_t &keyword : s_ClassKeywords )
	{
		if ( !word.IsWord( keyword.m_pszWord ) )
			continue;
		CGameDataClass *pClass = nullptr;
		CUtlString name;
		if ( ParseClass( keyword.m_nKind, keyword.m_pszTag, &pClass, &name ) )
			return true;
		if ( m_bFileFailed )
			return false;
		if ( name.IsEmpty() )
			FindNameOfFailedClass( &name );
		if ( m_Tokens.SkipToNextAt() )
		{
			Log_Warning( LOG_GENERAL, "WARNING: Failed to parse class '%s'.\n", name.Get() );
			return true;
		}
		CUtlString message;
		message.Format( "Error parsing class '%s'", name.Get() );
		Error( word, message );
		return false;
	}

	if ( word.IsWord( "exclude" ) )
	{
		FgdToken_t name = m_Tokens.Next();
		if ( name.m_eType != FGDTOKEN_WORD )
		{
			Error( name, "Expecting class name following @exclude" );
			return false;
		}
		CGameDataClass *pClass = m_pGameData->FindClass( name.m_Text );
		CUtlString message;
		if ( !pClass )
		{
			message.Format( "Unknown class '%s' specified by @exclude", name.m_Text.Get() );
			Error( name, message );
			return true;
		}
		if ( pClass->IsBaseClass() )
		{
			message.Format( "Specified class '%s' is a base class, @exclude cannot be used for base classes", name.m_Text.Get() );
			Error( name, message );
			return true;
		}
		m_pGameData->RemoveClass( pClass );
		return true;
	}

	if ( word.IsWord( "include" ) )
	{
		FgdToken_t name = m_Tokens.Next();
		if ( name.m_eType != FGDTOKEN_STRING )
		{
			Error( name, "Expected string literal for include directive" );
			return false;
		}
		if ( !m_pReader->LoadGameData( name.m_Text, m_FileName ) )
		{
			CUtlString message;
			message.Format( "Error including file: %s", name.m_Text.Get() );
			Error( name, message );
			return false;
		}
		return true;
	}

	if ( word.IsWord( "gridnav" ) )
	{
		double flValues[ 4 ] = {};
		bool bGood = m_Tokens.Next().Is( '(' );
		for ( int i = 0; bGood && i < 4; ++i )
		{
			bGood = ReadNumber( &flValues[ i ] ) && m_Tokens.Next().Is( i < 3 ? ',' : ')' );
		}
		if ( !bGood )
		{
			Error( word, "Expecting '(' <edgesize> ',' <offsetx> ',' <offsety> ',' <pickheight> ')'" );
			m_Tokens.SkipToNextAt();
			return true;
		}
		// Clamped so a huge or NaN number in the file can't make the cast undefined.
		auto toInt = []( double flValue ) { return int( flValue >= -1e9 ? ( flValue <= 1e9 ? flValue : 1e9 ) : -1e9 ); };
		m_pGameData->m_GridNav = { true, toInt( flValues[ 0 ] ), toInt( flValues[ 1 ] ), toInt( flValues[ 2 ] ), toInt( flValues[ 3 ] ) };
		return true;
	}

	if ( word.IsWord( "visgroupfilter" ) )
	{
		GameDataVisGroupFilter_t filter;
		CUtlString kv3Error;
		if ( !ReadKV3Block( &filter.m_KV3, &kv3Error ) )
		{
			Error( word, kv3Error );
			return false;
		}
		const KeyValues3 *pType = filter.m_KV3.FindMember( "filter_type" );
		if ( !pType )
		{
			Error( word, "Error: missing 'filter_type' key in @VisGroupFilter specification" );
			return true;
		}
		const char *pszType = pType->GetString();
		if ( !V_stricmp_fast( pszType, "toolsMaterial" ) )
			filter.m_eType = GDVISFILTER_TOOLS_MATERIAL;
		else if ( !V_stricmp_fast( pszType, "entityTag" ) )
			filter.m_eType = GDVISFILTER_ENTITY_TAG;
		else if ( !V_stricmp_fast( pszType, "assetTag" ) )
			filter.m_eType = GDVISFILTER_ASSET_TAG;
		else
		{
			CUtlString message;
			message.Format( "Error: unknown vis group filter type: '%s' in @VisGroupFilter specification", pszType );
			Error( word, message );
			return true;
		}
		if ( !filter.m_KV3.HasMember( "group" ) )
		{
			Error( word, "Error: missing 'group' key in @VisGroupFilter specification" );
			return true;
		}
		m_pGameData->m_VisGroupFilters.AddToTail( filter );
		return true;
	}

	if ( word.IsWord( "entitygroup" ) )
	{
		FgdToken_t name = m_Tokens.Next();
		if ( name.m_eType != FGDTOKEN_STRING )
		{
			Error( name, "Expecting group name following @entitygroup" );
			return false;
		}
		GameDataEntityGroup_t group;
		group.m_Name = name.m_Text;
		if ( m_Tokens.Peek().Is( '{' ) )
		{
			if ( !HasMatchingBrace() )
			{
				Error( m_Tokens.Peek(), "Expected matching '{' '}'" );
				return false;
			}
			KeyValues3 block;
			CUtlString kv3Error;
			if ( !ReadKV3Block( &block, &kv3Error ) )
			{
				CUtlString message;
				message.Format( "KV3 syntax error: %s while parsing @entitygroup %s", kv3Error.Get(), name.m_Text.Get() );
				Error( name, message );
				return false;
			}
			group.m_bStartExpanded = block.GetMemberBool( "start_expanded" );
		}
		m_pGameData->m_EntityGroups.AddToTail( group );
		return true;
	}

	CUtlString message;
	message.Format( "Unrecognized section name %s", word.m_Text.Get() );
	Error( word, message );
	m_Tokens.SkipToNextAt();
	return true;
}

bool CFgdFileParser::ParseClass( int nKind, const char *pszTag, CGameDataClass **ppClass, CUtlString *pName )
{
	CGameDataClass *pClass = m_pGameData->CreateClassRecord();
	*ppClass = pClass;
	pClass->m_nClassType = nKind;
	pClass->m_HelpContextName = m_HelpContext;
	if ( pszTag )
	{
		pClass->AddTag( pszTag );
		if ( nKind == GDCLASS_NPC )
			pClass->AddTag( "point" );
	}
	if ( !ParseClassHeader( pClass ) )
		return false;

	FgdToken_t name = m_Tokens.Next();
	if ( name.m_eType != FGDTOKEN_WORD )
	{
		Error( name, "Expecting class name" );
		return false;
	}
	pClass->m_Name = name.m_Text;
	pName->Set( name.m_Text );
	if ( m_Tokens.Peek().Is( ':' ) )
	{
		m_Tokens.Next();
		if ( !ReadDescription( &pClass->m_Description, "Expected a string literal for description" ) )
			return false;
	}
	if ( !Expect( '[', "Expecting '['" ) )
		return false;
	if ( !ParseMembers( pClass ) )
		return false;
	return FinishClass( pClass, name );
}

bool CFgdFileParser::ParseClassHeader( CGameDataClass *pClass )
{
	for ( ;; )
	{
		FgdToken_t token = m_Tokens.Next();
		if ( token.Is( '=' ) )
			return true;
		if ( token.m_eType != FGDTOKEN_WORD )
		{
			Error( token, token.m_eType == FGDTOKEN_ERROR ? token.m_Text.Get() : "Expecting '='" );
			return false;
		}
		if ( token.IsWord( "halfgridsnap" ) )
		{
			pClass->m_bHalfGridSnap = true;
			continue;
		}
		if ( m_Tokens.Peek().Is( '{' ) )
		{
			KeyValues3 block;
			CUtlString kv3Error;
			if ( !ReadKV3Block( &block, &kv3Error ) )
			{
				Error( token, kv3Error );
				return false;
			}
			if ( token.IsWord( "metadata" ) )
			{
				for ( int i = 0; i < block.GetMemberCount(); ++i )
					pClass->m_MetaData.FindOrCreateMember( block.GetMemberName( i ) )->CopyFrom( *block.GetMember( i ) );
			}
			else
			{
				GameDataHelper_t helper;
				helper.m_Name = token.m_Text;
				helper.m_KV3 = block;
				pClass->m_Helpers.AddToTail( helper );
			}
			continue;
		}
		if ( !m_Tokens.Peek().Is( '(' ) )
		{
			Error( token, "Expecting '='" );
			return false;
		}
		m_Tokens.Next();

		if ( token.IsWord( "base" ) )
		{
			for ( ;; )
			{
				FgdToken_t base;
				if ( !ExpectWord( &base, "Expecting base class name" ) )
					return false;
				if ( m_Tokens.Peek().Is( '=' ) )
				{
					m_Tokens.Next();
					m_Tokens.Next(); // the prefix
					Log_Warning( LOG_GENERAL, "Using deprecated 'base=prefix' syntax for adding a prefix to a base class\n" );
				}
				CGameDataClass *pBase = m_pGameData->FindClass( base.m_Text );
				if ( !pBase )
				{
					CUtlString message;
					message.Format( "Undefined base class '%s", base.m_Text.Get() );
					Error( base, message );
					return false;
				}
				pClass->AddBase( pBase );
				FgdToken_t separator = m_Tokens.Next();
				if ( separator.Is( ')' ) )
					break;
				if ( !separator.Is( ',' ) )
				{
					Error( separator, "Expecting ',' or ')'" );
					return false;
				}
			}
		}
		else if ( token.IsWord( "size" ) )
		{
			double flMin[ 3 ], flMax[ 3 ];
			for ( double &flValue : flMin )
			{
				if ( !ReadNumber( &flValue ) )
				{
					Error( m_Tokens.Peek(), "Expecting numbers 'min_x' 'min_y' 'min_z'" );
					return false;
				}
			}
			bool bHasMax = m_Tokens.Peek().Is( ',' );
			if ( bHasMax )
			{
				m_Tokens.Next();
				for ( double &flValue : flMax )
				{
					if ( !ReadNumber( &flValue ) )
					{
						Error( m_Tokens.Peek(), "Expecting numbers 'max_x' 'max_y' 'max_z'" );
						return false;
					}
				}
			}
			for ( int i = 0; i < 3; ++i )
			{
				// One box given: it is centred on the origin.
				pClass->m_bmins[ i ] = float( bHasMax ? flMin[ i ] : -flMin[ i ] / 2 );
				pClass->m_bmaxs[ i ] = float( bHasMax ? flMax[ i ] : flMin[ i ] / 2 );
			}
			if ( !Expect( ')', "Expecting ')'" ) )
				return false;
		}
		else if ( token.IsWord( "color" ) )
		{
			double flRGB[ 3 ];
			for ( double &flValue : flRGB )
			{
				if ( !ReadNumber( &flValue ) )
				{
					Error( m_Tokens.Peek(), "Expecting integers 'r' 'g' 'b'" );
					return false;
				}
			}
			// Out-of-range or NaN components are clamped; a cast of them would be undefined.
			auto toByte = []( double flValue ) { return uint8_t( flValue >= 0.0 ? ( flValue <= 255.0 ? flValue : 255.0 ) : 0.0 ); };
			pClass->m_rgbColor = { toByte( flRGB[ 0 ] ), toByte( flRGB[ 1 ] ), toByte( flRGB[ 2 ] ), 255 };
			if ( !Expect( ')', "Expecting ')'" ) )
				return false;
		}
		else if ( token.IsWord( "tags" ) )
		{
			for ( ;; )
			{
				FgdToken_t tag = m_Tokens.Next();
				if ( tag.Is( ')' ) )
					break;
				if ( tag.Is( ',' ) )
					continue;
				if ( tag.m_eType != FGDTOKEN_WORD && tag.m_eType != FGDTOKEN_STRING )
				{
					Error( tag, "Expecting tag name" );
					return false;
				}
				pClass->AddTag( tag.m_Text );
			}
		}
		else
		{
			GameDataHelper_t helper;
			helper.m_Name = token.m_Text;
			for ( ;; )
			{
				FgdToken_t argument = m_Tokens.Next();
				if ( argument.Is( ')' ) )
					break;
				if ( argument.Is( ',' ) )
					continue;
				if ( argument.m_eType != FGDTOKEN_WORD && argument.m_eType != FGDTOKEN_STRING )
				{
					Error( argument, "Expecting ')'" );
					return false;
				}
				helper.m_Arguments.AddToTail( argument.m_Text );
			}
			pClass->m_Helpers.AddToTail( helper );
		}
	}
}

bool CFgdFileParser::ParseMembers( CGameDataClass *pClass )
{
	for ( ;; )
	{
		FgdToken_t token = m_Tokens.Next();
		if ( token.Is( ']' ) )
			return true;
		if ( token.m_eType != FGDTOKEN_WORD )
		{
			Error( token, token.m_eType == FGDTOKEN_ERROR ? token.m_Text.Get() : "Expecting identifier (variable name)" );
			return false;
		}
		bool bInput = token.IsWord( "input" );
		if ( ( bInput || token.IsWord( "output" ) ) && !m_Tokens.Peek().Is( '(' ) )
		{
			if ( !ParseInputOutput( pClass, bInput ) )
				return false;
			continue;
		}
		if ( !ParseVariable( pClass, token ) )
			return false;
	}
}

bool CFgdFileParser::ParseInputOutput( CGameDataClass *pClass, bool bInput )
{
	CClassInputOutputBase io;
	io.m_MetaData.SetToEmptyTable();
	FgdToken_t name;
	if ( !ExpectWord( &name, "Expecting identifier" ) )
		return false;
	io.m_Name = name.m_Text;
	FgdToken_t open = m_Tokens.Next();
	FgdToken_t type = m_Tokens.Next();
	if ( !open.Is( '(' ) || type.m_eType != FGDTOKEN_WORD )
	{
		Error( open.Is( '(' ) ? type : open, "Expecting '(' <type> ')'" );
		return false;
	}
	bool bKnownType = false;
	for ( const char *pszType : s_InputOutputTypes )
		bKnownType |= type.IsWord( pszType );
	if ( !bKnownType )
	{
		CUtlString message;
		message.Format( "Bad input/output type '%s'", type.m_Text.Get() );
		Error( type, message );
		return false;
	}
	io.m_Type = type.m_Text;
	if ( type.IsWord( "cpp" ) && m_Tokens.Peek().m_eType == FGDTOKEN_STRING )
	{
		io.m_CppDeclaration = m_Tokens.Next().m_Text;
		io.m_MetaData.SetMemberBool( "expects_cpp_declaration", true );
	}
	if ( !Expect( ')', "Expecting '(' <type> ')'" ) )
		return false;
	if ( m_Tokens.Peek().Is( '{' ) )
	{
		KeyValues3 block;
		CUtlString kv3Error;
		if ( !ReadKV3Block( &block, &kv3Error ) )
		{
			CUtlString message;
			message.Format( "Bad metadata for %s", name.m_Text.Get() );
			Error( name, message );
			return false;
		}
		for ( int i = 0; i < block.GetMemberCount(); ++i )
			io.m_MetaData.FindOrCreateMember( block.GetMemberName( i ) )->CopyFrom( *block.GetMember( i ) );
	}
	if ( m_Tokens.Peek().Is( ':' ) )
	{
		m_Tokens.Next();
		if ( !ReadDescription( &io.m_Description, "Expected a string literal for description" ) )
			return false;
	}
	if ( bInput )
		pClass->m_Inputs.AddToTail( static_cast<const CClassInput &>( io ) );
	else
		pClass->m_Outputs.AddToTail( static_cast<const CClassOutput &>( io ) );
	return true;
}

bool CFgdFileParser::ParseBracketMetadata( CGameDataVariable *pVar )
{
	m_Tokens.Next(); // '['
	if ( m_Tokens.Peek().Is( ']' ) )
	{
		m_Tokens.Next();
		return true;
	}
	for ( ;; )
	{
		FgdToken_t key;
		if ( !ExpectWord( &key, "Expecting ',' or ']' after metadata" ) )
			return false;
		bool bKnown = false;
		for ( const char *pszKey : s_BracketMetaKeys )
			bKnown |= key.IsWord( pszKey );
		if ( !bKnown )
		{
			CUtlString message;
			message.Format( "Unrecognized meta key: %s", key.m_Text.Get() );
			Error( key, message );
			return false;
		}
		CUtlString keyName = key.m_Text;
		keyName.ToLower();
		if ( m_Tokens.Peek().Is( '=' ) )
		{
			m_Tokens.Next();
			FgdToken_t value = m_Tokens.Next();
			if ( value.m_eType != FGDTOKEN_WORD && value.m_eType != FGDTOKEN_STRING )
			{
				Error( value, "Expecting ',' or ']' after metadata" );
				return false;
			}
			bool bText = keyName == "group" || keyName == "min" || keyName == "max" || keyName == "associated_key";
			if ( bText )
				pVar->m_KV3Metadata.SetMemberString( keyName.Get(), value.m_Text );
			else
				pVar->m_KV3Metadata.SetMemberBool( keyName.Get(), value.m_Text.IsEqual_CaseInsensitive( "true" ) || V_atoi( value.m_Text ) != 0 );
		}
		else
		{
			pVar->m_KV3Metadata.SetMemberBool( keyName.Get(), true );
		}
		FgdToken_t separator = m_Tokens.Next();
		if ( separator.Is( ']' ) )
			return true;
		if ( !separator.Is( ',' ) )
		{
			Error( separator, "Expecting ',' or ']' after metadata" );
			return false;
		}
	}
}

bool CFgdFileParser::ParseItems( CGameDataVariable *pVar )
{
	CGameDataItemSet *pSet = m_pGameData->CreateItemSet();
	pSet->m_eType = pVar->GetType();
	pVar->m_pItemSet = pSet;
	if ( !Expect( '[', "Expecting '['" ) )
		return false;
	GameDataType_t eType = pVar->GetType();
	int32_t nFlagDefault = 0;
	for ( ;; )
	{
		FgdToken_t value = m_Tokens.Next();
		if ( value.Is( ']' ) )
			break;
		if ( value.m_eType != FGDTOKEN_WORD && value.m_eType != FGDTOKEN_STRING )
		{
			Error( value, value.m_eType == FGDTOKEN_ERROR ? value.m_Text.Get() : "Expecting ']'" );
			return false;
		}
		GameDataItem_t item;
		item.m_Value = value.m_Text;
		if ( eType == GDTYPE_FLAGS )
		{
			int64_t nBit = 0;
			if ( !V_StringToInt64( value.m_Text, &nBit ) )
			{
				Error( value, "Expecting integer flag value" );
				return false;
			}
			item.m_iValue = int( nBit );
			if ( !Expect( ':', "Expecting ':'" ) || !ReadDescription( &item.m_FriendlyName, "Expected a string literal for description" ) )
				return false;
			FgdToken_t colon = m_Tokens.Next();
			FgdToken_t def = m_Tokens.Next();
			int64_t nDefault = 0;
			if ( !colon.Is( ':' ) || def.m_eType != FGDTOKEN_WORD || !V_StringToInt64( def.m_Text, &nDefault ) )
			{
				Error( colon.Is( ':' ) ? def : colon, "Expected an integer default value after <description> ':'" );
				return false;
			}
			item.m_bDefault = nDefault != 0;
			if ( item.m_bDefault )
				nFlagDefault |= item.m_iValue;
		}
		else if ( m_Tokens.Peek().Is( ':' ) )
		{
			m_Tokens.Next();
			if ( !ReadDescription( &item.m_FriendlyName, "Expected a string literal for description" ) )
				return false;
			item.m_iValue = V_atoi( value.m_Text );
		}
		else if ( eType == GDTYPE_CHOICES || eType == GDTYPE_INTCHOICES )
		{
			Error( m_Tokens.Peek(), "Expecting ':'" );
			return false;
		}
		pSet->m_Items.AddToTail( item );
	}
	if ( eType == GDTYPE_FLAGS )
	{
		pVar->m_bUsingLegacyDefault = true;
		pVar->m_nLegacyDefaultInt = nFlagDefault;
		pVar->m_DefaultKV3.SetInt( nFlagDefault );
	}
	return true;
}

bool CFgdFileParser::ParseVariable( CGameDataClass *pClass, const FgdToken_t &nameToken )
{
	CGameDataVariable *pVar = m_pGameData->CreateVariable();
	pVar->m_Name = nameToken.m_Text;
	pVar->m_SourceFile = m_FileName;
	pVar->m_nLine = nameToken.m_nLine;
	pVar->m_nColumn = nameToken.m_nColumn;
	if ( !Expect( '(', "Expecting '('" ) )
		return false;
	if ( m_Tokens.Peek().Is( '*' ) )
	{
		m_Tokens.Next();
		pVar->m_KV3Metadata.SetMemberBool( "report", true );
	}

	// The type text runs to the ')' that closes the variable's '('.
	FgdToken_t typeToken = m_Tokens.Next();
	if ( typeToken.m_eType != FGDTOKEN_WORD )
	{
		Error( typeToken, "Expecting ')' after type identifier" );
		return false;
	}
	CUtlString typeText = typeToken.m_Text;
	int nOpen = 0;
	for ( ;; )
	{
		FgdToken_t token = m_Tokens.Next();
		if ( token.Is( ')' ) && nOpen == 0 )
			break;
		if ( token.m_eType == FGDTOKEN_EOF || token.m_eType == FGDTOKEN_ERROR || ( nOpen == 0 && !token.Is( '(' ) ) )
		{
			Error( token, "Expecting ')' after type identifier" );
			return false;
		}
		nOpen += token.Is( '(' ) ? 1 : token.Is( ')' ) ? -1 : 0;
		if ( token.m_eType == FGDTOKEN_STRING )
			typeText.AppendFormat( "\"%s\"", token.m_Text.Get() );
		else
			typeText.Append( token.m_Text );
	}
	CUtlString typeError;
	if ( !pVar->m_FullType.Parse( typeText, &typeError ) )
	{
		Error( typeToken, typeError );
		return false;
	}
	GameDataType_t eType = pVar->GetType();

	if ( m_Tokens.Peek().Is( '[' ) )
	{
		if ( !ParseBracketMetadata( pVar ) )
			return false;
	}
	else if ( m_Tokens.Peek().Is( '{' ) )
	{
		KeyValues3 block;
		CUtlString kv3Error;
		if ( !ReadKV3Block( &block, &kv3Error ) )
		{
			CUtlString message;
			message.Format( "Bad metadata for %s", pVar->m_Name.Get() );
			Error( nameToken, message );
			return false;
		}
		for ( int i = 0; i < block.GetMemberCount(); ++i )
			pVar->m_KV3Metadata.FindOrCreateMember( block.GetMemberName( i ) )->CopyFrom( *block.GetMember( i ) );
	}

	CUtlString defaultText;
	bool bHasDefault = false;
	if ( m_Tokens.Peek().Is( ':' ) )
	{
		m_Tokens.Next();
		if ( eType == GDTYPE_FLAGS )
		{
			Error( m_Tokens.Peek(), "Flag sets do not have long names" );
			return false;
		}
		if ( !m_Tokens.Peek().Is( ':' ) )
		{
			FgdToken_t longName = m_Tokens.Peek();
			if ( longName.m_eType != FGDTOKEN_STRING )
			{
				Error( longName, "Bad variable long name" );
				return false;
			}
			ReadDescription( &pVar->m_LongName, "Bad variable long name" );
		}
		if ( m_Tokens.Peek().Is( ':' ) )
		{
			m_Tokens.Next();
			const FgdToken_t &def = m_Tokens.Peek();
			if ( def.m_eType == FGDTOKEN_EOF )
			{
				Error( def, "Expected a default value" );
				return false;
			}
			if ( def.m_eType == FGDTOKEN_STRING || def.m_eType == FGDTOKEN_WORD )
			{
				defaultText = m_Tokens.Next().m_Text;
				bHasDefault = true;
			}
			else if ( !def.Is( ':' ) && !def.Is( '=' ) && !def.Is( ']' ) )
			{
				Error( def, "Expected a string or integer as default value" );
				return false;
			}
			if ( m_Tokens.Peek().Is( ':' ) )
			{
				m_Tokens.Next();
				if ( !ReadDescription( &pVar->m_Description, "Bad variable description" ) )
					return false;
			}
		}
	}

	if ( bHasDefault )
	{
		switch ( GameDataTypeDefaultKind( eType ) )
		{
		case GDDEFAULT_INTEGER:
			pVar->m_bUsingLegacyDefault = true;
			pVar->m_nLegacyDefaultInt = V_atoi( defaultText );
			break;
		case GDDEFAULT_TEXT:
			pVar->m_bUsingLegacyDefault = true;
			pVar->m_LegacyDefaultStr = defaultText;
			break;
		case GDDEFAULT_NONE: break;
		}
	}
	WriteFGDValue( &pVar->m_DefaultKV3, *pVar, 0, bHasDefault ? defaultText.Get() : "" );

	bool bItemSetFromProvider = pVar->HasMetadata( "choice_name" ) || pVar->HasMetadata( "suggestion_name" );
	if ( m_Tokens.Peek().Is( '=' ) )
	{
		FgdToken_t equals = m_Tokens.Next();
		if ( !GameDataTypeHasItemSet( eType ) )
		{
			CUtlString message;
			message.Format( "Didn't expect '=' for non-flags non-choices variable %s", pVar->m_Name.Get() );
			Error( equals, message );
			return false;
		}
		if ( !ParseItems( pVar ) )
			return false;
	}
	else if ( ( eType == GDTYPE_FLAGS || eType == GDTYPE_CHOICES || eType == GDTYPE_SUGGESTIONS ) && !bItemSetFromProvider )
	{
		const char *pszWhat = eType == GDTYPE_FLAGS ? "flags" : eType == GDTYPE_CHOICES ? "choices" : "tags";
		CUtlString message;
		message.Format( "No %s specified. Expected '=' '[' <%s> ']'", pszWhat, pszWhat );
		Error( m_Tokens.Peek(), message );
		return false;
	}

	CUtlString addError;
	if ( !pClass->AddVariable( pVar, &addError ) )
	{
		Error( nameToken, addError );
		return false;
	}
	m_FileVariables.AddToTail( pVar );
	return true;
}

bool CFgdFileParser::FinishClass( CGameDataClass *pClass, const FgdToken_t &classToken )
{
	CGameDataClass *pKnown = m_pGameData->FindClass( pClass->m_Name );
	CUtlString message;
	if ( pClass->m_nClassType == GDCLASS_OVERRIDE )
	{
		if ( !pKnown )
		{
			message.Format( "'OverrideClass' was specified but class '%s' has not been previously defined.\n", pClass->m_Name.Get() );
			Error( classToken, message );
			m_bFileFailed = true;
			return false;
		}
		pKnown->MergeFrom( *pClass );
		return true;
	}
	if ( pKnown )
	{
		message.Format( "Error, duplicate class '%s'. Use @OverrideClass to add keys to an existing class.\n", pClass->m_Name.Get() );
		Error( classToken, message );
		return false;
	}
	m_pGameData->AddClass( pClass );
	return true;
}

// A class that failed in its header never reached its name; the warning still names it
// when an '=' and a word stand before the next section.
void CFgdFileParser::FindNameOfFailedClass( CUtlString *pName )
{
	CFgdTokenizer lookAhead = m_Tokens;
	for ( ;; )
	{
		FgdToken_t token = lookAhead.Next();
		if ( token.m_eType == FGDTOKEN_EOF || token.m_eType == FGDTOKEN_ERROR || token.Is( '@' ) )
			return;
		if ( token.Is( '=' ) )
		{
			const FgdToken_t &name = lookAhead.Peek();
			if ( name.m_eType == FGDTOKEN_WORD )
			{
				pName->Set( name.m_Text );
				return;
			}
		}
	}
}

// Scans ahead without consuming, so an unclosed block is reported as such rather than
// as whatever the KV3 parser makes of the rest of the file.
bool CFgdFileParser::HasMatchingBrace()
{
	CFgdTokenizer lookAhead = m_Tokens;
	int nDepth = 0;
	for ( ;; )
	{
		FgdToken_t token = lookAhead.Next();
		if ( token.m_eType == FGDTOKEN_EOF || token.m_eType == FGDTOKEN_ERROR )
			return false;
		if ( token.Is( '{' ) )
			++nDepth;
		else if ( token.Is( '}' ) && --nDepth == 0 )
			return true;
	}
}

// Filters compare tags exactly later on; matching here, without case, over every class
// of the set (later files may add classes a filter selects) fixes what each one selects.
void CFgdFileParser::CheckTagsAgainstVisGroups()
{
	for ( GameDataVisGroupFilter_t &filter : m_pGameData->m_VisGroupFilters )
	{
		filter.m_SelectedClasses.clear();
		if ( filter.m_eType != GDVISFILTER_ENTITY_TAG )
			continue;
		const char *pszTag = filter.m_KV3.GetMemberString( "tag" );
		if ( !*pszTag )
			continue;
		for ( int i = 0; i < m_pGameData->GetClassCount(); ++i )
		{
			const CGameDataClass *pClass = m_pGameData->GetClass( i );
			if ( pClass->HasTag( pszTag ) )
				filter.m_SelectedClasses.push_back( pClass->m_Name );
		}
	}
}

void CFgdFileParser::CheckDefaults()
{
	for ( const CGameDataVariable *pVar : m_FileVariables )
	{
		if ( !pVar->m_pItemSet || !pVar->m_bUsingLegacyDefault )
			continue;
		FgdToken_t where;
		where.m_eType = FGDTOKEN_EOF;
		where.m_nLine = pVar->m_nLine;
		where.m_nColumn = pVar->m_nColumn;
		CUtlString message;
		GameDataType_t eType = pVar->GetType();
		if ( eType == GDTYPE_CHOICES || eType == GDTYPE_INTCHOICES )
		{
			CUtlString defaultText;
			pVar->GetLegacyDefaultText( &defaultText );
			if ( defaultText.IsEmpty() || pVar->m_pItemSet->FindItem( defaultText ) )
				continue;
			bool bByName = false;
			for ( const GameDataItem_t &item : pVar->m_pItemSet->m_Items )
				bByName |= item.m_FriendlyName == defaultText;
			if ( bByName )
				continue;
			message.Format( "Variable %s has bad default value %s (no choices with that name or value)", pVar->m_Name.Get(), defaultText.Get() );
			Error( where, message );
		}
		else if ( eType == GDTYPE_FLAGS )
		{
			int32_t nValid = 0;
			for ( const GameDataItem_t &item : pVar->m_pItemSet->m_Items )
				nValid |= item.m_iValue;
			if ( pVar->m_nLegacyDefaultInt & ~nValid )
			{
				message.Format( "FGD Variable %s has bad default value %d (has bits set that are not valid choices)", pVar->m_Name.Get(), pVar->m_nLegacyDefaultInt );
				Error( where, message );
			}
		}
	}
}
} // namespace

CFgdReader::CFgdReader( CGameData *pGameData, const char *pszGameRoot ) : m_pGameData( pGameData ), m_GameRoot( pszGameRoot ? pszGameRoot : "" )
{
}

// Something that exists and isn't a directory: reading it then says why it can't be read
// (a device or pipe is refused there, with that reason, rather than reported missing).
static bool IsFileName( const std::filesystem::path &path )
{
	std::error_code ec;
	return std::filesystem::exists( path, ec ) && !std::filesystem::is_directory( path, ec );
}

bool CFgdReader::ResolveFileName( const char *pFileName, const char *pFromFile, CUtlString *pOut ) const
{
	namespace fs = std::filesystem;
	fs::path name( pFileName );
	if ( name.is_absolute() )
	{
		pOut->Set( name.string().c_str() );
		return IsFileName( name );
	}
	if ( !m_GameRoot.IsEmpty() )
	{
		fs::path inRoot = fs::path( m_GameRoot.Get() ) / name;
		if ( IsFileName( inRoot ) )
		{
			pOut->Set( inRoot.lexically_normal().string().c_str() );
			return true;
		}
	}
	fs::path besideIncluder = pFromFile ? fs::path( pFromFile ).parent_path() / name : name;
	pOut->Set( besideIncluder.lexically_normal().string().c_str() );
	return IsFileName( besideIncluder );
}

bool CFgdReader::MakeHelpContextName( const char *pszFullPath, CUtlString *pOut ) const
{
	namespace fs = std::filesystem;
	if ( m_GameRoot.IsEmpty() )
		return false;
	std::error_code ec;
	fs::path root = fs::weakly_canonical( fs::path( m_GameRoot.Get() ), ec );
	fs::path full = fs::weakly_canonical( fs::path( pszFullPath ), ec );
	fs::path relative = full.lexically_relative( root );
	std::string text = relative.generic_string();
	if ( text.empty() || text.compare( 0, 2, ".." ) == 0 )
		return false;
	if ( text.size() >= 4 && text.compare( text.size() - 4, 4, ".fgd" ) == 0 )
		text.replace( text.size() - 4, 4, "_fgd" );
	size_t nFirstSlash = text.find( '/' );
	if ( nFirstSlash != std::string::npos )
	{
		for ( size_t i = nFirstSlash + 1; i < text.size(); ++i )
		{
			if ( text[ i ] == '/' )
				text[ i ] = '_';
		}
	}
	pOut->Set( text.c_str() );
	return true;
}

bool CFgdReader::LoadGameData( const char *pFileName, const char *pFromFile, CUtlString *pOutRelativeName )
{
	CUtlString fullPath;
	if ( !ResolveFileName( pFileName, pFromFile, &fullPath ) )
	{
		Log_Warning( LOG_GENERAL, "Unable to find fgd file %s!\n", pFileName );
		GameDataError_t error;
		error.m_File = pFileName;
		error.m_Message.Format( "Unable to find fgd file %s!", pFileName );
		error.m_Text.Format( "Unable to find fgd file %s!\n", pFileName );
		m_pGameData->AddError( error );
		return false;
	}
	// A file included again (twice by one file, or by several) adds nothing new: it is read
	// once, so that includes that fan out can't multiply the work.
	if ( m_pGameData->IsFileIncluded( fullPath ) )
		return true;
	std::string text;
	CUtlString reason;
	if ( !Plat_ReadWholeFile( fullPath, &text, &reason ) )
	{
		Log_Warning( LOG_GENERAL, "Unable to read fgd file %s: %s\n", fullPath.Get(), reason.Get() );
		GameDataError_t error;
		error.m_File = fullPath;
		error.m_Message.Format( "Unable to read fgd file %s: %s", fullPath.Get(), reason.Get() );
		error.m_Text.Format( "Unable to read fgd file %s: %s\n", fullPath.Get(), reason.Get() );
		m_pGameData->AddError( error );
		return false;
	}
	if ( pOutRelativeName )
	{
		CUtlString relative;
		if ( MakeHelpContextName( fullPath, &relative ) )
			pOutRelativeName->Set( relative );
	}
	return LoadGameDataFromText( fullPath, text.data(), text.size() );
}

bool CFgdReader::LoadGameDataFromText( const char *pszFileName, const char *pText, size_t nLength )
{
	if ( m_nDepth >= MAX_INCLUDE_DEPTH )
		return false;
	CUtlString helpContext;
	if ( !MakeHelpContextName( pszFileName, &helpContext ) )
		Log_Msg( LOG_GENERAL, "Unable to make fgd relative path %s! Helpsystem will not have a valid context.\n", pszFileName );
	m_pGameData->AddIncludedFile( pszFileName );
	++m_nDepth;
	CFgdFileParser parser( this, m_pGameData, pszFileName, pText, nLength, helpContext );
	bool bResult = parser.Parse();
	--m_nDepth;
	return bResult;
}
