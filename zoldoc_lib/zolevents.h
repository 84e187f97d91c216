#pragma once
// Every event of the particle editor. A document sends the first seven, a session the
// next five, the application's hub the last three. Payloads travel by value; listeners
// must not keep pointers out of them past the call.

#include <unordered_set>

#include "tools/toolutils2/toolevents/tooleventtype.h"
#include "core/particles/particleparamid.h"

class CBaseZolNode;
class CZolSession;

struct ZolEvent_DocumentModified_t
{
	DECLARE_TOOL_EVENT( ZolEvent_DocumentModified_t )
};

// All nodes were made anew: drop every node pointer and rebuild.
struct ZolEvent_DocumentReplaced_t
{
	DECLARE_TOOL_EVENT( ZolEvent_DocumentReplaced_t )
};

struct ZolEvent_FunctionEnableDisableChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_FunctionEnableDisableChanged_t )
};

struct ZolEvent_FunctionListChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_FunctionListChanged_t )
};

// The nodes written since the last flush, as a set and as a list.
struct ZolEvent_NodesModified_t
{
	DECLARE_TOOL_EVENT( ZolEvent_NodesModified_t )
	const std::unordered_set<CBaseZolNode *> *m_pNodeSet = nullptr;
	CBaseZolNode *const *m_ppNodes = nullptr;
	int m_nNodeCount = 0;
};

struct ZolEvent_SelectionChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_SelectionChanged_t )
};

// A variable's type changed, so the property panel's rows no longer fit.
struct ZolEvent_PropertyDomainTopologyChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_PropertyDomainTopologyChanged_t )
};

struct ZolEvent_ControlPointListChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_ControlPointListChanged_t )
};

struct ZolEvent_ControlPointValueChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_ControlPointValueChanged_t )
	ParticleParamID_t m_ControlPoint;
};

struct ZolEvent_NamedValueChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_NamedValueChanged_t )
	ParticleParamID_t m_NamedValue;
};

// True when the preview model stands and only its setup changed; false when the model
// must be loaded anew.
struct ZolEvent_PreviewStateChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_PreviewStateChanged_t )
	bool m_bModelStands = false;
};

struct ZolEvent_PreviewConfigSelectionChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_PreviewConfigSelectionChanged_t )
	CZolSession *m_pSession = nullptr;
};

struct ZolEvent_PreviewSessionChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_PreviewSessionChanged_t )
	CZolSession *m_pSession = nullptr;
};

struct ZolEvent_VisualizerActiveChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_VisualizerActiveChanged_t )
	bool m_bActive = false;
};

struct ZolEvent_ProfilerActiveChanged_t
{
	DECLARE_TOOL_EVENT( ZolEvent_ProfilerActiveChanged_t )
	bool m_bActive = false;
};
