#include "core/kv3/kv3textwriter.h"

#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstring>

#include "core/containers/utlbuffer.h"
#include "core/kv3/kv3array.h"
#include "core/kv3/kv3table.h"
#include "core/kv3/kv3textsyntax.h"
#include "core/text/utlstring.h"

namespace
{
const char s_HexDigits[] = "0123456789abcdef";

size_t CopyText( char *pOut, const char *pText )
{
	size_t nLength = strlen( pText );
	memcpy( pOut, pText, nLength );
	return nLength;
}

// Shortest text that reads back to the same bits, always with '.' or 'e' so it never
// reads as an integer.
template <typename T>
size_t FormatReal( T flValue, char *pOut )
{
	if ( std::isnan( flValue ) )
		return CopyText( pOut, "nan" );
	if ( std::isinf( flValue ) )
		return CopyText( pOut, flValue < 0 ? "-inf" : "inf" );
	char *pEnd = std::to_chars( pOut, pOut + 48, flValue ).ptr;
	size_t nLength = size_t( pEnd - pOut );
	if ( !memchr( pOut, '.', nLength ) && !memchr( pOut, 'e', nLength ) )
	{
		memcpy( pEnd, ".0", 2 );
		nLength += 2;
	}
	return nLength;
}

bool IsExactFloat( double flValue )
{
	if ( std::isnan( flValue ) || std::isinf( flValue ) )
		return true;
	return std::fabs( flValue ) <= double( FLT_MAX ) && double( float( flValue ) ) == flValue;
}

// Text on several lines is written between """ lines when nothing in it needs escapes
// and no line of it could be taken for the closing """.
bool SuitsMultiLineForm( const char *pText, size_t nLength )
{
	if ( !memchr( pText, '\n', nLength ) )
		return false;
	bool bLineStart = true;
	for ( size_t i = 0; i < nLength; ++i )
	{
		unsigned char c = static_cast<unsigned char>( pText[ i ] );
		if ( ( c < 0x20 && c != '\n' && c != '\t' ) || c == 0x7f )
			return false;
		if ( bLineStart && c != ' ' && c != '\t' )
		{
			if ( nLength - i >= 3 && memcmp( pText + i, "\"\"\"", 3 ) == 0 )
				return false;
			bLineStart = false;
		}
		if ( c == '\n' )
			bLineStart = true;
	}
	return true;
}

bool IsOneLineCandidate( const KeyValues3 &value )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_NULL:
	case KV3_TYPE_BOOL:
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT:
	case KV3_TYPE_DOUBLE:
		return true;
	default:
		return false;
	}
}

bool IsValidFormatName( const char *pName )
{
	if ( !pName || !*pName )
		return false;
	for ( const char *p = pName; *p; ++p )
	{
		if ( !KV3CharIs( *p, KV3_CHAR_NAME ) && *p != '.' && *p != '-' )
			return false;
	}
	return true;
}
} // namespace

CKV3TextWriter::CKV3TextWriter( CUtlBuffer *pOut )
	: m_pOut( pOut ), m_pChunk( new char[ CHUNK_SIZE ] )
{
}

CKV3TextWriter::~CKV3TextWriter()
{
	Flush();
}

void CKV3TextWriter::Flush()
{
	if ( m_nUsed )
		m_pOut->Put( m_pChunk.get(), m_nUsed );
	m_nUsed = 0;
}

void CKV3TextWriter::Append( const char *pData, size_t nSize )
{
	if ( m_nUsed + nSize > CHUNK_SIZE )
	{
		Flush();
		if ( nSize > CHUNK_SIZE )
		{
			m_pOut->Put( pData, nSize );
			return;
		}
	}
	memcpy( m_pChunk.get() + m_nUsed, pData, nSize );
	m_nUsed += nSize;
}

