#pragma once
// The small 3D world behind a tool's view: a list of nodes, a clock, a physics world and
// one particle manager with its host and query. The widget (or a batch command) steps it
// with Update and draws what BuildDrawList gathers.

#include <memory>
#include <vector>

#include "core/host/scenesystem.h"
#include "core/particles/sim/particlecamera.h"
#include "particleslib/particlemgr.h"
#include "tools/toolscene/toolscenephysicsworld.h"

class CParticlesLibHost_ToolScene;
class CParticleSystemQuery_ToolScene;
class CToolSceneDrawList;
class CToolSceneModel;
class CToolSceneNode;
struct ToolSceneView_t;

class CToolScene
{
public:
	CToolScene();
	~CToolScene();
	CToolScene( const CToolScene & ) = delete;
	CToolScene &operator=( const CToolScene & ) = delete;

	// The step: dt × rate of time for nodes, models, particles and physics.
	void Update( float flTimeDelta, float flRate );
	float GetFrameStep() const { return m_flFrameStep; }
	float GetTime() const { return m_flTime; }
	float GetPhysicsAccumulator() const { return m_flPhysicsAccumulator; }
	// The fixed physics step at a rate: min(rate, 4) sixtieths of a second.
	static float GetPhysicsFixedStep( float flRate );

	// Nodes join and leave the update list themselves.
	int AddNode( CToolSceneNode *pNode );
	void RemoveNode( CToolSceneNode *pNode );
	int GetNodeCount() const;
	template <typename Fn> void ForEachNode( Fn fn ) const
	{
		for ( const NodeEntry_t &entry : m_Nodes )
		{
			if ( entry.m_pNode )
				fn( entry.m_pNode );
		}
	}

	// Bounds of the visible content of the scene; false when nothing shows any.
	bool GetBounds( Vector *pMin, Vector *pMax ) const;
	// What a frame draws, for a view: visible root nodes and their visible children.
	void BuildDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const;

	// The model that particles attach to by default.
	void SetMainModel( CToolSceneModel *pModel ) { m_pMainModel = pModel; }
	CToolSceneModel *GetMainModel() const { return m_pMainModel; }

	// The cameras of the view that shows the scene, for camera-driven particle inputs.
	void SetParticleCameras( const std::vector<ParticleCamera_t> &cameras ) { m_ParticleCameras = cameras; }
	const std::vector<ParticleCamera_t> &GetParticleCameras() const { return m_ParticleCameras; }

	CParticleMgr &GetParticleMgr() { return m_ParticleMgr; }
	CParticlesLibHost_ToolScene *GetParticleHost() const { return m_pParticleHost.get(); }
	CParticleSystemQuery_ToolScene *GetParticleQuery() const { return m_pParticleQuery.get(); }
	CToolScenePhysicsWorld &GetPhysicsWorld() { return m_PhysicsWorld; }
	ISceneWorld *GetSceneWorld() { return &m_SceneWorld; }

private:
	struct NodeEntry_t
	{
		int m_nIndex = -1;
		CToolSceneNode *m_pNode = nullptr; // null: a free entry
	};

	CSceneWorld m_SceneWorld{ "toolscene" };
	CToolScenePhysicsWorld m_PhysicsWorld;
	std::unique_ptr<CParticleSystemQuery_ToolScene> m_pParticleQuery;
	std::unique_ptr<CParticlesLibHost_ToolScene> m_pParticleHost;
	float m_flFrameStep = 0.0f;
	float m_flTime = 0.0f;
	float m_flPhysicsAccumulator = 0.0f;
	std::vector<NodeEntry_t> m_Nodes;
	std::vector<int> m_FreeNodeEntries;
	CToolSceneModel *m_pMainModel = nullptr;
	std::vector<ParticleCamera_t> m_ParticleCameras;
	// Last, so that it goes first: its effects still ask the host on the way out.
	CParticleMgr m_ParticleMgr;
};
