#pragma once
// The particle query of a tool scene: the ground plane at height 0 is the world's only
// geometry, models answer for their hitboxes and bounds, and gravity and water come from
// the preview's console variables.

#include "core/console/convar.h"
#include "core/particles/sim/particlerandom.h"
#include "particleslib/iparticlesystemquery.h"

class CToolScene;

// The preview controls set these; the query reads them.
extern ConVar zol_preview_gravity;
extern ConVar zol_preview_underwater;

class CParticleSystemQuery_ToolScene final : public IParticleSystemQuery
{
public:
	explicit CParticleSystemQuery_ToolScene( CToolScene *pScene ) : m_pScene( pScene ) {}

	// IParticleEHandleHelper
	IParticleEntity *GetEntityByName( const char *pWord, IParticleEntity *pSelf ) override;

	// IParticleSystemQuery
	bool IsEditor() const override { return true; }
	void GetLightingAtPoint( const Vector &vPoint, Color *pColor ) override;
	void TraceLine( const Vector &vStart, const Vector &vEnd, ParticleTraceResult_t *pResult ) override;
	bool GetRandomPointsOnHitboxes( IParticleEntity *pEntity, const char *pHitboxSet, int nCount, bool bInside, Vector *pPoints ) override;
	bool GetModelBounds( IParticleEntity *pEntity, Vector *pMin, Vector *pMax ) override;
	bool CollideWithGround( const Vector &vStart, const Vector &vEnd, const Vector &vMins, const Vector &vMaxs, ParticleTraceResult_t *pResult ) override;
	Vector GetUpVector() const override { return Vector( 0.0f, 0.0f, 1.0f ); }
	int GetActivityByName( const char *pName ) const override;
	int GetControllingPlayer( IParticleEntity * ) const override { return -1; }
	void GetGravity( const Vector *pPoints, int nCount, Vector *pGravity ) override;
	bool IsInWater( const Vector &vMins, const Vector &vMaxs ) override;
	void FrameBegin() override { ++m_nFrame; }
	void FrameEnd() override {}

	int GetFrameCount() const { return m_nFrame; }
	// The vector of zol_preview_gravity ("x y z"); the default when the text isn't three numbers.
	static Vector ReadGravity();

private:
	CToolScene *m_pScene;
	CParticleRandom m_Random{ 1 };
	int m_nFrame = 0;
};
