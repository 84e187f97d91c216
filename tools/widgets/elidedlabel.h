#pragma once
// A one-line label that shortens its text with "..." to the width it is given, instead of
// asking its layout for the room of the whole text. The whole text shows as its tool tip
// while it is shortened.

#include <QFrame>

class CQElidedLabel : public QFrame
{
	Q_OBJECT

public:
	explicit CQElidedLabel( QWidget *pParent = nullptr );

	// The first nKeep characters show while there is room for them and the last nKeepTail
	// (a file's name after its folder) before anything else: when the room runs short the
	// middle goes first, then the kept words, and the tail is cut at its end last.
	void SetText( const QString &text, int nKeep = 0, int nKeepTail = 0 );
	const QString &GetText() const { return m_Text; }
	// Where the dots go; Qt::ElideMiddle keeps both ends of a path.
	void SetElideMode( Qt::TextElideMode eMode );
	// The text as it is drawn at the present width.
	QString GetShownText() const;

	QSize sizeHint() const override;
	QSize minimumSizeHint() const override;

protected:
	void paintEvent( QPaintEvent *pEvent ) override;
	void resizeEvent( QResizeEvent *pEvent ) override;

private:
	void UpdateToolTip();

	QString m_Text;
	int m_nKeep = 0;
	int m_nKeepTail = 0;
	Qt::TextElideMode m_eElideMode = Qt::ElideMiddle;
};
