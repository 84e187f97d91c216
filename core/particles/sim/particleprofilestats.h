#pragma once
// The figures that a collection gives the profiler for its last step, measured only while
// it is told to.

struct ParticleProfileStats_t
{
	float m_flSimulationUS = 0.0f;
	int m_nSpare = 0;
	int m_nIntersectionTests = 0;
	int m_nTraces = 0;
	int m_nCount = 0;
	int m_nAllocated = 0;
	float m_flPaint[ 4 ] = {};
};
