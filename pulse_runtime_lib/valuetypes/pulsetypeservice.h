#pragma once
// Object types (entity classes, panel kinds, enums) live in host modules, one type scope
// per module. A module registers its queries for its scope; value operations ask the
// scope current on their thread. With no queries installed every question answers no,
// so plain value work never needs a host.

#include <atomic>
#include <cstdint>

#include "core/symbols/globalsymbol.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CUtlString;

enum PulseTypeScope_t : int32_t
{
	PULSE_TYPE_SCOPE_PULSE_SYSTEM = 0,
	PULSE_TYPE_SCOPE_SERVER = 1,
	PULSE_TYPE_SCOPE_CLIENT = 2,
	PULSE_TYPE_SCOPE_RESOURCE_COMPILER = 3,
	PULSE_TYPE_SCOPE_TEST = 4,
	PULSE_TYPE_SCOPE_COUNT = 5, // also "no scope"
};

// "pulse_system.dll" .. "[test]"; "[unknown]" for any other number.
const char *PulseTypeScope_GetName( int nScope );
// Case-insensitive; PULSE_TYPE_SCOPE_COUNT for an unknown or null name.
int PulseTypeScope_FromName( const char *pName );

class IPulseTypeQueriesForScope
{
public:
	// May a value of `from` stand for `to` without a run-time test?
	virtual bool IsObjectTypeCompatible( const CPulseValueFullType &from, const CPulseValueFullType &to ) const = 0;
	// Is this value an instance of `to` right now?
	virtual bool IsInstanceOf( const CPulseValueFullType &type, const void *pValue, const CPulseValueFullType &to ) const = 0;
	// Does the handle resolve to a live object?
	virtual bool IsLive( const CPulseValueFullType &type, const void *pValue ) const = 0;
	// The real type of the object behind a handle.
	virtual CPulseValueFullType GetActualType( const CPulseValueFullType &type, const void *pValue ) const = 0;

	// Schema enums of this scope, named by a PVAL_SCHEMA_ENUM subtype. The name of a value
	// (the flags text for a bit-flag enum); false when the enum is unknown or the value
	// has no name.
	virtual bool GetEnumeratorName( CGlobalSymbol enumName, int64_t nValue, CUtlString *pName ) const;
	// The value of a name (or flags text); false with a message when it isn't one.
	virtual bool FindEnumeratorValue( CGlobalSymbol enumName, const char *pText, int64_t *pValue, CUtlString *pError ) const;

protected:
	virtual ~IPulseTypeQueriesForScope() = default;
};

class CPulseScopeEnumeratingTypeService
{
public:
	static CPulseScopeEnumeratingTypeService &Get();

	// Null removes a scope's queries. Out-of-range scopes are ignored.
	void SetQueriesForScope( int nScope, IPulseTypeQueriesForScope *pQueries );
	IPulseTypeQueriesForScope *GetQueriesForScope( int nScope ) const;

	// The scope that value operations on this thread ask; PULSE_TYPE_SCOPE_COUNT (none)
	// until set. Graph instances set it around their work.
	static int GetCurrentScope();
	static void SetCurrentScope( int nScope );
	IPulseTypeQueriesForScope *GetCurrentQueries() const { return GetQueriesForScope( GetCurrentScope() ); }

	// The four questions, asked of the current scope; "no" (or the type unchanged) without one.
	bool IsObjectTypeCompatible( const CPulseValueFullType &from, const CPulseValueFullType &to ) const;
	bool IsInstanceOf( const CPulseValueFullType &type, const void *pValue, const CPulseValueFullType &to ) const;
	bool IsLive( const CPulseValueFullType &type, const void *pValue ) const;
	CPulseValueFullType GetActualType( const CPulseValueFullType &type, const void *pValue ) const;

private:
	std::atomic<IPulseTypeQueriesForScope *> m_pQueries[ PULSE_TYPE_SCOPE_COUNT ] = {};
};

// Sets the current scope for this thread for its lifetime, restoring the previous one.
class CPulseTypeScopeGuard
{
public:
	explicit CPulseTypeScopeGuard( int nScope );
	~CPulseTypeScopeGuard();
	CPulseTypeScopeGuard( const CPulseTypeScopeGuard & ) = delete;
	CPulseTypeScopeGuard &operator=( const CPulseTypeScopeGuard & ) = delete;

private:
	int m_nPrevious;
};

// A module's static registration of its queries under its module name; undone when the
// module unloads.
class CPulseModuleRegistrationHook
{
public:
	CPulseModuleRegistrationHook( const char *pModuleName, IPulseTypeQueriesForScope *pQueries );
	~CPulseModuleRegistrationHook();
	CPulseModuleRegistrationHook( const CPulseModuleRegistrationHook & ) = delete;
	CPulseModuleRegistrationHook &operator=( const CPulseModuleRegistrationHook & ) = delete;

	int GetScope() const { return m_nScope; }

private:
	int m_nScope;
	IPulseTypeQueriesForScope *m_pQueries;
};
