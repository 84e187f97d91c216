#pragma once
// The live preview in the middle of the main window: a tool bar over a 3D view of the
// preview session's particle system. It never owns a document; it follows whichever
// session the application previews, runs its compiled definition on a scene node, and
// restarts it by the user's rules. An edit reaches it through the session's resource:
// the node sees the new data on its next update and starts over.

#include <QWidget>

#include <map>
#include <memory>

#include "core/mathlib/qangle.h"
#include "core/particles/particleparamid.h"
#include "tools/toolscene/gizmogridsnapper.h"
#include "tools/toolscene/igizmolistener.h"
#include "tools/toolscene/itoolsceneparticlelistener.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolutils2/inputbind/bindtarget.h"
#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"
#include "zoldoc_lib/izolpreviewtarget.h"
#include "zoldoc_lib/zolevents.h"

class CQToolSceneWidget;
class CToolSceneAxis;
class CToolSceneGizmoLibGizmo;
class QKeyEvent;
struct EventGizmoAngleChanged_t;
struct EventGizmoLengthChanged_t;
struct EventGizmoScaleChanged_t;
struct GizmoMatrix_t;
class CToolSceneGrid;
class CToolSceneModel;
class CToolSceneParticleSystem;
class CZolSession;
class KeyValues3;
class QAction;
class QCheckBox;
class QLineEdit;
class QToolBar;
class QToolButton;

// The detail levels an artist can preview at, lowest first.
constexpr int PARTICLE_DETAIL_LEVEL_COUNT = 4;
const char *GetParticleDetailLevelName( int nLevel );

class CQParticlePreview : public QWidget, public IGizmoListener, public IBindTarget, public IToolSceneParticleListener, public IZolPreviewTarget
{
	Q_OBJECT

public:
	explicit CQParticlePreview( QWidget *pParent = nullptr );
	~CQParticlePreview() override;

	// The frame's work, called by the main window.
	void Update();
	void RefreshSession();
	void RebuildPreview( bool bReloadModels );
	void ApplyControlPoints();

	// The commands of the tool bar and of the application ("ZolApp").
	void RestartPreview();
	void RestartGlobal();
	void StopSim( bool bPlayEndCap );

	CZolSession *GetSession() const { return m_pSession; }
	CToolScene &GetScene() { return m_Scene; }
	CQToolSceneWidget *GetSceneWidget() const { return m_pSceneWidget; }
	// The overlay indicator "System will not end on stop!", shown while the running tree keeps
	// particles that nothing ends.
	int GetWillNotEndIndicator() const { return m_nWillNotEndIndicator; }
	CToolSceneParticleSystem *GetParticleSystem() const { return m_pParticleSystem.get(); }
	CToolSceneGrid *GetGround() const { return m_pGround.get(); }
	CToolSceneModel *GetPreviewModel() const { return m_pPreviewModel.get(); }
	QAction *GetAutoRestartAction() const { return m_pAutoRestartAction; }
	QToolButton *GetPlayButton() const { return m_pPlayButton; }
	QLineEdit *GetAutoRestartTimeEdit() const { return m_pAutoRestartTimeEdit; }
	QLineEdit *GetForcedRestartTimeEdit() const { return m_pForcedRestartTimeEdit; }
	QCheckBox *GetForcedRestartEndcapCheckBox() const { return m_pForcedRestartEndcap; }
	float GetSimulationRate() const { return m_flSimulationRate; }
	int GetPeakActiveCount() const { return m_nPeakActive; }
	// The axis node of a numbered control point, or null.
	CToolSceneAxis *FindControlPointAxis( int nPoint ) const;

	// IBindTarget: context "ParticlePreview".
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;
	void HideGizmo();

	// The gizmo on the selected control point or variable: shown for a point whose kind
	// moves or turns and for a vector or transform variable, placed where the session's
	// state puts it. A drag moves the point through the session, one undo step a drag.
	CToolSceneGizmoLibGizmo *GetGizmo() const { return m_pGizmo.get(); }
	bool IsGizmoShown() const { return m_bGizmoShown; }
	CGizmoGridSnapper &GetGizmoSnapper() { return m_GizmoSnapper; }
	void UpdateGizmo();
	// The commands "GizmoRotate" and "GizmoTranslate": a transform point's edit mode.
	void SetGizmoRotating( bool bRotate );
	// One keyboard step of the gizmo: 0 right, 1 left, 2 up, 3 down on the screen.
	void NudgeGizmo( int nDirection );
	// Selects the control point whose axes are under the pointer; false when none is.
	bool PickControlPointAtPointer();
	// IGizmoListener
	void OnGizmoBegin( uint32_t nFlags ) override;
	void OnGizmoDrag( const ZolGizmoDrag &drag ) override;
	void OnGizmoEnd( const ZolGizmoDrag &drag ) override;
	// IToolSceneParticleListener
	void OnParticleSystemRestarted( CToolSceneParticleSystem *pSystem ) override;
	// IZolPreviewTarget: the session's control point state, on the particle node and the
	// preview model.
	bool HasRunningCollection() const override;
	void SetCollectionControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles ) override;
	void SetCollectionNamedValue( const ParticleParamID_t &key, const CPulseValueFullType &type, const KeyValues3 &value ) override;
	void ClearControlPointBinding( int nPoint ) override;
	void SetNodeControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles ) override;
	bool BindControlPointToModel( int nPoint, const char *pModelName, bool bSearchChildModels, int nAttachType, const char *pAttachmentName, const Vector &vOffset,
		const QAngle &angOffset ) override;

	static constexpr const char *NO_RESOURCE_MESSAGE = "(Cannot preview - no valid asset / resource name.)";

