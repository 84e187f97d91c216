#pragma once
// A named value of list 8. Its type and default configuration are taken out of the table
// while the node lives, and written back when it saves.

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "zoldoc_lib/zolnode.h"

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

	// A structural change of the variable: the property panel must rebuild its rows.
	void OnAttrWillChange( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) override;

	const char *GetName() const { return m_KV3.GetMemberString( "m_Name" ); }
	void SetName( const char *pName ) { m_KV3.SetMemberString( "m_Name", pName ); }
	const CPulseValueFullType &GetValueType() const { return m_ValueType; }
	void SetValueType( const CPulseValueFullType &type ) { m_ValueType = type; }
	// The default configuration's record, in its file form.
	const KeyValues3 &GetDefaultConfig() const { return m_DefaultConfig; }
	KeyValues3 &GetDefaultConfigForModify() { return m_DefaultConfig; }

private:
	// Moves the typed members out of the freshly loaded table.
	void ExtractTypedMembers();

	CPulseValueFullType m_ValueType;
	KeyValues3 m_DefaultConfig;
};
