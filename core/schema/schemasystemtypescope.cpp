#include "core/schema/schemasystemtypescope.h"

#include <cstring>

#include "core/kv3/kv3membername.h"

const char *SchemaBuiltinTypeName( SchemaBuiltinType_t eType )
{
	static const char *const s_Names[ SCHEMA_BUILTIN_COUNT ] = {
		"bool", "char", "int8", "uint8", "int16", "uint16", "int32", "uint32", "int64", "uint64", "float32", "float64",
	};
	return eType < SCHEMA_BUILTIN_COUNT ? s_Names[ eType ] : "invalid";
}

static size_t BuiltinSize( SchemaBuiltinType_t eType )
{
	switch ( eType )
	{
	case SCHEMA_BUILTIN_BOOL:
	case SCHEMA_BUILTIN_CHAR:
	case SCHEMA_BUILTIN_INT8:
	case SCHEMA_BUILTIN_UINT8: return 1;
	case SCHEMA_BUILTIN_INT16:
	case SCHEMA_BUILTIN_UINT16: return 2;
	case SCHEMA_BUILTIN_INT32:
	case SCHEMA_BUILTIN_UINT32:
	case SCHEMA_BUILTIN_FLOAT32: return 4;
	default: return 8;
	}
}

CSchemaClassInfo *CSchemaSystemTypeScope::FindDeclaredClass( const char *pszName ) const
{
	auto it = m_Classes.find( std::string_view( pszName ? pszName : "" ) );
	return it != m_Classes.end() ? it->second.get() : nullptr;
}

CSchemaEnumInfo *CSchemaSystemTypeScope::FindDeclaredEnum( const char *pszName ) const
{
	auto it = m_Enums.find( std::string_view( pszName ? pszName : "" ) );
	return it != m_Enums.end() ? it->second.get() : nullptr;
}

CSchemaClassInfo *CSchemaSystemTypeScope::CreateClass( const char *pszName )
{
	if ( !pszName || !*pszName || FindDeclaredClass( pszName ) )
		return nullptr;
	auto pClass = std::make_unique<CSchemaClassInfo>( this, pszName );
	CSchemaClassInfo *pResult = pClass.get();
	m_Classes.emplace( pszName, std::move( pClass ) );
	m_ClassOrder.push_back( pResult );
	return pResult;
}

CSchemaEnumInfo *CSchemaSystemTypeScope::CreateEnum( const char *pszName )
{
	if ( !pszName || !*pszName || FindDeclaredEnum( pszName ) )
		return nullptr;
	auto pEnum = std::make_unique<CSchemaEnumInfo>( this, pszName );
	CSchemaEnumInfo *pResult = pEnum.get();
	m_Enums.emplace( pszName, std::move( pEnum ) );
	m_EnumOrder.push_back( pResult );
	return pResult;
}

CSchemaType *CSchemaSystemTypeScope::FindOrAddType( const CUtlString &name, bool *pCreated )
{
	auto it = m_Types.find( name.View() );
	*pCreated = it == m_Types.end();
	if ( !*pCreated )
		return it->second.get();
	auto pType = std::make_unique<CSchemaType>();
	pType->m_Name = name;
	pType->m_nNameHash = MurmurHash2LowerCase( name.Get(), name.Length(), KV3_MEMBER_NAME_SEED );
	CSchemaType *pResult = pType.get();
	m_Types.emplace( name.Storage(), std::move( pType ) );
	return pResult;
}

const CSchemaType *CSchemaSystemTypeScope::GetBuiltinType( SchemaBuiltinType_t eType )
{
	bool bCreated;
	CSchemaType *pType = FindOrAddType( SchemaBuiltinTypeName( eType ), &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_BUILTIN;
		pType->m_eBuiltin = eType;
		pType->m_nSize = BuiltinSize( eType );
	}
	return pType;
}

const CSchemaType *CSchemaSystemTypeScope::GetAtomicType( SchemaAtomicType_t eType )
{
	struct NamedAtomic_t
	{
		SchemaAtomicType_t m_eType;
		const char *m_pszName;
		size_t m_nSize;
	};
	static const NamedAtomic_t s_Named[] = {
		{ SCHEMA_ATOMIC_VECTOR, "Vector", 12 },
		{ SCHEMA_ATOMIC_VECTOR2D, "Vector2D", 8 },
		{ SCHEMA_ATOMIC_VECTOR4D, "Vector4D", 16 },
		{ SCHEMA_ATOMIC_QANGLE, "QAngle", 12 },
		{ SCHEMA_ATOMIC_COLOR, "Color", 4 },
		{ SCHEMA_ATOMIC_STRING, "CUtlString", sizeof( CUtlString ) },
		{ SCHEMA_ATOMIC_RESOURCE_NAME, "CResourceName", sizeof( CUtlString ) },
		{ SCHEMA_ATOMIC_KV3, "KeyValues3", 16 },
	};
	for ( const NamedAtomic_t &named : s_Named )
	{
		if ( named.m_eType != eType )
			continue;
		bool bCreated;
		CSchemaType *pType = FindOrAddType( named.m_pszName, &bCreated );
		if ( bCreated )
		{
			pType->m_eCategory = SCHEMA_TYPE_ATOMIC;
			pType->m_eAtomic = eType;
			pType->m_nSize = named.m_nSize;
		}
		return pType;
	}
	return nullptr; // the parameterised atomics have their own getters
}

