#pragma once
// From C++ types to schema types, and the registration of declared classes and enums.
// SchemaTypeOf<T>( pScope ) registers what T needs (classes, enums) on first use.

#include <array>
#include <concepts>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "core/containers/utlvector.h"
#include "core/mathlib/color.h"
#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/mathlib/vector2d.h"
#include "core/mathlib/vector4d.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemaresourcetypes.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/schema/schematype.h"
#include "core/schema/schemavalueequal.h"
#include "core/text/utlstring.h"

class KeyValues3;

template <typename C> CSchemaClassInfo *RegisterSchemaClass( CSchemaSystemTypeScope *pScope );
template <typename E> CSchemaEnumInfo *RegisterSchemaEnum( CSchemaSystemTypeScope *pScope );

template <typename T> struct SchemaTypeOf_t;

template <typename T> const CSchemaType *SchemaTypeOf( CSchemaSystemTypeScope *pScope ) { return SchemaTypeOf_t<T>::Get( pScope ); }

template <typename T> struct SchemaBuiltinTypeOf_t;
#define SCHEMA_BUILTIN_TYPE_( CType, eBuiltin ) \
	template <> struct SchemaBuiltinTypeOf_t<CType> { static constexpr SchemaBuiltinType_t s_eType = eBuiltin; };
SCHEMA_BUILTIN_TYPE_( bool, SCHEMA_BUILTIN_BOOL )
SCHEMA_BUILTIN_TYPE_( char, SCHEMA_BUILTIN_CHAR )
SCHEMA_BUILTIN_TYPE_( int8_t, SCHEMA_BUILTIN_INT8 )
SCHEMA_BUILTIN_TYPE_( uint8_t, SCHEMA_BUILTIN_UINT8 )
SCHEMA_BUILTIN_TYPE_( int16_t, SCHEMA_BUILTIN_INT16 )
SCHEMA_BUILTIN_TYPE_( uint16_t, SCHEMA_BUILTIN_UINT16 )
SCHEMA_BUILTIN_TYPE_( int32_t, SCHEMA_BUILTIN_INT32 )
SCHEMA_BUILTIN_TYPE_( uint32_t, SCHEMA_BUILTIN_UINT32 )
SCHEMA_BUILTIN_TYPE_( int64_t, SCHEMA_BUILTIN_INT64 )
SCHEMA_BUILTIN_TYPE_( uint64_t, SCHEMA_BUILTIN_UINT64 )
SCHEMA_BUILTIN_TYPE_( float, SCHEMA_BUILTIN_FLOAT32 )
SCHEMA_BUILTIN_TYPE_( double, SCHEMA_BUILTIN_FLOAT64 )
#undef SCHEMA_BUILTIN_TYPE_

template <typename T>
	requires requires { SchemaBuiltinTypeOf_t<T>::s_eType; }
struct SchemaTypeOf_t<T>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetBuiltinType( SchemaBuiltinTypeOf_t<T>::s_eType ); }
};

template <SchemaDeclaredEnum E> struct SchemaTypeOf_t<E>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetEnumType( RegisterSchemaEnum<E>( pScope ) ); }
};

template <SchemaDeclaredClass C> struct SchemaTypeOf_t<C>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetClassType( RegisterSchemaClass<C>( pScope ) ); }
};

template <SchemaDeclaredClass C> struct SchemaTypeOf_t<std::unique_ptr<C>>
{
	static_assert( std::has_virtual_destructor_v<C>, "an owning pointer field needs a polymorphic class" );
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetPolymorphicPtrType( RegisterSchemaClass<C>( pScope ) ); }
};

template <typename E> struct SchemaTypeOf_t<std::vector<E>>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetCollectionType( SchemaTypeOf<E>( pScope ), sizeof( std::vector<E> ) ); }
};

template <typename E> struct SchemaTypeOf_t<CUtlVector<E>>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetCollectionType( SchemaTypeOf<E>( pScope ), sizeof( CUtlVector<E> ) ); }
};

