#pragma once
// Time sources. Plat_FloatTime is monotonic and may be overridden so tests of timers,
// autosave and auto-restart run without waiting.

#include <cstdint>

// Seconds since an arbitrary point at start-up, monotonic.
double Plat_FloatTime();

using PlatFloatTimeFn_t = double ( * )();
// From now on Plat_FloatTime answers fn() / the fixed value. Null / Clear restores the clock.
void Plat_SetFloatTimeOverride( PlatFloatTimeFn_t fn );
void Plat_SetFloatTimeOverride( double flFixedSeconds );
void Plat_ClearFloatTimeOverride();

// The real monotonic clock, never overridden: for profiling and time budgets.
uint64_t Plat_GetClockTicks();
uint64_t Plat_GetClockTicksPerSecond();
// Microseconds since the given tick count.
double Plat_MicrosecondsSince( uint64_t nStartTicks );
