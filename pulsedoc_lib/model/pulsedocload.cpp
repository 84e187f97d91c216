#include "pulsedoc_lib/model/pulsedocload.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsedocnode.h"

CPulseDocKeyReader::CPulseDocKeyReader( const KeyValues3 &table, CPulseDocNode *pNode, CPulseDocLoadContext *pContext, const char *pPrefix )
	: m_Table( table ), m_pNode( pNode ), m_pContext( pContext ), m_Taken( size_t( table.IsTable() ? table.GetMemberCount() : 0 ), false ), m_Prefix( pPrefix )
{
}

const KeyValues3 *CPulseDocKeyReader::Take( const char *pKey )
{
	if ( !m_Table.IsTable() )
		return nullptr;
	int nIndex = m_Table.FindMemberIndex( CKV3MemberName( pKey ) );
	if ( nIndex < 0 )
		return nullptr;
	m_Taken[ size_t( nIndex ) ] = true;
	return m_Table.GetMember( nIndex );
}

void CPulseDocKeyReader::Warn( const char *pFormat, ... )
{
	char buffer[ 1024 ];
	va_list args;
	va_start( args, pFormat );
	vsnprintf( buffer, sizeof( buffer ), pFormat, args );
	va_end( args );
	if ( m_pContext && m_pContext->m_pMessages )
		m_pContext->m_pMessages->Warning( m_pNode, "%s%s%s", m_Prefix.Get(), m_Prefix.IsEmpty() ? "" : ".", buffer );
}

void CPulseDocKeyReader::WrongKind( const char *pKey, const KeyValues3 &value, const char *pWanted )
{
	Warn( "%s: a '%s' where %s belongs (left at its default)", pKey, value.GetTypeAsString(), pWanted );
}

bool CPulseDocKeyReader::TakeInt( const char *pKey, int32_t *pValue )
{
	const KeyValues3 *pKV = Take( pKey );
	if ( !pKV )
		return false;
	if ( pKV->GetType() == KV3_TYPE_INT || pKV->GetType() == KV3_TYPE_UINT )
	{
		int64_t n = pKV->GetType() == KV3_TYPE_INT ? pKV->GetInt64() : int64_t( std::min<uint64_t>( pKV->GetUInt64(), uint64_t( INT64_MAX ) ) );
		if ( n >= INT32_MIN && n <= INT32_MAX )
		{
			*pValue = int32_t( n );
			return true;
		}
		Warn( "%s: %lld is out of range (left at its default)", pKey, (long long)n );
		return false;
	}
	WrongKind( pKey, *pKV, "an integer" );
	return false;
}

bool CPulseDocKeyReader::TakeBool( const char *pKey, bool *pValue )
{
	const KeyValues3 *pKV = Take( pKey );
	if ( !pKV )
		return false;
	if ( pKV->GetType() == KV3_TYPE_BOOL || pKV->GetType() == KV3_TYPE_INT || pKV->GetType() == KV3_TYPE_UINT )
	{
		*pValue = pKV->GetBool();
		return true;
	}
	WrongKind( pKey, *pKV, "a bool" );
	return false;
}

bool CPulseDocKeyReader::TakeFloat( const char *pKey, float *pValue )
{
	const KeyValues3 *pKV = Take( pKey );
	if ( !pKV )
		return false;
	if ( pKV->IsNumber() )
	{
		*pValue = pKV->GetFloat();
		return true;
	}
	WrongKind( pKey, *pKV, "a number" );
	return false;
}

bool CPulseDocKeyReader::TakeString( const char *pKey, CUtlString *pValue )
{
	const KeyValues3 *pKV = Take( pKey );
	if ( !pKV )
		return false;
	if ( pKV->IsString() )
	{
		pValue->Set( pKV->GetString() );
		return true;
	}
	WrongKind( pKey, *pKV, "a string" );
	return false;
}

bool CPulseDocKeyReader::TakeFullType( const char *pKey, CPulseValueFullType *pValue )
{
	const KeyValues3 *pKV = Take( pKey );
	if ( !pKV )
		return false;
	CPulseValueFullType type;
	if ( pKV->IsString() && type.FromString( pKV->GetString() ) )
	{
		*pValue = type;
		return true;
	}
	if ( pKV->IsString() )
		Warn( "%s: '%s' is no value type (left at its default)", pKey, pKV->GetString() );
	else
		WrongKind( pKey, *pKV, "a value type" );
	return false;
}

bool CPulseDocKeyReader::TakeEnum( const char *pKey, const char *const *pNames, int nCount, int *pValue )
{
	const KeyValues3 *pKV = Take( pKey );
	if ( !pKV )
		return false;
	if ( pKV->IsString() )
	{
		for ( int i = 0; i < nCount; ++i )
		{
			if ( strcmp( pNames[ i ], pKV->GetString() ) == 0 )
			{
				*pValue = i;
				return true;
			}
		}
		CUtlString names;
		for ( int i = 0; i < nCount; ++i )
			names.AppendFormat( "%s%s", i ? ", " : "", pNames[ i ] );
		Warn( "%s: '%s' is none of %s (left at its default)", pKey, pKV->GetString(), names.Get() );
		return false;
	}
	if ( pKV->GetType() == KV3_TYPE_INT || pKV->GetType() == KV3_TYPE_UINT )
	{
		int64_t n = pKV->GetInt64();
		if ( n >= 0 && n < nCount )
		{
			*pValue = int( n );
			return true;
		}
		Warn( "%s: %lld is out of range (left at its default)", pKey, (long long)n );
		return false;
	}
	WrongKind( pKey, *pKV, "a name" );
	return false;
}

const KeyValues3 *CPulseDocKeyReader::TakeTable( const char *pKey )
{
	const KeyValues3 *pKV = Take( pKey );
	if ( pKV && !pKV->IsTable() )
	{
		Warn( "%s: Class data is a '%s', not a table", pKey, pKV->GetTypeAsString() );
		return nullptr;
	}
	return pKV;
}

const KeyValues3 *CPulseDocKeyReader::TakeArray( const char *pKey )
{
	const KeyValues3 *pKV = Take( pKey );
	if ( pKV && !pKV->IsArray() )
	{
		WrongKind( pKey, *pKV, "an array" );
		return nullptr;
	}
	return pKV;
}

void CPulseDocKeyReader::KeepRest( KeyValues3 *pExtra ) const
{
	pExtra->SetToNull();
	for ( size_t i = 0; i < m_Taken.size(); ++i )
	{
		if ( m_Taken[ i ] )
			continue;
		if ( !pExtra->IsTable() )
			pExtra->SetToEmptyTable();
		pExtra->FindOrCreateMember( m_Table.GetMemberNameEx( int( i ) ) )->CopyFrom( *m_Table.GetMember( int( i ) ) );
	}
}
