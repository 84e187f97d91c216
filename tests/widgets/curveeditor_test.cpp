// The curve editor through real mouse, key and wheel events: keys dragged past their
// neighbours, tangent handles in each mode, keys added and deleted, zoom around the
// pointer, one change told per drag, the key menu, and copy and paste as KV3 text.

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QDoubleSpinBox>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest/QTest>

#include <cmath>
#include <memory>

#include "core/host/iprompt.h"
#include "core/host/scriptedprompt.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/utlstring.h"
#include "tests/support/userinput.h"
#include "tools/widgets/curveeditorwidget.h"
#include "tools/widgets/modaleditcurvepointdialog.h"

namespace
{
// Keys at x 0, 1, 2, 3 on a domain of (0,0)-(3,1), in a widget whose plot maps one curve
// unit to 100 pixels across.
class CurveEditorTest : public testing::Test
{
protected:
	void SetUp() override
	{
		m_Widget.resize( 80 + 300 + 80 + 1, 20 + 200 + 20 + 1 );
		CPiecewiseCurve curve;
		curve.SetDomain( Vector2D( 0, 0 ), Vector2D( 3, 1 ) );
		for ( int i = 0; i < 4; ++i )
			curve.AddPoint( float( i ), i % 2 ? 1.0f : 0.0f, CURVE_TANGENT_SPLINE, CURVE_TANGENT_SPLINE, 0, 0 );
		m_Widget.SetCurve( curve, false, true );
		m_Widget.show();
		QApplication::setActiveWindow( &m_Widget );
		m_Widget.setFocus();
	}

	QPoint KeyPos( int nKey ) const
	{
		const CurveKey_t &key = m_Widget.GetShownCurve().GetKey( nKey );
		return m_Widget.CurveToScreen( key.x, key.y ).toPoint();
	}
	const ZolCurveHandle *Tangent( int nSide ) const
	{
		for ( const ZolCurveHandle &handle : m_Widget.GetHandles() )
		{
			if ( handle.m_nSide == nSide )
				return &handle;
		}
		return nullptr;
	}
	void Click( const QPoint &pos, Qt::KeyboardModifiers modifiers = Qt::NoModifier )
	{
		SendMouse( &m_Widget, QEvent::MouseMove, pos, Qt::NoButton, Qt::NoButton, modifiers );
		SendMouse( &m_Widget, QEvent::MouseButtonPress, pos, Qt::LeftButton, Qt::LeftButton, modifiers );
		SendMouse( &m_Widget, QEvent::MouseButtonRelease, pos, Qt::LeftButton, Qt::NoButton, modifiers );
	}

	CQCurveEditorWidget m_Widget;
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
};

TEST_F( CurveEditorTest, TheViewMapsTheDomainOntoThePlot )
{
	EXPECT_EQ( KeyPos( 0 ), QPoint( 80, 220 ) );
	EXPECT_EQ( KeyPos( 3 ), QPoint( 380, 20 ) );
	EXPECT_EQ( KeyPos( 1 ), QPoint( 180, 20 ) );
	EXPECT_FLOAT_EQ( m_Widget.GetTangentHandleLength(), 200.0f * 0.33f );
	ASSERT_EQ( m_Widget.GetHandles().size(), 4u ) << "one handle a key, none for tangents until a key is selected";
}

TEST_F( CurveEditorTest, AKeyDraggedPastItsNeighboursCrossesOneAtATime )
{
	QSignalSpy updated( &m_Widget, &CQCurveEditorWidget::OnCurveUpdated );
	// Key 0 dragged far to the right: each move crosses one neighbour and lands just beyond it.
	QPoint from = KeyPos( 0 );
	SendMouse( &m_Widget, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton );
	SendMouse( &m_Widget, QEvent::MouseMove, from + QPoint( 10, 0 ), Qt::NoButton, Qt::LeftButton );
	ASSERT_EQ( m_Widget.GetSelectedHandle(), 0 );
	const QPoint far = m_Widget.CurveToScreen( 2.9, 0.5 ).toPoint();
	SendMouse( &m_Widget, QEvent::MouseMove, far, Qt::NoButton, Qt::LeftButton );
	const CPiecewiseCurve &curve = m_Widget.GetShownCurve();
	ASSERT_EQ( curve.GetKeyCount(), 4 );
	EXPECT_NEAR( curve.GetKey( 1 ).x, 1.0001, 1e-5 ) << "the first move crossed only the key at 1";
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).x, 1.0f ) << "the neighbour it passed kept its place";
	EXPECT_EQ( m_Widget.GetHandles()[ m_Widget.GetSelectedHandle() ].m_nKey, 1 ) << "the selection follows the key";
	SendMouse( &m_Widget, QEvent::MouseMove, far, Qt::NoButton, Qt::LeftButton );
	EXPECT_NEAR( curve.GetKey( 2 ).x, 2.0001, 1e-5 );
	EXPECT_EQ( m_Widget.GetHandles()[ m_Widget.GetSelectedHandle() ].m_nKey, 2 );
	EXPECT_EQ( updated.count(), 0 ) << "nothing is told while the drag lasts";
	SendMouse( &m_Widget, QEvent::MouseButtonRelease, far, Qt::LeftButton, Qt::NoButton );
	// With no neighbour left in the way, the release puts it under the pointer.
	EXPECT_NEAR( curve.GetKey( 2 ).x, 2.9, 0.01 );
	EXPECT_NEAR( curve.GetKey( 2 ).y, 0.5, 0.01 );
	EXPECT_EQ( updated.count(), 1 ) << "one change per drag";
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).x, 1.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).x, 2.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 3 ).x, 3.0f );
}

