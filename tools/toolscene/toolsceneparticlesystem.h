#pragma once
// The scene node that runs one particle system: it holds the running effect, restarts it
// by its rules (at once or a while after the end, or forced after a time of life), follows
// its definition's resource so that a recompile reaches it, and draws the effect.

#include <vector>

#include "core/host/resourcebinding.h"
#include "core/particles/sim/particlecamera.h"
#include "core/particles/sim/particleruntimedefinition.h"
#include "particleslib/particleeffect.h"
#include "particleslib/particleproperty.h"
#include "tools/toolscene/toolscenenode.h"

class IParticleCollection;
class IToolSceneParticleListener;

class CToolSceneParticleSystem : public CToolSceneNode, public IParticlePropertyOuter
{
public:
	explicit CToolSceneParticleSystem( CToolScene *pScene );
	~CToolSceneParticleSystem() override;

	// The definition to run; the effect starts anew. Null stops everything.
	void SetDefinition( const ParticleDefinitionPtr_t &pDefinition );
	// Runs what a "tfxs" resource holds, and restarts whenever its data changes (an edit's
	// recompile). An empty handle stops everything.
	void SetDefinitionResource( const CResourceHandle &hResource );
	const ParticleDefinitionPtr_t &GetDefinition() const { return m_pDefinition; }
	const CResourceHandle &GetDefinitionResource() const { return m_hResource; }

	// The old effect goes with all its particles; a new one starts.
	void Restart();
	// Emission stops (the end cap plays if asked); automatic restart is off until set again.
	void Stop( bool bPlayEndCap );
	// True with no effect or a finished one.
	bool IsEnded() const;
	IParticleCollection *GetCollection() const;
	CNewParticleEffect *GetEffect() const { return m_hEffect.Get(); }

	// Control points set here go to the running effect and to every later one.
	void SetControlPoint( int nPoint, const Vector &vPosition );
	void SetControlPointOrientation( int nPoint, const Vector &vForward, const Vector &vRight, const Vector &vUp );
	// A control point that follows an entity (the preview model, one of its attachments), on
	// this effect and every later one.
	// The offset (and its angles) is in the frame of what the point follows.
	void SetControlPointAttachment( int nPoint, IParticleEntity *pEntity, ParticleAttachment_t nAttachType, int nAttachment, const Vector &vOffset,
		const QAngle &angOffset = QAngle() );
	// The point goes back to what it was before anything was set here (point 0 follows
	// the node again; others keep what the effect last had).
	void ClearControlPoint( int nPoint );
	void ClearControlPoints();
	// Cameras for camera-driven inputs; without any, the scene's view cameras count.
	void SetCameras( const std::vector<ParticleCamera_t> &cameras );

	void SetAutoRestart( bool bAutoRestart ) { m_bAutoRestart = bAutoRestart; }
	bool IsAutoRestart() const { return m_bAutoRestart; }
	void SetAutoRestartTime( float flSeconds ) { m_flAutoRestartTime = flSeconds; }
	float GetAutoRestartTime() const { return m_flAutoRestartTime; }
	void SetForcedRestartTime( float flSeconds ) { m_flForcedRestartTime = flSeconds; }
	float GetForcedRestartTime() const { return m_flForcedRestartTime; }
	void SetForcedRestartEndcap( bool bEndcap ) { m_bForcedRestartEndcap = bEndcap; }
	bool GetForcedRestartEndcap() const { return m_bForcedRestartEndcap; }
	void SetApplyDefaultControlPoints( bool bApply ) { m_bApplyDefaultControlPoints = bApply; }
	void SetDetailLevel( int nLevel ) { m_nDetailLevel = nLevel; }
	void SetDrawControlPoints( bool bDraw ) { m_bDrawControlPoints = bDraw; }
	// Each effect's random source starts from this seed, so a restart replays the same run.
	void SetSeed( uint64_t nSeed ) { m_nSeed = nSeed; }
	uint64_t GetSeed() const { return m_nSeed; }
	void SetListener( IToolSceneParticleListener *pListener ) { m_pListener = pListener; }
	int GetRestartCount() const { return m_nRestartCount; }

	// CToolSceneNode
	void Update( float flTimeDelta ) override;
	bool GetBounds( Vector *pMin, Vector *pMax ) const override;
	void AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const override;

	// IParticlePropertyOuter
	IParticleEntity *GetParticlePropertyOwner() override { return this; }
	void OnParticleEffectCreated( const char *pName, CNewParticleEffect *pEffect ) override;
	void OnParticleEffectRemoved( CNewParticleEffect *pEffect, int nIndex ) override;

private:
	struct ControlPointOverride_t
	{
		bool m_bPosition = false;
		bool m_bOrientation = false;
		IParticleEntity *m_pEntity = nullptr; // set: the point follows it
		ParticleAttachment_t m_nAttachType = PATTACH_ABSORIGIN_FOLLOW;
		int m_nAttachment = 0;
		Vector m_vOffset;
		QAngle m_angOffset;
		Vector m_vPosition;
		Vector m_vForward{ 1.0f, 0.0f, 0.0f };
		Vector m_vRight{ 0.0f, -1.0f, 0.0f };
		Vector m_vUp{ 0.0f, 0.0f, 1.0f };
	};
	void ApplyControlPointOverrides();
	void ApplyCameras();
	void ApplyDefaultControlPoints();
	void TakeResourceDefinition();
	void UpdateRunningBounds();
	void ResetRunningBounds();

	CParticleProperty m_Property;
	ParticleDefinitionPtr_t m_pDefinition;
	CResourceHandle m_hResource;
	uint32_t m_nResourceVersion = 0;
	bool m_bAutoRestart = true;
	bool m_bApplyDefaultControlPoints = false;
	// Weak: a retired or stopped effect that the manager deletes clears it.
	CParticleEffectHandle m_hEffect;
	float m_flFirstBoundsTime = -1.0f;
	Vector m_vBoundsMin, m_vBoundsMax;
	bool m_bHaveRunningBounds = false;
	int m_nDetailLevel = 3;
	float m_flAutoRestartTime = -1.0f;
	float m_flForcedRestartTime = -1.0f;
	double m_flFinishTime = -1.0;
	bool m_bForcedRestartEndcap = true;
	bool m_bForcedStopSent = false;
	bool m_bDrawControlPoints = false;
	uint64_t m_nSeed = 1;
	IToolSceneParticleListener *m_pListener = nullptr;
	ControlPointOverride_t m_ControlPoints[ 64 ];
	std::vector<ParticleCamera_t> m_Cameras;
	int m_nRestartCount = 0;
};
