#pragma once
// The named choice lists that particle class fields ask for: particle attributes by kind
// (labelled as the document's renderers use them), domains, vector components, sound
// channels.

#include "core/containers/utlvector.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class CToolAttrHost;
class CZolDoc;

// The pairs of one list by its name; false for a name that isn't one of these. The
// attribute lists need the document and are empty without one.
bool GetParticleAttributeChoices( const char *pName, const CZolDoc *pDoc, CUtlVector<ToolAttrGenericChoice_t> *pChoices );

// Registers every list under its name; the attribute lists find the document through the
// node that the edited table belongs to.
void RegisterParticleChoiceProviders( CToolAttrHost *pHost );
