#pragma once
// A sequence point: one place in the flow of a document where something happens, owned by
// a node or one of its flow ports. Its properties say where flow can go from it; its
// compile function appends its instructions to a chunk. The analysis walks points by
// their properties; generation calls their compile functions.

#include <functional>
#include <vector>

#include "core/text/utlstring.h"

class CPulseDocNode;
class CBasePulsePort;
class CCompiledChunk;
class CPulseSequencePoint;

// What a point leads to; filled anew each time it is asked for.
struct PulseSequencePointProperties_t
{
	enum EntryKind_t : int
	{
		ENTRY_NONE = 0,
		ENTRY_GRAPH = 1,     // an entry of the graph (a method, an event)
		ENTRY_OWN_CURSOR = 4, // an exit entered by a cursor of its own
		ENTRY_SYNC_CALL = 16, // an exit entered by a synchronous call (sequential branches)
	};

	// Where flow can go from here; the first is where it falls through to.
	std::vector<const CPulseSequencePoint *> m_NextPoints;
	// The flow doesn't run on into a next point in line: it goes by branches, exits or a
	// later resume.
	bool m_bNoFallThrough = false;
	bool m_bYields = false;
	bool m_bBackedByVariable = false;
	bool m_bSkipped = false;
	int m_nEntryKind = ENTRY_NONE;
	// Points this one calls and waits for (a loop body).
	std::vector<const CPulseSequencePoint *> m_CalledPoints;

	void AddNext( const CPulseSequencePoint *pPoint )
	{
		if ( pPoint )
			m_NextPoints.push_back( pPoint );
	}
};

class CPulseSequencePoint
{
public:
	using PropertiesFn_t = std::function<void( PulseSequencePointProperties_t * )>;
	using CompileFn_t = std::function<void( const CPulseSequencePoint *, CCompiledChunk * )>;

	CPulseSequencePoint( const char *pName, CPulseDocNode *pOwner, CBasePulsePort *pPort = nullptr ) : m_pName( pName ), m_pOwner( pOwner ), m_pPort( pPort ) {}
	CPulseSequencePoint( const CPulseSequencePoint & ) = delete;
	CPulseSequencePoint &operator=( const CPulseSequencePoint & ) = delete;

	const char *GetName() const { return m_pName; }
	CPulseDocNode *GetOwner() const { return m_pOwner; }
	CBasePulsePort *GetPort() const { return m_pPort; }

	// The point starts flow by itself and is its own dominator.
	bool IsEntry() const { return m_bEntry; }
	void SetEntry( bool bEntry ) { m_bEntry = bEntry; }

	void SetPropertiesFn( PropertiesFn_t fn ) { m_fnProperties = std::move( fn ); }
	// Replaces the properties function with one that calls the old one, then fn.
	void ChainAdditionalPointPropertiesFn( PropertiesFn_t fn );
	void SetCompileFn( CompileFn_t fn ) { m_fnCompile = std::move( fn ); }
	// A point without instructions of its own.
	void SetNoOpCompilePoint();
	bool HasCompileFn() const { return bool( m_fnCompile ); }

	void GetProperties( PulseSequencePointProperties_t *pProperties ) const;
	void Compile( CCompiledChunk *pChunk ) const;

	// "SeqPoint{0x...} InflowPort @ ('InDefault': Node Step_DebugLog [ID=3] Port InDefault) - Step_DebugLog 'Debug Log'"
	CUtlString Describe() const;
	// "In Default" or "No Port": the name logs give a point's port.
	const char *GetPortNameForLogs() const;

private:
	const char *m_pName;
	CPulseDocNode *m_pOwner;
	CBasePulsePort *m_pPort;
	bool m_bEntry = false;
	PropertiesFn_t m_fnProperties;
	CompileFn_t m_fnCompile;
};