void CKV3TextWriter::AppendTabs( int nCount )
{
	static const char s_Tabs[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
	while ( nCount > 0 )
	{
		int nRun = nCount < 16 ? nCount : 16;
		Append( s_Tabs, size_t( nRun ) );
		nCount -= nRun;
	}
}

void CKV3TextWriter::AppendTagPrefix( KV3SubType_t eSubType )
{
	const char *pTag = KV3SubTypeTagName( eSubType );
	Append( pTag, strlen( pTag ) );
	Append( ':' );
}

bool CKV3TextWriter::CanWrite( const KeyValues3 &value, CUtlString *pError )
{
	const char *pProblem = FindUnwritable( value, 0 );
	if ( pProblem && pError )
		pError->Set( pProblem );
	return pProblem == nullptr;
}

const char *CKV3TextWriter::FindUnwritable( const KeyValues3 &value, int nDepth )
{
	if ( value.m_eType == KV3_TYPE_INVALID || value.m_eType >= KV3_TYPE_COUNT )
		return "the tree holds a value of type invalid, which has no text form";
	if ( value.m_eSubType >= KV3_SUBTYPE_COUNT )
		return "the tree holds a value with an unknown subtype";
	if ( value.m_eType != KV3_TYPE_TABLE && value.m_eType != KV3_TYPE_ARRAY )
		return nullptr;
	if ( nDepth + 1 > KV3_MAX_NESTING_DEPTH )
		return "the tree is nested too deeply to be read back";
	bool bTable = value.m_eType == KV3_TYPE_TABLE;
	int nCount = bTable ? value.m_pTable->Count() : value.m_pArray->Count();
	for ( int i = 0; i < nCount; ++i )
	{
		const KeyValues3 &child = bTable ? *value.m_pTable->Member( i ).m_pValue : *value.m_pArray->Element( i );
		if ( const char *pProblem = FindUnwritable( child, nDepth + 1 ) )
			return pProblem;
	}
	return nullptr;
}

bool CKV3TextWriter::WriteHeader( const KV3ID_t &encoding, const KV3ID_t &format, CUtlString *pError )
{
	const KV3ID_t *ids[ 2 ] = { &encoding, &format };
	for ( const KV3ID_t *pId : ids )
	{
		if ( !IsValidFormatName( pId->m_pName ) )
		{
			if ( pError )
				pError->Format( "\"%s\" can't be written in a header: names are letters, digits, '_', '.' and '-'", pId->m_pName ? pId->m_pName : "" );
			return false;
		}
	}
	Append( KV3_HEADER_MARK, strlen( KV3_HEADER_MARK ) );
	Append( ' ' );
	Append( KV3_HEADER_MAGIC, strlen( KV3_HEADER_MAGIC ) );
	const char *pKeys[ 2 ] = { " encoding=", " format=" };
	for ( int i = 0; i < 2; ++i )
	{
		Append( pKeys[ i ], strlen( pKeys[ i ] ) );
		Append( ids[ i ]->m_pName, strlen( ids[ i ]->m_pName ) );
		Append( ':' );
		char guid[ KV3_GUID_TEXT_LENGTH ];
		KV3FormatGuid( ids[ i ]->m_nGuid0, ids[ i ]->m_nGuid1, guid );
		Append( guid, sizeof( guid ) );
	}
	Append( ' ' );
	Append( KV3_HEADER_MARK, strlen( KV3_HEADER_MARK ) );
	Append( '\n' );
	return true;
}

void CKV3TextWriter::WriteRootValue( const KeyValues3 &value )
{
	WriteValue( value, 0 );
	Append( '\n' );
}

size_t CKV3TextWriter::FormatScalar( const KeyValues3 &value, char *pOut )
{
	char text[ MAX_SCALAR_TEXT ];
	size_t nLength = 0;
	KV3SubType_t eSubType = value.GetSubType();
	KV3SubType_t eReadAs = KV3_SUBTYPE_UNSPECIFIED; // what the reader makes of the text without a tag
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL:
		nLength = CopyText( text, value.m_bValue ? "true" : "false" );
		break;
	case KV3_TYPE_INT:
	{
		nLength = size_t( std::to_chars( text, text + sizeof( text ), value.m_nValue ).ptr - text );
		eReadAs = KV3DefaultIntSubType( value.m_nValue );
		if ( eSubType != eReadAs && KV3IntFits( value.m_nValue, eSubType ) )
		{
			nLength += CopyText( text + nLength, KV3IntSuffix( eSubType ) );
			eReadAs = eSubType;
		}
		break;
	}
	case KV3_TYPE_UINT:
	{
		nLength = size_t( std::to_chars( text, text + sizeof( text ), value.m_uValue ).ptr - text );
		eReadAs = KV3DefaultUIntSubType( value.m_uValue );
		if ( eSubType != eReadAs && KV3UIntFits( value.m_uValue, eSubType ) )
		{
			nLength += CopyText( text + nLength, KV3UIntSuffix( eSubType ) );
			eReadAs = eSubType;
		}
		else
		{
			text[ nLength++ ] = 'u';
		}
		break;
	}
	case KV3_TYPE_DOUBLE:
		if ( eSubType == KV3_SUBTYPE_FLOAT32 && IsExactFloat( value.m_flValue ) )
		{
			nLength = FormatReal( float( value.m_flValue ), text );
			text[ nLength++ ] = 'f';
			eReadAs = KV3_SUBTYPE_FLOAT32;
		}
		else
		{
			nLength = FormatReal( value.m_flValue, text );
			eReadAs = KV3_SUBTYPE_FLOAT64;
		}
		break;
	default:
		nLength = CopyText( text, "null" );
		break;
	}

	size_t nPrefix = 0;
	if ( eSubType != eReadAs )
	{
		nPrefix = CopyText( pOut, KV3SubTypeTagName( eSubType ) );
		pOut[ nPrefix++ ] = ':';
	}
	memcpy( pOut + nPrefix, text, nLength );
	return nPrefix + nLength;
}

