#pragma once
// The rules between a KV3 tree and its class description: which class a table really
// is, whether a value stands at its default, filling a tree from its class (imprint),
// dropping keys no class describes, and removing keys at their default before a save.

class KeyValues3;
class CGameData;
class CGameDataClass;
class CGameDataVariable;

// The class a table really is: the one its selector variable (or, for a polymorphic
// class, its "_class" key) names; the given class when the name is missing or unknown.
// A selector with "LinkedEntityClass" holds an entity subclass name that the host maps to
// the class name first.
const CGameDataClass *ResolveFGDClass( const CGameDataClass *pClass, const KeyValues3 *pTable );

// Whether a stored value equals the variable's default at nDepth of its type, by the
// type's own rules (a struct member by member, an array only when empty, colours as 32 bits).
bool TestValueAtDefault( const KeyValues3 &value, const CGameDataVariable &var, int nDepth = 0 );

// Makes a tree complete: "_class" where the class is polymorphic (and only there), every
// variable present, stored values of the kind their type expects.
void ImprintFGDClassOnKV3( KeyValues3 *pTable, const CGameDataClass *pClass );

// Removes from every table with a known "_class" the members its class doesn't describe,
// deepest tables first, then imprints the class.
void StripUnknownKeys( KeyValues3 *pTree, const CGameData *pGameData );

// Removes members at their default, children before parents, so a struct whose members
// all went becomes empty and then disappears from its parent.
void RemoveKeysAtDefault( KeyValues3 *pTable, const CGameDataClass *pClass );
