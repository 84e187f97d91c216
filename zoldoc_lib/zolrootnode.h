#pragma once
// The system's own properties, and the owner of the nine lists and the control point
// configurations. The root's table holds everything of the definition except those.

#include "core/containers/utlvector.h"
#include "zoldoc_lib/zolnode.h"

class CZolChildNode;
class CZolFunctionNode;
class CZolVariableNode;
struct ZolControlPointConfiguration_t;

class CZolRootNode : public CBaseZolNode
{
public:
	explicit CZolRootNode( CZolDoc *pDoc ) : CBaseZolNode( pDoc ) {}
	~CZolRootNode() override;

	ParticleFunctionType_t GetFunctionType() const override { return PARTICLE_FUNCTION_ROOT; }
	const char *GetClassName() const override { return "CParticleSystemDefinition"; }
	bool IsRootNode() const override { return true; }
	CZolRootNode *AsRootNode() override { return this; }

	// Back to a null table with no nodes and no configurations.
	void Clear();

	CZolChildNode *AddChildNode();
	// Null, creating nothing, when the class may not stand in that list.
	CZolFunctionNode *AddFunctionNode( ParticleFunctionType_t eType, const char *pClass );
	CZolVariableNode *AddVariableNode();
	// Unlinks and destroys the node; nothing when it is not in that list.
	void RemoveFunctionNode( ParticleFunctionType_t eType, CBaseZolNode *pNode );
	// nNewIndex names a gap of the list as it stood before the move, 0 .. count.
	void MoveNode( CBaseZolNode *pNode, int nNewIndex );

	int GetNodeCount( ParticleFunctionType_t eType ) const;
	CBaseZolNode *GetNode( ParticleFunctionType_t eType, int nIndex ) const;
	// First node whose class name matches ignoring case, or -1.
	int FindFunction( ParticleFunctionType_t eType, const char *pClass ) const;
	// False when the node is in no list.
	bool FindNode( const CBaseZolNode *pNode, int *pIndex, int *pType ) const;
	int GetEnabledCount( ParticleFunctionType_t eType ) const;
	// The index by which the running system knows child i: from behaviour version 5 on
	// disabled children are left out.
	int GetRuntimeChildIndex( int nChild ) const;

	int GetConfigurationCount() const { return m_Configurations.Count(); }
	ZolControlPointConfiguration_t *GetConfiguration( int nIndex ) const;
	// Name compared ignoring case; null when absent.
	ZolControlPointConfiguration_t *FindConfiguration( const char *pName ) const;
	ZolControlPointConfiguration_t *FindOrAddConfiguration( const char *pName );
	void RemoveConfiguration( ZolControlPointConfiguration_t *pConfig );

	// The whole definition as one tree, and back: nodes are made anew from it.
	void SaveRootToKV3( KeyValues3 *pOut ) const;
	void LoadRootFromKV3( const KeyValues3 *pIn );
	// As LoadRootFromKV3, but takes the tree apart instead of copying it; for undo,
	// where the tree is a temporary.
	void TakeRootFromKV3( KeyValues3 *pIn );

private:
	// Reads the tree; with bTake its values are moved out, else it is only read.
	void LoadRoot( KeyValues3 *pIn, bool bTake );
	CBaseZolNode *AppendNode( ParticleFunctionType_t eType, CBaseZolNode *pNode );

	CUtlVector<CBaseZolNode *> m_Nodes[ PARTICLE_FUNCTION_LIST_COUNT ];
	CUtlVector<ZolControlPointConfiguration_t *> m_Configurations;
};
