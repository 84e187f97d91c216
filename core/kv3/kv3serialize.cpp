#include "core/kv3/kv3serialize.h"

#include <cstring>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3textreader.h"
#include "core/kv3/kv3textsyntax.h"
#include "core/kv3/kv3textwriter.h"
#include "core/text/utlstring.h"

const KV3ID_t KV3_ENCODING_TEXT = { "text", 0xe21c7f3c8a3341c5ull, 0x9977a76d3a32aa0dull };
const KV3ID_t KV3_FORMAT_TFXS = { "tfxs63", 0xa6e6a69e52d34527ull, 0x8b9cff3bb91aca3eull };
const KV3ID_t KV3_FORMAT_GENERIC = { "generic", 0x7412167c06e94698ull, 0xaff2e63eb59037e7ull };

bool LoadKV3( KeyValues3 *pKV, CUtlString *pError, CUtlBuffer *pBuffer, const KV3ID_t &format, const char *pszSourceName, unsigned nFlags )
{
	( void )pszSourceName; // messages stay "line:col: message"; the caller knows the file
	if ( !pKV || !pBuffer )
	{
		if ( pError )
			pError->Set( "1:1: nothing to read into or from" );
		return false;
	}
	pKV->SetToNull();

	const CUtlBuffer &input = *pBuffer; // the const Base() also sees caller memory
	CKV3TextReader reader( reinterpret_cast<const char *>( input.Base() ), input.TellPut() );
	size_t nOffset = pBuffer->TellGet();
	size_t nEnd = 0;
	bool bFragment = ( nFlags & KV3_LOAD_FRAGMENT ) != 0;
	if ( ( !bFragment && !reader.ReadHeader( &nOffset, format, nFlags ) ) || !reader.ReadValue( nOffset, pKV, &nEnd ) ||
	     ( !bFragment && !reader.ReadEnd( nEnd ) ) )
	{
		pKV->SetToNull();
		reader.GetError( pError );
		return false;
	}
	pBuffer->SeekGet( bFragment ? nEnd : pBuffer->TellPut() );
	return true;
}

bool LoadKV3FromText( KeyValues3 *pKV, CUtlString *pError, const char *pText, size_t nLength, const KV3ID_t &format, unsigned nFlags )
{
	CUtlBuffer buffer( pText, pText ? nLength : 0, CUtlBuffer::READ_ONLY | CUtlBuffer::TEXT_BUFFER );
	return LoadKV3( pKV, pError, &buffer, format, nullptr, nFlags );
}

bool SaveKV3( const KV3ID_t &encoding, const KV3ID_t &format, const KeyValues3 *pKV, CUtlString *pError, CUtlBuffer *pBuffer, unsigned nFlags )
{
	if ( !pKV || !pBuffer )
	{
		if ( pError )
			pError->Set( "nothing to write from or into" );
		return false;
	}
	if ( pBuffer->IsReadOnly() )
	{
		if ( pError )
			pError->Set( "the buffer is read-only" );
		return false;
	}
	if ( encoding.m_nGuid0 != KV3_ENCODING_TEXT.m_nGuid0 || encoding.m_nGuid1 != KV3_ENCODING_TEXT.m_nGuid1 )
	{
		if ( pError )
			pError->Format( "unsupported encoding \"%s\": only \"text\" can be written", encoding.m_pName ? encoding.m_pName : "" );
		return false;
	}
	if ( !CKV3TextWriter::CanWrite( *pKV, pError ) )
		return false;
	CKV3TextWriter writer( pBuffer );
	if ( !( nFlags & KV3_SAVE_NO_HEADER ) && !writer.WriteHeader( encoding, format, pError ) )
		return false;
	writer.WriteRootValue( *pKV );
	return true;
}

bool SaveKV3ToString( const KeyValues3 *pKV, CUtlString *pText, const KV3ID_t &format, unsigned nFlags )
{
	if ( !pText )
		return false;
	CUtlBuffer buffer;
	CUtlString error;
	if ( !SaveKV3( KV3_ENCODING_TEXT, format, pKV, &error, &buffer, nFlags ) )
	{
		pText->Clear();
		return false;
	}
	pText->Set( reinterpret_cast<const char *>( buffer.Base() ), buffer.TellPut() );
	return true;
}

bool LooksLikeKV3TextData( const char *pText, size_t nLength )
{
	if ( !pText )
		return false;
	const char *p = pText;
	const char *pEnd = pText + nLength;
	if ( nLength >= 3 && memcmp( p, "\xEF\xBB\xBF", 3 ) == 0 )
		p += 3;
	while ( p < pEnd && KV3CharIs( *p, KV3_CHAR_BLANK ) )
		++p;
	size_t nMark = strlen( KV3_HEADER_MARK );
	if ( size_t( pEnd - p ) < nMark || memcmp( p, KV3_HEADER_MARK, nMark ) != 0 )
		return false;
	p += nMark;
	while ( p < pEnd && ( *p == ' ' || *p == '\t' ) )
		++p;
	size_t nMagic = strlen( KV3_HEADER_MAGIC );
	return size_t( pEnd - p ) > nMagic && memcmp( p, KV3_HEADER_MAGIC, nMagic ) == 0 && ( p[ nMagic ] == ' ' || p[ nMagic ] == '\t' );
}
