#include "core/particles/hostparticlesystemmgr.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/logging/logonce.h"
#include "core/particles/particlesystemresource.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/text/strtools.h"
#include "core/particles/particleattributes.h"
#include "core/particles/particlebehaviorversion.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/particles/sim/particlecontrolpointuse.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"

namespace
{
// The family base of each list, most derived first: pre-emission operators are operators too.
struct ListBase_t
{
	ParticleFunctionType_t m_eType;
	const char *m_pszBase;
};
constexpr ListBase_t s_ListBases[] = {
	{ PARTICLE_FUNCTION_PRE_EMISSION_OPERATOR, "CParticleFunctionPreEmission" },
	{ PARTICLE_FUNCTION_EMITTER, "CParticleFunctionEmitter" },
	{ PARTICLE_FUNCTION_INITIALIZER, "CParticleFunctionInitializer" },
	{ PARTICLE_FUNCTION_OPERATOR, "CParticleFunctionOperator" },
	{ PARTICLE_FUNCTION_FORCE_GENERATOR, "CParticleFunctionForce" },
	{ PARTICLE_FUNCTION_CONSTRAINT, "CParticleFunctionConstraint" },
	{ PARTICLE_FUNCTION_RENDERER, "CParticleFunctionRenderer" },
};

bool IsClassListType( ParticleFunctionType_t eType )
{
	return eType >= 0 && eType < PARTICLE_FUNCTION_CLASS_LIST_COUNT;
}

// An attribute index field's value in a function's table, or its declared default.
int AttributeFieldValue( const KeyValues3 *pFunction, const CSchemaClassInfo *pClass, const char *pszField )
{
	const KeyValues3 *pValue = pFunction->FindMember( pszField );
	if ( !pValue )
		pValue = pClass->GetDefaults()->FindMember( pszField );
	if ( !pValue || !pValue->IsNumber() )
		return PARTICLE_ATTRIBUTE_NONE;
	return pValue->GetInt( PARTICLE_ATTRIBUTE_NONE );
}

// "a,b,c" into at most three texts, one per vector component.
void AddComponentUsage( int nAttribute, const char *pszTexts, ParticleFunctionInfo_t *pInfo )
{
	int nComponent = 0;
	const char *pszStart = pszTexts;
	while ( nComponent < 3 )
	{
		const char *pszEnd = strchr( pszStart, ',' );
		size_t nLength = pszEnd ? size_t( pszEnd - pszStart ) : strlen( pszStart );
		ParticleAttributeUsage_t &usage = pInfo->m_AttributeUsage[ pInfo->m_AttributeUsage.AddToTail() ];
		usage.m_nAttribute = nAttribute;
		usage.m_nComponent = nComponent++;
		usage.m_Text.Set( std::string( pszStart, nLength ).c_str() );
		if ( !pszEnd )
			break;
		pszStart = pszEnd + 1;
	}
}
} // namespace

CHostParticleSystemMgr::CHostParticleSystemMgr()
{
	// The lists come from the schema, so the classes must be there before they are read.
	RegisterParticleFunctionClasses();
	const CSchemaSystemTypeScope *pScope = ParticleTypeScope();
	for ( int i = 0; i < pScope->GetClassCount(); ++i )
	{
		const CSchemaClassInfo *pClass = pScope->GetClass( i );
		ParticleFunctionType_t eType = GetFunctionClassType( pClass );
		if ( IsClassListType( eType ) )
			m_Classes[ eType ].push_back( pClass );
	}
}

ParticleFunctionType_t CHostParticleSystemMgr::GetFunctionClassType( const CSchemaClassInfo *pClass )
{
	// The family bases are no functions of their own.
	if ( !pClass || !pClass->CanCreate() )
		return PARTICLE_FUNCTION_ROOT;
	const CSchemaSystemTypeScope *pScope = pClass->GetTypeScope();
	for ( const ListBase_t &list : s_ListBases )
	{
		if ( strcmp( pClass->GetName(), list.m_pszBase ) == 0 )
			return PARTICLE_FUNCTION_ROOT;
	}
	for ( const ListBase_t &list : s_ListBases )
	{
		const CSchemaClassInfo *pBase = pScope ? pScope->FindDeclaredClass( list.m_pszBase ) : nullptr;
		if ( pBase && pClass->IsA( pBase ) )
			return list.m_eType;
	}
	return PARTICLE_FUNCTION_ROOT;
}

