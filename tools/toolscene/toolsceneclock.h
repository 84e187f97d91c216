#pragma once
// The frame clock of a scene view: the time since the last frame, from the real clock
// (Plat_FloatTime) or, with "host_framerate" above 0, exactly 1 / host_framerate a frame;
// never below 0 and never above 0.3 seconds, so a stall doesn't throw particles about.

#include "core/console/convar.h"

extern ConVar host_framerate;

class CToolSceneClock
{
public:
	static constexpr double MAX_FRAME_TIME = 0.3;

	CToolSceneClock();
	// Starts counting from now.
	void Reset();
	// The time of the frame that ends now.
	float Advance();
	double GetLastTime() const { return m_flLastTime; }

private:
	double m_flLastTime = 0.0;
};
