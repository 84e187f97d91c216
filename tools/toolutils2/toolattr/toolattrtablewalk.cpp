#include "tools/toolutils2/toolattr/concretetoolattr.h"

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
	if ( !handle.IsValid() )
		return false;
	CUtlVector<IBaseToolAttr *> attributes;
	handle.m_pTable->GetAttributes( handle, &attributes );
	bool bAll = true;
	for ( IBaseToolAttr *pAttr : attributes )
		bAll = pAttr->ResetToDefault( handle ) && bAll;
	return bAll;
}

bool ToolAttrTableCaptureAsDefault( HToolAttrTableInstance handle )
{
	if ( !handle.IsValid() )
		return false;
	CUtlVector<IBaseToolAttr *> attributes;
	handle.m_pTable->GetAttributes( handle, &attributes );
	bool bAll = true;
	for ( IBaseToolAttr *pAttr : attributes )
		bAll = pAttr->CaptureAsDefault( handle ) && bAll;
	return bAll;
}

bool ToolAttrTableApplyCapturedDefault( HToolAttrTableInstance handle, HToolAttrTableInstance source )
{
	if ( !handle.IsValid() )
		return false;
	CUtlVector<IBaseToolAttr *> attributes;
	handle.m_pTable->GetAttributes( handle, &attributes );
	bool bAll = true;
	for ( IBaseToolAttr *pAttr : attributes )
		bAll = pAttr->ApplyCapturedDefault( handle, source ) && bAll;
	return bAll;
}
