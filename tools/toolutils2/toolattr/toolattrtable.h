#pragma once
// The attribute table of a declared class, made from its declaration: one attribute per
// member (the base's members first), each a function-local static built on first use and
// shared by every instance. GetAttributeTable<S> is the generated table of S;
// TOOLATTR_NAMED_TABLE( S ) names it GetAttributeTable_S for call sites that want that form.

#include <cstring>
#include <initializer_list>
#include <memory>
#include <tuple>
#include <vector>

#include "core/schema/schemaclassinfo.h"
#include "core/schema/schematypeof.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "tools/toolutils2/toolattr/concretetoolattr.h"
#include "tools/toolutils2/toolattr/concretetoolattrgetset.h"

namespace ToolAttrDeclaration
{
template <SchemaDeclaredClass S> const char *HelpContext()
{
	const CSchemaClassInfo *pClass = SchemaSystem()->FindClassByTypeInfo( typeid( S ) );
	return pClass ? pClass->GetModule() : "";
}

template <SchemaDeclaredClass S> struct Builder_t
{
	void ClassMetadata( std::initializer_list<SchemaMetadataEntry_t> ) {}
	template <typename T, auto pMember, auto... pAccessors> void Field( const char *pszName, const T &defaultValue, std::initializer_list<SchemaMetadataEntry_t> metadata )
	{
		// One attribute per member of S, for the life of the process.
		static const std::unique_ptr<IBaseToolAttr> s_pAttr = [ & ] {
			std::unique_ptr<IBaseToolAttr> pAttr = MakeAttribute<T, pMember, pAccessors...>( pszName );
			auto *pConcrete = static_cast<CBaseConcreteToolAttr<T, S> *>( pAttr.get() );
			pConcrete->ApplySchemaMetadata( metadata );
			if ( FindSchemaMetadata( metadata, "MPropertyDevOnly" ) )
				pConcrete->m_bDevOnly = true;
			if constexpr ( SchemaCopyable<T> )
				pConcrete->m_Default = defaultValue;
			if constexpr ( requires { static_cast<CBaseConcreteToolAttrValue<T, S> *>( pConcrete )->SetRangeFromText( "" ); } )
			{
				if ( const SchemaMetadataEntry_t *pRange = FindSchemaMetadata( metadata, "MPropertyAttributeRange" ) )
					static_cast<CBaseConcreteToolAttrValue<T, S> *>( pConcrete )->SetRangeFromText( pRange->m_pszValue );
			}
			return pAttr;
		}();
		m_pAttributes->push_back( s_pAttr.get() );
	}
	// A member declared with a getter and setter is edited through them; any other
	// member by reference.
	template <typename T, auto pMember, auto... pAccessors> static std::unique_ptr<IBaseToolAttr> MakeAttribute( const char *pszName )
	{
		if constexpr ( sizeof...( pAccessors ) == 2 )
		{
			const auto accessors = std::make_tuple( pAccessors... );
			return std::make_unique<CConcreteToolAttrGetSet<T, S>>( pszName, HelpContext<S>(), std::get<0>( accessors ), std::get<1>( accessors ) );
		}
		else
		{
			static CToolAttrGetForModifyAccess<T, S> s_Access( pMember );
			return ToolAttrMakeAttribute<T, S>( pszName, HelpContext<S>(), &s_Access );
		}
	}
	std::vector<IBaseToolAttr *> *m_pAttributes;
};
} // namespace ToolAttrDeclaration

// The attributes of S in declared order, bases first. The same pointers on every call.
template <SchemaDeclaredClass S> const std::vector<IBaseToolAttr *> &ToolAttrAttributesOf()
{
	static const std::vector<IBaseToolAttr *> s_Attributes = [] {
		std::vector<IBaseToolAttr *> attributes;
		ToolAttrDeclaration::Builder_t<S> builder{ &attributes };
		SchemaVisitAllFields<S>( builder );
		return attributes;
	}();
	return s_Attributes;
}

template <SchemaDeclaredClass S> void GetAttributeTable( HToolAttrTableInstance, CUtlVector<IBaseToolAttr *> *pAttributes )
{
	for ( IBaseToolAttr *pAttr : ToolAttrAttributesOf<S>() )
		pAttributes->AddToTail( pAttr );
}

