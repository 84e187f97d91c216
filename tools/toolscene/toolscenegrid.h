#pragma once
// The ground at height 0: a grid of lines with the world axes through the origin, or a
// plain ground plane.

#include "tools/toolscene/toolscenenode.h"

enum ToolSceneGroundType_t
{
	TOOLSCENE_GROUND_NONE,
	TOOLSCENE_GROUND_GRID,
	TOOLSCENE_GROUND_PLANE,
};

class CToolSceneGrid : public CToolSceneNode
{
public:
	explicit CToolSceneGrid( CToolScene *pScene ) : CToolSceneNode( pScene ) {}
	void SetGroundType( ToolSceneGroundType_t eType ) { m_eType = eType; }
	ToolSceneGroundType_t GetGroundType() const { return m_eType; }
	// Cells of this many units, over this many cells each way from the origin.
	void SetSpacing( float flSpacing, int nHalfCount );
	void AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const override;

private:
	ToolSceneGroundType_t m_eType = TOOLSCENE_GROUND_GRID;
	float m_flSpacing = 16.0f;
	int m_nHalfCount = 16;
};
