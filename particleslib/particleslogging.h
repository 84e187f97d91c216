#pragma once
// The "Particles" logging channel, registered on first use.

#include "core/logging/logging.h"

LoggingChannelID_t ParticlesLogChannel();
