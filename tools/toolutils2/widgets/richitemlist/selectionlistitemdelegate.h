#pragma once
// Draws the cells of a picker's list as rich text (the filter's hits highlighted), and
// the marker of a choice that only its description matched.

#include <QIcon>
#include <QStyledItemDelegate>

// The rich text of a cell, an HTML string.
constexpr int RICH_ITEM_HTML_ROLE = Qt::UserRole + 1;
// 1 when the cell shows the marker of a match in the description.
constexpr int RICH_ITEM_MARKER_ROLE = 261;

class CQSelectionListItemDelegate : public QStyledItemDelegate
{
	Q_OBJECT

public:
	explicit CQSelectionListItemDelegate( QObject *pParent = nullptr );

	void paint( QPainter *pPainter, const QStyleOptionViewItem &option, const QModelIndex &index ) const override;
	QSize sizeHint( const QStyleOptionViewItem &option, const QModelIndex &index ) const override;

private:
	QIcon m_MarkerIcon;
};
