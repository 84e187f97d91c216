#pragma once
// The plain resource system: a table of bindings by name and a listener list.

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <unordered_map>

#include "core/host/iresourcesystem.h"

class CResourceSystem final : public IResourceSystem
{
public:
	CResourceSystem();
	~CResourceSystem();

	CResourceBinding *FindOrCreateBinding( const char *pResourceName ) override;
	CResourceBinding *FindBinding( const char *pResourceName ) const override;
	void ReplaceResourceData( CResourceBinding *pBinding, std::shared_ptr<const CResourceData> pData ) override;
	void NotifyResourcesReloaded( const CUtlVector<ResourceChange_t> &changes ) override;
	void AddListener( IResourceListener *pListener ) override;
	void RemoveListener( IResourceListener *pListener ) override;
	int UnloadUnreferenced() override;

	int GetBindingCount() const;

private:
	mutable std::shared_mutex m_BindingMutex;
	std::unordered_map<std::string, std::unique_ptr<CResourceBinding>> m_Bindings;

	std::mutex m_ListenerMutex;
	CUtlVector<IResourceListener *> m_Listeners;
};
