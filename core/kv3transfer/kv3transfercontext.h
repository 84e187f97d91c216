#pragma once
// The contexts that KV3 load and save code runs in: the value being read or written, the
// path to it for error texts, the gathered errors, and the interfaces the caller hands in.
// Errors never stop a transfer: each is reported under its path and the transfer goes on,
// so one run reports every problem of a file.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/containers/utlvector.h"
#include "core/containers/utlvectorfixedgrowable.h"
#include "core/kv3/kv3membername.h"
#include "core/text/utlstring.h"

class KeyValues3;
class CKV3TransferAliasTable;
class CUtlScratchMemoryPool;

// Nested objects deeper than this are not read (or written): a hostile or looping tree
// can't exhaust the stack.
constexpr int KV3_TRANSFER_MAX_DEPTH = 64;

class CKV3TransferContextBase
{
public:
	explicit CKV3TransferContextBase( bool bIsLoad ) : m_bIsLoad( bIsLoad ) {}
	virtual ~CKV3TransferContextBase() = default;
	CKV3TransferContextBase( const CKV3TransferContextBase & ) = delete;
	CKV3TransferContextBase &operator=( const CKV3TransferContextBase & ) = delete;

	// Marks the transfer failed and appends "path: text" as a line of the error text.
	virtual void ReportError( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );
	// Appends the current path, with cSeparator between named entries.
	virtual void AppendPathTo( CUtlString &out, char cSeparator ) const;
	// The path as error texts show it ("m_Children[2].m_flRadius"); empty on the save side.
	virtual void FormatPath( CUtlString &out ) const;
	virtual bool HasSucceeded() const { return m_bSucceeded; }
	// Called once by the top-level transfer functions when the transfer is over.
	virtual void OnTransferEnd() {}

	bool IsLoad() const { return m_bIsLoad; }
	const char *GetErrorText() const { return m_ErrorText.Get(); }

	// Interfaces handed in by the caller under their names (IKV3TransferInterface_...).
	void AddInterface( const char *pszKey, void *pInterface );
	// With bOptional false, an unknown key reports "Missing required transfer interface: %s".
	void *FindInterface( const char *pszKey, bool bOptional );
	template <typename I> I *FindInterface( bool bOptional ) { return static_cast<I *>( FindInterface( I::s_pszInterfaceName, bOptional ) ); }

	void PushMember( const char *pszName );
	void PushIndex( uint32_t nIndex );
	void PushToken( uint32_t nToken );
	void PopPath();

	int GetDepth() const { return m_ValueStack.Count(); }

protected:
	struct PathEntry_t
	{
		enum Kind_t : uint8_t
		{
			MEMBER,
			INDEX,
			TOKEN,
		};
		Kind_t m_eKind;
		const char *m_pszName; // a MEMBER's text; it outlives the entry
		uint32_t m_nValue;     // an INDEX or TOKEN
	};

	bool m_bIsLoad;
	bool m_bSucceeded = true;
	int m_nLogLevelLimit = 0;
	CUtlString m_ErrorText;
	CUtlVectorFixedGrowable<uint32_t, 16> m_InterfaceKeyHashes;
	CUtlVectorFixedGrowable<const char *, 16> m_InterfaceKeyTexts;
	CUtlVectorFixedGrowable<void *, 16> m_InterfacePointers;
	CUtlVector<PathEntry_t> m_Path;
	CUtlVector<const void *> m_ValueStack;
};

class CKV3TransferLoadContext : public CKV3TransferContextBase
{
public:
	CKV3TransferLoadContext() : CKV3TransferContextBase( true ) {}

	// Old member names that files may still use; null for none. Not owned.
	void SetAliasTable( const CKV3TransferAliasTable *pAliases ) { m_pAliases = pAliases; }

	// Where loaded CUtlVector arrays keep their elements; null (the default) lets them use
	// the heap. Not owned: the pool must outlive every object loaded with it.
	void SetScratchMemoryPool( CUtlScratchMemoryPool *pPool ) { m_pScratchPool = pPool; }
	CUtlScratchMemoryPool *GetScratchMemoryPool() const { return m_pScratchPool; }
	// Room for nCount elements of nElementSize bytes, 16-byte aligned, from the pool; null
	// without a pool, for nothing, or when the size overflows.
	void *AllocScratch( size_t nElementSize, size_t nCount );

	const KeyValues3 *GetCurrent() const { return m_pCurrent; }
	void EnterValue( const KeyValues3 *pValue );
	void LeaveValue();
	// The member of a table, looked up by its current name and then through the alias
	// table; null when the table lacks it (the member keeps its default).
	const KeyValues3 *FindMember( const KeyValues3 *pTable, const CKV3MemberName &name ) const;

private:
	const CKV3TransferAliasTable *m_pAliases = nullptr;
	CUtlScratchMemoryPool *m_pScratchPool = nullptr;
	const KeyValues3 *m_pCurrent = nullptr;
};

class CKV3TransferSaveContext : public CKV3TransferContextBase
{
public:
	CKV3TransferSaveContext() : CKV3TransferContextBase( false ) {}

	void FormatPath( CUtlString &out ) const override;

	// Members equal to their class default are left out.
	void SetSaveDeltaFromDefaults( bool bDelta ) { m_bDeltaDefaults = bDelta; }
	bool IsSavingDeltaFromDefaults() const { return m_bDeltaDefaults; }

	KeyValues3 *GetCurrent() const { return m_pCurrent; }
	void EnterValue( KeyValues3 *pValue );
	void LeaveValue();

	// The member to write into; writing one member twice reports "Double-save to Member '%s'"
	// and overwrites it.
	KeyValues3 *AddMember( KeyValues3 *pTable, const CKV3MemberName &name );

	enum ClassMode_t
	{
		CLASS_MODE_PLAIN = 1,       // an empty table
		CLASS_MODE_POLYMORPHIC = 2, // a table naming its class in "_class"
		CLASS_MODE_NULL = 3,        // a null pointer
	};
	bool BeginClass( KeyValues3 *pValue, int nMode, const char *pszClassName );

	// Bytes that a load into scratch memory will need for the arrays written so far.
	size_t GetScratchBytes() const { return m_nScratchBytes; }
	void AddScratchArray( size_t nElementSize, size_t nCount );

private:
	size_t m_nScratchBytes = 0;
	KeyValues3 *m_pCurrent = nullptr;
	bool m_bDeltaDefaults = false;
};
