// Force generators add to the per-particle force accumulators that movement integrates;
// constraints correct positions after movement.

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
class CTurbulenceForce final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		static const char *const s_Scales[] = { "m_flNoiseCoordScale0", "m_flNoiseCoordScale1", "m_flNoiseCoordScale2", "m_flNoiseCoordScale3" };
		static const char *const s_Amounts[] = { "m_vecNoiseAmount0", "m_vecNoiseAmount1", "m_vecNoiseAmount2", "m_vecNoiseAmount3" };
		static const float s_DefaultScale[] = { 0.5f, 1.0f, 0.0f, 0.0f };
		static const float s_DefaultAmount[] = { 1.0f, 0.5f, 0.0f, 0.0f };
		for ( int n = 0; n < 4; ++n )
		{
			m_flScale[ n ] = reader.Float( s_Scales[ n ], s_DefaultScale[ n ] );
			float a = s_DefaultAmount[ n ];
			m_vAmount[ n ] = reader.Vec( s_Amounts[ n ], Vector( a, a, a ) );
			if ( m_flScale[ n ] != 0.0f && !( m_vAmount[ n ] == Vector() ) )
				m_nOctaves = n + 1;
		}
		reader.Reads( PARTICLE_ATTRIBUTE_POSITION );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		const float *pX = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 ), *pY = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 ), *pZ = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 );
		float *pFX = c.Force( 0 ), *pFY = c.Force( 1 ), *pFZ = c.Force( 2 );
		float flTime = c.GetTime();
		int nCount = c.Count();
		for ( int n = 0; n < m_nOctaves; ++n )
		{
			float s = m_flScale[ n ] * 0.01f;
			const Vector &a = m_vAmount[ n ];
			for ( int i = 0; i < nCount; ++i )
			{
				float x = pX[ i ] * s + flTime, y = pY[ i ] * s, z = pZ[ i ] * s;
				pFX[ i ] += ParticleGradientNoise( x, y, z ) * a.x;
				pFY[ i ] += ParticleGradientNoise( x + 19.1f, y - 7.3f, z + 3.7f ) * a.y;
				pFZ[ i ] += ParticleGradientNoise( x - 5.9f, y + 13.3f, z - 17.1f ) * a.z;
			}
		}
	}

private:
	float m_flScale[ 4 ] = {};
	Vector m_vAmount[ 4 ];
	int m_nOctaves = 0;
};

class CAttractToControlPoint final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_ForceAmount = CSimFloatInput( 100.0f );
		reader.FloatInput( "m_fForceAmount", &m_ForceAmount, false );
		m_flFalloffPower = reader.Float( "m_fFalloffPower", 2.0f );
		reader.TransformInput( "m_TransformInput", &m_Transform );
		reader.Reads( PARTICLE_ATTRIBUTE_POSITION );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		Vector vCenter = m_Transform.Evaluate( c ).m_vOrigin;
		float flAmount = m_ForceAmount.EvaluateCollection( c );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			Vector vTo( vCenter.x - c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 )[ i ], vCenter.y - c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 )[ i ],
				vCenter.z - c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ i ] );
			float flDistance = Length( vTo );
			if ( flDistance < 1e-3f )
				continue;
			// The pull weakens with distance to the falloff power.
			float flForce = flAmount * std::pow( flDistance, -m_flFalloffPower ) / flDistance;
			for ( int k = 0; k < 3; ++k )
				c.Force( k )[ i ] += vTo[ k ] * flForce;
		}
	}

private:
	CSimFloatInput m_ForceAmount;
	float m_flFalloffPower = 2.0f;
	CSimTransformInput m_Transform;
};

