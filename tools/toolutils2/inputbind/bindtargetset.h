#pragma once
// The bind targets linked to one widget, with the name and help context shown for it.
// The widget side keeps one per widget that has targets; the engine walks them in focus
// chain order.

#include <vector>

#include "core/text/utlstring.h"

class IBindTarget;

class CBindTargetSet
{
public:
	// False when the target was already linked.
	bool AddTarget( IBindTarget *pTarget );
	// False when it wasn't linked.
	bool RemoveTarget( IBindTarget *pTarget );
	bool HasTarget( const IBindTarget *pTarget ) const;
	const std::vector<IBindTarget *> &GetTargets() const { return m_Targets; }

	const char *GetName() const { return m_strName.Get(); }
	void SetName( const char *pName ) { m_strName = pName; }
	const char *GetHelpContext() const { return m_strHelpContext.Get(); }
	void SetHelpContext( const char *pContext ) { m_strHelpContext = pContext; }

private:
	CUtlString m_strName;
	std::vector<IBindTarget *> m_Targets;
	CUtlString m_strHelpContext;
};
