#include "zoldoc_lib/particlegamedata.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "core/logging/logging.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/text/utlstring.h"
#include "particleslib/particleinputclasses.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "zoldoc_lib/zolchoiceproviders.h"
#include "zoldoc_lib/particledomains.h"
#include "zoldoc_lib/particlefgdfromschema.h"

namespace
{
struct ParticleGameData_t
{
	CGameData m_Table;
	CUtlVector<const CGameDataClass *> m_DomainClasses;
};

std::mutex s_BuildMutex;
std::atomic<ParticleGameData_t *> s_pGameData{ nullptr };
// Every table built, the current one last. Tables thrown away by a reset stay alive to the
// end of the process: a caller may still hold a class of one.
std::vector<std::unique_ptr<ParticleGameData_t>> s_Tables;
CUtlString s_GameRoot;

void AddSchemaClass( CParticleFgdFromSchema *pConverter, const char *pName )
{
	if ( const CSchemaClassInfo *pClass = ParticleTypeScope()->FindDeclaredClass( pName ) )
		pConverter->FindOrConvertClass( pClass );
}

ParticleGameData_t *BuildGameData()
{
	// Input fields of the functions are typed by the input classes, which must exist first.
	RegisterParticleInputClasses();
	ParticleGameData_t *pData = new ParticleGameData_t;
	CParticleFgdFromSchema converter( &pData->m_Table );
	for ( const char *pName : { "CParticleSystemDefinition", "ParticleChildrenInfo_t", "ParticleNamedValueSource_t" } )
		AddSchemaClass( &converter, pName );

	if ( const IParticleSystemMgr *pMgr = GetParticleSystemMgr() )
	{
		for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
		{
			const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
			for ( int i = 0; i < pMgr->GetFunctionCount( eType ); ++i )
				AddSchemaClass( &converter, pMgr->GetFunctionSchemaClass( eType, i ) );
		}
	}

	CUtlVector<ParticleDomain_t> domains;
	CUtlString report;
	LoadParticleDomains( s_GameRoot.Get(), &domains, &report );
	if ( !report.IsEmpty() )
		Log_Warning( LOG_ZOL, "%s", report.Get() );
	AddParticleDomainClasses( &pData->m_Table, domains, &pData->m_DomainClasses );

	// The choice lists that class fields name, and the comparisons that tell whether an
	// input stands at its default; the first registration of a name stands.
	RegisterParticleChoiceProviders( ToolAttrHost() );
	RegisterParticleInputDefaultTests( ToolAttrHost() );
	return pData;
}

ParticleGameData_t *GetOrBuild()
{
	if ( ParticleGameData_t *pData = s_pGameData.load( std::memory_order_acquire ) )
		return pData;
	std::lock_guard<std::mutex> lock( s_BuildMutex );
	ParticleGameData_t *pData = s_pGameData.load( std::memory_order_relaxed );
	if ( !pData )
	{
		pData = BuildGameData();
		s_Tables.emplace_back( pData );
		s_pGameData.store( pData, std::memory_order_release );
	}
	return pData;
}
} // namespace

const CGameData *GetParticleGameData()
{
	return &GetOrBuild()->m_Table;
}

const CGameDataClass *FindParticleGameDataClass( const char *pClassName )
{
	return pClassName && *pClassName ? GetOrBuild()->m_Table.FindClass( pClassName ) : nullptr;
}

const CUtlVector<const CGameDataClass *> &GetParticleDomainClasses()
{
	return GetOrBuild()->m_DomainClasses;
}

void SetParticleGameRoot( const char *pGameRoot )
{
	std::lock_guard<std::mutex> lock( s_BuildMutex );
	s_GameRoot.Set( pGameRoot ? pGameRoot : "" );
}

void ResetParticleGameData()
{
	std::lock_guard<std::mutex> lock( s_BuildMutex );
	s_pGameData.store( nullptr );
}
