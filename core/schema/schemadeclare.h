#pragma once
// Declaring a class to the schema: every member is written once, in the class body, with
// its type, name, default and metadata. The declaration defines the member and a static
// field visitor; the schema registration, the KV3 transfer and the tool attribute table
// are all made from that visitor, so the three can't disagree.
//
//	class CSmokeEmitter : public CEmitterBase
//	{
//		SCHEMA_DERIVED_CLASS( CSmokeEmitter, CEmitterBase, { "MPropertyFriendlyName", "Smoke" } )
//		SCHEMA_FIELD( float, m_flRate, 0.1f, { "MPropertyAttributeRange", "0 10" } )
//		SCHEMA_FIELD( Vector, m_vDrift, ( Vector( 0, 0, 1 ) ) )
//	};
//
// A default (or type) that contains a comma needs parentheses (or a type alias). Metadata
// entries are { "Name" }, { "Name", integer }, { "Name", "text" } or { "Name", &Function }.
// Visitors take Field<Type, &Class::Member, accessors...>( name, default, metadata ), where
// the accessors are the getter and setter of a SCHEMA_FIELD_GETSET member and absent otherwise.
// The class macro leaves the access at public.

#include <cstdint>
#include <concepts>
#include <initializer_list>
#include <type_traits>
#include <vector>

#include "core/schema/schemametadata.h"

class KeyValues3;

template <int N> struct SchemaFieldSlot_t
{
};

struct SchemaEnumDesc_t;

// A class whose body declares itself (not only a base) with SCHEMA_CLASS.
template <typename C>
concept SchemaDeclaredClass = requires { typename C::SchemaThisClass_t; } && std::is_same_v<typename C::SchemaThisClass_t, C>;

// An enumeration described with SCHEMA_ENUM_BEGIN.
template <typename E>
concept SchemaDeclaredEnum = std::is_enum_v<E> && requires( const E *pTag ) { { SchemaDescribeEnum( pTag ) } -> std::same_as<const SchemaEnumDesc_t &>; };

#define SCHEMA_CLASS( ClassName, ... ) SCHEMA_CLASS_IMPL_( ClassName, void __VA_OPT__(, ) __VA_ARGS__ )
#define SCHEMA_DERIVED_CLASS( ClassName, BaseName, ... ) SCHEMA_CLASS_IMPL_( ClassName, BaseName __VA_OPT__(, ) __VA_ARGS__ )

