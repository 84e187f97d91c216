#pragma once
// Takes objects out of and back into their container when a step that removed or added
// them is undone. Only histories that record removals and additions need one.

class CUndoHistory;
class IUndoable;

class IUndoObjectHost
{
public:
	virtual void RemoveUndoObject( IUndoable *pObject ) = 0;
	virtual void RestoreUndoObject( IUndoable *pObject, IUndoable *pParent, int nIndex ) = 0;
	// An undo or redo opened the step that will take the opposite records.
	virtual void OnRedoStepOpened( CUndoHistory *pHistory ) = 0;

protected:
	~IUndoObjectHost() = default;
};
