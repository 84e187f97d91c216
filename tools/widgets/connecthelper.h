#pragma once
// Carries one pointer through a signal: map() sends mapped( data ). Lets many buttons share
// one slot that needs to know which object the button stands for.

#include <QObject>

class CQConnectHelper_void : public QObject
{
	Q_OBJECT

public:
	CQConnectHelper_void( void *pData, QObject *pParent ) : QObject( pParent ), m_pData( pData ) {}
	void *GetData() const { return m_pData; }

public slots:
	void map() { emit mapped( m_pData ); }

signals:
	void mapped( void *pData );

private:
	void *m_pData;
};
