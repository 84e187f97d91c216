#pragma once
// The editor of a float input in the property panel: a compact page of the widgets of the
// input's type (a number, a variable, a random range, a control point, an attribute,
// noise, ...) with the type button before them, and below them the map stage (multiply,
// remap, curve, notch, round) with its own button. It works on a private copy of the input
// and writes the whole input back on each edit, one undo step; a slider or field drag is
// one step too. The variants differ only in which types they offer.
//
// Inline, inside another input's editor, it writes nothing itself: it tells its owner by
// OnEditInline, with true when the page changed shape.

#include <QVector>

#include "particleslib/particlefloatinput.h"
#include "tools/zol/editor/inputs/floatinputeditlogic.h"
#include "tools/zol/editor/inputs/particleinputeditorbase.h"

class CQBiasEditor;
class CQParticleCurveEditor;
class CQSliderLineEditFloat;
class CQVectorEdit;
class QCheckBox;
class QGridLayout;
class QTimer;
class QVBoxLayout;

class CQParticleFloatInputEditor : public CQParticleInputEditorBase
{
	Q_OBJECT

public:
	CQParticleFloatInputEditor( QWidget *pParent, int nKind, bool bRenderer );
	~CQParticleFloatInputEditor() override;

	int GetKind() const { return m_nKind; }
	bool IsRenderer() const { return m_bRenderer; }
	const CParticleFloatInput &GetInput() const { return m_Input; }
	// Inline use: shows an input (laying the page out when its shape changed); tells nothing.
	void SetInput( const CParticleFloatInput &input );
	// The row's height for the input shown.
	int GetPreferredHeight() const;
	uint32_t GetShownPages() const { return m_nShownPages; }
	// The widgets of a page, for those who drive the editor.
	const QList<QWidget *> &GetPageWidgets( FloatInputPage_t ePage ) const;
	float GetNoiseTime() const { return m_flNoiseTime; }
	QTimer *GetNoiseTimer() const { return m_pNoiseTimer; }
	bool IsRangeDirty() const { return m_bRangeDirty; }

	// The menus of the two buttons; the caller owns them.
	Q_INVOKABLE QMenu *CreateTypeMenu();
	Q_INVOKABLE QMenu *CreateMapMenu();

	// The parts, by name (the page widgets carry these as object names).
	template <typename W> W *Part( const char *pName ) const { return findChild<W *>( QString::fromLatin1( pName ) ); }

	// CQAttributeEditor_Base
	void WriteToAttribute() override;
	void ReadFromAttribute() override;
	void DisconnectAndClear() override;
	bool IsBeingEdited() const override;

signals:
	void OnEditInline( bool bTopological );
	// Inline: a slider or field drag begins and ends, so the owner writes it as one step.
	void InlineGestureStarted();
	void InlineGestureEnded();

public slots:
	void OnTypeButtonClicked();
	void OnMapButtonClicked();
	void OnSetType( int nType );
	void OnSetMapType( int nMapType );
	void OnLiteralValueEdited();
	void OnNamedValueEdited( const QString &text );
	void OnNamedValueHighlighted( int nIndex );
	void OnCPNumberEdited();
	void OnMultFactorEdited();
	void OnRandomMinMaxEdited();
	void OnRandomSeedEdited();
	void OnRandomModeChanged();
	void OnRandomSignFlipChanged();
	void OnReverseOrderChanged();
	void OnNoCameraFallbackValueEdited();
	void OnCamUseBBoxChanged();
	void OnDetailLevelEdited();
	void OnNoiseMinEdited();
	void OnNoiseMaxEdited();
	void OnNoiseRateEdited();
	void OnNoiseScaleSliderEdited( float flValue );
	void OnNoiseOffsetSliderEdited( float flValue );
	void OnNoiseOctaveSliderEdited( float flValue );
	void OnNoiseTurbulenceScaleSliderEdited( float flValue );
	void OnNoiseTurbulenceMixSliderEdited( float flValue );
	void OnNoiseImgPreviewScaleSliderEdited( float flValue );
	void OnNoiseTypeChanged();
	void OnNoiseModifierChanged();
	void OnNoiseImgTimerUpdate();
	void ResetNoiseImage();
	void UpdateNoiseImage();
	void StopNoiseImage();
	void OnNoiseTurbulenceChanged();
	void OnNoiseImgPreviewChanged();
	void OnInputModeChanged();
	void OnReverseInputClicked();
	void OnReverseOutputClicked();
	void OnReverseNoiseInputClicked();
	void OnSnapshotSubsetEdited();
	void OnRangeFocusChanged();
	void ApplyRange();
	void MarkRangeUI( bool bDirty );
	void OnBiasParameterChanged();
	void OnBiasTypeChanged();
	void OnCurveEdited();
	void OnAttributeIndexChanged();
	void OnVectorComponentIndexChanged();
	void OnNotchedChanged();
	void OnRoundTypeChanged();

protected:
	void ConnectSignals() override;
	void resizeEvent( QResizeEvent *pEvent ) override;

private:
	void BuildWidgets();
	// Puts a widget on a page and names it.
	template <typename W> W *OnPage( uint32_t nPages, W *pWidget, const char *pName = nullptr );
	QWidget *AddRow( int nHeight );
	CQSliderLineEditFloat *MakeSlider( double flMin, double flMax, bool bHardLimits, bool bIntegral );
	void ConnectSlider( CQSliderLineEditFloat *pSlider, void ( CQParticleFloatInputEditor::*pfnSlot )( float ) );

