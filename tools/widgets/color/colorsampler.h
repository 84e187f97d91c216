#pragma once
// A button that takes a colour from anywhere on the screen: press it, move the pointer
// over the colour (it shows the colour under it), let go. Escape cancels.

#include <QColor>
#include <QToolButton>

class CQColorSampler : public QToolButton
{
	Q_OBJECT

public:
	explicit CQColorSampler( QWidget *pParent = nullptr );

	bool IsSampling() const { return m_bSampling; }
	// The colour of the screen's pixel at a global position; invalid where there is none.
	static QColor SampleScreen( const QPoint &globalPos );

signals:
	void ColorSamplePicked( QColor color );

protected:
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void keyPressEvent( QKeyEvent *pEvent ) override;
	void paintEvent( QPaintEvent *pEvent ) override;

private:
	void StopSampling();

	bool m_bSampling = false;
	QColor m_Hovered;
};
