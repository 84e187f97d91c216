#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"
#include "particleslib/particlefloatinput.h"
#include "particleslib/particleinputclasses.h"
#include "particleslib/particlemodelinput.h"
#include "particleslib/particletransforminput.h"
#include "particleslib/particlevecinput.h"
#include "tests/core/support/capturelogginglistener.h"
#include "tests/particleslib/particleinputtestsupport.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"

namespace
{
const CSchemaClassInfo *FindInputClass( const char *pszName )
{
	RegisterParticleInputClasses();
	return ParticleTypeScope()->FindDeclaredClass( pszName );
}

const char *OwnMetadataText( const CSchemaClassInfo *pClass, const char *pszKey )
{
	for ( int i = 0; i < pClass->GetMetadataCount(); ++i )
	{
		if ( std::strcmp( pClass->GetMetadata( i ).m_pszName, pszKey ) == 0 )
			return pClass->GetMetadata( i ).m_pszValue;
	}
	return nullptr;
}
} // namespace

TEST( ParticleInputClasses, EveryClassIsInTheParticlesScopeWithItsEditor )
{
	struct Expected_t
	{
		const char *m_pszClass;
		const char *m_pszBase;
		const char *m_pszEditor;
	};
	const Expected_t expected[] = {
		{ "CPerParticleFloatInput", "CParticleFloatInput", "PerParticleFloatInput()" },
		{ "CParticleCollectionFloatInput", "CParticleFloatInput", "CollectionFloatInput()" },
		{ "CParticleCollectionRendererFloatInput", "CParticleCollectionFloatInput", "CollectionRendererFloatInput()" },
		{ "CParticleRemapFloatInput", "CParticleFloatInput", "RemapFloatInput()" },
		{ "CPerParticleVecInput", "CParticleVecInput", "PerParticleVecInput()" },
		{ "CParticleCollectionVecInput", "CParticleVecInput", "CollectionVecInput()" },
		{ "CParticleCollectionRendererVecInput", "CParticleCollectionVecInput", "CollectionRendererVecInput()" },
		{ "CParticleTransformInput", "CParticleInput", "TransformInput()" },
		{ "CParticleModelInput", "CParticleInput", "ModelInput()" },
	};
	for ( const Expected_t &entry : expected )
	{
		const CSchemaClassInfo *pClass = FindInputClass( entry.m_pszClass );
		ASSERT_NE( pClass, nullptr ) << entry.m_pszClass;
		EXPECT_STREQ( pClass->GetBaseClass()->GetName(), entry.m_pszBase );
		const char *pszEditor = OwnMetadataText( pClass, "MPropertyCustomEditor" );
		ASSERT_NE( pszEditor, nullptr ) << entry.m_pszClass;
		EXPECT_STREQ( pszEditor, entry.m_pszEditor );
		EXPECT_NE( pClass->FindMetadata( "MGetKV3ClassDefaults" ), nullptr );
		EXPECT_TRUE( pClass->CanCreate() );
	}
	const CSchemaClassInfo *pFloat = FindInputClass( "CParticleFloatInput" );
	ASSERT_NE( pFloat, nullptr );
	EXPECT_STREQ( OwnMetadataText( pFloat, "MCustomFGDMetadata" ),
				  "{ SkipImprintFGDClassOnKV3 = true SkipRemoveKeysInKV3AtFGDDefault = true KV3DefaultTestFnName = 'CParticleFloatInputDefaultTestFunc' }" );
	EXPECT_NE( pFloat->FindField( "m_Curve" ), nullptr );
	EXPECT_EQ( pFloat->FindField( "m_nCacheOffset" ), nullptr );
	EXPECT_STREQ( pFloat->GetField( 0 ).GetName(), "m_nType" );
	EXPECT_NE( ParticleTypeScope()->FindDeclaredEnum( "ParticleFloatType_t" ), nullptr );
	EXPECT_NE( ParticleTypeScope()->FindDeclaredEnum( "ParticleVecType_t" ), nullptr );
	EXPECT_NE( FindInputClass( "CPiecewiseCurve" ), nullptr );
	EXPECT_NE( FindInputClass( "CColorGradient" ), nullptr );
}

