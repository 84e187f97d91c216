#pragma once
// What a session's control point state is applied to: the particle system that a preview
// runs and the scene around it. The preview widget implements it over its particle node
// and models; a headless run implements it over a bare collection
// (CZolCollectionPreviewTarget). Angles are pitch, yaw and roll in degrees.

#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/particles/particleparamid.h"

class CPulseValueFullType;
class KeyValues3;

class IZolPreviewTarget
{
public:
	virtual ~IZolPreviewTarget() = default;

	// Whether a collection runs; without one nothing is applied.
	virtual bool HasRunningCollection() const = 0;

	// The running collection's own control point and named values.
	virtual void SetCollectionControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles ) = 0;
	// The value is in the form of the type (a number, floats, a resource name).
	virtual void SetCollectionNamedValue( const ParticleParamID_t &key, const CPulseValueFullType &type, const KeyValues3 &value ) = 0;

	// The particle node's control points, which it hands on to every collection it runs.
	virtual void ClearControlPointBinding( int nPoint ) = 0;
	// The plain form: any binding of the number goes, then position and orientation are set.
	virtual void SetNodeControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles ) = 0;
	// Binds a control point to the model node of the scene that shows pModelName (searched
	// through child nodes, the resource name compared ignoring case), at an attachment
	// (none: the model's origin) with an offset in the attachment's frame. With
	// bSearchChildModels an attachment the model lacks is looked for on its child models.
	// False, binding nothing, when no node shows the model or a named attachment isn't found.
	virtual bool BindControlPointToModel( int nPoint, const char *pModelName, bool bSearchChildModels, int nAttachType, const char *pAttachmentName,
		const Vector &vOffset, const QAngle &angOffset ) = 0;
};
