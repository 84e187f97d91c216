#pragma once
// Operators: functions that update living particles every simulation step.

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/color.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"

class C_OP_BasicMovement : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_BasicMovement, CParticleFunctionOperator, { "MPropertyFriendlyName", "Basic Movement" } )
	SCHEMA_FIELD( Vector, m_Gravity, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "gravity" } )
	SCHEMA_FIELD( float, m_fDrag, 0.0f, { "MPropertyFriendlyName", "drag" } )
};

class C_OP_Decay : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_Decay, CParticleFunctionOperator, { "MPropertyFriendlyName", "Decay" } )
};

class C_OP_FadeInSimple : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_FadeInSimple, CParticleFunctionOperator, { "MPropertyFriendlyName", "Fade In" } )
	SCHEMA_FIELD( float, m_flFadeInTime, 0.25f, { "MPropertyFriendlyName", "fade in time" } )
};

class C_OP_FadeOutSimple : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_FadeOutSimple, CParticleFunctionOperator, { "MPropertyFriendlyName", "Fade Out" } )
	SCHEMA_FIELD( float, m_flFadeOutTime, 0.25f, { "MPropertyFriendlyName", "fade out time" } )
};

class C_OP_InterpolateRadius : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_InterpolateRadius, CParticleFunctionOperator, { "MPropertyFriendlyName", "Interpolate Radius" } )
	SCHEMA_FIELD( float, m_flStartScale, 1.0f, { "MPropertyFriendlyName", "start scale" } )
	SCHEMA_FIELD( float, m_flEndScale, 1.0f, { "MPropertyFriendlyName", "end scale" } )
};

class C_OP_ColorInterpolate : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_ColorInterpolate, CParticleFunctionOperator, { "MPropertyFriendlyName", "Color Interpolate" } )
	SCHEMA_FIELD( Color, m_ColorFade, ( Color( 255, 255, 255, 255 ) ), { "MPropertyFriendlyName", "color fade" } )
};

class C_OP_SpinUpdate : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_SpinUpdate, CParticleFunctionOperator, { "MPropertyFriendlyName", "Spin Update" } )
};

class C_OP_SetFloat : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_SetFloat, CParticleFunctionOperator, { "MPropertyFriendlyName", "Set Float" } )
};

class C_OP_SetVec : public CParticleFunctionOperator
{
	SCHEMA_DERIVED_CLASS( C_OP_SetVec, CParticleFunctionOperator, { "MPropertyFriendlyName", "Set Vec" } )
};