TEST_F( CurveEditorTest, AKeyDraggedLeftCrossesItsLeftNeighbourAlike )
{
	QPoint from = KeyPos( 3 );
	SendMouse( &m_Widget, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton );
	SendMouse( &m_Widget, QEvent::MouseMove, from - QPoint( 10, 0 ), Qt::NoButton, Qt::LeftButton );
	SendMouse( &m_Widget, QEvent::MouseMove, m_Widget.CurveToScreen( 0.5, 0.0 ).toPoint(), Qt::NoButton, Qt::LeftButton );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 2 ).x, 1.9999, 1e-5 );
	EXPECT_FLOAT_EQ( m_Widget.GetShownCurve().GetKey( 3 ).x, 2.0f );
	SendMouse( &m_Widget, QEvent::MouseButtonRelease, m_Widget.CurveToScreen( 0.5, 0.0 ).toPoint(), Qt::LeftButton, Qt::NoButton );
}

TEST_F( CurveEditorTest, TangentHandlesFollowTheKeysModes )
{
	Click( KeyPos( 1 ) );
	ASSERT_EQ( m_Widget.GetSelectedHandle(), 1 );
	ASSERT_NE( Tangent( ZolCurveHandle::SIDE_INCOMING ), nullptr );
	// Spline derives its slopes: its handles show but don't react.
	EXPECT_FALSE( Tangent( ZolCurveHandle::SIDE_INCOMING )->m_bActive );
	QSignalSpy updated( &m_Widget, &CQCurveEditorWidget::OnCurveUpdated );
	DragMouse( &m_Widget, Tangent( ZolCurveHandle::SIDE_OUTGOING )->m_Position.toPoint(), KeyPos( 1 ) + QPoint( 50, 50 ) );
	EXPECT_FLOAT_EQ( m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeOutgoing, 0.0f ) << "a spline tangent can't be dragged";
	EXPECT_EQ( m_Widget.GetSelectedHandle(), -1 ) << "the press met no handle that reacts";
	Click( KeyPos( 1 ) );

	// Free on one side: that handle sets its slope, the other side stays.
	m_Widget.SetOutgoingTangent( 1, CURVE_TANGENT_FREE );
	EXPECT_EQ( updated.count(), 1 );
	ASSERT_TRUE( Tangent( ZolCurveHandle::SIDE_OUTGOING )->m_bActive );
	EXPECT_FALSE( Tangent( ZolCurveHandle::SIDE_INCOMING )->m_bActive );
	// Pointer 50 pixels right (0.5 units) and 50 down (0.25 units): slope -0.5.
	DragMouse( &m_Widget, Tangent( ZolCurveHandle::SIDE_OUTGOING )->m_Position.toPoint(), KeyPos( 1 ) + QPoint( 50, 50 ) );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeOutgoing, -0.5, 1e-4 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeIncoming, 0.0, 1e-6 );
	EXPECT_EQ( updated.count(), 2 ) << "the drag told its change once";

	// Dragged back over the key the slope stays finite: the run never falls under 0.0001.
	DragMouse( &m_Widget, Tangent( ZolCurveHandle::SIDE_OUTGOING )->m_Position.toPoint(), KeyPos( 1 ) + QPoint( -40, 20 ) );
	float flSteep = m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeOutgoing;
	EXPECT_TRUE( std::isfinite( flSteep ) );
	EXPECT_LT( flSteep, -100.0f );

	// Free as a pair: one side free, the other mirroring it. Either handle works from the
	// side the pointer is on, and both slopes agree.
	m_Widget.SetBothTangents( 1, CURVE_TANGENT_FREE );
	const CurveTangents_t &tangents = m_Widget.GetShownCurve().GetTangents( 1 );
	EXPECT_EQ( tangents.m_nIncomingTangent, CURVE_TANGENT_FREE );
	EXPECT_EQ( tangents.m_nOutgoingTangent, CURVE_TANGENT_MIRROR );
	ASSERT_TRUE( Tangent( ZolCurveHandle::SIDE_INCOMING )->m_bMirrored );
	ASSERT_TRUE( Tangent( ZolCurveHandle::SIDE_OUTGOING )->m_bActive );
	// The outgoing handle dragged to the left of the key works as an incoming one: pointer
	// 100 pixels left (1 unit) and 50 down (0.25): slope 0.25 on both sides.
	DragMouse( &m_Widget, Tangent( ZolCurveHandle::SIDE_OUTGOING )->m_Position.toPoint(), KeyPos( 1 ) + QPoint( -100, 50 ) );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeIncoming, 0.25, 1e-4 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeOutgoing, 0.25, 1e-4 );
	// The incoming handle to the right of the key: pointer 0.5 right, 0.5 down: slope -1.
	DragMouse( &m_Widget, Tangent( ZolCurveHandle::SIDE_INCOMING )->m_Position.toPoint(), KeyPos( 1 ) + QPoint( 50, 100 ) );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeIncoming, -1.0, 1e-4 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeOutgoing, -1.0, 1e-4 );

	// Linear: the slopes of the sides; handles inactive.
	m_Widget.SetBothTangents( 1, CURVE_TANGENT_LINEAR );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeIncoming, 1.0, 1e-5 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).m_flSlopeOutgoing, -1.0, 1e-5 );
	EXPECT_FALSE( Tangent( ZolCurveHandle::SIDE_OUTGOING )->m_bActive );
}

