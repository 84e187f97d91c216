// Initializers: a newborn particle's attributes, set once over the run of new particles.

#include <cmath>

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
		reader.ReadsControlPoint( m_nControlPoint, m_vLocalSpeedMin == Vector() && m_vLocalSpeedMax == Vector() ? 2 : 4 );
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
	int m_nOutputField = 0;
	float m_flMin = 0.0f, m_flMax = 0.0f, m_flExponent = 1.0f;
};

class CRandomRadius final : public CRandomFloatInitializer
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nOutputField = PARTICLE_ATTRIBUTE_RADIUS;
		reader.Writes( m_nOutputField );
		m_flMin = reader.Float( "m_flRadiusMin", 1.0f );
		m_flMax = reader.Float( "m_flRadiusMax", 1.0f );
		m_flExponent = reader.Float( "m_flRadiusRandExponent", 1.0f );
	}
};

class CRandomLifeTime final : public CRandomFloatInitializer
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nOutputField = PARTICLE_ATTRIBUTE_LIFE_DURATION;
		reader.Writes( m_nOutputField );
		m_flMin = reader.Float( "m_fLifetimeMin", 0.0f );
		m_flMax = reader.Float( "m_fLifetimeMax", 0.0f );
		m_flExponent = reader.Float( "m_fLifetimeRandExponent", 1.0f );
	}
};

class CRandomTrailLength final : public CRandomFloatInitializer
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_nOutputField = PARTICLE_ATTRIBUTE_TRAIL_LENGTH;
		reader.Writes( m_nOutputField );
		m_flMin = reader.Float( "m_flMinLength", 0.1f );
		m_flMax = reader.Float( "m_flMaxLength", 0.1f );
		m_flExponent = reader.Float( "m_flLengthRandExponent", 1.0f );
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
		reader.ReadsControlPoint( m_nControlPoint, m_bLocal ? 4 : 2 );
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
		reader.ReadsControlPoint( m_nControlPoint, 3 );
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
			reader.ReadsControlPoint( m_nControlPoint, 3 );
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
};
} // namespace

const ParticleSimFunctionEntry_t *GetParticleInitializerFunctions( int *pCount )
{
	*pCount = int( sizeof( s_Initializers ) / sizeof( s_Initializers[ 0 ] ) );
	return s_Initializers;
}
