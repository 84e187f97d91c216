#include "tools/widgets/kv3clipboardtext.h"

#include "core/containers/utlbuffer.h"
#include "core/kv3/kv3serialize.h"
#include "core/logging/logging.h"

bool KV3TableToClipboardText( const KeyValues3 &table, QString *pText, QString *pError )
{
	CUtlBuffer buffer;
	CUtlString error;
	if ( !SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_GENERIC, &table, &error, &buffer ) )
	{
		*pError = QString::fromUtf8( error.Get() );
		return false;
	}
	*pText = QString::fromUtf8( reinterpret_cast<const char *>( buffer.Base() ), int( buffer.TellPut() ) );
	return true;
}

bool KV3TableFromClipboardText( const QString &text, const char *pRequiredMember, const char *pKind, KeyValues3 *pTable, QString *pError )
{
	if ( text.trimmed().isEmpty() )
	{
		*pError = QStringLiteral( "No data on clipboard" );
		return false;
	}
	QByteArray bytes = text.toUtf8();
	if ( !LooksLikeKV3TextData( bytes.constData(), size_t( bytes.size() ) ) )
	{
		*pError = QStringLiteral( "The clipboard holds no KV3 text" );
		return false;
	}
	CUtlString error;
	if ( !LoadKV3FromText( pTable, &error, bytes.constData(), size_t( bytes.size() ), KV3_FORMAT_GENERIC ) )
	{
		*pError = QString::fromUtf8( error.Get() );
		return false;
	}
	if ( !pTable->IsTable() || !pTable->HasMember( pRequiredMember ) )
	{
		*pError = QStringLiteral( "The KV3 text holds no %1" ).arg( QString::fromUtf8( pKind ) );
		return false;
	}
	return true;
}

void ReportKV3ObjectLoadError( const CUtlString &error, QString *pError )
{
	Log_Warning( LOG_GENERAL, "LoadKV3ObjectInPlace error: %s\n", error.Get() );
	*pError = QString::fromUtf8( error.Get() );
}
