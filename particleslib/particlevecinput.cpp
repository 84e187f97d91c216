#include "particleslib/particlevecinput.h"

#include <strings.h>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/text/bufferstring.h"
#include "particleslib/particlenamedvaluebindings.h"

void CParticleVecInput::CollectControlPointUsage( CUtlVector<ControlPointUsage_t> &list ) const
{
	switch ( m_nType )
	{
	case PVEC_TYPE_CP_VALUE:
	case PVEC_TYPE_CP_RELATIVE_POSITION:
	case PVEC_TYPE_CP_RELATIVE_DIR:
	case PVEC_TYPE_CP_RELATIVE_RANDOM_DIR: AddControlPointRead( list, m_nControlPoint, CONTROL_POINT_USAGE_TRANSFORM ); break;
	case PVEC_TYPE_CP_DELTA:
		AddControlPointRead( list, m_nControlPoint, CONTROL_POINT_USAGE_TRANSFORM );
		AddControlPointRead( list, m_nDeltaControlPoint, CONTROL_POINT_USAGE_TRANSFORM );
		break;
	case PVEC_TYPE_FLOAT_COMPONENTS:
		m_FloatComponentX.CollectControlPointUsage( list );
		m_FloatComponentY.CollectControlPointUsage( list );
		m_FloatComponentZ.CollectControlPointUsage( list );
		break;
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT: m_FloatInterp.CollectControlPointUsage( list ); break;
	default: break;
	}
}

void CParticleVecInput::ResolveNamedValues( CParticleNamedValueBindings &bindings )
{
	if ( m_nType == PVEC_TYPE_NAMED_VALUE )
		bindings.Bind( m_NamedValue, CPulseValueFullType( PVAL_VEC3 ) );
}

void CParticleVecInput::AssignCacheOffset( int &nOffset )
{
	switch ( m_nType )
	{
	case PVEC_TYPE_FLOAT_COMPONENTS:
		m_FloatComponentX.AssignCacheOffset( nOffset );
		m_FloatComponentY.AssignCacheOffset( nOffset );
		m_FloatComponentZ.AssignCacheOffset( nOffset );
		break;
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT: m_FloatInterp.AssignCacheOffset( nOffset ); break;
	default: break;
	}
}

void CParticleVecInput::MarkInitialized()
{
	CParticleInput::MarkInitialized();
	switch ( m_nType )
	{
	case PVEC_TYPE_FLOAT_COMPONENTS:
		m_FloatComponentX.MarkInitialized();
		m_FloatComponentY.MarkInitialized();
		m_FloatComponentZ.MarkInitialized();
		break;
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT: m_FloatInterp.MarkInitialized(); break;
	default: break;
	}
}

void CParticleVecInput::GetReadAttributeMask( uint64_t *pMask ) const
{
	*pMask = 0;
	switch ( m_nType )
	{
	case PVEC_TYPE_PARTICLE_VECTOR:
	case PVEC_TYPE_RANDOM_UNIFORM_OFFSET: *pMask = ParticleAttributeBit( m_nVectorAttribute ); break;
	case PVEC_TYPE_PARTICLE_VELOCITY: *pMask = ParticleAttributeBit( 0 ) | ParticleAttributeBit( 2 ); break;
	case PVEC_TYPE_CP_RELATIVE_RANDOM_DIR: *pMask = ParticleAttributeBit( 8 ) | ParticleAttributeBit( 21 ); break;
	case PVEC_TYPE_FLOAT_COMPONENTS:
	{
		uint64_t nX = 0, nY = 0, nZ = 0;
		m_FloatComponentX.GetReadAttributeMask( &nX );
		m_FloatComponentY.GetReadAttributeMask( &nY );
		m_FloatComponentZ.GetReadAttributeMask( &nZ );
		*pMask = nX | nY | nZ;
		break;
	}
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT: m_FloatInterp.GetReadAttributeMask( pMask ); break;
	default: break;
	}
}

void CParticleVecInput::GetReadInitialAttributeMask( uint64_t *pMask ) const
{
	*pMask = m_nType == PVEC_TYPE_PARTICLE_INITIAL_VECTOR ? ParticleAttributeBit( m_nVectorAttribute ) : 0;
}

