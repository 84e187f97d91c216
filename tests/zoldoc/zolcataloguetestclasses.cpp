#include "tests/zoldoc/zolcataloguetestclasses.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <unistd.h>

#include "core/kv3/keyvalues3.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
struct TestField_t
{
	const char *m_pName;
	std::initializer_list<SchemaMetadataEntry_t> m_Metadata;
	bool m_bArray = false;
};

// The defaults of every test class: a default instance of each would save these.
void WriteTestDefaults( KeyValues3 *pTable )
{
	pTable->SetToEmptyTable();
	pTable->SetMemberBool( "m_bDisableOperator", false );
	for ( const char *pName : { "m_flShared", "m_flOnlyOld", "m_flAlways", "m_flFromFive", "m_flUpToThree", "m_flNoLimit" } )
		pTable->SetMemberFloat( pName, 0.0f );
	for ( const char *pName : { "m_flEntries", "m_flOther" } )
		pTable->SetMemberEmptyArray( pName );
}

void WriteTestDefinitionDefaults( KeyValues3 *pTable )
{
	pTable->SetToEmptyTable();
	pTable->SetMemberInt( "m_nBehaviorVersion", 0 );
	pTable->SetMemberBool( "m_bEnableNamedValues", false );
	pTable->SetMemberString( "m_NamedValueDomain", "" );
	pTable->SetMemberInt( "m_nMaxParticles", 1000 );
}

// The definition's own class, for as long as the host's classes don't declare it.
void RegisterDefinitionIfAbsent()
{
	CSchemaSystemTypeScope *pScope = ParticleTypeScope();
	CSchemaClassInfo *pClass = pScope->CreateClass( "CParticleSystemDefinition" );
	if ( !pClass )
		return;
	pClass->AddMetadata( SchemaMetadataEntry_t( "MGetKV3ClassDefaults", &WriteTestDefinitionDefaults ) );
	pClass->AddField( "m_nBehaviorVersion", pScope->GetBuiltinType( SCHEMA_BUILTIN_INT32 ) );
	pClass->AddField( "m_bEnableNamedValues", pScope->GetBuiltinType( SCHEMA_BUILTIN_BOOL ) );
	pClass->AddField( "m_NamedValueDomain", pScope->GetAtomicType( SCHEMA_ATOMIC_STRING ) );
	pClass->AddField( "m_nMaxParticles", pScope->GetBuiltinType( SCHEMA_BUILTIN_INT32 ) );
}

void RegisterOperator( const char *pName, std::initializer_list<SchemaMetadataEntry_t> metadata, std::initializer_list<TestField_t> fields = {} )
{
	CSchemaSystemTypeScope *pScope = ParticleTypeScope();
	CSchemaClassInfo *pClass = pScope->CreateClass( pName );
	if ( !pClass )
		return;
	if ( CSchemaClassInfo *pBase = pScope->FindDeclaredClass( "CParticleFunctionOperator" ) )
		pClass->AddBaseClass( pBase );
	for ( const SchemaMetadataEntry_t &entry : metadata )
		pClass->AddMetadata( entry );
	pClass->AddMetadata( SchemaMetadataEntry_t( "MGetKV3ClassDefaults", &WriteTestDefaults ) );
	const CSchemaType *pFloat = pScope->GetBuiltinType( SCHEMA_BUILTIN_FLOAT32 );
	for ( const TestField_t &field : fields )
	{
		const CSchemaType *pType = field.m_bArray ? pScope->GetCollectionType( pFloat, 24 ) : pFloat;
		CSchemaClassField &added = pClass->AddField( field.m_pName, pType );
		for ( const SchemaMetadataEntry_t &entry : field.m_Metadata )
			added.m_Metadata.push_back( entry );
	}
}
} // namespace

