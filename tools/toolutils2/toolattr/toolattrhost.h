#pragma once
// The process-wide registry of functions that metadata and class descriptions name:
// choice providers, default tests, visibility tests and alert functions. The first
// registration of a name stands. An unknown name finds an entry whose function is null.

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class IBaseToolAttr;
class KeyValues3;

using ToolAttrChoiceProviderFn_t = std::function<void( HToolAttrTableInstance, const IBaseToolAttr *, CUtlVector<ToolAttrGenericChoice_t> * )>;
using ToolAttrDefaultTestFn_t = std::function<bool( const KeyValues3 *pValue, const KeyValues3 *pDefault )>;
using ToolAttrVisibilityFn_t = std::function<bool( HToolAttrTableInstance, const IBaseToolAttr * )>;
using ToolAttrAlertFn_t = std::function<bool( HToolAttrTableInstance, const IBaseToolAttr *, CUtlString * )>;

// A choice as plain texts: value, friendly name, description.
struct ToolAttrStringChoice_t
{
	CUtlString m_Value;
	CUtlString m_FriendlyName;
	CUtlString m_Description;
};
using ToolAttrStringChoiceProviderFn_t = std::function<void( HToolAttrTableInstance, const IBaseToolAttr *, CUtlVector<ToolAttrStringChoice_t> * )>;

class IToolAttrHost
{
public:
	virtual ~IToolAttrHost() = default;
	virtual const ToolAttrChoiceProviderFn_t &FindChoiceProvider( const char *pszName ) const = 0;
	virtual const ToolAttrDefaultTestFn_t &FindDefaultTest( const char *pszName ) const = 0;
	virtual const ToolAttrVisibilityFn_t &FindVisibilityTest( const char *pszName ) const = 0;
	virtual const ToolAttrAlertFn_t &FindAlertFunction( const char *pszName ) const = 0;
};

class CToolAttrHost : public IToolAttrHost
{
public:
	// For "choice_name", "suggestion_name", "mapkeys_choice_name", "mapkeys_suggestion_name".
	bool RegisterChoiceProvider( const char *pszName, ToolAttrChoiceProviderFn_t fn );
	// The same, for providers that list plain three-string choices.
	bool RegisterStringChoiceProvider( const char *pszName, ToolAttrStringChoiceProviderFn_t fn );
	// A provider given as a function instead of a name gets a generated unique name,
	// "Anon_%d!%s" with pszAttrText; the caller stores it as the attribute's choice name.
	CUtlString RegisterAnonymousChoiceProvider( const char *pszAttrText, ToolAttrChoiceProviderFn_t fn );
	bool RegisterDefaultTest( const char *pszName, ToolAttrDefaultTestFn_t fn );         // "KV3DefaultTestFnName"
	bool RegisterVisibilityTest( const char *pszName, ToolAttrVisibilityFn_t fn );       // "invisible_func", "writable_func"
	bool RegisterAlertFunction( const char *pszName, ToolAttrAlertFn_t fn );             // "alert_func"

	const ToolAttrChoiceProviderFn_t &FindChoiceProvider( const char *pszName ) const override;
	const ToolAttrDefaultTestFn_t &FindDefaultTest( const char *pszName ) const override;
	const ToolAttrVisibilityFn_t &FindVisibilityTest( const char *pszName ) const override;
	const ToolAttrAlertFn_t &FindAlertFunction( const char *pszName ) const override;

private:
	template <typename Fn> struct Table_t
	{
		bool Register( const char *pszName, Fn fn );
		const Fn &Find( const char *pszName ) const;
		std::map<std::string, std::unique_ptr<Fn>, std::less<>> m_Functions;
	};

	Table_t<ToolAttrChoiceProviderFn_t> m_ChoiceProviders;
	Table_t<ToolAttrDefaultTestFn_t> m_DefaultTests;
	Table_t<ToolAttrVisibilityFn_t> m_VisibilityTests;
	Table_t<ToolAttrAlertFn_t> m_AlertFunctions;
	int m_nAnonymousCounter = 0;
};

// The one registry of the process.
CToolAttrHost *ToolAttrHost();
