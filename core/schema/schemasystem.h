#pragma once
// The process-wide schema: type scopes by module name, and the class of a C++ type so that
// a polymorphic object can be saved under its real class name.

#include <map>
#include <memory>
#include <string>
#include <typeindex>

class CSchemaSystemTypeScope;
class CSchemaClassInfo;

class CSchemaSystem
{
public:
	// Null when no module of that name registered anything.
	CSchemaSystemTypeScope *FindTypeScopeForModule( const char *pszModule ) const;
	CSchemaSystemTypeScope *FindOrCreateTypeScopeForModule( const char *pszModule );

	// The class registered first for the C++ type, in any scope; null when none was.
	const CSchemaClassInfo *FindClassByTypeInfo( const std::type_info &typeInfo ) const;
	void RegisterTypeInfo( const std::type_info &typeInfo, const CSchemaClassInfo *pClass );

private:
	std::map<std::string, std::unique_ptr<CSchemaSystemTypeScope>, std::less<>> m_Scopes;
	std::map<std::type_index, const CSchemaClassInfo *> m_ClassesByType;
};

// The one schema of the process. Registration happens on the main thread at start-up.
CSchemaSystem *SchemaSystem();
