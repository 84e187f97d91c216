#pragma once
// A model ("*.tmsh") in the scene, shaded flat: the preview model that particles sit on,
// with its attachments as places control points follow.

#include <utility>
#include <vector>

#include "core/particles/particlemodel.h"
#include "core/text/utlstring.h"
#include "tools/toolscene/toolscenenode.h"

class CToolSceneModel : public CToolSceneNode
{
public:
	explicit CToolSceneModel( CToolScene *pScene ) : CToolSceneNode( pScene ) {}

	// By resource name; an empty name shows nothing. False (the reason logged once) when
	// the model can't be had: the node then shows none.
	bool SetModelName( const char *pResourceName );
	void SetModel( const ParticleModelPtr_t &pModel );
	const ParticleModelPtr_t &GetModel() const { return m_pModel; }
	const char *GetModelName() const { return m_strModelName.Get(); }
	void SetColor( float r, float g, float b, float a );
	void SetDrawAttachments( bool bDraw ) { m_bDrawAttachments = bDraw; }

	// The skin: the material group's colour; a name the model lacks keeps the set colour.
	void SetMaterialGroup( const char *pName );
	// Body groups by name (case ignored) and choice; groups not named take choice 0.
	void SetBodyGroups( const std::vector<std::pair<CUtlString, int>> &values );
	// The model as drawn: the body groups' variant of it.
	const ParticleModelPtr_t &GetShownModel() const { return m_pShownModel; }
	void GetColor( float rgba[ 4 ] ) const;

	// The sequence that plays, by name (one the model lacks plays nothing), at a speed;
	// a sequence that doesn't loop stops on its last frame.
	void SetSequence( const char *pName );
	const char *GetSequenceName() const { return m_strSequence.Get(); }
	void SetPlaybackSpeed( float flSpeed ) { m_flPlaybackSpeed = flSpeed; }
	void SetLooping( bool bLooping ) { m_bLooping = bLooping; }
	void RestartSequence() { m_flSequenceTime = 0.0f; }
	// The frame the sequence stands at; -1 without one.
	int GetSequenceFrame() const;
	bool IsSequenceFinished() const;
	void Update( float flTimeDelta ) override;

	// Attachments: an index by name (-1 for none), and the world frame of an index.
	int LookupAttachment( const char *pName ) const;
	bool GetAttachmentFrame( int nIndex, Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) const;

	bool GetBounds( Vector *pMin, Vector *pMax ) const override;
	// The model's own box, in model space; false without a model.
	bool GetModelBounds( Vector *pMin, Vector *pMax ) const;
	void AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const override;

private:
	const ParticleModelSequence_t *GetSequence() const;
	void UpdateShownModel();

	ParticleModelPtr_t m_pModel;
	ParticleModelPtr_t m_pShownModel;
	CUtlString m_strModelName;
	float m_Color[ 4 ] = { 0.62f, 0.55f, 0.45f, 1.0f };
	CUtlString m_strMaterialGroup;
	std::vector<std::pair<CUtlString, int>> m_BodyGroups;
	bool m_bDrawAttachments = false;
	CUtlString m_strSequence;
	float m_flSequenceTime = 0.0f;
	float m_flPlaybackSpeed = 1.0f;
	bool m_bLooping = true;
};
