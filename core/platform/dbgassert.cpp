#include "core/platform/dbgassert.h"

#include "core/logging/logging.h"

#include <atomic>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

static bool DefaultAssertHandler( const char *pFile, int nLine, const char *pExpression, const char *pMessage )
{
	if ( pMessage && *pMessage )
		LoggingSystem_Log( LOG_GENERAL, LS_ASSERT, "%s(%d): Assertion failed: %s (%s)\n", pFile, nLine, pExpression, pMessage );
	else
		LoggingSystem_Log( LOG_GENERAL, LS_ASSERT, "%s(%d): Assertion failed: %s\n", pFile, nLine, pExpression );
	return Plat_IsDebuggerAttached();
}

static std::atomic<AssertHandlerFn_t> s_pAssertHandler{ &DefaultAssertHandler };

AssertHandlerFn_t SetAssertHandler( AssertHandlerFn_t fn )
{
	AssertHandlerFn_t pPrevious = s_pAssertHandler.exchange( fn ? fn : &DefaultAssertHandler );
	return pPrevious == &DefaultAssertHandler ? nullptr : pPrevious;
}

bool Assert_ConditionFailed( const char *pFile, int nLine, const char *pExpression, const char *pMessage )
{
	return s_pAssertHandler.load()( pFile ? pFile : "", nLine, pExpression ? pExpression : "", pMessage );
}

bool Assert_ConditionFailedFormat( const char *pFile, int nLine, const char *pExpression, const char *pFormat, ... )
{
	char message[ 1024 ];
	va_list args;
	va_start( args, pFormat );
	vsnprintf( message, sizeof( message ), pFormat, args );
	va_end( args );
	return Assert_ConditionFailed( pFile, nLine, pExpression, message );
}

bool Plat_IsDebuggerAttached()
{
	// Linux reports the tracing process in /proc; elsewhere assume none.
	FILE *pFile = fopen( "/proc/self/status", "r" );
	if ( !pFile )
		return false;
	char line[ 256 ];
	bool bTraced = false;
	while ( fgets( line, sizeof( line ), pFile ) )
	{
		if ( strncmp( line, "TracerPid:", 10 ) == 0 )
		{
			bTraced = atoi( line + 10 ) != 0;
			break;
		}
	}
	fclose( pFile );
	return bTraced;
}

void Plat_DebugBreak()
{
	raise( SIGTRAP );
}
