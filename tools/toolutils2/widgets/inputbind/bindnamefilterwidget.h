#pragma once
// "Filter:" and a line edit that narrows a list of command names: a name stays when it
// holds every word typed, in any order and case.

#include <QWidget>

class QLineEdit;

class CQBindNameFilterWidget final : public QWidget
{
	Q_OBJECT

public:
	explicit CQBindNameFilterWidget( QWidget *pParent = nullptr );

	QLineEdit *GetEdit() const { return m_pEdit; }
	QString GetText() const;
	void Clear();
	// Whether the name passes the filter as it stands.
	bool Matches( const QString &strName ) const;

signals:
	void FilterChanged( const QString &strText );
	// Return in the edit: the caller runs its first shown entry.
	void Accepted();

private:
	QLineEdit *m_pEdit = nullptr;
};
