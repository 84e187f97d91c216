#include "tools/toolscene/toolscenedrawlist.h"

#include <cstring>

#include "core/logging/logonce.h"
#include "core/particles/particlemodelresource.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/particles/sim/particledrawdata.h"
#include "core/particles/sim/particleruntimedefinition.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"

using namespace ToolSceneMath;

void CToolSceneDrawList::Clear()
{
	m_Lines.clear();
	m_BackdropLines.clear();
	m_Sprites.clear();
	m_Trails.clear();
	m_Models.clear();
	m_SpriteBatches.clear();
	m_TrailBatches.clear();
	m_ModelBatches.clear();
	m_OverlayTriangles.clear();
}

static void PushLine( std::vector<ToolSceneLineVertex_t> &lines, const Vector &a, const Vector &b, const float color[ 4 ] )
{
	ToolSceneLineVertex_t v;
	memcpy( v.m_Color, color, sizeof( v.m_Color ) );
	v.m_Position[ 0 ] = a.x;
	v.m_Position[ 1 ] = a.y;
	v.m_Position[ 2 ] = a.z;
	lines.push_back( v );
	v.m_Position[ 0 ] = b.x;
	v.m_Position[ 1 ] = b.y;
	v.m_Position[ 2 ] = b.z;
	lines.push_back( v );
}

void CToolSceneDrawList::AddLine( const Vector &a, const Vector &b, const float color[ 4 ] )
{
	PushLine( m_Lines, a, b, color );
}

void CToolSceneDrawList::AddOverlayTriangle( const Vector &a, const Vector &b, const Vector &c, const float color[ 4 ] )
{
	for ( const Vector *p : { &a, &b, &c } )
	{
		ToolSceneLineVertex_t v;
		v.m_Position[ 0 ] = p->x;
		v.m_Position[ 1 ] = p->y;
		v.m_Position[ 2 ] = p->z;
		for ( int i = 0; i < 4; ++i )
			v.m_Color[ i ] = color[ i ];
		m_OverlayTriangles.push_back( v );
	}
}

void CToolSceneDrawList::AddBackdropLine( const Vector &a, const Vector &b, const float color[ 4 ] )
{
	PushLine( m_BackdropLines, a, b, color );
}

void CToolSceneDrawList::AddAxes( const Vector &vOrigin, const Vector &vForward, const Vector &vRight, const Vector &vUp, float flSize )
{
	static const float s_Red[ 4 ] = { 1.0f, 0.2f, 0.2f, 1.0f };
	static const float s_Green[ 4 ] = { 0.2f, 1.0f, 0.2f, 1.0f };
	static const float s_Blue[ 4 ] = { 0.3f, 0.4f, 1.0f, 1.0f };
	AddLine( vOrigin, Add( vOrigin, Scale( vForward, flSize ) ), s_Red );
	AddLine( vOrigin, Sub( vOrigin, Scale( vRight, flSize ) ), s_Green );
	AddLine( vOrigin, Add( vOrigin, Scale( vUp, flSize ) ), s_Blue );
}

void CToolSceneDrawList::AddControlPointMarker( const Vector &vOrigin, float flSize )
{
	static const float s_Marker[ 4 ] = { 1.0f, 0.85f, 0.2f, 1.0f };
	const float h = flSize * 0.5f;
	AddLine( Sub( vOrigin, Vector( h, 0, 0 ) ), Add( vOrigin, Vector( h, 0, 0 ) ), s_Marker );
	AddLine( Sub( vOrigin, Vector( 0, h, 0 ) ), Add( vOrigin, Vector( 0, h, 0 ) ), s_Marker );
	AddLine( Sub( vOrigin, Vector( 0, 0, h ) ), Add( vOrigin, Vector( 0, 0, h ) ), s_Marker );
}

ParticleModelPtr_t CToolSceneDrawList::MakeBuiltInModel( const char *pBody, const char *pName )
{
	std::string text = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n";
	text += pBody;
	auto pModel = std::make_shared<CParticleModel>();
	CUtlString strError;
	if ( !pModel->LoadFromText( text.data(), text.size(), pName, &strError ) )
		Log_Warning( LOG_GENERAL, "The built-in model %s doesn't load: %s\n", pName, strError.Get() );
	return pModel;
}

