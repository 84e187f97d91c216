#pragma once
// Resources by name with their data in place, for readers that take whatever a name holds
// (models, textures, definitions): a resource not yet loaded is loaded through its asset.

class CResourceBinding;
class CUtlString;

// The binding of the name, loaded. Null, with the reason in pError (no name, no resource
// system, the asset's own load error, or "NAME: no such KIND"), when it can't be had.
// pKind names what was asked for in those texts ("model", "image", ...).
CResourceBinding *FindLoadedResource( const char *pResourceName, const char *pKind, CUtlString *pError );
