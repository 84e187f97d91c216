// The metadata that the function catalogue reads from the classes: version limits,
// replacements, obsolete classes, array and input rules, and the fields the presets write.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/particleattributes.h"
#include "core/particles/particlefunction.h"
#include "core/particles/particlefunctionclasses.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schematype.h"
#include "core/text/utlstring.h"

namespace
{
const IParticleSystemMgr &Mgr()
{
	return *HostParticleSystemMgr();
}

struct FunctionClass_t
{
	ParticleFunctionType_t m_eType;
	const CSchemaClassInfo *m_pClass;
};

std::vector<FunctionClass_t> AllFunctionClasses()
{
	std::vector<FunctionClass_t> classes;
	for ( int nType = 0; nType < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nType )
	{
		ParticleFunctionType_t eType = static_cast<ParticleFunctionType_t>( nType );
		for ( int i = 0; i < Mgr().GetFunctionCount( eType ); ++i )
			classes.push_back( { eType, ParticleTypeScope()->FindDeclaredClass( Mgr().GetFunctionClassName( eType, i ) ) } );
	}
	return classes;
}

std::vector<const CSchemaClassField *> FieldsOf( const CSchemaClassInfo *pClass )
{
	std::vector<const CSchemaClassField *> fields;
	pClass->GetAllFields( fields );
	return fields;
}

// The class of that name among the list's classes, or null.
const CSchemaClassInfo *FindInList( ParticleFunctionType_t eType, const char *pszName )
{
	for ( int i = 0; i < Mgr().GetFunctionCount( eType ); ++i )
	{
		if ( std::string( Mgr().GetFunctionClassName( eType, i ) ) == pszName )
			return ParticleTypeScope()->FindDeclaredClass( pszName );
	}
	return nullptr;
}

bool Has( const CSchemaClassInfo *pClass, const char *pszKey )
{
	return pClass->HasMetadata( pszKey );
}

// Loads a table into the class through its family base, as a document load does.
template <typename Base> std::string LoadErrors( const KeyValues3 &table, std::string *pLoadedClass )
{
	std::unique_ptr<Base> pFunction;
	CUtlString errors;
	bool bLoaded = LoadKV3ObjectInPlace( &pFunction, &table, &errors );
	*pLoadedClass = pFunction ? SchemaSystem()->FindClassByTypeInfo( typeid( *pFunction ) )->GetName() : "";
	return bLoaded ? errors.Get() : std::string( "load failed: " ) + errors.Get();
}

KeyValues3 ParseTable( const char *pszText )
{
	KeyValues3 table;
	CUtlString error;
	EXPECT_TRUE( LoadKV3FromText( &table, &error, pszText, strlen( pszText ), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) ) << error.Get() << "\n" << pszText;
	return table;
}
} // namespace

TEST( ParticleCatalogueMetadata, VersionLimitsLieWithinTheVersionsThatExist )
{
	const int nCurrent = Mgr().GetCurrentBehaviorVersion();
	int nClassesWithMin = 0, nFieldsWithMin = 0, nFieldsWithMax = 0;
	for ( const FunctionClass_t &entry : AllFunctionClasses() )
	{
		SCOPED_TRACE( entry.m_pClass->GetName() );
		const SchemaMetadataEntry_t *pMin = entry.m_pClass->FindMetadata( "MParticleMinVersion" );
		const SchemaMetadataEntry_t *pMax = entry.m_pClass->FindMetadata( "MParticleMaxVersion" );
		if ( pMin )
		{
			++nClassesWithMin;
			EXPECT_EQ( pMin->m_eType, SCHEMA_METADATA_INT );
			EXPECT_GE( pMin->m_nValue, 1 );
			EXPECT_LE( pMin->m_nValue, nCurrent ) << "a class nobody can add yet";
		}
		if ( pMax )
		{
			EXPECT_EQ( pMax->m_eType, SCHEMA_METADATA_INT );
			EXPECT_GE( pMax->m_nValue, 1 );
			// A class that is still current has no maximum.
			EXPECT_LT( pMax->m_nValue, nCurrent );
		}
		for ( const CSchemaClassField *pField : FieldsOf( entry.m_pClass ) )
		{
			if ( const SchemaMetadataEntry_t *pFieldMin = pField->FindMetadata( "MParticleMinVersion" ) )
			{
				++nFieldsWithMin;
				EXPECT_GE( pFieldMin->m_nValue, 1 ) << pField->GetName();
				EXPECT_LE( pFieldMin->m_nValue, nCurrent ) << pField->GetName();
			}
			if ( const SchemaMetadataEntry_t *pFieldMax = pField->FindMetadata( "MParticleMaxVersion" ) )
			{
				++nFieldsWithMax;
				EXPECT_LT( pFieldMax->m_nValue, nCurrent ) << pField->GetName();
			}
		}
	}
	EXPECT_GE( nClassesWithMin, 1 );
	EXPECT_GE( nFieldsWithMin, 1 );
	EXPECT_GE( nFieldsWithMax, 1 );
}

