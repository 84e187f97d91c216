#include "tools/toolutils2/widgets/propertyeditor/kv3valuepath.h"

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/utlstring.h"

const KeyValues3 *FindKV3Part( const KeyValues3 *pValue, const QStringList &path )
{
	for ( const QString &step : path )
	{
		if ( !pValue )
			return nullptr;
		int nIndex = KV3StepIndex( step );
		if ( nIndex >= 0 )
			pValue = pValue->IsArray() && nIndex < pValue->GetArrayElementCount() ? pValue->GetArrayElement( nIndex ) : nullptr;
		else
			pValue = pValue->IsTable() ? pValue->FindMember( step.toUtf8().constData() ) : nullptr;
	}
	return pValue;
}

KeyValues3 *FindKV3Part( KeyValues3 *pValue, const QStringList &path )
{
	return const_cast<KeyValues3 *>( FindKV3Part( static_cast<const KeyValues3 *>( pValue ), path ) );
}

QString KV3ElementStep( int nIndex )
{
	return QStringLiteral( "[%1]" ).arg( nIndex );
}

int KV3StepIndex( const QString &step )
{
	if ( !step.startsWith( '[' ) || !step.endsWith( ']' ) )
		return -1;
	bool bOk = false;
	int nIndex = step.mid( 1, step.size() - 2 ).toInt( &bOk );
	return bOk && nIndex >= 0 ? nIndex : -1;
}

QString KV3ToOneLineText( const KeyValues3 &value )
{
	CUtlString text;
	if ( !SaveKV3ToString( &value, &text, KV3_FORMAT_GENERIC, KV3_SAVE_NO_HEADER ) )
		return QString();
	// Line breaks and indents between parts become single blanks; strings keep theirs.
	QString in = QString::fromUtf8( text.Get() );
	QString out;
	out.reserve( in.size() );
	bool bInString = false;
	bool bPendingBlank = false;
	for ( int i = 0; i < in.size(); ++i )
	{
		QChar c = in[ i ];
		if ( bInString )
		{
			out += c;
			if ( c == '\\' && i + 1 < in.size() )
				out += in[ ++i ];
			else if ( c == '"' )
				bInString = false;
			continue;
		}
		if ( c.isSpace() )
		{
			bPendingBlank = !out.isEmpty();
			continue;
		}
		if ( bPendingBlank )
			out += ' ';
		bPendingBlank = false;
		out += c;
		if ( c == '"' )
			bInString = true;
	}
	return out;
}

bool KV3FromText( const QString &text, KeyValues3 *pOut, CUtlString *pError )
{
	QByteArray bytes = text.toUtf8();
	CUtlBuffer buffer( bytes.constData(), bytes.size(), CUtlBuffer::READ_ONLY );
	if ( !LoadKV3( pOut, pError, &buffer, KV3_FORMAT_GENERIC, nullptr, KV3_LOAD_FRAGMENT ) )
		return false;
	for ( size_t i = buffer.TellGet(); i < size_t( bytes.size() ); ++i )
	{
		if ( !QChar( bytes[ int( i ) ] ).isSpace() )
		{
			pError->Set( "Unexpected text after the value" );
			pOut->SetToNull();
			return false;
		}
	}
	return true;
}
