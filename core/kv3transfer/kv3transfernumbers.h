#pragma once
// Lenient reading of numbers, bools and enumerations from KV3: a value of a near kind is
// converted, and every conversion that changes the value or can't be made is reported
// under the value's path. The result is what the member gets.

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <utility>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"

// "Unsupported KV3 basic type '%s' (%d)!"
void KV3TransferReportUnsupportedType( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue );
// "Cast of %s loses value information (returning %s)\n"
void KV3TransferReportCastLoss( CKV3TransferLoadContext *pContext, const char *pszFrom, const char *pszTo );
// Text of a number as the reports show it.
void KV3TransferFormatNumber( char *pBuffer, size_t nSize, int64_t nValue );
void KV3TransferFormatNumber( char *pBuffer, size_t nSize, uint64_t nValue );
void KV3TransferFormatNumber( char *pBuffer, size_t nSize, double flValue );

template <typename From, typename To>
void KV3TransferReportLoss( CKV3TransferLoadContext *pContext, From from, To to )
{
	char szFrom[ 64 ], szTo[ 64 ];
	using FromText_t = std::conditional_t<std::is_floating_point_v<From>, double, std::conditional_t<std::is_signed_v<From>, int64_t, uint64_t>>;
	using ToText_t = std::conditional_t<std::is_floating_point_v<To>, double, std::conditional_t<std::is_signed_v<To>, int64_t, uint64_t>>;
	KV3TransferFormatNumber( szFrom, sizeof( szFrom ), static_cast<FromText_t>( from ) );
	KV3TransferFormatNumber( szTo, sizeof( szTo ), static_cast<ToText_t>( to ) );
	KV3TransferReportCastLoss( pContext, szFrom, szTo );
}

// An integer of type T: null gives 0, a bool 0 or 1, numbers are clamped to T's range
// (fractions cut towards zero) with a report when that changed them.
template <std::integral T>
T KV3TransferReadInteger( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue )
{
	using Limits_t = std::numeric_limits<T>;
	switch ( pValue ? pValue->GetType() : KV3_TYPE_NULL )
	{
	case KV3_TYPE_NULL: return T( 0 );
	case KV3_TYPE_BOOL: return T( pValue->GetBool() ? 1 : 0 );
	case KV3_TYPE_INT:
	{
		int64_t nValue = pValue->GetInt64();
		if ( std::in_range<T>( nValue ) )
			return static_cast<T>( nValue );
		T result = nValue < 0 ? Limits_t::min() : Limits_t::max();
		KV3TransferReportLoss( pContext, nValue, result );
		return result;
	}
	case KV3_TYPE_UINT:
	{
		uint64_t nValue = pValue->GetUInt64();
		if ( std::in_range<T>( nValue ) )
			return static_cast<T>( nValue );
		T result = Limits_t::max();
		KV3TransferReportLoss( pContext, nValue, result );
		return result;
	}
	case KV3_TYPE_DOUBLE:
	{
		double flValue = pValue->GetDouble();
		T result;
		if ( std::isnan( flValue ) )
			result = T( 0 );
		else if ( flValue <= static_cast<double>( Limits_t::min() ) )
			result = Limits_t::min();
		else if ( flValue >= static_cast<double>( Limits_t::max() ) )
			result = Limits_t::max();
		else
			result = static_cast<T>( flValue );
		if ( static_cast<double>( result ) != flValue )
			KV3TransferReportLoss( pContext, flValue, result );
		return result;
	}
	default: KV3TransferReportUnsupportedType( pContext, pValue ); return T( 0 );
	}
}

template <>
inline bool KV3TransferReadInteger<bool>( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue )
{
	switch ( pValue ? pValue->GetType() : KV3_TYPE_NULL )
	{
	case KV3_TYPE_NULL: return false;
	case KV3_TYPE_BOOL: return pValue->GetBool();
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT:
	case KV3_TYPE_DOUBLE: return KV3TransferReadInteger<int64_t>( pContext, pValue ) != 0;
	default: KV3TransferReportUnsupportedType( pContext, pValue ); return false;
	}
}

// A float or double: integers convert, a double too large for a float is reported.
template <std::floating_point T>
T KV3TransferReadFloat( CKV3TransferLoadContext *pContext, const KeyValues3 *pValue )
{
	switch ( pValue ? pValue->GetType() : KV3_TYPE_NULL )
	{
	case KV3_TYPE_NULL: return T( 0 );
	case KV3_TYPE_BOOL: return T( pValue->GetBool() ? 1 : 0 );
	case KV3_TYPE_INT:
	{
		int64_t nValue = pValue->GetInt64();
		T result = static_cast<T>( nValue );
		if ( static_cast<long double>( result ) != static_cast<long double>( nValue ) )
			KV3TransferReportLoss( pContext, nValue, result );
		return result;
	}
	case KV3_TYPE_UINT:
	{
		uint64_t nValue = pValue->GetUInt64();
		T result = static_cast<T>( nValue );
		if ( static_cast<long double>( result ) != static_cast<long double>( nValue ) )
			KV3TransferReportLoss( pContext, nValue, result );
		return result;
	}
	case KV3_TYPE_DOUBLE:
	{
		double flValue = pValue->GetDouble();
		if ( std::isfinite( flValue ) && std::abs( flValue ) > static_cast<double>( std::numeric_limits<T>::max() ) )
		{
			T result = flValue < 0 ? -std::numeric_limits<T>::max() : std::numeric_limits<T>::max();
			KV3TransferReportLoss( pContext, flValue, result );
			return result;
		}
		return static_cast<T>( flValue );
	}
	default: KV3TransferReportUnsupportedType( pContext, pValue ); return T( 0 );
	}
}
