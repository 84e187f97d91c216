#pragma once
// The load and save of every field type, made from the class declarations:
// KV3Transfer_t<T>::Load( value, kv3, context ) and ::Save( value, kv3, context ).
// Loads never fail as a whole: what can't be taken is reported and left at its default.

#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <strings.h>
#include <type_traits>
#include <typeinfo>
#include <vector>

#include "core/containers/utlvector.h"
#include "core/kv3/keyvalues3.h"
#include "core/mathlib/color.h"
#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/mathlib/vector2d.h"
#include "core/mathlib/vector4d.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemaresourcetypes.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/schema/schematypeof.h"
#include "core/schema/schemavalueequal.h"
#include "core/text/utlstring.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferinterfaces.h"
#include "core/kv3transfer/kv3transfernumbers.h"

template <typename T> struct KV3Transfer_t;

// Reports shared by several types; texts in one place.
void KV3TransferReportNotATable( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue );
void KV3TransferReportDepthLimit( CKV3TransferContextBase *pContext );
void KV3TransferReportWrongKind( CKV3TransferLoadContext *pContext, const char *pszExpected, const KeyValues3 *pValue );
// Reads nCount floats from an array; a shorter or longer array is reported.
void KV3TransferReadFloats( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue, float *pOut, int nCount );
void KV3TransferWriteFloats( KeyValues3 *pValue, const float *pValues, int nCount );
// A string value's text; null gives "", other kinds are reported and give "".
const char *KV3TransferReadString( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue );

// A member takes its declared default before it is read, so a value that can't be read
// leaves exactly the default.
template <typename T> void KV3TransferAssignDefault( T &member, const T &defaultValue )
{
	if constexpr ( SchemaCopyable<T> )
		member = defaultValue;
	else
		member = T{};
}

// Numbers and bool.
template <typename T>
	requires( std::is_arithmetic_v<T> && !std::is_same_v<T, char> )
struct KV3Transfer_t<T>
{
	static void Load( T &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		if constexpr ( std::is_floating_point_v<T> )
			value = KV3TransferReadFloat<T>( pContext, pValue );
		else
			value = KV3TransferReadInteger<T>( pContext, pValue );
	}
	static void Save( const T &value, KeyValues3 *pValue, CKV3TransferSaveContext * )
	{
		if constexpr ( std::is_same_v<T, bool> )
			pValue->SetBool( value );
		else if constexpr ( std::is_same_v<T, float> )
			pValue->SetFloat( value );
		else if constexpr ( std::is_same_v<T, double> )
			pValue->SetDouble( value );
		else if constexpr ( std::is_signed_v<T> && sizeof( T ) <= 4 )
			pValue->SetInt( value );
		else if constexpr ( std::is_signed_v<T> )
			pValue->SetInt64( value );
		else if constexpr ( sizeof( T ) <= 4 )
			pValue->SetUInt( value );
		else
			pValue->SetUInt64( value );
	}
};

// Enumerations: by enumerator name (any case) or by number; written as the name, or as a
// number when the value has none (combined flags).
template <SchemaDeclaredEnum E> struct KV3Transfer_t<E>
{
	using Underlying_t = std::underlying_type_t<E>;
	static void Load( E &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		const SchemaEnumDesc_t &desc = SchemaDescribeEnum( static_cast<const E *>( nullptr ) );
		if ( pValue && pValue->IsString() )
		{
			for ( const SchemaEnumeratorDesc_t &enumerator : desc.m_Enumerators )
			{
				if ( strcasecmp( enumerator.m_pszName, pValue->GetString() ) == 0 )
				{
					value = static_cast<E>( enumerator.m_nValue );
					return;
				}
			}
			// The member keeps its default: that is this system's answer for every enumeration.
			pContext->ReportError( "Unknown %s value '%s' (keeping %s)", desc.m_pszName, pValue->GetString(), NameOf( desc, value ) );
			return;
		}
		if constexpr ( std::is_same_v<Underlying_t, char> )
			value = static_cast<E>( KV3TransferReadInteger<int8_t>( pContext, pValue ) );
		else
			value = static_cast<E>( KV3TransferReadInteger<Underlying_t>( pContext, pValue ) );
	}
	static void Save( const E &value, KeyValues3 *pValue, CKV3TransferSaveContext * )
	{
		const SchemaEnumDesc_t &desc = SchemaDescribeEnum( static_cast<const E *>( nullptr ) );
		for ( const SchemaEnumeratorDesc_t &enumerator : desc.m_Enumerators )
		{
			if ( enumerator.m_nValue == static_cast<int64_t>( value ) )
			{
				pValue->SetString( enumerator.m_pszName );
				return;
			}
		}
		if constexpr ( std::is_signed_v<Underlying_t> )
			pValue->SetInt64( static_cast<int64_t>( value ) );
		else
			pValue->SetUInt64( static_cast<uint64_t>( value ) );
	}
	static const char *NameOf( const SchemaEnumDesc_t &desc, E value )
	{
		for ( const SchemaEnumeratorDesc_t &enumerator : desc.m_Enumerators )
		{
			if ( enumerator.m_nValue == static_cast<int64_t>( value ) )
				return enumerator.m_pszName;
		}
		return "an unnamed value";
	}
};

