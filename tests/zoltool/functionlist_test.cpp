// The function list in the editor's window, on the shipped samples, driven with real Qt
// events: clicks select, check boxes switch functions off as undo steps, keys reach the
// session through the bind manager, rows are dragged with real drop events carrying
// their own bytes, the picker is typed into, and assets are dropped onto children.

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QDragEnterEvent>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <QtTest/QTest>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/host/iasset.h"
#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "tools/toolutils2/widgets/inputbind/bindablecommandbuttons.h"
#include "tools/toolutils2/widgets/richitemlist/arrowkeywidgets.h"
#include "tools/widgets/assetthumbnail.h"
#include "tools/widgets/draggablewidgetlist.h"
#include "tools/widgets/elidedlabel.h"
#include "tools/widgets/hoverbutton.h"
#include "tools/zol/editor/functionlist/assetparentchildmenu.h"
#include "tools/zol/editor/functionlist/editfunctionbutton.h"
#include "testqapplication.h"
#include "tools/zol/editor/functionlist/particlechildwidget.h"
#include "tools/zol/editor/functionlist/particlefunctionchildren.h"
#include "tools/zol/editor/functionlist/particlefunctionlist.h"
#include "tools/zol/editor/functionlist/particlefunctionwidget.h"
#include "tools/zol/editor/functionlist/pickparticlefunctionui.h"
#include "tests/zoltool/zolapptestsupport.h"
#include "tools/zol/editor/functionlist/writtenattributeslabel.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zolchildnode.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolevents.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
namespace fs = std::filesystem;

// The application with its window on the shipped samples and models.
class FunctionListTest : public ZolWindowAppTest
{
protected:

	CZolSession *Open( const char *pContentPath )
	{
		CZolSession *pSession = ZolAppTest::Open( pContentPath );
		QApplication::processEvents();
		return pSession;
	}

	CQParticleFunctionList *List() const { return m_pWindow->GetFunctionList(); }
	CZolDoc *Doc() const { return List()->GetSession()->GetDoc(); }
	CZolRootNode *Root() const { return Doc()->GetRoot(); }
	int UndoSteps() const { return Doc()->GetUndoHistory()->GetStepCount(); }
	CBaseZolNode *Node( ParticleFunctionType_t eType, int nIndex ) const { return Root()->GetNode( eType, nIndex ); }
	CQParticleFunctionBaseWidget *Row( ParticleFunctionType_t eType, int nIndex ) const { return List()->FindRow( Node( eType, nIndex ) ); }

	// Selected nodes as "type:index" texts, in selection order.
	std::vector<std::string> Selection() const
	{
		std::vector<std::string> refs;
		for ( const ZolElementRef_t &ref : Doc()->GetSelection() )
			refs.push_back( std::to_string( ref.m_nType ) + ":" + std::to_string( ref.m_nIndex ) );
		return refs;
	}

	void Click( CQParticleFunctionBaseWidget *pRow, Qt::KeyboardModifiers modifiers = Qt::NoModifier )
	{
		ASSERT_NE( pRow, nullptr );
		QTest::mouseClick( pRow->GetEditButton(), Qt::LeftButton, modifiers, pRow->GetEditButton()->rect().center() );
	}

	// Ctrl and a key, pressed in the list as a keyboard sends them.
	void CtrlKey( Qt::Key eKey )
	{
		List()->setFocus();
		ASSERT_EQ( QApplication::focusWidget(), List() );
		QTest::keyPress( List(), Qt::Key_Control, Qt::ControlModifier );
		QTest::keyClick( List(), eKey, Qt::ControlModifier );
		QTest::keyRelease( List(), Qt::Key_Control, Qt::NoModifier );
	}

	// A drop with real drag events on the rows' viewport; true when it was taken.
	bool Drop( const QMimeData *pData, const QPoint &viewportPos )
	{
		QWidget *pViewport = List()->GetListWidget()->viewport();
		QDragEnterEvent enter( viewportPos, Qt::MoveAction | Qt::CopyAction, pData, Qt::LeftButton, Qt::NoModifier );
		QApplication::sendEvent( pViewport, &enter );
		if ( !enter.isAccepted() )
			return false;
		QDropEvent drop( viewportPos, Qt::MoveAction | Qt::CopyAction, pData, Qt::LeftButton, Qt::NoModifier );
		QApplication::sendEvent( pViewport, &drop );
		return drop.isAccepted();
	}
	// Just above the middle of a row: a drop there lands before it.
	QPoint Before( QWidget *pRow ) const { return pRow->mapTo( List()->GetListWidget()->viewport(), QPoint( 20, pRow->height() / 4 ) ); }

	// Runs fn on the modal picker once it is up; a stuck picker is closed after a while.
	void WhenPickerOpens( std::function<void( CQPickParticleFunctionUI * )> fn )
	{
		m_pTimers = std::make_unique<QObject>();
		auto *pPoll = new QTimer( m_pTimers.get() );
		QObject::connect( pPoll, &QTimer::timeout, [ pPoll, fn ]() {
			auto *pPicker = qobject_cast<CQPickParticleFunctionUI *>( QApplication::activeModalWidget() );
			if ( !pPicker )
				return;
			pPoll->stop();
			// The window system would make the new dialog active; the offscreen one doesn't.
			QApplication::setActiveWindow( pPicker );
			pPicker->GetFilterLine()->setFocus();
			fn( pPicker );
		} );
		pPoll->start( 0 );
		QTimer::singleShot( 5000, m_pTimers.get(), []() {
			if ( QWidget *pModal = QApplication::activeModalWidget() )
				pModal->close();
		} );
	}
	// Lets queued work (a command that opens the picker) run.
	void RunQueued()
	{
		for ( int i = 0; i < 5; ++i )
			QApplication::processEvents();
	}

	// Owns the timers of a test, so none outlives it.
	std::unique_ptr<QObject> m_pTimers;
};
} // namespace

// ---------------------------------------------------------------------------------------
// What the list shows

