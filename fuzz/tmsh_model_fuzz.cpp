// Feeds arbitrary bytes to the model reader. A refused model says why and is left empty;
// an accepted one with sane numbers places every sampled point where it belongs: inside
// the hitbox it was drawn from, and on a finite point of the mesh.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "core/particles/particlemodel.h"
#include "core/particles/sim/particlerandom.h"

namespace
{
[[noreturn]] void Stop( const char *pWhat, const char *pDetail )
{
	fprintf( stderr, "tmsh_model_fuzz: %s\n%s\n", pWhat, pDetail );
	abort();
}

bool IsSane( const Vector &v )
{
	for ( int i = 0; i < 3; ++i )
	{
		if ( !std::isfinite( v[ i ] ) || std::fabs( v[ i ] ) > 1.0e4f )
			return false;
	}
	return true;
}

float Extent( const ParticleModelHitbox_t &hitbox )
{
	float flExtent = std::fabs( hitbox.m_flRadius );
	for ( int i = 0; i < 3; ++i )
		flExtent = std::max( { flExtent, std::fabs( hitbox.m_vMin[ i ] ), std::fabs( hitbox.m_vMax[ i ] ) } );
	return flExtent;
}

bool HitboxIsSane( const ParticleModelHitbox_t &hitbox )
{
	return IsSane( hitbox.m_vMin ) && IsSane( hitbox.m_vMax ) && IsSane( hitbox.m_Frame.m_vOrigin ) && IsSane( hitbox.m_Frame.m_vAngles ) &&
		std::isfinite( hitbox.m_flRadius ) && std::fabs( hitbox.m_flRadius ) <= 1.0e4f;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *pData, size_t nSize )
{
	CParticleModel model;
	CUtlString error;
	if ( !model.LoadFromText( reinterpret_cast<const char *>( pData ), nSize, "fuzz.tmsh", &error ) )
	{
		if ( error.IsEmpty() )
			Stop( "a refusal without a reason", "" );
		if ( !model.GetVertices().empty() || model.GetTriangleCount() != 0 || !model.GetHitboxes().empty() || !model.GetAttachments().empty() )
			Stop( "a refused model kept part of its content", error.Get() );
		return 0;
	}

	CParticleRandom random( nSize );
	const Vector vUnit( 1.0f, 1.0f, 1.0f );
	for ( int nHitbox = 0; nHitbox < int( model.GetHitboxes().size() ); ++nHitbox )
	{
		const ParticleModelHitbox_t &hitbox = model.GetHitboxes()[ size_t( nHitbox ) ];
		if ( !HitboxIsSane( hitbox ) )
			continue;
		float flTolerance = 1.0e-3f * ( 1.0f + Extent( hitbox ) );
		for ( int nSample = 0; nSample < 4; ++nSample )
		{
			bool bInside = ( nSample & 1 ) != 0;
			Vector vPoint = model.SampleHitbox( nHitbox, bInside, vUnit, random );
			if ( !model.IsInHitbox( nHitbox, vPoint, vUnit, flTolerance ) )
				Stop( "a point sampled from a hitbox lies outside it", hitbox.m_Name.Get() );
		}
	}

	bool bSaneMesh = std::all_of( model.GetVertices().begin(), model.GetVertices().end(), IsSane );
	Vector vPoint;
	bool bSampled = model.SampleSurface( random, &vPoint );
	// Triangles of no area give nothing to sample; a sample needs at least one triangle.
	if ( bSampled && model.GetTriangleCount() == 0 )
		Stop( "a surface point from a model without triangles", "" );
	if ( bSampled && bSaneMesh && !IsSane( vPoint ) )
		Stop( "a point sampled from a sane mesh is not finite", "" );
	return 0;
}
