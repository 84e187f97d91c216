#include "core/host/toolscenenodefactory.h"

#include <algorithm>

#include "core/text/strtools.h"

namespace
{
constexpr const char *s_NodeKinds[] = { "group", "model", "particle_system", "camera" };
constexpr int NODE_KIND_COUNT = int( sizeof( s_NodeKinds ) / sizeof( s_NodeKinds[ 0 ] ) );

} // namespace

IToolSceneNode *CHostToolSceneNode::GetChild( int nIndex ) const
{
	return nIndex >= 0 && nIndex < int( m_Children.size() ) ? m_Children[ size_t( nIndex ) ].get() : nullptr;
}

int CToolSceneNodeFactory::GetNodeKindCount() const
{
	return NODE_KIND_COUNT;
}

const char *CToolSceneNodeFactory::GetNodeKindName( int nIndex ) const
{
	return nIndex >= 0 && nIndex < NODE_KIND_COUNT ? s_NodeKinds[ nIndex ] : nullptr;
}

bool CToolSceneNodeFactory::Holds( const IToolSceneNode *pNode ) const
{
	if ( !pNode )
		return false;
	// A node is held when its chain of parents ends at one of our roots.
	const IToolSceneNode *pTop = pNode;
	while ( pTop->GetParent() )
		pTop = pTop->GetParent();
	return std::any_of( m_Roots.begin(), m_Roots.end(), [ pTop ]( const std::unique_ptr<CHostToolSceneNode> &p ) { return p.get() == pTop; } );
}

IToolSceneNode *CToolSceneNodeFactory::CreateNode( const char *pKind, const char *pName, IToolSceneNode *pParent )
{
	const char *pKnownKind = nullptr;
	for ( const char *pCandidate : s_NodeKinds )
	{
		if ( pKind && !V_stricmp_fast( pCandidate, pKind ) )
			pKnownKind = pCandidate;
	}
	if ( !pKnownKind || ( pParent && !Holds( pParent ) ) )
		return nullptr;
	CHostToolSceneNode *pParentNode = static_cast<CHostToolSceneNode *>( pParent );
	std::vector<std::unique_ptr<CHostToolSceneNode>> &siblings = pParentNode ? pParentNode->m_Children : m_Roots;
	siblings.push_back( std::make_unique<CHostToolSceneNode>( pKnownKind, pName ? pName : "", pParentNode ) );
	return siblings.back().get();
}

bool CToolSceneNodeFactory::DestroyNode( IToolSceneNode *pNode )
{
	if ( !Holds( pNode ) )
		return false;
	CHostToolSceneNode *pParent = static_cast<CHostToolSceneNode *>( pNode->GetParent() );
	std::vector<std::unique_ptr<CHostToolSceneNode>> &siblings = pParent ? pParent->m_Children : m_Roots;
	auto it = std::find_if( siblings.begin(), siblings.end(), [ pNode ]( const std::unique_ptr<CHostToolSceneNode> &p ) { return p.get() == pNode; } );
	if ( it == siblings.end() )
		return false;
	siblings.erase( it );
	return true;
}
