#pragma once
// The object whose dispatcher hears every event of the documents and sessions it owns,
// after their own dispatchers: the application.

class CToolEventDispatcher;

class IZolEventHub
{
public:
	virtual CToolEventDispatcher *GetEventDispatcher() = 0;

protected:
	~IZolEventHub() = default;
};
