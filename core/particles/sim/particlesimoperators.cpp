// Operators: every living particle, every step. Each loops over the attribute arrays.

#include <algorithm>
#include <cmath>

#include "core/particles/sim/particlecollection.h"
#include "core/particles/sim/particlefunctionreader.h"
#include "core/particles/sim/particlenoise.h"
#include "core/particles/sim/particlesimfunctionlist.h"
#include "core/particles/sim/particlesimmath.h"

using namespace ParticleMath;

namespace
{
// The behaviour version from which drag is a share per second rather than per step.
constexpr int DRAG_PER_SECOND_VERSION = 11;

class CBasicMovement final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		reader.VecInput( "m_Gravity", &m_Gravity, false );
		m_Drag = CSimFloatInput( 0.0f );
		reader.FloatInput( "m_fDrag", &m_Drag, false );
		reader.Reads( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void Operate( CParticleCollection &c, float flDt ) const override
	{
		if ( flDt <= 0.0f )
			return;
		Vector vGravity = m_Gravity.EvaluateCollection( c );
		// Drag is the share of its speed a particle loses in one second, whatever the rate
		// of the steps that make up that second. Files made before behaviour version 11
		// lose it in every step, as they were tuned, until they are upgraded.
		float flDrag = Clamp( m_Drag.EvaluateCollection( c ), 0.0f, 1.0f );
		float flKeep = 1.0f;
		if ( flDrag > 0.0f )
			flKeep = c.GetDefinition()->m_nBehaviorVersion < DRAG_PER_SECOND_VERSION ? 1.0f - flDrag : std::pow( 1.0f - flDrag, flDt );
		// Verlet: the distance moved over the previous interval, rescaled to this step's length.
		const float flFromDt = c.GetPreviousDt();
		const float flToDt = CParticleCollection::MotionDt( flDt );
		float flCarry = ( flFromDt > 0.0f ? flDt / flFromDt : 1.0f ) * flKeep;
		float flDtSq = flDt * flDt;
		const bool bShortStep = flToDt != flDt;
		int n = c.Count();
		for ( int k = 0; k < 3; ++k )
		{
			float *__restrict pPos = c.Stream( PARTICLE_ATTRIBUTE_POSITION, k );
			float *__restrict pPrev = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k );
			const float *__restrict pForce = c.GetDefinition()->m_bHasForces ? c.Force( k ) : nullptr;
			float flAccel = vGravity[ k ] * flDtSq;
			if ( bShortStep )
			{
				// A step shorter than the motion interval: the previous position is put back
				// a whole interval behind, so the velocity it stands for stays exact.
				const float flInvFromDt = flFromDt > 0.0f ? 1.0f / flFromDt : 0.0f;
				for ( int i = 0; i < n; ++i )
				{
					float flVelocity = ( pPos[ i ] - pPrev[ i ] ) * flInvFromDt * flKeep + ( vGravity[ k ] + ( pForce ? pForce[ i ] : 0.0f ) ) * flDt;
					pPos[ i ] += flVelocity * flDt;
					pPrev[ i ] = pPos[ i ] - flVelocity * flToDt;
				}
			}
			else if ( pForce )
			{
				for ( int i = 0; i < n; ++i )
				{
					float flPos = pPos[ i ];
					pPos[ i ] = flPos + ( flPos - pPrev[ i ] ) * flCarry + flAccel + pForce[ i ] * flDtSq;
					pPrev[ i ] = flPos;
				}
			}
			else
			{
				for ( int i = 0; i < n; ++i )
				{
					float flPos = pPos[ i ];
					pPos[ i ] = flPos + ( flPos - pPrev[ i ] ) * flCarry + flAccel;
					pPrev[ i ] = flPos;
				}
			}
		}
	}

private:
	CSimVecInput m_Gravity;
	CSimFloatInput m_Drag;
};

class CDecay final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		reader.Reads( PARTICLE_ATTRIBUTE_CREATION_TIME );
		reader.Reads( PARTICLE_ATTRIBUTE_LIFE_DURATION );
		m_bRunsWhenCulled = true;
		m_bEndsLives = true;
	}

	void Operate( CParticleCollection &c, float ) const override { KillExpired( c ); }

	void KillExpired( CParticleCollection &c ) const override
	{
		const float *pCreation = c.Stream( PARTICLE_ATTRIBUTE_CREATION_TIME );
		const float *pLife = c.Stream( PARTICLE_ATTRIBUTE_LIFE_DURATION );
		float flTime = c.GetTime();
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			if ( flTime - pCreation[ i ] >= pLife[ i ] )
				c.KillParticle( i );
		}
	}
};

