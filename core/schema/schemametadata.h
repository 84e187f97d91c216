#pragma once
// One metadata entry of a schema class, field or enumerator: a name and a typed value.
// Entries come from declarations, so their texts are static and never copied.

#include <concepts>
#include <cstdint>
#include <cstring>

enum SchemaMetadataValueType_t : uint8_t
{
	SCHEMA_METADATA_NONE = 0, // the key alone is the information, such as "MParticleAdvancedField"
	SCHEMA_METADATA_INT,
	SCHEMA_METADATA_STRING,
	SCHEMA_METADATA_FUNCTION,
};

// A function value is stored without its signature; the key documents what to cast it to.
using SchemaMetadataFn_t = void ( * )();

struct SchemaMetadataEntry_t
{
	constexpr SchemaMetadataEntry_t( const char *pszName ) : m_pszName( pszName ) {}
	template <std::integral T>
	constexpr SchemaMetadataEntry_t( const char *pszName, T nValue ) : m_pszName( pszName ), m_eType( SCHEMA_METADATA_INT ), m_nValue( static_cast<int64_t>( nValue ) ) {}
	constexpr SchemaMetadataEntry_t( const char *pszName, const char *pszValue ) : m_pszName( pszName ), m_eType( SCHEMA_METADATA_STRING ), m_pszValue( pszValue ) {}
	template <typename R, typename... Args>
	SchemaMetadataEntry_t( const char *pszName, R ( *pfnValue )( Args... ) )
		: m_pszName( pszName ), m_eType( SCHEMA_METADATA_FUNCTION ), m_pfnValue( reinterpret_cast<SchemaMetadataFn_t>( pfnValue ) ) {}

	template <typename Fn> Fn GetFunction() const { return m_eType == SCHEMA_METADATA_FUNCTION ? reinterpret_cast<Fn>( m_pfnValue ) : nullptr; }

	const char *m_pszName = "";
	SchemaMetadataValueType_t m_eType = SCHEMA_METADATA_NONE;
	int64_t m_nValue = 0;
	const char *m_pszValue = "";
	SchemaMetadataFn_t m_pfnValue = nullptr;
};

// Finds an entry by exact name in a list; null when absent.
template <typename List>
const SchemaMetadataEntry_t *FindSchemaMetadata( const List &entries, const char *pszName )
{
	for ( const SchemaMetadataEntry_t &entry : entries )
	{
		if ( std::strcmp( entry.m_pszName, pszName ) == 0 )
			return &entry;
	}
	return nullptr;
}
