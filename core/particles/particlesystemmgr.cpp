#include "core/particles/iparticlesystemmgr.h"

namespace
{
IParticleSystemMgr *s_pParticleSystemMgr = nullptr;
}

IParticleSystemMgr *GetParticleSystemMgr()
{
	return s_pParticleSystemMgr;
}

void SetParticleSystemMgr( IParticleSystemMgr *pMgr )
{
	s_pParticleSystemMgr = pMgr;
}