// Fades and interpolations run on normalized age: 0 at birth, 1 at the end of life.
void NormalizedAge( const CParticleCollection &c, float *pOut )
{
	const float *pCreation = c.Stream( PARTICLE_ATTRIBUTE_CREATION_TIME );
	const float *pLife = c.Stream( PARTICLE_ATTRIBUTE_LIFE_DURATION );
	float flTime = c.GetTime();
	int n = c.Count();
	for ( int i = 0; i < n; ++i )
		pOut[ i ] = pLife[ i ] > 0.0f ? ( flTime - pCreation[ i ] ) / pLife[ i ] : 1.0f;
}

class CFadeInSimple final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flFadeInTime = reader.Float( "m_flFadeInTime", 0.25f );
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_ALPHA );
		reader.ReadsInitial( m_nField );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		float *pAge = c.Scratch( 0 );
		NormalizedAge( c, pAge );
		float *pOut = c.Stream( m_nField );
		const float *pInitial = c.InitialStream( m_nField );
		float flInv = m_flFadeInTime > 0.0f ? 1.0f / m_flFadeInTime : 1e9f;
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
			pOut[ i ] = pInitial[ i ] * std::min( 1.0f, pAge[ i ] * flInv );
	}

private:
	float m_flFadeInTime = 0.25f;
	int m_nField = PARTICLE_ATTRIBUTE_ALPHA;
};

class CFadeOutSimple final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flFadeOutTime = reader.Float( "m_flFadeOutTime", 0.25f );
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_ALPHA );
		reader.ReadsInitial( m_nField );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		float *pAge = c.Scratch( 0 );
		NormalizedAge( c, pAge );
		float *pOut = c.Stream( m_nField );
		const float *pInitial = c.InitialStream( m_nField );
		float flInv = m_flFadeOutTime > 0.0f ? 1.0f / m_flFadeOutTime : 1e9f;
		int n = c.Count();
		// The lower of what earlier functions left and the faded initial value, so a fade
		// in and a fade out combine and repeated steps don't compound.
		for ( int i = 0; i < n; ++i )
			pOut[ i ] = std::min( pOut[ i ], pInitial[ i ] * Clamp( ( 1.0f - pAge[ i ] ) * flInv, 0.0f, 1.0f ) );
	}

private:
	float m_flFadeOutTime = 0.25f;
	int m_nField = PARTICLE_ATTRIBUTE_ALPHA;
};

class CInterpolateRadius final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flStartTime = reader.Float( "m_flStartTime", 0.0f );
		m_flEndTime = reader.Float( "m_flEndTime", 1.0f );
		m_flStartScale = reader.Float( "m_flStartScale", 1.0f );
		m_flEndScale = reader.Float( "m_flEndScale", 1.0f );
		reader.Writes( PARTICLE_ATTRIBUTE_RADIUS );
		reader.ReadsInitial( PARTICLE_ATTRIBUTE_RADIUS );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		float *pAge = c.Scratch( 0 );
		NormalizedAge( c, pAge );
		float *pRadius = c.Stream( PARTICLE_ATTRIBUTE_RADIUS );
		const float *pInitial = c.InitialStream( PARTICLE_ATTRIBUTE_RADIUS );
		float flSpan = m_flEndTime - m_flStartTime;
		float flInv = flSpan > 0.0f ? 1.0f / flSpan : 1e9f;
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			float t = Clamp( ( pAge[ i ] - m_flStartTime ) * flInv, 0.0f, 1.0f );
			pRadius[ i ] = pInitial[ i ] * ( m_flStartScale + ( m_flEndScale - m_flStartScale ) * t );
		}
	}

private:
	float m_flStartTime = 0.0f, m_flEndTime = 1.0f, m_flStartScale = 1.0f, m_flEndScale = 1.0f;
};

class CColorInterpolate final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_vColorFade = reader.Color( "m_ColorFade", Vector( 1.0f, 1.0f, 1.0f ) );
		m_flFadeStartTime = reader.Float( "m_flFadeStartTime", 0.0f );
		m_flFadeEndTime = reader.Float( "m_flFadeEndTime", 1.0f );
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_COLOR );
		reader.ReadsInitial( m_nField );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		if ( GetParticleAttributeComponentCount( m_nField ) != 3 )
			return;
		float *pAge = c.Scratch( 0 );
		NormalizedAge( c, pAge );
		float flSpan = m_flFadeEndTime - m_flFadeStartTime;
		float flInv = flSpan > 0.0f ? 1.0f / flSpan : 1e9f;
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
			pAge[ i ] = Clamp( ( pAge[ i ] - m_flFadeStartTime ) * flInv, 0.0f, 1.0f );
		for ( int k = 0; k < 3; ++k )
		{
			float *pOut = c.Stream( m_nField, k );
			const float *pInitial = c.InitialStream( m_nField, k );
			float flTarget = m_vColorFade[ k ];
			for ( int i = 0; i < n; ++i )
				pOut[ i ] = pInitial[ i ] + ( flTarget - pInitial[ i ] ) * pAge[ i ];
		}
	}

