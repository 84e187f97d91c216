#include "tools/toolutils2/fgd/basekv3datawithfgdclass.h"

#include <cstring>

#include "core/containers/utlvector.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"

IBaseToolAttr *CBaseKV3DataWithFGDClass::FindAttribute( HToolAttrTableInstance handle, const char *pszName )
{
	CUtlVector<IBaseToolAttr *> attributes;
	GetAttributes( handle, &attributes );
	for ( IBaseToolAttr *pAttr : attributes )
	{
		if ( !strcmp( pAttr->GetName(), pszName ) )
			return pAttr;
	}
	return nullptr;
}