const CSchemaClassInfo *CHostParticleSystemMgr::GetFunctionClass( ParticleFunctionType_t eType, int nIndex ) const
{
	if ( !IsClassListType( eType ) || nIndex < 0 || nIndex >= static_cast<int>( m_Classes[ eType ].size() ) )
		return nullptr;
	return m_Classes[ eType ][ nIndex ];
}

int CHostParticleSystemMgr::GetFunctionCount( ParticleFunctionType_t eType ) const
{
	return IsClassListType( eType ) ? static_cast<int>( m_Classes[ eType ].size() ) : 0;
}

const char *CHostParticleSystemMgr::GetFunctionClassName( ParticleFunctionType_t eType, int nIndex ) const
{
	const CSchemaClassInfo *pClass = GetFunctionClass( eType, nIndex );
	return pClass ? pClass->GetName() : nullptr;
}

const char *CHostParticleSystemMgr::GetFunctionFriendlyName( ParticleFunctionType_t eType, int nIndex ) const
{
	const CSchemaClassInfo *pClass = GetFunctionClass( eType, nIndex );
	if ( !pClass )
		return nullptr;
	const SchemaMetadataEntry_t *pName = pClass->FindMetadata( "MPropertyFriendlyName" );
	return pName && pName->m_eType == SCHEMA_METADATA_STRING ? pName->m_pszValue : pClass->GetName();
}

int CHostParticleSystemMgr::GetFunctionExclusionGroup( ParticleFunctionType_t eType, int nIndex ) const
{
	const CSchemaClassInfo *pClass = GetFunctionClass( eType, nIndex );
	const SchemaMetadataEntry_t *pGroup = pClass ? pClass->FindMetadata( "MParticleExclusionGroup" ) : nullptr;
	return pGroup && pGroup->m_eType == SCHEMA_METADATA_INT ? static_cast<int>( pGroup->m_nValue ) : -2;
}

const char *CHostParticleSystemMgr::GetFunctionSchemaClass( ParticleFunctionType_t eType, int nIndex ) const
{
	// Each class is its own schema binding.
	return GetFunctionClassName( eType, nIndex );
}

int CHostParticleSystemMgr::GetCurrentBehaviorVersion() const
{
	return PARTICLE_CURRENT_BEHAVIOR_VERSION;
}

const char *CHostParticleSystemMgr::GetBehaviorVersionChange( int nVersion ) const
{
	return GetParticleBehaviorVersionChange( nVersion );
}

const char *CHostParticleSystemMgr::GetParticleAttributeName( int nAttribute ) const
{
	return ::GetParticleAttributeName( nAttribute );
}

void CHostParticleSystemMgr::GetFunctionControlPointUsage( const KeyValues3 *pFunction, CUtlVector<HostControlPointUsage_t> *pUsage ) const
{
	GetParticleFunctionControlPointUsage( pFunction, pUsage );
}

void CHostParticleSystemMgr::GetFunctionInfo( const KeyValues3 *pFunction, ParticleFunctionInfo_t *pInfo ) const
{
	if ( !pInfo )
		return;
	pInfo->m_nWrittenAttributes = 0;
	pInfo->m_AttributeUsage.RemoveAll();
	pInfo->m_ControlPointUses.RemoveAll();
	if ( !pFunction || !pFunction->IsTable() )
		return;
	GetParticleFunctionControlPointUses( pFunction, &pInfo->m_ControlPointUses );
	const CSchemaClassInfo *pClass = ParticleTypeScope()->FindDeclaredClass( pFunction->GetMemberString( "_class", "" ) );
	if ( !IsClassListType( GetFunctionClassType( pClass ) ) )
		return;

	if ( const SchemaMetadataEntry_t *pWritten = pClass->FindMetadata( "MParticleWrittenAttributes" ) )
		pInfo->m_nWrittenAttributes |= static_cast<uint64_t>( pWritten->m_nValue );

	std::vector<const CSchemaClassField *> fields;
	pClass->GetAllFields( fields );
	for ( const CSchemaClassField *pField : fields )
	{
		const bool bOutput = pField->HasMetadata( "MParticleOutputField" );
		const SchemaMetadataEntry_t *pUsage = pField->FindMetadata( "MParticleAttributeUsage" );
		const SchemaMetadataEntry_t *pComponents = pField->FindMetadata( "MParticleAttributeUsageComponents" );
		if ( !bOutput && !pUsage && !pComponents )
			continue;
		const int nAttribute = AttributeFieldValue( pFunction, pClass, pField->GetName() );
		if ( nAttribute < 0 || nAttribute >= PARTICLE_ATTRIBUTE_COUNT )
			continue;
		if ( bOutput )
			pInfo->m_nWrittenAttributes |= ParticleAttributeBit( nAttribute );
		if ( pUsage )
		{
			ParticleAttributeUsage_t &usage = pInfo->m_AttributeUsage[ pInfo->m_AttributeUsage.AddToTail() ];
			usage.m_nAttribute = nAttribute;
			usage.m_Text.Set( pUsage->m_pszValue );
		}
		if ( pComponents )
			AddComponentUsage( nAttribute, pComponents->m_pszValue, pInfo );
	}
}

