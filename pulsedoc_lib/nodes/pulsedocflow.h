#pragma once
// The bases of nodes with flow: a flow node has inflows and outflows and sequence points;
// the point of its main step compiles through CompileStep. Entries (BaseInflow) start
// flow; steps (BaseStep) do one thing and go on at their default exit; outflows
// (BaseOutflow) choose among exits. A group runs its flow children one after another.

#include <memory>
#include <vector>

#include "pulsedoc_lib/compiler/pulsesequencepoint.h"
#include "pulsedoc_lib/model/pulsedocnode.h"
#include "pulsedoc_lib/model/pulseports.h"

class CPulseDoc_BaseFlow : public CPulseDocNode
{
public:
	// The point a connection into this node reaches when flow starts here by itself
	// (a method, an event); null for nodes that are only entered through an inflow.
	virtual const CPulseSequencePoint *GetEntryPoint() const { return nullptr; }
	virtual const CPulseSequencePoint *GetDefaultInflowPoint() const;
	virtual CPulseOutflowPort *GetDefaultOutflow() const;
	// The point flow reaches through an inflow of this node.
	const CPulseSequencePoint *GetInflowEntry( const CPulseInflowPort *pInflow ) const;
	// The exit a last flow child without a way on continues at (a group's own exit); null
	// when flow ends there.
	virtual const CPulseOutflowPort *GetChildSequenceExit() const { return nullptr; }
	// The compile step of the node's main point.
	virtual void CompileStep( const CPulseSequencePoint *, CCompiledChunk * ) {}
	// The point whose compile writes an output: a read must be dominated by it.
	virtual const CPulseSequencePoint *GetOutparamSourcePoint( const CBasePulseOutparamPort *pOutparam ) const;

	void GatherSequencePoints( std::vector<CPulseSequencePoint *> *pPoints ) override;
	void Validate( CPulseDocMessages *pMessages ) const override;

	// Every flow port, in order.
	void GetInflows( std::vector<CPulseInflowPort *> *pInflows ) const;
	void GetOutflows( std::vector<CPulseOutflowPort *> *pOutflows ) const;

protected:
	// The node's own points (not its ports'), for the analysis.
	std::vector<CPulseSequencePoint *> m_OwnPoints;
	// Standard properties: a step goes on at its default exit.
	void FillDefaultExitProperties( PulseSequencePointProperties_t *pProperties ) const;
	// Every exit is a next point, and nothing falls through.
	void FillAllExitsProperties( PulseSequencePointProperties_t *pProperties ) const;
	// The standard point of an outflow port: nothing to compile, on to its target.
	void InitOutflowPoint( CPulseOutflowPort &port );
};

// Starts flow: the primary point is an entry of the graph.
class CPulseDoc_BaseInflow : public CPulseDoc_BaseFlow
{
public:
	CPulseDoc_BaseInflow();
	const CPulseSequencePoint *GetEntryPoint() const override { return &m_PrimaryPoint; }
	const CPulseSequencePoint *GetPrimaryPoint() const { return &m_PrimaryPoint; }

protected:
	CPulseSequencePoint m_PrimaryPoint;
	CPulseOutflowPort m_OutDefault;
};

// Does one thing at its step point, then goes on at "OutDefault".
class CPulseDoc_BaseStep : public CPulseDoc_BaseFlow
{
public:
	CPulseDoc_BaseStep();

protected:
	CPulseSequencePoint m_StepPoint;
	CPulseInflowPort m_InDefault;
	CPulseOutflowPort m_OutDefault;
};

// Chooses among its exits at its primary point; nothing falls through.
class CPulseDoc_BaseOutflow : public CPulseDoc_BaseFlow
{
public:
	CPulseDoc_BaseOutflow();

protected:
	CPulseSequencePoint m_PrimaryPoint;
	CPulseInflowPort m_InDefault;
};

class CPulseDoc_Group : public CPulseDoc_BaseFlow
{
public:
	PULSE_DOC_NODE_TYPE()
	CPulseDoc_Group();
	const CPulseOutflowPort *GetChildSequenceExit() const override { return &m_OutDefault; }

private:
	CPulseSequencePoint m_PrimaryPoint;
	CPulseInflowPort m_InDefault;
	CPulseOutflowPort m_OutDefault;
};

// The first flow node among the node's children, or null.
CPulseDoc_BaseFlow *PulseDoc_FirstFlowChild( const CPulseDocNode *pNode );
// The next flow node after pNode under its parent, when the parent is a flow node.
CPulseDoc_BaseFlow *PulseDoc_NextFlowSibling( const CPulseDocNode *pNode );
