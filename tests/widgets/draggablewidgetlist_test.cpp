// The draggable row list with real drag and drop events: what it accepts, where the drop
// indicator stands, which drops move a row and which change nothing, and how rows that a
// rebuild dropped outlive the event that caused it.

#include <gtest/gtest.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QPointer>
#include <QtTest/QTest>
#include <memory>
#include <vector>

#include "tools/widgets/draggablewidgetlist.h"
#include "tools/widgets/draghandlewidget.h"

namespace
{
const QString MIME_TYPE = QStringLiteral( "application/x-test-rows" );

struct Move_t
{
	int m_nType;
	int m_nFrom;
	int m_nTo;
	bool operator==( const Move_t &other ) const { return m_nType == other.m_nType && m_nFrom == other.m_nFrom && m_nTo == other.m_nTo; }
};

// Rows of one type, found by the rule the function list uses: the first row whose middle
// lies below the point, else the end.
class CTestItems final : public IDraggableItemList
{
public:
	const void *GetDragOwner() const override { return this; }
	bool FindDropPosition( const QPoint &globalPoint, int nType, int *pIndex ) const override
	{
		if ( nType != 0 )
			return false;
		*pIndex = int( m_Rows.size() );
		for ( size_t i = 0; i < m_Rows.size(); ++i )
		{
			if ( m_Rows[ i ]->mapToGlobal( QPoint( 0, m_Rows[ i ]->height() / 2 ) ).y() > globalPoint.y() )
			{
				*pIndex = int( i );
				break;
			}
		}
		return true;
	}
	bool GetDropIndicator( int, int nIndex, QWidget **ppWidget, int *pOffset ) const override
	{
		if ( m_Rows.empty() )
			return false;
		const bool bPastEnd = nIndex >= int( m_Rows.size() );
		*ppWidget = bPastEnd ? m_Rows.back() : m_Rows[ size_t( nIndex ) ];
		*pOffset = bPastEnd ? ( *ppWidget )->height() : 0;
		return true;
	}
	void MoveItem( int nType, int nFrom, int nTo ) override { m_Moves.push_back( { nType, nFrom, nTo } ); }

	std::vector<QWidget *> m_Rows;
	std::vector<Move_t> m_Moves;
};

class DraggableWidgetList : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pList = std::make_unique<CQDraggableWidgetList>();
		m_pList->SetItemList( &m_Items );
		m_pList->SetMimeType( MIME_TYPE );
		for ( int i = 0; i < 4; ++i )
		{
			auto *pRow = new QLabel( QStringLiteral( "row %1" ).arg( i ) );
			pRow->setFixedHeight( 30 );
			m_pList->AddWidget( pRow );
			m_Items.m_Rows.push_back( pRow );
		}
		m_pList->AddStretch( 1 );
		m_pList->resize( 200, 300 );
		m_pList->show();
		QApplication::processEvents();
	}

	std::unique_ptr<QMimeData> RowData( int nIndex, const void *pOwner = nullptr ) const
	{
		auto pData = std::make_unique<QMimeData>();
		DraggableItem_t item;
		item.m_pOwner = pOwner ? pOwner : &m_Items;
		item.m_nIndex = nIndex;
		pData->setData( MIME_TYPE, item.Encode() );
		return pData;
	}

	// A point in the upper quarter of a row, in the viewport: a drop there lands before it.
	QPoint AboveMiddleOf( int nRow ) const
	{
		QWidget *pRow = m_Items.m_Rows[ size_t( nRow ) ];
		return pRow->mapTo( m_pList->viewport(), QPoint( 10, pRow->height() / 4 ) );
	}
	QPoint BelowLastRow() const
	{
		QWidget *pRow = m_Items.m_Rows.back();
		return pRow->mapTo( m_pList->viewport(), QPoint( 10, pRow->height() + 20 ) );
	}

	bool Enter( const QMimeData *pData, const QPoint &pos )
	{
		QDragEnterEvent event( pos, Qt::MoveAction | Qt::CopyAction, pData, Qt::LeftButton, Qt::NoModifier );
		QApplication::sendEvent( m_pList->viewport(), &event );
		return event.isAccepted();
	}
	bool Drop( const QMimeData *pData, const QPoint &pos )
	{
		if ( !Enter( pData, pos ) )
			return false;
		QDropEvent event( pos, Qt::MoveAction | Qt::CopyAction, pData, Qt::LeftButton, Qt::NoModifier );
		QApplication::sendEvent( m_pList->viewport(), &event );
		return event.isAccepted();
	}

	CTestItems m_Items;
	std::unique_ptr<CQDraggableWidgetList> m_pList;
};

