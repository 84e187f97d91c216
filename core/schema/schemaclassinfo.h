#pragma once
// A class of the schema: its names, bases, fields in declared order, metadata, flags,
// derived classes and the table of its defaults. Built once by registration and read-only
// after that (apart from the lazily built defaults table).

#include <cstddef>
#include <cstdint>
#include <memory>
#include <typeinfo>
#include <vector>

#include "core/schema/schemametadata.h"
#include "core/text/utlstring.h"

class CSchemaType;
class CSchemaSystemTypeScope;
class KeyValues3;
class CKV3TransferLoadContext;
class CKV3TransferSaveContext;
class IToolAttr_Table;

// Instances of the class carry their real class name ("_class") wherever they are stored.
constexpr uint32_t SCHEMA_CLASS_FLAG_POLYMORPHIC = 0x40000;

class CSchemaClassField
{
public:
	const char *GetName() const { return m_pszName; }
	// For a field declared with SCHEMA_FIELD_NAMED_CLASS this is the named class once its
	// scope has it, and the stored KV3 type until then.
	const CSchemaType *GetType() const { return m_pszNamedClass ? GetNamedClassType() : m_pType; }
	// The class name of a SCHEMA_FIELD_NAMED_CLASS field, else null.
	const char *GetNamedClass() const { return m_pszNamedClass; }
	// Byte offset in the declaring class, or -1 when the class can't be instantiated.
	ptrdiff_t GetOffset() const { return m_nOffset; }

	int GetMetadataCount() const { return static_cast<int>( m_Metadata.size() ); }
	const SchemaMetadataEntry_t &GetMetadata( int nIndex ) const { return m_Metadata[ nIndex ]; }
	const SchemaMetadataEntry_t *FindMetadata( const char *pszName ) const { return FindSchemaMetadata( m_Metadata, pszName ); }
	bool HasMetadata( const char *pszName ) const { return FindMetadata( pszName ) != nullptr; }

	const char *m_pszName = "";
	const CSchemaType *m_pType = nullptr;
	ptrdiff_t m_nOffset = -1;
	std::vector<SchemaMetadataEntry_t> m_Metadata;
	// Resolved on each request: the class may be registered by a module loaded later.
	const char *m_pszNamedClass = nullptr;
	CSchemaSystemTypeScope *m_pNamedClassScope = nullptr;

private:
	const CSchemaType *GetNamedClassType() const;
};

// The operations that a declaration supplies for a class; any may be null.
struct SchemaClassBinding_t
{
	void *( *m_pfnCreate )() = nullptr;                       // a new default instance, as the class itself
	void ( *m_pfnDestroy )( void *pObject ) = nullptr;
	bool ( *m_pfnEquals )( const void *pA, const void *pB ) = nullptr; // member-wise, through the declaration
	// Filled in by the KV3 transfer layer when it registers the class.
	// Reads the members from a value (which should be a table), with the kind and depth checks.
	void ( *m_pfnLoadKV3 )( void *pObject, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext ) = nullptr;
	// Appends the members to a table that the caller has begun (it may hold "_class").
	void ( *m_pfnSaveKV3 )( const void *pObject, KeyValues3 *pTable, CKV3TransferSaveContext *pContext ) = nullptr;
	void ( *m_pfnWriteDefaults )( KeyValues3 *pTable ) = nullptr; // a full save of a default instance
	// Filled in by the tool attribute layer: the class's attribute table.
	IToolAttr_Table *( *m_pfnGetAttributeTable )() = nullptr;
};

class CSchemaClassInfo
{
public:
	CSchemaClassInfo( CSchemaSystemTypeScope *pScope, const char *pszName );
	~CSchemaClassInfo();
	CSchemaClassInfo( const CSchemaClassInfo & ) = delete;
	CSchemaClassInfo &operator=( const CSchemaClassInfo & ) = delete;

	const char *GetName() const { return m_Name.Get(); }
	// The name the class has in the binary, and the module that registered it.
	const char *GetBinaryName() const { return m_BinaryName.Get(); }
	const char *GetModule() const { return m_Module.Get(); }
	CSchemaSystemTypeScope *GetTypeScope() const { return m_pScope; }
	size_t GetSize() const { return m_nSize; }

	uint32_t GetFlags() const { return m_nFlags; }
	bool IsPolymorphic() const { return ( m_nFlags & SCHEMA_CLASS_FLAG_POLYMORPHIC ) != 0; }

	int GetBaseClassCount() const { return static_cast<int>( m_BaseClasses.size() ); }
	const CSchemaClassInfo *GetBaseClass( int nIndex = 0 ) const { return nIndex < GetBaseClassCount() ? m_BaseClasses[ nIndex ] : nullptr; }
	// True for the class itself and for every class it derives from.
	bool IsA( const CSchemaClassInfo *pOther ) const;

