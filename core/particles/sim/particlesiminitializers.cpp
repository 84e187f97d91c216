// Initializers: a newborn particle's attributes, set once over the run of new particles.

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/particles/particlemodel.h"
#include "core/particles/sim/particlecollection.h"
#include "core/particles/sim/particlefunctionreader.h"
#include "core/particles/sim/particlenoise.h"
#include "core/particles/sim/particlesimfunctionlist.h"
#include "core/particles/sim/particlesimmath.h"

using namespace ParticleMath;

namespace
{
// Velocity is implicit: a particle moving at v has its previous position at pos - v * dt.
void AddVelocity( CParticleCollection &c, int i, const Vector &v )
{
	float flDt = c.GetPreviousDt();
	c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 0 )[ i ] -= v.x * flDt;
	c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 1 )[ i ] -= v.y * flDt;
	c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 2 )[ i ] -= v.z * flDt;
}

float RandomExponent( CParticleRandom &random, float flMin, float flMax, float flExponent )
{
	float u = random.NextFloat();
	if ( flExponent != 1.0f && flExponent > 0.0f )
		u = std::pow( u, flExponent );
	return flMin + ( flMax - flMin ) * u;
}

class CCreateWithinSphere final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flRadiusMin = reader.Float( "m_fRadiusMin", 0.0f );
		m_flRadiusMax = reader.Float( "m_fRadiusMax", 0.0f );
		m_flSpeedMin = reader.Float( "m_fSpeedMin", 0.0f );
		m_flSpeedMax = reader.Float( "m_fSpeedMax", 0.0f );
		m_vDistanceBias = reader.Vec( "m_vecDistanceBias", Vector( 1.0f, 1.0f, 1.0f ) );
		m_vLocalSpeedMin = reader.Vec( "m_LocalCoordinateSystemSpeedMin", Vector() );
		m_vLocalSpeedMax = reader.Vec( "m_LocalCoordinateSystemSpeedMax", Vector() );
		m_nControlPoint = reader.Int( "m_nControlPointNumber", 0 );
		reader.ReadsControlPoint( m_nControlPoint, m_vLocalSpeedMin == Vector() && m_vLocalSpeedMax == Vector() ? CONTROL_POINT_USAGE_POSITION : CONTROL_POINT_USAGE_TRANSFORM );
		reader.Writes( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		const ParticleControlPoint_t &cp = c.GetControlPoint( m_nControlPoint );
		CParticleRandom &random = c.Random();
		float *pX = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 ), *pY = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 ), *pZ = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 );
		float *pPX = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 0 ), *pPY = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 1 ), *pPZ = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 2 );
		float flDt = c.GetPreviousDt();
		bool bLocalSpeed = !( m_vLocalSpeedMin == Vector() && m_vLocalSpeedMax == Vector() );
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			// A uniform direction: a random point in the cube, kept if inside the ball.
			Vector vDir;
			float flLengthSq;
			do
			{
				vDir = Vector( random.NextFloat() * 2.0f - 1.0f, random.NextFloat() * 2.0f - 1.0f, random.NextFloat() * 2.0f - 1.0f );
				flLengthSq = Dot( vDir, vDir );
			} while ( flLengthSq > 1.0f || flLengthSq < 1e-6f );
			vDir = Scale( vDir, 1.0f / std::sqrt( flLengthSq ) );
			Vector vOffset = Scale( Mul( vDir, m_vDistanceBias ), random.RandomFloat( m_flRadiusMin, m_flRadiusMax ) );
			Vector vPos = Add( cp.m_vPosition, vOffset );
			Vector vVelocity = Scale( Mul( vDir, m_vDistanceBias ), random.RandomFloat( m_flSpeedMin, m_flSpeedMax ) );
			if ( bLocalSpeed )
			{
				Vector vLocal( random.RandomFloat( m_vLocalSpeedMin.x, m_vLocalSpeedMax.x ), random.RandomFloat( m_vLocalSpeedMin.y, m_vLocalSpeedMax.y ),
					random.RandomFloat( m_vLocalSpeedMin.z, m_vLocalSpeedMax.z ) );
				vVelocity = Add( vVelocity, LocalToWorld( Vector(), cp.m_vForward, cp.m_vRight, cp.m_vUp, vLocal ) );
			}
			pX[ i ] = vPos.x;
			pY[ i ] = vPos.y;
			pZ[ i ] = vPos.z;
			pPX[ i ] = vPos.x - vVelocity.x * flDt;
			pPY[ i ] = vPos.y - vVelocity.y * flDt;
			pPZ[ i ] = vPos.z - vVelocity.z * flDt;
		}
	}

private:
	float m_flRadiusMin = 0.0f, m_flRadiusMax = 0.0f, m_flSpeedMin = 0.0f, m_flSpeedMax = 0.0f;
	Vector m_vDistanceBias{ 1.0f, 1.0f, 1.0f };
	Vector m_vLocalSpeedMin, m_vLocalSpeedMax;
	int m_nControlPoint = 0;
};

