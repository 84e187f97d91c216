// The control point state on its own: what the compiled usage gives it, what a
// configuration's drivers do to it, and what reaches a preview through the seam.

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/host/resourcesystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/particles/controlpointusagekind.h"
#include "core/particles/particlemodelresource.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/particles/sim/particledefinitionusage.h"
#include "core/particles/sim/particleruntimedefinition.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tests/zoldoc/zolrecordingpreview.h"
#include "zoldoc_lib/izolpreviewtarget.h"
#include "zoldoc_lib/zolconfigurationplayer.h"
#include "zoldoc_lib/zolconfigurationreader.h"
#include "zoldoc_lib/zolcontrolpointstate.h"
#include "zoldoc_lib/zolpersistedcontrolpoints.h"

namespace
{
const ParticleParamID_t CP0 = ParticleParamID_t::ControlPoint( 0 );
const ParticleParamID_t CP1 = ParticleParamID_t::ControlPoint( 1 );
const ParticleParamID_t CP3 = ParticleParamID_t::ControlPoint( 3 );

class CTestStateHost final : public IZolControlPointStateHost
{
public:
	void OnControlPointStateChanged( const ParticleParamID_t & ) override { ++m_nChanged; }
	void OnNamedValueStateChanged( const ParticleParamID_t & ) override { ++m_nNamedChanged; }
	void OnEditModeChanged( const ParticleParamID_t & ) override { ++m_nModeChanged; }
	const char *GetEntityModel( int ) const override { return m_Model.c_str(); }
	const char *GetPreviewModel() const override { return m_Model.c_str(); }
	void GetWearableModels( CUtlVector<CUtlString> * ) const override {}
	bool GetDeclaredValue( const ParticleParamID_t &key, KeyValues3 *pValue ) const override
	{
		auto it = m_Declared.find( key.m_nToken );
		if ( it == m_Declared.end() )
			return false;
		pValue->SetDouble( it->second );
		return true;
	}

	std::string m_Model;
	std::map<uint32_t, double> m_Declared;
	int m_nChanged = 0;
	int m_nNamedChanged = 0;
	int m_nModeChanged = 0;
};

HostControlPointUsage_t Use( const ParticleParamID_t &key, int nKind, float flDefaultZ = 0.0f )
{
	HostControlPointUsage_t usage = HostControlPointUsage_t::Make( key, nKind, CONTROL_POINT_ACCESS_READ );
	usage.m_flDefault[ 2 ] = flDefaultZ;
	return usage;
}

HostControlPointUsage_t UseNamed( const char *pName, const char *pType )
{
	HostControlPointUsage_t usage = HostControlPointUsage_t::Make( ParticleParamID_t::Named( pName ), 0, CONTROL_POINT_ACCESS_READ );
	usage.m_ValueType = pType;
	return usage;
}

// A configuration in its complete form, from the drivers' text.
KeyValues3 Configuration( const char *pDrivers )
{
	std::string text = std::string( "{ m_name = \"test\" m_drivers = [ " ) + pDrivers + " ] }";
	KeyValues3 loose, complete;
	CUtlString error;
	EXPECT_TRUE( LoadKV3FromText( &loose, &error, text.c_str(), text.size(), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) ) << error.Get();
	CKV3TransferLoadContext context;
	ReadControlPointConfiguration( &loose, &complete, &context );
	return complete;
}

class ZolControlPointState : public ::testing::Test
{
protected:
	ZolControlPointState() { CZolPersistedControlPoints::Get().Clear(); }
	~ZolControlPointState() override
	{
		CZolPersistedControlPoints::Get().Clear();
		SetResourceSystem( nullptr );
	}

	// The shipped crate, by its resource name, for attachments.
	void LoadCrate()
	{
		std::ifstream file( std::string( ZOL_SOURCE_DIR ) + "/content/content/models/crate.tmsh", std::ios::binary );
		std::stringstream text;
		text << file.rdbuf();
		std::string source = text.str();
		CUtlBuffer buffer;
		buffer.Put( source.data(), int( source.size() ) );
		std::unique_ptr<CResourceData> pData;
		CUtlString error;
		CParticleModelCompiler compiler;
		ASSERT_TRUE( compiler.Compile( buffer, "models/crate.tmsh", &pData, &error ) ) << error.Get();
		m_Resources.ReplaceResourceData( m_Resources.FindOrCreateBinding( "models/crate.tmsh" ), std::shared_ptr<const CResourceData>( std::move( pData ) ) );
		SetResourceSystem( &m_Resources );
		m_Host.m_Model = "models/crate.tmsh";
	}