class CPlanarConstraint final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_vPlanePoint = reader.Vec( "m_PlanePoint", Vector() );
		m_vPlaneNormal = Normalized( reader.Vec( "m_PlaneNormal", Vector( 0.0f, 0.0f, 1.0f ) ) );
		if ( m_vPlaneNormal == Vector() )
			m_vPlaneNormal = Vector( 0.0f, 0.0f, 1.0f );
		m_flBounce = reader.Float( "m_flBounce", 0.0f );
		m_bGlobalOrigin = reader.Bool( "m_bGlobalOrigin", false );
		m_nControlPoint = reader.Int( "m_nControlPointNumber", 0 );
		if ( !m_bGlobalOrigin )
			reader.ReadsControlPoint( m_nControlPoint, CONTROL_POINT_USAGE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		Vector vPoint = m_bGlobalOrigin ? m_vPlanePoint : Add( c.GetControlPoint( m_nControlPoint ).m_vPosition, m_vPlanePoint );
		const Vector &vN = m_vPlaneNormal;
		float flPlane = Dot( vPoint, vN );
		float *pX = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 ), *pY = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 ), *pZ = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 );
		float *pPX = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 0 ), *pPY = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 1 ), *pPZ = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 2 );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			float flDepth = pX[ i ] * vN.x + pY[ i ] * vN.y + pZ[ i ] * vN.z - flPlane;
			if ( flDepth >= 0.0f )
				continue;
			// Back onto the plane; the motion into it is reversed and scaled by the bounce.
			Vector vMove( pX[ i ] - pPX[ i ], pY[ i ] - pPY[ i ], pZ[ i ] - pPZ[ i ] );
			float flInto = Dot( vMove, vN );
			pX[ i ] -= vN.x * flDepth;
			pY[ i ] -= vN.y * flDepth;
			pZ[ i ] -= vN.z * flDepth;
			if ( flInto < 0.0f )
				vMove = Sub( vMove, Scale( vN, flInto * ( 1.0f + m_flBounce ) ) );
			pPX[ i ] = pX[ i ] - vMove.x;
			pPY[ i ] = pY[ i ] - vMove.y;
			pPZ[ i ] = pZ[ i ] - vMove.z;
		}
	}

private:
	Vector m_vPlanePoint, m_vPlaneNormal{ 0.0f, 0.0f, 1.0f };
	float m_flBounce = 0.0f;
	bool m_bGlobalOrigin = false;
	int m_nControlPoint = 0;
};

class CConstrainDistance final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_Min = CSimFloatInput( 0.0f );
		m_Max = CSimFloatInput( 100.0f );
		reader.FloatInput( "m_fMinDistance", &m_Min, false );
		reader.FloatInput( "m_fMaxDistance", &m_Max, false );
		m_vOffset = reader.Vec( "m_CenterOffset", Vector() );
		m_nControlPoint = reader.Int( "m_nControlPointNumber", 0 );
		m_bGlobalCenter = reader.Bool( "m_bGlobalCenter", false );
		if ( !m_bGlobalCenter )
			reader.ReadsControlPoint( m_nControlPoint, CONTROL_POINT_USAGE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_POSITION );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		Vector vCenter = m_bGlobalCenter ? m_vOffset : Add( c.GetControlPoint( m_nControlPoint ).m_vPosition, m_vOffset );
		float flMin = m_Min.EvaluateCollection( c ), flMax = std::max( flMin, m_Max.EvaluateCollection( c ) );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			Vector vPos( c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 )[ i ], c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 )[ i ], c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ i ] );
			Vector vFrom = Sub( vPos, vCenter );
			float flDistance = Length( vFrom );
			float flClamped = Clamp( flDistance, flMin, flMax );
			if ( flClamped == flDistance || flDistance < 1e-6f )
				continue;
			Vector vNew = Add( vCenter, Scale( vFrom, flClamped / flDistance ) );
			for ( int k = 0; k < 3; ++k )
				c.Stream( PARTICLE_ATTRIBUTE_POSITION, k )[ i ] = vNew[ k ];
		}
	}

private:
	CSimFloatInput m_Min, m_Max;
	Vector m_vOffset;
	int m_nControlPoint = 0;
	bool m_bGlobalCenter = false;
};

