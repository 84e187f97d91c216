#pragma once
// Per value type: the attribute kind that GetAttrType answers, and the text form used by
// GetAsString and SetFromString. A kind without a text form reads as "" and refuses text.

#include <array>
#include <cinttypes>
#include <concepts>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <strings.h>
#include <type_traits>
#include <utility>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/color.h"
#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/mathlib/vector2d.h"
#include "core/mathlib/vector4d.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemaresourcetypes.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

template <typename T> int ToolAttrAttrTypeOf();

// Shared parsers: whole text only, surrounding blanks allowed.
bool ToolAttrParseInt64( const char *pszText, int64_t *pOut );
bool ToolAttrParseUInt64( const char *pszText, uint64_t *pOut );
bool ToolAttrParseFloat( const char *pszText, float *pOut );
bool ToolAttrParseDouble( const char *pszText, double *pOut );
bool ToolAttrParseBool( const char *pszText, bool *pOut );
// nCount floats separated by blanks.
bool ToolAttrParseFloats( const char *pszText, float *pOut, int nCount );
void ToolAttrFormatFloats( const float *pValues, int nCount, CUtlString *pOut );

template <typename T> struct ToolAttrValueTraits_t
{
	static constexpr bool s_bHasText = false;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_STRUCTURED;
	static void ToString( const T &, CUtlString *pOut ) { pOut->Clear(); }
	static bool FromString( const char *, T * ) { return false; }
};

template <> struct ToolAttrValueTraits_t<bool>
{
	static constexpr bool s_bHasText = true;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_BOOL;
	static void ToString( bool bValue, CUtlString *pOut ) { pOut->Set( bValue ? "true" : "false" ); }
	static bool FromString( const char *pszText, bool *pOut ) { return ToolAttrParseBool( pszText, pOut ); }
};

template <std::integral T>
	requires( !std::is_same_v<T, bool> )
struct ToolAttrValueTraits_t<T>
{
	static constexpr bool s_bHasText = true;
	static constexpr int s_nAttrType = std::is_signed_v<T> ? TOOLATTR_TYPE_INT : TOOLATTR_TYPE_UINT;
	static void ToString( T value, CUtlString *pOut )
	{
		if constexpr ( std::is_signed_v<T> )
			pOut->Format( "%" PRId64, static_cast<int64_t>( value ) );
		else
			pOut->Format( "%" PRIu64, static_cast<uint64_t>( value ) );
	}
	static bool FromString( const char *pszText, T *pOut )
	{
		if constexpr ( std::is_signed_v<T> )
		{
			int64_t nValue;
			if ( !ToolAttrParseInt64( pszText, &nValue ) || !std::in_range<T>( nValue ) )
				return false;
			*pOut = static_cast<T>( nValue );
		}
		else
		{
			uint64_t nValue;
			if ( !ToolAttrParseUInt64( pszText, &nValue ) || !std::in_range<T>( nValue ) )
				return false;
			*pOut = static_cast<T>( nValue );
		}
		return true;
	}
};

template <std::floating_point T> struct ToolAttrValueTraits_t<T>
{
	static constexpr bool s_bHasText = true;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_FLOAT;
	static void ToString( T value, CUtlString *pOut ) { pOut->Format( "%.9g", static_cast<double>( value ) ); }
	static bool FromString( const char *pszText, T *pOut )
	{
		double flValue;
		if ( !ToolAttrParseDouble( pszText, &flValue ) )
			return false;
		*pOut = static_cast<T>( flValue );
		return true;
	}
};

template <SchemaDeclaredEnum E> struct ToolAttrValueTraits_t<E>
{
	static constexpr bool s_bHasText = true;
	static const SchemaEnumDesc_t &Desc() { return SchemaDescribeEnum( static_cast<const E *>( nullptr ) ); }
	static int AttrType() { return Desc().m_bFlagSet ? TOOLATTR_TYPE_FLAGS : TOOLATTR_TYPE_INT; }
	static void ToString( E value, CUtlString *pOut )
	{
		for ( const SchemaEnumeratorDesc_t &enumerator : Desc().m_Enumerators )
		{
			if ( enumerator.m_nValue == static_cast<int64_t>( value ) )
			{
				pOut->Set( enumerator.m_pszName );
				return;
			}
		}
		pOut->Format( "%" PRId64, static_cast<int64_t>( value ) );
	}
	static bool FromString( const char *pszText, E *pOut )
	{
		for ( const SchemaEnumeratorDesc_t &enumerator : Desc().m_Enumerators )
		{
			if ( strcasecmp( enumerator.m_pszName, pszText ) == 0 )
			{
				*pOut = static_cast<E>( enumerator.m_nValue );
				return true;
			}
		}
		int64_t nValue;
		if ( !ToolAttrParseInt64( pszText, &nValue ) )
			return false;
		*pOut = static_cast<E>( nValue );
		return true;
	}
};

