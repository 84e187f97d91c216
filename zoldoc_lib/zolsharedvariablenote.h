#pragma once
// What the property panel notes beside a variable that related files declare too: which
// files share it, and a warning when their types disagree.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

class CPulseValueFullType;
struct ZolNamedValueRecord_t;

struct ZolSharedVariableNote_t
{
	bool m_bShared = false;
	CUtlString m_SharedIcon;
	CUtlString m_SharedText;   // the head and one line per file
	bool m_bConflict = false;  // some file gives it another type
	CUtlString m_AlertIcon;
	CUtlString m_ConflictText; // this file's type and every other file's
};

// pRecords: the family's variables of the name; those of this file are left out.
void BuildZolSharedVariableNote( const char *pName, const CPulseValueFullType &type, const CUtlVector<ZolNamedValueRecord_t> &records, ZolSharedVariableNote_t *pNote );
