#pragma once
// A child particle system of list 7, referred to by the path of its file.

#include "zoldoc_lib/zolnode.h"

class CZolChildNode : public CBaseZolNode
{
public:
	explicit CZolChildNode( CZolDoc *pDoc ) : CBaseZolNode( pDoc ) {}

	ParticleFunctionType_t GetFunctionType() const override { return PARTICLE_FUNCTION_CHILDREN; }
	const char *GetClassName() const override { return "ParticleChildrenInfo_t"; }
	bool IsChildNode() const override { return true; }
	CZolChildNode *AsChildNode() override { return this; }
	void GetDisplayStrings( CBufferString *pName, CBufferString *pValue, CBufferString *pHint ) const override;

	const char *GetChildRef() const { return m_KV3.GetMemberString( "m_ChildRef" ); }

protected:
	const char *GetDisableKey() const override { return "m_bDisableChild"; }
};
