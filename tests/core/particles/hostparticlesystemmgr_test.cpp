#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/particles/particleattributes.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"

namespace
{
const IParticleSystemMgr &Mgr()
{
	return *HostParticleSystemMgr();
}

ParticleFunctionType_t ListType( int nType )
{
	return static_cast<ParticleFunctionType_t>( nType );
}

// The list a class is offered in, or -1.
int FindListOf( const char *pszClass, int *pIndex = nullptr )
{
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		for ( int i = 0; i < Mgr().GetFunctionCount( ListType( nType ) ); ++i )
		{
			if ( std::string( Mgr().GetFunctionClassName( ListType( nType ), i ) ) == pszClass )
			{
				if ( pIndex )
					*pIndex = i;
				return nType;
			}
		}
	}
	return -1;
}

KeyValues3 FunctionTable( const char *pszClass )
{
	KeyValues3 table;
	table.SetToEmptyTable();
	table.SetMemberString( "_class", pszClass );
	return table;
}

ParticleFunctionInfo_t InfoOf( const KeyValues3 &table )
{
	ParticleFunctionInfo_t info;
	Mgr().GetFunctionInfo( &table, &info );
	return info;
}
} // namespace

TEST( HostParticleSystemMgr, IsOneManagerForTheProcessWithTheClassesRegistered )
{
	IParticleSystemMgr *pFirst = HostParticleSystemMgr();
	EXPECT_EQ( HostParticleSystemMgr(), pFirst );
	EXPECT_NE( ParticleTypeScope()->FindDeclaredClass( "C_INIT_InitFloat" ), nullptr );
	// Connecting it is what the document and the catalogue see.
	IParticleSystemMgr *pBefore = GetParticleSystemMgr();
	SetParticleSystemMgr( pFirst );
	EXPECT_EQ( GetParticleSystemMgr(), pFirst );
	SetParticleSystemMgr( pBefore );
}

