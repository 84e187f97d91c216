#pragma once
// The base of every node of a Pulse document. A node has an id unique in its document,
// an optional name, canvas data (position, size wishes), owned children (connections are
// children of the node whose port they feed or leave), ports, and the sequence points
// the compiler walks. Each class loads and saves its own keys behind the base's; keys a
// class doesn't read are kept and written back, so nothing of a file is lost.

#include <memory>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphtypes.h"
#include "pulsedoc_lib/model/pulsedocnodetype.h"

class CPulseDoc;
class CPulseDocMessages;
class CPulseDocLoadContext;
class CPulseDocKeyReader;
class CBasePulsePort;
class CBasePulseInparamPort;
class CBasePulseOutparamPort;
class CPulseInflowPort;
class CPulseOutflowPort;
class CPulseSequencePoint;
class CPulseCompileContext;

// Nesting of nodes in a file beyond this is refused ("Stack depth limit hit").
constexpr int PULSE_DOC_MAX_NODE_DEPTH = 64;

class CPulseDocNode
{
public:
	CPulseDocNode() = default;
	virtual ~CPulseDocNode();
	CPulseDocNode( const CPulseDocNode & ) = delete;
	CPulseDocNode &operator=( const CPulseDocNode & ) = delete;

	virtual const PulseDocNodeTypeInfo_t &GetNodeTypeInfo() const = 0;

	// The node's table: "_class", the base keys (m_NodeID first, an empty child list left
	// out), the class's own keys, then the keys this build didn't read.
	virtual void SaveKV3( KeyValues3 *pTable ) const;
	// Reads the base keys, tells the load callbacks, reads the children, then the class's
	// keys. Problems are reported to the context; what can't be read keeps its default.
	virtual void LoadKV3( const KeyValues3 &table, CPulseDocLoadContext *pContext );
	// After the whole document has loaded: what needs other nodes (descriptions, names).
	virtual void OnDocumentLoaded( CPulseDocMessages * ) {}

	// Text of the node head.
	virtual CUtlString GetTitle() const;
	// The type's friendly name; a generic node's is its description's.
	virtual const char *GetFriendlyName() const { return GetNodeTypeInfo().m_pFriendlyName; }
	// All ports, in order.
	virtual void GetPorts( std::vector<CBasePulsePort *> *pPorts ) const;
	CBasePulseInparamPort *FindInparam( const char *pName ) const;
	CBasePulseOutparamPort *FindOutparam( const char *pName ) const;
	CPulseInflowPort *FindInflow( const char *pName ) const;
	CPulseOutflowPort *FindOutflow( const char *pName ) const;
	// Ports tied to another port by their metadata ("associated_outflow_name",
	// "associated_inflow_name").
	CPulseOutflowPort *FindOutflowAssociatedWith( const CBasePulsePort *pPort ) const;
	CPulseInflowPort *FindInflowAssociatedWith( const CBasePulsePort *pPort ) const;

	// Fills the node's cell table (already holding "_class" when an entry made it).
	virtual void WriteCellKeys( KeyValues3 *pCell, CPulseCompileContext *pContext ) const;
	// Every sequence point the node and its ports own.
	virtual void GatherSequencePoints( std::vector<CPulseSequencePoint *> *pPoints );

	// Ports first, then the name rule, then what the class adds.
	virtual void Validate( CPulseDocMessages *pMessages ) const;
	virtual void ValidateLate( CPulseDocMessages * ) const {}
	// "Debug Log [ID=3]".
	void DescribeForErrors( CUtlString *pOut ) const;
	CUtlString DescribeForErrors() const;
	// Rounds the position per axis to a multiple of the grid.
	void SnapPosition( float flGrid );

	PulseDocNodeID_t GetNodeID() const { return m_nNodeID; }
	void SetNodeID( PulseDocNodeID_t nID ) { m_nNodeID = nID; }
	const char *GetName() const { return m_Name.Get(); }
	void SetName( const char *pName ) { m_Name.Set( pName ); }
	const char *GetDebugName() const { return m_DebugName.Get(); }

	CPulseDocNode *GetParent() const { return m_pParent; }
	CPulseDoc *GetDoc() const { return m_pDoc; }
	int GetChildCount() const { return int( m_Children.size() ); }
	CPulseDocNode *GetChild( int i ) const { return m_Children[ size_t( i ) ].get(); }
	const std::vector<std::unique_ptr<CPulseDocNode>> &GetChildren() const { return m_Children; }
	// Takes ownership; the child's parent and document become this node's.
	CPulseDocNode *AddChild( CPulseDocNode *pChild, int nIndex = -1 );
	// Hands the child to the caller; null when it isn't a child.
	std::unique_ptr<CPulseDocNode> DetachChild( CPulseDocNode *pChild );
	// Every child, the child's children first... (depth first, in order).
	void GatherSubtree( std::vector<CPulseDocNode *> *pNodes );
	void SetDocRecursive( CPulseDoc *pDoc );
	// A node owned by another outside the tree (an expression's parts): its reports name
	// the owner, and it sees the owner's document.
	void AttachAsPart( CPulseDocNode *pOwner )
	{
		m_pParent = pOwner;
		m_pDoc = pOwner->m_pDoc;
	}

	float m_vPosition[ 2 ] = { 0.0f, 0.0f };
	float m_flIdealWidth = 0.0f;
	float m_flIdealHeight = 0.0f;

protected:
	virtual void LoadOwnKeys( CPulseDocKeyReader & ) {}
	virtual void SaveOwnKeys( KeyValues3 * ) const {}
	// The root writes its own keys before the base's.
	virtual bool SavesOwnKeysFirst() const { return false; }
	// Ports are members; each registers itself here, in order.
	void AddPort( CBasePulsePort *pPort ) { m_Ports.push_back( pPort ); }
	void RemovePort( CBasePulsePort *pPort );
	// Saves a port's table under its key.
	static void SaveInparam( const CBasePulseInparamPort &port, KeyValues3 *pTable );

	PulseDocNodeID_t m_nNodeID = -1;
	CUtlString m_Name;
	CUtlString m_DebugName;
	std::vector<std::unique_ptr<CPulseDocNode>> m_Children;
	CPulseDocNode *m_pParent = nullptr;
	CPulseDoc *m_pDoc = nullptr;
	std::vector<CBasePulsePort *> m_Ports;
	// Keys of the file this build doesn't read, in their order.
	KeyValues3 m_ExtraKeys;

	friend class CPulseEditorUndoLoader;
	friend class CPulseDoc;
};
