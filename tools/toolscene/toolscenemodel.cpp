#include "tools/toolscene/toolscenemodel.h"

#include <algorithm>
#include <cmath>
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
	m_flSequenceTime = 0.0f;
	if ( !m_strModelName.IsEmpty() )
	{
		CUtlString strError;
		m_pModel = FindParticleModel( m_strModelName.Get(), &strError );
		if ( !m_pModel )
			LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, m_strModelName.Get(), "Preview model '%s' can't be shown: %s\n", m_strModelName.Get(), strError.Get() );
	}
	UpdateShownModel();
	return m_strModelName.IsEmpty() || m_pModel != nullptr;
}

void CToolSceneModel::SetModel( const ParticleModelPtr_t &pModel )
{
	m_pModel = pModel;
	m_strModelName = pModel ? pModel->GetName() : "";
	m_flSequenceTime = 0.0f;
	UpdateShownModel();
}

void CToolSceneModel::SetMaterialGroup( const char *pName )
{
	m_strMaterialGroup = pName ? pName : "";
}

void CToolSceneModel::GetColor( float rgba[ 4 ] ) const
{
	for ( int i = 0; i < 4; ++i )
		rgba[ i ] = m_Color[ i ];
	if ( const ParticleModelMaterialGroup_t *pGroup = m_pModel ? m_pModel->FindMaterialGroup( m_strMaterialGroup ) : nullptr )
	{
		for ( int i = 0; i < 3; ++i )
			rgba[ i ] = pGroup->m_vColor[ i ] / 255.0f;
	}
}

void CToolSceneModel::SetBodyGroups( const std::vector<std::pair<CUtlString, int>> &values )
{
	if ( values == m_BodyGroups )
		return;
	m_BodyGroups = values;
	UpdateShownModel();
}

void CToolSceneModel::UpdateShownModel()
{
	if ( !m_pModel )
	{
		m_pShownModel = nullptr;
		return;
	}
	std::vector<int> choices;
	for ( const ParticleModelBodyGroup_t &group : m_pModel->GetBodyGroups() )
	{
		int nChoice = 0;
		for ( const auto &[ name, nValue ] : m_BodyGroups )
		{
			if ( name.IsEqual_CaseInsensitive( group.m_Name ) )
				nChoice = nValue;
		}
		choices.push_back( nChoice );
	}
	m_pShownModel = ParticleModelWithBodyGroups( m_pModel, choices );
}

void CToolSceneModel::SetSequence( const char *pName )
{
	CUtlString strName( pName ? pName : "" );
	if ( !strName.IsEqual_CaseInsensitive( m_strSequence ) )
		m_flSequenceTime = 0.0f;
	m_strSequence = strName;
}

const ParticleModelSequence_t *CToolSceneModel::GetSequence() const
{
	return m_pModel && !m_strSequence.IsEmpty() ? m_pModel->FindSequence( m_strSequence ) : nullptr;
}

int CToolSceneModel::GetSequenceFrame() const
{
	const ParticleModelSequence_t *pSequence = GetSequence();
	if ( !pSequence )
		return -1;
	const int nFrame = int( m_flSequenceTime * pSequence->m_flFps );
	if ( m_bLooping )
		return nFrame % pSequence->m_nFrameCount;
	return std::min( nFrame, pSequence->m_nFrameCount - 1 );
}

bool CToolSceneModel::IsSequenceFinished() const
{
	const ParticleModelSequence_t *pSequence = GetSequence();
	return pSequence && !m_bLooping && m_flSequenceTime * pSequence->m_flFps >= float( pSequence->m_nFrameCount );
}

void CToolSceneModel::Update( float flTimeDelta )
{
	const ParticleModelSequence_t *pSequence = GetSequence();
	if ( !pSequence || IsSequenceFinished() )
		return;
	m_flSequenceTime += flTimeDelta * m_flPlaybackSpeed;
	// A looping sequence keeps its clock within one run, so that it never loses precision.
	const float flLength = float( pSequence->m_nFrameCount ) / pSequence->m_flFps;
	if ( m_bLooping && m_flSequenceTime >= flLength )
		m_flSequenceTime = std::fmod( m_flSequenceTime, flLength );
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
	float color[ 4 ];
	GetColor( color );
	if ( m_pShownModel && m_pShownModel->GetTriangleCount() > 0 )
		drawList.AddModel( m_pShownModel, vOrigin, vForward, vRight, vUp, GetWorldScale(), color );
	if ( !m_bDrawAttachments )
		return;
	for ( int i = 0; i < int( m_pModel->GetAttachments().size() ); ++i )
	{
		Vector o, f, r, u;
		if ( GetAttachmentFrame( i, &o, &f, &r, &u ) )
			drawList.AddAxes( o, f, r, u, 6.0f );
	}
}
