#pragma once
// The stock resource loaders. Without a resource system connected they still parse and
// keep the name, so a file round-trips; a lookup function, when given, resolves the name.

#include <functional>

#include "core/kv3transfer/kv3transferinterfaces.h"

// Finds the resource of a name and kind; null when it isn't known (or not resident).
using KV3ResourceLookupFn_t = std::function<void *( const char *pszName, const char *pszResourceType )>;

class CKV3Transfer_EmptyResourceLoadInterface : public IKV3TransferInterface_ResourceLoad
{
public:
	explicit CKV3Transfer_EmptyResourceLoadInterface( KV3ResourceLookupFn_t fnLookup = nullptr ) : m_fnLookup( std::move( fnLookup ) ) {}
	int LoadResource( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue, const char *pszResourceType, ResourceHandleBase_t *pHandle ) override;

	// A resource name is a relative path: not blank, no control characters, no quotes,
	// no drive or parent-directory parts. Backslashes become slashes.
	static bool ParseResourceName( const char *pszText, CUtlString *pName );

protected:
	KV3ResourceLookupFn_t m_fnLookup;
};

// For data that may only refer to resources already loaded: a name that the lookup
// doesn't know is reported.
class CKV3Transfer_AssertAlreadyLoadedResourceLoadInterface : public CKV3Transfer_EmptyResourceLoadInterface
{
public:
	using CKV3Transfer_EmptyResourceLoadInterface::CKV3Transfer_EmptyResourceLoadInterface;
	int LoadResource( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue, const char *pszResourceType, ResourceHandleBase_t *pHandle ) override;
};
