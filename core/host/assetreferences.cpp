#include "core/host/assetreferences.h"

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"

void CollectParticleSystemChildRefs( const KeyValues3 &definition, CUtlVector<CUtlString> *pNames )
{
	const KeyValues3 *pChildren = definition.IsTable() ? definition.FindMember( "m_Children" ) : nullptr;
	if ( !pChildren || !pChildren->IsArray() )
		return;
	for ( int i = 0; i < pChildren->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pChild = pChildren->GetArrayElement( i );
		if ( !pChild || !pChild->IsTable() )
			continue;
		const KeyValues3 *pRef = pChild->FindMember( "m_ChildRef" );
		if ( pRef && pRef->IsString() && *pRef->GetString() )
			pNames->AddToTail( CUtlString( pRef->GetString() ) );
	}
}

bool CollectAssetReferences( ResourceType_t nType, const CUtlBuffer &source, CUtlVector<CUtlString> *pNames, CUtlString *pError )
{
	if ( nType != RESOURCE_TYPE_PARTICLE_SYSTEM )
		return true;
	KeyValues3 definition;
	CUtlBuffer reader( source.Base(), source.TellPut() );
	if ( !LoadKV3( &definition, pError, &reader, KV3_FORMAT_TFXS ) )
		return false;
	CollectParticleSystemChildRefs( definition, pNames );
	return true;
}
