// CPulseTestScriptLib, "Testing script helpers.": what graphs written as tests call. The
// Pulse service keeps the checkpoints and failures; `zol pulse run` fails on a failure.

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/cells/pulsefunctionbinding.h"
#include "pulse_runtime_lib/exec/pulseargpack.h"
#include "pulse_runtime_lib/exec/pulsegraphinstance.h"
#include "pulse_runtime_lib/system/ipulsesystem.h"

namespace
{
IPulseSystem *SystemOf( const PulseCallContext_t &context )
{
	return context.m_pInstance->GetSystem();
}

int RegisterTestCheckpoint( const PulseCallContext_t &context, const PulseArgPack &in, PulseArgPack & )
{
	if ( IPulseSystem *pSystem = SystemOf( context ) )
		pSystem->RegisterTestCheckpoint( context.m_pInstance, in.GetString( 0 ) );
	return 0;
}

int IndicateTestFailure( const PulseCallContext_t &context, const PulseArgPack &in, PulseArgPack & )
{
	if ( IPulseSystem *pSystem = SystemOf( context ) )
		pSystem->IndicateTestFailure( context.m_pInstance, in.GetString( 0 ) );
	return 0;
}

void FailAssert( const PulseCallContext_t &context, const char *pMessage )
{
	CUtlString text;
	text.Format( "AssertTrue failed: %s", *pMessage ? pMessage : "(no message)" );
	if ( IPulseSystem *pSystem = SystemOf( context ) )
		pSystem->IndicateTestFailure( context.m_pInstance, text.Get() );
}

int AssertTrue( const PulseCallContext_t &context, const PulseArgPack &in, PulseArgPack & )
{
	if ( !in.Get<bool>( 0 ) )
		FailAssert( context, in.GetString( 1 ) );
	return 0;
}

int IsInTestMode( const PulseCallContext_t &context, const PulseArgPack &, PulseArgPack &out )
{
	IPulseSystem *pSystem = SystemOf( context );
	out.Get<bool>( 0 ) = pSystem && pSystem->IsInTestMode();
	return 0;
}

int TestModeAssertTrue( const PulseCallContext_t &context, const PulseArgPack &in, PulseArgPack & )
{
	IPulseSystem *pSystem = SystemOf( context );
	if ( pSystem && pSystem->IsInTestMode() && !in.Get<bool>( 0 ) )
		FailAssert( context, in.GetString( 1 ) );
	return 0;
}

const CPulseValueFullType s_Bool( PVAL_BOOL );
const CPulseValueFullType s_String( PVAL_STRING );

const PulseFunctionBinding_t s_Functions[] = {
	{ "CPulseTestScriptLib", "RegisterTestCheckpoint", "Register Test Checkpoint", "Indicate that a checkpoint has been reached.",
	  { { "pName", s_String, "The checkpoint's name." } }, {}, PULSE_FUNCTION_FLAG_LIBRARY, nullptr, 0, RegisterTestCheckpoint },
	{ "CPulseTestScriptLib", "IndicateTestFailure", "Indicate Test Failure", "Used to flag a test as having failed.",
	  { { "pMessage", s_String, "What went wrong." } }, {}, PULSE_FUNCTION_FLAG_LIBRARY, nullptr, 0, IndicateTestFailure },
	{ "CPulseTestScriptLib", "AssertTrue", "Assert True", "Indicates a test failure if Value is false.",
	  { { "bValue", s_Bool, "Value" }, { "pMessage", s_String, "What went wrong." } }, {}, PULSE_FUNCTION_FLAG_LIBRARY, nullptr, 0, AssertTrue },
	{ "CPulseTestScriptLib", "IsInTestMode", "Is In Test Mode", "Are we currently running unit tests?", {}, { { "retval", s_Bool } },
	  PULSE_FUNCTION_FLAG_LIBRARY, nullptr, 0, IsInTestMode },
	{ "CPulseTestScriptLib", "TestModeAssertTrue", "Test Mode Assert True", "Indicates a test failure if value is false; only tested when running unit tests",
	  { { "bValue", s_Bool, "Value" }, { "pMessage", s_String, "What went wrong." } }, {}, PULSE_FUNCTION_FLAG_LIBRARY, nullptr, 0, TestModeAssertTrue },
};

const CPulseFunctionRegistrar s_Registrars[] = { CPulseFunctionRegistrar( &s_Functions[ 0 ] ), CPulseFunctionRegistrar( &s_Functions[ 1 ] ),
												 CPulseFunctionRegistrar( &s_Functions[ 2 ] ), CPulseFunctionRegistrar( &s_Functions[ 3 ] ),
												 CPulseFunctionRegistrar( &s_Functions[ 4 ] ) };
} // namespace
