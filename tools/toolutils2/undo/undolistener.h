#pragma once
// Hears what happens on an undo history. A listener on either history of a pair hears
// the events of both.

enum UndoEvent_t : int
{
	UNDO_EVENT_BEFORE_UNDO = 0, // an undo or redo is about to run
	UNDO_EVENT_AFTER_UNDO = 1,  // it has finished
	UNDO_EVENT_STEP_OPENED = 2, // a new step was opened
};

class IUndoListener
{
public:
	virtual void OnUndoEvent( UndoEvent_t eEvent ) = 0;

protected:
	~IUndoListener() = default;
};
