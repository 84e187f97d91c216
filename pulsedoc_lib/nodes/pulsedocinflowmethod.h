#pragma once
// A method: an entry point other parts of the graph call (Call Method), or that is public
// and called from outside. Its arguments are its outputs; its return type is what a
// Return node on its flow gives back.

#include <memory>
#include <vector>

#include "pulsedoc_lib/nodes/pulsedocflow.h"

class CPulseDoc_Inflow_Method : public CPulseDoc_BaseInflow
{
public:
	PULSE_DOC_NODE_TYPE()

	struct Arg_t
	{
		CUtlString m_Name;
		CUtlString m_Description;
		CPulseValueFullType m_Type;
	};

	CPulseValueFullType m_ReturnType;
	std::vector<Arg_t> m_Args;
	bool m_bIsPublic = false;
	CUtlString m_Description;

	// Rebuilds the argument outputs from m_Args (unnamed ones read "unnamed", "unnamed1", ...).
	void RebuildPorts();
	// An argument's port name.
	CUtlString GetArgPortName( size_t nArg ) const;
	void CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) override;
	void Validate( CPulseDocMessages *pMessages ) const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	std::vector<std::unique_ptr<CBasePulseOutparamPort>> m_ArgPorts;
};
