#pragma once
// A value attribute whose field is reached through the owner's getter and setter, for
// members whose writes must pass the owner's own rules (clamping, derived state). An
// edit copies the value, the caller writes the copy, and the setter gets it whole.

#include "tools/toolutils2/toolattr/concretetoolattr.h"
#include "tools/toolutils2/toolattr/toolattrconcreteaccess.h"

template <typename T, typename O>
class CConcreteToolAttrGetSet : public CConcreteToolAttr<T, O, void>
{
public:
	using Access_t = CToolAttrGetSetAccess<T, O>;
	CConcreteToolAttrGetSet( const char *pszName, const char *pszHelpContext, typename Access_t::Getter_t pfnGet, typename Access_t::Setter_t pfnSet )
		: CConcreteToolAttr<T, O, void>( pszName, pszHelpContext, &m_Access ), m_Access( pfnGet, pfnSet )
	{
	}

private:
	Access_t m_Access; // the base keeps only its address, so it may be built after the base
};