const CSchemaType *CSchemaSystemTypeScope::GetClassType( const CSchemaClassInfo *pClass )
{
	bool bCreated;
	CSchemaType *pType = FindOrAddType( pClass->GetName(), &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_DECLARED_CLASS;
		pType->m_pClass = pClass;
		pType->m_nSize = pClass->GetSize();
	}
	return pType;
}

const CSchemaType *CSchemaSystemTypeScope::GetEnumType( const CSchemaEnumInfo *pEnum )
{
	bool bCreated;
	CSchemaType *pType = FindOrAddType( pEnum->GetName(), &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_DECLARED_ENUM;
		pType->m_pEnum = pEnum;
		pType->m_nSize = pEnum->GetSize();
	}
	return pType;
}

const CSchemaType *CSchemaSystemTypeScope::GetPolymorphicPtrType( const CSchemaClassInfo *pBaseClass )
{
	CUtlString name;
	name.Format( "%s*", pBaseClass->GetName() );
	bool bCreated;
	CSchemaType *pType = FindOrAddType( name, &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_POLYMORPHIC_PTR;
		pType->m_pClass = pBaseClass;
		pType->m_pElement = GetClassType( pBaseClass );
		pType->m_nSize = sizeof( void * );
	}
	return pType;
}

const CSchemaType *CSchemaSystemTypeScope::GetFixedArrayType( const CSchemaType *pElement, int nCount, size_t nSize )
{
	CUtlString name;
	name.Format( "%s[%d]", pElement->GetName(), nCount );
	bool bCreated;
	CSchemaType *pType = FindOrAddType( name, &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_FIXED_ARRAY;
		pType->m_pElement = pElement;
		pType->m_nCount = nCount;
		pType->m_nSize = nSize;
	}
	return pType;
}

const CSchemaType *CSchemaSystemTypeScope::GetCollectionType( const CSchemaType *pElement, size_t nSize )
{
	CUtlString name;
	name.Format( "CUtlVector< %s >", pElement->GetName() );
	bool bCreated;
	CSchemaType *pType = FindOrAddType( name, &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_ATOMIC;
		pType->m_eAtomic = SCHEMA_ATOMIC_COLLECTION;
		pType->m_pElement = pElement;
		pType->m_nSize = nSize;
	}
	return pType;
}

const CSchemaType *CSchemaSystemTypeScope::GetMapType( const CSchemaType *pKey, const CSchemaType *pValue, size_t nSize )
{
	CUtlString name;
	name.Format( "CUtlOrderedMap< %s, %s >", pKey->GetName(), pValue->GetName() );
	bool bCreated;
	CSchemaType *pType = FindOrAddType( name, &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_ATOMIC;
		pType->m_eAtomic = SCHEMA_ATOMIC_MAP;
		pType->m_pKey = pKey;
		pType->m_pElement = pValue;
		pType->m_nSize = nSize;
	}
	return pType;
}

const CSchemaType *CSchemaSystemTypeScope::GetOptionalType( const CSchemaType *pElement, size_t nSize )
{
	CUtlString name;
	name.Format( "CSmallOptional< %s >", pElement->GetName() );
	bool bCreated;
	CSchemaType *pType = FindOrAddType( name, &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_ATOMIC;
		pType->m_eAtomic = SCHEMA_ATOMIC_OPTIONAL;
		pType->m_pElement = pElement;
		pType->m_nSize = nSize;
	}
	return pType;
}

const CSchemaType *CSchemaSystemTypeScope::GetResourceHandleType( const char *pszResourceType, size_t nSize )
{
	CUtlString name;
	name.Format( "CStrongHandle< %s >", pszResourceType );
	bool bCreated;
	CSchemaType *pType = FindOrAddType( name, &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_ATOMIC;
		pType->m_eAtomic = SCHEMA_ATOMIC_RESOURCE_HANDLE;
		pType->m_ResourceType.Set( pszResourceType );
		pType->m_nSize = nSize;
	}
	return pType;
}

const CSchemaType *CSchemaSystemTypeScope::GetTypedDataRefType( const char *pszElementType, int nScope, size_t nSize )
{
	bool bByElementType = pszElementType && *pszElementType;
	CUtlString name;
	if ( bByElementType )
		name.Format( "CTypedDataRef< %s >", pszElementType );
	else
		name.Format( "CTypedDataRef< scope %d >", nScope );
	bool bCreated;
	CSchemaType *pType = FindOrAddType( name, &bCreated );
	if ( bCreated )
	{
		pType->m_eCategory = SCHEMA_TYPE_ATOMIC;
		pType->m_eAtomic = SCHEMA_ATOMIC_TYPED_DATA_REF;
		pType->m_TypedDataElementType.Set( bByElementType ? pszElementType : "" );
		pType->m_nTypedDataScope = bByElementType ? -1 : nScope;
		pType->m_nSize = nSize;
	}
	return pType;
}
