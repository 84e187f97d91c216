#pragma once
// The attributes a function writes, joined by "; ", those that an earlier function writes
// too in yellow. A row is narrow: what doesn't fit is cut at a whole attribute and "..."
// follows; the tool tip always has them all.

#include <QLabel>
#include <QStringList>

class CQWrittenAttributesLabel : public QLabel
{
	Q_OBJECT

public:
	explicit CQWrittenAttributesLabel( QWidget *pParent = nullptr );

	// Each attribute's text, and whether another function writes it first.
	void SetAttributes( const QStringList &names, const QList<bool> &conflicts );
	void Clear() { SetAttributes( {}, {} ); }
	// All of them, as rich text, whatever the width.
	const QString &GetFullText() const { return m_FullText; }
	bool HasConflicts() const { return m_bConflicts; }

	QSize minimumSizeHint() const override;
	QSize sizeHint() const override;

protected:
	void resizeEvent( QResizeEvent *pEvent ) override;

private:
	void Fit();

	QStringList m_Names;
	QList<bool> m_Conflicts;
	QString m_FullText;
	bool m_bConflicts = false;
};
