#pragma once
// The child systems a definition refers to, and the assets those references name. Walks
// over trees of definitions (upgrade, reference navigator) share this reading, so they
// agree on which children exist and which are switched off.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

class CZolDoc;
class IAsset;

struct ZolChildReference_t
{
	CUtlString m_Ref;      // "particles/samples/fire.tfxs", as the file writes it
	bool m_bEnabled = true; // m_bDisableChild is false
	int m_nIndex = 0;       // the child's place in list 7
};

// The children of list 7 with a non-empty reference, in list order; disabled ones only
// with bIncludeDisabled.
void GetChildReferences( const CZolDoc &doc, bool bIncludeDisabled, CUtlVector<ZolChildReference_t> *pChildren );

// The particle system asset a reference names: a path below the content root (either
// slash, any case) or an absolute path inside it. Null for anything else, and for an
// asset whose file doesn't exist.
IAsset *FindChildAsset( const char *pRef );
