#include "core/particles/particlemodel.h"

#include <algorithm>
#include <cmath>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/particles/sim/particlekv3read.h"
#include "core/particles/sim/particlerandom.h"
#include "core/particles/sim/particlesimmath.h"
#include "core/text/strtools.h"

using namespace ParticleMath;

namespace
{
// Strict readers: a model with a wrong value is refused rather than guessed at, so that an
// artist sees what to fix.
bool ReadNumber( const KeyValues3 *pValue, float *pOut )
{
	if ( !pValue || !pValue->IsNumber() )
		return false;
	*pOut = pValue->GetFloat();
	return std::isfinite( *pOut );
}

bool ReadVec3( const KeyValues3 *pValue, Vector *pOut )
{
	if ( !pValue || !pValue->IsArray() || pValue->GetArrayElementCount() != 3 )
		return false;
	for ( int k = 0; k < 3; ++k )
	{
		if ( !ReadNumber( pValue->GetArrayElement( k ), &( *pOut )[ k ] ) )
			return false;
	}
	return true;
}

// An optional vector member: missing keeps the default.
bool ReadOptionalVec3( const KeyValues3 *pTable, const char *pKey, Vector *pOut, const char *pWhere, CUtlString *pError )
{
	const KeyValues3 *pValue = ParticleKV3::Member( pTable, pKey );
	if ( !pValue )
		return true;
	if ( ReadVec3( pValue, pOut ) )
		return true;
	pError->Format( "%s: %s is not an array of three numbers", pWhere, pKey );
	return false;
}

bool ReadName( const KeyValues3 *pTable, const char *pWhere, CUtlString *pName, CUtlString *pError )
{
	const KeyValues3 *pValue = ParticleKV3::Member( pTable, "m_name" );
	if ( !pValue || !pValue->IsString() || !*pValue->GetString() )
	{
		pError->Format( "%s has no m_name", pWhere );
		return false;
	}
	*pName = pValue->GetString();
	return true;
}

bool ReadFrame( const KeyValues3 *pTable, const char *pWhere, ParticleModelFrame_t *pFrame, CUtlString *pError )
{
	return ReadOptionalVec3( pTable, "m_vOrigin", &pFrame->m_vOrigin, pWhere, pError ) &&
		   ReadOptionalVec3( pTable, "m_angRotation", &pFrame->m_vAngles, pWhere, pError );
}

// A list member: missing or null is empty, anything but an array is an error.
bool GetList( const KeyValues3 &root, const char *pKey, const KeyValues3 **ppList, CUtlString *pError )
{
	const KeyValues3 *pList = ParticleKV3::Member( &root, pKey );
	*ppList = nullptr;
	if ( !pList || pList->IsNull() )
		return true;
	if ( !pList->IsArray() )
	{
		pError->Format( "%s is not an array", pKey );
		return false;
	}
	*ppList = pList;
	return true;
}

bool ReadHitbox( const KeyValues3 *pTable, int nIndex, ParticleModelHitbox_t *pHitbox, CUtlString *pError )
{
	CUtlString where;
	where.Format( "m_HitBoxes[%d]", nIndex );
	if ( !pTable || !pTable->IsTable() )
	{
		pError->Format( "%s is not a table", where.Get() );
		return false;
	}
	if ( !ReadName( pTable, where.Get(), &pHitbox->m_Name, pError ) || !ReadFrame( pTable, where.Get(), &pHitbox->m_Frame, pError ) )
		return false;
	pHitbox->m_SetName = "default";
	if ( const KeyValues3 *pSet = ParticleKV3::Member( pTable, "m_HitboxSet" ); pSet && pSet->IsString() && *pSet->GetString() )
		pHitbox->m_SetName = pSet->GetString();

	const KeyValues3 *pShape = ParticleKV3::Member( pTable, "m_nShape" );
	const char *pShapeName = pShape && pShape->IsString() ? pShape->GetString() : "box";
	if ( V_stricmp_fast( pShapeName, "box" ) == 0 )
	{
		pHitbox->m_eShape = PARTICLE_MODEL_HITBOX_BOX;
		if ( !ReadVec3( ParticleKV3::Member( pTable, "m_vMinBounds" ), &pHitbox->m_vMin ) || !ReadVec3( ParticleKV3::Member( pTable, "m_vMaxBounds" ), &pHitbox->m_vMax ) )
		{
			pError->Format( "%s (\"%s\"): a box needs m_vMinBounds and m_vMaxBounds, three numbers each", where.Get(), pHitbox->m_Name.Get() );
			return false;
		}
		for ( int k = 0; k < 3; ++k )
		{
			if ( pHitbox->m_vMin[ k ] > pHitbox->m_vMax[ k ] )
			{
				pError->Format( "%s (\"%s\"): m_vMinBounds lies above m_vMaxBounds", where.Get(), pHitbox->m_Name.Get() );
				return false;
			}
		}
	}
	else if ( V_stricmp_fast( pShapeName, "sphere" ) == 0 )
	{
		pHitbox->m_eShape = PARTICLE_MODEL_HITBOX_SPHERE;
		if ( !ReadNumber( ParticleKV3::Member( pTable, "m_flRadius" ), &pHitbox->m_flRadius ) || pHitbox->m_flRadius <= 0.0f )
		{
			pError->Format( "%s (\"%s\"): a sphere needs a positive m_flRadius", where.Get(), pHitbox->m_Name.Get() );
			return false;
		}
	}
	else
	{
		pError->Format( "%s (\"%s\"): unknown shape \"%s\" (use \"box\" or \"sphere\")", where.Get(), pHitbox->m_Name.Get(), pShapeName );
		return false;
	}
	return true;
}

// A table of a list, named.
bool ReadNamedTable( const KeyValues3 *pTable, const char *pWhere, CUtlString *pName, CUtlString *pError )
{
	if ( !pTable || !pTable->IsTable() )
	{
		pError->Format( "%s is not a table", pWhere );
		return false;
	}
	return ReadName( pTable, pWhere, pName, pError );
}

// An optional whole number of at least nMin: missing keeps the default.
bool ReadOptionalCount( const KeyValues3 *pTable, const char *pKey, int nMin, int *pOut, const char *pWhere, CUtlString *pError )
{
	const KeyValues3 *pValue = ParticleKV3::Member( pTable, pKey );
	if ( !pValue )
		return true;
	float flValue = 0.0f;
	if ( !ReadNumber( pValue, &flValue ) || flValue != std::floor( flValue ) || flValue < float( nMin ) || flValue > 1e7f )
	{
		pError->Format( "%s: %s is not a whole number of at least %d", pWhere, pKey, nMin );
		return false;
	}
	*pOut = int( flValue );
	return true;
}

bool ReadMaterialGroup( const KeyValues3 *pTable, int nIndex, ParticleModelMaterialGroup_t *pGroup, CUtlString *pError )
{
	CUtlString where;
	where.Format( "m_MaterialGroups[%d]", nIndex );
	if ( !ReadNamedTable( pTable, where.Get(), &pGroup->m_Name, pError ) || !ReadOptionalVec3( pTable, "m_vColor", &pGroup->m_vColor, where.Get(), pError ) )
		return false;
	for ( int k = 0; k < 3; ++k )
	{
		if ( pGroup->m_vColor[ k ] < 0.0f || pGroup->m_vColor[ k ] > 255.0f )
		{
			pError->Format( "%s (\"%s\"): m_vColor goes from 0 to 255", where.Get(), pGroup->m_Name.Get() );
			return false;
		}
	}
	return true;
}

bool ReadBodyGroup( const KeyValues3 *pTable, int nIndex, int nTriangles, ParticleModelBodyGroup_t *pGroup, CUtlString *pError )
{
	CUtlString where;
	where.Format( "m_BodyGroups[%d]", nIndex );
	if ( !ReadNamedTable( pTable, where.Get(), &pGroup->m_Name, pError ) )
		return false;
	const KeyValues3 *pChoices = ParticleKV3::Member( pTable, "m_Choices" );
	if ( !pChoices || !pChoices->IsArray() || pChoices->GetArrayElementCount() == 0 )
	{
		pError->Format( "%s (\"%s\"): m_Choices is not an array of at least one choice", where.Get(), pGroup->m_Name.Get() );
		return false;
	}
	for ( int i = 0; i < pChoices->GetArrayElementCount(); ++i )
	{
		CUtlString choiceWhere;
		choiceWhere.Format( "%s.m_Choices[%d]", where.Get(), i );
		ParticleModelBodyGroupChoice_t choice;
		const KeyValues3 *pChoice = pChoices->GetArrayElement( i );
		if ( !ReadNamedTable( pChoice, choiceWhere.Get(), &choice.m_Name, pError ) ||
			 !ReadOptionalCount( pChoice, "m_nFirstTriangle", 0, &choice.m_nFirstTriangle, choiceWhere.Get(), pError ) ||
			 !ReadOptionalCount( pChoice, "m_nTriangleCount", 0, &choice.m_nTriangleCount, choiceWhere.Get(), pError ) )
			return false;
		if ( choice.m_nTriangleCount > 0 && int64_t( choice.m_nFirstTriangle ) + choice.m_nTriangleCount > nTriangles )
		{
			pError->Format( "%s (\"%s\"): triangles %d to %d lie past the model's %d", choiceWhere.Get(), choice.m_Name.Get(), choice.m_nFirstTriangle,
				choice.m_nFirstTriangle + choice.m_nTriangleCount - 1, nTriangles );
			return false;
		}
		pGroup->m_Choices.push_back( choice );
	}
	return true;
}

bool ReadSequence( const KeyValues3 *pTable, int nIndex, ParticleModelSequence_t *pSequence, CUtlString *pError )
{
	CUtlString where;
	where.Format( "m_Sequences[%d]", nIndex );
	if ( !ReadNamedTable( pTable, where.Get(), &pSequence->m_Name, pError ) ||
		 !ReadOptionalCount( pTable, "m_nFrameCount", 1, &pSequence->m_nFrameCount, where.Get(), pError ) )
		return false;
	if ( const KeyValues3 *pFps = ParticleKV3::Member( pTable, "m_flFps" ) )
	{
		if ( !ReadNumber( pFps, &pSequence->m_flFps ) || !( pSequence->m_flFps > 0.0f ) || pSequence->m_flFps > 1000.0f )
		{
			pError->Format( "%s (\"%s\"): m_flFps is not a rate above 0 and up to 1000", where.Get(), pSequence->m_Name.Get() );
			return false;
		}
	}
	if ( const KeyValues3 *pLooping = ParticleKV3::Member( pTable, "m_bLooping" ) )
		pSequence->m_bLooping = pLooping->GetBool();
	return true;
}

// The frame's axes: where its x, y and z point in model space.
void FrameAxes( const ParticleModelFrame_t &frame, Vector *pX, Vector *pY, Vector *pZ )
{
	*pX = RotateByDegrees( Vector( 1.0f, 0.0f, 0.0f ), frame.m_vAngles.x, frame.m_vAngles.y, frame.m_vAngles.z );
	*pY = RotateByDegrees( Vector( 0.0f, 1.0f, 0.0f ), frame.m_vAngles.x, frame.m_vAngles.y, frame.m_vAngles.z );
	*pZ = RotateByDegrees( Vector( 0.0f, 0.0f, 1.0f ), frame.m_vAngles.x, frame.m_vAngles.y, frame.m_vAngles.z );
}

Vector RandomInUnitBall( CParticleRandom &random )
{
	for ( ;; )
	{
		Vector v( random.NextFloat() * 2.0f - 1.0f, random.NextFloat() * 2.0f - 1.0f, random.NextFloat() * 2.0f - 1.0f );
		float flLengthSq = Dot( v, v );
		if ( flLengthSq <= 1.0f && flLengthSq > 1e-6f )
			return v;
	}
}
} // namespace

