#include "core/kv3/keyvalues3.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include "core/kv3/kv3array.h"
#include "core/kv3/kv3builder.h"
#include "core/kv3/kv3table.h"

namespace
{
// Float-to-integer conversion is undefined out of range, so reads saturate; NaN reads as 0.
template <typename T>
T SaturateDouble( double flValue )
{
	if ( std::isnan( flValue ) )
		return 0;
	if ( flValue <= double( std::numeric_limits<T>::min() ) )
		return std::numeric_limits<T>::min();
	if ( flValue >= double( std::numeric_limits<T>::max() ) )
		return std::numeric_limits<T>::max();
	return T( flValue );
}

bool DoublesEqual( double a, double b )
{
	// Bitwise, so -0.0 differs from 0.0; every NaN equals every NaN since text keeps no payloads.
	if ( std::isnan( a ) || std::isnan( b ) )
		return std::isnan( a ) && std::isnan( b );
	return memcmp( &a, &b, sizeof( double ) ) == 0;
}

bool WalkValue( const KeyValues3 *pValue, int nDepth, KeyValues3::WalkFn_t fnVisit, void *pContext )
{
	if ( !fnVisit( pValue, nDepth, pContext ) )
		return true;
	if ( pValue->IsTable() )
	{
		for ( int i = 0; i < pValue->GetMemberCount(); ++i )
			WalkValue( pValue->GetMember( i ), nDepth + 1, fnVisit, pContext );
	}
	else if ( pValue->IsArray() )
	{
		for ( int i = 0; i < pValue->GetArrayElementCount(); ++i )
			WalkValue( pValue->GetArrayElement( i ), nDepth + 1, fnVisit, pContext );
	}
	return true;
}
} // namespace

const char *KV3BasicTypeName( KV3BasicType_t eType )
{
	static const char *const s_Names[ KV3_TYPE_COUNT ] = { "invalid", "null", "bool", "int", "uint", "double", "string", "binary_blob", "array", "table" };
	return eType < KV3_TYPE_COUNT ? s_Names[ eType ] : "invalid";
}

KeyValues3::KeyValues3()
	: m_uValue( 0 )
{
}

KeyValues3::KeyValues3( const KeyValues3 &other )
{
	CKV3Builder::CopyValue( this, other );
}

KeyValues3 &KeyValues3::operator=( const KeyValues3 &other )
{
	if ( this != &other )
		ReplaceWith( KeyValues3( other ) ); // copy first: other may live below this value
	return *this;
}

KeyValues3::KeyValues3( KeyValues3 &&other ) noexcept
{
	TakeFrom( other );
}

KeyValues3 &KeyValues3::operator=( KeyValues3 &&other ) noexcept
{
	if ( this != &other )
	{
		KeyValues3 temp( std::move( other ) ); // other may live below this value
		ReplaceWith( std::move( temp ) );
	}
	return *this;
}

KeyValues3::~KeyValues3()
{
	FreeData();
}

void KeyValues3::TakeFrom( KeyValues3 &other )
{
	m_eType = other.m_eType;
	m_eSubType = other.m_eSubType;
	m_nFlags = 0;
	m_uValue = 0;
	if ( ( other.m_nFlags & FLAG_BORROWED_DATA ) && ( m_eType == KV3_TYPE_STRING || m_eType == KV3_TYPE_BINARY_BLOB ) )
	{
		// Borrowed bytes die with the block they live in, so the new owner needs its own.
		CKV3Builder::CopyValue( this, other );
	}
	else
	{
		memcpy( &m_String, &other.m_String, sizeof( m_String ) );
	}
	other.m_eType = KV3_TYPE_NULL;
	other.m_eSubType = KV3_SUBTYPE_UNSPECIFIED;
	other.m_nFlags = 0;
	other.m_uValue = 0;
}

void KeyValues3::ReplaceWith( KeyValues3 &&temp )
{
	FreeData();
	TakeFrom( temp );
}

