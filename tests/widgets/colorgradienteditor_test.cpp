// The colour gradient editor and its swatch, driven as an artist drives them: presses,
// drags and keys sent to the widgets, the clipboard, and the menu. The model's hit test
// and band arithmetic are checked headless over tables.

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QToolButton>
#include <QtTest/QTest>

#include "core/host/scriptedprompt.h"
#include "tools/widgets/color/colorgradienteditor.h"
#include "tools/widgets/color/colorswatch.h"
#include "tools/widgets/color/colorgradientswatch.h"

namespace
{
void SendMouse( QWidget *pWidget, QEvent::Type eType, const QPoint &pos, Qt::MouseButton eButton, Qt::MouseButtons buttons )
{
	QMouseEvent event( eType, QPointF( pos ), QPointF( pWidget->mapTo( pWidget->window(), pos ) ), QPointF( pWidget->mapToGlobal( pos ) ), eButton, buttons,
					   Qt::NoModifier );
	QApplication::sendEvent( pWidget, &event );
}
void Press( QWidget *pWidget, const QPoint &pos, Qt::MouseButton eButton = Qt::LeftButton ) { SendMouse( pWidget, QEvent::MouseButtonPress, pos, eButton, eButton ); }
void MoveHeld( QWidget *pWidget, const QPoint &pos ) { SendMouse( pWidget, QEvent::MouseMove, pos, Qt::NoButton, Qt::LeftButton ); }
void Release( QWidget *pWidget, const QPoint &pos ) { SendMouse( pWidget, QEvent::MouseButtonRelease, pos, Qt::LeftButton, Qt::NoButton ); }

// Red at 0.2, blue at 0.8: the fire-to-sky look of a sample's colour ramp.
CColorGradient RedToBlue()
{
	CColorGradient gradient;
	gradient.AddStop( 0.2f, Color( 255, 0, 0 ) );
	gradient.AddStop( 0.8f, Color( 0, 0, 255 ) );
	return gradient;
}

bool SameLook( const CColorGradient &a, const CColorGradient &b )
{
	for ( int i = 0; i <= 200; ++i )
	{
		Color ca = a.Evaluate( i / 200.0f ), cb = b.Evaluate( i / 200.0f );
		for ( int c = 0; c < 4; ++c )
		{
			if ( std::abs( ca[ c ] - cb[ c ] ) > 1 )
				return false;
		}
	}
	return true;
}

class GradientEditorTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_Editor.resize( 406, 80 );
		m_Editor.SetGradient( RedToBlue(), false );
		m_Editor.show();
		QApplication::processEvents();
	}

	// A point on the handle row at a position.
	QPoint HandleRowAt( float flPosition ) const
	{
		ColorGradientBand_t band = m_Editor.GetBand();
		return QPoint( band.PixelOf( flPosition ), band.m_nHandleTop + band.m_nHandleHeight / 2 );
	}

	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
	CQColorGradientEditor m_Editor;
};
} // namespace

//-----------------------------------------------------------------------------
// The band, headless
//-----------------------------------------------------------------------------

struct HitCase_t
{
	const char *m_pName;
	int x, y;
	int m_nExpected;
};

class GradientHitTest : public ::testing::TestWithParam<HitCase_t>
{
};

// Band 0..100 wide, handles 10 by 10 at y 20..30; stops at 0.5, 0.55 and 0.9.
TEST_P( GradientHitTest, FindsTheNearestGrownHandle )
{
	ColorGradientBand_t band;
	band.m_nLeft = 0;
	band.m_nRight = 100;
	band.m_nTop = 0;
	band.m_nHandleTop = 20;
	CColorGradient gradient;
	gradient.AddStop( 0.5f, Color( 1, 1, 1 ) );
	gradient.AddStop( 0.55f, Color( 2, 2, 2 ) );
	gradient.AddStop( 0.9f, Color( 3, 3, 3 ) );
	const HitCase_t &c = GetParam();
	EXPECT_EQ( HitTestColorGradientStops( gradient, band, c.x, c.y ), c.m_nExpected );
}

