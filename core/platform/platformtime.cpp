#include "core/platform/platformtime.h"

#include <atomic>
#include <bit>
#include <chrono>

namespace
{

using Clock_t = std::chrono::steady_clock;

// Captured on first use (static constructors of other libraries may be first), so
// times start near zero and keep full double precision for long sessions.
Clock_t::time_point StartTime()
{
	static const Clock_t::time_point s_StartTime = Clock_t::now();
	return s_StartTime;
}

std::atomic<PlatFloatTimeFn_t> s_pOverrideFn{ nullptr };
std::atomic<uint64_t> s_nFixedTimeBits{ 0 };
std::atomic<bool> s_bFixedTime{ false };

double FixedTime()
{
	return std::bit_cast<double>( s_nFixedTimeBits.load( std::memory_order_relaxed ) );
}

} // namespace

double Plat_FloatTime()
{
	if ( s_bFixedTime.load( std::memory_order_acquire ) )
		return FixedTime();
	if ( PlatFloatTimeFn_t fn = s_pOverrideFn.load( std::memory_order_acquire ) )
		return fn();
	Clock_t::time_point start = StartTime();
	return std::chrono::duration<double>( Clock_t::now() - start ).count();
}

void Plat_SetFloatTimeOverride( PlatFloatTimeFn_t fn )
{
	s_bFixedTime.store( false, std::memory_order_release );
	s_pOverrideFn.store( fn, std::memory_order_release );
}

void Plat_SetFloatTimeOverride( double flFixedSeconds )
{
	s_nFixedTimeBits.store( std::bit_cast<uint64_t>( flFixedSeconds ), std::memory_order_relaxed );
	s_pOverrideFn.store( nullptr, std::memory_order_release );
	s_bFixedTime.store( true, std::memory_order_release );
}

void Plat_ClearFloatTimeOverride()
{
	s_bFixedTime.store( false, std::memory_order_release );
	s_pOverrideFn.store( nullptr, std::memory_order_release );
}

uint64_t Plat_GetClockTicks()
{
	return uint64_t( std::chrono::duration_cast<std::chrono::nanoseconds>( Clock_t::now().time_since_epoch() ).count() );
}

uint64_t Plat_GetClockTicksPerSecond()
{
	return 1000000000ull;
}

double Plat_MicrosecondsSince( uint64_t nStartTicks )
{
	uint64_t nNow = Plat_GetClockTicks();
	if ( nNow < nStartTicks )
		return 0.0;
	return double( nNow - nStartTicks ) * 1e6 / double( Plat_GetClockTicksPerSecond() );
}
