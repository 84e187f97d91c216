#pragma once
// The host's record of one asset: a source file under the content root, the resource
// compiled from it, and the assets it refers to. The asset system owns every asset;
// users take a reference while they keep one.
//
// Paths: GetPath is the content path with backslashes ("particles\samples\fire.tfxs"),
// GetResourceName the same with forward slashes, as files refer to it.
//
// Reference counts are safe from any thread; everything else runs on the tool's main
// thread, as compiles and the listeners they call do.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/host/resourcetype.h"
#include "core/text/utlstring.h"

class CResourceBinding;
class CUtlBuffer;

class IAsset
{
public:
	// The content path of the asset's file.
	virtual const char *GetPath() const = 0;
	virtual const char *GetResourceName() const = 0;
	// The absolute path of the content file (which may not exist yet), backslashes.
	virtual const char *GetAbsolutePath() const = 0;
	virtual ResourceType_t GetType() const = 0;
	virtual bool FileExists() const = 0;

	// Resident: the resource holds compiled data. Load compiles the file from disk.
	virtual bool IsResident() const = 0;
	virtual bool Load( CUtlString *pError = nullptr ) = 0;

	// References, safe from any thread.
	virtual void AddRef() = 0;
	virtual void Release() = 0;
	virtual int GetRefCount() const = 0;

	// The resource of the asset's name; never null for an asset of an asset system.
	virtual CResourceBinding *GetResource() const = 0;

	// Assets that refer to this one / that this one refers to, without duplicates, in
	// the order found. With bRecursive the whole chain up / down (cycles end the walk).
	// With a type, only assets of that type are listed and walked through. Appends;
	// answers the count added.
	virtual int GetParents( CUtlVector<IAsset *> *pParents, bool bRecursive = false, ResourceType_t nType = RESOURCE_TYPE_NONE ) = 0;
	virtual int GetChildren( CUtlVector<IAsset *> *pChildren, bool bRecursive = false, ResourceType_t nType = RESOURCE_TYPE_NONE ) = 0;

	// Change stamps: the file's modification stamp (0 without a file) and a counter of
	// successful compiles, which moves with every compile from memory.
	virtual int64_t GetFileStamp() const = 0;
	virtual uint32_t GetCompileStamp() const = 0;

	// Compiles the source in the buffer with the compiler of the asset's type; after it
	// the asset's resource holds the new content and resource listeners have been told.
	// A failed compile keeps the last good data and answers false with the reason.
	virtual bool CompileFromBuffer( const CUtlBuffer &source, CUtlString *pError = nullptr ) = 0;
	// The end of editing in memory: the resource goes back to what the file holds (or
	// to nothing without a file).
	virtual void EndEditing() = 0;
	// The error of the last failed compile; empty after a successful one.
	virtual const char *GetLastCompileError() const = 0;

protected:
	~IAsset() = default;
};
