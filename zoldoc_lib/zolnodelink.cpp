#include "zoldoc_lib/zolnodelink.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"

void ErrorContextValueText( const ZolNodeLink_t &link, CUtlString *pOut )
{
	pOut->Format( "%s:%d:%d", link.m_pAsset ? link.m_pAsset->GetResourceName() : "", link.m_nType, link.m_nIndex );
}

bool ParseZolNodeLink( const char *pText, ZolNodeLink_t *pLink )
{
	std::vector<std::string> parts;
	std::string text( pText ? pText : "" );
	size_t nStart = 0;
	for ( size_t nColon = text.find( ':' );; nColon = text.find( ':', nStart ) )
	{
		parts.push_back( text.substr( nStart, nColon == std::string::npos ? std::string::npos : nColon - nStart ) );
		if ( nColon == std::string::npos )
			break;
		nStart = nColon + 1;
	}
	IAssetSystem *pAssets = GetAssetSystem();
	if ( parts.size() != 3 || !pAssets )
		return false;
	auto parseInt = []( const std::string &part, int *pOut ) {
		char *pEnd = nullptr;
		long nValue = strtol( part.c_str(), &pEnd, 10 );
		if ( part.empty() || *pEnd )
			return false;
		*pOut = int( nValue );
		return true;
	};
	ZolNodeLink_t link;
	link.m_pAsset = pAssets->FindAssetByResourceName( parts[ 0 ].c_str() );
	if ( !link.m_pAsset || !parseInt( parts[ 1 ], &link.m_nType ) || !parseInt( parts[ 2 ], &link.m_nIndex ) )
		return false;
	*pLink = link;
	return true;
}

CZolNodeLinkContext MakeZolNodeLinkContext( const ZolNodeLink_t &link )
{
	return CZolNodeLinkContext( "Zol Node", link );
}
