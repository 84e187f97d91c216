// Renderers: what to draw is read straight from the attribute arrays.

#include <algorithm>
#include <cmath>

#include "core/particles/sim/particlecollection.h"
#include "core/particles/sim/particlefunctionreader.h"
#include "core/particles/sim/particlesimfunctionlist.h"
#include "core/particles/sim/particlesimmath.h"

namespace
{
void FillCommon( const CParticleCollection &c, ParticleDrawData_t *pData )
{
	pData->m_nCount = c.Count();
	for ( int k = 0; k < 3; ++k )
	{
		pData->m_pPosition[ k ] = c.Stream( PARTICLE_ATTRIBUTE_POSITION, k );
		pData->m_pColor[ k ] = c.Stream( PARTICLE_ATTRIBUTE_COLOR, k );
		pData->m_pPrevPosition[ k ] = c.Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, k );
	}
	pData->m_pRadius = c.Stream( PARTICLE_ATTRIBUTE_RADIUS );
	pData->m_pAlpha = c.Stream( PARTICLE_ATTRIBUTE_ALPHA );
	pData->m_pRotation = c.Stream( PARTICLE_ATTRIBUTE_ROLL );
	pData->m_pCreationTime = c.Stream( PARTICLE_ATTRIBUTE_CREATION_TIME );
	pData->m_flCurrentTime = c.GetTime();
}

class CRendererBase : public CParticleSimFunction
{
public:
	void ReadCommon( CParticleFunctionReader &reader, const char *pResourceField )
	{
		m_Resource = reader.String( pResourceField, "" );
		m_AlphaScale = CSimFloatInput( 1.0f );
		reader.FloatInput( "m_flAlphaScale", &m_AlphaScale, false );
		for ( int nAttribute : { PARTICLE_ATTRIBUTE_POSITION, PARTICLE_ATTRIBUTE_RADIUS, PARTICLE_ATTRIBUTE_COLOR, PARTICLE_ATTRIBUTE_ALPHA, PARTICLE_ATTRIBUTE_ROLL } )
			reader.Reads( nAttribute );
	}

protected:
	CUtlString m_Resource;
	CSimFloatInput m_AlphaScale;
};

class CRenderSprites final : public CRendererBase
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		ReadCommon( reader, "m_hTexture" );
		m_flAddSelfAmount = reader.Float( "m_flAddSelfAmount", 0.0f );
		m_bAdditive = reader.Bool( "m_bAdditive", false );
		m_Overbright = CSimFloatInput( 1.0f );
		reader.FloatInput( "m_flOverbrightFactor", &m_Overbright, false );
		static const char *const s_Orientations[] = { "PARTICLE_ORIENTATION_SCREEN_ALIGNED", "PARTICLE_ORIENTATION_SCREEN_Z_ALIGNED",
			"PARTICLE_ORIENTATION_WORLD_Z_ALIGNED", "PARTICLE_ORIENTATION_ALIGN_TO_PARTICLE_NORMAL" };
		m_nOrientation = reader.Enum( "m_nOrientationType", s_Orientations, 4, 0 );
		if ( m_nOrientation == 3 )
			reader.Reads( PARTICLE_ATTRIBUTE_NORMAL );
	}

	void FillDrawData( const CParticleCollection &c, ParticleDrawData_t *pData ) const override
	{
		FillCommon( c, pData );
		pData->m_eKind = PARTICLE_RENDERER_SPRITES;
		pData->m_nOrientation = m_nOrientation;
		if ( m_nOrientation == 3 )
		{
			for ( int k = 0; k < 3; ++k )
				pData->m_pNormal[ k ] = c.Stream( PARTICLE_ATTRIBUTE_NORMAL, k );
		}
		pData->m_pResource = m_Resource.Get();
		pData->m_flAlphaScale = m_AlphaScale.EvaluateCollection( c );
		pData->m_flAddSelfAmount = m_flAddSelfAmount;
		pData->m_bAdditive = m_bAdditive;
		pData->m_flOverbrightFactor = m_Overbright.EvaluateCollection( c );
	}

private:
	float m_flAddSelfAmount = 0.0f;
	bool m_bAdditive = false;
	int m_nOrientation = 0;
	CSimFloatInput m_Overbright;
};