Vector ParticleModelFrame_t::ToModel( const Vector &vLocal ) const
{
	return Add( m_vOrigin, RotateByDegrees( vLocal, m_vAngles.x, m_vAngles.y, m_vAngles.z ) );
}

void CParticleModel::Clear()
{
	m_Vertices.clear();
	m_Triangles.clear();
	m_TriangleAreaSums.clear();
	m_Hitboxes.clear();
	m_Attachments.clear();
	m_MaterialGroups.clear();
	m_BodyGroups.clear();
	m_Sequences.clear();
}

bool CParticleModel::LoadFromText( const char *pText, size_t nLength, const char *pName, CUtlString *pError )
{
	Clear();
	SetName( pName );
	KeyValues3 root;
	CUtlString error;
	if ( !LoadKV3FromText( &root, &error, pText, nLength, KV3_FORMAT_GENERIC ) )
	{
		pError->Format( "%s: %s", pName ? pName : "model", error.Get() );
		return false;
	}
	if ( !LoadFromKV3( root, &error ) )
	{
		pError->Format( "%s: %s", pName ? pName : "model", error.Get() );
		return false;
	}
	return true;
}

bool CParticleModel::LoadFromKV3( const KeyValues3 &root, CUtlString *pError )
{
	Clear();
	bool bOk = [ & ]() {
		if ( !root.IsTable() )
		{
			pError->Set( "the model is not a table" );
			return false;
		}
		const KeyValues3 *pList = nullptr;
		if ( !GetList( root, "m_Vertices", &pList, pError ) )
			return false;
		for ( int i = 0; pList && i < pList->GetArrayElementCount(); ++i )
		{
			Vector v;
			if ( !ReadVec3( pList->GetArrayElement( i ), &v ) )
			{
				pError->Format( "m_Vertices[%d] is not an array of three numbers", i );
				return false;
			}
			m_Vertices.push_back( v );
		}
		if ( !GetList( root, "m_Triangles", &pList, pError ) )
			return false;
		int nIndices = pList ? pList->GetArrayElementCount() : 0;
		if ( nIndices % 3 != 0 )
		{
			pError->Format( "m_Triangles holds %d indices, not a multiple of three", nIndices );
			return false;
		}
		for ( int i = 0; i < nIndices; ++i )
		{
			const KeyValues3 *pIndex = pList->GetArrayElement( i );
			double flIndex = pIndex && pIndex->IsNumber() ? pIndex->GetDouble() : -1.0;
			if ( flIndex < 0.0 || flIndex >= double( m_Vertices.size() ) || flIndex != std::floor( flIndex ) )
			{
				pError->Format( "m_Triangles[%d] is not a vertex index (the model has %d vertices)", i, int( m_Vertices.size() ) );
				return false;
			}
			m_Triangles.push_back( int( flIndex ) );
		}
		float flSum = 0.0f;
		for ( size_t t = 0; t + 2 < m_Triangles.size(); t += 3 )
		{
			const Vector &a = m_Vertices[ size_t( m_Triangles[ t ] ) ];
			Vector ab = Sub( m_Vertices[ size_t( m_Triangles[ t + 1 ] ) ], a ), ac = Sub( m_Vertices[ size_t( m_Triangles[ t + 2 ] ) ], a );
			flSum += 0.5f * Length( Cross( ab, ac ) );
			m_TriangleAreaSums.push_back( flSum );
		}
		if ( !GetList( root, "m_HitBoxes", &pList, pError ) )
			return false;
		for ( int i = 0; pList && i < pList->GetArrayElementCount(); ++i )
		{
			ParticleModelHitbox_t hitbox;
			if ( !ReadHitbox( pList->GetArrayElement( i ), i, &hitbox, pError ) )
				return false;
			m_Hitboxes.push_back( hitbox );
		}
		if ( !GetList( root, "m_Attachments", &pList, pError ) )
			return false;
		for ( int i = 0; pList && i < pList->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pTable = pList->GetArrayElement( i );
			CUtlString where;
			where.Format( "m_Attachments[%d]", i );
			ParticleModelAttachment_t attachment;
			if ( !pTable || !pTable->IsTable() )
			{
				pError->Format( "%s is not a table", where.Get() );
				return false;
			}
			if ( !ReadName( pTable, where.Get(), &attachment.m_Name, pError ) || !ReadFrame( pTable, where.Get(), &attachment.m_Frame, pError ) )
				return false;
			m_Attachments.push_back( attachment );
		}
		if ( !GetList( root, "m_MaterialGroups", &pList, pError ) )
			return false;
		for ( int i = 0; pList && i < pList->GetArrayElementCount(); ++i )
		{
			ParticleModelMaterialGroup_t group;
			if ( !ReadMaterialGroup( pList->GetArrayElement( i ), i, &group, pError ) )
				return false;
			m_MaterialGroups.push_back( group );
		}
		if ( !GetList( root, "m_BodyGroups", &pList, pError ) )
			return false;
		for ( int i = 0; pList && i < pList->GetArrayElementCount(); ++i )
		{
			ParticleModelBodyGroup_t group;
			if ( !ReadBodyGroup( pList->GetArrayElement( i ), i, GetTriangleCount(), &group, pError ) )
				return false;
			m_BodyGroups.push_back( group );
		}
		if ( !GetList( root, "m_Sequences", &pList, pError ) )
			return false;
		for ( int i = 0; pList && i < pList->GetArrayElementCount(); ++i )
		{
			ParticleModelSequence_t sequence;
			if ( !ReadSequence( pList->GetArrayElement( i ), i, &sequence, pError ) )
				return false;
			m_Sequences.push_back( sequence );
		}
		return true;
	}();
	if ( !bOk )
		Clear();
	return bOk;
}

