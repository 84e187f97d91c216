#pragma once
// Values that metadata expressions read for names that are no attribute of the table.

class KeyValues3;

class IToolAttrExpressionGlobals
{
public:
	// True with the value when the name is known.
	virtual bool GetGlobalValue( const char *pName, KeyValues3 *pValue ) = 0;

protected:
	~IToolAttrExpressionGlobals() = default;
};
