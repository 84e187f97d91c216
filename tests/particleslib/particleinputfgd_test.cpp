#include <gtest/gtest.h>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/schema/schemasystem.h"
#include "particleslib/particlefloatinput.h"
#include "particleslib/particleinputclasses.h"
#include "particleslib/particlevecinput.h"
#include "tests/particleslib/particleinputtestsupport.h"
#include "tools/toolutils2/fgd/fgdkv3defaults.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/gamedataclass.h"
#include "tools/toolutils2/fgd/gamedatavariable.h"
#include "tools/toolutils2/fgd/zolfgdfromschema.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"

namespace
{
// A function as the particle library declares them once its inputs are typed.
class CInputFgdTestFunction
{
	SCHEMA_CLASS( CInputFgdTestFunction )
	SCHEMA_FIELD( CPerParticleFloatInput, m_flRadius, ( CPerParticleFloatInput( 4.0f ) ) )
	SCHEMA_FIELD( CParticleCollectionVecInput, m_vTint, ( CParticleCollectionVecInput( Vector( 1, 1, 1 ) ) ) )
};

class ParticleInputFgd : public testing::Test
{
protected:
	void SetUp() override
	{
		RegisterParticleInputDefaultTests( ToolAttrHost() );
		CSchemaSystemTypeScope *pScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "particleinputfgd_test" );
		const CSchemaClassInfo *pSchemaClass = RegisterKV3TransferClass<CInputFgdTestFunction>( pScope );
		CZolFgdFromSchema converter( &m_GameData, "particleinputfgd_test" );
		m_pClass = converter.FindOrConvertClass( pSchemaClass );
		ASSERT_NE( m_pClass, nullptr );
	}

	CGameData m_GameData;
	CGameDataClass *m_pClass = nullptr;
};
} // namespace

TEST_F( ParticleInputFgd, InputFieldsAreKV3WithTheirEditorAndDefaultTest )
{
	const CGameDataVariable *pRadius = m_pClass->FindVariable( "m_flRadius" );
	ASSERT_NE( pRadius, nullptr );
	EXPECT_EQ( pRadius->GetType(), GDTYPE_KV3 );
	EXPECT_STREQ( pRadius->m_FullType.m_Param.Get(), "PerParticleFloatInput()" );
	EXPECT_STREQ( pRadius->GetMetadataString( "ParticleCompileBinaryIdenticalHack_underlying_struct" ), "CPerParticleFloatInput" );
	const CGameDataClass *pInputClass = m_GameData.FindClass( "CPerParticleFloatInput" );
	ASSERT_NE( pInputClass, nullptr );
	EXPECT_STREQ( pInputClass->GetMetaString( "KV3DefaultTestFnName" ), "CParticleFloatInputDefaultTestFunc" );
	EXPECT_TRUE( pInputClass->GetMetaBool( "SkipImprintFGDClassOnKV3" ) );
	EXPECT_TRUE( pInputClass->GetMetaBool( "SkipRemoveKeysInKV3AtFGDDefault" ) );

	const CGameDataVariable *pTint = m_pClass->FindVariable( "m_vTint" );
	ASSERT_NE( pTint, nullptr );
	EXPECT_STREQ( pTint->m_FullType.m_Param.Get(), "CollectionVecInput()" );
}

TEST_F( ParticleInputFgd, RemoveAtDefaultUsesTheInputsOwnComparison )
{
	const CGameDataVariable *pRadius = m_pClass->FindVariable( "m_flRadius" );
	ASSERT_NE( pRadius, nullptr );
	KeyValues3 bare;
	bare.SetDouble( 4.0 );
	EXPECT_TRUE( TestValueAtDefault( bare, *pRadius ) );
	bare.SetDouble( 4.5 );
	EXPECT_FALSE( TestValueAtDefault( bare, *pRadius ) );

	const CGameDataVariable *pTint = m_pClass->FindVariable( "m_vTint" );
	ASSERT_NE( pTint, nullptr );
	EXPECT_TRUE( TestValueAtDefault( ParseKV3Body( "[ 1, 1, 1 ]" ), *pTint ) );
	EXPECT_FALSE( TestValueAtDefault( ParseKV3Body( "\"pvec_color_white\"" ), *pTint ) );
}