TEST_F( FunctionListTest, ShowsEverySectionAndNodeOfTheCampfireWithTheirTexts )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	EXPECT_EQ( List()->GetTitle()->GetText(), QStringLiteral( "Now editing: particles/samples/campfire.tfxs" ) );
	EXPECT_TRUE( List()->GetBaseButton()->isVisible() );
	EXPECT_EQ( List()->GetBaseButton()->GetNameLabel()->GetText(), QStringLiteral( "Base Properties" ) );
	EXPECT_EQ( List()->GetBaseButton()->toolTip(), QStringLiteral( "Edit global system properties" ) );
	EXPECT_TRUE( List()->GetBaseButton()->isChecked() ) << "a file opens with its base properties selected";

	// Variables first (the system enables them), then lists 0 to 7, a row per node.
	int nRow = 0;
	for ( int nType : { 8, 0, 1, 2, 3, 4, 5, 6, 7 } )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		ASSERT_NE( List()->GetSectionHeader( eType ), nullptr ) << nType;
		for ( int i = 0; i < Root()->GetNodeCount( eType ); ++i, ++nRow )
		{
			ASSERT_LT( nRow, List()->GetRows().size() );
			EXPECT_EQ( List()->GetRows()[ nRow ]->GetNode(), Node( eType, i ) );
		}
	}
	EXPECT_EQ( nRow, List()->GetRows().size() );

	EXPECT_EQ( Row( PARTICLE_FUNCTION_OPERATOR, 0 )->GetEditButton()->GetNameLabel()->GetText(), QStringLiteral( "Movement Basic" ) );
	CQEditFunctionButton *pRadius = Row( PARTICLE_FUNCTION_INITIALIZER, 2 )->GetEditButton();
	EXPECT_EQ( pRadius->GetNameLabel()->GetText(), QStringLiteral( "Radius" ) );
	EXPECT_EQ( pRadius->GetValueLabel()->GetText(), QStringLiteral( "= Random 0.5 - 1" ) );
	EXPECT_EQ( pRadius->GetAttributeLabel()->GetFullText(), QStringLiteral( "Radius" ) );
	EXPECT_EQ( Row( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 )->GetEditButton()->GetNameLabel()->GetText(), QStringLiteral( "FireHeight" ) );
	EXPECT_FALSE( Row( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 )->GetEditButton()->GetAttributeLabel()->GetFullText().isEmpty() ) << "its type";

	// Children: the file's name, end cap and delay, a thumbnail of the running child.
	auto *pSmoke = qobject_cast<CQParticleChildWidget *>( Row( PARTICLE_FUNCTION_CHILDREN, 1 ) );
	auto *pSparks = qobject_cast<CQParticleChildWidget *>( Row( PARTICLE_FUNCTION_CHILDREN, 2 ) );
	ASSERT_TRUE( pSmoke && pSparks );
	EXPECT_EQ( pSmoke->GetEditButton()->GetNameLabel()->GetText(), QStringLiteral( "smoke" ) );
	EXPECT_EQ( pSmoke->GetStatusLabel()->text(), QStringLiteral( "Delay(0.50)" ) );
	EXPECT_EQ( pSparks->GetStatusLabel()->text(), QStringLiteral( "Delay(1.50)" ) );
	EXPECT_EQ( CQParticleChildWidget::BuildStatusText( true, 0.25f ), QStringLiteral( "Endcap; Delay(0.25)" ) );
	EXPECT_EQ( CQParticleChildWidget::BuildStatusText( true, 0.0f ), QStringLiteral( "Endcap" ) );
	EXPECT_EQ( pSmoke->GetChildAsset(), Asset( "particles/samples/smoke.tfxs" ) );
	const QImage thumbnail = pSmoke->GetThumbnail()->GetImage();
	ASSERT_EQ( thumbnail.size(), QSize( 64, 64 ) );
	int nLit = 0;
	for ( int y = 4; y < 60; ++y )
		for ( int x = 4; x < 60; ++x )
			nLit += qGray( thumbnail.pixel( x, y ) ) > 60;
	EXPECT_GT( nLit, 20 ) << "the smoke's particles glow in its thumbnail";
}

// In a narrow list a row keeps its name and cuts the value beside it first.
TEST( FunctionListRow, ANarrowRowKeepsTheNameAndCutsTheValue )
{
	EnsureTestQApplication();
	CQEditFunctionButton button( nullptr, true );
	button.SetTexts( QStringLiteral( "Alpha" ), QStringLiteral( "= Particle Age (0-1) Curve" ), QString() );
	button.resize( 150, 26 );
	button.show();
	QApplication::processEvents();
	EXPECT_EQ( button.GetNameLabel()->GetShownText(), QStringLiteral( "Alpha" ) );
	EXPECT_NE( button.GetValueLabel()->GetShownText(), button.GetValueLabel()->GetText() ) << "the value gives way";

	// A long name is cut too once the value has no room left, not before.
	button.SetTexts( QStringLiteral( "Continuous Emitter With A Long Name" ), QStringLiteral( "= 12" ), QString() );
	button.resize( 170, 26 );
	QApplication::processEvents();
	EXPECT_GE( button.GetNameLabel()->width(), 110 );
	EXPECT_TRUE( button.GetNameLabel()->GetShownText().startsWith( QStringLiteral( "Continuous" ) ) ) << button.GetNameLabel()->GetShownText().toStdString();

	// With room enough both are whole.
	button.resize( 600, 26 );
	QApplication::processEvents();
	EXPECT_EQ( button.GetNameLabel()->GetShownText(), button.GetNameLabel()->GetText() );
	EXPECT_EQ( button.GetValueLabel()->GetShownText(), QStringLiteral( "= 12" ) );
}

TEST_F( FunctionListTest, VariablesSectionFollowsTheSwitchNotTheNodes )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	ASSERT_EQ( Root()->GetNodeCount( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ), 1 );
	const int nRebuilds = List()->GetRebuildCount();
	Doc()->BeginEdit( "Disable Named Values", true );
	Root()->GetKV3ForModify()->SetMemberBool( "m_bEnableNamedValues", false );
	Doc()->SendEvent( ZolEvent_FunctionListChanged_t() );
	EXPECT_EQ( List()->GetSectionHeader( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ), nullptr );
	EXPECT_EQ( List()->FindRow( Node( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 ) ), nullptr );
	EXPECT_GT( List()->GetRebuildCount(), nRebuilds ) << "the sections changed: the rows are made anew";
}

