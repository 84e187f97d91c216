#pragma once
// Bases of attribute editor factories: a factory is known by the name that a field's
// editor metadata asks for, and registers itself with the connected property editor
// system. Fixed-height factories give rows of 22 pixels; variable-height ones let the
// widget decide. The editor widgets and the template that makes them live in the widget
// layer (tools/toolutils2/widgets/propertyeditor/attributeeditorfactory.h); this side
// only names them.

#include "core/host/ipropertyeditorsystem.h"

class QWidget;
class CQAttributeEditor_Base;
struct PropertyEditorInit_t;

class CPropertyAttributeEditorFactoryBase : public IAttributeEditorFactory
{
public:
	explicit CPropertyAttributeEditorFactoryBase( const char *pName ) : m_pName( pName ) {}
	const char *GetName() const { return m_pName; }

	// Makes the editor under the parent, initialises it with the record and reads its
	// value, in that order. A factory without a widget makes nothing, and the panel shows
	// its own plain editor.
	virtual CQAttributeEditor_Base *Create( const PropertyEditorInit_t &init, QWidget *pParent, const char *pArgument )
	{
		( void )init;
		( void )pParent;
		( void )pArgument;
		return nullptr;
	}
	// 1 when the widget needs the attribute's data to be made, else 0.
	virtual int GetCreationWord() const { return 0; }

	// Registers with the current property editor system. Without one the process stops:
	// a tool that reaches this unconnected would show fields without their editors.
	// False when the name was already taken.
	bool RegisterWithPropertyEditorSystem();

private:
	const char *m_pName;
};

class CPropertyAttributeEditorFactoryBaseFixedHeight : public CPropertyAttributeEditorFactoryBase
{
public:
	static constexpr int ROW_HEIGHT = 22;
	using CPropertyAttributeEditorFactoryBase::CPropertyAttributeEditorFactoryBase;
	int GetFixedRowHeight() const override { return ROW_HEIGHT; }
};

class CPropertyAttributeEditorFactoryBaseVariableHeight : public CPropertyAttributeEditorFactoryBase
{
public:
	using CPropertyAttributeEditorFactoryBase::CPropertyAttributeEditorFactoryBase;
	int GetFixedRowHeight() const override { return -1; }
};
