#pragma once
// Objects as KV3 text on the clipboard ("text" encoding, "generic" format), as the kit's
// editors copy and paste curves and gradients. Reading is strict about the text (a KV3
// header, a table with the member that marks the kind of object) and lenient about the
// object (the transfer's own rules); every failure comes back as a reason.

#include <QString>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"

// The table as KV3 text.
bool KV3TableToClipboardText( const KeyValues3 &table, QString *pText, QString *pError );
// A table from KV3 text that holds pRequiredMember; pKind names the object in the reason
// ("The KV3 text holds no gradient"). An empty text is "No data on clipboard".
bool KV3TableFromClipboardText( const QString &text, const char *pRequiredMember, const char *pKind, KeyValues3 *pTable, QString *pError );
// Logs a failed object load as "LoadKV3ObjectInPlace error: ..." and gives the reason.
void ReportKV3ObjectLoadError( const CUtlString &error, QString *pError );

template <typename T>
bool ObjectToClipboardText( const T &object, QString *pText, QString *pError )
{
	KeyValues3 table;
	CUtlString error;
	if ( !SaveKV3Object( object, &table, &error ) )
	{
		*pError = QString::fromUtf8( error.Get() );
		return false;
	}
	return KV3TableToClipboardText( table, pText, pError );
}

// *pObject is only written when the whole text loads.
template <typename T>
bool ObjectFromClipboardText( const QString &text, const char *pRequiredMember, const char *pKind, T *pObject, QString *pError )
{
	KeyValues3 table;
	if ( !KV3TableFromClipboardText( text, pRequiredMember, pKind, &table, pError ) )
		return false;
	T object;
	CUtlString error;
	if ( !LoadKV3ObjectInPlace( &object, &table, &error ) )
	{
		ReportKV3ObjectLoadError( error, pError );
		return false;
	}
	*pObject = std::move( object );
	return true;
}