TEST_F( FunctionListTest, WithoutASessionTheCommandButtonsAndBaseRowAreHidden )
{
	CZolSession *pSession = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	EXPECT_TRUE( List()->GetAddFunctionButton()->isVisible() );
	pSession->SetModified( false );
	ASSERT_TRUE( m_pApp->CloseSession( pSession ) );
	EXPECT_EQ( List()->GetSession(), nullptr );
	EXPECT_FALSE( List()->GetAddFunctionButton()->isVisible() );
	EXPECT_FALSE( List()->GetAddChildButton()->isVisible() );
	EXPECT_FALSE( List()->GetBaseButton()->isVisible() );
	EXPECT_TRUE( List()->GetRows().isEmpty() );
	EXPECT_TRUE( List()->GetTitle()->GetText().isEmpty() );
}

// ---------------------------------------------------------------------------------------
// Selection, enabling, undo

TEST_F( FunctionListTest, ClickSelectsCtrlClickAddsShiftClickSelectsARangeInOneStep )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	Click( Row( PARTICLE_FUNCTION_INITIALIZER, 1 ) );
	EXPECT_EQ( Selection(), ( std::vector<std::string>{ "2:1" } ) );
	EXPECT_TRUE( Row( PARTICLE_FUNCTION_INITIALIZER, 1 )->GetEditButton()->isChecked() );
	EXPECT_TRUE( Row( PARTICLE_FUNCTION_INITIALIZER, 1 )->GetEditButton()->property( "bCurrentActiveFunction" ).toBool() );
	EXPECT_FALSE( List()->GetBaseButton()->isChecked() );

	Click( Row( PARTICLE_FUNCTION_OPERATOR, 1 ), Qt::ControlModifier );
	EXPECT_EQ( Selection(), ( std::vector<std::string>{ "2:1", "3:1" } ) );
	// Ctrl on a row that is selected already leaves the selection and its button checked.
	Click( Row( PARTICLE_FUNCTION_OPERATOR, 1 ), Qt::ControlModifier );
	EXPECT_EQ( Selection(), ( std::vector<std::string>{ "2:1", "3:1" } ) );
	EXPECT_TRUE( Row( PARTICLE_FUNCTION_OPERATOR, 1 )->GetEditButton()->isChecked() );

	// Shift from the last row clicked to this one, in the order shown, as one step.
	const int nSteps = UndoSteps();
	Click( Row( PARTICLE_FUNCTION_INITIALIZER, 3 ), Qt::ShiftModifier );
	EXPECT_EQ( Selection(), ( std::vector<std::string>{ "3:1", "3:0", "2:3" } ) );
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	for ( CQParticleFunctionBaseWidget *pRow : List()->GetRows() )
	{
		const bool bSelected = pRow == Row( PARTICLE_FUNCTION_OPERATOR, 1 ) || pRow == Row( PARTICLE_FUNCTION_OPERATOR, 0 ) || pRow == Row( PARTICLE_FUNCTION_INITIALIZER, 3 );
		EXPECT_EQ( pRow->GetEditButton()->isChecked(), bSelected );
	}

	// A plain click replaces it; the base row selects the base properties.
	Click( Row( PARTICLE_FUNCTION_RENDERER, 0 ) );
	EXPECT_EQ( Selection(), ( std::vector<std::string>{ "6:0" } ) );
	QTest::mouseClick( List()->GetBaseButton(), Qt::LeftButton );
	EXPECT_EQ( Selection(), ( std::vector<std::string>{ "9:0" } ) );
	EXPECT_TRUE( List()->GetBaseButton()->isChecked() );
	EXPECT_FALSE( Row( PARTICLE_FUNCTION_RENDERER, 0 )->GetEditButton()->isChecked() );
}

TEST_F( FunctionListTest, UncheckingAFunctionIsOneStepTheNextFrameCompilesAndCtrlZRestoresIt )
{
	CZolSession *pSession = Open( "particles/samples/campfire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	m_pApp->Frame();
	const int nSteps = UndoSteps();
	const int nCompiles = pSession->GetCompileCount();
	CBaseZolNode *pMovement = Node( PARTICLE_FUNCTION_OPERATOR, 0 );
	QCheckBox *pBox = Row( PARTICLE_FUNCTION_OPERATOR, 0 )->GetEditButton()->GetCheckBox();
	ASSERT_NE( pBox, nullptr );
	EXPECT_EQ( pBox->toolTip(), QStringLiteral( "Disable" ) );
	QTest::mouseClick( pBox, Qt::LeftButton );

	EXPECT_FALSE( pMovement->IsEnabled() );
	EXPECT_FALSE( pBox->isChecked() );
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	EXPECT_STREQ( Doc()->GetUndoHistory()->GetUndoName(), "Toggle Movement Basic" );
	EXPECT_TRUE( pSession->NeedsRecompile() );
	m_pApp->Frame();
	EXPECT_EQ( pSession->GetCompileCount(), nCompiles + 1 );
	EXPECT_NE( strstr( pSession->GetLastCompiledText(), "m_bDisableOperator = true" ), nullptr );

	// Ctrl+Z with the focus in the list reaches the session through the bind manager.
	CtrlKey( Qt::Key_Z );
	EXPECT_TRUE( Node( PARTICLE_FUNCTION_OPERATOR, 0 )->IsEnabled() );
	EXPECT_TRUE( Row( PARTICLE_FUNCTION_OPERATOR, 0 )->GetEditButton()->GetCheckBox()->isChecked() );
	EXPECT_EQ( UndoSteps(), nSteps );
	m_pApp->Frame();
	EXPECT_EQ( strstr( pSession->GetLastCompiledText(), "m_bDisableOperator" ), nullptr );
}

TEST_F( FunctionListTest, APropertyEditRefreshesTheRowsInPlace )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	QPointer<CQParticleFunctionBaseWidget> pRow = Row( PARTICLE_FUNCTION_INITIALIZER, 2 );
	ASSERT_TRUE( pRow );
	const int nRebuilds = List()->GetRebuildCount();

	// What the property panel does: an undo step, the write, the end of the edit.
	CBaseZolNode *pRadius = Node( PARTICLE_FUNCTION_INITIALIZER, 2 );
	Doc()->BeginEdit( "Edit Radius", true );
	pRadius->GetKV3ForModify()->FindMember( "m_InputValue" )->SetMemberFloat( "m_flRandomMax", 2.0f );
	Doc()->SendEvent( ZolEvent_FunctionListChanged_t() );
	m_pApp->Frame();
	QApplication::processEvents();

	ASSERT_TRUE( pRow ) << "the row outlives the edit of its node";
	EXPECT_EQ( pRow.data(), Row( PARTICLE_FUNCTION_INITIALIZER, 2 ) );
	EXPECT_EQ( List()->GetRebuildCount(), nRebuilds );
	EXPECT_EQ( pRow->GetEditButton()->GetValueLabel()->GetText(), QStringLiteral( "= Random 0.5 - 2" ) );
}

