#pragma once
// The plain asset: one content file, its resource and its references.

#include <atomic>
#include <mutex>

#include "core/host/iasset.h"

class CAssetSystem;

class CAsset : public IAsset
{
public:
	// pSystem may be null: such an asset knows only its paths and type, has no resource,
	// no relations and doesn't compile. pAbsolutePath may be null for it too.
	CAsset( CAssetSystem *pSystem, const char *pContentPath, const char *pAbsolutePath = nullptr );
	virtual ~CAsset();
	CAsset( const CAsset & ) = delete;
	CAsset &operator=( const CAsset & ) = delete;

	const char *GetPath() const override { return m_strPath.Get(); }
	const char *GetResourceName() const override { return m_strResourceName.Get(); }
	const char *GetAbsolutePath() const override { return m_strAbsolutePath.Get(); }
	ResourceType_t GetType() const override { return m_nType; }
	bool FileExists() const override;

	bool IsResident() const override;
	bool Load( CUtlString *pError = nullptr ) override;

	void AddRef() override { m_nRefCount.fetch_add( 1, std::memory_order_relaxed ); }
	void Release() override;
	int GetRefCount() const override { return m_nRefCount.load( std::memory_order_acquire ); }

	CResourceBinding *GetResource() const override { return m_pResource; }

	int GetParents( CUtlVector<IAsset *> *pParents, bool bRecursive = false, ResourceType_t nType = RESOURCE_TYPE_NONE ) override;
	int GetChildren( CUtlVector<IAsset *> *pChildren, bool bRecursive = false, ResourceType_t nType = RESOURCE_TYPE_NONE ) override;

	int64_t GetFileStamp() const override;
	uint32_t GetCompileStamp() const override { return m_nCompileStamp.load( std::memory_order_acquire ); }

	bool CompileFromBuffer( const CUtlBuffer &source, CUtlString *pError = nullptr ) override;
	void EndEditing() override;
	const char *GetLastCompileError() const override { return m_strLastCompileError.Get(); }

	// Whether the resource holds a compile from memory rather than the file.
	bool IsEditedInMemory() const { return m_bEditedInMemory; }
	// The stamp of the file when the resource was last compiled from it (0: never).
	int64_t GetLoadedFileStamp() const { return m_nLoadedFileStamp; }
	// The asset system reloaded the file's data behind the asset (a batch reload).
	void NoteReloadedFromFile( int64_t nFileStamp );
	// The resource names this asset refers to, read again when the file changed.
	const CUtlVector<CUtlString> &GetReferenceNames();

private:
	bool Compile( const CUtlBuffer &source, bool bFromMemory, CUtlString *pError );
	void DirectChildren( CUtlVector<IAsset *> *pChildren, ResourceType_t nType );

	CAssetSystem *m_pSystem;
	CUtlString m_strPath;
	CUtlString m_strResourceName;
	CUtlString m_strAbsolutePath;
	ResourceType_t m_nType;
	CResourceBinding *m_pResource = nullptr;
	std::atomic<int> m_nRefCount{ 0 };
	std::atomic<uint32_t> m_nCompileStamp{ 0 };
	CUtlString m_strLastCompileError;
	bool m_bEditedInMemory = false;
	int64_t m_nLoadedFileStamp = 0;

	// References, with the file stamp they were read at (-1: not read; the in-memory
	// source's references stand while editing).
	CUtlVector<CUtlString> m_ReferenceNames;
	int64_t m_nReferencesStamp = -1;
};
