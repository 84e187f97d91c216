#include "zoldoc_lib/zolchildnode.h"

#include "core/text/bufferstring.h"
#include "core/text/pathtools.h"

void CZolChildNode::GetDisplayStrings( CBufferString *pName, CBufferString *pValue, CBufferString *pHint ) const
{
	const char *pRef = GetChildRef();
	pHint->Set( pRef );
	pName->Set( V_UnqualifiedFileName( pRef ) );
	pName->StripExtension();
	pValue->Clear();
}
