#pragma once
// The host's property editor system, "PropertyEditorSystem_001": it knows the attribute
// editor factories by name and the property domains that panels may show. The panel
// widget itself belongs to the widget layer, which installs a factory for it here.

#include <functional>

constexpr const char *PROPERTYEDITORSYSTEM_INTERFACE_VERSION = "PropertyEditorSystem_001";

class IPropertyEditDomain;

// Makes the editor widget of one attribute kind. The widget layer derives its factories
// from this and casts back; the registry only keeps them by name.
class IAttributeEditorFactory
{
public:
	virtual ~IAttributeEditorFactory() = default;
	// The fixed row height of its editors, or -1 when the widget sets its own.
	virtual int GetFixedRowHeight() const = 0;
};

// Makes a property panel widget (a QWidget* in the windowed build) under a parent.
using PropertyPanelFactoryFn_t = std::function<void *( void *pParentWidget )>;

class IPropertyEditorSystem
{
public:
	// Registers a factory under the name that a field's editor metadata asks for. False
	// (and nothing changes) when the name is taken. The registry doesn't own factories.
	virtual bool RegisterAttributeEditorFactory( const char *pName, IAttributeEditorFactory *pFactory ) = 0;
	// The factory of a name (compared ignoring case), or null.
	virtual IAttributeEditorFactory *FindAttributeEditorFactory( const char *pName ) const = 0;
	virtual int GetAttributeEditorFactoryCount() const = 0;

	// Domains: registering one twice keeps one entry; removing an unknown one does nothing.
	virtual void RegisterPropertyDomain( IPropertyEditDomain *pDomain ) = 0;
	virtual void RemovePropertyDomain( IPropertyEditDomain *pDomain ) = 0;
	virtual bool IsPropertyDomainRegistered( IPropertyEditDomain *pDomain ) const = 0;

	// The panel widget, through the factory that the widget layer installed; null
	// without one.
	virtual void SetPropertyPanelFactory( PropertyPanelFactoryFn_t fnFactory ) = 0;
	virtual bool HasPropertyPanelFactory() const = 0;
	virtual void *CreatePropertyPanel( void *pParentWidget ) = 0;

protected:
	~IPropertyEditorSystem() = default;
};

IPropertyEditorSystem *GetPropertyEditorSystem();
void SetPropertyEditorSystem( IPropertyEditorSystem *pSystem );
