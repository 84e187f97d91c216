#pragma once
// The types of one module: declared classes and enumerations by name, and the type
// descriptors their fields use (one per type name).

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemaenuminfo.h"
#include "core/schema/schematype.h"
#include "core/text/utlstring.h"

class CSchemaSystemTypeScope
{
public:
	explicit CSchemaSystemTypeScope( const char *pszModule ) : m_ModuleName( pszModule ) {}
	CSchemaSystemTypeScope( const CSchemaSystemTypeScope & ) = delete;
	CSchemaSystemTypeScope &operator=( const CSchemaSystemTypeScope & ) = delete;

	const char *GetScopeName() const { return m_ModuleName.Get(); }

	// Exact in case, as class names are code names.
	CSchemaClassInfo *FindDeclaredClass( const char *pszName ) const;
	CSchemaEnumInfo *FindDeclaredEnum( const char *pszName ) const;
	// Classes in the order they were registered.
	int GetClassCount() const { return static_cast<int>( m_ClassOrder.size() ); }
	CSchemaClassInfo *GetClass( int nIndex ) const { return m_ClassOrder[ nIndex ]; }
	int GetEnumCount() const { return static_cast<int>( m_EnumOrder.size() ); }
	CSchemaEnumInfo *GetEnum( int nIndex ) const { return m_EnumOrder[ nIndex ]; }

	// Registration: null when the name is taken.
	CSchemaClassInfo *CreateClass( const char *pszName );
	CSchemaEnumInfo *CreateEnum( const char *pszName );

	// Type descriptors, made on first request.
	const CSchemaType *GetBuiltinType( SchemaBuiltinType_t eType );
	// The named atomics without parameters: Vector, Vector2D, Vector4D, QAngle, Color,
	// CUtlString, CResourceName, KeyValues3.
	const CSchemaType *GetAtomicType( SchemaAtomicType_t eType );
	const CSchemaType *GetClassType( const CSchemaClassInfo *pClass );
	const CSchemaType *GetEnumType( const CSchemaEnumInfo *pEnum );
	const CSchemaType *GetPolymorphicPtrType( const CSchemaClassInfo *pBaseClass );
	const CSchemaType *GetFixedArrayType( const CSchemaType *pElement, int nCount, size_t nSize );
	const CSchemaType *GetCollectionType( const CSchemaType *pElement, size_t nSize );
	const CSchemaType *GetMapType( const CSchemaType *pKey, const CSchemaType *pValue, size_t nSize );
	const CSchemaType *GetOptionalType( const CSchemaType *pElement, size_t nSize );
	const CSchemaType *GetResourceHandleType( const char *pszResourceType, size_t nSize );
	// A typed data reference by element type; with an empty element type, by scope number.
	const CSchemaType *GetTypedDataRefType( const char *pszElementType, int nScope, size_t nSize );

private:
	CSchemaType *FindOrAddType( const CUtlString &name, bool *pCreated );

	CUtlString m_ModuleName;
	std::map<std::string, std::unique_ptr<CSchemaClassInfo>, std::less<>> m_Classes;
	std::vector<CSchemaClassInfo *> m_ClassOrder;
	std::map<std::string, std::unique_ptr<CSchemaEnumInfo>, std::less<>> m_Enums;
	std::vector<CSchemaEnumInfo *> m_EnumOrder;
	std::map<std::string, std::unique_ptr<CSchemaType>, std::less<>> m_Types;
};
