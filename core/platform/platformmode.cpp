#include "core/platform/platformmode.h"

#include "core/platform/commandline.h"

#include <atomic>

namespace
{

// -1: not decided yet, read the command line on first use.
struct PlatformMode_t
{
	const char *m_pParm;
	std::atomic<int> m_nState{ -1 };

	bool IsOn()
	{
		int nState = m_nState.load( std::memory_order_relaxed );
		return nState < 0 ? CommandLine()->HasParm( m_pParm ) : nState != 0;
	}
	void Set( bool bEnabled ) { m_nState.store( bEnabled ? 1 : 0, std::memory_order_relaxed ); }
};

PlatformMode_t s_TestMode{ "-testmode" };
PlatformMode_t s_HeadlessMode{ "-headless" };
PlatformMode_t s_CustomerMachine{ "-customer" };

} // namespace

bool Plat_IsInTestMode() { return s_TestMode.IsOn(); }
bool Plat_IsInHeadlessMode() { return s_HeadlessMode.IsOn(); }
bool Plat_IsRunningOnCustomerMachine() { return s_CustomerMachine.IsOn(); }

void Plat_SetTestMode( bool bEnabled ) { s_TestMode.Set( bEnabled ); }
void Plat_SetHeadlessMode( bool bEnabled ) { s_HeadlessMode.Set( bEnabled ); }
void Plat_SetRunningOnCustomerMachine( bool bEnabled ) { s_CustomerMachine.Set( bEnabled ); }