ParticleModelPtr_t CToolSceneDrawList::GetStandInModel()
{
	static const ParticleModelPtr_t s_pCube = MakeBuiltInModel(
		"{ m_Vertices = [ [ -4, -4, -4 ], [ 4, -4, -4 ], [ 4, 4, -4 ], [ -4, 4, -4 ], [ -4, -4, 4 ], [ 4, -4, 4 ], [ 4, 4, 4 ], [ -4, 4, 4 ] ]"
		" m_Triangles = [ 0, 2, 1, 0, 3, 2, 4, 5, 6, 4, 6, 7, 0, 1, 5, 0, 5, 4, 1, 2, 6, 1, 6, 5, 2, 3, 7, 2, 7, 6, 3, 0, 4, 3, 4, 7 ] }",
		"stand-in cube" );
	return s_pCube;
}

static void FillModelInstance( ToolSceneModelInstance_t *pInstance, const Vector &vOrigin, const Vector &vForward, const Vector &vRight, const Vector &vUp, float flScale,
	const float color[ 4 ] )
{
	// Model space is x forward, y left, z up.
	const Vector vLeft = Scale( vRight, -1.0f );
	const Vector *pAxes[ 3 ] = { &vForward, &vLeft, &vUp };
	for ( int nRow = 0; nRow < 3; ++nRow )
	{
		for ( int nColumn = 0; nColumn < 3; ++nColumn )
			pInstance->m_Rows[ nRow ][ nColumn ] = ( *pAxes[ nColumn ] )[ nRow ] * flScale;
		pInstance->m_Rows[ nRow ][ 3 ] = vOrigin[ nRow ];
	}
	memcpy( pInstance->m_Color, color, sizeof( pInstance->m_Color ) );
}

void CToolSceneDrawList::AddModel( const ParticleModelPtr_t &pModel, const Vector &vOrigin, const Vector &vForward, const Vector &vRight, const Vector &vUp,
	float flScale, const float color[ 4 ], bool bBackdrop )
{
	if ( !pModel || pModel->GetTriangleCount() == 0 )
		return;
	ToolSceneBatch_t &batch = m_ModelBatches.emplace_back();
	batch.m_pModel = pModel;
	batch.m_bBackdrop = bBackdrop;
	batch.m_eBlend = color[ 3 ] < 1.0f ? TOOLSCENE_BLEND_ALPHA : TOOLSCENE_BLEND_OPAQUE;
	batch.m_nFirst = int( m_Models.size() );
	batch.m_nCount = 1;
	FillModelInstance( &m_Models.emplace_back(), vOrigin, vForward, vRight, vUp, flScale, color );
}

void CToolSceneDrawList::AddParticles( const IParticleCollection &collection, const ToolSceneView_t &view )
{
	AddCollection( collection, view );
}

void CToolSceneDrawList::AddCollection( const IParticleCollection &collection, const ToolSceneView_t &view )
{
	for ( int nRenderer = 0; nRenderer < collection.GetRendererCount(); ++nRenderer )
	{
		ParticleDrawData_t data;
		if ( !collection.GetDrawData( nRenderer, &data ) || data.m_nCount <= 0 || !data.m_pPosition[ 0 ] )
			continue;
		switch ( data.m_eKind )
		{
		case PARTICLE_RENDERER_SPRITES: AddSprites( data, collection, view ); break;
		case PARTICLE_RENDERER_TRAILS: AddTrails( data, collection ); break;
		case PARTICLE_RENDERER_MODELS: AddModelParticles( data, collection ); break;
		default: break;
		}
	}
	for ( const IParticleCollection *pChild = collection.GetFirstChild(); pChild; pChild = pChild->GetNextSibling() )
		AddCollection( *pChild, view );
}

namespace
{
// Attribute arrays a definition doesn't use read as its constants.
struct ParticleColorSource_t
{
	explicit ParticleColorSource_t( const ParticleDrawData_t &data, const IParticleCollection &collection )
		: m_Data( data ), m_pDefinition( collection.GetDefinition() )
	{
	}
	float Radius( int i ) const { return m_Data.m_pRadius ? m_Data.m_pRadius[ i ] : ( m_pDefinition ? m_pDefinition->m_flConstantRadius : 5.0f ); }
	void Color( int i, float flScale, float out[ 4 ] ) const
	{
		for ( int k = 0; k < 3; ++k )
			out[ k ] = ( m_Data.m_pColor[ k ] ? m_Data.m_pColor[ k ][ i ] : ( m_pDefinition ? m_pDefinition->m_ConstantColor[ k ] : 1.0f ) ) * flScale;
		out[ 3 ] = ( m_Data.m_pAlpha ? m_Data.m_pAlpha[ i ] : ( m_pDefinition ? m_pDefinition->m_flConstantAlpha : 1.0f ) ) * m_Data.m_flAlphaScale;
	}
	const ParticleDrawData_t &m_Data;
	const CParticleRuntimeDefinition *m_pDefinition;
};
} // namespace

