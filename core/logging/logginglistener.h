#pragma once
// Receivers of log output. The editor's console and tests add their own; the default
// one writes to stderr.

#include "core/logging/loggingseverity.h"

using LoggingChannelID_t = int;
constexpr LoggingChannelID_t INVALID_LOGGING_CHANNEL_ID = -1;

struct LoggingContext_t
{
	LoggingChannelID_t m_nChannel;
	const char *m_pChannelName;
	LoggingSeverity_t m_eSeverity;
};

class ILoggingListener
{
public:
	// Called with the formatted text (usually ending in a newline). Calls are serialised:
	// a listener never runs on two threads at once.
	virtual void Log( const LoggingContext_t &context, const char *pMessage ) = 0;

protected:
	~ILoggingListener() = default;
};

// Writes every message to stderr; warnings and worse carry the channel name.
class CStderrLoggingListener final : public ILoggingListener
{
public:
	void Log( const LoggingContext_t &context, const char *pMessage ) override;
};
