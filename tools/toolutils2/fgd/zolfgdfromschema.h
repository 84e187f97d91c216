#pragma once
// Class descriptions made from the run-time schema: each schema class becomes a class
// record of a game data set, with one variable per field, so that data declared in code
// and data described by FGD text are edited by the same attributes.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/fgd/gamedatatype.h"

class CGameData;
class CGameDataClass;
class CGameDataVariable;
class CSchemaClassInfo;
class CSchemaClassField;
class CSchemaType;

// The conversion steps; a family of classes with extra field keys overrides them.
class IGameDataFromSchema
{
public:
	virtual ~IGameDataFromSchema() = default;
	// Fills pOutType (and the variable's item set and type metadata) from a field type;
	// false when the type has no description.
	virtual bool ConvertFieldType( CGameDataVariable *pVar, const CSchemaClassField &field, const CSchemaType *pType, GameDataFullType_t *pOutType ) = 0;
	// Adds the variable of one field to the class; null when the field is skipped.
	virtual CGameDataVariable *ConvertField( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass, const CSchemaClassField &field, CUtlString *pCurrentGroup ) = 0;
	// Fills a class record from a schema class (once; a second call does nothing).
	virtual void ConvertClass( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass ) = 0;
	// Whether field keys of the particle function family are copied too.
	virtual bool ConvertsParticleFunctionKeys() const { return false; }
};

class CZolFgdFromSchema : public IGameDataFromSchema
{
public:
	// pszHelpContext becomes the help context of every class made.
	CZolFgdFromSchema( CGameData *pGameData, const char *pszHelpContext = "" );

	// The record of a schema class in the set: found by name, or made, entered and converted.
	CGameDataClass *FindOrConvertClass( const CSchemaClassInfo *pSchemaClass );

	// The generated class that a typed data reference edits: "EmbeddedSubClass_<type>" when
	// pszElementType is given, else "EmbeddedSubClass_Scope_<scope>". Its selector offers
	// no class, then every subclass name the host listed. Made once per name.
	CGameDataClass *FindOrMakeEmbeddedSubClass( const char *pszElementType, int nScope, const CUtlVector<CUtlString> &subclassNames );

	bool ConvertFieldType( CGameDataVariable *pVar, const CSchemaClassField &field, const CSchemaType *pType, GameDataFullType_t *pOutType ) override;
	CGameDataVariable *ConvertField( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass, const CSchemaClassField &field, CUtlString *pCurrentGroup ) override;
	void ConvertClass( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass ) override;

private:
	// One level of a type; nested levels (array elements, map values) recurse with nDepth + 1.
	bool ConvertTypeAtDepth( CGameDataVariable *pVar, const CSchemaClassField &field, const CSchemaType *pType, GameDataFullType_t *pOutType, int nDepth );
	void SetTypeAtDepth( GameDataFullType_t *pOutType, int nDepth, GameDataType_t eType );
	void AddPolymorphicSelector( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass );
	void CopyClassMetadata( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass );

	CGameData *m_pGameData;
	CUtlString m_HelpContextName;
};
