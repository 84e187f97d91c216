#pragma once
// Plays one control point configuration of a definition on a running collection, the way
// the preview plays the configuration a session selected: the definition's usage says
// which keys count, the drivers place control points (on the configuration's preview
// model where they are attached to it) and set variables, and every other variable keeps
// the value its definition declares.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

class CParticleDefinitionUsage;
class IParticleCollection;
class KeyValues3;

// The names of a definition tree's configurations, in file order.
void GetZolConfigurationNames( const KeyValues3 &definition, CUtlVector<CUtlString> *pNames );
// The configuration of that name (ignoring case) as the file holds it, or null.
const KeyValues3 *FindZolConfiguration( const KeyValues3 &definition, const char *pName );
// The model its preview state shows (a resource name, "models/crate.tmsh"), or empty. Where
// models aren't found on demand, the caller loads it before playing.
const char *GetZolConfigurationPreviewModel( const KeyValues3 &configuration );

// Applies the configuration named pName (ignoring case) of the definition tree to the
// collection. False, with the reason, when the definition has no such configuration; a
// preview model that can't be had leaves attached points at their offsets and is said in
// pWarning.
bool PlayZolConfiguration( const KeyValues3 &definition, const char *pName, const CParticleDefinitionUsage &usage, IParticleCollection *pCollection,
	CUtlString *pError, CUtlString *pWarning = nullptr );
