#include "core/particles/sim/particlefunctionreader.h"

#include <cstdarg>

#include "core/kv3/keyvalues3.h"
#include "core/particles/sim/particleattributestorage.h"
#include "core/particles/sim/particlekv3read.h"

CParticleFunctionReader::CParticleFunctionReader( const KeyValues3 *pTable, CParticleSimFunction *pFunction, ParticleInputCompileContext_t *pContext, const char *pWhere )
	: m_pTable( pTable ), m_pFunction( pFunction ), m_pContext( pContext ), m_Where( pWhere )
{
}

const KeyValues3 *CParticleFunctionReader::Find( const char *pName ) const
{
	return ParticleKV3::Member( m_pTable, pName );
}

void CParticleFunctionReader::Fail( const char *pFormat, ... )
{
	if ( m_bFailed )
		return; // the first problem is the one to fix
	m_bFailed = true;
	char szMessage[ 512 ];
	va_list args;
	va_start( args, pFormat );
	vsnprintf( szMessage, sizeof( szMessage ), pFormat, args );
	va_end( args );
	m_Error.Format( "%s: %s", m_Where.Get(), szMessage );
}

float CParticleFunctionReader::Float( const char *pName, float flDefault ) const
{
	return ParticleKV3::ReadFloat( Find( pName ), flDefault );
}

int CParticleFunctionReader::Int( const char *pName, int nDefault ) const
{
	return ParticleKV3::ReadInt( Find( pName ), nDefault );
}

bool CParticleFunctionReader::Bool( const char *pName, bool bDefault ) const
{
	return ParticleKV3::ReadBool( Find( pName ), bDefault );
}

Vector CParticleFunctionReader::Vec( const char *pName, const Vector &vDefault ) const
{
	return ParticleKV3::ReadVector( Find( pName ), vDefault );
}

Vector CParticleFunctionReader::Color( const char *pName, const Vector &vDefault, float *pAlpha ) const
{
	int rgba[ 4 ];
	if ( !ParticleKV3::ReadColor( Find( pName ), rgba ) )
		return vDefault;
	if ( pAlpha )
		*pAlpha = float( rgba[ 3 ] ) / 255.0f;
	return Vector( float( rgba[ 0 ] ) / 255.0f, float( rgba[ 1 ] ) / 255.0f, float( rgba[ 2 ] ) / 255.0f );
}

const char *CParticleFunctionReader::String( const char *pName, const char *pDefault ) const
{
	const KeyValues3 *pValue = Find( pName );
	return pValue && pValue->IsString() ? pValue->GetString() : pDefault;
}

int CParticleFunctionReader::Enum( const char *pName, const char *const *pNames, int nNames, int nDefault ) const
{
	return ParticleKV3::ReadEnum( Find( pName ), pNames, nNames, 0, nDefault );
}

int CParticleFunctionReader::OutputAttribute( const char *pName, int nDefault )
{
	int nAttribute = Int( pName, nDefault );
	if ( !IsValidParticleAttribute( nAttribute ) )
	{
		Fail( "%s %d is not a particle attribute (0 to %d)", pName, nAttribute, PARTICLE_ATTRIBUTE_COUNT - 1 );
		return nDefault;
	}
	Writes( nAttribute );
	return nAttribute;
}

int CParticleFunctionReader::InputAttribute( const char *pName, int nDefault )
{
	int nAttribute = Int( pName, nDefault );
	if ( !IsValidParticleAttribute( nAttribute ) )
	{
		Fail( "%s %d is not a particle attribute (0 to %d)", pName, nAttribute, PARTICLE_ATTRIBUTE_COUNT - 1 );
		return nDefault;
	}
	Reads( nAttribute );
	return nAttribute;
}

void CParticleFunctionReader::FloatInput( const char *pName, CSimFloatInput *pInput, bool bPerParticle )
{
	CUtlString error;
	if ( !pInput->Load( Find( pName ), &error ) )
	{
		Fail( "%s: %s", pName, error.Get() );
		return;
	}
	pInput->Compile( m_pContext, bPerParticle );
	m_nReadMask |= pInput->GetReadAttributeMask();
	m_nReadInitialMask |= pInput->GetReadInitialAttributeMask();
	const int nFirstUse = m_pFunction->m_ControlPointUsage.Count();
	pInput->CollectControlPointUsage( &m_pFunction->m_ControlPointUsage );
	NoteUsageSource( nFirstUse, pName, PARTICLE_USAGE_FLOAT_INPUT );
	if ( ( pInput->m_nType == PF_TYPE_PARTICLE_FLOAT || pInput->m_nType == PF_TYPE_PARTICLE_INITIAL_FLOAT ) && !IsValidParticleAttribute( pInput->m_nScalarAttribute ) )
		Fail( "%s reads attribute %d, which doesn't exist", pName, pInput->m_nScalarAttribute );
}