// Fixed groups of floats, written as arrays.
template <typename T, int N> struct KV3TransferFloatGroup_t
{
	static void Load( T &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext ) { KV3TransferReadFloats( pContext, pValue, &value[ 0 ], N ); }
	static void Save( const T &value, KeyValues3 *pValue, CKV3TransferSaveContext * ) { KV3TransferWriteFloats( pValue, &value[ 0 ], N ); }
};
template <> struct KV3Transfer_t<Vector> : KV3TransferFloatGroup_t<Vector, 3> {};
template <> struct KV3Transfer_t<Vector2D> : KV3TransferFloatGroup_t<Vector2D, 2> {};
template <> struct KV3Transfer_t<Vector4D> : KV3TransferFloatGroup_t<Vector4D, 4> {};
template <> struct KV3Transfer_t<QAngle> : KV3TransferFloatGroup_t<QAngle, 3> {};
template <size_t N> struct KV3Transfer_t<std::array<float, N>> : KV3TransferFloatGroup_t<std::array<float, N>, int( N )> {};

// Colours: three or four integers 0..255; three mean opaque.
template <> struct KV3Transfer_t<Color>
{
	static void Load( Color &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext );
	static void Save( const Color &value, KeyValues3 *pValue, CKV3TransferSaveContext *pContext );
};

template <> struct KV3Transfer_t<CUtlString>
{
	static void Load( CUtlString &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext ) { value.Set( KV3TransferReadString( pContext, pValue ) ); }
	static void Save( const CUtlString &value, KeyValues3 *pValue, CKV3TransferSaveContext * ) { pValue->SetString( value.Get(), value.Length() ); }
};

// Fixed char arrays hold a NUL-terminated string; a longer text is cut and reported.
template <size_t N> struct KV3Transfer_t<std::array<char, N>>
{
	static void Load( std::array<char, N> &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		const char *pszText = KV3TransferReadString( pContext, pValue );
		size_t nLength = std::strlen( pszText );
		if ( nLength >= N )
		{
			pContext->ReportError( "String of %zu characters doesn't fit in %zu (cut)", nLength, N - 1 );
			nLength = N - 1;
		}
		std::memcpy( value.data(), pszText, nLength );
		std::fill( value.begin() + nLength, value.end(), '\0' );
	}
	static void Save( const std::array<char, N> &value, KeyValues3 *pValue, CKV3TransferSaveContext * ) { pValue->SetString( value.data(), strnlen( value.data(), N ) ); }
};

template <> struct KV3Transfer_t<CResourceName>
{
	static void Load( CResourceName &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext ) { value.m_Name.Set( KV3TransferReadString( pContext, pValue ) ); }
	static void Save( const CResourceName &value, KeyValues3 *pValue, CKV3TransferSaveContext * ) { pValue->SetString( value.m_Name.Get(), KV3_SUBTYPE_STRING_RESOURCE_NAME ); }
};

// Resource handles go through the caller's resource interfaces.
void KV3TransferLoadResource( ResourceHandleBase_t &handle, const char *pszResourceType, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext );
void KV3TransferSaveResource( const ResourceHandleBase_t &handle, const char *pszResourceType, KeyValues3 *pValue, CKV3TransferSaveContext *pContext );
template <typename Info> struct KV3Transfer_t<CStrongHandle<Info>>
{
	static void Load( CStrongHandle<Info> &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext ) { KV3TransferLoadResource( value, Info::s_pszResourceType, pValue, pContext ); }
	static void Save( const CStrongHandle<Info> &value, KeyValues3 *pValue, CKV3TransferSaveContext *pContext ) { KV3TransferSaveResource( value, Info::s_pszResourceType, pValue, pContext ); }
};

