#include "tools/toolscene/gizmoevents.h"

#include "tools/toolutils2/toolevents/tooleventdispatcher.h"

CToolEventDispatcher &GizmoEventDispatcher()
{
	static CToolEventDispatcher s_Dispatcher;
	return s_Dispatcher;
}
