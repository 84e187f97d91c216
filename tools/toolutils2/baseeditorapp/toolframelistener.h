#pragma once
// Objects that want a call at every tool frame, after the tool's own frame step (the
// input bind manager times held keys and drags with it). Main thread only.

class IToolFrameListener
{
public:
	virtual void OnToolFrame() = 0;

protected:
	~IToolFrameListener() = default;
};

void ToolFrame_AddListener( IToolFrameListener *pListener );
void ToolFrame_RemoveListener( IToolFrameListener *pListener );
// Runs every listener once, in the order they were added.
void ToolFrame_RunListeners();
