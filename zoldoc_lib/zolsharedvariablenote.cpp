#include "zoldoc_lib/zolsharedvariablenote.h"

#include "zoldoc_lib/zolnamedvaluecache.h"

void BuildZolSharedVariableNote( const char *pName, const CPulseValueFullType &type, const CUtlVector<ZolNamedValueRecord_t> &records, ZolSharedVariableNote_t *pNote )
{
	*pNote = ZolSharedVariableNote_t();
	bool bParents = false, bChildren = false, bTypeDiffers = false;
	CUtlString strFiles, strConflict, strLine;
	for ( const ZolNamedValueRecord_t &record : records )
	{
		if ( record.m_bThisFile )
			continue;
		bParents = bParents || record.m_nParentDepth >= 1;
		bChildren = bChildren || record.m_nChildDepth >= 1;
		strLine.Format( "\n%s", record.m_FileName.Get() );
		strFiles.Append( strLine.Get() );
		if ( strConflict.IsEmpty() )
		{
			strConflict.Format( "Conflicting types for %s:", pName ? pName : "" );
			strLine.Format( "\n(this file): %s", type.ToString().Get() );
			strConflict.Append( strLine.Get() );
		}
		strLine.Format( "\n%s: %s", record.m_FileName.Get(), record.m_Type.ToString().Get() );
		strConflict.Append( strLine.Get() );
		bTypeDiffers = bTypeDiffers || record.m_Type != type;
		pNote->m_bShared = true;
	}
	if ( !pNote->m_bShared )
		return;
	pNote->m_SharedIcon = "game:tools/images/zol/named_value_shared.png";
	if ( bParents && bChildren )
		pNote->m_SharedText = "This variable is shared with parents and children:";
	else
		pNote->m_SharedText.Format( "This variable is shared with %s:", bChildren ? "children" : "parents" );
	pNote->m_SharedText.Append( strFiles.Get() );
	if ( bTypeDiffers )
	{
		pNote->m_bConflict = true;
		pNote->m_AlertIcon = "game:tools/images/propertyeditor/attr_alert.png";
		pNote->m_ConflictText = strConflict;
	}
}