private:
	Vector m_vColorFade{ 1.0f, 1.0f, 1.0f };
	float m_flFadeStartTime = 0.0f, m_flFadeEndTime = 1.0f;
	int m_nField = PARTICLE_ATTRIBUTE_COLOR;
};

class CSpinUpdate final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		reader.Reads( PARTICLE_ATTRIBUTE_ROLL_SPEED );
		reader.Writes( PARTICLE_ATTRIBUTE_ROLL );
	}

	void Operate( CParticleCollection &c, float flDt ) const override
	{
		float *pRotation = c.Stream( PARTICLE_ATTRIBUTE_ROLL );
		const float *pSpeed = c.Stream( PARTICLE_ATTRIBUTE_ROLL_SPEED );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
			pRotation[ i ] += pSpeed[ i ] * flDt;
	}
};

class CSetFloat final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nOutputField = reader.OutputAttribute( "m_nOutputField", 3 );
		reader.FloatInput( "m_InputValue", &m_InputValue, true );
		m_nSetMethod = reader.Enum( "m_nSetMethod", g_ParticleSetMethodNames, 6, PARTICLE_SET_REPLACE_VALUE );
		m_Lerp = CSimFloatInput( 1.0f );
		reader.FloatInput( "m_Lerp", &m_Lerp, false );
		if ( m_nSetMethod == PARTICLE_SET_SCALE_INITIAL_VALUE || m_nSetMethod == PARTICLE_SET_ADD_TO_INITIAL_VALUE )
			reader.ReadsInitial( m_nOutputField );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		int n = c.Count();
		float *pValues = c.Scratch( 1 );
		m_InputValue.EvaluatePerParticle( c, 0, n, pValues );
		float flLerp = Clamp( m_Lerp.EvaluateCollection( c ), 0.0f, 1.0f );
		for ( int k = 0; k < GetParticleAttributeComponentCount( m_nOutputField ); ++k )
		{
			float *pOut = c.Stream( m_nOutputField, k );
			const float *pBase = pOut;
			if ( m_nSetMethod == PARTICLE_SET_SCALE_INITIAL_VALUE || m_nSetMethod == PARTICLE_SET_ADD_TO_INITIAL_VALUE )
				pBase = c.InitialStream( m_nOutputField, k );
			bool bScale = m_nSetMethod == PARTICLE_SET_SCALE_INITIAL_VALUE || m_nSetMethod == PARTICLE_SET_SCALE_CURRENT_VALUE;
			bool bAdd = m_nSetMethod == PARTICLE_SET_ADD_TO_INITIAL_VALUE || m_nSetMethod == PARTICLE_SET_ADD_TO_CURRENT_VALUE;
			for ( int i = 0; i < n; ++i )
			{
				float flTarget = bScale ? pBase[ i ] * pValues[ i ] : ( bAdd ? pBase[ i ] + pValues[ i ] : pValues[ i ] );
				pOut[ i ] += ( flTarget - pOut[ i ] ) * flLerp;
			}
		}
	}

private:
	int m_nOutputField = 3;
	int m_nSetMethod = 0;
	CSimFloatInput m_InputValue;
	CSimFloatInput m_Lerp;
};

class CSetVec final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nOutputField = reader.OutputAttribute( "m_nOutputField", PARTICLE_ATTRIBUTE_COLOR );
		reader.VecInput( "m_InputValue", &m_InputValue, true );
		m_nSetMethod = reader.Enum( "m_nSetMethod", g_ParticleSetMethodNames, 6, PARTICLE_SET_REPLACE_VALUE );
		m_Lerp = CSimFloatInput( 1.0f );
		reader.FloatInput( "m_Lerp", &m_Lerp, false );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		int n = c.Count();
		float *pValues[ 3 ] = { c.Scratch( 1 ), c.Scratch( 2 ), c.Scratch( 3 ) };
		m_InputValue.EvaluatePerParticle( c, 0, n, pValues[ 0 ], pValues[ 1 ], pValues[ 2 ] );
		float flLerp = Clamp( m_Lerp.EvaluateCollection( c ), 0.0f, 1.0f );
		int nComponents = GetParticleAttributeComponentCount( m_nOutputField );
		bool bScale = m_nSetMethod == PARTICLE_SET_SCALE_INITIAL_VALUE || m_nSetMethod == PARTICLE_SET_SCALE_CURRENT_VALUE;
		bool bAdd = m_nSetMethod == PARTICLE_SET_ADD_TO_INITIAL_VALUE || m_nSetMethod == PARTICLE_SET_ADD_TO_CURRENT_VALUE;
		for ( int k = 0; k < nComponents; ++k )
		{
			float *pOut = c.Stream( m_nOutputField, k );
			const float *pIn = pValues[ nComponents == 3 ? k : 0 ];
			for ( int i = 0; i < n; ++i )
			{
				float flTarget = bScale ? pOut[ i ] * pIn[ i ] : ( bAdd ? pOut[ i ] + pIn[ i ] : pIn[ i ] );
				pOut[ i ] += ( flTarget - pOut[ i ] ) * flLerp;
			}
		}
	}

