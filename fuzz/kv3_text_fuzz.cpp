// Feeds arbitrary bytes to the KV3 text reader, as a document and as a fragment. Whatever
// reads must write, read back to an equal tree and write again to the very same bytes;
// whatever fails must say where, as "line:col: message".

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/utlstring.h"

namespace
{
[[noreturn]] void Stop( const char *pWhat, const CUtlString &detail )
{
	fprintf( stderr, "kv3_text_fuzz: %s\n%s\n", pWhat, detail.Get() );
	abort();
}

bool HasPosition( const char *pError )
{
	int nLine = 0, nColumn = 0;
	return sscanf( pError, "%d:%d: ", &nLine, &nColumn ) == 2 && nLine >= 1 && nColumn >= 1;
}

void CheckOneWayIn( const char *pText, size_t nSize, unsigned nFlags )
{
	KeyValues3 kv;
	CUtlString error;
	if ( !LoadKV3FromText( &kv, &error, pText, nSize, KV3_FORMAT_GENERIC, nFlags ) )
	{
		if ( !HasPosition( error.Get() ) || !kv.IsNull() )
			Stop( "a refusal without a position, or with a value left behind", error );
		return;
	}

	KeyValues3 copy( kv );
	if ( !copy.IsEqual( kv ) )
		Stop( "a deep copy differs from its original", error );

	CUtlString first;
	if ( !SaveKV3ToString( &kv, &first, KV3_FORMAT_GENERIC ) )
		Stop( "a tree that was read can't be written", error );
	KeyValues3 again;
	if ( !LoadKV3FromText( &again, &error, first.Get(), first.Length(), KV3_FORMAT_GENERIC ) )
		Stop( "written text doesn't read back", error );
	if ( !again.IsEqual( kv ) )
		Stop( "the tree read back differs", first );
	CUtlString second;
	if ( !SaveKV3ToString( &again, &second, KV3_FORMAT_GENERIC ) || !( second == first ) )
		Stop( "writing the tree read back gives other text", second );
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *pData, size_t nSize )
{
	const char *pText = reinterpret_cast<const char *>( pData );
	CheckOneWayIn( pText, nSize, KV3_LOAD_ANY_FORMAT );
	CheckOneWayIn( pText, nSize, KV3_LOAD_FRAGMENT );
	return 0;
}
