#pragma once
// One open particle system definition: the document, its file, the compiled form that the
// preview shows, and the events that tell the widgets what changed. Widgets reach the
// definition only through a session.

#include <memory>
#include <unordered_map>

#include "core/host/resourcebinding.h"
#include "core/particles/particleparamid.h"
#include "core/particles/particlesystemdefinitionrecords.h"
#include "core/particles/sim/particledefinitionusage.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/inputbind/bindtarget.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"
#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"
#include "zoldoc_lib/izoleventhub.h"
#include "zoldoc_lib/zolcontrolpointstate.h"
#include "zoldoc_lib/zolevents.h"
#include "zoldoc_lib/zolnamedvaluecache.h"

class CZolApp;
class CZolControlPointUndoable;
class CZolChildNode;
class CZolDoc;
class IAsset;
class IZolPreviewTarget;
class CZolNamedValueContext;
class IZolNodeVariableContext;
class KeyValues3;
struct ZolControlPointConfiguration_t;

class CZolSession : public CSimpleSharedWindowEditorSession, public IBindTarget, public IZolControlPointStateHost, public IZolDocumentSource
{
public:
	explicit CZolSession( CBaseEditorApp *pApp );
	~CZolSession() override;

	// CBaseEditorSession
	bool New( const char *pName ) override;
	int Open( const char *pPath, CUtlString *pError ) override;
	bool Reload() override;
	void NotifyListeners( int nWhat ) override;
	void SetModified( bool bModified ) override;
	bool SaveToFile( const char *pOriginalPath, const char *pTargetPath, bool bAutosave ) override;
	virtual bool PostOpen();

	// Events leave the session's own dispatcher, then the hub's; none while suspended.
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

	bool LoadSession( const char *pPath, CUtlString *pError );
	// Binds the asset of the session's file and its compiled resource; false (with the
	// reason in pError where there is one) leaves the session without an asset.
	bool BindAsset( CUtlString *pError );
	void SetAsset( IAsset *pAsset );
	IAsset *GetAsset() const { return m_pAsset; }
	const CResourceHandle &GetResource() const { return m_hResource; }
	// Saves into memory and has the asset compile from it; false when either step failed
	// (the last good compiled form stays).
	bool RecompileResource();
	// The frame's part of a session: take a changed usage of the compiled definition,
	// compile when an edit asked for it, then tell the written nodes once.
	void RunFrame();
	// Copies the compiled definition's usage when it differs from the session's copy,
	// rebuilds the known control points and tells the widgets; true when it changed.
	bool UpdateDefinitionUsage();
	void RebuildKnownControlPoints();
	const ZolKnownControlPointMap_t &GetKnownControlPoints() const { return m_pControlPointState->GetKnownControlPoints(); }
	bool IsKnownControlPoint( const ParticleParamID_t &key ) const { return m_pControlPointState->FindKnown( key ) != nullptr; }
	const CParticleDefinitionUsage &GetDefinitionUsage() const { return m_DefinitionUsage; }
	// Where the preview stands each control point and what each named value holds.
	CZolControlPointState *GetControlPointState() const { return m_pControlPointState.get(); }

	// The control point that the preview controls have selected; number -1 for none.
	const ParticleParamID_t &GetSelectedControlPoint() const { return m_SelectedControlPoint; }
	void SetSelectedControlPoint( const ParticleParamID_t &key );
	int GetControlPointEditMode( const ParticleParamID_t &key ) const { return m_pControlPointState->GetEditMode( key ); }
	// Refuses a mode that doesn't fit the point's usage kind.
	bool SetControlPointEditMode( const ParticleParamID_t &key, int nMode ) { return m_pControlPointState->SetEditMode( key, nMode ); }
	// Opens one step of the document's undo history for a change of a point's preview
	// settings (a gizmo drag, a typed position): undo puts the point back; the document
	// itself doesn't change, nor its modified mark.
	void BeginControlPointEdit( const ParticleParamID_t &key, const char *pDescription );
	// A point's transform as one such step; false when nothing changed.
	bool SetControlPointTransform( const ParticleParamID_t &key, const Vector &vPosition, const QAngle &angles, const char *pDescription );
	// A pinned point keeps its transform across configurations and sessions; pinning takes
	// the preview session's transform of it.
	void SetControlPointPersisted( const ParticleParamID_t &key, bool bPersisted );
	void ApplyPersistedControlPoints();

