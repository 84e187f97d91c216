#include "tools/toolscene/toolsceneaxis.h"

#include "tools/toolscene/toolscenedrawlist.h"

void CToolSceneAxis::AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t & ) const
{
	Vector vOrigin, vForward, vRight, vUp;
	GetWorldFrame( &vOrigin, &vForward, &vRight, &vUp );
	drawList.AddAxes( vOrigin, vForward, vRight, vUp, m_flSize * GetWorldScale() );
}
