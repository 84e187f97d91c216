#pragma once
// The physics world of a tool scene. The preview has no bodies yet, so a sub-step moves
// nothing; the world keeps the clock and counts what the scene's fixed step asks of it.

class CToolScenePhysicsWorld
{
public:
	void FrameBegin() { m_nFrameSubSteps = 0; }
	void SubStep( float flStep, bool bFirst )
	{
		m_flTime += flStep;
		++m_nFrameSubSteps;
		++m_nTotalSubSteps;
		m_bLastFirst = bFirst;
	}
	void FrameEnd( int nSubSteps ) { m_nLastFrameSubSteps = nSubSteps; }

	double GetTime() const { return m_flTime; }
	int GetLastFrameSubSteps() const { return m_nLastFrameSubSteps; }
	long long GetTotalSubSteps() const { return m_nTotalSubSteps; }

private:
	double m_flTime = 0.0;
	int m_nFrameSubSteps = 0;
	int m_nLastFrameSubSteps = 0;
	long long m_nTotalSubSteps = 0;
	bool m_bLastFirst = false;
};
