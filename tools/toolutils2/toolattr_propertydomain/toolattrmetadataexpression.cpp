#include "tools/toolutils2/toolattr_propertydomain/toolattrmetadataexpression.h"

#include <memory>
#include <string>
#include <unordered_map>

#include "core/kv3/keyvalues3.h"
#include "core/logging/logonce.h"
#include "core/text/strtools.h"
#include "mathlib/extended/genericexpr.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrkv3.h"
#include "tools/toolutils2/toolattr/itoolattrtable.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/toolutils2/toolattr_propertydomain/itoolattrexpressionglobals.h"

namespace
{
// Each distinct text is parsed once for the process; a text that doesn't parse is kept
// as such. Panels run on the UI thread only.
const CGenericExpr &ParsedExpression( const char *pszText, const char *pszField )
{
	static std::unordered_map<std::string, std::unique_ptr<CGenericExpr>> s_Parsed;
	auto it = s_Parsed.find( pszText );
	if ( it != s_Parsed.end() )
		return *it->second;
	auto pExpr = std::make_unique<CGenericExpr>();
	CUtlString error;
	if ( !pExpr->Parse( pszText, &error ) )
	{
		error.Replace( "\n", "; " );
		LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, pszText, "Property expression %s \"%s\" can't be read (at %d): %s; using its default\n", pszField, pszText,
			pExpr->GetErrorOffset(), error.Get() );
	}
	return *s_Parsed.emplace( pszText, std::move( pExpr ) ).first->second;
}
} // namespace

void ToolAttrExpressionValueOf( IBaseToolAttr *pAttr, HToolAttrTableInstance handle, KeyValues3 *pOut )
{
	if ( IToolAttr_KV3 *pKV3 = pAttr->AsKV3() )
	{
		const KeyValues3 *pValue = pKV3->GetKV3( handle );
		KV3BasicType_t eType = pValue ? pValue->GetType() : KV3_TYPE_NULL;
		if ( eType == KV3_TYPE_BINARY_BLOB || eType == KV3_TYPE_ARRAY || eType == KV3_TYPE_TABLE )
		{
			pOut->CopyFrom( *pValue );
			return;
		}
	}
	CUtlString text;
	if ( IToolAttr_Value *pValue = pAttr->AsValue() )
		pValue->GetAsString( handle, &text );
	double flNumber = 0.0;
	size_t nLength = text.Length();
	if ( text == "true" || text == "false" )
		pOut->SetBool( text == "true" );
	else if ( V_StringToDouble( text.Get(), &flNumber ) )
		pOut->SetDouble( flNumber );
	else if ( nLength >= 2 && text[ 0 ] == '"' && text[ nLength - 1 ] == '"' )
		pOut->SetString( text.Get() + 1, nLength - 2 );
	else
		pOut->SetString( text.Get(), nLength );
}

bool ToolAttrEvaluateMetadataExpression( const char *pszText, HToolAttrTableInstance handle, IToolAttrExpressionGlobals *pGlobals, bool bDefault,
	const char *pszField )
{
	if ( !pszText || !*pszText )
	{
		LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, "", "Property expression %s: No expression!\n", pszField );
		return bDefault;
	}
	const CGenericExpr &expr = ParsedExpression( pszText, pszField );
	if ( !expr.HasTree() )
		return bDefault;

	int nCount = expr.GetVariableCount();
	CUtlVector<KeyValues3> values;
	values.SetCount( nCount );
	CUtlVector<const KeyValues3 *> table;
	table.SetCount( nCount );
	for ( int i = 0; i < nCount; ++i )
	{
		const char *pszName = expr.GetVariableName( i );
		table[ i ] = nullptr;
		if ( IBaseToolAttr *pAttr = handle.m_pTable ? handle.m_pTable->FindAttribute( handle, pszName ) : nullptr )
		{
			// A field that an expression reads decides rows: its edits rebuild the panel.
			pAttr->MarkRebuildOnChange();
			ToolAttrExpressionValueOf( pAttr, handle, &values[ i ] );
			table[ i ] = &values[ i ];
		}
		else if ( pGlobals && pGlobals->GetGlobalValue( pszName, &values[ i ] ) )
		{
			table[ i ] = &values[ i ];
		}
	}
	KeyValues3 result;
	CUtlString error;
	if ( expr.Evaluate( table.Base(), nCount, &result, &error ) != GENERIC_EXPR_EVAL_OK )
	{
		CUtlString key( pszText );
		key += "\n";
		key += error;
		LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, key.Get(), "Property expression %s \"%s\" failed: %s; using its default\n", pszField, pszText, error.Get() );
		return bDefault;
	}
	return GenericExprValueToBool( result );
}
