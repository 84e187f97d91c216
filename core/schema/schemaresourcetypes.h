#pragma once
// Resource references as fields hold them. The schema and the KV3 transfer only need the
// name and an opaque binding; the resource system fills the binding when it resolves a name.

#include "core/text/utlstring.h"

// A resource named by path, not loaded.
struct CResourceName
{
	bool operator==( const CResourceName &other ) const { return m_Name == other.m_Name; }

	CUtlString m_Name;
};

// A handle to a resource; m_pBinding is the resource system's record, null when unresolved.
struct ResourceHandleBase_t
{
	bool operator==( const ResourceHandleBase_t &other ) const { return m_pBinding == other.m_pBinding && m_Name == other.m_Name; }
	bool IsValid() const { return m_pBinding != nullptr; }
	void Clear()
	{
		m_pBinding = nullptr;
		m_Name.Clear();
	}

	void *m_pBinding = nullptr;
	CUtlString m_Name;
};

// A handle to a resource of the kind that Info names with its static s_pszResourceType.
template <typename Info>
struct CStrongHandle : ResourceHandleBase_t
{
	static const char *GetResourceType() { return Info::s_pszResourceType; }
};