class CRandomForce final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_vMin = reader.Vec( "m_MinForce", Vector() );
		m_vMax = reader.Vec( "m_MaxForce", Vector() );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		CParticleRandom &random = c.Random();
		int n = c.Count();
		for ( int k = 0; k < 3; ++k )
		{
			float *pForce = c.Force( k );
			for ( int i = 0; i < n; ++i )
				pForce[ i ] += random.RandomFloat( m_vMin[ k ], m_vMax[ k ] );
		}
	}

private:
	Vector m_vMin, m_vMax;
};

// A vortex: pushes particles along circles around an axis through a control point.
class CTwistAroundAxis final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flAmount = reader.Float( "m_fForceAmount", 0.0f );
		m_vAxis = Normalized( reader.Vec( "m_TwistAxis", Vector( 0.0f, 0.0f, 1.0f ) ) );
		m_bLocalSpace = reader.Bool( "m_bLocalSpace", false );
		m_nControlPoint = reader.Int( "m_nControlPointNumber", 0 );
		reader.ReadsControlPoint( m_nControlPoint, m_bLocalSpace ? CONTROL_POINT_USAGE_TRANSFORM : CONTROL_POINT_USAGE_POSITION );
		reader.Reads( PARTICLE_ATTRIBUTE_POSITION );
	}

	void Operate( CParticleCollection &c, float ) const override
	{
		if ( m_flAmount == 0.0f || m_vAxis == Vector() )
			return;
		const ParticleControlPoint_t &cp = c.GetControlPoint( m_nControlPoint );
		Vector vAxis = m_bLocalSpace ? Normalized( LocalToWorld( Vector(), cp.m_vForward, cp.m_vRight, cp.m_vUp, m_vAxis ) ) : m_vAxis;
		const float *pX = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 ), *pY = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 ), *pZ = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 );
		float *pFX = c.Force( 0 ), *pFY = c.Force( 1 ), *pFZ = c.Force( 2 );
		int n = c.Count();
		for ( int i = 0; i < n; ++i )
		{
			Vector vFrom( pX[ i ] - cp.m_vPosition.x, pY[ i ] - cp.m_vPosition.y, pZ[ i ] - cp.m_vPosition.z );
			// The tangent has the same strength at any distance from the axis.
			Vector vTangent = Normalized( Cross( vAxis, vFrom ) );
			pFX[ i ] += vTangent.x * m_flAmount;
			pFY[ i ] += vTangent.y * m_flAmount;
			pFZ[ i ] += vTangent.z * m_flAmount;
		}
	}

private:
	float m_flAmount = 0.0f;
	Vector m_vAxis{ 0.0f, 0.0f, 1.0f };
	bool m_bLocalSpace = false;
	int m_nControlPoint = 0;
};

