#pragma once
// Compiled graph definitions to and from KV3. A definition file ("*.tpulsec") is KV3 text
// with the format "generic" whose root table's keys are CPulseGraphDef's fields; cells
// are tables naming their class in "_class", value types are written as their text
// ("PVAL_INT") and instruction codes by name. Saves leave defaults out.
//
// Loading takes what the tree holds. A member that can't be read refuses the whole
// definition with a message naming its place ("m_Chunks[0].m_Instructions[3].m_nCode:
// ..."); a cell of an unknown class is kept as CPulseCell_Unknown with a warning. A loaded
// definition still has to be bound (PulseGraphDef_Bind) before it runs.

#include <vector>

#include "core/kv3transfer/kv3transfercontext.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphdef.h"

class KeyValues3;

// Messages of a load or a binding: errors refuse the definition, warnings don't.
struct PulseGraphMessages_t
{
	std::vector<CUtlString> m_Errors;
	std::vector<CUtlString> m_Warnings;

	bool HasErrors() const { return !m_Errors.empty(); }
	// Every message, one per line, errors first.
	CUtlString ToText() const;
};

// The load context of a definition: transfer errors refuse it, warnings (with the path
// of the value they are about) don't.
class CPulseGraphLoadContext : public CKV3TransferLoadContext
{
public:
	void AddWarning( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );
	std::vector<CUtlString> &GetWarnings() { return m_Warnings; }

private:
	std::vector<CUtlString> m_Warnings;
};

// Null when refused; the reasons are in pMessages.
CPulseGraphDefHandle PulseGraphDef_LoadKV3( const KeyValues3 &root, const char *pResourceName, PulseGraphMessages_t *pMessages );
// KV3 text of a whole file ("--- kv3 ..." header first).
CPulseGraphDefHandle PulseGraphDef_LoadText( const char *pText, size_t nLength, const char *pResourceName, PulseGraphMessages_t *pMessages );

// The tree of a definition, defaults left out. Typed codes are written as the generic
// code they were bound from, so a bound definition saves as it was loaded.
bool PulseGraphDef_SaveKV3( const CPulseGraphDef &def, KeyValues3 *pRoot, CUtlString *pError );
bool PulseGraphDef_SaveText( const CPulseGraphDef &def, CUtlString *pText, CUtlString *pError );

// Loads a file and, unless bBind is false, binds it: the one call that turns a path into a
// runnable definition. pResourceName names it in reports (the path when null).
CPulseGraphDefHandle PulseGraphDef_LoadFile( const char *pPath, const char *pResourceName, PulseGraphMessages_t *pMessages, bool bBind = true );
