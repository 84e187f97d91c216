// Three-way merges of hand-edited copies of the shipped samples: changes that don't overlap
// combine, true conflicts keep ours and name both values, and the result is the document
// the editor would have saved with both sides' edits.

#include <ostream>
#include <string>
#include <vector>

#include "core/text/utlstring.h"
#include "tests/zoldoc/zoldefinitionsamples.h"
#include "zoldoc_lib/zoldefinitionmerge.h"
#include "zoldoc_lib/zoldoc.h"

namespace
{
const SampleEdit_t s_AddFadeAndKill = { "{ _class = \"C_OP_SpinUpdate\" },", "{ _class = \"C_OP_SpinUpdate\" },\n\t\t{ _class = \"C_OP_FadeAndKill\" m_flStartFadeOutTime = 0.6 }," };
const SampleEdit_t s_AddLerpAfterSpin = { "{ _class = \"C_OP_SpinUpdate\" },", "{ _class = \"C_OP_SpinUpdate\" },\n\t\t{ _class = \"C_OP_LerpScalar\" }," };
const SampleEdit_t s_AddLerpAfterDecay = { "{ _class = \"C_OP_Decay\" },", "{ _class = \"C_OP_Decay\" },\n\t\t{ _class = \"C_OP_LerpScalar\" }," };
const SampleEdit_t s_DropSpin = { "\t\t{ _class = \"C_OP_SpinUpdate\" },\n", "" };
const SampleEdit_t s_SpinFirst = { "\t\t{ _class = \"C_OP_BasicMovement\"", "\t\t{ _class = \"C_OP_SpinUpdate\" },\n\t\t{ _class = \"C_OP_BasicMovement\"" };
const SampleEdit_t s_DropDecay = { "\t\t{ _class = \"C_OP_Decay\" },\n", "" };
const SampleEdit_t s_DecayLast = { "\t// Flicker", "\t\t{ _class = \"C_OP_Decay\" },\n\t// Flicker" };
const SampleEdit_t s_DropRadiusScale = { "\t\t{ _class = \"C_OP_InterpolateRadius\" m_flEndScale = 0.3 },\n", "" };
const SampleEdit_t s_RadiusScaleEnd = { "m_flEndScale = 0.3", "m_flEndScale = 0.5" };
const SampleEdit_t s_FadeOutShort = { "m_flFadeOutTime = 0.5", "m_flFadeOutTime = 0.4" };
const SampleEdit_t s_FadeOutLong = { "m_flFadeOutTime = 0.5", "m_flFadeOutTime = 0.7" };
const SampleEdit_t s_Gravity = { "m_Gravity = [ 0.0, 0.0, 30.0 ]", "m_Gravity = [ 0.0, 0.0, 45.0 ]" };
const SampleEdit_t s_Drag = { "m_fDrag = 0.9539", "m_fDrag = 0.98" };
const SampleEdit_t s_MaxParticles = { "m_nMaxParticles = 24", "m_nMaxParticles = 30" };
const SampleEdit_t s_GroundGrid = { "ZOL_GROUND_PLANE", "ZOL_GROUND_GRID" };
const SampleEdit_t s_DriverOffset = { "m_vecOffset = [ 0.0, 0.0, 48.0 ]", "m_vecOffset = [ 0.0, 0.0, 60.0 ]" };
const SampleEdit_t s_AddHandDriver = { "\t\t\tm_drivers = [\n",
										"\t\t\tm_drivers = [\n\t\t\t\t{ m_iControlPoint = 2 m_iAttachType = \"PATTACH_POINT_FOLLOW\" m_attachmentName = \"hand\" m_entityName = \"parent\" },\n" };
const SampleEdit_t s_AddDustChild = { "m_bEndCap = false },", "m_bEndCap = false },\n\t\t{ m_ChildRef = resource:\"particles/samples/old_dust.tfxs\" }," };
SampleEdit_t AddHeatVariable( const char *pPublic )
{
	return { "\tm_NamedValueLocals = [\n", std::string( "\tm_NamedValueLocals = [\n\t\t{ m_Name = \"Heat\" m_IsPublic = " ) + pPublic + " },\n" };
}

struct MergeCase_t
{
	const char *m_pName;
	const char *m_pSample;
	std::vector<SampleEdit_t> m_Ours;
	std::vector<SampleEdit_t> m_Theirs;
	// Made on the base, they give the document the merge must give.
	std::vector<SampleEdit_t> m_Expected;
	std::vector<std::string> m_Conflicts;
};

void PrintTo( const MergeCase_t &mergeCase, std::ostream *pOut )
{
	*pOut << mergeCase.m_pName;
}

const MergeCase_t s_MergeCases[] = {
	{ "FunctionAddedOnEachSide", "fire.tfxs", { s_AddFadeAndKill }, { s_AddLerpAfterDecay }, { s_AddFadeAndKill, s_AddLerpAfterDecay }, {} },
	{ "AdditionsAtOneSpotBothStayOursFirst", "fire.tfxs", { s_AddFadeAndKill }, { s_AddLerpAfterSpin },
	  { { "{ _class = \"C_OP_SpinUpdate\" },", "{ _class = \"C_OP_SpinUpdate\" },\n\t\t{ _class = \"C_OP_FadeAndKill\" m_flStartFadeOutTime = 0.6 },\n\t\t{ _class = \"C_OP_LerpScalar\" }," } },
	  {} },
	{ "TwoFieldsOfOneFunctionOnOneLine", "fire.tfxs", { s_Gravity }, { s_Drag }, { s_Gravity, s_Drag }, {} },
	{ "ReorderOnOursEditOnTheirs", "fire.tfxs", { s_DropDecay, s_DecayLast }, { s_FadeOutLong, s_Gravity }, { s_DropDecay, s_DecayLast, s_FadeOutLong, s_Gravity }, {} },
	{ "ReorderOnTheirsAdditionOnOurs", "fire.tfxs", { s_AddLerpAfterDecay }, { s_DropSpin, s_SpinFirst }, { s_AddLerpAfterDecay, s_DropSpin, s_SpinFirst }, {} },
	{ "SameEditOnBothSides", "fire.tfxs", { s_FadeOutShort, s_Drag }, { s_FadeOutShort }, { s_FadeOutShort, s_Drag }, {} },
	{ "RemovedOnOneSideUntouchedOnTheOther", "fire.tfxs", { s_DropRadiusScale }, { s_Drag }, { s_DropRadiusScale, s_Drag }, {} },
	{ "SameFieldTwoValuesKeepsOurs", "fire.tfxs", { s_FadeOutShort }, { s_FadeOutLong, s_Drag }, { s_FadeOutShort, s_Drag },
	  { "Operators #4 Alpha Fade Out Simple: Proportional Fade Out Time: ours 0.4, theirs 0.7 (was 0.5); kept ours" } },
	{ "RemovedByOursEditedByTheirs", "fire.tfxs", { s_DropRadiusScale }, { s_RadiusScaleEnd }, { s_DropRadiusScale },
	  { "Operators #5 Radius Scale: removed by ours, changed by theirs (Radius End Scale: 0.3 -> 0.5); kept it removed" } },
	{ "RemovedByTheirsEditedByOurs", "fire.tfxs", { s_RadiusScaleEnd }, { s_DropRadiusScale }, { s_RadiusScaleEnd },
	  { "Operators #5 Radius Scale: removed by theirs, changed by ours (Radius End Scale: 0.3 -> 0.5); kept ours" } },
	{ "ReorderedDifferentlyOnBothSides", "fire.tfxs", { s_DropSpin, s_SpinFirst }, { s_DropDecay, s_DecayLast }, { s_DropSpin, s_SpinFirst },
	  { "Operators: reordered differently on both sides; kept the order of ours" } },
	{ "ConfigurationMembersCombine", "campfire.tfxs", { s_GroundGrid }, { s_DriverOffset }, { s_GroundGrid, s_DriverOffset }, {} },
	{ "DriverAddedOnOneSideAnotherMovedOnTheOther", "campfire.tfxs", { s_AddHandDriver }, { s_DriverOffset, s_GroundGrid },
	  { s_AddHandDriver, s_DriverOffset, s_GroundGrid }, {} },
	{ "OneDriverMovedTwoWays", "campfire.tfxs", { { "m_vecOffset = [ 0.0, 0.0, 48.0 ]", "m_vecOffset = [ 0.0, 0.0, 50.0 ]" } }, { s_DriverOffset },
	  { { "m_vecOffset = [ 0.0, 0.0, 48.0 ]", "m_vecOffset = [ 0.0, 0.0, 50.0 ]" } },
	  { "Configurations #1 preview: Drivers (Control Point 1)/Offset: ours [0, 0, 50], theirs [0, 0, 60] (was [0, 0, 48]); kept ours" } },
	{ "ChildAddedAndBasePropertyChanged", "campfire.tfxs", { s_AddDustChild }, { s_MaxParticles }, { s_AddDustChild, s_MaxParticles }, {} },
	{ "VariableAddedOnBothSidesDifferently", "campfire.tfxs", { AddHeatVariable( "true" ) }, { AddHeatVariable( "false" ) }, { AddHeatVariable( "true" ) },
	  { "Variables #1 Heat: added on both sides, differently (theirs: Public: on -> off); kept ours" } },
	{ "VariableAddedOnBothSidesAlike", "campfire.tfxs", { AddHeatVariable( "true" ), s_MaxParticles }, { AddHeatVariable( "true" ) },
	  { AddHeatVariable( "true" ), s_MaxParticles }, {} },
};

class ZolDefinitionMergeTest : public ZolSampleFixture, public ::testing::WithParamInterface<MergeCase_t>
{
};

// The merged document's text and the conflicts as lines.
std::string Merge( const std::string &base, const std::string &ours, const std::string &theirs, std::vector<std::string> *pConflicts,
				   const std::string &savePath = std::string() )
{
	CZolDoc merged( false );
	std::vector<ZolMergeConflict_t> conflicts;
	CUtlString error;
	EXPECT_TRUE( MergeDefinitionFiles( base.c_str(), ours.c_str(), theirs.c_str(), &merged, &conflicts, &error ) ) << error.Get();
	pConflicts->clear();
	for ( const ZolMergeConflict_t &conflict : conflicts )
	{
		CUtlString line;
		FormatMergeConflict( conflict, &line );
		pConflicts->emplace_back( line.Get() );
	}
	if ( !savePath.empty() )
		EXPECT_TRUE( merged.SaveToFile( savePath.c_str(), &error ) ) << error.Get();
	return ZolSampleFixture::SaveText( merged );
}
} // namespace

