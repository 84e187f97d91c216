#include "pulse_runtime_lib/graph/pulsegraphrecords.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace
{
// A register number as a table entry holds it: any KV3 number or a decimal string; any
// other kind means register 0. False for a number no register can have.
bool ReadRegister( const KeyValues3 *pValue, int *pRegister )
{
	*pRegister = 0;
	switch ( pValue->GetType() )
	{
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT:
	{
		int64_t nValue = pValue->GetType() == KV3_TYPE_UINT && pValue->GetUInt64() > uint64_t( INT_MAX ) ? -1 : pValue->GetInt64();
		if ( nValue < 0 || nValue > 0xFFFF )
			return false;
		*pRegister = int( nValue );
		return true;
	}
	case KV3_TYPE_DOUBLE:
	{
		double flValue = pValue->GetDouble();
		if ( !( flValue >= 0.0 && flValue <= 65535.0 ) || std::floor( flValue ) != flValue )
			return false;
		*pRegister = int( flValue );
		return true;
	}
	case KV3_TYPE_STRING:
	{
		const char *pText = pValue->GetString();
		char *pEnd = nullptr;
		errno = 0;
		long nValue = strtol( pText, &pEnd, 10 );
		if ( !*pText || *pEnd || errno != 0 || nValue < 0 || nValue > 0xFFFF )
			return false;
		*pRegister = int( nValue );
		return true;
	}
	default: return true;
	}
}

bool BindTable( const KeyValues3 &table, const char *pWhat, const std::vector<PulseSymbol_t> *pMovable, std::vector<PulseRegisterMapEntry_t> *pEntries, CUtlString *pError )
{
	pEntries->clear();
	if ( table.IsNull() )
		return true;
	if ( !table.IsTable() )
	{
		pError->Format( "%s is a '%s', not a table", pWhat, table.GetTypeAsString() );
		return false;
	}
	for ( int i = 0; i < table.GetMemberCount(); ++i )
	{
		PulseRegisterMapEntry_t entry;
		entry.m_Name = PulseSymbol_t( table.GetMemberName( i ) );
		if ( !ReadRegister( table.GetMember( i ), &entry.m_nRegister ) )
		{
			pError->Format( "%s: '%s' names no register", pWhat, table.GetMemberName( i ) );
			return false;
		}
		entry.m_bMovable = false;
		if ( pMovable )
		{
			for ( const PulseSymbol_t &name : *pMovable )
				entry.m_bMovable = entry.m_bMovable || name == entry.m_Name;
		}
		pEntries->push_back( entry );
	}
	return true;
}
} // namespace

bool PulseRegisterMap_t::Bind( CUtlString *pError )
{
	return BindTable( m_Inparams, "m_Inparams", &m_InparamsWhichCanBeMoved, &m_BoundIn, pError ) &&
		BindTable( m_Outparams, "m_Outparams", nullptr, &m_BoundOut, pError );
}

void PulseRegisterMap_t::AppendText( CUtlString *pText ) const
{
	// Before binding the lists are empty: read the tables as they stand.
	std::vector<PulseRegisterMapEntry_t> in = m_BoundIn, out = m_BoundOut;
	CUtlString ignored;
	if ( in.empty() && m_Inparams.GetMemberCount() > 0 )
		BindTable( m_Inparams, "m_Inparams", &m_InparamsWhichCanBeMoved, &in, &ignored );
	if ( out.empty() && m_Outparams.GetMemberCount() > 0 )
		BindTable( m_Outparams, "m_Outparams", nullptr, &out, &ignored );

	auto appendList = [ pText ]( const std::vector<PulseRegisterMapEntry_t> &entries, bool bInputs ) {
		pText->Append( '{' );
		for ( size_t i = 0; i < entries.size(); ++i )
		{
			pText->Append( i == 0 ? " " : ", " );
			if ( bInputs )
				pText->AppendFormat( "R%d%s%s", entries[ i ].m_nRegister, entries[ i ].m_bMovable ? "*MOVE=>" : "->", entries[ i ].m_Name.String() );
			else
				pText->AppendFormat( "%s->R%d", entries[ i ].m_Name.String(), entries[ i ].m_nRegister );
		}
		if ( !entries.empty() )
			pText->Append( ' ' );
		pText->Append( '}' );
	};
	pText->Append( " in " );
	appendList( in, true );
	pText->Append( " out " );
	appendList( out, false );
}

int PGDInstruction_t::KV3IsMemberAtDefault( const char *pszMember, const PGDInstruction_t & ) const
{
	return strcmp( pszMember, "m_nCode" ) == 0 ? 0 : -1;
}

void CPulse_OutflowConnection::AppendText( CUtlString *pText ) const
{
	if ( IsConnected() )
		pText->AppendFormat( "JumpOrLeap( C%d:I%d )", m_nDestChunk, m_nInstruction );
	else
		pText->Append( "Terminate()" );
}