template <> struct KV3Transfer_t<KeyValues3>
{
	static void Load( KeyValues3 &value, const KeyValues3 *pValue, CKV3TransferLoadContext * )
	{
		if ( pValue )
			value.CopyFrom( *pValue );
		else
			value.SetToNull();
	}
	static void Save( const KeyValues3 &value, KeyValues3 *pValue, CKV3TransferSaveContext * ) { pValue->CopyFrom( value ); }
};

// Declared classes.
template <typename C>
concept KV3CustomMemberDefaultTest = requires( const C &object, const char *pszMember ) {
	{ object.KV3IsMemberAtDefault( pszMember, object ) } -> std::same_as<int>;
};

// A class may read forms other than its table itself (a bare number standing for a whole
// object) by defining
//	static bool KV3PreLoad( C &object, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext );
// which answers true when it has taken the value, so that no member is read.
template <typename C>
concept KV3PreLoadHook = requires( C &object, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext ) {
	{ C::KV3PreLoad( object, pValue, pContext ) } -> std::same_as<bool>;
};

// A class may restore its own rules (order, derived values) after its members are read by
// defining
//	static void KV3PostLoad( C &object, const KeyValues3 *pTable, CKV3TransferLoadContext *pContext );
// pTable is the table that was read, or null when the value was no table.
template <typename C>
concept KV3PostLoadHook = requires( C &object, const KeyValues3 *pTable, CKV3TransferLoadContext *pContext ) {
	{ C::KV3PostLoad( object, pTable, pContext ) };
};

// A class stored in another form than a table of its members (a boxed integer written as
// the plain number) defines
//	static bool KV3PreSave( const C &object, KeyValues3 *pValue, CKV3TransferSaveContext *pContext );
// and answers true when it wrote the value itself.
template <typename C>
concept KV3PreSaveHook = requires( const C &object, KeyValues3 *pValue, CKV3TransferSaveContext *pContext ) {
	{ C::KV3PreSave( object, pValue, pContext ) } -> std::same_as<bool>;
};