TEST_P( ZolDefinitionMergeTest, CombinesWhatDoesntOverlapAndReportsConflicts )
{
	const MergeCase_t &mergeCase = GetParam();
	const std::string base = WriteEdited( mergeCase.m_pSample, {}, "base.tfxs" );
	const std::string ours = WriteEdited( mergeCase.m_pSample, mergeCase.m_Ours, "ours.tfxs" );
	const std::string theirs = WriteEdited( mergeCase.m_pSample, mergeCase.m_Theirs, "theirs.tfxs" );
	const std::string expected = EditorText( WriteEdited( mergeCase.m_pSample, mergeCase.m_Expected, "expected.tfxs" ) );

	std::vector<std::string> conflicts;
	const std::string mergedPath = m_Folder + "/merged.tfxs";
	EXPECT_EQ( Merge( base, ours, theirs, &conflicts, mergedPath ), expected );
	EXPECT_EQ( conflicts, mergeCase.m_Conflicts );
	// The saved result loads as the editor loads it and is the expected document.
	EXPECT_EQ( EditorText( mergedPath ), expected );
}

INSTANTIATE_TEST_SUITE_P( Samples, ZolDefinitionMergeTest, ::testing::ValuesIn( s_MergeCases ),
						  []( const ::testing::TestParamInfo<MergeCase_t> &info ) { return std::string( info.param.m_pName ); } );

