// Feeds arbitrary bytes to the compiled graph loader. A refused definition must say why;
// an accepted one binds or is refused with reasons; a bound one runs (every method and
// event, then a few seconds of its clock, each run within the instruction limit), and
// saves, loads and saves again to the same text.

#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "core/logging/logging.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/system/pulsesystem.h"

namespace
{
[[noreturn]] void Stop( const char *pWhat, const char *pDetail )
{
	fprintf( stderr, "pulse_graph_fuzz: %s\n%s\n", pWhat, pDetail );
	abort();
}

// The runs' reports would flood the fuzzer's output.
const bool s_bQuiet = ( LoggingSystem_RemoveListener( LoggingSystem_GetDefaultListener() ), true );

void RunBriefly( const CPulseGraphDefHandle &hDef )
{
	CPulseSystem system;
	CBasePulseGraphInstance instance( &system );
	if ( !instance.SetDefinition( hDef ) )
		return;
	int nEntries = 0;
	for ( const std::unique_ptr<CPulseCell_Base> &pCell : hDef->m_Cells )
	{
		if ( nEntries >= 8 )
			break;
		if ( auto *pMethod = dynamic_cast<const CPulseCell_Inflow_Method *>( pCell.get() ) )
			nEntries += instance.RunMethod( pMethod->m_MethodName.String(), nullptr ) ? 1 : 0;
		else if ( auto *pEvent = dynamic_cast<const CPulseCell_Inflow_EventHandler *>( pCell.get() ) )
			nEntries += instance.FireEvent( pEvent->m_EventName.String(), nullptr ) ? 1 : 0;
	}
	for ( int nStep = 1; nStep <= 5; ++nStep )
		system.AdvanceTo( double( nStep ) );
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *pData, size_t nSize )
{
	(void)s_bQuiet;
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadText( reinterpret_cast<const char *>( pData ), nSize, "fuzz.tpulsec", &messages );
	if ( !hDef )
	{
		if ( messages.m_Errors.empty() )
			Stop( "a load refused without a reason", "" );
		return 0;
	}
	if ( !PulseGraphDef_Bind( hDef.Get(), &messages ) )
	{
		if ( messages.m_Errors.empty() )
			Stop( "a binding refused without a reason", "" );
		return 0;
	}
	RunBriefly( hDef );

	CUtlString first, second, error;
	if ( !PulseGraphDef_SaveText( *hDef, &first, &error ) )
		Stop( "a bound definition does not save", error.Get() );
	PulseGraphMessages_t again;
	CPulseGraphDefHandle hReloaded = PulseGraphDef_LoadText( first.Get(), first.Length(), "fuzz.tpulsec", &again );
	if ( !hReloaded || !PulseGraphDef_Bind( hReloaded.Get(), &again ) )
		Stop( "a saved definition does not load and bind again", again.ToText().Get() );
	if ( !PulseGraphDef_SaveText( *hReloaded, &second, &error ) || !( first == second ) )
		Stop( "save, load, save gives another text", first.Get() );
	return 0;
}