	CResourceSystem m_Resources;
	CTestStateHost m_Host;
	CZolControlPointState m_State{ &m_Host };
	CParticleDefinitionUsage m_Usage;
};
} // namespace

TEST_F( ZolControlPointState, DefaultOffsetIsAppliedOnceAndAMovedPointStaysThroughRecompiles )
{
	m_Usage.Add( 0, 0, Use( CP1, CONTROL_POINT_USAGE_POSITION, 48.0f ) );
	m_State.RebuildKnownControlPoints( m_Usage );
	EXPECT_EQ( m_State.GetPosition( CP1 ), Vector( 0, 0, 48 ) );
	EXPECT_TRUE( m_State.FindKnown( CP1 )->m_bOffsetApplied );

	m_State.SetTransform( CP1, Vector( 10, 0, 0 ), QAngle() );
	m_Usage.Add( 3, 0, Use( CP0, CONTROL_POINT_USAGE_TRANSFORM ) );
	m_State.RebuildKnownControlPoints( m_Usage );
	EXPECT_EQ( m_State.GetPosition( CP1 ), Vector( 10, 0, 0 ) ) << "a recompile must not reset a moved point";
}

TEST_F( ZolControlPointState, PinnedPointKeepsItsTransformWhenAConfigurationIsApplied )
{
	m_Usage.Add( 0, 0, Use( CP0, CONTROL_POINT_USAGE_POSITION ) );
	m_Usage.Add( 0, 1, Use( CP1, CONTROL_POINT_USAGE_POSITION ) );
	m_State.RebuildKnownControlPoints( m_Usage );
	m_State.SetTransform( CP1, Vector( 5, 5, 5 ), QAngle() );
	CZolPersistedControlPoints::Get().Set( CP1, Vector( 5, 5, 5 ), QAngle() );

	m_State.ApplyDrivers( Configuration( "{ m_iControlPoint = 0 m_vecOffset = [ 1, 2, 3 ] }, { m_iControlPoint = 1 m_vecOffset = [ 7, 7, 7 ] }" ) );
	EXPECT_EQ( m_State.GetPosition( CP0 ), Vector( 1, 2, 3 ) );
	EXPECT_EQ( m_State.GetPosition( CP1 ), Vector( 5, 5, 5 ) );
	// Moving a pinned point moves the pin with it.
	m_State.SetTransform( CP1, Vector( 6, 6, 6 ), QAngle() );
	EXPECT_EQ( CZolPersistedControlPoints::Get().Find( CP1 )->m_vPosition, Vector( 6, 6, 6 ) );
}

TEST_F( ZolControlPointState, EditModeFollowsTheUsageKindAndRefusesWhatDoesNotFit )
{
	m_Usage.Add( 0, 0, Use( CP0, CONTROL_POINT_USAGE_TRANSFORM ) );
	m_State.RebuildKnownControlPoints( m_Usage );
	EXPECT_EQ( m_State.GetEditMode( CP0 ), CONTROL_POINT_EDIT_TRANSLATE );
	EXPECT_FALSE( m_State.SetEditMode( CP0, CONTROL_POINT_EDIT_COLOR ) );

	// The kind becomes orientation only: translate no longer fits, rotate does.
	CParticleDefinitionUsage orientation;
	orientation.Add( 0, 0, Use( CP0, CONTROL_POINT_USAGE_ORIENTATION ) );
	m_State.RebuildKnownControlPoints( orientation );
	EXPECT_EQ( m_State.GetEditMode( CP0 ), CONTROL_POINT_EDIT_ROTATE );
	EXPECT_FALSE( m_State.SetEditMode( CP0, CONTROL_POINT_EDIT_TRANSLATE ) );
	// Back to a transform: rotate fits and stays; translate may be chosen again.
	m_State.RebuildKnownControlPoints( m_Usage );
	EXPECT_EQ( m_State.GetEditMode( CP0 ), CONTROL_POINT_EDIT_ROTATE );
	EXPECT_TRUE( m_State.SetEditMode( CP0, CONTROL_POINT_EDIT_TRANSLATE ) );
	EXPECT_EQ( m_Host.m_nModeChanged, 3 ) << "none to translate, to rotate, to translate";
	// A colour point edits its colour; a point the definition doesn't use fits only "none".
	CParticleDefinitionUsage colour;
	colour.Add( 0, 0, Use( CP3, CONTROL_POINT_USAGE_COLOR ) );
	m_State.RebuildKnownControlPoints( colour );
	EXPECT_EQ( m_State.GetEditMode( CP3 ), CONTROL_POINT_EDIT_COLOR );
	EXPECT_FALSE( m_State.SetEditMode( CP1, CONTROL_POINT_EDIT_TRANSLATE ) );
}

