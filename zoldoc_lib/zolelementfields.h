#pragma once
// The members of a definition's elements (a function, a child, a variable, a configuration,
// the system's own properties) as an artist reads them: the label the property panel shows,
// the value as text (particle inputs by their display text, choices by their names), and
// whether two stored values mean the same. An absent member stands for its default.
//
// pClass is the element's class description; null when the catalogue doesn't know the
// class, and then members compare as stored and read by their names.

#include <initializer_list>
#include <vector>

#include "core/text/utlstring.h"

class CGameDataClass;
class CGameDataVariable;
class KeyValues3;

const CGameDataVariable *FindElementField( const CGameDataClass *pClass, const char *pMember );

// "Rate" for a field whose friendly name is "rate"; "Emit Rate" for m_flEmitRate of an
// unknown class.
void GetElementFieldLabel( const CGameDataClass *pClass, const char *pMember, CUtlString *pOut );

// The stored value, else the field's default, else null.
const KeyValues3 *GetElementFieldValue( const CGameDataClass *pClass, const KeyValues3 *pTable, const char *pMember );

// Numbers compare by value, tables member by member in any order, particle inputs by what
// they hold once read (a bare 40 is the literal 40). Null stands for the field's default.
bool AreElementFieldValuesEqual( const CGameDataClass *pClass, const char *pMember, const KeyValues3 *pA, const KeyValues3 *pB );

// The table in a form where equal values are stored alike: every member of the class
// present (its default where absent), particle inputs as a save writes them. Two such
// tables compare member by member without a class, as fast as stored values do.
void NormaliseElementTable( const CGameDataClass *pClass, const KeyValues3 &table, KeyValues3 *pOut );

// "Random 30 - 50", "12", "on", "[255, 160, 60, 255]", a choice's name. pDomain is the
// system's named value domain, or "".
void FormatElementFieldValue( const CGameDataClass *pClass, const char *pMember, const KeyValues3 *pValue, const char *pDomain, CUtlString *pOut );

// One element of an array member, as FormatElementFieldValue would show it inside the array.
void FormatElementFieldItem( const CGameDataClass *pClass, const char *pMember, const KeyValues3 &item, const char *pDomain, CUtlString *pOut );

// Whether the member holds a record of its own (a variable's default configuration, a
// configuration's preview state) whose members compare one by one; *ppRecordClass is its
// class, or null when unknown. Numbers, arrays and particle inputs compare whole.
bool IsElementRecordField( const CGameDataClass *pClass, const char *pMember, const KeyValues3 *pA, const KeyValues3 *pB,
						   const CGameDataClass **ppRecordClass );

// An array member whose records compare one by one: by their key member where the records
// have one (a configuration's drivers by control point), else position by position.
struct ZolRecordArrayField_t
{
	const CGameDataClass *m_pElementClass = nullptr; // null when unknown
	const char *m_pKey = nullptr;
};
// Whether the member holds such records in every value: tables, each key once; without a
// key, the same count of them everywhere.
bool IsElementRecordArrayField( const CGameDataClass *pClass, const char *pMember, std::initializer_list<const KeyValues3 *> values,
								ZolRecordArrayField_t *pOut );
// The member that tells the records of an array member apart, or null.
const char *GetElementRecordArrayKey( const char *pMember );
// The position of the record of the array whose key equals that of pRecord, or -1.
int FindElementRecordByKey( const KeyValues3 *pArray, const char *pKey, const KeyValues3 &record );
// "Drivers (Control Point 1)", or "Drivers #2" for records that go by position.
void GetElementRecordLabel( const ZolRecordArrayField_t &field, const char *pArrayLabel, const KeyValues3 &record, int nIndex, CUtlString *pOut );
// Both null, or both holding equal members.
bool AreElementRecordsEqual( const CGameDataClass *pClass, const KeyValues3 *pA, const KeyValues3 *pB );

// Whether the member is a particle input that reads as one text ("Random 30 - 50"), as the
// float and vector inputs do; transform and model inputs show their members instead.
bool IsElementInputShownWhole( const CGameDataClass *pClass, const char *pMember );

// The members of the tables in order: the first's, then those only the later ones have.
// "_class" and null tables are left out.
void CollectElementMembers( std::initializer_list<const KeyValues3 *> tables, std::vector<CUtlString> *pNames );

// How many members of the two tables hold equal values, and how many members there are.
void CountEqualElementFields( const CGameDataClass *pClass, const KeyValues3 &a, const KeyValues3 &b, int *pEqual, int *pTotal );
