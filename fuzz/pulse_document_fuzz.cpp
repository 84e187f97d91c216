// Feeds arbitrary bytes to the Pulse document loader and the graph compiler, with the
// shipped game's node descriptions. A refused document says why; a loaded one saves, and
// what it saves loads and saves to the same text; whatever compiles passes the runtime's
// validator (generated but refused is a compiler fault) and runs within its limits.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "core/logging/logging.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/system/pulsegraphrunner.h"
#include "pulsedoc_lib/compiler/pulsegraphcompiler.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsenodedescriptions.h"

namespace
{
[[noreturn]] void Stop( const char *pWhat, const char *pDetail )
{
	fprintf( stderr, "pulse_document_fuzz: %s\n%s\n", pWhat, pDetail );
	abort();
}

// The runs' reports would flood the fuzzer's output.
const bool s_bQuiet = ( LoggingSystem_RemoveListener( LoggingSystem_GetDefaultListener() ), true );

const CPulseNodeDescriptions &Descriptions()
{
	static const CPulseNodeDescriptions *s_pDescriptions = [] {
		auto *pDescriptions = new CPulseNodeDescriptions;
		CUtlString report;
		if ( !pDescriptions->LoadGameDescriptions( ZOL_SOURCE_DIR "/content/game", &report ) )
			Stop( "the shipped game's node descriptions don't load", report.Get() );
		return pDescriptions;
	}();
	return *s_pDescriptions;
}

void CheckSaveRoundTrip( const CPulseDoc &doc )
{
	CUtlString first, second, error;
	if ( !doc.SaveText( &first, &error ) )
		Stop( "a loaded document does not save", error.Get() );
	CPulseDoc again( &Descriptions() );
	CPulseDocMessages messages;
	if ( !again.LoadText( first.Get(), first.Length(), &messages ) )
		Stop( "a saved document does not load again", messages.ToText().Get() );
	if ( !again.SaveText( &second, &error ) || !( first == second ) )
		Stop( "save, load, save gives another text", first.Get() );
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *pData, size_t nSize )
{
	(void)s_bQuiet;
	CPulseDoc doc( &Descriptions() );
	CPulseDocMessages messages;
	if ( !doc.LoadText( reinterpret_cast<const char *>( pData ), nSize, &messages ) )
	{
		if ( !messages.HasErrors() )
			Stop( "a load refused without a reason", "" );
		return 0;
	}
	CheckSaveRoundTrip( doc );

	PulseDocCompileResult_t result;
	const bool bCompiled = PulseDoc_Compile( &doc, &messages, &result, {}, "fuzz.tpulse" );
	if ( result.m_bGenerated && !result.m_bValid )
		Stop( "the compiler generated a definition the runtime refuses", messages.ToText().Get() );
	if ( !bCompiled )
	{
		if ( !messages.HasErrors() )
			Stop( "a compile refused without a reason", "" );
		return 0;
	}
	std::vector<CUtlString> reasons;
	if ( !PulseGraphDef_Validate( result.m_Definition, &reasons ) || !reasons.empty() )
		Stop( "a compiled definition does not validate", reasons.empty() ? "" : reasons.front().Get() );
	if ( !result.m_hDef )
		Stop( "a compiled definition is not bound", "" );
	PulseRunOptions_t options;
	options.m_flSeconds = 3.0;
	options.m_flStep = 0.5;
	PulseRunResult_t run;
	PulseRunGraph( result.m_hDef, options, &run );
	return 0;
}