TEST_F( FunctionListTest, AWriteConflictShowsOnTheLaterWriterEvenWithTheFirstOff )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	ASSERT_NE( Doc()->AddFunction( "", "C_INIT_RandomRadius", PARTICLE_FUNCTION_INITIALIZER ), nullptr );
	CQWrittenAttributesLabel *pFirst = Row( PARTICLE_FUNCTION_INITIALIZER, 2 )->GetEditButton()->GetAttributeLabel();
	CQWrittenAttributesLabel *pLater = Row( PARTICLE_FUNCTION_INITIALIZER, 4 )->GetEditButton()->GetAttributeLabel();
	EXPECT_FALSE( pFirst->HasConflicts() );
	EXPECT_EQ( pFirst->GetFullText(), QStringLiteral( "Radius" ) );
	EXPECT_TRUE( pLater->HasConflicts() );
	EXPECT_EQ( pLater->GetFullText(), QStringLiteral( "<font color=\"yellow\">Radius</font>" ) );
	EXPECT_EQ( pLater->toolTip(), QStringLiteral( "Other functions write to the same attribute(s)" ) );

	QTest::mouseClick( Row( PARTICLE_FUNCTION_INITIALIZER, 2 )->GetEditButton()->GetCheckBox(), Qt::LeftButton );
	ASSERT_FALSE( Node( PARTICLE_FUNCTION_INITIALIZER, 2 )->IsEnabled() );
	EXPECT_TRUE( Row( PARTICLE_FUNCTION_INITIALIZER, 4 )->GetEditButton()->GetAttributeLabel()->HasConflicts() );
}

TEST_F( FunctionListTest, NamesTakeTheColourOfHowTheyUseTheSelectedControlPoint )
{
	CZolSession *pSession = Open( "particles/samples/campfire.tfxs" );
	ASSERT_NE( pSession, nullptr );
	m_pApp->Frame();
	pSession->SetSelectedControlPoint( ParticleParamID_t::ControlPoint( 1 ) );
	// The ring reads point 1; the pre-emission operator writes it; the renderer ignores it.
	EXPECT_EQ( Row( PARTICLE_FUNCTION_INITIALIZER, 0 )->GetEditButton()->GetNameColor(), QColor( Qt::darkGreen ) );
	EXPECT_EQ( Row( PARTICLE_FUNCTION_PRE_EMISSION_OPERATOR, 0 )->GetEditButton()->GetNameColor(), QColor( Qt::darkYellow ) );
	EXPECT_FALSE( Row( PARTICLE_FUNCTION_RENDERER, 0 )->GetEditButton()->GetNameColor().isValid() );
	pSession->SetSelectedControlPoint( ParticleParamID_t::ControlPoint( -1 ) );
	EXPECT_FALSE( Row( PARTICLE_FUNCTION_INITIALIZER, 0 )->GetEditButton()->GetNameColor().isValid() );
}

// ---------------------------------------------------------------------------------------
// Dragging rows

TEST_F( FunctionListTest, DraggingARowMovesItInOneStepAndADropInPlaceChangesNothing )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	CBaseZolNode *pLifetime = Node( PARTICLE_FUNCTION_INITIALIZER, 1 );
	QMimeData data;
	ASSERT_TRUE( Row( PARTICLE_FUNCTION_INITIALIZER, 1 )->FillMimeData( &data ) );
	ASSERT_EQ( data.data( PARTICLE_FUNCTION_MIME_TYPE ).size(), 16 );

	// Onto its own place and just below itself: no move, no undo step.
	const int nSteps = UndoSteps();
	EXPECT_TRUE( Drop( &data, Before( Row( PARTICLE_FUNCTION_INITIALIZER, 1 ) ) ) );
	EXPECT_TRUE( Drop( &data, Before( Row( PARTICLE_FUNCTION_INITIALIZER, 2 ) ) ) );
	EXPECT_EQ( UndoSteps(), nSteps );
	EXPECT_EQ( Node( PARTICLE_FUNCTION_INITIALIZER, 1 ), pLifetime );

	// Before the last initializer: it becomes the third, selected, in one step.
	EXPECT_TRUE( Drop( &data, Before( Row( PARTICLE_FUNCTION_INITIALIZER, 3 ) ) ) );
	EXPECT_EQ( Node( PARTICLE_FUNCTION_INITIALIZER, 2 ), pLifetime );
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	EXPECT_STREQ( Doc()->GetUndoHistory()->GetUndoName(), "Move 'Random Lifetime'" );
	EXPECT_EQ( Selection(), ( std::vector<std::string>{ "2:2" } ) );
	EXPECT_EQ( List()->GetRows()[ List()->GetRows().indexOf( Row( PARTICLE_FUNCTION_INITIALIZER, 2 ) ) ]->GetNode(), pLifetime );

	// An operator dropped among the initializers still goes into its own list.
	QMimeData operatorData;
	ASSERT_TRUE( Row( PARTICLE_FUNCTION_OPERATOR, 1 )->FillMimeData( &operatorData ) );
	CBaseZolNode *pFade = Node( PARTICLE_FUNCTION_OPERATOR, 1 );
	EXPECT_TRUE( Drop( &operatorData, Before( Row( PARTICLE_FUNCTION_INITIALIZER, 0 ) ) ) );
	EXPECT_EQ( Node( PARTICLE_FUNCTION_OPERATOR, 0 ), pFade );
	EXPECT_EQ( Root()->GetNodeCount( PARTICLE_FUNCTION_INITIALIZER ), 4 );
}

