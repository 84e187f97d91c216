#pragma once
// The in-memory form of one particle system definition: a root with nine ordered lists of
// nodes, the selection, the attribute labels, and the undo and redo histories.
//
// Every change goes through an operation here. Each one opens its own undo unit (a whole
// snapshot of the document) and announces itself with events, first on the document's own
// dispatcher and then on the hub's. Undo makes every node anew, so the selection and all
// cross-references are kept as ZolElementRef_t pairs, never as node pointers.

#include <functional>
#include <unordered_set>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"
#include "tools/toolutils2/undo/undoable.h"
#include "tools/toolutils2/undo/undolistener.h"
#include "zoldoc_lib/izoleventhub.h"
#include "core/particles/particlefunctiontype.h"
#include "zoldoc_lib/zolelementref.h"

class CBaseZolNode;
class CPulseValueFullType;
class CUtlBuffer;
class CUndoHistory;
class CZolChildNode;
class CZolFunctionNode;
class CZolRootNode;
class CZolVariableNode;
class IAsset;
class KeyValues3;
struct UndoMergeInfo_t;

class CZolDoc : public CBaseUndoable, public IUndoListener
{
public:
	static constexpr int UNDO_STEP_LIMIT = 50;

	using FunctionInitialiser_t = std::function<void( CZolFunctionNode * )>;
	// Receives the final tree of a save and may change it (the session's driver filter).
	using SavePostProcess_t = std::function<void( KeyValues3 * )>;

	// Snapshots are built without histories; their operations record nothing.
	explicit CZolDoc( bool bWithHistories = true );
	~CZolDoc() override;
	CZolDoc( const CZolDoc & ) = delete;
	CZolDoc &operator=( const CZolDoc & ) = delete;

	// Events. None leaves the document without a hub, or while suspended.
	void SetEventHub( IZolEventHub *pHub ) { m_pEventHub = pHub; }
	IZolEventHub *GetEventHub() const { return m_pEventHub; }
	CToolEventDispatcher *GetEventDispatcher() { return &m_Events; }
	void SuspendEvents() { ++m_nEventSuspendCount; }
	void ResumeEvents() { --m_nEventSuspendCount; }
	template <typename Event> void SendEvent( const Event &event )
	{
		if ( !m_pEventHub || m_nEventSuspendCount >= 1 )
			return;
		m_Events.Dispatch( event );
		if ( CToolEventDispatcher *pHubEvents = m_pEventHub->GetEventDispatcher() )
			pHubEvents->Dispatch( event );
	}

	// A new, empty definition at the running behaviour version. Until the first Reset (or
	// after a failed load) the document has no root and its operations do nothing.
	void Reset();

	// The definition file. A failed load leaves the document without a root and says why
	// in pError; a load that succeeds may still have warnings (values read leniently).
	bool LoadFromFile( const char *pPath, const char *pPathId, CUtlString *pError );
	// As LoadFromFile, from the file's bytes; pSourceName names them in parser messages.
	bool LoadFromBuffer( CUtlBuffer *pBuffer, const char *pSourceName, CUtlString *pError );
	const CUtlString &GetLoadWarnings() const { return m_LoadWarnings; }
	// A document loaded to compare or merge files keeps, through loads and upgrades, the
	// functions whose class the catalogue doesn't know, so that nothing of a file is lost.
	void SetKeepsUnknownFunctions( bool bKeep ) { m_bKeepsUnknownFunctions = bKeep; }
	// The file's text: defaults removed, then fnPostProcess, then KV3 text "tfxs63".
	bool SaveToBuffer( CUtlBuffer *pOut, CUtlString *pError, const SavePostProcess_t &fnPostProcess = {} ) const;
	// As SaveToBuffer, into the file; nothing of a failed save reaches the file.
	bool SaveToFile( const char *pPath, CUtlString *pError, const SavePostProcess_t &fnPostProcess = {} ) const;
	// The tree that a save writes, before the post-process; false without a root.
	bool BuildSaveTree( KeyValues3 *pOut ) const;

	// Structure.
	CZolChildNode *AddChild( IAsset *pAsset );
	void AddChildren( int nCount, IAsset **ppAssets );
	void SetChild( CZolChildNode *pChild, IAsset *pAsset );
	// Null for a class that may not stand in that list; the undo unit is recorded anyway.
	CZolFunctionNode *AddFunction( const char *pName, const char *pClass, ParticleFunctionType_t eType, const FunctionInitialiser_t &fnInitialise = {} );
	CZolVariableNode *AddVariable( const char *pName, const CPulseValueFullType &type );
	void RemoveElement( ParticleFunctionType_t eType, CBaseZolNode *pNode );
	// The caller opens the undo unit. The root stays whatever is selected.
	void RemoveSelected();
	void MoveElement( CBaseZolNode *pNode, int nNewIndex );
	void SetElementEnabled( CBaseZolNode *pNode, bool bEnabled );
	void ToggleSelected();
	// One undo unit; pChanges receives what the version change did, one line each.
	void UpdateToCurrentVersion( CUtlVector<CUtlString> *pChanges = nullptr );
	// Adds the clipboard's functions, children, variables and base properties, keeping
	// only the keys a new node of each kind has.
	void Paste( const KeyValues3 *pClipboard );

