#pragma once
// What a walk over definition files found, one finding per file and message: the lines
// the command line prints ("FILE: warning: text") and the editor shows after a walk.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

enum ZolFindingSeverity_t : int
{
	ZOL_FINDING_INFO = 0,
	ZOL_FINDING_WARNING = 1,
	ZOL_FINDING_ERROR = 2,
};

struct ZolFileFinding_t
{
	CUtlString m_File;
	ZolFindingSeverity_t m_eSeverity = ZOL_FINDING_INFO;
	CUtlString m_Text;
};

class CZolFileReport
{
public:
	void Add( const char *pFile, ZolFindingSeverity_t eSeverity, const char *pFormat, ... ) __attribute__( ( format( printf, 4, 5 ) ) );
	const CUtlVector<ZolFileFinding_t> &GetFindings() const { return m_Findings; }
	int GetCount( ZolFindingSeverity_t eSeverity ) const;
	bool HasErrors() const { return GetCount( ZOL_FINDING_ERROR ) > 0; }
	bool IsEmpty() const { return m_Findings.IsEmpty(); }
	void Clear() { m_Findings.RemoveAll(); }

	// "FILE: text", "FILE: warning: text", "FILE: error: text": files in byte order, the
	// lines of one file in the order they were found, each line once.
	void GetSortedLines( CUtlVector<CUtlString> *pLines ) const;

private:
	CUtlVector<ZolFileFinding_t> m_Findings;
};

// "warning", "error", or "" for an info.
const char *GetFindingSeverityWord( ZolFindingSeverity_t eSeverity );
