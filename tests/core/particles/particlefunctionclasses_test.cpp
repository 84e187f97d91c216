#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/particles/particlefunction.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/particles/particlesystemdefinition.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/text/utlstring.h"

namespace
{
const char *const s_FunctionClassNames[] = {
	"C_OP_ContinuousEmitter",
	"C_OP_InstantaneousEmitter",
	"C_INIT_CreateWithinSphere",
	"C_INIT_InitFloat",
	"C_INIT_InitVec",
	"C_INIT_RandomRadius",
	"C_INIT_RandomLifeTime",
	"C_INIT_RandomRotation",
	"C_INIT_InitialVelocityNoise",
	"C_OP_BasicMovement",
	"C_OP_Decay",
	"C_OP_FadeInSimple",
	"C_OP_FadeOutSimple",
	"C_OP_InterpolateRadius",
	"C_OP_ColorInterpolate",
	"C_OP_SpinUpdate",
	"C_OP_SetFloat",
	"C_OP_SetVec",
	"C_OP_TurbulenceForce",
	"C_OP_PlanarConstraint",
	"C_OP_RenderSprites",
	"C_OP_RenderTrails",
};

const char *const s_SampleFiles[] = { "campfire.tfxs", "fire.tfxs", "old_dust.tfxs", "smoke.tfxs", "sparks.tfxs" };

// Numbers compare at float precision: the classes store floats, the files hold decimals.
bool ValuesMatch( const KeyValues3 &a, const KeyValues3 &b )
{
	if ( a.IsNumber() && b.IsNumber() )
		return static_cast<float>( a.GetDouble() ) == static_cast<float>( b.GetDouble() );
	if ( a.GetType() != b.GetType() )
		return false;
	if ( a.IsString() )
		return a.GetSubType() == b.GetSubType() && strcmp( a.GetString(), b.GetString() ) == 0;
	if ( a.IsArray() )
	{
		if ( a.GetArrayElementCount() != b.GetArrayElementCount() )
			return false;
		for ( int i = 0; i < a.GetArrayElementCount(); ++i )
			if ( !ValuesMatch( *a.GetArrayElement( i ), *b.GetArrayElement( i ) ) )
				return false;
		return true;
	}
	if ( a.IsTable() )
	{
		if ( a.GetMemberCount() != b.GetMemberCount() )
			return false;
		for ( int i = 0; i < a.GetMemberCount(); ++i )
		{
			const KeyValues3 *pOther = b.FindMember( CKV3MemberName( a.GetMemberName( i ) ) );
			if ( !pOther || !ValuesMatch( *a.GetMember( i ), *pOther ) )
				return false;
		}
		return true;
	}
	return a.IsEqual( b );
}

std::string TextOf( const KeyValues3 &value )
{
	CUtlString text;
	SaveKV3ToString( &value, &text, KV3_FORMAT_GENERIC, KV3_SAVE_NO_HEADER );
	return text.Get();
}

bool LoadSample( const char *pszFile, KeyValues3 *pRoot, std::string *pError )
{
	std::ifstream file( std::string( ZOL_SOURCE_DIR ) + "/content/content/particles/samples/" + pszFile, std::ios::binary );
	if ( !file )
	{
		*pError = "can't open";
		return false;
	}
	std::stringstream contents;
	contents << file.rdbuf();
	std::string text = contents.str();
	CUtlString error;
	bool bLoaded = LoadKV3FromText( pRoot, &error, text.data(), text.size(), KV3_FORMAT_TFXS );
	*pError = error.Get();
	return bLoaded;
}

// Loads each function of one list through its family's base, then checks the delta save.
template <typename ListBase> void CheckFunctionList( const char *pszFile, const KeyValues3 &root, const char *pszList, int *pChecked )
{
	const KeyValues3 *pList = root.FindMember( CKV3MemberName( pszList ) );
	if ( !pList )
		return;
	ASSERT_TRUE( pList->IsArray() ) << pszFile << " " << pszList;
	for ( int i = 0; i < pList->GetArrayElementCount(); ++i )
	{
		const KeyValues3 &original = *pList->GetArrayElement( i );
		++*pChecked;
		const char *pszClassName = original.GetMemberString( "_class", "" );
		SCOPED_TRACE( std::string( pszFile ) + " " + pszList + "[" + std::to_string( i ) + "] " + pszClassName );

		std::unique_ptr<ListBase> pFunction;
		CUtlString loadErrors;
		EXPECT_TRUE( LoadKV3ObjectInPlace( &pFunction, &original, &loadErrors ) );
		EXPECT_STREQ( loadErrors.Get(), "" );
		ASSERT_NE( pFunction, nullptr );

		const CSchemaClassInfo *pClass = ParticleTypeScope()->FindDeclaredClass( pszClassName );
		ASSERT_NE( pClass, nullptr );
		EXPECT_EQ( SchemaSystem()->FindClassByTypeInfo( typeid( *pFunction ) ), pClass );

		// What a delta save must give: the file's table without the members whose value is
		// the declared default.
		KeyValues3 expected( original );
		for ( int m = expected.GetMemberCount() - 1; m >= 0; --m )
		{
			const char *pszMember = expected.GetMemberName( m );
			if ( strcmp( pszMember, "_class" ) == 0 )
				continue;
			KeyValues3 fieldDefault;
			ASSERT_TRUE( pClass->GetFieldDefault( pszMember, &fieldDefault ) ) << "no field " << pszMember;
			if ( ValuesMatch( *expected.GetMember( m ), fieldDefault ) )
				expected.RemoveMember( m );
		}

		CKV3TransferSaveContext saveContext;
		saveContext.SetSaveDeltaFromDefaults( true );
		KeyValues3 saved;
		CUtlString saveErrors;
		EXPECT_TRUE( SaveKV3Object( pFunction, &saved, &saveErrors, &saveContext ) );
		EXPECT_STREQ( saveErrors.Get(), "" );
		EXPECT_TRUE( ValuesMatch( saved, expected ) ) << "saved:\n" << TextOf( saved ) << "\nexpected:\n" << TextOf( expected );
	}
}
} // namespace

