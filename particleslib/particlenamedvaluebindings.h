#pragma once
// The table of variables that a particle system's compile hands to its inputs: each input
// that names a variable asks for its slot here. A name the system doesn't declare still
// gets a slot of the expected type (with a warning), so a dangling reference compiles and
// runs with that type's default.

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "core/containers/utlvector.h"
#include "core/particles/particleparamid.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CParticleNamedValueRef;

class CParticleNamedValueBindings
{
public:
	struct Entry_t
	{
		ParticleParamID_t m_ID;
		CPulseValueFullType m_Type;
	};

	explicit CParticleNamedValueBindings( const char *pszSystemName = "" ) : m_SystemName( pszSystemName ) {}

	// A declared variable; answers its slot (the existing one for a name seen before).
	int AddDeclared( const char *pszName, const CPulseValueFullType &type );
	// The slot of the name, appending a fallback of the expected type for an unknown name.
	int Resolve( const char *pszName, const CPulseValueFullType &expectedType );
	// Resolves the reference and stores the slot in it; an empty reference gets -1.
	void Bind( CParticleNamedValueRef &ref, const CPulseValueFullType &expectedType );

	// Without the warning for undeclared names (conversions that run over many files).
	void SetSilent( bool bSilent ) { m_bSilent = bSilent; }
	const char *GetSystemName() const { return m_SystemName.Get(); }

	int GetCount() const { return m_Entries.Count(); }
	const Entry_t &GetEntry( int nSlot ) const { return m_Entries[ nSlot ]; }
	// Whether some entry has this name token with this type.
	bool HasTokenWithType( uint32_t nToken, const CPulseValueFullType &type ) const;

private:
	int Append( const char *pszName, const CPulseValueFullType &type );

	CUtlString m_SystemName;
	bool m_bSilent = false;
	CUtlVector<Entry_t> m_Entries;
	CUtlVector<CUtlString> m_Names; // keeps the names that entries point at
	std::map<std::string, int, std::less<>> m_SlotByName;
	std::set<std::pair<uint32_t, uint32_t>> m_TokenTypes; // name token, type hash
};
