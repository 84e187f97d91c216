#pragma once
// The declared classes that a class's own fields hold: by value, through an owning
// pointer, or as the elements of a vector, optional or map. Registration walks them so
// that a class reached only through a field gets the same bindings (load, save,
// defaults) as one registered by name.

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "core/containers/utlvector.h"
#include "core/schema/schemadeclare.h"

template <typename T> struct SchemaNestedClassesOf_t
{
	template <typename Fn> static void Visit( Fn & ) {}
};
template <SchemaDeclaredClass C> struct SchemaNestedClassesOf_t<C>
{
	template <typename Fn> static void Visit( Fn &fn ) { fn.template operator()<C>(); }
};
template <typename C> struct SchemaNestedClassesOf_t<std::unique_ptr<C>> : SchemaNestedClassesOf_t<C> {};
template <typename E> struct SchemaNestedClassesOf_t<std::vector<E>> : SchemaNestedClassesOf_t<E> {};
template <typename E> struct SchemaNestedClassesOf_t<CUtlVector<E>> : SchemaNestedClassesOf_t<E> {};
template <typename T> struct SchemaNestedClassesOf_t<std::optional<T>> : SchemaNestedClassesOf_t<T> {};
template <typename K, typename V> struct SchemaNestedClassesOf_t<std::map<K, V>> : SchemaNestedClassesOf_t<V> {};

namespace SchemaNestedClasses
{
template <typename Fn> struct FieldVisitor_t
{
	void ClassMetadata( std::initializer_list<SchemaMetadataEntry_t> ) {}
	template <typename T, auto pMember, auto...> void Field( const char *, const T &, std::initializer_list<SchemaMetadataEntry_t> )
	{
		SchemaNestedClassesOf_t<T>::Visit( m_Fn );
	}
	Fn &m_Fn;
};
} // namespace SchemaNestedClasses

// Calls fn.template operator()<N>() for the declared class N of each of C's own fields
// (not its bases' fields), in declared order; a class held by several fields comes once
// per field.
template <SchemaDeclaredClass C, typename Fn>
void SchemaVisitNestedClasses( Fn &&fn )
{
	SchemaNestedClasses::FieldVisitor_t<std::remove_reference_t<Fn>> visitor{ fn };
	C::SchemaVisitFields( visitor );
}
