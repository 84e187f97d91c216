#pragma once
// Asks for a new variable's name and type. Names of variables that related files declare
// are offered, and taking one shares that variable: its type is then fixed to theirs.

#include <QDialog>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "zoldoc_lib/zolnamedvaluecache.h"

class CZolNamedValueContext;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QPlainTextEdit;

class CQZolAddVariableDialog : public QDialog
{
	Q_OBJECT

public:
	// pContext lists the variables of this file and its family; null knows none.
	CQZolAddVariableDialog( CZolNamedValueContext *pContext, QWidget *pParent = nullptr );

	// The chosen name (Latin-1) and type; read them after the dialog was accepted.
	CUtlString GetVariableName() const;
	CPulseValueFullType GetVariableType() const;

	QComboBox *GetNameBox() const { return m_pNameBox; }
	QComboBox *GetTypeBox() const { return m_pTypeBox; }
	QLabel *GetStatusLabel() const { return m_pStatus; }
	QPlainTextEdit *GetExistingText() const { return m_pExisting; }
	QDialogButtonBox *GetButtons() const { return m_pButtons; }

	// Refused while the name is refused (OK is then disabled, but Enter still asks).
	void accept() override;

private slots:
	void OnNameChanged( const QString &name );

private:
	void SetStatus( const char *pText, const char *pColour );
	// The type box's entry of a type, added when the box doesn't list it.
	int FindOrAddType( const CPulseValueFullType &type );

	CUtlVector<ZolNamedValueRecord_t> m_Records;
	QComboBox *m_pNameBox = nullptr;
	QComboBox *m_pTypeBox = nullptr;
	QLabel *m_pStatus = nullptr;
	QPlainTextEdit *m_pExisting = nullptr;
	QDialogButtonBox *m_pButtons = nullptr;
};