TEST_F( FunctionListTest, RowsOfAnotherSessionOrForeignBytesAreRefused )
{
	// Two untitled systems have no asset: only the session tells their rows apart.
	ASSERT_TRUE( m_pApp->NewSession() );
	CZolSession *pFirst = List()->GetSession();
	pFirst->GetDoc()->AddFunction( "", "C_OP_Decay", PARTICLE_FUNCTION_OPERATOR );
	pFirst->GetDoc()->AddFunction( "", "C_OP_BasicMovement", PARTICLE_FUNCTION_OPERATOR );
	QMimeData first;
	ASSERT_TRUE( Row( PARTICLE_FUNCTION_OPERATOR, 1 )->FillMimeData( &first ) );
	ASSERT_TRUE( m_pApp->NewSession() );
	CZolSession *pSecond = List()->GetSession();
	ASSERT_NE( pSecond, pFirst );
	pSecond->GetDoc()->AddFunction( "", "C_OP_Decay", PARTICLE_FUNCTION_OPERATOR );
	pSecond->GetDoc()->AddFunction( "", "C_OP_BasicMovement", PARTICLE_FUNCTION_OPERATOR );

	const int nSteps = UndoSteps();
	const QPoint target = Before( Row( PARTICLE_FUNCTION_OPERATOR, 0 ) );
	EXPECT_FALSE( Drop( &first, target ) );
	QMimeData shortData;
	shortData.setData( PARTICLE_FUNCTION_MIME_TYPE, first.data( PARTICLE_FUNCTION_MIME_TYPE ).left( 12 ) );
	EXPECT_FALSE( Drop( &shortData, target ) );
	QMimeData longData;
	longData.setData( PARTICLE_FUNCTION_MIME_TYPE, first.data( PARTICLE_FUNCTION_MIME_TYPE ) + QByteArray( 4, '\0' ) );
	EXPECT_FALSE( Drop( &longData, target ) );
	EXPECT_FALSE( List()->GetListWidget()->IsDropIndicatorShown() );
	EXPECT_EQ( UndoSteps(), nSteps );
	EXPECT_STREQ( Node( PARTICLE_FUNCTION_OPERATOR, 0 )->GetClassName(), "C_OP_Decay" );

	// Its own row is taken.
	QMimeData own;
	ASSERT_TRUE( Row( PARTICLE_FUNCTION_OPERATOR, 1 )->FillMimeData( &own ) );
	EXPECT_TRUE( Drop( &own, target ) );
	EXPECT_STREQ( Node( PARTICLE_FUNCTION_OPERATOR, 0 )->GetClassName(), "C_OP_BasicMovement" );
}

// ---------------------------------------------------------------------------------------
// Adding functions

TEST_F( FunctionListTest, TypingInThePickerAndReturnAddsTheBestMatchSelectedInOneStep )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	const int nSteps = UndoSteps();
	const int nOperators = Root()->GetNodeCount( PARTICLE_FUNCTION_OPERATOR );
	QString title;
	int nVisible = -1;
	bool bClosed = false;
	WhenPickerOpens( [ & ]( CQPickParticleFunctionUI *pPicker ) {
		title = pPicker->windowTitle();
		QTest::keyClicks( pPicker->GetFilterLine(), QStringLiteral( "lifespan" ) );
		nVisible = pPicker->GetVisibleChoices().size();
		QTest::keyClick( pPicker->GetFilterLine(), Qt::Key_Return );
		bClosed = !pPicker->isVisible();
	} );
	QTest::mouseClick( List()->GetAddFunctionButton(), Qt::LeftButton );
	RunQueued();

	EXPECT_EQ( title, QStringLiteral( "Add..." ) );
	EXPECT_EQ( nVisible, 1 );
	EXPECT_TRUE( bClosed ) << "Return takes the choice";
	ASSERT_EQ( Root()->GetNodeCount( PARTICLE_FUNCTION_OPERATOR ), nOperators + 1 );
	CBaseZolNode *pAdded = Node( PARTICLE_FUNCTION_OPERATOR, nOperators );
	EXPECT_STREQ( pAdded->GetClassName(), "C_OP_Decay" );
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	EXPECT_STREQ( Doc()->GetUndoHistory()->GetUndoName(), "Add Operator 'Lifespan Decay'" );
	EXPECT_EQ( Selection(), ( std::vector<std::string>{ "3:" + std::to_string( nOperators ) } ) );
	ASSERT_NE( List()->FindRow( pAdded ), nullptr );
	EXPECT_TRUE( List()->FindRow( pAdded )->GetEditButton()->isChecked() );
}

TEST_F( FunctionListTest, ADisabledOfferIsShownWithItsReasonButAddsNothing )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	const int nSteps = UndoSteps();
	const int nOperators = Root()->GetNodeCount( PARTICLE_FUNCTION_OPERATOR );
	QString picked;
	bool bDisabled = false;
	bool bClosed = false;
	WhenPickerOpens( [ & ]( CQPickParticleFunctionUI *pPicker ) {
		QTest::keyClicks( pPicker->GetFilterLine(), QStringLiteral( "movement basic" ) );
		const int nChoice = pPicker->GetSelectedChoice();
		if ( nChoice >= 0 )
		{
			picked = pPicker->GetChoiceName( nChoice );
			bDisabled = pPicker->IsChoiceDisabled( nChoice );
		}
		QTest::keyClick( pPicker->GetFilterLine(), Qt::Key_Return );
		bClosed = !pPicker->isVisible();
	} );
	// The section's own button offers only its list.
	QTest::mouseClick( List()->GetSectionHeader( PARTICLE_FUNCTION_OPERATOR )->GetAddButton(), Qt::LeftButton );

	EXPECT_EQ( picked, QStringLiteral( "Movement Basic: Only one allowed" ) );
	EXPECT_TRUE( bDisabled );
	EXPECT_TRUE( bClosed ) << "the choice was taken, and adds nothing";
	EXPECT_EQ( Root()->GetNodeCount( PARTICLE_FUNCTION_OPERATOR ), nOperators );
	EXPECT_EQ( UndoSteps(), nSteps );
}