	// The preview that this session's state is applied to; the preview widget sets itself
	// here while it shows the session, and null when it stops.
	void SetPreviewTarget( IZolPreviewTarget *pTarget ) { m_pPreviewTarget = pTarget; }
	IZolPreviewTarget *GetPreviewTarget() const { return m_pPreviewTarget; }
	// The whole state to the preview target, when there is one.
	void ApplyToPreview();

	// The preview setup: the model, the entities' models and the rest of the preview state.
	const ParticlePreviewState_t &GetPreviewState() const { return m_PreviewState; }
	ParticlePreviewState_t &GetPreviewStateForModify() { return m_PreviewState; }
	// The model of the preview and of the three entity kinds; without bForce an unchanged
	// name (ignoring case) does nothing. True when something changed.
	bool SetPreviewModel( const char *pName, bool bForce );
	const char *GetEntityModel( int nEntity ) const override;
	void SetBodyGroup( const char *pName, int nValue );
	int GetBodyGroup( const char *pName ) const;

	// Clipboard: KV3 text in the "generic" format.
	bool CopySelection();
	bool PasteFromClipboard();
	bool BuildSelectionClipboard( KeyValues3 *pOut ) const;

	// Configurations of control points. Adding one selects it.
	ZolControlPointConfiguration_t *AddConfiguration( const char *pName );
	// Adds a configuration under the first free default name: "preview", "game", then
	// "Config %d" counted from the configuration count plus one.
	ZolControlPointConfiguration_t *AddNewConfiguration();
	void RemoveConfiguration( ZolControlPointConfiguration_t *pConfig );
	// The configuration's preview state, model and drivers take effect in the session's
	// state; the document doesn't change. Null does nothing.
	void SelectConfiguration( const ZolControlPointConfiguration_t *pConfig );
	// The state's drivers and the preview state into the configuration; the caller opens
	// the undo step ("Commit Control Point And Preview State").
	void StoreStateInConfiguration( ZolControlPointConfiguration_t *pConfig ) const;
	ZolControlPointConfiguration_t *GetCurrentConfiguration() const;
	// The current configuration takes a new name, as one undo step. Refused (false) for an
	// empty name, the same name ignoring case, or a name another configuration has.
	bool RenameCurrentConfiguration( const char *pName );
	// A configuration other than the current one by name becomes current and takes effect;
	// an empty name leaves none current. The document doesn't change.
	void SelectConfigurationByName( const char *pName );
	const char *GetCurrentConfigName() const { return m_CurrentConfigName.Get(); }
	// The current state as a configuration on the clipboard ("ControlPointConfiguration"
	// in KV3 text of the format "generic"); the document doesn't change.
	bool CopyConfiguration() const;
	// A configuration from the clipboard takes effect in the state; the document doesn't
	// change. False (the caller beeps) for empty or unreadable text; text without a
	// configuration does nothing.
	bool PasteConfiguration();

	// The variables of this file and its family; made on first use.
	CZolNamedValueContext *GetNamedValueContext();

	// Whether the asset may be a child of this system; asks the user where it must.
	bool CanBeChild( IAsset *pChild );
	// Asks for a particle system and adds it as a child when it may be one; null when the
	// user cancelled or the pick was refused.
	CZolChildNode *BrowseAndAddChild();
	// Asks for a particle system for the child to refer to instead; false when the user
	// cancelled or the pick was refused.
	bool BrowseForChild( CZolChildNode *pChild );
	// Adds to a list as the user chooses: a child through the file dialog, a variable
	// through its dialog (with the named value context), a function through the picker
	// (PARTICLE_FUNCTION_ROOT: of any list). False when nothing was added.
	bool AddElement( ParticleFunctionType_t eType, IZolNodeVariableContext *pHint );

	// Where the function list stood while it showed this session.
	int GetFunctionListScroll() const { return m_nFunctionListScroll; }
	void SetFunctionListScroll( int nScroll ) { m_nFunctionListScroll = nScroll; }