ToolSceneBatch_t &CToolSceneDrawList::AddTexturedBatch( std::vector<ToolSceneBatch_t> &batches, const ParticleDrawData_t &data, int nFirst )
{
	ToolSceneBatch_t &batch = batches.emplace_back();
	batch.m_Texture = data.m_pResource ? data.m_pResource : "";
	batch.m_eBlend = data.m_bAdditive ? TOOLSCENE_BLEND_ADDITIVE : TOOLSCENE_BLEND_ALPHA;
	batch.m_flOverbright = data.m_flOverbrightFactor;
	batch.m_nFirst = nFirst;
	batch.m_nCount = data.m_nCount;
	return batch;
}

void CToolSceneDrawList::AddSprites( const ParticleDrawData_t &data, const IParticleCollection &collection, const ToolSceneView_t &view )
{
	ParticleColorSource_t source( data, collection );
	ToolSceneBatch_t &batch = AddTexturedBatch( m_SpriteBatches, data, int( m_Sprites.size() ) );
	batch.m_nOrientation = data.m_nOrientation;
	m_Sprites.resize( m_Sprites.size() + size_t( data.m_nCount ) );
	ToolSceneSpriteInstance_t *pOut = m_Sprites.data() + batch.m_nFirst;
	const float flRollScale = DegToRad( 1.0f );
	for ( int i = 0; i < data.m_nCount; ++i, ++pOut )
	{
		pOut->m_Position[ 0 ] = data.m_pPosition[ 0 ][ i ];
		pOut->m_Position[ 1 ] = data.m_pPosition[ 1 ][ i ];
		pOut->m_Position[ 2 ] = data.m_pPosition[ 2 ][ i ];
		pOut->m_flRadius = source.Radius( i );
		source.Color( i, 1.0f, pOut->m_Color );
		pOut->m_flRoll = data.m_pRotation ? data.m_pRotation[ i ] * flRollScale : 0.0f;
		for ( int k = 0; k < 3; ++k )
			pOut->m_Normal[ k ] = data.m_pNormal[ k ] ? data.m_pNormal[ k ][ i ] : ( k == 2 ? 1.0f : 0.0f );
	}
	if ( !data.m_bAdditive )
		SortBackToFront( batch.m_nFirst, batch.m_nCount, view );
}

void CToolSceneDrawList::SortBackToFront( int nFirst, int nCount, const ToolSceneView_t &view )
{
	if ( nCount < 2 )
		return;
	// An LSD radix sort on the depth's bits, far first: linear in the count, so a hundred
	// thousand sprites sort in about a millisecond.
	m_SortKeys.resize( size_t( nCount ) );
	m_SortKeysTemp.resize( size_t( nCount ) );
	m_SortIndices.resize( size_t( nCount ) );
	m_SortIndicesTemp.resize( size_t( nCount ) );
	const ToolSceneSpriteInstance_t *pSprites = m_Sprites.data() + nFirst;
	for ( int i = 0; i < nCount; ++i )
	{
		const float *p = pSprites[ i ].m_Position;
		float flDepth = ( p[ 0 ] - view.m_vEye.x ) * view.m_vForward.x + ( p[ 1 ] - view.m_vEye.y ) * view.m_vForward.y + ( p[ 2 ] - view.m_vEye.z ) * view.m_vForward.z;
		uint32_t nBits;
		memcpy( &nBits, &flDepth, sizeof( nBits ) );
		// Order-preserving float bits, then flipped so that the farthest sorts first.
		nBits = ( nBits & 0x80000000u ) ? ~nBits : ( nBits | 0x80000000u );
		m_SortKeys[ size_t( i ) ] = ~nBits;
		m_SortIndices[ size_t( i ) ] = uint32_t( i );
	}
	uint32_t *pKeys = m_SortKeys.data(), *pKeysOut = m_SortKeysTemp.data();
	uint32_t *pIndices = m_SortIndices.data(), *pIndicesOut = m_SortIndicesTemp.data();
	for ( int nShift = 0; nShift < 32; nShift += 8 )
	{
		uint32_t counts[ 257 ] = {};
		for ( int i = 0; i < nCount; ++i )
			++counts[ ( ( pKeys[ i ] >> nShift ) & 0xFF ) + 1 ];
		for ( int b = 0; b < 256; ++b )
			counts[ b + 1 ] += counts[ b ];
		for ( int i = 0; i < nCount; ++i )
		{
			uint32_t nSlot = counts[ ( pKeys[ i ] >> nShift ) & 0xFF ]++;
			pKeysOut[ nSlot ] = pKeys[ i ];
			pIndicesOut[ nSlot ] = pIndices[ i ];
		}
		std::swap( pKeys, pKeysOut );
		std::swap( pIndices, pIndicesOut );
	}
	m_SortTemp.assign( pSprites, pSprites + nCount );
	ToolSceneSpriteInstance_t *pOut = m_Sprites.data() + nFirst;
	for ( int i = 0; i < nCount; ++i )
		pOut[ i ] = m_SortTemp[ pIndices[ i ] ];
}

