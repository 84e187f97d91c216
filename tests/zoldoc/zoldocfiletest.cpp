#include <cstring>
#include <filesystem>
#include <string>

#include "core/text/strtools.h"

#include "core/containers/utlbuffer.h"
#include "core/kv3/kv3serialize.h"
#include "tests/zoldoc/zolcataloguetestclasses.h"
#include "zoldoc_lib/zolchildnode.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolfunctionpresets.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
std::string SaveText( const CZolDoc &doc, const CZolDoc::SavePostProcess_t &fnPostProcess = {} )
{
	CUtlBuffer buffer;
	CUtlString error;
	EXPECT_TRUE( doc.SaveToBuffer( &buffer, &error, fnPostProcess ) ) << error.Get();
	return std::string( reinterpret_cast<const char *>( buffer.Base() ), buffer.Size() );
}

KeyValues3 ParseText( const std::string &text )
{
	KeyValues3 tree;
	CUtlString error;
	EXPECT_TRUE( LoadKV3FromText( &tree, &error, text.c_str(), text.size(), KV3_FORMAT_TFXS ) ) << error.Get();
	return tree;
}

const ZolFunctionPreset_t &FindPreset( const char *pName )
{
	for ( const ZolFunctionPreset_t &preset : GetParticleFunctionPresets() )
	{
		if ( !V_strcmp( preset.m_pName, pName ) )
			return preset;
	}
	return GetParticleFunctionPresets()[ 0 ];
}
} // namespace

//-----------------------------------------------------------------------------
// Refused and dropped content
//-----------------------------------------------------------------------------

TEST_F( ZolCatalogueFixture, MissingFileIsRefusedAndLeavesNoRoot )
{
	CUtlString error;
	EXPECT_FALSE( m_Doc.LoadFromFile( "/nonexistent/dir/none.tfxs", "", &error ) );
	EXPECT_STREQ( error.Get(), "Failed to read file: No such file or directory" );
	EXPECT_EQ( m_Doc.GetRoot(), nullptr );
	// A null error text is allowed.
	EXPECT_FALSE( m_Doc.LoadFromFile( "/nonexistent/dir/none.tfxs", "", nullptr ) );
}

TEST_F( ZolCatalogueFixture, BrokenTextIsRefusedWithTheParsersMessage )
{
	const std::string text = MakeDefinitionText( "_class = \"CParticleSystemDefinition\" m_Operators = [ { " );
	std::string path = WriteFile( "broken.tfxs", text );
	KeyValues3 ignored;
	CUtlString parserError;
	ASSERT_FALSE( LoadKV3FromText( &ignored, &parserError, text.c_str(), text.size(), KV3_FORMAT_TFXS ) );

	CUtlString error;
	EXPECT_FALSE( m_Doc.LoadFromFile( path.c_str(), "", &error ) );
	EXPECT_FALSE( error.IsEmpty() );
	EXPECT_STREQ( error.Get(), parserError.Get() );
	EXPECT_EQ( m_Doc.GetRoot(), nullptr );
}

TEST_F( ZolCatalogueFixture, FileOfAnotherOrNoRootClassIsRefused )
{
	for ( const char *pMembers : { "_class = \"CParticleSystemDefinitionOld\"", "m_nBehaviorVersion = 5", "_class = 12" } )
	{
		std::string path = WriteFile( "wrongclass.tfxs", MakeDefinitionText( pMembers ) );
		CUtlString error;
		EXPECT_FALSE( m_Doc.LoadFromFile( path.c_str(), "", &error ) ) << pMembers;
		EXPECT_STREQ( error.Get(), "File does not contain a root object of type 'CParticleSystemDefinition'" ) << pMembers;
		EXPECT_EQ( m_Doc.GetRoot(), nullptr );
	}
}