const ParticleModelAttachment_t *CParticleModel::FindAttachment( const char *pName ) const
{
	for ( const ParticleModelAttachment_t &attachment : m_Attachments )
	{
		if ( V_stricmp_fast( attachment.m_Name.Get(), pName ? pName : "" ) == 0 )
			return &attachment;
	}
	return nullptr;
}

void CParticleModel::GetHitboxesOfSet( const char *pSetName, std::vector<int> *pIndices ) const
{
	pIndices->clear();
	for ( size_t i = 0; i < m_Hitboxes.size(); ++i )
	{
		if ( V_stricmp_fast( m_Hitboxes[ i ].m_SetName.Get(), pSetName ? pSetName : "" ) == 0 )
			pIndices->push_back( int( i ) );
	}
	if ( pIndices->empty() )
	{
		for ( size_t i = 0; i < m_Hitboxes.size(); ++i )
			pIndices->push_back( int( i ) );
	}
}

void CParticleModel::GetHitboxSetNames( std::vector<CUtlString> *pNames ) const
{
	pNames->clear();
	for ( const ParticleModelHitbox_t &hitbox : m_Hitboxes )
	{
		if ( std::none_of( pNames->begin(), pNames->end(), [ & ]( const CUtlString &name ) { return name.IsEqual_CaseInsensitive( hitbox.m_SetName ); } ) )
			pNames->push_back( hitbox.m_SetName );
	}
}