class CInitFloat final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nOutputField = reader.OutputAttribute( "m_nOutputField", 3 );
		reader.FloatInput( "m_InputValue", &m_InputValue, true );
		m_nSetMethod = reader.Enum( "m_nSetMethod", g_ParticleSetMethodNames, 6, PARTICLE_SET_REPLACE_VALUE );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		float *pValues = c.Scratch( 0 );
		m_InputValue.EvaluatePerParticle( c, nStart, nCount, pValues );
		for ( int nComponent = 0; nComponent < GetParticleAttributeComponentCount( m_nOutputField ); ++nComponent )
			ApplyParticleSetMethod( m_nSetMethod, c.Stream( m_nOutputField, nComponent ) + nStart, pValues, nCount );
	}

private:
	int m_nOutputField = 3;
	int m_nSetMethod = 0;
	CSimFloatInput m_InputValue;
};

class CInitVec final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nOutputField = reader.OutputAttribute( "m_nOutputField", 0 );
		reader.VecInput( "m_InputValue", &m_InputValue, true );
		m_nSetMethod = reader.Enum( "m_nSetMethod", g_ParticleSetMethodNames, 6, PARTICLE_SET_REPLACE_VALUE );
		if ( m_nOutputField == PARTICLE_ATTRIBUTE_POSITION )
			reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		float *pValues[ 3 ] = { c.Scratch( 0 ), c.Scratch( 1 ), c.Scratch( 2 ) };
		m_InputValue.EvaluatePerParticle( c, nStart, nCount, pValues[ 0 ], pValues[ 1 ], pValues[ 2 ] );
		int nComponents = GetParticleAttributeComponentCount( m_nOutputField );
		for ( int nComponent = 0; nComponent < nComponents; ++nComponent )
		{
			float *pTarget = c.Stream( m_nOutputField, nComponent ) + nStart;
			if ( m_nOutputField == PARTICLE_ATTRIBUTE_POSITION )
			{
				// Moving a particle keeps the velocity it was given: the previous position moves too.
				float *pPrev = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, nComponent ) + nStart;
				float *pDelta = c.Scratch( 3 );
				for ( int i = 0; i < nCount; ++i )
					pDelta[ i ] = pTarget[ i ];
				ApplyParticleSetMethod( m_nSetMethod, pTarget, pValues[ nComponent ], nCount );
				for ( int i = 0; i < nCount; ++i )
					pPrev[ i ] += pTarget[ i ] - pDelta[ i ];
			}
			else
			{
				ApplyParticleSetMethod( m_nSetMethod, pTarget, pValues[ nComponents == 3 ? nComponent : 0 ], nCount );
			}
		}
	}

private:
	int m_nOutputField = 0;
	int m_nSetMethod = 0;
	CSimVecInput m_InputValue;
};

// Sets one float attribute to a random value in a range.
class CRandomFloatInitializer : public CParticleSimFunction
{
public:
	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		float *pOut = c.Stream( m_nOutputField );
		CParticleRandom &random = c.Random();
		for ( int i = nStart; i < nStart + nCount; ++i )
			pOut[ i ] = RandomExponent( random, m_flMin, m_flMax, m_flExponent );
	}

protected:
	// The attribute it writes and the names its class gives the range's three fields.
	void ReadRange( CParticleFunctionReader &reader, int nField, const char *pMin, const char *pMax, const char *pExponent, float flDefault )
	{
		m_nOutputField = nField;
		reader.Writes( m_nOutputField );
		m_flMin = reader.Float( pMin, flDefault );
		m_flMax = reader.Float( pMax, flDefault );
		m_flExponent = reader.Float( pExponent, 1.0f );
	}

	int m_nOutputField = 0;
	float m_flMin = 0.0f, m_flMax = 0.0f, m_flExponent = 1.0f;
};

class CRandomRadius final : public CRandomFloatInitializer
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		ReadRange( reader, PARTICLE_ATTRIBUTE_RADIUS, "m_flRadiusMin", "m_flRadiusMax", "m_flRadiusRandExponent", 1.0f );
	}
};

class CRandomLifeTime final : public CRandomFloatInitializer
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		ReadRange( reader, PARTICLE_ATTRIBUTE_LIFE_DURATION, "m_fLifetimeMin", "m_fLifetimeMax", "m_fLifetimeRandExponent", 0.0f );
	}
};

class CRandomTrailLength final : public CRandomFloatInitializer
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		ReadRange( reader, PARTICLE_ATTRIBUTE_TRAIL_LENGTH, "m_flMinLength", "m_flMaxLength", "m_flLengthRandExponent", 0.1f );
	}
};

class CRandomRotation : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flDegreesMin = reader.Float( "m_flDegreesMin", 0.0f );
		m_flDegreesMax = reader.Float( "m_flDegreesMax", 360.0f );
		m_flDegrees = reader.Float( "m_flDegrees", 0.0f );
		m_bRandomlyFlip = reader.Bool( "m_bRandomlyFlipDirection", true );
		m_flExponent = reader.Float( "m_flRotationRandExponent", 1.0f );
		m_nOutputField = reader.OutputAttribute( "m_nFieldOutput", DefaultField() );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		float *pOut = c.Stream( m_nOutputField );
		CParticleRandom &random = c.Random();
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			float flValue = m_flDegrees + RandomExponent( random, m_flDegreesMin, m_flDegreesMax, m_flExponent );
			if ( m_bRandomlyFlip && random.NextFloat() < 0.5f )
				flValue = -flValue;
			pOut[ i ] = flValue;
		}
	}

