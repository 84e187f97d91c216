#pragma once
// The host's resource system: compiled resources by name. Names compare ignoring case
// and either slash; they are kept with forward slashes.

#include "core/containers/utlvector.h"
#include "core/host/resourcebinding.h"

constexpr const char *RESOURCESYSTEM_INTERFACE_VERSION = "ResourceSystem_001";

struct ResourceChange_t
{
	ResourceType_t m_nType = RESOURCE_TYPE_NONE;
	CUtlString m_strName;
};

// Told of resources whose data was replaced, in batches.
class IResourceListener
{
public:
	virtual void OnResourcesReloaded( const CUtlVector<ResourceChange_t> &changes ) = 0;

protected:
	~IResourceListener() = default;
};

class IResourceSystem
{
public:
	// The binding of the name, made (without data) on first request; its type comes from
	// the name's extension. Null for an empty name.
	virtual CResourceBinding *FindOrCreateBinding( const char *pResourceName ) = 0;
	// The known binding of the name, or null.
	virtual CResourceBinding *FindBinding( const char *pResourceName ) const = 0;
	// A strong handle on the name's binding (empty for an empty name).
	CResourceHandle GetResource( const char *pResourceName ) { return CResourceHandle( FindOrCreateBinding( pResourceName ) ); }

	// Replaces the data of a resource and tells the listeners of it.
	virtual void ReplaceResourceData( CResourceBinding *pBinding, std::shared_ptr<const CResourceData> pData ) = 0;
	// Tells the listeners of a batch of changes at once.
	virtual void NotifyResourcesReloaded( const CUtlVector<ResourceChange_t> &changes ) = 0;

	// Listeners are called on the thread that changes the data (the tool's main thread).
	virtual void AddListener( IResourceListener *pListener ) = 0;
	virtual void RemoveListener( IResourceListener *pListener ) = 0;

	// Drops the data of every resource that nobody references; answers how many.
	virtual int UnloadUnreferenced() = 0;

protected:
	~IResourceSystem() = default;
};

IResourceSystem *GetResourceSystem();
void SetResourceSystem( IResourceSystem *pResourceSystem );

// The key a resource name is known by: lower case, forward slashes, no leading slash.
CUtlString ResourceNameKey( const char *pResourceName );
