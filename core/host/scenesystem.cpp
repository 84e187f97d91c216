#include "core/host/scenesystem.h"

#include <algorithm>

void CSceneObject::SetBounds( const Vector &vecMins, const Vector &vecMaxs )
{
	// Corners given the wrong way round still make a box.
	m_vecMins = Vector( std::min( vecMins.x, vecMaxs.x ), std::min( vecMins.y, vecMaxs.y ), std::min( vecMins.z, vecMaxs.z ) );
	m_vecMaxs = Vector( std::max( vecMins.x, vecMaxs.x ), std::max( vecMins.y, vecMaxs.y ), std::max( vecMins.z, vecMaxs.z ) );
}

ISceneObject *CSceneWorld::CreateObject( const char *pName )
{
	m_Objects.push_back( std::make_unique<CSceneObject>( pName ? pName : "" ) );
	return m_Objects.back().get();
}

bool CSceneWorld::DestroyObject( ISceneObject *pObject )
{
	auto it = std::find_if( m_Objects.begin(), m_Objects.end(), [ pObject ]( const std::unique_ptr<CSceneObject> &p ) { return p.get() == pObject; } );
	if ( it == m_Objects.end() )
		return false;
	m_Objects.erase( it );
	return true;
}

ISceneObject *CSceneWorld::GetObject( int nIndex ) const
{
	return nIndex >= 0 && nIndex < int( m_Objects.size() ) ? m_Objects[ size_t( nIndex ) ].get() : nullptr;
}

ISceneWorld *CSceneSystem::CreateWorld( const char *pName )
{
	m_Worlds.push_back( std::make_unique<CSceneWorld>( pName ? pName : "" ) );
	return m_Worlds.back().get();
}

bool CSceneSystem::DestroyWorld( ISceneWorld *pWorld )
{
	auto it = std::find_if( m_Worlds.begin(), m_Worlds.end(), [ pWorld ]( const std::unique_ptr<CSceneWorld> &p ) { return p.get() == pWorld; } );
	if ( it == m_Worlds.end() )
		return false;
	m_Worlds.erase( it );
	return true;
}
