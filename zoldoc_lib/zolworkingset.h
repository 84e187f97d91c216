#pragma once
// The particle systems open in the editor, newest first: the asset pane's "Open Particle
// Systems" view. It holds the assets without references; the sessions own them.

#include <vector>

#include "core/host/iworkingset.h"

class CZolWorkingSet final : public IProceduralWorkingSet
{
public:
	const char *GetName() const override { return "Zol working set"; }
	int GetCount() const override { return int( m_Assets.size() ); }
	bool Contains( IAsset *pAsset ) const override;
	bool Add( IAsset *pAsset ) override;
	bool Remove( IAsset *pAsset ) override;
	void AppendTo( CUtlVector<IAsset *> *pAssets ) const override;

private:
	std::vector<IAsset *> m_Assets;
};