// A save can't keep a function it knows nothing of: it says so when the file is read,
// so that the loss is never silent. Undeclared members of known classes just go.
TEST_F( ZolCatalogueFixture, UnknownFunctionsAreToldAndLeftOutUndeclaredMembersDisappear )
{
	std::string path = WriteFile( "unknown.tfxs", MakeDefinitionText( R"(_class = "CParticleSystemDefinition"
m_nBehaviorVersion = 5
m_Operators = [
	{ _class = "C_OP_FromAnotherBuild" m_flRate = 2.0 },
	{ _class = "C_OP_TestNoMax" m_flShared = 4.0 m_flGoneMember = 1.0 },
	{ m_flNoClass = 1.0 },
])" ) );
	CUtlString error;
	ASSERT_TRUE( m_Doc.LoadFromFile( path.c_str(), "", &error ) ) << error.Get();
	EXPECT_STREQ( m_Doc.GetLoadWarnings().Get(), "m_Operators[0]: unknown function class 'C_OP_FromAnotherBuild'; it is left out, and a save drops it\n"
												  "m_Operators[2]: a function without a _class; it is left out, and a save drops it\n" );
	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_TestNoMax" );
	const KeyValues3 *pTable = m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetReadKV3();
	EXPECT_FLOAT_EQ( pTable->GetMemberFloat( "m_flShared" ), 4.0f );
	EXPECT_FALSE( pTable->HasMember( "m_flGoneMember" ) );
	EXPECT_EQ( SaveText( m_Doc ).find( "FromAnotherBuild" ), std::string::npos );
}

TEST_F( ZolCatalogueFixture, RootKeyTheDefinitionDoesNotDeclareIsDroppedOnLoad )
{
	std::string path = WriteFile( "rootkey.tfxs", MakeDefinitionText( R"(_class = "CParticleSystemDefinition"
m_nBehaviorVersion = 5
m_nMaxParticles = 77
m_flNotADefinitionMember = 2.0)" ) );
	CUtlString error;
	ASSERT_TRUE( m_Doc.LoadFromFile( path.c_str(), "", &error ) ) << error.Get();
	const KeyValues3 *pRoot = m_Doc.GetRoot()->GetReadKV3();
	EXPECT_EQ( pRoot->GetMemberInt( "m_nMaxParticles" ), 77 );
	EXPECT_FALSE( pRoot->HasMember( "m_flNotADefinitionMember" ) );
	// The root keeps what it is.
	EXPECT_STREQ( pRoot->GetMemberString( "_class" ), "CParticleSystemDefinition" );
}

TEST_F( ZolCatalogueFixture, EmptyDefinitionSavesOnlyItsClassAndVersion )
{
	KeyValues3 tree = ParseText( SaveText( m_Doc ) );
	ASSERT_EQ( tree.GetMemberCount(), 2 );
	EXPECT_STREQ( tree.GetMemberName( 0 ), "_class" );
	EXPECT_STREQ( tree.GetMemberName( 1 ), "m_nBehaviorVersion" );
	EXPECT_EQ( tree.GetMemberInt( "m_nBehaviorVersion" ), m_Mgr.m_nCurrentVersion );
}

//-----------------------------------------------------------------------------
// Lenient reads of configurations
//-----------------------------------------------------------------------------

TEST_F( ZolCatalogueFixture, ConfigurationNumbersAreReadLenientlyAndLossesReported )
{
	std::string path = WriteFile( "lenient.tfxs", MakeDefinitionText( R"(_class = "CParticleSystemDefinition"
m_nBehaviorVersion = 5
m_controlPointConfigurations = [
	{
		m_name = "preview"
		m_drivers = [
			{ m_iControlPoint = "5" m_iAttachType = "4" },
			{ m_iControlPoint = 2.0 m_iAttachType = 99 },
			{ m_iControlPoint = 3 m_iAttachType = "PATTACH_WORLDORIGIN" },
		]
		m_previewState = { m_groundType = 2 m_nFireParticleOnSequenceFrame = 3.5 m_nModSpecificData = true m_bShouldDrawHitboxes = 1 }
	},
	{ m_name = "broken" m_previewState = 7 },
])" ) );
	CUtlString error;
	ASSERT_TRUE( m_Doc.LoadFromFile( path.c_str(), "", &error ) ) << error.Get();

	const std::string warnings = m_Doc.GetLoadWarnings().Get();
	EXPECT_NE( warnings.find( "Cast of 3.5 loses value information (returning 3)" ), std::string::npos ) << warnings;
	EXPECT_NE( warnings.find( "Class data is a '" ), std::string::npos ) << warnings;
	EXPECT_NE( warnings.find( "not a table" ), std::string::npos ) << warnings;

	ASSERT_EQ( m_Doc.GetRoot()->GetConfigurationCount(), 2 );
	const KeyValues3 &config = m_Doc.GetRoot()->GetConfiguration( 0 )->m_KV3;
	const KeyValues3 *pDrivers = config.FindMember( "m_drivers" );
	ASSERT_EQ( pDrivers->GetArrayElementCount(), 3 );
	// A quoted "5" names a control point; it isn't the number 5.
	EXPECT_TRUE( pDrivers->GetArrayElement( 0 )->FindMember( "m_iControlPoint" )->IsString() );
	EXPECT_STREQ( pDrivers->GetArrayElement( 0 )->GetMemberString( "m_iAttachType" ), "PATTACH_POINT" );
	EXPECT_EQ( pDrivers->GetArrayElement( 1 )->GetMemberInt( "m_iControlPoint" ), 2 );
	EXPECT_EQ( pDrivers->GetArrayElement( 1 )->GetMemberInt( "m_iAttachType" ), 99 ); // no name for 99
	EXPECT_STREQ( pDrivers->GetArrayElement( 2 )->GetMemberString( "m_iAttachType" ), "PATTACH_WORLDORIGIN" );
	EXPECT_STREQ( pDrivers->GetArrayElement( 2 )->GetMemberString( "m_attachmentName", "missing" ), "" );

	const KeyValues3 *pState = config.FindMember( "m_previewState" );
	EXPECT_STREQ( pState->GetMemberString( "m_groundType" ), "ZOL_GROUND_PLANE" );
	EXPECT_EQ( pState->GetMemberInt( "m_nFireParticleOnSequenceFrame" ), 3 );
	EXPECT_EQ( pState->GetMemberInt( "m_nModSpecificData" ), 1 );
	EXPECT_TRUE( pState->GetMemberBool( "m_bShouldDrawHitboxes" ) );
	EXPECT_FLOAT_EQ( pState->GetMemberFloat( "m_flPlaybackSpeed" ), 1.0f );

	// The unreadable preview state gives a whole record with the defaults.
	const KeyValues3 *pBrokenState = m_Doc.GetRoot()->GetConfiguration( 1 )->m_KV3.FindMember( "m_previewState" );
	EXPECT_STREQ( pBrokenState->GetMemberString( "m_groundType" ), "ZOL_GROUND_GRID" );
	EXPECT_FLOAT_EQ( pBrokenState->FindMember( "m_vecPreviewGravity" )->GetArrayElement( 2 )->GetFloat(), -800.0f );
}

//-----------------------------------------------------------------------------
// Saving
//-----------------------------------------------------------------------------

TEST_F( ZolCatalogueFixture, SavedFunctionsKeepTheirClassAndOnlyWhatDiffersFromDefaults )
{
	AddOperator( "C_OP_TestNoMax" );
	CZolFunctionNode *pChanged = AddOperator( "C_OP_TestNoMax" );
	pChanged->GetWriteKV3()->SetMemberFloat( "m_flShared", 3.0f );

	KeyValues3 tree = ParseText( SaveText( m_Doc ) );
	EXPECT_STREQ( tree.GetMemberString( "_class" ), "CParticleSystemDefinition" );
	const KeyValues3 *pOperators = tree.FindMember( "m_Operators" );
	ASSERT_NE( pOperators, nullptr );
	ASSERT_EQ( pOperators->GetArrayElementCount(), 2 );
	EXPECT_EQ( pOperators->GetArrayElement( 0 )->GetMemberCount(), 1 );
	EXPECT_STREQ( pOperators->GetArrayElement( 0 )->GetMemberString( "_class" ), "C_OP_TestNoMax" );
	EXPECT_FLOAT_EQ( pOperators->GetArrayElement( 1 )->GetMemberFloat( "m_flShared" ), 3.0f );
	// Empty lists write no key.
	EXPECT_FALSE( tree.HasMember( "m_Emitters" ) );
}

TEST_F( ZolCatalogueFixture, PostProcessSeesTheFinalTreeBeforeItIsWritten )
{
	AddOperator( "C_OP_TestNoMax" );
	std::string text = SaveText( m_Doc, []( KeyValues3 *pTree ) { pTree->RemoveMember( "m_Operators" ); } );
	EXPECT_FALSE( ParseText( text ).HasMember( "m_Operators" ) );
	// The document itself is untouched.
	EXPECT_EQ( m_Doc.GetRoot()->GetNodeCount( PARTICLE_FUNCTION_OPERATOR ), 1 );
}

TEST_F( ZolCatalogueFixture, FailedWriteReportsAndLeavesWhatStoodThere )
{
	std::filesystem::path directory = std::filesystem::temp_directory_path() / ( "zoldoc_test_dir_" + std::to_string( ::getpid() ) );
	std::filesystem::create_directories( directory );
	CUtlString error;
	// The path names a directory: nothing can replace it.
	EXPECT_FALSE( m_Doc.SaveToFile( directory.string().c_str(), &error ) );
	// The document's own text first, then the reason, naming the file.
	EXPECT_EQ( std::string( error.Get() ).rfind( "Could not write file.\n", 0 ), 0u ) << error.Get();
	EXPECT_NE( strstr( error.Get(), "is a directory" ), nullptr ) << error.Get();
	EXPECT_NE( strstr( error.Get(), directory.filename().c_str() ), nullptr ) << error.Get();
	EXPECT_TRUE( std::filesystem::is_directory( directory ) );
	EXPECT_TRUE( std::filesystem::is_empty( directory.parent_path() / directory.filename() ) );
	std::filesystem::remove_all( directory );

	CZolDoc empty;
	EXPECT_FALSE( empty.SaveToFile( ( directory / "x.tfxs" ).string().c_str(), &error ) );
	EXPECT_EQ( std::string( error.Get() ).rfind( "Serialization failed: ", 0 ), 0u );
}

TEST_F( ZolCatalogueFixture, SaveToFileMakesTheDirectoryChain )
{
	std::filesystem::path directory = std::filesystem::temp_directory_path() / ( "zoldoc_chain_" + std::to_string( ::getpid() ) );
	std::filesystem::path path = directory / "a" / "b" / "system.tfxs";
	CUtlString error;
	ASSERT_TRUE( m_Doc.SaveToFile( path.string().c_str(), &error ) ) << error.Get();
	CZolDoc loaded;
	EXPECT_TRUE( loaded.LoadFromFile( path.string().c_str(), "", &error ) ) << error.Get();
	std::filesystem::remove_all( directory );
}

//-----------------------------------------------------------------------------
// Round trip
//-----------------------------------------------------------------------------

TEST_F( ZolCatalogueFixture, NewDocumentWithEveryKindOfElementSurvivesSaveAndReload )
{
	m_Doc.AddFunction( nullptr, "C_OP_ContinuousEmitter", PARTICLE_FUNCTION_EMITTER );
	const ZolFunctionPreset_t &preset = FindPreset( "Random Radius(Init Float)" );
	m_Doc.AddFunction( preset.m_pName, preset.m_pClass, preset.m_eType, preset.m_fnInitialise );
	m_Doc.AddFunction( nullptr, "C_INIT_CreateWithinSphere", PARTICLE_FUNCTION_INITIALIZER );
	CZolFunctionNode *pDisabled = AddOperator( "C_OP_Decay" );
	m_Doc.SetElementEnabled( pDisabled, false );
	CZolFunctionNode *pShared = AddOperator( "C_OP_TestNoMax" );
	pShared->GetWriteKV3()->SetMemberFloat( "m_flShared", 7.0f );
	AddRenderer( "C_OP_RenderTrails" );
	CTestAsset child( "particles\\samples\\sparks.tfxs" );
	m_Doc.AddChild( &child );
	m_Doc.AddVariable( "Heat", CPulseValueFullType( PVAL_FLOAT ) );
	m_Doc.GetRoot()->FindOrAddConfiguration( "preview" );

	const std::string saved = SaveText( m_Doc );
	std::string path = WriteFile( "roundtrip.tfxs", saved );
	CZolDoc loaded;
	CUtlString error;
	ASSERT_TRUE( loaded.LoadFromFile( path.c_str(), "", &error ) ) << error.Get();
	EXPECT_TRUE( loaded.GetLoadWarnings().IsEmpty() ) << loaded.GetLoadWarnings().Get();

	// The same text again: nothing was lost or added on the way.
	EXPECT_EQ( SaveText( loaded ), saved );

	const CZolRootNode *pRoot = loaded.GetRoot();
	auto fnClasses = [ pRoot ]( ParticleFunctionType_t eType ) {
		std::string classes;
		for ( int i = 0; i < pRoot->GetNodeCount( eType ); ++i )
			classes += ( classes.empty() ? "" : " " ) + std::string( pRoot->GetNode( eType, i )->GetClassName() );
		return classes;
	};
	EXPECT_EQ( fnClasses( PARTICLE_FUNCTION_EMITTER ), "C_OP_ContinuousEmitter" );
	EXPECT_EQ( fnClasses( PARTICLE_FUNCTION_INITIALIZER ), "C_INIT_InitFloat C_INIT_CreateWithinSphere" );
	EXPECT_EQ( fnClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_Decay C_OP_TestNoMax" );
	EXPECT_EQ( fnClasses( PARTICLE_FUNCTION_RENDERER ), "C_OP_RenderTrails" );
	EXPECT_FALSE( pRoot->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->IsEnabled() );
	EXPECT_FLOAT_EQ( pRoot->GetNode( PARTICLE_FUNCTION_OPERATOR, 1 )->GetReadKV3()->GetMemberFloat( "m_flShared" ), 7.0f );
	const KeyValues3 *pInit = pRoot->GetNode( PARTICLE_FUNCTION_INITIALIZER, 0 )->GetReadKV3();
	EXPECT_EQ( pInit->GetMemberInt( "m_nOutputField" ), 3 );
	EXPECT_STREQ( pInit->FindMember( "m_InputValue" )->GetMemberString( "m_nType" ), "PF_TYPE_RANDOM_UNIFORM" );
	ASSERT_EQ( pRoot->GetNodeCount( PARTICLE_FUNCTION_CHILDREN ), 1 );
	EXPECT_STREQ( pRoot->GetNode( PARTICLE_FUNCTION_CHILDREN, 0 )->AsChildNode()->GetChildRef(), "particles/samples/sparks.tfxs" );
	ASSERT_EQ( pRoot->GetNodeCount( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ), 1 );
	EXPECT_STREQ( pRoot->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 )->AsVariableNode()->GetName(), "Heat" );
	EXPECT_EQ( pRoot->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 )->AsVariableNode()->GetValueType(), CPulseValueFullType( PVAL_FLOAT ) );
	ASSERT_EQ( pRoot->GetConfigurationCount(), 1 );
	EXPECT_STREQ( pRoot->GetConfiguration( 0 )->GetName(), "preview" );
	EXPECT_EQ( loaded.GetBehaviorVersion(), m_Doc.GetBehaviorVersion() );
}

TEST_F( ZolCatalogueFixture, InputWrittenAsABareNumberKeepsItsValueThroughLoadAndSave )
{
	std::string path = WriteFile( "literal.tfxs", MakeDefinitionText( R"(_class = "CParticleSystemDefinition"
m_nBehaviorVersion = 5
m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 40.0 } ])" ) );
	CUtlString error;
	ASSERT_TRUE( m_Doc.LoadFromFile( path.c_str(), "", &error ) ) << error.Get();

	KeyValues3 tree = ParseText( SaveText( m_Doc ) );
	const KeyValues3 *pRate = tree.FindMember( "m_Emitters" )->GetArrayElement( 0 )->FindMember( "m_flEmitRate" );
	ASSERT_NE( pRate, nullptr );
	// Either form is the same input: the number itself, or the literal table of it.
	if ( pRate->IsTable() )
		EXPECT_DOUBLE_EQ( pRate->GetMemberDouble( "m_flLiteralValue" ), 40.0 );
	else
		EXPECT_DOUBLE_EQ( pRate->GetDouble(), 40.0 );
}

TEST_F( ZolCatalogueFixture, InputEqualToItsDefaultInAnotherFormIsLeftOutOfTheFile )
{
	// The emitter's rate defaults to the literal 100; a bare 100 is the same input.
	std::string path = WriteFile( "inputdefault.tfxs", MakeDefinitionText( R"(_class = "CParticleSystemDefinition"
m_nBehaviorVersion = 5
m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 100 }, { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 25 } ])" ) );
	CUtlString error;
	ASSERT_TRUE( m_Doc.LoadFromFile( path.c_str(), "", &error ) ) << error.Get();

	KeyValues3 tree = ParseText( SaveText( m_Doc ) );
	const KeyValues3 *pEmitters = tree.FindMember( "m_Emitters" );
	ASSERT_EQ( pEmitters->GetArrayElementCount(), 2 );
	EXPECT_FALSE( pEmitters->GetArrayElement( 0 )->HasMember( "m_flEmitRate" ) );
	EXPECT_TRUE( pEmitters->GetArrayElement( 1 )->HasMember( "m_flEmitRate" ) );
}
