#pragma once
// "Command Filter": every command that the current focus chain reaches, one row each
// ("Context.Command [keys]"), narrowed by a CQBindNameFilterWidget. Choosing a row (a
// click, Return, or Return in the filter for the first shown row) runs the command as
// its key would.

#include <QWidget>
#include <cstdint>
#include <vector>

class CQBindNameFilterWidget;
class IBindTarget;
class QListWidget;
class QListWidgetItem;

class CQInputBindCommandList final : public QWidget
{
	Q_OBJECT

public:
	explicit CQInputBindCommandList( QWidget *pParent = nullptr );

	// Reads the commands of the focus chain as it is now, and clears the filter.
	void Refresh();
	CQBindNameFilterWidget *GetFilter() const { return m_pFilter; }
	QListWidget *GetList() const { return m_pList; }
	// Rows the filter leaves shown, in order.
	QStringList GetShownCommands() const;

	bool eventFilter( QObject *pWatched, QEvent *pEvent ) override;

signals:
	// Before the command runs, so a menu holding the list can close first.
	void CommandChosen();

private slots:
	void ApplyFilter();
	void RunItem( QListWidgetItem *pItem );
	void RunFirstShown();

private:
	struct Command_t
	{
		IBindTarget *m_pTarget;
		uint32_t m_nToken;
	};

	CQBindNameFilterWidget *m_pFilter = nullptr;
	QListWidget *m_pList = nullptr;
	// Row i runs m_Commands[ i ].
	std::vector<Command_t> m_Commands;
};