INSTANTIATE_TEST_SUITE_P( GradientBand, GradientHitTest,
						  ::testing::Values( HitCase_t{ "OnAHandle", 90, 25, 2 }, HitCase_t{ "NearerOfTwoOverlapping", 54, 25, 1 },
											 HitCase_t{ "TieGoesToTheLowerIndex", 52, 25, 0 }, HitCase_t{ "InTheGrownMarginBelow", 90, 33, 2 },
											 HitCase_t{ "JustOutsideTheMargin", 90, 34, -1 }, HitCase_t{ "FourPixelsAboveTheHandle", 90, 16, 2 },
											 HitCase_t{ "OnTheStripFarAbove", 90, 10, -1 }, HitCase_t{ "BetweenHandles", 72, 25, -1 } ),
						  []( const ::testing::TestParamInfo<HitCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST( GradientBand, PositionUnderTheMouseIsClampedAndAZeroWidthBandIsAStep )
{
	ColorGradientBand_t band;
	band.m_nLeft = 10;
	band.m_nRight = 110;
	EXPECT_FLOAT_EQ( ColorGradientPositionAt( band, 35 ), 0.25f );
	EXPECT_FLOAT_EQ( ColorGradientPositionAt( band, -40 ), 0.0f );
	EXPECT_FLOAT_EQ( ColorGradientPositionAt( band, 500 ), 1.0f );
	band.m_nRight = 10;
	EXPECT_FLOAT_EQ( ColorGradientPositionAt( band, 9 ), 0.0f );
	EXPECT_FLOAT_EQ( ColorGradientPositionAt( band, 10 ), 1.0f );
}

TEST( GradientHistory, TheLimitDropsTheOldestAndAnEditForgetsRedo )
{
	CColorGradientEditHistory history;
	history.SetLimit( 2 );
	CColorGradient current;
	for ( int i = 0; i < 4; ++i )
	{
		history.Push( current );
		current.AddStop( i * 0.25f, Color( i, i, i ) );
	}
	EXPECT_EQ( history.GetUndoCount(), 2 );
	ASSERT_TRUE( history.Undo( &current ) );
	ASSERT_TRUE( history.Undo( &current ) );
	EXPECT_EQ( current.GetStopCount(), 2 );
	EXPECT_FALSE( history.Undo( &current ) );
	EXPECT_EQ( history.GetRedoCount(), 2 );
	history.Push( current );
	EXPECT_EQ( history.GetRedoCount(), 0 );
}

TEST( GradientRandomize, StaysWithinItsRangesAndLeavesAlphaOpaqueWithoutAlpha )
{
	std::mt19937 random( 7 );
	for ( int nRun = 0; nRun < 50; ++nRun )
	{
		CColorGradient gradient;
		RandomizeColorGradient( &gradient, nRun % 2 == 0, random );
		ASSERT_GE( gradient.GetStopCount(), 3 );
		ASSERT_LE( gradient.GetStopCount(), 4 );
		bool bBlackAtAnEnd = false;
		for ( int i = 0; i < gradient.GetStopCount(); ++i )
		{
			Color c = gradient.GetStopColor( i );
			float p = gradient.GetStopPosition( i );
			if ( c == Color( 0, 0, 0, 255 ) && ( p == 0.0f || p == 1.0f ) )
				bBlackAtAnEnd = true;
			if ( nRun % 2 )
				EXPECT_EQ( c.a(), 255 );
		}
		EXPECT_TRUE( bBlackAtAnEnd );
	}
}

//-----------------------------------------------------------------------------
// The editor, with real events
//-----------------------------------------------------------------------------

TEST_F( GradientEditorTest, APressOnAFreeSpotAddsAStopThatKeepsTheLook )
{
	QSignalSpy changed( &m_Editor, &CQColorGradientEditor::GradientChanged );
	const CColorGradient before = m_Editor.GetGradient();
	QPoint spot = HandleRowAt( 0.5f );
	Press( &m_Editor, spot );
	Release( &m_Editor, spot );
	ASSERT_EQ( m_Editor.GetGradient().GetStopCount(), 3 );
	EXPECT_EQ( m_Editor.GetSelectedStop(), 1 );
	EXPECT_NEAR( m_Editor.GetGradient().GetStopPosition( 1 ), 0.5f, 0.01f );
	EXPECT_TRUE( SameLook( before, m_Editor.GetGradient() ) );
	// A step on the press, a finished change on the release.
	ASSERT_EQ( changed.count(), 2 );
	EXPECT_FALSE( changed[ 0 ][ 0 ].toBool() );
	EXPECT_TRUE( changed[ 1 ][ 0 ].toBool() );
	// The footer shows the new stop.
	EXPECT_TRUE( m_Editor.GetPositionEdit()->isEnabled() );
	EXPECT_EQ( m_Editor.GetPositionEdit()->text().toFloat(), float( QString::number( m_Editor.GetGradient().GetStopPosition( 1 ) * 100.0f, 'f', 1 ).toFloat() ) );
	// One Ctrl+Z takes it away again.
	QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier );
	EXPECT_EQ( m_Editor.GetGradient().GetStopCount(), 2 );
}

TEST_F( GradientEditorTest, ADragMovesNothingUntilFivePixelsThenFollowsAndFinishesOnce )
{
	QSignalSpy changed( &m_Editor, &CQColorGradientEditor::GradientChanged );
	QPoint start = m_Editor.GetStopHandleCentre( 0 );
	Press( &m_Editor, start );
	MoveHeld( &m_Editor, start + QPoint( 3, 1 ) );
	EXPECT_FLOAT_EQ( m_Editor.GetGradient().GetStopPosition( 0 ), 0.2f );
	EXPECT_EQ( changed.count(), 0 );
	EXPECT_EQ( m_Editor.GetModel().GetHistory().GetUndoCount(), 0 ) << "four pixels took a snapshot";
	const int nWidth = m_Editor.GetBand().m_nRight - m_Editor.GetBand().m_nLeft;
	MoveHeld( &m_Editor, start + QPoint( nWidth / 10, 2 ) );
	MoveHeld( &m_Editor, start + QPoint( nWidth / 5, 0 ) );
	EXPECT_NEAR( m_Editor.GetGradient().GetStopPosition( 0 ), 0.4f, 0.01f );
	EXPECT_EQ( m_Editor.GetModel().GetHistory().GetUndoCount(), 1 );
	Release( &m_Editor, start + QPoint( nWidth / 5, 0 ) );
	ASSERT_EQ( changed.count(), 3 );
	EXPECT_FALSE( changed[ 0 ][ 0 ].toBool() );
	EXPECT_FALSE( changed[ 1 ][ 0 ].toBool() );
	EXPECT_TRUE( changed[ 2 ][ 0 ].toBool() );
	// A drag past the other stop reorders them, and the stop keeps its colour.
	start = m_Editor.GetStopHandleCentre( 0 );
	Press( &m_Editor, start );
	MoveHeld( &m_Editor, start + QPoint( nWidth / 2, 0 ) );
	Release( &m_Editor, start + QPoint( nWidth / 2, 0 ) );
	EXPECT_EQ( m_Editor.GetGradient().GetStopColor( 1 ), Color( 255, 0, 0 ) );
	EXPECT_EQ( m_Editor.GetSelectedStop(), 1 );
	// Two drags, two steps.
	QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier );
	QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier );
	EXPECT_FLOAT_EQ( m_Editor.GetGradient().GetStopPosition( 0 ), 0.2f );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 0 );
	QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 1 ) << "undo with nothing to undo beeps";
	QTest::keyClick( &m_Editor, Qt::Key_Y, Qt::ControlModifier );
	EXPECT_NEAR( m_Editor.GetGradient().GetStopPosition( 0 ), 0.4f, 0.01f );
	QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier );
	EXPECT_EQ( m_Editor.GetGradient().GetStopColor( 1 ), Color( 255, 0, 0 ) );
}