TEST( HostParticleSystemMgr, EachListOffersTheClassesOfItsFamilyOnceAndNothingElse )
{
	struct Expected_t
	{
		const char *m_pszClass;
		int m_nType;
	};
	// Classes that real effects and the catalogue's presets need, in the list they belong to.
	const Expected_t expected[] = {
		{ "C_OP_SetSingleControlPointPosition", 0 },
		{ "C_OP_ContinuousEmitter", 1 },
		{ "C_OP_InstantaneousEmitter", 1 },
		{ "C_INIT_CreateWithinSphere", 2 },
		{ "C_INIT_CreateWithinBox", 2 },
		{ "C_INIT_RingWave", 2 },
		{ "C_INIT_PositionOffset", 2 },
		{ "C_INIT_VelocityRandom", 2 },
		{ "C_INIT_RandomLifeTime", 2 },
		{ "C_INIT_RandomRadius", 2 },
		{ "C_INIT_RandomColor", 2 },
		{ "C_INIT_RandomAlpha", 2 },
		{ "C_INIT_RandomRotation", 2 },
		{ "C_INIT_RandomYaw", 2 },
		{ "C_INIT_InitFloat", 2 },
		{ "C_INIT_InitVec", 2 },
		{ "C_INIT_RemapTransformToVector", 2 },
		{ "C_INIT_RemapInitialDirectionToTransformToVector", 2 },
		{ "C_INIT_RemapInitialTransformDirectionToRotation", 2 },
		{ "C_INIT_RemapTransformOrientationToRotations", 2 },
		{ "C_OP_BasicMovement", 3 },
		{ "C_OP_Decay", 3 },
		{ "C_OP_FadeInSimple", 3 },
		{ "C_OP_FadeOutSimple", 3 },
		{ "C_OP_ColorInterpolate", 3 },
		{ "C_OP_InterpolateRadius", 3 },
		{ "C_OP_SpinUpdate", 3 },
		{ "C_OP_Noise", 3 },
		{ "C_OP_OscillateScalar", 3 },
		{ "C_OP_LerpScalar", 3 },
		{ "C_OP_SetFloat", 3 },
		{ "C_OP_SetVec", 3 },
		{ "C_OP_AttractToControlPoint", 4 },
		{ "C_OP_TwistAroundAxis", 4 },
		{ "C_OP_TurbulenceForce", 4 },
		{ "C_OP_ConstrainDistance", 5 },
		{ "C_OP_CollideWithPlane", 5 },
		{ "C_OP_PlanarConstraint", 5 },
		{ "C_OP_RenderSprites", 6 },
		{ "C_OP_RenderTrails", 6 },
		{ "C_OP_RenderModels", 6 },
	};
	for ( const Expected_t &entry : expected )
		EXPECT_EQ( FindListOf( entry.m_pszClass ), entry.m_nType ) << entry.m_pszClass;

	// Every concrete function class of the scope is in exactly one list, and the bases in none.
	const CSchemaSystemTypeScope *pScope = ParticleTypeScope();
	const CSchemaClassInfo *pFunctionBase = pScope->FindDeclaredClass( "CParticleFunction" );
	std::set<std::string> listed;
	int nTotal = 0;
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		EXPECT_GT( Mgr().GetFunctionCount( ListType( nType ) ), 0 ) << "list " << nType;
		for ( int i = 0; i < Mgr().GetFunctionCount( ListType( nType ) ); ++i )
		{
			const char *pszName = Mgr().GetFunctionClassName( ListType( nType ), i );
			EXPECT_TRUE( listed.insert( pszName ).second ) << pszName << " is offered twice";
			EXPECT_STREQ( Mgr().GetFunctionSchemaClass( ListType( nType ), i ), pszName );
			++nTotal;
		}
	}
	int nFunctionClasses = 0;
	for ( int i = 0; i < pScope->GetClassCount(); ++i )
	{
		const CSchemaClassInfo *pClass = pScope->GetClass( i );
		if ( pClass->IsA( pFunctionBase ) && pClass->CanCreate() && std::string( pClass->GetName() ).rfind( "CParticleFunction", 0 ) != 0 )
		{
			++nFunctionClasses;
			EXPECT_TRUE( listed.count( pClass->GetName() ) ) << pClass->GetName() << " is in no list";
		}
	}
	EXPECT_EQ( nTotal, nFunctionClasses );
	EXPECT_GE( nTotal, 35 );
	EXPECT_EQ( listed.count( "CParticleFunctionOperator" ), 0u );
	EXPECT_EQ( listed.count( "CParticleSystemDefinition" ), 0u );

	// Lists beyond the function lists, and indexes out of range, have nothing.
	EXPECT_EQ( Mgr().GetFunctionCount( PARTICLE_FUNCTION_CHILDREN ), 0 );
	EXPECT_EQ( Mgr().GetFunctionCount( PARTICLE_FUNCTION_ROOT ), 0 );
	EXPECT_EQ( Mgr().GetFunctionClassName( PARTICLE_FUNCTION_EMITTER, -1 ), nullptr );
	EXPECT_EQ( Mgr().GetFunctionFriendlyName( PARTICLE_FUNCTION_EMITTER, Mgr().GetFunctionCount( PARTICLE_FUNCTION_EMITTER ) ), nullptr );
}

TEST( HostParticleSystemMgr, ListOrderIsStableAcrossManagers )
{
	CHostParticleSystemMgr other;
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		ASSERT_EQ( other.GetFunctionCount( ListType( nType ) ), Mgr().GetFunctionCount( ListType( nType ) ) );
		for ( int i = 0; i < other.GetFunctionCount( ListType( nType ) ); ++i )
			EXPECT_STREQ( other.GetFunctionClassName( ListType( nType ), i ), Mgr().GetFunctionClassName( ListType( nType ), i ) );
	}
}

TEST( HostParticleSystemMgr, FriendlyNamesAreReadableAndDistinctWithinAList )
{
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		std::set<std::string> names;
		for ( int i = 0; i < Mgr().GetFunctionCount( ListType( nType ) ); ++i )
		{
			const char *pszFriendly = Mgr().GetFunctionFriendlyName( ListType( nType ), i );
			ASSERT_NE( pszFriendly, nullptr );
			EXPECT_STRNE( pszFriendly, "" );
			// A picker that shows the code name means the class lost its friendly name.
			EXPECT_STRNE( pszFriendly, Mgr().GetFunctionClassName( ListType( nType ), i ) );
			EXPECT_TRUE( names.insert( pszFriendly ).second ) << "two entries read '" << pszFriendly << "'";
		}
	}
}