const ParticleModelMaterialGroup_t *CParticleModel::FindMaterialGroup( const char *pName ) const
{
	for ( const ParticleModelMaterialGroup_t &group : m_MaterialGroups )
	{
		if ( V_stricmp_fast( group.m_Name.Get(), pName ? pName : "" ) == 0 )
			return &group;
	}
	return nullptr;
}

const ParticleModelSequence_t *CParticleModel::FindSequence( const char *pName ) const
{
	for ( const ParticleModelSequence_t &sequence : m_Sequences )
	{
		if ( V_stricmp_fast( sequence.m_Name.Get(), pName ? pName : "" ) == 0 )
			return &sequence;
	}
	return nullptr;
}

bool CParticleModel::GetHiddenTriangles( const std::vector<int> &choices, std::vector<bool> *pHidden ) const
{
	pHidden->assign( size_t( GetTriangleCount() ), false );
	bool bAnyHidden = false;
	for ( size_t nGroup = 0; nGroup < m_BodyGroups.size(); ++nGroup )
	{
		const ParticleModelBodyGroup_t &group = m_BodyGroups[ nGroup ];
		int nChosen = nGroup < choices.size() ? choices[ nGroup ] : 0;
		if ( nChosen < 0 || nChosen >= int( group.m_Choices.size() ) )
			nChosen = 0;
		for ( int nChoice = 0; nChoice < int( group.m_Choices.size() ); ++nChoice )
		{
			const ParticleModelBodyGroupChoice_t &choice = group.m_Choices[ size_t( nChoice ) ];
			for ( int t = 0; nChoice != nChosen && t < choice.m_nTriangleCount; ++t )
			{
				( *pHidden )[ size_t( choice.m_nFirstTriangle + t ) ] = true;
				bAnyHidden = true;
			}
		}
		// A triangle of the chosen choice shows, even if another choice names it too.
		const ParticleModelBodyGroupChoice_t &chosen = group.m_Choices[ size_t( nChosen ) ];
		for ( int t = 0; t < chosen.m_nTriangleCount; ++t )
			( *pHidden )[ size_t( chosen.m_nFirstTriangle + t ) ] = false;
	}
	return bAnyHidden && std::find( pHidden->begin(), pHidden->end(), true ) != pHidden->end();
}

