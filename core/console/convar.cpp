#include "core/console/convar.h"

#include "core/text/strtools.h"

#include <charconv>
#include <climits>
#include <utility>

ConVar::ConVar( const char *pName, const char *pDefault, int nFlags, const char *pHelp )
	: ConVar( pName, pDefault, nFlags, pHelp, false, 0.0f, false, 0.0f )
{
}

ConVar::ConVar( const char *pName, const char *pDefault, int nFlags, const char *pHelp, bool bMin, float flMin, bool bMax, float flMax,
	ChangeCallbackFn_t fnCallback )
	: ConCommandBase( pName, pHelp, nFlags ), m_pDefault( pDefault ? pDefault : "" ), m_bHasMin( bMin ), m_bHasMax( bMax ), m_flMin( flMin ), m_flMax( flMax )
{
	SetText( m_pDefault );
	if ( fnCallback )
		AddChangeCallback( std::move( fnCallback ) );
	Register();
}

ConVar::~ConVar()
{
	Unregister();
}

static std::string FloatText( float flValue )
{
	char text[ 32 ];
	std::to_chars_result result = std::to_chars( text, text + sizeof( text ), flValue );
	return std::string( text, result.ptr );
}

float ConVar::Clamp( double flValue, bool *pClamped ) const
{
	*pClamped = false;
	if ( m_bHasMin && flValue < m_flMin )
	{
		*pClamped = true;
		return m_flMin;
	}
	if ( m_bHasMax && flValue > m_flMax )
	{
		*pClamped = true;
		return m_flMax;
	}
	return float( flValue );
}

void ConVar::SetText( std::string strValue )
{
	double flNumber = 0.0;
	int64_t nInteger = 0;
	bool bInteger = V_StringToInt64( strValue.c_str(), &nInteger );
	if ( bInteger )
		flNumber = double( nInteger );
	else if ( V_stricmp_fast( strValue.c_str(), "true" ) == 0 )
		flNumber = 1.0;
	else if ( !V_StringToDouble( strValue.c_str(), &flNumber ) )
		flNumber = 0.0; // "false" and any other text

	bool bClamped = false;
	float flValue = Clamp( flNumber, &bClamped );
	if ( bClamped )
	{
		strValue = FloatText( flValue );
		bInteger = false;
	}

	// Converted with saturation: a float out of int range (or NaN) must not be cast as is.
	int nValue;
	if ( bInteger )
		nValue = nInteger > INT_MAX ? INT_MAX : ( nInteger < INT_MIN ? INT_MIN : int( nInteger ) );
	else if ( flValue != flValue )
		nValue = 0;
	else if ( flValue >= float( INT_MAX ) )
		nValue = INT_MAX;
	else if ( flValue <= float( INT_MIN ) )
		nValue = INT_MIN;
	else
		nValue = int( flValue );

	m_strValue = std::move( strValue );
	m_flValue.store( flValue, std::memory_order_relaxed );
	m_nValue.store( nValue, std::memory_order_relaxed );
}

void ConVar::SetValue( const char *pValue )
{
	std::string strNew = pValue ? pValue : "";
	std::string strOld = m_strValue;
	float flOld = GetFloat();
	SetText( std::move( strNew ) );
	if ( m_strValue == strOld || m_bInCallback )
		return;
	// A callback that sets this variable again changes it without a second round.
	m_bInCallback = true;
	std::vector<std::pair<int, ChangeCallbackFn_t>> callbacks = m_Callbacks;
	for ( auto &entry : callbacks )
		entry.second( this, strOld.c_str(), flOld );
	m_bInCallback = false;
}

void ConVar::SetValue( int nValue )
{
	char text[ 16 ];
	V_snprintf( text, sizeof( text ), "%d", nValue );
	SetValue( text );
}

void ConVar::SetValue( float flValue )
{
	SetValue( FloatText( flValue ).c_str() );
}

bool ConVar::GetMin( float *pMin ) const
{
	if ( pMin )
		*pMin = m_flMin;
	return m_bHasMin;
}

bool ConVar::GetMax( float *pMax ) const
{
	if ( pMax )
		*pMax = m_flMax;
	return m_bHasMax;
}

int ConVar::AddChangeCallback( ChangeCallbackFn_t fnCallback )
{
	if ( !fnCallback )
		return 0;
	int nId = m_nNextCallbackId++;
	m_Callbacks.emplace_back( nId, std::move( fnCallback ) );
	return nId;
}

void ConVar::RemoveChangeCallback( int nId )
{
	for ( size_t i = 0; i < m_Callbacks.size(); ++i )
	{
		if ( m_Callbacks[ i ].first == nId )
		{
			m_Callbacks.erase( m_Callbacks.begin() + long( i ) );
			return;
		}
	}
}
