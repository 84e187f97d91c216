#pragma once
// One named resource: its type, its current data and a reference count. Bindings are
// made by the resource system and live as long as it does, so a handle never dangles;
// the data they hold is replaced whole on each reload.

#include <atomic>
#include <memory>
#include <mutex>

#include "core/host/resourcedata.h"
#include "core/host/resourcetype.h"
#include "core/text/utlstring.h"

class CResourceBinding
{
public:
	CResourceBinding( const char *pName, ResourceType_t nType );
	CResourceBinding( const CResourceBinding & ) = delete;
	CResourceBinding &operator=( const CResourceBinding & ) = delete;

	// The resource name, with forward slashes ("particles/samples/fire.tfxs").
	const char *GetName() const { return m_strName.Get(); }
	ResourceType_t GetType() const { return m_nType; }

	// Reference counting, safe from any thread. Release answers the count left; at 0
	// the binding stays known to the system, with its data, until unreferenced
	// resources are unloaded.
	int AddRef() { return m_nRefCount.fetch_add( 1, std::memory_order_relaxed ) + 1; }
	int Release();
	int GetRefCount() const { return m_nRefCount.load( std::memory_order_acquire ); }

	// The current data, or null before the first load. Holding the pointer keeps that
	// version alive across a reload.
	std::shared_ptr<const CResourceData> GetData() const;
	template <typename T>
	std::shared_ptr<const T> GetDataAs() const { return std::dynamic_pointer_cast<const T>( GetData() ); }
	bool IsLoaded() const { return GetData() != nullptr; }
	// Counts the data replacements; tells a reader that its copy is stale.
	uint32_t GetDataVersion() const { return m_nDataVersion.load( std::memory_order_acquire ); }

	// Publishes new data (null unloads). The resource system tells its listeners; this
	// only swaps.
	void SetData( std::shared_ptr<const CResourceData> pData );

private:
	CUtlString m_strName;
	ResourceType_t m_nType;
	std::atomic<int> m_nRefCount{ 0 };
	std::atomic<uint32_t> m_nDataVersion{ 0 };
	mutable std::mutex m_DataMutex;
	std::shared_ptr<const CResourceData> m_pData;
};

// A strong handle: holds one reference for as long as it lives.
class CResourceHandle
{
public:
	CResourceHandle() = default;
	// Takes a new reference on the binding.
	explicit CResourceHandle( CResourceBinding *pBinding ) : m_pBinding( pBinding )
	{
		if ( m_pBinding )
			m_pBinding->AddRef();
	}
	CResourceHandle( const CResourceHandle &other ) : CResourceHandle( other.m_pBinding ) {}
	CResourceHandle( CResourceHandle &&other ) noexcept : m_pBinding( other.m_pBinding ) { other.m_pBinding = nullptr; }
	CResourceHandle &operator=( const CResourceHandle &other )
	{
		CResourceHandle copy( other );
		std::swap( m_pBinding, copy.m_pBinding );
		return *this;
	}
	CResourceHandle &operator=( CResourceHandle &&other ) noexcept
	{
		std::swap( m_pBinding, other.m_pBinding );
		return *this;
	}
	~CResourceHandle() { Reset(); }

	void Reset()
	{
		if ( m_pBinding )
			m_pBinding->Release();
		m_pBinding = nullptr;
	}

	CResourceBinding *Get() const { return m_pBinding; }
	CResourceBinding *operator->() const { return m_pBinding; }
	explicit operator bool() const { return m_pBinding != nullptr; }
	bool operator==( const CResourceHandle &other ) const { return m_pBinding == other.m_pBinding; }

private:
	CResourceBinding *m_pBinding = nullptr;
};
