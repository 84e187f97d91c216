#include "tools/toolscene/particleslibhost_toolscene.h"

#include "core/logging/logonce.h"
#include "particleslib/particleproperty.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolscenemodel.h"
#include "tools/toolscene/toolsceneparticlesystem.h"

using namespace ToolSceneMath;

void CParticlesLibHost_ToolScene::ReportUnknownSystem( const char *pName )
{
	LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, pName ? pName : "", "Unknown particle system '%s': showing the error system instead\n", pName ? pName : "" );
}

uint64_t CParticlesLibHost_ToolScene::GetOwnerCollectionSeed( IParticleEntity *pOwner )
{
	auto *pSystem = dynamic_cast<CToolSceneParticleSystem *>( pOwner );
	return pSystem ? pSystem->GetSeed() : 1;
}

ISceneWorld *CParticlesLibHost_ToolScene::GetOwnerSceneWorld( IParticleEntity * )
{
	return m_pScene ? m_pScene->GetSceneWorld() : nullptr;
}

Vector CParticlesLibHost_ToolScene::GetOwnerPosition( IParticleEntity *pOwner )
{
	Vector vOrigin, vForward, vRight, vUp;
	if ( !pOwner )
		return Vector();
	pOwner->GetParticleEntityFrame( &vOrigin, &vForward, &vRight, &vUp );
	return vOrigin;
}

// The model an entity shows, if it is a model node or a node under one.
static const CToolSceneModel *FindModelNode( IParticleEntity *pEntity )
{
	for ( auto *pNode = dynamic_cast<CToolSceneNode *>( pEntity ); pNode; pNode = pNode->GetParent() )
	{
		if ( auto *pModel = dynamic_cast<const CToolSceneModel *>( pNode ) )
			return pModel;
	}
	return nullptr;
}

bool CParticlesLibHost_ToolScene::GetAttachmentFrame( const ParticleControlPointRecord_t &record, Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp )
{
	IParticleEntity *pEntity = record.m_pEntity;
	switch ( record.m_nAttachType )
	{
	case PATTACH_CUSTOMORIGIN_FOLLOW:
	case PATTACH_EYES_FOLLOW:
	case PATTACH_MAIN_VIEW:
	case PATTACH_WATERWAKE: return false;
	case PATTACH_POINT:
	case PATTACH_POINT_FOLLOW:
	{
		const CToolSceneModel *pModel = FindModelNode( pEntity );
		return pModel && pModel->GetAttachmentFrame( record.m_nAttachmentIndex, pOrigin, pForward, pRight, pUp );
	}
	case PATTACH_OVERHEAD_FOLLOW:
	case PATTACH_CENTER_FOLLOW:
	{
		const CToolSceneModel *pModel = FindModelNode( pEntity );
		if ( !pEntity )
			return false;
		pEntity->GetParticleEntityFrame( pOrigin, pForward, pRight, pUp );
		Vector vMin, vMax;
		if ( pModel && pModel->GetBounds( &vMin, &vMax ) )
		{
			// Over the model (the top of its box), or in its middle.
			float flZ = record.m_nAttachType == PATTACH_OVERHEAD_FOLLOW ? vMax.z : ( vMin.z + vMax.z ) * 0.5f;
			*pOrigin = Vector( ( vMin.x + vMax.x ) * 0.5f, ( vMin.y + vMax.y ) * 0.5f, flZ );
		}
		return true;
	}
	default:
	{
		if ( !pEntity )
			return false;
		// The entity's origin frame, moved by the record's offset in the entity's own space.
		Vector vOrigin, vForward, vRight, vUp;
		pEntity->GetParticleEntityFrame( &vOrigin, &vForward, &vRight, &vUp );
		const ParticleFrame_t &offset = record.m_matOffset;
		*pOrigin = ParticleMath::LocalToWorld( vOrigin, vForward, vRight, vUp, offset.m_vOrigin );
		*pForward = ParticleMath::LocalToWorld( Vector(), vForward, vRight, vUp, offset.m_vForward );
		*pRight = ParticleMath::LocalToWorld( Vector(), vForward, vRight, vUp, offset.m_vRight );
		*pUp = ParticleMath::LocalToWorld( Vector(), vForward, vRight, vUp, offset.m_vUp );
		return true;
	}
	}
}
