#pragma once
// What the host knows of entity subclasses: the names it offers for a family of subclasses,
// and the class that a subclass name allocates. Both are set by the host at start-up; with
// nothing set there are no subclasses and no name maps to a class.

#include <functional>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

// The class name behind a subclass name; null when the host knows no such subclass.
using EntitySubclassLookupFn_t = std::function<const char *( const char *pszSubclassName )>;
// Appends the subclass names of a family, given by element type or, when that is empty, by scope.
using EntitySubclassListFn_t = std::function<void( const char *pszElementType, int nScope, CUtlVector<CUtlString> *pNames )>;

// An empty function clears the hook.
void SetEntitySubclassLookup( EntitySubclassLookupFn_t fnLookup );
void SetEntitySubclassList( EntitySubclassListFn_t fnList );

// Null when no lookup is set, the name is empty, or the host doesn't know it.
const char *LookupEntitySubclassClassName( const char *pszSubclassName );
void ListEntitySubclasses( const char *pszElementType, int nScope, CUtlVector<CUtlString> *pNames );
