#include "pulse_runtime_lib/system/pulsegraphrunner.h"

#include <cmath>
#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/logging/logging.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/exec/pulseargpack.h"
#include "pulse_runtime_lib/system/pulsesystem.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"

namespace
{
// Keeps the lines of the Pulse channel, messages and worse, in order.
class CPulseLineCollector final : public ILoggingListener
{
public:
	explicit CPulseLineCollector( std::vector<CUtlString> *pLines ) : m_pLines( pLines ) { LoggingSystem_AddListener( this ); }
	~CPulseLineCollector() { LoggingSystem_RemoveListener( this ); }

	void Log( const LoggingContext_t &context, const char *pMessage ) override
	{
		if ( context.m_nChannel != LOG_PULSE || context.m_eSeverity < LS_MESSAGE )
			return;
		CUtlString line( pMessage );
		while ( !line.IsEmpty() && line.Storage().back() == '\n' )
			line.Storage().pop_back();
		m_pLines->push_back( line );
		if ( context.m_eSeverity >= LS_WARNING )
			m_LastReport = line;
	}
	CUtlString m_LastReport;

private:
	std::vector<CUtlString> *m_pLines;
};

const CPulseCell_Inflow_BaseEntrypoint *FindEntry( const CPulseGraphDef &def, const PulseRunRequest_t &request )
{
	if ( request.m_eKind == PulseRunRequest_t::METHOD )
		return def.FindMethodCell( request.m_Name.Get() );
	return static_cast<const CPulseCell_Inflow_BaseEntrypoint *>( def.FindEventHandlerCell( request.m_Name.Get() ) );
}

// "Main, Start" or "none".
CUtlString ListEntries( const CPulseGraphDef &def, PulseRunRequest_t::Kind_t eKind )
{
	CUtlString list;
	for ( const std::unique_ptr<CPulseCell_Base> &pCell : def.m_Cells )
	{
		const char *pName = nullptr;
		if ( auto *pMethod = dynamic_cast<const CPulseCell_Inflow_Method *>( pCell.get() ); pMethod && eKind == PulseRunRequest_t::METHOD )
			pName = pMethod->m_MethodName.String();
		if ( auto *pEvent = dynamic_cast<const CPulseCell_Inflow_EventHandler *>( pCell.get() ); pEvent && eKind == PulseRunRequest_t::EVENT )
			pName = pEvent->m_EventName.String();
		if ( pName )
		{
			if ( !list.IsEmpty() )
				list += ", ";
			list += pName;
		}
	}
	return list.IsEmpty() ? CUtlString( "none" ) : list;
}

// The arguments of a request as values of the entry's argument registers.
bool BuildArgs( const CPulseGraphDef &def, const CPulseCell_Inflow_BaseEntrypoint &entry, const PulseRunRequest_t &request, PulseArgPack *pArgs, CUtlString *pError )
{
	const CPulse_Chunk *pChunk = def.GetChunk( entry.m_EntryChunk );
	const char *pKind = request.m_eKind == PulseRunRequest_t::METHOD ? "method" : "event";
	for ( const auto &[ name, text ] : request.m_Args )
	{
		const PulseRegisterMapEntry_t *pParam = nullptr;
		for ( const PulseRegisterMapEntry_t &candidate : entry.m_RegisterMap.m_BoundOut )
		{
			if ( strcmp( candidate.m_Name.String(), name.Get() ) == 0 )
				pParam = &candidate;
		}
		if ( !pParam || !pChunk )
		{
			CUtlString known;
			for ( const PulseRegisterMapEntry_t &candidate : entry.m_RegisterMap.m_BoundOut )
				known.AppendFormat( "%s%s", known.IsEmpty() ? "" : ", ", candidate.m_Name.String() );
			pError->Format( "%s '%s' has no argument '%s' (arguments: %s)", pKind, request.m_Name.Get(), name.Get(), known.IsEmpty() ? "none" : known.Get() );
			return false;
		}
		const CPulseValueFullType &type = pChunk->m_Registers[ size_t( pParam->m_nRegister ) ].m_Type;
		void *pValue = pArgs->AddCopy( pParam->m_Name, type, nullptr );
		if ( !pValue )
		{
			pError->Set( "too many arguments" );
			return false;
		}
		// Text converts where the type has a text form; anything else reads as a KV3 value ("[1, 2, 3]").
		const char *pText = text.Get();
		const CPulseValueFullType stringType( PVAL_STRING );
		bool bConverted = type.GetBaseType() != PVAL_BOOL && type.GetBaseType() != PVAL_INT && type.GetBaseType() != PVAL_FLOAT &&
			PulseValue_Convert( stringType, &pText, type, pValue );
		if ( !bConverted )
		{
			KeyValues3 kv;
			CUtlString parseError;
			bool bParsed = LoadKV3FromText( &kv, &parseError, pText, strlen( pText ), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT );
			CUtlString loadError;
			if ( !bParsed || !PulseValue_LoadKV3( type, pValue, &kv, &loadError ) )
			{
				pError->Format( "argument '%s' of %s '%s': '%s' is no %s", name.Get(), pKind, request.m_Name.Get(), pText, type.ToString().Get() );
				return false;
			}
		}
	}
	return true;
}
} // namespace

