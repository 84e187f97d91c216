#include "tools/toolutils2/fgd/fgdvalue.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

#include "core/kv3/keyvalues3.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/gamedata.h"

namespace
{
// Splits at blanks and commas, as vector texts come either way.
CUtlVector<CUtlString> SplitWords( const char *pszText )
{
	CUtlVector<CUtlString> words;
	const char *p = pszText ? pszText : "";
	while ( *p )
	{
		while ( *p && ( isspace( static_cast<unsigned char>( *p ) ) || *p == ',' ) )
			++p;
		const char *pStart = p;
		while ( *p && !isspace( static_cast<unsigned char>( *p ) ) && *p != ',' )
			++p;
		if ( p > pStart )
			words.AddToTail( CUtlString( pStart, size_t( p - pStart ) ) );
	}
	return words;
}

void WriteFloats( KeyValues3 *pOut, const char *pszText, int nCount )
{
	CUtlVector<CUtlString> words = SplitWords( pszText );
	pOut->SetToEmptyArray();
	for ( int i = 0; i < nCount; ++i )
		pOut->ArrayAddToTail()->SetDouble( i < words.Count() ? V_atod( words[ i ] ) : 0.0 );
}

void WriteInts( KeyValues3 *pOut, const char *pszText, int nCount, int nFill )
{
	CUtlVector<CUtlString> words = SplitWords( pszText );
	pOut->SetToEmptyArray();
	for ( int i = 0; i < nCount; ++i )
		pOut->ArrayAddToTail()->SetInt( i < words.Count() ? V_atoi( words[ i ] ) : nFill );
}

bool ParseBoolText( const char *pszText )
{
	if ( !V_stricmp_fast( pszText, "true" ) || !V_stricmp_fast( pszText, "yes" ) )
		return true;
	return V_atoi( pszText ) != 0;
}

void AppendFloat( CUtlString *pOut, double flValue )
{
	char szBuffer[ 64 ];
	V_snprintf( szBuffer, sizeof( szBuffer ), "%g", flValue );
	pOut->Append( szBuffer );
}

void FormatFloats( const KeyValues3 &value, int nCount, CUtlString *pOut )
{
	pOut->Clear();
	if ( value.IsString() )
	{
		KeyValues3 parsed;
		WriteFloats( &parsed, value.GetString(), nCount );
		FormatFloats( parsed, nCount, pOut );
		return;
	}
	for ( int i = 0; i < nCount; ++i )
	{
		const KeyValues3 *pElement = value.GetArrayElement( i );
		if ( i )
			pOut->Append( ' ' );
		AppendFloat( pOut, pElement ? pElement->GetDouble() : 0.0 );
	}
}

void FormatKV3Own( const KeyValues3 &value, CUtlString *pOut )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL: pOut->Set( value.GetBool() ? "1" : "0" ); break;
	case KV3_TYPE_INT: pOut->Format( "%lld", static_cast<long long>( value.GetInt64() ) ); break;
	case KV3_TYPE_UINT: pOut->Format( "%llu", static_cast<unsigned long long>( value.GetUInt64() ) ); break;
	case KV3_TYPE_DOUBLE: pOut->Clear(); AppendFloat( pOut, value.GetDouble() ); break;
	case KV3_TYPE_STRING: pOut->Set( value.GetString() ); break;
	case KV3_TYPE_ARRAY:
	{
		pOut->Clear();
		for ( int i = 0; i < value.GetArrayElementCount(); ++i )
		{
			CUtlString element;
			FormatKV3Own( *value.GetArrayElement( i ), &element );
			if ( i )
				pOut->Append( ' ' );
			pOut->Append( element );
		}
		break;
	}
	default: pOut->Clear(); break;
	}
}
} // namespace

void WriteFGDValue( KeyValues3 *pOut, GameDataType_t eType, const char *pszText )
{
	const char *pszSafe = pszText ? pszText : "";
	switch ( eType )
	{
	case GDTYPE_ANGLE:
	case GDTYPE_VECTOR:
	case GDTYPE_VECLINE:
	case GDTYPE_WORLD_POINT:
	case GDTYPE_LOCAL_POINT:
		WriteFloats( pOut, pszSafe, 3 );
		break;
	case GDTYPE_VECTOR2D: WriteFloats( pOut, pszSafe, 2 ); break;
	case GDTYPE_VECTOR4D: WriteFloats( pOut, pszSafe, 4 ); break;
	case GDTYPE_INTEGER:
	case GDTYPE_INTCHOICES:
		pOut->SetInt( V_atoi( pszSafe ) );
		break;
	case GDTYPE_COLOR255: WriteInts( pOut, pszSafe, 3, 0 ); break;
	case GDTYPE_COLOR255ALPHA: WriteInts( pOut, pszSafe, 4, 255 ); break;
	case GDTYPE_FLOAT: pOut->SetDouble( V_atod( pszSafe ) ); break;
	case GDTYPE_BOOLEAN: pOut->SetBool( ParseBoolText( pszSafe ) ); break;
	case GDTYPE_RESOURCE:
	case GDTYPE_RESOURCE_NAME:
		pOut->SetString( pszSafe, KV3_SUBTYPE_STRING_RESOURCE_NAME );
		break;
	case GDTYPE_SOUND: pOut->SetString( pszSafe, KV3_SUBTYPE_STRING_SOUNDEVENT ); break;
	case GDTYPE_VISTARA_IMAGE: pOut->SetString( pszSafe, KV3_SUBTYPE_STRING_INTERFACE ); break;
	case GDTYPE_AXIS:
	case GDTYPE_TAG_LIST:
	case GDTYPE_TAG_LIST_DYNAMIC:
	case GDTYPE_LOCALAXIS:
	case GDTYPE_NODE_ID_LIST:
		break; // written by their own editors, never from text
	case GDTYPE_ARRAY: pOut->SetToEmptyArray(); break;
	case GDTYPE_STRUCT:
	case GDTYPE_STRINGMAP:
	case GDTYPE_INTMAP:
		pOut->SetToEmptyTable();
		break;
	case GDTYPE_KV3:
	{
		bool bHasBlank = false;
		for ( const char *p = pszSafe; *p; ++p )
			bHasBlank |= isspace( static_cast<unsigned char>( *p ) ) != 0;
		if ( bHasBlank )
			WriteFloats( pOut, pszSafe, SplitWords( pszSafe ).Count() );
		else
			pOut->SetString( pszSafe );
		break;
	}
	default: pOut->SetString( pszSafe ); break;
	}
}

