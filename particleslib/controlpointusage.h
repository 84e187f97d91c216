#pragma once
// One reported use of a control point or named value by a function or input: the
// compile gathers these to tell the preview which control points need which data.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/particles/controlpointusagekind.h"
#include "core/particles/particleparamid.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

// Control points are numbered 0 to this.
constexpr int32_t MAX_PARTICLE_CONTROL_POINT = 63;

// Access flags.
constexpr uint8_t CONTROL_POINT_ACCESS_READ = 1 << 0;
constexpr uint8_t CONTROL_POINT_ACCESS_WRITE = 1 << 1;
constexpr uint8_t CONTROL_POINT_ACCESS_WRITE_SPECIAL = 1 << 2; // written with a special role

struct ControlPointUsage_t
{
	ParticleParamID_t m_ID;        // the number, or -1 with a name token
	int32_t m_nComponent = -1;     // -1: the whole control point
	int32_t m_nUsageKind = 0;
	uint8_t m_nAccessFlags = 0;
	float m_flDefaults[ 3 ] = { 0.0f, 0.0f, 0.0f };
	CPulseValueFullType m_ValueType; // empty unless a named value's type is known
};

// A usage of a numbered control point, with the default values its kind implies
// (ControlPointUsageKind_t).
ControlPointUsage_t MakeControlPointUsage( int32_t nControlPoint, int32_t nUsageKind, uint8_t nAccessFlags );
// Appends a read of a control point; a negative number appends nothing.
void AddControlPointRead( CUtlVector<ControlPointUsage_t> &list, int32_t nControlPoint, int32_t nUsageKind );
