#include "tools/toolutils2/toolattr/concretetoolattr.h"

// Calls fn on every attribute of the table, even after one fails, so a reset or capture
// does all it can; answers whether every call succeeded. An invalid handle answers false.
template <typename Fn> static bool ForEveryAttribute( HToolAttrTableInstance handle, Fn &&fn )
{
	if ( !handle.IsValid() )
		return false;
	CUtlVector<IBaseToolAttr *> attributes;
	handle.m_pTable->GetAttributes( handle, &attributes );
	bool bAll = true;
	for ( IBaseToolAttr *pAttr : attributes )
		bAll = fn( pAttr ) && bAll;
	return bAll;
}

bool ToolAttrTableIsAtDefault( HToolAttrTableInstance handle )
{
	if ( !handle.IsValid() )
		return true;
	CUtlVector<IBaseToolAttr *> attributes;
	handle.m_pTable->GetAttributes( handle, &attributes );
	for ( IBaseToolAttr *pAttr : attributes )
	{
		bool bHasDefault = false;
		if ( !pAttr->IsAtDefault( handle, &bHasDefault ) )
			return false;
	}
	return true;
}

bool ToolAttrTableResetToDefault( HToolAttrTableInstance handle )
{
	return ForEveryAttribute( handle, [ & ]( IBaseToolAttr *pAttr ) { return pAttr->ResetToDefault( handle ); } );
}

bool ToolAttrTableCaptureAsDefault( HToolAttrTableInstance handle )
{
	return ForEveryAttribute( handle, [ & ]( IBaseToolAttr *pAttr ) { return pAttr->CaptureAsDefault( handle ); } );
}

bool ToolAttrTableApplyCapturedDefault( HToolAttrTableInstance handle, HToolAttrTableInstance source )
{
	return ForEveryAttribute( handle, [ & ]( IBaseToolAttr *pAttr ) { return pAttr->ApplyCapturedDefault( handle, source ); } );
}