#define SCHEMA_CLASS_IMPL_( ClassName, BaseName, ... )                                                                                       \
public:                                                                                                                                     \
	using SchemaThisClass_t = ClassName;                                                                                                     \
	using SchemaBaseClass_t = BaseName;                                                                                                      \
	static const char *SchemaClassName() { return #ClassName; }                                                                              \
	template <typename Visitor> static void SchemaVisitClassMetadata( Visitor &visitor ) { visitor.ClassMetadata( { __VA_ARGS__ } ); }       \
	template <typename Visitor> static void SchemaVisitFields( Visitor &visitor ) { SchemaVisitField( visitor, SchemaFieldSlot_t<0>() ); } \
	template <typename Visitor, int N> static void SchemaVisitField( Visitor &, SchemaFieldSlot_t<N> ) {}                                   \
	static constexpr int s_nSchemaFirstSlot = __COUNTER__ + 1;

// Fields are chained by consecutive __COUNTER__ values: nothing else in the class body may
// use __COUNTER__ between two fields.
#define SCHEMA_FIELD( Type, Name, Default, ... )                                                                      \
	Type Name = Default;                                                                                               \
	static constexpr int s_nSchemaSlot_##Name = __COUNTER__ - s_nSchemaFirstSlot;                                      \
	template <typename Visitor> static void SchemaVisitField( Visitor &visitor, SchemaFieldSlot_t<s_nSchemaSlot_##Name> ) \
	{                                                                                                                  \
		visitor.template Field<Type, &SchemaThisClass_t::Name>( #Name, Default, { __VA_ARGS__ } );                     \
		SchemaVisitField( visitor, SchemaFieldSlot_t<s_nSchemaSlot_##Name + 1>() );                                    \
	}

// A KV3 member that holds an instance of a schema class known here only by its name,
// because the module that declares the class registers it later (or not at all). The
// field's schema type is that class once the field's scope has it, and plain KeyValues3
// before; loads and saves always treat the member as KV3.
//
//	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_Rate, "CRateInput", {}, { "MPropertyFriendlyName", "Rate" } )
#define SCHEMA_NAMED_CLASS_METADATA "MSchemaNamedClass"
#define SCHEMA_FIELD_NAMED_CLASS( Type, Name, ClassName, Default, ... )                                     \
	static_assert( std::is_same_v<Type, KeyValues3>, "a field typed by class name is stored as KeyValues3" ); \
	SCHEMA_FIELD( Type, Name, Default, { SCHEMA_NAMED_CLASS_METADATA, ClassName } __VA_OPT__(, ) __VA_ARGS__ )

// A member that editors must change through the class's own accessors, so that its rules
// (clamping, derived state) hold: T Getter() const and void Setter( const T & ). Loads and
// saves still read and write the member itself.
//
//	SCHEMA_FIELD_GETSET( float, m_flRadius, 1.0f, GetRadius, SetRadius, { "MPropertyFriendlyName", "Radius" } )
#define SCHEMA_FIELD_GETSET( Type, Name, Default, Getter, Setter, ... )                                                 \
	Type Name = Default;                                                                                               \
	static constexpr int s_nSchemaSlot_##Name = __COUNTER__ - s_nSchemaFirstSlot;                                      \
	template <typename Visitor> static void SchemaVisitField( Visitor &visitor, SchemaFieldSlot_t<s_nSchemaSlot_##Name> ) \
	{                                                                                                                  \
		visitor.template Field<Type, &SchemaThisClass_t::Name, &SchemaThisClass_t::Getter, &SchemaThisClass_t::Setter>( \
			#Name, Default, { __VA_ARGS__ } );                                                                         \
		SchemaVisitField( visitor, SchemaFieldSlot_t<s_nSchemaSlot_##Name + 1>() );                                    \
	}

// Enumerations are described beside their C++ declaration, in the same namespace:
//
//	SCHEMA_ENUM_BEGIN( EmitShape_t )
//		SCHEMA_ENUMERATOR( EMIT_SHAPE_SPHERE, { "MPropertyFriendlyName", "Sphere" } )
//		SCHEMA_ENUMERATOR( EMIT_SHAPE_BOX )
//	SCHEMA_ENUM_END()
//
// SCHEMA_FLAGS_BEGIN marks a set of flags. SCHEMA_ENUM_END takes the enumeration's metadata.

struct SchemaEnumeratorDesc_t
{
	const char *m_pszName;
	int64_t m_nValue;
	std::vector<SchemaMetadataEntry_t> m_Metadata;
};

struct SchemaEnumDesc_t
{
	const char *m_pszName;
	size_t m_nSize;
	bool m_bFlagSet;
	std::vector<SchemaEnumeratorDesc_t> m_Enumerators;
	std::vector<SchemaMetadataEntry_t> m_Metadata;
};

#define SCHEMA_ENUM_BEGIN_IMPL_( EnumName, bFlagSet )                          \
	inline const SchemaEnumDesc_t &SchemaDescribeEnum( const EnumName * )       \
	{                                                                          \
		using SchemaEnum_t = EnumName;                                         \
		static const SchemaEnumDesc_t s_Desc = { #EnumName, sizeof( EnumName ), bFlagSet, {
#define SCHEMA_ENUM_BEGIN( EnumName ) SCHEMA_ENUM_BEGIN_IMPL_( EnumName, false )
#define SCHEMA_FLAGS_BEGIN( EnumName ) SCHEMA_ENUM_BEGIN_IMPL_( EnumName, true )
#define SCHEMA_ENUMERATOR( Name, ... ) { #Name, static_cast<int64_t>( SchemaEnum_t::Name ), { __VA_ARGS__ } },
#define SCHEMA_ENUM_END( ... ) \
	}, { __VA_ARGS__ } };      \
	return s_Desc;             \
	}
