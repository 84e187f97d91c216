// Diffs of hand-edited copies of the shipped samples: each kind of change is reported once,
// in the artist's words, and what means the same reads as no change.

#include <ostream>
#include <string>
#include <vector>

#include "core/text/utlstring.h"
#include "tests/zoldoc/zoldefinitionsamples.h"
#include "zoldoc_lib/zoldefinitiondiff.h"
#include "zoldoc_lib/zoldefinitionlisting.h"
#include "zoldoc_lib/zoldefinitiontree.h"
#include "zoldoc_lib/zoldoc.h"

namespace
{
struct DiffCase_t
{
	const char *m_pName;
	const char *m_pSample;
	std::vector<SampleEdit_t> m_Edits;
	std::vector<std::string> m_Expected;
};

const DiffCase_t s_DiffCases[] = {
	{ "InputShownByItsText", "fire.tfxs",
	  { { "m_flLiteralValue = 40.0", "m_flRandomMin = 30.0 m_flRandomMax = 50.0" }, { "\"PF_TYPE_LITERAL\" m_flRandom", "\"PF_TYPE_RANDOM_UNIFORM\" m_flRandom" } },
	  { "Emitters #1 Continuous Emitter: Rate: 40 -> Random 30 - 50" } },
	{ "BaseProperty", "fire.tfxs", { { "m_nMaxParticles = 200", "m_nMaxParticles = 150" } }, { "Base Properties: Max Particles: 200 -> 150" } },
	{ "BasePropertyBackToItsDefault", "smoke.tfxs", { { "\tm_flDepthSortBias = 4.0\n", "" } }, { "Base Properties: Depth Sort Bias: 4 -> 0" } },
	{ "FunctionAdded", "fire.tfxs",
	  { { "{ _class = \"C_OP_SpinUpdate\" },", "{ _class = \"C_OP_SpinUpdate\" },\n\t\t{ _class = \"C_OP_FadeAndKill\" m_flStartFadeOutTime = 0.6 }," } },
	  { "Operators #8 Alpha Fade and Decay: added" } },
	{ "CopyOfAFunctionAddedIsNoMove", "fire.tfxs",
	  { { "{ _class = \"C_OP_SpinUpdate\" },", "{ _class = \"C_OP_SpinUpdate\" },\n\t\t{ _class = \"C_OP_FadeInSimple\" m_flFadeInTime = 0.1 }," } },
	  { "Operators #8 Alpha Fade In Simple: added" } },
	{ "FunctionRemoved", "fire.tfxs", { { "\t\t{ _class = \"C_OP_InterpolateRadius\" m_flEndScale = 0.3 },\n", "" } }, { "Operators #5 Radius Scale: removed" } },
	{ "FunctionMovedIsOneMove", "fire.tfxs",
	  { { "\t\t{ _class = \"C_OP_SpinUpdate\" },\n", "" }, { "\t\t{ _class = \"C_OP_BasicMovement\"", "\t\t{ _class = \"C_OP_SpinUpdate\" },\n\t\t{ _class = \"C_OP_BasicMovement\"" } },
	  { "Operators #1 Rotation Basic: moved from #7" } },
	{ "MovedAndEditedIsBoth", "fire.tfxs",
	  { { "\t\t{ _class = \"C_OP_FadeOutSimple\" m_flFadeOutTime = 0.5 },\n", "" },
		{ "\t\t{ _class = \"C_OP_Decay\" },\n", "\t\t{ _class = \"C_OP_FadeOutSimple\" m_flFadeOutTime = 0.25 },\n\t\t{ _class = \"C_OP_Decay\" },\n" } },
	  { "Operators #2 Alpha Fade Out Simple: moved from #4", "Operators #2 Alpha Fade Out Simple: Proportional Fade Out Time: 0.5 -> 0.25" } },
	{ "FunctionDisabled", "fire.tfxs", { { "{ _class = \"C_OP_Decay\" }", "{ _class = \"C_OP_Decay\" m_bDisableOperator = true }" } },
	  { "Operators #2 Lifespan Decay: disabled" } },
	{ "SetterNamedByItsAttribute", "fire.tfxs", { { "m_flRandomMin = 0.6", "m_flRandomMin = 0.8" } },
	  { "Initializers #2 Life Duration (Init Float): Value: Random 0.6 - 1.2 -> Random 0.8 - 1.2" } },
	{ "InputWithTheSameTextTellsItsMember", "sparks.tfxs", { { "m_flRandomMax = 60.0 }", "m_flRandomMax = 60.0 m_nRandomSeed = 7 }" } },
	  { "Emitters #1 Instantaneous Emitter: Particle Count/Random Seed: -1 -> 7" } },
	{ "FunctionOfAnUnknownClassIsKept", "fire.tfxs",
	  { { "{ _class = \"C_OP_SpinUpdate\" },", "{ _class = \"C_OP_SpinUpdate\" },\n\t\t{ _class = \"C_OP_FromANewerEditor\" m_flStrength = 2.0 }," } },
	  { "Operators #8 C_OP_FromANewerEditor: added" } },
	{ "ChildAdded", "campfire.tfxs", { { "m_bEndCap = false },", "m_bEndCap = false },\n\t\t{ m_ChildRef = resource:\"particles/samples/old_dust.tfxs\" }," } },
	  { "Children #4 particles/samples/old_dust.tfxs: added" } },
	{ "ChildChanged", "campfire.tfxs", { { "m_flDelay = 0.5", "m_flDelay = 0.75" } }, { "Children #2 particles/samples/smoke.tfxs: Delay: 0.5 -> 0.75" } },
	{ "ChildDisabled", "campfire.tfxs", { { "\"particles/samples/fire.tfxs\" }", "\"particles/samples/fire.tfxs\" m_bDisableChild = true }" } },
	  { "Children #1 particles/samples/fire.tfxs: disabled" } },
	{ "VariableChanged", "campfire.tfxs", { { "m_ConfigValue = 48.0", "m_ConfigValue = 60.0" } }, { "Variables #1 FireHeight: Default Config/Value: 48 -> 60" } },
	{ "VariableRenamedIsRemovedAndAdded", "campfire.tfxs", { { "m_Name = \"FireHeight\"", "m_Name = \"FlameHeight\"" } },
	  { "Variables #1 FireHeight: removed", "Variables #1 FlameHeight: added" } },
	{ "ConfigurationPreviewState", "campfire.tfxs", { { "ZOL_GROUND_PLANE", "ZOL_GROUND_GRID" } },
	  { "Configurations #1 preview: Preview State/Ground Type: Plane -> Grid" } },
	{ "ConfigurationDriver", "campfire.tfxs", { { "m_vecOffset = [ 0.0, 0.0, 48.0 ]", "m_vecOffset = [ 0.0, 0.0, 60.0 ]" } },
	  { "Configurations #1 preview: Drivers (Control Point 1)/Offset: [0, 0, 48] -> [0, 0, 60]" } },
	{ "ConfigurationDriverAdded", "campfire.tfxs",
	  { { "\t\t\tm_drivers = [\n", "\t\t\tm_drivers = [\n\t\t\t\t{ m_iControlPoint = 2 m_iAttachType = \"PATTACH_POINT_FOLLOW\" m_attachmentName = \"hand\" m_entityName = \"parent\" },\n" } },
	  { "Configurations #1 preview: Drivers (Control Point 2): none -> { Control Point: 2, Attach Type: Attachment Point Follow, Attachment: \"hand\", "
		"Offset: [0, 0, 0], Angle Offset: [0, 0, 0], Entity: \"parent\" }" } },
	{ "TransformInputTellsItsMember", "campfire.tfxs", { { "m_nControlPoint = 1 }\n\t\t\tm_flInitialRadius", "m_nControlPoint = 2 }\n\t\t\tm_flInitialRadius" } },
	  { "Initializers #1 Position Along Ring: Ring Transform/Control Point: 1 -> 2" } },
	{ "ConfigurationAdded", "campfire.tfxs",
	  { { "\tm_controlPointConfigurations = [\n", "\tm_controlPointConfigurations = [\n\t\t{ m_name = \"close-up\" },\n" } },
	  { "Configurations #1 close-up: added" } },
	// What means the same is no change.
	{ "BareNumberIsItsLiteral", "fire.tfxs", { { "{ m_nType = \"PF_TYPE_LITERAL\" m_flLiteralValue = 40.0 }", "40" } }, {} },
	{ "LayoutAndCommentsAreNoChange", "fire.tfxs",
	  { { "// Flicker: the alpha wobbles a few times over each flame's life.\n", "" }, { "m_Gravity = [ 0.0, 0.0, 30.0 ] m_fDrag = 0.9539", "m_fDrag = 0.9539\n\t\t\tm_Gravity = [ 0, 0, 30 ]" } },
	  {} },
	{ "ValueAtItsDefaultWrittenOutIsNoChange", "fire.tfxs", { { "{ _class = \"C_OP_Decay\" }", "{ _class = \"C_OP_Decay\" m_bDisableOperator = false }" } }, {} },
	// Files at one old version compare at it: an edit the upgrade would drop still shows.
	{ "EditOfAFieldAnUpgradeDrops", "old_dust.tfxs", { { "m_bEaseInOut = true", "m_bEaseInOut = false" } },
	  { "Operators #5 Color Fade: Ease In And Out: on -> off" } },
};

void PrintTo( const DiffCase_t &diffCase, std::ostream *pOut )
{
	*pOut << diffCase.m_pName;
}

class ZolDefinitionDiffTest : public ZolSampleFixture, public ::testing::WithParamInterface<DiffCase_t>
{
};

std::vector<std::string> DiffLines( const std::string &pathA, const std::string &pathB )
{
	std::vector<ZolDiffChange_t> changes;
	CUtlString error;
	EXPECT_TRUE( DiffDefinitionFiles( pathA.c_str(), pathB.c_str(), &changes, &error ) ) << error.Get();
	std::vector<std::string> lines;
	for ( const ZolDiffChange_t &change : changes )
	{
		CUtlString line;
		FormatDiffChange( change, &line );
		lines.emplace_back( line.Get() );
	}
	return lines;
}
} // namespace