class CRenderTrails final : public CRendererBase
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		ReadCommon( reader, "m_hTexture" );
		m_flMaxLength = reader.Float( "m_flMaxLength", 2000.0f );
		m_flLengthFadeInTime = reader.Float( "m_flLengthFadeInTime", 0.0f );
		reader.Reads( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION );
		m_nLengthField = reader.InputAttribute( "m_nLengthField", PARTICLE_ATTRIBUTE_TRAIL_LENGTH );
		reader.Reads( PARTICLE_ATTRIBUTE_CREATION_TIME );
	}

	void FillDrawData( const CParticleCollection &c, ParticleDrawData_t *pData ) const override
	{
		FillCommon( c, pData );
		pData->m_eKind = PARTICLE_RENDERER_TRAILS;
		pData->m_pResource = m_Resource.Get();
		pData->m_flAlphaScale = m_AlphaScale.EvaluateCollection( c );
		pData->m_pTrailLength = c.Stream( m_nLengthField );
		pData->m_flMaxLength = m_flMaxLength;
		pData->m_flLengthFadeInTime = m_flLengthFadeInTime;
		// Speed is distance over the last step: the tail needs that step's length.
		pData->m_flCurrentTime = c.GetTime();
		pData->m_flStepDt = c.GetPreviousDt();
	}

private:
	float m_flMaxLength = 2000.0f;
	float m_flLengthFadeInTime = 0.0f;
	int m_nLengthField = PARTICLE_ATTRIBUTE_TRAIL_LENGTH;
};

class CRenderModels final : public CRendererBase
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		ReadCommon( reader, "m_hModel" );
		// A model list keeps the first model as the one to show.
		if ( m_Resource.IsEmpty() )
		{
			CUtlString first;
			reader.FirstModelOfList( "m_ModelList", &first );
			m_Resource = first;
		}
		reader.ModelInput( "m_modelInput", &m_ModelInput );
		reader.Reads( PARTICLE_ATTRIBUTE_YAW );
		reader.Reads( PARTICLE_ATTRIBUTE_PITCH );
	}

	void FillDrawData( const CParticleCollection &c, ParticleDrawData_t *pData ) const override
	{
		FillCommon( c, pData );
		pData->m_eKind = PARTICLE_RENDERER_MODELS;
		// A model bound through the model input (a control point's or a variable's) wins.
		const char *pBound = m_ModelInput.GetModelName( c );
		pData->m_pResource = *pBound ? pBound : m_Resource.Get();
		pData->m_flAlphaScale = m_AlphaScale.EvaluateCollection( c );
		pData->m_pYaw = c.Stream( PARTICLE_ATTRIBUTE_YAW );
		pData->m_pPitch = c.Stream( PARTICLE_ATTRIBUTE_PITCH );
	}

private:
	CSimModelInput m_ModelInput;
};

const ParticleSimFunctionEntry_t s_Renderers[] = {
	{ "C_OP_RenderSprites", CreateParticleSimFunction<CRenderSprites> },
	{ "C_OP_RenderTrails", CreateParticleSimFunction<CRenderTrails> },
	{ "C_OP_RenderModels", CreateParticleSimFunction<CRenderModels> },
};
} // namespace

const ParticleSimFunctionEntry_t *GetParticleRendererFunctions( int *pCount )
{
	*pCount = int( sizeof( s_Renderers ) / sizeof( s_Renderers[ 0 ] ) );
	return s_Renderers;
}

Vector ParticleDrawData_t::GetTrailTail( int i ) const
{
	Vector vPos( m_pPosition[ 0 ][ i ], m_pPosition[ 1 ][ i ], m_pPosition[ 2 ][ i ] );
	if ( !m_pPrevPosition[ 0 ] || m_flStepDt <= 0.0f )
		return vPos;
	Vector vVelocity = ParticleMath::Scale( Vector( vPos.x - m_pPrevPosition[ 0 ][ i ], vPos.y - m_pPrevPosition[ 1 ][ i ], vPos.z - m_pPrevPosition[ 2 ][ i ] ), 1.0f / m_flStepDt );
	float flLength = ParticleMath::Length( vVelocity ) * ( m_pTrailLength ? m_pTrailLength[ i ] : 0.1f );
	if ( m_flLengthFadeInTime > 0.0f && m_pCreationTime )
		flLength *= ParticleMath::Saturate( ( m_flCurrentTime - m_pCreationTime[ i ] ) / m_flLengthFadeInTime );
	flLength = std::min( flLength, m_flMaxLength );
	return ParticleMath::Sub( vPos, ParticleMath::Scale( ParticleMath::Normalized( vVelocity ), flLength ) );
}
