#pragma once
// A function of one of the lists 0 .. 6; its class name stands under "_class".

#include "zoldoc_lib/zolnode.h"

class CZolFunctionNode : public CBaseZolNode
{
public:
	CZolFunctionNode( CZolDoc *pDoc, ParticleFunctionType_t eType ) : CBaseZolNode( pDoc ), m_eFunctionType( eType ) {}

	ParticleFunctionType_t GetFunctionType() const override { return m_eFunctionType; }
	const char *GetClassName() const override;
	bool IsFunctionNode() const override { return true; }
	CZolFunctionNode *AsFunctionNode() override { return this; }
	void GetDisplayStrings( CBufferString *pName, CBufferString *pValue, CBufferString *pHint ) const override;

private:
	// The value-setting classes show the attribute they set and the value.
	void GetSetterDisplayStrings( CBufferString *pName, CBufferString *pValue ) const;

	ParticleFunctionType_t m_eFunctionType;
};
