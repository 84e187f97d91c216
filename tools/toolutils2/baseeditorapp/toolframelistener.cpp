#include "tools/toolutils2/baseeditorapp/toolframelistener.h"

#include <algorithm>
#include <vector>

static std::vector<IToolFrameListener *> &FrameListeners()
{
	static std::vector<IToolFrameListener *> s_Listeners;
	return s_Listeners;
}

void ToolFrame_AddListener( IToolFrameListener *pListener )
{
	auto &listeners = FrameListeners();
	if ( pListener && std::find( listeners.begin(), listeners.end(), pListener ) == listeners.end() )
		listeners.push_back( pListener );
}

void ToolFrame_RemoveListener( IToolFrameListener *pListener )
{
	auto &listeners = FrameListeners();
	listeners.erase( std::remove( listeners.begin(), listeners.end(), pListener ), listeners.end() );
}

void ToolFrame_RunListeners()
{
	// A copy: a listener may add or remove listeners from its call.
	std::vector<IToolFrameListener *> listeners = FrameListeners();
	for ( IToolFrameListener *pListener : listeners )
	{
		auto &current = FrameListeners();
		if ( std::find( current.begin(), current.end(), pListener ) != current.end() )
			pListener->OnToolFrame();
	}
}
