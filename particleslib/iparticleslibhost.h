#pragma once
// What the manager of live effects needs of the place that it runs in: time, frames,
// views, where owners and attachments are. A tool scene answers for its view
// (tools/toolscene/particleslibhost_toolscene.h); tests answer with a fake.

#include <cstdint>
#include <vector>

#include "core/mathlib/vector.h"

class CNewParticleEffect;
class IParticleEntity;
class ISceneWorld;
struct ParticleControlPointRecord_t;

// A view as retirement and view culling read it.
struct ParticleLibView_t
{
	float m_flFovDegrees = 90.0f;
	Vector m_vEye;
	int m_nX = 0;
	int m_nY = 0;
	int m_nWidth = 0;
	int m_nHeight = 0;
};

// Row-major world-to-screen matrix: screen = M * (x, y, z, 1), then divided by w.
struct ParticleViewMatrix_t
{
	float m[ 4 ][ 4 ] = {};
};

// Answers of the culling test.
enum ParticleCullResult_t
{
	PARTICLE_CULL_NONE = 1,  // nothing is culled
	PARTICLE_CULL_BYTES = 2, // the bytes decide
	// anything else: all are culled
};

class IParticlesLibHost
{
public:
	virtual ~IParticlesLibHost() = default;

	// The time against which effects of a group run.
	virtual float GetGroupTime( int nGroup ) const = 0;
	virtual int GetFrameNumber() const = 0;
	// Around the step of a frame that has effects; frame begin advances the frame number.
	virtual void FrameBegin() = 0;
	virtual void FrameEnd() = 0;
	// Two values and a flag that the host manager gets each frame.
	virtual int GetHostManagerFrameValue( int nIndex ) const = 0;
	virtual bool GetHostManagerRenderFlag() const = 0;
	// A definition that was asked for is missing.
	virtual void ReportUnknownSystem( const char *pName ) = 0;
	// Origin and axes for a control point record; false leaves the point as it was.
	virtual bool GetAttachmentFrame( const ParticleControlPointRecord_t &record, Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) = 0;
	// Fills the views and their world-to-screen matrices; false when there are none.
	virtual bool GetViews( std::vector<ParticleLibView_t> *pViews, std::vector<ParticleViewMatrix_t> *pMatrices ) = 0;
	// What the host manager makes an owner's collection with: the seed of its random source.
	virtual uint64_t GetOwnerCollectionSeed( IParticleEntity *pOwner ) = 0;
	// Where an owner's collection shows, if anywhere.
	virtual ISceneWorld *GetOwnerSceneWorld( IParticleEntity *pOwner ) = 0;
	// Given n effects, fills n bytes, non-zero for culled; see ParticleCullResult_t.
	virtual int CullEffects( int nCount, CNewParticleEffect *const *ppEffects, uint8_t *pCulled ) = 0;
	virtual Vector GetOwnerPosition( IParticleEntity *pOwner ) = 0;
	virtual bool IsSplitScreenUserValid( int nUser ) const = 0;
	// The manager's PostUpdate is done with this frame.
	virtual void OnFrameUpdateDone() = 0;
	// The manager goes down.
	virtual void Shutdown() = 0;
};
