#include "core/keyvalues/keyvalues.h"

#include "core/text/strtools.h"

#include <charconv>
#include <cstring>
#include <utility>

KeyValues::KeyValues( const char *pName ) : m_strName( pName )
{
}

KeyValues::KeyValues( const char *pName, const char *pFirstKey, const char *pFirstValue ) : m_strName( pName )
{
	SetString( pFirstKey, pFirstValue );
}

KeyValues::~KeyValues()
{
	DeleteSubKeysAndPeers();
}

// Lists of keys are deleted one after another, so long lists don't recurse; only
// nesting does.
void KeyValues::DeleteSubKeysAndPeers()
{
	KeyValues *pSub = std::exchange( m_pSub, nullptr );
	KeyValues *pPeer = std::exchange( m_pPeer, nullptr );
	m_pLastSub = nullptr;
	while ( pSub )
	{
		KeyValues *pNext = std::exchange( pSub->m_pPeer, nullptr );
		delete pSub;
		pSub = pNext;
	}
	while ( pPeer )
	{
		KeyValues *pNext = std::exchange( pPeer->m_pPeer, nullptr );
		delete pPeer;
		pPeer = pNext;
	}
}

void KeyValues::Clear()
{
	DeleteSubKeysAndPeers();
	m_strValue.Purge();
	m_bHasValue = false;
}

const KeyValues *KeyValues::FindDirectSubKey( const char *pName, size_t nLength ) const
{
	for ( const KeyValues *pKey = m_pSub; pKey; pKey = pKey->m_pPeer )
	{
		if ( pKey->m_strName.Length() == nLength && V_strnicmp_fast( pKey->m_strName.Get(), pName, nLength ) == 0 )
			return pKey;
	}
	return nullptr;
}

KeyValues *KeyValues::FindKey( const char *pKeyName, bool bCreate )
{
	if ( !pKeyName || !*pKeyName )
		return this;
	KeyValues *pCurrent = this;
	const char *p = pKeyName;
	while ( *p )
	{
		const char *pSlash = strchr( p, '/' );
		size_t nLength = pSlash ? size_t( pSlash - p ) : strlen( p );
		if ( nLength > 0 )
		{
			KeyValues *pFound = const_cast<KeyValues *>( pCurrent->FindDirectSubKey( p, nLength ) );
			if ( !pFound )
			{
				if ( !bCreate )
					return nullptr;
				pFound = pCurrent->CreateNewKey( CUtlString( p, nLength ).Get() );
			}
			pCurrent = pFound;
		}
		p += nLength;
		if ( *p == '/' )
			++p;
	}
	return pCurrent;
}

const KeyValues *KeyValues::FindKey( const char *pKeyName ) const
{
	return const_cast<KeyValues *>( this )->FindKey( pKeyName, false );
}

KeyValues *KeyValues::GetFirstTrueSubKey() const
{
	KeyValues *pKey = m_pSub;
	while ( pKey && !pKey->m_pSub )
		pKey = pKey->m_pPeer;
	return pKey;
}

KeyValues *KeyValues::GetNextTrueSubKey() const
{
	KeyValues *pKey = m_pPeer;
	while ( pKey && !pKey->m_pSub )
		pKey = pKey->m_pPeer;
	return pKey;
}

KeyValues *KeyValues::GetFirstValue() const
{
	KeyValues *pKey = m_pSub;
	while ( pKey && pKey->m_pSub )
		pKey = pKey->m_pPeer;
	return pKey;
}

KeyValues *KeyValues::GetNextValue() const
{
	KeyValues *pKey = m_pPeer;
	while ( pKey && pKey->m_pSub )
		pKey = pKey->m_pPeer;
	return pKey;
}

void KeyValues::AddSubKey( KeyValues *pSubKey )
{
	if ( !pSubKey || pSubKey == this )
		return;
	// A key holds either a value or subkeys.
	m_strValue.Purge();
	m_bHasValue = false;
	if ( m_pLastSub )
		m_pLastSub->m_pPeer = pSubKey;
	else
		m_pSub = pSubKey;
	// The new key may bring peers of its own along.
	m_pLastSub = pSubKey;
	while ( m_pLastSub->m_pPeer )
		m_pLastSub = m_pLastSub->m_pPeer;
}

KeyValues *KeyValues::CreateNewKey( const char *pName )
{
	KeyValues *pKey = new KeyValues( pName );
	AddSubKey( pKey );
	return pKey;
}