TEST_F( ZolControlPointState, DriversRoundTripThroughAConfigurationNamedValuesIncluded )
{
	m_Usage.Add( 0, 0, Use( CP0, CONTROL_POINT_USAGE_TRANSFORM ) );
	m_Usage.Add( 0, 1, UseNamed( "Height", "PVAL_FLOAT" ) );
	m_Usage.Add( 0, 2, UseNamed( "Wind", "PVAL_VEC3" ) );
	m_State.RebuildKnownControlPoints( m_Usage );
	m_State.SetTransform( CP0, Vector( 1, 2, 3 ), QAngle( 0, 90, 0 ) );
	m_State.SetAttachType( CP0, PATTACH_POINT_FOLLOW );
	m_State.SetEntity( CP0, ZOL_ATTACH_ENTITY_PARENT );
	KeyValues3 height;
	height.SetDouble( 64.0 );
	m_State.SetValue( ParticleParamID_t::Named( "Height" ), height );

	KeyValues3 configuration = Configuration( "" );
	m_State.StoreDrivers( &configuration );
	const KeyValues3 *pDrivers = configuration.FindMember( "m_drivers" );
	ASSERT_EQ( pDrivers->GetArrayElementCount(), 2 ) << "the vector at its default has no driver";
	EXPECT_STREQ( pDrivers->GetArrayElement( 0 )->GetMemberString( "m_iAttachType" ), "PATTACH_POINT_FOLLOW" );
	EXPECT_STREQ( pDrivers->GetArrayElement( 0 )->GetMemberString( "m_entityName" ), "parent" );
	EXPECT_STREQ( pDrivers->GetArrayElement( 1 )->GetMemberString( "m_iControlPoint" ), "Height" );

	CTestStateHost otherHost;
	CZolControlPointState other( &otherHost );
	other.RebuildKnownControlPoints( m_Usage );
	other.ApplyDrivers( configuration );
	EXPECT_EQ( other.GetPosition( CP0 ), Vector( 1, 2, 3 ) );
	EXPECT_EQ( other.GetAngles( CP0 ), QAngle( 0, 90, 0 ) );
	EXPECT_EQ( other.GetAttachType( CP0 ), PATTACH_POINT_FOLLOW );
	EXPECT_EQ( other.GetEntity( CP0 ), ZOL_ATTACH_ENTITY_PARENT );
	KeyValues3 value;
	ASSERT_TRUE( other.GetValue( ParticleParamID_t::Named( "Height" ), &value ) );
	EXPECT_EQ( value.GetFloat(), 64.0f );
}

TEST_F( ZolControlPointState, DriverWithoutAttachTypeReadsAsFollowingTheEntityOrigin )
{
	m_Usage.Add( 0, 0, Use( CP0, CONTROL_POINT_USAGE_POSITION ) );
	m_State.RebuildKnownControlPoints( m_Usage );
	KeyValues3 loose;
	CUtlString error;
	const char *pText = "{ m_drivers = [ { m_iControlPoint = 0 m_vecOffset = [ 0, 0, 9 ] } ] }";
	ASSERT_TRUE( LoadKV3FromText( &loose, &error, pText, strlen( pText ), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) );
	m_State.ApplyDrivers( loose );
	EXPECT_EQ( m_State.GetAttachType( CP0 ), PATTACH_ABSORIGIN_FOLLOW );
	EXPECT_EQ( m_State.GetPosition( CP0 ), Vector( 0, 0, 9 ) );
	// An unknown key answers the defaults of a getter.
	EXPECT_EQ( m_State.GetAttachType( CP3 ), PATTACH_WORLDORIGIN );
	EXPECT_STREQ( m_State.GetAttachmentName( CP3 ), "" );
	EXPECT_FALSE( m_State.GetValue( CP3, &loose ) );
}

