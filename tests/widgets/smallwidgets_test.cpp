// The small widgets of the kit, through their events: the elided label keeps its prefix
// and tells the whole text, the hover button tells entry and exit, the connect helper
// carries its pointer.

#include <gtest/gtest.h>

#include <cstring>

#include <QApplication>
#include <QSignalSpy>
#include <QtTest/QTest>

#include "tools/widgets/connecthelper.h"
#include "tools/widgets/elidedcheckbox.h"
#include "tools/widgets/elidedlabel.h"
#include "tools/widgets/hoverbutton.h"

TEST( ElidedLabel, CutsTheTextButNeverItsPrefixAndShowsTheWholeTextAsToolTip )
{
	CQElidedLabel label;
	label.show();
	const QString text = QStringLiteral( "Now editing: particles/samples/a/very/long/path/to/campfire.tfxs" );
	label.SetText( text, 13 );
	label.SetElideMode( Qt::ElideLeft );
	label.resize( label.fontMetrics().horizontalAdvance( QStringLiteral( "Now editing: xxxxcampfire.tfxs" ) ), 20 );
	const QString shown = label.GetShownText();
	EXPECT_TRUE( shown.startsWith( QStringLiteral( "Now editing: " ) ) ) << shown.toStdString();
	EXPECT_TRUE( shown.endsWith( QStringLiteral( "campfire.tfxs" ) ) ) << shown.toStdString();
	EXPECT_LT( shown.size(), text.size() );
	EXPECT_EQ( label.toolTip(), text );

	label.resize( 2000, 20 );
	EXPECT_EQ( label.GetShownText(), text );
	EXPECT_TRUE( label.toolTip().isEmpty() );
	EXPECT_EQ( label.minimumSizeHint().width(), 0 );
}

// A narrow dock keeps the file's name readable: the folders go first, then the label's
// words, and the name is cut at its end only when nothing else is left to cut.
TEST( ElidedLabel, AKeptTailStaysWholeLongerThanThePrefix )
{
	CQElidedLabel label;
	label.show();
	const QString text = QStringLiteral( "Now editing: particles/samples/campfire.tfxs" );
	label.SetText( text, 13, int( strlen( "campfire.tfxs" ) ) );
	const QFontMetrics metrics = label.fontMetrics();
	struct Case_t
	{
		const char *m_pRoomFor;
		const char *m_pStarts;
		const char *m_pEnds;
	} cases[] = {
		{ "Now editing: part\u2026campfire.tfxs", "Now editing: ", "campfire.tfxs" },
		{ "\u2026campfire.tfxs", "\u2026", "campfire.tfxs" },
		{ "campfi\u2026", "campf", "\u2026" },
	};
	for ( const Case_t &c : cases )
	{
		label.resize( metrics.horizontalAdvance( QString::fromUtf8( c.m_pRoomFor ) ) + 1, 20 );
		const QString shown = label.GetShownText();
		EXPECT_TRUE( shown.startsWith( QString::fromUtf8( c.m_pStarts ) ) ) << shown.toStdString();
		EXPECT_TRUE( shown.endsWith( QString::fromUtf8( c.m_pEnds ) ) ) << shown.toStdString();
		EXPECT_LE( metrics.horizontalAdvance( shown ), label.contentsRect().width() ) << shown.toStdString();
	}
}

// A narrow check box ends its text in dots rather than clipping a letter in half, grows
// back to the whole text, and still toggles.
TEST( ElidedCheckBox, CutsItsTextWithDotsAndGrowsBack )
{
	QWidget window;
	auto *pBox = new CQElidedCheckBox( QStringLiteral( "Randomly Flip Sign" ), &window );
	window.show();
	const int nWhole = pBox->sizeHint().width();
	EXPECT_GT( nWhole, pBox->fontMetrics().horizontalAdvance( pBox->text() ) ) << "asks for the whole text and the box";
	EXPECT_LT( pBox->minimumSizeHint().width(), 30 );

	pBox->resize( nWhole / 2, pBox->sizeHint().height() );
	const QString shown = pBox->GetShownText();
	EXPECT_TRUE( shown.endsWith( QChar( 0x2026 ) ) ) << shown.toStdString();
	EXPECT_TRUE( shown.startsWith( QStringLiteral( "Rand" ) ) ) << shown.toStdString();
	EXPECT_EQ( pBox->toolTip(), pBox->text() );
	QTest::mouseClick( pBox, Qt::LeftButton, Qt::NoModifier, QPoint( 6, pBox->height() / 2 ) );
	EXPECT_TRUE( pBox->isChecked() );

	pBox->resize( nWhole, pBox->sizeHint().height() );
	EXPECT_EQ( pBox->GetShownText(), pBox->text() );
	EXPECT_TRUE( pBox->toolTip().isEmpty() );
	// The painted box really shows it: a render is not blank.
	QImage image( pBox->size(), QImage::Format_ARGB32 );
	image.fill( Qt::transparent );
	pBox->render( &image );
	int nPainted = 0;
	for ( int x = 0; x < image.width(); ++x )
		nPainted += qAlpha( image.pixel( x, image.height() / 2 ) ) > 0;
	EXPECT_GT( nPainted, 0 );
}

TEST( HoverButton, TellsEnterAndLeave )
{
	CQHoverButton button( QStringLiteral( "fire.tfxs" ) );
	QSignalSpy entered( &button, &CQHoverButton::MouseEnter );
	QSignalSpy left( &button, &CQHoverButton::MouseLeave );
	QEvent enter( QEvent::Enter );
	QApplication::sendEvent( &button, &enter );
	QEvent leave( QEvent::Leave );
	QApplication::sendEvent( &button, &leave );
	EXPECT_EQ( entered.count(), 1 );
	EXPECT_EQ( left.count(), 1 );
}

TEST( ConnectHelper, MapsAClickToItsPointer )
{
	int nTarget = 0;
	CQHoverButton button( QStringLiteral( "x" ) );
	auto *pHelper = new CQConnectHelper_void( &nTarget, &button );
	QObject::connect( &button, &QPushButton::clicked, pHelper, &CQConnectHelper_void::map );
	void *pMapped = nullptr;
	QObject::connect( pHelper, &CQConnectHelper_void::mapped, [ & ]( void *p ) { pMapped = p; } );
	button.resize( 40, 20 );
	button.show();
	QTest::mouseClick( &button, Qt::LeftButton );
	EXPECT_EQ( pMapped, &nTarget );
}
