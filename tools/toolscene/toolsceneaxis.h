#pragma once
// Three coloured axes at the node's world frame: a control point's place and turn.

#include "tools/toolscene/toolscenenode.h"

class CToolSceneAxis : public CToolSceneNode
{
public:
	CToolSceneAxis( CToolScene *pScene, float flSize ) : CToolSceneNode( pScene ), m_flSize( flSize ) {}
	void SetSize( float flSize ) { m_flSize = flSize; }
	float GetSize() const { return m_flSize; }
	void AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const override;

private:
	float m_flSize;
};