TEST_F( ZolControlPointState, NamedValueReadsItsDeclarationUntilSetAndConvertsToItsType )
{
	ParticleParamID_t height = ParticleParamID_t::Named( "Height" );
	m_Host.m_Declared[ height.m_nToken ] = 48.0;
	m_Usage.Add( 0, 0, UseNamed( "Height", "PVAL_FLOAT" ) );
	m_State.RebuildKnownControlPoints( m_Usage );
	KeyValues3 value;
	ASSERT_TRUE( m_State.GetValue( height, &value ) );
	EXPECT_EQ( value.GetFloat(), 48.0f );

	KeyValues3 vector;
	vector.SetToEmptyArray();
	for ( float f : { 3.0f, 4.0f, 5.0f } )
		vector.ArrayAddToTail()->SetDouble( f );
	m_State.SetValue( height, vector );
	ASSERT_TRUE( m_State.GetValue( height, &value ) );
	EXPECT_EQ( value.GetFloat(), 3.0f ) << "a vector given to a float keeps its first component";

	// The variable becomes a vector: it starts over at its declaration, spread over the axes.
	CParticleDefinitionUsage retyped;
	retyped.Add( 0, 0, UseNamed( "Height", "PVAL_VEC3" ) );
	m_State.RebuildKnownControlPoints( retyped );
	ASSERT_TRUE( m_State.GetValue( height, &value ) );
	ASSERT_EQ( value.GetArrayElementCount(), 3 );
	EXPECT_EQ( value.GetArrayElement( 2 )->GetFloat(), 48.0f );
}

TEST_F( ZolControlPointState, PreviewGetsEveryRecordButUnmovedPointsOtherThanZero )
{
	m_Usage.Add( 0, 0, Use( CP0, CONTROL_POINT_USAGE_POSITION ) );
	m_Usage.Add( 0, 1, Use( CP3, CONTROL_POINT_USAGE_POSITION ) );
	m_Usage.Add( 0, 2, UseNamed( "Height", "PVAL_FLOAT" ) );
	m_State.RebuildKnownControlPoints( m_Usage );
	m_State.SetTransform( CP0, Vector(), QAngle() );
	m_State.SetTransform( CP3, Vector(), QAngle() );

	CRecordingPreview preview;
	m_State.ApplyToPreview( &preview );
	EXPECT_EQ( preview.Joined(), "unbind 0\n"
								 "collection 0 at 0 0 0\n"
								 "value Height PVAL_FLOAT 0.000000\n"
								 "node 0 at 0 0 0\n"
								 "node 3 at 0 0 0\n" );

	preview.m_Calls.clear();
	preview.m_bRunning = false;
	m_State.ApplyToPreview( &preview );
	EXPECT_TRUE( preview.m_Calls.empty() ) << "nothing runs, nothing is applied";
}

TEST_F( ZolControlPointState, AttachedPointBindsToItsModelAttachmentOrStandsPlain )
{
	LoadCrate();
	m_Usage.Add( 0, 0, Use( CP1, CONTROL_POINT_USAGE_POSITION ) );
	m_State.RebuildKnownControlPoints( m_Usage );
	m_State.SetAttachType( CP1, PATTACH_POINT );
	EXPECT_STREQ( m_State.GetAttachmentName( CP1 ), "lid" ) << "the model's first attachment";
	m_State.SetTransform( CP1, Vector( 0, 0, 4 ), QAngle() );

	CRecordingPreview preview;
	preview.m_SceneModel = "models/crate.tmsh";
	m_State.ApplyControlPoint( &preview, CP1 );
	EXPECT_EQ( preview.Joined(), "bind 1 to models/crate.tmsh:lid type 4 offset 0 0 4\n" );

	// The model isn't in the scene: the point stands where its offset says.
	preview.m_Calls.clear();
	preview.m_SceneModel = "models/other.tmsh";
	m_State.ApplyControlPoint( &preview, CP1 );
	EXPECT_EQ( preview.Joined(), "node 1 at 0 0 4\n" );

	// A name the model lacks becomes its first attachment; a model without any clears it.
	m_State.SetAttachmentName( CP1, "LID" );
	m_State.ValidateAttachments();
	EXPECT_STREQ( m_State.GetAttachmentName( CP1 ), "LID" ) << "names compare ignoring case";
	m_State.SetAttachmentName( CP1, "handle" );
	m_State.ValidateAttachments();
	EXPECT_STREQ( m_State.GetAttachmentName( CP1 ), "lid" );
	m_Host.m_Model = "models/missing.tmsh";
	m_State.ValidateAttachments();
	EXPECT_STREQ( m_State.GetAttachmentName( CP1 ), "" );
	// Leaving the attachment types clears the name.
	m_State.SetAttachmentName( CP1, "lid" );
	m_State.SetAttachType( CP1, PATTACH_WORLDORIGIN );
	EXPECT_STREQ( m_State.GetAttachmentName( CP1 ), "" );
}

