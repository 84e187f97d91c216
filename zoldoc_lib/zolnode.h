#pragma once
// A node of the particle document: one KV3 table described by an FGD class. Nodes are
// made and destroyed only by the root, and all of them are made anew by every undo, so
// nothing outside the document may keep a node pointer across an edit.

#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/fgd/basekv3datawithfgdclass.h"
#include "tools/toolutils2/toolattr/itoolattrnotifyroot.h"
#include "core/particles/particlefunctiontype.h"

class CBufferString;
class CZolDoc;
class CZolChildNode;
class CZolRootNode;
class CZolFunctionNode;
class CZolVariableNode;
class IZolNodeVariableContext;

class CBaseZolNode : public CBaseKV3DataWithFGDClass, public IToolAttrNotifyRoot
{
public:
	explicit CBaseZolNode( CZolDoc *pDoc );
	~CBaseZolNode() override;
	CBaseZolNode( const CBaseZolNode & ) = delete;
	CBaseZolNode &operator=( const CBaseZolNode & ) = delete;

	// IToolAttr_Table: the class's attributes, less "_class", which nobody edits.
	void GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes ) override;
	bool GetHelpInfo( HToolAttrTableInstance handle, CUtlString *pContext, CUtlString *pId ) const override;
	bool GetElementHelpInfo( CUtlString *pContext, CUtlString *pId ) const override;
	bool GetDisplayName( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	const char *GetIconName() const override { return ""; }
	bool IgnoresDefaults() const override { return false; }
	bool HidesDefaultMark() const override { return false; }
	bool GetFlattenIntoParent() const override { return false; }
	HToolAttrTableInstance GetAttrInstance( HToolAttrTableInstance handle ) override;
	void FillEditContext( HToolAttrTableInstance, CToolEditContextQuery_Base * ) const override {}

	// CBaseKV3DataWithFGDClass
	const CGameData *GetGameData() const override;
	const CGameDataClass *GetFGDClass() const override;
	const KeyValues3 *GetKV3() const override { return &m_KV3; }
	// Notes the node as written, so the next flush tells the function list.
	KeyValues3 *GetKV3ForModify() override;

	virtual ParticleFunctionType_t GetFunctionType() const = 0;
	virtual const char *GetClassName() const = 0;

	virtual bool IsChildNode() const { return false; }
	virtual bool IsRootNode() const { return false; }
	virtual bool IsFunctionNode() const { return false; }
	virtual bool IsVariableNode() const { return false; }
	virtual CZolChildNode *AsChildNode() { return nullptr; }
	virtual CZolRootNode *AsRootNode() { return nullptr; }
	virtual CZolFunctionNode *AsFunctionNode() { return nullptr; }
	virtual CZolVariableNode *AsVariableNode() { return nullptr; }

	// The table without noting a write: for the document's own structural changes.
	virtual const KeyValues3 *GetReadKV3() const { return &m_KV3; }
	virtual KeyValues3 *GetWriteKV3() { return &m_KV3; }

	virtual void SaveToKV3( KeyValues3 *pOut ) const;
	virtual void LoadFromKV3( const KeyValues3 *pIn );
	// As LoadFromKV3, but takes the value over instead of copying it; *pIn is left null.
	virtual void TakeFromKV3( KeyValues3 *pIn );

	virtual bool IsEnabled() const;
	virtual void SetEnabled( bool bEnabled );

	// The function list's three texts for this node.
	virtual void GetDisplayStrings( CBufferString *pName, CBufferString *pValue, CBufferString *pHint ) const;

	CZolDoc *GetDoc() const { return m_pDoc; }
	IZolNodeVariableContext *GetVariableContext() const { return m_pVariableContext; }
	void SetVariableContext( IZolNodeVariableContext *pContext ) { m_pVariableContext = pContext; }
	// The handle by which attributes reach this node.
	HToolAttrTableInstance GetTableInstance();

protected:
	// The key that says whether the node is switched off.
	virtual const char *GetDisableKey() const { return "m_bDisableOperator"; }

	CZolDoc *m_pDoc;
	IZolNodeVariableContext *m_pVariableContext = nullptr;
	KeyValues3 m_KV3;
};
