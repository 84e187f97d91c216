#pragma once
// The storage of a PVAL_RESOURCE value: a pointer to a reference-counted binding, or null.
// Counts change atomically because resource handles cross threads (loading, streaming);
// the last reference hands the binding back to the resource system that made it.

#include <atomic>
#include <cstdint>

#include "core/text/utlstring.h"
#include "core/symbols/globalsymbol.h"

class CPulseResourceBinding;

// The host's resource system as the value types see it. Optional: with none installed
// bindings are standalone records of the name, so values still load, save and compare.
class IPulseResourceSystem
{
public:
	// A binding for the resource with one reference for the caller, or null when the name
	// can't be resolved. The type tag is the full type's subtype ("tmsh", ...), maybe null.
	virtual CPulseResourceBinding *ResolveResource( const char *pName, CGlobalSymbol typeTag ) = 0;
	// The last reference to a binding this system made is gone; the system owns it now.
	virtual void OnLastReferenceReleased( CPulseResourceBinding *pBinding ) = 0;

protected:
	virtual ~IPulseResourceSystem() = default;
};

class CPulseResourceBinding
{
public:
	// Starts with one reference, held by the caller.
	CPulseResourceBinding( const char *pName, CGlobalSymbol typeTag, IPulseResourceSystem *pOwner );
	CPulseResourceBinding( const CPulseResourceBinding & ) = delete;
	CPulseResourceBinding &operator=( const CPulseResourceBinding & ) = delete;
	virtual ~CPulseResourceBinding() = default;

	const char *GetName() const { return m_Name.Get(); }
	CGlobalSymbol GetTypeTag() const { return m_TypeTag; }
	int32_t GetRefCount() const { return m_nRefCount.load( std::memory_order_relaxed ); }

	void AddRef() { m_nRefCount.fetch_add( 1, std::memory_order_relaxed ); }
	// Drops one reference; the last one goes to the owner, or deletes a standalone binding.
	void Release();

private:
	std::atomic<int32_t> m_nRefCount { 1 };
	CUtlString m_Name;
	CGlobalSymbol m_TypeTag;
	IPulseResourceSystem *m_pOwner;
};

// Installs the process's resource system (null to remove it).
void PulseResource_SetSystem( IPulseResourceSystem *pSystem );
IPulseResourceSystem *PulseResource_GetSystem();
// A binding with one reference for the caller: from the installed system, or a standalone
// one when there is none. Null for an empty name or a name the system refuses.
CPulseResourceBinding *PulseResource_Resolve( const char *pName, CGlobalSymbol typeTag );
