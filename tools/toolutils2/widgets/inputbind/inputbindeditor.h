#pragma once
// "Key Bindings": every binding the loaded files give, as a table of context, command and
// input sequence, narrowed by a "Find:" wildcard over all three columns. It only shows:
// bindings change in their files.

#include <QWidget>

class CInputBindingList;
class QLineEdit;
class QTableWidget;

class CQInputBindEditor : public QWidget
{
	Q_OBJECT

public:
	explicit CQInputBindEditor( const CInputBindingList *pBindings, QWidget *pParent = nullptr );

	// Reads the bindings again (files may have been added since).
	void Refresh();
	QLineEdit *GetFindEdit() const { return m_pFind; }
	QTableWidget *GetTable() const { return m_pTable; }
	// Rows the filter leaves shown.
	int GetShownRowCount() const;

private slots:
	void ApplyFilter();

private:
	const CInputBindingList *m_pBindings = nullptr;
	QLineEdit *m_pFind = nullptr;
	QTableWidget *m_pTable = nullptr;
};
