#pragma once
// Assertions. They stay on in every build: in a tool, a check costs nothing next to a
// silently broken file. A failed check is reported through logging and, if the
// handler says so, breaks into the debugger; execution then goes on.

// Reports a failed condition; answers true when the caller should stop (break).
// pMessage may be null.
bool Assert_ConditionFailed( const char *pFile, int nLine, const char *pExpression, const char *pMessage );
// Formats the message first.
bool Assert_ConditionFailedFormat( const char *pFile, int nLine, const char *pExpression, const char *pFormat, ... ) __attribute__( ( format( printf, 4, 5 ) ) );

// Replaces the reporting of failed assertions (tests use it to see and count them).
// The handler's answer is what Assert_ConditionFailed answers. Null restores the
// default, which logs on the general channel with LS_ASSERT and asks to stop only
// when a debugger is attached. Answers the previous handler.
using AssertHandlerFn_t = bool ( * )( const char *pFile, int nLine, const char *pExpression, const char *pMessage );
AssertHandlerFn_t SetAssertHandler( AssertHandlerFn_t fn );

bool Plat_IsDebuggerAttached();
void Plat_DebugBreak();

#define Assert( condition )                                                        \
	do                                                                             \
	{                                                                              \
		if ( !( condition ) && Assert_ConditionFailed( __FILE__, __LINE__, #condition, nullptr ) ) \
			Plat_DebugBreak();                                                     \
	} while ( 0 )

#define AssertMsg( condition, ... )                                                \
	do                                                                             \
	{                                                                              \
		if ( !( condition ) && Assert_ConditionFailedFormat( __FILE__, __LINE__, #condition, __VA_ARGS__ ) ) \
			Plat_DebugBreak();                                                     \
	} while ( 0 )

// Checks for hot paths (element access): on in debug builds only.
#ifdef NDEBUG
#define DbgAssert( condition ) ( (void)0 )
#else
#define DbgAssert( condition ) Assert( condition )
#endif