TEST_F( CurveEditorTest, SnappingRoundsWhereCtrlOrAltAreHeld )
{
	CQCurveEditorWidget::Options_t options = m_Widget.GetOptions();
	options.m_bSnap = true;
	m_Widget.SetOptions( options );
	// Alt snaps y, to tenths on an axis that shows one unit; x stays where it was dragged.
	DragMouse( &m_Widget, KeyPos( 1 ), m_Widget.CurveToScreen( 1.23, 0.43 ).toPoint(), Qt::LeftButton, Qt::AltModifier );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).x, 1.23, 0.01 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).y, 0.4, 1e-6 );
	// Ctrl snaps x, to whole numbers on an axis that shows three.
	DragMouse( &m_Widget, KeyPos( 1 ), m_Widget.CurveToScreen( 1.4, 0.66 ).toPoint(), Qt::LeftButton, Qt::ControlModifier );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).x, 1.0, 1e-6 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 1 ).y, 0.66, 0.01 );
}

TEST_F( CurveEditorTest, ShiftAddsKeysAndDeleteRemovesTheSelectedOne )
{
	QSignalSpy updated( &m_Widget, &CQCurveEditorWidget::OnCurveUpdated );
	// A plain click on nothing adds nothing.
	Click( m_Widget.CurveToScreen( 1.5, 0.2 ).toPoint() );
	EXPECT_EQ( m_Widget.GetShownCurve().GetKeyCount(), 4 );
	// Shift-click adds a key there.
	QTest::keyPress( &m_Widget, Qt::Key_Shift );
	Click( m_Widget.CurveToScreen( 1.5, 0.2 ).toPoint(), Qt::ShiftModifier );
	QTest::keyRelease( &m_Widget, Qt::Key_Shift );
	ASSERT_EQ( m_Widget.GetShownCurve().GetKeyCount(), 5 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 2 ).x, 1.5, 0.01 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 2 ).y, 0.2, 0.01 );
	EXPECT_EQ( updated.count(), 1 );

	// A Shift-drag adds a key at the press and drags it.
	DragMouse( &m_Widget, m_Widget.CurveToScreen( 2.5, 0.5 ).toPoint(), m_Widget.CurveToScreen( 2.6, 0.7 ).toPoint(), Qt::LeftButton, Qt::ShiftModifier );
	ASSERT_EQ( m_Widget.GetShownCurve().GetKeyCount(), 6 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 4 ).x, 2.6, 0.01 );
	EXPECT_NEAR( m_Widget.GetShownCurve().GetKey( 4 ).y, 0.7, 0.01 );
	EXPECT_EQ( updated.count(), 2 );

	// Delete removes the selected key.
	Click( KeyPos( 4 ) );
	QTest::keyClick( &m_Widget, Qt::Key_Delete );
	EXPECT_EQ( m_Widget.GetShownCurve().GetKeyCount(), 5 );
	EXPECT_EQ( m_Widget.GetSelectedHandle(), -1 );
	EXPECT_EQ( updated.count(), 3 );
	// Nothing selected: Delete does nothing.
	QTest::keyClick( &m_Widget, Qt::Key_Delete );
	EXPECT_EQ( m_Widget.GetShownCurve().GetKeyCount(), 5 );
}

