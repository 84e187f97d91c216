#include "core/kv3transfer/kv3transfernumbers.h"

#include <cinttypes>
#include <cstdio>

void KV3TransferReportUnsupportedType( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue )
{
	pContext->ReportError( "Unsupported KV3 basic type '%s' (%d)!", pValue->GetTypeAsString(), static_cast<int>( pValue->GetType() ) );
}

void KV3TransferReportCastLoss( CKV3TransferLoadContext *pContext, const char *pszFrom, const char *pszTo )
{
	pContext->ReportError( "Cast of %s loses value information (returning %s)\n", pszFrom, pszTo );
}

void KV3TransferFormatNumber( char *pBuffer, size_t nSize, int64_t nValue ) { snprintf( pBuffer, nSize, "%" PRId64, nValue ); }
void KV3TransferFormatNumber( char *pBuffer, size_t nSize, uint64_t nValue ) { snprintf( pBuffer, nSize, "%" PRIu64, nValue ); }
void KV3TransferFormatNumber( char *pBuffer, size_t nSize, double flValue ) { snprintf( pBuffer, nSize, "%g", flValue ); }
