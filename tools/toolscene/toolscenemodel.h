#pragma once
// A model ("*.tmsh") in the scene, shaded flat: the preview model that particles sit on,
// with its attachments as places control points follow.

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

	// Attachments: an index by name (-1 for none), and the world frame of an index.
	int LookupAttachment( const char *pName ) const;
	bool GetAttachmentFrame( int nIndex, Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) const;

	bool GetBounds( Vector *pMin, Vector *pMax ) const override;
	// The model's own box, in model space; false without a model.
	bool GetModelBounds( Vector *pMin, Vector *pMax ) const;
	void AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const override;

private:
	ParticleModelPtr_t m_pModel;
	CUtlString m_strModelName;
	float m_Color[ 4 ] = { 0.62f, 0.55f, 0.45f, 1.0f };
	bool m_bDrawAttachments = false;
};
