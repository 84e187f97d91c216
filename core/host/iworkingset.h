#pragma once
// A named list of assets that the asset browser shows as a view of its own. A procedural
// set is kept by a tool, not by the user: it can't be renamed or saved.

#include "core/containers/utlvector.h"

class IAsset;

class IWorkingSet
{
public:
	virtual ~IWorkingSet() = default;
	virtual const char *GetName() const = 0;
	virtual int GetCount() const = 0;
	virtual bool Contains( IAsset *pAsset ) const = 0;
	// False when the asset is in the set already.
	virtual bool Add( IAsset *pAsset ) = 0;
	// False when the asset isn't in the set.
	virtual bool Remove( IAsset *pAsset ) = 0;
	// Appends the set's assets, in the set's order.
	virtual void AppendTo( CUtlVector<IAsset *> *pAssets ) const = 0;
	virtual bool Rename( const char *pName ) = 0;
	virtual bool Save() = 0;
};

class IProceduralWorkingSet : public IWorkingSet
{
public:
	bool Rename( const char * ) override { return false; }
	bool Save() override { return false; }
};
