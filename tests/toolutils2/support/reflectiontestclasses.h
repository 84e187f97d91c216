#pragma once
// Declared classes shaped like particle functions, shared by the reflection tests.

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/color.h"
#include "core/mathlib/vector.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemaresourcetypes.h"
#include "core/text/utlstring.h"

enum TestBlendMode_t : int32_t
{
	TEST_BLEND_NORMAL = 0,
	TEST_BLEND_ADD = 1,
	TEST_BLEND_MOD = 2,
};
SCHEMA_ENUM_BEGIN( TestBlendMode_t )
	SCHEMA_ENUMERATOR( TEST_BLEND_NORMAL, { "MPropertyFriendlyName", "Normal" } )
	SCHEMA_ENUMERATOR( TEST_BLEND_ADD, { "MPropertyFriendlyName", "Additive" } )
	SCHEMA_ENUMERATOR( TEST_BLEND_MOD )
SCHEMA_ENUM_END()

struct TestCurvePoint_t
{
	SCHEMA_CLASS( TestCurvePoint_t )
	SCHEMA_FIELD( float, m_flTime, 0.0f )
	SCHEMA_FIELD( float, m_flValue, 1.0f )
};

class CTestInput
{
	SCHEMA_CLASS( CTestInput, { "MPropertyPolymorphicClass" } )
	virtual ~CTestInput() = default;
	SCHEMA_FIELD( float, m_flLiteral, 0.1f )
};

class CTestRandomInput : public CTestInput
{
	SCHEMA_DERIVED_CLASS( CTestRandomInput, CTestInput )
	SCHEMA_FIELD( float, m_flMin, 0.0f )
	SCHEMA_FIELD( float, m_flMax, 1.0f )
};

struct TestTextureInfo_t
{
	static constexpr const char *s_pszResourceType = "timg";
};

using TestFloatMap_t = std::map<CUtlString, float>;
using TestFloat2_t = std::array<float, 2>;

class CTestOperator
{
	SCHEMA_CLASS( CTestOperator, { "MPropertyFriendlyName", "Test Operator" } )
	SCHEMA_FIELD( float, m_flStrength, 0.1f, { "MPropertyFriendlyName", "Strength" }, { "MPropertyAttributeRange", "0 1" } )
	SCHEMA_FIELD( int32_t, m_nCount, 4 )
	SCHEMA_FIELD( uint8_t, m_nAlpha, 255 )
	SCHEMA_FIELD( bool, m_bEnabled, true )
	SCHEMA_FIELD( TestBlendMode_t, m_nBlend, TEST_BLEND_ADD )
	SCHEMA_FIELD( Vector, m_vOffset, ( Vector( 0.0f, 0.0f, 1.0f ) ) )
	SCHEMA_FIELD( Color, m_Tint, ( Color( 255, 128, 0 ) ) )
	SCHEMA_FIELD( CUtlString, m_Name, "smoke" )
	SCHEMA_FIELD( TestFloat2_t, m_vRange, ( TestFloat2_t{ { 0.0f, 1.0f } } ) )
	SCHEMA_FIELD( TestCurvePoint_t, m_Start, {} )
	SCHEMA_FIELD( std::vector<TestCurvePoint_t>, m_Curve, {} )
	SCHEMA_FIELD( std::vector<float>, m_Weights, {} )
	SCHEMA_FIELD( TestFloatMap_t, m_Named, {} )
	SCHEMA_FIELD( std::optional<float>, m_flLimit, {} )
	SCHEMA_FIELD( std::unique_ptr<CTestInput>, m_pInput, nullptr )
};

// A list that refers to itself: how deep files nest is up to the file.
class CTestChain
{
	SCHEMA_CLASS( CTestChain )
	virtual ~CTestChain() = default;
	SCHEMA_FIELD( std::unique_ptr<CTestChain>, m_pNext, nullptr )
};

class CTestTextured
{
	SCHEMA_CLASS( CTestTextured )
	SCHEMA_FIELD( CStrongHandle<TestTextureInfo_t>, m_hTexture, {} )
	SCHEMA_FIELD( float, m_flScale, 1.0f )
};

using TestLayerMap_t = std::map<CUtlString, TestCurvePoint_t>;
using TestIndexMap_t = std::map<int32_t, float>;
using TestBlendNameMap_t = std::map<TestBlendMode_t, CUtlString>;
using TestInputList_t = std::vector<std::unique_ptr<CTestInput>>;
using TestInputMap_t = std::map<CUtlString, std::unique_ptr<CTestInput>>;

// Maps of every key kind, containers of owned objects, and a member that only its
// accessors may change.
class CTestLayerSet
{
	SCHEMA_CLASS( CTestLayerSet )
	SCHEMA_FIELD( TestLayerMap_t, m_Layers, {} )
	SCHEMA_FIELD( TestIndexMap_t, m_Weights, {} )
	SCHEMA_FIELD( TestBlendNameMap_t, m_BlendNames, {} )
	SCHEMA_FIELD_GETSET( float, m_flRadius, 1.0f, GetRadius, SetRadius, { "MPropertyFriendlyName", "Radius" } )
	SCHEMA_FIELD( int32_t, m_nDebugSeed, 0, { "MPropertyDevOnly" } )
	SCHEMA_FIELD( TestInputList_t, m_Inputs, {} )
	SCHEMA_FIELD( TestInputMap_t, m_NamedInputs, {} )

	float GetRadius() const { return m_flRadius; }
	// A radius is never negative.
	void SetRadius( const float &flRadius )
	{
		++m_nSetRadiusCalls;
		m_flRadius = flRadius < 0.0f ? 0.0f : flRadius;
	}
	int m_nSetRadiusCalls = 0;
};

// Registers the classes above in the scope "reflection_tests".
class CSchemaSystemTypeScope;
CSchemaSystemTypeScope *RegisterReflectionTestClasses();
