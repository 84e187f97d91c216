#pragma once
// A control point's preview settings as an undoable object, so that moving a point (a
// gizmo drag, a typed position) is one step of the document's history without being an
// edit of the document: undo puts the point back and leaves the file unmodified.

#include "core/particles/particleparamid.h"
#include "tools/toolutils2/undo/undoable.h"
#include "zoldoc_lib/zolcontrolpointstate.h"

class CZolControlPointUndoable final : public CBaseUndoable
{
public:
	// The live object of one key of a state; it must outlive the history that notes it.
	CZolControlPointUndoable( CZolControlPointState *pState, const ParticleParamID_t &key );

	const ParticleParamID_t &GetKey() const { return m_Key; }

	// IUndoable
	IUndoable *CreateUndoState() override;
	void ApplyUndoState( IUndoable *pState ) override;

private:
	CZolControlPointState *m_pState; // null in a snapshot
	ParticleParamID_t m_Key;
	// The snapshot: whether the key had a record, and the record.
	bool m_bHasRecord = false;
	ZolControlPointRecord_t m_Record;
};