template <SchemaDeclaredClass C> struct KV3Transfer_t<C>
{
	static void Load( C &object, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		if constexpr ( KV3PreLoadHook<C> )
		{
			if ( C::KV3PreLoad( object, pValue, pContext ) )
				return;
		}
		const KeyValues3 *pTable = nullptr;
		if ( pValue && pValue->IsTable() )
			pTable = pValue;
		else if ( pValue && !pValue->IsNull() )
			KV3TransferReportNotATable( pContext, pValue );

		// Without a table every member takes its default, as from an empty table.
		pContext->EnterValue( pTable );
		if ( pContext->GetDepth() >= KV3_TRANSFER_MAX_DEPTH )
		{
			KV3TransferReportDepthLimit( pContext );
		}
		else
		{
			FieldLoader_t loader{ &object, pTable, pContext };
			SchemaVisitAllFields<C>( loader );
			if constexpr ( KV3PostLoadHook<C> )
				C::KV3PostLoad( object, pTable, pContext );
		}
		pContext->LeaveValue();
	}

	static void Save( const C &object, KeyValues3 *pValue, CKV3TransferSaveContext *pContext )
	{
		if constexpr ( KV3PreSaveHook<C> )
		{
			if ( C::KV3PreSave( object, pValue, pContext ) )
				return;
		}
		if ( pContext->BeginClass( pValue, CKV3TransferSaveContext::CLASS_MODE_PLAIN, "" ) )
			SaveMembers( object, pValue, pContext );
	}

	// Appends the members to a begun table; with the delta flag, members equal to the
	// class default are left out.
	static void SaveMembers( const C &object, KeyValues3 *pTable, CKV3TransferSaveContext *pContext )
	{
		bool bSucceededBefore = pContext->HasSucceeded();
		pContext->EnterValue( pTable );
		if ( pContext->GetDepth() >= KV3_TRANSFER_MAX_DEPTH )
		{
			KV3TransferReportDepthLimit( pContext );
		}
		else
		{
			const C *pDefault = nullptr;
			if constexpr ( std::is_default_constructible_v<C> && !std::is_abstract_v<C> )
			{
				if ( pContext->IsSavingDeltaFromDefaults() )
					pDefault = &DefaultInstance();
			}
			FieldSaver_t saver{ &object, pDefault, pTable, pContext };
			SchemaVisitAllFields<C>( saver );
		}
		pContext->LeaveValue();
		if ( bSucceededBefore && !pContext->HasSucceeded() )
			pTable->SetToNull();
	}

	static const C &DefaultInstance()
	{
		static const C s_Default{};
		return s_Default;
	}

	struct FieldLoader_t
	{
		void ClassMetadata( std::initializer_list<SchemaMetadataEntry_t> ) {}
		template <typename T, auto pMember, auto...> void Field( const char *pszName, const T &defaultValue, std::initializer_list<SchemaMetadataEntry_t> )
		{
			static const CKV3MemberName s_Key( pszName );
			T &member = m_pObject->*pMember;
			KV3TransferAssignDefault( member, defaultValue );
			const KeyValues3 *pMemberValue = m_pContext->FindMember( m_pTable, s_Key );
			if ( !pMemberValue )
				return;
			m_pContext->PushMember( pszName );
			KV3Transfer_t<T>::Load( member, pMemberValue, m_pContext );
			m_pContext->PopPath();
		}
		C *m_pObject;
		const KeyValues3 *m_pTable;
		CKV3TransferLoadContext *m_pContext;
	};

	struct FieldSaver_t
	{
		void ClassMetadata( std::initializer_list<SchemaMetadataEntry_t> ) {}
		template <typename T, auto pMember, auto...> void Field( const char *pszName, const T &, std::initializer_list<SchemaMetadataEntry_t> )
		{
			static const CKV3MemberName s_Key( pszName );
			const T &member = m_pObject->*pMember;
			if ( m_pDefault && IsAtDefault( pszName, member, m_pDefault->*pMember ) )
				return;
			KeyValues3 *pMemberValue = m_pContext->AddMember( m_pTable, s_Key );
			m_pContext->PushMember( pszName );
			KV3Transfer_t<T>::Save( member, pMemberValue, m_pContext );
			m_pContext->PopPath();
		}
		template <typename T> bool IsAtDefault( const char *pszName, const T &member, const T &defaultValue ) const
		{
			if constexpr ( KV3CustomMemberDefaultTest<C> )
			{
				int nAnswer = m_pObject->KV3IsMemberAtDefault( pszName, *m_pDefault );
				if ( nAnswer >= 0 )
					return nAnswer != 0;
			}
			return SchemaValuesEqual<T>( member, defaultValue );
		}
		const C *m_pObject;
		const C *m_pDefault;
		KeyValues3 *m_pTable;
		CKV3TransferSaveContext *m_pContext;
	};
};

// A family may keep data of a class it doesn't know by defining
//	static std::unique_ptr<Base> KV3CreateForUnknownClass( const char *pszClassName, const KeyValues3 *pTable, CKV3TransferLoadContext *pContext );
// which sees the whole table (to keep its keys) and reports what it wants to.
template <typename C>
concept KV3UnknownClassRule = requires( const char *pszName, const KeyValues3 *pTable, CKV3TransferLoadContext *pContext ) {
	{ C::KV3CreateForUnknownClass( pszName, pTable, pContext ) } -> std::same_as<std::unique_ptr<C>>;
};

void KV3TransferReportUnknownClass( CKV3TransferLoadContext *pContext, const char *pszClassName, const char *pszBaseName );

