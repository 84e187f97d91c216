#pragma once
// One particle system run headless in a tool scene at a fixed frame rate: what the command
// line simulates and draws. It is the preview's own machinery (scene, manager, particle
// host) without the widget: no automatic restarts, a fixed seed, frames of exactly 1/fps.

#include <memory>
#include <vector>

#include "core/particles/sim/particlecamera.h"
#include "core/particles/sim/particleruntimedefinition.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolsceneview.h"

class CToolSceneGrid;
class CToolSceneParticleSystem;
class IParticleCollection;

class CToolSceneParticleRun
{
public:
	CToolSceneParticleRun( const ParticleDefinitionPtr_t &pDefinition, uint64_t nSeed );
	~CToolSceneParticleRun();

	// Control points and cameras before the first frame.
	void SetControlPoint( int nPoint, const Vector &vPosition );
	void SetCameras( const std::vector<ParticleCamera_t> &cameras );
	// Every control point set on the collection (by a configuration played on it) stays
	// where it is: the node no longer moves it.
	void PinControlPoints();
	// One frame of the scene.
	void Frame( float flDt );
	// Frames of 1/fps until the system has run flSeconds (rounded to whole frames).
	void RunFor( double flSeconds, int nFps );

	IParticleCollection *GetCollection() const;
	CToolScene &GetScene() { return m_Scene; }
	CToolSceneParticleSystem *GetParticleSystem() const { return m_pSystem.get(); }
	CToolSceneGrid *GetGround() const { return m_pGround.get(); }
	int GetFrameCount() const { return m_nFrames; }

	// A view of the picture's size that frames what the system has covered, as the
	// preview's camera does, from its default angle.
	ToolSceneView_t GetFramingView( int nWidth, int nHeight ) const;

private:
	CToolScene m_Scene;
	std::unique_ptr<CToolSceneParticleSystem> m_pSystem;
	std::unique_ptr<CToolSceneGrid> m_pGround;
	int m_nFrames = 0;
};