// ---------------------------------------------------------------------------------------
// A configuration played on a collection, as a headless run plays it.

namespace
{
ParticleDefinitionPtr_t CompileText( const char *pText, KeyValues3 *pTree )
{
	CUtlString error;
	EXPECT_TRUE( LoadKV3FromText( pTree, &error, pText, strlen( pText ), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) ) << error.Get();
	ParticleDefinitionPtr_t pDefinition = CompileParticleDefinitionFromKV3( pTree, "test", {}, &error );
	EXPECT_NE( pDefinition, nullptr ) << error.Get();
	return pDefinition;
}
} // namespace

TEST_F( ZolControlPointState, PlayedConfigurationPlacesTheEffectOnItsModelOrOnTheGround )
{
	LoadCrate();
	std::ifstream file( std::string( ZOL_SOURCE_DIR ) + "/content/content/particles/samples/brazier.tfxs", std::ios::binary );
	std::stringstream text;
	text << file.rdbuf();
	std::string source = text.str();
	KeyValues3 tree;
	CUtlString error;
	ASSERT_TRUE( LoadKV3FromText( &tree, &error, source.c_str(), source.size(), KV3_FORMAT_TFXS ) ) << error.Get();
	ParticleDefinitionPtr_t pDefinition = CompileParticleDefinitionFromKV3( &tree, "brazier", {}, &error );
	ASSERT_NE( pDefinition, nullptr ) << error.Get();
	std::unique_ptr<IParticleCollection> pCollection = CreateParticleCollection( pDefinition, 1 );

	ASSERT_TRUE( PlayZolConfiguration( tree, "On Crate", pDefinition->m_Usage, pCollection.get(), &error ) ) << error.Get();
	EXPECT_EQ( pCollection->GetControlPointPosition( 0 ), Vector( 0, 0, 32 ) ) << "on the crate's lid";
	Vector vForward, vRight, vUp;
	pCollection->GetControlPointOrientation( 0, &vForward, &vRight, &vUp );
	EXPECT_NEAR( vForward.z, 1.0f, 1e-5f ) << "turned as the lid attachment is";

	ASSERT_TRUE( PlayZolConfiguration( tree, "ground", pDefinition->m_Usage, pCollection.get(), &error ) );
	EXPECT_EQ( pCollection->GetControlPointPosition( 0 ), Vector( 0, 0, 0 ) );

	EXPECT_FALSE( PlayZolConfiguration( tree, "upside down", pDefinition->m_Usage, pCollection.get(), &error ) );
	EXPECT_STREQ( error.Get(), "no configuration 'upside down' (there are: ground, on crate)" );
}

TEST_F( ZolControlPointState, PlayedConfigurationSetsItsVariablesAndLeavesTheOthersAtTheirDeclaration )
{
	KeyValues3 tree;
	ParticleDefinitionPtr_t pDefinition = CompileText( R"({
		_class = "CParticleSystemDefinition"
		m_NamedValueLocals = [
			{ m_Name = "Size" m_ValueType = "PVAL_FLOAT" m_DefaultConfig = { m_ConfigValue = 7.0 } },
			{ m_Name = "Speed" m_ValueType = "PVAL_FLOAT" m_DefaultConfig = { m_ConfigValue = 3.0 } },
		]
		m_Operators = [
			{ _class = "C_OP_SetFloat" m_nOutputField = 3 m_InputValue = { m_nType = "PF_TYPE_NAMED_VALUE" m_NamedValue = "Size" } },
			{ _class = "C_OP_SetFloat" m_nOutputField = 4 m_InputValue = { m_nType = "PF_TYPE_NAMED_VALUE" m_NamedValue = "Speed" } },
		]
		m_controlPointConfigurations = [ { m_name = "big" m_drivers = [ { m_iControlPoint = "size" m_vecOffset = [ 20.0, 0.0, 0.0 ] } ] } ]
	})", &tree );
	ASSERT_NE( pDefinition, nullptr );
	std::unique_ptr<IParticleCollection> pCollection = CreateParticleCollection( pDefinition, 1 );
	CUtlString error;
	ASSERT_TRUE( PlayZolConfiguration( tree, "big", pDefinition->m_Usage, pCollection.get(), &error ) ) << error.Get();
	EXPECT_EQ( pCollection->GetNamedValueFloat( ParticleParamID_t::Named( "Size" ) ), 20.0f );
	EXPECT_EQ( pCollection->GetNamedValueFloat( ParticleParamID_t::Named( "Speed" ) ), 3.0f );
}
