#pragma once
// Node descriptions: the class records generic nodes take their shape from. The runtime's
// cell binding records make one description per cell class (its functions are the
// node's inflows, their parameters its value ports, its outflow fields its exits) and
// one per library function, the way class descriptions are made from the schema.
// Description files under the game root (FGD, named by gameinfo.gi's
// "pulse_node_descriptions") add the domain's events and anything else.
//
// A description's metadata keys: "pulse_inflows", "pulse_outflows" (arrays of tables
// with "name", or tables by name), "pulse_inparams", "pulse_outparams" (tables by port
// name, each with "type", "friendly_name", "description", "default_value",
// "associated_inflow_name", ...), and the flags "is_pulse_global_event",
// "is_pulse_hook", "is_spontaneous", "is_pulse_library_method", "is_state_cell".

#include <memory>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CGameData;
class CGameDataClass;

// A description read into the shape of a node.
struct PulseGenericShape_t
{
	struct Flow_t
	{
		CUtlString m_Name;
		CUtlString m_FriendlyName;
		CUtlString m_Description;
		bool m_bDefault = false;
		bool m_bYields = false;     // inflows
		bool m_bTerminates = false; // inflows
		bool m_bBackedByVariable = false; // outflows
	};
	struct Param_t
	{
		CUtlString m_Name;
		CPulseValueFullType m_Type;
		CUtlString m_FriendlyName;
		CUtlString m_Description;
		KeyValues3 m_DefaultValue;
		CUtlString m_AssociatedFlow; // inflow of an input, outflow of an output
		CUtlString m_FieldName;      // an input stored in a field of the cell
		KeyValues3 m_Metadata;
	};

	CUtlString m_ClassName;
	CUtlString m_FriendlyName;
	CUtlString m_Description;
	std::vector<Flow_t> m_Inflows;
	std::vector<Flow_t> m_Outflows;
	std::vector<Param_t> m_Inparams;
	std::vector<Param_t> m_Outparams;
	bool m_bSpontaneous = false;
	bool m_bGlobalEvent = false;
	bool m_bHook = false;
	bool m_bLibraryMethod = false;
	bool m_bStateCell = false;
	// Problems of the description itself (a type that isn't one), one a line.
	CUtlString m_Problems;

	const Param_t *FindInparam( const char *pName ) const;
};

class CPulseNodeDescriptions
{
public:
	// The runtime's cells and libraries.
	CPulseNodeDescriptions();
	~CPulseNodeDescriptions();
	CPulseNodeDescriptions( const CPulseNodeDescriptions & ) = delete;
	CPulseNodeDescriptions &operator=( const CPulseNodeDescriptions & ) = delete;

	// The set of the runtime alone, made once per process.
	static const CPulseNodeDescriptions &GetRuntimeDescriptions();

	// Adds the files named by the "pulse_node_descriptions" list of gameinfo.gi (its
	// "Brakel" block) under the game root. A missing list adds nothing; false when a file
	// fails, with what went wrong in pReport.
	bool LoadGameDescriptions( const char *pGameRoot, CUtlString *pReport );
	// Adds the classes of one FGD text (file names resolve below pGameRoot).
	bool LoadText( const char *pText, const char *pName, const char *pGameRoot, CUtlString *pReport );

	// By class name, ignoring case; null when there is none.
	const CGameDataClass *FindClass( const char *pName ) const;
	// The shape of a class, read once; null when there is no such class.
	const PulseGenericShape_t *FindShape( const char *pName ) const;
	const CGameData &GetGameData() const { return *m_pGameData; }
	// Names of the classes with a flag in their metadata ("is_pulse_global_event"), in order.
	void GatherClassesWith( const char *pFlag, std::vector<CUtlString> *pNames ) const;

private:
	void AddRuntimeClasses();

	std::unique_ptr<CGameData> m_pGameData;
	mutable std::vector<std::unique_ptr<PulseGenericShape_t>> m_Shapes;
};