private:
	int m_nOutputField = PARTICLE_ATTRIBUTE_COLOR;
	int m_nSetMethod = 0;
	CSimVecInput m_InputValue;
	CSimFloatInput m_Lerp;
};

// Fades alpha in and out over normalized age and kills at the end of life.
class CFadeAndKill final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flStartFadeIn = reader.Float( "m_flStartFadeInTime", 0.0f );
		m_flEndFadeIn = reader.Float( "m_flEndFadeInTime", 0.5f );
		m_flStartFadeOut = reader.Float( "m_flStartFadeOutTime", 0.5f );
		m_flEndFadeOut = reader.Float( "m_flEndFadeOutTime", 1.0f );
		m_flStartAlpha = reader.Float( "m_flStartAlpha", 1.0f );
		m_flEndAlpha = reader.Float( "m_flEndAlpha", 0.0f );
		reader.Writes( PARTICLE_ATTRIBUTE_ALPHA );
		reader.ReadsInitial( PARTICLE_ATTRIBUTE_ALPHA );
		m_bRunsWhenCulled = true;
		m_bEndsLives = true;
	}

	void KillExpired( CParticleCollection &c ) const override
	{
		float *pAge = c.Scratch( 0 );
		NormalizedAge( c, pAge );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			if ( pAge[ i ] >= 1.0f )
				c.KillParticle( i );
		}
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		float *pAge = c.Scratch( 0 );
		NormalizedAge( c, pAge );
		float *pAlpha = c.Stream( PARTICLE_ATTRIBUTE_ALPHA );
		const float *pInitial = c.InitialStream( PARTICLE_ATTRIBUTE_ALPHA );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			float t = pAge[ i ], flScale;
			if ( t >= 1.0f )
			{
				c.KillParticle( i );
				continue;
			}
			if ( t < m_flEndFadeIn )
				flScale = Lerp( m_flStartAlpha, 1.0f, Clamp( ( t - m_flStartFadeIn ) / std::max( m_flEndFadeIn - m_flStartFadeIn, 1e-6f ), 0.0f, 1.0f ) );
			else if ( t >= m_flStartFadeOut )
				flScale = Lerp( 1.0f, m_flEndAlpha, Clamp( ( t - m_flStartFadeOut ) / std::max( m_flEndFadeOut - m_flStartFadeOut, 1e-6f ), 0.0f, 1.0f ) );
			else
				flScale = 1.0f;
			pAlpha[ i ] = pInitial[ i ] * flScale;
		}
	}

private:
	float m_flStartFadeIn = 0.0f, m_flEndFadeIn = 0.5f, m_flStartFadeOut = 0.5f, m_flEndFadeOut = 1.0f, m_flStartAlpha = 1.0f, m_flEndAlpha = 0.0f;
};

// Moves an attribute from its initial value to a target over a window of normalized age.
class CLerpScalar final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_RADIUS );
		reader.ReadsInitial( m_nField );
		m_Output = CSimFloatInput( 1.0f );
		reader.FloatInput( "m_flOutput", &m_Output, true );
		m_flStartTime = reader.Float( "m_flStartTime", 0.0f );
		m_flEndTime = reader.Float( "m_flEndTime", 1.0f );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		int n = c.Count();
		float *pAge = c.Scratch( 0 );
		float *pTarget = c.Scratch( 1 );
		NormalizedAge( c, pAge );
		m_Output.EvaluatePerParticle( c, 0, n, pTarget );
		float flInv = 1.0f / std::max( m_flEndTime - m_flStartTime, 1e-6f );
		for ( int k = 0; k < GetParticleAttributeComponentCount( m_nField ); ++k )
		{
			float *pOut = c.Stream( m_nField, k );
			const float *pInitial = c.InitialStream( m_nField, k );
			for ( int i = 0; i < n; ++i )
				pOut[ i ] = Lerp( pInitial[ i ], pTarget[ i ], Clamp( ( pAge[ i ] - m_flStartTime ) * flInv, 0.0f, 1.0f ) );
		}
	}

private:
	int m_nField = PARTICLE_ATTRIBUTE_RADIUS;
	CSimFloatInput m_Output;
	float m_flStartTime = 0.0f, m_flEndTime = 1.0f;
};

