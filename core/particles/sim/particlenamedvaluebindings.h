#pragma once
// The named values that a compiled system knows: declared locals first, then each name
// that an input references without a declaration, as a fallback of the expected type.
// Inputs keep the slot; a collection keeps one value per slot.

#include <unordered_map>

#include "core/containers/utlvector.h"
#include "core/mathlib/vector.h"
#include "core/particles/particleparamid.h"
#include "core/text/utlstring.h"

struct ParticleNamedValueEntry_t
{
	ParticleParamID_t m_ID;
	CUtlString m_Type; // Pulse type text: "PVAL_FLOAT", "PVAL_VEC3", "PVAL_TRANSFORM" ...
	bool m_bDeclared = false;
	// The default configuration's value.
	float m_flDefault = 0.0f;
	Vector m_vDefault;
	Vector m_vDefaultAngles;
	// A resource variable's default: the resource name.
	CUtlString m_DefaultResource;
};

class CHostNamedValueBindings
{
public:
	void SetSystemName( const char *pName ) { m_SystemName = pName; }
	void SetSilent( bool bSilent ) { m_bSilent = bSilent; }

	// Adds a declared local; a second declaration of the same name keeps the first.
	int Declare( const ParticleNamedValueEntry_t &entry );
	// The slot of a name, adding a fallback (with a warning unless silent) if it is undeclared; -1 for an empty name.
	int Resolve( const char *pName, const char *pExpectedType );
	int Find( uint32_t nToken ) const;

	int Count() const { return m_Entries.Count(); }
	const ParticleNamedValueEntry_t &Get( int nSlot ) const { return m_Entries[ nSlot ]; }

private:
	CUtlVector<ParticleNamedValueEntry_t> m_Entries;
	std::unordered_map<uint32_t, int> m_SlotByToken;
	CUtlString m_SystemName;
	bool m_bSilent = false;
};
