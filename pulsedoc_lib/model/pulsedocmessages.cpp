#include "pulsedoc_lib/model/pulsedocmessages.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "pulsedoc_lib/model/pulsedocnode.h"

CUtlString PulseDocMessage_t::ToText() const
{
	CUtlString text;
	if ( m_nNodeID >= 0 )
		text.Format( "node %d: ", m_nNodeID );
	if ( m_eSeverity == PULSE_DOC_WARNING )
		text += "warning: ";
	text += m_Text;
	return text;
}

PulseDocNodeID_t CPulseDocMessages::ReportedID( const CPulseDocNode *pNode )
{
	for ( const CPulseDocNode *p = pNode; p; p = p->GetParent() )
	{
		if ( p->GetNodeID() >= 0 )
			return p->GetNodeID();
	}
	return -1;
}

void CPulseDocMessages::AddV( PulseDocSeverity_t eSeverity, PulseDocNodeID_t nNodeID, const char *pFormat, va_list args )
{
	char buffer[ 2048 ];
	vsnprintf( buffer, sizeof( buffer ), pFormat, args );
	// Messages of the format may end in a newline; the list holds lines without one.
	size_t nLength = strlen( buffer );
	while ( nLength > 0 && buffer[ nLength - 1 ] == '\n' )
		buffer[ --nLength ] = 0;
	PulseDocMessage_t message;
	message.m_eSeverity = eSeverity;
	message.m_nNodeID = nNodeID;
	message.m_Text.Set( buffer );
	Add( message );
}

void CPulseDocMessages::Add( const PulseDocMessage_t &message )
{
	// One problem found twice (a value node read by two inputs) is told once.
	for ( const PulseDocMessage_t &existing : m_Messages )
	{
		if ( existing.m_eSeverity == message.m_eSeverity && existing.m_nNodeID == message.m_nNodeID && existing.m_Text == message.m_Text )
			return;
	}
	m_Messages.push_back( message );
	if ( message.m_eSeverity >= PULSE_DOC_ERROR )
		++m_nErrors;
}

void CPulseDocMessages::Report( PulseDocSeverity_t eSeverity, PulseDocNodeID_t nNodeID, const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	AddV( eSeverity, nNodeID, pFormat, args );
	va_end( args );
}

void CPulseDocMessages::Error( const CPulseDocNode *pNode, const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	AddV( PULSE_DOC_ERROR, ReportedID( pNode ), pFormat, args );
	va_end( args );
}

void CPulseDocMessages::Warning( const CPulseDocNode *pNode, const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	AddV( PULSE_DOC_WARNING, ReportedID( pNode ), pFormat, args );
	va_end( args );
}

bool CPulseDocMessages::Contains( const char *pText ) const
{
	for ( const PulseDocMessage_t &message : m_Messages )
	{
		if ( strstr( message.m_Text.Get(), pText ) )
			return true;
	}
	return false;
}

void CPulseDocMessages::Clear()
{
	m_Messages.clear();
	m_nErrors = 0;
}

CUtlString CPulseDocMessages::ToText() const
{
	CUtlString text;
	for ( const PulseDocMessage_t &message : m_Messages )
	{
		text += message.ToText();
		text += '\n';
	}
	return text;
}
