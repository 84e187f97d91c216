#pragma once
// A widget that a panel keeps for reuse instead of deleting it: rows come and go with
// every rebuild, and making their editors anew each time costs more than clearing them.
// A pool holds idle widgets by key (the editor they are) under a hidden parent.

#include <QHash>
#include <QList>
#include <QPointer>
#include <QWidget>

class CQPoolableWidget : public QWidget
{
	Q_OBJECT

public:
	using QWidget::QWidget;

	// The pool this widget goes back to; empty when it is not pooled.
	const QString &GetPoolKey() const { return m_PoolKey; }
	void SetPoolKey( const QString &key ) { m_PoolKey = key; }

	// Called when the widget goes back to its pool: it must let go of whatever it showed.
	virtual void OnReturnedToPool() {}

private:
	QString m_PoolKey;
};

class CQWidgetPool
{
public:
	explicit CQWidgetPool( QWidget *pHolder ) : m_pHolder( pHolder ) {}
	~CQWidgetPool() = default;
	CQWidgetPool( const CQWidgetPool & ) = delete;
	CQWidgetPool &operator=( const CQWidgetPool & ) = delete;

	// An idle widget of the key, or null.
	CQPoolableWidget *Take( const QString &key );
	// The widget is cleared, hidden and kept under the holder; one without a key is deleted.
	void Return( CQPoolableWidget *pWidget );
	int GetIdleCount( const QString &key ) const;
	int GetIdleCount() const;

private:
	QPointer<QWidget> m_pHolder;
	QHash<QString, QList<QPointer<CQPoolableWidget>>> m_Idle;
};
