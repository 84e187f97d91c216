#pragma once
// Bases of attribute editor factories: a factory is known by the name that a field's
// editor metadata asks for, and registers itself with the connected property editor
// system. Fixed-height factories give rows of 22 pixels; variable-height ones let the
// widget decide.

#include "core/host/ipropertyeditorsystem.h"

class CPropertyAttributeEditorFactoryBase : public IAttributeEditorFactory
{
public:
	explicit CPropertyAttributeEditorFactoryBase( const char *pName ) : m_pName( pName ) {}
	const char *GetName() const { return m_pName; }

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
