#pragma once
// The error sink of a document: what loading, validation and compiling report, each
// message with its severity and the node it is about, so a user can go from a message to
// its node. Nothing stops at the first problem: one pass lists as many as it finds.

#include <vector>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphtypes.h"

class CPulseDocNode;

enum PulseDocSeverity_t : int
{
	PULSE_DOC_WARNING = 1,
	PULSE_DOC_ERROR = 2,
};

struct PulseDocMessage_t
{
	PulseDocSeverity_t m_eSeverity = PULSE_DOC_ERROR;
	// The node the message is about ("Pulse Node"), or -1.
	PulseDocNodeID_t m_nNodeID = -1;
	CUtlString m_Text;

	// "node 12: text", "warning: text", "node 12: warning: text".
	CUtlString ToText() const;
};

class CPulseDocMessages
{
public:
	void Report( PulseDocSeverity_t eSeverity, PulseDocNodeID_t nNodeID, const char *pFormat, ... ) __attribute__( ( format( printf, 4, 5 ) ) );
	// About a node: its own id, or its nearest ancestor's when it has none (a connection).
	void Error( const CPulseDocNode *pNode, const char *pFormat, ... ) __attribute__( ( format( printf, 3, 4 ) ) );
	void Warning( const CPulseDocNode *pNode, const char *pFormat, ... ) __attribute__( ( format( printf, 3, 4 ) ) );
	void Add( const PulseDocMessage_t &message );

	bool HasErrors() const { return m_nErrors > 0; }
	int GetErrorCount() const { return m_nErrors; }
	const std::vector<PulseDocMessage_t> &GetMessages() const { return m_Messages; }
	bool Contains( const char *pText ) const;
	void Clear();
	// Every message, one a line.
	CUtlString ToText() const;

	// The id messages about a node carry.
	static PulseDocNodeID_t ReportedID( const CPulseDocNode *pNode );

private:
	void AddV( PulseDocSeverity_t eSeverity, PulseDocNodeID_t nNodeID, const char *pFormat, va_list args );

	std::vector<PulseDocMessage_t> m_Messages;
	int m_nErrors = 0;
};
