#include "pulsedoc_lib/compiler/pulsegraphcompiler.h"

#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"

bool PulseDoc_Compile( CPulseDoc *pDoc, CPulseDocMessages *pMessages, PulseDocCompileResult_t *pResult, const PulseCompileOptions_t &options, const char *pResourceName )
{
	*pResult = PulseDocCompileResult_t();
	int nErrors = pMessages->GetErrorCount();
	pDoc->Validate( pMessages );
	if ( pMessages->GetErrorCount() > nErrors )
		return false;

	CPulseCompileContext context( pDoc, pMessages, options );
	bool bGenerated = context.Generate();
	pResult->m_Log = context.GetLog();
	if ( !bGenerated )
		return false;
	pResult->m_bGenerated = true;

	// The runtime's own check: what it refuses is the compiler's fault.
	KeyValues3 raw;
	context.BuildDefinitionKV3( &raw );
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadKV3( raw, pResourceName, &messages );
	if ( !hDef || !PulseGraphDef_Bind( hDef.Get(), &messages ) )
	{
		for ( const CUtlString &error : messages.m_Errors )
			pMessages->Report( PULSE_DOC_ERROR, -1, "Internal compiler error: the runtime refused the compiled graph: %s", error.Get() );
		return false;
	}
	for ( const CUtlString &warning : messages.m_Warnings )
		pMessages->Report( PULSE_DOC_WARNING, -1, "Internal compiler warning: %s", warning.Get() );
	CUtlString error;
	if ( !PulseGraphDef_SaveKV3( *hDef, &pResult->m_Definition, &error ) )
	{
		pMessages->Report( PULSE_DOC_ERROR, -1, "Internal compiler error: the compiled graph does not save: %s", error.Get() );
		return false;
	}
	pResult->m_hDef = hDef;
	pResult->m_bValid = true;
	return true;
}
