#include "zoldoc_lib/zolcollectionpreviewtarget.h"

#include "core/kv3/keyvalues3.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/particles/sim/particlesimmath.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "zoldoc_lib/zolnamedvalue.h"

namespace
{
Vector Turn( const Vector &v, const QAngle &angles )
{
	return ParticleMath::RotateByDegrees( v, angles.x, angles.y, angles.z );
}

Vector Turn( const Vector &v, const Vector &angles )
{
	return ParticleMath::RotateByDegrees( v, angles.x, angles.y, angles.z );
}
} // namespace

void CZolCollectionPreviewTarget::SetSceneModel( const char *pName, ParticleModelPtr_t pModel )
{
	m_SceneModelName = pModel && pName ? pName : "";
	m_pSceneModel = pModel;
}

void CZolCollectionPreviewTarget::SetPoint( int nPoint, const Vector &vPosition, const QAngle &angles, const Vector *pFrameAngles )
{
	Vector vForward = Turn( Vector( 1.0f, 0.0f, 0.0f ), angles );
	Vector vRight = Turn( Vector( 0.0f, -1.0f, 0.0f ), angles );
	Vector vUp = Turn( Vector( 0.0f, 0.0f, 1.0f ), angles );
	if ( pFrameAngles )
	{
		vForward = Turn( vForward, *pFrameAngles );
		vRight = Turn( vRight, *pFrameAngles );
		vUp = Turn( vUp, *pFrameAngles );
	}
	m_pCollection->SetControlPoint( nPoint, vPosition );
	m_pCollection->SetControlPointOrientation( nPoint, vForward, vRight, vUp );
}

void CZolCollectionPreviewTarget::SetCollectionControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles )
{
	SetPoint( nPoint, vPosition, angles, nullptr );
}

void CZolCollectionPreviewTarget::SetNodeControlPoint( int nPoint, const Vector &vPosition, const QAngle &angles )
{
	SetPoint( nPoint, vPosition, angles, nullptr );
}

void CZolCollectionPreviewTarget::SetCollectionNamedValue( const ParticleParamID_t &key, const CPulseValueFullType &type, const KeyValues3 &value )
{
	Vector vPosition;
	QAngle angles;
	switch ( type.GetBaseType() )
	{
	case PVAL_FLOAT:
		ZolNamedValue_ToTransform( type, value, &vPosition, &angles );
		m_pCollection->SetNamedValueFloat( key, vPosition.x );
		break;
	case PVAL_VEC3:
		ZolNamedValue_ToTransform( type, value, &vPosition, &angles );
		m_pCollection->SetNamedValueVector( key, vPosition );
		break;
	case PVAL_TRANSFORM:
		ZolNamedValue_ToTransform( type, value, &vPosition, &angles );
		m_pCollection->SetNamedValueTransform( key, vPosition, Turn( Vector( 1.0f, 0.0f, 0.0f ), angles ), Turn( Vector( 0.0f, -1.0f, 0.0f ), angles ),
			Turn( Vector( 0.0f, 0.0f, 1.0f ), angles ) );
		break;
	case PVAL_RESOURCE:
	case PVAL_RESOURCE_NAME:
		// An empty name leaves the declared model in place.
		if ( value.IsString() && *value.GetString() )
			m_pCollection->SetNamedValueModel( key, value.GetString() );
		break;
	default:
		// Entity handles and the rest have nothing to stand for them without a game.
		break;
	}
}

bool CZolCollectionPreviewTarget::BindControlPointToModel( int nPoint, const char *pModelName, bool, int, const char *pAttachmentName, const Vector &vOffset,
	const QAngle &angOffset )
{
	if ( !m_pSceneModel || !m_SceneModelName.IsEqual_CaseInsensitive( pModelName ) )
		return false;
	ParticleModelFrame_t frame;
	if ( pAttachmentName && *pAttachmentName )
	{
		const ParticleModelAttachment_t *pAttachment = m_pSceneModel->FindAttachment( pAttachmentName );
		if ( !pAttachment )
			return false;
		frame = pAttachment->m_Frame;
	}
	SetPoint( nPoint, frame.ToModel( vOffset ), angOffset, &frame.m_vAngles );
	return true;
}