template <typename T, int N, int Kind> struct ToolAttrFloatGroupTraits_t
{
	static constexpr bool s_bHasText = true;
	static constexpr int s_nAttrType = Kind;
	static void ToString( const T &value, CUtlString *pOut ) { ToolAttrFormatFloats( &value[ 0 ], N, pOut ); }
	static bool FromString( const char *pszText, T *pOut ) { return ToolAttrParseFloats( pszText, &( *pOut )[ 0 ], N ); }
};
template <> struct ToolAttrValueTraits_t<Vector> : ToolAttrFloatGroupTraits_t<Vector, 3, TOOLATTR_TYPE_VECTOR3> {};
template <> struct ToolAttrValueTraits_t<Vector2D> : ToolAttrFloatGroupTraits_t<Vector2D, 2, TOOLATTR_TYPE_VECTOR2> {};
template <> struct ToolAttrValueTraits_t<Vector4D> : ToolAttrFloatGroupTraits_t<Vector4D, 4, TOOLATTR_TYPE_VECTOR4> {};
template <> struct ToolAttrValueTraits_t<QAngle> : ToolAttrFloatGroupTraits_t<QAngle, 3, TOOLATTR_TYPE_ANGLE> {};
template <size_t N>
struct ToolAttrValueTraits_t<std::array<float, N>>
	: ToolAttrFloatGroupTraits_t<std::array<float, N>, int( N ), N == 2 ? TOOLATTR_TYPE_VECTOR2 : N == 3 ? TOOLATTR_TYPE_VECTOR3 : TOOLATTR_TYPE_VECTOR4>
{
};

template <> struct ToolAttrValueTraits_t<Color>
{
	static constexpr bool s_bHasText = true;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_COLOR_ALPHA;
	static void ToString( const Color &value, CUtlString *pOut ) { pOut->Format( "%d %d %d %d", value.r(), value.g(), value.b(), value.a() ); }
	// Three numbers mean an opaque colour.
	static bool FromString( const char *pszText, Color *pOut );
};

template <> struct ToolAttrValueTraits_t<CUtlString>
{
	static constexpr bool s_bHasText = true;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_STRING;
	static void ToString( const CUtlString &value, CUtlString *pOut ) { *pOut = value; }
	static bool FromString( const char *pszText, CUtlString *pOut )
	{
		pOut->Set( pszText );
		return true;
	}
};

template <size_t N> struct ToolAttrValueTraits_t<std::array<char, N>>
{
	static constexpr bool s_bHasText = true;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_STRING;
	static void ToString( const std::array<char, N> &value, CUtlString *pOut ) { pOut->Set( value.data(), strnlen( value.data(), N ) ); }
	static bool FromString( const char *pszText, std::array<char, N> *pOut )
	{
		if ( std::strlen( pszText ) >= N )
			return false;
		pOut->fill( '\0' );
		std::memcpy( pOut->data(), pszText, std::strlen( pszText ) );
		return true;
	}
};

template <> struct ToolAttrValueTraits_t<CResourceName>
{
	static constexpr bool s_bHasText = true;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_STRING;
	static void ToString( const CResourceName &value, CUtlString *pOut ) { *pOut = value.m_Name; }
	static bool FromString( const char *pszText, CResourceName *pOut )
	{
		pOut->m_Name.Set( pszText );
		return true;
	}
};

// A handle edited as text names a resource that the resource system resolves later.
template <typename Info> struct ToolAttrValueTraits_t<CStrongHandle<Info>>
{
	static constexpr bool s_bHasText = true;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_STRING;
	static void ToString( const CStrongHandle<Info> &value, CUtlString *pOut ) { *pOut = value.m_Name; }
	static bool FromString( const char *pszText, CStrongHandle<Info> *pOut )
	{
		pOut->Clear();
		pOut->m_Name.Set( pszText );
		return true;
	}
};

template <> struct ToolAttrValueTraits_t<KeyValues3>
{
	static constexpr bool s_bHasText = false;
	static constexpr int s_nAttrType = TOOLATTR_TYPE_KV3;
	static void ToString( const KeyValues3 &, CUtlString *pOut ) { pOut->Clear(); }
	static bool FromString( const char *, KeyValues3 * ) { return false; }
};

// An optional reads as its value, or as "" when empty; "" empties it.
template <typename T> struct ToolAttrValueTraits_t<std::optional<T>>
{
	static constexpr bool s_bHasText = ToolAttrValueTraits_t<T>::s_bHasText;
	static int AttrType() { return ToolAttrAttrTypeOf<T>(); }
	static void ToString( const std::optional<T> &value, CUtlString *pOut )
	{
		if ( value )
			ToolAttrValueTraits_t<T>::ToString( *value, pOut );
		else
			pOut->Clear();
	}
	static bool FromString( const char *pszText, std::optional<T> *pOut )
	{
		if ( !*pszText )
		{
			pOut->reset();
			return true;
		}
		T value{};
		if ( !ToolAttrValueTraits_t<T>::FromString( pszText, &value ) )
			return false;
		*pOut = std::move( value );
		return true;
	}
};

template <typename T> int ToolAttrAttrTypeOf()
{
	if constexpr ( requires { ToolAttrValueTraits_t<T>::AttrType(); } )
		return ToolAttrValueTraits_t<T>::AttrType();
	else
		return ToolAttrValueTraits_t<T>::s_nAttrType;
}
