#include "particleslib/particleslogging.h"

LoggingChannelID_t ParticlesLogChannel()
{
	static const LoggingChannelID_t s_nChannel = LoggingSystem_RegisterLoggingChannel( "Particles" );
	return s_nChannel;
}
