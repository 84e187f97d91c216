#pragma once
// The question before an upgrade: what each behaviour version from the file's one up to
// the current one changes, one line each, with Ok and Cancel. Made on the stack for each
// use.

#include <QDialog>

class QDialogButtonBox;
class QListWidget;

class CQStaleVersionConfigDialog : public QDialog
{
	Q_OBJECT

public:
	// nFromVersion: the version the upgrade starts from; its own changes aren't listed.
	explicit CQStaleVersionConfigDialog( int nFromVersion, QWidget *pParent = nullptr );

	QListWidget *GetChangeList() const { return m_pChanges; }
	QDialogButtonBox *GetButtons() const { return m_pButtons; }

private:
	QListWidget *m_pChanges;
	QDialogButtonBox *m_pButtons;
};
