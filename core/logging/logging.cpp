#include "core/logging/logging.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <mutex>
#include <string>
#include <strings.h>
#include <vector>

namespace
{

constexpr int MAX_LOGGING_CHANNELS = 256;

struct LoggingChannel_t
{
	std::string m_strName;
	std::atomic<int> m_nMinimumSeverity{ LS_MESSAGE };
};

// Channels live in a fixed array so readers can index them without the lock: a slot is
// complete before the count that publishes it grows.
class CLoggingSystem
{
public:
	CLoggingSystem()
	{
		AddChannel( "General", LS_MESSAGE );
		AddChannel( "Zol", LS_MESSAGE );
		AddChannel( "Pulse", LS_MESSAGE );
		AddChannel( "Console", LS_MESSAGE );
		m_Listeners.push_back( &m_DefaultListener );
	}

	LoggingChannelID_t Register( const char *pName, LoggingSeverity_t eMinimum )
	{
		std::lock_guard<std::recursive_mutex> lock( m_Mutex );
		LoggingChannelID_t nExisting = Find( pName );
		if ( nExisting != INVALID_LOGGING_CHANNEL_ID )
			return nExisting;
		return AddChannel( pName, eMinimum );
	}

	LoggingChannelID_t Find( const char *pName ) const
	{
		if ( !pName )
			return INVALID_LOGGING_CHANNEL_ID;
		int nCount = m_nChannelCount.load( std::memory_order_acquire );
		for ( int i = 0; i < nCount; ++i )
		{
			if ( strcasecmp( m_Channels[ i ].m_strName.c_str(), pName ) == 0 )
				return i;
		}
		return INVALID_LOGGING_CHANNEL_ID;
	}

	LoggingChannel_t *Channel( LoggingChannelID_t nChannel )
	{
		if ( nChannel < 0 || nChannel >= m_nChannelCount.load( std::memory_order_acquire ) )
			return nullptr;
		return &m_Channels[ nChannel ];
	}

	int ChannelCount() const { return m_nChannelCount.load( std::memory_order_acquire ); }

	void Dispatch( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity, const char *pMessage )
	{
		LoggingContext_t context{ nChannel, m_Channels[ nChannel ].m_strName.c_str(), eSeverity };
		// Recursive, so a listener that logs (or asserts) doesn't deadlock its own thread.
		std::lock_guard<std::recursive_mutex> lock( m_Mutex );
		// A listener may remove itself while being called: walk a copy.
		std::vector<ILoggingListener *> listeners = m_Listeners;
		for ( ILoggingListener *pListener : listeners )
			pListener->Log( context, pMessage );
	}

	void AddListener( ILoggingListener *pListener )
	{
		std::lock_guard<std::recursive_mutex> lock( m_Mutex );
		if ( pListener && std::find( m_Listeners.begin(), m_Listeners.end(), pListener ) == m_Listeners.end() )
			m_Listeners.push_back( pListener );
	}

	void RemoveListener( ILoggingListener *pListener )
	{
		std::lock_guard<std::recursive_mutex> lock( m_Mutex );
		m_Listeners.erase( std::remove( m_Listeners.begin(), m_Listeners.end(), pListener ), m_Listeners.end() );
	}

	ILoggingListener *DefaultListener() { return &m_DefaultListener; }

private:
	LoggingChannelID_t AddChannel( const char *pName, LoggingSeverity_t eMinimum )
	{
		int nIndex = m_nChannelCount.load( std::memory_order_relaxed );
		if ( nIndex >= MAX_LOGGING_CHANNELS )
			return INVALID_LOGGING_CHANNEL_ID;
		m_Channels[ nIndex ].m_strName = pName ? pName : "";
		m_Channels[ nIndex ].m_nMinimumSeverity.store( eMinimum, std::memory_order_relaxed );
		m_nChannelCount.store( nIndex + 1, std::memory_order_release );
		return nIndex;
	}

	std::recursive_mutex m_Mutex;
	std::array<LoggingChannel_t, MAX_LOGGING_CHANNELS> m_Channels;
	std::atomic<int> m_nChannelCount{ 0 };
	std::vector<ILoggingListener *> m_Listeners;
	CStderrLoggingListener m_DefaultListener;
};

// Never destroyed: static destructors elsewhere may still log on their way out.
CLoggingSystem &LoggingSystem()
{
	static CLoggingSystem *s_pSystem = new CLoggingSystem;
	return *s_pSystem;
}

} // namespace

