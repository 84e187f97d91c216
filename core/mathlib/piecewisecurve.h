#pragma once
// A one-dimensional cubic Hermite curve whose keys carry a tangent mode per side. Float
// inputs map values through it at run time and the curve editor edits it in place, so it
// is plain data: readers need no lock while nobody edits it.

#include <cstdint>
#include <vector>

#include "core/kv3transfer/kv3transfertypes.h"
#include "core/mathlib/vector2d.h"
#include "core/schema/schemadeclare.h"

class KeyValues3;
class CKV3TransferLoadContext;
class CKV3TransferSaveContext;

enum CurveTangentMode_t : int32_t
{
	CURVE_TANGENT_LINEAR = 0,
	CURVE_TANGENT_SPLINE = 1,
	CURVE_TANGENT_FREE = 2,
	CURVE_TANGENT_MIRROR = 3,
	CURVE_TANGENT_SINE = 4,
};
constexpr int CURVE_TANGENT_MODE_COUNT = 5;

SCHEMA_ENUM_BEGIN( CurveTangentMode_t )
	SCHEMA_ENUMERATOR( CURVE_TANGENT_LINEAR, { "MPropertyFriendlyName", "Linear" } )
	SCHEMA_ENUMERATOR( CURVE_TANGENT_SPLINE, { "MPropertyFriendlyName", "Spline" } )
	SCHEMA_ENUMERATOR( CURVE_TANGENT_FREE, { "MPropertyFriendlyName", "Free" } )
	SCHEMA_ENUMERATOR( CURVE_TANGENT_MIRROR, { "MPropertyFriendlyName", "Mirror" } )
	SCHEMA_ENUMERATOR( CURVE_TANGENT_SINE, { "MPropertyFriendlyName", "Sine" } )
SCHEMA_ENUM_END()

// Menu label ("Spline") and icon path of a mode; "" for a value outside the table.
const char *GetCurveTangentModeLabel( int nMode );
const char *GetCurveTangentModeIcon( int nMode );

// Files spell modes by name in any case; a name outside the table reads as Spline, and a
// bool or number is taken as the value.
template <> struct KV3Transfer_t<CurveTangentMode_t>
{
	static void Load( CurveTangentMode_t &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext );
	static void Save( const CurveTangentMode_t &value, KeyValues3 *pValue, CKV3TransferSaveContext *pContext );
};

// Slopes are dy/dx in curve units.
struct CurveKey_t
{
	SCHEMA_CLASS( CurveKey_t )
	SCHEMA_FIELD( float, x, 0.0f )
	SCHEMA_FIELD( float, y, 0.0f )
	SCHEMA_FIELD( float, m_flSlopeIncoming, 0.0f )
	SCHEMA_FIELD( float, m_flSlopeOutgoing, 0.0f )
};

struct CurveTangents_t
{
	SCHEMA_CLASS( CurveTangents_t )
	SCHEMA_FIELD( CurveTangentMode_t, m_nIncomingTangent, CURVE_TANGENT_LINEAR )
	SCHEMA_FIELD( CurveTangentMode_t, m_nOutgoingTangent, CURVE_TANGENT_LINEAR )
};

class CPiecewiseCurve
{
	SCHEMA_CLASS( CPiecewiseCurve )
	// Strictly ascending in x; one tangent pair per key.
	SCHEMA_FIELD( std::vector<CurveKey_t>, m_spline, {} )
	SCHEMA_FIELD( std::vector<CurveTangents_t>, m_tangents, {} )
	SCHEMA_FIELD( Vector2D, m_vDomainMins, ( Vector2D( 0.0f, 0.0f ) ) )
	SCHEMA_FIELD( Vector2D, m_vDomainMaxs, ( Vector2D( 0.0f, 0.0f ) ) )

	// Keys closer than this in x are pushed apart.
	static constexpr float MIN_KEY_SPACING = 0.0001f;

	// The editor's starting state: domain (0,0)-(1,1), keys (0,0) and (1,1) with Spline tangents.
	void Reset();
	void Clear();

	int GetKeyCount() const { return static_cast<int>( m_spline.size() ); }
	const CurveKey_t &GetKey( int nIndex ) const { return m_spline[ nIndex ]; }
	const CurveTangents_t &GetTangents( int nIndex ) const { return m_tangents[ nIndex ]; }
	bool IsValidIndex( int nIndex ) const { return nIndex >= 0 && nIndex < GetKeyCount(); }

	// Inserts before the first key with a greater x, overwrites a key with exactly this x,
	// or appends. Answers the key's index.
	int AddPoint( float x, float y, CurveTangentMode_t eIncoming, CurveTangentMode_t eOutgoing, float flSlopeIn, float flSlopeOut );
	// Adds a key that continues the outgoing mode of the key to its left.
	int InsertPoint( float x, float y );
	void RemovePoint( int nIndex );
	// Moves a key without passing its neighbours, inside the domain.
	void SetPoint( int nIndex, float x, float y, CurveTangentMode_t eIncoming, CurveTangentMode_t eOutgoing );
	void SetTangentModes( int nIndex, CurveTangentMode_t eIncoming, CurveTangentMode_t eOutgoing );
	// False when the domain is already this one. Keys are left where they are.
	bool SetDomain( const Vector2D &vMins, const Vector2D &vMaxs );
	void SetSlopeIncoming( int nIndex, float flSlope );
	void SetSlopeOutgoing( int nIndex, float flSlope );

	// The index of the right key of the segment that holds x (1 .. count - 1).
	int FindSegment( float x ) const;
	// The same, searched from a start index; cheap when sampling in ascending order.
	int FindSegmentFrom( float x, int nStart ) const;

	// With fewer than two keys the answer is x itself. Outside the keys the end values hold.
	float Evaluate( float x ) const;
	// Evaluate, clamped to the domain's y range.
	float EvaluateClamped( float x ) const;

	// Maps the domain's lower corner to a and the upper to b; a.x above b.x turns the
	// curve over horizontally.
	bool Rescale( const Vector2D &a, const Vector2D &b );
	// pOut receives the curve mirrored within the domain's y range.
	void FlipVertical( CPiecewiseCurve *pOut ) const;

	// Makes both vectors the same length and the keys strictly ascending.
	void EnforceOrder();
	// Recomputes every slope that its mode derives from the neighbouring keys.
	void RecomputeTangents();

	// The transfer hooks: slopes are derived after a load, and a curve is always written whole.
	static void KV3PostLoad( CPiecewiseCurve &curve, const KeyValues3 *pTable, CKV3TransferLoadContext *pContext );
	int KV3IsMemberAtDefault( const char *pszMember, const CPiecewiseCurve &defaultCurve ) const;
};
