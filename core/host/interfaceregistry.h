#pragma once
// Services by versioned name: a list of named factories, walked by
// Host_CreateInterface the way a module's CreateInterface export is. Registrations are
// usually static objects, so the list exists before main; the host also registers the
// services it makes at start-up.

enum InterfaceReturnCode_t
{
	IFACE_OK = 0,
	IFACE_FAILED = 1,
};

using InstantiateInterfaceFn_t = void *(*)();
using CreateInterfaceFn_t = void *(*)( const char *pName, int *pReturnCode );

// One entry of the list. Static instances register themselves; the list keeps the
// newest first. The name is compared exactly (case-sensitive), and must outlive the
// entry.
class CHostInterfaceReg
{
public:
	CHostInterfaceReg( const char *pName, InstantiateInterfaceFn_t fnCreate );
	// An entry that answers a fixed object.
	CHostInterfaceReg( const char *pName, void *pInterface );
	~CHostInterfaceReg();
	CHostInterfaceReg( const CHostInterfaceReg & ) = delete;
	CHostInterfaceReg &operator=( const CHostInterfaceReg & ) = delete;

	const char *GetName() const { return m_pName; }
	void *Create() const { return m_fnCreate ? m_fnCreate() : m_pInterface; }
	const CHostInterfaceReg *GetNext() const { return m_pNext; }

	static const CHostInterfaceReg *GetFirst();

private:
	const char *m_pName;
	InstantiateInterfaceFn_t m_fnCreate = nullptr;
	void *m_pInterface = nullptr;
	CHostInterfaceReg *m_pNext = nullptr;
};

// The object of the first entry of that name and IFACE_OK in *pReturnCode; null and
// IFACE_FAILED for an unknown name. pReturnCode may be null.
void *Host_CreateInterface( const char *pName, int *pReturnCode );

// Typed lookup: static_cast of the answer.
template <typename T>
T *Host_FindInterface( const char *pName )
{
	return static_cast<T *>( Host_CreateInterface( pName, nullptr ) );
}