TEST( ParticleCatalogueMetadata, ReplacementChainsStayInTheirListAndEndAtACurrentClass )
{
	int nLongestChain = 0;
	int nReplaced = 0;
	for ( const FunctionClass_t &entry : AllFunctionClasses() )
	{
		const CSchemaClassInfo *pClass = entry.m_pClass;
		if ( !Has( pClass, "MParticleReplacementOp" ) )
			continue;
		SCOPED_TRACE( pClass->GetName() );
		++nReplaced;
		// A replacement only applies past a maximum.
		EXPECT_TRUE( Has( pClass, "MParticleMaxVersion" ) );
		int nChain = 0;
		int nLastMax = -1;
		while ( pClass && Has( pClass, "MParticleMaxVersion" ) && nChain < 16 )
		{
			const int nMax = static_cast<int>( pClass->FindMetadata( "MParticleMaxVersion" )->m_nValue );
			EXPECT_GT( nMax, nLastMax ) << "each step of a chain must live longer than the one before";
			nLastMax = nMax;
			const SchemaMetadataEntry_t *pNext = pClass->FindMetadata( "MParticleReplacementOp" );
			ASSERT_NE( pNext, nullptr ) << pClass->GetName() << " expires without a replacement";
			pClass = FindInList( entry.m_eType, pNext->m_pszValue );
			ASSERT_NE( pClass, nullptr ) << pNext->m_pszValue << " is not in the same list";
			++nChain;
		}
		ASSERT_NE( pClass, nullptr );
		EXPECT_FALSE( Has( pClass, "MObsoleteParticleFunction" ) ) << "the chain ends at a class that can't be added";
		nLongestChain = std::max( nLongestChain, nChain );
	}
	EXPECT_GE( nReplaced, 2 );
	EXPECT_GE( nLongestChain, 2 ) << "a chain over two replacements exercises the walk";
}

