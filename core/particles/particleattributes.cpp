#include "core/particles/particleattributes.h"

namespace
{
// Indexed by attribute number; the scratch slots carry no meaning of their own.
constexpr const char *s_AttributeNames[ PARTICLE_ATTRIBUTE_COUNT ] = {
	"Position",
	"Life Duration",
	"Position Previous",
	"Radius",
	"Roll",
	"Roll Speed",
	"Color",
	"Alpha",
	"Creation Time",
	"Sequence Number",
	"Trail Length",
	"Particle ID",
	"Yaw",
	"Sequence Number 1",
	"Hitbox Index",
	"Hitbox Offset Position",
	"Alpha Alternate",
	"Scratch Vector",
	"Scratch Float",
	"Glow Radius",
	"Pitch",
	"Normal",
	"Glow Color",
	"Glow Alpha",
	"Control Point Number",
	"Model Index",
	"Scratch Float 1",
	"Scratch Float 2",
	"Shader Extra Data 1",
	"Shader Extra Data 2",
	"Scratch Vector 1",
	"Bone Indices",
	"Bone Weights",
	"Light Radius",
	"Light Intensity",
	"Render Flags",
	"Parent Index",
	"Spawn Order",
	"Brightness",
	"Spin Offset",
	"Emission Time",
	"Velocity",
	"Scratch Vector 2",
	"Scratch Vector 3",
	"Scratch Float 3",
	"Scratch Float 4",
	"Scratch Float 5",
	"Scratch Float 6",
	"Rope Segment Position",
};
} // namespace

const char *GetParticleAttributeName( int nAttribute )
{
	return nAttribute >= 0 && nAttribute < PARTICLE_ATTRIBUTE_COUNT ? s_AttributeNames[ nAttribute ] : "";
}