struct DropCase_t
{
	const char *m_pName;
	int m_nFrom;
	int m_nDropBefore; // -1: below the last row
	bool m_bMoves;
};

const DropCase_t s_DropCases[] = {
	{ "DownPastTheNextRow", 0, 2, true },
	{ "UpToTheTop", 3, 0, true },
	{ "BelowTheLastRow", 1, -1, true },
	{ "OntoItsOwnPlace", 1, 1, false },
	{ "JustBelowItself", 1, 2, false },
	{ "LastRowBelowItself", 3, -1, false },
};

class DraggableWidgetListDrops : public DraggableWidgetList, public ::testing::WithParamInterface<DropCase_t>
{
};
} // namespace

TEST( DraggableItem, SixteenBytesRoundTripAndOtherSizesAreRefused )
{
	int nToken = 0;
	DraggableItem_t item;
	item.m_pOwner = &nToken;
	item.m_nType = 6;
	item.m_nIndex = 41;
	const QByteArray data = item.Encode();
	ASSERT_EQ( data.size(), 16 );
	DraggableItem_t decoded;
	ASSERT_TRUE( DraggableItem_t::Decode( data, &decoded ) );
	EXPECT_EQ( decoded.m_pOwner, &nToken );
	EXPECT_EQ( decoded.m_nType, 6 );
	EXPECT_EQ( decoded.m_nIndex, 41 );
	for ( int nSize : { 0, 8, 15, 17, 32 } )
		EXPECT_FALSE( DraggableItem_t::Decode( QByteArray( nSize, '\x01' ), &decoded ) ) << nSize;
}

TEST_P( DraggableWidgetListDrops, MovesOnlyWhenTheOrderChanges )
{
	const DropCase_t &dropCase = GetParam();
	std::unique_ptr<QMimeData> pData = RowData( dropCase.m_nFrom );
	const QPoint pos = dropCase.m_nDropBefore < 0 ? BelowLastRow() : AboveMiddleOf( dropCase.m_nDropBefore );
	EXPECT_TRUE( Drop( pData.get(), pos ) );
	if ( dropCase.m_bMoves )
	{
		const int nTo = dropCase.m_nDropBefore < 0 ? 4 : dropCase.m_nDropBefore;
		EXPECT_EQ( m_Items.m_Moves, ( std::vector<Move_t>{ { 0, dropCase.m_nFrom, nTo } } ) );
	}
	else
		EXPECT_TRUE( m_Items.m_Moves.empty() );
	EXPECT_FALSE( m_pList->IsDropIndicatorShown() );
}