class CLerpVector final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_COLOR );
		reader.ReadsInitial( m_nField );
		m_vOutput = reader.Vec( "m_vecOutput", Vector() );
		m_flStartTime = reader.Float( "m_flStartTime", 0.0f );
		m_flEndTime = reader.Float( "m_flEndTime", 1.0f );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		if ( GetParticleAttributeComponentCount( m_nField ) != 3 )
			return;
		int n = c.Count();
		float *pAge = c.Scratch( 0 );
		NormalizedAge( c, pAge );
		float flInv = 1.0f / std::max( m_flEndTime - m_flStartTime, 1e-6f );
		for ( int k = 0; k < 3; ++k )
		{
			float *pOut = c.Stream( m_nField, k );
			const float *pInitial = c.InitialStream( m_nField, k );
			for ( int i = 0; i < n; ++i )
				pOut[ i ] = Lerp( pInitial[ i ], m_vOutput[ k ], Clamp( ( pAge[ i ] - m_flStartTime ) * flInv, 0.0f, 1.0f ) );
		}
	}

private:
	int m_nField = PARTICLE_ATTRIBUTE_COLOR;
	Vector m_vOutput;
	float m_flStartTime = 0.0f, m_flEndTime = 1.0f;
};

class CClampScalar final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_RADIUS );
		m_Min = CSimFloatInput( 0.0f );
		m_Max = CSimFloatInput( 1.0f );
		reader.FloatInput( "m_flOutputMin", &m_Min, true );
		reader.FloatInput( "m_flOutputMax", &m_Max, true );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		int n = c.Count();
		float *pMin = c.Scratch( 1 ), *pMax = c.Scratch( 2 );
		m_Min.EvaluatePerParticle( c, 0, n, pMin );
		m_Max.EvaluatePerParticle( c, 0, n, pMax );
		for ( int k = 0; k < GetParticleAttributeComponentCount( m_nField ); ++k )
		{
			float *pOut = c.Stream( m_nField, k );
			for ( int i = 0; i < n; ++i )
				pOut[ i ] = Clamp( pOut[ i ], pMin[ i ], pMax[ i ] );
		}
	}

private:
	int m_nField = PARTICLE_ATTRIBUTE_RADIUS;
	CSimFloatInput m_Min, m_Max;
};

// Roll at a fixed rate (degrees per second) that stops at a given age.
class CSpin final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flRate = float( reader.Int( "m_nSpinRateDegrees", 0 ) );
		m_flStopTime = reader.Float( "m_fSpinRateStopTime", 0.0f );
		reader.Writes( PARTICLE_ATTRIBUTE_ROLL );
	}

	void Operate( CParticleCollection &c, float flDt ) const override
	{
		float *pRoll = c.Stream( PARTICLE_ATTRIBUTE_ROLL );
		const float *pCreation = c.Stream( PARTICLE_ATTRIBUTE_CREATION_TIME );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			bool bSpinning = m_flStopTime <= 0.0f || c.GetTime() - pCreation[ i ] < m_flStopTime;
			pRoll[ i ] += bSpinning ? m_flRate * flDt : 0.0f;
		}
	}

private:
	float m_flRate = 0.0f, m_flStopTime = 0.0f;
};

class CAlphaDecay final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flMinAlpha = reader.Float( "m_flMinAlpha", 0.0f );
		reader.Reads( PARTICLE_ATTRIBUTE_ALPHA );
		m_bEndsLives = true;
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		const float *pAlpha = c.Stream( PARTICLE_ATTRIBUTE_ALPHA );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			if ( pAlpha[ i ] <= m_flMinAlpha )
				c.KillParticle( i );
		}
	}

private:
	float m_flMinAlpha = 0.0f;
};

// Places one control point from a vector input, for children and later functions.
class CSetSingleControlPointPosition final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nControlPoint = reader.Int( "m_nCP1", 1 );
		m_Position = CSimVecInput( Vector( 128.0f, 0.0f, 0.0f ) );
		reader.VecInput( "m_vecCP1Pos", &m_Position, false );
		m_bSetOnce = reader.Bool( "m_bSetOnce", false );
		reader.WritesControlPoint( m_nControlPoint, CONTROL_POINT_USAGE_POSITION );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		if ( m_bSetOnce && c.GetControlPoint( m_nControlPoint ).m_bSet && c.GetTime() > 0.0f )
			return;
		c.WriteControlPoint( m_nControlPoint, m_Position.EvaluateCollection( c ) );
	}

private:
	int m_nControlPoint = 1;
	CSimVecInput m_Position;
	bool m_bSetOnce = false;
};

// A per-particle value in 0 .. 1 that stays the same for the particle's whole life, so
// each one keeps its own rate and frequency without storing them.
inline float StableParticleFraction( float flParticleID, uint32_t nSalt )
{
	return float( ParticleNoiseHash( uint32_t( flParticleID ) * 2654435761u + nSalt ) & 0xFFFFFFu ) / float( 0xFFFFFF );
}

