#include "core/kv3transfer/kv3transfercontext.h"

#include <cstdarg>
#include <cstdint>
#include <cstring>

#include "core/containers/utlscratchmemorypool.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferaliastable.h"

void CKV3TransferContextBase::ReportError( const char *pFormat, ... )
{
	m_bSucceeded = false;

	char szText[ 1024 ];
	va_list args;
	va_start( args, pFormat );
	vsnprintf( szText, sizeof( szText ), pFormat, args );
	va_end( args );

	if ( !m_ErrorText.IsEmpty() )
		m_ErrorText.Append( '\n' );
	CUtlString path;
	FormatPath( path );
	if ( !path.IsEmpty() )
	{
		m_ErrorText += path;
		m_ErrorText.Append( ": " );
	}
	m_ErrorText.Append( szText );

	std::string &text = m_ErrorText.Storage();
	while ( !text.empty() && ( text.back() == ' ' || text.back() == '\t' || text.back() == '\n' || text.back() == '\r' ) )
		text.pop_back();
}

void CKV3TransferContextBase::AppendPathTo( CUtlString &out, char cSeparator ) const
{
	bool bFirst = true;
	for ( const PathEntry_t &entry : m_Path )
	{
		switch ( entry.m_eKind )
		{
		case PathEntry_t::MEMBER:
			if ( !bFirst )
				out.Append( cSeparator );
			out.Append( entry.m_pszName && *entry.m_pszName ? entry.m_pszName : "<empty member name>" );
			break;
		case PathEntry_t::INDEX: out.AppendFormat( "[%u]", entry.m_nValue ); break;
		case PathEntry_t::TOKEN: out.AppendFormat( "{0x%x}", entry.m_nValue ); break;
		}
		bFirst = false;
	}
}

void CKV3TransferContextBase::FormatPath( CUtlString &out ) const { AppendPathTo( out, '.' ); }

void CKV3TransferContextBase::AddInterface( const char *pszKey, void *pInterface )
{
	m_InterfaceKeyHashes.AddToTail( MurmurHash2LowerCase( pszKey, std::strlen( pszKey ), KV3_MEMBER_NAME_SEED ) );
	m_InterfaceKeyTexts.AddToTail( pszKey );
	m_InterfacePointers.AddToTail( pInterface );
}

void *CKV3TransferContextBase::FindInterface( const char *pszKey, bool bOptional )
{
	uint32_t nHash = MurmurHash2LowerCase( pszKey, std::strlen( pszKey ), KV3_MEMBER_NAME_SEED );
	for ( int i = 0; i < m_InterfaceKeyHashes.Count(); ++i )
	{
		if ( m_InterfaceKeyHashes[ i ] == nHash )
			return m_InterfacePointers[ i ];
	}
	if ( !bOptional )
		ReportError( "Missing required transfer interface: %s", pszKey );
	return nullptr;
}

void CKV3TransferContextBase::PushMember( const char *pszName ) { m_Path.AddToTail( { PathEntry_t::MEMBER, pszName, 0 } ); }
void CKV3TransferContextBase::PushIndex( uint32_t nIndex ) { m_Path.AddToTail( { PathEntry_t::INDEX, nullptr, nIndex } ); }
void CKV3TransferContextBase::PushToken( uint32_t nToken ) { m_Path.AddToTail( { PathEntry_t::TOKEN, nullptr, nToken } ); }

void CKV3TransferContextBase::PopPath()
{
	if ( !m_Path.IsEmpty() )
		m_Path.Remove( m_Path.Count() - 1 );
}

void CKV3TransferLoadContext::EnterValue( const KeyValues3 *pValue )
{
	m_ValueStack.AddToTail( pValue );
	m_pCurrent = pValue;
}

void CKV3TransferLoadContext::LeaveValue()
{
	if ( !m_ValueStack.IsEmpty() )
		m_ValueStack.Remove( m_ValueStack.Count() - 1 );
	m_pCurrent = m_ValueStack.IsEmpty() ? nullptr : static_cast<const KeyValues3 *>( m_ValueStack.Tail() );
}

void *CKV3TransferLoadContext::AllocScratch( size_t nElementSize, size_t nCount )
{
	if ( !m_pScratchPool || !nElementSize || !nCount || nCount > SIZE_MAX / nElementSize )
		return nullptr;
	return m_pScratchPool->Alloc( nElementSize * nCount, 16 );
}

const KeyValues3 *CKV3TransferLoadContext::FindMember( const KeyValues3 *pTable, const CKV3MemberName &name ) const
{
	if ( !pTable || !pTable->IsTable() )
		return nullptr;
	if ( const KeyValues3 *pMember = pTable->FindMember( name ) )
		return pMember;
	return m_pAliases ? m_pAliases->FindAliasedMember( pTable, name ) : nullptr;
}

void CKV3TransferSaveContext::FormatPath( CUtlString & ) const
{
	// Save errors name the member in their own text; the path is kept for AppendPathTo.
}

void CKV3TransferSaveContext::EnterValue( KeyValues3 *pValue )
{
	m_ValueStack.AddToTail( pValue );
	m_pCurrent = pValue;
}

void CKV3TransferSaveContext::LeaveValue()
{
	if ( !m_ValueStack.IsEmpty() )
		m_ValueStack.Remove( m_ValueStack.Count() - 1 );
	m_pCurrent = m_ValueStack.IsEmpty() ? nullptr : const_cast<KeyValues3 *>( static_cast<const KeyValues3 *>( m_ValueStack.Tail() ) );
}

KeyValues3 *CKV3TransferSaveContext::AddMember( KeyValues3 *pTable, const CKV3MemberName &name )
{
	bool bCreated = false;
	KeyValues3 *pMember = pTable->FindOrCreateMember( name, &bCreated );
	if ( !bCreated )
	{
		ReportError( "Double-save to Member '%s'", name.GetString() );
		pMember->SetToNull();
	}
	return pMember;
}

bool CKV3TransferSaveContext::BeginClass( KeyValues3 *pValue, int nMode, const char *pszClassName )
{
	switch ( nMode )
	{
	case CLASS_MODE_PLAIN: pValue->SetToEmptyTable(); return true;
	case CLASS_MODE_POLYMORPHIC:
		pValue->SetToEmptyTable();
		pValue->SetMemberString( "_class", pszClassName ? pszClassName : "" );
		return true;
	case CLASS_MODE_NULL: pValue->SetToNull(); return true;
	default:
		ReportError( "Failed to save unsupported class" );
		pValue->SetToNull();
		return false;
	}
}

void CKV3TransferSaveContext::AddScratchArray( size_t nElementSize, size_t nCount )
{
	size_t nBytes = nElementSize * nCount;
	if ( nElementSize == 8 )
		nBytes = ( nBytes + 15 ) & ~size_t( 15 );
	m_nScratchBytes += nBytes;
}