TEST( ParticleInputClasses, RegistrationIsIdempotentAndBindsDynamicClasses )
{
	RegisterParticleInputClasses();
	int nCount = ParticleTypeScope()->GetClassCount();
	RegisterParticleInputClasses();
	EXPECT_EQ( ParticleTypeScope()->GetClassCount(), nCount );

	CParticleCollectionRendererFloatInput renderer;
	const CParticleInput &asBase = renderer;
	ASSERT_NE( asBase.GetClassBinding(), nullptr );
	EXPECT_STREQ( asBase.GetClassBinding()->GetName(), "CParticleCollectionRendererFloatInput" );
}

TEST( ParticleInputClasses, ClassDefaultTablesComeFromDefaultInputs )
{
	const KeyValues3 *pRemap = FindInputClass( "CParticleRemapFloatInput" )->GetDefaults();
	EXPECT_STREQ( pRemap->GetMemberString( "m_nType" ), "PF_TYPE_INVALID" );
	const KeyValues3 *pPerParticle = FindInputClass( "CPerParticleFloatInput" )->GetDefaults();
	EXPECT_STREQ( pPerParticle->GetMemberString( "m_nType" ), "PF_TYPE_LITERAL" );
	EXPECT_FLOAT_EQ( pPerParticle->GetMemberFloat( "m_flNoiseScale" ), 0.1f );
	const KeyValues3 *pTransform = FindInputClass( "CParticleTransformInput" )->GetDefaults();
	EXPECT_STREQ( pTransform->GetMemberString( "m_nType" ), "PT_TYPE_CONTROL_POINT" );
	const KeyValues3 *pModel = FindInputClass( "CParticleModelInput" )->GetDefaults();
	EXPECT_EQ( pModel->GetMemberInt( "m_nControlPoint" ), -1 );
}

TEST( ParticleInputDefaultTests, RegisteredUnderTheirNames )
{
	CToolAttrHost host;
	EXPECT_TRUE( RegisterParticleInputDefaultTests( &host ) );
	EXPECT_TRUE( RegisterParticleInputDefaultTests( &host ) );
	for ( const char *pszName :
		  { "CParticleFloatInputDefaultTestFunc", "CParticleVecInputDefaultTestFunc", "CParticleTransformInputDefaultTestFunc", "CParticleModelInputDefaultTestFunc" } )
		EXPECT_TRUE( static_cast<bool>( host.FindDefaultTest( pszName ) ) ) << pszName;
	EXPECT_FALSE( RegisterParticleInputDefaultTests( nullptr ) );

	// The registry calls them with a value and the default.
	KeyValues3 value, defaultValue;
	value.SetInt( 0 );
	defaultValue.SetToEmptyTable();
	EXPECT_TRUE( host.FindDefaultTest( "CParticleFloatInputDefaultTestFunc" )( &value, &defaultValue ) );
}