TEST( ParticleFunctionClasses, EveryFunctionClassIsInTheParticlesScopeAsAParticleFunction )
{
	RegisterParticleFunctionClasses();
	RegisterParticleFunctionClasses(); // a second call must not add or break anything

	CSchemaSystemTypeScope *pScope = SchemaSystem()->FindTypeScopeForModule( "particles" );
	ASSERT_NE( pScope, nullptr );
	const CSchemaClassInfo *pBase = pScope->FindDeclaredClass( "CParticleFunction" );
	ASSERT_NE( pBase, nullptr );
	EXPECT_TRUE( pBase->IsPolymorphic() );
	EXPECT_NE( pBase->FindField( "m_bDisableOperator" ), nullptr );

	for ( const char *pszName : s_FunctionClassNames )
	{
		SCOPED_TRACE( pszName );
		const CSchemaClassInfo *pClass = pScope->FindDeclaredClass( pszName );
		ASSERT_NE( pClass, nullptr );
		EXPECT_TRUE( pClass->IsA( pBase ) );
		EXPECT_TRUE( pClass->IsPolymorphic() );
		EXPECT_TRUE( pClass->CanCreate() );
		EXPECT_TRUE( pClass->HasMetadata( "MPropertyFriendlyName" ) );
	}
}

TEST( ParticleFunctionClasses, ShippedSampleFunctionsLoadWithoutErrorsAndSaveBackOnlyTheirNonDefaultMembers )
{
	RegisterParticleFunctionClasses();
	int nChecked = 0;
	for ( const char *pszFile : s_SampleFiles )
	{
		KeyValues3 root;
		std::string error;
		ASSERT_TRUE( LoadSample( pszFile, &root, &error ) ) << pszFile << ": " << error;
		CheckFunctionList<CParticleFunctionPreEmission>( pszFile, root, "m_PreEmissionOperators", &nChecked );
		CheckFunctionList<CParticleFunctionEmitter>( pszFile, root, "m_Emitters", &nChecked );
		CheckFunctionList<CParticleFunctionInitializer>( pszFile, root, "m_Initializers", &nChecked );
		CheckFunctionList<CParticleFunctionOperator>( pszFile, root, "m_Operators", &nChecked );
		CheckFunctionList<CParticleFunctionForce>( pszFile, root, "m_ForceGenerators", &nChecked );
		CheckFunctionList<CParticleFunctionConstraint>( pszFile, root, "m_Constraints", &nChecked );
		CheckFunctionList<CParticleFunctionRenderer>( pszFile, root, "m_Renderers", &nChecked );
	}
	// None found would mean the lists were never read and nothing was checked.
	EXPECT_GT( nChecked, 0 );
}