// Oscillation: the value changes per second by rate * sin( pi * ( clock * frequency * mult + add ) ),
// where the clock is the particle's normalized age (proportional) or its seconds alive.
class COscillate : public CParticleSimFunction
{
public:
	void ReadOscillation( CParticleFunctionReader &reader )
	{
		m_bProportional = reader.Bool( "m_bProportional", true );
		m_flOscMult = reader.Float( "m_flOscMult", 2.0f );
		m_flOscAdd = reader.Float( "m_flOscAdd", 0.5f );
		reader.Reads( PARTICLE_ATTRIBUTE_CREATION_TIME );
		reader.Reads( PARTICLE_ATTRIBUTE_LIFE_DURATION );
		reader.Reads( PARTICLE_ATTRIBUTE_PARTICLE_ID );
	}

protected:
	// Fills pTime with each particle's clock: normalized age or seconds alive.
	void ParticleClock( const CParticleCollection &c, float *pTime ) const
	{
		const float *pCreation = c.Stream( PARTICLE_ATTRIBUTE_CREATION_TIME );
		const float *pLife = c.Stream( PARTICLE_ATTRIBUTE_LIFE_DURATION );
		float flTime = c.GetTime();
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			float flAge = flTime - pCreation[ i ];
			pTime[ i ] = m_bProportional ? ( pLife[ i ] > 0.0f ? flAge / pLife[ i ] : 1.0f ) : flAge;
		}
	}

	void OscillateComponent( CParticleCollection &c, const float *pTime, float *pOut, float flRateMin, float flRateMax, float flFreqMin, float flFreqMax,
		uint32_t nSalt, float flDt, float *pPrev = nullptr ) const
	{
		constexpr float PI = 3.14159265358979f;
		const float *pID = c.Stream( PARTICLE_ATTRIBUTE_PARTICLE_ID );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			float flRate = Lerp( flRateMin, flRateMax, StableParticleFraction( pID[ i ], nSalt ) );
			float flFrequency = Lerp( flFreqMin, flFreqMax, StableParticleFraction( pID[ i ], nSalt + 1u ) );
			float flPhase = pTime[ i ] * flFrequency * m_flOscMult + m_flOscAdd;
			float flDelta = flRate * std::sin( flPhase * PI ) * flDt;
			pOut[ i ] += flDelta;
			// A position keeps its velocity: the previous position moves along.
			if ( pPrev )
				pPrev[ i ] += flDelta;
		}
	}

	bool m_bProportional = true;
	float m_flOscMult = 2.0f, m_flOscAdd = 0.5f;
};

class COscillateScalar final : public COscillate
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flRateMin = reader.Float( "m_RateMin", 0.0f );
		m_flRateMax = reader.Float( "m_RateMax", 0.0f );
		m_flFrequencyMin = reader.Float( "m_FrequencyMin", 1.0f );
		m_flFrequencyMax = reader.Float( "m_FrequencyMax", 1.0f );
		m_nField = reader.OutputAttribute( "m_nField", PARTICLE_ATTRIBUTE_ALPHA );
		ReadOscillation( reader );
	}

	void Operate( CParticleCollection &c, float flDt ) const override
	{
		float *pTime = c.Scratch( 0 );
		ParticleClock( c, pTime );
		OscillateComponent( c, pTime, c.Stream( m_nField ), m_flRateMin, m_flRateMax, m_flFrequencyMin, m_flFrequencyMax, 0x51u, flDt );
	}

private:
	float m_flRateMin = 0.0f, m_flRateMax = 0.0f, m_flFrequencyMin = 1.0f, m_flFrequencyMax = 1.0f;
	int m_nField = PARTICLE_ATTRIBUTE_ALPHA;
};

class COscillateVector final : public COscillate
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_vRateMin = reader.Vec( "m_RateMin", Vector() );
		m_vRateMax = reader.Vec( "m_RateMax", Vector() );
		m_vFrequencyMin = reader.Vec( "m_FrequencyMin", Vector( 1.0f, 1.0f, 1.0f ) );
		m_vFrequencyMax = reader.Vec( "m_FrequencyMax", Vector( 1.0f, 1.0f, 1.0f ) );
		m_nField = reader.OutputAttribute( "m_nField", PARTICLE_ATTRIBUTE_POSITION );
		if ( m_nField == PARTICLE_ATTRIBUTE_POSITION )
			reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
		ReadOscillation( reader );
	}

	void Operate( CParticleCollection &c, float flDt ) const override
	{
		float *pTime = c.Scratch( 0 );
		ParticleClock( c, pTime );
		int nComponents = GetParticleAttributeComponentCount( m_nField );
		for ( int k = 0; k < nComponents; ++k )
		{
			OscillateComponent( c, pTime, c.Stream( m_nField, k ), m_vRateMin[ k ], m_vRateMax[ k ], m_vFrequencyMin[ k ], m_vFrequencyMax[ k ],
				0x71u + 2u * uint32_t( k ), flDt, m_nField == PARTICLE_ATTRIBUTE_POSITION ? c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k ) : nullptr );
		}
	}