#define TOOLATTR_NAMED_TABLE( ClassName ) \
	inline void GetAttributeTable_##ClassName( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes ) { GetAttributeTable<ClassName>( handle, pAttributes ); }

// The table of a plain declared structure: its attributes and its class-level answers.
template <SchemaDeclaredClass S>
class CDefaultToolAttrTableForStruct : public IToolAttr_Table
{
public:
	void GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes ) override { GetAttributeTable<S>( handle, pAttributes ); }
	bool GetHelpInfo( HToolAttrTableInstance, CUtlString *pContext, CUtlString *pId ) const override { return GetElementHelpInfo( pContext, pId ); }
	bool GetElementHelpInfo( CUtlString *pContext, CUtlString *pId ) const override
	{
		pContext->Set( ToolAttrDeclaration::HelpContext<S>() );
		pId->Format( "Element.%s", S::SchemaClassName() );
		return !pContext->IsEmpty();
	}
	bool GetDisplayName( HToolAttrTableInstance, CUtlString *pOut ) const override
	{
		const CSchemaClassInfo *pClass = SchemaSystem()->FindClassByTypeInfo( typeid( S ) );
		const SchemaMetadataEntry_t *pFriendly = pClass ? pClass->FindMetadata( "MPropertyFriendlyName" ) : nullptr;
		if ( !pFriendly )
			return false;
		pOut->Set( pFriendly->m_pszValue );
		return true;
	}
	const char *GetIconName() const override { return ""; }
	bool IgnoresDefaults() const override { return false; }
	bool HidesDefaultMark() const override { return false; }
	bool GetFlattenIntoParent() const override { return false; }
	HToolAttrTableInstance GetAttrInstance( HToolAttrTableInstance handle ) override { return handle; }
	IBaseToolAttr *FindAttribute( HToolAttrTableInstance, const char *pszName ) override
	{
		for ( IBaseToolAttr *pAttr : ToolAttrAttributesOf<S>() )
		{
			if ( std::strcmp( pAttr->GetName(), pszName ) == 0 )
				return pAttr;
		}
		return nullptr;
	}
	void FillEditContext( HToolAttrTableInstance, CToolEditContextQuery_Base * ) const override {}
};

template <SchemaDeclaredClass S> IToolAttr_Table *ToolAttrTableFor()
{
	static CDefaultToolAttrTableForStruct<S> s_Table;
	return &s_Table;
}

// The handle of an instance of a declared class, seen through its own table.
template <SchemaDeclaredClass S> HToolAttrTableInstance MakeToolAttrHandle( S *pInstance, IToolAttrNotifyRoot *pRoot = nullptr )
{
	HToolAttrTableInstance handle;
	handle.m_pNotifyRoot = pRoot;
	handle.m_pszClassName = S::SchemaClassName();
	handle.m_nTypeTag = ToolAttrTypeTag( S::SchemaClassName() );
	handle.m_pInstance = pInstance;
	handle.m_pTable = ToolAttrTableFor<S>();
	return handle;
}

// Everything one declaration gives, registered in one call: the schema class (and its
// bases, and the declared classes its fields hold) in the scope, its KV3 load, save and
// defaults, and its attribute table.
template <SchemaDeclaredClass C> CSchemaClassInfo *RegisterToolClass( CSchemaSystemTypeScope *pScope )
{
	CSchemaClassInfo *pClass = RegisterKV3TransferClass<C>( pScope );
	SchemaClassBinding_t &binding = pClass->GetBindingForModify();
	if ( binding.m_pfnGetAttributeTable == &ToolAttrTableFor<C> )
		return pClass; // already registered; a field may lead back here
	binding.m_pfnGetAttributeTable = &ToolAttrTableFor<C>;
	if constexpr ( !std::is_void_v<typename C::SchemaBaseClass_t> )
		RegisterToolClass<typename C::SchemaBaseClass_t>( pScope );
	SchemaVisitNestedClasses<C>( [ pScope ]<typename N>() { RegisterToolClass<N>( pScope ); } );
	return pClass;
}