namespace
{
// Whether a class may stand in a file of that version, by its version limits.
bool IsValidAtVersion( const CSchemaClassInfo *pClass, int nVersion )
{
	const SchemaMetadataEntry_t *pMin = pClass->FindMetadata( "MParticleMinVersion" );
	const SchemaMetadataEntry_t *pMax = pClass->FindMetadata( "MParticleMaxVersion" );
	return ( !pMin || nVersion >= pMin->m_nValue ) && ( !pMax || nVersion <= pMax->m_nValue );
}
} // namespace

TEST( ParticleFunctionClasses, ShippedSamplesLoadWholeAsDefinitionsWithOnlyValidFunctions )
{
	const IParticleSystemMgr *pMgr = HostParticleSystemMgr();
	int nOldFiles = 0;
	bool bHasChildren = false;
	for ( const char *pszFile : s_SampleFiles )
	{
		SCOPED_TRACE( pszFile );
		KeyValues3 root;
		std::string error;
		ASSERT_TRUE( LoadSample( pszFile, &root, &error ) ) << error;
		EXPECT_STREQ( root.GetMemberString( "_class", "" ), "CParticleSystemDefinition" );

		// Every key of the file is a member of the definition, or a document load drops it.
		const CSchemaClassInfo *pDefinitionClass = ParticleTypeScope()->FindDeclaredClass( "CParticleSystemDefinition" );
		ASSERT_NE( pDefinitionClass, nullptr );
		for ( int i = 0; i < root.GetMemberCount(); ++i )
		{
			const std::string key = root.GetMemberName( i );
			if ( key != "_class" )
			{
				EXPECT_NE( pDefinitionClass->FindField( key.c_str() ), nullptr ) << key;
			}
		}

		CParticleSystemDefinition definition;
		CUtlString errors;
		EXPECT_TRUE( LoadKV3ObjectInPlace( &definition, &root, &errors ) );
		EXPECT_STREQ( errors.Get(), "" );
		const int nVersion = definition.m_nBehaviorVersion;
		EXPECT_EQ( nVersion, root.GetMemberInt( "m_nBehaviorVersion", 0 ) );
		if ( nVersion < pMgr->GetCurrentBehaviorVersion() )
			++nOldFiles;
		bHasChildren = bHasChildren || !definition.m_Children.empty();

		// Each function's class is offered for its list and valid at the file's version,
		// else opening the file would silently lose it.
		for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
		{
			const KeyValues3 *pList = root.FindMember( CKV3MemberName( GetParticleFunctionListKey( nType ) ) );
			for ( int i = 0; pList && i < pList->GetArrayElementCount(); ++i )
			{
				const char *pszClass = pList->GetArrayElement( i )->GetMemberString( "_class", "" );
				bool bOffered = false;
				for ( int c = 0; c < pMgr->GetFunctionCount( static_cast<ParticleFunctionType_t>( nType ) ); ++c )
					bOffered = bOffered || strcmp( pMgr->GetFunctionClassName( static_cast<ParticleFunctionType_t>( nType ), c ), pszClass ) == 0;
				EXPECT_TRUE( bOffered ) << pszClass << " in list " << nType;
				const CSchemaClassInfo *pClass = ParticleTypeScope()->FindDeclaredClass( pszClass );
				ASSERT_NE( pClass, nullptr ) << pszClass;
				EXPECT_TRUE( IsValidAtVersion( pClass, nVersion ) ) << pszClass << " at version " << nVersion;
			}
		}
		EXPECT_EQ( definition.m_PreEmissionOperators.size(), size_t( root.FindMember( "m_PreEmissionOperators" ) ? root.FindMember( "m_PreEmissionOperators" )->GetArrayElementCount() : 0 ) );
		EXPECT_EQ( definition.m_Renderers.size(), size_t( root.FindMember( "m_Renderers" ) ? root.FindMember( "m_Renderers" )->GetArrayElementCount() : 0 ) );

		// A delta save of the whole definition writes nothing that the file didn't have.
		CKV3TransferSaveContext saveContext;
		saveContext.SetSaveDeltaFromDefaults( true );
		KeyValues3 saved;
		EXPECT_TRUE( SaveKV3Object( definition, &saved, &errors, &saveContext ) );
		for ( int i = 0; i < saved.GetMemberCount(); ++i )
			EXPECT_NE( root.FindMember( CKV3MemberName( saved.GetMemberName( i ) ) ), nullptr ) << "saved a default: " << saved.GetMemberName( i );
	}
	EXPECT_EQ( nOldFiles, 1 ) << "one sample shows the upgrade bar";
	EXPECT_TRUE( bHasChildren );
}

