// The colour swatch and colour text: sets of colours travel as text through the clipboard
// and drag and drop (refused when they change nothing), and the picker opened by a click
// tells its tries and its end.

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest/QTest>

#include "tools/widgets/color/colordialog.h"
#include "tools/widgets/color/colorswatch.h"
#include "tools/widgets/color/colortext.h"

namespace
{
// Sends a whole drag over the swatch: enter, move, and the drop if it was accepted.
bool DropOn( QWidget *pWidget, QMimeData *pData, Qt::MouseButtons buttons = Qt::LeftButton )
{
	const QPoint pos = pWidget->rect().center();
	QDragEnterEvent enter( pos, Qt::CopyAction, pData, buttons, Qt::NoModifier );
	QApplication::sendEvent( pWidget, &enter );
	if ( !enter.isAccepted() )
	{
		QDragLeaveEvent leave;
		QApplication::sendEvent( pWidget, &leave );
		return false;
	}
	QDropEvent drop( pos, Qt::CopyAction, pData, buttons, Qt::NoModifier );
	QApplication::sendEvent( pWidget, &drop );
	return drop.isAccepted();
}
} // namespace

struct ColorTextCase_t
{
	const char *m_pName;
	QColor m_Color;
	const char *m_pPrefix;
};

class ColorSetText : public ::testing::TestWithParam<ColorTextCase_t>
{
};

TEST_P( ColorSetText, KeepsTheColoursOwnSpecificationThroughText )
{
	const ColorTextCase_t &c = GetParam();
	QVector<QColor> set = { c.m_Color, QColor( 10, 20, 30, 40 ) };
	QString text = ColorSetToText( set );
	EXPECT_TRUE( text.startsWith( QString::fromLatin1( c.m_pPrefix ) ) ) << text.toStdString();
	QVector<QColor> back = ColorSetFromText( text );
	ASSERT_EQ( back.size(), 2 );
	EXPECT_EQ( ColorModelOf( back[ 0 ] ), ColorModelOf( c.m_Color ) );
	EXPECT_EQ( back[ 0 ].toRgb().rgba(), c.m_Color.toRgb().rgba() );
	EXPECT_EQ( back[ 1 ].toRgb().rgba(), QColor( 10, 20, 30, 40 ).rgba() );
}