TEST( HostParticleSystemMgr, ExclusionGroupsCoverEveryKindAndDefaultToNoLimit )
{
	std::set<int> seen;
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		for ( int i = 0; i < Mgr().GetFunctionCount( ListType( nType ) ); ++i )
		{
			int nGroup = Mgr().GetFunctionExclusionGroup( ListType( nType ), i );
			EXPECT_GE( nGroup, -2 );
			EXPECT_LE( nGroup, 5 );
			seen.insert( nGroup );
		}
	}
	for ( int nGroup = -2; nGroup <= 5; ++nGroup )
		EXPECT_TRUE( seen.count( nGroup ) ) << "no class in exclusion group " << nGroup;

	int nIndex = -1;
	ASSERT_EQ( FindListOf( "C_INIT_CreateWithinSphere", &nIndex ), PARTICLE_FUNCTION_INITIALIZER );
	EXPECT_EQ( Mgr().GetFunctionExclusionGroup( PARTICLE_FUNCTION_INITIALIZER, nIndex ), 0 );
	ASSERT_EQ( FindListOf( "C_INIT_RandomRadius", &nIndex ), PARTICLE_FUNCTION_INITIALIZER );
	EXPECT_EQ( Mgr().GetFunctionExclusionGroup( PARTICLE_FUNCTION_INITIALIZER, nIndex ), 1 );
	ASSERT_EQ( FindListOf( "C_OP_BasicMovement", &nIndex ), PARTICLE_FUNCTION_OPERATOR );
	EXPECT_EQ( Mgr().GetFunctionExclusionGroup( PARTICLE_FUNCTION_OPERATOR, nIndex ), -1 );
	ASSERT_EQ( FindListOf( "C_OP_SetFloat", &nIndex ), PARTICLE_FUNCTION_OPERATOR );
	EXPECT_EQ( Mgr().GetFunctionExclusionGroup( PARTICLE_FUNCTION_OPERATOR, nIndex ), -2 );
	EXPECT_EQ( Mgr().GetFunctionExclusionGroup( PARTICLE_FUNCTION_OPERATOR, -1 ), -2 );
}

TEST( HostParticleSystemMgr, EveryVersionUpToTheCurrentOneDescribesItsChange )
{
	const int nCurrent = Mgr().GetCurrentBehaviorVersion();
	EXPECT_GE( nCurrent, 1 );
	std::set<std::string> texts;
	for ( int nVersion = 1; nVersion <= nCurrent; ++nVersion )
	{
		std::string text = Mgr().GetBehaviorVersionChange( nVersion );
		EXPECT_FALSE( text.empty() ) << "version " << nVersion;
		EXPECT_TRUE( texts.insert( text ).second ) << "version " << nVersion << " repeats another's text";
	}
	EXPECT_STREQ( Mgr().GetBehaviorVersionChange( 0 ), "" );
	EXPECT_STREQ( Mgr().GetBehaviorVersionChange( nCurrent + 1 ), "" );
	EXPECT_STREQ( Mgr().GetBehaviorVersionChange( -5 ), "" );
}

TEST( HostParticleSystemMgr, AttributeNamesCoverTheFortyNineAttributesAndAgreeWithTheirKinds )
{
	std::set<std::string> names;
	for ( int i = 0; i < PARTICLE_ATTRIBUTE_COUNT; ++i )
	{
		std::string name = Mgr().GetParticleAttributeName( i );
		EXPECT_FALSE( name.empty() ) << i;
		EXPECT_TRUE( names.insert( name ).second ) << name;
	}
	EXPECT_EQ( PARTICLE_ATTRIBUTE_COUNT, 49 );
	EXPECT_STREQ( Mgr().GetParticleAttributeName( -1 ), "" );
	EXPECT_STREQ( Mgr().GetParticleAttributeName( PARTICLE_ATTRIBUTE_COUNT ), "" );
	EXPECT_EQ( PARTICLE_ATTRIBUTE_FLOAT_MASK & PARTICLE_ATTRIBUTE_VECTOR_MASK, 0u );
	// The presets and the attribute combos rely on these kinds.
	EXPECT_TRUE( PARTICLE_ATTRIBUTE_VECTOR_MASK & ParticleAttributeBit( PARTICLE_ATTRIBUTE_POSITION ) );
	EXPECT_TRUE( PARTICLE_ATTRIBUTE_VECTOR_MASK & ParticleAttributeBit( PARTICLE_ATTRIBUTE_COLOR ) );
	EXPECT_TRUE( PARTICLE_ATTRIBUTE_FLOAT_MASK & ParticleAttributeBit( PARTICLE_ATTRIBUTE_RADIUS ) );
	EXPECT_TRUE( PARTICLE_ATTRIBUTE_FLOAT_MASK & ParticleAttributeBit( PARTICLE_ATTRIBUTE_LIFE_DURATION ) );
	EXPECT_TRUE( PARTICLE_ATTRIBUTE_FLOAT_MASK & ParticleAttributeBit( PARTICLE_ATTRIBUTE_TRAIL_LENGTH ) );
}

