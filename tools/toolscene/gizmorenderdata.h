#pragma once
// How each gizmo looks, and where its handles are. A render data class draws its helper
// into the overlay of a draw list (on top of the scene, a constant size on screen) and
// registers every drawn primitive under its part id in a hit list, so that the hit pass
// finds the handle under a ray the way it was drawn.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/toolscene/gizmotypes.h"

class CBaseGizmoHelper;
class CToolSceneDrawList;
struct ToolSceneView_t;

// Primitives of the hit pass: a segment as wide as a number of pixels, or a triangle.
struct GizmoHitPrimitive_t
{
	int m_nPart = GIZMO_PART_NONE;
	bool m_bTriangle = false;
	Vector m_Points[ 3 ];
	float m_flHalfWidthPixels = 0.0f;
	// Added to the distance of a hit, so that a handle drawn over another wins.
	float m_flDistanceBias = 0.0f;
};

class CGizmoHitList
{
public:
	void Clear() { m_Primitives.clear(); }
	void AddSegment( int nPart, const Vector &a, const Vector &b, float flHalfWidthPixels, float flBias = 0.0f );
	void AddTriangle( int nPart, const Vector &a, const Vector &b, const Vector &c, float flBias = 0.0f );
	// Of everything the ray hits, the part of the nearest hit; -1 for none.
	int FindPart( const ToolSceneView_t &view, const GizmoRay_t &ray, float *pDistance = nullptr ) const;
	int GetCount() const { return int( m_Primitives.size() ); }
	const GizmoHitPrimitive_t &Get( int i ) const { return m_Primitives[ size_t( i ) ]; }

private:
	std::vector<GizmoHitPrimitive_t> m_Primitives;
};

class CBaseGizmoRenderData
{
public:
	virtual ~CBaseGizmoRenderData() = default;
	// Draws the helper for the view (pDrawList may be null: only the hit list fills).
	void Build( const CBaseGizmoHelper &helper, const ToolSceneView_t &view, bool bEnabled, CToolSceneDrawList *pDrawList, CGizmoHitList *pHits );
	// The parts that can be grabbed now: an axis seen end on and its planes drop out.
	uint64_t GetActiveParts() const { return m_nActiveParts; }

protected:
	virtual void BuildParts( const CBaseGizmoHelper &helper, const ToolSceneView_t &view, float flLength ) = 0;

	// The colour of a part: the hover colour under the pointer, grey when disabled.
	void PartColor( int nPart, int nRole, float rgba[ 4 ] ) const;
	// A line of a width in pixels, as a quad facing the eye.
	void Line( int nPart, const Vector &a, const Vector &b, const float rgba[ 4 ], float flWidthPixels );
	void Triangle( int nPart, const Vector &a, const Vector &b, const Vector &c, const float rgba[ 4 ], bool bHittable = true );
	void Quad( int nPart, const Vector &a, const Vector &b, const Vector &c, const Vector &d, const float rgba[ 4 ] );
	// A cone of an arrow head from its base centre to its tip.
	void Cone( int nPart, const Vector &vBase, const Vector &vTip, float flRadius, const float rgba[ 4 ] );
	// A ring about a unit axis, as a loop of lines; hit as wide as flHitPixels.
	void Ring( int nPart, const Vector &vCentre, const Vector &vAxis, float flRadius, const float rgba[ 4 ], float flWidthPixels, float flHitPixels );
	// A square facing the eye, flHalfPixels on each side of the centre.
	void ScreenSquare( int nPart, const Vector &vCentre, float flHalfPixels, const float rgba[ 4 ], float flBias = 0.0f );
	float LineWidth( int nPart ) const;
	bool IsPartActive( int nPart ) const { return ( m_nActiveParts & GizmoPartBit( nPart ) ) != 0; }
	// Takes the axis part and its two planes out when the axis points at the eye; a ring
	// seen face on is the easiest to grab, so rotation keeps all.
	virtual bool DropsEndOnAxes() const { return true; }
	void DropEndOnAxes( const CBaseGizmoHelper &helper, const ToolSceneView_t &view );

	const ToolSceneView_t *m_pView = nullptr;
	CToolSceneDrawList *m_pDrawList = nullptr;
	CGizmoHitList *m_pHits = nullptr;
	float m_flWorldPerPixel = 1.0f;
	int m_nHoverPart = GIZMO_PART_NONE;
	int m_nDragPart = GIZMO_PART_NONE;
	bool m_bEnabled = true;
	uint64_t m_nActiveParts = 0;
};

class CTranslateGizmoRenderData : public CBaseGizmoRenderData
{
protected:
	void BuildParts( const CBaseGizmoHelper &helper, const ToolSceneView_t &view, float flLength ) override;
};

class CRotateGizmoRenderData : public CBaseGizmoRenderData
{
protected:
	bool DropsEndOnAxes() const override { return false; }
	void BuildParts( const CBaseGizmoHelper &helper, const ToolSceneView_t &view, float flLength ) override;
};

class CScaleGizmoRenderData : public CBaseGizmoRenderData
{
protected:
	void BuildParts( const CBaseGizmoHelper &helper, const ToolSceneView_t &view, float flLength ) override;
};

class CBoxScaleGizmoRenderData : public CBaseGizmoRenderData
{
protected:
	void BuildParts( const CBaseGizmoHelper &helper, const ToolSceneView_t &view, float flLength ) override;
};
