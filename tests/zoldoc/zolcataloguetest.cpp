#include <string>

#include "core/text/strtools.h"

#include "core/particles/hostparticlesystemmgr.h"
#include "tests/zoldoc/zolcataloguetestclasses.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolfunctionoffers.h"
#include "zoldoc_lib/zolfunctionpresets.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolwriteconflicts.h"

namespace
{
std::string Replacement( ParticleFunctionType_t eType, const char *pClass, int nVersion )
{
	const char *pName = GetReplacementForVersion( eType, pClass, nVersion );
	return pName ? std::string( "'" ) + pName + "'" : std::string( "null" );
}

const ZolFunctionOffer_t *FindOffer( const CUtlVector<ZolFunctionOffer_t> &offers, const char *pClass )
{
	for ( const ZolFunctionOffer_t &offer : offers )
	{
		if ( offer.m_ClassName == pClass && !offer.m_pPreset )
			return &offer;
	}
	return nullptr;
}
} // namespace

//-----------------------------------------------------------------------------
// Versions and replacements
//-----------------------------------------------------------------------------

TEST_F( ZolCatalogueFixture, ClassPastItsMaximumIsReplacedOnlyPastIt )
{
	EXPECT_EQ( Replacement( PARTICLE_FUNCTION_OPERATOR, "C_OP_TestMaxThree", 3 ), "null" );
	EXPECT_EQ( Replacement( PARTICLE_FUNCTION_OPERATOR, "C_OP_TestMaxThree", 4 ), "'C_OP_TestNoMax'" );
	EXPECT_TRUE( IsFunctionValidForVersion( PARTICLE_FUNCTION_OPERATOR, "C_OP_TestMaxThree", 3 ) );
	EXPECT_FALSE( IsFunctionValidForVersion( PARTICLE_FUNCTION_OPERATOR, "C_OP_TestMaxThree", 4 ) );
}

TEST_F( ZolCatalogueFixture, ReplacementChainIsFollowedToTheClassValidAtTheVersion )
{
	EXPECT_EQ( Replacement( PARTICLE_FUNCTION_OPERATOR, "C_OP_TestChainA", 7 ), "'C_OP_TestChainC'" );
	EXPECT_EQ( Replacement( PARTICLE_FUNCTION_OPERATOR, "C_OP_TestChainA", 4 ), "'C_OP_TestChainB'" );
	// The replacement is looked up in the list the function stands in.
	EXPECT_EQ( Replacement( PARTICLE_FUNCTION_RENDERER, "C_OP_TestChainA", 7 ), "null" );
}

TEST_F( ZolCatalogueFixture, SanitiseReplacesRemovesAndFollowsChains )
{
	for ( const char *pClass : { "C_OP_TestMaxThree", "C_OP_TestMaxThreeGone", "C_OP_TestChainA", "C_OP_TestMaxThreeUnknown", "C_OP_Decay" } )
		ASSERT_NE( AddOperator( pClass ), nullptr ) << pClass;

	SanitiseForVersion( m_Doc.GetRoot(), 3 );
	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_TestMaxThree C_OP_TestMaxThreeGone C_OP_TestChainA C_OP_TestMaxThreeUnknown C_OP_Decay" );

	// Without a replacement, or with one that isn't a class of the list, the function goes.
	EXPECT_EQ( Replacement( PARTICLE_FUNCTION_OPERATOR, "C_OP_TestMaxThreeGone", 4 ), "''" );
	EXPECT_EQ( Replacement( PARTICLE_FUNCTION_OPERATOR, "C_OP_TestMaxThreeUnknown", 4 ), "null" );
	SanitiseForVersion( m_Doc.GetRoot(), 7 );
	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_TestNoMax C_OP_TestChainC C_OP_Decay" );
}

TEST_F( ZolCatalogueFixture, ReplacedFunctionLosesTheFieldsItsNewClassLacks )
{
	CZolFunctionNode *pNode = AddOperator( "C_OP_TestMaxThree" );
	ASSERT_NE( pNode, nullptr );
	pNode->GetWriteKV3()->SetMemberFloat( "m_flShared", 2.5f );
	pNode->GetWriteKV3()->SetMemberFloat( "m_flOnlyOld", 1.0f );

	SanitiseForVersion( m_Doc.GetRoot(), 4 );

	const KeyValues3 *pTable = m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetReadKV3();
	EXPECT_STREQ( pTable->GetMemberString( "_class" ), "C_OP_TestNoMax" );
	EXPECT_FLOAT_EQ( pTable->GetMemberFloat( "m_flShared" ), 2.5f );
	EXPECT_FALSE( pTable->HasMember( "m_flOnlyOld" ) );
}

