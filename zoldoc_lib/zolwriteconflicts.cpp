#include "zoldoc_lib/zolwriteconflicts.h"

#include "core/particles/iparticlesystemmgr.h"
#include "zoldoc_lib/zolrootnode.h"

void GetParticleWriteConflicts( const CZolRootNode *pRoot, ParticleFunctionType_t eType, CUtlVector<uint64_t> *pConflicts )
{
	pConflicts->RemoveAll();
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	if ( !pRoot || eType < 0 || eType >= PARTICLE_FUNCTION_CLASS_LIST_COUNT )
		return;
	uint64_t nWrittenBefore = 0;
	for ( int i = 0; i < pRoot->GetNodeCount( eType ); ++i )
	{
		ParticleFunctionInfo_t info;
		if ( pMgr )
			pMgr->GetFunctionInfo( pRoot->GetNode( eType, i )->GetReadKV3(), &info );
		pConflicts->AddToTail( info.m_nWrittenAttributes & nWrittenBefore );
		nWrittenBefore |= info.m_nWrittenAttributes;
	}
}
