#pragma once
// An enumeration of the schema: enumerators in declared order, each with its own
// metadata, the enumeration's metadata, and whether its values are a set of flags.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/schema/schemametadata.h"
#include "core/text/utlstring.h"

class CSchemaSystemTypeScope;

struct SchemaEnumeratorInfo_t
{
	const SchemaMetadataEntry_t *FindMetadata( const char *pszName ) const { return FindSchemaMetadata( m_Metadata, pszName ); }
	bool HasMetadata( const char *pszName ) const { return FindMetadata( pszName ) != nullptr; }

	const char *m_pszName = "";
	int64_t m_nValue = 0;
	std::vector<SchemaMetadataEntry_t> m_Metadata;
};

class CSchemaEnumInfo
{
public:
	CSchemaEnumInfo( CSchemaSystemTypeScope *pScope, const char *pszName );

	const char *GetName() const { return m_Name.Get(); }
	const char *GetModule() const { return m_Module.Get(); }
	size_t GetSize() const { return m_nSize; }
	// The values combine as bits; the FGD conversion offers them as flag choices.
	bool IsFlagSet() const { return m_bFlagSet; }

	int GetEnumeratorCount() const { return static_cast<int>( m_Enumerators.size() ); }
	const SchemaEnumeratorInfo_t &GetEnumerator( int nIndex ) const { return m_Enumerators[ nIndex ]; }
	// Ignores case, as files written by hand spell names loosely.
	const SchemaEnumeratorInfo_t *FindEnumeratorByName( const char *pszName ) const;
	// The first enumerator with the value.
	const SchemaEnumeratorInfo_t *FindEnumeratorByValue( int64_t nValue ) const;

	const SchemaMetadataEntry_t *FindMetadata( const char *pszName ) const { return FindSchemaMetadata( m_Metadata, pszName ); }
	bool HasMetadata( const char *pszName ) const { return FindMetadata( pszName ) != nullptr; }

	// Registration.
	void SetSize( size_t nSize ) { m_nSize = nSize; }
	void SetFlagSet( bool bFlagSet ) { m_bFlagSet = bFlagSet; }
	SchemaEnumeratorInfo_t &AddEnumerator( const char *pszName, int64_t nValue );
	void AddMetadata( const SchemaMetadataEntry_t &entry ) { m_Metadata.push_back( entry ); }

private:
	CUtlString m_Name;
	CUtlString m_Module;
	size_t m_nSize = 4;
	bool m_bFlagSet = false;
	std::vector<SchemaEnumeratorInfo_t> m_Enumerators;
	std::vector<SchemaMetadataEntry_t> m_Metadata;
};
