#include "tools/toolutils2/inputbind/bindtargetset.h"

#include <algorithm>

bool CBindTargetSet::AddTarget( IBindTarget *pTarget )
{
	if ( !pTarget || HasTarget( pTarget ) )
		return false;
	m_Targets.push_back( pTarget );
	return true;
}

bool CBindTargetSet::RemoveTarget( IBindTarget *pTarget )
{
	auto it = std::find( m_Targets.begin(), m_Targets.end(), pTarget );
	if ( it == m_Targets.end() )
		return false;
	m_Targets.erase( it );
	return true;
}

bool CBindTargetSet::HasTarget( const IBindTarget *pTarget ) const
{
	return std::find( m_Targets.begin(), m_Targets.end(), pTarget ) != m_Targets.end();
}
