#pragma once
// The eye of a view: the node's world frame and a field of view. The widget's camera
// controls move it; the renderer draws what it sees.

#include "tools/toolscene/toolscenenode.h"
#include "tools/toolscene/toolsceneview.h"

class CToolSceneCamera : public CToolSceneNode
{
public:
	explicit CToolSceneCamera( CToolScene *pScene ) : CToolSceneNode( pScene ) {}
	// Vertical, in degrees.
	void SetFov( float flFovY ) { m_flFovY = flFovY; }
	float GetFov() const { return m_flFovY; }
	void LookAt( const Vector &vEye, const Vector &vTarget );
	// The view of a picture of that many pixels.
	ToolSceneView_t GetView( int nWidth, int nHeight ) const;

private:
	float m_flFovY = 60.0f;
};
