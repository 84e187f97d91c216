#pragma once
// The description of one field type. Types are owned by their scope and compared by
// pointer: one scope holds one descriptor per type name.

#include <cstddef>
#include <cstdint>

#include "core/text/utlstring.h"

class CSchemaClassInfo;
class CSchemaEnumInfo;

enum SchemaTypeCategory_t : uint8_t
{
	SCHEMA_TYPE_BUILTIN = 0,     // numbers and bool
	SCHEMA_TYPE_DECLARED_ENUM,   // GetEnum()
	SCHEMA_TYPE_DECLARED_CLASS,  // a nested structure, GetClass()
	SCHEMA_TYPE_POLYMORPHIC_PTR, // an owning pointer to a polymorphic class, GetClass() is the base
	SCHEMA_TYPE_FIXED_ARRAY,     // GetElementType() times GetCount()
	SCHEMA_TYPE_ATOMIC,          // GetAtomic() says which
};

enum SchemaBuiltinType_t : uint8_t
{
	SCHEMA_BUILTIN_BOOL = 0,
	SCHEMA_BUILTIN_CHAR,
	SCHEMA_BUILTIN_INT8,
	SCHEMA_BUILTIN_UINT8,
	SCHEMA_BUILTIN_INT16,
	SCHEMA_BUILTIN_UINT16,
	SCHEMA_BUILTIN_INT32,
	SCHEMA_BUILTIN_UINT32,
	SCHEMA_BUILTIN_INT64,
	SCHEMA_BUILTIN_UINT64,
	SCHEMA_BUILTIN_FLOAT32,
	SCHEMA_BUILTIN_FLOAT64,
	SCHEMA_BUILTIN_COUNT,
};

enum SchemaAtomicType_t : uint8_t
{
	SCHEMA_ATOMIC_NONE = 0,
	SCHEMA_ATOMIC_VECTOR,          // "Vector"
	SCHEMA_ATOMIC_VECTOR2D,        // "Vector2D"
	SCHEMA_ATOMIC_VECTOR4D,        // "Vector4D"
	SCHEMA_ATOMIC_QANGLE,          // "QAngle"
	SCHEMA_ATOMIC_COLOR,           // "Color"
	SCHEMA_ATOMIC_STRING,          // "CUtlString"
	SCHEMA_ATOMIC_RESOURCE_HANDLE, // a strong handle; GetResourceType() names the kind
	SCHEMA_ATOMIC_RESOURCE_NAME,   // "CResourceName"
	SCHEMA_ATOMIC_KV3,             // "KeyValues3"
	SCHEMA_ATOMIC_COLLECTION,      // a growable vector of GetElementType()
	SCHEMA_ATOMIC_MAP,             // GetKeyType() to GetElementType()
	SCHEMA_ATOMIC_OPTIONAL,        // GetElementType() or nothing
	SCHEMA_ATOMIC_TYPED_DATA_REF,  // data of a subclass picked by name; GetTypedDataElementType() or GetTypedDataScope()
};

// The text name of a builtin type, such as "int32" or "float32".
const char *SchemaBuiltinTypeName( SchemaBuiltinType_t eType );

class CSchemaType
{
public:
	SchemaTypeCategory_t GetCategory() const { return m_eCategory; }
	SchemaBuiltinType_t GetBuiltin() const { return m_eBuiltin; }
	SchemaAtomicType_t GetAtomic() const { return m_eAtomic; }
	// The name as the schema writes it: "int32", "CUtlVector< float32 >", "Vector".
	const char *GetName() const { return m_Name.Get(); }
	// MurmurHash2 of the lower-cased name; the FGD conversion keys its atomic table by it.
	uint32_t GetNameHash() const { return m_nNameHash; }
	size_t GetSize() const { return m_nSize; }

	const CSchemaClassInfo *GetClass() const { return m_pClass; }
	const CSchemaEnumInfo *GetEnum() const { return m_pEnum; }
	const CSchemaType *GetElementType() const { return m_pElement; }
	const CSchemaType *GetKeyType() const { return m_pKey; }
	int GetCount() const { return m_nCount; }
	const char *GetResourceType() const { return m_ResourceType.Get(); }

	// A typed data reference names its family of subclasses by element type, or, when
	// that is empty, by the number of the scope that lists them.
	const char *GetTypedDataElementType() const { return m_TypedDataElementType.Get(); }
	int GetTypedDataScope() const { return m_nTypedDataScope; }

	bool IsBuiltin( SchemaBuiltinType_t eType ) const { return m_eCategory == SCHEMA_TYPE_BUILTIN && m_eBuiltin == eType; }
	bool IsAtomic( SchemaAtomicType_t eType ) const { return m_eCategory == SCHEMA_TYPE_ATOMIC && m_eAtomic == eType; }
	bool IsInteger() const { return m_eCategory == SCHEMA_TYPE_BUILTIN && m_eBuiltin >= SCHEMA_BUILTIN_INT8 && m_eBuiltin <= SCHEMA_BUILTIN_UINT64; }
	bool IsFloat() const { return IsBuiltin( SCHEMA_BUILTIN_FLOAT32 ) || IsBuiltin( SCHEMA_BUILTIN_FLOAT64 ); }

private:
	friend class CSchemaSystemTypeScope;

	SchemaTypeCategory_t m_eCategory = SCHEMA_TYPE_BUILTIN;
	SchemaBuiltinType_t m_eBuiltin = SCHEMA_BUILTIN_BOOL;
	SchemaAtomicType_t m_eAtomic = SCHEMA_ATOMIC_NONE;
	CUtlString m_Name;
	uint32_t m_nNameHash = 0;
	size_t m_nSize = 0;
	const CSchemaClassInfo *m_pClass = nullptr;
	const CSchemaEnumInfo *m_pEnum = nullptr;
	const CSchemaType *m_pElement = nullptr;
	const CSchemaType *m_pKey = nullptr;
	int m_nCount = 0;
	CUtlString m_ResourceType;

	CUtlString m_TypedDataElementType;
	int m_nTypedDataScope = -1;
};