public slots:
	void PlayModeChanged();
	void ResetCamera();
	void MoveCameraToOrigin();
	void AutoRestartChanged();
	void OnDetailLevelButtonClicked();
	void SetParticleDetailLevel( int nDetailLevel );
	void OnForcedRestartTimeChanged();
	void OnForcedRestartEndcapChanged();
	void OnAutoRestartTimeChanged();
	void OnToggleSystemInformationDisplay( bool bChecked );

private:
	void OnPreviewSessionChanged( const ZolEvent_PreviewSessionChanged_t &event );
	void OnControlPointListChanged( const ZolEvent_ControlPointListChanged_t &event );
	void OnControlPointValueChanged( const ZolEvent_ControlPointValueChanged_t &event );
	void OnPreviewStateChanged( const ZolEvent_PreviewStateChanged_t &event );
	void OnNamedValueChanged( const ZolEvent_NamedValueChanged_t &event );
	void OnPreviewConfigSelectionChanged( const ZolEvent_PreviewConfigSelectionChanged_t &event );
	void OnGizmoLengthChanged( const EventGizmoLengthChanged_t &event );
	void OnGizmoAngleChanged( const EventGizmoAngleChanged_t &event );
	void OnGizmoScaleChanged( const EventGizmoScaleChanged_t &event );
	// The selected key's transform in the node's space; false when it has none to show.
	bool GetGizmoTarget( ParticleParamID_t *pKey, Vector *pPosition, QAngle *pAngles, int *pGizmoMode ) const;
	void PlaceGizmo();
	void ApplyGizmoDrag( const ZolGizmoDrag &drag );
	// The particle node's world frame, which the control points stand in.
	GizmoMatrix_t GetNodeFrame() const;
	// Keys typed into the view: a value for the gizmo.
	bool OnSceneKey( QKeyEvent *pEvent );
	void ShowTypedText();
	void SetSession( CZolSession *pSession );
	void CopyRestartTimesToSystem();
	void UpdateStatusIndicators();
	void UpdateInformationText();
	void UpdateControlPointAxes();

	CToolScene m_Scene;
	CQToolSceneWidget *m_pSceneWidget = nullptr;
	std::unique_ptr<CToolSceneParticleSystem> m_pParticleSystem;
	std::unique_ptr<CToolSceneModel> m_pPreviewModel;
	std::unique_ptr<CToolSceneGrid> m_pGround;
	std::map<int, std::unique_ptr<CToolSceneAxis>> m_ControlPointAxes;
	std::unique_ptr<CToolSceneGizmoLibGizmo> m_pGizmo;
	CGizmoGridSnapper m_GizmoSnapper;
	bool m_bGizmoShown = false;
	// The key a drag moves and where it stood when the drag began.
	ParticleParamID_t m_GizmoKey;
	Vector m_vGizmoStartPosition;
	QAngle m_GizmoStartAngles;

	QToolBar *m_pToolBar = nullptr;
	QToolButton *m_pPlayButton = nullptr;
	QAction *m_pAutoRestartAction = nullptr;
	QToolButton *m_pDetailLevelButton = nullptr;
	QLineEdit *m_pAutoRestartTimeEdit = nullptr;
	QLineEdit *m_pForcedRestartTimeEdit = nullptr;
	QCheckBox *m_pForcedRestartEndcap = nullptr;
	int m_nImportedIndicator = -1;
	int m_nNoContentIndicator = -1;
	int m_nWillNotEndIndicator = -1;

	CZolSession *m_pSession = nullptr;
	CToolEventMapRegistrationHelper<CQParticlePreview> m_EventMap;
	bool m_bDrawControlPointAxes = false;
	float m_flSimulationRate = 1.0f;
	float m_flAutoRestartTime = 0.0f;
	float m_flForcedRestartTime = 0.0f;
	bool m_bShowSystemInformation = true;
	// A non-looping sequence plays towards the frame that fires the system.
	bool m_bNonLoopingSequenceRunning = false;
	int m_nPeakActive = 0;
	int m_nPeakTotalActive = 0;
};
