// KV3 text codec against RapidJSON on the same tree: a generated library of particle
// system definitions, about 5 MB of text. Goals: KV3 parsing at least half as fast as
// RapidJSON's DOM parse, KV3 writing at least as fast as RapidJSON's writer.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/utlstring.h"

namespace
{
constexpr size_t TARGET_TEXT_SIZE = 5 * 1000 * 1000;

// A fixed-seed generator, so every run measures the same document.
class CDocumentRandom
{
public:
	uint32_t Next()
	{
		m_nState = m_nState * 6364136223846793005ull + 1442695040888963407ull;
		return uint32_t( m_nState >> 33 );
	}
	uint32_t Below( uint32_t nLimit ) { return Next() % nLimit; }
	float Float( float flMin, float flMax ) { return flMin + ( flMax - flMin ) * float( Next() & 0xffff ) / 65535.0f; }

private:
	uint64_t m_nState = 0x5eed;
};

const char *const s_OperatorClasses[] = {
	"C_OP_Decay", "C_OP_FadeOut", "C_OP_BasicMovement", "C_OP_InterpolateRadius", "C_OP_ColorInterpolate",
	"C_OP_RampScalarLinear", "C_OP_PositionLock", "C_OP_SetControlPointPositions", "C_OP_OscillateVector",
};
const char *const s_InitializerClasses[] = {
	"C_INIT_RandomLifeTime", "C_INIT_RandomRadius", "C_INIT_CreateWithinSphere", "C_INIT_RandomColor", "C_INIT_InitialVelocityNoise",
};

void AddVector( KeyValues3 *pParent, const char *pName, CDocumentRandom &random, int nCount, float flRange )
{
	KeyValues3 *pVector = pParent->SetMemberEmptyArray( pName );
	for ( int i = 0; i < nCount; ++i )
		pVector->ArrayAddToTail()->SetFloat( random.Float( -flRange, flRange ) );
}

void AddFloatInput( KeyValues3 *pParent, const char *pName, CDocumentRandom &random )
{
	KeyValues3 *pInput = pParent->SetMemberEmptyTable( pName );
	pInput->SetMemberString( "m_nType", random.Below( 3 ) ? "PF_TYPE_LITERAL" : "PF_TYPE_PARTICLE_AGE" );
	pInput->SetMemberFloat( "m_flLiteralValue", random.Float( 0.0f, 50.0f ) );
	pInput->SetMemberString( "m_nMapType", "PF_MAP_TYPE_DIRECT" );
	KeyValues3 *pCurve = pInput->SetMemberEmptyTable( "m_Curve" );
	KeyValues3 *pSpline = pCurve->SetMemberEmptyArray( "m_spline" );
	for ( int i = 0; i < 4; ++i )
	{
		KeyValues3 *pPoint = pSpline->ArrayAddToTail();
		pPoint->SetMemberFloat( "x", float( i ) / 3.0f );
		pPoint->SetMemberFloat( "y", random.Float( 0.0f, 1.0f ) );
		pPoint->SetMemberFloat( "m_flSlopeIncoming", random.Float( -2.0f, 2.0f ) );
		pPoint->SetMemberFloat( "m_flSlopeOutgoing", random.Float( -2.0f, 2.0f ) );
	}
	AddVector( pCurve, "m_vDomainMins", random, 2, 1.0f );
	AddVector( pCurve, "m_vDomainMaxs", random, 2, 1.0f );
	pInput->SetMemberBool( "m_bUseBoundsCenter", random.Below( 2 ) != 0 );
}

void AddFunction( KeyValues3 *pFunction, const char *pClass, CDocumentRandom &random )
{
	pFunction->SetMemberString( "_class", pClass );
	pFunction->SetMemberFloat( "m_flOpStrength", 1.0f );
	pFunction->SetMemberInt( "m_nOpEndCapState", -1 );
	pFunction->SetMemberBool( "m_bDisableOperator", random.Below( 10 ) == 0 );
	pFunction->SetMemberString( "m_Notes", random.Below( 4 ) ? "" : "tuned for the muzzle flash, keep in sync with the impact effect" );
	pFunction->SetMemberFloat( "m_flRadius", random.Float( 0.0f, 100.0f ) );
	AddVector( pFunction, "m_vecOffset", random, 3, 64.0f );
	pFunction->SetMemberInt( "m_nFieldOutput", int( random.Below( 24 ) ) );
	AddFloatInput( pFunction, "m_flInputValue", random );
	if ( random.Below( 3 ) == 0 )
	{
		KeyValues3 *pColor = pFunction->SetMemberEmptyArray( "m_ColorFade" );
		for ( int i = 0; i < 4; ++i )
			pColor->ArrayAddToTail()->SetInt( int( random.Below( 256 ) ) );
	}
}

void AddSystem( KeyValues3 *pSystem, int nIndex, CDocumentRandom &random )
{
	pSystem->SetMemberString( "_class", "CParticleSystemDefinition" );
	pSystem->SetMemberInt( "m_nBehaviorVersion", 12 );
	pSystem->SetMemberInt( "m_nMaxParticles", int( 16 + random.Below( 512 ) ) );
	pSystem->SetMemberFloat( "m_flConstantRadius", random.Float( 1.0f, 40.0f ) );
	KeyValues3 *pColor = pSystem->SetMemberEmptyArray( "m_ConstantColor" );
	for ( int i = 0; i < 4; ++i )
		pColor->ArrayAddToTail()->SetInt( int( random.Below( 256 ) ) );
	KeyValues3 *pInitializers = pSystem->SetMemberEmptyArray( "m_Initializers" );
	for ( uint32_t i = 0, n = 3 + random.Below( 4 ); i < n; ++i )
		AddFunction( pInitializers->ArrayAddToTail(), s_InitializerClasses[ random.Below( 5 ) ], random );
	KeyValues3 *pOperators = pSystem->SetMemberEmptyArray( "m_Operators" );
	for ( uint32_t i = 0, n = 4 + random.Below( 6 ); i < n; ++i )
		AddFunction( pOperators->ArrayAddToTail(), s_OperatorClasses[ random.Below( 9 ) ], random );
	KeyValues3 *pRenderer = pSystem->SetMemberEmptyArray( "m_Renderers" )->ArrayAddToTail();
	pRenderer->SetMemberString( "_class", "C_OP_RenderSprites" );
	pRenderer->SetMemberString( "m_hTexture", ( "materials/particle/generated/sprite_" + std::to_string( nIndex ) + ".timg" ).c_str(),
	                            KV3_SUBTYPE_STRING_RESOURCE_NAME );
	KeyValues3 *pChildren = pSystem->SetMemberEmptyArray( "m_Children" );
	for ( uint32_t i = 0, n = random.Below( 3 ); i < n; ++i )
	{
		KeyValues3 *pChild = pChildren->ArrayAddToTail();
		pChild->SetMemberString( "m_ChildRef", ( "particles/generated/child_" + std::to_string( random.Below( 1000 ) ) + ".tfxs" ).c_str(),
		                         KV3_SUBTYPE_STRING_RESOURCE_NAME );
		pChild->SetMemberFloat( "m_flDelay", random.Float( 0.0f, 2.0f ) );
	}
}

void AddJson( const KeyValues3 &value, rapidjson::Value *pOut, rapidjson::Document::AllocatorType &allocator )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL: pOut->SetBool( value.GetBool() ); break;
	case KV3_TYPE_INT: pOut->SetInt64( value.GetInt64() ); break;
	case KV3_TYPE_UINT: pOut->SetUint64( value.GetUInt64() ); break;
	case KV3_TYPE_DOUBLE: pOut->SetDouble( value.GetDouble() ); break;
	case KV3_TYPE_STRING: pOut->SetString( value.GetString(), rapidjson::SizeType( value.GetStringLength() ), allocator ); break;
	case KV3_TYPE_ARRAY:
		pOut->SetArray();
		for ( int i = 0; i < value.GetArrayElementCount(); ++i )
		{
			rapidjson::Value element;
			AddJson( *value.GetArrayElement( i ), &element, allocator );
			pOut->PushBack( element, allocator );
		}
		break;
	case KV3_TYPE_TABLE:
		pOut->SetObject();
		for ( int i = 0; i < value.GetMemberCount(); ++i )
		{
			rapidjson::Value name( value.GetMemberName( i ), allocator );
			rapidjson::Value member;
			AddJson( *value.GetMember( i ), &member, allocator );
			pOut->AddMember( name, member, allocator );
		}
		break;
	default: pOut->SetNull(); break;
	}
}

