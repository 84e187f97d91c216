#pragma once
// The load callbacks of undo and redo: before the snapshot reloads, every node of the
// document is set aside by id; loading hands a node of the same id and class back, so it
// stays the same object for anyone that holds it. Nodes the snapshot doesn't have are
// dropped afterwards, and the document says so.

#include <memory>
#include <unordered_map>

#include "pulsedoc_lib/model/pulsedocload.h"

class CPulseDoc;

class CPulseEditorUndoLoader final : public IPulseEditorLoadCallbacks
{
public:
	// Sets the document's nodes aside (the root stays).
	explicit CPulseEditorUndoLoader( CPulseDoc *pDoc );
	~CPulseEditorUndoLoader() override;

	CPulseDocNode *OnNodeLoading( PulseDocNodeID_t nID, const char *pClassName ) override;
	// Destroys the nodes nobody claimed, telling the document of each.
	void DropUnclaimedNodes();

private:
	CPulseDoc *m_pDoc;
	std::unordered_map<PulseDocNodeID_t, std::unique_ptr<CPulseDocNode>> m_SetAside;
	// Nodes without an id can't be claimed; they go with the rest.
	std::vector<std::unique_ptr<CPulseDocNode>> m_Unclaimable;
};
