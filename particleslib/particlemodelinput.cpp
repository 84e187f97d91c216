#include "particleslib/particlemodelinput.h"

#include "particleslib/particlenamedvaluebindings.h"

void CParticleModelInput::CollectControlPointUsage( CUtlVector<ControlPointUsage_t> &list ) const
{
	if ( m_nType == PM_TYPE_CONTROL_POINT )
		AddControlPointRead( list, m_nControlPoint, CONTROL_POINT_USAGE_MODEL );
}

void CParticleModelInput::ResolveNamedValues( CParticleNamedValueBindings &bindings )
{
	if ( m_nType == PM_TYPE_NAMED_VALUE_MODEL )
		bindings.Bind( m_NamedValue, CPulseValueFullType( PVAL_RESOURCE, "tmsh" ) );
	else if ( m_nType == PM_TYPE_NAMED_VALUE_EHANDLE )
		bindings.Bind( m_NamedValue, CPulseValueFullType( PVAL_PARTICLE_EHANDLE ) );
}

bool CParticleModelInput::IsEquivalent( const CParticleModelInput &a, const CParticleModelInput &b )
{
	if ( a.m_nType != b.m_nType )
		return false;
	switch ( a.m_nType )
	{
	case PM_TYPE_NAMED_VALUE_MODEL:
	case PM_TYPE_NAMED_VALUE_EHANDLE: return a.m_NamedValue.GetToken() == b.m_NamedValue.GetToken();
	case PM_TYPE_CONTROL_POINT: return a.m_nControlPoint == b.m_nControlPoint;
	default: return true;
	}
}
