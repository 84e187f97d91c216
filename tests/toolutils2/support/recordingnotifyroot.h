#pragma once
// A notify root that records what it hears, with the field's text at that moment.

#include <string>
#include <vector>

#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrnotifyroot.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"

class CRecordingRoot : public IToolAttrNotifyRoot
{
public:
	void OnAttrWillChange( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) override { Record( "will", handle, pAttr ); }
	void OnAttrChanged( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) override { Record( "changed", handle, pAttr ); }

	void Record( const char *pszWhat, HToolAttrTableInstance handle, IBaseToolAttr *pAttr )
	{
		std::string entry = std::string( pszWhat ) + " " + pAttr->GetName();
		if ( IToolAttr_Value *pValue = pAttr->AsValue() )
		{
			CUtlString text;
			pValue->GetAsString( handle, &text );
			entry += "=" + std::string( text.Get() );
		}
		m_Events.push_back( entry );
	}
	std::vector<std::string> m_Events;
};
