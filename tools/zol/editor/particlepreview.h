#pragma once
// The live preview in the middle of the main window: a tool bar over a 3D view of the
// preview session's particle system. It never owns a document; it follows whichever
// session the application previews, runs its compiled definition on a scene node, and
// restarts it by the user's rules. An edit reaches it through the session's resource:
// the node sees the new data on its next update and starts over.

#include <QWidget>

#include <map>
#include <memory>

#include "core/particles/particleparamid.h"
#include "tools/toolscene/itoolsceneparticlelistener.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolutils2/inputbind/bindtarget.h"
#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"
#include "zoldoc_lib/izolpreviewtarget.h"
#include "zoldoc_lib/zolevents.h"

class CQToolSceneWidget;
class CToolSceneAxis;
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

class CQParticlePreview : public QWidget, public IBindTarget, public IToolSceneParticleListener, public IZolPreviewTarget
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
	int m_nPeakActive = 0;
	int m_nPeakTotalActive = 0;
};
