#pragma once
// Values of class description variables between their text form and the KV3 tree: the
// writer that every default and every text edit goes through, the formatter that reads
// a value back as text, and the normalisation of a stored value's kind.

#include "core/text/utlstring.h"
#include "tools/toolutils2/fgd/gamedatatype.h"

class KeyValues3;
class CGameData;
class CGameDataVariable;

// Writes the text as a value of the type at nDepth of the full type. Empty text gives
// the type's empty value (zero vector, 0, false, "", empty array or table).
void WriteFGDValue( KeyValues3 *pOut, const GameDataFullType_t &type, int nDepth, const char *pszText );
void WriteFGDValue( KeyValues3 *pOut, GameDataType_t eType, const char *pszText );
// As above for a variable's type, which also knows the struct class: the table of an
// embedded subclass is tagged as one.
void WriteFGDValue( KeyValues3 *pOut, const CGameDataVariable &var, int nDepth, const char *pszText );

// The text of a value as a read shows it, by the variable type.
void FormatFGDValue( const KeyValues3 &value, GameDataType_t eType, CUtlString *pOut );

// Makes a stored value the KV3 kind its type expects, converting through text when
// nothing better applies. Tables and arrays are left to the caller.
void NormalizeFGDValueKind( KeyValues3 *pValue, GameDataType_t eType );

// Reads a colour value (array of three or four integers, or text) as 32 bits, alpha 255
// when absent.
uint32_t ReadFGDColor( const KeyValues3 &value );
