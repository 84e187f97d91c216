#pragma once
// The editor of a reference to a variable of the system, of any type: an editable combo
// of the document's variables in name order. Choosing one stores its name and type;
// typing a name stores the name (with the type of the variable of that name, if any), and
// a name the list doesn't have stays as it stands. An empty name has no type.

#include <memory>

#include "tools/zol/editor/inputs/particleinputeditorbase.h"

// Kept out of this header: its type transfer is more than moc reads.
class CParticleVariableRef;

class CQParticleVariableRefEditor : public CQParticleInputEditorBase
{
	Q_OBJECT

public:
	explicit CQParticleVariableRefEditor( QWidget *pParent = nullptr );
	~CQParticleVariableRefEditor() override;

	const CParticleVariableRef &GetReference() const { return *m_pReference; }
	QComboBox *GetCombo() const { return m_pCombo; }

	void WriteToAttribute() override;
	void ReadFromAttribute() override;
	void DisconnectAndClear() override;

public slots:
	void OnVariableChosen( int nIndex );
	void OnNameTyped();

private:
	void Store( const QString &name, const QString &typeText );

	std::unique_ptr<CParticleVariableRef> m_pReference;
	QComboBox *m_pCombo = nullptr;
};