void RegisterCatalogueTestClasses()
{
	static const bool s_bRegistered = [] {
		RegisterParticleFunctionClasses();
		RegisterDefinitionIfAbsent();
		RegisterOperator( "C_OP_TestMaxThree", { { "MParticleMaxVersion", 3 }, { "MParticleReplacementOp", "C_OP_TestNoMax" } },
			{ { "m_flShared", {} }, { "m_flOnlyOld", {} } } );
		RegisterOperator( "C_OP_TestNoMax", {}, { { "m_flShared", {} } } );
		RegisterOperator( "C_OP_TestMaxThreeGone", { { "MParticleMaxVersion", 3 } } );
		RegisterOperator( "C_OP_TestChainA", { { "MParticleMaxVersion", 3 }, { "MParticleReplacementOp", "C_OP_TestChainB" } } );
		RegisterOperator( "C_OP_TestChainB", { { "MParticleMaxVersion", 5 }, { "MParticleReplacementOp", "C_OP_TestChainC" } } );
		RegisterOperator( "C_OP_TestChainC", {} );
		RegisterOperator( "C_OP_TestMaxThreeUnknown", { { "MParticleMaxVersion", 3 }, { "MParticleReplacementOp", "C_OP_NotAClass" } } );
		RegisterOperator( "C_OP_TestFieldLimits", {},
			{ { "m_flAlways", {} }, { "m_flFromFive", { { "MParticleMinVersion", 5 } } }, { "m_flUpToThree", { { "MParticleMaxVersion", 3 } } },
				{ "m_flNoLimit", { { "MParticleMaxVersion", -1 } } } } );
		RegisterOperator( "C_OP_TestObsolete", { { "MObsoleteParticleFunction" } } );
		RegisterOperator( "C_OP_TestFromSeven", { { "MParticleMinVersion", 7 } } );
		RegisterOperator( "C_OP_TestSingleton", {} );
		RegisterOperator( "C_OP_TestPositionA", {} );
		RegisterOperator( "C_OP_TestPositionB", {} );
		RegisterOperator( "C_OP_TestFog", {} );
		RegisterOperator( "C_OP_TestRequiresEntry", {}, { { "m_flEntries", { { "MParticleRequireDefaultArrayEntry" } }, true }, { "m_flOther", {}, true } } );
		return true;
	}();
	(void)s_bRegistered;
}

ZolCatalogueFixture::ZolCatalogueFixture()
{
	RegisterCatalogueTestClasses();
	const TestFunctionClass_t added[] = {
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestMaxThree", "Max Three" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestNoMax", "No Max" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestMaxThreeGone", "Max Three Gone" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestChainA", "Chain A" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestChainB", "Chain B" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestChainC", "Chain C" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestMaxThreeUnknown", "Max Three Unknown" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestFieldLimits", "Field Limits" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestObsolete", "Obsolete" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestFromSeven", "From Seven" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestSingleton", "Singleton", -1 },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestPositionA", "Position A", 0 },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestPositionB", "Position B", 0 },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestFog", "Render fog sprites" },
		{ PARTICLE_FUNCTION_OPERATOR, "C_OP_TestRequiresEntry", "Requires Entry" },
	};
	m_Mgr.m_Classes.insert( m_Mgr.m_Classes.end(), std::begin( added ), std::end( added ) );
	ResetParticleGameData();
	m_Doc.Reset();
}

ZolCatalogueFixture::~ZolCatalogueFixture()
{
	for ( const std::string &path : m_Files )
		std::remove( path.c_str() );
}

void ZolCatalogueFixture::SetDocumentVersion( int nVersion )
{
	m_Doc.GetRoot()->GetWriteKV3()->SetMemberInt( "m_nBehaviorVersion", nVersion );
}

std::string ZolCatalogueFixture::WriteFile( const char *pName, const std::string &text )
{
	std::string path = ( std::filesystem::temp_directory_path() / ( std::string( "zoldoc_test_" ) + std::to_string( ::getpid() ) + "_" + pName ) ).string();
	std::ofstream( path, std::ios::binary ) << text;
	m_Files.push_back( path );
	return path;
}

std::string MakeDefinitionText( const std::string &members )
{
	return "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n{\n" + members + "\n}\n";
}