// Owning pointers to a polymorphic class: a table with "_class" naming the real class.
template <SchemaDeclaredClass C> struct KV3Transfer_t<std::unique_ptr<C>>
{
	static void Load( std::unique_ptr<C> &pObject, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		pObject.reset();
		if ( !pValue || pValue->IsNull() )
			return;
		if ( !pValue->IsTable() )
		{
			KV3TransferReportNotATable( pContext, pValue );
			return;
		}
		const CSchemaClassInfo *pBase = SchemaSystem()->FindClassByTypeInfo( typeid( C ) );
		if ( !pBase )
		{
			pContext->ReportError( "Class '%s' is not registered", C::SchemaClassName() );
			return;
		}
		const CSchemaClassInfo *pClass = nullptr;
		const char *pszClassName = pValue->GetMemberString( "_class", nullptr );
		if ( !pszClassName )
		{
			pContext->ReportError( "Missing \"_class\" for a '%s' (reading it as one)", pBase->GetName() );
			pClass = pBase;
		}
		else
		{
			pClass = pBase->GetTypeScope()->FindDeclaredClass( pszClassName );
			if ( !pClass || !pClass->IsA( pBase ) )
			{
				if constexpr ( KV3UnknownClassRule<C> )
					pObject = C::KV3CreateForUnknownClass( pszClassName, pValue, pContext );
				else
					KV3TransferReportUnknownClass( pContext, pszClassName, pBase->GetName() );
				return;
			}
		}
		const SchemaClassBinding_t &binding = pClass->GetBinding();
		if ( !binding.m_pfnCreate || !binding.m_pfnLoadKV3 )
		{
			pContext->ReportError( "Class '%s' can't be created from KV3", pClass->GetName() );
			return;
		}
		void *pInstance = pClass->CreateInstance();
		C *pTyped = static_cast<C *>( pClass->CastTo( pInstance, pBase ) );
		if ( !pTyped )
		{
			pClass->DestroyInstance( pInstance );
			pContext->ReportError( "Class '%s' can't be created from KV3", pClass->GetName() );
			return;
		}
		pObject.reset( pTyped );
		binding.m_pfnLoadKV3( pInstance, pValue, pContext );
	}

	static void Save( const std::unique_ptr<C> &pObject, KeyValues3 *pValue, CKV3TransferSaveContext *pContext )
	{
		if ( !pObject )
		{
			pContext->BeginClass( pValue, CKV3TransferSaveContext::CLASS_MODE_NULL, "" );
			return;
		}
		const CSchemaClassInfo *pClass = SchemaSystem()->FindClassByTypeInfo( typeid( *pObject ) );
		if ( !pClass || !pClass->GetBinding().m_pfnSaveKV3 )
		{
			pContext->BeginClass( pValue, 0, "" ); // reports the unsupported class
			return;
		}
		if ( pContext->BeginClass( pValue, CKV3TransferSaveContext::CLASS_MODE_POLYMORPHIC, pClass->GetName() ) )
			pClass->GetBinding().m_pfnSaveKV3( dynamic_cast<const void *>( pObject.get() ), pValue, pContext );
	}
};

// Growable vectors: arrays, element by element.
template <typename Vec, typename E> struct KV3TransferVector_t
{
	static void Load( Vec &vector, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		int nCount = 0;
		if ( pValue && pValue->IsArray() )
			nCount = pValue->GetArrayElementCount();
		else if ( pValue && !pValue->IsNull() )
			KV3TransferReportWrongKind( pContext, "an array", pValue );
		Resize( vector, nCount, pContext );
		for ( int i = 0; i < nCount; ++i )
		{
			pContext->PushIndex( static_cast<uint32_t>( i ) );
			if constexpr ( std::is_same_v<E, bool> )
			{
				bool bElement = false;
				KV3Transfer_t<bool>::Load( bElement, pValue->GetArrayElement( i ), pContext );
				vector[ i ] = bElement;
			}
			else
			{
				KV3Transfer_t<E>::Load( vector[ i ], pValue->GetArrayElement( i ), pContext );
			}
			pContext->PopPath();
		}
	}
	static void Save( const Vec &vector, KeyValues3 *pValue, CKV3TransferSaveContext *pContext )
	{
		pValue->SetToEmptyArray();
		int nCount = Count( vector );
		pValue->ArrayReserve( nCount );
		pContext->AddScratchArray( sizeof( E ), static_cast<size_t>( nCount ) );
		for ( int i = 0; i < nCount; ++i )
		{
			pContext->PushIndex( static_cast<uint32_t>( i ) );
			KV3Transfer_t<E>::Save( vector[ i ], pValue->ArrayAddToTail(), pContext );
			pContext->PopPath();
		}
	}
	static int Count( const std::vector<E> &vector ) { return static_cast<int>( vector.size() ); }
	static int Count( const CUtlVector<E> &vector ) { return vector.Count(); }
	static void Resize( std::vector<E> &vector, int nCount, CKV3TransferLoadContext * )
	{
		vector.clear();
		vector.resize( static_cast<size_t>( nCount ) );
	}
	// With a scratch pool in the context the elements live in the pool's memory, which
	// the vector never frees; otherwise the vector grows on the heap as usual.
	static void Resize( CUtlVector<E> &vector, int nCount, CKV3TransferLoadContext *pContext )
	{
		vector.RemoveAll();
		if ( void *pScratch = pContext->AllocScratch( sizeof( E ), static_cast<size_t>( nCount ) ) )
			vector.SetExternalMemory( static_cast<E *>( pScratch ), nCount );
		vector.SetCount( nCount );
	}
};
template <typename E> struct KV3Transfer_t<std::vector<E>> : KV3TransferVector_t<std::vector<E>, E> {};
template <typename E> struct KV3Transfer_t<CUtlVector<E>> : KV3TransferVector_t<CUtlVector<E>, E> {};