	// Selection.
	void SelectElement( CBaseZolNode *pNode, bool bUndoable );
	void AddElementToSelection( CBaseZolNode *pNode, bool bUndoable );
	void RemoveElementFromSelection( CBaseZolNode *pNode, bool bUndoable );
	void SelectBaseProperties();
	// Emptied first; pairs that don't resolve are skipped.
	void GetSelectedNodes( CUtlVector<CBaseZolNode *> &nodes ) const;
	const CUtlVector<ZolElementRef_t> &GetSelection() const { return m_Selection; }
	bool HasSelection() const { return m_Selection.Count() != 0; }
	// Anything selected besides the base properties.
	bool HasNonBaseSelection() const;
	// The pair that names the node now; { 9, 0 } for the root, { 9, -1 } for null or unknown.
	ZolElementRef_t GetElementRef( const CBaseZolNode *pNode ) const;
	CBaseZolNode *ResolveElementRef( const ZolElementRef_t &ref ) const;

	// Undo. BeginEdit opens a unit and records the document; pMerge lets a drag continue
	// the unit it started.
	void BeginEdit( const char *pDescription, bool bNotify, const UndoMergeInfo_t *pMerge = nullptr );
	void NotifyModified();
	// The history call, plus a list rebuild when the enabled functions changed with it.
	void Undo();
	void Redo();
	CUndoHistory *GetUndoHistory() const { return m_pUndoHistory; }
	CUndoHistory *GetRedoHistory() const { return m_pRedoHistory; }

	// Written nodes, told once a frame.
	void NoteNodeModified( CBaseZolNode *pNode );
	void FlushModifiedNodes();
	// A node going away must not be told as modified later.
	void OnNodeDestroyed( CBaseZolNode *pNode );

	// Queries.
	CZolRootNode *GetRoot() const { return m_pRoot; }
	static const char *GetFunctionTypeName( int nType ) { return GetParticleFunctionTypeWord( nType ); }
	// What undo labels call the node: the friendly name of its class.
	static const char *GetFriendlyName( const CBaseZolNode *pNode );
	int GetBehaviorVersion() const;
	static int GetCurrentBehaviorVersion();
	bool IsCurrentBehaviorVersion() const { return GetBehaviorVersion() == GetCurrentBehaviorVersion(); }

	// Attribute labels: what the enabled renderers say they use each attribute for.
	void RebuildAttributeLabels();
	bool HasAttributeLabels() const { return m_AttributeLabels.Count() != 0; }
	// The renderers' label, or the manager's name for the attribute.
	const char *GetAttributeLabel( int nAttribute ) const;

	// IUndoable
	IUndoable *CreateUndoState() override;
	void ApplyUndoState( IUndoable *pState ) override;
	// IUndoListener
	void OnUndoEvent( UndoEvent_t eEvent ) override;

private:
	// A load starts by forgetting the definition; a failed one leaves none.
	void DropRoot();
	// Opens a unit and records the document in it; nothing for a snapshot.
	void OpenUndoUnit( const char *pDescription, const UndoMergeInfo_t *pMerge = nullptr );
	void WriteChildReference( CZolChildNode *pChild, IAsset *pAsset );
	CZolChildNode *AddChildInUnit( IAsset *pAsset );
	void SetSelection( const ZolElementRef_t &ref );
	// Enabled nodes of each list, to see whether an undo changed what runs.
	void GetEnabledCounts( int ( &counts )[ PARTICLE_FUNCTION_LIST_COUNT ] ) const;
	void PerformHistoryUndo( CUndoHistory *pHistory );

	IZolEventHub *m_pEventHub = nullptr;
	CToolEventDispatcher m_Events;
	int32_t m_nEventSuspendCount = 0;
	CUtlVector<ZolElementRef_t> m_Selection;
	CZolRootNode *m_pRoot = nullptr;
	CUndoHistory *m_pUndoHistory = nullptr;
	CUndoHistory *m_pRedoHistory = nullptr;
	// Whether the undo running now gave this document a state back.
	bool m_bUndoStateApplied = false;
	CUtlVector<CUtlString> m_AttributeLabels;
	std::unordered_set<CBaseZolNode *> m_ModifiedNodes;
	CUtlString m_LoadWarnings;
	bool m_bKeepsUnknownFunctions = false;
};
