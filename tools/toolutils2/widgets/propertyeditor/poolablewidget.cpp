#include "tools/toolutils2/widgets/propertyeditor/poolablewidget.h"

CQPoolableWidget *CQWidgetPool::Take( const QString &key )
{
	auto it = m_Idle.find( key );
	if ( it == m_Idle.end() )
		return nullptr;
	while ( !it->isEmpty() )
	{
		QPointer<CQPoolableWidget> pWidget = it->takeLast();
		if ( pWidget )
			return pWidget;
	}
	return nullptr;
}

void CQWidgetPool::Return( CQPoolableWidget *pWidget )
{
	if ( !pWidget )
		return;
	pWidget->OnReturnedToPool();
	if ( pWidget->GetPoolKey().isEmpty() || !m_pHolder )
	{
		pWidget->hide();
		pWidget->deleteLater();
		return;
	}
	pWidget->hide();
	pWidget->setParent( m_pHolder );
	m_Idle[ pWidget->GetPoolKey() ].append( pWidget );
}

int CQWidgetPool::GetIdleCount( const QString &key ) const
{
	int nCount = 0;
	for ( const QPointer<CQPoolableWidget> &pWidget : m_Idle.value( key ) )
		nCount += pWidget ? 1 : 0;
	return nCount;
}

int CQWidgetPool::GetIdleCount() const
{
	int nCount = 0;
	for ( auto it = m_Idle.begin(); it != m_Idle.end(); ++it )
		nCount += GetIdleCount( it.key() );
	return nCount;
}