TEST_F( CurveEditorTest, ZoomKeepsThePointUnderThePointerAndStaysInItsLimits )
{
	const QPoint mouse( 250, 90 );
	QPointF before = m_Widget.ScreenToCurve( mouse );
	QSignalSpy updated( &m_Widget, &CQCurveEditorWidget::OnCurveUpdated );
	SendWheel( &m_Widget, mouse, 120 );
	EXPECT_NEAR( m_Widget.GetZoomX(), 1.0 - 0.12, 1e-9 );
	QPointF after = m_Widget.ScreenToCurve( mouse );
	EXPECT_NEAR( after.x(), before.x(), 1e-6 );
	EXPECT_NEAR( after.y(), before.y(), 1e-6 );
	EXPECT_NE( KeyPos( 0 ), QPoint( 80, 220 ) ) << "the rest of the view moved";
	for ( int i = 0; i < 200; ++i )
		SendWheel( &m_Widget, mouse, -120 );
	EXPECT_DOUBLE_EQ( m_Widget.GetZoomX(), CQCurveEditorWidget::MAX_ZOOM );
	EXPECT_NEAR( m_Widget.ScreenToCurve( mouse ).x(), before.x(), 1e-4 );
	for ( int i = 0; i < 200; ++i )
		SendWheel( &m_Widget, mouse, 120 );
	EXPECT_DOUBLE_EQ( m_Widget.GetZoomY(), CQCurveEditorWidget::MIN_ZOOM );
	// Ctrl puts the y zoom back; F the whole view.
	SendWheel( &m_Widget, mouse, 120, Qt::ControlModifier );
	EXPECT_DOUBLE_EQ( m_Widget.GetZoomY(), 1.0 );
	QTest::keyClick( &m_Widget, Qt::Key_F );
	EXPECT_EQ( KeyPos( 0 ), QPoint( 80, 220 ) );
	EXPECT_EQ( updated.count(), 0 ) << "the view is no change of the curve";
}

TEST_F( CurveEditorTest, ARightDragPansTheViewWithTheCurve )
{
	QPoint key = KeyPos( 1 );
	const QPoint press( 300, 150 );
	SendMouse( &m_Widget, QEvent::MouseButtonPress, press, Qt::RightButton, Qt::RightButton );
	// Past the threshold the drag begins; from there on the curve follows the pointer.
	SendMouse( &m_Widget, QEvent::MouseMove, press + QPoint( 4, 0 ), Qt::NoButton, Qt::RightButton );
	EXPECT_TRUE( m_Widget.IsPanning() );
	SendMouse( &m_Widget, QEvent::MouseMove, press + QPoint( 34, 20 ), Qt::NoButton, Qt::RightButton );
	SendMouse( &m_Widget, QEvent::MouseButtonRelease, press + QPoint( 34, 20 ), Qt::RightButton, Qt::NoButton );
	EXPECT_EQ( KeyPos( 1 ), key + QPoint( 30, 20 ) );
	EXPECT_FALSE( m_Widget.IsPanning() );
	EXPECT_FLOAT_EQ( m_Widget.GetShownCurve().GetKey( 1 ).x, 1.0f );
}

