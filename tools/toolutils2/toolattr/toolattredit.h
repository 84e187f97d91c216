#pragma once
// The edit bracket around every write to a field. Nested brackets on one (instance,
// attribute) pair notify once: the root hears OnAttrWillChange before the first byte
// changes and OnAttrChanged after the outermost bracket closes. Main thread only.

#include <cstdint>

#include "tools/toolutils2/toolattr/toolattrhandle.h"

class IBaseToolAttr;

void BeginAttrEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags );
void EndAttrEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags );

// The bracket of an edit through a get/set access also holds a token from one global
// counter; the token table is keyed by the same pair.
int64_t BeginAttrEditWithToken( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags );
void ClearAttrEditToken( HToolAttrTableInstance handle, IBaseToolAttr *pAttr );

// Open brackets, for checks that none is left behind when control returns to the UI.
int GetOpenAttrEditCount();

// Opens a bracket for the lifetime of the object.
class CToolAttrEditScope
{
public:
	CToolAttrEditScope( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags ) : m_Handle( handle ), m_pAttr( pAttr ), m_nFlags( nFlags )
	{
		BeginAttrEdit( handle, pAttr, nFlags );
	}
	~CToolAttrEditScope() { EndAttrEdit( m_Handle, m_pAttr, m_nFlags ); }
	CToolAttrEditScope( const CToolAttrEditScope & ) = delete;
	CToolAttrEditScope &operator=( const CToolAttrEditScope & ) = delete;

private:
	HToolAttrTableInstance m_Handle;
	IBaseToolAttr *m_pAttr;
	int m_nFlags;
};
