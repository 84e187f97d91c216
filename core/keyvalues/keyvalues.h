#pragma once
// The older key/value tree: every key has a name and either a text value or subkeys.
// It reads the brace text format of game information and binding files:
//
//   "GameInfo"
//   {
//       game    "Zol Sample"        // quotes are optional for simple tokens
//       "Particles" { "Budget_SimulationUS" "1500" }
//   }
//
// Names compare ignoring case. Numbers are kept as text and converted when read.
// A key owns its subkeys and the keys that follow it (its peers).

#include "core/text/utlstring.h"

class CUtlBuffer;

class KeyValues
{
public:
	explicit KeyValues( const char *pName = "" );
	KeyValues( const char *pName, const char *pFirstKey, const char *pFirstValue );
	~KeyValues();
	KeyValues( const KeyValues & ) = delete;
	KeyValues &operator=( const KeyValues & ) = delete;

	const char *GetName() const { return m_strName.Get(); }
	void SetName( const char *pName ) { m_strName.Set( pName ); }

	// Replaces this key's contents with the text's first top-level key (its name and
	// subkeys); further top-level keys become peers after it. On failure answers false
	// with "name:line:col: message" in pError (name only when pResourceName is given),
	// and the key is left empty. Never crashes on bad input; nesting is bounded.
	bool LoadFromBuffer( const char *pResourceName, const char *pText, CUtlString *pError = nullptr );
	bool LoadFromBuffer( const char *pResourceName, const char *pText, size_t nLength, CUtlString *pError );
	bool LoadFromFile( const char *pPath, CUtlString *pError = nullptr );

	// Writes this key, its subkeys and its peers as text that LoadFromBuffer reads back.
	void SaveToBuffer( CUtlBuffer *pBuffer ) const;
	// Written through the safe write layer: never half a file, read-only files refused.
	bool SaveToFile( const char *pPath, CUtlString *pError = nullptr ) const;
	CUtlString ToText() const;

	// Finds a subkey by name, or by a path of names separated by '/' ("Particles/Budget").
	// With bCreate, missing keys on the path are added at the end.
	KeyValues *FindKey( const char *pKeyName, bool bCreate = false );
	const KeyValues *FindKey( const char *pKeyName ) const;

	// Iteration over subkeys, in file order.
	KeyValues *GetFirstSubKey() const { return m_pSub; }
	KeyValues *GetNextKey() const { return m_pPeer; }
	// Only subkeys that have subkeys themselves / only those with values.
	KeyValues *GetFirstTrueSubKey() const;
	KeyValues *GetNextTrueSubKey() const;
	KeyValues *GetFirstValue() const;
	KeyValues *GetNextValue() const;

	// Appends a subkey (taking ownership) / a new empty subkey of that name.
	void AddSubKey( KeyValues *pSubKey );
	KeyValues *CreateNewKey( const char *pName );
	// Unlinks a direct subkey without deleting it (ownership goes to the caller).
	void RemoveSubKey( KeyValues *pSubKey );
	// Removes and deletes the first direct subkey of that name; answers whether one was.
	bool DeleteSubKey( const char *pName );

	bool HasSubKeys() const { return m_pSub != nullptr; }
	bool IsEmpty( const char *pKeyName = nullptr ) const;

	// Typed reads of a subkey's value (or of this key's own with a null name). A missing
	// key, a key with subkeys or text that isn't a number answers the default.
	const char *GetString( const char *pKeyName = nullptr, const char *pDefault = "" ) const;
	int GetInt( const char *pKeyName = nullptr, int nDefault = 0 ) const;
	float GetFloat( const char *pKeyName = nullptr, float flDefault = 0.0f ) const;
	// Numbers are true when not 0; "true"/"false" and "yes"/"no" are read too.
	bool GetBool( const char *pKeyName = nullptr, bool bDefault = false ) const;

	// Writes a subkey's value (this key's own with a null name), creating the key when
	// missing; a value replaces any subkeys it had.
	void SetString( const char *pKeyName, const char *pValue );
	void SetInt( const char *pKeyName, int nValue );
	void SetFloat( const char *pKeyName, float flValue );
	void SetBool( const char *pKeyName, bool bValue ) { SetInt( pKeyName, bValue ? 1 : 0 ); }

	// Deep copy of this key and its subkeys (not its peers).
	KeyValues *MakeCopy() const;
	// Removes value, subkeys and peers.
	void Clear();

	// Deepest nesting the reader accepts.
	static constexpr int MAX_NESTING_DEPTH = 100;

private:
	const KeyValues *FindDirectSubKey( const char *pName, size_t nLength ) const;
	void DeleteSubKeysAndPeers();
	void WriteText( CUtlString *pText, int nIndent ) const;

	CUtlString m_strName;
	CUtlString m_strValue;
	bool m_bHasValue = false;
	KeyValues *m_pSub = nullptr;
	KeyValues *m_pLastSub = nullptr; // so appending to long lists stays cheap
	KeyValues *m_pPeer = nullptr;
};
