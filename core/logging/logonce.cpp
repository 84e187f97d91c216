#include "core/logging/logonce.h"

#include <mutex>
#include <set>
#include <string>
#include <utility>

bool LoggingSystem_LogOnceByKey( LoggingChannelID_t nChannel, LoggingSeverity_t eSeverity, const char *pKey, const char *pFormat, ... )
{
	static std::mutex s_Mutex;
	static std::set<std::pair<LoggingChannelID_t, std::string>> s_Seen;
	{
		std::lock_guard<std::mutex> lock( s_Mutex );
		if ( !s_Seen.emplace( nChannel, pKey ? pKey : "" ).second )
			return false;
	}
	va_list args;
	va_start( args, pFormat );
	LoggingSystem_LogV( nChannel, eSeverity, pFormat, args );
	va_end( args );
	return true;
}
