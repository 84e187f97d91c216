#include "tools/toolutils2/toolattr/toolattredit.h"

#include <functional>
#include <unordered_map>
#include <utility>

#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrnotifyroot.h"

namespace
{
using EditKey_t = std::pair<const void *, const void *>;

struct EditKeyHash_t
{
	size_t operator()( const EditKey_t &key ) const
	{
		size_t nA = std::hash<const void *>()( key.first );
		size_t nB = std::hash<const void *>()( key.second );
		return nA ^ ( nB + 0x9e3779b97f4a7c15ull + ( nA << 6 ) + ( nA >> 2 ) );
	}
};

std::unordered_map<EditKey_t, int, EditKeyHash_t> &EditCounts()
{
	static std::unordered_map<EditKey_t, int, EditKeyHash_t> s_Counts;
	return s_Counts;
}

std::unordered_map<EditKey_t, int64_t, EditKeyHash_t> &EditTokens()
{
	static std::unordered_map<EditKey_t, int64_t, EditKeyHash_t> s_Tokens;
	return s_Tokens;
}

int64_t s_nNextEditToken = 0;
} // namespace

void BeginAttrEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags )
{
	int &nCount = EditCounts()[ EditKey_t( handle.m_pInstance, pAttr ) ];
	if ( ++nCount != 1 )
		return;
	if ( handle.m_pNotifyRoot )
		handle.m_pNotifyRoot->OnAttrWillChange( handle, pAttr );
	pAttr->OnPreChange( handle, nFlags );
}

void EndAttrEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags )
{
	auto it = EditCounts().find( EditKey_t( handle.m_pInstance, pAttr ) );
	if ( it == EditCounts().end() )
		return; // an end without a begin: nothing was announced, so nothing to close
	if ( it->second == 1 )
	{
		if ( handle.m_pNotifyRoot )
			handle.m_pNotifyRoot->OnAttrChanged( handle, pAttr );
		pAttr->OnPostChange( handle, nFlags );
		// The callbacks may have opened and closed brackets of their own; look again.
		it = EditCounts().find( EditKey_t( handle.m_pInstance, pAttr ) );
		if ( it == EditCounts().end() )
			return;
	}
	if ( --it->second <= 0 )
		EditCounts().erase( it );
}

int64_t BeginAttrEditWithToken( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags )
{
	BeginAttrEdit( handle, pAttr, nFlags );
	int64_t nToken = s_nNextEditToken++;
	EditTokens()[ EditKey_t( handle.m_pInstance, pAttr ) ] = nToken;
	return nToken;
}

void ClearAttrEditToken( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) { EditTokens().erase( EditKey_t( handle.m_pInstance, pAttr ) ); }

int GetOpenAttrEditCount() { return static_cast<int>( EditCounts().size() + EditTokens().size() ); }