protected:
	virtual int DefaultField() const { return PARTICLE_ATTRIBUTE_ROLL; }

private:
	float m_flDegreesMin = 0.0f, m_flDegreesMax = 360.0f, m_flDegrees = 0.0f, m_flExponent = 1.0f;
	bool m_bRandomlyFlip = true;
	int m_nOutputField = PARTICLE_ATTRIBUTE_ROLL;
};

class CRandomYaw final : public CRandomRotation
{
protected:
	int DefaultField() const override { return PARTICLE_ATTRIBUTE_YAW; }
};

class CRandomRotationSpeed final : public CRandomRotation
{
protected:
	int DefaultField() const override { return PARTICLE_ATTRIBUTE_ROLL_SPEED; }
};

class CCreateWithinBox final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_vMin = reader.Vec( "m_vecMin", Vector() );
		m_vMax = reader.Vec( "m_vecMax", Vector() );
		m_nControlPoint = reader.Int( "m_nControlPointNumber", 0 );
		m_bLocal = reader.Bool( "m_bLocalSpace", false );
		reader.ReadsControlPoint( m_nControlPoint, m_bLocal ? CONTROL_POINT_USAGE_TRANSFORM : CONTROL_POINT_USAGE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		const ParticleControlPoint_t &cp = c.GetControlPoint( m_nControlPoint );
		CParticleRandom &random = c.Random();
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			Vector v( random.RandomFloat( m_vMin.x, m_vMax.x ), random.RandomFloat( m_vMin.y, m_vMax.y ), random.RandomFloat( m_vMin.z, m_vMax.z ) );
			Vector vPos = m_bLocal ? LocalToWorld( cp.m_vPosition, cp.m_vForward, cp.m_vRight, cp.m_vUp, v ) : Add( cp.m_vPosition, v );
			for ( int k = 0; k < 3; ++k )
			{
				c.Stream( PARTICLE_ATTRIBUTE_POSITION, k )[ i ] = vPos[ k ];
				c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k )[ i ] = vPos[ k ];
			}
		}
	}

private:
	Vector m_vMin, m_vMax;
	int m_nControlPoint = 0;
	bool m_bLocal = false;
};

class CRandomColor final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_vColorMin = reader.Color( "m_ColorMin", Vector( 1.0f, 1.0f, 1.0f ) );
		m_vColorMax = reader.Color( "m_ColorMax", Vector( 1.0f, 1.0f, 1.0f ) );
		m_nOutputField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_COLOR );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		if ( GetParticleAttributeComponentCount( m_nOutputField ) != 3 )
			return;
		CParticleRandom &random = c.Random();
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			Vector v = ParticleMath::Lerp( m_vColorMin, m_vColorMax, random.NextFloat() );
			for ( int k = 0; k < 3; ++k )
				c.Stream( m_nOutputField, k )[ i ] = v[ k ];
		}
	}

private:
	Vector m_vColorMin, m_vColorMax;
	int m_nOutputField = PARTICLE_ATTRIBUTE_COLOR;
};

class CRandomAlpha final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_flMin = float( reader.Int( "m_nAlphaMin", 255 ) ) / 255.0f;
		m_flMax = float( reader.Int( "m_nAlphaMax", 255 ) ) / 255.0f;
		m_nOutputField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_ALPHA );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		float *pOut = c.Stream( m_nOutputField );
		CParticleRandom &random = c.Random();
		for ( int i = nStart; i < nStart + nCount; ++i )
			pOut[ i ] = random.RandomFloat( m_flMin, m_flMax );
	}

private:
	float m_flMin = 1.0f, m_flMax = 1.0f;
	int m_nOutputField = PARTICLE_ATTRIBUTE_ALPHA;
};

class CInitialVelocityNoise final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_vOutputMin = reader.Vec( "m_vecOutputMin", Vector() );
		m_vOutputMax = reader.Vec( "m_vecOutputMax", Vector() );
		m_NoiseScale = CSimFloatInput( 1.0f );
		reader.FloatInput( "m_flNoiseScale", &m_NoiseScale, false );
		m_flNoiseScaleLoc = reader.Float( "m_flNoiseScaleLoc", 0.01f );
		m_flOffset = reader.Float( "m_flOffset", 0.0f );
		reader.Reads( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		const float *pX = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 ), *pY = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 ), *pZ = c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 );
		const float *pID = c.Stream( PARTICLE_ATTRIBUTE_PARTICLE_ID );
		float flTime = c.GetTime() * m_NoiseScale.EvaluateCollection( c ) + m_flOffset;
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			// Particles born at one place in one step still differ: the id shifts the sample.
			float flJitter = float( uint32_t( pID[ i ] ) % 1024u ) * 0.6180339f;
			float fx = pX[ i ] * m_flNoiseScaleLoc + flTime + flJitter, fy = pY[ i ] * m_flNoiseScaleLoc + flJitter * 1.37f, fz = pZ[ i ] * m_flNoiseScaleLoc;
			Vector vNoise( ParticleGradientNoise( fx, fy, fz ), ParticleGradientNoise( fx + 31.4f, fy - 17.2f, fz + 5.3f ),
				ParticleGradientNoise( fx - 11.9f, fy + 47.1f, fz - 23.7f ) );
			Vector v;
			for ( int k = 0; k < 3; ++k )
				v[ k ] = m_vOutputMin[ k ] + ( m_vOutputMax[ k ] - m_vOutputMin[ k ] ) * Saturate( vNoise[ k ] * 0.5f + 0.5f );
			AddVelocity( c, i, v );
		}
	}

