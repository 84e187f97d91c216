#pragma once
// The state behind GenericExprBuilder_t for one call of CGenericExpr::Parse: the parts
// made so far that no other part holds yet, and the reports of the run. Internal to the
// library.

#include <unordered_map>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "mathlib/extended/genericexprbuilder.h"

class CGenericExprPart;

struct GenericExprBuilder_s
{
	GenericExprBuilder_s( const char *pText, size_t nLength, int nDepthLimit );
	~GenericExprBuilder_s(); // frees every part still held

	// Adds one report line; the first one fixes the error offset.
	void Report( int nOffset, const char *pFormat, ... ) __attribute__( ( format( printf, 3, 4 ) ) );
	// The byte offset of a position that the runtime gives as an address into the text.
	int OffsetOfMarker( ANTLR3_MARKER nMarker ) const;
	int OffsetOfToken( pANTLR3_COMMON_TOKEN pToken ) const;

	// Holds a new part whose children, if any, were taken already; answers it, or null
	// (and frees it) when it nests deeper than the limit.
	CGenericExprPart *Hold( CGenericExprPart *pPart, int nDepth );
	// Takes a held part for a parent; answers its depth.
	int Take( CGenericExprPart *pPart );
	int DepthOf( const CGenericExprPart *pPart ) const;
	// Hands the finished root to the caller, who owns it from then on.
	CGenericExprPart *Release( CGenericExprPart *pRoot );

	const char *m_pText;
	size_t m_nLength;
	int m_nDepthLimit;
	bool m_bDepthReported = false;
	std::unordered_map<CGenericExprPart *, int> m_Held; // part to its depth
	CUtlVector<CUtlString> m_Reports;
	int m_nFirstErrorOffset = -1;
	int m_nLexerErrors = 0;
	int m_nParserErrors = 0;
};
