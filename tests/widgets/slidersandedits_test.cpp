// The kit's number widgets through real events: middle-button drags of a number field with
// their steps, limits and modifiers; the slider's drag, keys and accelerating wheel; and
// the compound of both with its soft range, hard limits and refusal of text that is no
// number.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>
#include <QtTest/QTest>

#include "tests/support/userinput.h"
#include "tools/widgets/slider.h"
#include "tools/widgets/sliderlineeditfloat.h"
#include "tools/widgets/smartlineedit.h"

namespace
{
struct DragCase_t
{
	const char *m_pName;
	int m_nKind;
	const char *m_pStart;
	bool m_bHasMin;
	double m_flMin;
	bool m_bHasMax;
	double m_flMax;
	int m_nPixels;
	Qt::KeyboardModifiers m_PressModifiers;
	Qt::KeyboardModifiers m_MoveModifiers;
	const char *m_pExpected;
};

// The field is 200 pixels wide in every case: a float's step depends on the width.
const DragCase_t s_DragCases[] = {
	{ "FloatAtZeroMovesATenthAPixel", CQSmartLineEdit::NUMBER_KIND_FLOAT, "0", false, 0, false, 0, 10, Qt::NoModifier, Qt::NoModifier, "1" },
	{ "FloatOfFortyMovesByItsSize", CQSmartLineEdit::NUMBER_KIND_FLOAT, "40", false, 0, false, 0, 10, Qt::NoModifier, Qt::NoModifier, "45" },
	{ "ShiftAtThePressIsFourTimesFiner", CQSmartLineEdit::NUMBER_KIND_FLOAT, "40", false, 0, false, 0, 10, Qt::ShiftModifier, Qt::NoModifier, "41.25" },
	{ "ShiftHeldWhileMovingIsFiner", CQSmartLineEdit::NUMBER_KIND_FLOAT, "0", false, 0, false, 0, 40, Qt::NoModifier, Qt::ShiftModifier, "1" },
	{ "BothLimitsSweepTheRangeIn150Pixels", CQSmartLineEdit::NUMBER_KIND_FLOAT, "0", true, 0, true, 30, 150, Qt::NoModifier, Qt::NoModifier, "30" },
	{ "PastALimitIsClamped", CQSmartLineEdit::NUMBER_KIND_FLOAT, "0", true, 0, true, 30, 200, Qt::NoModifier, Qt::NoModifier, "30" },
	{ "CtrlLiftsBothLimits", CQSmartLineEdit::NUMBER_KIND_FLOAT, "0", true, 0, true, 30, 200, Qt::ControlModifier, Qt::ControlModifier, "40" },
	{ "CtrlLeavesASingleLimit", CQSmartLineEdit::NUMBER_KIND_FLOAT, "5", true, 0, false, 0, -200, Qt::ControlModifier, Qt::ControlModifier, "0" },
	{ "SmallIntegerTakesFivePixelsAStep", CQSmartLineEdit::NUMBER_KIND_INTEGER, "5", false, 0, false, 0, 10, Qt::NoModifier, Qt::NoModifier, "7" },
	{ "IntegerOverAHundredMovesOneAPixel", CQSmartLineEdit::NUMBER_KIND_INTEGER, "500", false, 0, false, 0, -7, Qt::NoModifier, Qt::NoModifier, "493" },
	{ "TextThatIsNoNumberStartsAtZero", CQSmartLineEdit::NUMBER_KIND_FLOAT, "abc", false, 0, false, 0, 10, Qt::NoModifier, Qt::NoModifier, "1" },
};

class SmartLineEditDrag : public testing::TestWithParam<DragCase_t>
{
};

TEST_P( SmartLineEditDrag, MiddleButtonStepsByThePartsRules )
{
	const DragCase_t &c = GetParam();
	CQSmartLineEdit edit;
	edit.resize( 200, 22 );
	edit.show();
	edit.SetNumberKind( c.m_nKind );
	if ( c.m_bHasMin )
		edit.SetMinimum( c.m_flMin );
	if ( c.m_bHasMax )
		edit.SetMaximum( c.m_flMax );
	edit.setText( c.m_pStart );
	QSignalSpy started( &edit, &CQSmartLineEdit::DragStarted );
	QSignalSpy stepped( &edit, &CQSmartLineEdit::DragStepped );
	QSignalSpy ended( &edit, &CQSmartLineEdit::DragEnded );
	QSignalSpy edited( &edit, &QLineEdit::textEdited );

	const QPoint from( 100, 10 );
	SendMouse( &edit, QEvent::MouseButtonPress, from, Qt::MiddleButton, Qt::MiddleButton, c.m_PressModifiers );
	EXPECT_TRUE( edit.IsDragging() );
	// Two moves: the result depends only on the distance from the press.
	SendMouse( &edit, QEvent::MouseMove, from + QPoint( c.m_nPixels / 2, 0 ), Qt::NoButton, Qt::MiddleButton, c.m_MoveModifiers );
	SendMouse( &edit, QEvent::MouseMove, from + QPoint( c.m_nPixels, 0 ), Qt::NoButton, Qt::MiddleButton, c.m_MoveModifiers );
	SendMouse( &edit, QEvent::MouseButtonRelease, from + QPoint( c.m_nPixels, 0 ), Qt::MiddleButton, Qt::NoButton, c.m_MoveModifiers );

	EXPECT_EQ( edit.text().toStdString(), c.m_pExpected );
	EXPECT_FALSE( edit.IsDragging() );
	EXPECT_EQ( started.count(), 1 );
	EXPECT_EQ( ended.count(), 1 );
	EXPECT_GE( stepped.count(), 1 );
	EXPECT_EQ( edited.count(), stepped.count() ) << "each step is told as an edit of the text";
}

INSTANTIATE_TEST_SUITE_P( Cases, SmartLineEditDrag, testing::ValuesIn( s_DragCases ), []( const testing::TestParamInfo<DragCase_t> &info ) { return std::string( info.param.m_pName ); } );

// A field 200 pixels wide, shown.
class SmartLineEditTest : public testing::Test
{
protected:
	void SetUp() override
	{
		m_Edit.resize( 200, 22 );
		m_Edit.show();
	}
	CQSmartLineEdit m_Edit;
};

TEST_F( SmartLineEditTest, TextFieldsDontDragAndTheMiddleButtonNeverPastes )
{
	m_Edit.setText( "12" );
	QSignalSpy started( &m_Edit, &CQSmartLineEdit::DragStarted );
	DragMouse( &m_Edit, QPoint( 50, 10 ), QPoint( 150, 10 ), Qt::MiddleButton );
	EXPECT_EQ( started.count(), 0 );
	EXPECT_EQ( m_Edit.text(), QStringLiteral( "12" ) );
}

TEST_F( SmartLineEditTest, ReleasingTheButtonOutsideAMoveEndsTheDrag )
{
	m_Edit.SetNumberKind( CQSmartLineEdit::NUMBER_KIND_FLOAT );
	m_Edit.setText( "0" );
	QSignalSpy ended( &m_Edit, &CQSmartLineEdit::DragEnded );
	SendMouse( &m_Edit, QEvent::MouseButtonPress, QPoint( 50, 10 ), Qt::MiddleButton, Qt::MiddleButton );
	// The button was let go where the field didn't see it: the next move ends the drag.
	SendMouse( &m_Edit, QEvent::MouseMove, QPoint( 70, 10 ), Qt::NoButton, Qt::NoButton );
	EXPECT_FALSE( m_Edit.IsDragging() );
	EXPECT_EQ( ended.count(), 1 );
	EXPECT_EQ( m_Edit.text(), QStringLiteral( "0" ) );
}

TEST_F( SmartLineEditTest, WarnsOfTrailingWhitespaceRefusesTheBackQuoteAndTellsEscape )
{
	m_Edit.setText( "flame\t" );
	ASSERT_TRUE( m_Edit.IsWhitespaceWarningShown() );
	QLabel *pWarning = m_Edit.GetWhitespaceWarningLabel();
	EXPECT_EQ( pWarning->text(), QStringLiteral( "***" ) );
	EXPECT_EQ( pWarning->toolTip(), QStringLiteral( "Warning: This text ends with whitespace" ) );
	EXPECT_EQ( pWarning->geometry(), QRect( 200 - 33, 2, 32, 22 - 3 ) );
	m_Edit.setText( "flame" );
	EXPECT_FALSE( m_Edit.IsWhitespaceWarningShown() );
	m_Edit.SetWhitespaceWarning( false );
	m_Edit.setText( "flame " );
	EXPECT_FALSE( m_Edit.IsWhitespaceWarningShown() );

	m_Edit.clear();
	m_Edit.setFocus();
	QTest::keyClicks( &m_Edit, "a`b" );
	EXPECT_EQ( m_Edit.text(), QStringLiteral( "ab" ) );

	QSignalSpy cancelled( &m_Edit, &CQSmartLineEdit::EditCancelled );
	QTest::keyClick( &m_Edit, Qt::Key_Escape );
	EXPECT_EQ( cancelled.count(), 1 );
}

TEST( SmartLineEdit, FirstClickAfterFocusSelectsTheWholeText )
{
	QWidget window;
	CQSmartLineEdit *pOther = new CQSmartLineEdit( &window );
	CQSmartLineEdit *pEdit = new CQSmartLineEdit( &window );
	pEdit->setGeometry( 0, 30, 200, 22 );
	window.show();
	QApplication::setActiveWindow( &window );
	pOther->setFocus();
	pEdit->setText( "12.5" );
	QTest::mouseClick( pEdit, Qt::LeftButton, Qt::NoModifier, QPoint( 150, 10 ) );
	EXPECT_EQ( pEdit->selectedText(), QStringLiteral( "12.5" ) );
	// A second click places the cursor as usual.
	QTest::mouseClick( pEdit, Qt::LeftButton, Qt::NoModifier, QPoint( 150, 10 ) );
	EXPECT_TRUE( pEdit->selectedText().isEmpty() );
}

// A slider whose track is 100 pixels: a pixel is a hundredth of the range 0..1.
class SliderTest : public testing::Test
{
protected:
	void SetUp() override
	{
		m_Slider.resize( 103, 12 );
		m_Slider.show();
		QApplication::setActiveWindow( &m_Slider );
		m_Slider.setFocus();
	}
	CQSlider m_Slider;
};

TEST_F( SliderTest, KeysStepByAPixelOrByValueUnits )
{
	m_Slider.SetValue( 0.5 );
	struct KeyCase_t
	{
		Qt::Key m_eKey;
		Qt::KeyboardModifiers m_Modifiers;
		double m_flChange;
	};
	const KeyCase_t cases[] = {
		{ Qt::Key_Right, Qt::NoModifier, 0.01 },
		{ Qt::Key_Left, Qt::NoModifier, -0.01 },
		{ Qt::Key_Right, Qt::ShiftModifier, 0.04 },
		{ Qt::Key_Up, Qt::NoModifier, 0.12 },
		{ Qt::Key_Down, Qt::ControlModifier, -0.24 },
	};
	QSignalSpy changed( &m_Slider, &CQSlider::valueChanged );
	for ( const KeyCase_t &c : cases )
	{
		double flBefore = m_Slider.GetValue();
		QTest::keyClick( &m_Slider, c.m_eKey, c.m_Modifiers );
		EXPECT_NEAR( m_Slider.GetValue() - flBefore, c.m_flChange, 1e-9 ) << int( c.m_eKey );
	}
	EXPECT_EQ( changed.count(), 5 );
	// The range holds.
	m_Slider.SetValue( 0.995 );
	QTest::keyClick( &m_Slider, Qt::Key_Right, Qt::ShiftModifier );
	EXPECT_DOUBLE_EQ( m_Slider.GetValue(), 1.0 );
}

TEST_F( SliderTest, ADragIsOneGestureAndShiftMovesAQuarterAsFar )
{
	QSignalSpy pressed( &m_Slider, &CQSlider::sliderPressed );
	QSignalSpy released( &m_Slider, &CQSlider::sliderReleased );
	// The press puts the value under the pointer; each pixel moved is a pixel's worth.
	DragMouse( &m_Slider, QPoint( 21, 6 ), QPoint( 61, 6 ) );
	EXPECT_NEAR( m_Slider.GetValue(), 0.6, 1e-9 );
	// With Shift the press leaves the value and the drag is four times finer.
	DragMouse( &m_Slider, QPoint( 10, 6 ), QPoint( 50, 6 ), Qt::LeftButton, Qt::ShiftModifier );
	EXPECT_NEAR( m_Slider.GetValue(), 0.7, 1e-9 );
	EXPECT_EQ( pressed.count(), 2 );
	EXPECT_EQ( released.count(), 2 );
}

TEST_F( SliderTest, EscapeDuringADragPutsTheValueBack )
{
	m_Slider.SetValue( 0.25 );
	QSignalSpy released( &m_Slider, &CQSlider::sliderReleased );
	SendMouse( &m_Slider, QEvent::MouseButtonPress, QPoint( 26, 6 ), Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier );
	SendMouse( &m_Slider, QEvent::MouseMove, QPoint( 90, 6 ), Qt::NoButton, Qt::LeftButton );
	EXPECT_GT( m_Slider.GetValue(), 0.8 );
	QTest::keyClick( &m_Slider, Qt::Key_Escape );
	EXPECT_DOUBLE_EQ( m_Slider.GetValue(), 0.25 );
	EXPECT_FALSE( m_Slider.IsDragging() );
	EXPECT_EQ( released.count(), 1 );
}

TEST_F( SliderTest, AQuickSpinOfTheWheelAcceleratesAndEndsAfterHalfASecond )
{
	m_Slider.SetValue( 0.0 );
	QSignalSpy pressed( &m_Slider, &CQSlider::sliderPressed );
	QSignalSpy released( &m_Slider, &CQSlider::sliderReleased );
	SendWheel( &m_Slider, QPoint( 50, 6 ), 120 );
	EXPECT_NEAR( m_Slider.GetValue(), 0.01, 1e-9 );
	EXPECT_EQ( pressed.count(), 1 );
	double flBefore = m_Slider.GetValue();
	SendWheel( &m_Slider, QPoint( 50, 6 ), 120 );
	double flSecond = m_Slider.GetValue() - flBefore;
	// Right after the first the step is nearly eight times a pixel.
	EXPECT_GT( flSecond, 0.07 );
	EXPECT_LE( flSecond, 0.08 + 1e-9 );
	EXPECT_EQ( pressed.count(), 1 ) << "one sequence";
	EXPECT_EQ( released.count(), 0 );
	QTest::qWait( CQSlider::WHEEL_SEQUENCE_MS + 150 );
	EXPECT_EQ( released.count(), 1 );
	// A new sequence starts at a pixel again; Shift is three times that, Alt a quarter.
	flBefore = m_Slider.GetValue();
	SendWheel( &m_Slider, QPoint( 50, 6 ), -120, Qt::ShiftModifier );
	EXPECT_NEAR( m_Slider.GetValue() - flBefore, -0.03, 1e-9 );
	EXPECT_EQ( pressed.count(), 2 );
}

TEST( Slider, WithoutFocusTheWheelGoesToWhatHoldsIt )
{
	QWidget window;
	CQSlider *pSlider = new CQSlider( &window );
	pSlider->resize( 103, 12 );
	QLineEdit *pOther = new QLineEdit( &window );
	pOther->move( 0, 20 );
	window.show();
	QApplication::setActiveWindow( &window );
	pOther->setFocus();
	SendWheel( pSlider, QPoint( 50, 6 ), 120 );
	EXPECT_DOUBLE_EQ( pSlider->GetValue(), 0.0 );
	// Ctrl takes focus first.
	SendWheel( pSlider, QPoint( 50, 6 ), 120, Qt::ControlModifier );
	EXPECT_NEAR( pSlider->GetValue(), 0.01, 1e-9 );
}

class SliderLineEditFloatTest : public testing::Test
{
protected:
	void SetUp() override
	{
		m_Widget.resize( 300, 22 );
		m_Widget.SetSoftRange( 0.0, 10.0 );
		m_Widget.SetValue( 2.0 );
		m_Widget.show();
		QApplication::setActiveWindow( &m_Widget );
	}
	void Type( const char *pText ) { TypeInto( m_Widget.GetLineEdit(), pText ); }
	CQSliderLineEditFloat m_Widget;
};

TEST_F( SliderLineEditFloatTest, TextThatIsNoNumberIsRefusedAndNothingIsTold )
{
	QSignalSpy changed( &m_Widget, &CQSliderLineEditFloat::ValueChanged );
	Type( "hot" );
	EXPECT_EQ( changed.count(), 0 );
	EXPECT_DOUBLE_EQ( m_Widget.GetValue(), 2.0 );
	EXPECT_EQ( m_Widget.GetLineEdit()->text(), QStringLiteral( "2" ) );
	Type( "7.5" );
	ASSERT_EQ( changed.count(), 1 );
	EXPECT_DOUBLE_EQ( changed[ 0 ][ 0 ].toDouble(), 7.5 );
	EXPECT_NEAR( m_Widget.GetSlider()->GetValue(), 7500.0, 1e-6 );
}

TEST_F( SliderLineEditFloatTest, TheFieldGoesPastTheSoftRangeButNotPastAHardLimit )
{
	m_Widget.SetHardLimits( true, -5.0, true, 20.0 );
	QSignalSpy changed( &m_Widget, &CQSliderLineEditFloat::ValueChanged );
	Type( "15" );
	EXPECT_DOUBLE_EQ( m_Widget.GetValue(), 15.0 );
	EXPECT_DOUBLE_EQ( m_Widget.GetSlider()->GetValue(), CQSliderLineEditFloat::SLIDER_RANGE ) << "the slider stops at its end";
	Type( "50" );
	EXPECT_DOUBLE_EQ( m_Widget.GetValue(), 20.0 );
	EXPECT_EQ( m_Widget.GetLineEdit()->text(), QStringLiteral( "20" ) );
	Type( "-100" );
	EXPECT_DOUBLE_EQ( m_Widget.GetValue(), -5.0 );
	EXPECT_EQ( changed.count(), 3 );
}

TEST_F( SliderLineEditFloatTest, ASliderDragIsOneGestureOfChanges )
{
	QSignalSpy started( &m_Widget, &CQSliderLineEditFloat::GestureStarted );
	QSignalSpy ended( &m_Widget, &CQSliderLineEditFloat::GestureEnded );
	QSignalSpy changed( &m_Widget, &CQSliderLineEditFloat::ValueChanged );
	CQSlider *pSlider = m_Widget.GetSlider();
	const int nTrack = pSlider->width() - 3;
	DragMouse( pSlider, QPoint( 1 + nTrack / 2, 6 ), QPoint( 1 + nTrack, 6 ) );
	EXPECT_EQ( started.count(), 1 );
	EXPECT_EQ( ended.count(), 1 );
	EXPECT_GT( changed.count(), 1 );
	EXPECT_NEAR( m_Widget.GetValue(), 10.0, 1e-6 );
	EXPECT_EQ( m_Widget.GetLineEdit()->text(), QStringLiteral( "10" ) );
}
} // namespace
