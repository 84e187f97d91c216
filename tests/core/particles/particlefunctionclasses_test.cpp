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
#include "core/particles/particlefunctionclasses.h"
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