TEST( HostParticleSystemMgr, WrittenMaskFollowsTheOutputFieldOfTheTable )
{
	KeyValues3 initFloat = FunctionTable( "C_INIT_InitFloat" );
	// Without the member the declared default (the radius) counts.
	EXPECT_EQ( InfoOf( initFloat ).m_nWrittenAttributes, ParticleAttributeBit( PARTICLE_ATTRIBUTE_RADIUS ) );
	initFloat.SetMemberInt( "m_nOutputField", PARTICLE_ATTRIBUTE_ALPHA );
	EXPECT_EQ( InfoOf( initFloat ).m_nWrittenAttributes, ParticleAttributeBit( PARTICLE_ATTRIBUTE_ALPHA ) );
	// Bad values write nothing rather than a wrong bit.
	initFloat.SetMemberInt( "m_nOutputField", 80 );
	EXPECT_EQ( InfoOf( initFloat ).m_nWrittenAttributes, 0u );
	initFloat.SetMemberInt( "m_nOutputField", -1 );
	EXPECT_EQ( InfoOf( initFloat ).m_nWrittenAttributes, 0u );
	initFloat.SetMemberString( "m_nOutputField", "radius" );
	EXPECT_EQ( InfoOf( initFloat ).m_nWrittenAttributes, 0u );

	// Class knowledge and output fields add up.
	EXPECT_EQ( InfoOf( FunctionTable( "C_OP_BasicMovement" ) ).m_nWrittenAttributes,
			   ParticleAttributeBit( PARTICLE_ATTRIBUTE_POSITION ) | ParticleAttributeBit( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION ) );
	EXPECT_EQ( InfoOf( FunctionTable( "C_INIT_RandomLifeTime" ) ).m_nWrittenAttributes, ParticleAttributeBit( PARTICLE_ATTRIBUTE_LIFE_DURATION ) );
	EXPECT_EQ( InfoOf( FunctionTable( "C_INIT_RandomColor" ) ).m_nWrittenAttributes, ParticleAttributeBit( PARTICLE_ATTRIBUTE_COLOR ) );
	EXPECT_EQ( InfoOf( FunctionTable( "C_OP_FadeOutSimple" ) ).m_nWrittenAttributes, ParticleAttributeBit( PARTICLE_ATTRIBUTE_ALPHA ) );
	EXPECT_EQ( InfoOf( FunctionTable( "C_OP_ContinuousEmitter" ) ).m_nWrittenAttributes, 0u );
	EXPECT_EQ( InfoOf( FunctionTable( "C_OP_RenderSprites" ) ).m_nWrittenAttributes, 0u );

	// Anything that is not a known function table has no answer.
	EXPECT_EQ( InfoOf( FunctionTable( "C_OP_NoSuchFunction" ) ).m_nWrittenAttributes, 0u );
	EXPECT_EQ( InfoOf( FunctionTable( "CParticleSystemDefinition" ) ).m_nWrittenAttributes, 0u );
	EXPECT_EQ( InfoOf( FunctionTable( "CParticleFunctionOperator" ) ).m_nWrittenAttributes, 0u );
	KeyValues3 notATable;
	notATable.SetInt( 3 );
	EXPECT_EQ( InfoOf( notATable ).m_nWrittenAttributes, 0u );
	ParticleFunctionInfo_t info;
	info.m_nWrittenAttributes = 5;
	Mgr().GetFunctionInfo( nullptr, &info );
	EXPECT_EQ( info.m_nWrittenAttributes, 0u );
	Mgr().GetFunctionInfo( &notATable, nullptr ); // no answer to give, no crash
}