void KeyValues3::FreeData()
{
	switch ( m_eType )
	{
	case KV3_TYPE_STRING:
	case KV3_TYPE_BINARY_BLOB:
		if ( !( m_nFlags & FLAG_BORROWED_DATA ) )
			free( m_String.m_pChars );
		break;
	case KV3_TYPE_TABLE:
		CKV3Table::Destroy( m_pTable );
		break;
	case KV3_TYPE_ARRAY:
		CKV3Array::Destroy( m_pArray );
		break;
	default:
		break;
	}
	m_eType = KV3_TYPE_NULL;
	m_eSubType = KV3_SUBTYPE_UNSPECIFIED;
	m_nFlags = 0;
	m_uValue = 0;
}

void KeyValues3::SetToNull()
{
	FreeData();
}

void KeyValues3::SetToEmptyTable()
{
	FreeData();
	m_eType = KV3_TYPE_TABLE;
	m_pTable = CKV3Table::Create();
}

void KeyValues3::SetToEmptyArray()
{
	FreeData();
	m_eType = KV3_TYPE_ARRAY;
	m_pArray = CKV3Array::Create();
}

CKV3Table *KeyValues3::EnsureTable()
{
	if ( m_eType != KV3_TYPE_TABLE )
		SetToEmptyTable();
	return m_pTable;
}

CKV3Array *KeyValues3::EnsureArray()
{
	if ( m_eType != KV3_TYPE_ARRAY )
		SetToEmptyArray();
	return m_pArray;
}

void KeyValues3::CopyFrom( const KeyValues3 &other )
{
	*this = other;
}

bool KeyValues3::IsEqual( const KeyValues3 &other ) const
{
	if ( m_eType != other.m_eType || m_eSubType != other.m_eSubType )
		return false;
	switch ( m_eType )
	{
	case KV3_TYPE_BOOL:
		return m_bValue == other.m_bValue;
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT:
		return m_uValue == other.m_uValue;
	case KV3_TYPE_DOUBLE:
		return DoublesEqual( m_flValue, other.m_flValue );
	case KV3_TYPE_STRING:
	case KV3_TYPE_BINARY_BLOB:
		return m_String.m_nLength == other.m_String.m_nLength && memcmp( m_String.m_pChars, other.m_String.m_pChars, m_String.m_nLength ) == 0;
	case KV3_TYPE_TABLE:
	{
		if ( m_pTable->Count() != other.m_pTable->Count() )
			return false;
		for ( int i = 0; i < m_pTable->Count(); ++i )
		{
			const KV3Member_t &a = m_pTable->Member( i );
			const KV3Member_t &b = other.m_pTable->Member( i );
			if ( a.m_nNameLength != b.m_nNameLength || memcmp( a.m_pName, b.m_pName, a.m_nNameLength ) != 0 || !a.m_pValue->IsEqual( *b.m_pValue ) )
				return false;
		}
		return true;
	}
	case KV3_TYPE_ARRAY:
	{
		if ( m_pArray->Count() != other.m_pArray->Count() )
			return false;
		for ( int i = 0; i < m_pArray->Count(); ++i )
		{
			if ( !m_pArray->Element( i )->IsEqual( *other.m_pArray->Element( i ) ) )
				return false;
		}
		return true;
	}
	default:
		return true;
	}
}

bool KeyValues3::GetBool( bool bDefault ) const
{
	switch ( m_eType )
	{
	case KV3_TYPE_BOOL: return m_bValue;
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT: return m_uValue != 0;
	case KV3_TYPE_DOUBLE: return m_flValue != 0.0;
	default: return bDefault;
	}
}

int32_t KeyValues3::GetInt( int32_t nDefault ) const
{
	switch ( m_eType )
	{
	case KV3_TYPE_BOOL: return m_bValue ? 1 : 0;
	case KV3_TYPE_INT: return int32_t( m_nValue );
	case KV3_TYPE_UINT: return int32_t( m_uValue );
	case KV3_TYPE_DOUBLE: return SaturateDouble<int32_t>( m_flValue );
	default: return nDefault;
	}
}

int64_t KeyValues3::GetInt64( int64_t nDefault ) const
{
	switch ( m_eType )
	{
	case KV3_TYPE_BOOL: return m_bValue ? 1 : 0;
	case KV3_TYPE_INT: return m_nValue;
	case KV3_TYPE_UINT: return int64_t( m_uValue );
	case KV3_TYPE_DOUBLE: return SaturateDouble<int64_t>( m_flValue );
	default: return nDefault;
	}
}