TEST_F( GradientEditorTest, AStopPulledOffTheBandComesBackWithItsColourOrStaysOutWhenLetGo )
{
	const ColorGradientBand_t band = m_Editor.GetBand();
	QPoint start = m_Editor.GetStopHandleCentre( 1 );
	Press( &m_Editor, start );
	MoveHeld( &m_Editor, QPoint( start.x() - 20, band.GetBottom() + 8 ) );
	EXPECT_EQ( m_Editor.GetGradient().GetStopCount(), 2 ) << "within 10 pixels of the band the stop stays";
	MoveHeld( &m_Editor, QPoint( start.x() - 20, band.GetBottom() + 12 ) );
	EXPECT_EQ( m_Editor.GetGradient().GetStopCount(), 1 );
	EXPECT_EQ( m_Editor.GetSelectedStop(), -1 );
	EXPECT_FALSE( m_Editor.GetPositionEdit()->isEnabled() );
	MoveHeld( &m_Editor, QPoint( start.x() - 40, start.y() ) );
	ASSERT_EQ( m_Editor.GetGradient().GetStopCount(), 2 );
	EXPECT_EQ( m_Editor.GetGradient().GetStopColor( m_Editor.GetSelectedStop() ), Color( 0, 0, 255 ) );
	// Out above the strip this time, and let go there.
	MoveHeld( &m_Editor, QPoint( start.x(), band.m_nTop - 11 ) );
	Release( &m_Editor, QPoint( start.x(), band.m_nTop - 11 ) );
	ASSERT_EQ( m_Editor.GetGradient().GetStopCount(), 1 );
	EXPECT_EQ( m_Editor.GetGradient().GetStopColor( 0 ), Color( 255, 0, 0 ) );
	// The whole drag is one step.
	QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier );
	EXPECT_EQ( m_Editor.GetGradient().GetStopCount(), 2 );
	EXPECT_FLOAT_EQ( m_Editor.GetGradient().GetStopPosition( 1 ), 0.8f );
}

