#pragma once
// The benchmarks' particle effect: a continuous emitter held at a given number of live
// particles, seven initializers, eight operators and a sprite renderer.

#include <cstdio>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/particles/sim/particleruntimedefinition.h"

inline std::string EffectText( int nLiveParticles )
{
	// Lifetimes average one second, so the rate is the live count.
	return "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
		   "{ _class = \"CParticleSystemDefinition\"\n"
		   "  m_nMaxParticles = " +
		   std::to_string( nLiveParticles + nLiveParticles / 8 ) + "\n  m_Emitters = [ { _class = \"C_OP_ContinuousEmitter\" m_flEmitRate = " +
		   std::to_string( nLiveParticles ) + ".0 } ]\n" + R"(
  m_Initializers = [
    { _class = "C_INIT_CreateWithinSphere" m_fRadiusMax = 20.0 m_fSpeedMin = 10.0 m_fSpeedMax = 40.0 },
    { _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 0.9 m_fLifetimeMax = 1.1 },
    { _class = "C_INIT_RandomRadius" m_flRadiusMin = 2.0 m_flRadiusMax = 6.0 },
    { _class = "C_INIT_RandomColor" m_ColorMin = [ 255, 120, 40, 255 ] m_ColorMax = [ 255, 200, 90, 255 ] },
    { _class = "C_INIT_RandomRotation" },
    { _class = "C_INIT_InitFloat" m_nOutputField = 5 m_InputValue = { m_nType = "PF_TYPE_RANDOM_UNIFORM" m_flRandomMin = -90.0 m_flRandomMax = 90.0 } },
    { _class = "C_INIT_InitFloat" m_nOutputField = 7 m_InputValue = { m_nType = "PF_TYPE_RANDOM_UNIFORM" m_flRandomMin = 0.6 m_flRandomMax = 1.0 } },
  ]
  m_Operators = [
    { _class = "C_OP_BasicMovement" m_Gravity = [ 0.0, 0.0, -50.0 ] m_fDrag = 0.05 },
    { _class = "C_OP_Decay" },
    { _class = "C_OP_FadeInSimple" m_flFadeInTime = 0.1 },
    { _class = "C_OP_FadeOutSimple" m_flFadeOutTime = 0.4 },
    { _class = "C_OP_InterpolateRadius" m_flStartScale = 1.0 m_flEndScale = 0.2 },
    { _class = "C_OP_ColorInterpolate" m_ColorFade = [ 80, 20, 10, 255 ] },
    { _class = "C_OP_SpinUpdate" },
    { _class = "C_OP_SetFloat" m_nOutputField = 18 m_InputValue = { m_nType = "PF_TYPE_PARTICLE_AGE_NORMALIZED" m_nMapType = "PF_MAP_TYPE_REMAP" m_flOutput0 = 1.0 m_flOutput1 = 0.0 } },
  ]
  m_Renderers = [ { _class = "C_OP_RenderSprites" } ]
}
)";
}

inline ParticleDefinitionPtr_t CompileEffect( int nLiveParticles )
{
	std::string text = EffectText( nLiveParticles );
	CUtlBuffer buffer( text.data(), text.size() );
	CUtlString error;
	ParticleDefinitionPtr_t pDef = CompileParticleDefinition( &buffer, "bench", nullptr, &error );
	if ( !pDef )
		fprintf( stderr, "bench effect failed to compile: %s\n", error.Get() );
	return pDef;
}
