#pragma once
// The catalogue's answers that the document needs: which classes may stand in a list at a
// behaviour version, what replaces a class that went out of date, which fields a version
// still has, and bringing a tree to a version.
//
// Classes come from the connected particle manager; their version limits and replacements
// are metadata of their schema classes in the "particles" scope. A class the schema doesn't
// know has no limits.

#include "core/containers/utlvector.h"
#include "core/particles/particlefunctiontype.h"
#include "core/text/utlstring.h"

class CSchemaClassInfo;
class KeyValues3;
class CZolFunctionNode;
class CZolRootNode;

// The manager's index of the class in the type's list (exact name), or -1.
int FindParticleFunctionClass( ParticleFunctionType_t eType, const char *pClass );
// The schema class the manager binds the class to; null when either is unknown.
const CSchemaClassInfo *FindParticleFunctionSchemaClass( ParticleFunctionType_t eType, const char *pClass );
// The friendly name of the first class of that exact name in any list, or pClass itself.
const char *GetParticleFunctionFriendlyName( const char *pClass );

// A function as reports name it: "Operators #6 Noise Scalar (simplex noise)", its list,
// its place counted from 1, its class's friendly name.
CUtlString DescribeParticleFunction( int nType, int nIndex, const char *pClass );

// A class of the type's list whose version limits admit nVersion.
bool IsFunctionValidForVersion( ParticleFunctionType_t eType, const char *pClass, int nVersion );
// "_class" always; a name no field of the class (or its bases) has never; else the field's
// limits decide. A schema class that isn't registered judges nothing: every field stands.
bool IsFieldValidForVersion( const char *pSchemaClass, const char *pField, int nVersion );
// What stands in for the class at the version, following replacement chains: null when the
// class (or a replacement) is unknown or the class needs no replacement, "" when it went
// out of date without one, else the replacing class's name.
const char *GetReplacementForVersion( ParticleFunctionType_t eType, const char *pClass, int nVersion );

// Fills the table with the members and defaults of the named class of the class table.
// The table keeps its "_class" when it had one, and the root's table never takes the keys
// of its lists or configurations, which live as nodes.
void ImprintParticleClass( KeyValues3 *pTable, const char *pClassName );
// After a function was added to a list: arrays that must hold an entry get one.
void ApplyDefaultArrayRule( CZolRootNode *pRoot, ParticleFunctionType_t eType, CZolFunctionNode *pNewNode );
// Drops the members of one function that the version doesn't have.
void SanitiseFunctionFields( CZolFunctionNode *pNode, int nVersion );
// Root members, then functions of lists 0 .. 6: replaced, removed, or trimmed to the version.
// With bKeepUnknownClasses a function whose class the list doesn't know stays as written
// instead of going: comparing and merging files must not lose what a newer editor wrote.
// pChanges, when given, receives one line per change in the artist's terms, in list order
// ("Operators #6 Noise Scalar (simplex noise): becomes Noise Scalar").
void SanitiseForVersion( CZolRootNode *pRoot, int nVersion, bool bKeepUnknownClasses = false, CUtlVector<CUtlString> *pChanges = nullptr );
// Sanitises the root for the version and records it there, whatever version it stood at.
void BringRootToVersion( CZolRootNode *pRoot, int nVersion, bool bKeepUnknownClasses = false, CUtlVector<CUtlString> *pChanges = nullptr );
// Brings the root to the manager's behaviour version when it stands at another one.
void UpdateRootVersion( CZolRootNode *pRoot, bool bKeepUnknownClasses = false, CUtlVector<CUtlString> *pChanges = nullptr );
