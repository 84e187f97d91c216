// The particle classes as the property panel sees them: every class of the catalogue must
// convert, with input fields typed by their input class once that class is registered.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/schema/schematypeof.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/gamedataclass.h"
#include "tools/toolutils2/fgd/gamedatavariable.h"
#include "tools/toolutils2/fgd/zolfgdfromschema.h"

namespace
{
struct FgdNamedInputHolder_t
{
	SCHEMA_CLASS( FgdNamedInputHolder_t )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flRate, "CFgdNamedTestFloatInput", {}, { "MPropertyFriendlyName", "Rate" } )
};

// What the input library registers: an input class with its own editor.
struct CFgdNamedTestFloatInput
{
	SCHEMA_CLASS( CFgdNamedTestFloatInput, { "MPropertyCustomEditor", "TestFloatInput()" } )
	SCHEMA_FIELD( float, m_flLiteralValue, 0.0f )
};

const CGameDataVariable *ConvertAndFind( const CSchemaClassInfo *pClass, const char *pszField, CGameData *pGameData )
{
	CZolFgdFromSchema converter( pGameData );
	CGameDataClass *pFgdClass = converter.FindOrConvertClass( pClass );
	return pFgdClass ? pFgdClass->FindVariable( pszField ) : nullptr;
}
} // namespace

TEST( ZolFgdFromSchemaParticles, NamedInputFieldEditsAsKV3BeforeAndThroughItsClassEditorAfterRegistration )
{
	CSchemaSystemTypeScope *pScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "fgdnamedinput_test" );
	const CSchemaClassInfo *pHolder = RegisterKV3TransferClass<FgdNamedInputHolder_t>( pScope );

	CGameData before;
	const CGameDataVariable *pBefore = ConvertAndFind( pHolder, "m_flRate", &before );
	ASSERT_NE( pBefore, nullptr );
	EXPECT_EQ( pBefore->GetType(), GDTYPE_KV3 );
	EXPECT_STREQ( pBefore->m_FullType.m_Param.Get(), "" );
	EXPECT_STREQ( pBefore->m_LongName.Get(), "Rate" );

	RegisterKV3TransferClass<CFgdNamedTestFloatInput>( pScope );
	CGameData after;
	const CGameDataVariable *pAfter = ConvertAndFind( pHolder, "m_flRate", &after );
	ASSERT_NE( pAfter, nullptr );
	// Still KV3 in the file, now edited by the input's editor.
	EXPECT_EQ( pAfter->GetType(), GDTYPE_KV3 );
	EXPECT_STREQ( pAfter->m_FullType.m_Param.Get(), "TestFloatInput()" );
	EXPECT_STREQ( pAfter->m_LongName.Get(), "Rate" );
}

TEST( ZolFgdFromSchemaParticles, EveryCatalogueClassConvertsWithAVariablePerField )
{
	const IParticleSystemMgr *pMgr = HostParticleSystemMgr();
	std::vector<const CSchemaClassInfo *> classes;
	for ( const char *pszName : { "CParticleSystemDefinition", "ParticleChildrenInfo_t", "ParticleNamedValueSource_t" } )
		classes.push_back( ParticleTypeScope()->FindDeclaredClass( pszName ) );
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		ParticleFunctionType_t eType = static_cast<ParticleFunctionType_t>( nType );
		for ( int i = 0; i < pMgr->GetFunctionCount( eType ); ++i )
			classes.push_back( ParticleTypeScope()->FindDeclaredClass( pMgr->GetFunctionSchemaClass( eType, i ) ) );
	}

	CGameData gameData;
	CZolFgdFromSchema converter( &gameData, "particles" );
	for ( const CSchemaClassInfo *pClass : classes )
	{
		ASSERT_NE( pClass, nullptr );
		SCOPED_TRACE( pClass->GetName() );
		CGameDataClass *pFgdClass = converter.FindOrConvertClass( pClass );
		ASSERT_NE( pFgdClass, nullptr );
		std::vector<const CSchemaClassField *> fields;
		pClass->GetAllFields( fields );
		for ( const CSchemaClassField *pField : fields )
		{
			const CGameDataVariable *pVar = pFgdClass->FindVariable( pField->GetName() );
			ASSERT_NE( pVar, nullptr ) << pField->GetName() << " has no row";
			// The row starts at the class default, so a new function shows real values.
			KeyValues3 fieldDefault;
			if ( pClass->GetFieldDefault( pField->GetName(), &fieldDefault ) )
			{
				EXPECT_TRUE( pVar->m_DefaultKV3.IsEqual( fieldDefault ) ) << pField->GetName();
			}
		}
	}
	// The lists of the definition convert to arrays of their family's functions.
	const CGameDataVariable *pEmitters = gameData.FindClass( "CParticleSystemDefinition" )->FindVariable( "m_Emitters" );
	ASSERT_NE( pEmitters, nullptr );
	EXPECT_EQ( pEmitters->GetType(), GDTYPE_ARRAY );
}