uint32_t KeyValues3::GetUInt( uint32_t nDefault ) const
{
	switch ( m_eType )
	{
	case KV3_TYPE_BOOL: return m_bValue ? 1 : 0;
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT: return uint32_t( m_uValue );
	case KV3_TYPE_DOUBLE: return SaturateDouble<uint32_t>( m_flValue );
	default: return nDefault;
	}
}

uint64_t KeyValues3::GetUInt64( uint64_t nDefault ) const
{
	switch ( m_eType )
	{
	case KV3_TYPE_BOOL: return m_bValue ? 1 : 0;
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT: return m_uValue;
	case KV3_TYPE_DOUBLE: return SaturateDouble<uint64_t>( m_flValue );
	default: return nDefault;
	}
}

float KeyValues3::GetFloat( float flDefault ) const
{
	return IsNumber() || m_eType == KV3_TYPE_BOOL ? float( GetDouble() ) : flDefault;
}

double KeyValues3::GetDouble( double flDefault ) const
{
	switch ( m_eType )
	{
	case KV3_TYPE_BOOL: return m_bValue ? 1.0 : 0.0;
	case KV3_TYPE_INT: return double( m_nValue );
	case KV3_TYPE_UINT: return double( m_uValue );
	case KV3_TYPE_DOUBLE: return m_flValue;
	default: return flDefault;
	}
}

const char *KeyValues3::GetString( const char *pDefault ) const
{
	return m_eType == KV3_TYPE_STRING ? m_String.m_pChars : pDefault;
}

size_t KeyValues3::GetStringLength() const
{
	return m_eType == KV3_TYPE_STRING ? m_String.m_nLength : 0;
}

const uint8_t *KeyValues3::GetBinaryBlob() const
{
	return m_eType == KV3_TYPE_BINARY_BLOB ? reinterpret_cast<const uint8_t *>( m_Blob.m_pBytes ) : nullptr;
}

size_t KeyValues3::GetBinaryBlobSize() const
{
	return m_eType == KV3_TYPE_BINARY_BLOB ? m_Blob.m_nSize : 0;
}

void KeyValues3::SetBool( bool bValue )
{
	FreeData();
	m_eType = KV3_TYPE_BOOL;
	m_bValue = bValue;
}

void KeyValues3::SetInt( int32_t nValue )
{
	FreeData();
	m_eType = KV3_TYPE_INT;
	m_eSubType = KV3_SUBTYPE_INT32;
	m_nValue = nValue;
}

void KeyValues3::SetInt64( int64_t nValue )
{
	FreeData();
	m_eType = KV3_TYPE_INT;
	m_eSubType = KV3_SUBTYPE_INT64;
	m_nValue = nValue;
}

void KeyValues3::SetUInt( uint32_t nValue )
{
	FreeData();
	m_eType = KV3_TYPE_UINT;
	m_eSubType = KV3_SUBTYPE_UINT32;
	m_uValue = nValue;
}

void KeyValues3::SetUInt64( uint64_t nValue )
{
	FreeData();
	m_eType = KV3_TYPE_UINT;
	m_eSubType = KV3_SUBTYPE_UINT64;
	m_uValue = nValue;
}

void KeyValues3::SetFloat( float flValue )
{
	FreeData();
	m_eType = KV3_TYPE_DOUBLE;
	m_eSubType = KV3_SUBTYPE_FLOAT32;
	m_flValue = flValue;
}

void KeyValues3::SetDouble( double flValue )
{
	FreeData();
	m_eType = KV3_TYPE_DOUBLE;
	m_eSubType = KV3_SUBTYPE_FLOAT64;
	m_flValue = flValue;
}

void KeyValues3::SetString( const char *pString, KV3SubType_t eSubType )
{
	SetString( pString, pString ? strlen( pString ) : 0, eSubType );
}

void KeyValues3::SetString( const char *pString, size_t nLength, KV3SubType_t eSubType )
{
	// The text may be this value's own, so it is copied before the old one is freed.
	KV3PendingValue_t pending {};
	pending.m_eType = KV3_TYPE_STRING;
	pending.m_eSubType = eSubType;
	pending.m_Bytes.m_pData = pString;
	pending.m_Bytes.m_nSize = pString ? nLength : 0;
	KeyValues3 temp;
	CKV3Builder::Adopt( &temp, pending );
	ReplaceWith( std::move( temp ) );
}