std::shared_ptr<CParticleModel> CParticleModel::WithoutTriangles( const std::vector<bool> &hidden ) const
{
	auto pCopy = std::make_shared<CParticleModel>( *this );
	pCopy->m_Triangles.clear();
	pCopy->m_TriangleAreaSums.clear();
	float flSum = 0.0f;
	for ( size_t t = 0; t < m_TriangleAreaSums.size(); ++t )
	{
		if ( t < hidden.size() && hidden[ t ] )
			continue;
		for ( size_t k = 0; k < 3; ++k )
			pCopy->m_Triangles.push_back( m_Triangles[ t * 3 + k ] );
		flSum += m_TriangleAreaSums[ t ] - ( t > 0 ? m_TriangleAreaSums[ t - 1 ] : 0.0f );
		pCopy->m_TriangleAreaSums.push_back( flSum );
	}
	return pCopy;
}

ParticleModelPtr_t ParticleModelWithBodyGroups( const ParticleModelPtr_t &pModel, const std::vector<int> &choices )
{
	std::vector<bool> hidden;
	if ( !pModel || !pModel->GetHiddenTriangles( choices, &hidden ) )
		return pModel;
	return pModel->WithoutTriangles( hidden );
}

Vector CParticleModel::SampleHitbox( int nHitbox, bool bInside, const Vector &vScale, CParticleRandom &random ) const
{
	if ( nHitbox < 0 || size_t( nHitbox ) >= m_Hitboxes.size() )
		return Vector();
	const ParticleModelHitbox_t &hitbox = m_Hitboxes[ size_t( nHitbox ) ];
	Vector vLocal;
	if ( hitbox.m_eShape == PARTICLE_MODEL_HITBOX_SPHERE )
	{
		Vector vDir = RandomInUnitBall( random );
		if ( !bInside )
			vDir = Normalized( vDir );
		vLocal = Scale( Mul( vDir, vScale ), hitbox.m_flRadius );
	}
	else
	{
		Vector vMin = Mul( hitbox.m_vMin, vScale ), vMax = Mul( hitbox.m_vMax, vScale );
		for ( int k = 0; k < 3; ++k )
		{
			if ( vMin[ k ] > vMax[ k ] )
				std::swap( vMin[ k ], vMax[ k ] );
		}
		for ( int k = 0; k < 3; ++k )
			vLocal[ k ] = random.RandomFloat( vMin[ k ], vMax[ k ] );
		if ( !bInside )
		{
			// Onto one of the six faces, each picked by its area so the surface is even.
			Vector vSize = Sub( vMax, vMin );
			float flArea[ 3 ] = { vSize.y * vSize.z, vSize.x * vSize.z, vSize.x * vSize.y };
			float flTotal = flArea[ 0 ] + flArea[ 1 ] + flArea[ 2 ];
			float flPick = random.NextFloat() * flTotal;
			int nAxis = flPick < flArea[ 0 ] ? 0 : ( flPick < flArea[ 0 ] + flArea[ 1 ] ? 1 : 2 );
			if ( flTotal <= 0.0f )
				nAxis = vSize.x <= vSize.y && vSize.x <= vSize.z ? 0 : ( vSize.y <= vSize.z ? 1 : 2 );
			vLocal[ nAxis ] = random.NextFloat() < 0.5f ? vMin[ nAxis ] : vMax[ nAxis ];
		}
	}
	return hitbox.m_Frame.ToModel( vLocal );
}

