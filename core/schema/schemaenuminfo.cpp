#include "core/schema/schemaenuminfo.h"

#include <strings.h>

#include "core/schema/schemasystemtypescope.h"

CSchemaEnumInfo::CSchemaEnumInfo( CSchemaSystemTypeScope *pScope, const char *pszName )
	: m_Name( pszName ), m_Module( pScope ? pScope->GetScopeName() : "" )
{
}

const SchemaEnumeratorInfo_t *CSchemaEnumInfo::FindEnumeratorByName( const char *pszName ) const
{
	for ( const SchemaEnumeratorInfo_t &enumerator : m_Enumerators )
	{
		if ( strcasecmp( enumerator.m_pszName, pszName ) == 0 )
			return &enumerator;
	}
	return nullptr;
}

const SchemaEnumeratorInfo_t *CSchemaEnumInfo::FindEnumeratorByValue( int64_t nValue ) const
{
	for ( const SchemaEnumeratorInfo_t &enumerator : m_Enumerators )
	{
		if ( enumerator.m_nValue == nValue )
			return &enumerator;
	}
	return nullptr;
}

SchemaEnumeratorInfo_t &CSchemaEnumInfo::AddEnumerator( const char *pszName, int64_t nValue )
{
	SchemaEnumeratorInfo_t &enumerator = m_Enumerators.emplace_back();
	enumerator.m_pszName = pszName;
	enumerator.m_nValue = nValue;
	return enumerator;
}