TEST_F( CurveEditorTest, CopyThenPasteGivesAnEqualCurve )
{
	m_Widget.SetOutgoingTangent( 2, CURVE_TANGENT_FREE );
	m_Widget.SetIncomingTangent( 3, CURVE_TANGENT_SINE );
	m_Widget.CopyCurveToClipboard();
	QString text = QApplication::clipboard()->text();
	EXPECT_TRUE( text.contains( QStringLiteral( "format=generic" ) ) ) << text.toStdString();
	EXPECT_TRUE( text.contains( QStringLiteral( "encoding=text" ) ) ) << text.toStdString();
	EXPECT_TRUE( text.contains( QStringLiteral( "CURVE_TANGENT_SINE" ) ) );
	CPiecewiseCurve copied = m_Widget.GetCurve();

	CQCurveEditorWidget other;
	other.resize( 300, 200 );
	QSignalSpy updated( &other, &CQCurveEditorWidget::OnCurveUpdated );
	other.PasteCurveFromClipboard();
	EXPECT_EQ( updated.count(), 1 );
	CPiecewiseCurve pasted = other.GetCurve();
	ASSERT_EQ( pasted.GetKeyCount(), copied.GetKeyCount() );
	for ( int i = 0; i < copied.GetKeyCount(); ++i )
	{
		EXPECT_FLOAT_EQ( pasted.GetKey( i ).x, copied.GetKey( i ).x );
		EXPECT_FLOAT_EQ( pasted.GetKey( i ).y, copied.GetKey( i ).y );
		EXPECT_FLOAT_EQ( pasted.GetKey( i ).m_flSlopeIncoming, copied.GetKey( i ).m_flSlopeIncoming );
		EXPECT_FLOAT_EQ( pasted.GetKey( i ).m_flSlopeOutgoing, copied.GetKey( i ).m_flSlopeOutgoing );
		EXPECT_EQ( pasted.GetTangents( i ).m_nIncomingTangent, copied.GetTangents( i ).m_nIncomingTangent );
		EXPECT_EQ( pasted.GetTangents( i ).m_nOutgoingTangent, copied.GetTangents( i ).m_nOutgoingTangent );
	}
	EXPECT_EQ( pasted.m_vDomainMins, copied.m_vDomainMins );
	EXPECT_EQ( pasted.m_vDomainMaxs, copied.m_vDomainMaxs );
	EXPECT_NEAR( other.ScreenToCurve( QPointF( 80, 0 ) ).x(), 0.0, 1e-6 ) << "the view takes the pasted domain";
}

TEST_F( CurveEditorTest, PasteIsOfferedOnlyForACurve )
{
	struct ClipboardCase_t
	{
		const char *m_pText;
		bool m_bCurve;
	};
	QString copied;
	QString error;
	ASSERT_TRUE( CQCurveEditorWidget::CurveToText( m_Widget.GetCurve(), &copied, &error ) );
	const std::string copiedText = copied.toStdString();
	// KV3 text that is no curve.
	KeyValues3 other;
	other.SetMemberInt( "m_nType", 3 );
	CUtlString otherText;
	ASSERT_TRUE( SaveKV3ToString( &other, &otherText, KV3_FORMAT_GENERIC ) );
	const ClipboardCase_t cases[] = {
		{ "flames", false },
		{ "", false },
		{ otherText.Get(), false },
		{ "--- kv3 broken", false },
		{ copiedText.c_str(), true },
	};
	for ( const ClipboardCase_t &c : cases )
	{
		QApplication::clipboard()->setText( QString::fromUtf8( c.m_pText ) );
		std::unique_ptr<QMenu> pMenu( m_Widget.CreateGeneralMenu( nullptr ) );
		QAction *pPaste = pMenu->findChild<QAction *>( QStringLiteral( "PasteCurve" ) );
		ASSERT_NE( pPaste, nullptr );
		EXPECT_EQ( pPaste->isEnabled(), c.m_bCurve ) << c.m_pText;
	}
	// Pasting what is no curve says so and leaves the curve.
	QApplication::clipboard()->setText( QStringLiteral( "flames" ) );
	m_Prompt.ExpectMessage( "Failed to paste" );
	m_Widget.PasteCurveFromClipboard();
	EXPECT_EQ( m_Widget.GetShownCurve().GetKeyCount(), 4 );
}

