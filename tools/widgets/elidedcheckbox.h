#pragma once
// A check box whose text ends in "..." when the box is narrower than it, instead of being
// clipped mid-letter against the next widget. It still asks its layout for the room of the
// whole text, so it grows back to it, and shows the whole text as its tool tip while cut.

#include <QCheckBox>

class CQElidedCheckBox : public QCheckBox
{
	Q_OBJECT

public:
	explicit CQElidedCheckBox( const QString &text, QWidget *pParent = nullptr );

	// The text as it is drawn at the present width.
	QString GetShownText() const;
	// Off: the box asks for its whole text, as any check box does (to measure a layout
	// that has room for every text).
	void SetElides( bool bElides );

	// As narrow as the box itself: the text gives way.
	QSize minimumSizeHint() const override;

protected:
	void paintEvent( QPaintEvent *pEvent ) override;
	void resizeEvent( QResizeEvent *pEvent ) override;

private:
	int GetTextRoom() const;
	bool m_bElides = true;
};