template <typename K, typename V> struct SchemaTypeOf_t<std::map<K, V>>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope )
	{
		return pScope->GetMapType( SchemaTypeOf<K>( pScope ), SchemaTypeOf<V>( pScope ), sizeof( std::map<K, V> ) );
	}
};

template <typename T> struct SchemaTypeOf_t<std::optional<T>>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetOptionalType( SchemaTypeOf<T>( pScope ), sizeof( std::optional<T> ) ); }
};

template <size_t N> struct SchemaTypeOf_t<std::array<float, N>>
{
	static_assert( N >= 2 && N <= 4, "fixed float arrays hold 2 to 4 values" );
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetFixedArrayType( pScope->GetBuiltinType( SCHEMA_BUILTIN_FLOAT32 ), N, sizeof( float ) * N ); }
};

template <size_t N> struct SchemaTypeOf_t<std::array<char, N>>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetFixedArrayType( pScope->GetBuiltinType( SCHEMA_BUILTIN_CHAR ), N, N ); }
};

template <typename Info> struct SchemaTypeOf_t<CStrongHandle<Info>>
{
	static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetResourceHandleType( Info::s_pszResourceType, sizeof( CStrongHandle<Info> ) ); }
};

#define SCHEMA_ATOMIC_TYPE_( CType, eAtomic ) \
	template <> struct SchemaTypeOf_t<CType> { static const CSchemaType *Get( CSchemaSystemTypeScope *pScope ) { return pScope->GetAtomicType( eAtomic ); } };
SCHEMA_ATOMIC_TYPE_( Vector, SCHEMA_ATOMIC_VECTOR )
SCHEMA_ATOMIC_TYPE_( Vector2D, SCHEMA_ATOMIC_VECTOR2D )
SCHEMA_ATOMIC_TYPE_( Vector4D, SCHEMA_ATOMIC_VECTOR4D )
SCHEMA_ATOMIC_TYPE_( QAngle, SCHEMA_ATOMIC_QANGLE )
SCHEMA_ATOMIC_TYPE_( Color, SCHEMA_ATOMIC_COLOR )
SCHEMA_ATOMIC_TYPE_( CUtlString, SCHEMA_ATOMIC_STRING )
SCHEMA_ATOMIC_TYPE_( CResourceName, SCHEMA_ATOMIC_RESOURCE_NAME )
SCHEMA_ATOMIC_TYPE_( KeyValues3, SCHEMA_ATOMIC_KV3 )
#undef SCHEMA_ATOMIC_TYPE_

// Visits the fields of C's bases, then C's own, in declared order.
template <SchemaDeclaredClass C, typename Visitor>
void SchemaVisitAllFields( Visitor &visitor )
{
	if constexpr ( !std::is_void_v<typename C::SchemaBaseClass_t> )
		SchemaVisitAllFields<typename C::SchemaBaseClass_t>( visitor );
	C::SchemaVisitFields( visitor );
}

namespace SchemaRegistration
{
template <typename C> void *CreateInstance() { return new C(); }
template <typename C> void DestroyInstance( void *pObject ) { delete static_cast<C *>( pObject ); }
template <typename C> bool InstancesEqual( const void *pA, const void *pB ) { return SchemaValuesEqual( *static_cast<const C *>( pA ), *static_cast<const C *>( pB ) ); }

template <typename C, typename Ancestor>
void AddAncestorOffsets( CSchemaClassInfo *pClass, CSchemaSystemTypeScope *pScope, C *pInstance )
{
	if constexpr ( !std::is_void_v<Ancestor> )
	{
		Ancestor *pPart = pInstance;
		pClass->AddAncestorOffset( RegisterSchemaClass<Ancestor>( pScope ), reinterpret_cast<char *>( pPart ) - reinterpret_cast<char *>( pInstance ) );
		AddAncestorOffsets<C, typename Ancestor::SchemaBaseClass_t>( pClass, pScope, pInstance );
	}
}

template <typename C> struct ClassBuilder_t
{
	void ClassMetadata( std::initializer_list<SchemaMetadataEntry_t> metadata )
	{
		for ( const SchemaMetadataEntry_t &entry : metadata )
			m_pClass->AddMetadata( entry );
	}
	template <typename T, auto pMember, auto...> void Field( const char *pszName, const T &, std::initializer_list<SchemaMetadataEntry_t> metadata )
	{
		ptrdiff_t nOffset = -1;
		if ( m_pInstance )
			nOffset = reinterpret_cast<const char *>( &( m_pInstance->*pMember ) ) - reinterpret_cast<const char *>( m_pInstance );
		const CSchemaType *pType = SchemaTypeOf<T>( m_pScope );
		CSchemaClassField &field = m_pClass->AddField( pszName, pType, nOffset );
		field.m_Metadata.assign( metadata.begin(), metadata.end() );
		if ( const SchemaMetadataEntry_t *pNamedClass = FindSchemaMetadata( metadata, SCHEMA_NAMED_CLASS_METADATA ) )
		{
			field.m_pszNamedClass = pNamedClass->m_pszValue;
			field.m_pNamedClassScope = m_pScope;
		}
	}
	CSchemaClassInfo *m_pClass;
	CSchemaSystemTypeScope *m_pScope;
	const C *m_pInstance;
};
} // namespace SchemaRegistration