void KeyValues::RemoveSubKey( KeyValues *pSubKey )
{
	if ( !pSubKey )
		return;
	KeyValues *pPrevious = nullptr;
	for ( KeyValues **ppLink = &m_pSub; *ppLink; ppLink = &( *ppLink )->m_pPeer )
	{
		if ( *ppLink == pSubKey )
		{
			*ppLink = pSubKey->m_pPeer;
			pSubKey->m_pPeer = nullptr;
			if ( m_pLastSub == pSubKey )
				m_pLastSub = pPrevious;
			return;
		}
		pPrevious = *ppLink;
	}
}

bool KeyValues::DeleteSubKey( const char *pName )
{
	KeyValues *pKey = const_cast<KeyValues *>( FindDirectSubKey( pName ? pName : "", V_strlen( pName ) ) );
	if ( !pKey )
		return false;
	RemoveSubKey( pKey );
	delete pKey;
	return true;
}

bool KeyValues::IsEmpty( const char *pKeyName ) const
{
	const KeyValues *pKey = FindKey( pKeyName );
	if ( !pKey )
		return true;
	return !pKey->m_pSub && pKey->m_strValue.IsEmpty();
}

const char *KeyValues::GetString( const char *pKeyName, const char *pDefault ) const
{
	const KeyValues *pKey = FindKey( pKeyName );
	if ( !pKey || !pKey->m_bHasValue )
		return pDefault;
	return pKey->m_strValue.Get();
}

// True when the text (after blanks and a sign) starts with a digit, so "12px" reads as
// 12 and "abc" as no number at all.
static bool StartsWithNumber( const char *p )
{
	while ( *p == ' ' || *p == '\t' )
		++p;
	if ( *p == '-' || *p == '+' )
		++p;
	if ( *p == '.' )
		++p;
	return *p >= '0' && *p <= '9';
}

int KeyValues::GetInt( const char *pKeyName, int nDefault ) const
{
	const char *pValue = GetString( pKeyName, nullptr );
	return pValue && StartsWithNumber( pValue ) ? V_atoi( pValue ) : nDefault;
}

float KeyValues::GetFloat( const char *pKeyName, float flDefault ) const
{
	const char *pValue = GetString( pKeyName, nullptr );
	return pValue && StartsWithNumber( pValue ) ? V_atof( pValue ) : flDefault;
}

bool KeyValues::GetBool( const char *pKeyName, bool bDefault ) const
{
	const char *pValue = GetString( pKeyName, nullptr );
	if ( !pValue )
		return bDefault;
	if ( V_stricmp_fast( pValue, "true" ) == 0 || V_stricmp_fast( pValue, "yes" ) == 0 )
		return true;
	if ( V_stricmp_fast( pValue, "false" ) == 0 || V_stricmp_fast( pValue, "no" ) == 0 )
		return false;
	return StartsWithNumber( pValue ) ? V_atof( pValue ) != 0.0f : bDefault;
}

void KeyValues::SetString( const char *pKeyName, const char *pValue )
{
	KeyValues *pKey = FindKey( pKeyName, true );
	KeyValues *pSub = std::exchange( pKey->m_pSub, nullptr );
	pKey->m_pLastSub = nullptr;
	while ( pSub )
	{
		KeyValues *pNext = std::exchange( pSub->m_pPeer, nullptr );
		delete pSub;
		pSub = pNext;
	}
	pKey->m_strValue.Set( pValue );
	pKey->m_bHasValue = true;
}

void KeyValues::SetInt( const char *pKeyName, int nValue )
{
	char text[ 16 ];
	V_snprintf( text, sizeof( text ), "%d", nValue );
	SetString( pKeyName, text );
}

void KeyValues::SetFloat( const char *pKeyName, float flValue )
{
	// Shortest text that reads back as the same float, whatever the C locale.
	char text[ 32 ];
	std::to_chars_result result = std::to_chars( text, text + sizeof( text ) - 1, flValue );
	*result.ptr = 0;
	SetString( pKeyName, text );
}

KeyValues *KeyValues::MakeCopy() const
{
	KeyValues *pCopy = new KeyValues( m_strName.Get() );
	pCopy->m_strValue = m_strValue;
	pCopy->m_bHasValue = m_bHasValue;
	for ( const KeyValues *pSub = m_pSub; pSub; pSub = pSub->m_pPeer )
		pCopy->AddSubKey( pSub->MakeCopy() );
	return pCopy;
}
