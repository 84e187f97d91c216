#include "core/schema/schemasystem.h"

#include "core/schema/schemasystemtypescope.h"

CSchemaSystemTypeScope *CSchemaSystem::FindTypeScopeForModule( const char *pszModule ) const
{
	auto it = m_Scopes.find( std::string_view( pszModule ? pszModule : "" ) );
	return it != m_Scopes.end() ? it->second.get() : nullptr;
}

CSchemaSystemTypeScope *CSchemaSystem::FindOrCreateTypeScopeForModule( const char *pszModule )
{
	if ( CSchemaSystemTypeScope *pScope = FindTypeScopeForModule( pszModule ) )
		return pScope;
	auto pScope = std::make_unique<CSchemaSystemTypeScope>( pszModule ? pszModule : "" );
	CSchemaSystemTypeScope *pResult = pScope.get();
	m_Scopes.emplace( pResult->GetScopeName(), std::move( pScope ) );
	return pResult;
}

const CSchemaClassInfo *CSchemaSystem::FindClassByTypeInfo( const std::type_info &typeInfo ) const
{
	auto it = m_ClassesByType.find( std::type_index( typeInfo ) );
	return it != m_ClassesByType.end() ? it->second : nullptr;
}

void CSchemaSystem::RegisterTypeInfo( const std::type_info &typeInfo, const CSchemaClassInfo *pClass )
{
	m_ClassesByType.emplace( std::type_index( typeInfo ), pClass );
}

CSchemaSystem *SchemaSystem()
{
	static CSchemaSystem s_SchemaSystem;
	return &s_SchemaSystem;
}