class ZolDefinitionSelfMergeTest : public ZolSampleFixture, public ::testing::WithParamInterface<const char *>
{
};

TEST_P( ZolDefinitionSelfMergeTest, MergingAFileWithItselfChangesNothing )
{
	const std::string path = WriteEdited( GetParam(), {}, "sample.tfxs" );
	std::vector<std::string> conflicts;
	EXPECT_EQ( Merge( path, path, path, &conflicts ), EditorText( path ) );
	EXPECT_TRUE( conflicts.empty() );
}

INSTANTIATE_TEST_SUITE_P( Samples, ZolDefinitionSelfMergeTest, ::testing::Values( "campfire.tfxs", "fire.tfxs", "old_dust.tfxs", "smoke.tfxs", "sparks.tfxs" ),
						  []( const ::testing::TestParamInfo<const char *> &info ) {
							  std::string name( info.param );
							  return name.substr( 0, name.find( '.' ) );
						  } );

TEST_F( ZolSampleFixture, ChangesOfOneSideAloneAreTakenWhole )
{
	const std::string base = WriteEdited( "campfire.tfxs", {}, "base.tfxs" );
	const std::string edited = WriteEdited( "campfire.tfxs", { s_AddDustChild, s_GroundGrid, s_MaxParticles, AddHeatVariable( "true" ) }, "edited.tfxs" );
	std::vector<std::string> conflicts;
	EXPECT_EQ( Merge( base, edited, base, &conflicts ), EditorText( edited ) );
	EXPECT_TRUE( conflicts.empty() );
	EXPECT_EQ( Merge( base, base, edited, &conflicts ), EditorText( edited ) );
	EXPECT_TRUE( conflicts.empty() );
}