const char *LoggingSeverityName( LoggingSeverity_t eSeverity )
{
	switch ( eSeverity )
	{
	case LS_DETAILED: return "Detailed";
	case LS_MESSAGE: return "Message";
	case LS_WARNING: return "Warning";
	case LS_ASSERT: return "Assert";
	case LS_ERROR: return "Error";
	default: return "Unknown";
	}
}

void CStderrLoggingListener::Log( const LoggingContext_t &context, const char *pMessage )
{
	if ( context.m_eSeverity >= LS_WARNING && context.m_nChannel != LOG_GENERAL )
		fprintf( stderr, "[%s] %s", context.m_pChannelName, pMessage );
	else
		fputs( pMessage, stderr );
}

LoggingChannelID_t LoggingSystem_RegisterLoggingChannel( const char *pName, LoggingSeverity_t eMinimumSeverity )
{
	return LoggingSystem().Register( pName, eMinimumSeverity );
}

LoggingChannelID_t LoggingSystem_FindChannel( const char *pName )
{
	return LoggingSystem().Find( pName );
}

const char *LoggingSystem_GetChannelName( LoggingChannelID_t nChannel )
{
	LoggingChannel_t *pChannel = LoggingSystem().Channel( nChannel );
	return pChannel ? pChannel->m_strName.c_str() : "";
}

int LoggingSystem_GetChannelCount()
{
	return LoggingSystem().ChannelCount();
}

bool LoggingSystem_IsChannelEnabled( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity )
{
	LoggingChannel_t *pChannel = LoggingSystem().Channel( nChannel );
	return pChannel && eSeverity >= pChannel->m_nMinimumSeverity.load( std::memory_order_relaxed );
}

void LoggingSystem_SetChannelMinimumSeverity( LoggingChannelID_t nChannel, LoggingSeverity_t eMinimumSeverity )
{
	if ( LoggingChannel_t *pChannel = LoggingSystem().Channel( nChannel ) )
		pChannel->m_nMinimumSeverity.store( eMinimumSeverity, std::memory_order_relaxed );
}

LoggingSeverity_t LoggingSystem_GetChannelMinimumSeverity( LoggingChannelID_t nChannel )
{
	LoggingChannel_t *pChannel = LoggingSystem().Channel( nChannel );
	return pChannel ? LoggingSeverity_t( pChannel->m_nMinimumSeverity.load( std::memory_order_relaxed ) ) : LS_HIGHEST_SEVERITY;
}

void LoggingSystem_LogDirect( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity, const char *pMessage )
{
	if ( !LoggingSystem_IsChannelEnabled( nChannel, eSeverity ) )
		return;
	LoggingSystem().Dispatch( nChannel, eSeverity, pMessage ? pMessage : "" );
}

void LoggingSystem_LogV( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity, const char *pFormat, va_list args )
{
	if ( !LoggingSystem_IsChannelEnabled( nChannel, eSeverity ) )
		return;
	char stackBuffer[ 1024 ];
	va_list copy;
	va_copy( copy, args );
	int nLength = vsnprintf( stackBuffer, sizeof( stackBuffer ), pFormat, copy );
	va_end( copy );
	if ( nLength < 0 )
		return;
	if ( size_t( nLength ) < sizeof( stackBuffer ) )
	{
		LoggingSystem().Dispatch( nChannel, eSeverity, stackBuffer );
		return;
	}
	std::string big( size_t( nLength ) + 1, '\0' );
	vsnprintf( big.data(), big.size(), pFormat, args );
	LoggingSystem().Dispatch( nChannel, eSeverity, big.c_str() );
}

void LoggingSystem_Log( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity, const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	LoggingSystem_LogV( nChannel, eSeverity, pFormat, args );
	va_end( args );
}

void LoggingSystem_AddListener( ILoggingListener *pListener )
{
	LoggingSystem().AddListener( pListener );
}

void LoggingSystem_RemoveListener( ILoggingListener *pListener )
{
	LoggingSystem().RemoveListener( pListener );
}

ILoggingListener *LoggingSystem_GetDefaultListener()
{
	return LoggingSystem().DefaultListener();
}

void Msg( const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	LoggingSystem_LogV( LOG_GENERAL, LS_MESSAGE, pFormat, args );
	va_end( args );
}

void Warning( const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	LoggingSystem_LogV( LOG_GENERAL, LS_WARNING, pFormat, args );
	va_end( args );
}

void DevMsg( const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	LoggingSystem_LogV( LOG_GENERAL, LS_DETAILED, pFormat, args );
	va_end( args );
}
