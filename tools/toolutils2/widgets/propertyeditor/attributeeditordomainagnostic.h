#pragma once
// The panel's own editor for every row whose editor name has no factory. It reads and
// writes only through the host, so it works with every domain, and takes its form from
// the row: a check box for a bool, a combo box for fixed choices (editable for
// suggestions), a slider with a number field for a number with a range, a number field
// (middle-drag to change) for other numbers, a field per component for vectors, angles
// and colours, a text field for strings, and KV3 text for a KV3 value. Below a KV3 value it
// edits one part of it, by that part's kind.
//
// Text that is not a number in a numeric field is refused: the field shows the value
// again, the user hears a beep, and nothing is written.

#include <QVector>

#include "tools/toolutils2/widgets/propertyeditor/attributeeditorbase.h"

class CQSliderLineEditFloat;
class CQSmartLineEdit;
class KeyValues3;
class QCheckBox;
class QComboBox;
class QFrame;
class QHBoxLayout;

class CQAttributeEditor_DomainAgnostic : public CQAttributeEditor_Base
{
	Q_OBJECT

public:
	enum Kind_t
	{
		KIND_NONE,      // nothing to edit (a table's rows stand below it)
		KIND_CHECK_BOX,
		KIND_LINE_EDIT, // text or a number
		KIND_SLIDER,    // a number with a range
		KIND_COMBO,     // choices; editable for suggestions
		KIND_VECTOR,    // one number field per component
		KIND_KV3_TEXT,  // a KV3 value as text on one line
	};

	explicit CQAttributeEditor_DomainAgnostic( QWidget *pParent = nullptr );

	void Initialize( const PropertyEditorInit_t &init ) override;
	void DisconnectAndClear() override;
	void WriteToAttribute() override;
	void ReadFromAttribute() override;
	QString GetValueText() const override;
	void SetWidgetText( const QString &text ) override;
	bool IsBeingEdited() const override;

	Kind_t GetKind() const { return m_eKind; }
	// The widgets of the present kind; null when the kind has none of that sort.
	QCheckBox *GetCheckBox() const { return m_pCheckBox; }
	CQSmartLineEdit *GetLineEdit() const { return m_pLineEdit; }
	CQSliderLineEditFloat *GetSlider() const { return m_pSlider; }
	QComboBox *GetComboBox() const { return m_pCombo; }
	const QVector<CQSmartLineEdit *> &GetComponentEdits() const { return m_Components; }

protected:
	void ConnectSignals() override;

private slots:
	void OnLineEditFinished();
	void OnComponentFinished();
	void OnCheckBoxClicked();
	void OnComboActivated( int nIndex );
	void OnComboTextFinished();
	void OnSliderValueChanged( double flValue );
	void OnLineEditDragStarted();
	void OnLineEditDragStepped();
	void OnLineEditDragEnded();

private:
	// The kind the row takes, and for a part of a KV3 value the part's KV3 kind.
	Kind_t ChooseKind( const PropertyEditorInit_t &init, int *pComponents ) const;
	void BuildWidgets( Kind_t eKind, int nComponents );
	void ClearWidgets();
	bool IsNumericRow() const;
	bool IsIntegerRow() const;
	// Reads the part of a KV3 value that this editor edits, common to all targets.
	bool ReadKV3Part( KeyValues3 *pOut, bool *pDiffer ) const;
	// Writes the text into the KV3 part of each target, keeping the part's kind.
	void WriteKV3Part( const QString &text );
	// Refuses what the user typed: the value shows again, and a beep.
	void Refuse( const QString &reason );
	void Commit( const QString &text );

	Kind_t m_eKind = KIND_NONE;
	QStringList m_KV3Path;
	QHBoxLayout *m_pLayout = nullptr;
	QCheckBox *m_pCheckBox = nullptr;
	CQSmartLineEdit *m_pLineEdit = nullptr;
	CQSliderLineEditFloat *m_pSlider = nullptr;
	QComboBox *m_pCombo = nullptr;
	QFrame *m_pSwatch = nullptr;
	QVector<CQSmartLineEdit *> m_Components;
	// What the editor will write, set just before an apply.
	QString m_PendingText;
	// What the targets held when last read: a commit of the same text writes nothing.
	QString m_ShownText;
	bool m_bDiffer = false;
};
