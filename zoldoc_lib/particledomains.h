#pragma once
// Particle domains: the named values that a system's variables can bind to, declared by
// the Pulse hook classes of binding files. Each domain becomes a synthetic class of the
// particle class table, whose metadata list the domain's leaves.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

class CGameData;
class CGameDataClass;

struct ParticleDomainLeaf_t
{
	CUtlString m_UIPath;
	CUtlString m_InternalPath;
	CUtlString m_Description;
	int m_nPulseType = -1; // a PulseValueType_t
};

struct ParticleDomain_t
{
	CUtlString m_UIName;
	CUtlString m_InternalName;
	CUtlVector<ParticleDomainLeaf_t> m_Leaves;
};

// Gathers the domains that the classes of a read binding set declare: classes with
// "is_pulse_hook" and "particle_domain_internal_name" metadata; their "pulse_outparams"
// become leaves. Several classes may add to one domain.
void CollectParticleDomains( const CGameData &bindings, CUtlVector<ParticleDomain_t> *pDomains );

// Reads the binding files named by the game information's "pulse_bindings" list (in its
// "Brakel" block) under pGameRoot and gathers their domains. A missing list or file adds
// nothing; pReport (optional) receives what could not be read.
void LoadParticleDomains( const char *pGameRoot, CUtlVector<ParticleDomain_t> *pDomains, CUtlString *pReport );

// Enters one synthetic class per domain into the table, named by its internal name, with
// "MParticleDomainTag" and "MParticleNamedValueDeclaration" metadata (leaves sorted by UI
// path ignoring case). pSorted receives the classes sorted by UI name in byte order.
void AddParticleDomainClasses( CGameData *pTable, const CUtlVector<ParticleDomain_t> &domains, CUtlVector<const CGameDataClass *> *pSorted );
