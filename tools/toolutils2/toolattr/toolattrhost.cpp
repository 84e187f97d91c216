#include "tools/toolutils2/toolattr/toolattrhost.h"

template <typename Fn>
bool CToolAttrHost::Table_t<Fn>::Register( const char *pszName, Fn fn )
{
	if ( !pszName || !*pszName || !fn || m_Functions.find( std::string_view( pszName ) ) != m_Functions.end() )
		return false;
	m_Functions.emplace( pszName, std::make_unique<Fn>( std::move( fn ) ) );
	return true;
}

template <typename Fn>
const Fn &CToolAttrHost::Table_t<Fn>::Find( const char *pszName ) const
{
	static const Fn s_Empty;
	auto it = m_Functions.find( std::string_view( pszName ? pszName : "" ) );
	return it != m_Functions.end() ? *it->second : s_Empty;
}

bool CToolAttrHost::RegisterChoiceProvider( const char *pszName, ToolAttrChoiceProviderFn_t fn ) { return m_ChoiceProviders.Register( pszName, std::move( fn ) ); }

bool CToolAttrHost::RegisterStringChoiceProvider( const char *pszName, ToolAttrStringChoiceProviderFn_t fn )
{
	if ( !fn )
		return false;
	return RegisterChoiceProvider( pszName, [ fn = std::move( fn ) ]( HToolAttrTableInstance handle, const IBaseToolAttr *pAttr, CUtlVector<ToolAttrGenericChoice_t> *pOut ) {
		CUtlVector<ToolAttrStringChoice_t> strings;
		fn( handle, pAttr, &strings );
		for ( const ToolAttrStringChoice_t &choice : strings )
		{
			ToolAttrGenericChoice_t &generic = pOut->Element( pOut->AddToTail() );
			generic.m_Value = choice.m_Value;
			generic.m_FriendlyName = choice.m_FriendlyName;
			generic.m_Description = choice.m_Description;
		}
	} );
}

CUtlString CToolAttrHost::RegisterAnonymousChoiceProvider( const char *pszAttrText, ToolAttrChoiceProviderFn_t fn )
{
	CUtlString name;
	name.Format( "Anon_%d!%s", m_nAnonymousCounter, pszAttrText ? pszAttrText : "" );
	m_nAnonymousCounter += 2;
	RegisterChoiceProvider( name.Get(), std::move( fn ) );
	return name;
}

bool CToolAttrHost::RegisterDefaultTest( const char *pszName, ToolAttrDefaultTestFn_t fn ) { return m_DefaultTests.Register( pszName, std::move( fn ) ); }
bool CToolAttrHost::RegisterVisibilityTest( const char *pszName, ToolAttrVisibilityFn_t fn ) { return m_VisibilityTests.Register( pszName, std::move( fn ) ); }
bool CToolAttrHost::RegisterAlertFunction( const char *pszName, ToolAttrAlertFn_t fn ) { return m_AlertFunctions.Register( pszName, std::move( fn ) ); }

const ToolAttrChoiceProviderFn_t &CToolAttrHost::FindChoiceProvider( const char *pszName ) const { return m_ChoiceProviders.Find( pszName ); }
const ToolAttrDefaultTestFn_t &CToolAttrHost::FindDefaultTest( const char *pszName ) const { return m_DefaultTests.Find( pszName ); }
const ToolAttrVisibilityFn_t &CToolAttrHost::FindVisibilityTest( const char *pszName ) const { return m_VisibilityTests.Find( pszName ); }
const ToolAttrAlertFn_t &CToolAttrHost::FindAlertFunction( const char *pszName ) const { return m_AlertFunctions.Find( pszName ); }

CToolAttrHost *ToolAttrHost()
{
	static CToolAttrHost s_Host;
	return &s_Host;
}
