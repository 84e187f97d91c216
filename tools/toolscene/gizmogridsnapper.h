#pragma once
// The snapper a scene's owner gives its gizmo: a grid of a size whose lines pass through an
// offset point, and turns in steps of a number of degrees. Each kind of snapping is on or
// off on its own.

#include "tools/toolscene/igizmolistener.h"

class CGizmoGridSnapper final : public IGizmoSnapper
{
public:
	void SetGridSize( float flSize ) { m_flGridSize = flSize; }
	void SetGridOffset( const Vector &vOffset ) { m_vGridOffset = vOffset; }
	const Vector &GetGridOffset() const { return m_vGridOffset; }
	void SetGridSnap( bool bOn ) { m_bGridSnap = bOn; }
	void SetAngleSnap( bool bOn ) { m_bAngleSnap = bOn; }
	void SetAngleStep( float flDegrees ) { m_flAngleStep = flDegrees; }
	float GetAngleStep() const { return m_flAngleStep; }

	// IGizmoSnapper
	float GetGridSize() const override { return m_flGridSize; }
	// Off as well while the grid has no size.
	bool IsGridSnapOn() const override { return m_bGridSnap && m_flGridSize > 0.0f; }
	bool IsAngleSnapOn() const override { return m_bAngleSnap && m_flAngleStep > 0.0f; }
	float SnapDistance( float flValue ) const override;
	int SnapPoint( const Vector &vPoint, Vector *pOut ) const override;
	float SnapAngle( float flDegrees ) const override;

private:
	float m_flGridSize = 8.0f;
	Vector m_vGridOffset;
	bool m_bGridSnap = false;
	bool m_bAngleSnap = false;
	float m_flAngleStep = 15.0f;
};
