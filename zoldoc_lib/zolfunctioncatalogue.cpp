#include "zoldoc_lib/zolfunctioncatalogue.h"

#include "core/kv3/keyvalues3.h"
#include "core/text/strtools.h"
#include "core/particles/iparticlesystemmgr.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolrootnode.h"

int FindParticleFunctionClass( ParticleFunctionType_t eType, const char *pClass )
{
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	if ( !pMgr || !pClass )
		return -1;
	for ( int i = 0; i < pMgr->GetFunctionCount( eType ); ++i )
	{
		if ( !V_strcmp( pMgr->GetFunctionClassName( eType, i ), pClass ) )
			return i;
	}
	return -1;
}

bool IsFunctionValidForVersion( ParticleFunctionType_t eType, const char *pClass, int )
{
	// Version ranges come from the schema's metadata; without them a listed class is
	// valid at every version.
	return FindParticleFunctionClass( eType, pClass ) >= 0;
}

const char *GetParticleFunctionFriendlyName( const char *pClass )
{
	if ( !pClass )
		return "";
	if ( const IParticleSystemMgr *pMgr = GetParticleSystemMgr() )
	{
		for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
		{
			int nIndex = FindParticleFunctionClass( ParticleFunctionType_t( nType ), pClass );
			if ( nIndex >= 0 )
				return pMgr->GetFunctionFriendlyName( ParticleFunctionType_t( nType ), nIndex );
		}
	}
	return pClass;
}

void ImprintParticleClass( KeyValues3 *pTable, const char *pClassName )
{
	// The two classes the document itself fills have their members known here; the
	// others get theirs from the schema's class table.
	if ( !V_strcmp( pClassName, "ParticleChildrenInfo_t" ) )
	{
		pTable->SetMemberString( "m_ChildRef", "" );
		pTable->SetMemberFloat( "m_flDelay", 0.0f );
		pTable->SetMemberBool( "m_bEndCap", false );
		pTable->SetMemberBool( "m_bDisableChild", false );
	}
	else if ( !V_strcmp( pClassName, "ParticleNamedValueSource_t" ) )
	{
		pTable->SetMemberString( "m_Name", "" );
		pTable->SetMemberBool( "m_IsPublic", false );
	}
	else if ( !pTable->IsTable() )
	{
		pTable->SetToEmptyTable();
	}
}

void ApplyDefaultArrayRule( CZolRootNode *, ParticleFunctionType_t, CZolFunctionNode * )
{
	// Which arrays need an entry is field metadata of the schema; none is known yet.
}

void SanitiseFunctionFields( CZolFunctionNode *, int )
{
	// Field version ranges are schema metadata; without them every field stands.
}

void SanitiseForVersion( CZolRootNode *pRoot, int nVersion )
{
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		for ( int i = pRoot->GetNodeCount( eType ) - 1; i >= 0; --i )
		{
			CBaseZolNode *pNode = pRoot->GetNode( eType, i );
			if ( !IsFunctionValidForVersion( eType, pNode->GetClassName(), nVersion ) )
			{
				pRoot->RemoveFunctionNode( eType, pNode );
				continue;
			}
			SanitiseFunctionFields( pNode->AsFunctionNode(), nVersion );
		}
	}
}

void UpdateRootVersion( CZolRootNode *pRoot )
{
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	int nCurrent = pMgr ? pMgr->GetCurrentBehaviorVersion() : 0;
	KeyValues3 *pTable = pRoot->GetWriteKV3();
	if ( pTable->GetMemberInt( "m_nBehaviorVersion" ) == nCurrent )
		return;
	SanitiseForVersion( pRoot, nCurrent );
	pTable->SetMemberInt( "m_nBehaviorVersion", nCurrent );
}
