#pragma once
// Parts of a KV3 value addressed from the value's top: member names, and "[n]" for the
// element n of an array. The panel shows a KV3 value without a custom editor as rows of
// its parts; each row's editor writes its part back into a copy of the whole value.

#include <QString>
#include <QStringList>

class CUtlString;
class KeyValues3;

// The part at the path, or null when a step is missing.
const KeyValues3 *FindKV3Part( const KeyValues3 *pValue, const QStringList &path );
KeyValues3 *FindKV3Part( KeyValues3 *pValue, const QStringList &path );
// The path step of an array element.
QString KV3ElementStep( int nIndex );
// The index of an array step, or -1 for a member name.
int KV3StepIndex( const QString &step );

// The value as KV3 text on one line: "{ m_nType = "PF_TYPE_LITERAL" m_flValue = 40.0 }".
QString KV3ToOneLineText( const KeyValues3 &value );
// Reads one value from the text; false with the parser's words in pError when it is no
// KV3 value or when anything but blanks follows it.
bool KV3FromText( const QString &text, KeyValues3 *pOut, CUtlString *pError );
