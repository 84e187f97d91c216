#include "zoldoc_lib/zolfunctionoffers.h"

#include "core/particles/iparticlesystemmgr.h"
#include "core/schema/schemaclassinfo.h"
#include "core/text/strtools.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"
#include "zoldoc_lib/zolfunctionpresets.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
constexpr int FIRST_EXCLUSION_GROUP = -2;
constexpr const char *s_ExclusionGroupWords[] = { "Generic", "Singleton", "Position", "Radius", "Alpha", "Tint", "Rotation", "Yaw" };
constexpr int EXCLUSION_GROUP_COUNT = int( sizeof( s_ExclusionGroupWords ) / sizeof( s_ExclusionGroupWords[ 0 ] ) ) + FIRST_EXCLUSION_GROUP;

// The manager's index of a class of the type, ignoring case; -1 when none.
int FindClassIgnoringCase( const IParticleSystemMgr *pMgr, ParticleFunctionType_t eType, const char *pClass )
{
	for ( int i = 0; i < pMgr->GetFunctionCount( eType ); ++i )
	{
		if ( !V_stricmp_fast( pMgr->GetFunctionClassName( eType, i ), pClass ) )
			return i;
	}
	return -1;
}

bool IsHiddenForGame( const char *pGameName, const char *pFriendlyName )
{
	if ( !pGameName || V_strcmp( pGameName, "nuba" ) )
		return false;
	return !V_strcmp( pFriendlyName, "Render fog sprites" ) || !V_strcmp( pFriendlyName, "Movement lag compensation" );
}

bool IsOfferedAtVersion( const CSchemaClassInfo *pSchemaClass, int nVersion )
{
	if ( !pSchemaClass )
		return true;
	const SchemaMetadataEntry_t *pMin = pSchemaClass->FindMetadata( "MParticleMinVersion" );
	const SchemaMetadataEntry_t *pMax = pSchemaClass->FindMetadata( "MParticleMaxVersion" );
	if ( pMin && pMin->m_eType == SCHEMA_METADATA_INT && pMin->m_nValue >= 0 && nVersion < pMin->m_nValue )
		return false;
	if ( pMax && pMax->m_eType == SCHEMA_METADATA_INT && pMax->m_nValue >= 0 && nVersion > pMax->m_nValue )
		return false;
	return true;
}
} // namespace

const char *GetParticleExclusionGroupWord( int nGroup )
{
	if ( nGroup < FIRST_EXCLUSION_GROUP || nGroup >= EXCLUSION_GROUP_COUNT )
		return "";
	return s_ExclusionGroupWords[ nGroup - FIRST_EXCLUSION_GROUP ];
}

void GetParticleFunctionOffers( const CZolRootNode *pRoot, ParticleFunctionType_t eType, int nVersion, const char *pGameName,
	CUtlVector<ZolFunctionOffer_t> *pOffers )
{
	pOffers->RemoveAll();
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	if ( !pMgr || eType < 0 || eType >= PARTICLE_FUNCTION_CLASS_LIST_COUNT )
		return;

	// Which groups the list uses, and by whom: the last user of a group names it.
	CUtlString groupUsers[ EXCLUSION_GROUP_COUNT ];
	bool bGroupUsed[ EXCLUSION_GROUP_COUNT ] = {};
	const int nNodeCount = pRoot ? pRoot->GetNodeCount( eType ) : 0;
	for ( int i = 0; i < nNodeCount; ++i )
	{
		int nIndex = FindClassIgnoringCase( pMgr, eType, pRoot->GetNode( eType, i )->GetClassName() );
		if ( nIndex < 0 )
			continue;
		int nGroup = pMgr->GetFunctionExclusionGroup( eType, nIndex );
		if ( nGroup < 0 || nGroup >= EXCLUSION_GROUP_COUNT )
			continue;
		bGroupUsed[ nGroup ] = true;
		groupUsers[ nGroup ].Set( pMgr->GetFunctionFriendlyName( eType, nIndex ) );
	}

	for ( const ZolFunctionPreset_t &preset : GetParticleFunctionPresets() )
	{
		if ( preset.m_eType != eType || !IsFunctionValidForVersion( eType, preset.m_pClass, nVersion ) )
			continue;
		ZolFunctionOffer_t &offer = pOffers->Element( pOffers->AddToTail() );
		offer.m_ClassName.Set( preset.m_pClass );
		offer.m_FriendlyName.Set( preset.m_pName );
		offer.m_Text.Set( preset.m_pName );
		offer.m_Description.Set( preset.m_pDescription );
		offer.m_pPreset = &preset;
	}

	for ( int i = 0; i < pMgr->GetFunctionCount( eType ); ++i )
	{
		const char *pClass = pMgr->GetFunctionClassName( eType, i );
		const char *pFriendly = pMgr->GetFunctionFriendlyName( eType, i );
		const CSchemaClassInfo *pSchemaClass = FindParticleFunctionSchemaClass( eType, pClass );
		if ( pSchemaClass && pSchemaClass->HasMetadata( "MObsoleteParticleFunction" ) )
			continue;
		if ( !IsOfferedAtVersion( pSchemaClass, nVersion ) || IsHiddenForGame( pGameName, pFriendly ) )
			continue;

		ZolFunctionOffer_t &offer = pOffers->Element( pOffers->AddToTail() );
		offer.m_ClassName.Set( pClass );
		offer.m_FriendlyName.Set( pFriendly );
		offer.m_Text.Set( pFriendly );
		offer.m_nExclusionGroup = pMgr->GetFunctionExclusionGroup( eType, i );
		if ( pSchemaClass )
		{
			if ( const SchemaMetadataEntry_t *pDescription = pSchemaClass->FindMetadata( "MPropertyDescription" ) )
				offer.m_Description.Set( pDescription->m_eType == SCHEMA_METADATA_STRING ? pDescription->m_pszValue : "" );
		}
		const int nGroup = offer.m_nExclusionGroup;
		if ( nGroup >= 0 && nGroup < EXCLUSION_GROUP_COUNT && bGroupUsed[ nGroup ] )
		{
			offer.m_Text.Format( "%s (%s used by '%s')", pFriendly, GetParticleExclusionGroupWord( nGroup ), groupUsers[ nGroup ].Get() );
		}
		else if ( nGroup == -1 && pRoot && pRoot->FindFunction( eType, pClass ) >= 0 )
		{
			offer.m_Text.Format( "%s: Only one allowed", pFriendly );
			offer.m_bEnabled = false;
		}
	}
}
