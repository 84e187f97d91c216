#pragma once
// One open particle system definition: the document, its file, the compiled form that the
// preview shows, and the events that tell the widgets what changed. Widgets reach the
// definition only through a session.

#include <memory>

#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"
#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"
#include "zoldoc_lib/izoleventhub.h"
#include "zoldoc_lib/zolevents.h"

class CZolApp;
class CZolDoc;
class IAsset;
class KeyValues3;
struct ZolControlPointConfiguration_t;

class CZolSession : public CSimpleSharedWindowEditorSession
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
	// Saves into memory and has the asset compile from it; false when either step failed
	// (the last good compiled form stays).
	bool RecompileResource();
	// The asset of the session's file; null for a new file or one outside the content tree.
	IAsset *FindEditedAsset() const;
	// The frame's part of a session: compile when an edit asked for it, then tell the
	// written nodes once.
	void RunFrame();

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
	bool CanBeChild( const char *pChildPath );

	// Removes drivers of control points that no function uses from a tree about to be
	// saved or compiled. Does nothing until the compiled definition has told which
	// control points it knows.
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

	IZolEventHub *m_pEventHub = nullptr;
	CToolEventDispatcher m_Events;
	int m_nEventSuspendCount = 0;
	CToolEventMapRegistrationHelper<CZolSession> m_EventMap;
	std::unique_ptr<CZolDoc> m_pDoc;
	CUtlString m_CurrentConfigName;
	bool m_bSuppressModified = false;
	bool m_bNeedsRecompile = false;
	// The compiled form as text, for the asset compile and for whoever reads it back.
	CUtlString m_LastCompiledText;
	int m_nCompileCount = 0;
	// Whether the definition's resource holds edited text that the file doesn't.
	bool m_bAssetEdited = false;
};
