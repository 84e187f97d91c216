#pragma once
// The game's modifier table of particle systems as the reference navigator follows it: a
// pair (a, b) means that one can stand in for the other, so each enters under both.
// Paths compare ignoring case and slash kind.

#include <string>
#include <unordered_map>
#include <vector>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

class IGameToolsService;

class CZolModifierTable
{
public:
	// The target that stands for "no effect": pairs that lead to it are left out.
	static constexpr const char *NULL_TARGET = "particles/error/null.tfxs";

	void Clear() { m_Entries.clear(); }
	// Enters the pair both ways, unless its target is the null effect.
	void AddPair( const char *pSource, const char *pTarget );
	// Empties the table and fills it with the service's "particle" pairs; without a
	// service it stays empty.
	void Reload( IGameToolsService *pService );
	// The paths entered under a path, in the order they came.
	const std::vector<CUtlString> *Find( const char *pPath ) const;
	bool IsEmpty() const { return m_Entries.empty(); }

private:
	std::unordered_map<std::string, std::vector<CUtlString>> m_Entries;
};
