#pragma once
// The catalogue's answers that the document needs: which classes may stand in a list
// at a behaviour version, friendly names, and bringing a tree to a version.
//
// Until the class table from the schema exists these know only the manager's class
// lists: a class is valid when the manager lists it for that type, whatever the version,
// fields are never judged out of range, no array gets a default entry and imprinting
// adds no defaults.

#include "core/particles/particlefunctiontype.h"

class KeyValues3;
class CZolFunctionNode;
class CZolRootNode;

// The manager's index of the class in the type's list (exact name), or -1.
int FindParticleFunctionClass( ParticleFunctionType_t eType, const char *pClass );
bool IsFunctionValidForVersion( ParticleFunctionType_t eType, const char *pClass, int nVersion );
// The friendly name of the first class of that exact name in any list, or pClass itself.
const char *GetParticleFunctionFriendlyName( const char *pClass );

// Fills the table with the defaults of the named class.
void ImprintParticleClass( KeyValues3 *pTable, const char *pClassName );
// After a function was added to a list: arrays that must hold an entry get one.
void ApplyDefaultArrayRule( CZolRootNode *pRoot, ParticleFunctionType_t eType, CZolFunctionNode *pNewNode );
void SanitiseFunctionFields( CZolFunctionNode *pNode, int nVersion );
// Replaces or removes functions that don't fit the version, and fields out of range.
void SanitiseForVersion( CZolRootNode *pRoot, int nVersion );
// Brings the root to the manager's behaviour version when it stands at another one.
void UpdateRootVersion( CZolRootNode *pRoot );
