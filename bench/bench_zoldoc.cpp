// Snapshot undo on a large definition: every edit copies the whole document, every undo
// copies it twice more (the redo snapshot and the restore). Goal: one edit with its
// snapshot, and one undo, each under 2 ms on a definition of 300 functions.

#include <benchmark/benchmark.h>

#include <cstdio>

#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
constexpr int FUNCTION_COUNT = 300;

void AddFloatInput( KeyValues3 *pFunction, const char *pName, float flMin, float flMax )
{
	KeyValues3 *pInput = pFunction->SetMemberEmptyTable( pName );
	pInput->SetMemberString( "m_nType", "PF_TYPE_RANDOM_UNIFORM" );
	pInput->SetMemberFloat( "m_flRandomMin", flMin );
	pInput->SetMemberFloat( "m_flRandomMax", flMax );
	pInput->SetMemberString( "m_nRandomMode", "PF_RANDOM_MODE_CONSTANT" );
	pInput->SetMemberString( "m_nMapType", "PF_MAP_TYPE_DIRECT" );
	pInput->SetMemberFloat( "m_flInput0", 0.0f );
	pInput->SetMemberFloat( "m_flInput1", 1.0f );
}

void AddVector( KeyValues3 *pTable, const char *pName, float x, float y, float z )
{
	KeyValues3 *pArray = pTable->SetMemberEmptyArray( pName );
	pArray->ArrayAddToTail()->SetFloat( x );
	pArray->ArrayAddToTail()->SetFloat( y );
	pArray->ArrayAddToTail()->SetFloat( z );
}

void AddVectorInput( KeyValues3 *pFunction, const char *pName )
{
	KeyValues3 *pInput = pFunction->SetMemberEmptyTable( pName );
	pInput->SetMemberString( "m_nType", "PVEC_TYPE_RANDOM_UNIFORM" );
	AddVector( pInput, "m_vRandomMin", -10.0f, -10.0f, 0.0f );
	AddVector( pInput, "m_vRandomMax", 10.0f, 10.0f, 20.0f );
	pInput->SetMemberInt( "m_nControlPoint", 0 );
}

// A definition as the editor sees one: functions spread over the seven function lists,
// each a table with its class, a dozen members and a few nested inputs.
KeyValues3 MakeDefinition()
{
	static const char *const s_ListKeys[] = { "m_PreEmissionOperators", "m_Emitters", "m_Initializers", "m_Operators",
		"m_ForceGenerators", "m_Constraints", "m_Renderers" };
	static const int s_ListShares[] = { 10, 20, 90, 120, 20, 20, 20 };

	KeyValues3 definition;
	definition.SetMemberString( "_class", "CParticleSystemDefinition" );
	definition.SetMemberInt( "m_nBehaviorVersion", 12 );
	definition.SetMemberInt( "m_nMaxParticles", 500 );
	definition.SetMemberString( "m_NamedValueDomain", "" );
	int nFunction = 0;
	for ( int nList = 0; nList < 7; ++nList )
	{
		KeyValues3 *pList = definition.SetMemberEmptyArray( s_ListKeys[ nList ] );
		for ( int i = 0; i < s_ListShares[ nList ]; ++i, ++nFunction )
		{
			KeyValues3 *pFunction = pList->ArrayAddToTail();
			char className[ 64 ];
			snprintf( className, sizeof( className ), "C_OP_BenchFunction%d", nFunction % 40 );
			pFunction->SetMemberString( "_class", className );
			pFunction->SetMemberInt( "m_nOutputField", nFunction % 20 );
			pFunction->SetMemberFloat( "m_flOpStartFadeInTime", 0.0f );
			pFunction->SetMemberFloat( "m_flOpEndFadeInTime", 0.5f );
			pFunction->SetMemberFloat( "m_flOpStrength", 1.0f );
			pFunction->SetMemberInt( "m_nOpEndCapState", -1 );
			pFunction->SetMemberBool( "m_bDisableOperator", false );
			pFunction->SetMemberString( "m_nSetMethod", "PARTICLE_SET_REPLACE_VALUE" );
			pFunction->SetMemberString( "m_Notes", "tuned for the preview scene" );
			pFunction->SetMemberInt( "m_nControlPointNumber", nFunction % 4 );
			pFunction->SetMemberDouble( "m_flScale", 1.25 );
			AddVector( pFunction, "m_vecOffset", 0.0f, 0.0f, 16.0f );
			pFunction->SetMemberBool( "m_bUseWorldSpace", nFunction % 2 == 0 );
			AddFloatInput( pFunction, "m_InputValue", 1.0f, 4.0f );
			AddFloatInput( pFunction, "m_flLerpTime", 0.0f, 1.0f );
			AddVectorInput( pFunction, "m_vecDirection" );
		}
	}
	return definition;
}

struct BenchDocument_t
{
	BenchDocument_t()
	{
		m_Doc.Reset();
		KeyValues3 definition = MakeDefinition();
		m_Doc.GetRoot()->LoadRootFromKV3( &definition );
	}
	CBaseZolNode *Function( int i ) const { return m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, i % 120 ); }

	CZolDoc m_Doc;
};
} // namespace

// One property edit: the unit opens, the document snapshots itself, the value is written.
// The history runs at its limit, so each edit also drops the oldest snapshot.
static void BM_ZolDocEditWithSnapshot( benchmark::State &state )
{
	BenchDocument_t bench;
	int nEdit = 0;
	for ( auto _ : state )
	{
		bench.m_Doc.BeginEdit( "Edit Strength", true );
		bench.Function( nEdit )->GetKV3ForModify()->SetMemberFloat( "m_flOpStrength", float( nEdit ) );
		++nEdit;
	}
	state.counters[ "functions" ] = FUNCTION_COUNT;
}
BENCHMARK( BM_ZolDocEditWithSnapshot )->Unit( benchmark::kMillisecond );

// One undo: the redo snapshot is taken and the old state rebuilt with all nodes anew.
static void BM_ZolDocUndo( benchmark::State &state )
{
	BenchDocument_t bench;
	int nEdit = 0;
	for ( auto _ : state )
	{
		state.PauseTiming();
		bench.m_Doc.BeginEdit( "Edit Strength", true );
		bench.Function( nEdit )->GetKV3ForModify()->SetMemberFloat( "m_flOpStrength", float( nEdit ) );
		++nEdit;
		state.ResumeTiming();

		bench.m_Doc.Undo();
	}
	state.counters[ "functions" ] = FUNCTION_COUNT;
}
BENCHMARK( BM_ZolDocUndo )->Unit( benchmark::kMillisecond );
