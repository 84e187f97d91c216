#pragma once
// A node of any document of a family, by position: the asset, the list (0 to 8, 9 for
// none: the document itself) and the index (-1 for none). Messages of operations across
// files carry it as their context ("Zol Node"), and reports turn it into a link.

#include "core/text/utlstring.h"
#include "tools/toolutils2/errors/errorlistener.h"

class IAsset;

struct ZolNodeLink_t
{
	IAsset *m_pAsset = nullptr;
	int m_nType = 9;
	int m_nIndex = -1;

	bool HasNode() const { return m_nType >= 0 && m_nType < 9 && m_nIndex >= 0; }
	bool operator==( const ZolNodeLink_t &other ) const = default;
};

// "particles/fire.tfxs:3:1": the asset's resource name, the list and the index.
void ErrorContextValueText( const ZolNodeLink_t &link, CUtlString *pOut );
// The text back into a link, the asset found in the asset system. False unless the text
// has exactly three parts and names an asset.
bool ParseZolNodeLink( const char *pText, ZolNodeLink_t *pLink );

using CZolNodeLinkContext = CErrorContextValue<ZolNodeLink_t>;
// The context of a message about a node.
CZolNodeLinkContext MakeZolNodeLinkContext( const ZolNodeLink_t &link );
