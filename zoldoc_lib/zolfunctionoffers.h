#pragma once
// What the function picker offers for one list: the presets (initializers only), then the
// manager's classes that an artist may add at the document's version, each with the text
// that tells why it is limited.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "core/particles/particlefunctiontype.h"

class CZolRootNode;
struct ZolFunctionPreset_t;

struct ZolFunctionOffer_t
{
	CUtlString m_ClassName;
	CUtlString m_FriendlyName;
	// The friendly name, or the exclusion text built on it.
	CUtlString m_Text;
	CUtlString m_Description;
	int m_nExclusionGroup = -2;
	bool m_bEnabled = true;
	// Set on preset entries: AddFunction runs its initialiser.
	const ZolFunctionPreset_t *m_pPreset = nullptr;
};

// "Generic", "Singleton", "Position", ... for the groups -2 .. 5; "" for others.
const char *GetParticleExclusionGroupWord( int nGroup );

// The entries for the list of eType of pRoot (which may be null: an empty list) at the
// version. pGameName is the host's game name; "nuba" hides two classes.
void GetParticleFunctionOffers( const CZolRootNode *pRoot, ParticleFunctionType_t eType, int nVersion, const char *pGameName,
	CUtlVector<ZolFunctionOffer_t> *pOffers );