// A ground plane at a height above a control point. Particles that pass below it, less
// their radius, are put back on it and bounce, slide or die.
class CCollideWithPlane final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		static const char *const s_Responses[] = { "PARTICLE_COLLISION_BOUNCE", "PARTICLE_COLLISION_SLIDE", "PARTICLE_COLLISION_KILL" };
		m_flPlaneOffset = reader.Float( "m_flPlaneOffset", 0.0f );
		m_nControlPoint = reader.Int( "m_nControlPointNumber", 0 );
		m_nResponse = reader.Enum( "m_nResponse", s_Responses, 3, PARTICLE_COLLISION_BOUNCE );
		m_bEndsLives = m_nResponse == PARTICLE_COLLISION_KILL;
		m_Bounce = CSimFloatInput( 0.5f );
		reader.FloatInput( "m_flBounceAmount", &m_Bounce, true );
		reader.FloatInput( "m_flSlideAmount", &m_Slide, true );
		m_flRadiusScale = reader.Float( "m_flRadiusScale", 1.0f );
		m_flMinSpeed = reader.Float( "m_flMinSpeed", 0.0f );
		reader.ReadsControlPoint( m_nControlPoint, CONTROL_POINT_USAGE_POSITION );
		reader.Reads( PARTICLE_ATTRIBUTE_RADIUS );
		reader.Writes( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void Operate( CParticleCollection &c, float flDt ) const override
	{
		int n = c.Count();
		float flGround = c.GetControlPoint( m_nControlPoint ).m_vPosition.z + m_flPlaneOffset;
		float *pBounce = c.Scratch( 0 ), *pSlide = c.Scratch( 1 );
		m_Bounce.EvaluatePerParticle( c, 0, n, pBounce );
		m_Slide.EvaluatePerParticle( c, 0, n, pSlide );
		const float *pRadius = c.Stream( PARTICLE_ATTRIBUTE_RADIUS );
		float *pX = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 ), *pY = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 ), *pZ = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 );
		float *pPX = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 0 ), *pPY = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 1 ), *pPZ = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 2 );
		// The motion of a step spans the collection's motion interval, not always the step.
		float flMinMove = m_flMinSpeed * CParticleCollection::MotionDt( flDt );
		for ( int i = 0; i < n; ++i )
		{
			float flFloor = flGround + pRadius[ i ] * m_flRadiusScale;
			if ( pZ[ i ] >= flFloor )
				continue;
			if ( m_nResponse == PARTICLE_COLLISION_KILL )
			{
				c.KillParticle( i );
				pZ[ i ] = flFloor;
				pPZ[ i ] = flFloor;
				continue;
			}
			// The motion of this step, split into its part along the ground and its part into it.
			float flMoveX = pX[ i ] - pPX[ i ], flMoveY = pY[ i ] - pPY[ i ], flMoveZ = pZ[ i ] - pPZ[ i ];
			float flKeepAlong = 1.0f - Saturate( pSlide[ i ] );
			float flOut = m_nResponse == PARTICLE_COLLISION_BOUNCE && flMoveZ < 0.0f ? -flMoveZ * std::max( pBounce[ i ], 0.0f ) : 0.0f;
			float flAlongX = flMoveX * flKeepAlong, flAlongY = flMoveY * flKeepAlong;
			// Too slow a bounce comes to rest on the ground.
			if ( flMinMove > 0.0f && std::sqrt( flAlongX * flAlongX + flAlongY * flAlongY + flOut * flOut ) < flMinMove )
				flAlongX = flAlongY = flOut = 0.0f;
			pZ[ i ] = flFloor;
			pPX[ i ] = pX[ i ] - flAlongX;
			pPY[ i ] = pY[ i ] - flAlongY;
			pPZ[ i ] = flFloor - flOut;
		}
	}

private:
	float m_flPlaneOffset = 0.0f;
	int m_nControlPoint = 0;
	int m_nResponse = PARTICLE_COLLISION_BOUNCE;
	CSimFloatInput m_Bounce, m_Slide;
	float m_flRadiusScale = 1.0f, m_flMinSpeed = 0.0f;
};

const ParticleSimFunctionEntry_t s_Functions[] = {
	{ "C_OP_TurbulenceForce", CreateParticleSimFunction<CTurbulenceForce> },
	{ "C_OP_AttractToControlPoint", CreateParticleSimFunction<CAttractToControlPoint> },
	{ "C_OP_PlanarConstraint", CreateParticleSimFunction<CPlanarConstraint> },
	{ "C_OP_ConstrainDistance", CreateParticleSimFunction<CConstrainDistance> },
	{ "C_OP_RandomForce", CreateParticleSimFunction<CRandomForce> },
	{ "C_OP_TwistAroundAxis", CreateParticleSimFunction<CTwistAroundAxis> },
	{ "C_OP_CollideWithPlane", CreateParticleSimFunction<CCollideWithPlane> },
};
} // namespace

const ParticleSimFunctionEntry_t *GetParticleForceAndConstraintFunctions( int *pCount )
{
	*pCount = int( sizeof( s_Functions ) / sizeof( s_Functions[ 0 ] ) );
	return s_Functions;
}
