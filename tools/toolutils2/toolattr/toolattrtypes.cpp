#include "tools/toolutils2/toolattr/toolattrtypes.h"

#include "core/kv3/kv3membername.h"

CToolEditContextQuery_String::CToolEditContextQuery_String( const char *pszKey )
	: m_Key( pszKey ), m_nKeyHash( MurmurHash2LowerCase( m_Key.Get(), m_Key.Length(), KV3_MEMBER_NAME_SEED ) )
{
}