struct Corpus_t
{
	KeyValues3 m_Tree;
	std::string m_KV3Text;
	rapidjson::Document m_Json;
	std::string m_JsonText;
};

const Corpus_t &GetCorpus()
{
	static const Corpus_t *s_pCorpus = [] {
		auto *pCorpus = new Corpus_t;
		CDocumentRandom random;
		pCorpus->m_Tree.SetMemberString( "_class", "CParticleSystemLibrary" );
		KeyValues3 *pSystems = pCorpus->m_Tree.SetMemberEmptyArray( "m_Systems" );
		CUtlString text;
		for ( int nSystem = 0; text.Length() < TARGET_TEXT_SIZE; )
		{
			for ( int i = 0; i < 50; ++i, ++nSystem )
				AddSystem( pSystems->ArrayAddToTail(), nSystem, random );
			SaveKV3ToString( &pCorpus->m_Tree, &text, KV3_FORMAT_GENERIC );
		}
		pCorpus->m_KV3Text = text.Get();

		AddJson( pCorpus->m_Tree, &pCorpus->m_Json, pCorpus->m_Json.GetAllocator() );
		rapidjson::StringBuffer json;
		rapidjson::Writer<rapidjson::StringBuffer> writer( json );
		pCorpus->m_Json.Accept( writer );
		pCorpus->m_JsonText.assign( json.GetString(), json.GetSize() );
		return pCorpus;
	}();
	return *s_pCorpus;
}