INSTANTIATE_TEST_SUITE_P( Specs, ColorSetText,
						  ::testing::Values( ColorTextCase_t{ "Rgb", QColor( 255, 128, 0, 200 ), "RGBA\t1.0000000\t0.5019608\t0.0000000\t0.7843137" },
											 ColorTextCase_t{ "Hsv", QColor::fromHsv( 200, 120, 90, 255 ), "HSVA\t" },
											 ColorTextCase_t{ "Hsl", QColor::fromHsl( 30, 200, 100, 17 ), "HSLA\t" } ),
						  []( const ::testing::TestParamInfo<ColorTextCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST( ColorText, OneColourIsTabbedGFormatAndTextThatDoesNotReadGivesNothing )
{
	EXPECT_EQ( ColorToText( QColor( 255, 0, 0, 255 ) ), QStringLiteral( "RGBA\t1\t0\t0\t1" ) );
	QColor color( 1, 2, 3 );
	EXPECT_TRUE( ColorFromText( QStringLiteral( "RGBA\t0\t1\t0\t0.5" ), &color ) );
	EXPECT_EQ( color, QColor::fromRgbF( 0, 1, 0, 0.5 ) );
	for ( const char *pBad : { "", "red", "RGBA\t1\t0\t0", "XYZA\t1\t0\t0\t1", "RGBA\t1\t0\t0\t7", "RGBA\t1\t0\t0\t1\nHSVA\tnope\t0\t0\t1" } )
		EXPECT_TRUE( ColorSetFromText( QString::fromUtf8( pBad ) ).isEmpty() ) << pBad;
	QColor untouched( 9, 9, 9 );
	EXPECT_FALSE( ColorFromText( QStringLiteral( "hello" ), &untouched ) );
	EXPECT_EQ( untouched, QColor( 9, 9, 9 ) );
}

TEST( ColorSwatch, DropsTakeNewColourSetsAndRefuseTheSameOnesAndBadText )
{
	CQColorSwatch swatch;
	swatch.SetAllowAlpha( true );
	swatch.SetColor( QColor( 255, 0, 0 ) );
	swatch.resize( 60, 20 );
	swatch.show();
	QSignalSpy changed( &swatch, &CQColorSwatch::currentColorChanged );
	QSignalSpy edited( &swatch, &CQColorSwatch::ColorEdited );

	QMimeData same;
	ColorSetToMimeData( { QColor( 255, 0, 0 ) }, &same );
	EXPECT_FALSE( DropOn( &swatch, &same ) );
	QMimeData garbage;
	garbage.setText( QStringLiteral( "not a colour" ) );
	EXPECT_FALSE( DropOn( &swatch, &garbage ) );
	QMimeData colorOnly;
	colorOnly.setColorData( QColor( 255, 0, 0 ) );
	EXPECT_FALSE( DropOn( &swatch, &colorOnly ) ) << "one colour equal to the current one";
	EXPECT_EQ( changed.count(), 0 );

	QMimeData set;
	ColorSetToMimeData( { QColor( 0, 255, 0, 128 ), QColor( 0, 0, 255 ) }, &set );
	EXPECT_TRUE( DropOn( &swatch, &set ) );
	ASSERT_EQ( swatch.GetColorSet().size(), 2 );
	EXPECT_EQ( swatch.GetColor(), QColor( 0, 255, 0, 128 ) );
	EXPECT_TRUE( swatch.toolTip().startsWith( QStringLiteral( "2 Colors:\n#00ff00 (rgb), alpha: 128.0,\n#0000ff (rgb)" ) ) ) << swatch.toolTip().toStdString();
	ASSERT_EQ( changed.count(), 1 );
	ASSERT_EQ( edited.count(), 1 );
	EXPECT_TRUE( edited[ 0 ][ 1 ].toBool() );

	QMimeData other;
	other.setColorData( QColor( 10, 10, 10 ) );
	EXPECT_TRUE( DropOn( &swatch, &other ) );
	EXPECT_EQ( swatch.GetColorSet(), QVector<QColor>{ QColor( 10, 10, 10 ) } );
}

TEST( ColorSwatch, CopyAndPasteThroughTheClipboardAndTheMenuSaysWhatItWouldDo )
{
	CQColorSwatch source;
	source.SetColorSet( { QColor( 1, 2, 3 ), QColor( 4, 5, 6 ), QColor( 7, 8, 9 ) } );
	source.CopyColorSetToClipboard();
	EXPECT_TRUE( QApplication::clipboard()->text().startsWith( QStringLiteral( "RGBA\t" ) ) );

	CQColorSwatch target;
	target.SetColor( Qt::white );
	std::unique_ptr<QMenu> pMenu( target.CreateContextMenu( nullptr ) );
	QStringList texts;
	for ( QAction *pAction : pMenu->actions() )
		texts << pAction->text();
	EXPECT_EQ( texts, ( QStringList{ "&Copy", "&Paste (3)", "&Edit &Color" } ) );
	QSignalSpy changed( &target, &CQColorSwatch::currentColorChanged );
	pMenu->actions()[ 1 ]->trigger();
	EXPECT_EQ( target.GetColorSet().size(), 3 );
	EXPECT_EQ( changed.count(), 1 );
	// The same set again changes nothing.
	target.PasteColorSetFromClipboard();
	EXPECT_EQ( changed.count(), 1 );
	std::unique_ptr<QMenu> pSetMenu( target.CreateContextMenu( nullptr ) );
	EXPECT_EQ( pSetMenu->actions()[ 0 ]->text(), QStringLiteral( "&Copy (3)" ) );
	EXPECT_FALSE( pSetMenu->actions()[ 1 ]->isEnabled() );
	EXPECT_EQ( pSetMenu->actions()[ 2 ]->text(), QStringLiteral( "&Edit &Colors (3)" ) );

	QApplication::clipboard()->setText( QStringLiteral( "no colours here" ) );
	target.PasteColorSetFromClipboard();
	EXPECT_EQ( target.GetColorSet().size(), 3 );
}

TEST( ColorSwatch, AClickOpensThePickerWhoseTriesAreToldAndItsEndFinishesTheRun )
{
	CQColorSwatch swatch;
	swatch.SetColor( QColor( 255, 255, 255 ) );
	swatch.resize( 60, 20 );
	swatch.show();
	QSignalSpy edited( &swatch, &CQColorSwatch::ColorEdited );
	bool bSawPicker = false;
	QTimer::singleShot( 0, [ & ] {
		auto *pDialog = qobject_cast<CQColorDialog *>( QApplication::activeModalWidget() );
		ASSERT_TRUE( pDialog );
		bSawPicker = true;
		QLineEdit *pRed = pDialog->GetChannelEdit( 3 );
		pRed->setFocus();
		pRed->selectAll();
		QTest::keyClicks( pRed, "40" );
		EXPECT_EQ( swatch.GetColor(), QColor( 40, 255, 255 ) ) << "the swatch follows the picker";
		QPushButton *pOk = pDialog->findChild<QDialogButtonBox *>()->button( QDialogButtonBox::Ok );
		QTest::mouseClick( pOk, Qt::LeftButton );
	} );
	QTest::mouseClick( &swatch, Qt::LeftButton );
	ASSERT_TRUE( bSawPicker );
	EXPECT_FALSE( swatch.IsEditing() );
	EXPECT_EQ( swatch.GetColor(), QColor( 40, 255, 255 ) );
	ASSERT_GE( edited.count(), 2 );
	EXPECT_FALSE( edited.first()[ 1 ].toBool() );
	EXPECT_TRUE( edited.last()[ 1 ].toBool() );
	EXPECT_EQ( qvariant_cast<QColor>( edited.last()[ 0 ] ), QColor( 40, 255, 255 ) );

	// Cancelled, the colour goes back, and the run still ends.
	edited.clear();
	QTimer::singleShot( 0, [ & ] {
		auto *pDialog = qobject_cast<CQColorDialog *>( QApplication::activeModalWidget() );
		ASSERT_TRUE( pDialog );
		QLineEdit *pGreen = pDialog->GetChannelEdit( 4 );
		pGreen->selectAll();
		QTest::keyClicks( pGreen, "7" );
		pDialog->reject();
	} );
	swatch.DoEdit();
	EXPECT_EQ( swatch.GetColor(), QColor( 40, 255, 255 ) );
	ASSERT_GE( edited.count(), 2 );
	EXPECT_TRUE( edited.last()[ 1 ].toBool() );
}