bool CParticleVecInput::IsEquivalent( const CParticleVecInput &a, const CParticleVecInput &b )
{
	if ( a.m_nType != b.m_nType )
		return false;
	// Vector comparison is by value, so a NaN component never matches.
	switch ( a.m_nType )
	{
	case PVEC_TYPE_LITERAL: return a.m_vLiteralValue == b.m_vLiteralValue;
	case PVEC_TYPE_LITERAL_COLOR: return a.m_LiteralColor == b.m_LiteralColor;
	case PVEC_TYPE_NAMED_VALUE: return a.m_NamedValue.GetToken() == b.m_NamedValue.GetToken() && a.m_bFollowNamedValue == b.m_bFollowNamedValue;
	case PVEC_TYPE_PARTICLE_VECTOR:
	case PVEC_TYPE_PARTICLE_INITIAL_VECTOR: return a.m_nVectorAttribute == b.m_nVectorAttribute && a.m_vVectorAttributeScale == b.m_vVectorAttributeScale;
	case PVEC_TYPE_PARTICLE_VELOCITY: return a.m_vVectorAttributeScale == b.m_vVectorAttributeScale;
	case PVEC_TYPE_CP_VALUE: return a.m_nControlPoint == b.m_nControlPoint && a.m_vCPValueScale == b.m_vCPValueScale;
	case PVEC_TYPE_CP_RELATIVE_POSITION: return a.m_nControlPoint == b.m_nControlPoint && a.m_vCPRelativePosition == b.m_vCPRelativePosition;
	case PVEC_TYPE_CP_RELATIVE_DIR: return a.m_nControlPoint == b.m_nControlPoint && a.m_vCPRelativeDir == b.m_vCPRelativeDir;
	case PVEC_TYPE_CP_RELATIVE_RANDOM_DIR:
		return a.m_nControlPoint == b.m_nControlPoint && a.m_vRandomMin == b.m_vRandomMin && a.m_vRandomMax == b.m_vRandomMax;
	case PVEC_TYPE_FLOAT_COMPONENTS:
		return CParticleFloatInput::IsEquivalent( a.m_FloatComponentX, b.m_FloatComponentX ) &&
			   CParticleFloatInput::IsEquivalent( a.m_FloatComponentY, b.m_FloatComponentY ) &&
			   CParticleFloatInput::IsEquivalent( a.m_FloatComponentZ, b.m_FloatComponentZ );
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
		return CParticleFloatInput::IsEquivalent( a.m_FloatInterp, b.m_FloatInterp ) && a.m_flInterpInput0 == b.m_flInterpInput0 &&
			   a.m_flInterpInput1 == b.m_flInterpInput1 && a.m_vInterpOutput0 == b.m_vInterpOutput0 && a.m_vInterpOutput1 == b.m_vInterpOutput1;
	case PVEC_TYPE_RANDOM_UNIFORM: return a.m_vRandomMin == b.m_vRandomMin && a.m_vRandomMax == b.m_vRandomMax;
	case PVEC_TYPE_RANDOM_UNIFORM_OFFSET:
		return a.m_vRandomMin == b.m_vRandomMin && a.m_vRandomMax == b.m_vRandomMax && a.m_vVectorAttributeScale == b.m_vVectorAttributeScale &&
			   a.m_nVectorAttribute == b.m_nVectorAttribute;
	case PVEC_TYPE_CP_DELTA: return a.m_nControlPoint == b.m_nControlPoint && a.m_nDeltaControlPoint == b.m_nDeltaControlPoint;
	case PVEC_TYPE_CLOSEST_CAMERA_POSITION: return a.m_vCPRelativePosition == b.m_vCPRelativePosition;
	default: return true; // no source, or a gradient: the KV3 comparison before this decides
	}
}

namespace
{
// Three numbers of any numeric kind.
bool ReadVectorLiteral( const KeyValues3 *pValue, Vector *pOut )
{
	if ( !pValue || !pValue->IsArray() || pValue->GetArrayElementCount() != 3 )
		return false;
	for ( int i = 0; i < 3; ++i )
	{
		const KeyValues3 *pElement = pValue->GetArrayElement( i );
		if ( !pElement->IsNumber() )
			return false;
		( *pOut )[ i ] = static_cast<float>( pElement->GetDouble() );
	}
	return true;
}
} // namespace

bool CParticleVecInput::KV3PreLoad( CParticleVecInput &input, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	if ( !pValue || pValue->IsNull() || pValue->IsTable() )
		return false;

	// A short form stands for a whole input: every other field takes its default.
	const bool bInitialized = input.m_bInitialized;
	static_cast<CParticleVecInput &>( input ) = CParticleVecInput();
	input.m_bInitialized = bInitialized;

	if ( pValue->IsString() && strcasecmp( pValue->GetString(), "pvec_color_white" ) == 0 )
	{
		input.m_nType = PVEC_TYPE_LITERAL_COLOR;
		input.m_LiteralColor = Color( 255, 255, 255, 255 );
		return true;
	}
	if ( pValue->IsString() && strcasecmp( pValue->GetString(), "pvec_color_black" ) == 0 )
	{
		input.m_nType = PVEC_TYPE_LITERAL_COLOR;
		input.m_LiteralColor = Color( 0, 0, 0, 255 );
		return true;
	}
	Vector vLiteral;
	if ( !ReadVectorLiteral( pValue, &vLiteral ) )
	{
		pContext->ReportError( "CParticleVecInput::MEmitKV3TransferPreLoadFn failed\n" );
		return true;
	}
	input.m_nType = PVEC_TYPE_LITERAL;
	input.m_vLiteralValue = vLiteral;
	return true;
}