// Map keys as member names: strings as they are, integers as "%lld", enumerations by name.
template <typename K> struct KV3TransferMapKey_t;
template <> struct KV3TransferMapKey_t<CUtlString>
{
	static void ToText( const CUtlString &key, CUtlString &text ) { text = key; }
	static bool FromText( const char *pszText, CUtlString &key, CKV3TransferLoadContext * )
	{
		key.Set( pszText );
		return true;
	}
};
template <std::integral K> struct KV3TransferMapKey_t<K>
{
	static void ToText( K key, CUtlString &text )
	{
		if constexpr ( std::is_signed_v<K> )
			text.Format( "%" PRId64, static_cast<int64_t>( key ) );
		else
			text.Format( "%" PRIu64, static_cast<uint64_t>( key ) );
	}
	static bool FromText( const char *pszText, K &key, CKV3TransferLoadContext *pContext )
	{
		char *pEnd = nullptr;
		long long nValue = std::strtoll( pszText, &pEnd, 10 );
		if ( !*pszText || *pEnd || !std::in_range<K>( nValue ) )
		{
			pContext->ReportError( "Map key '%s' is not a valid integer (member skipped)", pszText );
			return false;
		}
		key = static_cast<K>( nValue );
		return true;
	}
};
template <SchemaDeclaredEnum K> struct KV3TransferMapKey_t<K>
{
	static void ToText( K key, CUtlString &text )
	{
		KeyValues3 value;
		KV3Transfer_t<K>::Save( key, &value, nullptr );
		text.Set( value.IsString() ? value.GetString() : "" );
		if ( !value.IsString() )
			text.Format( "%" PRId64, static_cast<int64_t>( key ) );
	}
	static bool FromText( const char *pszText, K &key, CKV3TransferLoadContext *pContext )
	{
		const SchemaEnumDesc_t &desc = SchemaDescribeEnum( static_cast<const K *>( nullptr ) );
		for ( const SchemaEnumeratorDesc_t &enumerator : desc.m_Enumerators )
		{
			if ( strcasecmp( enumerator.m_pszName, pszText ) == 0 )
			{
				key = static_cast<K>( enumerator.m_nValue );
				return true;
			}
		}
		pContext->ReportError( "Map key '%s' is not a %s value (member skipped)", pszText, desc.m_pszName );
		return false;
	}
};

template <typename K, typename V> struct KV3Transfer_t<std::map<K, V>>
{
	static void Load( std::map<K, V> &map, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		map.clear();
		if ( !pValue || pValue->IsNull() )
			return;
		if ( !pValue->IsTable() )
		{
			KV3TransferReportWrongKind( pContext, "a table", pValue );
			return;
		}
		for ( int i = 0; i < pValue->GetMemberCount(); ++i )
		{
			const char *pszName = pValue->GetMemberName( i );
			pContext->PushMember( pszName );
			K key{};
			if ( KV3TransferMapKey_t<K>::FromText( pszName, key, pContext ) )
				KV3Transfer_t<V>::Load( map[ key ], pValue->GetMember( i ), pContext );
			pContext->PopPath();
		}
	}
	static void Save( const std::map<K, V> &map, KeyValues3 *pValue, CKV3TransferSaveContext *pContext )
	{
		pValue->SetToEmptyTable();
		CUtlString text;
		for ( const auto &[ key, value ] : map )
		{
			KV3TransferMapKey_t<K>::ToText( key, text );
			pContext->PushMember( text.Get() );
			KV3Transfer_t<V>::Save( value, pContext->AddMember( pValue, CKV3MemberName( text.Get() ) ), pContext );
			pContext->PopPath();
		}
	}
};

template <typename T> struct KV3Transfer_t<std::optional<T>>
{
	static void Load( std::optional<T> &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
	{
		value.reset();
		if ( !pValue || pValue->IsNull() )
			return;
		KV3Transfer_t<T>::Load( value.emplace(), pValue, pContext );
	}
	static void Save( const std::optional<T> &value, KeyValues3 *pValue, CKV3TransferSaveContext *pContext )
	{
		if ( value )
			KV3Transfer_t<T>::Save( *value, pValue, pContext );
		else
			pValue->SetToNull();
	}
};
