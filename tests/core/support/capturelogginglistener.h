#pragma once
// Collects log messages for a test while it is alive.

#include "core/logging/logging.h"

#include <mutex>
#include <string>
#include <vector>

class CCaptureLoggingListener final : public ILoggingListener
{
public:
	struct Message_t
	{
		LoggingChannelID_t m_nChannel;
		LoggingSeverity_t m_eSeverity;
		std::string m_strText;
	};

	CCaptureLoggingListener() { LoggingSystem_AddListener( this ); }
	~CCaptureLoggingListener() { LoggingSystem_RemoveListener( this ); }

	void Log( const LoggingContext_t &context, const char *pMessage ) override
	{
		std::lock_guard<std::mutex> lock( m_Mutex );
		m_Messages.push_back( { context.m_nChannel, context.m_eSeverity, pMessage } );
	}

	std::vector<Message_t> Messages() const
	{
		std::lock_guard<std::mutex> lock( m_Mutex );
		return m_Messages;
	}

	// Messages whose text contains pText.
	int CountContaining( const char *pText ) const
	{
		std::lock_guard<std::mutex> lock( m_Mutex );
		int nCount = 0;
		for ( const Message_t &message : m_Messages )
			nCount += message.m_strText.find( pText ) != std::string::npos ? 1 : 0;
		return nCount;
	}

private:
	mutable std::mutex m_Mutex;
	std::vector<Message_t> m_Messages;
};
