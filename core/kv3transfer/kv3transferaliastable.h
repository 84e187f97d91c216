#pragma once
// Renamed members: a file written before a rename still loads. Old names are matched
// ignoring case, like KV3 keys; new names are interned in one process-wide table so that
// lookups can hand out stable member names.

#include <cstdint>
#include <map>

#include "core/kv3/kv3membername.h"

class KeyValues3;

class CKV3TransferAliasTable
{
public:
	void AddAlias( const char *pszOldName, const char *pszNewName );
	// The member of pTable under any old name of the member now called newName; null if none.
	const KeyValues3 *FindAliasedMember( const KeyValues3 *pTable, const CKV3MemberName &newName ) const;

private:
	std::multimap<uint32_t, CKV3MemberName> m_OldNamesByNewHash;
};

// The interned copy of a name, alive until the process ends.
const char *KV3TransferInternName( const char *pszName );
