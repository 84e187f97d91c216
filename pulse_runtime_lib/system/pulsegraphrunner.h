#pragma once
// Runs a graph the way `zol pulse run` does: one instance on a plain Pulse service in test
// mode, methods called and events fired at time 0 in the order given, then the virtual
// clock advanced in steps until nothing waits on it or the time is up. Every line the
// Pulse channel gets (the graph's own and the runtime's reports) is kept in order.

#include <vector>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphdef.h"

struct PulseRunRequest_t
{
	enum Kind_t
	{
		METHOD,
		EVENT,
	};
	Kind_t m_eKind = METHOD;
	CUtlString m_Name;
	// NAME=VALUE texts, converted to the entry's argument types.
	std::vector<std::pair<CUtlString, CUtlString>> m_Args;
};

struct PulseRunOptions_t
{
	// Empty: the graph's first method, with m_DefaultArgs.
	std::vector<PulseRunRequest_t> m_Requests;
	std::vector<std::pair<CUtlString, CUtlString>> m_DefaultArgs;
	double m_flSeconds = 10.0;
	double m_flStep = 0.1;
};

struct PulseRunResult_t
{
	std::vector<CUtlString> m_Lines;
	// The run could not start (no such method, a bad argument); m_Reason says why.
	bool m_bRefused = false;
	// A cursor failed or hit the instruction limit, or the graph reported a test failure.
	bool m_bFailed = false;
	CUtlString m_Reason;
	int m_nYieldedAtEnd = 0;
	double m_flEndTime = 0.0;
};

// Runs the bound definition; false when the run was refused or failed.
bool PulseRunGraph( const CPulseGraphDefHandle &hDef, const PulseRunOptions_t &options, PulseRunResult_t *pResult );
