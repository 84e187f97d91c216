#include "tools/toolutils2/inputbind/bindablecommand.h"

#include <cstring>

#include "core/kv3/kv3membername.h"

uint32_t BindToken( const char *pName )
{
	if ( !pName )
		pName = "";
	return MurmurHash2LowerCase( pName, std::strlen( pName ), KV3_MEMBER_NAME_SEED );
}

CBindableCommand::CBindableCommand( const char *pName ) : m_strName( pName ), m_nToken( BindToken( pName ) )
{
}
