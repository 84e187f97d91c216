#include "tools/toolutils2/fgd/gamedata.h"

#include <algorithm>
#include <cctype>

#include "core/text/strtools.h"

uint32_t GameDataClassNameHash( const char *pszName )
{
	uint32_t nHash = 0x811c9dc5u;
	for ( const char *p = pszName; p && *p; ++p )
	{
		nHash ^= uint8_t( tolower( static_cast<unsigned char>( *p ) ) );
		nHash *= 16777619u;
	}
	return nHash;
}

CGameData::CGameData() = default;
CGameData::~CGameData() = default;

CGameDataClass *CGameData::FindClass( const char *pszName ) const
{
	if ( !pszName || !*pszName )
		return nullptr;
	auto range = m_ClassMap.equal_range( GameDataClassNameHash( pszName ) );
	for ( auto it = range.first; it != range.second; ++it )
	{
		if ( it->second->m_Name.IsEqual_CaseInsensitive( pszName ) )
			return it->second;
	}
	return nullptr;
}

CGameDataClass *CGameData::CreateClassRecord()
{
	m_ClassRecords.push_back( std::make_unique<CGameDataClass>() );
	CGameDataClass *pClass = m_ClassRecords.back().get();
	pClass->m_pGameData = this;
	pClass->m_MetaData.SetToEmptyTable();
	return pClass;
}

CGameDataVariable *CGameData::CreateVariable()
{
	m_VariableRecords.push_back( std::make_unique<CGameDataVariable>() );
	CGameDataVariable *pVar = m_VariableRecords.back().get();
	pVar->m_pOwner = this;
	pVar->m_KV3Metadata.SetToEmptyTable();
	return pVar;
}

CGameDataItemSet *CGameData::CreateItemSet()
{
	m_ItemSetRecords.push_back( std::make_unique<CGameDataItemSet>() );
	return m_ItemSetRecords.back().get();
}

bool CGameData::AddClass( CGameDataClass *pClass )
{
	if ( FindClass( pClass->m_Name ) )
		return false;
	m_Classes.push_back( pClass );
	m_ClassMap.emplace( GameDataClassNameHash( pClass->m_Name ), pClass );
	if ( pClass->IsBaseClass() )
		m_BaseClasses.AddToTail( pClass );
	return true;
}

void CGameData::RemoveClass( CGameDataClass *pClass )
{
	std::erase( m_Classes, pClass );
	auto range = m_ClassMap.equal_range( GameDataClassNameHash( pClass->m_Name ) );
	for ( auto it = range.first; it != range.second; ++it )
	{
		if ( it->second == pClass )
		{
			m_ClassMap.erase( it );
			break;
		}
	}
	m_BaseClasses.FindAndRemove( pClass );
}

void CGameData::AddError( const GameDataError_t &error )
{
	m_Errors.AddToTail( error );
}

bool CGameData::IsFileIncluded( const char *pszFile ) const
{
	for ( const CUtlString &file : m_IncludedFiles )
	{
		if ( file == pszFile )
			return true;
	}
	return false;
}

void CGameData::AddIncludedFile( const char *pszFile )
{
	if ( !IsFileIncluded( pszFile ) )
		m_IncludedFiles.AddToTail( CUtlString( pszFile ) );
}