bool CParticleModel::SampleSurface( CParticleRandom &random, Vector *pPoint ) const
{
	if ( m_TriangleAreaSums.empty() || m_TriangleAreaSums.back() <= 0.0f )
		return false;
	float flPick = random.NextFloat() * m_TriangleAreaSums.back();
	size_t nTriangle = size_t( std::upper_bound( m_TriangleAreaSums.begin(), m_TriangleAreaSums.end(), flPick ) - m_TriangleAreaSums.begin() );
	nTriangle = std::min( nTriangle, m_TriangleAreaSums.size() - 1 );
	const Vector &a = m_Vertices[ size_t( m_Triangles[ nTriangle * 3 ] ) ];
	const Vector &b = m_Vertices[ size_t( m_Triangles[ nTriangle * 3 + 1 ] ) ];
	const Vector &c = m_Vertices[ size_t( m_Triangles[ nTriangle * 3 + 2 ] ) ];
	float u = random.NextFloat(), v = random.NextFloat();
	if ( u + v > 1.0f )
	{
		u = 1.0f - u;
		v = 1.0f - v;
	}
	*pPoint = Add( a, Add( Scale( Sub( b, a ), u ), Scale( Sub( c, a ), v ) ) );
	return true;
}

bool CParticleModel::IsInHitbox( int nHitbox, const Vector &vPoint, const Vector &vScale, float flTolerance ) const
{
	if ( nHitbox < 0 || size_t( nHitbox ) >= m_Hitboxes.size() )
		return false;
	const ParticleModelHitbox_t &hitbox = m_Hitboxes[ size_t( nHitbox ) ];
	Vector vX, vY, vZ;
	FrameAxes( hitbox.m_Frame, &vX, &vY, &vZ );
	Vector d = Sub( vPoint, hitbox.m_Frame.m_vOrigin );
	Vector vLocal( Dot( d, vX ), Dot( d, vY ), Dot( d, vZ ) );
	if ( hitbox.m_eShape == PARTICLE_MODEL_HITBOX_SPHERE )
	{
		Vector vRadius = Scale( vScale, hitbox.m_flRadius );
		float flSum = 0.0f;
		for ( int k = 0; k < 3; ++k )
		{
			float r = std::fabs( vRadius[ k ] ) + flTolerance;
			flSum += ( vLocal[ k ] / r ) * ( vLocal[ k ] / r );
		}
		return flSum <= 1.0f;
	}
	Vector vMin = Mul( hitbox.m_vMin, vScale ), vMax = Mul( hitbox.m_vMax, vScale );
	for ( int k = 0; k < 3; ++k )
	{
		float lo = std::min( vMin[ k ], vMax[ k ] ), hi = std::max( vMin[ k ], vMax[ k ] );
		if ( vLocal[ k ] < lo - flTolerance || vLocal[ k ] > hi + flTolerance )
			return false;
	}
	return true;
}