TEST_F( CurveEditorTest, TheKeyMenuMarksTheCurrentModesAndSetsThem )
{
	m_Widget.SetBothTangents( 2, CURVE_TANGENT_FREE );
	std::unique_ptr<QMenu> pMenu( m_Widget.CreateKeyMenu( 2 ) );
	QAction *pFree = nullptr;
	for ( QAction *pAction : pMenu->actions() )
	{
		if ( pAction->text() == QStringLiteral( "Free" ) )
			pFree = pAction;
	}
	ASSERT_NE( pFree, nullptr );
	EXPECT_TRUE( pFree->font().bold() ) << "a free and mirrored pair counts as Free";
	QMenu *pOutgoing = pMenu->findChild<QMenu *>( QStringLiteral( "Outgoing" ) );
	ASSERT_NE( pOutgoing, nullptr );
	ASSERT_EQ( pOutgoing->actions().size(), CURVE_TANGENT_MODE_COUNT );
	EXPECT_TRUE( pOutgoing->actions()[ CURVE_TANGENT_MIRROR ]->font().bold() );
	QSignalSpy updated( &m_Widget, &CQCurveEditorWidget::OnCurveUpdated );
	pOutgoing->actions()[ CURVE_TANGENT_LINEAR ]->trigger();
	EXPECT_EQ( m_Widget.GetShownCurve().GetTangents( 2 ).m_nOutgoingTangent, CURVE_TANGENT_LINEAR );
	EXPECT_EQ( updated.count(), 1 );
}

TEST_F( CurveEditorTest, SettingTheCurveFromItsOwnChangeIsIgnored )
{
	// An owner that writes the curve back while hearing of the change.
	CPiecewiseCurve stale = m_Widget.GetCurve();
	QObject::connect( &m_Widget, &CQCurveEditorWidget::OnCurveUpdated, &m_Widget, [ & ]() { m_Widget.SetCurve( stale, false, true ); } );
	m_Widget.SetIncomingTangent( 1, CURVE_TANGENT_LINEAR );
	EXPECT_EQ( m_Widget.GetShownCurve().GetTangents( 1 ).m_nIncomingTangent, CURVE_TANGENT_LINEAR );
	// Outside its own change the widget takes what it is given; no keys gives the default curve.
	m_Widget.SetCurve( CPiecewiseCurve(), false, false );
	EXPECT_EQ( m_Widget.GetShownCurve().GetKeyCount(), 2 );
	EXPECT_TRUE( m_Widget.GetHandles().empty() ) << "a curve that can't be edited has no handles";
}

TEST( ModalEditCurvePointDialog, ReturnTakesTheTypedPointAndEscapeTheOld )
{
	CQModalEditCurvePointDialog dialog( nullptr, QPoint( 10, 10 ), Vector2D( 0.5f, 0.25f ), Vector2D( 0, 0 ), Vector2D( 1, 1 ) );
	EXPECT_DOUBLE_EQ( dialog.GetXBox()->value(), 0.5 );
	EXPECT_EQ( dialog.GetXBox()->decimals(), 2 );
	EXPECT_DOUBLE_EQ( dialog.GetYBox()->maximum(), 1.0 );
	QTimer::singleShot( 0, &dialog, [ & ]() {
		dialog.GetXBox()->selectAll();
		QTest::keyClicks( dialog.GetXBox(), "0.75" );
		QTest::keyClick( dialog.GetXBox(), Qt::Key_Return );
	} );
	EXPECT_EQ( dialog.exec(), QDialog::Accepted );
	EXPECT_FLOAT_EQ( dialog.GetPoint().x, 0.75f );
	EXPECT_FLOAT_EQ( dialog.GetPoint().y, 0.25f );

	CQModalEditCurvePointDialog cancelled( nullptr, QPoint( 10, 10 ), Vector2D( 0.5f, 0.25f ), Vector2D( 0, 0 ), Vector2D( 1, 1 ) );
	QTimer::singleShot( 0, &cancelled, [ & ]() {
		cancelled.GetXBox()->selectAll();
		QTest::keyClicks( cancelled.GetXBox(), "0.9" );
		QTest::keyClick( cancelled.GetXBox(), Qt::Key_Escape );
	} );
	EXPECT_EQ( cancelled.exec(), QDialog::Rejected );
	EXPECT_FLOAT_EQ( cancelled.GetPoint().x, 0.5f );
}
} // namespace
