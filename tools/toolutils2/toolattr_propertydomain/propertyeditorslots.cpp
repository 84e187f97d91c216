#include "tools/toolutils2/toolattr_propertydomain/propertyeditorslots.h"

void CPropertyEditorEditSlots::Initialize( IPropertyEditorApplyHost *pHost )
{
	m_pHost = pHost;
	m_bModified = false;
	m_bInIncrementalUpdate = false;
	m_bBeginSent = false;
}

void CPropertyEditorEditSlots::ApplyWith( PropEdModifyType_t eModifyType )
{
	if ( m_pHost )
		m_pHost->Apply( this, eModifyType );
}

void CPropertyEditorEditSlots::UpdateAttributesFromEditor_OneShot_Unconditional()
{
	m_bModified = true;
	ApplyWith( PROPED_MODIFY_ONE_SHOT );
}

void CPropertyEditorEditSlots::UpdateAttributesFromEditor_OneShot_IfModified() { ApplyWith( PROPED_MODIFY_ONE_SHOT ); }

void CPropertyEditorEditSlots::UpdateAttributesFromEditor_Incremental()
{
	m_bModified = true;
	if ( m_bBeginSent )
	{
		ApplyWith( PROPED_MODIFY_CONTINUE );
		return;
	}
	m_bBeginSent = true;
	ApplyWith( PROPED_MODIFY_BEGIN );
}

void CPropertyEditorEditSlots::TermIncrementalOperation()
{
	m_bInIncrementalUpdate = false;
	if ( !m_bBeginSent )
		return;
	m_bModified = true;
	m_bBeginSent = false;
	ApplyWith( PROPED_MODIFY_END );
}

void CPropertyEditorEditSlots::UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_Unconditional()
{
	if ( m_bInIncrementalUpdate )
	{
		UpdateAttributesFromEditor_Incremental();
		return;
	}
	m_bModified = true;
	ApplyWith( PROPED_MODIFY_ONE_SHOT );
}

void CPropertyEditorEditSlots::UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_IfModified()
{
	if ( m_bInIncrementalUpdate )
	{
		UpdateAttributesFromEditor_Incremental();
		return;
	}
	ApplyWith( PROPED_MODIFY_ONE_SHOT );
}
