#include "pulse_runtime_lib/valuetypes/pulsetypeservice.h"

#include "core/text/strtools.h"

namespace
{
constexpr const char *s_ScopeNames[ PULSE_TYPE_SCOPE_COUNT ] = {
	"pulse_system.dll",
	"server.dll",
	"client.dll",
	"resourcecompiler.dll",
	"[test]",
};

thread_local int t_nCurrentScope = PULSE_TYPE_SCOPE_COUNT;
} // namespace

const char *PulseTypeScope_GetName( int nScope )
{
	if ( nScope < 0 || nScope >= PULSE_TYPE_SCOPE_COUNT )
		return "[unknown]";
	return s_ScopeNames[ nScope ];
}

int PulseTypeScope_FromName( const char *pName )
{
	if ( !pName )
		return PULSE_TYPE_SCOPE_COUNT;
	for ( int i = 0; i < PULSE_TYPE_SCOPE_COUNT; ++i )
	{
		if ( V_stricmp_fast( pName, s_ScopeNames[ i ] ) == 0 )
			return i;
	}
	return PULSE_TYPE_SCOPE_COUNT;
}

bool IPulseTypeQueriesForScope::GetEnumeratorName( CGlobalSymbol, int64_t, CUtlString * ) const
{
	return false;
}

bool IPulseTypeQueriesForScope::FindEnumeratorValue( CGlobalSymbol, const char *, int64_t *, CUtlString * ) const
{
	return false;
}

CPulseScopeEnumeratingTypeService &CPulseScopeEnumeratingTypeService::Get()
{
	static CPulseScopeEnumeratingTypeService s_Service;
	return s_Service;
}

void CPulseScopeEnumeratingTypeService::SetQueriesForScope( int nScope, IPulseTypeQueriesForScope *pQueries )
{
	if ( nScope >= 0 && nScope < PULSE_TYPE_SCOPE_COUNT )
		m_pQueries[ nScope ].store( pQueries );
}

IPulseTypeQueriesForScope *CPulseScopeEnumeratingTypeService::GetQueriesForScope( int nScope ) const
{
	if ( nScope < 0 || nScope >= PULSE_TYPE_SCOPE_COUNT )
		return nullptr;
	return m_pQueries[ nScope ].load();
}

int CPulseScopeEnumeratingTypeService::GetCurrentScope()
{
	return t_nCurrentScope;
}

void CPulseScopeEnumeratingTypeService::SetCurrentScope( int nScope )
{
	t_nCurrentScope = nScope;
}

bool CPulseScopeEnumeratingTypeService::IsObjectTypeCompatible( const CPulseValueFullType &from, const CPulseValueFullType &to ) const
{
	IPulseTypeQueriesForScope *pQueries = GetCurrentQueries();
	return pQueries && pQueries->IsObjectTypeCompatible( from, to );
}

bool CPulseScopeEnumeratingTypeService::IsInstanceOf( const CPulseValueFullType &type, const void *pValue, const CPulseValueFullType &to ) const
{
	IPulseTypeQueriesForScope *pQueries = GetCurrentQueries();
	return pQueries && pQueries->IsInstanceOf( type, pValue, to );
}

bool CPulseScopeEnumeratingTypeService::IsLive( const CPulseValueFullType &type, const void *pValue ) const
{
	IPulseTypeQueriesForScope *pQueries = GetCurrentQueries();
	return pQueries && pQueries->IsLive( type, pValue );
}

CPulseValueFullType CPulseScopeEnumeratingTypeService::GetActualType( const CPulseValueFullType &type, const void *pValue ) const
{
	IPulseTypeQueriesForScope *pQueries = GetCurrentQueries();
	return pQueries ? pQueries->GetActualType( type, pValue ) : type;
}

CPulseTypeScopeGuard::CPulseTypeScopeGuard( int nScope )
	: m_nPrevious( CPulseScopeEnumeratingTypeService::GetCurrentScope() )
{
	CPulseScopeEnumeratingTypeService::SetCurrentScope( nScope );
}

CPulseTypeScopeGuard::~CPulseTypeScopeGuard()
{
	CPulseScopeEnumeratingTypeService::SetCurrentScope( m_nPrevious );
}

CPulseModuleRegistrationHook::CPulseModuleRegistrationHook( const char *pModuleName, IPulseTypeQueriesForScope *pQueries )
	: m_nScope( PulseTypeScope_FromName( pModuleName ) ), m_pQueries( pQueries )
{
	CPulseScopeEnumeratingTypeService::Get().SetQueriesForScope( m_nScope, pQueries );
}

CPulseModuleRegistrationHook::~CPulseModuleRegistrationHook()
{
	// Only undo our own registration: a reloaded module may have replaced it already.
	CPulseScopeEnumeratingTypeService &service = CPulseScopeEnumeratingTypeService::Get();
	if ( service.GetQueriesForScope( m_nScope ) == m_pQueries )
		service.SetQueriesForScope( m_nScope, nullptr );
}
