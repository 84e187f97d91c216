#pragma once
// Stopping the process on an error it cannot go on from.

// Formats the text, logs it on the general channel as an error, runs the fatal error
// hook (the editor shows a box there) and aborts.
[[noreturn]] void Plat_FatalError( const char *pFormat, ... ) __attribute__( ( format( printf, 1, 2 ) ) );

// Called with the formatted text before the process aborts; must not return control by
// other means (longjmp, exceptions).
using PlatFatalErrorHookFn_t = void ( * )( const char *pMessage );
// Answers the previous hook.
PlatFatalErrorHookFn_t Plat_SetFatalErrorHook( PlatFatalErrorHookFn_t fn );
