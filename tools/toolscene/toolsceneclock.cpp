#include "tools/toolscene/toolsceneclock.h"

#include <algorithm>

#include "core/platform/platformtime.h"

ConVar host_framerate( "host_framerate", "0", FCVAR_NONE, "Above 0: every frame advances time by exactly 1 / this many seconds, however long it took." );

CToolSceneClock::CToolSceneClock()
{
	Reset();
}

void CToolSceneClock::Reset()
{
	m_flLastTime = Plat_FloatTime();
}

float CToolSceneClock::Advance()
{
	double flNow;
	const float flFrameRate = host_framerate.GetFloat();
	if ( flFrameRate > 0.0f )
		flNow = m_flLastTime + 1.0 / double( flFrameRate );
	else
		flNow = Plat_FloatTime();
	double flTime = std::clamp( flNow - m_flLastTime, 0.0, MAX_FRAME_TIME );
	m_flLastTime = flNow;
	return float( flTime );
}
