// The preview model's skin, body parts and sequence clock.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/toolscenemodel.h"
#include "tools/toolscene/toolsceneview.h"

namespace
{
ParticleModelPtr_t MakeModel()
{
	const std::string text = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n"
							 "{ m_Vertices = [ [ 0, 0, 0 ], [ 1, 0, 0 ], [ 0, 1, 0 ], [ 0, 0, 1 ] ] m_Triangles = [ 0, 1, 2, 0, 1, 3 ]\n"
							 "  m_MaterialGroups = [ { m_name = \"default\" m_vColor = [ 255, 0, 0 ] }, { m_name = \"blue\" m_vColor = [ 0, 0, 255 ] } ]\n"
							 "  m_BodyGroups = [ { m_name = \"side\" m_Choices = [ { m_name = \"on\" m_nFirstTriangle = 1 m_nTriangleCount = 1 }, { m_name = \"off\" } ] } ]\n"
							 "  m_Sequences = [ { m_name = \"spin\" m_nFrameCount = 10 m_flFps = 10 }, { m_name = \"once\" m_nFrameCount = 5 m_flFps = 10 m_bLooping = false } ] }\n";
	auto pModel = std::make_shared<CParticleModel>();
	CUtlString error;
	EXPECT_TRUE( pModel->LoadFromText( text.data(), text.size(), "models/test.tmsh", &error ) ) << error.Get();
	return pModel;
}
} // namespace

TEST( ToolSceneModel, SkinsColourBodyPartsHideAndSequencesKeepTheirClock )
{
	CToolScene scene;
	CToolSceneModel model( &scene );
	model.SetModel( MakeModel() );
	float color[ 4 ];
	model.SetMaterialGroup( "BLUE" );
	model.GetColor( color );
	EXPECT_FLOAT_EQ( color[ 2 ], 1.0f );
	EXPECT_FLOAT_EQ( color[ 0 ], 0.0f );
	model.SetMaterialGroup( "gold" );
	model.GetColor( color );
	EXPECT_FLOAT_EQ( color[ 0 ], 0.62f ) << "a skin the model lacks keeps the plain colour";

	EXPECT_EQ( model.GetShownModel()->GetTriangleCount(), 2 );
	model.SetBodyGroups( { { CUtlString( "Side" ), 1 } } );
	EXPECT_EQ( model.GetShownModel()->GetTriangleCount(), 1 );
	CToolSceneDrawList drawList;
	model.AddToDrawList( drawList, ToolSceneView_t() );
	ASSERT_EQ( drawList.GetModelBatches().size(), 1u );
	EXPECT_EQ( drawList.GetModelBatches()[ 0 ].m_pModel, model.GetShownModel() );

	EXPECT_EQ( model.GetSequenceFrame(), -1 );
	model.SetSequence( "spin" );
	model.Update( 0.35f );
	EXPECT_EQ( model.GetSequenceFrame(), 3 );
	model.Update( 1.0f );
	EXPECT_EQ( model.GetSequenceFrame(), 3 ) << "a loop comes round";
	model.SetPlaybackSpeed( 2.0f );
	model.SetSequence( "once" );
	model.SetLooping( false );
	model.Update( 0.1f );
	EXPECT_EQ( model.GetSequenceFrame(), 2 );
	model.Update( 5.0f );
	EXPECT_EQ( model.GetSequenceFrame(), 4 );
	EXPECT_TRUE( model.IsSequenceFinished() );
	model.RestartSequence();
	EXPECT_EQ( model.GetSequenceFrame(), 0 );
}
