#pragma once
// The root node of a document: the graph's domain and what it belongs to, then the nodes.
// It is the document's undoable object: a snapshot is the whole document as KV3, and
// applying one reloads it through the undo loader, which keeps nodes by id.

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "pulsedoc_lib/model/pulsedocnode.h"
#include "tools/toolutils2/undo/undoable.h"

class CPulseDoc_Root : public CPulseDocNode, public CBaseUndoable
{
public:
	PULSE_DOC_NODE_TYPE()

	PulseSymbol_t m_DomainIdentifier;
	CPulseValueFullType m_DomainSubType;
	CUtlString m_ParentMapName;
	CUtlString m_ParentXmlName;
	std::vector<CUtlString> m_vecGameBlackboards;
	bool m_bAllowStateCells = false;

	// IUndoable.
	IUndoable *CreateUndoState() override;
	void ApplyUndoState( IUndoable *pState ) override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;
	bool SavesOwnKeysFirst() const override { return true; }
};