TEST_F( FunctionListTest, CtrlShiftAOpensThePickerAndEscapeClosesItWithNothingAdded )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	const int nSteps = UndoSteps();
	bool bOpened = false;
	bool bClosed = false;
	WhenPickerOpens( [ & ]( CQPickParticleFunctionUI *pPicker ) {
		bOpened = true;
		QTest::keyClicks( pPicker->GetFilterLine(), QStringLiteral( "sprites" ) );
		QTest::keyClick( pPicker->GetFilterLine(), Qt::Key_Escape );
		bClosed = !pPicker->isVisible();
	} );
	List()->setFocus();
	const Qt::KeyboardModifiers chord = Qt::ControlModifier | Qt::ShiftModifier;
	QTest::keyPress( List(), Qt::Key_Control, Qt::ControlModifier );
	QTest::keyPress( List(), Qt::Key_Shift, chord );
	QTest::keyClick( List(), Qt::Key_A, chord );
	QTest::keyRelease( List(), Qt::Key_Shift, Qt::ControlModifier );
	QTest::keyRelease( List(), Qt::Key_Control, Qt::NoModifier );
	RunQueued();
	EXPECT_TRUE( bOpened );
	EXPECT_TRUE( bClosed );
	EXPECT_EQ( UndoSteps(), nSteps );
	EXPECT_EQ( Root()->GetNodeCount( PARTICLE_FUNCTION_RENDERER ), 1 );
}

TEST_F( FunctionListTest, PickerOffersPresetsFirstAndEachListGroupedWithItsIcon )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	CQPickParticleFunctionUI all( Doc() );
	all.Populate( PARTICLE_FUNCTION_ROOT );
	ASSERT_GT( all.GetPicks().Count(), 19 );
	for ( int i = 0; i < 19; ++i )
		EXPECT_NE( all.GetPicks()[ i ].m_pPreset, nullptr ) << i;
	EXPECT_STREQ( all.GetPicks()[ 0 ].m_SecondText, "C_INIT_InitFloat" );
	EXPECT_EQ( all.GetChoiceName( 0 ), QStringLiteral( "Lifetime Random (Init Float)" ) );
	EXPECT_TRUE( all.IsGroupVisible( "Presets" ) );
	EXPECT_TRUE( all.IsGroupVisible( "Renderer" ) );
	// The help files say what each class does; a word only they hold finds it, marked.
	all.GetFilterLine()->setText( QStringLiteral( "swirl" ) );
	const QVector<int> swirling = all.GetVisibleChoices();
	QStringList names;
	for ( int nChoice : swirling )
	{
		names.append( all.GetChoiceName( nChoice ) );
		EXPECT_TRUE( all.ShowsDescriptionMarker( nChoice ) ) << all.GetChoiceName( nChoice ).toStdString();
	}
	EXPECT_TRUE( names.contains( QStringLiteral( "Twist around axis" ) ) ) << names.join( ", " ).toStdString();
	EXPECT_FALSE( all.IsGroupVisible( "Presets" ) );

	CQPickParticleFunctionUI constraints( Doc() );
	constraints.Populate( PARTICLE_FUNCTION_CONSTRAINT );
	ASSERT_GT( constraints.GetPicks().Count(), 0 );
	for ( const CQPickParticleFunctionUI::Pick_t &pick : constraints.GetPicks() )
	{
		EXPECT_EQ( pick.m_pPreset, nullptr ) << "no preset is a constraint";
		EXPECT_EQ( pick.m_nType, int( PARTICLE_FUNCTION_CONSTRAINT ) );
	}
	EXPECT_STREQ( CQPickParticleFunctionUI::GetFunctionTypeIconPath( PARTICLE_FUNCTION_CONSTRAINT ), "game:tools/images/zol/func_constraint.png" );
	EXPECT_FALSE( QIcon( CQPickParticleFunctionUI::GetFunctionTypeIconPath( PARTICLE_FUNCTION_CONSTRAINT ) ).pixmap( 16, 16 ).isNull() );
}

// ---------------------------------------------------------------------------------------
// Children

