#include "tools/toolscene/toolscenemodel.h"

#include <algorithm>
#include <cstring>

#include "core/kv3/kv3membername.h"
#include "core/logging/logonce.h"
#include "core/particles/particlemodelresource.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/toolscenemath.h"

using namespace ToolSceneMath;

bool CToolSceneModel::SetModelName( const char *pResourceName )
{
	m_strModelName = pResourceName ? pResourceName : "";
	m_pModel = nullptr;
	if ( m_strModelName.IsEmpty() )
		return true;
	CUtlString strError;
	m_pModel = FindParticleModel( m_strModelName.Get(), &strError );
	if ( !m_pModel )
		LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, m_strModelName.Get(), "Preview model '%s' can't be shown: %s\n", m_strModelName.Get(), strError.Get() );
	return m_pModel != nullptr;
}

void CToolSceneModel::SetModel( const ParticleModelPtr_t &pModel )
{
	m_pModel = pModel;
	m_strModelName = pModel ? pModel->GetName() : "";
}

void CToolSceneModel::SetColor( float r, float g, float b, float a )
{
	m_Color[ 0 ] = r;
	m_Color[ 1 ] = g;
	m_Color[ 2 ] = b;
	m_Color[ 3 ] = a;
}

int CToolSceneModel::LookupAttachment( const char *pName ) const
{
	if ( !m_pModel || !pName )
		return -1;
	// Names are matched by their hash, as the host's attachment table keys them.
	const uint32_t nHash = MurmurHash2LowerCase( pName, strlen( pName ), 0x31415926 );
	const auto &attachments = m_pModel->GetAttachments();
	for ( size_t i = 0; i < attachments.size(); ++i )
	{
		const char *pEach = attachments[ i ].m_Name.Get();
		if ( MurmurHash2LowerCase( pEach, strlen( pEach ), 0x31415926 ) == nHash )
			return int( i );
	}
	return -1;
}

bool CToolSceneModel::GetAttachmentFrame( int nIndex, Vector *pOrigin, Vector *pForward, Vector *pRight, Vector *pUp ) const
{
	if ( !m_pModel || nIndex < 0 || nIndex >= int( m_pModel->GetAttachments().size() ) )
		return false;
	const ParticleModelFrame_t &frame = m_pModel->GetAttachments()[ size_t( nIndex ) ].m_Frame;
	Vector vForward, vRight, vUp;
	AngleVectors( QAngle( frame.m_vAngles.x, frame.m_vAngles.y, frame.m_vAngles.z ), &vForward, &vRight, &vUp );
	Vector no, nf, nr, nu;
	GetWorldFrame( &no, &nf, &nr, &nu );
	*pOrigin = LocalToWorld( frame.m_vOrigin );
	*pForward = ParticleMath::LocalToWorld( Vector(), nf, nr, nu, vForward );
	*pRight = ParticleMath::LocalToWorld( Vector(), nf, nr, nu, vRight );
	*pUp = ParticleMath::LocalToWorld( Vector(), nf, nr, nu, vUp );
	return true;
}

bool CToolSceneModel::GetModelBounds( Vector *pMin, Vector *pMax ) const
{
	if ( !m_pModel || m_pModel->GetVertices().empty() )
		return false;
	bool bHave = false;
	for ( const Vector &v : m_pModel->GetVertices() )
		ToolSceneAddBounds( v, v, &bHave, pMin, pMax );
	return true;
}

bool CToolSceneModel::GetBounds( Vector *pMin, Vector *pMax ) const
{
	Vector vMin, vMax;
	if ( !GetModelBounds( &vMin, &vMax ) )
		return false;
	bool bHave = false;
	for ( int nCorner = 0; nCorner < 8; ++nCorner )
	{
		Vector v( nCorner & 1 ? vMax.x : vMin.x, nCorner & 2 ? vMax.y : vMin.y, nCorner & 4 ? vMax.z : vMin.z );
		Vector w = LocalToWorld( v );
		ToolSceneAddBounds( w, w, &bHave, pMin, pMax );
	}
	return true;
}

void CToolSceneModel::AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t & ) const
{
	if ( !m_pModel )
		return;
	Vector vOrigin, vForward, vRight, vUp;
	GetWorldFrame( &vOrigin, &vForward, &vRight, &vUp );
	drawList.AddModel( m_pModel, vOrigin, vForward, vRight, vUp, GetWorldScale(), m_Color );
	if ( !m_bDrawAttachments )
		return;
	for ( int i = 0; i < int( m_pModel->GetAttachments().size() ); ++i )
	{
		Vector o, f, r, u;
		if ( GetAttachmentFrame( i, &o, &f, &r, &u ) )
			drawList.AddAxes( o, f, r, u, 6.0f );
	}
}
