#include "core/particles/particlebehaviorversion.h"

namespace
{
// Index n - 1 describes version n. Class and field limits in the function headers must
// agree with these texts.
constexpr const char *s_VersionChanges[ PARTICLE_CURRENT_BEHAVIOR_VERSION ] = {
	"Particle functions record the behavior version they were authored with.",
	"Emitters count their start time from the moment the system starts rather than from its first simulation step.",
	"Lifespan Decay removes particles at the end of the step in which they die, so that renderers never draw a dead particle.",
	"Noise Scalar (value noise) is replaced by Noise Scalar (simplex noise): the noise has fewer grid artifacts and its output fills the whole output range.",
	"Radius Scale gains a scale bias that bends the interpolation towards its start or its end.",
	"Movement Basic runs the constraints up to three times per step, so that particles no longer slip through constraints at low frame rates.",
	"Random Rotation and Random Yaw pick their random direction flip per particle instead of per system.",
	"Color Fade eases through the colour's own curve; the old 'ease in and out' option is removed.",
	"Noise Scalar (simplex noise) is replaced by Noise Scalar, which can animate the noise field over time.",
	"Clamp Scalar is available; it keeps any float attribute within a range given by inputs.",
	"Drag in Movement Basic is applied per second rather than per step, so effects look the same at any frame rate.",
	"Particle inputs that read a control point fall back to the system's origin when the control point is not set.",
};
} // namespace

const char *GetParticleBehaviorVersionChange( int nVersion )
{
	return nVersion >= 1 && nVersion <= PARTICLE_CURRENT_BEHAVIOR_VERSION ? s_VersionChanges[ nVersion - 1 ] : "";
}