TEST( ParticleCatalogueMetadata, ListRulesAreCarriedByRealClasses )
{
	int nObsolete = 0, nSingletons = 0, nRequireEntry = 0, nAdvanced = 0, nOptionalInputs = 0;
	for ( const FunctionClass_t &entry : AllFunctionClasses() )
	{
		SCOPED_TRACE( entry.m_pClass->GetName() );
		if ( Has( entry.m_pClass, "MObsoleteParticleFunction" ) )
		{
			++nObsolete;
			// Still loadable: files that have it must keep it.
			EXPECT_TRUE( entry.m_pClass->CanCreate() );
		}
		if ( const SchemaMetadataEntry_t *pGroup = entry.m_pClass->FindMetadata( "MParticleExclusionGroup" ); pGroup && pGroup->m_nValue == -1 )
			++nSingletons;
		for ( const CSchemaClassField *pField : FieldsOf( entry.m_pClass ) )
		{
			if ( pField->HasMetadata( "MParticleRequireDefaultArrayEntry" ) )
			{
				++nRequireEntry;
				// The rule appends an element, so it only makes sense on an array.
				EXPECT_TRUE( pField->GetType()->IsAtomic( SCHEMA_ATOMIC_COLLECTION ) ) << pField->GetName();
			}
			if ( pField->HasMetadata( "MParticleAdvancedField" ) )
				++nAdvanced;
			if ( pField->HasMetadata( "MParticleInputOptional" ) )
			{
				++nOptionalInputs;
				// The "none" state belongs to input editors only.
				EXPECT_NE( pField->GetNamedClass(), nullptr ) << pField->GetName();
			}
		}
	}
	EXPECT_GE( nObsolete, 1 );
	EXPECT_GE( nSingletons, 1 );
	EXPECT_GE( nRequireEntry, 1 );
	EXPECT_GE( nAdvanced, 5 );
	EXPECT_GE( nOptionalInputs, 2 );
}

TEST( ParticleCatalogueMetadata, EveryInputFieldNamesAParticleInputClass )
{
	const std::set<std::string> inputClasses = {
		"CPerParticleFloatInput", "CParticleCollectionFloatInput", "CParticleCollectionRendererFloatInput", "CParticleRemapFloatInput",
		"CPerParticleVecInput",	  "CParticleCollectionVecInput",   "CParticleTransformInput",				"CParticleModelInput",
	};
	int nInputs = 0;
	for ( const FunctionClass_t &entry : AllFunctionClasses() )
	{
		for ( const CSchemaClassField *pField : FieldsOf( entry.m_pClass ) )
		{
			const char *pszNamed = pField->GetNamedClass();
			if ( !pszNamed )
			{
				// A KV3 field without its class would edit as raw text.
				EXPECT_FALSE( pField->GetType()->IsAtomic( SCHEMA_ATOMIC_KV3 ) ) << entry.m_pClass->GetName() << "::" << pField->GetName();
				continue;
			}
			++nInputs;
			EXPECT_TRUE( inputClasses.count( pszNamed ) ) << entry.m_pClass->GetName() << "::" << pField->GetName() << " names " << pszNamed;
		}
	}
	EXPECT_GE( nInputs, 30 );
}

TEST( ParticleCatalogueMetadata, OutputFieldDefaultsAreAttributesOfTheKindTheirChoiceOffers )
{
	for ( const FunctionClass_t &entry : AllFunctionClasses() )
	{
		for ( const CSchemaClassField *pField : FieldsOf( entry.m_pClass ) )
		{
			const char *pszChoice = "";
			if ( const SchemaMetadataEntry_t *pChoice = pField->FindMetadata( "MPropertyAttributeChoiceName" ) )
				pszChoice = pChoice->m_pszValue;
			if ( std::string( pszChoice ).rfind( "particlefield", 0 ) != 0 )
				continue;
			SCOPED_TRACE( std::string( entry.m_pClass->GetName() ) + "::" + pField->GetName() );
			EXPECT_TRUE( pField->GetType()->IsBuiltin( SCHEMA_BUILTIN_INT32 ) );
			KeyValues3 fieldDefault;
			ASSERT_TRUE( entry.m_pClass->GetFieldDefault( pField->GetName(), &fieldDefault ) );
			const int nAttribute = fieldDefault.GetInt( -1 );
			if ( nAttribute < 0 )
				continue; // none
			ASSERT_LT( nAttribute, PARTICLE_ATTRIBUTE_COUNT );
			const uint64_t nBit = ParticleAttributeBit( nAttribute );
			const std::string choice = pszChoice;
			if ( choice == "particlefield_vector" )
			{
				EXPECT_TRUE( nBit & PARTICLE_ATTRIBUTE_VECTOR_MASK );
			}
			else if ( choice == "particlefield_scalar" || choice == "particlefield_alpha" || choice == "particlefield_rotation" )
			{
				EXPECT_TRUE( nBit & PARTICLE_ATTRIBUTE_FLOAT_MASK );
			}
		}
	}
}

