#pragma once
// The lib host of a tool scene: the scene's time for every group, a frame counter, and
// where owners and attachments are. A tool scene has no views for the manager, so early
// retirement and view culling never run in it, and nothing is culled.

#include "particleslib/iparticleslibhost.h"

class CToolScene;

class CParticlesLibHost_ToolScene final : public IParticlesLibHost
{
public:
	explicit CParticlesLibHost_ToolScene( CToolScene *pScene ) : m_pScene( pScene ) {}

	void SetTime( float flTime ) { m_flTime = flTime; }
	float GetTime() const { return m_flTime; }

	float GetGroupTime( int ) const override { return m_flTime; }
	int GetFrameNumber() const override { return m_nFrame; }
	void FrameBegin() override { ++m_nFrame; }
	void FrameEnd() override {}
	int GetHostManagerFrameValue( int ) const override { return 2; }
	bool GetHostManagerRenderFlag() const override { return true; }
	void ReportUnknownSystem( const char *pName ) override;
	bool GetAttachmentFrame( const ParticleControlPointRecord_t &record, Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) override;
	bool GetViews( std::vector<ParticleLibView_t> *, std::vector<ParticleViewMatrix_t> * ) override { return false; }
	uint64_t GetOwnerCollectionSeed( IParticleEntity *pOwner ) override;
	ISceneWorld *GetOwnerSceneWorld( IParticleEntity *pOwner ) override;
	int CullEffects( int, CNewParticleEffect *const *, uint8_t * ) override { return PARTICLE_CULL_NONE; }
	Vector GetOwnerPosition( IParticleEntity *pOwner ) override;
	bool IsSplitScreenUserValid( int ) const override { return false; }
	void OnFrameUpdateDone() override {}
	void Shutdown() override {}

private:
	CToolScene *m_pScene;
	float m_flTime = 0.0f;
	int m_nFrame = 0;
};
