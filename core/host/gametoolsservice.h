#pragma once
// The plain game tools service: the modifier table is the KV3 file
// "scripts/asset_modifiers.kv3" of the game root, read afresh at each question:
//
//   { modifiers = [ { type = "particle" source = "particles/fire.tfxs" target = "particles/fire_blue.tfxs" } ] }
//
// A missing file means no modifiers; a broken one is logged once and means none.

#include "core/host/igametoolsservice.h"

class IFileSystem;

class CGameToolsService final : public IGameToolsService
{
public:
	explicit CGameToolsService( IFileSystem *pFileSystem ) : m_pFileSystem( pFileSystem ) {}
	void GetAssetModifiers( const char *pKind, CUtlVector<AssetModifierPair_t> *pPairs ) override;

	static constexpr const char *MODIFIERS_FILE = "scripts/asset_modifiers.kv3";

private:
	IFileSystem *m_pFileSystem;
};
