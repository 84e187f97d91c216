#pragma once
// A preview without a view: the control point state applied straight to a collection, with
// one model standing at the origin for control points to attach to. Headless runs play a
// configuration through it exactly as the preview does.

#include <memory>

#include "core/particles/particlemodel.h"
#include "core/text/utlstring.h"
#include "zoldoc_lib/izolpreviewtarget.h"

class IParticleCollection;

class CZolCollectionPreviewTarget final : public IZolPreviewTarget
{
public:
	explicit CZolCollectionPreviewTarget( IParticleCollection *pCollection ) : m_pCollection( pCollection ) {}

	// The model of the scene, by resource name, placed at the origin unturned; null
	// takes it away.
	void SetSceneModel( const char *pName, ParticleModelPtr_t pModel );

	bool HasRunningCollection() const override { return m_pCollection != nullptr; }
	void SetCollectionControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles ) override;
	void SetCollectionNamedValue( const ParticleParamID_t &key, const CPulseValueFullType &type, const KeyValues3 &value ) override;
	// Nothing binds a bare collection's points: each is set once, where it stands.
	void ClearControlPointBinding( int ) override {}
	void SetNodeControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles ) override;
	bool BindControlPointToModel( int nPoint, const char *pModelName, bool bSearchChildModels, int nAttachType, const char *pAttachmentName,
		const Vector &vOffset, const QAngle &angOffset ) override;

private:
	// Position and the three axes of angles turned by a frame's angles (none: unturned).
	void SetPoint( int nPoint, const Vector &vPosition, const QAngle &angles, const Vector *pFrameAngles );

	IParticleCollection *m_pCollection;
	CUtlString m_SceneModelName;
	ParticleModelPtr_t m_pSceneModel;
};