TEST_F( GradientEditorTest, KeysAndTheMiddleButtonDeleteAndEscapeClearsBeforeItIsPassedOn )
{
	QSignalSpy escaped( &m_Editor, &CQColorGradientEditor::EscapeWithNoSelection );
	Press( &m_Editor, m_Editor.GetStopHandleCentre( 0 ) );
	Release( &m_Editor, m_Editor.GetStopHandleCentre( 0 ) );
	ASSERT_EQ( m_Editor.GetSelectedStop(), 0 );
	QTest::keyClick( &m_Editor, Qt::Key_Escape );
	EXPECT_EQ( m_Editor.GetSelectedStop(), -1 );
	EXPECT_EQ( escaped.count(), 0 );
	QTest::keyClick( &m_Editor, Qt::Key_Escape );
	EXPECT_EQ( escaped.count(), 1 );

	Press( &m_Editor, m_Editor.GetStopHandleCentre( 0 ) );
	Release( &m_Editor, m_Editor.GetStopHandleCentre( 0 ) );
	QTest::keyClick( &m_Editor, Qt::Key_Delete );
	ASSERT_EQ( m_Editor.GetGradient().GetStopCount(), 1 );
	EXPECT_EQ( m_Editor.GetGradient().GetStopColor( 0 ), Color( 0, 0, 255 ) );
	Press( &m_Editor, m_Editor.GetStopHandleCentre( 0 ), Qt::MiddleButton );
	EXPECT_EQ( m_Editor.GetGradient().GetStopCount(), 0 );
	QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier );
	QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier );
	EXPECT_EQ( m_Editor.GetGradient().GetStopCount(), 2 );
}

TEST_F( GradientEditorTest, ThePositionFieldMovesTheSelectedStopInPercent )
{
	QSignalSpy changed( &m_Editor, &CQColorGradientEditor::GradientChanged );
	m_Editor.SelectStop( 1 );
	QLineEdit *pEdit = m_Editor.GetPositionEdit();
	EXPECT_EQ( pEdit->text(), QStringLiteral( "80.0" ) );
	pEdit->setFocus();
	pEdit->selectAll();
	QTest::keyClicks( pEdit, "12.5" );
	QTest::keyClick( pEdit, Qt::Key_Return );
	EXPECT_FLOAT_EQ( m_Editor.GetGradient().GetStopPosition( 0 ), 0.125f );
	EXPECT_EQ( m_Editor.GetGradient().GetStopColor( 0 ), Color( 0, 0, 255 ) );
	ASSERT_EQ( changed.count(), 1 );
	EXPECT_TRUE( changed[ 0 ][ 0 ].toBool() );
	// Text that isn't a number changes nothing and shows the position again.
	pEdit->selectAll();
	QTest::keyClicks( pEdit, "soon" );
	QTest::keyClick( pEdit, Qt::Key_Return );
	EXPECT_EQ( changed.count(), 1 );
	EXPECT_EQ( pEdit->text(), QStringLiteral( "12.5" ) );
}

