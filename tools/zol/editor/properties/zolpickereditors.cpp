#include "tools/zol/editor/properties/zolpickereditors.h"

#include "tools/toolutils2/toolattr/toolattrtypes.h"

void CQAttributeEditor_LedgeChoice::Initialize( const PropertyEditorInit_t &init )
{
	PropertyEditorInit_t suggestions = init;
	suggestions.m_Info.m_nHint = TOOLATTR_EDIT_HINT_SUGGESTIONS;
	CQAttributeEditor_DomainAgnostic::Initialize( suggestions );
}