private:
	Vector m_vOutputMin, m_vOutputMax;
	CSimFloatInput m_NoiseScale;
	float m_flNoiseScaleLoc = 0.01f, m_flOffset = 0.0f;
};

class CVelocityRandom final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		reader.FloatInput( "m_fSpeedMin", &m_SpeedMin, true );
		reader.FloatInput( "m_fSpeedMax", &m_SpeedMax, true );
		reader.VecInput( "m_LocalCoordinateSystemSpeedMin", &m_LocalMin, true );
		reader.VecInput( "m_LocalCoordinateSystemSpeedMax", &m_LocalMax, true );
		m_nControlPoint = reader.Int( "m_nControlPointNumber", 0 );
		reader.ReadsControlPoint( m_nControlPoint, CONTROL_POINT_USAGE_ORIENTATION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		const ParticleControlPoint_t &cp = c.GetControlPoint( m_nControlPoint );
		CParticleRandom &random = c.Random();
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			float flMin = 0.0f, flMax = 0.0f;
			Vector vMin, vMax;
			m_SpeedMin.EvaluatePerParticle( c, i, 1, &flMin );
			m_SpeedMax.EvaluatePerParticle( c, i, 1, &flMax );
			m_LocalMin.EvaluatePerParticle( c, i, 1, &vMin.x, &vMin.y, &vMin.z );
			m_LocalMax.EvaluatePerParticle( c, i, 1, &vMax.x, &vMax.y, &vMax.z );
			Vector vDir = Normalized( Vector( random.NextFloat() * 2.0f - 1.0f, random.NextFloat() * 2.0f - 1.0f, random.NextFloat() * 2.0f - 1.0f ) );
			Vector vLocal( random.RandomFloat( vMin.x, vMax.x ), random.RandomFloat( vMin.y, vMax.y ), random.RandomFloat( vMin.z, vMax.z ) );
			Vector v = Add( Scale( vDir, random.RandomFloat( flMin, flMax ) ), LocalToWorld( Vector(), cp.m_vForward, cp.m_vRight, cp.m_vUp, vLocal ) );
			AddVelocity( c, i, v );
		}
	}

private:
	CSimFloatInput m_SpeedMin, m_SpeedMax;
	CSimVecInput m_LocalMin, m_LocalMax;
	int m_nControlPoint = 0;
};

class CPositionOffset final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_vOffsetMin = reader.Vec( "m_OffsetMin", Vector() );
		m_vOffsetMax = reader.Vec( "m_OffsetMax", Vector() );
		m_bLocal = reader.Bool( "m_bLocalCoords", false );
		m_nControlPoint = reader.Int( "m_nControlPointNumber", 0 );
		if ( m_bLocal )
			reader.ReadsControlPoint( m_nControlPoint, CONTROL_POINT_USAGE_ORIENTATION );
		reader.Writes( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		const ParticleControlPoint_t &cp = c.GetControlPoint( m_nControlPoint );
		CParticleRandom &random = c.Random();
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			Vector v( random.RandomFloat( m_vOffsetMin.x, m_vOffsetMax.x ), random.RandomFloat( m_vOffsetMin.y, m_vOffsetMax.y ),
				random.RandomFloat( m_vOffsetMin.z, m_vOffsetMax.z ) );
			if ( m_bLocal )
				v = LocalToWorld( Vector(), cp.m_vForward, cp.m_vRight, cp.m_vUp, v );
			for ( int k = 0; k < 3; ++k )
			{
				c.Stream( PARTICLE_ATTRIBUTE_POSITION, k )[ i ] += v[ k ];
				c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k )[ i ] += v[ k ];
			}
		}
	}

private:
	Vector m_vOffsetMin, m_vOffsetMax;
	bool m_bLocal = false;
	int m_nControlPoint = 0;
};