TEST_F( GradientEditorTest, CopyAndPasteCarryTheGradientAndBadTextDisablesPasteAndChangesNothing )
{
	m_Editor.CopyGradient();
	EXPECT_TRUE( QApplication::clipboard()->text().contains( QStringLiteral( "m_Stops" ) ) );
	CQColorGradientEditor other;
	other.SetGradient( CColorGradient(), false );
	QSignalSpy changed( &other, &CQColorGradientEditor::GradientChanged );
	std::unique_ptr<QMenu> pMenu( other.CreateContextMenu( &other ) );
	QAction *pPaste = pMenu->findChild<QAction *>( QStringLiteral( "PasteGradient" ) );
	ASSERT_TRUE( pPaste );
	QMetaObject::invokeMethod( pMenu.get(), "aboutToShow" );
	EXPECT_TRUE( pPaste->isEnabled() );
	pPaste->trigger();
	EXPECT_TRUE( SameLook( other.GetGradient(), RedToBlue() ) );
	EXPECT_EQ( changed.count(), 1 );

	// A gradient whose stop isn't a table fails its trial load, and so does text that
	// isn't KV3 at all.
	for ( const char *pText : { "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n"
								"{ m_Stops = [ 5 ] }",
								"{ m_Stops = [ { m_flPosition = 0.5 } ] }" } )
	{
		QApplication::clipboard()->setText( QString::fromUtf8( pText ) );
		QMetaObject::invokeMethod( pMenu.get(), "aboutToShow" );
		EXPECT_FALSE( pPaste->isEnabled() ) << pText;
	}
	m_Prompt.ExpectMessage( "Failed to paste gradient" );
	other.PasteGradient();
	EXPECT_EQ( changed.count(), 1 );
	EXPECT_TRUE( SameLook( other.GetGradient(), RedToBlue() ) );
	QApplication::clipboard()->clear();
	m_Prompt.ExpectMessage( "Failed to paste gradient" );
	other.PasteGradient();
	const CScriptedPrompt::Record_t *pRecord = m_Prompt.FindRecord( "Failed to paste gradient" );
	ASSERT_TRUE( pRecord );
	EXPECT_STREQ( pRecord->m_strText.Get(), "No data on clipboard" );
}

TEST_F( GradientEditorTest, MenuEditsAreUndoSteps )
{
	m_Editor.ReverseGradient();
	EXPECT_EQ( m_Editor.GetGradient().GetStopColor( 0 ), Color( 0, 0, 255 ) );
	EXPECT_FLOAT_EQ( m_Editor.GetGradient().GetStopPosition( 0 ), 0.2f );
	m_Editor.SetRandomSeed( 3 );
	m_Editor.RandomizeGradient();
	m_Editor.ClearGradient();
	EXPECT_EQ( m_Editor.GetGradient().GetStopCount(), 0 );
	for ( int i = 0; i < 3; ++i )
		QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier );
	EXPECT_TRUE( SameLook( m_Editor.GetGradient(), RedToBlue() ) );
}

TEST_F( GradientEditorTest, TheFooterIsDisabledWithoutASelectionAndItsSwatchRecolorsTheStopInOneStep )
{
	EXPECT_FALSE( m_Editor.GetColorSwatch()->isEnabled() );
	EXPECT_FALSE( m_Editor.GetDeleteButton()->isEnabled() );
	m_Editor.SelectStop( 0 );
	EXPECT_TRUE( m_Editor.GetColorSwatch()->isEnabled() );
	QSignalSpy changed( &m_Editor, &CQColorGradientEditor::GradientChanged );
	// The swatch reports tries while its picker is up, then the end of its edit.
	emit m_Editor.GetColorSwatch()->ColorEdited( QColor( 10, 200, 10 ), false );
	emit m_Editor.GetColorSwatch()->ColorEdited( QColor( 20, 220, 20 ), false );
	emit m_Editor.GetColorSwatch()->ColorEdited( QColor( 30, 240, 30 ), true );
	EXPECT_EQ( m_Editor.GetGradient().GetStopColor( 0 ), Color( 30, 240, 30 ) );
	ASSERT_EQ( changed.count(), 3 );
	EXPECT_FALSE( changed[ 1 ][ 0 ].toBool() );
	EXPECT_TRUE( changed[ 2 ][ 0 ].toBool() );
	EXPECT_EQ( m_Editor.GetModel().GetHistory().GetUndoCount(), 1 );
	QTest::keyClick( &m_Editor, Qt::Key_Z, Qt::ControlModifier );
	EXPECT_EQ( m_Editor.GetGradient().GetStopColor( 0 ), Color( 255, 0, 0 ) );
}

