#pragma once
// Logging through named channels. Each channel has a minimum severity; messages below
// it are dropped before formatting. All functions are thread-safe and may be called
// during static initialisation.

#include "core/logging/logginglistener.h"
#include "core/logging/loggingseverity.h"

#include <cstdarg>

// Channels that always exist, with fixed ids so they can be used before any
// registration runs.
constexpr LoggingChannelID_t LOG_GENERAL = 0; // "General"
constexpr LoggingChannelID_t LOG_ZOL = 1;     // "Zol", the editor
constexpr LoggingChannelID_t LOG_PULSE = 2;   // "Pulse", graph compile and run
constexpr LoggingChannelID_t LOG_CONSOLE = 3; // "Console", console command output

// Registers a channel, or answers the existing one of that name (ignoring case).
LoggingChannelID_t LoggingSystem_RegisterLoggingChannel( const char *pName, LoggingSeverity_t eMinimumSeverity = LS_MESSAGE );
// INVALID_LOGGING_CHANNEL_ID when no channel has that name.
LoggingChannelID_t LoggingSystem_FindChannel( const char *pName );
// The channel's name, or "" for an invalid id.
const char *LoggingSystem_GetChannelName( LoggingChannelID_t nChannel );
int LoggingSystem_GetChannelCount();

bool LoggingSystem_IsChannelEnabled( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity );
void LoggingSystem_SetChannelMinimumSeverity( LoggingChannelID_t nChannel, LoggingSeverity_t eMinimumSeverity );
LoggingSeverity_t LoggingSystem_GetChannelMinimumSeverity( LoggingChannelID_t nChannel );

// Formats and hands the text to every listener, if the channel takes that severity.
void LoggingSystem_Log( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity, const char *pFormat, ... ) __attribute__( ( format( printf, 3, 4 ) ) );
void LoggingSystem_LogV( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity, const char *pFormat, va_list args );
// Hands already formatted text on as it is.
void LoggingSystem_LogDirect( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity, const char *pMessage );

// Listeners receive messages in the order they were added. The listener must stay
// alive until it is removed.
void LoggingSystem_AddListener( ILoggingListener *pListener );
void LoggingSystem_RemoveListener( ILoggingListener *pListener );
// The stderr listener that is installed at start; remove it to silence stderr.
ILoggingListener *LoggingSystem_GetDefaultListener();

// Messages and warnings on the general channel.
void Msg( const char *pFormat, ... ) __attribute__( ( format( printf, 1, 2 ) ) );
void Warning( const char *pFormat, ... ) __attribute__( ( format( printf, 1, 2 ) ) );
// Detailed messages on the general channel (shown when it is set to LS_DETAILED).
void DevMsg( const char *pFormat, ... ) __attribute__( ( format( printf, 1, 2 ) ) );

#define Log_Msg( channel, ... ) LoggingSystem_Log( channel, LS_MESSAGE, __VA_ARGS__ )
#define Log_Warning( channel, ... ) LoggingSystem_Log( channel, LS_WARNING, __VA_ARGS__ )
#define Log_Error( channel, ... ) LoggingSystem_Log( channel, LS_ERROR, __VA_ARGS__ )