// Places particles on a ring around a transform, spread evenly by particle id or at random,
// each moving outward from the ring's centre.
class CRingWave final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		reader.TransformInput( "m_TransformInput", &m_Transform );
		m_PerOrbit = CSimFloatInput( -1.0f );
		reader.FloatInput( "m_flParticlesPerOrbit", &m_PerOrbit, false );
		reader.FloatInput( "m_flInitialRadius", &m_Radius, true );
		reader.FloatInput( "m_flThickness", &m_Thickness, true );
		reader.FloatInput( "m_flInitialSpeedMin", &m_SpeedMin, true );
		reader.FloatInput( "m_flInitialSpeedMax", &m_SpeedMax, true );
		reader.FloatInput( "m_flRoll", &m_Roll, true );
		reader.FloatInput( "m_flPitch", &m_Pitch, true );
		reader.FloatInput( "m_flYaw", &m_Yaw, true );
		m_bEvenDistribution = reader.Bool( "m_bEvenDistribution", false );
		m_bXYVelocityOnly = reader.Bool( "m_bXYVelocityOnly", true );
		reader.Reads( PARTICLE_ATTRIBUTE_PARTICLE_ID );
		reader.Writes( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		constexpr float TWO_PI = 6.28318530718f;
		ParticleTransform_t transform = m_Transform.Evaluate( c );
		float flPerOrbit = m_PerOrbit.EvaluateCollection( c );
		bool bEven = m_bEvenDistribution || flPerOrbit > 0.0f;
		float flEvenStep = flPerOrbit >= 1.0f ? TWO_PI / std::floor( flPerOrbit ) : TWO_PI / 16.0f;
		// Six scratch arrays for seven inputs: the speed is drawn first, freeing one for pitch.
		float *pRadius = c.Scratch( 0 ), *pThickness = c.Scratch( 1 ), *pSpeed = c.Scratch( 2 ), *pSpeedMaxThenPitch = c.Scratch( 3 );
		float *pRoll = c.Scratch( 4 ), *pYaw = c.Scratch( 5 );
		m_Radius.EvaluatePerParticle( c, nStart, nCount, pRadius );
		m_Thickness.EvaluatePerParticle( c, nStart, nCount, pThickness );
		m_SpeedMin.EvaluatePerParticle( c, nStart, nCount, pSpeed );
		m_SpeedMax.EvaluatePerParticle( c, nStart, nCount, pSpeedMaxThenPitch );
		CParticleRandom &random = c.Random();
		for ( int j = 0; j < nCount; ++j )
			pSpeed[ j ] = random.RandomFloat( pSpeed[ j ], pSpeedMaxThenPitch[ j ] );
		float *pPitch = pSpeedMaxThenPitch;
		m_Pitch.EvaluatePerParticle( c, nStart, nCount, pPitch );
		m_Roll.EvaluatePerParticle( c, nStart, nCount, pRoll );
		m_Yaw.EvaluatePerParticle( c, nStart, nCount, pYaw );
		const float *pID = c.Stream( PARTICLE_ATTRIBUTE_PARTICLE_ID );
		float flDt = c.GetPreviousDt();
		for ( int j = 0; j < nCount; ++j )
		{
			int i = nStart + j;
			float flAngle = bEven ? float( uint32_t( pID[ i ] ) ) * flEvenStep : random.NextFloat() * TWO_PI;
			float flDistance = pRadius[ j ] + pThickness[ j ] * random.NextFloat();
			Vector vDir( std::cos( flAngle ), std::sin( flAngle ), 0.0f );
			Vector vVelocityDir = vDir;
			if ( !m_bXYVelocityOnly )
				vVelocityDir = Normalized( Vector( vDir.x, vDir.y, random.NextFloat() * 2.0f - 1.0f ) );
			// The ring's tilt, then the transform's frame.
			vDir = RotateByDegrees( vDir, pPitch[ j ], pYaw[ j ], pRoll[ j ] );
			vVelocityDir = RotateByDegrees( vVelocityDir, pPitch[ j ], pYaw[ j ], pRoll[ j ] );
			Vector vPos = LocalToWorld( transform.m_vOrigin, transform.m_vForward, transform.m_vRight, transform.m_vUp, Scale( vDir, flDistance ) );
			Vector vWorldDir = LocalToWorld( Vector(), transform.m_vForward, transform.m_vRight, transform.m_vUp, vVelocityDir );
			Vector vVelocity = Scale( vWorldDir, pSpeed[ j ] );
			for ( int k = 0; k < 3; ++k )
			{
				c.Stream( PARTICLE_ATTRIBUTE_POSITION, k )[ i ] = vPos[ k ];
				c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k )[ i ] = vPos[ k ] - vVelocity[ k ] * flDt;
			}
		}
	}

private:
	CSimTransformInput m_Transform;
	CSimFloatInput m_PerOrbit, m_Radius, m_Thickness, m_SpeedMin, m_SpeedMax, m_Roll, m_Pitch, m_Yaw;
	bool m_bEvenDistribution = false, m_bXYVelocityOnly = true;
};

// Places particles on the hitboxes of the bound model (of the named set, or all of them
// when the set has none), on its triangles when it has no hitboxes, and, with no model
// bound, on (or, when forced inside, in) a small stand-in sphere around the model's control
// point. The hitbox scale stretches each hitbox about its own origin.
class CCreateOnModel final : public CParticleSimFunction
{
public:
	static constexpr float STAND_IN_RADIUS = 8.0f;

