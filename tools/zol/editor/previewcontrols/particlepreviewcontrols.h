#pragma once
// The "Controls" dock: everything the preview shows a system with. Which control point
// configuration is current (add, rename, remove, reset, commit, copy, paste), a row per
// control point and variable the compiled system uses, and the preview state: model,
// skin, body parts, animation, ground, rate, gravity, water, hitboxes, attachments. It
// writes to the preview session and never to the document, except for committing the
// preview state into the configuration and the configuration's name, each one undo step.
// Every refresh holds the controls' signals back, so showing data never writes it back.

#include <QString>
#include <QWidget>

#include <vector>

#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"
#include "zoldoc_lib/zolevents.h"

class CQAnimPreviewWidget;
class CQAssetPicker;
class CQControlPointEditor;
class CQNamedValueEditor;
class CQSmartComboBox;
class CQCaptionedVectorEdit;
class CZolNamedValueContext;
class CZolSession;
class IAsset;
class CQElidedCheckBox;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QLayout;
class QGroupBox;
class QLineEdit;
class QScrollArea;
class QToolButton;
class QVBoxLayout;

class CQParticlePreviewControls : public QWidget
{
	Q_OBJECT

public:
	// The context answers the variables' binding choices (the property panel's domain).
	explicit CQParticlePreviewControls( CZolNamedValueContext *pContext, QWidget *pParent = nullptr );
	~CQParticlePreviewControls() override;

	// Binds to a preview session (null: none): its hooks, the configuration combo, the
	// state and the rows.
	void SetSession( CZolSession *pSession );
	CZolSession *GetSession() const { return m_pSession; }
	// Shows the preview state; with bLists the lists of the model are made anew as well.
	void Refresh( bool bLists );
	void RebuildRows();
	void RebuildConfigurationCombo();
	void UpdateEnabledStates();
	void HighlightRows();

	const std::vector<CQControlPointEditor *> &GetControlPointEditors() const { return m_ControlPointEditors; }
	const std::vector<CQNamedValueEditor *> &GetNamedValueEditors() const { return m_NamedValueEditors; }
	CQControlPointEditor *FindControlPointEditor( int nPoint ) const;
	QComboBox *GetConfigurationCombo() const { return m_pConfigCombo; }
	QToolButton *GetAddConfigButton() const { return m_pAddButton; }
	QToolButton *GetRemoveConfigButton() const { return m_pRemoveButton; }
	QToolButton *GetResetButton() const { return m_pResetButton; }
	QToolButton *GetCommitButton() const { return m_pCommitButton; }
	QToolButton *GetCopyButton() const { return m_pCopyButton; }
	QToolButton *GetPasteButton() const { return m_pPasteButton; }
	QLineEdit *GetPreviewSystemEdit() const { return m_pPreviewSystemEdit; }
	QToolButton *GetLockPreviewSystemButton() const { return m_pLockPreviewSystem; }
	CQAssetPicker *GetModelPicker() const { return m_pModelPicker; }
	CQSmartComboBox *GetItemCombo() const { return m_pItemCombo; }
	QCheckBox *GetDisplaySetCheckBox() const { return m_pDisplaySet; }
	CQSmartComboBox *GetSkinCombo() const { return m_pSkinCombo; }
	CQSmartComboBox *GetBodyPartCombo() const { return m_pBodyPartCombo; }
	QLineEdit *GetBodyPartValueEdit() const { return m_pBodyPartValue; }
	QLineEdit *GetSimulationRateEdit() const { return m_pSimulationRate; }
	CQSmartComboBox *GetGroundCombo() const { return m_pGroundCombo; }
	QCheckBox *GetAxesCheckBox() const { return m_pDrawAxes; }
	CQCaptionedVectorEdit *GetGravityEdit() const { return m_pGravity; }
	QCheckBox *GetWaterCheckBox() const { return m_pWater; }
	CQAnimPreviewWidget *GetAnimationWidget() const { return m_pAnimation; }
	QLineEdit *GetFrameEdit() const { return m_pFrameEdit; }
	CQSmartComboBox *GetHitboxSetCombo() const { return m_pHitboxSetCombo; }
	QCheckBox *GetHitboxesCheckBox() const { return m_pDrawHitboxes; }
	QCheckBox *GetAttachmentAxesCheckBox() const { return m_pDrawAttachmentAxes; }
	QCheckBox *GetAttachmentNamesCheckBox() const { return m_pDrawAttachmentNames; }
	// The preview group's settings in two label-and-field columns, the second pair under
	// the first, as they are while the room is too narrow for four.
	void SetPreviewGridNarrow( bool bNarrow );
	bool IsPreviewGridNarrow() const { return m_bPreviewGridNarrow; }

protected:
	bool eventFilter( QObject *pWatched, QEvent *pEvent ) override;
	void showEvent( QShowEvent *pEvent ) override;

public slots:
	void OnModelPicked( IAsset *pAsset );
	void OnGroundComboChanged();
	void OnSkinComboChanged();
	void OnBodyPartComboChanged();
	void OnBodyPartValueChanged();
	void OnAxesCheckBoxChanged( bool bChecked );
	void EnableHitBoxes( bool bEnable );
	void OnHitboxSetChanged();
	void EnableAttachmentAxes( bool bEnable );
	void EnableAttachmentNames( bool bEnable );
	void OnNamedSequenceChanged( const QString seqName );
	void OnPreviewAnimClipChanged( const QString clipPath );
	void OnPlaybackSpeedChanged( float flSpeed );
	void OnAnimationLoopingChanged( bool bLooping );
	void OnEconItemChanged();
	void OnEconItemDisplayTypeChanged( bool bDisplaySets );
	void OnLockPreviewSystemToggled();
	void OnSimulationRateChanged();
	void OnGravityChanged();
	void OnWaterCheckBoxChanged( bool bUnderwater );
	void OnSavePreviewState();
	void OnLoadPreviewState();
	void OnCopyPreviewState();
	void OnPastePreviewState();
	void OnAddConfiguration();
	void OnRemoveConfiguration();
	void OnConfigurationNameChanged();
	void OnSelectedConfigurationChanged();
	void OnAnimationFrameChanged();

private:
	// A widget or layout of the preview group's grid, at its place in four columns.
	struct PreviewGridCell_t
	{
		QWidget *m_pWidget = nullptr;
		QLayout *m_pLayout = nullptr;
		int m_nRow = 0;
		int m_nColumn = 0;
		int m_nColumnSpan = 1;
	};
	QCheckBox *MakeElidedCheckBox( const char *pText, QWidget *pParent );
	void AddPreviewGridCell( QWidget *pWidget, QLayout *pLayout, int nRow, int nColumn, int nColumnSpan = 1 );
	void ArrangePreviewGrid();
	// The width the four columns need; narrower than that, two.
	int GetWidePreviewGridWidth();

