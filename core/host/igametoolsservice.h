#pragma once
// The game's own tool data that editors read: for now the asset modifier table, by which
// a game replaces one asset by another (an item that restyles an effect). It may be
// absent; callers then know no modifiers.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

constexpr const char *GAMETOOLSSERVICE_INTERFACE_VERSION = "GameToolsService_001";

// One entry of the modifier table: where the game would use the source asset, the
// target is used instead. Paths are resource names ("particles/fire.tfxs").
struct AssetModifierPair_t
{
	CUtlString m_Source;
	CUtlString m_Target;
};

class IGameToolsService
{
public:
	// The pairs of one kind of asset ("particle"), in the order the game lists them.
	// Replaces *pPairs.
	virtual void GetAssetModifiers( const char *pKind, CUtlVector<AssetModifierPair_t> *pPairs ) = 0;

protected:
	~IGameToolsService() = default;
};

IGameToolsService *GetGameToolsService();
void SetGameToolsService( IGameToolsService *pService );