TEST_P( ZolDefinitionDiffTest, ReportsEachChangeOnceInTheArtistsWords )
{
	const DiffCase_t &diffCase = GetParam();
	const std::string before = WriteEdited( diffCase.m_pSample, {}, "before.tfxs" );
	const std::string after = WriteEdited( diffCase.m_pSample, diffCase.m_Edits, "after.tfxs" );
	EXPECT_EQ( DiffLines( before, after ), diffCase.m_Expected );

	// The other way round, each change reads backwards: as many lines, nothing more.
	EXPECT_EQ( DiffLines( after, before ).size(), diffCase.m_Expected.size() );
}

INSTANTIATE_TEST_SUITE_P( Samples, ZolDefinitionDiffTest, ::testing::ValuesIn( s_DiffCases ),
						  []( const ::testing::TestParamInfo<DiffCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST_F( ZolSampleFixture, AnUpgradeByItselfShowsOnlyAsTheVersion )
{
	const std::string old = WriteEdited( "old_dust.tfxs", {}, "old.tfxs" );
	CZolDoc doc( false );
	CUtlString error;
	ASSERT_TRUE( doc.LoadFromFile( old.c_str(), "", &error ) ) << error.Get();
	doc.UpdateToCurrentVersion();
	const std::string upgraded = WriteText( "upgraded.tfxs", SaveText( doc ) );

	CUtlString expected;
	expected.Format( "Base Properties: Behavior Version: 4 -> %d", CZolDoc::GetCurrentBehaviorVersion() );
	EXPECT_EQ( DiffLines( old, upgraded ), std::vector<std::string>{ expected.Get() } );
}

TEST_F( ZolSampleFixture, ChangesCarryTheirPositionsAndStoredValues )
{
	const std::string before = WriteEdited( "fire.tfxs", {}, "before.tfxs" );
	const std::string after = WriteEdited( "fire.tfxs", { { "\t\t{ _class = \"C_OP_InterpolateRadius\" m_flEndScale = 0.3 },\n", "" }, { "m_nMaxParticles = 200", "m_nMaxParticles = 150" } },
										   "after.tfxs" );
	std::vector<ZolDiffChange_t> changes;
	CUtlString error;
	ASSERT_TRUE( DiffDefinitionFiles( before.c_str(), after.c_str(), &changes, &error ) ) << error.Get();
	ASSERT_EQ( changes.size(), 2u );
	EXPECT_EQ( changes[ 0 ].m_nSection, ZOL_SECTION_BASE_PROPERTIES );
	EXPECT_STREQ( changes[ 0 ].m_Field.Get(), "m_nMaxParticles" );
	EXPECT_EQ( changes[ 0 ].m_OldValue.GetInt(), 200 );
	EXPECT_EQ( changes[ 0 ].m_NewValue.GetInt(), 150 );
	EXPECT_EQ( changes[ 1 ].m_eKind, ZOL_DIFF_REMOVED );
	EXPECT_EQ( changes[ 1 ].m_nOldIndex, 4 );
	EXPECT_EQ( changes[ 1 ].m_nNewIndex, -1 );
	EXPECT_STREQ( changes[ 1 ].m_Class.Get(), "C_OP_InterpolateRadius" );
	EXPECT_FLOAT_EQ( changes[ 1 ].m_OldValue.GetMemberFloat( "m_flEndScale" ), 0.3f );
}

TEST_F( ZolSampleFixture, FilesThatDontLoadOrDontMatchAreRefusedByName )
{
	const std::string fire = WriteEdited( "fire.tfxs", {}, "fire.tfxs" );
	const std::string broken = WriteText( "broken.tfxs", ReadSample( "fire.tfxs" ) + "garbage\n" );
	const std::string other = WriteText( "other.tfxs", ApplySampleEdits( ReadSample( "fire.tfxs" ), { { "\"CParticleSystemDefinition\"", "\"CSomethingElse\"" } } ) );
	std::vector<ZolDiffChange_t> changes;
	CUtlString error;
	EXPECT_FALSE( DiffDefinitionFiles( fire.c_str(), broken.c_str(), &changes, &error ) );
	EXPECT_EQ( std::string( error.Get() ).rfind( broken + ": ", 0 ), 0u ) << error.Get();
	EXPECT_FALSE( DiffDefinitionFiles( ( m_Folder + "/missing.tfxs" ).c_str(), fire.c_str(), &changes, &error ) );
	EXPECT_EQ( std::string( error.Get() ), m_Folder + "/missing.tfxs: Failed to read file: No such file or directory" );
	EXPECT_FALSE( DiffDefinitionFiles( fire.c_str(), other.c_str(), &changes, &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "different root classes ('CParticleSystemDefinition' and 'CSomethingElse')" ), std::string::npos ) << error.Get();
}

TEST_F( ZolSampleFixture, ListingShowsWhatTheFileHoldsOneFieldALine )
{
	CUtlString listing, error;
	ASSERT_TRUE( ListDefinitionFile( WriteEdited( "campfire.tfxs", {}, "campfire.tfxs" ).c_str(), &listing, &error ) ) << error.Get();
	const std::string text( listing.Get() );
	for ( const char *pLine : { "Base Properties\n  Behavior Version: 12\n  Max Particles: 24\n", "Emitters\n  Maintain Count Emitter\n    Count To Maintain: 12\n",
							  "  Radius (Init Float)\n    Value: Random 0.5 - 1\n", "Children\n  particles/samples/fire.tfxs\n  particles/samples/smoke.tfxs\n    Delay: 0.5\n",
							  "    Drivers (Control Point 1): { Control Point: 1, Attach Type: World Origin, Attachment: \"\", Offset: [0, 0, 48], Angle Offset: [0, 0, 0], Entity: \"self\" }\n" } )
		EXPECT_NE( text.find( pLine ), std::string::npos ) << pLine << "\nin:\n" << text;
	// No positions: a moved function moves its lines and changes nothing else.
	EXPECT_EQ( text.find( '#' + std::string( "1 " ) ), std::string::npos );
}