TEST( ParticleInputDefaultTests, FloatTestComparesMeaningNotSpelling )
{
	KeyValues3 bare, table;
	bare.SetDouble( 1.0 );
	table = ParseKV3Body( R"({ m_nType = "PF_TYPE_LITERAL" m_flLiteralValue = 1 m_flRandomMax = 7 })" );
	EXPECT_TRUE( CParticleFloatInputDefaultTestFunc( &bare, &table ) );
	bare.SetDouble( 2.0 );
	EXPECT_FALSE( CParticleFloatInputDefaultTestFunc( &bare, &table ) );

	KeyValues3 randomA = ParseKV3Body( R"({ m_nType = "PF_TYPE_RANDOM_UNIFORM" m_flRandomMax = 3 })" );
	KeyValues3 randomB = ParseKV3Body( R"({ m_flRandomMax = 3 m_nType = "PF_TYPE_RANDOM_UNIFORM" })" );
	EXPECT_TRUE( CParticleFloatInputDefaultTestFunc( &randomA, &randomA ) ); // the same KV3
	EXPECT_FALSE( CParticleFloatInputDefaultTestFunc( &randomA, &randomB ) );

	KeyValues3 curveA = ParseKV3Body( R"({ m_nMapType = "PF_MAP_TYPE_CURVE" m_Curve = { m_spline = [ { x = 0 } ] m_tangents = [ {} ] } })" );
	KeyValues3 curveB = ParseKV3Body( R"({ m_nMapType = "PF_MAP_TYPE_CURVE" m_flRandomMax = 1 m_Curve = { m_spline = [ { x = 0 } ] m_tangents = [ {} ] } })" );
	EXPECT_TRUE( CParticleFloatInputDefaultTestFunc( &curveA, &curveA ) );
	EXPECT_FALSE( CParticleFloatInputDefaultTestFunc( &curveA, &curveB ) );
}

TEST( ParticleInputDefaultTests, LoadFailuresAnswerFalseAndLogOnce )
{
	CCaptureLoggingListener log;
	KeyValues3 broken = ParseKV3Body( "{ m_nType = [ 1 ] }" );
	KeyValues3 fine;
	fine.SetToEmptyTable();
	EXPECT_FALSE( CParticleFloatInputDefaultTestFunc( &broken, &fine ) );
	EXPECT_FALSE( CParticleFloatInputDefaultTestFunc( &broken, &fine ) );
	EXPECT_EQ( log.CountContaining( "LoadKV3ObjectInPlace error: " ), 1 );
}

TEST( ParticleInputDefaultTests, VectorTransformAndModelTests )
{
	KeyValues3 white, table;
	white.SetString( "pvec_color_white" );
	table = ParseKV3Body( R"({ m_nType = "PVEC_TYPE_LITERAL_COLOR" m_LiteralColor = [ 255, 255, 255, 255 ] m_vLiteralValue = [ 5, 5, 5 ] })" );
	EXPECT_TRUE( CParticleVecInputDefaultTestFunc( &white, &table ) );
	KeyValues3 literal = ParseKV3Body( "[ 0, 0, 0 ]" );
	KeyValues3 empty;
	empty.SetToEmptyTable();
	EXPECT_TRUE( CParticleVecInputDefaultTestFunc( &literal, &empty ) );
	EXPECT_FALSE( CParticleVecInputDefaultTestFunc( &white, &empty ) );

	KeyValues3 transform = ParseKV3Body( "{ m_nControlPoint = 0 m_flEndCPGrowthTime = 9 }" );
	EXPECT_TRUE( CParticleTransformInputDefaultTestFunc( &transform, &empty ) );
	KeyValues3 otherPoint = ParseKV3Body( "{ m_nControlPoint = 3 }" );
	EXPECT_FALSE( CParticleTransformInputDefaultTestFunc( &otherPoint, &empty ) );

	KeyValues3 model = ParseKV3Body( R"({ m_nType = "PM_TYPE_CONTROL_POINT" m_nControlPoint = 2 })" );
	KeyValues3 modelSame = ParseKV3Body( R"({ m_nControlPoint = 2 m_nType = "PM_TYPE_CONTROL_POINT" m_NamedValue = "x" })" );
	EXPECT_TRUE( CParticleModelInputDefaultTestFunc( &model, &modelSame ) );
	EXPECT_FALSE( CParticleModelInputDefaultTestFunc( &model, &empty ) );
}