TEST_F( ZolSampleFixture, AnUpgradeOnOneSideAndAnEditOnTheOtherCombine )
{
	const std::string base = WriteEdited( "old_dust.tfxs", {}, "base.tfxs" );
	CZolDoc doc( false );
	CUtlString error;
	ASSERT_TRUE( doc.LoadFromFile( base.c_str(), "", &error ) ) << error.Get();
	doc.UpdateToCurrentVersion();
	const std::string upgradedText = SaveText( doc );
	const std::string ours = WriteText( "ours.tfxs", upgradedText );
	const std::string theirs = WriteEdited( "old_dust.tfxs", { s_MaxParticles }, "theirs.tfxs" );

	std::vector<std::string> conflicts;
	EXPECT_EQ( Merge( base, ours, theirs, &conflicts ), EditorText( WriteText( "expected.tfxs", ApplySampleEdits( upgradedText, { { "m_nMaxParticles = 24", "m_nMaxParticles = 30" } } ) ) ) );
	EXPECT_TRUE( conflicts.empty() );
	// Neither side upgraded: the merge leaves the version alone.
	EXPECT_NE( Merge( base, theirs, base, &conflicts ).find( "m_nBehaviorVersion = 4" ), std::string::npos );
}

TEST_F( ZolSampleFixture, FunctionsOfUnknownClassesSurviveAMerge )
{
	const SampleEdit_t addUnknown = { "{ _class = \"C_OP_SpinUpdate\" },", "{ _class = \"C_OP_SpinUpdate\" },\n\t\t{ _class = \"C_OP_FromANewerEditor\" m_flStrength = 2.0 }," };
	const std::string base = WriteEdited( "fire.tfxs", {}, "base.tfxs" );
	const std::string ours = WriteEdited( "fire.tfxs", { addUnknown }, "ours.tfxs" );
	const std::string theirs = WriteEdited( "fire.tfxs", { s_Drag }, "theirs.tfxs" );
	std::vector<std::string> conflicts;
	const std::string merged = Merge( base, ours, theirs, &conflicts );
	EXPECT_NE( merged.find( "_class = \"C_OP_FromANewerEditor\"\n\t\t\tm_flStrength = 2.0" ), std::string::npos ) << merged;
	EXPECT_NE( merged.find( "m_fDrag = 0.98" ), std::string::npos );
	EXPECT_TRUE( conflicts.empty() );
}

TEST_F( ZolSampleFixture, MergeRefusesFilesThatDontLoadAndLeavesTheResultEmpty )
{
	const std::string base = WriteEdited( "fire.tfxs", {}, "base.tfxs" );
	const std::string broken = WriteText( "broken.tfxs", "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n{ _class = \n" );
	CZolDoc merged( false );
	std::vector<ZolMergeConflict_t> conflicts;
	CUtlString error;
	EXPECT_FALSE( MergeDefinitionFiles( base.c_str(), base.c_str(), broken.c_str(), &merged, &conflicts, &error ) );
	EXPECT_EQ( std::string( error.Get() ).rfind( broken + ": ", 0 ), 0u ) << error.Get();
	EXPECT_EQ( merged.GetRoot(), nullptr );
}