private:
	Vector m_vRateMin, m_vRateMax, m_vFrequencyMin{ 1.0f, 1.0f, 1.0f }, m_vFrequencyMax{ 1.0f, 1.0f, 1.0f };
	int m_nField = PARTICLE_ATTRIBUTE_POSITION;
};

// Scalar noise of the particle's position, mapped to the output range. The three
// generations differ in their lattice noise and whether the field moves over time.
class CNoiseScalar final : public CParticleSimFunction
{
public:
	enum NoiseGeneration_t
	{
		NOISE_VALUE,
		NOISE_GRADIENT,
		NOISE_GRADIENT_ANIMATED,
	};

	explicit CNoiseScalar( NoiseGeneration_t eGeneration ) : m_eGeneration( eGeneration ) {}

	void Read( CParticleFunctionReader &reader ) override
	{
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_RADIUS );
		m_flOutputMin = reader.Float( "m_flOutputMin", 0.0f );
		m_flOutputMax = reader.Float( "m_flOutputMax", 1.0f );
		m_flNoiseScale = reader.Float( "m_fl4NoiseScale", 0.001f );
		m_bAdditive = reader.Bool( "m_bAdditive", false );
		if ( m_eGeneration == NOISE_GRADIENT_ANIMATED )
			m_flAnimationTimeScale = reader.Float( "m_flNoiseAnimationTimeScale", 0.0f );
		reader.Reads( PARTICLE_ATTRIBUTE_POSITION );
	}

	void Operate( CParticleCollection &c, float flDt ) const override
	{
		const float *pX = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 ), *pY = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 ), *pZ = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 );
		float *pNoise = c.Scratch( 0 );
		float flTimeOffset = c.GetTime() * m_flAnimationTimeScale;
		float s = m_flNoiseScale;
		int n = c.Count();
		if ( m_eGeneration == NOISE_VALUE )
		{
			for ( int i = 0; i < n; ++i )
				pNoise[ i ] = ParticleValueNoise( pX[ i ] * s, pY[ i ] * s, pZ[ i ] * s );
		}
		else
		{
			for ( int i = 0; i < n; ++i )
				pNoise[ i ] = ParticleGradientNoise( pX[ i ] * s + flTimeOffset, pY[ i ] * s, pZ[ i ] * s - flTimeOffset );
		}
		float flRange = m_flOutputMax - m_flOutputMin;
		for ( int i = 0; i < n; ++i )
			pNoise[ i ] = m_flOutputMin + flRange * Saturate( pNoise[ i ] * 0.5f + 0.5f );
		// Additive noise is a rate, so it adds the same per second at any step length.
		int nComponents = GetParticleAttributeComponentCount( m_nField );
		for ( int k = 0; k < nComponents; ++k )
		{
			float *pOut = c.Stream( m_nField, k );
			if ( m_bAdditive )
			{
				for ( int i = 0; i < n; ++i )
					pOut[ i ] += pNoise[ i ] * flDt;
			}
			else
			{
				for ( int i = 0; i < n; ++i )
					pOut[ i ] = pNoise[ i ];
			}
		}
	}

private:
	NoiseGeneration_t m_eGeneration;
	int m_nField = PARTICLE_ATTRIBUTE_RADIUS;
	float m_flOutputMin = 0.0f, m_flOutputMax = 1.0f, m_flNoiseScale = 0.001f, m_flAnimationTimeScale = 0.0f;
	bool m_bAdditive = false;
};

template <CNoiseScalar::NoiseGeneration_t GENERATION> std::unique_ptr<CParticleSimFunction> CreateNoiseScalar()
{
	return std::make_unique<CNoiseScalar>( GENERATION );
}