	void Read( CParticleFunctionReader &reader ) override
	{
		reader.ModelInput( "m_modelInput", &m_Model );
		reader.TransformInput( "m_transformInput", &m_Transform );
		m_nForceInModel = reader.Int( "m_nForceInModel", 0 );
		m_HitboxScale = CSimVecInput( Vector( 1.0f, 1.0f, 1.0f ) );
		reader.VecInput( "m_vecHitBoxScale", &m_HitboxScale, false );
		m_HitboxSetName = reader.String( "m_HitboxSetName", "default" );
		reader.Writes( PARTICLE_ATTRIBUTE_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
		reader.Writes( PARTICLE_ATTRIBUTE_HITBOX_INDEX );
		reader.Writes( PARTICLE_ATTRIBUTE_HITBOX_OFFSET_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		ParticleTransform_t transform = m_Transform.Evaluate( c );
		int nModelPoint = m_Model.GetControlPoint();
		if ( nModelPoint >= 0 )
		{
			// The model stands at its control point, turned as the point is.
			const ParticleControlPoint_t &cp = c.GetControlPoint( nModelPoint );
			transform.m_vOrigin = cp.m_vPosition;
			transform.m_vForward = cp.m_vForward;
			transform.m_vRight = cp.m_vRight;
			transform.m_vUp = cp.m_vUp;
		}
		Vector vHitboxScale = m_HitboxScale.EvaluateCollection( c );
		bool bInside = m_nForceInModel == 1;
		const CParticleModel *pModel = m_Model.GetModel( c );
		std::vector<int> hitboxes;
		if ( pModel )
			pModel->GetHitboxesOfSet( m_HitboxSetName.Get(), &hitboxes );
		CParticleRandom &random = c.Random();
		float *pHitbox = c.Stream( PARTICLE_ATTRIBUTE_HITBOX_INDEX );
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			Vector vLocal;
			int nHitbox = -1;
			if ( !hitboxes.empty() )
			{
				nHitbox = hitboxes[ size_t( random.RandomInt( 0, int( hitboxes.size() ) - 1 ) ) ];
				vLocal = pModel->SampleHitbox( nHitbox, bInside, vHitboxScale, random );
			}
			else if ( !pModel || !pModel->SampleSurface( random, &vLocal ) )
			{
				vLocal = StandInPoint( random, bInside, Scale( vHitboxScale, STAND_IN_RADIUS ) );
			}
			// Model space is the frame's: x forward, y left, z up.
			Vector vPos = LocalToWorld( transform.m_vOrigin, transform.m_vForward, transform.m_vRight, transform.m_vUp, vLocal );
			for ( int k = 0; k < 3; ++k )
			{
				c.Stream( PARTICLE_ATTRIBUTE_POSITION, k )[ i ] = vPos[ k ];
				c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k )[ i ] = vPos[ k ];
				c.Stream( PARTICLE_ATTRIBUTE_HITBOX_OFFSET_POSITION, k )[ i ] = vLocal[ k ];
			}
			pHitbox[ i ] = float( std::max( nHitbox, 0 ) );
		}
	}

private:
	static Vector StandInPoint( CParticleRandom &random, bool bInside, const Vector &vScale )
	{
		Vector vDir;
		float flLengthSq;
		do
		{
			vDir = Vector( random.NextFloat() * 2.0f - 1.0f, random.NextFloat() * 2.0f - 1.0f, random.NextFloat() * 2.0f - 1.0f );
			flLengthSq = Dot( vDir, vDir );
		} while ( flLengthSq > 1.0f || flLengthSq < 1e-6f );
		// Inside: the point in the ball as drawn; otherwise pushed out to the surface.
		Vector vLocal = bInside ? vDir : Scale( vDir, 1.0f / std::sqrt( flLengthSq ) );
		return Mul( vLocal, vScale );
	}

	CSimModelInput m_Model;
	CSimTransformInput m_Transform;
	CSimVecInput m_HitboxScale;
	CUtlString m_HitboxSetName;
	int m_nForceInModel = 0;
};

// Writes a vector to a vector attribute with a set method; a moved position takes its
// previous position along unless the move should be felt as a push.
void WriteVectorAttribute( CParticleCollection &c, int nField, int nSetMethod, int nStart, int nCount, const Vector &v, bool bAccelerate )
{
	int nComponents = GetParticleAttributeComponentCount( nField );
	float *pValue = c.Scratch( 0 ), *pBefore = c.Scratch( 1 );
	for ( int k = 0; k < nComponents; ++k )
	{
		for ( int i = 0; i < nCount; ++i )
			pValue[ i ] = v[ nComponents == 3 ? k : 0 ];
		float *pTarget = c.Stream( nField, k ) + nStart;
		for ( int i = 0; i < nCount; ++i )
			pBefore[ i ] = pTarget[ i ];
		ApplyParticleSetMethod( nSetMethod, pTarget, pValue, nCount );
		if ( nField == PARTICLE_ATTRIBUTE_POSITION && !bAccelerate )
		{
			float *pPrev = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k ) + nStart;
			for ( int i = 0; i < nCount; ++i )
				pPrev[ i ] += pTarget[ i ] - pBefore[ i ];
		}
	}
}

