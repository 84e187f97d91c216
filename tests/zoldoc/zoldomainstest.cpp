#include <cstring>
#include <string>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluetype.h"
#include "tests/zoldoc/zoldoctestsupport.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/particledomains.h"
#include "zoldoc_lib/zolnamedvaluetypes.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zolchoiceproviders.h"

namespace
{
std::string JoinChoices( const CUtlVector<ToolAttrGenericChoice_t> &choices )
{
	std::string joined;
	for ( const ToolAttrGenericChoice_t &choice : choices )
		joined += ( joined.empty() ? "" : ", " ) + std::string( choice.m_Value.Get() ) + "=" + choice.m_FriendlyName.Get();
	return joined;
}

struct ZolDomainFixture : ZolDocFixture
{
	ZolDomainFixture()
	{
		SetParticleGameRoot( ZOL_SOURCE_DIR "/content/game" );
		ResetParticleGameData();
	}
	~ZolDomainFixture() override
	{
		SetParticleGameRoot( "" );
		ResetParticleGameData();
	}
};
} // namespace

TEST( ZolParticleDomains, HooksOfOneDomainShareItAndOtherClassesAreIgnored )
{
	const char *pText = R"(
@PointClass metadata { is_pulse_hook = true particle_domain_internal_name = "d_b" particle_domain_ui_name = "Beta"
	pulse_outparams = { zeta = { type = "PVAL_FLOAT" friendly_name = "zeta" } Alpha = { type = "PVAL_VEC3" description = "first" } } } = hook_one : "" [ ]
@PointClass metadata { is_pulse_hook = true particle_domain_internal_name = "d_b"
	pulse_outparams = { middle = { type = "PVAL_NOT_A_TYPE" } } } = hook_two : "" [ ]
@PointClass metadata { particle_domain_internal_name = "d_not_a_hook" } = not_a_hook : "" [ ]
@PointClass metadata { is_pulse_hook = true particle_domain_internal_name = "d_a" particle_domain_ui_name = "alpha" } = hook_three : "" [ ]
)";
	CGameData bindings;
	CFgdReader reader( &bindings, "" );
	ASSERT_TRUE( reader.LoadGameDataFromText( "bindings.fgd", pText, strlen( pText ) ) );
	CUtlVector<ParticleDomain_t> domains;
	CollectParticleDomains( bindings, &domains );
	ASSERT_EQ( domains.Count(), 2 );
	EXPECT_STREQ( domains[ 0 ].m_UIName.Get(), "Beta" );
	EXPECT_EQ( domains[ 0 ].m_Leaves.Count(), 3 );

	CGameData table;
	CUtlVector<const CGameDataClass *> sorted;
	AddParticleDomainClasses( &table, domains, &sorted );
	ASSERT_EQ( sorted.Count(), 2 );
	// Byte order puts the capital first.
	EXPECT_STREQ( sorted[ 0 ]->GetName(), "d_b" );
	EXPECT_STREQ( sorted[ 1 ]->GetName(), "d_a" );

	const CGameDataClass *pDomain = table.FindClass( "d_b" );
	ASSERT_NE( pDomain, nullptr );
	EXPECT_STREQ( pDomain->m_MetaData.FindMember( "MParticleDomainTag" )->GetMemberString( "InternalName" ), "d_b" );
	const KeyValues3 *pLeaves = pDomain->m_MetaData.FindMember( "MParticleNamedValueDeclaration" );
	ASSERT_EQ( pLeaves->GetArrayElementCount(), 3 );
	// Sorted by UI path ignoring case; the UI path falls back to the internal name.
	EXPECT_STREQ( pLeaves->GetArrayElement( 0 )->GetMemberString( "UIPath" ), "Alpha" );
	EXPECT_STREQ( pLeaves->GetArrayElement( 0 )->GetMemberString( "Description" ), "first" );
	EXPECT_EQ( pLeaves->GetArrayElement( 0 )->GetMemberInt( "PulseType" ), int( PVAL_VEC3 ) );
	EXPECT_STREQ( pLeaves->GetArrayElement( 1 )->GetMemberString( "InternalPath" ), "middle" );
	EXPECT_EQ( pLeaves->GetArrayElement( 1 )->GetMemberInt( "PulseType" ), int( PVAL_UNKNOWN ) );
	EXPECT_STREQ( pLeaves->GetArrayElement( 2 )->GetMemberString( "UIPath" ), "zeta" );
}

TEST_F( ZolDomainFixture, ShippedBindingsGiveTheDomainChoice )
{
	CUtlVector<ToolAttrGenericChoice_t> choices;
	ASSERT_TRUE( GetParticleAttributeChoices( "particlefield_domain", &m_Doc, &choices ) );
	EXPECT_EQ( JoinChoices( choices ), "=(none), zol_vehicle=Vehicle, zol_weather=Weather" );
	const CGameDataClass *pWeather = FindParticleGameDataClass( "zol_weather" );
	ASSERT_NE( pWeather, nullptr );
	EXPECT_EQ( pWeather->m_MetaData.FindMember( "MParticleNamedValueDeclaration" )->GetArrayElementCount(), 4 );
}

