#include "particleslib/particletransforminput.h"

#include <algorithm>

#include "particleslib/particlenamedvaluebindings.h"

void CParticleTransformInput::CollectControlPointUsage( CUtlVector<ControlPointUsage_t> &list ) const
{
	const int32_t nKind = m_bUseOrientation ? CONTROL_POINT_USAGE_TRANSFORM : CONTROL_POINT_USAGE_POSITION;
	if ( m_nType == PT_TYPE_CONTROL_POINT )
	{
		AddControlPointRead( list, m_nControlPoint, nKind );
	}
	else if ( m_nType == PT_TYPE_CONTROL_POINT_RANGE )
	{
		// The first control point counts even when the range is empty or reversed.
		AddControlPointRead( list, m_nControlPoint, nKind );
		// Numbers end at the last control point, so a wild maximum can't flood the list.
		const int32_t nLast = std::min( m_nControlPointRangeMax, MAX_PARTICLE_CONTROL_POINT );
		for ( int64_t nControlPoint = int64_t( m_nControlPoint ) + 1; nControlPoint <= nLast; ++nControlPoint )
			AddControlPointRead( list, static_cast<int32_t>( nControlPoint ), nKind );
	}
}

void CParticleTransformInput::ResolveNamedValues( CParticleNamedValueBindings &bindings )
{
	if ( m_nType == PT_TYPE_NAMED_VALUE )
		bindings.Bind( m_NamedValue, CPulseValueFullType( PVAL_TRANSFORM ) );
}

bool CParticleTransformInput::IsEquivalent( const CParticleTransformInput &a, const CParticleTransformInput &b )
{
	if ( a.m_nType != b.m_nType )
		return false;
	switch ( a.m_nType )
	{
	case PT_TYPE_NAMED_VALUE:
		return a.m_NamedValue.GetToken() == b.m_NamedValue.GetToken() && a.m_bFollowNamedValue == b.m_bFollowNamedValue &&
			   a.m_bSupportsDisabled == b.m_bSupportsDisabled;
	case PT_TYPE_CONTROL_POINT:
		return a.m_nControlPoint == b.m_nControlPoint && a.m_bUseOrientation == b.m_bUseOrientation && a.m_bSupportsDisabled == b.m_bSupportsDisabled;
	case PT_TYPE_CONTROL_POINT_RANGE:
		return a.m_nControlPoint == b.m_nControlPoint && a.m_nControlPointRangeMax == b.m_nControlPointRangeMax &&
			   a.m_bUseOrientation == b.m_bUseOrientation && a.m_flEndCPGrowthTime == b.m_flEndCPGrowthTime && a.m_bSupportsDisabled == b.m_bSupportsDisabled;
	default: return true;
	}
}
