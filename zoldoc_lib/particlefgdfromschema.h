#pragma once
// The schema conversion of particle classes: the base conversion plus the field keys of
// the particle function family (advanced flag, version limits, optional inputs).

#include "tools/toolutils2/fgd/zolfgdfromschema.h"

class CParticleFgdFromSchema : public CZolFgdFromSchema
{
public:
	explicit CParticleFgdFromSchema( CGameData *pGameData ) : CZolFgdFromSchema( pGameData, "particles" ) {}

	bool ConvertsParticleFunctionKeys() const override { return true; }
	CGameDataVariable *ConvertField( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass, const CSchemaClassField &field, CUtlString *pCurrentGroup ) override;
};
