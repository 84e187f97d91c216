#pragma once
// The behaviour versions of the particle functions. A definition records the version it
// was made at; functions keep the old behaviour for it until the file is upgraded.

constexpr int PARTICLE_CURRENT_BEHAVIOR_VERSION = 12;

// What moving up to nVersion changes, for the upgrade dialog; "" outside 1 .. current.
const char *GetParticleBehaviorVersionChange( int nVersion );
