#include "particleslib/particleconvars.h"

ConVar cl_particle_simulate( "cl_particle_simulate", "1", FCVAR_NONE, "Step particle systems; 0 lists and steps none." );
ConVar r_freezeparticles( "r_freezeparticles", "0", FCVAR_NONE, "Freeze every particle system where it stands." );
ConVar r_particle_timescale( "r_particle_timescale", "1.0", FCVAR_NONE, "Scales the time that particle systems step by.", true, 0.0f, true, 100.0f );
ConVar cl_particle_max_count( "cl_particle_max_count", "0", FCVAR_NONE,
	"Systems stepped in a frame above which the manager reports what runs; below 1, no limit." );
ConVar cl_particle_retire_cost( "cl_particle_retire_cost", "0", FCVAR_NONE,
	"Screen area, in thousandths of a screen, that new systems of one definition may cover before they fall back; 0 retires none." );
ConVar r_threaded_particles( "r_threaded_particles", "1", FCVAR_NONE, "Step particle systems on the thread pool." );
ConVar r_limit_particle_job_duration( "r_limit_particle_job_duration", "0", FCVAR_NONE,
	"Step particle systems in short jobs (200 us on the main thread, 500 us on a worker)." );
ConVar cl_particle_fallback_base( "cl_particle_fallback_base", "0", FCVAR_NONE, "Handed to the host's particle manager each frame." );
ConVar cl_particle_fallback_multiplier( "cl_particle_fallback_multiplier", "2", FCVAR_NONE, "Handed to the host's particle manager each frame." );
ConVar cl_particle_sim_fallback_base_multiplier( "cl_particle_sim_fallback_base_multiplier", "5", FCVAR_NONE, "Handed to the host's particle manager each frame." );
ConVar cl_particle_sim_fallback_threshold_ms( "cl_particle_sim_fallback_threshold_ms", "6.5", FCVAR_NONE, "Handed to the host's particle manager each frame." );
ConVar cl_aggregate_particles( "cl_aggregate_particles", "1", FCVAR_NONE, "New systems near a running one of their definition join it." );
ConVar cl_particle_batch_mode( "cl_particle_batch_mode", "1", FCVAR_NONE,
	"Systems of one name on one owner restart instead of running twice: 0 never, 1 definitions that ask for it, 2 all.", true, 0.0f, true, 2.0f );
