#pragma once
// The process-wide class table of particle systems: the definition and its two records,
// every function class of lists 0 .. 6 by its schema class, and one synthetic class per
// particle domain. Every node describes itself with it.
//
// It is built on first use from what the connected manager and the schema offer then, so
// nothing may ask for it before the manager is connected.

#include "core/containers/utlvector.h"

class CGameData;
class CGameDataClass;

// Builds the table on first use; never null.
const CGameData *GetParticleGameData();
// A class of the table by name (ignoring case), or null.
const CGameDataClass *FindParticleGameDataClass( const char *pClassName );
// The domain classes, sorted by their UI name in byte order.
const CUtlVector<const CGameDataClass *> &GetParticleDomainClasses();

// The game root whose "gameinfo.gi" names the domain binding files. Set it before the
// first use; without one the table has no domains.
void SetParticleGameRoot( const char *pGameRoot );
// Throws the table away, so that the next use builds it from the manager connected then.
// For hosts that connect another manager; classes of earlier tables stay valid.
void ResetParticleGameData();