TEST_F( ZolCatalogueFixture, FieldLimitsDecideWhichMembersAVersionKeeps )
{
	EXPECT_TRUE( IsFieldValidForVersion( "C_OP_TestFieldLimits", "_class", 0 ) );
	EXPECT_TRUE( IsFieldValidForVersion( "C_OP_TestFieldLimits", "m_bDisableOperator", 4 ) ); // from the base
	EXPECT_FALSE( IsFieldValidForVersion( "C_OP_TestFieldLimits", "m_flNotAField", 4 ) );
	EXPECT_FALSE( IsFieldValidForVersion( "C_OP_TestFieldLimits", "m_flFromFive", 4 ) );
	EXPECT_TRUE( IsFieldValidForVersion( "C_OP_TestFieldLimits", "m_flFromFive", 5 ) );
	EXPECT_TRUE( IsFieldValidForVersion( "C_OP_TestFieldLimits", "m_flUpToThree", 3 ) );
	EXPECT_FALSE( IsFieldValidForVersion( "C_OP_TestFieldLimits", "m_flUpToThree", 4 ) );
	EXPECT_TRUE( IsFieldValidForVersion( "C_OP_TestFieldLimits", "m_flNoLimit", 100 ) );
}

TEST_F( ZolCatalogueFixture, ClassTableCarriesFieldVersionLimitsForThePanel )
{
	const CGameDataClass *pClass = FindParticleGameDataClass( "C_OP_TestFieldLimits" );
	ASSERT_NE( pClass, nullptr );
	EXPECT_EQ( pClass->FindVariable( "m_flFromFive" )->GetMetadataInt( "particle_min_version", -99 ), 5 );
	EXPECT_EQ( pClass->FindVariable( "m_flUpToThree" )->GetMetadataInt( "particle_max_version", -99 ), 3 );
	// A stored -1 is no limit at all.
	EXPECT_FALSE( pClass->FindVariable( "m_flNoLimit" )->HasMetadata( "particle_max_version" ) );
	// The definition's two records and the function classes of the manager are all there.
	EXPECT_NE( FindParticleGameDataClass( "C_OP_Decay" ), nullptr );
	EXPECT_NE( FindParticleGameDataClass( "C_OP_RenderSprites" ), nullptr );
}

