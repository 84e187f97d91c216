#pragma once
// The plain property editor system: registries in memory.

#include <mutex>
#include <string>
#include <unordered_map>

#include "core/containers/utlvector.h"
#include "core/host/ipropertyeditorsystem.h"

class CPropertyEditorSystem final : public IPropertyEditorSystem
{
public:
	bool RegisterAttributeEditorFactory( const char *pName, IAttributeEditorFactory *pFactory ) override;
	IAttributeEditorFactory *FindAttributeEditorFactory( const char *pName ) const override;
	int GetAttributeEditorFactoryCount() const override;

	void RegisterPropertyDomain( IPropertyEditDomain *pDomain ) override;
	void RemovePropertyDomain( IPropertyEditDomain *pDomain ) override;
	bool IsPropertyDomainRegistered( IPropertyEditDomain *pDomain ) const override;

	void SetPropertyPanelFactory( PropertyPanelFactoryFn_t fnFactory ) override;
	bool HasPropertyPanelFactory() const override;
	void *CreatePropertyPanel( void *pParentWidget ) override;

private:
	mutable std::mutex m_Mutex;
	std::unordered_map<std::string, IAttributeEditorFactory *> m_Factories; // by lower-cased name
	CUtlVector<IPropertyEditDomain *> m_Domains;
	PropertyPanelFactoryFn_t m_fnPanelFactory;
};
