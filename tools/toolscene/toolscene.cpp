#include "tools/toolscene/toolscene.h"

#include <algorithm>

#include "tools/toolscene/particleslibhost_toolscene.h"
#include "tools/toolscene/particlesystemquery_toolscene.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/toolscenemodel.h"
#include "tools/toolscene/toolscenenode.h"

// More sub-steps than this in one frame only fall further behind: the rest is dropped.
static constexpr int MAX_PHYSICS_SUBSTEPS = 3;

CToolScene::CToolScene()
{
	m_pParticleQuery = std::make_unique<CParticleSystemQuery_ToolScene>( this );
	m_pParticleHost = std::make_unique<CParticlesLibHost_ToolScene>( this );
	m_ParticleMgr.Init( m_pParticleHost.get() );
}

CToolScene::~CToolScene()
{
	// Effects go first: their owners hear of it while the nodes still stand.
	m_ParticleMgr.Shutdown();
	for ( NodeEntry_t &entry : m_Nodes )
	{
		if ( entry.m_pNode )
			entry.m_pNode->DetachFromScene();
	}
	m_Nodes.clear();
}

float CToolScene::GetPhysicsFixedStep( float flRate )
{
	return std::min( flRate, 4.0f ) * 0.016666668f;
}

void CToolScene::Update( float flTimeDelta, float flRate )
{
	const float flStep = flTimeDelta * flRate;
	m_flFrameStep = flStep;
	m_flTime += flStep;
	m_pParticleHost->SetTime( m_flTime );

	// Nodes may come and go while they update: walk by position, skip free entries.
	for ( size_t i = 0; i < m_Nodes.size(); ++i )
	{
		if ( CToolSceneNode *pNode = m_Nodes[ i ].m_pNode )
			pNode->Update( flStep );
	}

	m_pParticleQuery->FrameBegin();
	m_ParticleMgr.Simulate( flStep, 1.0f, false );
	m_ParticleMgr.PostUpdate();
	m_pParticleQuery->FrameEnd();

	if ( flRate > 0.0f )
	{
		m_flPhysicsAccumulator += flStep;
		const float flFixed = GetPhysicsFixedStep( flRate );
		if ( m_flPhysicsAccumulator >= flFixed )
		{
			m_PhysicsWorld.FrameBegin();
			int nSubSteps = 0;
			while ( m_flPhysicsAccumulator >= flFixed )
			{
				m_PhysicsWorld.SubStep( flFixed, nSubSteps == 0 );
				m_flPhysicsAccumulator -= flFixed;
				if ( ++nSubSteps == MAX_PHYSICS_SUBSTEPS )
				{
					m_flPhysicsAccumulator = 0.0f;
					break;
				}
			}
			m_PhysicsWorld.FrameEnd( nSubSteps );
		}
	}
	m_SceneWorld.SetTime( m_flTime );
}

int CToolScene::AddNode( CToolSceneNode *pNode )
{
	int nIndex;
	if ( !m_FreeNodeEntries.empty() )
	{
		nIndex = m_FreeNodeEntries.back();
		m_FreeNodeEntries.pop_back();
	}
	else
	{
		nIndex = int( m_Nodes.size() );
		m_Nodes.emplace_back();
	}
	m_Nodes[ size_t( nIndex ) ] = { nIndex, pNode };
	pNode->SetSceneIndex( nIndex );
	return nIndex;
}

void CToolScene::RemoveNode( CToolSceneNode *pNode )
{
	int nIndex = pNode->GetSceneIndex();
	if ( nIndex < 0 || nIndex >= int( m_Nodes.size() ) || m_Nodes[ size_t( nIndex ) ].m_pNode != pNode )
		return;
	m_Nodes[ size_t( nIndex ) ].m_pNode = nullptr;
	m_FreeNodeEntries.push_back( nIndex );
	pNode->SetSceneIndex( -1 );
	if ( m_pMainModel && static_cast<CToolSceneNode *>( m_pMainModel ) == pNode )
		m_pMainModel = nullptr;
}

int CToolScene::GetNodeCount() const
{
	return int( m_Nodes.size() - m_FreeNodeEntries.size() );
}

bool CToolScene::GetBounds( Vector *pMin, Vector *pMax ) const
{
	bool bHave = false;
	ForEachNode( [ & ]( const CToolSceneNode *pNode ) {
		Vector vMin, vMax;
		if ( !pNode->GetParent() && pNode->IsEffectivelyVisible() && pNode->GatherBounds( &vMin, &vMax ) )
			ToolSceneAddBounds( vMin, vMax, &bHave, pMin, pMax );
	} );
	return bHave;
}

static void AddNodeTree( const CToolSceneNode *pNode, CToolSceneDrawList &drawList, const ToolSceneView_t &view )
{
	if ( !pNode->IsEffectivelyVisible() )
		return;
	pNode->AddToDrawList( drawList, view );
	for ( const CToolSceneNode *pChild : pNode->GetChildren() )
		AddNodeTree( pChild, drawList, view );
}

void CToolScene::BuildDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const
{
	drawList.Clear();
	ForEachNode( [ & ]( const CToolSceneNode *pNode ) {
		if ( !pNode->GetParent() )
			AddNodeTree( pNode, drawList, view );
	} );
}
