#pragma once
// A drawn slider on double values. A press puts the nearest value under the pointer and a
// drag moves it by the pixels moved (a quarter as far with Shift); Escape during a drag
// puts the values back. Arrow keys and the wheel step by a pixel's worth of the range, the
// wheel faster the quicker it spins. A press or the first wheel event starts a gesture,
// the release or a quiet half second ends it.

#include <QElapsedTimer>
#include <QVector>
#include <QWidget>

class QTimer;

class CQSlider : public QWidget
{
	Q_OBJECT

public:
	// Wheel events closer together than this continue one sequence.
	static constexpr int WHEEL_SEQUENCE_MS = 500;

	explicit CQSlider( QWidget *pParent = nullptr );

	void SetRange( double flMinimum, double flMaximum );
	double GetMinimum() const { return m_flMinimum; }
	double GetMaximum() const { return m_flMaximum; }
	// Values are kept inside the range.
	void SetValueCount( int nCount );
	int GetValueCount() const { return m_Values.size(); }
	void SetValue( double flValue, int nIndex = 0 );
	double GetValue( int nIndex = 0 ) const { return m_Values.value( nIndex ); }
	void SetName( const QString &name ) { m_Name = name; }
	const QString &GetName() const { return m_Name; }

	// The range one pixel of the track stands for.
	double GetPixelStep() const;
	bool IsDragging() const { return m_eState == STATE_DRAGGING; }
	bool IsInWheelSequence() const { return m_eState == STATE_WHEEL; }

	QSize sizeHint() const override;
	QSize minimumSizeHint() const override;

signals:
	// The value at that index changed by the user's hand.
	void valueChanged( int nIndex );
	void sliderPressed();
	void sliderReleased();

public slots:
	void EndWheelSequence();
	void EndCancelSequence();

protected:
	void paintEvent( QPaintEvent *pEvent ) override;
	void mousePressEvent( QMouseEvent *pEvent ) override;
	void mouseMoveEvent( QMouseEvent *pEvent ) override;
	void mouseReleaseEvent( QMouseEvent *pEvent ) override;
	void keyPressEvent( QKeyEvent *pEvent ) override;
	void wheelEvent( QWheelEvent *pEvent ) override;

private:
	enum State_t
	{
		STATE_IDLE,
		STATE_DRAGGING,
		STATE_WHEEL,
	};

	int TrackPixels() const;
	double ValueAtPixel( double x ) const;
	double PixelOfValue( double flValue ) const;
	// Moves one value by a change, inside the range; true when it moved.
	bool Change( int nIndex, double flDelta );

	double m_flMinimum = 0.0;
	double m_flMaximum = 1.0;
	QVector<double> m_Values;
	QVector<double> m_StartValues;
	State_t m_eState = STATE_IDLE;
	QString m_Name;
	QTimer *m_pWheelTimer = nullptr;
	QElapsedTimer m_WheelElapsed;
	int m_nDragIndex = 0;
	int m_nLastX = 0;
};