void KeyValues3::SetBinaryBlob( const uint8_t *pData, size_t nSize )
{
	KV3PendingValue_t pending {};
	pending.m_eType = KV3_TYPE_BINARY_BLOB;
	pending.m_Bytes.m_pData = reinterpret_cast<const char *>( pData );
	pending.m_Bytes.m_nSize = pData ? nSize : 0;
	KeyValues3 temp;
	CKV3Builder::Adopt( &temp, pending );
	ReplaceWith( std::move( temp ) );
}

int KeyValues3::GetMemberCount() const
{
	return m_eType == KV3_TYPE_TABLE ? m_pTable->Count() : 0;
}

const char *KeyValues3::GetMemberName( int nIndex ) const
{
	if ( m_eType != KV3_TYPE_TABLE || nIndex < 0 || nIndex >= m_pTable->Count() )
		return nullptr;
	return m_pTable->Member( nIndex ).m_pName;
}

CKV3MemberName KeyValues3::GetMemberNameEx( int nIndex ) const
{
	if ( m_eType != KV3_TYPE_TABLE || nIndex < 0 || nIndex >= m_pTable->Count() )
		return CKV3MemberName();
	const KV3Member_t &member = m_pTable->Member( nIndex );
	return CKV3MemberName( member.m_nHash, member.m_pName, member.m_nNameLength );
}

KeyValues3 *KeyValues3::GetMember( int nIndex )
{
	if ( m_eType != KV3_TYPE_TABLE || nIndex < 0 || nIndex >= m_pTable->Count() )
		return nullptr;
	return m_pTable->Member( nIndex ).m_pValue;
}

const KeyValues3 *KeyValues3::GetMember( int nIndex ) const
{
	return const_cast<KeyValues3 *>( this )->GetMember( nIndex );
}

int KeyValues3::FindMemberIndex( const CKV3MemberName &name ) const
{
	return m_eType == KV3_TYPE_TABLE ? m_pTable->Find( name ) : -1;
}

KeyValues3 *KeyValues3::FindMember( const CKV3MemberName &name )
{
	return GetMember( FindMemberIndex( name ) );
}

const KeyValues3 *KeyValues3::FindMember( const CKV3MemberName &name ) const
{
	return GetMember( FindMemberIndex( name ) );
}

KeyValues3 *KeyValues3::FindOrCreateMember( const CKV3MemberName &name, bool *pCreated )
{
	CKV3Table *pTable = EnsureTable();
	int nIndex = pTable->Find( name );
	if ( pCreated )
		*pCreated = nIndex < 0;
	return nIndex >= 0 ? pTable->Member( nIndex ).m_pValue : pTable->Append( name );
}

bool KeyValues3::RemoveMember( const CKV3MemberName &name )
{
	int nIndex = FindMemberIndex( name );
	if ( nIndex < 0 )
		return false;
	m_pTable->Remove( nIndex );
	return true;
}

void KeyValues3::RemoveMember( int nIndex )
{
	if ( m_eType == KV3_TYPE_TABLE )
		m_pTable->Remove( nIndex );
}

void KeyValues3::RemoveAllMembers()
{
	if ( m_eType == KV3_TYPE_TABLE )
		m_pTable->RemoveAll();
}

bool KeyValues3::RenameMember( const CKV3MemberName &oldName, const CKV3MemberName &newName )
{
	int nIndex = FindMemberIndex( oldName );
	if ( nIndex < 0 )
		return false;
	int nTaken = m_pTable->Find( newName );
	if ( nTaken >= 0 && nTaken != nIndex )
		return false;
	m_pTable->Rename( nIndex, newName );
	return true;
}

bool KeyValues3::GetMemberBool( const CKV3MemberName &name, bool bDefault ) const
{
	const KeyValues3 *pMember = FindMember( name );
	return pMember ? pMember->GetBool( bDefault ) : bDefault;
}

int32_t KeyValues3::GetMemberInt( const CKV3MemberName &name, int32_t nDefault ) const
{
	const KeyValues3 *pMember = FindMember( name );
	return pMember ? pMember->GetInt( nDefault ) : nDefault;
}

