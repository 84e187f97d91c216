#pragma once
// The assets that one asset's source refers to, by resource name.

#include "core/containers/utlvector.h"
#include "core/host/resourcetype.h"
#include "core/text/utlstring.h"

class CUtlBuffer;
class KeyValues3;

// The child references of a particle system definition: the "m_ChildRef" strings of the
// elements of "m_Children", in order, empty ones left out.
void CollectParticleSystemChildRefs( const KeyValues3 &definition, CUtlVector<CUtlString> *pNames );

// The references in a source of the given type. False when the source can't be read
// (the list is then empty); types without references answer true with none.
bool CollectAssetReferences( ResourceType_t nType, const CUtlBuffer &source, CUtlVector<CUtlString> *pNames, CUtlString *pError = nullptr );
