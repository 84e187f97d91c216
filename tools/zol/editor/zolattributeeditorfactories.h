#pragma once
// The attribute editors that particle function fields ask for by name, and their
// registration with the property editor system, once per process.

class CPropertyAttributeEditorFactoryBase;

struct ZolAttributeEditorFactoryEntry_t
{
	const char *m_pName;        // what a schema field's editor metadata asks for
	const char *m_pWidgetClass; // the editor widget the factory makes
	bool m_bFixedHeight;        // rows of 22 pixels, else the widget sets its height
	// The factory of the editor, made once and kept for the process; it registers under
	// the entry's name.
	CPropertyAttributeEditorFactoryBase *( *m_fnCreate )( const char *pName );
};

// The table, in registration order.
const ZolAttributeEditorFactoryEntry_t *GetZolAttributeEditorFactories( int *pCount );

// Registers every factory of the table with the connected property editor system, once: a
// system that has them already gets none again (the answer is then 0). Without a property
// editor system the process stops with a fatal error. Answers the count registered.
int RegisterZolAttributeEditorFactories();
