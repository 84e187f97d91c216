#pragma once
// Paints the reference navigator's key columns: the swimlane line of a control point or
// variable down its tree, and the glyph of each row's use of it (read, write, both,
// special write, or the game's "outside world" at the top).

#include <QStyledItemDelegate>

class CQParticleNavigatorDelegate : public QStyledItemDelegate
{
	Q_OBJECT

public:
	using QStyledItemDelegate::QStyledItemDelegate;
	void paint( QPainter *pPainter, const QStyleOptionViewItem &option, const QModelIndex &index ) const override;

	// The arrow of a glyph: a shaft 4 high from x, then a head 10 high from nHead to nTip
	// pixels along, pointing left for nDirection -1 and right for 1.
	static void DrawArrow( QPainter *pPainter, qreal x, qreal y, int nDirection, int nHead, int nTip, const QColor &color );
};
