#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMouseEvent>

#include "tests/toolutils2/undo/testundoable.h"
#include "tools/toolutils2/widgets/undo/undohistorywidget.h"
#include "tools/toolutils2/widgets/undo/undolistwidget.h"

namespace
{
using Values_t = std::vector<int>;

struct UndoHistoryWidgetFixture : ::testing::Test
{
	CTestUndoable m_Doc;
	TestUndoPair_t m_Pair;
	CQUndoHistoryWidget m_Widget;

	UndoHistoryWidgetFixture()
	{
		m_Doc.m_pHistory = &m_Pair.m_Undo;
		m_Widget.resize( 300, 500 );
		m_Widget.show();
		m_Widget.SetUndoHistory( &m_Pair.m_Undo );
	}
	~UndoHistoryWidgetFixture() override { m_Widget.SetUndoHistory( nullptr ); }

	CQUndoListWidget *List() const { return m_Widget.GetListWidget(); }
	QString RowText( int nRow ) const
	{
		QTableWidgetItem *pItem = List()->item( nRow, 1 );
		return pItem ? pItem->text() : QString( "<none>" );
	}
	void PressOnRow( int nRow, QEvent::Type eType = QEvent::MouseButtonPress )
	{
		QApplication::processEvents();
		QRect rect = List()->visualRect( List()->model()->index( nRow, 1 ) );
		ASSERT_TRUE( rect.isValid() );
		QMouseEvent event( eType, rect.center(), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier );
		QApplication::sendEvent( List()->viewport(), &event );
	}
};
} // namespace

using UndoHistoryWidget = UndoHistoryWidgetFixture;

TEST_F( UndoHistoryWidget, ListsDoneStepsOldestFirstThenRedoStepsNextFirst )
{
	m_Doc.Append( 1, "Add A" );
	m_Doc.Append( 2, "Add B" );
	m_Doc.Append( 3, "Add C" );
	m_Doc.Append( 4, "Add D" );
	m_Pair.m_Undo.PerformUndo();
	m_Pair.m_Undo.PerformUndo();

	ASSERT_EQ( List()->rowCount(), 4 );
	EXPECT_EQ( RowText( 0 ), "Add A" );
	EXPECT_EQ( RowText( 1 ), "Add B" );
	EXPECT_EQ( RowText( 2 ), "Add C" );
	EXPECT_EQ( RowText( 3 ), "Add D" );

	// Only the newest done step carries the active mark.
	EXPECT_EQ( List()->item( 0, 0 ), nullptr );
	ASSERT_NE( List()->item( 1, 0 ), nullptr );
	EXPECT_EQ( List()->item( 2, 0 ), nullptr );

	// Done rows are enabled; undone rows are italic and greyed.
	EXPECT_TRUE( List()->item( 1, 1 )->flags() & Qt::ItemIsEnabled );
	EXPECT_FALSE( List()->item( 1, 1 )->flags() & Qt::ItemIsEditable );
	EXPECT_FALSE( List()->item( 1, 1 )->font().italic() );
	for ( int nRow : { 2, 3 } )
	{
		EXPECT_FALSE( List()->item( nRow, 1 )->flags() & Qt::ItemIsEnabled );
		EXPECT_TRUE( List()->item( nRow, 1 )->font().italic() );
	}
}

TEST_F( UndoHistoryWidget, ClickingAnEarlierRowUndoesBackToIt )
{
	m_Doc.Append( 1, "a" );
	m_Doc.Append( 2, "b" );
	m_Doc.Append( 3, "c" );
	PressOnRow( 0 );
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1 } ) );
	EXPECT_EQ( m_Pair.m_Undo.GetStepCount(), 1 );
	EXPECT_EQ( m_Pair.m_Redo.GetStepCount(), 2 );
	ASSERT_EQ( List()->rowCount(), 3 );
	EXPECT_NE( List()->item( 0, 0 ), nullptr );
	EXPECT_TRUE( List()->item( 1, 1 )->font().italic() );
}

TEST_F( UndoHistoryWidget, ClickingAnUndoneRowRedoesUpToIt )
{
	m_Doc.Append( 1, "a" );
	m_Doc.Append( 2, "b" );
	m_Doc.Append( 3, "c" );
	m_Pair.m_Undo.PerformUndo();
	m_Pair.m_Undo.PerformUndo();
	m_Pair.m_Undo.PerformUndo();
	ASSERT_TRUE( m_Doc.m_Values.empty() );

	PressOnRow( 1 );
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1, 2 } ) );
	EXPECT_EQ( m_Pair.m_Undo.GetStepCount(), 2 );
	EXPECT_NE( List()->item( 1, 0 ), nullptr );

	PressOnRow( 2, QEvent::MouseButtonDblClick );
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1, 2, 3 } ) );
	EXPECT_EQ( m_Pair.m_Redo.GetStepCount(), 0 );
}


TEST_F( UndoHistoryWidget, ButtonsFollowWhatCanBeUndoneAndRedone )
{
	EXPECT_FALSE( m_Widget.GetUndoAction()->isEnabled() );
	EXPECT_FALSE( m_Widget.GetRedoAction()->isEnabled() );

	m_Doc.Append( 1, "a" );
	EXPECT_TRUE( m_Widget.GetUndoAction()->isEnabled() );
	EXPECT_FALSE( m_Widget.GetRedoAction()->isEnabled() );

	m_Widget.GetUndoAction()->trigger();
	EXPECT_TRUE( m_Doc.m_Values.empty() );
	EXPECT_FALSE( m_Widget.GetUndoAction()->isEnabled() );
	EXPECT_TRUE( m_Widget.GetRedoAction()->isEnabled() );

	m_Widget.GetRedoAction()->trigger();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1 } ) );
	EXPECT_EQ( List()->rowCount(), 1 );

	m_Widget.SetUndoHistory( nullptr );
	EXPECT_EQ( List()->rowCount(), 0 );
	EXPECT_FALSE( m_Widget.GetUndoAction()->isEnabled() );
}


TEST( UndoHistoryWidgetLifetime, DestroyedWidgetNoLongerListens )
{
	TestUndoPair_t pair;
	{
		CQUndoHistoryWidget widget;
		widget.SetUndoHistory( &pair.m_Undo );
	}
	// A listener left behind would be called here after its destruction.
	EXPECT_TRUE( pair.m_Undo.BeginStep( "after" ) );
}

TEST( UndoHistoryWidgetLabels, MenuLabelsNameTheStepOrSayNothingCanBeDone )
{
	TestUndoPair_t pair;
	EXPECT_EQ( CQUndoHistoryWidget::GetUndoActionText( &pair.m_Undo ), "Cannot Undo" );
	EXPECT_EQ( CQUndoHistoryWidget::GetRedoActionText( &pair.m_Redo ), "Cannot Redo" );
	pair.m_Undo.BeginStep( "Move 'Emitter'" );
	pair.m_Undo.PerformUndo();
	pair.m_Undo.BeginStep( "Toggle Renderer" );
	EXPECT_EQ( CQUndoHistoryWidget::GetUndoActionText( &pair.m_Undo ), "Undo Toggle Renderer" );
	pair.m_Undo.PerformUndo();
	EXPECT_EQ( CQUndoHistoryWidget::GetRedoActionText( &pair.m_Redo ), "Redo Toggle Renderer" );
}
