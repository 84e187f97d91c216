#pragma once
// The editor of a transform input: a variable that holds a transform (followed or taken
// once), one control point, or a range of control points that grows over time; with or
// without the control point's orientation. "Disabled" is offered only where the field is
// optional.

#include "particleslib/particletransforminput.h"
#include "tools/zol/editor/inputs/particleinputeditorbase.h"

class QCheckBox;

class CQParticleTransformInputEditor : public CQParticleInputEditorBase
{
	Q_OBJECT

public:
	explicit CQParticleTransformInputEditor( QWidget *pParent = nullptr );

	const CParticleTransformInput &GetInput() const { return m_Input; }
	int GetPreferredHeight() const;
	Q_INVOKABLE QMenu *CreateTypeMenu();
	template <typename W> W *Part( const char *pName ) const { return findChild<W *>( QString::fromLatin1( pName ) ); }

	void WriteToAttribute() override;
	void ReadFromAttribute() override;
	void DisconnectAndClear() override;

public slots:
	void OnTypeButtonClicked();
	void OnSetType( int nType );
	void OnNamedValueEdited( const QString &text );
	void OnNamedValueHighlighted( int nIndex );
	void OnCPNumberEdited();
	void OnCPMaxNumberEdited();
	void OnEndGrowthTimeEdited();
	void OnFollowValueChanged();
	void OnUseOrientationChanged();

private:
	void LayOut();
	void Commit();

	CParticleTransformInput m_Input;
	QToolButton *m_pTypeButton = nullptr;
	QLabel *m_pMultiSelect = nullptr;
	QComboBox *m_pNamedValueCombo = nullptr;
	QCheckBox *m_pFollowValue = nullptr;
	QLabel *m_pCPLabel = nullptr;
	CQSmartLineEdit *m_pCPEdit = nullptr;
	QLabel *m_pCPMaxLabel = nullptr;
	CQSmartLineEdit *m_pCPMaxEdit = nullptr;
	QLabel *m_pGrowthLabel = nullptr;
	CQSmartLineEdit *m_pGrowthEdit = nullptr;
	QCheckBox *m_pUseOrientation = nullptr;
	QWidget *m_pSecondRow = nullptr;
};