TEST( ParticleFunctionClasses, DefinitionRecordsHaveTheDefaultsANewRecordNeeds )
{
	RegisterParticleFunctionClasses();
	ParticleControlPointConfiguration_t configuration;
	EXPECT_EQ( configuration.m_previewState.m_groundType, ZOL_GROUND_GRID );
	EXPECT_EQ( configuration.m_previewState.m_flPlaybackSpeed, 1.0f );
	EXPECT_EQ( configuration.m_previewState.m_flParticleSimulationRate, 1.0f );
	EXPECT_EQ( configuration.m_previewState.m_vecPreviewGravity.z, -800.0f );

	// A driver names its control point by number unless a name is given.
	KeyValues3 driverTable;
	driverTable.SetToEmptyTable();
	driverTable.SetMemberString( "m_iControlPoint", "5" );
	driverTable.SetMemberString( "m_iAttachType", "PATTACH_POINT_FOLLOW" );
	ParticleControlPointDriver_t driver;
	EXPECT_EQ( driver.m_iAttachType, PATTACH_ABSORIGIN_FOLLOW );
	EXPECT_EQ( driver.m_iControlPoint.GetType(), KV3_TYPE_INT );
	CUtlString errors;
	EXPECT_TRUE( LoadKV3ObjectInPlace( &driver, &driverTable, &errors ) );
	EXPECT_STREQ( errors.Get(), "" );
	EXPECT_EQ( driver.m_iAttachType, PATTACH_POINT_FOLLOW );
	// "5" stays a name; it must not turn into control point 5.
	EXPECT_TRUE( driver.m_iControlPoint.IsString() );
	EXPECT_STREQ( driver.m_iControlPoint.GetString(), "5" );

	ParticleNamedValueConfiguration_t namedValue;
	EXPECT_EQ( namedValue.m_iAttachType, PATTACH_WORLDORIGIN );
	EXPECT_STREQ( namedValue.m_strEntityScope.Get(), "self" );

	// Lenient numbers: an int wider than the field is cut, and said so.
	KeyValues3 previewTable;
	previewTable.SetToEmptyTable();
	previewTable.SetMemberDouble( "m_nFireParticleOnSequenceFrame", 12.0 );
	previewTable.SetMemberInt( "m_groundType", 2 );
	ParticlePreviewState_t preview;
	EXPECT_TRUE( LoadKV3ObjectInPlace( &preview, &previewTable, &errors ) );
	EXPECT_EQ( preview.m_nFireParticleOnSequenceFrame, 12 );
	EXPECT_EQ( preview.m_groundType, ZOL_GROUND_PLANE );
}