void BM_KV3TextParse( benchmark::State &state )
{
	const Corpus_t &corpus = GetCorpus();
	for ( auto _ : state )
	{
		KeyValues3 kv;
		CUtlString error;
		if ( !LoadKV3FromText( &kv, &error, corpus.m_KV3Text.data(), corpus.m_KV3Text.size(), KV3_FORMAT_GENERIC ) )
			state.SkipWithError( error.Get() );
		benchmark::DoNotOptimize( kv );
	}
	state.SetBytesProcessed( int64_t( state.iterations() ) * int64_t( corpus.m_KV3Text.size() ) );
}
BENCHMARK( BM_KV3TextParse )->Unit( benchmark::kMillisecond );

void BM_RapidJsonDomParse( benchmark::State &state )
{
	const Corpus_t &corpus = GetCorpus();
	for ( auto _ : state )
	{
		rapidjson::Document document;
		document.Parse( corpus.m_JsonText.c_str() );
		if ( document.HasParseError() )
			state.SkipWithError( "RapidJSON refused the document" );
		benchmark::DoNotOptimize( document );
	}
	state.SetBytesProcessed( int64_t( state.iterations() ) * int64_t( corpus.m_JsonText.size() ) );
}
BENCHMARK( BM_RapidJsonDomParse )->Unit( benchmark::kMillisecond );

void BM_KV3TextWrite( benchmark::State &state )
{
	const Corpus_t &corpus = GetCorpus();
	CUtlBuffer buffer;
	for ( auto _ : state )
	{
		buffer.Clear();
		CUtlString error;
		if ( !SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_GENERIC, &corpus.m_Tree, &error, &buffer ) )
			state.SkipWithError( error.Get() );
		benchmark::DoNotOptimize( buffer.Base() );
	}
	state.SetBytesProcessed( int64_t( state.iterations() ) * int64_t( buffer.TellPut() ) );
}
BENCHMARK( BM_KV3TextWrite )->Unit( benchmark::kMillisecond );

void BM_RapidJsonWrite( benchmark::State &state )
{
	const Corpus_t &corpus = GetCorpus();
	rapidjson::StringBuffer json;
	for ( auto _ : state )
	{
		json.Clear();
		rapidjson::Writer<rapidjson::StringBuffer> writer( json );
		corpus.m_Json.Accept( writer );
		benchmark::DoNotOptimize( json.GetString() );
	}
	state.SetBytesProcessed( int64_t( state.iterations() ) * int64_t( json.GetSize() ) );
}
BENCHMARK( BM_RapidJsonWrite )->Unit( benchmark::kMillisecond );

// Undo takes whole snapshots of a document, so deep copies are on the editing path too.
void BM_KV3DeepCopy( benchmark::State &state )
{
	const Corpus_t &corpus = GetCorpus();
	for ( auto _ : state )
	{
		KeyValues3 copy( corpus.m_Tree );
		benchmark::DoNotOptimize( copy );
	}
	state.SetBytesProcessed( int64_t( state.iterations() ) * int64_t( corpus.m_KV3Text.size() ) );
}
BENCHMARK( BM_KV3DeepCopy )->Unit( benchmark::kMillisecond );
} // namespace
