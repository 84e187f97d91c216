#include "core/platform/fatalerror.h"

#include "core/logging/logging.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

static std::atomic<PlatFatalErrorHookFn_t> s_pFatalErrorHook{ nullptr };

PlatFatalErrorHookFn_t Plat_SetFatalErrorHook( PlatFatalErrorHookFn_t fn )
{
	return s_pFatalErrorHook.exchange( fn );
}

void Plat_FatalError( const char *pFormat, ... )
{
	char message[ 2048 ];
	va_list args;
	va_start( args, pFormat );
	vsnprintf( message, sizeof( message ), pFormat, args );
	va_end( args );

	LoggingSystem_LogDirect( LOG_GENERAL, LS_ERROR, message );
	// The general channel may have been silenced; a fatal stop must still say why.
	if ( !LoggingSystem_IsChannelEnabled( LOG_GENERAL, LS_ERROR ) )
		fputs( message, stderr );
	if ( PlatFatalErrorHookFn_t fn = s_pFatalErrorHook.load() )
		fn( message );
	fflush( stderr );
	abort();
}
