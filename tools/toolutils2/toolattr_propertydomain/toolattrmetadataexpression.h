#pragma once
// Evaluates an expression of property metadata ("suppress_expr", "readonly_expr", ...)
// against one table instance: names are the table's attributes (matched exactly), then
// the globals. Every attribute an expression reads is marked to rebuild the panel when it
// changes. Expressions never fail loudly: a text that doesn't parse, or an evaluation
// that fails, gives the default, and the problem is logged once per distinct text.

#include "tools/toolutils2/toolattr/toolattrhandle.h"

class IBaseToolAttr;
class IToolAttrExpressionGlobals;
class KeyValues3;

// pszField names the metadata key and attribute for the log ("suppress_expr of m_flRate").
bool ToolAttrEvaluateMetadataExpression( const char *pszText, HToolAttrTableInstance handle, IToolAttrExpressionGlobals *pGlobals, bool bDefault,
	const char *pszField = "" );

// The value an attribute gives an expression: its KV3 value when that is binary, an
// array or a table; else its text, read as a bool ("true", "false"), a number (double), a
// quoted string (its inside) or kept as a string.
void ToolAttrExpressionValueOf( IBaseToolAttr *pAttr, HToolAttrTableInstance handle, KeyValues3 *pOut );