TEST_F( ZolDocFixture, WithoutBindingsThereIsOnlyTheNoneDomain )
{
	CUtlVector<ToolAttrGenericChoice_t> choices;
	ASSERT_TRUE( GetParticleAttributeChoices( "particlefield_domain", &m_Doc, &choices ) );
	EXPECT_EQ( JoinChoices( choices ), "=(none)" );
}

TEST_F( ZolDocFixture, AttributeChoicesListOnlyLabelledAttributesOfTheirKind )
{
	m_Mgr.m_Usage[ "C_OP_RenderSprites" ] = { { 0, -1, "Position" }, { 3, -1, "Size" }, { 7, -1, "Opacity" }, { 12, -1, "Spin" } };
	AddRenderer();
	CUtlVector<ToolAttrGenericChoice_t> choices;

	// Without renderer labels the manager names the rest.
	ASSERT_TRUE( GetParticleAttributeChoices( "particlefield_alpha", &m_Doc, &choices ) );
	EXPECT_EQ( JoinChoices( choices ), "7=Opacity, 16=Attribute 16, 23=Attribute 23" );
	choices.RemoveAll();
	ASSERT_TRUE( GetParticleAttributeChoices( "particlefield_vector", &m_Doc, &choices ) );
	EXPECT_EQ( choices[ 0 ].m_FriendlyName, "Position" );
	EXPECT_EQ( choices[ choices.Count() - 1 ].m_Value, "19" );
	choices.RemoveAll();
	ASSERT_TRUE( GetParticleAttributeChoices( "particlefield_scalar", &m_Doc, &choices ) );
	for ( const ToolAttrGenericChoice_t &choice : choices )
		EXPECT_NE( choice.m_Value, "0" ) << "position is a vector";
	choices.RemoveAll();
	EXPECT_FALSE( GetParticleAttributeChoices( "not_a_list", &m_Doc, &choices ) );
	ASSERT_TRUE( GetParticleAttributeChoices( "vector_component", nullptr, &choices ) );
	EXPECT_EQ( JoinChoices( choices ), "-1=Disabled, 0=X Component, 1=Y Component, 2=Z Component" );
}

TEST_F( ZolDocFixture, RegisteredAttributeChoicesFindTheDocumentThroughTheEditedNode )
{
	m_Mgr.m_Usage[ "C_OP_RenderSprites" ] = { { 12, -1, "Spin" } };
	AddRenderer();
	GetParticleGameData();
	const ToolAttrChoiceProviderFn_t &fnProvider = ToolAttrHost()->FindChoiceProvider( "particlefield_rotation" );
	ASSERT_TRUE( fnProvider );

	CUtlVector<ToolAttrGenericChoice_t> choices;
	fnProvider( m_Doc.GetRoot()->GetTableInstance(), nullptr, &choices );
	EXPECT_EQ( JoinChoices( choices ), "4=Attribute 4, 5=Attribute 5, 12=Spin, 20=Attribute 20" );

	// A table that isn't a node of a document has no attributes to offer.
	choices.RemoveAll();
	fnProvider( HToolAttrTableInstance(), nullptr, &choices );
	EXPECT_EQ( choices.Count(), 0 );
}

TEST_F( ZolDomainFixture, DomainValuesOfAVariableAreTheDeclarationsItsTypeFits )
{
	m_Doc.GetRoot()->GetWriteKV3()->SetMemberString( "m_NamedValueDomain", "zol_weather" );
	CUtlVector<ToolAttrGenericChoice_t> choices;
	GetZolDomainValues( m_Doc, CPulseValueFullType( PVAL_FLOAT ), &choices );
	EXPECT_EQ( JoinChoices( choices ), "=, rain_amount=Rain Amount, wind_speed=Wind Speed" );
	GetZolDomainValues( m_Doc, CPulseValueFullType( PVAL_TRANSFORM ), &choices );
	EXPECT_EQ( JoinChoices( choices ), "=, wind_direction=Wind Direction" );
	GetZolDomainValues( m_Doc, CPulseValueFullType(), &choices );
	EXPECT_EQ( choices.Count(), 5 ) << "no type asks for every declaration";
	m_Doc.GetRoot()->GetWriteKV3()->SetMemberString( "m_NamedValueDomain", "zol_nowhere" );
	GetZolDomainValues( m_Doc, CPulseValueFullType( PVAL_FLOAT ), &choices );
	EXPECT_EQ( JoinChoices( choices ), "=" );
}
