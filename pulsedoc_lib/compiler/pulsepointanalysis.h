#pragma once
// The analysis of a document's flow: the graph of its sequence points, and per point
// what leads to it, what it leads to, which entries reach it, what dominates it, whether
// a cursor can yield from it, and which chunk it compiles into. The document keeps one
// and redoes it when the topology changes; node titles, scopes and the compiler ask it.

#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/text/utlstring.h"

class CPulseDoc;
class CPulseSequencePoint;

class CPulsePointAnalysis
{
public:
	enum State_t
	{
		STATE_EMPTY = 0,
		STATE_ANALYSING = 1,
		STATE_COMPLETE = 2,
	};

	// Rounds of the dominator and reverse-property iterations stop quietly here.
	static constexpr int MAX_ITERATIONS = 500;

	struct Record_t
	{
		const CPulseSequencePoint *m_pPoint = nullptr;
		int m_nEntryKind = 0;
		bool m_bEntryFlag = false;
		bool m_bYields = false;
		bool m_bNoFallThrough = false;
		bool m_bCanYield = false;
		// The properties' next points in order, then the called points (loop bodies):
		// the analysis walks both.
		std::vector<int> m_Next;
		std::vector<int> m_CalledPoints;
		std::vector<int> m_Befores;
		std::vector<int> m_Afters;
		std::unordered_set<int> m_BeforeSet;
		std::unordered_set<int> m_AfterSet;
		std::vector<int> m_ReachingEntries;
		std::unordered_set<int> m_ReachingEntrySet;
		// Sorted; meaningless while m_bUniversal (every point dominates).
		std::vector<int> m_Dominators;
		bool m_bUniversal = true;
		int m_nCanonical = -1;
		bool m_bIsCanonical = false;
		// The point that starts the chunk this one compiles into.
		int m_nHead = -1;
	};

	// Analyses the document (verbosity 1 and 2 add log lines, see GetLog).
	void Run( CPulseDoc &doc, int nVerbosity = 0 );
	State_t GetState() const { return m_eState; }
	bool IsComplete() const { return m_eState == STATE_COMPLETE; }

	int GetCount() const { return int( m_Records.size() ); }
	const Record_t &Get( int i ) const { return m_Records[ size_t( i ) ]; }
	int FindIndex( const CPulseSequencePoint *pPoint ) const;
	const Record_t *Find( const CPulseSequencePoint *pPoint ) const;
	// The start points: entries that start flow by themselves, in document order.
	const std::vector<int> &GetStarts() const { return m_Starts; }

	// False before the analysis is complete.
	bool GetCanYield( const CPulseSequencePoint *pPoint ) const;
	// Whether every path from an entry to pPoint passes pDominator (a universal record:
	// yes).
	bool Dominates( const CPulseSequencePoint *pDominator, const CPulseSequencePoint *pPoint ) const;
	// The reaching entries of a point that start flow by themselves.
	void GatherOriginatingEntries( const CPulseSequencePoint *pPoint, std::vector<const CPulseSequencePoint *> *pEntries ) const;
	const CPulseSequencePoint *GetHead( const CPulseSequencePoint *pPoint ) const;

	// The lines of the last run at its verbosity.
	const CUtlString &GetLog() const { return m_Log; }
	// The graph, afters then befores, " RECURSED!!" for a point seen before on its path.
	void Dump( CUtlString *pText ) const;

private:
	int Visit( const CPulseSequencePoint *pPoint );
	void BuildGraph( const std::vector<const CPulseSequencePoint *> &starts );
	void FindReachingEntries();
	void IterateDominators();
	void FindCanonicalPoints();
	void IterateReverseProperties();
	void AssignChunkHeads();
	void DumpFrom( int nIndex, bool bAfters, int nDepth, std::vector<bool> *pOnPath, CUtlString *pText ) const;

	State_t m_eState = STATE_EMPTY;
	std::vector<Record_t> m_Records;
	std::unordered_map<const CPulseSequencePoint *, int> m_Index;
	std::vector<int> m_Starts;
	std::vector<int> m_Order; // reverse post-order from the starts
	int m_nVerbosity = 0;
	CUtlString m_Log;
};