TEST_F( GradientEditorTest, TheStripShowsTheGradientAndIsRebuiltOnlyOnChange )
{
	QImage strip = m_Editor.GetStripPixmap().toImage();
	ASSERT_EQ( strip.width(), m_Editor.GetStripRect().width() );
	EXPECT_EQ( QColor( strip.pixel( 1, strip.height() / 2 ) ), QColor( 255, 0, 0 ) );
	EXPECT_EQ( QColor( strip.pixel( strip.width() - 2, 2 ) ), QColor( 0, 0, 255 ) );
	const qint64 nKey = m_Editor.GetStripPixmap().cacheKey();
	m_Editor.update();
	QApplication::processEvents();
	EXPECT_EQ( m_Editor.GetStripPixmap().cacheKey(), nKey );
	m_Editor.ReverseGradient();
	EXPECT_NE( m_Editor.GetStripPixmap().cacheKey(), nKey );
	EXPECT_EQ( QColor( m_Editor.GetStripPixmap().toImage().pixel( 1, 2 ) ), QColor( 0, 0, 255 ) );
}

//-----------------------------------------------------------------------------
// The swatch
//-----------------------------------------------------------------------------

TEST( GradientSwatch, AClickOpensOneEditorThatCarriesChangesBackAndEscapeClosesIt )
{
	CScriptedPrompt prompt;
	CScopedPrompt scoped( &prompt );
	QWidget window;
	window.resize( 400, 100 );
	auto *pSwatch = new CQColorGradientSwatch( &window );
	pSwatch->setGeometry( 20, 20, 200, 20 );
	pSwatch->SetGradient( RedToBlue(), true );
	window.show();
	QApplication::processEvents();
	QSignalSpy changed( pSwatch, &CQColorGradientSwatch::GradientChanged );

	QTest::mouseClick( pSwatch, Qt::LeftButton, Qt::NoModifier, QPoint( 50, 10 ) );
	QPointer<CQColorGradientEditor> pEditor = pSwatch->GetEditor();
	ASSERT_TRUE( pEditor );
	EXPECT_EQ( pEditor->windowTitle(), QStringLiteral( "Gradient" ) );
	EXPECT_EQ( pEditor->windowType(), Qt::ToolTip );
	EXPECT_TRUE( pEditor->HasAlpha() );
	QTest::mouseClick( pSwatch, Qt::LeftButton, Qt::NoModifier, QPoint( 50, 10 ) );
	EXPECT_EQ( pSwatch->GetEditor(), pEditor.data() ) << "a second click brings up the same editor";

	// A stop dragged in the editor reaches the swatch.
	QPoint start = pEditor->GetStopHandleCentre( 0 );
	Press( pEditor, start );
	MoveHeld( pEditor, start + QPoint( 30, 0 ) );
	Release( pEditor, start + QPoint( 30, 0 ) );
	EXPECT_GT( pSwatch->GetGradient().GetStopPosition( 0 ), 0.25f );
	ASSERT_GE( changed.count(), 2 );
	EXPECT_TRUE( changed.last()[ 0 ].toBool() );

	// The swatch's own menu edit shows in the open editor.
	pSwatch->ReverseGradient();
	EXPECT_TRUE( SameLook( pEditor->GetGradient(), pSwatch->GetGradient() ) );
	EXPECT_EQ( pSwatch->GetGradient().GetStopColor( 0 ), Color( 0, 0, 255 ) );

	QTest::keyClick( pEditor, Qt::Key_Escape );
	QApplication::sendPostedEvents( nullptr, QEvent::DeferredDelete );
	EXPECT_FALSE( pEditor );
	EXPECT_FALSE( pSwatch->GetEditor() );
}