void CKV3TextWriter::WriteValue( const KeyValues3 &value, int nIndent )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_STRING:
	{
		if ( value.GetSubType() != KV3_SUBTYPE_UNSPECIFIED )
			AppendTagPrefix( value.GetSubType() );
		const char *pText = value.m_String.m_pChars;
		size_t nLength = value.m_String.m_nLength;
		if ( SuitsMultiLineForm( pText, nLength ) )
			WriteMultiLine( pText, nLength, nIndent );
		else
			WriteQuoted( pText, nLength );
		break;
	}
	case KV3_TYPE_BINARY_BLOB:
		if ( value.GetSubType() != KV3_SUBTYPE_UNSPECIFIED )
			AppendTagPrefix( value.GetSubType() );
		WriteBlob( reinterpret_cast<const uint8_t *>( value.m_Blob.m_pBytes ), value.m_Blob.m_nSize, nIndent );
		break;
	case KV3_TYPE_TABLE:
		if ( value.GetSubType() != KV3_SUBTYPE_UNSPECIFIED )
			AppendTagPrefix( value.GetSubType() );
		WriteTable( value, nIndent );
		break;
	case KV3_TYPE_ARRAY:
		if ( value.GetSubType() != KV3_SUBTYPE_UNSPECIFIED )
			AppendTagPrefix( value.GetSubType() );
		WriteArray( value, nIndent );
		break;
	default:
	{
		if ( m_nUsed + MAX_SCALAR_TEXT > CHUNK_SIZE )
			Flush();
		m_nUsed += FormatScalar( value, m_pChunk.get() + m_nUsed );
		break;
	}
	}
}

void CKV3TextWriter::WriteTable( const KeyValues3 &value, int nIndent )
{
	const CKV3Table &table = *value.m_pTable;
	if ( table.Count() == 0 )
	{
		Append( "{}", 2 );
		return;
	}
	Append( "{\n", 2 );
	for ( int i = 0; i < table.Count(); ++i )
	{
		const KV3Member_t &member = table.Member( i );
		AppendTabs( nIndent + 1 );
		WriteName( member.m_pName, member.m_nNameLength );
		Append( " = ", 3 );
		WriteValue( *member.m_pValue, nIndent + 1 );
		Append( '\n' );
	}
	AppendTabs( nIndent );
	Append( '}' );
}

bool CKV3TextWriter::TryWriteOneLineArray( const KeyValues3 &value )
{
	const CKV3Array &array = *value.m_pArray;
	if ( array.Count() > ONE_LINE_ARRAY_MAX_ELEMENTS )
		return false;
	char line[ ONE_LINE_ARRAY_MAX_BYTES + MAX_SCALAR_TEXT + 4 ];
	size_t nLength = 0;
	line[ nLength++ ] = '[';
	for ( int i = 0; i < array.Count(); ++i )
	{
		const KeyValues3 &element = *array.Element( i );
		if ( !IsOneLineCandidate( element ) )
			return false;
		if ( i > 0 )
			line[ nLength++ ] = ',';
		line[ nLength++ ] = ' ';
		nLength += FormatScalar( element, line + nLength );
		if ( nLength > ONE_LINE_ARRAY_MAX_BYTES )
			return false;
	}
	line[ nLength++ ] = ' ';
	line[ nLength++ ] = ']';
	Append( line, nLength );
	return true;
}

