#include "core/schema/schemaclassinfo.h"

#include <algorithm>
#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "core/schema/schemasystemtypescope.h"

CSchemaClassInfo::CSchemaClassInfo( CSchemaSystemTypeScope *pScope, const char *pszName )
	: m_pScope( pScope ), m_Name( pszName ), m_BinaryName( pszName ), m_Module( pScope ? pScope->GetScopeName() : "" )
{
}

CSchemaClassInfo::~CSchemaClassInfo()
{
	if ( m_pDefaultInstance && m_Binding.m_pfnDestroy )
		m_Binding.m_pfnDestroy( m_pDefaultInstance );
}

bool CSchemaClassInfo::IsA( const CSchemaClassInfo *pOther ) const
{
	if ( pOther == this )
		return true;
	for ( const CSchemaClassInfo *pBase : m_BaseClasses )
	{
		if ( pBase->IsA( pOther ) )
			return true;
	}
	return false;
}

void CSchemaClassInfo::GetAllFields( std::vector<const CSchemaClassField *> &fields ) const
{
	for ( const CSchemaClassInfo *pBase : m_BaseClasses )
		pBase->GetAllFields( fields );
	for ( const CSchemaClassField &field : m_Fields )
		fields.push_back( &field );
}

const CSchemaClassField *CSchemaClassInfo::FindField( const char *pszName, const CSchemaClassInfo **pDeclaringClass ) const
{
	for ( const CSchemaClassField &field : m_Fields )
	{
		if ( std::strcmp( field.m_pszName, pszName ) == 0 )
		{
			if ( pDeclaringClass )
				*pDeclaringClass = this;
			return &field;
		}
	}
	for ( const CSchemaClassInfo *pBase : m_BaseClasses )
	{
		if ( const CSchemaClassField *pField = pBase->FindField( pszName, pDeclaringClass ) )
			return pField;
	}
	return nullptr;
}

const SchemaMetadataEntry_t *CSchemaClassInfo::FindMetadata( const char *pszName ) const
{
	if ( const SchemaMetadataEntry_t *pEntry = FindSchemaMetadata( m_Metadata, pszName ) )
		return pEntry;
	for ( const CSchemaClassInfo *pBase : m_BaseClasses )
	{
		if ( const SchemaMetadataEntry_t *pEntry = pBase->FindMetadata( pszName ) )
			return pEntry;
	}
	return nullptr;
}

const KeyValues3 *CSchemaClassInfo::GetDefaults() const
{
	if ( !m_pDefaults )
	{
		m_pDefaults = std::make_unique<KeyValues3>();
		m_pDefaults->SetToEmptyTable();
		using GetDefaultsFn_t = void ( * )( KeyValues3 * );
		const SchemaMetadataEntry_t *pEntry = FindSchemaMetadata( m_Metadata, "MGetKV3ClassDefaults" );
		if ( GetDefaultsFn_t pfnDefaults = pEntry ? pEntry->GetFunction<GetDefaultsFn_t>() : nullptr )
			pfnDefaults( m_pDefaults.get() );
		else if ( m_Binding.m_pfnWriteDefaults )
			m_Binding.m_pfnWriteDefaults( m_pDefaults.get() );
	}
	return m_pDefaults.get();
}

bool CSchemaClassInfo::GetFieldDefault( const char *pszFieldName, KeyValues3 *pOut ) const
{
	const KeyValues3 *pValue = GetDefaults()->FindMember( pszFieldName );
	if ( !pValue )
		return false;
	pOut->CopyFrom( *pValue );
	return true;
}

void CSchemaClassInfo::DestroyInstance( void *pObject ) const
{
	if ( pObject && m_Binding.m_pfnDestroy )
		m_Binding.m_pfnDestroy( pObject );
}

const void *CSchemaClassInfo::GetDefaultInstance() const
{
	if ( !m_pDefaultInstance )
		m_pDefaultInstance = CreateInstance();
	return m_pDefaultInstance;
}

void *CSchemaClassInfo::CastTo( void *pObject, const CSchemaClassInfo *pAncestor ) const
{
	if ( !pObject )
		return nullptr;
	if ( pAncestor == this )
		return pObject;
	for ( const Ancestor_t &ancestor : m_Ancestors )
	{
		if ( ancestor.m_pClass == pAncestor )
			return static_cast<char *>( pObject ) + ancestor.m_nOffset;
	}
	return nullptr;
}

void CSchemaClassInfo::AddBaseClass( CSchemaClassInfo *pBase )
{
	if ( !pBase || std::find( m_BaseClasses.begin(), m_BaseClasses.end(), pBase ) != m_BaseClasses.end() )
		return;
	m_BaseClasses.push_back( pBase );
	pBase->m_DerivedClasses.push_back( this );
}

CSchemaClassField &CSchemaClassInfo::AddField( const char *pszName, const CSchemaType *pType, ptrdiff_t nOffset )
{
	CSchemaClassField &field = m_Fields.emplace_back();
	field.m_pszName = pszName;
	field.m_pType = pType;
	field.m_nOffset = nOffset;
	return field;
}

const CSchemaType *CSchemaClassField::GetNamedClassType() const
{
	const CSchemaClassInfo *pClass = m_pNamedClassScope ? m_pNamedClassScope->FindDeclaredClass( m_pszNamedClass ) : nullptr;
	return pClass ? m_pNamedClassScope->GetClassType( pClass ) : m_pType;
}