void CParticleFunctionReader::VecInput( const char *pName, CSimVecInput *pInput, bool bPerParticle )
{
	CUtlString error;
	if ( !pInput->Load( Find( pName ), &error ) )
	{
		Fail( "%s: %s", pName, error.Get() );
		return;
	}
	pInput->Compile( m_pContext, bPerParticle );
	m_nReadMask |= pInput->GetReadAttributeMask();
	m_nReadInitialMask |= pInput->GetReadInitialAttributeMask();
	const int nFirstUse = m_pFunction->m_ControlPointUsage.Count();
	pInput->CollectControlPointUsage( &m_pFunction->m_ControlPointUsage );
	NoteUsageSource( nFirstUse, pName, PARTICLE_USAGE_VEC_INPUT );
}

void CParticleFunctionReader::TransformInput( const char *pName, CSimTransformInput *pInput )
{
	CUtlString error;
	if ( !pInput->Load( Find( pName ), &error ) )
	{
		Fail( "%s: %s", pName, error.Get() );
		return;
	}
	pInput->Compile( m_pContext );
	const int nFirstUse = m_pFunction->m_ControlPointUsage.Count();
	pInput->CollectControlPointUsage( &m_pFunction->m_ControlPointUsage );
	NoteUsageSource( nFirstUse, pName, PARTICLE_USAGE_TRANSFORM_INPUT );
}

void CParticleFunctionReader::ModelInput( const char *pName, CSimModelInput *pInput )
{
	CUtlString error;
	if ( !pInput->Load( Find( pName ), &error ) )
	{
		Fail( "%s: %s", pName, error.Get() );
		return;
	}
	pInput->Compile( m_pContext );
	const int nFirstUse = m_pFunction->m_ControlPointUsage.Count();
	pInput->CollectControlPointUsage( &m_pFunction->m_ControlPointUsage );
	NoteUsageSource( nFirstUse, pName, PARTICLE_USAGE_MODEL_INPUT );
}

void CParticleFunctionReader::NoteUsageSource( int nFirstUse, const char *pField, ParticleUsageSource_t eSource )
{
	CUtlVector<HostControlPointUsage_t> &usage = m_pFunction->m_ControlPointUsage;
	for ( int i = nFirstUse; i < usage.Count(); ++i )
	{
		usage[ i ].m_Field = pField;
		usage[ i ].m_eSource = eSource;
	}
}

void CParticleFunctionReader::Writes( int nAttribute )
{
	m_pFunction->m_nWrittenAttributes |= ParticleAttributeBit( nAttribute );
}

void CParticleFunctionReader::Reads( int nAttribute )
{
	m_nReadMask |= ParticleAttributeBit( nAttribute );
}

void CParticleFunctionReader::ReadsInitial( int nAttribute )
{
	m_nReadInitialMask |= ParticleAttributeBit( nAttribute );
}

void CParticleFunctionReader::ReadsControlPoint( int nControlPoint, int nUsageKind )
{
	if ( nControlPoint < 0 )
		return;
	if ( nControlPoint >= 64 )
	{
		Fail( "control point %d is out of range (0 to 63)", nControlPoint );
		return;
	}
	m_pFunction->m_ControlPointUsage.AddToTail( HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( nControlPoint ), nUsageKind, CONTROL_POINT_ACCESS_READ ) );
}

void CParticleFunctionReader::WritesControlPoint( int nControlPoint, int nUsageKind, int nComponent )
{
	if ( nControlPoint < 0 )
		return;
	if ( nControlPoint >= 64 )
	{
		Fail( "control point %d is out of range (0 to 63)", nControlPoint );
		return;
	}
	m_pFunction->m_ControlPointUsage.AddToTail(
		HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( nControlPoint ), nUsageKind, CONTROL_POINT_ACCESS_WRITE, nComponent ) );
}

void CParticleFunctionReader::FirstModelOfList( const char *pName, CUtlString *pModel ) const
{
	const KeyValues3 *pList = Find( pName );
	if ( pList && pList->IsArray() && pList->GetArrayElementCount() > 0 )
	{
		const KeyValues3 *pModelName = ParticleKV3::Member( pList->GetArrayElement( 0 ), "m_model" );
		if ( pModelName && pModelName->IsString() )
			pModel->Set( pModelName->GetString() );
	}
}