TEST_F( FunctionListTest, ParticleSystemsDroppedOnTheChildrenBecomeChildrenInOneStep )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	CQParticleFunctionChildren *pHeader = List()->GetChildrenSection();
	ASSERT_NE( pHeader, nullptr );
	const int nChildren = Root()->GetNodeCount( PARTICLE_FUNCTION_CHILDREN );
	const int nSteps = UndoSteps();
	auto send = [ & ]( QWidget *pTarget, const QString &text, bool *pHighlighted ) {
		QMimeData data;
		data.setText( text );
		QDragEnterEvent enter( QPoint( 5, 5 ), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier );
		QApplication::sendEvent( pTarget, &enter );
		*pHighlighted = pTarget->styleSheet().contains( QStringLiteral( "#22b14c" ) );
		if ( !enter.isAccepted() )
			return false;
		QDropEvent drop( QPoint( 5, 5 ), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier );
		QApplication::sendEvent( pTarget, &drop );
		EXPECT_TRUE( pTarget->styleSheet().isEmpty() );
		return drop.isAccepted();
	};

	// A model is no child: no green, no drop.
	bool bHighlighted = true;
	EXPECT_FALSE( send( pHeader, QStringLiteral( "models/crate.tmsh" ), &bHighlighted ) );
	EXPECT_FALSE( bHighlighted );
	EXPECT_EQ( UndoSteps(), nSteps );

	// Three systems; the one from another directory is refused at the question.
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Parent/Child Directory Mismatch" );
	EXPECT_TRUE( send( pHeader, QStringLiteral( "particles/samples/fire.tfxs\nparticles/other/lonely.tfxs\nmodels/crate.tmsh\nparticles/samples/sparks.tfxs" ), &bHighlighted ) );
	EXPECT_TRUE( bHighlighted );
	EXPECT_EQ( m_Prompt.GetPendingCount(), 0 );
	ASSERT_EQ( Root()->GetNodeCount( PARTICLE_FUNCTION_CHILDREN ), nChildren + 2 );
	EXPECT_STREQ( Node( PARTICLE_FUNCTION_CHILDREN, nChildren )->AsChildNode()->GetChildRef(), "particles/samples/fire.tfxs" );
	EXPECT_STREQ( Node( PARTICLE_FUNCTION_CHILDREN, nChildren + 1 )->AsChildNode()->GetChildRef(), "particles/samples/sparks.tfxs" );
	EXPECT_EQ( UndoSteps(), nSteps + 1 );
	EXPECT_STREQ( Doc()->GetUndoHistory()->GetUndoName(), "Add Children" );

	// Onto a row: that child refers to the system dropped, without a rebuild.
	auto *pRow = qobject_cast<CQParticleChildWidget *>( Row( PARTICLE_FUNCTION_CHILDREN, 0 ) );
	ASSERT_NE( pRow, nullptr );
	const int nRebuilds = List()->GetRebuildCount();
	EXPECT_TRUE( send( pRow, QStringLiteral( "particles/samples/smoke.tfxs" ), &bHighlighted ) );
	EXPECT_STREQ( Node( PARTICLE_FUNCTION_CHILDREN, 0 )->AsChildNode()->GetChildRef(), "particles/samples/smoke.tfxs" );
	EXPECT_STREQ( Doc()->GetUndoHistory()->GetUndoName(), "Set Child" );
	EXPECT_EQ( pRow->GetThumbnail()->GetAsset(), Asset( "particles/samples/smoke.tfxs" ) );
	m_pApp->Frame();
	EXPECT_EQ( List()->GetRebuildCount(), nRebuilds );
	EXPECT_EQ( pRow->GetEditButton()->GetNameLabel()->GetText(), QStringLiteral( "smoke" ) );

	// A system can't be its own child: the warning, and nothing changes.
	const int nBefore = UndoSteps();
	EXPECT_TRUE( send( pRow, QStringLiteral( "particles/samples/campfire.tfxs" ), &bHighlighted ) );
	EXPECT_NE( m_Prompt.FindRecord( "Error choosing asset" ), nullptr );
	EXPECT_EQ( UndoSteps(), nBefore );
	EXPECT_STREQ( Node( PARTICLE_FUNCTION_CHILDREN, 0 )->AsChildNode()->GetChildRef(), "particles/samples/smoke.tfxs" );
}

TEST_F( FunctionListTest, ParentChildMenuShowsTheChildrenAndOpensTheOneClicked )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	CQAssetParentChildMenu *pMenu = List()->GetParentChildMenu();
	ASSERT_EQ( pMenu->GetAsset(), Asset( "particles/samples/campfire.tfxs" ) );
	EXPECT_EQ( pMenu->width(), 46 );
	EXPECT_FALSE( pMenu->GetParentButton()->isEnabled() );
	EXPECT_EQ( pMenu->GetParentButton()->text(), QStringLiteral( "P" ) );
	EXPECT_TRUE( pMenu->GetChildButton()->isEnabled() );
	EXPECT_EQ( pMenu->GetChildButton()->text(), QStringLiteral( "3" ) );

	QTest::mouseClick( pMenu->GetChildButton(), Qt::LeftButton );
	QPointer<QFrame> pPopup = pMenu->GetPopup();
	ASSERT_TRUE( pPopup );
	QStringList names;
	CQHoverButton *pSmoke = nullptr;
	for ( CQHoverButton *pButton : pPopup->findChildren<CQHoverButton *>() )
	{
		names.append( pButton->text() );
		if ( pButton->text() == QStringLiteral( "smoke.tfxs" ) )
			pSmoke = pButton;
	}
	names.sort();
	EXPECT_EQ( names, ( QStringList{ "fire.tfxs", "smoke.tfxs", "sparks.tfxs" } ) );
	ASSERT_NE( pSmoke, nullptr );

	std::vector<IAsset *> hovered;
	QObject::connect( List(), &CQParticleFunctionList::ParticleSystemHovered, [ & ]( IAsset *pAsset ) { hovered.push_back( pAsset ); } );
	QEvent enter( QEvent::Enter );
	QApplication::sendEvent( pSmoke, &enter );
	EXPECT_EQ( pMenu->GetHoveredAsset(), Asset( "particles/samples/smoke.tfxs" ) );
	QTest::mouseClick( pSmoke, Qt::LeftButton );
	QApplication::sendPostedEvents( nullptr, QEvent::DeferredDelete );
	EXPECT_FALSE( pPopup ) << "choosing closes the popup";
	ASSERT_FALSE( hovered.empty() );
	EXPECT_EQ( hovered.front(), Asset( "particles/samples/smoke.tfxs" ) );
	EXPECT_EQ( hovered.back(), nullptr );
	ASSERT_NE( List()->GetSession(), nullptr );
	EXPECT_EQ( List()->GetSession()->GetAsset(), Asset( "particles/samples/smoke.tfxs" ) );
	// The history goes back to the campfire.
	EXPECT_TRUE( List()->GetPrevButton()->isEnabled() );
	QTest::mouseClick( List()->GetPrevButton(), Qt::LeftButton );
	EXPECT_EQ( List()->GetSession()->GetAsset(), Asset( "particles/samples/campfire.tfxs" ) );
}