	// Lays the page out for the working copy: which widgets show, the buttons, the height.
	void LayOut();
	// Shows the working copy's values in the widgets, signals blocked.
	void ShowValues();
	void FillAttributeCombo();
	// Writes the working copy (or tells the owner); bTopological when the page changed shape.
	void Commit( bool bTopological );
	float ReadFloat( CQSmartLineEdit *pEdit ) const;
	void ApplyRangeValues( float flInput0, float flInput1, float flOutput0, float flOutput1 );
	void StoreNoise( std::function<void()> fnStore );

	int m_nKind;
	bool m_bRenderer;
	CParticleFloatInput m_Input;
	uint32_t m_nShownPages = 0;
	int m_nLaidOutType = INT32_MIN;
	int m_nLaidOutMap = INT32_MIN;
	int m_nLaidOutInstances = -1;
	bool m_bRangeDirty = false;
	float m_flNoiseTime = 0.0f;
	QTimer *m_pNoiseTimer = nullptr;

	// Pages: every widget on them, and the rows that hold them.
	QHash<uint32_t, QList<QWidget *>> m_Pages;
	struct Row_t
	{
		QWidget *m_pRow;
		QList<QWidget *> m_Widgets;
	};
	QVector<Row_t> m_Rows;
	QVBoxLayout *m_pLayout = nullptr;
	QWidget *m_pCurrentRow = nullptr;

	QToolButton *m_pTypeButton = nullptr;
	QToolButton *m_pMapButton = nullptr;
	QLabel *m_pTypeLabel = nullptr;
	QLabel *m_pCPLabel = nullptr;
	CQSmartLineEdit *m_pLiteralEdit = nullptr;
	QComboBox *m_pNamedValueCombo = nullptr;
	CQSmartLineEdit *m_pRandomMin = nullptr;
	CQSmartLineEdit *m_pRandomMax = nullptr;
	QComboBox *m_pRandomMode = nullptr;
	QCheckBox *m_pRandomSignFlip = nullptr;
	CQSmartLineEdit *m_pRandomSeed = nullptr;
	CQBiasEditor *m_pRandomBias = nullptr;
	CQSmartLineEdit *m_pCPEdit = nullptr;
	QComboBox *m_pComponentCombo = nullptr;
	QComboBox *m_pAttributeCombo = nullptr;
	CQSmartLineEdit *m_pSubsetEdit = nullptr;
	CQSmartLineEdit *m_pFallbackEdit = nullptr;
	QCheckBox *m_pBBoxCheck = nullptr;
	QCheckBox *m_pReverseOrder = nullptr;
	CQSmartLineEdit *m_pDetailEdits[ 4 ] = {};
	CQSmartLineEdit *m_pNoiseMin = nullptr;
	CQSmartLineEdit *m_pNoiseMax = nullptr;
	CQVectorEdit *m_pNoiseRate = nullptr;
	QComboBox *m_pNoiseType = nullptr;
	CQSliderLineEditFloat *m_pNoiseScale = nullptr;
	CQSliderLineEditFloat *m_pNoiseOffset = nullptr;
	CQSliderLineEditFloat *m_pNoiseOctaves = nullptr;
	QComboBox *m_pNoiseTurbulence = nullptr;
	CQSliderLineEditFloat *m_pNoiseTurbulenceScale = nullptr;
	CQSliderLineEditFloat *m_pNoiseTurbulenceMix = nullptr;
	QComboBox *m_pNoiseModifier = nullptr;
	QComboBox *m_pNoisePreviewMode = nullptr;
	CQSliderLineEditFloat *m_pNoisePreviewScale = nullptr;
	QLabel *m_pNoiseImage = nullptr;
	CQSmartLineEdit *m_pMultEdit = nullptr;
	CQSmartLineEdit *m_pRangeEdits[ 4 ] = {}; // input low, input high, output low, output high
	QComboBox *m_pInputMode = nullptr;
	CQBiasEditor *m_pMapBias = nullptr;
	CQParticleCurveEditor *m_pCurve = nullptr;
	CQSmartLineEdit *m_pNotchEdits[ 4 ] = {}; // range low, range high, outside, inside
	QComboBox *m_pRoundType = nullptr;
};

class CQParticleCollectionFloatInput : public CQParticleFloatInputEditor
{
	Q_OBJECT
public:
	explicit CQParticleCollectionFloatInput( QWidget *pParent = nullptr ) : CQParticleFloatInputEditor( pParent, FLOAT_INPUT_EDITOR_COLLECTION, false ) {}
};

class CQParticleCollectionRendererFloatInput : public CQParticleFloatInputEditor
{
	Q_OBJECT
public:
	explicit CQParticleCollectionRendererFloatInput( QWidget *pParent = nullptr ) : CQParticleFloatInputEditor( pParent, FLOAT_INPUT_EDITOR_COLLECTION, true ) {}
};

class CQPerParticleFloatInputEditor : public CQParticleFloatInputEditor
{
	Q_OBJECT
public:
	explicit CQPerParticleFloatInputEditor( QWidget *pParent = nullptr ) : CQParticleFloatInputEditor( pParent, FLOAT_INPUT_EDITOR_PER_PARTICLE, false ) {}
};

class CQParticleRemapFloatInput : public CQParticleFloatInputEditor
{
	Q_OBJECT
public:
	explicit CQParticleRemapFloatInput( QWidget *pParent = nullptr ) : CQParticleFloatInputEditor( pParent, FLOAT_INPUT_EDITOR_REMAP, false ) {}
};