TEST_F( ZolCatalogueFixture, VersionGatedFieldIsRemovedWhenAnOldFileLoads )
{
	std::string path = WriteFile( "gated.tfxs", MakeDefinitionText( R"(_class = "CParticleSystemDefinition"
m_nBehaviorVersion = 4
m_Operators = [ { _class = "C_OP_TestFieldLimits" m_flAlways = 2.0 m_flFromFive = 3.0 m_flUpToThree = 4.0 } ])" ) );
	CUtlString error;
	ASSERT_TRUE( m_Doc.LoadFromFile( path.c_str(), "", &error ) ) << error.Get();

	const KeyValues3 *pTable = m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetReadKV3();
	EXPECT_FLOAT_EQ( pTable->GetMemberFloat( "m_flAlways" ), 2.0f );
	EXPECT_FALSE( pTable->HasMember( "m_flFromFive" ) );
	EXPECT_FALSE( pTable->HasMember( "m_flUpToThree" ) );
	// The file keeps its version until the user upgrades it.
	EXPECT_EQ( m_Doc.GetBehaviorVersion(), 4 );
}

TEST_F( ZolCatalogueFixture, UpdateRootVersionBringsANewerFileDownToTheManager )
{
	SetDocumentVersion( 9 );
	ASSERT_NE( AddOperator( "C_OP_TestMaxThreeGone" ), nullptr );
	m_Mgr.m_nCurrentVersion = 2;

	UpdateRootVersion( m_Doc.GetRoot() );

	EXPECT_EQ( m_Doc.GetBehaviorVersion(), 2 );
	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_TestMaxThreeGone" );
}

TEST_F( ZolCatalogueFixture, NewFunctionGetsAnEntryInArraysThatRequireOne )
{
	CZolFunctionNode *pNode = AddOperator( "C_OP_TestRequiresEntry" );
	ASSERT_NE( pNode, nullptr );
	const KeyValues3 *pTable = pNode->GetReadKV3();
	ASSERT_TRUE( pTable->FindMember( "m_flEntries" ) && pTable->FindMember( "m_flEntries" )->IsArray() );
	EXPECT_EQ( pTable->FindMember( "m_flEntries" )->GetArrayElementCount(), 1 );
	EXPECT_EQ( pTable->FindMember( "m_flOther" )->GetArrayElementCount(), 0 );
	// The entry has the element type's value, not null.
	EXPECT_FALSE( pTable->FindMember( "m_flEntries" )->GetArrayElement( 0 )->IsNull() );
}

//-----------------------------------------------------------------------------
// Offers
//-----------------------------------------------------------------------------

TEST_F( ZolCatalogueFixture, SingletonIsDisabledWhileTheListHasOneAndEnabledAfterRemoval )
{
	CUtlVector<ZolFunctionOffer_t> offers;
	GetParticleFunctionOffers( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, m_Doc.GetBehaviorVersion(), "", &offers );
	ASSERT_NE( FindOffer( offers, "C_OP_TestSingleton" ), nullptr );
	EXPECT_TRUE( FindOffer( offers, "C_OP_TestSingleton" )->m_bEnabled );

	CZolFunctionNode *pSingleton = AddOperator( "C_OP_TestSingleton" );
	GetParticleFunctionOffers( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, m_Doc.GetBehaviorVersion(), "", &offers );
	EXPECT_FALSE( FindOffer( offers, "C_OP_TestSingleton" )->m_bEnabled );
	EXPECT_STREQ( FindOffer( offers, "C_OP_TestSingleton" )->m_Text.Get(), "Singleton: Only one allowed" );

	m_Doc.RemoveElement( PARTICLE_FUNCTION_OPERATOR, pSingleton );
	GetParticleFunctionOffers( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, m_Doc.GetBehaviorVersion(), "", &offers );
	EXPECT_TRUE( FindOffer( offers, "C_OP_TestSingleton" )->m_bEnabled );
	EXPECT_STREQ( FindOffer( offers, "C_OP_TestSingleton" )->m_Text.Get(), "Singleton" );
}

TEST_F( ZolCatalogueFixture, UsedExclusionGroupNamesItsUserButStaysSelectable )
{
	AddOperator( "C_OP_TestPositionA" );
	CUtlVector<ZolFunctionOffer_t> offers;
	GetParticleFunctionOffers( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, m_Doc.GetBehaviorVersion(), "", &offers );

	EXPECT_STREQ( FindOffer( offers, "C_OP_TestPositionB" )->m_Text.Get(), "Position B (Position used by 'Position A')" );
	EXPECT_TRUE( FindOffer( offers, "C_OP_TestPositionB" )->m_bEnabled );
	EXPECT_STREQ( FindOffer( offers, "C_OP_Decay" )->m_Text.Get(), "Lifespan Decay" );
}

TEST_F( ZolCatalogueFixture, ObsoleteAndOutOfVersionClassesAreNotOffered )
{
	SetDocumentVersion( 5 );
	CUtlVector<ZolFunctionOffer_t> offers;
	GetParticleFunctionOffers( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, 5, "", &offers );
	EXPECT_EQ( FindOffer( offers, "C_OP_TestObsolete" ), nullptr );
	EXPECT_EQ( FindOffer( offers, "C_OP_TestFromSeven" ), nullptr );
	EXPECT_EQ( FindOffer( offers, "C_OP_TestMaxThree" ), nullptr );
	EXPECT_NE( FindOffer( offers, "C_OP_TestChainB" ), nullptr );

	// Obsolete functions already in a file stay.
	EXPECT_TRUE( IsFunctionValidForVersion( PARTICLE_FUNCTION_OPERATOR, "C_OP_TestObsolete", 5 ) );
	GetParticleFunctionOffers( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, 7, "", &offers );
	EXPECT_NE( FindOffer( offers, "C_OP_TestFromSeven" ), nullptr );
}

TEST_F( ZolCatalogueFixture, OneGameDoesNotOfferFogSprites )
{
	CUtlVector<ZolFunctionOffer_t> offers;
	GetParticleFunctionOffers( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, 5, "nuba", &offers );
	EXPECT_EQ( FindOffer( offers, "C_OP_TestFog" ), nullptr );
	GetParticleFunctionOffers( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, 5, "Nuba", &offers );
	EXPECT_NE( FindOffer( offers, "C_OP_TestFog" ), nullptr );
}

TEST_F( ZolCatalogueFixture, PresetsStandAheadOfTheInitializerClasses )
{
	CUtlVector<ZolFunctionOffer_t> offers;
	GetParticleFunctionOffers( m_Doc.GetRoot(), PARTICLE_FUNCTION_INITIALIZER, 5, "", &offers );
	// The test manager knows InitFloat but none of the vector or transform classes.
	ASSERT_GE( offers.Count(), 10 );
	EXPECT_STREQ( offers[ 0 ].m_Text.Get(), "Lifetime Random (Init Float)" );
	EXPECT_NE( offers[ 0 ].m_pPreset, nullptr );
	EXPECT_EQ( offers[ offers.Count() - 1 ].m_pPreset, nullptr );
	EXPECT_EQ( GetParticleFunctionPresets().Count(), 19 );
}

TEST_F( ZolCatalogueFixture, PresetWritesItsShapeIntoTheNewNode )
{
	const ZolFunctionPreset_t *pYaw = nullptr;
	for ( const ZolFunctionPreset_t &preset : GetParticleFunctionPresets() )
	{
		if ( !V_strcmp( preset.m_pName, "Random Yaw(Init Float)" ) )
			pYaw = &preset;
	}
	ASSERT_NE( pYaw, nullptr );
	EXPECT_STREQ( pYaw->m_pDescription, "Create an InitFloat that mimics the old 'Random Yaw' operator" );

	CZolFunctionNode *pNode = m_Doc.AddFunction( pYaw->m_pName, pYaw->m_pClass, pYaw->m_eType, pYaw->m_fnInitialise );
	ASSERT_NE( pNode, nullptr );
	const KeyValues3 *pTable = pNode->GetReadKV3();
	EXPECT_EQ( pTable->GetMemberInt( "m_nOutputField" ), 12 );
	const KeyValues3 *pInput = pTable->FindMember( "m_InputValue" );
	ASSERT_NE( pInput, nullptr );
	EXPECT_STREQ( pInput->GetMemberString( "m_nType" ), "PF_TYPE_RANDOM_UNIFORM" );
	EXPECT_FLOAT_EQ( pInput->GetMemberFloat( "m_flRandomMax" ), 360.0f );
	EXPECT_TRUE( pInput->GetMemberBool( "m_bHasRandomSignFlip" ) );
}

//-----------------------------------------------------------------------------
// Write conflicts
//-----------------------------------------------------------------------------

TEST_F( ZolCatalogueFixture, LaterWriterOfAnAttributeConflictsEvenWithADisabledFirstWriter )
{
	m_Mgr.m_WrittenAttributes[ "C_OP_Decay" ] = 0x6;
	m_Mgr.m_WrittenAttributes[ "C_OP_BasicMovement" ] = 0x3;
	m_Mgr.m_WrittenAttributes[ "C_OP_SetFloat" ] = 0x10;
	CZolFunctionNode *pFirst = AddOperator( "C_OP_Decay" );
	AddOperator( "C_OP_BasicMovement" );
	AddOperator( "C_OP_SetFloat" );
	m_Doc.SetElementEnabled( pFirst, false );

	CUtlVector<uint64_t> conflicts;
	GetParticleWriteConflicts( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, &conflicts );
	ASSERT_EQ( conflicts.Count(), 3 );
	EXPECT_EQ( conflicts[ 0 ], 0u );
	EXPECT_EQ( conflicts[ 1 ], 0x2u );
	EXPECT_EQ( conflicts[ 2 ], 0u );
}

TEST_F( ZolCatalogueFixture, EmptyListHasNoConflicts )
{
	CUtlVector<uint64_t> conflicts;
	conflicts.AddToTail( 1 );
	GetParticleWriteConflicts( m_Doc.GetRoot(), PARTICLE_FUNCTION_OPERATOR, &conflicts );
	EXPECT_EQ( conflicts.Count(), 0 );
}

//-----------------------------------------------------------------------------
// The host's own classes
//-----------------------------------------------------------------------------

TEST( ZolHostCatalogue, HostClassesFollowTheirChainAndHideObsoleteOnes )
{
	SetParticleSystemMgr( HostParticleSystemMgr() );
	ResetParticleGameData();
	const int nVersion = GetParticleSystemMgr()->GetCurrentBehaviorVersion();

	EXPECT_EQ( Replacement( PARTICLE_FUNCTION_OPERATOR, "C_OP_NoiseLegacy", nVersion ), "'C_OP_Noise'" );
	CUtlVector<ZolFunctionOffer_t> offers;
	GetParticleFunctionOffers( nullptr, PARTICLE_FUNCTION_OPERATOR, nVersion, "", &offers );
	EXPECT_EQ( FindOffer( offers, "C_OP_AlphaDecay" ), nullptr );
	EXPECT_EQ( FindOffer( offers, "C_OP_NoiseLegacy" ), nullptr );
	ASSERT_NE( FindOffer( offers, "C_OP_Noise" ), nullptr );
	// Every function class of the manager is in the class table.
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		for ( int i = 0; i < GetParticleSystemMgr()->GetFunctionCount( eType ); ++i )
			EXPECT_NE( FindParticleGameDataClass( GetParticleSystemMgr()->GetFunctionSchemaClass( eType, i ) ), nullptr );
	}

	SetParticleSystemMgr( nullptr );
	ResetParticleGameData();
}