template <typename C>
CSchemaClassInfo *RegisterSchemaClass( CSchemaSystemTypeScope *pScope )
{
	static_assert( SchemaDeclaredClass<C>, "the class body needs SCHEMA_CLASS or SCHEMA_DERIVED_CLASS naming this class" );
	if ( CSchemaClassInfo *pExisting = pScope->FindDeclaredClass( C::SchemaClassName() ) )
		return pExisting;

	CSchemaClassInfo *pClass = pScope->CreateClass( C::SchemaClassName() );
	pClass->SetSize( sizeof( C ) );
	pClass->SetTypeInfo( &typeid( C ) );
	if constexpr ( std::is_polymorphic_v<C> )
		pClass->AddFlags( SCHEMA_CLASS_FLAG_POLYMORPHIC );
	if constexpr ( !std::is_void_v<typename C::SchemaBaseClass_t> )
		pClass->AddBaseClass( RegisterSchemaClass<typename C::SchemaBaseClass_t>( pScope ) );

	SchemaClassBinding_t &binding = pClass->GetBindingForModify();
	binding.m_pfnEquals = &SchemaRegistration::InstancesEqual<C>;
	std::unique_ptr<C> pInstance;
	if constexpr ( std::is_default_constructible_v<C> && !std::is_abstract_v<C> )
	{
		binding.m_pfnCreate = &SchemaRegistration::CreateInstance<C>;
		binding.m_pfnDestroy = &SchemaRegistration::DestroyInstance<C>;
		pInstance = std::make_unique<C>();
		SchemaRegistration::AddAncestorOffsets<C, typename C::SchemaBaseClass_t>( pClass, pScope, pInstance.get() );
	}

	SchemaRegistration::ClassBuilder_t<C> builder{ pClass, pScope, pInstance.get() };
	C::SchemaVisitClassMetadata( builder );
	C::SchemaVisitFields( builder );
	SchemaSystem()->RegisterTypeInfo( typeid( C ), pClass );
	return pClass;
}

template <typename E>
CSchemaEnumInfo *RegisterSchemaEnum( CSchemaSystemTypeScope *pScope )
{
	const SchemaEnumDesc_t &desc = SchemaDescribeEnum( static_cast<const E *>( nullptr ) );
	if ( CSchemaEnumInfo *pExisting = pScope->FindDeclaredEnum( desc.m_pszName ) )
		return pExisting;
	CSchemaEnumInfo *pEnum = pScope->CreateEnum( desc.m_pszName );
	pEnum->SetSize( desc.m_nSize );
	pEnum->SetFlagSet( desc.m_bFlagSet );
	for ( const SchemaEnumeratorDesc_t &enumerator : desc.m_Enumerators )
		pEnum->AddEnumerator( enumerator.m_pszName, enumerator.m_nValue ).m_Metadata = enumerator.m_Metadata;
	for ( const SchemaMetadataEntry_t &entry : desc.m_Metadata )
		pEnum->AddMetadata( entry );
	return pEnum;
}