void WriteFGDValue( KeyValues3 *pOut, const GameDataFullType_t &type, int nDepth, const char *pszText )
{
	WriteFGDValue( pOut, type.GetTypeAtDepth( nDepth ), pszText );
}

void WriteFGDValue( KeyValues3 *pOut, const CGameDataVariable &var, int nDepth, const char *pszText )
{
	GameDataType_t eType = var.GetTypeAtDepth( nDepth );
	WriteFGDValue( pOut, eType, pszText );
	if ( eType != GDTYPE_STRUCT )
		return;
	const CGameDataClass *pClass = var.GetStructClass();
	if ( pClass && pClass->GetMetaBool( "IsEmbeddedSubClass" ) )
		pOut->SetSubType( KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );
}

uint32_t ReadFGDColor( const KeyValues3 &value )
{
	KeyValues3 parsed;
	const KeyValues3 *pArray = &value;
	if ( value.IsString() )
	{
		WriteInts( &parsed, value.GetString(), 4, 255 );
		pArray = &parsed;
	}
	uint32_t nChannels[ 4 ] = { 0, 0, 0, 255 };
	for ( int i = 0; i < 4 && i < pArray->GetArrayElementCount(); ++i )
		nChannels[ i ] = uint32_t( pArray->GetArrayElement( i )->GetInt() ) & 0xff;
	return nChannels[ 0 ] | nChannels[ 1 ] << 8 | nChannels[ 2 ] << 16 | nChannels[ 3 ] << 24;
}

void FormatFGDValue( const KeyValues3 &value, GameDataType_t eType, CUtlString *pOut )
{
	switch ( eType )
	{
	case GDTYPE_ANGLE:
	case GDTYPE_VECTOR:
	case GDTYPE_VECLINE:
	case GDTYPE_WORLD_POINT:
	case GDTYPE_LOCAL_POINT:
		FormatFloats( value, 3, pOut );
		break;
	case GDTYPE_VECTOR2D: FormatFloats( value, 2, pOut ); break;
	case GDTYPE_VECTOR4D: FormatFloats( value, 4, pOut ); break;
	case GDTYPE_INTEGER:
	case GDTYPE_INTCHOICES:
		pOut->Format( "%d", value.IsString() ? V_atoi( value.GetString() ) : value.GetInt() );
		break;
	case GDTYPE_COLOR255:
	{
		uint32_t n = ReadFGDColor( value );
		pOut->Format( "%d %d %d", int( n & 0xff ), int( n >> 8 & 0xff ), int( n >> 16 & 0xff ) );
		break;
	}
	case GDTYPE_COLOR255ALPHA:
	{
		uint32_t n = ReadFGDColor( value );
		pOut->Format( "%d %d %d %d", int( n & 0xff ), int( n >> 8 & 0xff ), int( n >> 16 & 0xff ), int( n >> 24 & 0xff ) );
		break;
	}
	case GDTYPE_FLOAT:
		pOut->Clear();
		AppendFloat( pOut, value.IsString() ? V_atod( value.GetString() ) : value.GetDouble() );
		break;
	case GDTYPE_BOOLEAN:
		pOut->Set( ( value.IsString() ? ParseBoolText( value.GetString() ) : value.GetBool() ) ? "1" : "0" );
		break;
	case GDTYPE_TAG_LIST:
	case GDTYPE_TAG_LIST_DYNAMIC:
	case GDTYPE_NODE_ID_LIST:
		pOut->Clear();
		break;
	default: FormatKV3Own( value, pOut ); break;
	}
}

void NormalizeFGDValueKind( KeyValues3 *pValue, GameDataType_t eType )
{
	switch ( eType )
	{
	case GDTYPE_COLOR255:
	case GDTYPE_COLOR255ALPHA:
	case GDTYPE_CURVE:
	case GDTYPE_KV3:
	case GDTYPE_ARRAY:
	case GDTYPE_STRUCT:
	case GDTYPE_STRINGMAP:
	case GDTYPE_INTMAP:
		return; // left alone, or handled by the caller with the class
	case GDTYPE_STRING:
	case GDTYPE_CHOICES:
	case GDTYPE_FLAGCHOICES:
		if ( pValue->IsString() )
			return;
		break;
	case GDTYPE_INTEGER:
		if ( pValue->GetType() == KV3_TYPE_INT )
			return;
		break;
	case GDTYPE_FLOAT:
		if ( pValue->GetType() == KV3_TYPE_DOUBLE )
			return;
		break;
	case GDTYPE_BOOLEAN:
		if ( pValue->GetType() == KV3_TYPE_BOOL )
			return;
		break;
	default: break;
	}
	if ( pValue->IsTable() )
		return; // a table can't go through text without losing it
	CUtlString text;
	FormatFGDValue( *pValue, eType, &text );
	KeyValues3 converted;
	WriteFGDValue( &converted, eType, text );
	if ( converted.IsNull() )
		return; // types without a text form keep what they hold
	pValue->CopyFrom( converted );
}