TEST( ParticleCatalogueMetadata, PresetShapesLoadIntoTheirClassesWithoutReports )
{
	RegisterParticleFunctionClasses();
	struct Preset_t
	{
		const char *m_pszClass;
		const char *m_pszTable;
	};
	// The tables that the catalogue's preset entries write into a new node.
	const Preset_t presets[] = {
		{ "C_INIT_InitFloat", R"({ _class = "C_INIT_InitFloat" m_nOutputField = 12
			m_InputValue = { m_nType = "PF_TYPE_RANDOM_UNIFORM" m_flRandomMin = 0.0 m_flRandomMax = 360.0 m_bHasRandomSignFlip = true } })" },
		{ "C_INIT_InitVec", R"({ _class = "C_INIT_InitVec" m_nOutputField = 0
			m_InputValue = { m_nType = "PVEC_TYPE_RANDOM_UNIFORM_OFFSET" m_vRandomMin = [ 0.0, 0.0, 0.0 ] m_vRandomMax = [ 1.0, 1.0, 1.0 ] m_nVectorAttribute = 0 } })" },
		{ "C_INIT_InitFloat", R"({ _class = "C_INIT_InitFloat" m_nOutputField = 3 m_nSetMethod = "PARTICLE_SET_REPLACE_VALUE"
			m_InputValue = { m_nType = "PF_TYPE_CONTROL_POINT_COMPONENT" m_nMapType = "PF_MAP_TYPE_REMAP" m_nControlPoint = 0 m_nVectorComponent = 0
			m_flInput0 = 0.0 m_flInput1 = 1.0 m_flOutput0 = 0.0 m_flOutput1 = 1.0 } })" },
		{ "C_INIT_RemapTransformToVector", R"({ _class = "C_INIT_RemapTransformToVector"
			m_TransformInput = { m_nControlPoint = 0 m_nType = "PT_TYPE_CONTROL_POINT" } })" },
		{ "C_INIT_RemapInitialDirectionToTransformToVector", R"({ _class = "C_INIT_RemapInitialDirectionToTransformToVector"
			m_TransformInput = { m_nControlPoint = 0 m_nType = "PT_TYPE_CONTROL_POINT" } })" },
		{ "C_INIT_RemapInitialTransformDirectionToRotation", R"({ _class = "C_INIT_RemapInitialTransformDirectionToRotation"
			m_TransformInput = { m_nControlPoint = 0 m_nType = "PT_TYPE_CONTROL_POINT" } })" },
		{ "C_INIT_RemapTransformOrientationToRotations", R"({ _class = "C_INIT_RemapTransformOrientationToRotations"
			m_TransformInput = { m_nControlPoint = 0 m_nType = "PT_TYPE_CONTROL_POINT" } })" },
	};
	for ( const Preset_t &preset : presets )
	{
		SCOPED_TRACE( preset.m_pszClass );
		// All presets are initializers.
		EXPECT_NE( FindInList( PARTICLE_FUNCTION_INITIALIZER, preset.m_pszClass ), nullptr );
		KeyValues3 table = ParseTable( preset.m_pszTable );
		std::string loadedClass;
		EXPECT_EQ( LoadErrors<CParticleFunctionInitializer>( table, &loadedClass ), "" );
		EXPECT_EQ( loadedClass, preset.m_pszClass );
		// Every member that the preset writes is a field the class declares.
		const CSchemaClassInfo *pClass = ParticleTypeScope()->FindDeclaredClass( preset.m_pszClass );
		for ( int i = 0; i < table.GetMemberCount(); ++i )
		{
			const std::string member = table.GetMemberName( i );
			if ( member != "_class" )
			{
				EXPECT_NE( pClass->FindField( member.c_str() ), nullptr ) << member;
			}
		}
	}
}
