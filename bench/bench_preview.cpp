// The live preview's budget. Goals:
// - an edit reaches the running preview (save to a buffer, compile, the node's restart
//   and one step) in under 16 ms on a definition of 300 functions of real classes;
// - 100,000 live particles (the effect of the particle benchmarks, alpha-blended sprites,
//   so sorted every frame): the scene's step (manager, node) plus filling the instance
//   buffers of the frame's draw list in under 8 ms on one core;
// - the software renderer's paint of that frame is a figure, not a goal.

#include <benchmark/benchmark.h>

#include <QGuiApplication>

#include <cstdio>
#include <memory>
#include <string>

#include "core/console/consoleregistry.h"
#include "core/console/convar.h"
#include "core/containers/utlbuffer.h"
#include "core/host/hostservices.h"
#include "core/host/resourcesystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/particlesystemresource.h"
#include "core/particles/sim/iparticlecollection.h"
#include "particleslib/particleinputclasses.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/toolsceneparticlesystem.h"
#include "tools/toolscene/toolsceneview.h"
#include "tools/toolscene/widgets/offscreentoolscenewindow.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"
#include "benchparticleeffect.h"

namespace
{
constexpr float FRAME = 1.0f / 60.0f;
const char *const s_Header = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n";

// Everyday functions of the catalogue with real values; a definition of nCount functions
// repeats them, half initializers and half operators, with one emitter and one renderer.
std::string LargeDefinitionText( int nCount )
{
	static const char *const s_Initializers[] = {
		"{ _class = \"C_INIT_CreateWithinSphere\" m_fRadiusMax = 8.0 m_fSpeedMin = 5.0 m_fSpeedMax = 20.0 }",
		"{ _class = \"C_INIT_RandomLifeTime\" m_fLifetimeMin = 0.8 m_fLifetimeMax = 1.2 }",
		"{ _class = \"C_INIT_RandomRadius\" m_flRadiusMin = 2.0 m_flRadiusMax = 5.0 }",
		"{ _class = \"C_INIT_RandomColor\" m_ColorMin = [ 255, 120, 40, 255 ] m_ColorMax = [ 255, 200, 90, 255 ] }",
		"{ _class = \"C_INIT_RandomRotation\" }",
		"{ _class = \"C_INIT_RandomAlpha\" m_nAlphaMin = 128 m_nAlphaMax = 255 }",
		"{ _class = \"C_INIT_InitFloat\" m_nOutputField = 1 m_InputValue = { m_nType = \"PF_TYPE_RANDOM_UNIFORM\" m_flRandomMin = 0.6 m_flRandomMax = 1.2 } }",
		"{ _class = \"C_INIT_InitialVelocityNoise\" m_vecOutputMin = [ -8.0, -8.0, 40.0 ] m_vecOutputMax = [ 8.0, 8.0, 70.0 ] }",
	};
	static const char *const s_Operators[] = {
		"{ _class = \"C_OP_BasicMovement\" m_Gravity = [ 0.0, 0.0, -50.0 ] m_fDrag = 0.05 }",
		"{ _class = \"C_OP_Decay\" }",
		"{ _class = \"C_OP_FadeInSimple\" m_flFadeInTime = 0.1 }",
		"{ _class = \"C_OP_FadeOutSimple\" m_flFadeOutTime = 0.4 }",
		"{ _class = \"C_OP_InterpolateRadius\" m_flStartScale = 1.0 m_flEndScale = 0.3 }",
		"{ _class = \"C_OP_ColorInterpolate\" m_ColorFade = [ 120, 20, 0, 255 ] m_flFadeStartTime = 0.2 }",
		"{ _class = \"C_OP_SpinUpdate\" }",
		"{ _class = \"C_OP_OscillateScalar\" m_RateMin = -2.0 m_RateMax = 2.0 m_FrequencyMin = 3.0 m_FrequencyMax = 6.0 }",
	};
	std::string initializers, operators;
	for ( int i = 0; i + 2 < nCount; ++i )
	{
		if ( i % 2 == 0 )
			initializers += std::string( s_Initializers[ ( i / 2 ) % 8 ] ) + ",\n";
		else
			operators += std::string( s_Operators[ ( i / 2 ) % 8 ] ) + ",\n";
	}
	return std::string( s_Header ) + "{ _class = \"CParticleSystemDefinition\"\n m_nBehaviorVersion = 12\n m_nMaxParticles = 400\n" +
		   " m_Emitters = [ { _class = \"C_OP_ContinuousEmitter\" m_flEmitRate = 200.0 } ]\n m_Initializers = [\n" + initializers + "]\n m_Operators = [\n" +
		   operators + "]\n m_Renderers = [ { _class = \"C_OP_RenderSprites\" } ]\n}\n";
}

ToolSceneView_t BenchView( int nWidth, int nHeight )
{
	ToolSceneView_t view;
	view.LookAt( Vector( -250.0f, 60.0f, 80.0f ), Vector( 0.0f, 0.0f, 0.0f ) );
	view.m_nWidth = nWidth;
	view.m_nHeight = nHeight;
	view.Compute();
	return view;
}

// A scene that runs the particle benchmarks' effect at 100,000 live particles on this
// thread alone, warmed until births and deaths balance.
struct WarmScene_t
{
	WarmScene_t()
	{
		SetParticleSystemMgr( HostParticleSystemMgr() );
		if ( ConVar *pThreaded = ConsoleRegistry().FindVar( "r_threaded_particles" ) )
			pThreaded->SetValue( 0 );
		m_pSystem = std::make_unique<CToolSceneParticleSystem>( &m_Scene );
		m_pSystem->SetDefinition( CompileEffect( 100000 ) );
		for ( int i = 0; i < 90; ++i )
			m_Scene.Update( FRAME, 1.0f );
	}
	CToolScene m_Scene;
	std::unique_ptr<CToolSceneParticleSystem> m_pSystem;
};

void BM_PreviewEditToPreview( benchmark::State &state )
{
	RegisterParticleInputClasses();
	SetParticleSystemMgr( HostParticleSystemMgr() );
	CResourceSystem resources;
	SetResourceSystem( &resources );
	std::string text = LargeDefinitionText( 300 );
	CUtlBuffer source( text.data(), text.size() );
	CZolDoc doc( false );
	CUtlString error;
	if ( !doc.LoadFromBuffer( &source, "bench", &error ) )
	{
		state.SkipWithError( error.Get() );
		SetResourceSystem( nullptr );
		return;
	}
	// What the session does on the frame after an edit: save to memory, compile, publish.
	CParticleAssetCompiler compiler;
	CResourceBinding *pBinding = resources.FindOrCreateBinding( "particles/bench_edit.tfxs" );
	auto publish = [ & ]() {
		CUtlBuffer buffer;
		std::unique_ptr<CResourceData> pData;
		CUtlString strError;
		if ( !doc.SaveToBuffer( &buffer, &strError ) || !compiler.Compile( buffer, "particles/bench_edit.tfxs", &pData, &strError ) )
			return false;
		resources.ReplaceResourceData( pBinding, std::shared_ptr<const CResourceData>( std::move( pData ) ) );
		return true;
	};
	CToolScene scene;
	CToolSceneParticleSystem system( &scene );
	if ( !publish() )
	{
		state.SkipWithError( "the definition doesn't compile" );
		SetResourceSystem( nullptr );
		return;
	}
	system.SetDefinitionResource( CResourceHandle( pBinding ) );
	for ( int i = 0; i < 30; ++i )
		scene.Update( FRAME, 1.0f );
	CBaseZolNode *pEmitter = doc.GetRoot()->GetNode( PARTICLE_FUNCTION_EMITTER, 0 );
	int nFunctions = 0;
	for ( int nList = 0; nList < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nList )
		nFunctions += doc.GetRoot()->GetNodeCount( ParticleFunctionType_t( nList ) );
	int nEdit = 0;
	const int nRestartsBefore = system.GetRestartCount();
	for ( auto _ : state )
	{
		// The property edit, as an editor row writes it: a new emission rate.
		doc.BeginEdit( "Emit rate", false );
		pEmitter->GetKV3ForModify()->FindOrCreateMember( "m_flEmitRate" )->SetDouble( 150.0 + double( ++nEdit % 100 ) );
		doc.NoteNodeModified( pEmitter );
		if ( !publish() )
		{
			state.SkipWithError( "the edited definition doesn't compile" );
			break;
		}
		scene.Update( FRAME, 1.0f );
		doc.FlushModifiedNodes();
	}
	state.counters[ "functions" ] = double( nFunctions );
	state.counters[ "restarts" ] = double( system.GetRestartCount() - nRestartsBefore );
	system.SetDefinitionResource( CResourceHandle() );
	SetResourceSystem( nullptr );
}
BENCHMARK( BM_PreviewEditToPreview )->Unit( benchmark::kMillisecond )->UseRealTime();

void BM_PreviewStepAndFill100k( benchmark::State &state )
{
	WarmScene_t warm;
	CToolSceneDrawList drawList;
	ToolSceneView_t view = BenchView( 1280, 720 );
	for ( auto _ : state )
	{
		warm.m_Scene.Update( FRAME, 1.0f );
		warm.m_Scene.BuildDrawList( drawList, view );
		benchmark::DoNotOptimize( drawList.GetSprites().data() );
	}
	state.counters[ "live" ] = double( warm.m_pSystem->GetCollection()->GetActiveParticleCount( false ) );
	state.counters[ "sprites" ] = double( drawList.GetSprites().size() );
}
BENCHMARK( BM_PreviewStepAndFill100k )->Unit( benchmark::kMillisecond )->UseRealTime();

// The fill alone: instances of 100,000 sprites, sorted far to near.
void BM_PreviewFill100k( benchmark::State &state )
{
	WarmScene_t warm;
	CToolSceneDrawList drawList;
	ToolSceneView_t view = BenchView( 1280, 720 );
	for ( auto _ : state )
	{
		warm.m_Scene.BuildDrawList( drawList, view );
		benchmark::DoNotOptimize( drawList.GetSprites().data() );
	}
}
BENCHMARK( BM_PreviewFill100k )->Unit( benchmark::kMillisecond )->UseRealTime();

// That frame painted by Mesa's software renderer (llvmpipe) at 1280x720, streaming and
// read-back included. Needs a display (run under xvfb-run); skipped without one.
void BM_PreviewSoftwarePaint100k( benchmark::State &state )
{
	static int s_nArgc = 1;
	static char s_szName[] = "zol_bench";
	static char *s_pArgv[] = { s_szName, nullptr };
	if ( !QGuiApplication::instance() )
		new QGuiApplication( s_nArgc, s_pArgv );
	CHostServices services;
	CUtlString error;
	services.Init( ZOL_SOURCE_DIR "/content/game", ZOL_SOURCE_DIR "/content/content", &error );
	COffscreenToolSceneWindow window;
	if ( !window.Create( 1280, 720, &error ) )
	{
		state.SkipWithError( error.Get() );
		return;
	}
	WarmScene_t warm;
	CToolSceneDrawList drawList;
	ToolSceneView_t view = BenchView( 1280, 720 );
	warm.m_Scene.BuildDrawList( drawList, view );
	for ( auto _ : state )
	{
		QImage image = window.Render( drawList, view );
		benchmark::DoNotOptimize( image.constBits() );
	}
	state.counters[ "sprites" ] = double( drawList.GetSprites().size() );
}
BENCHMARK( BM_PreviewSoftwarePaint100k )->Unit( benchmark::kMillisecond )->UseRealTime()->Iterations( 10 );
} // namespace
