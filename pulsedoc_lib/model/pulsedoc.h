#pragma once
// A Pulse document: the root node and the tree under it, the table from node id to node,
// the node descriptions generic nodes take their shape from, the cached point analysis
// of the compiler, and the undo histories. A document is KV3 text ("*.tpulse") whose root
// table is the root node (see docs/PULSE_DOCUMENTS.md for the file).

#include <memory>
#include <unordered_map>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphtypes.h"

class CPulseDocNode;
class CPulseDoc_Root;
class CPulseDoc_BaseValueDefinition;
class CPulseDoc_Connection_Inparam;
class CPulseDoc_Connection_Outflow;
class CPulseDocMessages;
class CPulseNodeDescriptions;
class CPulsePointAnalysis;
class CUndoHistory;
class IPulseEditorLoadCallbacks;
struct KV3ID_t;

// The KV3 format of documents ("tpulse"); files with the "generic" format load too.
extern const KV3ID_t KV3_FORMAT_PULSEDOC;

// What the document tells its listeners. Change kind 3 is an undo or redo applied.
enum PulseDocChangeKind_t : int
{
	PULSE_DOC_CHANGE_EDIT = 1,
	PULSE_DOC_CHANGE_LOADED = 2,
	PULSE_DOC_CHANGE_UNDO_APPLIED = 3,
};

class IPulseDocListener
{
public:
	virtual void OnPulseDocChanged( PulseDocChangeKind_t eKind ) = 0;
	// A node left the document (it may be destroyed after this returns).
	virtual void OnPulseDocNodeRemoved( PulseDocNodeID_t ) {}

protected:
	~IPulseDocListener() = default;
};

class CPulseDoc
{
public:
	// Without descriptions the runtime's own are used.
	explicit CPulseDoc( const CPulseNodeDescriptions *pDescriptions = nullptr );
	~CPulseDoc();
	CPulseDoc( const CPulseDoc & ) = delete;
	CPulseDoc &operator=( const CPulseDoc & ) = delete;

	CPulseDoc_Root *GetRoot() const { return m_pRoot.get(); }
	const CPulseNodeDescriptions &GetDescriptions() const { return *m_pDescriptions; }

	// Loading. False when there is no document to load (not KV3, the root isn't a
	// "CPulseDoc_Root"); the reasons are in pMessages. A document that loads may still
	// carry warnings about what it held.
	bool LoadText( const char *pText, size_t nLength, CPulseDocMessages *pMessages );
	bool LoadFile( const char *pPath, CPulseDocMessages *pMessages );
	// With load callbacks it is a reload of this document (undo, redo): the file's comment
	// stays and no "loaded" change is told.
	bool LoadKV3( const KeyValues3 &root, CPulseDocMessages *pMessages, IPulseEditorLoadCallbacks *pCallbacks = nullptr );
	// Saving: the root's table; the text adds the header and the leading comment lines of
	// the file it came from, so an unchanged file saves to the same bytes.
	void SaveKV3( KeyValues3 *pRoot ) const;
	bool SaveText( CUtlString *pText, CUtlString *pError ) const;
	// Through the safe write layer: whole or not at all.
	bool SaveFile( const char *pPath, CUtlString *pError ) const;
	// The "// ..." lines between the header and the root of the file last loaded.
	const CUtlString &GetLeadingComment() const { return m_LeadingComment; }

	// Nodes by id; ids below 0 are unset and find nothing.
	CPulseDocNode *FindNode( PulseDocNodeID_t nID ) const;
	// A new id, above every id in use.
	PulseDocNodeID_t AllocNodeID();
	// Rebuilds the id table from the tree; duplicate ids are reported when pMessages is given.
	void RebuildNodeTable( CPulseDocMessages *pMessages = nullptr );
	// Every node of the tree, depth first in file order (the root first).
	void GatherNodes( std::vector<CPulseDocNode *> *pNodes ) const;
	// Connections into an input of a node, and out of an output of a node.
	void GatherConnectionsInto( const CPulseDocNode *pNode, const char *pInparam, std::vector<const CPulseDoc_Connection_Inparam *> *pList ) const;
	void GatherConnectionsFrom( const CPulseDocNode *pNode, const char *pOutparam, std::vector<const CPulseDoc_Connection_Inparam *> *pList ) const;
	// A variable or constant definition by id, or by name (exact case).
	const CPulseDoc_BaseValueDefinition *FindValueDefinition( PulseDocNodeID_t nID ) const;
	const CPulseDoc_BaseValueDefinition *FindValueDefinitionByName( const char *pName ) const;

	// Every node's validation, in tree order, then the late checks.
	void Validate( CPulseDocMessages *pMessages ) const;

	// The point analysis, recomputed when the topology changed since it was last asked for.
	const CPulsePointAnalysis &GetAnalysis();
	bool IsAnalysisDirty() const { return m_bAnalysisDirty; }
	// Adding, removing or rewiring a node calls this.
	void SetTopologyDirty() { m_bAnalysisDirty = true; }

	// Undo by whole snapshots: an edit opens a step and the root records itself before it
	// changes; undo and redo reload the snapshot, keeping nodes by id.
	void BeginEdit( const char *pLabel );
	// Adds a node under a parent (the root when null) as an edit of its own; the node gets
	// a new id when it has none. Answers the node.
	CPulseDocNode *AddNode( CPulseDocNode *pNode, CPulseDocNode *pParent = nullptr, const char *pLabel = "Add Node" );
	// Removes a node and its subtree as an edit of its own.
	void RemoveNode( CPulseDocNode *pNode, const char *pLabel = "Delete Node" );
	bool CanUndo() const;
	bool CanRedo() const;
	void Undo();
	void Redo();

	void AddListener( IPulseDocListener *pListener );
	void RemoveListener( IPulseDocListener *pListener );
	void NotifyChanged( PulseDocChangeKind_t eKind );
	void NotifyNodeRemoved( PulseDocNodeID_t nID );

private:
	const CPulseNodeDescriptions *m_pDescriptions;
	std::unique_ptr<CPulseDoc_Root> m_pRoot;
	std::unordered_map<PulseDocNodeID_t, CPulseDocNode *> m_Nodes;
	std::unique_ptr<CPulsePointAnalysis> m_pAnalysis;
	bool m_bAnalysisDirty = true;
	CUtlString m_LeadingComment;
	std::unique_ptr<CUndoHistory> m_pUndoHistory;
	std::unique_ptr<CUndoHistory> m_pRedoHistory;
	std::vector<IPulseDocListener *> m_Listeners;
};
