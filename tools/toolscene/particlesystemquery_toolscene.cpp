#include "tools/toolscene/particlesystemquery_toolscene.h"

#include <cstdio>

#include "core/text/strtools.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolscenemodel.h"

using namespace ToolSceneMath;

ConVar zol_preview_gravity( "zol_preview_gravity", "0 0 -800", FCVAR_NONE, "Gravity that particles of the preview feel, as x y z." );
ConVar zol_preview_underwater( "zol_preview_underwater", "0", FCVAR_NONE, "The preview's ground plane is the surface of water; particles below it are under water." );

// Hitbox boxes of a model without any.
static constexpr float DEFAULT_HITBOX_EXTENT = 8.0f;
// Beyond this on x or y a box is outside the water test.
static constexpr float WATER_EXTENT = 16384.0f;

Vector CParticleSystemQuery_ToolScene::ReadGravity()
{
	float x, y, z;
	char cTrailing;
	if ( sscanf( zol_preview_gravity.GetString(), "%f %f %f %c", &x, &y, &z, &cTrailing ) == 3 )
		return Vector( x, y, z );
	return Vector( 0.0f, 0.0f, -800.0f );
}

IParticleEntity *CParticleSystemQuery_ToolScene::GetEntityByName( const char *pWord, IParticleEntity *pSelf )
{
	if ( !pWord )
		return nullptr;
	if ( !V_stricmp_fast( pWord, "self" ) || !V_stricmp_fast( pWord, "self_with_wearables" ) )
		return pSelf;
	if ( !V_stricmp_fast( pWord, "parent" ) )
	{
		auto *pNode = dynamic_cast<CToolSceneNode *>( pSelf );
		return pNode ? pNode->GetParent() : nullptr;
	}
	return nullptr;
}

void CParticleSystemQuery_ToolScene::GetLightingAtPoint( const Vector &, Color *pColor )
{
	// Packed as 0xFF000000: full alpha, no light.
	pColor->SetColor( 0, 0, 0, 255 );
}

void CParticleSystemQuery_ToolScene::TraceLine( const Vector &vStart, const Vector &vEnd, ParticleTraceResult_t *pResult )
{
	*pResult = ParticleTraceResult_t();
	pResult->m_vEnd = vEnd;
	// The ground plane at height 0, hit from above.
	pResult->m_bStartSolid = vStart.z < 0.0f;
	if ( vStart.z >= 0.0f && vEnd.z < 0.0f )
	{
		float t = vStart.z / ( vStart.z - vEnd.z );
		pResult->m_flFraction = t;
		pResult->m_vEnd = Lerp( vStart, vEnd, t );
		pResult->m_vEnd.z = 0.0f;
		pResult->m_vNormal = Vector( 0.0f, 0.0f, 1.0f );
	}
}

bool CParticleSystemQuery_ToolScene::CollideWithGround( const Vector &vStart, const Vector &vEnd, const Vector &vMins, const Vector &vMaxs, ParticleTraceResult_t *pResult )
{
	// The box's lowest point travels against the plane.
	TraceLine( Vector( vStart.x, vStart.y, vStart.z + vMins.z ), Vector( vEnd.x, vEnd.y, vEnd.z + vMins.z ), pResult );
	if ( pResult->m_flFraction < 1.0f )
		pResult->m_vEnd.z -= vMins.z;
	(void)vMaxs;
	return pResult->m_flFraction < 1.0f;
}

bool CParticleSystemQuery_ToolScene::GetRandomPointsOnHitboxes( IParticleEntity *pEntity, const char *pHitboxSet, int nCount, bool bInside, Vector *pPoints )
{
	auto *pModelNode = dynamic_cast<CToolSceneModel *>( pEntity );
	auto *pNode = dynamic_cast<CToolSceneNode *>( pEntity );
	if ( !pNode || nCount <= 0 )
		return false;
	const CParticleModel *pModel = pModelNode ? pModelNode->GetModel().get() : nullptr;
	std::vector<int> hitboxes;
	if ( pModel )
		pModel->GetHitboxesOfSet( pHitboxSet ? pHitboxSet : "default", &hitboxes );
	for ( int i = 0; i < nCount; ++i )
	{
		Vector vLocal;
		if ( !hitboxes.empty() )
			vLocal = pModel->SampleHitbox( hitboxes[ size_t( m_Random.RandomInt( 0, int( hitboxes.size() ) - 1 ) ) ], bInside, Vector( 1, 1, 1 ), m_Random );
		else
			vLocal = Vector( m_Random.RandomFloat( -DEFAULT_HITBOX_EXTENT, DEFAULT_HITBOX_EXTENT ), m_Random.RandomFloat( -DEFAULT_HITBOX_EXTENT, DEFAULT_HITBOX_EXTENT ),
				m_Random.RandomFloat( -DEFAULT_HITBOX_EXTENT, DEFAULT_HITBOX_EXTENT ) );
		pPoints[ i ] = pNode->LocalToWorld( vLocal );
	}
	return true;
}

bool CParticleSystemQuery_ToolScene::GetModelBounds( IParticleEntity *pEntity, Vector *pMin, Vector *pMax )
{
	auto *pModelNode = dynamic_cast<CToolSceneModel *>( pEntity );
	return pModelNode && pModelNode->GetModelBounds( pMin, pMax );
}

int CParticleSystemQuery_ToolScene::GetActivityByName( const char * ) const
{
	// Activities exist only where the game says it supports them; models here have none.
	return -1;
}

void CParticleSystemQuery_ToolScene::GetGravity( const Vector *, int nCount, Vector *pGravity )
{
	Vector vGravity = ReadGravity();
	for ( int i = 0; i < nCount; ++i )
		pGravity[ i ] = vGravity;
}

bool CParticleSystemQuery_ToolScene::IsInWater( const Vector &vMins, const Vector &vMaxs )
{
	if ( !zol_preview_underwater.GetBool() )
		return false;
	for ( int i = 0; i < 2; ++i )
	{
		if ( vMins[ i ] > WATER_EXTENT || vMaxs[ i ] < -WATER_EXTENT )
			return false;
	}
	// The water's surface is the ground plane.
	return vMins.z < 0.0f;
}