TEST( ParticleInputDisplayFromKV3, ByClassName )
{
	CBufferString text;
	CUtlString error;
	KeyValues3 value;
	value.SetDouble( 2.5 );
	EXPECT_TRUE( GetParticleInputDisplayString( "CPerParticleFloatInput", &value, "", &text, &error ) );
	EXPECT_STREQ( text.Get(), "2.5" );
	KeyValues3 remap = ParseKV3Body( R"({ m_nMapType = "PF_MAP_TYPE_REMAP" })" );
	EXPECT_TRUE( GetParticleInputDisplayString( "CParticleRemapFloatInput", &remap, "", &text, &error ) );
	EXPECT_STREQ( text.Get(), "Bad FloatInput -1 Remapped" );
	KeyValues3 vec = ParseKV3Body( "[ 1, 2, 3 ]" );
	EXPECT_TRUE( GetParticleInputDisplayString( "CParticleCollectionRendererVecInput", &vec, "", &text, &error ) );
	EXPECT_STREQ( text.Get(), "(1,2,3)" );
	EXPECT_FALSE( GetParticleInputDisplayString( "CParticleModelInput", &vec, "", &text, &error ) );
	EXPECT_FALSE( error.IsEmpty() );
	KeyValues3 badVec;
	badVec.SetString( "red" );
	EXPECT_FALSE( GetParticleInputDisplayString( "CParticleVecInput", &badVec, "", &text, &error ) );
	EXPECT_STREQ( text.Get(), "(0,0,0)" );
}

TEST( ParticleInputCanonicalForm, OneInputWrittenAnyWaySavesAlike )
{
	auto fnCanonical = []( const char *pszClass, const KeyValues3 &value ) {
		KeyValues3 saved;
		EXPECT_TRUE( SaveParticleInputCanonically( pszClass, &value, &saved ) ) << pszClass;
		return saved;
	};
	KeyValues3 bare, literal, random, randomInts, otherRandom;
	bare.SetDouble( 40.0 );
	literal.SetMemberString( "m_nType", "PF_TYPE_LITERAL" );
	literal.SetMemberDouble( "m_flLiteralValue", 40.0 );
	random.SetMemberString( "m_nType", "PF_TYPE_RANDOM_UNIFORM" );
	random.SetMemberDouble( "m_flRandomMin", 30.0 );
	random.SetMemberDouble( "m_flRandomMax", 50.0 );
	randomInts.SetMemberInt( "m_nType", 2 );
	randomInts.SetMemberInt( "m_flRandomMin", 30 );
	randomInts.SetMemberInt( "m_flRandomMax", 50 );
	otherRandom.CopyFrom( random );
	otherRandom.SetMemberInt( "m_nRandomSeed", 7 );
	for ( const char *pszClass : { "CParticleCollectionFloatInput", "CPerParticleFloatInput" } )
	{
		EXPECT_TRUE( fnCanonical( pszClass, bare ).IsEqual( fnCanonical( pszClass, literal ) ) );
		EXPECT_TRUE( fnCanonical( pszClass, random ).IsEqual( fnCanonical( pszClass, randomInts ) ) );
		EXPECT_FALSE( fnCanonical( pszClass, random ).IsEqual( fnCanonical( pszClass, otherRandom ) ) );
		EXPECT_FALSE( fnCanonical( pszClass, bare ).IsEqual( fnCanonical( pszClass, random ) ) );
	}

	KeyValues3 transform, transformNumbered;
	transform.SetMemberString( "m_nType", "PT_TYPE_CONTROL_POINT" );
	transform.SetMemberInt( "m_nControlPoint", 1 );
	transformNumbered.CopyFrom( transform );
	transformNumbered.SetMemberDouble( "m_nControlPoint", 1.0 );
	EXPECT_TRUE( fnCanonical( "CParticleTransformInput", transform ).IsEqual( fnCanonical( "CParticleTransformInput", transformNumbered ) ) );

	KeyValues3 saved;
	EXPECT_FALSE( SaveParticleInputCanonically( "CParticleSystemDefinition", &bare, &saved ) );
	EXPECT_FALSE( SaveParticleInputCanonically( "NoSuchClass", &bare, &saved ) );
}