bool PulseRunGraph( const CPulseGraphDefHandle &hDef, const PulseRunOptions_t &options, PulseRunResult_t *pResult )
{
	std::vector<PulseRunRequest_t> requests = options.m_Requests;
	if ( requests.empty() )
	{
		for ( const std::unique_ptr<CPulseCell_Base> &pCell : hDef->m_Cells )
		{
			if ( auto *pMethod = dynamic_cast<const CPulseCell_Inflow_Method *>( pCell.get() ) )
			{
				requests.push_back( { PulseRunRequest_t::METHOD, CUtlString( pMethod->m_MethodName.String() ), options.m_DefaultArgs } );
				break;
			}
		}
		if ( requests.empty() )
		{
			pResult->m_bRefused = true;
			pResult->m_Reason.Format( "the graph has no method to run; give --event NAME (events: %s)", ListEntries( *hDef, PulseRunRequest_t::EVENT ).Get() );
			return false;
		}
	}
	// Every request is checked before anything runs.
	std::vector<std::unique_ptr<PulseArgPack>> argPacks;
	for ( const PulseRunRequest_t &request : requests )
	{
		const CPulseCell_Inflow_BaseEntrypoint *pEntry = FindEntry( *hDef, request );
		bool bMethod = request.m_eKind == PulseRunRequest_t::METHOD;
		if ( !pEntry )
		{
			pResult->m_bRefused = true;
			pResult->m_Reason.Format( "no %s '%s' (%s: %s)", bMethod ? "method" : "event", request.m_Name.Get(), bMethod ? "methods" : "events",
									  ListEntries( *hDef, request.m_eKind ).Get() );
			return false;
		}
		argPacks.push_back( std::make_unique<PulseArgPack>() );
		if ( !BuildArgs( *hDef, *pEntry, request, argPacks.back().get(), &pResult->m_Reason ) )
		{
			pResult->m_bRefused = true;
			return false;
		}
	}

	CPulseLineCollector collector( &pResult->m_Lines );
	CPulseSystem system;
	system.SetTestMode( true );
	{
		CBasePulseGraphInstance instance( &system );
		if ( !instance.SetDefinition( hDef ) )
		{
			pResult->m_bRefused = true;
			pResult->m_Reason.Set( "the graph's domain refused the instance" );
			return false;
		}
		for ( size_t i = 0; i < requests.size(); ++i )
		{
			if ( requests[ i ].m_eKind == PulseRunRequest_t::METHOD )
				instance.RunMethod( requests[ i ].m_Name.Get(), argPacks[ i ].get() );
			else
				instance.FireEvent( requests[ i ].m_Name.Get(), argPacks[ i ].get() );
		}
		double flStep = options.m_flStep > 0.0 ? options.m_flStep : 0.1;
		while ( system.GetTime() < options.m_flSeconds - 1e-9 && ( system.GetScheduledWakeCount() > 0 || system.GetQueuedResumeCount() > 0 ) )
			system.AdvanceTo( std::min( system.GetTime() + flStep, options.m_flSeconds ) );
		pResult->m_nYieldedAtEnd = instance.GetYieldedCursorCount();
		pResult->m_flEndTime = system.GetTime();
	}
	if ( system.GetFailedCursorCount() > 0 )
	{
		pResult->m_bFailed = true;
		const char *pReport = collector.m_LastReport.Get();
		if ( strncmp( pReport, "Pulse: ", 7 ) == 0 )
			pReport += 7;
		if ( system.GetFailedCursorCount() == 1 )
			pResult->m_Reason.Format( "a cursor failed: %s", pReport );
		else
			pResult->m_Reason.Format( "%d cursors failed, the last: %s", system.GetFailedCursorCount(), pReport );
	}
	else if ( !system.GetTestFailures().empty() )
	{
		pResult->m_bFailed = true;
		pResult->m_Reason.Format( "the graph reported a test failure: %s", system.GetTestFailures().front().Get() );
	}
	return !pResult->m_bFailed;
}
