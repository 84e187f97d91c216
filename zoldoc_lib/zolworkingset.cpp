#include "zoldoc_lib/zolworkingset.h"

#include <algorithm>

bool CZolWorkingSet::Contains( IAsset *pAsset ) const
{
	return std::find( m_Assets.begin(), m_Assets.end(), pAsset ) != m_Assets.end();
}

bool CZolWorkingSet::Add( IAsset *pAsset )
{
	if ( !pAsset || Contains( pAsset ) )
		return false;
	m_Assets.insert( m_Assets.begin(), pAsset );
	return true;
}

bool CZolWorkingSet::Remove( IAsset *pAsset )
{
	auto it = std::find( m_Assets.begin(), m_Assets.end(), pAsset );
	if ( it == m_Assets.end() )
		return false;
	m_Assets.erase( it );
	return true;
}

void CZolWorkingSet::AppendTo( CUtlVector<IAsset *> *pAssets ) const
{
	for ( IAsset *pAsset : m_Assets )
		pAssets->AddToTail( pAsset );
}