void CToolSceneDrawList::AddTrails( const ParticleDrawData_t &data, const IParticleCollection &collection )
{
	ParticleColorSource_t source( data, collection );
	const ToolSceneBatch_t &batch = AddTexturedBatch( m_TrailBatches, data, int( m_Trails.size() ) );
	m_Trails.resize( m_Trails.size() + size_t( data.m_nCount ) );
	ToolSceneTrailInstance_t *pOut = m_Trails.data() + batch.m_nFirst;
	for ( int i = 0; i < data.m_nCount; ++i, ++pOut )
	{
		Vector vTail = data.GetTrailTail( i );
		pOut->m_Head[ 0 ] = data.m_pPosition[ 0 ][ i ];
		pOut->m_Head[ 1 ] = data.m_pPosition[ 1 ][ i ];
		pOut->m_Head[ 2 ] = data.m_pPosition[ 2 ][ i ];
		pOut->m_Tail[ 0 ] = vTail.x;
		pOut->m_Tail[ 1 ] = vTail.y;
		pOut->m_Tail[ 2 ] = vTail.z;
		pOut->m_flRadius = source.Radius( i );
		pOut->m_flPad = 0.0f;
		source.Color( i, 1.0f, pOut->m_Color );
	}
}

void CToolSceneDrawList::AddModelParticles( const ParticleDrawData_t &data, const IParticleCollection &collection )
{
	ParticleModelPtr_t pModel;
	if ( data.m_pResource && *data.m_pResource )
	{
		CUtlString strError;
		pModel = FindParticleModel( data.m_pResource, &strError );
		if ( !pModel )
			LoggingSystem_LogOnceByKey( LOG_GENERAL, LS_WARNING, data.m_pResource, "Model '%s' can't be drawn (%s); particles show a stand-in cube\n", data.m_pResource,
				strError.Get() );
	}
	if ( !pModel || pModel->GetTriangleCount() == 0 )
		pModel = GetStandInModel();
	ParticleColorSource_t source( data, collection );
	ToolSceneBatch_t &batch = m_ModelBatches.emplace_back();
	batch.m_pModel = pModel;
	batch.m_eBlend = TOOLSCENE_BLEND_ALPHA;
	batch.m_nFirst = int( m_Models.size() );
	batch.m_nCount = data.m_nCount;
	m_Models.resize( m_Models.size() + size_t( data.m_nCount ) );
	for ( int i = 0; i < data.m_nCount; ++i )
	{
		QAngle angles( data.m_pPitch ? data.m_pPitch[ i ] : 0.0f, data.m_pYaw ? data.m_pYaw[ i ] : 0.0f, data.m_pRotation ? data.m_pRotation[ i ] : 0.0f );
		Vector vForward, vRight, vUp;
		AngleVectors( angles, &vForward, &vRight, &vUp );
		float color[ 4 ];
		source.Color( i, 1.0f, color );
		Vector vOrigin( data.m_pPosition[ 0 ][ i ], data.m_pPosition[ 1 ][ i ], data.m_pPosition[ 2 ][ i ] );
		FillModelInstance( &m_Models[ size_t( batch.m_nFirst + i ) ], vOrigin, vForward, vRight, vUp, source.Radius( i ), color );
	}
}