TEST_F( FunctionListTest, ParentChildTreeStandsInColumnsByDepthWithLinesPastDeeperRows )
{
	// A system that holds the campfire and the fire: two levels below it.
	{
		std::ofstream holder( m_Root / "content/particles/samples/holder.tfxs" );
		holder << "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
				  "{ _class = \"CParticleSystemDefinition\" m_Children = [ { m_ChildRef = resource:\"particles/samples/campfire.tfxs\" }, "
				  "{ m_ChildRef = resource:\"particles/samples/fire.tfxs\" } ] }\n";
	}
	m_Services.GetAssetSystem()->Rescan();
	ASSERT_NE( Open( "particles/samples/holder.tfxs" ), nullptr );
	CQAssetParentChildMenu *pMenu = List()->GetParentChildMenu();
	EXPECT_EQ( pMenu->GetChildButton()->text(), QStringLiteral( "2" ) );
	QTest::mouseClick( pMenu->GetChildButton(), Qt::LeftButton );
	ASSERT_NE( pMenu->GetPopup(), nullptr );
	auto *pGrid = qobject_cast<QGridLayout *>( pMenu->GetPopup()->layout() );
	ASSERT_NE( pGrid, nullptr );
	// Cell (row, column) of each entry, by its name.
	std::map<std::string, std::pair<int, int>> cells;
	int nSkips = 0;
	for ( int i = 0; i < pGrid->count(); ++i )
	{
		int nRow, nColumn, nRowSpan, nColumnSpan;
		pGrid->getItemPosition( i, &nRow, &nColumn, &nRowSpan, &nColumnSpan );
		QWidget *pWidget = pGrid->itemAt( i )->widget();
		if ( CQHoverButton *pButton = pWidget ? pWidget->findChild<CQHoverButton *>() : nullptr )
			cells[ pButton->text().toStdString() ] = { nRow, nColumn };
		else if ( qobject_cast<QLabel *>( pWidget ) && nColumn == 1 )
			++nSkips;
	}
	EXPECT_EQ( cells[ "campfire.tfxs" ], std::make_pair( 0, 1 ) );
	EXPECT_EQ( cells[ "smoke.tfxs" ], std::make_pair( 1, 2 ) );
	EXPECT_EQ( cells[ "sparks.tfxs" ], std::make_pair( 2, 2 ) );
	// The fire stands twice: under the campfire, and as the holder's second child.
	EXPECT_EQ( cells[ "fire.tfxs" ], std::make_pair( 3, 1 ) );
	EXPECT_EQ( nSkips, 2 ) << "the line from the campfire down to the fire passes two rows";
}

// ---------------------------------------------------------------------------------------
// Rows that go away

namespace
{
// A file dialog that, like a real one, runs the event loop while it is up, after the
// document was made anew behind it.
class CUndoingPrompt final : public IPrompt
{
public:
	void ShowMessage( const PromptQuestion_t & ) override {}
	PromptButton_t Ask( const PromptQuestion_t &question ) override { return question.m_eDefaultButton; }
	bool RunFileDialog( const PromptFileRequest_t &, CUtlVector<CUtlString> *pChosen ) override
	{
		m_pDoc->Undo();
		QApplication::processEvents();
		pChosen->AddToTail( m_strAnswer );
		return true;
	}
	CZolDoc *m_pDoc = nullptr;
	CUtlString m_strAnswer;
};
} // namespace

TEST_F( FunctionListTest, ARowWhoseNodeGoesAwayWhileItHandlesAnEventIsLeftAlone )
{
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	// The remove button's click destroys the node and the rows while the row handles it.
	QPointer<CQParticleFunctionBaseWidget> pRow = Row( PARTICLE_FUNCTION_OPERATOR, 0 );
	const int nOperators = Root()->GetNodeCount( PARTICLE_FUNCTION_OPERATOR );
	QTest::mouseClick( static_cast<CQParticleFunctionWidget *>( pRow.data() )->GetRemoveButton(), Qt::LeftButton );
	EXPECT_EQ( Root()->GetNodeCount( PARTICLE_FUNCTION_OPERATOR ), nOperators - 1 );
	ASSERT_TRUE( pRow ) << "kept until the event loop";
	EXPECT_EQ( pRow->GetNode(), nullptr );
	QApplication::processEvents();
	EXPECT_FALSE( pRow );

	// The browse dialog's loop runs while an undo makes every node anew.
	Click( Row( PARTICLE_FUNCTION_RENDERER, 0 ) );
	QPointer<CQParticleChildWidget> pChild = qobject_cast<CQParticleChildWidget *>( Row( PARTICLE_FUNCTION_CHILDREN, 2 ) );
	ASSERT_TRUE( pChild );
	CUndoingPrompt prompt;
	prompt.m_pDoc = Doc();
	prompt.m_strAnswer = MemoryPath( m_Root / "content/particles/samples/smoke.tfxs" );
	{
		CScopedPrompt scoped( &prompt );
		QTest::mouseClick( pChild->GetBrowseButton(), Qt::LeftButton );
	}
	EXPECT_FALSE( pChild );
	EXPECT_STREQ( Node( PARTICLE_FUNCTION_CHILDREN, 2 )->AsChildNode()->GetChildRef(), "particles/samples/smoke.tfxs" );
	EXPECT_STREQ( Doc()->GetUndoHistory()->GetUndoName(), "Set Child" );
}

TEST_F( FunctionListTest, ReloadKeepsTheSelectionByClassAndEachSessionKeepsItsScroll )
{
	CZolSession *pCampfire = Open( "particles/samples/campfire.tfxs" );
	ASSERT_NE( pCampfire, nullptr );
	Click( Row( PARTICLE_FUNCTION_INITIALIZER, 3 ) );
	ASSERT_TRUE( pCampfire->Reload() );
	QApplication::processEvents();
	EXPECT_EQ( Selection(), ( std::vector<std::string>{ "2:3" } ) );
	EXPECT_TRUE( Row( PARTICLE_FUNCTION_INITIALIZER, 3 )->GetEditButton()->isChecked() );

	CQDraggableWidgetList *pRows = List()->GetListWidget();
	pRows->SetScrollValue( 60 );
	const int nCampfireScroll = pRows->GetScrollValue();
	ASSERT_GT( nCampfireScroll, 0 );
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	ASSERT_NE( pFire, nullptr );
	EXPECT_EQ( List()->GetSession(), pFire );
	EXPECT_EQ( pRows->GetScrollValue(), 0 );
	m_pApp->SetActiveEditorSession( pCampfire, false, false );
	EXPECT_EQ( pRows->GetScrollValue(), nCampfireScroll );
}