class CRemapTransformToVector final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_POSITION );
		m_vInputMin = reader.Vec( "m_vInputMin", Vector() );
		m_vInputMax = reader.Vec( "m_vInputMax", Vector( 1.0f, 1.0f, 1.0f ) );
		m_vOutputMin = reader.Vec( "m_vOutputMin", Vector() );
		m_vOutputMax = reader.Vec( "m_vOutputMax", Vector( 1.0f, 1.0f, 1.0f ) );
		reader.TransformInput( "m_TransformInput", &m_Transform );
		m_nSetMethod = reader.Enum( "m_nSetMethod", g_ParticleSetMethodNames, 6, PARTICLE_SET_REPLACE_VALUE );
		m_bOffset = reader.Bool( "m_bOffset", false );
		m_bAccelerate = reader.Bool( "m_bAccelerate", false );
		if ( m_nField == PARTICLE_ATTRIBUTE_POSITION )
			reader.Writes( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		Vector vIn = m_Transform.Evaluate( c ).m_vOrigin;
		Vector vOut;
		for ( int k = 0; k < 3; ++k )
		{
			float flRange = m_vInputMax[ k ] - m_vInputMin[ k ];
			float t = std::fabs( flRange ) > 1e-6f ? Saturate( ( vIn[ k ] - m_vInputMin[ k ] ) / flRange ) : 0.0f;
			vOut[ k ] = Lerp( m_vOutputMin[ k ], m_vOutputMax[ k ], t );
		}
		// An offset adds to what is there whatever the set method says.
		int nMethod = m_bOffset ? int( PARTICLE_SET_ADD_TO_CURRENT_VALUE ) : m_nSetMethod;
		WriteVectorAttribute( c, m_nField, nMethod, nStart, nCount, vOut, m_bAccelerate );
	}

private:
	int m_nField = PARTICLE_ATTRIBUTE_POSITION;
	int m_nSetMethod = 0;
	Vector m_vInputMin, m_vInputMax, m_vOutputMin, m_vOutputMax;
	CSimTransformInput m_Transform;
	bool m_bOffset = false, m_bAccelerate = false;
};

// The direction from the transform to each new particle, written to a vector attribute.
class CRemapInitialDirectionToTransformToVector final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		reader.TransformInput( "m_TransformInput", &m_Transform );
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_NORMAL );
		m_flScale = reader.Float( "m_flScale", 1.0f );
		m_flOffsetRot = reader.Float( "m_flOffsetRot", 0.0f );
		m_vOffsetAxis = Normalized( reader.Vec( "m_vecOffsetAxis", Vector() ) );
		m_bNormalize = reader.Bool( "m_bNormalize", false );
		reader.Reads( PARTICLE_ATTRIBUTE_POSITION );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		Vector vOrigin = m_Transform.Evaluate( c ).m_vOrigin;
		int nComponents = GetParticleAttributeComponentCount( m_nField );
		bool bRotate = m_flOffsetRot != 0.0f && !( m_vOffsetAxis == Vector() );
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			Vector vDir( c.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 )[ i ] - vOrigin.x, c.Stream( PARTICLE_ATTRIBUTE_POSITION, 1 )[ i ] - vOrigin.y,
				c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ i ] - vOrigin.z );
			if ( m_bNormalize )
				vDir = Normalized( vDir );
			if ( bRotate )
				vDir = RotateAboutAxis( vDir, m_vOffsetAxis, m_flOffsetRot );
			vDir = Scale( vDir, m_flScale );
			for ( int k = 0; k < nComponents; ++k )
				c.Stream( m_nField, k )[ i ] = nComponents == 3 ? vDir[ k ] : Length( vDir );
		}
	}

private:
	CSimTransformInput m_Transform;
	int m_nField = PARTICLE_ATTRIBUTE_NORMAL;
	float m_flScale = 1.0f, m_flOffsetRot = 0.0f;
	Vector m_vOffsetAxis;
	bool m_bNormalize = false;
};

constexpr float RAD_TO_DEG = 180.0f / 3.14159265358979f;

// The heading of one of the transform's axes in its horizontal plane, in degrees.
class CRemapInitialTransformDirectionToRotation final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		reader.TransformInput( "m_TransformInput", &m_Transform );
		m_nField = reader.OutputAttribute( "m_nFieldOutput", PARTICLE_ATTRIBUTE_YAW );
		m_flOffsetRot = reader.Float( "m_flOffsetRot", 0.0f );
		m_nComponent = reader.Int( "m_nComponent", 0 );
		if ( m_nComponent < 0 || m_nComponent > 2 )
			reader.Fail( "m_nComponent: %d is not an axis (0, 1 or 2)", m_nComponent );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		ParticleTransform_t transform = m_Transform.Evaluate( c );
		const Vector &vAxis = m_nComponent == 0 ? transform.m_vForward : ( m_nComponent == 1 ? transform.m_vRight : transform.m_vUp );
		float flDegrees = std::atan2( vAxis.y, vAxis.x ) * RAD_TO_DEG + m_flOffsetRot;
		float *pOut = c.Stream( m_nField );
		for ( int i = nStart; i < nStart + nCount; ++i )
			pOut[ i ] = flDegrees;
	}