int64_t KeyValues3::GetMemberInt64( const CKV3MemberName &name, int64_t nDefault ) const
{
	const KeyValues3 *pMember = FindMember( name );
	return pMember ? pMember->GetInt64( nDefault ) : nDefault;
}

uint32_t KeyValues3::GetMemberUInt( const CKV3MemberName &name, uint32_t nDefault ) const
{
	const KeyValues3 *pMember = FindMember( name );
	return pMember ? pMember->GetUInt( nDefault ) : nDefault;
}

uint64_t KeyValues3::GetMemberUInt64( const CKV3MemberName &name, uint64_t nDefault ) const
{
	const KeyValues3 *pMember = FindMember( name );
	return pMember ? pMember->GetUInt64( nDefault ) : nDefault;
}

float KeyValues3::GetMemberFloat( const CKV3MemberName &name, float flDefault ) const
{
	const KeyValues3 *pMember = FindMember( name );
	return pMember ? pMember->GetFloat( flDefault ) : flDefault;
}

double KeyValues3::GetMemberDouble( const CKV3MemberName &name, double flDefault ) const
{
	const KeyValues3 *pMember = FindMember( name );
	return pMember ? pMember->GetDouble( flDefault ) : flDefault;
}

const char *KeyValues3::GetMemberString( const CKV3MemberName &name, const char *pDefault ) const
{
	const KeyValues3 *pMember = FindMember( name );
	return pMember ? pMember->GetString( pDefault ) : pDefault;
}

KeyValues3 *KeyValues3::SetMemberBool( const CKV3MemberName &name, bool bValue )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetBool( bValue );
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberInt( const CKV3MemberName &name, int32_t nValue )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetInt( nValue );
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberInt64( const CKV3MemberName &name, int64_t nValue )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetInt64( nValue );
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberUInt( const CKV3MemberName &name, uint32_t nValue )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetUInt( nValue );
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberUInt64( const CKV3MemberName &name, uint64_t nValue )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetUInt64( nValue );
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberFloat( const CKV3MemberName &name, float flValue )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetFloat( flValue );
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberDouble( const CKV3MemberName &name, double flValue )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetDouble( flValue );
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberString( const CKV3MemberName &name, const char *pValue, KV3SubType_t eSubType )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetString( pValue, eSubType );
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberNull( const CKV3MemberName &name )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetToNull();
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberEmptyTable( const CKV3MemberName &name )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetToEmptyTable();
	return pMember;
}

KeyValues3 *KeyValues3::SetMemberEmptyArray( const CKV3MemberName &name )
{
	KeyValues3 *pMember = FindOrCreateMember( name );
	pMember->SetToEmptyArray();
	return pMember;
}

int KeyValues3::GetArrayElementCount() const
{
	return m_eType == KV3_TYPE_ARRAY ? m_pArray->Count() : 0;
}

KeyValues3 *KeyValues3::GetArrayElement( int nIndex )
{
	if ( m_eType != KV3_TYPE_ARRAY || nIndex < 0 || nIndex >= m_pArray->Count() )
		return nullptr;
	return m_pArray->Element( nIndex );
}

const KeyValues3 *KeyValues3::GetArrayElement( int nIndex ) const
{
	return const_cast<KeyValues3 *>( this )->GetArrayElement( nIndex );
}

KeyValues3 *KeyValues3::ArrayAddToTail()
{
	CKV3Array *pArray = EnsureArray();
	return pArray->InsertBefore( pArray->Count() );
}

KeyValues3 *KeyValues3::ArrayInsertBefore( int nIndex )
{
	return EnsureArray()->InsertBefore( nIndex );
}

void KeyValues3::ArrayRemoveElement( int nIndex )
{
	if ( m_eType == KV3_TYPE_ARRAY )
		m_pArray->Remove( nIndex );
}

void KeyValues3::ArrayRemoveAll()
{
	if ( m_eType == KV3_TYPE_ARRAY )
		m_pArray->RemoveAll();
}

void KeyValues3::ArrayReserve( int nCount )
{
	EnsureArray()->Reserve( nCount );
}

void KeyValues3::Walk( WalkFn_t fnVisit, void *pContext ) const
{
	WalkValue( this, 0, fnVisit, pContext );
}
