#pragma once
// One open particle system definition: the document, its file, the compiled form that the
// preview shows, and the events that tell the widgets what changed. Widgets reach the
// definition only through a session.

#include <memory>
#include <unordered_map>

#include "core/host/resourcebinding.h"
#include "core/particles/particleparamid.h"
#include "core/particles/sim/particledefinitionusage.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/inputbind/bindtarget.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"
#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"
#include "zoldoc_lib/izoleventhub.h"
#include "zoldoc_lib/zolevents.h"

class CZolApp;
class CZolChildNode;
class CZolDoc;
class IAsset;
class IZolNodeVariableContext;
class KeyValues3;
struct ZolControlPointConfiguration_t;

// A control point or named value that the compiled definition uses.
struct ZolKnownControlPoint_t
{
	ParticleParamID_t m_Key;
	int m_nUsageKind = 0;        // the kind of the first component
	bool m_bOffsetApplied = false;
	bool m_bDriven = false;      // the definition sets all three components itself
	CUtlString m_NamedValueType; // for a key with a token
};

using ZolKnownControlPointMap_t = std::unordered_map<ParticleParamID_t, ZolKnownControlPoint_t, ParticleParamIDHash_t>;

// Edit modes of a control point: 0 none, 1 translate, 2 rotate, 3 the gizmo's other.
// Whether a mode fits a usage kind, and the mode a kind falls back to.
bool DoesControlPointEditModeFit( int nUsageKind, int nMode );
int GetControlPointEditModeForUsage( int nUsageKind );

class CZolSession : public CSimpleSharedWindowEditorSession, public IBindTarget
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
	const ZolKnownControlPointMap_t &GetKnownControlPoints() const { return m_KnownControlPoints; }
	bool IsKnownControlPoint( const ParticleParamID_t &key ) const { return m_KnownControlPoints.count( key ) != 0; }
	const CParticleDefinitionUsage &GetDefinitionUsage() const { return m_DefinitionUsage; }

	// The control point that the preview controls have selected; number -1 for none.
	const ParticleParamID_t &GetSelectedControlPoint() const { return m_SelectedControlPoint; }
	void SetSelectedControlPoint( const ParticleParamID_t &key );
	int GetControlPointEditMode( const ParticleParamID_t &key ) const;
	// Refuses a mode that doesn't fit the point's usage kind.
	bool SetControlPointEditMode( const ParticleParamID_t &key, int nMode );

	// Clipboard: KV3 text in the "generic" format.
	bool CopySelection();
	bool PasteFromClipboard();
	bool BuildSelectionClipboard( KeyValues3 *pOut ) const;

	// Configurations of control points.
	ZolControlPointConfiguration_t *AddConfiguration( const char *pName );
	void RemoveConfiguration( ZolControlPointConfiguration_t *pConfig );
	void SelectConfiguration( ZolControlPointConfiguration_t *pConfig );
	const char *GetCurrentConfigName() const { return m_CurrentConfigName.Get(); }

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
	bool NeedsRecompile() const { return m_bNeedsRecompile; }
	int GetCompileCount() const { return m_nCompileCount; }
	const CUtlString &GetLastCompiledText() const { return m_LastCompiledText; }

private:
	void OnDocumentChanged( const ZolEvent_DocumentModified_t & );
	void OnFunctionEnableDisableChanged( const ZolEvent_FunctionEnableDisableChanged_t & );
	void OnFunctionListChanged( const ZolEvent_FunctionListChanged_t & );
	void OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & );
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
	ZolKnownControlPointMap_t m_KnownControlPoints;
	std::unordered_map<ParticleParamID_t, int, ParticleParamIDHash_t> m_ControlPointEditModes;
	ParticleParamID_t m_SelectedControlPoint;
	CUtlString m_CurrentConfigName;
	IAsset *m_pAsset = nullptr;
	CResourceHandle m_hResource;
	int m_nFunctionListScroll = 0;
	bool m_bSuppressModified = false;
	bool m_bNeedsRecompile = false;
	// The compiled form as text, for the asset compile and for whoever reads it back.
	CUtlString m_LastCompiledText;
	int m_nCompileCount = 0;
};