TEST( HostParticleSystemMgr, RenderersReportTheAttributesTheyUse )
{
	ParticleFunctionInfo_t sprites = InfoOf( FunctionTable( "C_OP_RenderSprites" ) );
	ASSERT_EQ( sprites.m_AttributeUsage.Count(), 1 );
	EXPECT_EQ( sprites.m_AttributeUsage[ 0 ].m_nAttribute, PARTICLE_ATTRIBUTE_ALPHA_ALTERNATE );
	EXPECT_EQ( sprites.m_AttributeUsage[ 0 ].m_nComponent, -1 );
	EXPECT_STRNE( sprites.m_AttributeUsage[ 0 ].m_Text.Get(), "" );

	// A field set to none reports nothing; a vector field reports one text per component.
	KeyValues3 models = FunctionTable( "C_OP_RenderModels" );
	ParticleFunctionInfo_t defaults = InfoOf( models );
	ASSERT_EQ( defaults.m_AttributeUsage.Count(), 1 );
	EXPECT_EQ( defaults.m_AttributeUsage[ 0 ].m_nAttribute, PARTICLE_ATTRIBUTE_SCRATCH_FLOAT );

	models.SetMemberInt( "m_nAnglesField", PARTICLE_ATTRIBUTE_SCRATCH_VECTOR );
	models.SetMemberInt( "m_nBodyGroupField", -1 );
	ParticleFunctionInfo_t angles = InfoOf( models );
	ASSERT_EQ( angles.m_AttributeUsage.Count(), 3 );
	std::set<std::string> texts;
	for ( int i = 0; i < 3; ++i )
	{
		EXPECT_EQ( angles.m_AttributeUsage[ i ].m_nAttribute, PARTICLE_ATTRIBUTE_SCRATCH_VECTOR );
		EXPECT_EQ( angles.m_AttributeUsage[ i ].m_nComponent, i );
		texts.insert( angles.m_AttributeUsage[ i ].m_Text.Get() );
	}
	EXPECT_EQ( texts.size(), 3u );
	EXPECT_EQ( texts.count( "" ), 0u );

	// The answer replaces what the info held before.
	ParticleFunctionInfo_t reused = angles;
	KeyValues3 emitter = FunctionTable( "C_OP_ContinuousEmitter" );
	Mgr().GetFunctionInfo( &emitter, &reused );
	EXPECT_EQ( reused.m_AttributeUsage.Count(), 0 );
}

TEST( HostParticleSystemMgr, FunctionInfoNamesTheControlPointsReadAndWritten )
{
	// The attraction reads its control point; the pre-emission operator writes its own.
	KeyValues3 attract = FunctionTable( "C_OP_AttractToControlPoint" );
	KeyValues3 *pTransform = attract.FindOrCreateMember( "m_TransformInput" );
	pTransform->SetToEmptyTable();
	pTransform->SetMemberString( "m_nType", "PT_TYPE_CONTROL_POINT" );
	pTransform->SetMemberInt( "m_nControlPoint", 3 );
	ParticleFunctionInfo_t info = InfoOf( attract );
	bool bReadsThree = false;
	for ( int i = 0; i < info.m_ControlPointUses.Count(); ++i )
		bReadsThree |= info.m_ControlPointUses[ i ].m_ID.m_nNumber == 3 && ( info.m_ControlPointUses[ i ].m_nFlags & 1 );
	EXPECT_TRUE( bReadsThree );

	KeyValues3 setter = FunctionTable( "C_OP_SetSingleControlPointPosition" );
	setter.SetMemberInt( "m_nCP1", 5 );
	info = InfoOf( setter );
	bool bWritesFive = false;
	for ( int i = 0; i < info.m_ControlPointUses.Count(); ++i )
		bWritesFive |= info.m_ControlPointUses[ i ].m_ID.m_nNumber == 5 && ( info.m_ControlPointUses[ i ].m_nFlags & 2 );
	EXPECT_TRUE( bWritesFive );
}
