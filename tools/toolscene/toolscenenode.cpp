#include "tools/toolscene/toolscenenode.h"

#include <algorithm>

#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolscenemath.h"

using namespace ToolSceneMath;

void ToolSceneAddBounds( const Vector &vMin, const Vector &vMax, bool *pHave, Vector *pOutMin, Vector *pOutMax )
{
	if ( !*pHave )
	{
		*pOutMin = vMin;
		*pOutMax = vMax;
		*pHave = true;
		return;
	}
	for ( int i = 0; i < 3; ++i )
	{
		( *pOutMin )[ i ] = std::min( ( *pOutMin )[ i ], vMin[ i ] );
		( *pOutMax )[ i ] = std::max( ( *pOutMax )[ i ], vMax[ i ] );
	}
}

CToolSceneNode::CToolSceneNode( CToolScene *pScene ) : m_pScene( pScene )
{
	if ( m_pScene )
		m_pScene->AddNode( this );
}

CToolSceneNode::~CToolSceneNode()
{
	if ( m_pParent )
		m_pParent->RemoveChild( this );
	for ( CToolSceneNode *pChild : m_Children )
	{
		pChild->m_pParent = nullptr;
		pChild->UpdateEffectiveVisibility();
	}
	m_Children.clear();
	if ( m_pScene )
		m_pScene->RemoveNode( this );
}

bool CToolSceneNode::GetBounds( Vector *, Vector * ) const
{
	return false;
}

bool CToolSceneNode::GatherBounds( Vector *pMin, Vector *pMax ) const
{
	bool bHave = false;
	Vector vMin, vMax;
	if ( GetBounds( &vMin, &vMax ) )
		ToolSceneAddBounds( vMin, vMax, &bHave, pMin, pMax );
	for ( const CToolSceneNode *pChild : m_Children )
	{
		if ( pChild->IsEffectivelyVisible() && pChild->GatherBounds( &vMin, &vMax ) )
			ToolSceneAddBounds( vMin, vMax, &bHave, pMin, pMax );
	}
	return bHave;
}

void CToolSceneNode::SetVisible( bool bVisible )
{
	m_bVisible = bVisible;
	UpdateEffectiveVisibility();
}

void CToolSceneNode::UpdateEffectiveVisibility()
{
	bool bEffective = m_bVisible && ( !m_pParent || m_pParent->IsEffectivelyVisible() );
	if ( bEffective != m_bEffectivelyVisible )
	{
		m_bEffectivelyVisible = bEffective;
		OnEffectiveVisibilityChanged();
	}
	for ( CToolSceneNode *pChild : m_Children )
		pChild->UpdateEffectiveVisibility();
}

void CToolSceneNode::AddChild( CToolSceneNode *pChild )
{
	if ( !pChild || pChild == this || pChild->m_pParent == this )
		return;
	if ( pChild->m_pParent )
		pChild->m_pParent->RemoveChild( pChild );
	pChild->m_pParent = this;
	m_Children.push_back( pChild );
	m_bTreeChanged = true;
	pChild->UpdateEffectiveVisibility();
}

void CToolSceneNode::RemoveChild( CToolSceneNode *pChild )
{
	auto it = std::find( m_Children.begin(), m_Children.end(), pChild );
	if ( it == m_Children.end() )
		return;
	m_Children.erase( it );
	pChild->m_pParent = nullptr;
	m_bTreeChanged = true;
	pChild->UpdateEffectiveVisibility();
}

void CToolSceneNode::AddToDrawList( CToolSceneDrawList &, const ToolSceneView_t & ) const
{
}

void CToolSceneNode::Update( float )
{
}

void CToolSceneNode::GetWorldFrame( Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) const
{
	Vector vForward, vRight, vUp;
	AngleVectors( m_Angles, &vForward, &vRight, &vUp );
	Vector vOrigin = m_vOrigin;
	if ( m_pParent )
	{
		Vector po, pf, pr, pu;
		m_pParent->GetWorldFrame( &po, &pf, &pr, &pu );
		float flParentScale = m_pParent->GetWorldScale();
		vOrigin = ParticleMath::LocalToWorld( po, pf, pr, pu, Scale( m_vOrigin, flParentScale ) );
		vForward = ParticleMath::LocalToWorld( Vector(), pf, pr, pu, vForward );
		vRight = ParticleMath::LocalToWorld( Vector(), pf, pr, pu, vRight );
		vUp = ParticleMath::LocalToWorld( Vector(), pf, pr, pu, vUp );
	}
	if ( pOrigin )
		*pOrigin = vOrigin;
	if ( pForward )
		*pForward = vForward;
	if ( pRight )
		*pRight = vRight;
	if ( pUp )
		*pUp = vUp;
}

float CToolSceneNode::GetWorldScale() const
{
	return m_flScale * ( m_pParent ? m_pParent->GetWorldScale() : 1.0f );
}

Vector CToolSceneNode::LocalToWorld( const Vector &vLocal ) const
{
	Vector vOrigin, vForward, vRight, vUp;
	GetWorldFrame( &vOrigin, &vForward, &vRight, &vUp );
	return ParticleMath::LocalToWorld( vOrigin, vForward, vRight, vUp, Scale( vLocal, GetWorldScale() ) );
}
