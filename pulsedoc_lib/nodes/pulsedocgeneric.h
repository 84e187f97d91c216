#pragma once
// Generic nodes: most flow and value nodes take their shape from a node description (see
// pulsenodedescriptions.h). The file keeps the description's name (m_GenericNodeType),
// its plain fields (m_GenericKeys; an input bound to a field of the cell is kept there
// under the field's name) and the data of the ports (m_GenericPorts, by port name). A
// description this build doesn't have leaves the node and its data in place, reported.

#include <memory>
#include <vector>

#include "pulsedoc_lib/model/pulsenodedescriptions.h"
#include "pulsedoc_lib/nodes/pulsedocflow.h"
#include "pulsedoc_lib/nodes/pulsedocvalue.h"

// The value ports of a generic node and their stored keys.
class CPulseGenericPorts
{
public:
	// Makes the value ports of the shape on the node (flow ports are the flow node's).
	void Init( CPulseDocNode *pNode, const PulseGenericShape_t *pShape, std::vector<CBasePulsePort *> *pPorts );
	// m_GenericNodeType, then the ports and keys of the description it names.
	void Load( CPulseDocKeyReader &reader, CPulseDocNode *pNode, const std::vector<CBasePulsePort *> &ports );
	void Save( KeyValues3 *pTable, const std::vector<CBasePulsePort *> &ports ) const;
	// "Node '%s' is no longer present" and what is wrong with the description.
	void Validate( const CPulseDocNode *pNode, CPulseDocMessages *pMessages ) const;

	CUtlString m_GenericNodeType;
	KeyValues3 m_GenericKeys;
	const PulseGenericShape_t *m_pShape = nullptr;
	std::vector<std::unique_ptr<CBasePulseInparamPort>> m_Inparams;
	std::vector<std::unique_ptr<CBasePulseOutparamPort>> m_Outparams;

private:
	// Port data the description has no port for, kept as it was.
	KeyValues3 m_OrphanPorts;
};

class CPulseDoc_Flow_Generic : public CPulseDoc_BaseFlow
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Flow_Generic();

	const char *GetFriendlyName() const override;
	const CPulseSequencePoint *GetEntryPoint() const override;
	const CPulseSequencePoint *GetOutparamSourcePoint( const CBasePulseOutparamPort *pOutparam ) const override;
	void GatherSequencePoints( std::vector<CPulseSequencePoint *> *pPoints ) override;
	void WriteCellKeys( KeyValues3 *pCell, CPulseCompileContext *pContext ) const override;
	void Validate( CPulseDocMessages *pMessages ) const override;
	const PulseGenericShape_t *GetShape() const { return m_Generic.m_pShape; }

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	void InitGeneric( const PulseGenericShape_t *pShape );
	void CompileInflow( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk, const char *pInflow ) const;
	void CompileEntry( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const;
	// The runtime's function behind an inflow moves the cursor itself.
	bool InflowLeavesFlow( const PulseGenericShape_t::Flow_t &inflow ) const;

	CPulseGenericPorts m_Generic;
	CPulseSequencePoint m_OptionalSpontaneousPoint;
	std::vector<std::unique_ptr<CPulseInflowPort>> m_InflowPorts;
	std::vector<std::unique_ptr<CPulseOutflowPort>> m_OutflowPorts;
};

// A value function of a library, called where its result is read (inflow "Eval").
class CPulseDoc_Value_Generic : public CPulseDoc_BaseValue
{
public:
	PULSE_DOC_NODE_TYPE()

	const char *GetFriendlyName() const override;
	void CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const override;
	CPulseValueFullType GetResultType() const override;
	void Validate( CPulseDocMessages *pMessages ) const override;
	// Makes the node call a function (the expression builder does).
	void SetFunction( const char *pClassName, const CPulseNodeDescriptions &descriptions );
	const PulseGenericShape_t *GetShape() const { return m_Generic.m_pShape; }

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;

private:
	CPulseGenericPorts m_Generic;
};