class CVectorNoise final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_POSITION );
		m_vOutputMin = reader.Vec( "m_vecOutputMin", Vector( -1.0f, -1.0f, -1.0f ) );
		m_vOutputMax = reader.Vec( "m_vecOutputMax", Vector( 1.0f, 1.0f, 1.0f ) );
		m_flNoiseScale = reader.Float( "m_fl4NoiseScale", 0.001f );
		m_bAdditive = reader.Bool( "m_bAdditive", true );
		m_bOffset = reader.Bool( "m_bOffset", false );
		reader.Reads( PARTICLE_ATTRIBUTE_POSITION );
		if ( m_nField == PARTICLE_ATTRIBUTE_POSITION && m_bOffset )
			reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void Operate( CParticleCollection &c, float flDt ) const override
	{
		static const Vector s_Shift[ 3 ] = { Vector( 0.0f, 0.0f, 0.0f ), Vector( 31.4f, -17.2f, 5.3f ), Vector( -11.9f, 47.1f, -23.7f ) };
		int nComponents = GetParticleAttributeComponentCount( m_nField );
		bool bMovePrevious = m_nField == PARTICLE_ATTRIBUTE_POSITION && m_bOffset;
		float *pNoise = c.Scratch( 0 );
		float s = m_flNoiseScale;
		int n = c.Count();
		for ( int k = 0; k < nComponents; ++k )
		{
			// The noise is sampled at the position before this component changes it.
			const float *pX = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 ), *pY = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 ), *pZ = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 );
			const Vector &shift = s_Shift[ k ];
			for ( int i = 0; i < n; ++i )
				pNoise[ i ] = ParticleGradientNoise( pX[ i ] * s + shift.x, pY[ i ] * s + shift.y, pZ[ i ] * s + shift.z );
			float flMin = m_vOutputMin[ k ], flRange = m_vOutputMax[ k ] - m_vOutputMin[ k ];
			for ( int i = 0; i < n; ++i )
				pNoise[ i ] = flMin + flRange * Saturate( pNoise[ i ] * 0.5f + 0.5f );
			float *pOut = c.Stream( m_nField, k );
			float *pPrev = bMovePrevious ? c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k ) : nullptr;
			for ( int i = 0; i < n; ++i )
			{
				float flNew = m_bAdditive ? pOut[ i ] + pNoise[ i ] * flDt : pNoise[ i ];
				if ( pPrev )
					pPrev[ i ] += flNew - pOut[ i ];
				pOut[ i ] = flNew;
			}
		}
	}

private:
	int m_nField = PARTICLE_ATTRIBUTE_POSITION;
	Vector m_vOutputMin{ -1.0f, -1.0f, -1.0f }, m_vOutputMax{ 1.0f, 1.0f, 1.0f };
	float m_flNoiseScale = 0.001f;
	bool m_bAdditive = true, m_bOffset = false;
};

const ParticleSimFunctionEntry_t s_Operators[] = {
	{ "C_OP_BasicMovement", CreateParticleSimFunction<CBasicMovement> },
	{ "C_OP_Decay", CreateParticleSimFunction<CDecay> },
	{ "C_OP_FadeInSimple", CreateParticleSimFunction<CFadeInSimple> },
	{ "C_OP_FadeOutSimple", CreateParticleSimFunction<CFadeOutSimple> },
	{ "C_OP_InterpolateRadius", CreateParticleSimFunction<CInterpolateRadius> },
	{ "C_OP_ColorInterpolate", CreateParticleSimFunction<CColorInterpolate> },
	{ "C_OP_SpinUpdate", CreateParticleSimFunction<CSpinUpdate> },
	{ "C_OP_SetFloat", CreateParticleSimFunction<CSetFloat> },
	{ "C_OP_SetVec", CreateParticleSimFunction<CSetVec> },
	{ "C_OP_AlphaDecay", CreateParticleSimFunction<CAlphaDecay> },
	{ "C_OP_FadeAndKill", CreateParticleSimFunction<CFadeAndKill> },
	{ "C_OP_LerpScalar", CreateParticleSimFunction<CLerpScalar> },
	{ "C_OP_LerpVector", CreateParticleSimFunction<CLerpVector> },
	{ "C_OP_ClampScalar", CreateParticleSimFunction<CClampScalar> },
	{ "C_OP_Spin", CreateParticleSimFunction<CSpin> },
	{ "C_OP_SetSingleControlPointPosition", CreateParticleSimFunction<CSetSingleControlPointPosition> },
	{ "C_OP_OscillateScalar", CreateParticleSimFunction<COscillateScalar> },
	{ "C_OP_OscillateVector", CreateParticleSimFunction<COscillateVector> },
	{ "C_OP_NoiseLegacy", CreateNoiseScalar<CNoiseScalar::NOISE_VALUE> },
	{ "C_OP_NoiseSimplex", CreateNoiseScalar<CNoiseScalar::NOISE_GRADIENT> },
	{ "C_OP_Noise", CreateNoiseScalar<CNoiseScalar::NOISE_GRADIENT_ANIMATED> },
	{ "C_OP_VectorNoise", CreateParticleSimFunction<CVectorNoise> },
};
} // namespace

const ParticleSimFunctionEntry_t *GetParticleOperatorFunctions( int *pCount )
{
	*pCount = int( sizeof( s_Operators ) / sizeof( s_Operators[ 0 ] ) );
	return s_Operators;
}
