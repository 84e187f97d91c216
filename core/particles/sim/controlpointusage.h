#pragma once
// What a function reports of the control points and named values it touches: one record
// per use, and the flag pair that the function list colours rows by.

#include <cstdint>

#include "core/particles/controlpointusagekind.h"
#include "core/particles/particleparamid.h"
#include "core/text/utlstring.h"

enum ControlPointAccess_t : uint8_t
{
	CONTROL_POINT_ACCESS_READ = 1,
	CONTROL_POINT_ACCESS_WRITE = 2,
	CONTROL_POINT_ACCESS_WRITE_SPECIAL = 4, // written with a special role
};

// What reported a use: one of the function's inputs, or the function itself through a
// field of its own that names a control point (a raw read or write).
enum ParticleUsageSource_t : uint8_t
{
	PARTICLE_USAGE_RAW = 0,
	PARTICLE_USAGE_FLOAT_INPUT,
	PARTICLE_USAGE_VEC_INPUT,
	PARTICLE_USAGE_TRANSFORM_INPUT,
	PARTICLE_USAGE_MODEL_INPUT,
};

// One reported use of a control point or named value.
struct HostControlPointUsage_t
{
	ParticleParamID_t m_ID;
	int32_t m_nComponent = -1; // -1: all three components
	int32_t m_nUsageKind = CONTROL_POINT_USAGE_GENERIC; // a ControlPointUsageKind_t
	uint8_t m_nAccess = CONTROL_POINT_ACCESS_READ;
	float m_flDefault[ 3 ] = { 0.0f, 0.0f, 0.0f };
	// The named value's type as Pulse writes it ("PVAL_FLOAT", "PVAL_RESOURCE:tmsh"); empty for control points.
	CUtlString m_ValueType;
	// The input field that reported the use ("m_TransformInput"), empty for a raw use, and
	// the class of that input: a conversion to a variable types the variable by it.
	CUtlString m_Field;
	ParticleUsageSource_t m_eSource = PARTICLE_USAGE_RAW;

	// Fills the default values that go with a usage kind.
	static HostControlPointUsage_t Make( const ParticleParamID_t &id, int nUsageKind, uint8_t nAccess, int nComponent = -1 );
};

// The function list's view of a use: bit 0 read, bit 1 written.
struct ParticleControlPointUse_t
{
	ParticleParamID_t m_ID;
	int m_nFlags = 0;
};
