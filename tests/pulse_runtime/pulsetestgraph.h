#pragma once
// Graphs for tests, written as the KV3 body of a compiled definition, and a fixture that
// runs them on a plain Pulse service.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "core/logging/logging.h"
#include "pulse_runtime_lib/exec/pulseargpack.h"
#include "pulse_runtime_lib/exec/pulseexeccursor.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/system/pulsesystem.h"

inline std::string PulseTestText( const std::string &body )
{
	return "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n" + body;
}

// Loads and binds; null with the messages when refused.
inline CPulseGraphDefHandle LoadTestGraph( const std::string &body, PulseGraphMessages_t *pMessages, const char *pName = "test.tpulsec" )
{
	std::string text = PulseTestText( body );
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadText( text.data(), text.size(), pName, pMessages );
	if ( hDef && !PulseGraphDef_Bind( hDef.Get(), pMessages ) )
		return {};
	return hDef;
}

// All messages of a refusal, one per line.
inline std::string RefusalOf( const std::string &body )
{
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = LoadTestGraph( body, &messages );
	return hDef ? std::string( "(accepted)" ) : std::string( messages.ToText().Get() );
}

// Lines of the Pulse channel (messages and worse), kept while the collector lives.
class CPulseTestLog final : public ILoggingListener
{
public:
	CPulseTestLog() { LoggingSystem_AddListener( this ); }
	~CPulseTestLog() { LoggingSystem_RemoveListener( this ); }
	void Log( const LoggingContext_t &context, const char *pMessage ) override
	{
		if ( context.m_nChannel != LOG_PULSE || context.m_eSeverity < LS_MESSAGE )
			return;
		std::string line( pMessage );
		while ( !line.empty() && line.back() == '\n' )
			line.pop_back();
		m_Lines.push_back( line );
	}
	bool Contains( const std::string &part ) const
	{
		for ( const std::string &line : m_Lines )
		{
			if ( line.find( part ) != std::string::npos )
				return true;
		}
		return false;
	}
	int Count( const std::string &part ) const
	{
		int n = 0;
		for ( const std::string &line : m_Lines )
			n += line.find( part ) != std::string::npos;
		return n;
	}
	std::vector<std::string> m_Lines;
};

class PulseGraphTest : public testing::Test
{
protected:
	// Loads, binds and gives the instance the graph; fails the test when refused.
	CBasePulseGraphInstance &Start( const std::string &body, const char *pName = "test.tpulsec" )
	{
		PulseGraphMessages_t messages;
		m_hDef = LoadTestGraph( body, &messages, pName );
		EXPECT_TRUE( m_hDef ) << messages.ToText().Get();
		m_pInstance = std::make_unique<CBasePulseGraphInstance>( &m_System );
		if ( m_hDef )
			EXPECT_TRUE( m_pInstance->SetDefinition( m_hDef ) );
		return *m_pInstance;
	}

	CPulseTestLog m_Log;
	CPulseSystem m_System;
	CPulseGraphDefHandle m_hDef;
	std::unique_ptr<CBasePulseGraphInstance> m_pInstance;
};
