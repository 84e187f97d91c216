#pragma once
// The values of variables as the document and the preview hold them: KV3 in the form of
// the variable's type (a number, an array of floats, a resource name), made, converted
// and read here so that every holder agrees on that form.

#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"

class CPulseValueFullType;
class KeyValues3;

// The default value of a type in its KV3 form; null for a type without a value.
void ZolNamedValue_GetDefault( const CPulseValueFullType &type, KeyValues3 *pOut );

// pIn in the form of type: read as the type when it fits, else converted from the type
// its shape suggests (a number, three or eight floats, text), else the type's default.
// Resource names stay text: no resource is looked up.
void ZolNamedValue_Convert( const CPulseValueFullType &type, const KeyValues3 &pIn, KeyValues3 *pOut );

// A value as a point: a float in x, a vector, a transform's position and angles; the
// angles are zero for anything but a transform. False for other types.
bool ZolNamedValue_ToTransform( const CPulseValueFullType &type, const KeyValues3 &value, Vector *pPosition, QAngle *pAngles );
// The reverse; false, leaving pOut alone, for a type that a point can't express.
bool ZolNamedValue_FromTransform( const CPulseValueFullType &type, const Vector &vPosition, const QAngle &angles, KeyValues3 *pOut );

// A transform's orientation: angles (pitch about y, yaw about z, roll about x, in degrees)
// to a quaternion (x, y, z, w) and back. A zero quaternion reads as no rotation.
void ZolAnglesToQuaternion( const QAngle &angles, float *pQuaternion );
QAngle ZolQuaternionToAngles( const float *pQuaternion );