	void OnPreviewSessionChanged( const ZolEvent_PreviewSessionChanged_t &event );
	void OnDocumentReplaced( const ZolEvent_DocumentReplaced_t &event );
	void OnPreviewConfigSelectionChanged( const ZolEvent_PreviewConfigSelectionChanged_t &event );
	void OnControlPointListChanged( const ZolEvent_ControlPointListChanged_t &event );
	void OnControlPointValueChanged( const ZolEvent_ControlPointValueChanged_t &event );
	void OnPreviewStateChanged( const ZolEvent_PreviewStateChanged_t &event );
	void OnNamedValueChanged( const ZolEvent_NamedValueChanged_t &event );

	// Tells the preview that its state changed (bModelStands: no model list changed).
	void SendPreviewStateChanged( bool bModelStands );
	void RebuildModelLists();
	void ClearRows();
	QWidget *BuildConfigurationRow();
	QGroupBox *BuildPreviewGroup();

	CZolNamedValueContext *m_pContext;
	CZolSession *m_pSession = nullptr;
	CToolEventMapRegistrationHelper<CQParticlePreviewControls> m_EventMap;
	std::vector<CQControlPointEditor *> m_ControlPointEditors;
	std::vector<CQNamedValueEditor *> m_NamedValueEditors;

	QComboBox *m_pConfigCombo = nullptr;
	// What the user typed into the combo since the last choice: a new name.
	QString m_TypedConfigName;
	bool m_bConfigNameTyped = false;
	QToolButton *m_pAddButton = nullptr;
	QToolButton *m_pRemoveButton = nullptr;
	QToolButton *m_pResetButton = nullptr;
	QToolButton *m_pCommitButton = nullptr;
	QToolButton *m_pCopyButton = nullptr;
	QToolButton *m_pPasteButton = nullptr;
	QScrollArea *m_pScrollArea = nullptr;
	QVBoxLayout *m_pRowLayout = nullptr;
	QLineEdit *m_pPreviewSystemEdit = nullptr;
	QToolButton *m_pLockPreviewSystem = nullptr;
	CQAssetPicker *m_pModelPicker = nullptr;
	CQSmartComboBox *m_pItemCombo = nullptr;
	QCheckBox *m_pDisplaySet = nullptr;
	CQSmartComboBox *m_pSkinCombo = nullptr;
	CQSmartComboBox *m_pBodyPartCombo = nullptr;
	QLineEdit *m_pBodyPartValue = nullptr;
	QLineEdit *m_pSimulationRate = nullptr;
	CQSmartComboBox *m_pGroundCombo = nullptr;
	QCheckBox *m_pDrawAxes = nullptr;
	CQCaptionedVectorEdit *m_pGravity = nullptr;
	QCheckBox *m_pWater = nullptr;
	CQAnimPreviewWidget *m_pAnimation = nullptr;
	QLineEdit *m_pFrameEdit = nullptr;
	CQSmartComboBox *m_pHitboxSetCombo = nullptr;
	QCheckBox *m_pDrawHitboxes = nullptr;
	QCheckBox *m_pDrawAttachmentAxes = nullptr;
	QCheckBox *m_pDrawAttachmentNames = nullptr;
	QGridLayout *m_pPreviewGrid = nullptr;
	std::vector<PreviewGridCell_t> m_PreviewGridCells;
	std::vector<CQElidedCheckBox *> m_ElidedBoxes;
	bool m_bPreviewGridNarrow = false;
	int m_nWidePreviewGridWidth = 0;
	QWidget *m_pWatchedViewport = nullptr;
};
