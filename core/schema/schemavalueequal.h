#pragma once
// Equality of field values through their declarations: a declared class compares member by
// member, containers element by element, a polymorphic pointer by its real class. Floats
// compare exactly, so a default written as 0.1f equals 0.1f read back from a file.

#include <array>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemasystem.h"

class KeyValues3;
template <typename T> class CUtlVector;

// Whether a field value can be copied. The standard traits answer yes for containers of
// owned objects (their copy operations exist but can't be instantiated), so containers
// ask their elements. Defaults of values that can't be copied are their empty state.
template <typename T> struct SchemaCopyable_t : std::bool_constant<std::is_copy_constructible_v<T> && std::is_copy_assignable_v<T>> {};
template <typename T> struct SchemaCopyable_t<std::unique_ptr<T>> : std::false_type {};
template <typename E> struct SchemaCopyable_t<std::vector<E>> : SchemaCopyable_t<E> {};
template <typename E> struct SchemaCopyable_t<CUtlVector<E>> : SchemaCopyable_t<E> {};
template <typename T> struct SchemaCopyable_t<std::optional<T>> : SchemaCopyable_t<T> {};
template <typename K, typename V> struct SchemaCopyable_t<std::map<K, V>> : std::bool_constant<SchemaCopyable_t<K>::value && SchemaCopyable_t<V>::value> {};
template <typename T> constexpr bool SchemaCopyable = SchemaCopyable_t<T>::value;

// Deep equality of two KV3 values (types, subtypes, member order).
bool SchemaKV3ValuesEqual( const KeyValues3 &a, const KeyValues3 &b );

template <typename T> struct SchemaEqual_t
{
	static bool Equal( const T &a, const T &b ) { return a == b; }
};

template <typename T> bool SchemaValuesEqual( const T &a, const T &b ) { return SchemaEqual_t<T>::Equal( a, b ); }

namespace SchemaEquality
{
template <typename C> struct FieldComparer_t
{
	void ClassMetadata( std::initializer_list<SchemaMetadataEntry_t> ) {}
	template <typename T, auto pMember, auto...> void Field( const char *, const T &, std::initializer_list<SchemaMetadataEntry_t> )
	{
		if ( m_bEqual && !SchemaValuesEqual<T>( m_pA->*pMember, m_pB->*pMember ) )
			m_bEqual = false;
	}
	const C *m_pA;
	const C *m_pB;
	bool m_bEqual;
};
} // namespace SchemaEquality

template <> struct SchemaEqual_t<KeyValues3>
{
	static bool Equal( const KeyValues3 &a, const KeyValues3 &b ) { return SchemaKV3ValuesEqual( a, b ); }
};

template <SchemaDeclaredClass C> struct SchemaEqual_t<C>
{
	static bool Equal( const C &a, const C &b )
	{
		if constexpr ( !std::is_void_v<typename C::SchemaBaseClass_t> )
		{
			using Base_t = typename C::SchemaBaseClass_t;
			if ( !SchemaValuesEqual<Base_t>( a, b ) )
				return false;
		}
		SchemaEquality::FieldComparer_t<C> comparer{ &a, &b, true };
		C::SchemaVisitFields( comparer );
		return comparer.m_bEqual;
	}
};

template <typename C> struct SchemaEqual_t<std::unique_ptr<C>>
{
	static bool Equal( const std::unique_ptr<C> &a, const std::unique_ptr<C> &b )
	{
		if ( !a || !b )
			return !a && !b;
		if ( typeid( *a ) != typeid( *b ) )
			return false;
		const CSchemaClassInfo *pClass = SchemaSystem()->FindClassByTypeInfo( typeid( *a ) );
		if ( !pClass || !pClass->GetBinding().m_pfnEquals )
			return SchemaValuesEqual<C>( *a, *b ); // an unregistered class compares as its base
		return pClass->GetBinding().m_pfnEquals( dynamic_cast<const void *>( a.get() ), dynamic_cast<const void *>( b.get() ) );
	}
};

template <typename E> struct SchemaEqual_t<std::vector<E>>
{
	static bool Equal( const std::vector<E> &a, const std::vector<E> &b )
	{
		if ( a.size() != b.size() )
			return false;
		for ( size_t i = 0; i < a.size(); ++i )
		{
			if ( !SchemaValuesEqual<E>( a[ i ], b[ i ] ) )
				return false;
		}
		return true;
	}
};

// Element by element, so declared classes without operator== compare by their members.
template <typename E> struct SchemaEqual_t<CUtlVector<E>>
{
	static bool Equal( const CUtlVector<E> &a, const CUtlVector<E> &b )
	{
		if ( a.Count() != b.Count() )
			return false;
		for ( int i = 0; i < a.Count(); ++i )
		{
			if ( !SchemaValuesEqual<E>( a[ i ], b[ i ] ) )
				return false;
		}
		return true;
	}
};

template <typename K, typename V> struct SchemaEqual_t<std::map<K, V>>
{
	static bool Equal( const std::map<K, V> &a, const std::map<K, V> &b )
	{
		if ( a.size() != b.size() )
			return false;
		for ( auto itA = a.begin(), itB = b.begin(); itA != a.end(); ++itA, ++itB )
		{
			if ( !( itA->first == itB->first ) || !SchemaValuesEqual<V>( itA->second, itB->second ) )
				return false;
		}
		return true;
	}
};

template <typename T> struct SchemaEqual_t<std::optional<T>>
{
	static bool Equal( const std::optional<T> &a, const std::optional<T> &b )
	{
		if ( !a || !b )
			return !a && !b;
		return SchemaValuesEqual<T>( *a, *b );
	}
};
