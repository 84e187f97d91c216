#pragma once
// A slider and a number field side by side on one float value. The slider covers a soft
// range; the field may go beyond it, up to the hard limits when there are any, and a
// value outside them is clamped. Text that is not a number is refused: the field shows
// the value again and nothing is told.

#include <QWidget>

class CQSlider;
class CQSmartLineEdit;

class CQSliderLineEditFloat : public QWidget
{
	Q_OBJECT

public:
	// The slider's own range; the soft range is mapped onto it.
	static constexpr double SLIDER_RANGE = 10000.0;

	explicit CQSliderLineEditFloat( QWidget *pParent = nullptr );
	~CQSliderLineEditFloat() override;

	void SetSoftRange( double flMinimum, double flMaximum );
	void SetHardLimits( bool bHasMinimum, double flMinimum, bool bHasMaximum, double flMaximum );
	// Whole numbers only: the field drags and shows integers.
	void SetIntegral( bool bIntegral );
	// Shows the value without telling anyone.
	void SetValue( double flValue );
	double GetValue() const { return m_flValue; }
	// Several values that differ: the field is empty until the user gives one.
	void SetMixed( bool bMixed );
	bool IsMixed() const { return m_bMixed; }
	void SetReadOnly( bool bReadOnly );

	CQSlider *GetSlider() const { return m_pSlider; }
	CQSmartLineEdit *GetLineEdit() const { return m_pEdit; }

signals:
	// The user changed the value, by the slider, a drag of the field or typing.
	void ValueChanged( double flValue );
	// A slider press or a drag of the field begins and ends a gesture of many changes.
	void GestureStarted();
	void GestureEnded();
	void FocusIn();
	void FocusOut();

public slots:
	void UpdateSliderFromEdit();
	void UpdateEditFromSlider();

private slots:
	void OnEditDragStepped();

private:
	double Clamp( double flValue ) const;
	void ShowValue();
	void Take( double flValue );

	CQSlider *m_pSlider = nullptr;
	CQSmartLineEdit *m_pEdit = nullptr;
	double m_flSoftMinimum = 0.0;
	double m_flSoftMaximum = 1.0;
	bool m_bHasHardMinimum = false;
	bool m_bHasHardMaximum = false;
	double m_flHardMinimum = 0.0;
	double m_flHardMaximum = 0.0;
	double m_flValue = 0.0;
	bool m_bIntegral = false;
	bool m_bMixed = false;
};
