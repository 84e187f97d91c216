#include "core/particles/sim/particleattributes.h"

namespace
{
struct AttributeInfo_t
{
	const char *m_pName;
	ParticleAttributeKind_t m_eKind;
	float m_flDefault[ 3 ];
};

constexpr ParticleAttributeKind_t F = PARTICLE_ATTRIBUTE_KIND_FLOAT;
constexpr ParticleAttributeKind_t V = PARTICLE_ATTRIBUTE_KIND_VECTOR;
constexpr ParticleAttributeKind_t I = PARTICLE_ATTRIBUTE_KIND_INT;
constexpr ParticleAttributeKind_t H = PARTICLE_ATTRIBUTE_KIND_HIDDEN;

const AttributeInfo_t s_Attributes[ PARTICLE_ATTRIBUTE_COUNT ] = {
	{ "Position", V, { 0, 0, 0 } },
	{ "Lifetime", F, { 1, 0, 0 } },
	{ "Position Previous", V, { 0, 0, 0 } },
	{ "Radius", F, { 5, 0, 0 } },
	{ "Roll", F, { 0, 0, 0 } },
	{ "Roll Speed", F, { 0, 0, 0 } },
	{ "Color", V, { 1, 1, 1 } },
	{ "Alpha", F, { 1, 0, 0 } },
	{ "Creation Time", F, { 0, 0, 0 } },
	{ "Sequence Number", F, { 0, 0, 0 } },
	{ "Trail Length", F, { 0.1f, 0, 0 } },
	{ "Particle ID", I, { 0, 0, 0 } },
	{ "Yaw", F, { 0, 0, 0 } },
	{ "Second Sequence Number", F, { 0, 0, 0 } },
	{ "Hitbox Index", I, { 0, 0, 0 } },
	{ "Hitbox Offset Position", V, { 0, 0, 0 } },
	{ "Alpha Alternate", F, { 1, 0, 0 } },
	{ "Scratch Vector", V, { 0, 0, 0 } },
	{ "Scratch Float", F, { 0, 0, 0 } },
	{ "", H, { 0, 0, 0 } },
	{ "Pitch", F, { 0, 0, 0 } },
	{ "Normal", V, { 0, 0, 1 } },
	{ "Glow Color", V, { 1, 1, 1 } },
	{ "Glow Alpha", F, { 1, 0, 0 } },
	{ "Scratch Float 1", F, { 0, 0, 0 } },
	{ "Scratch Float 2", F, { 0, 0, 0 } },
	{ "Scratch Float 3", F, { 0, 0, 0 } },
	{ "Scratch Float 4", F, { 0, 0, 0 } },
	{ "Scratch Vector 1", V, { 0, 0, 0 } },
	{ "Scratch Vector 2", V, { 0, 0, 0 } },
	{ "Shader Extra Data 1", F, { 0, 0, 0 } },
	{ "Shader Extra Data 2", F, { 0, 0, 0 } },
	{ "Bone Indices", V, { 0, 0, 0 } },
	{ "Bone Weights", V, { 1, 0, 0 } },
	{ "Speed", F, { 0, 0, 0 } },
	{ "Control Point Index", I, { 0, 0, 0 } },
	{ "Scale", V, { 1, 1, 1 } },
	{ "Mass", F, { 1, 0, 0 } },
	{ "Scratch Vector 3", V, { 0, 0, 0 } },
	{ "Scratch Vector 4", V, { 0, 0, 0 } },
	{ "Scratch Float 5", F, { 0, 0, 0 } },
	{ "Scratch Float 6", F, { 0, 0, 0 } },
	{ "Scratch Float 7", F, { 0, 0, 0 } },
	{ "Scratch Float 8", F, { 0, 0, 0 } },
	{ "Center Offset", V, { 0, 0, 0 } },
	{ "Orientation Forward", V, { 1, 0, 0 } },
	{ "Orientation Up", V, { 0, 0, 1 } },
	{ "Velocity", V, { 0, 0, 0 } },
	{ "Segment Number", F, { 0, 0, 0 } },
};
} // namespace

const char *GetParticleAttributeName( int nAttribute )
{
	return IsValidParticleAttribute( nAttribute ) ? s_Attributes[ nAttribute ].m_pName : "";
}

ParticleAttributeKind_t GetParticleAttributeKind( int nAttribute )
{
	return IsValidParticleAttribute( nAttribute ) ? s_Attributes[ nAttribute ].m_eKind : PARTICLE_ATTRIBUTE_KIND_HIDDEN;
}

int GetParticleAttributeComponentCount( int nAttribute )
{
	if ( !IsValidParticleAttribute( nAttribute ) )
		return 0;
	return s_Attributes[ nAttribute ].m_eKind == PARTICLE_ATTRIBUTE_KIND_VECTOR ? 3 : 1;
}

float GetParticleAttributeDefault( int nAttribute, int nComponent )
{
	if ( !IsValidParticleAttribute( nAttribute ) || nComponent < 0 || nComponent > 2 )
		return 0.0f;
	return s_Attributes[ nAttribute ].m_flDefault[ nComponent ];
}