IParticleCollection *CHostParticleSystemMgr::CreateParticleCollection( const std::shared_ptr<const CParticleRuntimeDefinition> &pDefinition, uint64_t nSeed )
{
	if ( !pDefinition )
		return nullptr;
	IParticleCollection *pCollection = ::CreateParticleCollection( pDefinition, nSeed ).release();
	std::lock_guard lock( m_CollectionsMutex );
	m_Collections.push_back( pCollection );
	return pCollection;
}

void CHostParticleSystemMgr::DestroyParticleCollection( IParticleCollection *pCollection )
{
	if ( !pCollection )
		return;
	{
		std::lock_guard lock( m_CollectionsMutex );
		auto it = std::find( m_Collections.begin(), m_Collections.end(), pCollection );
		if ( it == m_Collections.end() )
			return;
		*it = m_Collections.back();
		m_Collections.pop_back();
	}
	delete pCollection;
}

int CHostParticleSystemMgr::GetLiveCollectionCount() const
{
	std::lock_guard lock( m_CollectionsMutex );
	return int( m_Collections.size() );
}

std::shared_ptr<const CParticleRuntimeDefinition> CHostParticleSystemMgr::FindParticleSystemDefinition( const char *pName )
{
	CUtlString strError;
	ParticleDefinitionPtr_t pDefinition = m_fnFindDefinition ? m_fnFindDefinition( pName, &strError ) : ::FindParticleSystemDefinition( pName, &strError );
	if ( !pDefinition )
		LoggingSystem_LogOnceByKey( LOG_GENERAL, LS_WARNING, pName ? pName : "", "Unable to find particle system '%s': %s\n", pName ? pName : "", strError.Get() );
	return pDefinition;
}

void CHostParticleSystemMgr::DumpParticleList( const char *pSubstring, bool bSimulating ) const
{
	std::lock_guard lock( m_CollectionsMutex );
	Msg( "%s particle systems%s%s:\n", bSimulating ? "Simulating" : "Live", pSubstring ? " matching " : "", pSubstring ? pSubstring : "" );
	int nListed = 0;
	for ( const IParticleCollection *pCollection : m_Collections )
	{
		const char *pName = pCollection->GetDefinition() ? pCollection->GetDefinition()->m_Name.Get() : "";
		if ( pSubstring && *pSubstring && !V_stristr_fast( pName, pSubstring ) )
			continue;
		// A finished collection no longer steps.
		if ( bSimulating && pCollection->IsFinished() )
			continue;
		Msg( "  %-40s time %7.2f  particles %6d (with children %6d)  allocated %6d\n", pName, pCollection->GetCurrentTime(), pCollection->GetActiveParticleCount( false ),
			pCollection->GetActiveParticleCount( true ), pCollection->GetAllocatedParticleCount() );
		++nListed;
	}
	Msg( "%d listed\n", nListed );
}

CHostParticleSystemMgr *HostParticleSystemMgrRuntime()
{
	RegisterParticleFunctionClasses();
	static CHostParticleSystemMgr s_Mgr;
	return &s_Mgr;
}

IParticleSystemMgr *HostParticleSystemMgr()
{
	return HostParticleSystemMgrRuntime();
}
