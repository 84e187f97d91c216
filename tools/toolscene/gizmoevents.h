#pragma once
// What gizmos publish for status displays: a text ("12.50", or "<Bad value> : abc") and
// which axes are affected (1.0 marks one). They go out on one dispatcher of the process.

#include <string>

#include "tools/toolutils2/toolevents/tooleventtype.h"

class CToolEventDispatcher;

struct EventGizmoLengthChanged_t
{
	DECLARE_TOOL_EVENT( EventGizmoLengthChanged_t )
	std::string m_Text;
	float m_Axes[ 3 ] = {};
};

struct EventGizmoScaleChanged_t
{
	DECLARE_TOOL_EVENT( EventGizmoScaleChanged_t )
	std::string m_Text;
	float m_Axes[ 3 ] = {};
	// The box scale gizmo's scaled size; zero for the others.
	float m_Size[ 2 ] = {};
};

struct EventGizmoAngleChanged_t
{
	DECLARE_TOOL_EVENT( EventGizmoAngleChanged_t )
	std::string m_Text;
	float m_Axes[ 3 ] = {};
};

CToolEventDispatcher &GizmoEventDispatcher();
