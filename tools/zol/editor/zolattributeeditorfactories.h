#pragma once
// The attribute editors that particle function fields ask for by name, and their
// registration with the property editor system, once per process.

class CPropertyAttributeEditorFactoryBase;

struct ZolAttributeEditorFactoryEntry_t
{
	const char *m_pName;        // what a schema field's editor metadata asks for
	const char *m_pWidgetClass; // the editor widget the factory makes
	bool m_bFixedHeight;        // rows of 22 pixels, else the widget sets its height
	// Makes the factory; null while the editor widget isn't part of the module, so the
	// field falls back to the property panel's plain editor. An editor class fills it in
	// with its factory of tools/toolutils2/widgets/propertyeditor/attributeeditorfactory.h:
	//   []() -> CPropertyAttributeEditorFactoryBase * {
	//       static CPropertyAttributeEditorFactory<CQParticleVariableRefEditor, CPropertyAttributeEditorFactoryBaseFixedHeight> s_Factory( "ParticleVariableRef" );
	//       return &s_Factory; }
	CPropertyAttributeEditorFactoryBase *( *m_fnCreate )();
};

// The table, in registration order.
const ZolAttributeEditorFactoryEntry_t *GetZolAttributeEditorFactories( int *pCount );

// Registers every factory of the table that can be made. The first call of the process
// registers; later ones do nothing and answer 0. Without a property editor system the
// process stops with a fatal error. Answers the count registered by this call.
int RegisterZolAttributeEditorFactories();
