#pragma once
// An object whose state the undo history can snapshot and restore. The history never
// knows what changed: it asks the object for a copy of itself before the first change
// of a step and hands that copy back on undo.

class CUndoRecord;

class IUndoable
{
public:
	// A new object, itself undoable, holding the present state of this one.
	virtual IUndoable *CreateUndoState() = 0;
	// Makes this object equal to the state.
	virtual void ApplyUndoState( IUndoable *pState ) = 0;
	// The history is finished with this object. bRemovedObject is true for an object
	// whose removal can no longer be undone, false for a snapshot.
	virtual void DestroyUndoState( bool bRemovedObject ) = 0;
	virtual void AddUndoRef() = 0;
	virtual void ReleaseUndoRef() = 0;
	// True while the object sits in a record.
	virtual void SetHeldByHistory( bool bHeld ) = 0;
	// Called once per modified object, after all records of the step were applied.
	virtual void OnUndoStateApplied() = 0;
	// False makes the history ignore the object.
	virtual bool IsUndoTracked() const = 0;
	virtual IUndoable *GetUndoParent() const = 0;
	virtual void SetUndoParent( IUndoable *pParent ) = 0;
	// Position among the parent's children, -1 when it has none.
	virtual int GetUndoIndexInParent() const = 0;
	// A record about this object was added to a step.
	virtual void OnUndoRecorded( CUndoRecord *pRecord ) = 0;
	virtual ~IUndoable() = default;
};

// The answers most objects want; only the two snapshot operations are left to write.
class CBaseUndoable : public IUndoable
{
public:
	void DestroyUndoState( bool ) override { delete this; }
	void AddUndoRef() override {}
	void ReleaseUndoRef() override {}
	void SetHeldByHistory( bool ) override {}
	void OnUndoStateApplied() override {}
	bool IsUndoTracked() const override { return true; }
	IUndoable *GetUndoParent() const override { return nullptr; }
	void SetUndoParent( IUndoable * ) override {}
	int GetUndoIndexInParent() const override { return -1; }
	void OnUndoRecorded( CUndoRecord * ) override {}
};
