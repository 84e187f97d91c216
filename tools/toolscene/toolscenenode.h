#pragma once
// The base of everything in a tool scene: a place in the tree, a transform, world bounds
// and visibility. Owners make and delete their nodes; a node joins its scene's update
// list when made and leaves it when deleted. Parents don't own their children.

#include <vector>

#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "particleslib/particleentity.h"

class CToolScene;
class CToolSceneDrawList;
class ISceneObject;
struct ToolSceneView_t;

class CToolSceneNode : public IParticleEntity
{
public:
	explicit CToolSceneNode( CToolScene *pScene );
	~CToolSceneNode() override;
	CToolSceneNode( const CToolSceneNode & ) = delete;
	CToolSceneNode &operator=( const CToolSceneNode & ) = delete;

	// The node's own content in world space; false when it has none to frame.
	virtual bool GetBounds( Vector *pMin, Vector *pMax ) const;
	virtual void SetVisible( bool bVisible );
	// The node's bounds joined with its visible children's; false when none has any.
	virtual bool GatherBounds( Vector *pMin, Vector *pMax ) const;
	virtual void AddChild( CToolSceneNode *pChild );
	virtual void RemoveChild( CToolSceneNode *pChild );
	virtual ISceneObject *GetSceneObject() const { return nullptr; }
	virtual void OnEffectiveVisibilityChanged() {}
	// The render hook: what the node draws this frame.
	virtual void AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const;
	// Once a frame, with the scene's step.
	virtual void Update( float flTimeDelta );

	CToolScene *GetScene() const { return m_pScene; }
	CToolSceneNode *GetParent() const { return m_pParent; }
	const std::vector<CToolSceneNode *> &GetChildren() const { return m_Children; }
	bool IsVisible() const { return m_bVisible; }
	// Own visibility and the parent's effective visibility.
	bool IsEffectivelyVisible() const { return m_bEffectivelyVisible; }

	// Place relative to the parent: origin, angles and a uniform scale.
	void SetOrigin( const Vector &vOrigin ) { m_vOrigin = vOrigin; }
	void SetAngles( const QAngle &angles ) { m_Angles = angles; }
	void SetScale( float flScale ) { m_flScale = flScale; }
	const Vector &GetOrigin() const { return m_vOrigin; }
	const QAngle &GetAngles() const { return m_Angles; }
	float GetScale() const { return m_flScale; }
	// The world frame, through the parents.
	void GetWorldFrame( Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) const;
	float GetWorldScale() const;
	// A point in the node's space, in world space.
	Vector LocalToWorld( const Vector &vLocal ) const;

	// IParticleEntity
	void GetParticleEntityFrame( Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) const override { GetWorldFrame( pOrigin, pForward, pRight, pUp ); }

	// The scene's list entry; -1 once removed.
	int GetSceneIndex() const { return m_nSceneIndex; }
	void SetSceneIndex( int nIndex ) { m_nSceneIndex = nIndex; }
	// The scene went first; the node lives on outside any scene.
	void DetachFromScene()
	{
		m_pScene = nullptr;
		m_nSceneIndex = -1;
	}

protected:
	void UpdateEffectiveVisibility();

	CToolScene *m_pScene;
	CToolSceneNode *m_pParent = nullptr;
	std::vector<CToolSceneNode *> m_Children;
	Vector m_vWorldMin, m_vWorldMax;
	bool m_bVisible = true;
	bool m_bEffectivelyVisible = true;
	bool m_bTreeChanged = false;

	Vector m_vOrigin;
	QAngle m_Angles;
	float m_flScale = 1.0f;
	int m_nSceneIndex = -1;
};

// Joins a box into another; the first box joined starts it.
void ToolSceneAddBounds( const Vector &vMin, const Vector &vMax, bool *pHave, Vector *pOutMin, Vector *pOutMax );
