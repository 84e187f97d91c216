#include "tools/toolutils2/toolattr/toolattrhandle.h"

#include <cstring>

#include "core/kv3/kv3membername.h"

uint32_t ToolAttrTypeTag( const char *pszClassName )
{
	if ( !pszClassName )
		return 0;
	return MurmurHash2LowerCase( pszClassName, std::strlen( pszClassName ), KV3_MEMBER_NAME_SEED );
}