	// IBindTarget: the commands of context "ZolSession" (zolsessioncommands.cpp).
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;
	// The Edit commands; false when there was nothing to act on (the command beeps).
	bool CutSelection();
	bool DeleteSelection();
	bool ToggleSelection();

	// Removes drivers of control points that no function uses from a tree about to be
	// saved or compiled. Does nothing until a compiled definition has told which control
	// points it uses, so a file without an asset keeps its drivers.
	void FilterDrivers( KeyValues3 *pRoot ) const;

	CZolDoc *GetDoc() const { return m_pDoc.get(); }
	// IZolDocumentSource
	IAsset *GetSourceAsset() const override { return m_pAsset; }
	const CZolDoc *GetSourceDocument() const override { return m_pDoc.get(); }
	const CZolDoc *FindOpenDocument( IAsset *pAsset ) const override;
	bool NeedsRecompile() const { return m_bNeedsRecompile; }
	int GetCompileCount() const { return m_nCompileCount; }
	const CUtlString &GetLastCompiledText() const { return m_LastCompiledText; }

private:
	void OnDocumentChanged( const ZolEvent_DocumentModified_t & );
	void OnFunctionEnableDisableChanged( const ZolEvent_FunctionEnableDisableChanged_t & );
	void OnFunctionListChanged( const ZolEvent_FunctionListChanged_t & );
	void OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & );
	// IZolControlPointStateHost
	void OnControlPointStateChanged( const ParticleParamID_t &key ) override;
	void OnNamedValueStateChanged( const ParticleParamID_t &key ) override;
	void OnEditModeChanged( const ParticleParamID_t &key ) override;
	const char *GetPreviewModel() const override { return m_PreviewState.m_previewModel.Get(); }
	void GetWearableModels( CUtlVector<CUtlString> *pModels ) const override;
	bool GetDeclaredValue( const ParticleParamID_t &key, KeyValues3 *pValue ) const override;

	// KV3 text of the format "generic" on the clipboard; false when there is none to read.
	bool WriteClipboard( const KeyValues3 &clipboard ) const;
	bool ReadClipboard( KeyValues3 *pClipboard ) const;
	void MarkEdited();
	void SelectFirstConfiguration();
	CZolApp *GetZolApp() const;
	void ReleaseAsset();
	// A driver for each control point of the usage that the definition doesn't set itself,
	// at its default offset where it has one.
	void AddUsageDrivers( KeyValues3 *pConfig ) const;
	// The prompt's file dialog for a particle system of the content tree; null when the
	// user cancelled or chose a file that isn't one (after telling them).
	IAsset *PickChildAsset( const char *pTitle );

	IZolEventHub *m_pEventHub = nullptr;
	CToolEventDispatcher m_Events;
	int m_nEventSuspendCount = 0;
	CToolEventMapRegistrationHelper<CZolSession> m_EventMap;
	std::unique_ptr<CZolDoc> m_pDoc;
	CParticleDefinitionUsage m_DefinitionUsage;
	// Whether m_DefinitionUsage came from a compiled definition.
	bool m_bUsageFromResource = false;
	// Owns the known control points as well: the state's rules all depend on them.
	std::unique_ptr<CZolControlPointState> m_pControlPointState;
	// One undoable object per key moved so far; they outlive the document's history.
	std::unordered_map<ParticleParamID_t, std::unique_ptr<CZolControlPointUndoable>, ParticleParamIDHash_t> m_ControlPointUndoables;
	ParticleParamID_t m_SelectedControlPoint;
	CUtlString m_CurrentConfigName;
	CUtlString m_EntityModels[ 3 ];
	CUtlVector<CUtlString> m_WearableModels;
	ParticlePreviewState_t m_PreviewState;
	IZolPreviewTarget *m_pPreviewTarget = nullptr;
	std::unique_ptr<CZolNamedValueContext> m_pNamedValueContext;
	IAsset *m_pAsset = nullptr;
	CResourceHandle m_hResource;
	int m_nFunctionListScroll = 0;
	bool m_bSuppressModified = false;
	bool m_bNeedsRecompile = false;
	// The compiled form as text, for the asset compile and for whoever reads it back.
	CUtlString m_LastCompiledText;
	int m_nCompileCount = 0;
};
