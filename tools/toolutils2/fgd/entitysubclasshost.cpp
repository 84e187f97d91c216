#include "tools/toolutils2/fgd/entitysubclasshost.h"

#include <utility>

namespace
{
EntitySubclassLookupFn_t &LookupHook()
{
	static EntitySubclassLookupFn_t s_fnLookup;
	return s_fnLookup;
}

EntitySubclassListFn_t &ListHook()
{
	static EntitySubclassListFn_t s_fnList;
	return s_fnList;
}
} // namespace

void SetEntitySubclassLookup( EntitySubclassLookupFn_t fnLookup )
{
	LookupHook() = std::move( fnLookup );
}

void SetEntitySubclassList( EntitySubclassListFn_t fnList )
{
	ListHook() = std::move( fnList );
}

const char *LookupEntitySubclassClassName( const char *pszSubclassName )
{
	if ( !pszSubclassName || !*pszSubclassName || !LookupHook() )
		return nullptr;
	return LookupHook()( pszSubclassName );
}

void ListEntitySubclasses( const char *pszElementType, int nScope, CUtlVector<CUtlString> *pNames )
{
	if ( ListHook() )
		ListHook()( pszElementType ? pszElementType : "", nScope, pNames );
}
