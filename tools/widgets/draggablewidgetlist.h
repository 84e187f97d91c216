#pragma once
// A scrolling column of widgets whose rows can be dragged to a new place. The rows and
// their meaning belong to the owner: it answers where a drag may land and performs the
// move (IDraggableItemList); each row fills the data of its own drag (IDraggableTargetItem,
// through a CQDragHandleWidget). The list checks what is dragged, draws where it would
// land, and leaves out drops that would change nothing.
//
// A drag carries 16 bytes under the list's mime type: the owner's token (8 bytes), the
// item's type (4) and index (4). A drag is accepted only from the same owner, so rows of
// one document never land in another.
//
// Rows are never deleted at once when the list is cleared: a row may be the one whose
// click caused the rebuild. They are hidden, forgotten and deleted once control is back in
// the event loop and no drag that a row started is still running.

#include <QByteArray>
#include <QPointer>
#include <QScrollArea>
#include <QVector>

class QMimeData;
class QVBoxLayout;

class IDraggableItemList
{
public:
	// A token that proves that a drag comes from this list; compared, never used.
	virtual const void *GetDragOwner() const = 0;
	// Where an item of the type dropped at the global point would go; false when it can't.
	virtual bool FindDropPosition( const QPoint &globalPoint, int nType, int *pIndex ) const = 0;
	// The widget to draw the drop indicator at, and an offset below its top edge.
	virtual bool GetDropIndicator( int nType, int nIndex, QWidget **ppWidget, int *pOffset ) const = 0;
	// nTo names a gap of the list as it stands before the move, 0 .. count.
	virtual void MoveItem( int nType, int nFrom, int nTo ) = 0;

protected:
	~IDraggableItemList() = default;
};

class IDraggableTargetItem
{
public:
	// Fills the data of a drag of this item; false when the item can't be dragged now.
	virtual bool FillMimeData( QMimeData *pData ) = 0;
	virtual void OnDragPress() {}
	virtual void OnDragRelease() {}

protected:
	~IDraggableTargetItem() = default;
};

// The bytes of one dragged item.
struct DraggableItem_t
{
	const void *m_pOwner = nullptr;
	int m_nType = 0;
	int m_nIndex = 0;

	static constexpr int ENCODED_SIZE = 16;
	QByteArray Encode() const;
	// False for data of any other size.
	static bool Decode( const QByteArray &data, DraggableItem_t *pOut );
};

class CQDraggableWidgetList : public QScrollArea
{
	Q_OBJECT

public:
	explicit CQDraggableWidgetList( QWidget *pParent = nullptr );
	~CQDraggableWidgetList() override;

	void SetItemList( IDraggableItemList *pItems ) { m_pItems = pItems; }
	void SetMimeType( const QString &mimeType ) { m_MimeType = mimeType; }
	const QString &GetMimeType() const { return m_MimeType; }

	// Rows, spaces and stretches, top to bottom.
	void AddWidget( QWidget *pWidget );
	void AddSpacing( int nPixels );
	void AddStretch( int nStretch );
	// Hides and forgets every row; they are deleted later (see above).
	void Clear();
	// The vertical scroll position; setting it lays the rows out first so it isn't cut.
	int GetScrollValue() const;
	void SetScrollValue( int nValue );

	// A row's drag runs; rows cleared meanwhile wait for its end.
	void BeginRowDrag();
	void EndRowDrag();

	// What a drag with this data would do here: false when it is refused. Fills the source
	// and the drop index.
	bool EvaluateDrag( const QMimeData *pData, const QPoint &globalPoint, DraggableItem_t *pSource, int *pDropIndex ) const;
	// Whether a drop at nTo of the item at nFrom would change the order.
	static bool IsMove( int nFrom, int nTo ) { return nTo != nFrom && nTo != nFrom + 1; }

	// The indicator's place in the viewport, while it is shown; for tests and drawing.
	bool IsDropIndicatorShown() const;
	QRect GetDropIndicatorRect() const;
	int GetPendingDeleteCount() const { return m_Retired.size(); }

protected:
	void dragEnterEvent( QDragEnterEvent *pEvent ) override;
	void dragMoveEvent( QDragMoveEvent *pEvent ) override;
	void dragLeaveEvent( QDragLeaveEvent *pEvent ) override;
	void dropEvent( QDropEvent *pEvent ) override;

private:
	// Shows or hides the indicator for a drag at a viewport point; false when refused.
	bool TrackDrag( QDropEvent *pEvent );
	void HideDropIndicator();
	void ScheduleDeleteRetired();
	void DeleteRetired();

	class CQDropIndicator;

	QWidget *m_pContainer = nullptr;
	QVBoxLayout *m_pLayout = nullptr;
	CQDropIndicator *m_pIndicator = nullptr;
	IDraggableItemList *m_pItems = nullptr;
	QString m_MimeType;
	QVector<QPointer<QWidget>> m_Retired;
	int m_nActiveRowDrags = 0;
	bool m_bDeleteScheduled = false;
};