	int GetDerivedClassCount() const { return static_cast<int>( m_DerivedClasses.size() ); }
	const CSchemaClassInfo *GetDerivedClass( int nIndex ) const { return m_DerivedClasses[ nIndex ]; }

	// The class's own fields, in declared order.
	int GetFieldCount() const { return static_cast<int>( m_Fields.size() ); }
	const CSchemaClassField &GetField( int nIndex ) const { return m_Fields[ nIndex ]; }
	// Fields of the bases first, then the class's own.
	void GetAllFields( std::vector<const CSchemaClassField *> &fields ) const;
	// Searches the class, then its bases; pDeclaringClass (optional) receives the class that has it.
	const CSchemaClassField *FindField( const char *pszName, const CSchemaClassInfo **pDeclaringClass = nullptr ) const;

	int GetMetadataCount() const { return static_cast<int>( m_Metadata.size() ); }
	const SchemaMetadataEntry_t &GetMetadata( int nIndex ) const { return m_Metadata[ nIndex ]; }
	// Searches the class, then its bases, so a base's metadata applies to the derived classes.
	const SchemaMetadataEntry_t *FindMetadata( const char *pszName ) const;
	bool HasMetadata( const char *pszName ) const { return FindMetadata( pszName ) != nullptr; }

	// The KV3 table of a default instance: from the "MGetKV3ClassDefaults" function
	// (void(*)(KeyValues3*)) when the class has one, else from the binding. Never null;
	// empty when neither exists. Built on first use.
	const KeyValues3 *GetDefaults() const;
	// The default of a field (searching bases) as a KV3 value; false when the table lacks it.
	bool GetFieldDefault( const char *pszFieldName, KeyValues3 *pOut ) const;

	const SchemaClassBinding_t &GetBinding() const { return m_Binding; }
	SchemaClassBinding_t &GetBindingForModify() { return m_Binding; }
	bool CanCreate() const { return m_Binding.m_pfnCreate != nullptr; }
	void *CreateInstance() const { return m_Binding.m_pfnCreate ? m_Binding.m_pfnCreate() : nullptr; }
	void DestroyInstance( void *pObject ) const;
	// A default instance kept for comparisons; null when the class can't be created.
	const void *GetDefaultInstance() const;
	// Converts a pointer to an instance of this class into a pointer to an ancestor's part
	// of it; null when the ancestor isn't one or the layout is unknown.
	void *CastTo( void *pObject, const CSchemaClassInfo *pAncestor ) const;
	const void *CastTo( const void *pObject, const CSchemaClassInfo *pAncestor ) const { return CastTo( const_cast<void *>( pObject ), pAncestor ); }

	// Registration; only the declaration code and tests call these.
	void SetBinaryName( const char *pszName ) { m_BinaryName.Set( pszName ); }
	void SetSize( size_t nSize ) { m_nSize = nSize; }
	void AddFlags( uint32_t nFlags ) { m_nFlags |= nFlags; }
	void AddBaseClass( CSchemaClassInfo *pBase );
	CSchemaClassField &AddField( const char *pszName, const CSchemaType *pType, ptrdiff_t nOffset = -1 );
	void AddMetadata( const SchemaMetadataEntry_t &entry ) { m_Metadata.push_back( entry ); }
	void AddAncestorOffset( const CSchemaClassInfo *pAncestor, ptrdiff_t nOffset ) { m_Ancestors.push_back( { pAncestor, nOffset } ); }
	void SetTypeInfo( const std::type_info *pTypeInfo ) { m_pTypeInfo = pTypeInfo; }
	const std::type_info *GetTypeInfo() const { return m_pTypeInfo; }

private:
	struct Ancestor_t
	{
		const CSchemaClassInfo *m_pClass;
		ptrdiff_t m_nOffset;
	};

	CSchemaSystemTypeScope *m_pScope;
	CUtlString m_Name;
	CUtlString m_BinaryName;
	CUtlString m_Module;
	size_t m_nSize = 0;
	uint32_t m_nFlags = 0;
	std::vector<CSchemaClassInfo *> m_BaseClasses;
	std::vector<const CSchemaClassInfo *> m_DerivedClasses;
	std::vector<CSchemaClassField> m_Fields;
	std::vector<SchemaMetadataEntry_t> m_Metadata;
	std::vector<Ancestor_t> m_Ancestors;
	SchemaClassBinding_t m_Binding;
	const std::type_info *m_pTypeInfo = nullptr;

	mutable std::unique_ptr<KeyValues3> m_pDefaults;
	mutable void *m_pDefaultInstance = nullptr;
};
