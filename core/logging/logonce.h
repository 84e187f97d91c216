#pragma once
// Messages about a condition that can repeat every frame fire once per process.

#include "core/logging/logging.h"

#include <atomic>

// Logs the first time it is reached, per call site.
#define Log_Once( channel, severity, ... )                                  \
	do                                                                      \
	{                                                                       \
		static std::atomic<bool> s_bLogOnceFired{ false };                  \
		if ( !s_bLogOnceFired.exchange( true, std::memory_order_relaxed ) ) \
			LoggingSystem_Log( channel, severity, __VA_ARGS__ );            \
	} while ( 0 )

// Logs the first time a key is seen on the channel, wherever it is called from; the key
// is usually the name of what failed. Answers whether it logged.
bool LoggingSystem_LogOnceByKey( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity, const char *pKey, const char *pFormat, ... ) __attribute__( ( format( printf, 4, 5 ) ) );
