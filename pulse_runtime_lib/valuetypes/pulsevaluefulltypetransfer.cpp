#include "pulse_runtime_lib/valuetypes/pulsevaluefulltypetransfer.h"

void KV3Transfer_t<CPulseValueFullType>::Load( CPulseValueFullType &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	value.Clear();
	const char *pText = KV3TransferReadString( pContext, pValue );
	if ( !*pText )
		return;
	if ( !value.FromString( pText ) )
	{
		if ( pContext )
			pContext->ReportError( "'%s' is not a value type", pText );
		value.Clear();
	}
}

void KV3Transfer_t<CPulseValueFullType>::Save( const CPulseValueFullType &value, KeyValues3 *pValue, CKV3TransferSaveContext * )
{
	if ( !value.IsValid() )
	{
		pValue->SetString( "" );
		return;
	}
	CUtlString text;
	value.ToString( &text );
	pValue->SetString( text.Get() );
}
