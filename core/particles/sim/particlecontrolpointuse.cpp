#include "core/particles/sim/particlecontrolpointuse.h"

#include <memory>

#include "core/kv3/keyvalues3.h"
#include "core/particles/sim/particlefunctionreader.h"
#include "core/particles/sim/particlekv3read.h"
#include "core/particles/sim/particlenamedvaluebindings.h"

namespace
{
// Reads the table into a throw-away function; null when the class has no behaviour or
// the table doesn't read.
std::unique_ptr<CParticleSimFunction> ReadFunction( const KeyValues3 *pFunction )
{
	const KeyValues3 *pClass = ParticleKV3::Member( pFunction, "_class" );
	if ( !pClass || !pClass->IsString() )
		return nullptr;
	ParticleSimFunctionFactory_t pfnCreate = FindParticleSimFunctionFactory( pClass->GetString() );
	if ( !pfnCreate )
		return nullptr;
	std::unique_ptr<CParticleSimFunction> pSim = pfnCreate();
	CHostNamedValueBindings bindings;
	bindings.SetSilent( true ); // a lone function has no declarations to check against
	ParticleInputCompileContext_t context;
	context.m_pBindings = &bindings;
	CParticleFunctionReader reader( pFunction, pSim.get(), &context, pClass->GetString() );
	pSim->Read( reader );
	if ( reader.HasFailed() )
		return nullptr;
	pSim->CollectOwnControlPointUsage( &pSim->m_ControlPointUsage );
	return pSim;
}
} // namespace

void GetParticleFunctionControlPointUsage( const KeyValues3 *pFunction, CUtlVector<HostControlPointUsage_t> *pUsage )
{
	pUsage->RemoveAll();
	if ( std::unique_ptr<CParticleSimFunction> pSim = ReadFunction( pFunction ) )
	{
		for ( const HostControlPointUsage_t &usage : pSim->m_ControlPointUsage )
			pUsage->AddToTail( usage );
	}
}

void GetParticleFunctionControlPointUses( const KeyValues3 *pFunction, CUtlVector<ParticleControlPointUse_t> *pUses )
{
	pUses->RemoveAll();
	CUtlVector<HostControlPointUsage_t> usage;
	GetParticleFunctionControlPointUsage( pFunction, &usage );
	for ( const HostControlPointUsage_t &record : usage )
	{
		int nFlags = ( ( record.m_nAccess & CONTROL_POINT_ACCESS_READ ) ? 1 : 0 ) |
					 ( ( record.m_nAccess & ( CONTROL_POINT_ACCESS_WRITE | CONTROL_POINT_ACCESS_WRITE_SPECIAL ) ) ? 2 : 0 );
		if ( nFlags == 0 )
			continue;
		bool bMerged = false;
		for ( ParticleControlPointUse_t &use : *pUses )
		{
			if ( use.m_ID == record.m_ID )
			{
				use.m_nFlags |= nFlags;
				bMerged = true;
				break;
			}
		}
		if ( !bMerged )
			pUses->AddToTail( ParticleControlPointUse_t{ record.m_ID, nFlags } );
	}
}

uint64_t GetParticleFunctionWrittenAttributes( const KeyValues3 *pFunction )
{
	std::unique_ptr<CParticleSimFunction> pSim = ReadFunction( pFunction );
	return pSim ? pSim->m_nWrittenAttributes : 0;
}
