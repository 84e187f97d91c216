#include "tools/toolutils2/propertyeditor/propertyattributeeditorfactory.h"

#include "core/platform/fatalerror.h"

bool CPropertyAttributeEditorFactoryBase::RegisterWithPropertyEditorSystem()
{
	IPropertyEditorSystem *pSystem = GetPropertyEditorSystem();
	if ( !pSystem )
		Plat_FatalError( "Cannot register an attribute editor factory before we're connected to the Property Editor System.\n" );
	return pSystem->RegisterAttributeEditorFactory( m_pName, this );
}