INSTANTIATE_TEST_SUITE_P( Rows, DraggableWidgetListDrops, ::testing::ValuesIn( s_DropCases ),
	[]( const ::testing::TestParamInfo<DropCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST_F( DraggableWidgetList, RefusesDataOfAnotherOwnerSizeOrType )
{
	CTestItems other;
	std::unique_ptr<QMimeData> pForeign = RowData( 0, &other );
	auto pWrongSize = std::make_unique<QMimeData>();
	pWrongSize->setData( MIME_TYPE, QByteArray( 12, '\0' ) );
	auto pText = std::make_unique<QMimeData>();
	pText->setText( QStringLiteral( "row 0" ) );
	// A type the owner has no rows of can't land anywhere.
	auto pOtherType = std::make_unique<QMimeData>();
	DraggableItem_t item;
	item.m_pOwner = &m_Items;
	item.m_nType = 3;
	pOtherType->setData( MIME_TYPE, item.Encode() );

	for ( const QMimeData *pData : { pForeign.get(), pWrongSize.get(), pText.get(), pOtherType.get() } )
	{
		EXPECT_FALSE( Drop( pData, AboveMiddleOf( 2 ) ) );
		EXPECT_FALSE( m_pList->IsDropIndicatorShown() );
	}
	EXPECT_TRUE( m_Items.m_Moves.empty() );
}

TEST_F( DraggableWidgetList, IndicatorStandsAtTheRowOrPastTheLastOne )
{
	std::unique_ptr<QMimeData> pData = RowData( 0 );
	ASSERT_TRUE( Enter( pData.get(), AboveMiddleOf( 2 ) ) );
	ASSERT_TRUE( m_pList->IsDropIndicatorShown() );
	const int nRowTop = m_Items.m_Rows[ 2 ]->mapTo( m_pList->viewport(), QPoint( 0, 0 ) ).y();
	EXPECT_TRUE( m_pList->GetDropIndicatorRect().contains( 20, nRowTop ) ) << m_pList->GetDropIndicatorRect().top();

	QDragMoveEvent move( BelowLastRow(), Qt::MoveAction, pData.get(), Qt::LeftButton, Qt::NoModifier );
	QApplication::sendEvent( m_pList->viewport(), &move );
	EXPECT_TRUE( move.isAccepted() );
	const int nLastBottom = m_Items.m_Rows.back()->mapTo( m_pList->viewport(), QPoint( 0, 0 ) ).y() + m_Items.m_Rows.back()->height();
	EXPECT_TRUE( m_pList->GetDropIndicatorRect().contains( 20, nLastBottom ) ) << m_pList->GetDropIndicatorRect().top();

	QDragLeaveEvent leave;
	QApplication::sendEvent( m_pList->viewport(), &leave );
	EXPECT_FALSE( m_pList->IsDropIndicatorShown() );
}

TEST_F( DraggableWidgetList, ClearedRowsLiveUntilTheEventLoopAndAnyRowDragEnds )
{
	QPointer<QWidget> pFirst = m_Items.m_Rows[ 0 ];
	m_pList->BeginRowDrag();
	m_pList->Clear();
	EXPECT_TRUE( pFirst && pFirst->isHidden() );
	QApplication::processEvents();
	// The drag that a row started is still running: its row must stay.
	EXPECT_TRUE( pFirst );
	m_pList->EndRowDrag();
	EXPECT_TRUE( pFirst );
	QApplication::processEvents();
	EXPECT_FALSE( pFirst );
	EXPECT_EQ( m_pList->GetPendingDeleteCount(), 0 );
}

TEST_F( DraggableWidgetList, HandleClosesTheHandWhilePressed )
{
	struct CNoDrag final : public IDraggableTargetItem
	{
		bool FillMimeData( QMimeData * ) override { return false; }
		void OnDragPress() override { ++m_nPresses; }
		void OnDragRelease() override { ++m_nReleases; }
		int m_nPresses = 0;
		int m_nReleases = 0;
	} item;
	auto *pHandle = new CQDragHandleWidget( &item, m_Items.m_Rows[ 0 ] );
	pHandle->show();
	EXPECT_EQ( pHandle->size(), QSize( 16, 16 ) );
	QTest::mousePress( pHandle, Qt::LeftButton, Qt::NoModifier, QPoint( 8, 8 ) );
	EXPECT_EQ( pHandle->cursor().shape(), Qt::ClosedHandCursor );
	EXPECT_EQ( item.m_nPresses, 1 );
	// An item that fills no data starts no drag, however far the mouse goes.
	QTest::mouseMove( pHandle, QPoint( 8, 14 ) );
	QMouseEvent move( QEvent::MouseMove, QPointF( 8, 60 ), Qt::NoButton, Qt::LeftButton, Qt::NoModifier );
	QApplication::sendEvent( pHandle, &move );
	EXPECT_EQ( pHandle->cursor().shape(), Qt::OpenHandCursor );
	QTest::mouseRelease( pHandle, Qt::LeftButton, Qt::NoModifier, QPoint( 8, 60 ) );
	EXPECT_EQ( item.m_nReleases, 1 );
}
