#pragma once
// A combo box that leaves the wheel to the panel it stands in unless it has focus: rows of
// combos in a scrolling panel don't change as the user scrolls past them.

#include <QComboBox>

class CQSmartComboBox : public QComboBox
{
	Q_OBJECT

public:
	explicit CQSmartComboBox( QWidget *pParent = nullptr );

protected:
	void wheelEvent( QWheelEvent *pEvent ) override;
};
