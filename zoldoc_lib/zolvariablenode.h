#pragma once
// A named value of list 8. Its type and default configuration are taken out of the table
// while the node lives, and written back when it saves.

#include "zoldoc_lib/zoleditabletype.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolvariableconfiguration.h"

struct ZolSharedVariableNote_t;

class CZolVariableNode : public CBaseZolNode
{
public:
	explicit CZolVariableNode( CZolDoc *pDoc );

	ParticleFunctionType_t GetFunctionType() const override { return PARTICLE_FUNCTION_NAMED_VALUE_LOCALS; }
	const char *GetClassName() const override { return "ParticleNamedValueSource_t"; }
	bool IsVariableNode() const override { return true; }
	CZolVariableNode *AsVariableNode() override { return this; }
	void SaveToKV3( KeyValues3 *pOut ) const override;
	void LoadFromKV3( const KeyValues3 *pIn ) override;
	void TakeFromKV3( KeyValues3 *pIn ) override;
	void GetDisplayStrings( CBufferString *pName, CBufferString *pValue, CBufferString *pHint ) const override;

	// The base node's attributes, then "Variable Type" and "Default Config".
	void GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes ) override;
	// Every edit of the node's attributes notes it as written; a type change puts the new
	// type's default into the value and tells the property panel that its rows changed.
	void OnAttrWillChange( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) override;
	void OnAttrChanged( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) override;

	const char *GetName() const { return m_KV3.GetMemberString( "m_Name" ); }
	void SetName( const char *pName ) { m_KV3.SetMemberString( "m_Name", pName ); }
	bool IsPublic() const { return m_KV3.GetMemberBool( "m_IsPublic", false ); }
	const CPulseValueFullType &GetValueType() const { return m_ValueType.Get(); }
	void SetValueType( const CPulseValueFullType &type ) { m_ValueType.Set( type ); }
	// The value and binding used when nothing overrides them.
	const CZolVariableConfiguration &GetDefaultConfig() const { return m_DefaultConfig; }
	CZolVariableConfiguration &GetDefaultConfigForModify() { return m_DefaultConfig; }

	// What related files say of this variable, through the node's context; nothing
	// without one.
	void GetSharedVariableNote( ZolSharedVariableNote_t *pNote ) const;

	// The attributes a variable adds to the base node's.
	static IBaseToolAttr *GetValueTypeAttribute();
	static IBaseToolAttr *GetDefaultConfigAttribute();

private:
	// Moves the typed members out of the freshly loaded table.
	void ExtractTypedMembers();

	CZolEditableType m_ValueType;
	CZolVariableConfiguration m_DefaultConfig;
};
