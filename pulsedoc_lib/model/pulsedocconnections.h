#pragma once
// Connections are child nodes. An inparam connection, a child of the node that owns the
// input, says which output of which node the input reads. An outflow connection, a child
// of the flow node that owns the exit, says which inflow of which node the exit leads to.
// An anchor point, a child of a connection, only bends its drawn line.

#include "pulsedoc_lib/model/pulsedocnode.h"

class CPulseDoc_BaseConnection : public CPulseDocNode
{
};

class CPulseDoc_Connection_Inparam : public CPulseDoc_BaseConnection
{
public:
	PULSE_DOC_NODE_TYPE()

	PulseDocNodeID_t m_nSourceNode = -1;
	CUtlString m_SourceOutparamName;
	CUtlString m_ThisInparamName;

	// The node with the output, or null.
	CPulseDocNode *FindSourceNode() const;
	CBasePulseOutparamPort *FindSourceOutparam() const;
	void Validate( CPulseDocMessages *pMessages ) const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;
};

class CPulseDoc_Connection_Outflow : public CPulseDoc_BaseConnection
{
public:
	PULSE_DOC_NODE_TYPE()

	// Empty: the parent's default exit.
	CUtlString m_SourceOutflowName;
	PulseDocNodeID_t m_nDestFlowNodeID = -1;
	// Empty: the target's default inflow.
	CUtlString m_DestInflowName;

	// The outflow of the parent this connection leaves, or null.
	CPulseOutflowPort *FindSourceOutflow() const;
	CPulseDocNode *FindDestNode() const;
	CPulseInflowPort *FindDestInflow() const;
	void Validate( CPulseDocMessages *pMessages ) const override;

protected:
	void LoadOwnKeys( CPulseDocKeyReader &reader ) override;
	void SaveOwnKeys( KeyValues3 *pTable ) const override;
};

class CPulseDoc_ConnectionAnchorPoint : public CPulseDocNode
{
public:
	PULSE_DOC_NODE_TYPE()
};