private:
	CSimTransformInput m_Transform;
	int m_nField = PARTICLE_ATTRIBUTE_YAW;
	float m_flOffsetRot = 0.0f;
	int m_nComponent = 0;
};

// The transform's orientation as pitch, yaw and roll, plus a fixed offset.
class CRemapTransformOrientationToRotations final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		reader.TransformInput( "m_TransformInput", &m_Transform );
		m_vRotation = reader.Vec( "m_vecRotation", Vector() );
		m_bWriteNormal = reader.Bool( "m_bWriteNormal", false );
		reader.Writes( PARTICLE_ATTRIBUTE_PITCH );
		reader.Writes( PARTICLE_ATTRIBUTE_YAW );
		reader.Writes( PARTICLE_ATTRIBUTE_ROLL );
		if ( m_bWriteNormal )
			reader.Writes( PARTICLE_ATTRIBUTE_NORMAL );
	}

	void InitNewParticles( CParticleCollection &c, int nStart, int nCount ) const override
	{
		ParticleTransform_t t = m_Transform.Evaluate( c );
		const Vector &f = t.m_vForward;
		float flPitch = std::atan2( -f.z, std::sqrt( f.x * f.x + f.y * f.y ) ) * RAD_TO_DEG + m_vRotation.x;
		float flYaw = std::atan2( f.y, f.x ) * RAD_TO_DEG + m_vRotation.y;
		// Left is minus right; the roll is how far left has tipped out of the horizontal.
		float flRoll = std::atan2( -t.m_vRight.z, t.m_vUp.z ) * RAD_TO_DEG + m_vRotation.z;
		float *pPitch = c.Stream( PARTICLE_ATTRIBUTE_PITCH ), *pYaw = c.Stream( PARTICLE_ATTRIBUTE_YAW ), *pRoll = c.Stream( PARTICLE_ATTRIBUTE_ROLL );
		for ( int i = nStart; i < nStart + nCount; ++i )
		{
			pPitch[ i ] = flPitch;
			pYaw[ i ] = flYaw;
			pRoll[ i ] = flRoll;
		}
		if ( !m_bWriteNormal )
			return;
		for ( int k = 0; k < 3; ++k )
		{
			float *pNormal = c.Stream( PARTICLE_ATTRIBUTE_NORMAL, k );
			for ( int i = nStart; i < nStart + nCount; ++i )
				pNormal[ i ] = f[ k ];
		}
	}

private:
	CSimTransformInput m_Transform;
	Vector m_vRotation;
	bool m_bWriteNormal = false;
};

const ParticleSimFunctionEntry_t s_Initializers[] = {
	{ "C_INIT_CreateWithinSphere", CreateParticleSimFunction<CCreateWithinSphere> },
	{ "C_INIT_InitFloat", CreateParticleSimFunction<CInitFloat> },
	{ "C_INIT_InitVec", CreateParticleSimFunction<CInitVec> },
	{ "C_INIT_RandomRadius", CreateParticleSimFunction<CRandomRadius> },
	{ "C_INIT_RandomLifeTime", CreateParticleSimFunction<CRandomLifeTime> },
	{ "C_INIT_RandomTrailLength", CreateParticleSimFunction<CRandomTrailLength> },
	{ "C_INIT_RandomRotation", CreateParticleSimFunction<CRandomRotation> },
	{ "C_INIT_RandomYaw", CreateParticleSimFunction<CRandomYaw> },
	{ "C_INIT_RandomRotationSpeed", CreateParticleSimFunction<CRandomRotationSpeed> },
	{ "C_INIT_CreateWithinBox", CreateParticleSimFunction<CCreateWithinBox> },
	{ "C_INIT_RandomColor", CreateParticleSimFunction<CRandomColor> },
	{ "C_INIT_RandomAlpha", CreateParticleSimFunction<CRandomAlpha> },
	{ "C_INIT_InitialVelocityNoise", CreateParticleSimFunction<CInitialVelocityNoise> },
	{ "C_INIT_VelocityRandom", CreateParticleSimFunction<CVelocityRandom> },
	{ "C_INIT_PositionOffset", CreateParticleSimFunction<CPositionOffset> },
	{ "C_INIT_RingWave", CreateParticleSimFunction<CRingWave> },
	{ "C_INIT_CreateOnModel", CreateParticleSimFunction<CCreateOnModel> },
	{ "C_INIT_RemapTransformToVector", CreateParticleSimFunction<CRemapTransformToVector> },
	{ "C_INIT_RemapInitialDirectionToTransformToVector", CreateParticleSimFunction<CRemapInitialDirectionToTransformToVector> },
	{ "C_INIT_RemapInitialTransformDirectionToRotation", CreateParticleSimFunction<CRemapInitialTransformDirectionToRotation> },
	{ "C_INIT_RemapTransformOrientationToRotations", CreateParticleSimFunction<CRemapTransformOrientationToRotations> },
};
} // namespace

const ParticleSimFunctionEntry_t *GetParticleInitializerFunctions( int *pCount )
{
	*pCount = int( sizeof( s_Initializers ) / sizeof( s_Initializers[ 0 ] ) );
	return s_Initializers;
}
