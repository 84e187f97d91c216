#include "pulsedoc_lib/model/pulseeditorundoloader.h"

#include <cstring>

#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocroot.h"

namespace
{
void SetAsideChildren( CPulseDocNode *pNode, std::vector<std::unique_ptr<CPulseDocNode>> *pAll )
{
	while ( pNode->GetChildCount() > 0 )
	{
		std::unique_ptr<CPulseDocNode> pChild = pNode->DetachChild( pNode->GetChild( 0 ) );
		SetAsideChildren( pChild.get(), pAll );
		pAll->push_back( std::move( pChild ) );
	}
}
} // namespace

CPulseEditorUndoLoader::CPulseEditorUndoLoader( CPulseDoc *pDoc ) : m_pDoc( pDoc )
{
	std::vector<std::unique_ptr<CPulseDocNode>> all;
	SetAsideChildren( pDoc->GetRoot(), &all );
	for ( std::unique_ptr<CPulseDocNode> &pNode : all )
	{
		PulseDocNodeID_t nID = pNode->GetNodeID();
		if ( nID >= 0 && !m_SetAside.count( nID ) )
			m_SetAside.emplace( nID, std::move( pNode ) );
		else
			m_Unclaimable.push_back( std::move( pNode ) );
	}
}

CPulseEditorUndoLoader::~CPulseEditorUndoLoader()
{
	DropUnclaimedNodes();
}

CPulseDocNode *CPulseEditorUndoLoader::OnNodeLoading( PulseDocNodeID_t nID, const char *pClassName )
{
	auto it = m_SetAside.find( nID );
	if ( nID < 0 || it == m_SetAside.end() || strcmp( it->second->GetNodeTypeInfo().m_pClassName, pClassName ) != 0 )
		return nullptr;
	CPulseDocNode *pNode = it->second.release();
	m_SetAside.erase( it );
	return pNode;
}

void CPulseEditorUndoLoader::DropUnclaimedNodes()
{
	for ( auto &[ nID, pNode ] : m_SetAside )
		m_pDoc->NotifyNodeRemoved( nID );
	m_SetAside.clear();
	m_Unclaimable.clear();
}