void CKV3TextWriter::WriteArray( const KeyValues3 &value, int nIndent )
{
	const CKV3Array &array = *value.m_pArray;
	if ( array.Count() == 0 )
	{
		Append( "[]", 2 );
		return;
	}
	if ( TryWriteOneLineArray( value ) )
		return;
	Append( "[\n", 2 );
	for ( int i = 0; i < array.Count(); ++i )
	{
		AppendTabs( nIndent + 1 );
		WriteValue( *array.Element( i ), nIndent + 1 );
		Append( ",\n", 2 );
	}
	AppendTabs( nIndent );
	Append( ']' );
}

void CKV3TextWriter::WriteName( const char *pName, size_t nLength )
{
	if ( KV3IsPlainName( pName, nLength ) )
		Append( pName, nLength );
	else
		WriteQuoted( pName, nLength );
}

void CKV3TextWriter::WriteQuoted( const char *pText, size_t nLength )
{
	Append( '"' );
	size_t nRunStart = 0;
	for ( size_t i = 0; i < nLength; ++i )
	{
		char c = pText[ i ];
		if ( !KV3CharIs( c, KV3_CHAR_ESCAPED ) )
			continue;
		Append( pText + nRunStart, i - nRunStart );
		nRunStart = i + 1;
		char escape[ 6 ] = { '\\', 0, 0, 0, 0, 0 };
		size_t nEscape = 2;
		switch ( c )
		{
		case '"': escape[ 1 ] = '"'; break;
		case '\\': escape[ 1 ] = '\\'; break;
		case '\n': escape[ 1 ] = 'n'; break;
		case '\t': escape[ 1 ] = 't'; break;
		case '\r': escape[ 1 ] = 'r'; break;
		default:
		{
			unsigned char u = static_cast<unsigned char>( c );
			memcpy( escape + 1, "u00", 3 );
			escape[ 4 ] = s_HexDigits[ u >> 4 ];
			escape[ 5 ] = s_HexDigits[ u & 0xf ];
			nEscape = 6;
			break;
		}
		}
		Append( escape, nEscape );
	}
	Append( pText + nRunStart, nLength - nRunStart );
	Append( '"' );
}

void CKV3TextWriter::WriteMultiLine( const char *pText, size_t nLength, int nIndent )
{
	Append( "\"\"\"\n", 4 );
	const char *pEnd = pText + nLength;
	for ( const char *pLine = pText;; )
	{
		const char *pBreak = static_cast<const char *>( memchr( pLine, '\n', size_t( pEnd - pLine ) ) );
		const char *pLineEnd = pBreak ? pBreak : pEnd;
		if ( pLineEnd != pLine )
		{
			// Empty lines stay empty so no trailing blanks show up in diffs.
			AppendTabs( nIndent + 1 );
			Append( pLine, size_t( pLineEnd - pLine ) );
		}
		Append( '\n' );
		if ( !pBreak )
			break;
		pLine = pBreak + 1;
	}
	AppendTabs( nIndent + 1 );
	Append( "\"\"\"", 3 );
}

void CKV3TextWriter::WriteBlob( const uint8_t *pData, size_t nSize, int nIndent )
{
	if ( nSize == 0 )
	{
		Append( "#[]", 3 );
		return;
	}
	bool bOneLine = nSize <= BLOB_BYTES_PER_LINE;
	Append( bOneLine ? "#[ " : "#[\n", 3 );
	for ( size_t nLineStart = 0; nLineStart < nSize; nLineStart += BLOB_BYTES_PER_LINE )
	{
		char line[ BLOB_BYTES_PER_LINE * 3 ];
		size_t nLength = 0;
		size_t nLineEnd = nLineStart + BLOB_BYTES_PER_LINE < nSize ? nLineStart + BLOB_BYTES_PER_LINE : nSize;
		for ( size_t i = nLineStart; i < nLineEnd; ++i )
		{
			if ( i > nLineStart )
				line[ nLength++ ] = ' ';
			line[ nLength++ ] = s_HexDigits[ pData[ i ] >> 4 ];
			line[ nLength++ ] = s_HexDigits[ pData[ i ] & 0xf ];
		}
		if ( !bOneLine )
			AppendTabs( nIndent + 1 );
		Append( line, nLength );
		if ( !bOneLine )
			Append( '\n' );
	}
	if ( bOneLine )
	{
		Append( " ]", 2 );
	}
	else
	{
		AppendTabs( nIndent );
		Append( ']' );
	}
}
