#include "zoldoc_lib/particlefgdfromschema.h"

#include "core/schema/schemaclassinfo.h"
#include "tools/toolutils2/fgd/gamedatavariable.h"

CGameDataVariable *CParticleFgdFromSchema::ConvertField( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass, const CSchemaClassField &field, CUtlString *pCurrentGroup )
{
	CGameDataVariable *pVar = CZolFgdFromSchema::ConvertField( pClass, pSchemaClass, field, pCurrentGroup );
	if ( !pVar )
		return nullptr;
	// A limit stored as -1 means the field has none; the panel must not hide it.
	for ( const char *pKey : { "particle_min_version", "particle_max_version" } )
	{
		if ( pVar->HasMetadata( pKey ) && pVar->m_KV3Metadata.GetMemberInt64( pKey ) < 0 )
			pVar->m_KV3Metadata.RemoveMember( pKey );
	}
	return pVar;
}
