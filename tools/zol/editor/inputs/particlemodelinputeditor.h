#pragma once
// The editor of a model input: a variable that holds a model or an entity, or the model at
// a control point. "Disabled" is offered only where the field is optional.

#include "particleslib/particlemodelinput.h"
#include "tools/zol/editor/inputs/particleinputeditorbase.h"

class CQParticleModelInputEditor : public CQParticleInputEditorBase
{
	Q_OBJECT

public:
	explicit CQParticleModelInputEditor( QWidget *pParent = nullptr );

	const CParticleModelInput &GetInput() const { return m_Input; }
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

private:
	void LayOut();
	void Commit();

	CParticleModelInput m_Input;
	QToolButton *m_pTypeButton = nullptr;
	QLabel *m_pMultiSelect = nullptr;
	QComboBox *m_pNamedValueCombo = nullptr;
	QLabel *m_pCPLabel = nullptr;
	CQSmartLineEdit *m_pCPEdit = nullptr;
};
