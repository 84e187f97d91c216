#pragma once
// The plain file system: search paths per id over the local disk.

#include <shared_mutex>

#include "core/host/ifilesystem.h"

class CFileSystem final : public IFileSystem
{
public:
	CFileSystem();
	~CFileSystem();

	// Sets the four ids from the two roots: "GAME" and "GAMEROOT" on the game root,
	// "CONTENT" and "CONTENTROOT" on the content root. Earlier search paths of these
	// ids are dropped.
	void SetupFromRoots( const char *pGameRoot, const char *pContentRoot );

	void AddSearchPath( const char *pPath, const char *pPathID, bool bAddToHead = false ) override;
	void RemoveSearchPaths( const char *pPathID ) override;
	int GetSearchPaths( const char *pPathID, CUtlVector<CUtlString> *pPaths ) const override;
	void SetDirectoryUnmodifiable( const char *pPath, bool bUnmodifiable ) override;

	bool ReadFile( const char *pFileName, const char *pPathID, CUtlBuffer *pBuffer, CUtlString *pError = nullptr ) override;
	bool WriteFile( const char *pFileName, const char *pPathID, const CUtlBuffer &buffer, CUtlString *pError = nullptr ) override;
	bool CreateDirHierarchy( const char *pPath, const char *pPathID = nullptr ) override;
	bool RemoveFile( const char *pFileName, const char *pPathID = nullptr ) override;

	bool FileExists( const char *pFileName, const char *pPathID = nullptr ) const override;
	bool IsDirectory( const char *pPath, const char *pPathID = nullptr ) const override;
	bool IsFileWritable( const char *pFileName, const char *pPathID = nullptr ) const override;
	bool IsPathUnmodifiable( const char *pPath, const char *pPathID = nullptr ) const override;
	int64_t GetFileTime( const char *pFileName, const char *pPathID = nullptr ) const override;

	int FindFiles( const char *pPattern, const char *pPathID, unsigned nFlags, CUtlVector<CUtlString> *pResults ) const override;

	bool RelativePathToFullPath( const char *pFileName, const char *pPathID, CUtlString *pFullPath ) const override;
	bool FullPathToRelativePath( const char *pFullPath, const char *pPathID, CUtlString *pRelativePath ) const override;
	bool MakeWritePath( const char *pFileName, const char *pPathID, CUtlString *pFullPath ) const override;

	bool IsPathValid( const char *pPath ) const override;

private:
	struct SearchPath_t
	{
		CUtlString m_strPathID;
		CUtlString m_strPath; // in-memory form
	};

	CUtlVector<CUtlString> SearchPathsOf( const char *pPathID ) const;
	// The disk path of an existing file or directory; false when none has it.
	bool Locate( const char *pFileName, const char *pPathID, CUtlString *pDiskPath ) const;
	// Inside (or one of) the directories marked unmodifiable.
	bool IsInUnmodifiableDirectory( const char *pFullPath ) const;

	mutable std::shared_mutex m_Mutex;
	CUtlVector<SearchPath_t> m_SearchPaths;
	CUtlVector<CUtlString> m_UnmodifiableDirectories; // in-memory form
};
