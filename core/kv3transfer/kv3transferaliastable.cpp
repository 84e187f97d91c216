#include "core/kv3transfer/kv3transferaliastable.h"

#include <set>
#include <string>

#include "core/kv3/keyvalues3.h"

const char *KV3TransferInternName( const char *pszName )
{
	static std::set<std::string, std::less<>> s_Names;
	return s_Names.emplace( pszName ? pszName : "" ).first->c_str();
}

void CKV3TransferAliasTable::AddAlias( const char *pszOldName, const char *pszNewName )
{
	CKV3MemberName newName( KV3TransferInternName( pszNewName ) );
	m_OldNamesByNewHash.emplace( newName.GetHashCode(), CKV3MemberName( KV3TransferInternName( pszOldName ) ) );
}

const KeyValues3 *CKV3TransferAliasTable::FindAliasedMember( const KeyValues3 *pTable, const CKV3MemberName &newName ) const
{
	auto range = m_OldNamesByNewHash.equal_range( newName.GetHashCode() );
	for ( auto it = range.first; it != range.second; ++it )
	{
		if ( const KeyValues3 *pMember = pTable->FindMember( it->second ) )
			return pMember;
	}
	return nullptr;
}