void BuildDisplayString( const CParticleVecInput &input, CBufferString *pText, const char * )
{
	pText->Set( "" );
	const int nControlPoint = input.m_nControlPoint;
	const Vector &vMin = input.m_vRandomMin;
	const Vector &vMax = input.m_vRandomMax;
	switch ( input.m_nType )
	{
	case PVEC_TYPE_INVALID: break;
	case PVEC_TYPE_LITERAL:
		pText->Format( "(%g,%g,%g)", double( input.m_vLiteralValue.x ), double( input.m_vLiteralValue.y ), double( input.m_vLiteralValue.z ) );
		break;
	case PVEC_TYPE_LITERAL_COLOR: pText->Format( "(%d,%d,%d)", input.m_LiteralColor.r(), input.m_LiteralColor.g(), input.m_LiteralColor.b() ); break;
	case PVEC_TYPE_NAMED_VALUE: pText->Format( "%s", input.m_NamedValue.GetName() ); break;
	case PVEC_TYPE_PARTICLE_VECTOR: pText->Format( "Attribute %d", input.m_nVectorAttribute ); break;
	case PVEC_TYPE_PARTICLE_INITIAL_VECTOR: pText->Format( "Initial Attribute %d", input.m_nVectorAttribute ); break;
	case PVEC_TYPE_PARTICLE_VELOCITY: pText->Set( "Velocity" ); break;
	case PVEC_TYPE_CP_VALUE: pText->Format( "CP#%d", nControlPoint ); break;
	case PVEC_TYPE_CP_RELATIVE_POSITION: pText->Format( "CP#%d Relative Pos", nControlPoint ); break;
	case PVEC_TYPE_CP_RELATIVE_DIR: pText->Format( "CP#%d Relative Dir", nControlPoint ); break;
	case PVEC_TYPE_CP_RELATIVE_RANDOM_DIR: pText->Format( "CP#%d Relative Random Dir", nControlPoint ); break;
	case PVEC_TYPE_FLOAT_COMPONENTS: pText->Set( "(3 Independent Floats)" ); break;
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
	{
		const Vector &v0 = input.m_vInterpOutput0;
		const Vector &v1 = input.m_vInterpOutput1;
		pText->Format( input.m_nType == PVEC_TYPE_FLOAT_INTERP_CLAMPED ? "Interp Clamped (%g,%g,%g) - (%g,%g,%g)" : "Interp Open (%g,%g,%g) - (%g,%g,%g)",
					   double( v0.x ), double( v0.y ), double( v0.z ), double( v1.x ), double( v1.y ), double( v1.z ) );
		break;
	}
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT: pText->Set( "Gradient" ); break;
	case PVEC_TYPE_RANDOM_UNIFORM:
		pText->Format( "Random (%g,%g,%g) - (%g,%g,%g)", double( vMin.x ), double( vMin.y ), double( vMin.z ), double( vMax.x ), double( vMax.y ),
					   double( vMax.z ) );
		break;
	case PVEC_TYPE_RANDOM_UNIFORM_OFFSET:
	{
		float dx = vMax.x - vMin.x, dy = vMax.y - vMin.y, dz = vMax.z - vMin.z;
		if ( dx * dx + dy * dy + dz * dz > 1.1920929e-7f )
		{
			pText->Format( "Random Offset from %d (%g,%g,%g) - (%g,%g,%g) ", input.m_nVectorAttribute, double( vMin.x ), double( vMin.y ), double( vMin.z ),
						   double( vMax.x ), double( vMax.y ), double( vMax.z ) );
		}
		else
		{
			pText->Format( "Offset from %d ", input.m_nVectorAttribute );
		}
		const Vector &vScale = input.m_vVectorAttributeScale;
		if ( !( vScale == Vector( 1.0f, 1.0f, 1.0f ) ) )
			pText->AppendFormat( "Scale: (%g,%g,%g) ", double( vScale.x ), double( vScale.y ), double( vScale.z ) );
		break;
	}
	case PVEC_TYPE_CP_DELTA: pText->Format( "Delta between CP#%d and CP%d", nControlPoint, input.m_nDeltaControlPoint ); break;
	case PVEC_TYPE_CLOSEST_CAMERA_POSITION: pText->Set( "Closest Camera Position" ); break;
	default: pText->Format( "Bad VecInput %d", static_cast<int>( input.m_nType ) ); break;
	}
}
