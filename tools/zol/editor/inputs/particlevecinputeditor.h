#pragma once
// The editor of a vector input: a page per type (a literal vector or colour, a variable, a
// particle attribute, a control point's value, position or direction, three float inputs,
// an interpolation or colour gradient driven by a float input, random ranges) after the
// type button. Float inputs inside it are float input editors of their own, inline: each
// of their edits is written as the whole vector input, one undo step.

#include "particleslib/particlevecinput.h"
#include "tools/zol/editor/inputs/particleinputeditorbase.h"

class CQColorGradientEditor;
class CQColorSwatch;
class CQParticleFloatInputEditor;
class CQVectorEdit;
class QCheckBox;
class QVBoxLayout;

class CQParticleVecInputEditor : public CQParticleInputEditorBase
{
	Q_OBJECT

public:
	CQParticleVecInputEditor( QWidget *pParent, bool bPerParticle, bool bRenderer );
	~CQParticleVecInputEditor() override;

	bool IsPerParticle() const { return m_bPerParticle; }
	const CParticleVecInput &GetInput() const { return m_Input; }
	int GetPreferredHeight() const;
	// True during the write and rebuild that a type change starts.
	bool IsChangingType() const { return m_bChangingType; }

	Q_INVOKABLE QMenu *CreateTypeMenu();
	template <typename W> W *Part( const char *pName ) const { return findChild<W *>( QString::fromLatin1( pName ) ); }
	// The float editors inside: the components X, Y, Z (0..2) and the interpolation's input (3).
	CQParticleFloatInputEditor *GetFloatEditor( int nIndex ) const { return m_pFloatEditors[ nIndex ]; }
	bool IsComponentCollapsed( int nComponent ) const { return m_bCollapsed[ nComponent ]; }
	void SetComponentCollapsed( int nComponent, bool bCollapsed );

	// CQAttributeEditor_Base
	void WriteToAttribute() override;
	void ReadFromAttribute() override;
	void DisconnectAndClear() override;

public slots:
	void OnTypeButtonClicked();
	void OnSetType( int nType );
	void OnLiteralValueEdited();
	void OnNamedValueEdited( const QString &text );
	void OnNamedValueHighlighted( int nIndex );
	void OnCPNumberEdited();
	void OnDeltaCPNumberEdited();
	void OnCPVectorEdited();
	void OnFloatComponentEdit( bool bTopological );
	void OnFloatInterpEdit( bool bTopological );
	void OnInterpInputEdited();
	void OnInterpOutputEdited();
	void OnReverseInputClicked();
	void OnReverseOutputClicked();
	void OnGradientEdited( bool bFinished );
	void OnAttributeIndexChanged();
	void OnVectorAttributeScaleEdited();
	void OnRandomMinValueEdited();
	void OnRandomMaxValueEdited();

private:
	void BuildWidgets();
	CQVectorEdit *MakeVector( const char *pName );
	// The page of the current type, laid out anew.
	void LayOut();
	void ShowValues();
	void Commit();
	QWidget *AddRow( QVBoxLayout *pLayout, QWidget *pParent, int nHeight, std::initializer_list<QWidget *> widgets, bool bIndent );
	int ComponentRowHeight( int nComponent ) const;
	void UpdateComponentSummary( int nComponent );

	bool m_bPerParticle;
	bool m_bRenderer;
	CParticleVecInput m_Input;
	bool m_bChangingType = false;
	bool m_bCollapsed[ 3 ] = { false, false, false };
	int m_nLaidOutType = INT32_MIN;
	int m_nLaidOutInstances = -1;

	QWidget *m_pPage = nullptr;
	QVBoxLayout *m_pLayout = nullptr;
	// Widgets that live across layouts (their labels are made with each page).
	QToolButton *m_pTypeButton = nullptr;
	CQVectorEdit *m_pLiteral = nullptr;
	CQColorSwatch *m_pColor = nullptr;
	QComboBox *m_pNamedValueCombo = nullptr;
	QCheckBox *m_pFollowValue = nullptr;
	QComboBox *m_pAttributeCombo = nullptr;
	CQVectorEdit *m_pAttributeScale = nullptr;
	CQSmartLineEdit *m_pCPEdit = nullptr;
	CQSmartLineEdit *m_pDeltaCPEdit = nullptr;
	CQVectorEdit *m_pCPScale = nullptr;
	CQVectorEdit *m_pCPRelativePosition = nullptr;
	CQVectorEdit *m_pCPRelativeDir = nullptr;
	CQVectorEdit *m_pRandomMin = nullptr;
	CQVectorEdit *m_pRandomMax = nullptr;
	CQParticleFloatInputEditor *m_pFloatEditors[ 4 ] = {};
	QToolButton *m_pCollapseButtons[ 3 ] = {};
	QLabel *m_pComponentSummaries[ 3 ] = {};
	CQSmartLineEdit *m_pInterpInput0 = nullptr;
	CQSmartLineEdit *m_pInterpInput1 = nullptr;
	QToolButton *m_pReverseInput = nullptr;
	CQVectorEdit *m_pInterpOutput0 = nullptr;
	CQVectorEdit *m_pInterpOutput1 = nullptr;
	QToolButton *m_pReverseOutput = nullptr;
	CQColorGradientEditor *m_pGradient = nullptr;
};

class CQPerParticleVecInputEditor : public CQParticleVecInputEditor
{
	Q_OBJECT
public:
	explicit CQPerParticleVecInputEditor( QWidget *pParent = nullptr ) : CQParticleVecInputEditor( pParent, true, false ) {}
};

class CQParticleCollectionVecInput : public CQParticleVecInputEditor
{
	Q_OBJECT
public:
	explicit CQParticleCollectionVecInput( QWidget *pParent = nullptr ) : CQParticleVecInputEditor( pParent, false, false ) {}
};

class CQParticleCollectionRendererVecInput : public CQParticleVecInputEditor
{
	Q_OBJECT
public:
	explicit CQParticleCollectionRendererVecInput( QWidget *pParent = nullptr ) : CQParticleVecInputEditor( pParent, false, true ) {}
};
