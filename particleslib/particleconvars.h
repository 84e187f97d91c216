#pragma once
// The console variables that the manager of live effects reads. They are the host's
// switches; this library registers them, once per process.

#include "core/console/convar.h"

extern ConVar cl_particle_simulate;
extern ConVar r_freezeparticles;
extern ConVar r_particle_timescale;
extern ConVar cl_particle_max_count;
extern ConVar cl_particle_retire_cost;
extern ConVar r_threaded_particles;
extern ConVar r_limit_particle_job_duration;
extern ConVar cl_particle_fallback_base;
extern ConVar cl_particle_fallback_multiplier;
extern ConVar cl_particle_sim_fallback_base_multiplier;
extern ConVar cl_particle_sim_fallback_threshold_ms;
extern ConVar cl_aggregate_particles;
extern ConVar cl_particle_batch_mode;
