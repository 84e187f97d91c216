#pragma once
// The factory of one editor class E, as the property editor system keeps it: made once,
// registered under the name that fields' editor metadata asks for, and asked by the panel
// for an editor whenever a row of that name is built. A new editor needs one line:
//
//   static CPropertyAttributeEditorFactory<CQMyEditor, CPropertyAttributeEditorFactoryBaseFixedHeight> s_Factory( "MyEditor" );
//   s_Factory.RegisterWithPropertyEditorSystem();

#include "tools/toolutils2/propertyeditor/propertyattributeeditorfactory.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorbase.h"

template <typename E, typename Base = CPropertyAttributeEditorFactoryBaseVariableHeight>
class CPropertyAttributeEditorFactory : public Base
{
public:
	// nCreationWord: 1 for an editor that needs the attribute's data to be made.
	explicit CPropertyAttributeEditorFactory( const char *pName, int nCreationWord = 0 ) : Base( pName ), m_nCreationWord( nCreationWord ) {}

	CQAttributeEditor_Base *Create( const PropertyEditorInit_t &init, QWidget *pParent, const char *pArgument ) override
	{
		E *pEditor = new E( pParent );
		PropertyEditorInit_t withArgument = init;
		withArgument.m_Argument = QString::fromUtf8( pArgument ? pArgument : "" );
		pEditor->Initialize( withArgument );
		pEditor->ReadFromAttribute();
		return pEditor;
	}
	int GetCreationWord() const override { return m_nCreationWord; }

private:
	int m_nCreationWord;
};
