#include "zoldoc_lib/particledomains.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "core/keyvalues/keyvalues.h"
#include "core/kv3/keyvalues3.h"
#include "core/text/strtools.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"

namespace
{
ParticleDomain_t *FindOrAddDomain( CUtlVector<ParticleDomain_t> *pDomains, const char *pInternalName )
{
	for ( ParticleDomain_t &domain : *pDomains )
	{
		if ( domain.m_InternalName == pInternalName )
			return &domain;
	}
	ParticleDomain_t &domain = pDomains->Element( pDomains->AddToTail() );
	domain.m_InternalName.Set( pInternalName );
	return &domain;
}

int ReadPulseType( const KeyValues3 *pParam )
{
	CPulseValueFullType type;
	const char *pText = pParam->IsTable() ? pParam->GetMemberString( "type", "" ) : pParam->IsString() ? pParam->GetString() : "";
	return type.FromString( pText ) ? int( type.GetBaseType() ) : int( PVAL_UNKNOWN );
}

void AddReport( CUtlString *pReport, const char *pText )
{
	if ( pReport )
		pReport->Append( pText );
}
} // namespace

void CollectParticleDomains( const CGameData &bindings, CUtlVector<ParticleDomain_t> *pDomains )
{
	for ( int i = 0; i < bindings.GetClassCount(); ++i )
	{
		const CGameDataClass *pClass = bindings.GetClass( i );
		const KeyValues3 &meta = pClass->m_MetaData;
		const char *pInternalName = meta.GetMemberString( "particle_domain_internal_name", "" );
		if ( !meta.GetMemberBool( "is_pulse_hook" ) || !*pInternalName )
			continue;
		ParticleDomain_t *pDomain = FindOrAddDomain( pDomains, pInternalName );
		if ( const char *pUIName = meta.GetMemberString( "particle_domain_ui_name", "" ); *pUIName )
			pDomain->m_UIName.Set( pUIName );
		else if ( pDomain->m_UIName.IsEmpty() )
			pDomain->m_UIName.Set( pInternalName );

		const KeyValues3 *pParams = meta.FindMember( "pulse_outparams" );
		if ( !pParams || !pParams->IsTable() )
			continue;
		for ( int nParam = 0; nParam < pParams->GetMemberCount(); ++nParam )
		{
			const KeyValues3 *pParam = pParams->GetMember( nParam );
			ParticleDomainLeaf_t leaf;
			leaf.m_InternalPath.Set( pParams->GetMemberName( nParam ) );
			const char *pFriendly = pParam->IsTable() ? pParam->GetMemberString( "friendly_name", "" ) : "";
			leaf.m_UIPath.Set( *pFriendly ? pFriendly : leaf.m_InternalPath.Get() );
			leaf.m_Description.Set( pParam->IsTable() ? pParam->GetMemberString( "description", "" ) : "" );
			leaf.m_nPulseType = ReadPulseType( pParam );
			pDomain->m_Leaves.AddToTail( leaf );
		}
	}
}

void LoadParticleDomains( const char *pGameRoot, CUtlVector<ParticleDomain_t> *pDomains, CUtlString *pReport )
{
	if ( !pGameRoot || !*pGameRoot )
		return;
	KeyValues gameInfo;
	std::filesystem::path gameInfoPath = std::filesystem::path( pGameRoot ) / "gameinfo.gi";
	if ( !gameInfo.LoadFromFile( gameInfoPath.string().c_str() ) )
		return;
	const KeyValues *pBlock = gameInfo.FindKey( "Brakel" );
	const KeyValues *pFiles = pBlock ? pBlock->FindKey( "pulse_bindings" ) : nullptr;
	if ( !pFiles )
		return;

	CUtlVector<CUtlString> fileNames;
	if ( !pFiles->HasSubKeys() && *pFiles->GetString() )
		fileNames.AddToTail( CUtlString( pFiles->GetString() ) );
	for ( const KeyValues *pFile = pFiles->GetFirstSubKey(); pFile; pFile = pFile->GetNextKey() )
	{
		if ( !pFile->HasSubKeys() && *pFile->GetString() )
			fileNames.AddToTail( CUtlString( pFile->GetString() ) );
	}

	for ( const CUtlString &fileName : fileNames )
	{
		// Each file reads into its own set: binding classes are not particle classes.
		CGameData bindings;
		CFgdReader reader( &bindings, pGameRoot );
		if ( !reader.LoadGameData( fileName.Get() ) )
		{
			CUtlString text;
			text.Format( "Failed to load particle domain bindings '%s'.\n", fileName.Get() );
			AddReport( pReport, text.Get() );
			for ( const GameDataError_t &error : bindings.GetErrors() )
				AddReport( pReport, error.m_Text.Get() );
		}
		CollectParticleDomains( bindings, pDomains );
	}
}

void AddParticleDomainClasses( CGameData *pTable, const CUtlVector<ParticleDomain_t> &domains, CUtlVector<const CGameDataClass *> *pSorted )
{
	for ( const ParticleDomain_t &domain : domains )
	{
		CGameDataClass *pClass = pTable->CreateClassRecord();
		pClass->m_nClassType = GDCLASS_STRUCT;
		pClass->m_Name = domain.m_InternalName;
		pClass->m_FriendlyName = domain.m_UIName;
		if ( !pClass->m_MetaData.IsTable() )
			pClass->m_MetaData.SetToEmptyTable();
		KeyValues3 *pTag = pClass->m_MetaData.SetMemberEmptyTable( "MParticleDomainTag" );
		pTag->SetMemberString( "UIName", domain.m_UIName.Get() );
		pTag->SetMemberString( "InternalName", domain.m_InternalName.Get() );

		std::vector<const ParticleDomainLeaf_t *> leaves;
		for ( const ParticleDomainLeaf_t &leaf : domain.m_Leaves )
			leaves.push_back( &leaf );
		std::stable_sort( leaves.begin(), leaves.end(),
			[]( const ParticleDomainLeaf_t *a, const ParticleDomainLeaf_t *b ) { return V_stricmp_fast( a->m_UIPath.Get(), b->m_UIPath.Get() ) < 0; } );
		KeyValues3 *pDeclarations = pClass->m_MetaData.SetMemberEmptyArray( "MParticleNamedValueDeclaration" );
		for ( const ParticleDomainLeaf_t *pLeaf : leaves )
		{
			KeyValues3 *pEntry = pDeclarations->ArrayAddToTail();
			pEntry->SetToEmptyTable();
			pEntry->SetMemberString( "UIPath", pLeaf->m_UIPath.Get() );
			pEntry->SetMemberString( "InternalPath", pLeaf->m_InternalPath.Get() );
			pEntry->SetMemberString( "Description", pLeaf->m_Description.Get() );
			pEntry->SetMemberInt( "PulseType", pLeaf->m_nPulseType );
		}

		// A name the table has already (a real class) keeps its class; the domain is lost.
		if ( pTable->AddClass( pClass ) && pSorted )
			pSorted->AddToTail( pClass );
	}
	if ( pSorted )
	{
		std::stable_sort( pSorted->begin(), pSorted->end(),
			[]( const CGameDataClass *a, const CGameDataClass *b ) { return V_strcmp( a->m_FriendlyName.Get(), b->m_FriendlyName.Get() ) < 0; } );
	}
}
